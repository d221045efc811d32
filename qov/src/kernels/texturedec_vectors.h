// Texture blocks in vectors, eight of DXT or BC4 and four of BC5 at a time. What belongs to a block lies in
// one lane, so that a row of texels is one shuffle of the block's palette. Nothing here at px.
#ifndef QOV_KERNELS_TEXTUREDEC_VECTORS_H
#define QOV_KERNELS_TEXTUREDEC_VECTORS_H

#include "planes256.h"

#if defined(QOV_SIMD256)

namespace qov::QOV_LEVEL {
namespace {

QOV_W_OP2(W, mulHighU16, mulhi_epu16) // unsigned (a b) >> 16
QOV_W_OP2(W, greaterThan16, cmpgt_epi16)
QOV_W_OP2(W, equal32, cmpeq_epi32)
QOV_W_OP2(W, maxU32, max_epu32)
QOV_W_IMM1(W, shiftLeft16, slli_epi16)
QOV_W_IMM1(W, shuffleDwords, shuffle_epi32)

// Bytes of a lane as a function of their place, in both lanes: an operand in memory, where a broadcast would
// take registers that are scarce here.
struct Pattern {
    alignas(32) Qov8u byte[32];

    template <class Function>
    constexpr explicit Pattern(Function f) : byte{}
    {
        for (int i = 0; i < 32; i++) byte[i] = Qov8u(f(i % 16));
    }
    inline W all() const
    {
#if defined(__AVX2__)
        return load(byte);
#else
        return bothLanes(_mm_load_si128((const __m128i*)byte));
#endif
    }
};

// Bits of a where those of the mask are clear.
QOV_INLINE W except(W mask, W a)
{
#if defined(__AVX2__)
    return _mm256_andnot_si256(mask, a);
#else
    return {_mm_andnot_si128(mask.lo, a.lo), _mm_andnot_si128(mask.hi, a.hi)};
#endif
}

// The same dword, or the same pair of words or bytes (first, second), in the whole register.
QOV_INLINE W allWordPairs(int first, int second)
{
    return all32(second << 16 | (first & 0xFFFF));
}
QOV_INLINE W allBytePairs(int first, int second)
{
    return all16(Qov16s(second << 8 | first));
}

// ---- Colours

// The palettes of blocks 2i and 2i + 1 in the lanes of palette[i]: four dwords R, G, B, A. `ends` are the end
// points of blocks 0, 2, 4, 6 and 1, 3, 5, 7. Alpha is 0 unless the format has three colours as well as four,
// which is DXT1.
//
// In each channel the dwords hold the words e0 and e1, widened to 8 bits by one product: 33 n / 4, and 65 n /
// 16 for green. With s = e0 + e1 the others are (s + e0) / 3 and (s + e1) / 3, or s / 2 and 0. 21846, which
// is (65536 + 2) / 3, gives the exact thirds of anything below 32768.
template <bool threeColours>
QOV_INLINE void makePalettes(W ends, W (&palette)[4])
{
    static constexpr Pattern otherWord([](int b) { return b ^ 2; });
    W three = all16(0), factor = all16(21846);
    if constexpr (threeColours) {
        const W exchanged = shuffleBytes(ends, otherWord.all());
        three = equal32(maxU32(exchanged, ends), ends);
        factor = selectBytes(three, allWordPairs(32768, 0), factor);
    }
    const W channel[3] = {mulHighU16(both(ends, all16(Qov16s(0xF800))), all16(33 * 8)),
                          mulHighU16(both(ends, all16(0x07E0)), all16(65 * 128)),
                          mulHighU16(shiftLeft16<11>(ends), all16(33 * 8))};
    W between[3];
    for (int i = 0; i < 3; i++) {
        const W e = channel[i], s = add16(e, shuffleBytes(e, otherWord.all()));
        between[i] = mulHighU16(add16(s, threeColours ? except(three, e) : e), factor);
    }
    const W endRg = either(channel[0], shiftLeft16<8>(channel[1]));
    const W betweenRg = either(between[0], shiftLeft16<8>(between[1]));
    W endBa = channel[2], betweenBa = between[2];
    if constexpr (threeColours) {
        const W opaque = allBytePairs(0, 255);
        endBa = either(endBa, opaque);
        betweenBa = either(betweenBa, except(both(three, allWordPairs(0, 0xFFFF)), opaque));
    }
    const W ends02 = lowWords(endRg, endBa), between02 = lowWords(betweenRg, betweenBa);
    const W ends46 = highWords(endRg, endBa), between46 = highWords(betweenRg, betweenBa);
    palette[0] = lowQwords(ends02, between02);
    palette[1] = highQwords(ends02, between02);
    palette[2] = lowQwords(ends46, between46);
    palette[3] = highQwords(ends46, between46);
}

// The indices of blocks 2i and 2i + 1 for lookUp, from those of blocks 0, 2, 4, 6 and 1, 3, 5, 7.
#if defined(__AVX2__)
struct ColourIndices {
    W pair[4]; // the block's 32 bits in every dword

