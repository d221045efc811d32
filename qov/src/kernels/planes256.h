// Pictures of 8-bit pixels, interleaved or planar on either side, through a conversion:
//
//   struct Conversion {
//       static constexpr int sources, destinations;
//       static void convert(const T (&in)[sources], T (&out)[destinations]);
//   };
//
// where T is Qov8u, for one pixel, and W, for 32 of them, a register a channel.
#ifndef QOV_KERNELS_PLANES256_H
#define QOV_KERNELS_PLANES256_H

#include "planes.h"
#include "simd256.h"

namespace qov::QOV_LEVEL {
namespace {

#if defined(QOV_SIMD256)

constexpr int pixelsAtOnce = 32;

// One lane of constant bytes, as a function of their place.
struct LaneBytes {
    alignas(16) Qov8u byte[16];

    template <class Function>
    constexpr explicit LaneBytes(Function f) : byte{}
    {
        for (int i = 0; i < 16; i++) byte[i] = Qov8u(f(i));
    }
};
inline W constant(const LaneBytes& lane)
{
    return bothLanes(_mm_load_si128((const __m128i*)lane.byte));
}

// Bits of a where the mask is set, else of b; every byte of the mask is 0 or 255.
inline W selectBytes(W mask, W a, W b)
{
#if defined(__AVX512VL__)
    return _mm256_ternarylogic_epi64(mask, a, b, 0xCA);
#elif defined(__AVX2__)
    return _mm256_blendv_epi8(b, a, mask);
#else
    return {_mm_blendv_epi8(b.lo, a.lo, mask.lo), _mm_blendv_epi8(b.hi, a.hi, mask.hi)};
#endif
}

// Dwords 0 and 1, or dwords 0 and 2, of each lane of a; the others of b.
inline W firstDwords(W a, W b)
{
#if defined(__AVX2__)
    return _mm256_blend_epi32(a, b, 0xCC);
#else
    return {_mm_blend_epi16(a.lo, b.lo, 0xF0), _mm_blend_epi16(a.hi, b.hi, 0xF0)};
#endif
}
inline W alternateDwords(W a, W b)
{
#if defined(__AVX2__)
    return _mm256_blend_epi32(a, b, 0xAA);
#else
    return {_mm_blend_epi16(a.lo, b.lo, 0xCC), _mm_blend_epi16(a.hi, b.hi, 0xCC)};
#endif
}
// Dword i of each lane comes from dword (i + n) % 4.
template <int n>
inline W rotateDwords(W a)
{
    constexpr int order = n | (n + 1) % 4 << 2 | (n + 2) % 4 << 4 | (n + 3) % 4 << 6;
#if defined(__AVX2__)
    return _mm256_shuffle_epi32(a, order);
#else
    return {_mm_shuffle_epi32(a.lo, order), _mm_shuffle_epi32(a.hi, order)};
#endif
}

// Lane 0 of a and lane 1 of b, or lane 1 of a and lane 0 of b.
inline W lowAndHigh(W a, W b)
{
#if defined(__AVX2__)
    return _mm256_blend_epi32(a, b, 0xF0);
#else
    return {a.lo, b.hi};
#endif
}
inline W crossHighAndLow(W a, W b)
{
#if defined(__AVX2__)
    return _mm256_permute2x128_si256(a, b, 0x21);
#else
    return {a.hi, b.lo};
#endif
}

// 32 interleaved pixels are worked on as `channels` chunks: lane 0 of chunk k is bytes 16 k to 16 k + 15 of
// the first 16 pixels, lane 1 those of the second.
inline void loadChunks(const Qov8u* src, W (&chunk)[3])
{
    const W a = load(src), b = load(src + 32), c = load(src + 64);
    chunk[0] = lowAndHigh(a, b);
    chunk[1] = crossHighAndLow(a, c);
    chunk[2] = lowAndHigh(b, c);
}
inline void storeChunks(Qov8u* dst, const W (&chunk)[3])
{
    store(dst, crossLowLanes(chunk[0], chunk[1]));
    store(dst + 32, lowAndHigh(chunk[2], chunk[0]));
    store(dst + 64, crossHighLanes(chunk[1], chunk[2]));
}
template <int channels>
inline void loadChunks(const Qov8u* src, W (&chunk)[channels])
{
    for (int k = 0; k < channels; k++) {
        const __m128i* p = (const __m128i*)src + k;
        chunk[k] = lanes(_mm_loadu_si128(p), _mm_loadu_si128(p + channels));
    }
}
template <int channels>
inline void storeChunks(Qov8u* dst, const W (&chunk)[channels])
{
    for (int k = 0; k < channels; k += 2) {
        store(dst + 16 * k, crossLowLanes(chunk[k], chunk[k + 1]));
        store(dst + 16 * (channels + k), crossHighLanes(chunk[k], chunk[k + 1]));
    }
}

// Three channels: byte p of chunk k belongs to channel (p + k) % 3, so a channel takes each place p from one
// chunk only, and pixel i of channel c is at place (3 i + c) % 16.
constexpr LaneBytes everyThird[3] = {LaneBytes([](int p) { return p % 3 == 0 ? 255 : 0; }),
                                     LaneBytes([](int p) { return p % 3 == 1 ? 255 : 0; }),
                                     LaneBytes([](int p) { return p % 3 == 2 ? 255 : 0; })};
constexpr LaneBytes gatherThird[3] = {LaneBytes([](int i) { return 3 * i % 16; }),
                                      LaneBytes([](int i) { return (3 * i + 1) % 16; }),
                                      LaneBytes([](int i) { return (3 * i + 2) % 16; })};
constexpr LaneBytes spreadThird[3] = {LaneBytes([](int p) { return 11 * p % 16; }), // 3 * 11 % 16 = 1
                                      LaneBytes([](int p) { return 11 * (p + 15) % 16; }),
                                      LaneBytes([](int p) { return 11 * (p + 14) % 16; })};

inline void splitChunks(const W (&chunk)[3], W (&out)[3])
{
    for (int c = 0; c < 3; c++) {
        const W later = selectBytes(constant(everyThird[(c + 2) % 3]), chunk[1], chunk[2]);
        out[c] =
            shuffleBytes(selectBytes(constant(everyThird[c]), chunk[0], later), constant(gatherThird[c]));
    }
}

inline void joinChunks(const W (&in)[3], W (&chunk)[3])
{
    W spread[3];
    for (int c = 0; c < 3; c++) spread[c] = shuffleBytes(in[c], constant(spreadThird[c]));
    for (int k = 0; k < 3; k++) {
        const W later = selectBytes(constant(everyThird[1]), spread[(k + 1) % 3], spread[(k + 2) % 3]);
        chunk[k] = selectBytes(constant(everyThird[0]), spread[k], later);
    }
}

// Four channels: chunk k is ordered into dwords of one channel each, that of channel c at (c + k) % 4. Then a
// channel takes each dword from another chunk, and a chunk from another channel.
constexpr LaneBytes groupFour[4] = {LaneBytes([](int p) { return p / 4 + p % 4 * 4; }),
                                    LaneBytes([](int p) { return (p / 4 + 3) % 4 + p % 4 * 4; }),
                                    LaneBytes([](int p) { return (p / 4 + 2) % 4 + p % 4 * 4; }),
                                    LaneBytes([](int p) { return (p / 4 + 1) % 4 + p % 4 * 4; })};
constexpr LaneBytes ungroupFour[4] = {LaneBytes([](int p) { return p % 4 * 4 + p / 4; }),
                                      LaneBytes([](int p) { return (p + 1) % 4 * 4 + p / 4; }),
                                      LaneBytes([](int p) { return (p + 2) % 4 * 4 + p / 4; }),
                                      LaneBytes([](int p) { return (p + 3) % 4 * 4 + p / 4; })};

// Dword (i + k) % 4 of a[k] goes to dword (i + k) % 4 of a[i].
inline void exchangeDwords(W (&a)[4])
{
    const W even0 = firstDwords(a[0], a[2]), even2 = firstDwords(a[2], a[0]);
    const W odd0 = firstDwords(a[1], a[3]), odd2 = firstDwords(a[3], a[1]);
    a[0] = alternateDwords(even0, odd0);
    a[1] = alternateDwords(odd2, even0);
    a[2] = alternateDwords(even2, odd2);
    a[3] = alternateDwords(odd0, even2);
}

inline void splitChunks(const W (&chunk)[4], W (&out)[4])
{
    for (int k = 0; k < 4; k++) out[k] = shuffleBytes(chunk[k], constant(groupFour[k]));
    exchangeDwords(out);
    out[1] = rotateDwords<1>(out[1]);
    out[2] = rotateDwords<2>(out[2]);
    out[3] = rotateDwords<3>(out[3]);
}

inline void joinChunks(const W (&in)[4], W (&chunk)[4])
{
    chunk[0] = in[0];
    chunk[1] = rotateDwords<3>(in[1]);
    chunk[2] = rotateDwords<2>(in[2]);
    chunk[3] = rotateDwords<1>(in[3]);
    exchangeDwords(chunk);
    for (int k = 0; k < 4; k++) chunk[k] = shuffleBytes(chunk[k], constant(ungroupFour[k]));
}

template <int channels>
inline void splitChannels(const Qov8u* src, W (&out)[channels])
{
    W chunk[channels];
    loadChunks(src, chunk);
    splitChunks(chunk, out);
}

template <int channels>
inline void joinChannels(const W (&in)[channels], Qov8u* dst)
{
    W chunk[channels];
    joinChunks(in, chunk);
    storeChunks(dst, chunk);
}

#endif

// The vectors of a row; the last one ends with the last pixel and so may write some pixels again. A row
// shorter than a vector goes pixel by pixel.
template <class Row>
inline void convertRow(const Row& row, ptrdiff_t width)
{
#if defined(QOV_SIMD256)
    if (const ptrdiff_t last = width - pixelsAtOnce; last >= 0) {
        for (ptrdiff_t x = 0; x < width; x += pixelsAtOnce) row.vector(x < last ? x : last);
        return;
    }
#endif
    for (ptrdiff_t x = 0; x < width; x++) row.one(x);
}

// As convertRow, for rows of pairs of pixels, of which an odd width has half of one.
template <class Row>
inline void convertPairs(const Row& row, ptrdiff_t width)
{
    const ptrdiff_t even = width & ~ptrdiff_t(1);
    ptrdiff_t x = 0;
#if defined(QOV_SIMD256)
    if (const ptrdiff_t last = even - pixelsAtOnce; last >= 0)
        for (; x < even; x += pixelsAtOnce) row.vector(x < last ? x : last);
#endif
    for (; x < even; x += 2) row.pair(x);
    if (even < width) row.lastOdd(even);
}

// A side of a row: where the samples of pixel x lie, or those of the vector that starts there.
template <class T, int channels>
struct InterleavedRow {
    T* pixels;

