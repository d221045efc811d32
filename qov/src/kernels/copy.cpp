#include "copy.h"

#include "planes256.h"

#include <string.h>

namespace qov::QOV_LEVEL {
namespace {

#if defined(__AVX2__)
// From a vector up to what a cache near the processor holds, a plain loop with aligned stores is up to a
// quarter faster than the C library, which chooses among more ways.
inline bool nearBytes(ptrdiff_t n)
{
    return n >= 32 && n <= 1 << 18;
}

// bytes(x) is the vector at place x. The first vector and the last one reach into their neighbours.
template <class Bytes>
inline void storeBytes(Bytes bytes, Qov8u* dst, ptrdiff_t n)
{
    const ptrdiff_t last = n - 32;
    const W end = bytes(last);
    store(dst, bytes(0));
    ptrdiff_t x = 32 - ptrdiff_t((uintptr_t)dst & 31);
    for (; x < last - 96; x += 128) {
        const W four[4] = {bytes(x), bytes(x + 32), bytes(x + 64), bytes(x + 96)};
        for (int i = 0; i < 4; i++) store(dst + x + 32 * i, four[i]);
    }
    for (; x < last; x += 32) store(dst + x, bytes(x));
    store(dst + last, end);
}
#endif

void zeroBytes(Qov8u* dst, ptrdiff_t n)
{
#if defined(__AVX2__)
    if (nearBytes(n)) return storeBytes([](ptrdiff_t) { return all16(0); }, dst, n);
#endif
    memset(dst, 0, size_t(n));
}

void copyBytes(const Qov8u* src, Qov8u* dst, ptrdiff_t n)
{
#if defined(__AVX2__)
    if (nearBytes(n)) return storeBytes([src](ptrdiff_t x) { return load(src + x); }, dst, n);
#endif
    memcpy(dst, src, size_t(n));
}

void copy_8u(const Qov8u* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize roi)
{
    const Rows rows(roi, srcStep == roi.width && dstStep == roi.width);
    for (ptrdiff_t y = 0; y < rows.count; y++) copyBytes(src + y * srcStep, dst + y * dstStep, rows.width);
}

template <int channels>
struct Same {
    static constexpr int sources = channels, destinations = channels;

    template <class T>
    static inline void convert(const T (&in)[channels], T (&out)[channels])
    {
        for (int i = 0; i < channels; i++) out[i] = in[i];
    }
};

// Operations on samples one by one: by 32 from registers to registers, or a single one.
struct Widen {
    typedef Qov8u Src;
    typedef Qov16s Dst;

    Dst one(Src s) const { return s; }
#if defined(QOV_SIMD256)
    struct Vector {
        W low, high;
    };
    static inline W wide16(const Src* src)
    {
        const __m128i bytes = _mm_loadu_si128((const __m128i*)src);
#if defined(__AVX2__)
        return _mm256_cvtepu8_epi16(bytes);
#else
        return {_mm_cvtepu8_epi16(bytes), _mm_unpackhi_epi8(bytes, _mm_setzero_si128())};
#endif
    }
    inline Vector take(const Src* src) const
    {
        return {wide16(src), wide16(src + 16)};
    }
    static inline void put(Vector v, Dst* dst)
    {
        store(dst, v.low);
        store(dst + 16, v.high);
    }
#endif
};

struct Narrow {
    typedef Qov16s Src;
    typedef Qov8u Dst;

    Dst one(Src s) const { return Dst(s < 0 ? 0 : s > 255 ? 255 : s); }
#if defined(QOV_SIMD256)
    typedef W Vector;
    inline Vector take(const Src* src) const
    {
        return crossQwords(packU16(load(src), load(src + 16)));
    }
    static inline void put(Vector v, Dst* dst)
    {
        store(dst, v);
    }
#endif
};

#if defined(QOV_SIMD256)
#if defined(__AVX2__)
inline W shiftedRight(W a, int shift)
{
    return _mm256_sra_epi16(a, _mm_cvtsi32_si128(shift));
}
inline W shiftedLeft(W a, int shift)
{
    return _mm256_sll_epi16(a, _mm_cvtsi32_si128(shift));
}
#else
inline W shiftedRight(W a, int shift)
{
    const __m128i count = _mm_cvtsi32_si128(shift);
    return {_mm_sra_epi16(a.lo, count), _mm_sra_epi16(a.hi, count)};
}
inline W shiftedLeft(W a, int shift)
{
    const __m128i count = _mm_cvtsi32_si128(shift);
    return {_mm_sll_epi16(a.lo, count), _mm_sll_epi16(a.hi, count)};
}
#endif
#endif

template <bool left>
struct Shift {
    typedef Qov16s Src;
    typedef Qov16s Dst;
    int shift;

    Dst one(Src s) const { return Dst(left ? s << shift : s >> shift); }
#if defined(QOV_SIMD256)
    typedef Widen::Vector Vector;
    inline W by16(const Src* src) const
    {
        return left ? shiftedLeft(load(src), shift) : shiftedRight(load(src), shift);
    }
    inline Vector take(const Src* src) const
    {
        return {by16(src), by16(src + 16)};
    }
    static inline void put(Vector v, Dst* dst)
    {
        Widen::put(v, dst);
    }
#endif
};

// `n` samples in vectors, of which the last one ends with the last sample. It is taken before anything is
// written, so that src may be dst.
template <class Operation>
inline void sampleRow(Operation operation, const typename Operation::Src* src, typename Operation::Dst* dst,
                      ptrdiff_t n)
{
    ptrdiff_t x = 0;
#if defined(QOV_SIMD256)
    const ptrdiff_t last = n - 32;
    if (last >= 0) {
        const typename Operation::Vector end = operation.take(src + last);
        for (; x < last; x += 32) operation.put(operation.take(src + x), dst + x);
        operation.put(end, dst + last);
        return;
    }
#endif
    for (; x < n; x++) dst[x] = operation.one(src[x]);
}

template <class Operation>
void samplePicture(const typename Operation::Src* src, ptrdiff_t srcStep, typename Operation::Dst* dst,
                   ptrdiff_t dstStep, QoviSize roi)
{
    const Rows rows(roi, srcStep == roi.width * ptrdiff_t(sizeof *src) &&
                             dstStep == roi.width * ptrdiff_t(sizeof *dst));
    for (ptrdiff_t y = 0; y < rows.count; y++) {
        sampleRow(Operation(), src, dst, rows.width);
        src = atByte(src, srcStep);
        dst = atByte(dst, dstStep);
    }
}

template <bool left>
void shift_16s(const Qov16s* src, int shift, Qov16s* dst, int len)
{
    assert(shift >= 0 && shift < 16 && len > 0);
    sampleRow(Shift<left>{shift}, src, dst, len);
}

} // namespace

const CopyKernels copyKernels = {zeroBytes,
                                 copyBytes,
                                 copy_8u,
                                 splitPicture<Same<3>>,
                                 splitPicture<Same<4>>,
                                 joinPicture<Same<3>>,
                                 joinPicture<Same<4>>,
                                 samplePicture<Widen>,
                                 samplePicture<Narrow>,
                                 shift_16s<false>,
                                 shift_16s<true>};

} // namespace qov::QOV_LEVEL
