#include "xrcoder.h"

#include "xrcoder_decode.h"
#include "xrcoder_encode.h"
#include "xrcoder_flex.h"
#include "xrcoder_scan.h"

namespace qov::QOV_LEVEL {
namespace {

constexpr Qov8u listOrder[XrScan::places] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

// Elements of a block by rows; the first one of all is not coded, and never written.
template <class T>
inline void readBlock(const T* src, ptrdiff_t step, Qov32s* block)
{
    for (int y = 0; y < 4; y++, src = atByte(src, step))
        for (int x = 0; x < 4; x++) block[4 * y + x] = src[x];
}

template <class T>
inline void writeBlock(const Qov32s* block, T* dst, ptrdiff_t step)
{
    for (int x = 1; x < 4; x++) dst[x] = T(block[x]);
    for (int y = 1; y < 4; y++) {
        dst = atByte(dst, step);
        for (int x = 0; x < 4; x++) dst[x] = T(block[4 * y + x]);
    }
}

// Codes the list whose places are `first` to 15, before which there are zeros.
inline QovStatus encodeList(const Qov32s* list, int nBits, int first, Qov8u** dst, int* bit, int chroma,
                            int* nonZero, XrTableSet* set, Levels& levels)
{
    if (!splitLevels(list, nBits, levels)) return qovStsRange;
    *nonZero = __builtin_popcount(levels.places);
    if (levels.places) encodeLevels(levels, first, set, chroma, dst, bit);
    return qovStsNoErr;
}

template <class T>
QovStatus encodeBlock(const T* src, ptrdiff_t step, Qov8u** dst, int* bit, int nBits, int chroma,
                      int* nonZero, XrCoderState* state)
{
    Qov32s block[16], list[XrScan::places];
    readBlock(src, step, block);
    for (int i = 0; i < 16; i++) block[i] = i == 0 ? 0 : block[i]; // as the first one is not coded
    XrScan* const scan = &state->scans[state->highPassScan];
    inOrder(scan, block, list);
    Levels levels;
    const QovStatus status =
        encodeList(list, nBits, 1, dst, bit, chroma, nonZero, &state->sets[XrCoderState::highPass], levels);
    if (status == qovStsNoErr) countPlaces(scan, levels.places);
    return status;
}

template <class T>
QovStatus decodeBlock(const Qov8u** src, int* bit, T* dst, ptrdiff_t step, int nBits, int chroma,
                      int* nonZero, XrCoderState* state)
{
    Qov32s block[16] = {};
    XrScan* const scan = &state->scans[state->highPassScan];
    const Qov32u places =
        decodeLevels(src, bit, 1, &state->sets[XrCoderState::highPass], chroma, scan->order, block);
    if (!places) return qovStsData;
    countPlaces(scan, places);
    *nonZero = __builtin_popcount(places);
    for (Qov32s& x : block) x = Qov32s(Qov32u(x) << nBits);
    writeBlock(block, dst, step);
    return qovStsNoErr;
}

void scanDC(const Qov32s* src, Qov32s* dst, XrCoderState* state)
{
    XrScan* const scan = &state->scans[XrCoderState::lowPassScan];
    Qov32s list[XrScan::places];
    inOrder(scan, src, list);
    memcpy(dst, list + 1, lastPlace * sizeof *dst);
    countPlaces(scan, nonZeroPlaces(list) & ~1u);
}

template <int count>
QovStatus encodeDC(const Qov32s* src, Qov8u** dst, int* bit, int chroma, int* nonZero, XrCoderState* state)
{
    const int first = XrScan::places - count;
    Qov32s list[XrScan::places] = {};
    memcpy(list + first, src, count * sizeof *src);
    Levels levels;
    return encodeList(list, 0, first, dst, bit, chroma, nonZero, &state->sets[XrCoderState::lowPass], levels);
}

QovStatus decodeDC444(const Qov8u** src, int* bit, Qov32s* dst, int chroma, int* nonZero, XrCoderState* state)
{
    Qov32s block[16] = {};
    XrScan* const scan = &state->scans[XrCoderState::lowPassScan];
    const Qov32u places =
        decodeLevels(src, bit, 1, &state->sets[XrCoderState::lowPass], chroma, scan->order, block);
    if (!places) return qovStsData;
    countPlaces(scan, places);
    *nonZero = __builtin_popcount(places);
    memcpy(dst + 1, block + 1, lastPlace * sizeof *dst);
    return qovStsNoErr;
}

template <int count>
QovStatus decodeDCList(const Qov8u** src, int* bit, Qov32s* dst, int chroma, int* nonZero,
                       XrCoderState* state)
{
    const int first = XrScan::places - count;
    Qov32s list[XrScan::places] = {};
    const Qov32u places =
        decodeLevels(src, bit, first, &state->sets[XrCoderState::lowPass], chroma, listOrder, list);
    if (!places) return qovStsData;
    *nonZero = __builtin_popcount(places);
    memcpy(dst, list + first, count * sizeof *dst);
    return qovStsNoErr;
}

template <class T>
void encodeFlex(const T* src, ptrdiff_t step, Qov8u** dst, int* bit, int nBits, int nTrim)
{
    Qov32s block[16];
    readBlock(src, step, block);
    encodeFlexbits(block, dst, bit, nBits, nTrim);
}

template <class T>
void decodeFlex(const Qov8u** src, int* bit, T* dst, ptrdiff_t step, int nBits, int nTrim)
{
    Qov32s block[16];
    readBlock(dst, step, block);
    decodeFlexbits(src, bit, block, nBits, nTrim);
    writeBlock(block, dst, step);
}

void init(XrCoderState* state)
{
    state->mark = XrCoderState::markValue;
    state->highPassScan = XrCoderState::horizontal;
    for (XrTableSet& set : state->sets) initTables(&set);
    for (int i = 0; i < XrCoderState::scanCount; i++) initScan(&state->scans[i], i);
}

} // namespace

extern const XrCoderKernels xrCoderKernels = {
    init,
    resetTotals,
    adaptTables,
    scanDC,
    encodeDC<15>,
    encodeDC<14>,
    encodeDC<6>,
    decodeDC444,
    decodeDCList<14>,
    decodeDCList<6>,
    encodeBlock<Qov32s>,
    encodeBlock<Qov16s>,
    decodeBlock<Qov32s>,
    decodeBlock<Qov16s>,
    encodeFlex<Qov32s>,
    encodeFlex<Qov16s>,
    decodeFlex<Qov32s>,
    decodeFlex<Qov16s>,
};

} // namespace qov::QOV_LEVEL