    static ptrdiff_t bytes(ptrdiff_t width) { return width * channels; }
    inline void next(ptrdiff_t step) { pixels += step; }
    inline void get(ptrdiff_t x, Qov8u (&to)[channels]) const
    {
        for (int i = 0; i < channels; i++) to[i] = pixels[x * channels + i];
    }
    inline void put(ptrdiff_t x, const Qov8u (&from)[channels]) const
    {
        for (int i = 0; i < channels; i++) pixels[x * channels + i] = from[i];
    }
#if defined(QOV_SIMD256)
    inline void get(ptrdiff_t x, W (&to)[channels]) const
    {
        splitChannels(pixels + x * channels, to);
    }
    inline void put(ptrdiff_t x, const W (&from)[channels]) const
    {
        joinChannels(from, pixels + x * channels);
    }
#endif
};

template <class T, int channels>
struct PlanarRow {
    T* plane[channels];

    explicit PlanarRow(T* const planes[])
    {
        for (int i = 0; i < channels; i++) plane[i] = planes[i];
    }
    static ptrdiff_t bytes(ptrdiff_t width) { return width; }
    inline void next(ptrdiff_t step)
    {
        for (T*& p : plane) p += step;
    }
    inline void get(ptrdiff_t x, Qov8u (&to)[channels]) const
    {
        for (int i = 0; i < channels; i++) to[i] = plane[i][x];
    }
    inline void put(ptrdiff_t x, const Qov8u (&from)[channels]) const
    {
        for (int i = 0; i < channels; i++) plane[i][x] = from[i];
    }
#if defined(QOV_SIMD256)
    inline void get(ptrdiff_t x, W (&to)[channels]) const
    {
        for (int i = 0; i < channels; i++) to[i] = load(plane[i] + x);
    }
    inline void put(ptrdiff_t x, const W (&from)[channels]) const
    {
        for (int i = 0; i < channels; i++) store(plane[i] + x, from[i]);
    }
#endif
};

template <class Conversion, class Source, class Destination>
struct ConvertedRow {
    Source src;
    Destination dst;

