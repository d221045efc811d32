#include "wt97inv.h"

#include "wt97const.h"

#include "qovi.h"
#include "qovs.h"

namespace jpeg2000 {

namespace {

// target -= constant * (row0 + row1): at the first and last rows only. The rounded product is what the
// forward lift added.
template <class T>
void drop(T* target, int constant, const T* row0, const T* row1, unsigned width)
{
    for (unsigned i = 0; i < width; i++)
        target[i] = Saturate<T>(target[i] - RoundSF16(constant, static_cast<long long>(row0[i]) + row1[i]));
}

void drop(float* target, float constant, const float* row0, const float* row1, unsigned width)
{
    for (unsigned i = 0; i < width; i++) target[i] -= constant * (row0[i] + row1[i]);
}

// target -= constant * row.
template <class T>
void dropX2(T* target, int constant, const T* row, unsigned width)
{
    for (unsigned i = 0; i < width; i++) target[i] = Saturate<T>(target[i] - RoundSF16(constant, row[i]));
}

void dropX2(float* target, float constant, const float* row, unsigned width)
{
    for (unsigned i = 0; i < width; i++) target[i] -= constant * row[i];
}

template <class T>
void scale(T* row, int constant, unsigned width)
{
    for (unsigned i = 0; i < width; i++) row[i] = MulRoundSF16(constant, row[i]);
}

void scale(float* row, float constant, unsigned width)
{
    qovsMulC_32f_I(constant, row, static_cast<int>(width));
}

template <class T>
void halve(T* row, unsigned width)
{
    for (unsigned i = 0; i < width; i++) row[i] = static_cast<T>(row[i] >> 1);
}

void halve(float* row, unsigned width)
{
    qovsMulC_32f_I(0.5f, row, static_cast<int>(width));
}

// The four steps on six rows: high0 is the newest one.
void colLift(short* low0, const short* high0, short* low1, short* high1, const short* low2, short* high2,
             int width)
{
    qoviWTInvColLift_D97_JPEG2K_16s_C1(low0, high0, low1, high1, low2, high2, width);
}

void colLift(int* low0, const int* high0, int* low1, int* high1, const int* low2, int* high2, int width)
{
    qoviWTInvColLift_D97_JPEG2K_32s_C1(low0, high0, low1, high1, low2, high2, width);
}

void colLift(float* low0, const float* high0, float* low1, float* high1, const float* low2, float* high2,
             int width)
{
    qoviWTInvColLift_D97_JPEG2K_32f_C1(low0, high0, low1, high1, low2, high2, width);
}

} // namespace

template <class T>
BWT97InvColPipeline<T>::BWT97InvColPipeline(const ImageCoreC<T, 1u>& image, unsigned rowWidth,
                                            unsigned nOfRows, bool isFirstRowHigh)
    : dst(image.data), dstStep(image.step), width(rowWidth), height(nOfRows), isOddStart(isFirstRowHigh)
{
}

template <class T>
T* BWT97InvColPipeline<T>::DlyRowL(unsigned delay)
{
    return DlyRowDst(2 * delay + (IsLow() ? 0 : 1));
}

template <class T>
T* BWT97InvColPipeline<T>::DlyRowH(unsigned delay)
{
    return DlyRowDst(2 * delay + (IsLow() ? 1 : 0));
}

template <class T>
T* BWT97InvColPipeline<T>::DlyRowDst(unsigned delay)
{
    return addrAdd(dst, -static_cast<ptrdiff_t>(delay) * dstStep);
}

template <class T>
void BWT97InvColPipeline<T>::Step()
{
    if (IsLow())
        FetchL();
    else
        FetchH();
    switch (height) {
    case 1: StepForHeight1(); break;
    case 2: StepForHeight2(); break;
    case 3: StepForHeight3(); break;
    case 4: StepForHeight4(); break;
    default: StepForHeight5nMore(); break;
    }
    if (++rowIndex < height) addrInc(dst, dstStep);
}

// A row comes with the scale of its half, but for a single row, which is not filtered.
template <class T>
void BWT97InvColPipeline<T>::FetchL()
{
    NextL();
    if (height > 1) scale(DlyRowL(0), WT97Const<T>::KH, width);
}

template <class T>
void BWT97InvColPipeline<T>::FetchH()
{
    NextH();
    if (height > 1) scale(DlyRowH(0), WT97Const<T>::KL, width);
}

template <class T>
void BWT97InvColPipeline<T>::StepForHeight1()
{
    if (isOddStart) ProcessOdd_1();
}

template <class T>
void BWT97InvColPipeline<T>::ProcessOdd_1()
{
    halve(DlyRowH(0), width);
}

template <class T>
void BWT97InvColPipeline<T>::StepForHeight2()
{
    if (rowIndex < 1) return;
    // One row of each kind: they are each other's only neighbour, in either order.
    T *low = DlyRowL(0), *high = DlyRowH(0);
    LiftDELTAx2(low, high);
    LiftGAMMAx2(high, low);
    LiftBETAx2(low, high);
    LiftALPHAx2(high, low);
}

template <class T>
void BWT97InvColPipeline<T>::StepForHeight3()
{
    if (rowIndex < 2) return;
    if (isOddStart)
        ProcessOdd_3();
    else
        ProcessEven_3();
}

template <class T>
void BWT97InvColPipeline<T>::ProcessOdd_3()
{
    T *high0 = DlyRowH(1), *low = DlyRowL(0), *high1 = DlyRowH(0);
    LiftDELTA(low, high0, high1);
    LiftGAMMAx2(high0, low);
    LiftGAMMAx2(high1, low);
    LiftBETA(low, high0, high1);
    LiftALPHAx2(high0, low);
    LiftALPHAx2(high1, low);
}

template <class T>
void BWT97InvColPipeline<T>::ProcessEven_3()
{
    T *low0 = DlyRowL(1), *high = DlyRowH(0), *low1 = DlyRowL(0);
    LiftDELTAx2(low0, high);
    LiftDELTAx2(low1, high);
    LiftGAMMA(high, low0, low1);
    LiftBETAx2(low0, high);
    LiftBETAx2(low1, high);
    LiftALPHA(high, low0, low1);
}

// Four rows that begin with a high one are those that begin with a low one, upside down.
template <class T>
void BWT97InvColPipeline<T>::StepForHeight4()
{
    if (rowIndex < 3) return;
    const unsigned first = isOddStart ? 0 : 1; // delay of the row at the low end
    T *low0 = DlyRowL(first), *high0 = DlyRowH(first), *low1 = DlyRowL(first ^ 1),
      *high1 = DlyRowH(first ^ 1);
    LiftDELTAx2(low0, high0);
    LiftDELTA(low1, high0, high1);
    LiftGAMMA(high0, low0, low1);
    LiftGAMMAx2(high1, low1);
    LiftBETAx2(low0, high0);
    LiftBETA(low1, high0, high1);
    LiftALPHA(high0, low0, low1);
    LiftALPHAx2(high1, low1);
}

// The first high rows find no whole neighbourhood; from the sixth or seventh row on the library takes all
// four steps at once.
template <class T>
void BWT97InvColPipeline<T>::StepForHeight5nMore()
{
    const bool isLast = rowIndex + 1 == height;
    if (IsLow()) {
        if (isLast) DrainLastL();
        return;
    }
    switch (rowIndex) {
    case 0: break;
    case 1: LiftDELTAx2(DlyRowL(0), DlyRowH(0)); break;
    case 2:
        LiftDELTA(DlyRowL(0), DlyRowH(1), DlyRowH(0));
        LiftGAMMAx2(DlyRowH(1), DlyRowL(0));
        break;
    case 3:
        LiftDELTA(DlyRowL(0), DlyRowH(1), DlyRowH(0));
        LiftGAMMA(DlyRowH(1), DlyRowL(1), DlyRowL(0));
        LiftBETAx2(DlyRowL(1), DlyRowH(1));
        break;
    case 4:
        LiftDELTA(DlyRowL(0), DlyRowH(1), DlyRowH(0));
        LiftGAMMA(DlyRowH(1), DlyRowL(1), DlyRowL(0));
        LiftBETA(DlyRowL(1), DlyRowH(2), DlyRowH(1));
        LiftALPHAx2(DlyRowH(2), DlyRowL(1));
        break;
    default:
        colLift(DlyRowL(0), DlyRowH(0), DlyRowL(1), DlyRowH(1), DlyRowL(2), DlyRowH(2),
                static_cast<int>(width));
        break;
    }
    if (isLast) DrainLastH();
}

template <class T>
void BWT97InvColPipeline<T>::DrainLastL()
{
    T *low2 = DlyRowL(2), *high1 = DlyRowH(1), *low1 = DlyRowL(1), *high0 = DlyRowH(0), *low0 = DlyRowL(0);
    LiftDELTAx2(low0, high0);
    LiftGAMMA(high0, low1, low0);
    LiftBETA(low1, high1, high0);
    LiftALPHA(high1, low2, low1);
    LiftBETAx2(low0, high0);
    LiftALPHA(high0, low1, low0);
}

template <class T>
void BWT97InvColPipeline<T>::DrainLastH()
{
    T *low1 = DlyRowL(1), *high1 = DlyRowH(1), *low0 = DlyRowL(0), *high0 = DlyRowH(0);
    LiftGAMMAx2(high0, low0);
    LiftBETA(low0, high1, high0);
    LiftALPHA(high1, low1, low0);
    LiftALPHAx2(high0, low0);
}

template <class T>
void BWT97InvColPipeline<T>::LiftDELTA(T* low, const T* high0, const T* high1)
{
    drop(low, WT97Const<T>::DELTA, high0, high1, width);
}

template <class T>
void BWT97InvColPipeline<T>::LiftDELTAx2(T* low, const T* high)
{
    dropX2(low, WT97Const<T>::DELTAx2, high, width);
}

template <class T>
void BWT97InvColPipeline<T>::LiftGAMMA(T* high, const T* low0, const T* low1)
{
    drop(high, WT97Const<T>::GAMMA, low0, low1, width);
}

template <class T>
void BWT97InvColPipeline<T>::LiftGAMMAx2(T* high, const T* low)
{
    dropX2(high, WT97Const<T>::GAMMAx2, low, width);
}

template <class T>
void BWT97InvColPipeline<T>::LiftBETA(T* low, const T* high0, const T* high1)
{
    drop(low, WT97Const<T>::BETA, high0, high1, width);
}

template <class T>
void BWT97InvColPipeline<T>::LiftBETAx2(T* low, const T* high)
{
    dropX2(low, WT97Const<T>::BETAx2, high, width);
}

template <class T>
void BWT97InvColPipeline<T>::LiftALPHA(T* high, const T* low0, const T* low1)
{
    drop(high, WT97Const<T>::ALPHA, low0, low1, width);
}

template <class T>
void BWT97InvColPipeline<T>::LiftALPHAx2(T* high, const T* low)
{
    dropX2(high, WT97Const<T>::ALPHAx2, low, width);
}

template class BWT97InvColPipeline<short>;
template class BWT97InvColPipeline<int>;
template class BWT97InvColPipeline<float>;

} // namespace jpeg2000
