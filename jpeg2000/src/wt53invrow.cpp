#include "wt53invrow.h"

#include "qovi.h"

namespace jpeg2000 {

namespace {

// The two lifting steps at one sample. Sums are formed in 64 bits and reduced when they are stored, as the
// library does it.
int evenOf(int low, int before, int behind)
{
    return static_cast<int>(low - ((static_cast<long long>(before) + behind + 2) >> 2));
}

int oddOf(int high, int before, int behind)
{
    return static_cast<int>(high + ((static_cast<long long>(before) + behind) >> 1));
}

// n pairs from the even sample dst[0] on, with one high sample before theirs and one of either half behind.
void innerPairs(const int* low, const int* high, int* dst, unsigned n)
{
    const int halfBytes = static_cast<int>(n * sizeof(int));
    qoviWTInvRow_B53_JPEG2K_32s_C1R(low, halfBytes, high, halfBytes, dst, 2 * halfBytes, RectSize{n, 1});
}

template <class T>
void WT53InvRowFirstH(const T* low, const T* high, unsigned size, T* dst)
{
    if (size == 1) {
        dst[0] = high[0] >> 1;
        return;
    }
    const unsigned half = size / 2, nOfHigh = size - half, last = size - 1;
    if (nOfHigh > 2) innerPairs(low, high + 1, dst + 1, nOfHigh - 2);
    if (size % 2 == 1) {
        dst[last - 1] = evenOf(low[half - 1], high[half - 1], high[half]);
        dst[last] = oddOf(high[half], dst[last - 1], dst[last - 1]);
    } else {
        dst[last] = evenOf(low[half - 1], high[half - 1], high[half - 1]);
        if (half > 1) {
            dst[last - 2] = evenOf(low[half - 2], high[half - 2], high[half - 1]);
            dst[last - 1] = oddOf(high[half - 1], dst[last - 2], dst[last]);
        }
    }
    dst[0] = oddOf(high[0], dst[1], dst[1]);
}

} // namespace

template <class T>
void WT53InvRowFirstL(const T* low, const T* high, unsigned size, T* dst)
{
    if (size == 1) {
        dst[0] = low[0];
        return;
    }
    const unsigned half = size / 2, last = size - 1; // `half` high samples
    dst[0] = evenOf(low[0], high[0], high[0]);
    if (half > 2) innerPairs(low + 1, high + 1, dst + 2, half - 2);
    if (half > 1) {
        dst[2 * half - 2] = evenOf(low[half - 1], high[half - 2], high[half - 1]);
        dst[1] = oddOf(high[0], dst[0], dst[2]);
    }
    if (size % 2 == 0) {
        dst[last] = oddOf(high[half - 1], dst[last - 1], dst[last - 1]);
    } else {
        dst[last] = evenOf(low[half], high[half - 1], high[half - 1]);
        dst[last - 1] = oddOf(high[half - 1], dst[last - 2], dst[last]);
    }
}

template <class T>
void WT53InvRow(const T* low, const T* high, const ROpenInterval<unsigned>& interval, T* dst)
{
    if (interval.origin % 2 == 0)
        WT53InvRowFirstL(low, high, interval.size, dst);
    else
        WT53InvRowFirstH(low, high, interval.size, dst);
}

template void WT53InvRow<int>(const int*, const int*, const ROpenInterval<unsigned>&, int*);
template void WT53InvRowFirstL<int>(const int*, const int*, unsigned, int*);

} // namespace jpeg2000
