// How samples come into the numbers and vectors of a filter, and leave them.
#ifndef QOV_KERNELS_WAVELET_VECTORS_H
#define QOV_KERNELS_WAVELET_VECTORS_H

#include "wavelet_filters.h"

namespace qov::QOV_LEVEL {
namespace {

// The numbers before those of `now`, the first of which is the last one of `before`.
template <class V>
QOV_INLINE V previous(V before, V)
{
    return before;
}

// Elements that follow each other: fetch(p, V()) gives as many as V holds, keep takes them.
template <class V, class T>
QOV_INLINE V fetch(const T* p, V)
{
    return get<V>(p);
}
QOV_INLINE Qov64s fetch(const Qov16s* p, Qov64s)
{
    return *p;
}
QOV_INLINE Qov64s fetch(const Qov32s* p, Qov64s)
{
    return *p;
}
template <class T, class V>
QOV_INLINE void keep(T* p, V v)
{
    put(p, v);
}
template <class T>
QOV_INLINE void keep(T* p, Qov64s v)
{
    *p = T(v);
}

// Elements that alternate.
template <class T, class V>
QOV_INLINE void split(const T* p, V& first, V& second)
{
    first = fetch(p, V());
    second = fetch(p + 1, V());
}
template <class T, class V>
QOV_INLINE void join(T* p, V first, V second)
{
    keep(p, first);
    keep(p + 1, second);
}

#if defined(QOV_SIMD256)

#if defined(__AVX2__)
typedef __m256i Bits;
QOV_INLINE Bits loadLanes(const void* first, const void* second)
{
    return lanes(_mm_loadu_si128((const __m128i*)first), _mm_loadu_si128((const __m128i*)second));
}
template <int bytes>
QOV_INLINE Bits previousBits(Bits before, Bits now)
{
#if defined(__AVX512VL__) && defined(__AVX512BW__)
    const Bits places = _mm256_setr_epi16(15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30);
    if constexpr (bytes == 2) return _mm256_permutex2var_epi16(before, places, now);
    if constexpr (bytes == 4) return _mm256_alignr_epi32(now, before, 7);
    if constexpr (bytes == 8) return _mm256_alignr_epi64(now, before, 3);
#endif
    return _mm256_alignr_epi8(now, crossHighAndLow(before, now), 16 - bytes);
}
// Dwords or words 0, 2, ... and 1, 3, ... from p on.
#if defined(__AVX512VL__) && defined(__AVX512BW__)
QOV_INLINE void splitDwords(const char* p, Bits& even, Bits& odd)
{
    const Bits a = load(p), b = load(p + 32);
    even = _mm256_permutex2var_epi32(a, _mm256_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14), b);
    odd = _mm256_permutex2var_epi32(a, _mm256_setr_epi32(1, 3, 5, 7, 9, 11, 13, 15), b);
}
QOV_INLINE void splitWords(const char* p, Bits& even, Bits& odd)
{
    const Bits order = _mm256_setr_epi16(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
    const Bits a = load(p), b = load(p + 32);
    even = _mm256_permutex2var_epi16(a, order, b);
    odd = _mm256_permutex2var_epi16(a, _mm256_add_epi16(order, all16(1)), b);
}
QOV_INLINE void joinDwords(char* p, Bits even, Bits odd)
{
    const Bits order = _mm256_setr_epi32(0, 8, 1, 9, 2, 10, 3, 11);
    store(p, _mm256_permutex2var_epi32(even, order, odd));
    store(p + 32, _mm256_permutex2var_epi32(even, add32(order, all32(4)), odd));
}
QOV_INLINE void joinWords(char* p, Bits even, Bits odd)
{
    const Bits order = _mm256_setr_epi16(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
    store(p, _mm256_permutex2var_epi16(even, order, odd));
    store(p + 32, _mm256_permutex2var_epi16(even, add16(order, all16(8)), odd));
}
#else
QOV_INLINE void splitDwords(const char* p, Bits& even, Bits& odd)
{
    const Bits a = loadLanes(p, p + 32), b = loadLanes(p + 16, p + 48);
    even = evenDwords(a, b);
    odd = oddDwords(a, b);
}
QOV_INLINE void splitWords(const char* p, Bits& even, Bits& odd)
{
    const Bits order = bothLanes(_mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15));
    const Bits a = shuffleBytes(loadLanes(p, p + 32), order);
    const Bits b = shuffleBytes(loadLanes(p + 16, p + 48), order);
    even = lowQwords(a, b);
    odd = highQwords(a, b);
}
QOV_INLINE void joinHalves(char* p, Bits low, Bits high)
{
    store(p, crossLowLanes(low, high));
    store(p + 32, crossHighLanes(low, high));
}
QOV_INLINE void joinDwords(char* p, Bits even, Bits odd)
{
    joinHalves(p, lowDwords(even, odd), highDwords(even, odd));
}
QOV_INLINE void joinWords(char* p, Bits even, Bits odd)
{
    joinHalves(p, lowWords(even, odd), highWords(even, odd));
}
#endif
#else
typedef __m128i Bits;
template <int bytes>
QOV_INLINE Bits previousBits(Bits before, Bits now)
{
    return _mm_alignr_epi8(now, before, 16 - bytes);
}
QOV_INLINE void splitDwords(const char* p, Bits& even, Bits& odd)
{
    const Bits a = get<Bits>(p), b = get<Bits>(p + 16);
    even = shuffleDwords(a, b, false);
    odd = shuffleDwords(a, b, true);
}
QOV_INLINE void splitWords(const char* p, Bits& even, Bits& odd)
{
    const Bits order = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
    const Bits a = _mm_shuffle_epi8(get<Bits>(p), order), b = _mm_shuffle_epi8(get<Bits>(p + 16), order);
    even = _mm_unpacklo_epi64(a, b);
    odd = _mm_unpackhi_epi64(a, b);
}
QOV_INLINE void joinDwords(char* p, Bits even, Bits odd)
{
    put(p, _mm_unpacklo_epi32(even, odd));
    put(p + 16, _mm_unpackhi_epi32(even, odd));
}
QOV_INLINE void joinWords(char* p, Bits even, Bits odd)
{
    put(p, _mm_unpacklo_epi16(even, odd));
    put(p + 16, _mm_unpackhi_epi16(even, odd));
}
#endif

QOV_INLINE Vector16s previous(Vector16s before, Vector16s now)
{
    return (Vector16s)previousBits<2>((Bits)before, (Bits)now);
}
QOV_INLINE Vector32s previous(Vector32s before, Vector32s now)
{
    return (Vector32s)previousBits<4>((Bits)before, (Bits)now);
}
QOV_INLINE Vector32f previous(Vector32f before, Vector32f now)
{
    return (Vector32f)previousBits<4>((Bits)before, (Bits)now);
}
QOV_INLINE Doubles previous(Doubles before, Doubles now)
{
    return (Doubles)previousBits<8>((Bits)before, (Bits)now);
}

template <class T, class V>
QOV_INLINE void splitVectors(const T* p, V& even, V& odd)
{
    Bits e, o;
    if constexpr (sizeof(T) == 2)
        splitWords((const char*)p, e, o);
    else
        splitDwords((const char*)p, e, o);
    even = (V)e;
    odd = (V)o;
}
template <class T, class V>
QOV_INLINE void joinVectors(T* p, V even, V odd)
{
    if constexpr (sizeof(T) == 2)
        joinWords((char*)p, (Bits)even, (Bits)odd);
    else
        joinDwords((char*)p, (Bits)even, (Bits)odd);
}
#define QOV_SPLIT_AND_JOIN(T, V)                                                                             \
    QOV_INLINE void split(const T* p, V& even, V& odd)                                                       \
    {                                                                                                        \
        splitVectors(p, even, odd);                                                                          \
    }                                                                                                        \
    QOV_INLINE void join(T* p, V even, V odd)                                                                \
    {                                                                                                        \
        joinVectors(p, even, odd);                                                                           \
    }
QOV_SPLIT_AND_JOIN(Qov16s, Vector16s)
QOV_SPLIT_AND_JOIN(Qov32s, Vector32s)
QOV_SPLIT_AND_JOIN(Qov32f, Vector32f)
#undef QOV_SPLIT_AND_JOIN

// Words in 32 bits, saturated when they leave them.
#if defined(__AVX2__)
QOV_INLINE Vector32s fetch(const Qov16s* p, Vector32s)
{
    return (Vector32s)widenSigned(get<__m128i>(p));
}
QOV_INLINE void keepHalves(Qov16s* low, Qov16s* high, Vector32s l, Vector32s h)
{
    const Bits both = crossQwords(pack32((Bits)l, (Bits)h));
    put(low, lowLane(both));
    put(high, highLane(both));
}
QOV_INLINE void join(Qov16s* p, Vector32s even, Vector32s odd)
{
    const __m128i order = _mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
    put(p, shuffleBytes(pack32((Bits)even, (Bits)odd), bothLanes(order)));
}
#else
QOV_INLINE Vector32s fetch(const Qov16s* p, Vector32s)
{
    return (Vector32s)_mm_cvtepi16_epi32(_mm_loadl_epi64((const __m128i*)p));
}
QOV_INLINE void keepHalves(Qov16s* low, Qov16s* high, Vector32s l, Vector32s h)
{
    const Bits both = _mm_packs_epi32((Bits)l, (Bits)h);
    _mm_storel_epi64((__m128i*)low, both);
    _mm_storeh_pi((__m64*)high, _mm_castsi128_ps(both));
}
QOV_INLINE void join(Qov16s* p, Vector32s even, Vector32s odd)
{
    const __m128i e = _mm_packs_epi32((Bits)even, (Bits)even), o = _mm_packs_epi32((Bits)odd, (Bits)odd);
    put(p, _mm_unpacklo_epi16(e, o));
}
#endif
QOV_INLINE void split(const Qov16s* p, Vector32s& even, Vector32s& odd)
{
    const Vector32s pairs = get<Vector32s>(p);
    even = (pairs << 16) >> 16;
    odd = pairs >> 16;
}

// Numbers of 32 bits in words, saturated.
#if defined(__AVX2__)
QOV_INLINE Vector16s narrowed(Vector32s a, Vector32s b)
{
    return (Vector16s)crossQwords(pack32((Bits)a, (Bits)b));
}
QOV_INLINE void keepWidened(Qov32s* p, __m128i words)
{
    put(p, widenSigned(words));
}
QOV_INLINE void keep(Qov32s* p, Vector16s v)
{
    keepWidened(p, lowLane((Bits)v));
    keepWidened(p + 8, highLane((Bits)v));
}
QOV_INLINE void join(Qov32s* p, Vector16s even, Vector16s odd)
{
    const Bits low = lowWords((Bits)even, (Bits)odd), high = highWords((Bits)even, (Bits)odd);
    keepWidened(p, lowLane(low));
    keepWidened(p + 8, lowLane(high));
    keepWidened(p + 16, highLane(low));
    keepWidened(p + 24, highLane(high));
}
#else
QOV_INLINE Vector16s narrowed(Vector32s a, Vector32s b)
{
    return (Vector16s)_mm_packs_epi32((Bits)a, (Bits)b);
}
QOV_INLINE void keep(Qov32s* p, Vector16s v)
{
    put(p, _mm_cvtepi16_epi32((Bits)v));
    put(p + 4, _mm_cvtepi16_epi32(_mm_unpackhi_epi64((Bits)v, (Bits)v)));
}
QOV_INLINE void join(Qov32s* p, Vector16s even, Vector16s odd)
{
    keep(p, (Vector16s)_mm_unpacklo_epi16((Bits)even, (Bits)odd));
    keep(p + 8, (Vector16s)_mm_unpackhi_epi16((Bits)even, (Bits)odd));
}
#endif
QOV_INLINE Vector16s fetch(const Qov32s* p, Vector16s)
{
    return narrowed(get<Vector32s>(p), get<Vector32s>(p + Holds<Vector32s>::count));
}
QOV_INLINE void split(const Qov32s* p, Vector16s& even, Vector16s& odd)
{
    Vector32s evens[2], odds[2];
    for (int i = 0; i < 2; i++) split(p + 2 * i * Holds<Vector32s>::count, evens[i], odds[i]);
    even = narrowed(evens[0], evens[1]);
    odd = narrowed(odds[0], odds[1]);
}

QOV_INLINE bool anyBits(Bits v)
{
#if defined(__AVX2__)
    return !_mm256_testz_si256(v, v);
#else
    return !_mm_testz_si128(v, v);
#endif
}

// The least and the largest, lane by lane, of numbers and 0.
template <class V>
class Range {
public:
    template <int n>
    QOV_INLINE_MEMBER void add(const V (&v)[n])
    {
        for (int i = 0; i < n; i++) {
            m_least = v[i] < m_least ? v[i] : m_least;
            m_largest = v[i] > m_largest ? v[i] : m_largest;
        }
    }
    // A row of a vector at least.
    template <class T>
    QOV_INLINE_MEMBER void addRow(const T* row, ptrdiff_t count)
    {
        if (count >= 4 * atOnce)
            addParts<4>(row, count);
        else
            addParts<1>(row, count);
    }
    // Whether all are from ~largest to largest.
    QOV_INLINE_MEMBER bool within(int largest) const
    {
        typedef typename Holds<V>::Number T;
        return !anyBits((Bits)((m_least < T(~largest)) | (m_largest > T(largest))));
    }

private:
    static constexpr ptrdiff_t atOnce = Holds<V>::count;

    template <int parts, class T>
    QOV_INLINE_MEMBER void addParts(const T* row, ptrdiff_t count)
    {
        constexpr ptrdiff_t step = parts * atOnce;
        for (ptrdiff_t x = 0; x < count; x += step) {
            const T* const p = row + (x < count - step ? x : count - step);
            V v[parts];
            for (int i = 0; i < parts; i++) v[i] = get<V>(p + i * atOnce);
            add(v);
        }
    }

    V m_least{}, m_largest{};
};

// Whole numbers in doubles, within the range of their type.
QOV_INLINE Doubles fetch(const Qov32s* p, Doubles)
{
    return widen(p);
}
#if defined(__AVX2__)
QOV_INLINE __m128i wholeNumbers(Doubles v)
{
    return _mm256_cvtpd_epi32(v);
}
QOV_INLINE void keep(Qov32s* p, Doubles v)
{
    put(p, wholeNumbers(v));
}
QOV_INLINE void splitDoubles(__m256i evenThenOdd, Doubles& even, Doubles& odd)
{
    even = _mm256_cvtepi32_pd(lowLane(evenThenOdd));
    odd = _mm256_cvtepi32_pd(highLane(evenThenOdd));
}
QOV_INLINE void split(const Qov32s* p, Doubles& even, Doubles& odd)
{
    splitDoubles(_mm256_permutevar8x32_epi32(load(p), _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7)), even, odd);
}
QOV_INLINE void join(Qov32s* p, Doubles even, Doubles odd)
{
    const __m128i e = wholeNumbers(even), o = wholeNumbers(odd);
    put(p, _mm_unpacklo_epi32(e, o));
    put(p + 4, _mm_unpackhi_epi32(e, o));
}
#else
QOV_INLINE __m128i wholeNumbers(Doubles even, Doubles odd)
{
    return _mm_unpacklo_epi32(_mm_cvtpd_epi32(even), _mm_cvtpd_epi32(odd));
}
QOV_INLINE void keep(Qov32s* p, Doubles v)
{
    _mm_storel_epi64((__m128i*)p, _mm_cvtpd_epi32(v));
}
QOV_INLINE void splitDoubles(__m128i evenThenOdd, Doubles& even, Doubles& odd)
{
    even = _mm_cvtepi32_pd(evenThenOdd);
    odd = _mm_cvtepi32_pd(_mm_unpackhi_epi64(evenThenOdd, evenThenOdd));
}
QOV_INLINE void split(const Qov32s* p, Doubles& even, Doubles& odd)
{
    splitDoubles(_mm_shuffle_epi32(get<__m128i>(p), 0xD8), even, odd);
}
QOV_INLINE void join(Qov32s* p, Doubles even, Doubles odd)
{
    put(p, wholeNumbers(even, odd));
}
#endif

#endif

// Elements of two rows.
template <class T, class V>
QOV_INLINE void keepHalves(T* low, T* high, V l, V h)
{
    keep(low, l);
    keep(high, h);
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
