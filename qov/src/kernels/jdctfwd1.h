// The integer forward transform value by value. Included by jdctfwd.cpp, which tells the arithmetic.

struct Outputs {
    int o[8];
};

// The outputs of 8 values, the first and the fifth without their factor `one`.
Outputs pass(const int s[8])
{
    const int t0 = s[0] + s[7], t1 = s[1] + s[6], t2 = s[2] + s[5], t3 = s[3] + s[4];
    const int d0 = s[0] - s[7], d1 = s[1] - s[6], d2 = s[2] - s[5], d3 = s[3] - s[4];
    const int f0 = t0 - t3, f1 = t1 - t2;
    return {t0 + t1 + t2 + t3, d0 * c1 + d1 * c3 + d2 * c5 + d3 * c7,
            f0 * c2 + f1 * c6, d0 * c3 - d1 * c7 - d2 * c1 - d3 * c5,
            t0 - t1 - t2 + t3, d0 * c5 - d1 * c1 + d2 * c7 + d3 * c3,
            f0 * c6 - f1 * c2, d0 * c7 - d1 * c5 + d2 * c3 - d3 * c1};
}

// 64 samples, level-shifted, to coefficients with `fraction` bits.
void transform(int x[64])
{
    for (int n = 0; n < 64; n += 8) {
        const Outputs row = pass(x + n);
        for (int u = 0; u < 8; u++) x[n + u] = u % 4 ? row.o[u] >> rowShift : row.o[u] * rowOne;
    }
    for (int u = 0; u < 8; u++) {
        int column[8];
        for (int n = 0; n < 8; n++) column[n] = x[8 * n + u];
        const Outputs c = pass(column);
        for (int v = 0; v < 8; v++) x[8 * v + u] = v % 4 ? c.o[v] : c.o[v] * one;
        x[u] += u % 4 ? cutOffMean : 0;
    }
}

void quantiseBlock(const int c[64], Qov16s* dst, const Qov16u* table)
{
    for (int i = 0; i < 64; i++)
        dst[i] = Qov16s(quantise(float(c[i]), stepFactor(fraction) * (table[i] ? table[i] : 1)));
}

void transformShifted(const Qov8u* src, ptrdiff_t srcStep, int x[64])
{
    for (int y = 0; y < 8; y++, src += srcStep)
        for (int i = 0; i < 8; i++) x[8 * y + i] = src[i] - levelShift;
    transform(x);
}

// Without the level shift; only DC knows of it.
void dct_8u16s(const Qov8u* src, ptrdiff_t srcStep, Qov16s* dst)
{
    int c[64];
    transformShifted(src, srcStep, c);
    for (int i = 0; i < 64; i++) dst[i] = Qov16s(quantise(float(c[i]), stepFactor(fraction)));
    dst[0] = Qov16s(shiftedDc(c[0]));
}

void quantShift_8u16s(const Qov8u* src, ptrdiff_t srcStep, Qov16s* dst, const Qov16u* table)
{
    int c[64];
    transformShifted(src, srcStep, c);
    quantiseBlock(c, dst, table);
}

// False if a sample has more than 8 bits.
bool quantNarrow(const Qov16s* src, Qov16s* dst, const Qov16u* table)
{
    int c[64];
    for (int i = 0; i < 64; i++) {
        if (src[i] < -levelShift || src[i] >= levelShift) return false;
        c[i] = src[i];
    }
    transform(c);
    quantiseBlock(c, dst, table);
    return true;
}
