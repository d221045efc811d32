// The decoding of a list of levels (ITU-T T.832, 8.7.18.5, table 72). All its codes are complete, so any bits
// are symbols; bad data show in runs and places behind the end of the list.
#ifndef QOV_KERNELS_XRCODER_DECODE_H
#define QOV_KERNELS_XRCODER_DECODE_H

#include "xrcoder_bits.h"
#include "xrcoder_look.h"
#include "xrcoder_scan.h"

namespace qov {
namespace {

const Qov32u shortestValue = 2; // bits of an index symbol and a sign
const Qov32u bigThenValue = 1 + 2 * valueFollows;

// The tables that values of one context are coded by.
struct DecodingContext {
    const Look<5>* indexLook;
    const Qov32u* indexChanges;
    const Look<6>* levelLook;
    const Qov32u* levelChanges;
    // Of the symbols that lead in dense data. A length from here, where the symbol is predicted, lets the
    // next symbols be looked up before this look-up is done.
    Qov32u bigThenValueLength, escapeLength;
    Qov32u shortestLevel; // bits

    QOV_INLINE_MEMBER DecodingContext(const XrTableSet* set, int chroma, int context)
    {
        const Qov32u index = set->table[indexTable(chroma, context)], level = set->table[levelTable(context)];
        indexLook = &indexDecoding.look[index];
        indexChanges = indexDecoding.changes[index];
        levelLook = &levelDecoding.look[level];
        levelChanges = levelDecoding.changes[level];
        bigThenValueLength = indexDecoding.lengths[index][bigThenValue];
        escapeLength = levelDecoding.lengths[level][levelEscape];
        shortestLevel = levelDecoding.lengths[level][0];
    }
};

// Takes a list, whose places are first to 15, value by value.
struct ListDecoder {
    BitReader in;
    Window window;                   // from the reader's place on, maybe of no bits
    const DecodingContext* contexts; // two
    XrTableSet* set;
    int chroma;
    const Qov8u* order;
    Qov32s* dst; // the value of a place goes to dst[order[place]]
    int context = 0, place = 0;
    Qov32u next = nothingFollows; // what follows the place
    Qov32u places = 0;
    Qov32u indexChanges = 0, levelChanges = 0; // of this context

    QOV_INLINE_MEMBER void put(Qov32u level, Qov32u sign)
    {
        dst[order[place]] = Qov32s((level ^ (0 - sign)) + sign);
        places |= 1u << place;
    }

    // Finds a symbol and makes the window hold it and `more` bits behind it. A code that does not end in a
    // window has a bit in the next byte, and ends there: none is longer than 8.
    template <int size>
    QOV_INLINE_MEMBER Found find(const Look<size>& look, Qov32u more)
    {
        Found found = look[window.bits];
        if (found.length + more > window.count) {
            window = in.look(window.count + 1);
            found = look[window.bits];
        }
        return found;
    }

    QOV_INLINE_MEMBER void skip(Qov32u length)
    {
        in.skip(length);
        window = window.behind(length);
    }

    // Takes bits, behind which `sure` ones come at least.
    QOV_INLINE_MEMBER Qov32u take(Qov32u length, Qov32u sure)
    {
        window = in.look(length + sure);
        const Qov32u bits = window.first(length);
        skip(length);
        return bits;
    }

    // The level of an escape, whose code has been taken (8.7.13).
    QOV_INLINE_MEMBER Qov32u takeEscape(Qov32u sure)
    {
        const Window size = in.look(Qov32u(sizeBits + smallestSize) + sure);
        Qov32u f = size.first(sizeBits) + Qov32u(smallestSize);
        in.skip(sizeBits);
        if (f == Qov32u(firstLongSize)) [[unlikely]] {
            f += take(longSizeBits, 0);
            if (f == Qov32u(firstLongestSize)) f += take(longestSizeBits, 0);
        }
        return (take(f, sure) | 1u << f) + 2;
    }

    // A level above 1, behind which `sure` bits come at least.
    QOV_INLINE_MEMBER Qov32u takeLevel(const DecodingContext& tables, Qov32u sure)
    {
        // A code goes on for a bit at least behind its leading zeros, 5 at most; or its extra bits do.
        Qov32u zeros = Qov32u(__builtin_clzll(window.bits | 1));
        zeros = zeros < window.count ? zeros : window.count;
        zeros = zeros < 5 ? zeros : 5;
        const Qov32u length = zeros + 1 > tables.shortestLevel ? zeros + 1 : tables.shortestLevel;
        window = in.look(length + sure);
        const Found found = (*tables.levelLook)[window.bits];
        levelChanges += tables.levelChanges[found.symbol];
        if (found.symbol == levelEscape) {
            in.skip(tables.escapeLength);
            return takeEscape(sure);
        }
        skip(found.length);
        const Qov32u extra = levelExtraBits[found.symbol], lowest = firstLevel[found.symbol];
        return extra == 0 ? lowest : lowest + take(extra, sure);
    }

    // Goes on behind zeros (8.7.18.6), of which there are up to `maximum`. `sure` bits come at least.
    QOV_INLINE_MEMBER void takeRun(int maximum, Qov32u sure)
    {
        window = in.look(sure);
        const Found run = find(runDecoding.look[maximum], 0);
        skip(run.length);
        place += run.symbol + 1;
    }

    QOV_INLINE_MEMBER void settle()
    {
        addChanges(set, indexTable(chroma, context), indexChanges);
        addChanges(set, levelTable(context), levelChanges);
        indexChanges = levelChanges = 0;
    }

