#include "wt53inv.h"

#include "qovi.h"
#include "qovs.h"

namespace jpeg2000 {

template <class T, class Row>
WT53InvColPipeline<T, Row>::WT53InvColPipeline(const Row& lowRows, const Row& highRows,
                                               const ImageCoreC<T, 1u>& image, const Rect& rect)
    : rowOfLow(lowRows), rowOfHigh(highRows), dst(image.data), dstStep(image.step), width(rect.width),
      height(rect.height), isOddStart(rect.y % 2 == 1), sum(width)
{
}

template <class T, class Row>
void WT53InvColPipeline<T, Row>::Step()
{
    (IsLow() ? rowOfLow : rowOfHigh).Transform(Dst(0));
    switch (height) {
    case 1: StepForHeight1(); break;
    case 2: StepForHeight2(); break;
    case 3: StepForHeight3(); break;
    default: StepForHeight4nMore(); break;
    }
    if (++rowIndex < height) addrInc(dst, dstStep);
}

template <class T, class Row>
void WT53InvColPipeline<T, Row>::StepForHeight1()
{
    if (isOddStart) qovsRShiftC_32s_I(1, Dst(0), Length());
}

template <class T, class Row>
void WT53InvColPipeline<T, Row>::StepForHeight2()
{
    if (rowIndex < 1) return;
    T *low = Dst(isOddStart ? 0 : 1), *high = Dst(isOddStart ? 1 : 0);
    EvenEdge(low, high);
    OddEdge(high, low);
}

template <class T, class Row>
void WT53InvColPipeline<T, Row>::StepForHeight3()
{
    if (rowIndex < 2) return;
    if (isOddStart) {
        EvenInner(Dst(1), Dst(2), Dst(0));
        OddEdge(Dst(2), Dst(1));
        OddEdge(Dst(0), Dst(1));
    } else {
        EvenEdge(Dst(2), Dst(1));
        EvenEdge(Dst(0), Dst(1));
        OddInner(Dst(1), Dst(2), Dst(0));
    }
}

template <class T, class Row>
void WT53InvColPipeline<T, Row>::StepForHeight4nMore()
{
    const bool isLast = rowIndex + 1 == height;
    if (!IsLow()) {
        if (rowIndex > 2) {
            InnerPair();
        } else if (rowIndex == 2) {
            EvenInner(Dst(1), Dst(2), Dst(0));
            OddEdge(Dst(2), Dst(1));
        } else if (rowIndex == 1) {
            EvenEdge(Dst(1), Dst(0));
        }
        if (isLast) OddEdge(Dst(0), Dst(1));
    } else if (isLast) {
        EvenEdge(Dst(0), Dst(1));
        OddInner(Dst(1), Dst(2), Dst(0));
    }
}

// The latest high row completes the even row before it, and that one the odd row two back.
template <class T, class Row>
void WT53InvColPipeline<T, Row>::InnerPair()
{
    qoviWTInvColLift_B53_JPEG2K_32s_C1(Dst(1), Dst(2), Dst(0), Dst(3), Dst(2), Dst(1), Length());
}

// A low row becomes an even one: low - ((high0 + high1 + 2) >> 2).
template <class T, class Row>
void WT53InvColPipeline<T, Row>::EvenInner(T* low, const T* high0, const T* high1)
{
    qovsAdd_32s_Sfs(high0, high1, sum, Length(), 0);
    qovsAddC_32s_ISfs(2, sum, Length(), 0);
    qovsRShiftC_32s_I(2, sum, Length());
    qovsSub_32s_Sfs(low, sum, low, Length(), 0);
}

// At the first or last row both neighbours are the same row: (2 * high + 2) >> 2 is (high + 1) >> 1.
template <class T, class Row>
void WT53InvColPipeline<T, Row>::EvenEdge(T* low, const T* high)
{
    qovsAddC_32s_Sfs(high, 1, sum, Length(), 0);
    qovsRShiftC_32s_I(1, sum, Length());
    qovsSub_32s_Sfs(low, sum, low, Length(), 0);
}

// A high row becomes an odd one: high + ((even0 + even1) >> 1).
template <class T, class Row>
void WT53InvColPipeline<T, Row>::OddInner(T* high, const T* even0, const T* even1)
{
    qovsAdd_32s_Sfs(even0, even1, sum, Length(), 0);
    qovsRShiftC_32s_I(1, sum, Length());
    qovsAdd_32s_ISfs(sum, high, Length(), 0);
}

// The rounded mean of two equal samples is the sample.
template <class T, class Row>
void WT53InvColPipeline<T, Row>::OddEdge(T* high, const T* even)
{
    qovsAdd_32s_ISfs(even, high, Length(), 0);
}

template class WT53InvColPipeline<int, WT53InvAgregate<int, ImageRowInput<int, 1u>>::Row>;

} // namespace jpeg2000
