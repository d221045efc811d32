// The integer forward transform in registers of 256 bits, or pairs of 128. Included by jdctfwd.cpp, which
// tells the arithmetic.

// Words of two samples in each dword, one dword a row (row pass) or column (column pass): samples 0 and 1, 3
// and 2, 7 and 6, 4 and 5, so that sums and differences of mirrored samples are word by word.
struct Pairs {
    W s01, s32, s76, s45;
};

struct Factors {
    FactorPair odd[4][2] = {
        {{c1, c3}, {c7, c5}}, {{c3, -c7}, {-c5, -c1}}, {{c5, -c1}, {c3, c7}}, {{c7, -c5}, {-c1, c3}}};
    FactorPair row0{rowOne, rowOne}, row4{rowOne, -rowOne};
    FactorPair even0{one, one}, even2{c2, c6}, even4{one, -one}, even6{c6, -c2};
};
constexpr Factors allFactors;

// The outputs 1, 3, 5, 7 of the differences d0 d1 and d3 d2.
QOV_INLINE void oddOutputs(W d01, W d32, const Factors& f, W o[8])
{
    for (int i = 0; i < 4; i++)
        o[2 * i + 1] = add32(multiplyAdd(d01, f.odd[i][0]), multiplyAdd(d32, f.odd[i][1]));
}

QOV_INLINE void rowPass(const Pairs& s, int dcBias, const Factors& f, W o[8])
{
    const W t01 = add16(s.s01, s.s76), t32 = add16(s.s32, s.s45);
    const W e = add16(t01, t32), d = sub16(t01, t32);
    o[0] = add32(multiplyAdd(e, f.row0), all32(dcBias));
    o[2] = multiplyAdd(d, f.even2);
    o[4] = multiplyAdd(e, f.row4);
    o[6] = multiplyAdd(d, f.even6);
    oddOutputs(sub16(s.s01, s.s76), sub16(s.s32, s.s45), f, o);
    for (int u = 0; u < 8; u++)
        if (u % 4) o[u] = shiftRight32<rowShift>(o[u]);
}

// Sums of four would not fit words here, so the even outputs have four products too.
QOV_INLINE void columnPass(const Pairs& s, const Factors& f, W o[8])
{
    const W t01 = add16(s.s01, s.s76), t32 = add16(s.s32, s.s45);
    const W mean = bothLanes(_mm_setr_epi32(0, cutOffMean, cutOffMean, cutOffMean));
    o[0] = add32(add32(multiplyAdd(t01, f.even0), mean), multiplyAdd(t32, f.even0));
    o[2] = sub32(multiplyAdd(t01, f.even2), multiplyAdd(t32, f.even2));
    o[4] = add32(multiplyAdd(t01, f.even4), multiplyAdd(t32, f.even4));
    o[6] = sub32(multiplyAdd(t01, f.even6), multiplyAdd(t32, f.even6));
    oddOutputs(sub16(s.s01, s.s76), sub16(s.s32, s.s45), f, o);
}

// Outputs of rows 0 1 3 2 | 4 5 7 6, one dword a row, to pairs of rows, one dword a column.
QOV_INLINE Pairs pairRows(const W o[8])
{
    const W a = pack32(o[0], o[1]), b = pack32(o[2], o[3]), c = pack32(o[4], o[5]), d = pack32(o[6], o[7]);
    const W even0 = evenDwords(a, b), even1 = evenDwords(c, d), odd0 = oddDwords(a, b),
            odd1 = oddDwords(c, d);
    return {crossLowLanes(even0, even1), crossLowLanes(odd0, odd1), crossHighLanes(odd0, odd1),
            crossHighLanes(even0, even1)};
}

// c[v]: row v of coefficients with `fraction` bits.
QOV_INLINE void transform(const Pairs& rows, int dcBias, W c[8])
{
    const Factors& f = inMemory(allFactors);
    W o[8];
    rowPass(rows, dcBias, f, o);
    columnPass(pairRows(o), f, c);
}