    explicit inline ColourIndices(W bits)
        : pair{shuffleDwords<0x00>(bits), shuffleDwords<0x55>(bits), shuffleDwords<0xAA>(bits),
               shuffleDwords<0xFF>(bits)}
    {
    }
};

// Four texels of either block. The permutation looks at the two lowest bits of each dword only.
template <int row>
QOV_INLINE W lookUp(W palette, W indices)
{
    constexpr int at = 8 * row;
    const W shifts = _mm256_setr_epi32(at, at + 2, at + 4, at + 6, at, at + 2, at + 4, at + 6);
    return asWords(_mm256_permutevar_ps(asFloat(palette), _mm256_srlv_epi32(indices, shifts)));
}
#else
struct ColourIndices {
    W pair[4]; // 4 times the index of each texel, in bytes

    explicit inline ColourIndices(W bits)
    {
        const W nibble = all16(0x0F0F);
        const W low = both(bits, nibble), high = both(shiftRightU16<4>(bits), nibble);
        const W first = lowBytes(low, high), second = highBytes(low, high);
        const W twice[4] = {lowBytes(first, first), highBytes(first, first), lowBytes(second, second),
                            highBytes(second, second)};
        // A texel keeps its half of the nibble, n or 4 n, and both become 4 n.
        static constexpr Pattern fourfold([](int v) { return v < 4 ? 4 * v : v; });
        for (int i = 0; i < 4; i++)
            pair[i] = shuffleBytes(fourfold.all(), both(twice[i], allBytePairs(0x03, 0x0C)));
    }
};

template <int row>
QOV_INLINE W lookUp(W palette, W indices)
{
    static constexpr Pattern spread([](int b) { return 4 * row + b / 4; });
    static constexpr Pattern inDword([](int b) { return b % 4; });
    return shuffleBytes(palette, add16(shuffleBytes(indices, spread.all()), inDword.all()));
}
#endif

// ---- Alpha and single channels: the values of the 16 texels of a block in the bytes of its lane

// Four bits a texel in the first 8 bytes of each lane; 17 n repeats them.
QOV_INLINE W nibbleValues(W blocks)
{
    const W nibble = all16(0x0F0F);
    const W n = lowBytes(both(blocks, nibble), both(shiftRightU16<4>(blocks), nibble));
    return either(n, shiftLeft16<4>(n));
}

// Three bits a texel, in 8 bytes from byte `at` of each lane on. All eight values of either kind of block
// come from weights of a0 and a1, a product and a shift: 9363 = (65536 + 5) / 7 and 13108 = (65536 + 4) / 5
// give the exact quotients of anything below 13107, and 7 * 255 is the most.
template <int at>
QOV_INLINE W interpolatedValues(W blocks)
{
    static constexpr Pattern first([](int b) { return b % 2 ? 0x80 : at; });
    static constexpr Pattern second([](int b) { return b % 2 ? 0x80 : at + 1; });
    static constexpr Pattern endPoints([](int b) { return at + b % 2; });
    // Value k is the sum of a0 with the weight of even bytes and a1 with that of odd ones.
    static constexpr auto weightOf = [](int b, int of, int between) {
        const int k = b / 2;
        const int ofSecond = k < 2 ? k * of : k - 1;
        return k >= 2 + between ? 0 : b % 2 ? ofSecond : of - ofSecond;
    };
    static constexpr Pattern sevenths([](int b) { return weightOf(b, 7, 6); });
    static constexpr Pattern fifths([](int b) { return weightOf(b, 5, 4); });
    static constexpr Pattern full([](int b) { return b == 14 ? 255 : 0; });

    const W eight = greaterThan16(shuffleBytes(blocks, first.all()), shuffleBytes(blocks, second.all()));
    const W weights = selectBytes(eight, sevenths.all(), fifths.all());
    const W factor = selectBytes(eight, all16(9363), all16(13108));
    const W sums = multiplyAddBytes(shuffleBytes(blocks, endPoints.all()), weights);
    const W values = either(mulHighU16(sums, factor), except(eight, full.all()));

    // The index of texel i starts at bit 3i of 48: each word gets the two bytes around it, is shifted until
    // the index is at its top, and back.
    static constexpr auto byteOf = [](int b, int texel) {
        const int start = 3 * (texel + b / 2) / 8 + b % 2;
        return start < 6 ? at + 2 + start : 0x80;
    };
    static constexpr Pattern lowTexels([](int b) { return byteOf(b, 0); });
    static constexpr Pattern highTexels([](int b) { return byteOf(b, 8); });
    static constexpr Pattern toTop([](int b) { return 1 << (13 - 3 * (b / 2) % 8) >> b % 2 * 8; });
    const W low = mulLow16(shuffleBytes(blocks, lowTexels.all()), toTop.all());
    const W high = mulLow16(shuffleBytes(blocks, highTexels.all()), toTop.all());
    const W indices = packU16(shiftRightU16<13>(low), shiftRightU16<13>(high));
    return shuffleBytes(packU16(values, values), indices);
}

// Four values of the row as the alpha of their texels.
template <int row>
QOV_INLINE W alphaOfRow(W values)
{
    static constexpr Pattern spread([](int b) { return b % 4 == 3 ? 4 * row + b / 4 : 0x80; });
    return shuffleBytes(values, spread.all());
}

// ---- Blocks to rows of texels

template <int row>
QOV_INLINE void storeColours(Qov8u* dst, ptrdiff_t step, W palette, W indices)
{
    store(dst + row * step, lookUp<row>(palette, indices));
}
template <int row>
QOV_INLINE void storeColours(Qov8u* dst, ptrdiff_t step, W palette, W indices, W alpha)
{
    store(dst + row * step, either(lookUp<row>(palette, indices), alphaOfRow<row>(alpha)));
}

// Two blocks beside each other, with the values of their alpha or without.
template <class... Alpha>
QOV_INLINE void storePair(Qov8u* dst, ptrdiff_t step, W palette, W indices, Alpha... alpha)
{
    storeColours<0>(dst, step, palette, indices, alpha...);
    storeColours<1>(dst, step, palette, indices, alpha...);
    storeColours<2>(dst, step, palette, indices, alpha...);
    storeColours<3>(dst, step, palette, indices, alpha...);
}

constexpr int pairBytes = 32; // of a row of two RGBA blocks

QOV_INLINE void decodeDxt1Vector(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
{
    const W first = crossQwords(load(src)), second = crossQwords(load(src + 32));
    W palette[4];
    makePalettes<true>(evenDwords(first, second), palette);
    const ColourIndices indices(oddDwords(first, second));
    for (int i = 0; i < 4; i++) storePair(dst + i * pairBytes, step, palette[i], indices.pair[i]);
}

// `values` makes alpha of the first halves of two blocks.
template <W values(W)>
QOV_INLINE void decodeDxtAlphaVector(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
{
    W blocks[4], palette[4];
    for (int i = 0; i < 4; i++) blocks[i] = load(src + 32 * i);
    const W first = highQwords(blocks[0], blocks[1]), second = highQwords(blocks[2], blocks[3]);
    makePalettes<false>(evenDwords(first, second), palette);
    const ColourIndices indices(oddDwords(first, second));
    for (int i = 0; i < 4; i++)
        storePair(dst + i * pairBytes, step, palette[i], indices.pair[i], values(blocks[i]));
}

// Lanes are blocks i and i + 4, and their rows single dwords.
QOV_INLINE void decodeBc4Vector(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
{
    const W first = load(src), second = load(src + 32);
    const W even = crossLowLanes(first, second), odd = crossHighLanes(first, second);
    const W block[4] = {interpolatedValues<0>(even), interpolatedValues<8>(even), interpolatedValues<0>(odd),
                        interpolatedValues<8>(odd)};
    const W top01 = lowDwords(block[0], block[1]), top23 = lowDwords(block[2], block[3]);
    const W bottom01 = highDwords(block[0], block[1]), bottom23 = highDwords(block[2], block[3]);
    store(dst, lowQwords(top01, top23));
    store(dst + step, highQwords(top01, top23));
    store(dst + 2 * step, lowQwords(bottom01, bottom23));
    store(dst + 3 * step, highQwords(bottom01, bottom23));
}

// Lanes are blocks i and i + 2, and their rows single qwords.
QOV_INLINE void decodeBc5Vector(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
{
    const W first = load(src), second = load(src + 32);
    const W even = crossLowLanes(first, second), odd = crossHighLanes(first, second);
    const W evenRed = interpolatedValues<0>(even), evenGreen = interpolatedValues<8>(even);
    const W oddRed = interpolatedValues<0>(odd), oddGreen = interpolatedValues<8>(odd);
    const W evenTop = lowBytes(evenRed, evenGreen), oddTop = lowBytes(oddRed, oddGreen);
    const W evenBottom = highBytes(evenRed, evenGreen), oddBottom = highBytes(oddRed, oddGreen);
    store(dst, lowQwords(evenTop, oddTop));
    store(dst + step, highQwords(evenTop, oddTop));
    store(dst + 2 * step, lowQwords(evenBottom, oddBottom));
    store(dst + 3 * step, highQwords(evenBottom, oddBottom));
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
#endif
