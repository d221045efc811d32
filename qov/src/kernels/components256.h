// Registers of 16- and 32-bit elements for pictures of three components: vector types with the operators of
// the language, so that one formula serves elements and registers, the way between interleaved pixels and
// planes, and whole numbers in double precision. Nothing here at px.
#ifndef QOV_KERNELS_COMPONENTS256_H
#define QOV_KERNELS_COMPONENTS256_H

#include "planes256.h"

#if defined(QOV_SIMD256)

namespace qov::QOV_LEVEL {
namespace {

#if defined(__AVX2__)
constexpr int registerBytes = 32;
#else
constexpr int registerBytes = 16;
#endif
typedef Qov16s Vector16s __attribute__((vector_size(registerBytes)));
typedef Qov16u Vector16u __attribute__((vector_size(registerBytes)));
typedef Qov32s Vector32s __attribute__((vector_size(registerBytes)));
typedef Qov32u Vector32u __attribute__((vector_size(registerBytes)));
typedef Qov32f Vector32f __attribute__((vector_size(registerBytes)));

typedef double Doubles __attribute__((vector_size(registerBytes)));
constexpr int doublesAtOnce = registerBytes / 8;

// The vector of elements of type T.
template <class T>
struct Register;
template <>
struct Register<Qov16s> {
    typedef Vector16s Type;
};
template <>
struct Register<Qov32s> {
    typedef Vector32s Type;
};
template <>
struct Register<Qov32f> {
    typedef Vector32f Type;
};

// Pixels of three elements of `bytes` bytes. Of the chunks of planes256.h, place p of chunk k holds component
// (places * k + p) % 3, so a component takes each place from one chunk only, and pixel i of component c is at
// place (3 i + c) % places.
template <int bytes>
struct Thirds {
    static constexpr int places = 16 / bytes; // of a lane: 4 or 8, and 3 is its own inverse modulo both
    static_assert(3 * 3 % places == 1);

    static constexpr LaneBytes every(int rest) // places p with p % 3 == rest
    {
        return LaneBytes([=](int b) { return b / bytes % 3 == rest ? 255 : 0; });
    }
    static constexpr LaneBytes gather(int c)
    {
        return LaneBytes([=](int b) { return (3 * (b / bytes) + c) % places * bytes + b % bytes; });
    }
    static constexpr LaneBytes spread(int c)
    {
        return LaneBytes([=](int b) { return 3 * (b / bytes + places - c) % places * bytes + b % bytes; });
    }
    static constexpr LaneBytes everyThird[3] = {every(0), every(1), every(2)};
    static constexpr LaneBytes gatherThird[3] = {gather(0), gather(1), gather(2)};
    static constexpr LaneBytes spreadThird[3] = {spread(0), spread(1), spread(2)};
};

template <class T>
inline void splitComponents(const T* pixels, W (&out)[3])
{
    typedef Thirds<sizeof(T)> To;
    W chunk[3];
    loadChunks((const Qov8u*)pixels, chunk);
    for (int c = 0; c < 3; c++) {
        const W later = selectBytes(constant(To::everyThird[(c + 2 * To::places) % 3]), chunk[1], chunk[2]);
        out[c] = shuffleBytes(selectBytes(constant(To::everyThird[c]), chunk[0], later),
                              constant(To::gatherThird[c]));
    }
}

template <class T>
inline void joinComponents(const W (&in)[3], T* pixels)
{
    typedef Thirds<sizeof(T)> From;
    W spread[3], chunk[3];
    for (int c = 0; c < 3; c++) spread[c] = shuffleBytes(in[c], constant(From::spreadThird[c]));
    for (int k = 0; k < 3; k++) {
        const int first = From::places * k % 3;
        const W later =
            selectBytes(constant(From::everyThird[1]), spread[(first + 1) % 3], spread[(first + 2) % 3]);
        chunk[k] = selectBytes(constant(From::everyThird[0]), spread[first], later);
    }
    storeChunks((Qov8u*)pixels, chunk);
}

// Numbers of 32 bits in double precision, and back: rounded by the current mode and limited.
#if defined(__AVX2__)
inline Doubles widen(const Qov32s* p)
{
    return _mm256_cvtepi32_pd(_mm_loadu_si128((const __m128i*)p));
}
inline void narrow(Doubles v, Qov32s* p)
{
    v = _mm256_min_pd(_mm256_max_pd(v, _mm256_set1_pd(-2147483648.0)), _mm256_set1_pd(2147483647.0));
    _mm_storeu_si128((__m128i*)p, _mm256_cvtpd_epi32(v));
}
#else
inline Doubles widen(const Qov32s* p)
{
    return _mm_cvtepi32_pd(_mm_loadl_epi64((const __m128i*)p));
}
inline void narrow(Doubles v, Qov32s* p)
{
    v = _mm_min_pd(_mm_max_pd(v, _mm_set1_pd(-2147483648.0)), _mm_set1_pd(2147483647.0));
    _mm_storel_epi64((__m128i*)p, _mm_cvtpd_epi32(v));
}
#endif

} // namespace
} // namespace qov::QOV_LEVEL

#endif
#endif