// Words of rows a and b, alternating.
QOV_INLINE __m128i mixRows(const Qov8u* a, const Qov8u* b)
{
    return _mm_unpacklo_epi16(_mm_loadl_epi64((const __m128i*)a), _mm_loadl_epi64((const __m128i*)b));
}

// Rows in the order that pairRows wants.
QOV_INLINE Pairs pairSamples(const Qov8u* src, ptrdiff_t step)
{
    const Qov8u* below = src + 4 * step;
    const W rows03 = lanes(mixRows(src, src + 3 * step), mixRows(below, below + 3 * step));
    const W rows12 = lanes(mixRows(src + step, src + 2 * step), mixRows(below + step, below + 2 * step));
    const W low = lowWords(rows03, rows12), high = highWords(rows03, rows12); // samples 0 to 3, 4 to 7
    const W swap = bothLanes(_mm_setr_epi8(9, -1, 8, -1, 11, -1, 10, -1, 13, -1, 12, -1, 15, -1, 14, -1));
    return {lowBytes(low, all16(0)), shuffleBytes(low, swap), shuffleBytes(high, swap),
            lowBytes(high, all16(0))};
}

QOV_INLINE W swapWords(W a)
{
    return shuffleBytes(a, bothLanes(_mm_setr_epi8(2, 3, 0, 1, 6, 7, 4, 5, 10, 11, 8, 9, 14, 15, 12, 13)));
}

QOV_INLINE void quantiseBlock(const W c[8], Qov16s* dst, const Qov16u* table)
{
    const W high = all16(stepHigh(fraction));
    for (int v = 0; v < 8; v += 2) {
        const TwoRows steps = widenRows(maxU16(load(table + 8 * v), all16(1)), high);
        store(dst + 8 * v, packRows(quantise(c[v], scaledSteps<fraction>(steps.first)),
                                    quantise(c[v + 1], scaledSteps<fraction>(steps.second))));
    }
}

// Without the level shift; only DC knows of it.
void dct_8u16s(const Qov8u* src, ptrdiff_t srcStep, Qov16s* dst)
{
    W c[8];
    transform(pairSamples(src, srcStep), -dcShift * rowOne, c);
    const int dc = shiftedDc(_mm_cvtsi128_si32(lowLane(c[0])));
    const F whole = allFloat(stepFactor(fraction));
    for (int v = 0; v < 8; v += 2)
        store(dst + 8 * v, packRows(quantise(c[v], whole), quantise(c[v + 1], whole)));
    dst[0] = Qov16s(dc);
}

void quantShift_8u16s(const Qov8u* src, ptrdiff_t srcStep, Qov16s* dst, const Qov16u* table)
{
    W c[8];
    transform(pairSamples(src, srcStep), -dcShift * rowOne, c);
    quantiseBlock(c, dst, table);
}

// False if a sample has more than 8 bits.
QOV_INLINE bool quantNarrow(const Qov16s* src, Qov16s* dst, const Qov16u* table)
{
    const int order[4] = {0, 1, 3, 2};
    W r[4], any = all16(0);
    for (int i = 0; i < 4; i++) {
        const __m128i* row = (const __m128i*)src + order[i];
        r[i] = lanes(_mm_loadu_si128(row), _mm_loadu_si128(row + 4));
        any = either(any, add16(r[i], all16(levelShift)));
    }
    if (!isZero(shiftRight16<8>(any))) return false;

    const W low0 = lowDwords(r[0], r[1]), low1 = lowDwords(r[2], r[3]);
    const W high0 = highDwords(r[0], r[1]), high1 = highDwords(r[2], r[3]);
    W c[8];
    transform({lowQwords(low0, low1), swapWords(highQwords(low0, low1)), swapWords(highQwords(high0, high1)),
               lowQwords(high0, high1)},
              0, c);
    quantiseBlock(c, dst, table);
    return true;
}