    // False: there is no such place.
    QOV_INLINE_MEMBER bool takeFirst(int first)
    {
        const Qov32u table = set->table[firstTable(chroma)];
        window = in.look(shortestValue);
        const Found found = find(firstDecoding.look[table], 1);
        const Qov32u symbol = found.symbol, sign = window.bit(found.length);
        addChanges(set, firstTable(chroma), firstDecoding.changes[table][symbol]);
        skip(found.length + 1u);
        next = symbol >> 2;
        context = int(symbol & next & 1);
        Qov32u level = 1;
        const bool zeros = !(symbol & 1);
        if (symbol & 2) level = takeLevel(contexts[context], zeros ? 1 : next ? shortestValue : 0);
        place = first;
        if (zeros) {
            place--;
            takeRun(lastPlace - first, 1);
        }
        if (place > lastPlace) return false;
        put(level, sign);
        return true;
    }

    // The value that follows. False: there is no such place.
    QOV_INLINE_MEMBER bool takeNext()
    {
        if (next == valueFollows) {
            if (++place > lastPlace) return false;
        } else {
            if (place >= lastPlace - 1) return false;
            takeRun(lastPlace - 1 - place, shortestValue);
            if (place > lastPlace) return false;
        }
        Found found;
        if (place < lastPlace - 1) {
            found = find(*contexts[context].indexLook, 1);
            indexChanges += contexts[context].indexChanges[found.symbol];
        } else if (place == lastPlace - 1) {
            found = find(indexBDecoding.look[0], 1);
        } else {
            found = find(indexLastDecoding.look[0], 1);
        }
        const Qov32u length = found.length + 1u, sign = window.bit(found.length);
        next = found.symbol >> 1;
        window = window.behind(length);
        Qov32u sure = shortestValue;
        if (found.symbol == bigThenValue && place < lastPlace - 1) {
            in.skip(contexts[context].bigThenValueLength + 1);
        } else {
            in.skip(length);
            if (next == nothingFollows) sure = 0;
            if (context && next != valueFollows) {
                settle();
                context = 0;
            }
        }
        put(found.symbol & 1 ? takeLevel(contexts[context], sure) : 1, sign);
        return true;
    }
};

// Takes as many values as have escapes and follow one another, as they do in dense data, before the last two
// places. The reader is far from its start. The lengths of their codes are known before these are looked up.
QOV_INLINE void takeEscapesInARow(ListDecoder& list)
{
    const DecodingContext& tables = list.contexts[list.context];
    const Qov32u indexLength = tables.bigThenValueLength, escapeLength = tables.escapeLength;
    const Look<5>& indexLook = *tables.indexLook;
    Window window = list.window;
    BitReader in = list.in;
    const Qov8u* const order = list.order;
    Qov32s* const dst = list.dst;
    int place = list.place;
    while (place < lastPlace - 2) {
        const Found found = indexLook[window.bits];
        if (found.length + 1u > window.count) window = in.look<true>(window.count + 1);
        if (indexLook[window.bits].symbol != bigThenValue) break;
        const Window known = window.behind(indexLength + 1);
        BitReader ahead = in;
        ahead.skip(indexLength + 1);
        // The level's code goes on behind its leading zeros; or its extra bits do, since 7 bits are known at
        // most. And another bit is to come from the value that follows.
        const Qov32u zeros = Qov32u(__builtin_clzll(known.bits | Qov64u(1) << 63 >> known.count));
        if (ahead.look<true>(zeros + 2).first(escapeLength) != 1) break;
        ahead.skip(escapeLength);
        const Qov32u size = ahead.look<true>(Qov32u(sizeBits + smallestSize) + shortestValue).first(sizeBits);
        if (size == Qov32u(firstLongSize - smallestSize)) break;
        ahead.skip(sizeBits);
        const Qov32u f = size + Qov32u(smallestSize), sign = window.bit(indexLength);
        window = ahead.look<true>(f + shortestValue);
        const Qov32u level = (window.first(f) | 1u << f) + 2;
        place++;
        dst[order[place]] = Qov32s((level ^ (0 - sign)) + sign);
        ahead.skip(f);
        window = window.behind(f);
        in = ahead;
    }
    const Qov32u taken = Qov32u(place - list.place);
    list.places |= (2u << place) - (2u << list.place);
    list.indexChanges += taken * tables.indexChanges[bigThenValue];
    list.levelChanges += taken * tables.levelChanges[levelEscape];
    list.place = place;
    list.window = window;
    list.in = in;
}

// Takes a list, whose places are first to 15, and gives the places of its values, or 0 if it is bad. The
// value of a place goes to dst[order[place]]; the others stay.
__attribute__((noinline)) Qov32u decodeLevels(const Qov8u** src, int* bit, int first, XrTableSet* set,
                                              int chroma, const Qov8u* order, Qov32s* dst)
{
    const DecodingContext contexts[2] = {{set, chroma, 0}, {set, chroma, 1}};
    ListDecoder list = {BitReader(*src, *bit), {0, 0}, contexts, set, chroma, order, dst};
    if (!list.takeFirst(first)) return 0;
    while (list.next != nothingFollows) {
        if (list.next == valueFollows && list.in.total >= BitReader::far) takeEscapesInARow(list);
        if (!list.takeNext()) return 0;
    }
    list.settle();
    list.in.finish(src, bit);
    return list.places;
}

} // namespace
} // namespace qov

#endif
