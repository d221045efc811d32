#include "wt97fwdrow.h"

#include "wt97const.h"

#include "qovi.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

namespace jpeg2000 {

namespace {

using Const = WT97Const<float>;

// Rows below this length have no inner part; the edges of longer ones do not reach each other's.
constexpr unsigned shortest = 8;

float lift(float target, float constant, float before, float behind)
{
    return target + constant * (before + behind);
}

// The finished samples at one end of a row, from the end inwards.
struct Edge {
    float low[2], high[3];
};

// The end where x[0] is a low sample, the next one lying `next` elements on: two samples of either half.
Edge edgeFromLow(const float* x, ptrdiff_t next)
{
    const auto at = [&](ptrdiff_t i) { return x[i * next]; };
    const float a1 = lift(at(1), Const::ALPHA, at(0), at(2));
    const float a3 = lift(at(3), Const::ALPHA, at(2), at(4));
    const float a5 = lift(at(5), Const::ALPHA, at(4), at(6));
    const float b0 = at(0) + Const::BETAx2 * a1;
    const float b2 = lift(at(2), Const::BETA, a1, a3);
    const float b4 = lift(at(4), Const::BETA, a3, a5);
    const float g1 = lift(a1, Const::GAMMA, b0, b2);
    const float g3 = lift(a3, Const::GAMMA, b2, b4);
    const float d0 = b0 + Const::DELTAx2 * g1;
    const float d2 = lift(b2, Const::DELTA, g1, g3);
    return {{d0 * Const::KL, d2 * Const::KL}, {g1 * Const::KH, g3 * Const::KH, 0}};
}

// The end where x[0] is a high sample: two low and three high samples.
Edge edgeFromHigh(const float* x, ptrdiff_t next)
{
    const auto at = [&](ptrdiff_t i) { return x[i * next]; };
    const float a0 = at(0) + Const::ALPHAx2 * at(1);
    const float a2 = lift(at(2), Const::ALPHA, at(1), at(3));
    const float a4 = lift(at(4), Const::ALPHA, at(3), at(5));
    const float a6 = lift(at(6), Const::ALPHA, at(5), at(7));
    const float b1 = lift(at(1), Const::BETA, a0, a2);
    const float b3 = lift(at(3), Const::BETA, a2, a4);
    const float b5 = lift(at(5), Const::BETA, a4, a6);
    const float g0 = a0 + Const::GAMMAx2 * b1;
    const float g2 = lift(a2, Const::GAMMA, b1, b3);
    const float g4 = lift(a4, Const::GAMMA, b3, b5);
    const float d1 = lift(b1, Const::DELTA, g0, g2);
    const float d3 = lift(b3, Const::DELTA, g2, g4);
    return {{d1 * Const::KL, d3 * Const::KL}, {g0 * Const::KH, g2 * Const::KH, g4 * Const::KH}};
}

// `half` points behind the half's last sample.
void putBackwards(const float* samples, unsigned n, float* half)
{
    for (unsigned i = 0; i < n; i++) *--half = samples[i];
}

void putLastSamples(const float* last, bool isLow, float* lowEnd, float* highEnd)
{
    const Edge edge = isLow ? edgeFromLow(last, -1) : edgeFromHigh(last, -1);
    putBackwards(edge.low, 2, lowEnd);
    putBackwards(edge.high, isLow ? 1 : 2, highEnd);
}

// nOfPairs (0 is allowed) from the low sample src[0] on, with four samples before them and three behind.
void innerPairs(const float* src, float* low, float* high, unsigned nOfPairs)
{
    if (nOfPairs == 0) return;
    const int halfBytes = static_cast<int>(nOfPairs * sizeof(float));
    qoviWTFwdRow_D97_JPEG2K_32f_C1R(src, 2 * halfBytes, low, halfBytes, high, halfBytes,
                                    RectSize{nOfPairs, 1});
}

// 2 to shortest - 1 samples, of which src[firstHigh] is the first high one.
void shortRow(const float* src, unsigned size, unsigned firstHigh, float* low, float* high)
{
    float w[shortest];
    std::memcpy(w, src, size * sizeof(float));
    unsigned target = firstHigh;
    for (const float step : {Const::ALPHA, Const::BETA, Const::GAMMA, Const::DELTA}) {
        for (unsigned i = target; i < size; i += 2)
            w[i] = lift(w[i], step, w[i > 0 ? i - 1 : 1], w[i + 1 < size ? i + 1 : size - 2]);
        target ^= 1;
    }
    for (unsigned i = firstHigh; i < size; i += 2) *high++ = w[i] * Const::KH;
    for (unsigned i = firstHigh ^ 1; i < size; i += 2) *low++ = w[i] * Const::KL;
}

} // namespace

template <class T>
void WT97FwdRowFirstL(const T* src, unsigned size, T* low, T* high)
{
    if (size == 1) {
        low[0] = src[0];
        return;
    }
    if (size < shortest) return shortRow(src, size, 1, low, high);

    const Edge edge = edgeFromLow(src, 1);
    std::copy_n(edge.low, 2, low);
    std::copy_n(edge.high, 2, high);
    innerPairs(src + 4, low + 2, high + 2, (size + 1) / 2 - 4);
    putLastSamples(src + size - 1, size % 2 == 1, low + (size + 1) / 2, high + size / 2);
}

template <class T>
void WT97FwdRowFirstH(const T* src, unsigned size, T* low, T* high)
{
    if (size == 1) {
        high[0] = src[0] * 2;
        return;
    }
    if (size < shortest) return shortRow(src, size, 0, low, high);

    const Edge edge = edgeFromHigh(src, 1);
    std::copy_n(edge.low, 2, low);
    std::copy_n(edge.high, 3, high);
    innerPairs(src + 5, low + 2, high + 3, size / 2 - 4);
    putLastSamples(src + size - 1, size % 2 == 0, low + size / 2, high + (size + 1) / 2);
}

template <class T>
void WT97FwdRow(const T* src, const ROpenInterval<unsigned>& interval, T* low, T* high)
{
    if (interval.origin % 2 == 0)
        WT97FwdRowFirstL(src, interval.size, low, high);
    else
        WT97FwdRowFirstH(src, interval.size, low, high);
}

template void WT97FwdRowFirstL<float>(const float*, unsigned, float*, float*);
template void WT97FwdRowFirstH<float>(const float*, unsigned, float*, float*);
template void WT97FwdRow<float>(const float*, const ROpenInterval<unsigned>&, float*, float*);

} // namespace jpeg2000
