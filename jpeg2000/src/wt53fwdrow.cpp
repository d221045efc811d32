#include "wt53fwdrow.h"

#include "qovi.h"

namespace jpeg2000 {

namespace {

// The two lifting steps at one sample. Sums are formed in 64 bits and reduced when they are stored, as the
// library does it.
int highOf(int odd, int before, int behind)
{
    return static_cast<int>(odd - ((static_cast<long long>(before) + behind) >> 1));
}

int lowOf(int even, int before, int behind)
{
    return static_cast<int>(even + ((static_cast<long long>(before) + behind + 2) >> 2));
}

// n pairs from the even sample src[0] on, with two samples before them and one behind.
void innerPairs(const int* src, int* low, int* high, unsigned n)
{
    const int halfBytes = static_cast<int>(n * sizeof(int));
    qoviWTFwdRow_B53_JPEG2K_32s_C1R(src, 2 * halfBytes, low, halfBytes, high, halfBytes, RectSize{n, 1});
}

template <class T>
void WT53FwdRowFirstH(const T* src, unsigned size, T* low, T* high)
{
    if (size == 1) {
        high[0] = static_cast<T>(src[0] * 2ll);
        return;
    }
    high[0] = highOf(src[0], src[1], src[1]);
    const unsigned half = size / 2, last = size - 1;
    if (half > 1) {
        high[1] = highOf(src[2], src[1], src[3]);
        low[0] = lowOf(src[1], high[0], high[1]);
    }
    if (half > 2) innerPairs(src + 3, low + 1, high + 2, half - 2);
    if (size % 2 == 0) {
        low[half - 1] = lowOf(src[last], high[half - 1], high[half - 1]);
    } else {
        high[half] = highOf(src[last], src[last - 1], src[last - 1]);
        low[half - 1] = lowOf(src[last - 1], high[half - 1], high[half]);
    }
}

} // namespace

template <class T>
void WT53FwdRowFirstL(const T* src, unsigned size, T* low, T* high)
{
    if (size == 1) {
        low[0] = src[0];
        return;
    }
    if (size == 2) {
        high[0] = highOf(src[1], src[0], src[0]);
        low[0] = lowOf(src[0], high[0], high[0]);
        return;
    }
    const unsigned half = (size + 1) / 2, last = size - 1;
    high[0] = highOf(src[1], src[0], src[2]);
    low[0] = lowOf(src[0], high[0], high[0]);
    if (half > 2) innerPairs(src + 2, low + 1, high + 1, half - 2);
    if (size % 2 == 0) {
        high[half - 1] = highOf(src[last], src[last - 1], src[last - 1]);
        low[half - 1] = lowOf(src[last - 1], high[half - 2], high[half - 1]);
    } else {
        low[half - 1] = lowOf(src[last], high[half - 2], high[half - 2]);
    }
}

template <class T>
void WT53FwdRow(const T* src, const ROpenInterval<unsigned>& interval, T* low, T* high)
{
    if (interval.origin % 2 == 0)
        WT53FwdRowFirstL(src, interval.size, low, high);
    else
        WT53FwdRowFirstH(src, interval.size, low, high);
}

template void WT53FwdRow<int>(const int*, const ROpenInterval<unsigned>&, int*, int*);
template void WT53FwdRowFirstL<int>(const int*, unsigned, int*, int*);

} // namespace jpeg2000
