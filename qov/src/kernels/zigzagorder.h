// Blocks brought into zig-zag order, or its reverse, by vectors: words with AVX-512, with SSE4.2 or AVX2
// bytes to which words are packed.
#ifndef QOV_KERNELS_ZIGZAGORDER_H
#define QOV_KERNELS_ZIGZAGORDER_H

#include "simd256.h"
#include "zigzag.h"

namespace qov::QOV_LEVEL {
namespace {

#if defined(__AVX512BW__)

template <bool backward>
struct WordOrder {
    alignas(64) Qov16u index[64];

    constexpr WordOrder() : index{}
    {
        for (int k = 0; k < 64; k++) index[k] = zigzag[backward ? 63 - k : k];
    }
};
template <bool backward>
constexpr WordOrder<backward> wordOrder{};

// 64 words in order.
struct Words {
    __m512i low, high;
};
template <bool backward>
QOV_INLINE Words inZigzag(const Qov16s* src)
{
    const __m512i a = _mm512_loadu_si512(src), b = _mm512_loadu_si512(src + 32);
    const Qov16u* index = wordOrder<backward>.index;
    return {_mm512_permutex2var_epi16(a, _mm512_load_si512(index), b),
            _mm512_permutex2var_epi16(a, _mm512_load_si512(index + 32), b)};
}
QOV_INLINE Qov64u joined(__mmask32 low, __mmask32 high)
{
    return low | Qov64u(high) << 32;
}

#elif defined(QOV_SIMD256)

#if defined(__AVX2__)
QOV_INLINE Qov32u highBits(W bytes)
{
    return Qov32u(_mm256_movemask_epi8(bytes));
}
#else
QOV_INLINE Qov32u highBits(W bytes)
{
    return Qov32u(_mm_movemask_epi8(bytes.lo)) | Qov32u(_mm_movemask_epi8(bytes.hi)) << 16;
}
#endif
QOV_W_OP2(W, equal16, cmpeq_epi16)

// Which byte of a lane of packed rows (see inZigzag) each place takes; 80 hex where it takes none.
template <bool backward>
struct ByteOrder {
    alignas(32) Qov8u index[4][64];

    constexpr ByteOrder() : index{}
    {
        for (int k = 0; k < 64; k++) {
            const int natural = zigzag[backward ? 63 - k : k], row = natural / 8;
            for (int lane = 0; lane < 4; lane++) index[lane][k] = 0x80;
            index[row / 4 * 2 + row % 2][k] = Qov8u(row / 2 % 2 * 8 + natural % 8);
        }
    }
};
template <bool backward>
constexpr ByteOrder<backward> byteOrder{};

// 64 bytes in order.
struct Bytes {
    W low, high;

    Qov64u highBitPlaces() const { return highBits(low) | Qov64u(highBits(high)) << 32; }
};

// Rows 0 to 7, two in each W of words, are packed with signed saturation: lanes 0 2 | 1 3, then 4 6 | 5 7.
template <bool backward>
QOV_INLINE Bytes inZigzag(W rows01, W rows23, W rows45, W rows67)
{
    const W a = packSigned16(rows01, rows23), b = packSigned16(rows45, rows67);
    const W lane[4] = {bothLanes(lowLane(a)), bothLanes(highLane(a)), bothLanes(lowLane(b)),
                       bothLanes(highLane(b))};
    const auto& order = byteOrder<backward>.index;
    W half[2];
    for (int i = 0; i < 2; i++)
        half[i] = either(either(shuffleBytes(lane[0], load(order[0] + 32 * i)),
                                shuffleBytes(lane[1], load(order[1] + 32 * i))),
                         either(shuffleBytes(lane[2], load(order[2] + 32 * i)),
                                shuffleBytes(lane[3], load(order[3] + 32 * i))));
    return {half[0], half[1]};
}

#endif

} // namespace
} // namespace qov::QOV_LEVEL

#endif
