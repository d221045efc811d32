// Adaptive scans of JPEG XR: in which order the coefficients of a block are coded (ITU-T T.832, 8.11).
#ifndef QOV_KERNELS_XRCODER_SCAN_H
#define QOV_KERNELS_XRCODER_SCAN_H

#include "xrcoder.h"

#include <string.h>
#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace qov {
namespace {

const int lastPlace = XrScan::places - 1;

constexpr Qov8u initialOrders[XrCoderState::scanCount][XrScan::places] = {
    {0, 4, 1, 5, 8, 2, 9, 6, 12, 3, 10, 13, 7, 14, 11, 15},
    {0, 1, 2, 5, 4, 3, 6, 9, 8, 7, 12, 15, 13, 10, 11, 14},
    {0, 4, 1, 5, 8, 2, 9, 6, 12, 3, 10, 13, 7, 14, 11, 15}};

QOV_INLINE void resetTotals(XrScan* scan)
{
    scan->totals[0] = 0x7FFFFFFF; // nothing rises above it
    for (int place = 1; place < XrScan::places; place++) scan->totals[place] = Qov32u(34 - 2 * place);
}

QOV_INLINE void initScan(XrScan* scan, int which)
{
    resetTotals(scan);
    memcpy(scan->order, initialOrders[which], sizeof scan->order);
}

// 8.11.6, for the places (bits 1 to 15) of a list's values. A place changes only with the one before, so all
// of the list may be read or written in the order as it was.
QOV_INLINE void countOneByOne(XrScan* scan, Qov32u places)
{
    for (; places; places &= places - 1) {
        const int place = __builtin_ctz(places);
        const Qov32u total = scan->totals[place] + 1, before = scan->totals[place - 1];
        scan->totals[place] = total;
        if (total > before) {
            scan->totals[place] = before;
            scan->totals[place - 1] = total;
            const Qov8u index = scan->order[place];
            scan->order[place] = scan->order[place - 1];
            scan->order[place - 1] = index;
        }
    }
}

#if defined(__AVX2__)

// The totals of 8 places.
QOV_INLINE __m256i loadTotals(const XrScan* scan, int place)
{
    return _mm256_loadu_si256((const __m256i*)((const char*)scan->totals + 4 * place));
}
QOV_INLINE void storeTotals(XrScan* scan, int place, __m256i totals)
{
    _mm256_storeu_si256((__m256i*)((char*)scan->totals + 4 * place), totals);
}

// Ones in the places of 8 whose bits are set.
QOV_INLINE __m256i maskOf(Qov32u places)
{
    const __m256i bit = _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128);
    return _mm256_cmpeq_epi32(_mm256_and_si256(_mm256_set1_epi32(int(places)), bit), bit);
}

QOV_INLINE Qov32u bitsOf(__m256i mask)
{
    return Qov32u(_mm256_movemask_ps(_mm256_castsi256_ps(mask)));
}

// Elements of a block by place.
QOV_INLINE void inOrder(const XrScan* scan, const Qov32s* block, Qov32s* list)
{
    const __m256i low = _mm256_loadu_si256((const __m256i*)block);
    const __m256i high = _mm256_loadu_si256((const __m256i*)(block + 8));
    for (int half = 0; half < 2; half++) {
        Qov64u bytes;
        memcpy(&bytes, scan->order + 8 * half, sizeof bytes);
        const __m256i order = _mm256_cvtepu8_epi32(_mm_cvtsi64_si128((long long)bytes));
        const __m256i fromHigh = _mm256_slli_epi32(order, 28); // bit 3 to the top
        const __m256 elements = _mm256_blendv_ps(
            _mm256_castsi256_ps(_mm256_permutevar8x32_epi32(low, order)),
            _mm256_castsi256_ps(_mm256_permutevar8x32_epi32(high, order)), _mm256_castsi256_ps(fromHigh));
        _mm256_storeu_si256((__m256i*)(list + 8 * half), _mm256_castps_si256(elements));
    }
}

// The places (as bits) of elements that are not 0.
QOV_INLINE Qov32u nonZeroPlaces(const Qov32s* list)
{
    Qov32u zeros = 0;
    for (int half = 0; half < 2; half++) {
        const __m256i x = _mm256_loadu_si256((const __m256i*)list + half);
        zeros |= bitsOf(_mm256_cmpeq_epi32(x, _mm256_setzero_si256())) << 8 * half;
    }
    return zeros ^ 0xFFFF;
}

// The same as one by one, at once if no place rises above the one before.
QOV_INLINE void countPlaces(XrScan* scan, Qov32u places)
{
    const auto counted = [&](int place) {
        return _mm256_sub_epi32(loadTotals(scan, place), maskOf(places >> place));
    };
    const __m256i low = counted(0), high = counted(8);
    const Qov32u above =
        bitsOf(_mm256_cmpgt_epi32(counted(1), low)) << 1 | bitsOf(_mm256_cmpgt_epi32(high, counted(7))) << 8;
    if (above & places) {
        countOneByOne(scan, places);
        return;
    }
    storeTotals(scan, 0, low);
    storeTotals(scan, 8, high);
}

#else

QOV_INLINE void inOrder(const XrScan* scan, const Qov32s* block, Qov32s* list)
{
    for (int place = 0; place < XrScan::places; place++) list[place] = block[scan->order[place]];
}

QOV_INLINE Qov32u nonZeroPlaces(const Qov32s* list)
{
    Qov32u places = 0;
    for (int place = XrScan::places - 1; place >= 0; place--) places = 2 * places + Qov32u(list[place] != 0);
    return places;
}

QOV_INLINE void countPlaces(XrScan* scan, Qov32u places)
{
    countOneByOne(scan, places);
}

#endif

} // namespace
} // namespace qov

#endif
