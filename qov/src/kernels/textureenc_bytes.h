// One byte of several texture blocks at a time, one block a lane: 1 at px, 16 or 32 of them. AVX-512 would
// gain nothing here: its comparisons leave masks that the counts then had to be made of.
#ifndef QOV_KERNELS_TEXTUREENC_BYTES_H
#define QOV_KERNELS_TEXTUREENC_BYTES_H

#include "family.h"

#if defined(__SSE4_1__)
#include <immintrin.h>
#endif

namespace qov::QOV_LEVEL {
namespace {

#if defined(__SSE4_1__)

#if defined(__AVX2__)
#define QOV_BYTES(op) _mm256_##op
typedef __m256i ByteRegister;
typedef Qov8u Bytes __attribute__((vector_size(32)));
QOV_INLINE Bytes loadBytes(const void* p)
{
    return (Bytes)_mm256_loadu_si256((const __m256i*)p);
}
QOV_INLINE Bytes repeated(const Qov8u p[16])
{
    return (Bytes)_mm256_broadcastsi128_si256(_mm_loadu_si128((const __m128i*)p));
}
QOV_INLINE bool anyBit(Bytes a)
{
    return !_mm256_testz_si256((__m256i)a, (__m256i)a);
}
#else
#define QOV_BYTES(op) _mm_##op
typedef __m128i ByteRegister;
typedef Qov8u Bytes __attribute__((vector_size(16)));
QOV_INLINE Bytes loadBytes(const void* p)
{
    return (Bytes)_mm_loadu_si128((const __m128i*)p);
}
QOV_INLINE Bytes repeated(const Qov8u p[16])
{
    return loadBytes(p);
}
QOV_INLINE bool anyBit(Bytes a)
{
    return !_mm_testz_si128((__m128i)a, (__m128i)a);
}
#endif

#define QOV_BYTES_OP2(name, op)                                                                              \
    QOV_INLINE Bytes name(Bytes a, Bytes b)                                                                  \
    {                                                                                                        \
        return (Bytes)QOV_BYTES(op)((ByteRegister)a, (ByteRegister)b);                                       \
    }
QOV_BYTES_OP2(smaller, min_epu8)
QOV_BYTES_OP2(larger, max_epu8)
QOV_BYTES_OP2(average, avg_epu8) // (a + b + 1) / 2
QOV_BYTES_OP2(equal, cmpeq_epi8) // as masks: all ones or zero
QOV_BYTES_OP2(greaterSigned, cmpgt_epi8)

QOV_INLINE Bytes entries(const Qov8u table[16], Bytes a)
{
    return (Bytes)QOV_BYTES(shuffle_epi8)((ByteRegister)repeated(table), (ByteRegister)a);
}
QOV_INLINE Bytes allBytes(Qov8u x)
{
    return (Bytes)QOV_BYTES(set1_epi8)(char(x));
}
QOV_INLINE Bytes select(Bytes mask, Bytes a, Bytes b)
{
    return (Bytes)QOV_BYTES(blendv_epi8)((ByteRegister)b, (ByteRegister)a, (ByteRegister)mask);
}
template <int n>
QOV_INLINE Bytes shiftLeft(Bytes a)
{
    return (Bytes)QOV_BYTES(slli_epi16)((ByteRegister)a, n) & allBytes(Qov8u(0xFF << n));
}
template <int n>
QOV_INLINE Bytes shiftRight(Bytes a)
{
    return (Bytes)QOV_BYTES(srli_epi16)((ByteRegister)a, n) & allBytes(0xFF >> n);
}

// (k a + l b) / divisor, rounded down.
template <int k, int l, int divisor>
QOV_INLINE Bytes weighted(Bytes a, Bytes b)
{
    const ByteRegister weights = QOV_BYTES(set1_epi16)(short(l << 8 | k));
    const ByteRegister inverse =
        QOV_BYTES(set1_epi16)(65536 / divisor + 1); // exact for sums below 65536 / divisor
    const ByteRegister low = QOV_BYTES(unpacklo_epi8)((ByteRegister)a, (ByteRegister)b);
    const ByteRegister high = QOV_BYTES(unpackhi_epi8)((ByteRegister)a, (ByteRegister)b);
    return (Bytes)QOV_BYTES(packus_epi16)(
        QOV_BYTES(mulhi_epu16)(QOV_BYTES(maddubs_epi16)(low, weights), inverse),
        QOV_BYTES(mulhi_epu16)(QOV_BYTES(maddubs_epi16)(high, weights), inverse));
}

// Sums of squares of bytes below 128.
struct Squares {
    ByteRegister low, high;
};

QOV_INLINE Squares noSquares()
{
    return {(ByteRegister)allBytes(0), (ByteRegister)allBytes(0)};
}
QOV_INLINE Squares addSquares(Squares s, Bytes a, Bytes b)
{
    const ByteRegister low = QOV_BYTES(unpacklo_epi8)((ByteRegister)a, (ByteRegister)b);
    const ByteRegister high = QOV_BYTES(unpackhi_epi8)((ByteRegister)a, (ByteRegister)b);
    return {QOV_BYTES(add_epi16)(s.low, QOV_BYTES(maddubs_epi16)(low, low)),
            QOV_BYTES(add_epi16)(s.high, QOV_BYTES(maddubs_epi16)(high, high))};
}
QOV_INLINE Bytes less(Squares a, Squares b)
{
    return (Bytes)QOV_BYTES(packs_epi16)(QOV_BYTES(cmpgt_epi16)(b.low, a.low),
                                         QOV_BYTES(cmpgt_epi16)(b.high, a.high));
}

// Four registers of dwords a lane, transposed inside each 128 bits.
QOV_INLINE void transposeDwords(const Bytes in[4], Bytes out[4])
{
    ByteRegister r[4];
    __builtin_memcpy(r, in, sizeof r);
    const ByteRegister ab = QOV_BYTES(unpacklo_epi32)(r[0], r[1]), cd = QOV_BYTES(unpacklo_epi32)(r[2], r[3]);
    const ByteRegister ba = QOV_BYTES(unpackhi_epi32)(r[0], r[1]), dc = QOV_BYTES(unpackhi_epi32)(r[2], r[3]);
    out[0] = (Bytes)QOV_BYTES(unpacklo_epi64)(ab, cd);
    out[1] = (Bytes)QOV_BYTES(unpackhi_epi64)(ab, cd);
    out[2] = (Bytes)QOV_BYTES(unpacklo_epi64)(ba, dc);
    out[3] = (Bytes)QOV_BYTES(unpackhi_epi64)(ba, dc);
}

// A pack of two registers takes turns by 128 bits.
QOV_INLINE ByteRegister inOrder(ByteRegister packed)
{
#if defined(__AVX2__)
    return _mm256_permute4x64_epi64(packed, 0xD8);
#else
    return packed;
#endif
}

// One channel of as many texels as there are lanes, in order.
template <int texelBytes, int channel>
QOV_INLINE ByteRegister loadChannel(const Qov8u* src)
{
    constexpr ptrdiff_t size = sizeof(ByteRegister);
    if constexpr (texelBytes == 1) {
        return (ByteRegister)loadBytes(src);
    } else if constexpr (texelBytes == 2) {
        const ByteRegister a = (ByteRegister)loadBytes(src), b = (ByteRegister)loadBytes(src + size);
        if constexpr (channel == 1)
            return inOrder(QOV_BYTES(packus_epi16)(QOV_BYTES(srli_epi16)(a, 8), QOV_BYTES(srli_epi16)(b, 8)));
        const ByteRegister even = QOV_BYTES(set1_epi16)(0xFF);
        return inOrder(QOV_BYTES(packus_epi16)((ByteRegister)((Bytes)a & (Bytes)even),
                                               (ByteRegister)((Bytes)b & (Bytes)even)));
    } else {
        static_assert(texelBytes == 4 && channel == 3);
        ByteRegister words[2];
        for (int i = 0; i < 2; i++) {
            const ByteRegister a = (ByteRegister)loadBytes(src + 2 * i * size),
                               b = (ByteRegister)loadBytes(src + (2 * i + 1) * size);
            words[i] =
                inOrder(QOV_BYTES(packus_epi32)(QOV_BYTES(srli_epi32)(a, 24), QOV_BYTES(srli_epi32)(b, 24)));
        }
        return inOrder(QOV_BYTES(packus_epi16)(words[0], words[1]));
    }
}

// A channel of a row of blocks: out[x] holds the x-th texel of every block. With 32 lanes those of the first
// 128 bits hold blocks 0 to 3, 8 to 11, 16 to 19, 24 to 27, the others the rest.
template <int texelBytes, int channel>
QOV_INLINE void loadColumns(const Qov8u* row, Bytes out[4])
{
    alignas(16) static const Qov8u byColumns[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    Bytes quarter[4];
    for (int i = 0; i < 4; i++) {
        const ByteRegister texels =
            loadChannel<texelBytes, channel>(row + i * ptrdiff_t(sizeof(Bytes)) * texelBytes);
        quarter[i] = (Bytes)QOV_BYTES(shuffle_epi8)(texels, (ByteRegister)repeated(byColumns));
    }
    transposeDwords(quarter, out);
}

// Two blocks of eight bytes, each at the start of `stride` bytes.
template <int stride>
QOV_INLINE void storePair(Qov8u* dst, __m128i blocks)
{
    if constexpr (stride == 8) {
        _mm_storeu_si128((__m128i*)dst, blocks);
    } else {
        _mm_storel_epi64((__m128i*)dst, blocks);
        _mm_storel_epi64((__m128i*)(dst + stride), _mm_unpackhi_epi64(blocks, blocks));
    }
}

// Blocks of eight bytes from lanes, one every `stride` bytes.
template <int stride>
QOV_INLINE void storeBlocks(const Bytes byte[8], Qov8u* dst)
{
    ByteRegister r[8], s[8];
    __builtin_memcpy(r, byte, sizeof r);
    for (int i = 0; i < 4; i++) {
        s[i] = QOV_BYTES(unpacklo_epi8)(r[2 * i], r[2 * i + 1]);
        s[4 + i] = QOV_BYTES(unpackhi_epi8)(r[2 * i], r[2 * i + 1]);
    }
    for (int i = 0; i < 4; i++) {
        r[2 * i] = QOV_BYTES(unpacklo_epi16)(s[2 * i], s[2 * i + 1]);
        r[2 * i + 1] = QOV_BYTES(unpackhi_epi16)(s[2 * i], s[2 * i + 1]);
    }
    // r[0], r[2]: bytes 0 to 3 and 4 to 7 of the first four lanes, r[1], r[3] of the next, and so on.
    for (int quad = 0; quad < 4; quad++) {
        const int from = quad / 2 * 4 + quad % 2;
        const ByteRegister pair[2] = {QOV_BYTES(unpacklo_epi32)(r[from], r[from + 2]),
                                      QOV_BYTES(unpackhi_epi32)(r[from], r[from + 2])};
        for (int i = 0; i < 2; i++) {
#if defined(__AVX2__)
            Qov8u* first = dst + (8 * quad + 2 * i) * stride;
            storePair<stride>(first, _mm256_castsi256_si128(pair[i]));
            storePair<stride>(first + 4 * stride, _mm256_extracti128_si256(pair[i], 1));
#else
            storePair<stride>(dst + (4 * quad + 2 * i) * stride, pair[i]);
#endif
        }
    }
}
#undef QOV_BYTES
#undef QOV_BYTES_OP2

#else

typedef Qov8u Bytes;
typedef int Squares;

QOV_INLINE bool anyBit(Bytes a)
{
    return a;
}
QOV_INLINE Bytes entries(const Qov8u table[16], Bytes a)
{
    return table[a];
}
QOV_INLINE Bytes allBytes(Qov8u x)
{
    return x;
}
QOV_INLINE Bytes smaller(Bytes a, Bytes b)
{
    return a < b ? a : b;
}
QOV_INLINE Bytes larger(Bytes a, Bytes b)
{
    return a > b ? a : b;
}
QOV_INLINE Bytes average(Bytes a, Bytes b)
{
    return Bytes((a + b + 1) / 2);
}
QOV_INLINE Bytes equal(Bytes a, Bytes b)
{
    return a == b ? 0xFF : 0;
}
QOV_INLINE Bytes greaterSigned(Bytes a, Bytes b)
{
    return Qov8s(a) > Qov8s(b) ? 0xFF : 0;
}
QOV_INLINE Bytes select(Bytes mask, Bytes a, Bytes b)
{
    return mask ? a : b;
}
template <int n>
QOV_INLINE Bytes shiftLeft(Bytes a)
{
    return Bytes(a << n);
}
template <int n>
QOV_INLINE Bytes shiftRight(Bytes a)
{
    return Bytes(a >> n);
}
template <int k, int l, int divisor>
QOV_INLINE Bytes weighted(Bytes a, Bytes b)
{
    return Bytes((k * a + l * b) / divisor);
}
QOV_INLINE Squares noSquares()
{
    return 0;
}
QOV_INLINE Squares addSquares(Squares s, Bytes a, Bytes b)
{
    return s + a * a + b * b;
}
QOV_INLINE Bytes less(Squares a, Squares b)
{
    return a < b ? 0xFF : 0;
}
template <int texelBytes, int channel>
QOV_INLINE void loadColumns(const Qov8u* row, Bytes out[4])
{
    for (int x = 0; x < 4; x++) out[x] = row[x * texelBytes + channel];
}
template <int stride>
QOV_INLINE void storeBlocks(const Bytes byte[8], Qov8u* dst)
{
    __builtin_memcpy(dst, byte, 8);
}

#endif

constexpr int byteLanes = sizeof(Bytes);

// One channel of `byteLanes` blocks side by side.
template <int texelBytes, int channel>
QOV_INLINE void loadBlocks(const Qov8u* src, ptrdiff_t step, Bytes texel[16])
{
    for (int y = 0; y < 4; y++) loadColumns<texelBytes, channel>(atByte(src, y * step), texel + 4 * y);
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
