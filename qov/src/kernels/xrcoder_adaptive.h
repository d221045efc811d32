// The adaptation of JPEG XR: the discriminants of tables and what they bring about (ITU-T T.832, 8.8.3
// and 8.8.4).
#ifndef QOV_KERNELS_XRCODER_ADAPTIVE_H
#define QOV_KERNELS_XRCODER_ADAPTIVE_H

#include "xrcoder_words.h"

namespace qov {
namespace {

QOV_INLINE int firstTable(int chroma)
{
    return XrTableSet::firstTables + chroma;
}
QOV_INLINE int indexTable(int chroma, int context)
{
    return XrTableSet::indexTables + 2 * chroma + context;
}
QOV_INLINE int levelTable(int context)
{
    return XrTableSet::levelTables + context;
}

// What a symbol adds to the two discriminants of its table, as signed bytes of one number. The sum of such
// numbers tells what the symbols of a list add: 15 of 2 at most stay within a byte.
constexpr Qov32u packChanges(int first, int second)
{
    return Qov32u(first + second * 0x100);
}

QOV_INLINE void addChanges(XrTableSet* set, int table, Qov32u changes)
{
    const Qov32s first = Qov8s(changes);
    set->first[table] += Qov32u(first);
    set->second[table] += Qov32u(Qov32s(Qov8s((changes - Qov32u(first)) >> 8)));
}

QOV_INLINE void initTables(XrTableSet* set)
{
    *set = {};
    for (int i = 0; i < XrTableSet::levelTables; i++) set->table[i] = 1;
}

// 8.8.4.4 and 8.8.4.5. Level tables, which have one discriminant, keep it twice.
QOV_INLINE void adaptTables(XrTableSet* set)
{
    constexpr Qov32u f = printedFirst.tables - 1, i = printedIndex.tables - 1, l = printedLevel.tables - 1;
    constexpr Qov32u last[XrTableSet::tables] = {f, f, i, i, i, i, l, l};
    const auto clamp = [](Qov32s x) { return Qov32u(x < -64 ? -64 : x > 64 ? 64 : x); };
    for (int t = 0; t < XrTableSet::tables; t++) {
        const Qov32s first = Qov32s(set->first[t]), second = Qov32s(set->second[t]);
        const Qov32u table = set->table[t];
        const Qov32u down = Qov32u(first < -8) & Qov32u(table != 0);
        const Qov32u up = ~down & Qov32u(second > 8) & Qov32u(table != last[t]);
        const Qov32u kept = (down | up) - 1; // all ones, or 0
        set->table[t] = table - down + up;
        set->first[t] = clamp(first) & kept;
        set->second[t] = clamp(second) & kept;
    }
}

} // namespace
} // namespace qov

#endif
