#include "wt97invrow.h"

#include "wt97const.h"

#include "qovi.h"

#include <algorithm>
#include <initializer_list>

namespace jpeg2000 {

namespace {

using Const = WT97Const<float>;

constexpr float scaleOfLow = Const::KH, scaleOfHigh = Const::KL; // the inverse scales

// The first lift reads high samples before they are scaled: DELTA * KL and its double, each rounded once.
constexpr float foldedDelta = 0.36052364f, foldedDeltaX2 = 0.7210473f;

// An edge is made from up to eight samples; shorter rows are lifted as a whole.
constexpr unsigned shortest = 8;

// Lifting backwards.
float drop(float target, float constant, float before, float behind)
{
    return target - constant * (before + behind);
}

// The samples of the halves at one end of a row, from the end inwards.
struct End {
    const float *firstLow, *firstHigh;
    ptrdiff_t next;

    float low(ptrdiff_t i) const { return firstLow[i * next]; }
    float high(ptrdiff_t i) const { return firstHigh[i * next]; }
};

// The finished samples at one end, from the end inwards.
struct Edge {
    float x[5];
};

// The end where x[0] is a low sample, from four samples of either half.
Edge edgeFromLow(const End& end)
{
    const float h0 = end.high(0), h1 = end.high(1), h2 = end.high(2), h3 = end.high(3);
    const float d0 = scaleOfLow * end.low(0) - foldedDeltaX2 * h0;
    const float d2 = drop(scaleOfLow * end.low(1), foldedDelta, h0, h1);
    const float d4 = drop(scaleOfLow * end.low(2), foldedDelta, h1, h2);
    const float d6 = drop(scaleOfLow * end.low(3), foldedDelta, h2, h3);
    const float g1 = drop(scaleOfHigh * h0, Const::GAMMA, d0, d2);
    const float g3 = drop(scaleOfHigh * h1, Const::GAMMA, d2, d4);
    const float g5 = drop(scaleOfHigh * h2, Const::GAMMA, d4, d6);
    const float b0 = d0 - Const::BETAx2 * g1;
    const float b2 = drop(d2, Const::BETA, g1, g3);
    const float b4 = drop(d4, Const::BETA, g3, g5);
    return {{b0, drop(g1, Const::ALPHA, b0, b2), b2, drop(g3, Const::ALPHA, b2, b4), b4}};
}

// The end where x[0] is a high sample, from three low samples and four high ones: four samples.
Edge edgeFromHigh(const End& end)
{
    const float h0 = end.high(0), h1 = end.high(1), h2 = end.high(2), h3 = end.high(3);
    const float d1 = drop(scaleOfLow * end.low(0), foldedDelta, h0, h1);
    const float d3 = drop(scaleOfLow * end.low(1), foldedDelta, h1, h2);
    const float d5 = drop(scaleOfLow * end.low(2), foldedDelta, h2, h3);
    const float g0 = scaleOfHigh * h0 - Const::GAMMAx2 * d1;
    const float g2 = drop(scaleOfHigh * h1, Const::GAMMA, d1, d3);
    const float g4 = drop(scaleOfHigh * h2, Const::GAMMA, d3, d5);
    const float b1 = drop(d1, Const::BETA, g0, g2);
    const float b3 = drop(d3, Const::BETA, g2, g4);
    return {{g0 - Const::ALPHAx2 * b1, b1, drop(g2, Const::ALPHA, b1, b3), b3, 0}};
}

// The pointers lead behind the last sample of each.
void putLastSamples(const float* lowEnd, const float* highEnd, bool isLow, float* dstEnd)
{
    const End end{lowEnd - 1, highEnd - 1, -1};
    const Edge edge = isLow ? edgeFromLow(end) : edgeFromHigh(end);
    std::reverse_copy(edge.x, edge.x + (isLow ? 5 : 4), dstEnd - (isLow ? 5 : 4));
}

// nOfPairs (0 is allowed) from the even sample dst[0] on, with a low and two high samples before theirs and
// two of either half behind.
void innerPairs(const float* low, const float* high, float* dst, unsigned nOfPairs)
{
    if (nOfPairs == 0) return;
    const int halfBytes = static_cast<int>(nOfPairs * sizeof(float));
    qoviWTInvRow_D97_JPEG2K_32f_C1R(low, halfBytes, high, halfBytes, dst, 2 * halfBytes,
                                    RectSize{nOfPairs, 1});
}

// 2 to shortest - 1 samples, of which dst[firstHigh] is the first high one.
void shortRow(const float* low, const float* high, unsigned size, unsigned firstHigh, float* dst)
{
    for (unsigned i = firstHigh; i < size; i += 2) dst[i] = *high++ * scaleOfHigh;
    for (unsigned i = firstHigh ^ 1; i < size; i += 2) dst[i] = *low++ * scaleOfLow;
    unsigned target = firstHigh ^ 1;
    for (const float step : {Const::DELTA, Const::GAMMA, Const::BETA, Const::ALPHA}) {
        for (unsigned i = target; i < size; i += 2)
            dst[i] = drop(dst[i], step, dst[i > 0 ? i - 1 : 1], dst[i + 1 < size ? i + 1 : size - 2]);
        target ^= 1;
    }
}

} // namespace

template <class T>
void WT97InvRowFirstL(const T* low, const T* high, unsigned size, T* dst)
{
    if (size == 1) {
        dst[0] = low[0];
        return;
    }
    if (size < shortest) return shortRow(low, high, size, 1, dst);

    const unsigned nOfHigh = size / 2;
    std::copy_n(edgeFromLow({low, high, 1}).x, 4, dst);
    innerPairs(low + 2, high + 2, dst + 4, nOfHigh - 4);
    putLastSamples(low + (size - nOfHigh), high + nOfHigh, size % 2 == 1, dst + size);
}

template <class T>
void WT97InvRowFirstH(const T* low, const T* high, unsigned size, T* dst)
{
    if (size == 1) {
        dst[0] = high[0] / 2;
        return;
    }
    if (size < shortest) return shortRow(low, high, size, 0, dst);

    const unsigned nOfHigh = (size + 1) / 2;
    std::copy_n(edgeFromHigh({low, high, 1}).x, 3, dst);
    innerPairs(low + 1, high + 2, dst + 3, nOfHigh - 4);
    putLastSamples(low + (size - nOfHigh), high + nOfHigh, size % 2 == 0, dst + size);
}

template <class T>
void WT97InvRow(const T* low, const T* high, const ROpenInterval<unsigned>& interval, T* dst)
{
    if (interval.origin % 2 == 0)
        WT97InvRowFirstL(low, high, interval.size, dst);
    else
        WT97InvRowFirstH(low, high, interval.size, dst);
}

template void WT97InvRowFirstL<float>(const float*, const float*, unsigned, float*);
template void WT97InvRowFirstH<float>(const float*, const float*, unsigned, float*);
template void WT97InvRow<float>(const float*, const float*, const ROpenInterval<unsigned>&, float*);

} // namespace jpeg2000
