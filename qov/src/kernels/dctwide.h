// 8x8 transforms in single precision, for samples and coefficients of up to 16 bits and more. Plain loops
// over the columns, so that the compiler makes vectors of them; every level performs the same operations in
// the same order and has the same bits (no contraction to fused multiply-add).
#ifndef QOV_KERNELS_DCTWIDE_H
#define QOV_KERNELS_DCTWIDE_H

#include "dctconst.h"
#include "family.h"

namespace qov::QOV_LEVEL {

QOV_INLINE void transpose(float x[64])
{
    for (int i = 0; i < 8; i++)
        for (int k = 0; k < i; k++) {
            const float t = x[8 * i + k];
            x[8 * i + k] = x[8 * k + i];
            x[8 * k + i] = t;
        }
}

// 8 columns, each scaled by sqrt(8).
QOV_INLINE void forwardColumns(float x[64])
{
    const float c1 = float(dctCos[1]), c2 = float(dctCos[2]), c3 = float(dctCos[3]);
    const float c5 = float(dctCos[5]), c6 = float(dctCos[6]), c7 = float(dctCos[7]);
    for (int i = 0; i < 8; i++) {
        float* s = x + i;
        const float t0 = s[0] + s[56], t1 = s[8] + s[48], t2 = s[16] + s[40], t3 = s[24] + s[32];
        const float d0 = s[0] - s[56], d1 = s[8] - s[48], d2 = s[16] - s[40], d3 = s[24] - s[32];
        const float e0 = t0 + t3, e1 = t1 + t2, f0 = t0 - t3, f1 = t1 - t2;
        s[0] = e0 + e1;
        s[8] = (d0 * c1 + d1 * c3) + (d2 * c5 + d3 * c7);
        s[16] = f0 * c2 + f1 * c6;
        s[24] = (d0 * c3 - d1 * c7) - (d2 * c1 + d3 * c5);
        s[32] = e0 - e1;
        s[40] = (d0 * c5 - d1 * c1) + (d2 * c7 + d3 * c3);
        s[48] = f0 * c6 - f1 * c2;
        s[56] = (d0 * c7 - d1 * c5) + (d2 * c3 - d3 * c1);
    }
}

// The inverse of 8 columns, scaled by sqrt(8).
QOV_INLINE void inverseColumns(float x[64])
{
    const float c1 = float(dctCos[1]), c2 = float(dctCos[2]), c3 = float(dctCos[3]);
    const float c5 = float(dctCos[5]), c6 = float(dctCos[6]), c7 = float(dctCos[7]);
    for (int i = 0; i < 8; i++) {
        float* a = x + i;
        const float p = a[0] + a[32], q = a[0] - a[32];
        const float u = a[16] * c2 + a[48] * c6, v = a[16] * c6 - a[48] * c2;
        const float e0 = p + u, e1 = q + v, e2 = q - v, e3 = p - u;
        const float a1 = a[8], a3 = a[24], a5 = a[40], a7 = a[56];
        const float o0 = (a1 * c1 + a3 * c3) + (a5 * c5 + a7 * c7);
        const float o1 = (a1 * c3 - a3 * c7) - (a5 * c1 + a7 * c5);
        const float o2 = (a1 * c5 - a3 * c1) + (a5 * c7 + a7 * c3);
        const float o3 = (a1 * c7 - a3 * c5) + (a5 * c3 - a7 * c1);
        a[0] = e0 + o0;
        a[8] = e1 + o1;
        a[16] = e2 + o2;
        a[24] = e3 + o3;
        a[32] = e3 - o3;
        a[40] = e2 - o2;
        a[48] = e1 - o1;
        a[56] = e0 - o0;
    }
}

// The inverse of 4 columns of 4 values, scaled by 2.
QOV_INLINE void inverse4Columns(float x[16])
{
    const float c2 = float(dctCos[2]), c6 = float(dctCos[6]);
    for (int i = 0; i < 4; i++) {
        float* a = x + i;
        const float e0 = a[0] + a[8], e1 = a[0] - a[8];
        const float o0 = a[4] * c2 + a[12] * c6, o1 = a[4] * c6 - a[12] * c2;
        a[0] = e0 + o0;
        a[4] = e1 + o1;
        a[8] = e1 - o1;
        a[12] = e0 - o0;
    }
}

// x to 8 times its coefficients.
QOV_INLINE void forwardWide(float x[64])
{
    transpose(x);
    forwardColumns(x);
    transpose(x);
    forwardColumns(x);
}

// x to 8 times its samples.
QOV_INLINE void inverseWide(float x[64])
{
    transpose(x);
    inverseColumns(x);
    transpose(x);
    inverseColumns(x);
}

// To the nearest 16-bit integer, halves away from zero. Limited before the conversion, which raises no flag
// then.
QOV_INLINE Qov16s nearest16s(float x)
{
    const float half = x < 0 ? -0.5f : 0.5f;
    float v = x + half;
    v = v < 32767.0f ? v : 32767.0f;
    v = v > -32768.0f ? v : -32768.0f;
    return Qov16s(int(v));
}

// Steps of a caller's table as numbers that raise no flag: what is below 2^-20 (zero, denormal, negative)
// counts as `lowest`, what is above 2^20 (infinite, no number) as 2^20. Compared as integers, in the order of
// positive floats.
enum { noStep = 0, smallestStep = 0x35800000, largestStep = 0x49800000 };
QOV_INLINE void limitSteps(const Qov32f* table, float steps[64], int lowest)
{
    int bits[64];
    __builtin_memcpy(bits, table, sizeof bits);
    for (int i = 0; i < 64; i++) {
        const int b = bits[i] < smallestStep ? lowest : bits[i];
        bits[i] = b < largestStep ? b : largestStep;
    }
    __builtin_memcpy(steps, bits, sizeof bits);
}

} // namespace qov::QOV_LEVEL

#endif
