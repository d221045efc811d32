#include "jadd.h"

#if defined(__SSE4_1__)
#include <immintrin.h>
#endif

namespace qov::QOV_LEVEL {
namespace {

// A shift turns samples one by one, or `width` of them at a time in a vector. Any alignment.
// Add128: dst = saturate8u(src + 128). Sub128: dst = src - 128.
struct Add128 {
    typedef Qov16s Src;
    typedef Qov8u Dst;

    static Qov8u one(Qov16s s)
    {
        const int sum = s + 128;
        return Qov8u(sum < 0 ? 0 : sum > 255 ? 255 : sum);
    }

#if defined(__SSE4_1__)
    static inline __m128i sum8(const Qov16s* src)
    {
        return _mm_adds_epi16(_mm_loadu_si128((const __m128i*)src), _mm_set1_epi16(128));
    }
    static inline void by8(const Qov16s* src, Qov8u* dst)
    {
        const __m128i s = sum8(src);
        _mm_storel_epi64((__m128i*)dst, _mm_packus_epi16(s, s));
    }
    static inline void by16(const Qov16s* src, Qov8u* dst)
    {
        _mm_storeu_si128((__m128i*)dst, _mm_packus_epi16(sum8(src), sum8(src + 8)));
    }
#endif
#if defined(__AVX2__)
    static inline void by32(const Qov16s* src, Qov8u* dst)
    {
        const __m256i c = _mm256_set1_epi16(128);
        const __m256i a = _mm256_adds_epi16(_mm256_loadu_si256((const __m256i*)src), c);
        const __m256i b = _mm256_adds_epi16(_mm256_loadu_si256((const __m256i*)(src + 16)), c);
        const __m256i packed = _mm256_packus_epi16(a, b); // a and b take turns by 64 bits
        _mm256_storeu_si256((__m256i*)dst, _mm256_permute4x64_epi64(packed, 0xD8));
    }
#endif
#if defined(__AVX512BW__)
    static inline void by64(const Qov16s* src, Qov8u* dst)
    {
        const __m512i c = _mm512_set1_epi16(128);
        const __m512i a = _mm512_adds_epi16(_mm512_loadu_si512(src), c);
        const __m512i b = _mm512_adds_epi16(_mm512_loadu_si512(src + 32), c);
        const __m512i order = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), packed = _mm512_packus_epi16(a, b);
        // The form without a mask makes gcc 12 warn of its own header.
        _mm512_storeu_si512(dst, _mm512_maskz_permutexvar_epi64(0xFF, order, packed));
    }
#endif
};

struct Sub128 {
    typedef Qov8u Src;
    typedef Qov16s Dst;

    static Qov16s one(Qov8u s) { return Qov16s(s - 128); }

#if defined(__SSE4_1__)
    static inline void by8(const Qov8u* src, Qov16s* dst)
    {
        const __m128i wide = _mm_cvtepu8_epi16(_mm_loadl_epi64((const __m128i*)src));
        _mm_storeu_si128((__m128i*)dst, _mm_sub_epi16(wide, _mm_set1_epi16(128)));
    }
    static inline void by16(const Qov8u* src, Qov16s* dst)
    {
        by8(src, dst);
        by8(src + 8, dst + 8);
    }
#endif
#if defined(__AVX2__)
    static inline void by32(const Qov8u* src, Qov16s* dst)
    {
        for (int i = 0; i < 32; i += 16) {
            const __m256i wide = _mm256_cvtepu8_epi16(_mm_loadu_si128((const __m128i*)(src + i)));
            _mm256_storeu_si256((__m256i*)(dst + i), _mm256_sub_epi16(wide, _mm256_set1_epi16(128)));
        }
    }
#endif
#if defined(__AVX512BW__)
    static inline void by64(const Qov8u* src, Qov16s* dst)
    {
        for (int i = 0; i < 64; i += 32) {
            const __m512i wide = _mm512_cvtepu8_epi16(_mm256_loadu_si256((const __m256i*)(src + i)));
            _mm512_storeu_si512(dst + i, _mm512_sub_epi16(wide, _mm512_set1_epi16(128)));
        }
    }
#endif
};

template <class Shift>
using Step = void(const typename Shift::Src*, typename Shift::Dst*);

// `n` samples in vectors of `width`, n >= width. The last vector ends with the last sample: it writes some
// samples again, with the same values.
template <class Shift, int width, Step<Shift>* step>
inline void byVectors(const typename Shift::Src* src, typename Shift::Dst* dst, ptrdiff_t n)
{
    ptrdiff_t x = 0;
    for (; x <= n - width; x += width) step(src + x, dst + x);
    if (x < n) step(src + n - width, dst + n - width);
}

template <class Shift>
inline void shiftRow(const typename Shift::Src* src, typename Shift::Dst* dst, ptrdiff_t n)
{
#if defined(__AVX512BW__)
    if (n >= 64) return byVectors<Shift, 64, Shift::by64>(src, dst, n);
#endif
#if defined(__AVX2__)
    if (n >= 32) return byVectors<Shift, 32, Shift::by32>(src, dst, n);
#endif
#if defined(__SSE4_1__)
    if (n >= 16) return byVectors<Shift, 16, Shift::by16>(src, dst, n);
    if (n >= 8) return byVectors<Shift, 8, Shift::by8>(src, dst, n);
#endif
    for (ptrdiff_t x = 0; x < n; x++) dst[x] = Shift::one(src[x]);
}

// Steps in bytes; any alignment; roi not empty; src and dst apart.
template <class Shift>
void shiftPicture(const typename Shift::Src* src, ptrdiff_t srcStep, typename Shift::Dst* dst,
                  ptrdiff_t dstStep, QoviSize roi)
{
    assert(roi.width > 0 && roi.height > 0);
    const ptrdiff_t width = roi.width;
    if (srcStep == width * ptrdiff_t(sizeof *src) && dstStep == width * ptrdiff_t(sizeof *dst)) {
        shiftRow<Shift>(src, dst, width * roi.height);
        return;
    }
    for (int y = 0; y < roi.height; y++) {
        shiftRow<Shift>(src, dst, width);
        src = atByte(src, srcStep);
        dst = atByte(dst, dstStep);
    }
}

} // namespace

const AddKernels addKernels = {shiftPicture<Add128>, shiftPicture<Sub128>};

} // namespace qov::QOV_LEVEL