    template <class T>
    inline void convert(ptrdiff_t x) const
    {
        T in[Conversion::sources], out[Conversion::destinations];
        src.get(x, in);
        Conversion::convert(in, out);
        dst.put(x, out);
    }
    inline void one(ptrdiff_t x) const { convert<Qov8u>(x); }
#if defined(QOV_SIMD256)
    inline void vector(ptrdiff_t x) const
    {
        convert<W>(x);
    }
#endif
};

// Rows without gaps between them are one row.
struct Rows {
    ptrdiff_t width, count;

    Rows(QoviSize roi, bool gapless) : width(roi.width), count(roi.height)
    {
        assert(roi.width > 0 && roi.height > 0);
        if (gapless) {
            width *= count;
            count = 1;
        }
    }
};

template <class Conversion, class Source, class Destination>
inline void convertPicture(Source src, ptrdiff_t srcStep, Destination dst, ptrdiff_t dstStep, QoviSize roi)
{
    const Rows rows(roi, srcStep == Source::bytes(roi.width) && dstStep == Destination::bytes(roi.width));
    ConvertedRow<Conversion, Source, Destination> row = {src, dst};
    for (ptrdiff_t y = 0; y < rows.count; y++) {
        convertRow(row, rows.width);
        row.src.next(srcStep);
        row.dst.next(dstStep);
    }
}

template <class Conversion>
void splitPicture(const Qov8u* src, ptrdiff_t srcStep, Qov8u* const dst[], ptrdiff_t dstStep, QoviSize roi)
{
    typedef InterleavedRow<const Qov8u, Conversion::sources> Source;
    typedef PlanarRow<Qov8u, Conversion::destinations> Destination;
    convertPicture<Conversion>(Source{src}, srcStep, Destination(dst), dstStep, roi);
}

template <class Conversion>
void joinPicture(const Qov8u* const src[], ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize roi)
{
    typedef PlanarRow<const Qov8u, Conversion::sources> Source;
    typedef InterleavedRow<Qov8u, Conversion::destinations> Destination;
    convertPicture<Conversion>(Source(src), srcStep, Destination{dst}, dstStep, roi);
}

template <class Conversion>
void convertPlanes(const Qov8u* const src[], ptrdiff_t srcStep, Qov8u* const dst[], ptrdiff_t dstStep,
                   QoviSize roi)
{
    typedef PlanarRow<const Qov8u, Conversion::sources> Source;
    typedef PlanarRow<Qov8u, Conversion::destinations> Destination;
    convertPicture<Conversion>(Source(src), srcStep, Destination(dst), dstStep, roi);
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
