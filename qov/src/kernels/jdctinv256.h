// The integer inverse transform in registers of 256 bits, or pairs of 128. Included by jdctinv.cpp, which
// tells the arithmetic.

struct Factors {
    // Of coefficients 0 and 4 to p and q, of 2 and 6 to u and v, of 1 and 5, 3 and 7 to the odd values.
    FactorPair p{c0, c0}, q{c0, -c0}, u{c2, c6}, v{c6, -c2};
    FactorPair odd[4][2] = {
        {{c1, c5}, {c3, c7}}, {{c3, -c1}, {-c7, -c5}}, {{c5, c7}, {-c1, c3}}, {{c7, c3}, {-c5, -c1}}};
    // Of coefficients 0 and 2, and of 1 and 3, where the others are zero.
    FactorPair even02[4] = {{c0, c2}, {c0, c6}, {c0, -c6}, {c0, -c2}};
    FactorPair odd13[4] = {{c1, c3}, {c3, -c7}, {c5, -c1}, {c7, -c5}};
};
constexpr Factors allFactors;

// Even and odd values to the outputs e + o, e - o.
template <int shift>
QOV_INLINE void combine(const W e[4], const W o[4], W x[8])
{
    for (int i = 0; i < 4; i++) {
        x[i] = shiftRight32<shift>(add32(e[i], o[i]));
        x[7 - i] = shiftRight32<shift>(sub32(e[i], o[i]));
    }
}

// Words of two coefficients in each dword, one dword a row (row pass) or a column (column pass).
struct Pairs {
    W a04, a26, a15, a37;
};

template <int shift>
QOV_INLINE void pass(const Pairs& a, int bias, const Factors& f, W x[8])
{
    const W p = add32(multiplyAdd(a.a04, f.p), all32(bias)), q = add32(multiplyAdd(a.a04, f.q), all32(bias));
    const W u = multiplyAdd(a.a26, f.u), v = multiplyAdd(a.a26, f.v);
    const W e[4] = {add32(p, u), add32(q, v), sub32(q, v), sub32(p, u)};
    W o[4];
    for (int i = 0; i < 4; i++)
        o[i] = add32(multiplyAdd(a.a15, f.odd[i][0]), multiplyAdd(a.a37, f.odd[i][1]));
    combine<shift>(e, o, x);
}

// What sends a block to the wide transform.
struct Limits {
    W largest = all16(0); // magnitude of the middle values
    W outside = all16(0); // not zero where a product needs more than 15 bits

    // A step above 32767 counts as 32767 in the check: the product is outside all the same, unless the
    // coefficient is 0.
    W product(W c, W steps)
    {
        outside = either(outside, mulRound16(c, minU16(steps, all16(32767))));
        return mulLow16(c, steps);
    }
    void middle(W x) { largest = maxU16(largest, abs16(x)); }
    bool kept() const { return isZero(either(outside, subSaturateU16(largest, all16(middleLimit)))); }
};

QOV_INLINE bool onlyDc(Corner<8>, const Qov16s* src)
{
    // Most blocks with more than DC have something right beside it.
    Qov64u first;
    memcpy(&first, src, sizeof first);
    if (first >> 16) return false;
    const W ac = lanes(_mm_setr_epi16(0, -1, -1, -1, -1, -1, -1, -1), _mm_set1_epi16(-1));
    return isZero(
        either(either(both(load(src), ac), load(src + 16)), either(load(src + 32), load(src + 48))));
}

template <class Out>
QOV_INLINE bool narrow(Corner<8>, const Qov16s* src, Out out, const Qov16u* table)
{
    // Within a row: coefficients 0 and 4, 2 and 6, 1 and 5, 3 and 7.
    const W order = bothLanes(_mm_setr_epi8(0, 1, 8, 9, 4, 5, 12, 13, 2, 3, 10, 11, 6, 7, 14, 15));
    const Factors& f = inMemory(allFactors);
    Limits limits;
    W a[4], x[8];
    for (int i = 0; i < 4; i++)
        a[i] = shuffleBytes(limits.product(load(src + 16 * i), load(table + 16 * i)), order);

    // One dword a row, in the order 0 4 2 6 | 1 5 3 7.
    const W even04 = lowDwords(a[0], a[2]), even26 = lowDwords(a[1], a[3]);
    const W odd04 = highDwords(a[0], a[2]), odd26 = highDwords(a[1], a[3]);
    pass<rowShift>({lowQwords(even04, even26), highQwords(even04, even26), lowQwords(odd04, odd26),
                    highQwords(odd04, odd26)},
                   1 << (rowShift - 1), f, x);

    W two[4];
    for (int i = 0; i < 4; i++) {
        two[i] = pack32(x[2 * i], x[2 * i + 1]);
        limits.middle(two[i]);
    }
    if (!limits.kept()) return false;

    // Rows 0 4 | 1 5 and 2 6 | 3 7 of columns 0 to 3 and 4 to 7.
    const W first0 = evenDwords(two[0], two[1]), first1 = evenDwords(two[2], two[3]);
    const W second0 = oddDwords(two[0], two[1]), second1 = oddDwords(two[2], two[3]);
    pass<columnShift>({crossLowLanes(first0, first1), crossLowLanes(second0, second1),
                       crossHighLanes(first0, first1), crossHighLanes(second0, second1)},
                      columnBias(Out::shift), f, x);
    out.putAll(x);
    return true;
}

