#include "wt97fwd.h"

#include "wt97const.h"

#include "qovi.h"
#include "qovs.h"

namespace jpeg2000 {

namespace {

// target += constant * (row0 + row1): at the first and last rows only.
template <class T>
void lift(T* target, int constant, const T* row0, const T* row1, unsigned width)
{
    for (unsigned i = 0; i < width; i++)
        target[i] = AddMulAddRoundSF16(target[i], constant, row0[i], row1[i]);
}

void lift(float* target, float constant, const float* row0, const float* row1, unsigned width)
{
    for (unsigned i = 0; i < width; i++) target[i] += constant * (row0[i] + row1[i]);
}

// target += constant * row.
template <class T>
void liftX2(T* target, int constant, const T* row, unsigned width)
{
    for (unsigned i = 0; i < width; i++) target[i] = MulAddRoundSF16(target[i], constant, row[i]);
}

void liftX2(float* target, float constant, const float* row, unsigned width)
{
    for (unsigned i = 0; i < width; i++) target[i] += constant * row[i];
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
void twice(T* row, unsigned width)
{
    for (unsigned i = 0; i < width; i++) row[i] = Saturate<T>(row[i] * 2ll);
}

void twice(float* row, unsigned width)
{
    qovsMulC_32f_I(2, row, static_cast<int>(width));
}

// The four steps on six rows: low0 is the newest one.
void colLift(const short* low0, short* high0, short* low1, short* high1, short* low2, const short* high2,
             int width)
{
    qoviWTFwdColLift_D97_JPEG2K_16s_C1(low0, high0, low1, high1, low2, high2, width);
}

void colLift(const int* low0, int* high0, int* low1, int* high1, int* low2, const int* high2, int width)
{
    qoviWTFwdColLift_D97_JPEG2K_32s_C1(low0, high0, low1, high1, low2, high2, width);
}

void colLift(const float* low0, float* high0, float* low1, float* high1, float* low2, const float* high2,
             int width)
{
    qoviWTFwdColLift_D97_JPEG2K_32f_C1(low0, high0, low1, high1, low2, high2, width);
}

constexpr unsigned ringRows = 6;

} // namespace

template <class T>
BWT97FwdColPipeline<T>::BWT97FwdColPipeline(unsigned rowWidth, unsigned nOfInputRows, bool isFirstRowHigh)
    : width(rowWidth), height(nOfInputRows), isOddStart(isFirstRowHigh)
{
    rows.ReAlloc(width, ringRows);
}

template <class T>
T* BWT97FwdColPipeline<T>::NextRow()
{
    if (++rows.position == rows.nOfRows) rows.position = 0;
    return DlyRow(0);
}

template <class T>
T* BWT97FwdColPipeline<T>::DlyRowL(unsigned delay)
{
    return DlyRow(2 * delay + (IsLow() ? 0 : 1));
}

template <class T>
T* BWT97FwdColPipeline<T>::DlyRowH(unsigned delay)
{
    return DlyRow(2 * delay + (IsLow() ? 1 : 0));
}

template <class T>
void BWT97FwdColPipeline<T>::Step()
{
    if (IsLow())
        NextL();
    else
        NextH();
    switch (height) {
    case 1: StepForHeight1(); break;
    case 2: StepForHeight2(); break;
    case 3: StepForHeight3(); break;
    case 4: StepForHeight4(); break;
    default: StepForHeight5nMore(); break;
    }
    rowIndex++;
}

template <class T>
void BWT97FwdColPipeline<T>::StepForHeight1()
{
    if (isOddStart)
        ProcessOdd_1();
    else
        OutputL(DlyRowL(0));
}

template <class T>
void BWT97FwdColPipeline<T>::ProcessOdd_1()
{
    twice(DlyRowH(0), width);
    OutputH(DlyRowH(0));
}

template <class T>
void BWT97FwdColPipeline<T>::StepForHeight2()
{
    if (rowIndex < 1) return;
    // One row of each kind: they are each other's only neighbour, in either order.
    T *low = DlyRowL(0), *high = DlyRowH(0);
    LiftALPHAx2(high, low);
    LiftBETAx2(low, high);
    LiftGAMMAx2(high, low);
    LiftDELTAx2(low, high);
    FinishL(low);
    FinishH(high);
}

template <class T>
void BWT97FwdColPipeline<T>::StepForHeight3()
{
    if (rowIndex < 2) return;
    if (isOddStart)
        ProcessOdd_3();
    else
        ProcessEven_3();
}

template <class T>
void BWT97FwdColPipeline<T>::ProcessOdd_3()
{
    T *high0 = DlyRowH(1), *low = DlyRowL(0), *high1 = DlyRowH(0);
    LiftALPHAx2(high0, low);
    LiftALPHAx2(high1, low);
    LiftBETA(low, high0, high1);
    LiftGAMMAx2(high0, low);
    LiftGAMMAx2(high1, low);
    LiftDELTA(low, high0, high1);
    FinishH(high0);
    FinishL(low);
    FinishH(high1);
}

template <class T>
void BWT97FwdColPipeline<T>::ProcessEven_3()
{
    T *low0 = DlyRowL(1), *high = DlyRowH(0), *low1 = DlyRowL(0);
    LiftALPHA(high, low0, low1);
    LiftBETAx2(low0, high);
    LiftBETAx2(low1, high);
    LiftGAMMA(high, low0, low1);
    LiftDELTAx2(low0, high);
    LiftDELTAx2(low1, high);
    FinishL(low0);
    FinishH(high);
    FinishL(low1);
}

// The order in which the two kinds of rows go out is free. So four rows that begin with a high one are those
// that begin with a low one, upside down, as far as lifting goes.
template <class T>
void BWT97FwdColPipeline<T>::StepForHeight4()
{
    if (rowIndex < 3) return;
    const unsigned first = isOddStart ? 0 : 1; // delay of the row at the low end
    T *low0 = DlyRowL(first), *high0 = DlyRowH(first), *low1 = DlyRowL(first ^ 1),
      *high1 = DlyRowH(first ^ 1);
    LiftALPHA(high0, low0, low1);
    LiftBETAx2(low0, high0);
    LiftALPHAx2(high1, low1);
    LiftBETA(low1, high0, high1);
    LiftGAMMA(high0, low0, low1);
    LiftDELTAx2(low0, high0);
    LiftGAMMAx2(high1, low1);
    LiftDELTA(low1, high0, high1);
    FinishL(DlyRowL(1));
    FinishH(DlyRowH(1));
    FinishL(DlyRowL(0));
    FinishH(DlyRowH(0));
}

// The first low rows find no whole neighbourhood; from the sixth or seventh row on the library takes all four
// steps at once.
template <class T>
void BWT97FwdColPipeline<T>::StepForHeight5nMore()
{
    const bool isLast = rowIndex + 1 == height;
    if (!IsLow()) {
        if (isLast) DrainLastH();
        return;
    }
    switch (rowIndex) {
    case 0: break;
    case 1: LiftALPHAx2(DlyRowH(0), DlyRowL(0)); break;
    case 2:
        LiftALPHA(DlyRowH(0), DlyRowL(1), DlyRowL(0));
        LiftBETAx2(DlyRowL(1), DlyRowH(0));
        break;
    case 3:
        LiftALPHA(DlyRowH(0), DlyRowL(1), DlyRowL(0));
        LiftBETA(DlyRowL(1), DlyRowH(1), DlyRowH(0));
        LiftGAMMAx2(DlyRowH(1), DlyRowL(1));
        break;
    case 4:
        LiftALPHA(DlyRowH(0), DlyRowL(1), DlyRowL(0));
        LiftBETA(DlyRowL(1), DlyRowH(1), DlyRowH(0));
        LiftGAMMA(DlyRowH(1), DlyRowL(2), DlyRowL(1));
        LiftDELTAx2(DlyRowL(2), DlyRowH(1));
        FinishL(DlyRowL(2));
        break;
    default:
        colLift(DlyRowL(0), DlyRowH(0), DlyRowL(1), DlyRowH(1), DlyRowL(2), DlyRowH(2),
                static_cast<int>(width));
        FinishL(DlyRowL(2));
        FinishH(DlyRowH(2)); // had to wait: the step reads it unscaled
        break;
    }
    if (isLast) DrainLastL();
}

template <class T>
void BWT97FwdColPipeline<T>::DrainLastL()
{
    T *high1 = DlyRowH(1), *low1 = DlyRowL(1), *high0 = DlyRowH(0), *low0 = DlyRowL(0);
    LiftBETAx2(low0, high0);
    LiftGAMMA(high0, low1, low0);
    LiftDELTA(low1, high1, high0);
    LiftDELTAx2(low0, high0);
    FinishH(high1);
    FinishL(low1);
    FinishH(high0);
    FinishL(low0);
}

template <class T>
void BWT97FwdColPipeline<T>::DrainLastH()
{
    T *high2 = DlyRowH(2), *low1 = DlyRowL(1), *high1 = DlyRowH(1), *low0 = DlyRowL(0), *high0 = DlyRowH(0);
    LiftALPHAx2(high0, low0);
    LiftBETA(low0, high1, high0);
    LiftGAMMA(high1, low1, low0);
    LiftDELTA(low1, high2, high1);
    LiftGAMMAx2(high0, low0);
    LiftDELTA(low0, high1, high0);
    FinishH(high2);
    FinishL(low1);
    FinishH(high1);
    FinishL(low0);
    FinishH(high0);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftALPHA(T* high, const T* low0, const T* low1)
{
    lift(high, WT97Const<T>::ALPHA, low0, low1, width);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftALPHAx2(T* high, const T* low)
{
    liftX2(high, WT97Const<T>::ALPHAx2, low, width);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftBETA(T* low, const T* high0, const T* high1)
{
    lift(low, WT97Const<T>::BETA, high0, high1, width);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftBETAx2(T* low, const T* high)
{
    liftX2(low, WT97Const<T>::BETAx2, high, width);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftGAMMA(T* high, const T* low0, const T* low1)
{
    lift(high, WT97Const<T>::GAMMA, low0, low1, width);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftGAMMAx2(T* high, const T* low)
{
    liftX2(high, WT97Const<T>::GAMMAx2, low, width);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftDELTA(T* low, const T* high0, const T* high1)
{
    lift(low, WT97Const<T>::DELTA, high0, high1, width);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftDELTAx2(T* low, const T* high)
{
    liftX2(low, WT97Const<T>::DELTAx2, high, width);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftKL(T* low)
{
    scale(low, WT97Const<T>::KL, width);
}

template <class T>
void BWT97FwdColPipeline<T>::LiftKH(T* high)
{
    scale(high, WT97Const<T>::KH, width);
}

template <class T>
void BWT97FwdColPipeline<T>::FinishL(T* low)
{
    LiftKL(low);
    OutputL(low);
}

template <class T>
void BWT97FwdColPipeline<T>::FinishH(T* high)
{
    LiftKH(high);
    OutputH(high);
}

template class BWT97FwdColPipeline<short>;
template class BWT97FwdColPipeline<int>;
template class BWT97FwdColPipeline<float>;

} // namespace jpeg2000