// The low 4x4 words of a block, rows 0 1 | 2 3.
QOV_INLINE W loadCorner4(const void* block)
{
    const Qov16u* p = (const Qov16u*)block;
    __m128i row[4];
    for (int v = 0; v < 4; v++) row[v] = _mm_loadl_epi64((const __m128i*)(p + 8 * v));
    return lanes(_mm_unpacklo_epi64(row[0], row[1]), _mm_unpacklo_epi64(row[2], row[3]));
}

// The same, of which only 2x2 are read and the others are zero.
QOV_INLINE W loadCorner2(const void* block)
{
    int row[2];
    memcpy(&row[0], block, sizeof row[0]);
    memcpy(&row[1], (const Qov16u*)block + 8, sizeof row[1]);
    return lanes(_mm_unpacklo_epi64(_mm_cvtsi32_si128(row[0]), _mm_cvtsi32_si128(row[1])),
                 _mm_setzero_si128());
}

QOV_INLINE W loadCorner(Corner<4>, const void* block)
{
    return loadCorner4(block);
}
QOV_INLINE W loadCorner(Corner<2>, const void* block)
{
    return loadCorner2(block);
}

template <int size>
QOV_INLINE bool onlyDc(Corner<size> corner, const Qov16s* src)
{
    const W ac = lanes(_mm_setr_epi16(0, -1, -1, -1, -1, -1, -1, -1), _mm_set1_epi16(-1));
    return isZero(both(loadCorner(corner, src), ac));
}

QOV_INLINE __m128i multiplyAdd(__m128i a, const FactorPair& f)
{
    return _mm_madd_epi16(a, _mm_load_si128((const __m128i*)f.word));
}

// Coefficients outside the 4x4 corner are zero: half of the products fall away.
template <int size, class Out>
QOV_INLINE bool narrow(Corner<size> corner, const Qov16s* src, Out out, const Qov16u* table)
{
    // Within a row coefficients 0 and 2, 1 and 3; one dword a row, in the order 0 2 1 3.
    const W order = bothLanes(_mm_setr_epi8(0, 1, 4, 5, 2, 3, 6, 7, 8, 9, 12, 13, 10, 11, 14, 15));
    const Factors& f = inMemory(allFactors);
    Limits limits;
    const W a = shuffleBytes(limits.product(loadCorner(corner, src), loadCorner(corner, table)), order);
    const __m128i rows02 = _mm_unpacklo_epi32(lowLane(a), highLane(a));
    const __m128i rows13 = _mm_unpackhi_epi32(lowLane(a), highLane(a));
    const __m128i row02 = _mm_unpacklo_epi64(rows02, rows13), row13 = _mm_unpackhi_epi64(rows02, rows13);
    __m128i x[8];
    for (int i = 0; i < 4; i++) {
        const __m128i half = _mm_set1_epi32(1 << (rowShift - 1)), o = multiplyAdd(row13, f.odd13[i]);
        const __m128i e = _mm_add_epi32(multiplyAdd(row02, f.even02[i]), half);
        x[i] = _mm_srai_epi32(_mm_add_epi32(e, o), rowShift);
        x[7 - i] = _mm_srai_epi32(_mm_sub_epi32(e, o), rowShift);
    }

    const W left = lanes(_mm_packs_epi32(x[0], x[1]), _mm_packs_epi32(x[4], x[5]));
    const W right = lanes(_mm_packs_epi32(x[2], x[3]), _mm_packs_epi32(x[6], x[7]));
    limits.middle(left);
    limits.middle(right);
    if (!limits.kept()) return false;

    const W a02 = evenDwords(left, right), a13 = oddDwords(left, right);
    W e[4], o[4], samples[8];
    for (int i = 0; i < 4; i++) {
        e[i] = add32(multiplyAdd(a02, f.even02[i]), all32(columnBias(Out::shift)));
        o[i] = multiplyAdd(a13, f.odd13[i]);
    }
    combine<columnShift>(e, o, samples);
    out.putAll(samples);
    return true;
}
