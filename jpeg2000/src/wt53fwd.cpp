#include "wt53fwd.h"

#include "qovi.h"
#include "qovs.h"

namespace jpeg2000 {

template <class T, class Row>
WT53FwdColPipeline<T, Row>::WT53FwdColPipeline(const ImageCoreC<T, 1u>& image, const Rect& rect,
                                               const Row& lowFilter, const Row& highFilter)
    : src(image.data), srcStep(image.step), width(rect.width), height(rect.height),
      isOddStart(rect.y % 2 == 1), low(width), rowOfLow(lowFilter), rowOfHigh(highFilter)
{
    high.size = 2;
    high.data.Alloc(high.size);
    for (unsigned i = 0; i < high.size; i++) high.data[i].Alloc(width);
}

template <class T, class Row>
void WT53FwdColPipeline<T, Row>::Step()
{
    switch (height) {
    case 1: StepForHeight1(); break;
    case 2: StepForHeight2(); break;
    case 3: StepForHeight3(); break;
    default: StepForHeight4nMore(); break;
    }
    if (++rowIndex < height) addrInc(src, srcStep);
}

template <class T, class Row>
void WT53FwdColPipeline<T, Row>::StepForHeight1()
{
    if (isOddStart) {
        qovsLShiftC_32s(Source(0), 1, low, Length());
        rowOfHigh.Transform(low);
    } else {
        rowOfLow.Transform(Source(0));
    }
}

template <class T, class Row>
void WT53FwdColPipeline<T, Row>::StepForHeight2()
{
    if (rowIndex < 1) return;
    const T* even = Source(isOddStart ? 0 : 1);
    HighEdge(Source(isOddStart ? 1 : 0), even);
    LowEdge(even);
}

template <class T, class Row>
void WT53FwdColPipeline<T, Row>::StepForHeight3()
{
    if (rowIndex < 2) return;
    if (isOddStart) {
        HighEdge(Source(2), Source(1));
        HighEdge(Source(0), Source(1));
        LowInner(Source(1));
    } else {
        HighInner(Source(1), Source(2), Source(0));
        LowEdge(Source(2));
        LowEdge(Source(0));
    }
}

template <class T, class Row>
void WT53FwdColPipeline<T, Row>::StepForHeight4nMore()
{
    const bool isLow = (rowIndex % 2 == 1) == isOddStart, isLast = rowIndex + 1 == height;
    if (isLow) {
        if (rowIndex > 2) {
            InnerPair();
        } else if (rowIndex == 2) {
            HighInner(Source(1), Source(2), Source(0));
            LowEdge(Source(2));
        } else if (rowIndex == 1) {
            HighEdge(Source(1), Source(0));
        }
        if (isLast) LowEdge(Source(0));
    } else if (isLast) {
        HighEdge(Source(0), Source(1));
        LowInner(Source(1));
    }
}

// The latest even row completes the odd row before it, and that one the even row two back.
template <class T, class Row>
void WT53FwdColPipeline<T, Row>::InnerPair()
{
    ++high;
    qoviWTFwdColLift_B53_JPEG2K_32s_C1(Source(2), Source(1), Source(0), HighRow(1), low, HighRow(0),
                                       Length());
    rowOfLow.Transform(low);
    rowOfHigh.Transform(HighRow(0));
}

// The next high row: odd - ((even0 + even1) >> 1).
template <class T, class Row>
void WT53FwdColPipeline<T, Row>::HighInner(const T* odd, const T* even0, const T* even1)
{
    ++high;
    qovsAdd_32s_Sfs(even0, even1, HighRow(0), Length(), 0);
    qovsRShiftC_32s_I(1, HighRow(0), Length());
    qovsSub_32s_Sfs(odd, HighRow(0), HighRow(0), Length(), 0);
    rowOfHigh.Transform(HighRow(0));
}

// At the first or last row both neighbours are the same row, and the rounded mean of two equal samples is the
// sample.
template <class T, class Row>
void WT53FwdColPipeline<T, Row>::HighEdge(const T* odd, const T* even)
{
    ++high;
    qovsSub_32s_Sfs(odd, even, HighRow(0), Length(), 0);
    rowOfHigh.Transform(HighRow(0));
}

// The next low row, between the latest two high rows: even + ((high0 + high1 + 2) >> 2).
template <class T, class Row>
void WT53FwdColPipeline<T, Row>::LowInner(const T* even)
{
    qovsAdd_32s_Sfs(HighRow(1), HighRow(0), low, Length(), 0);
    qovsAddC_32s_ISfs(2, low, Length(), 0);
    qovsRShiftC_32s_I(2, low, Length());
    qovsAdd_32s_ISfs(even, low, Length(), 0);
    rowOfLow.Transform(low);
}

// Both neighbours are the latest high row: (2 * high + 2) >> 2 is (high + 1) >> 1.
template <class T, class Row>
void WT53FwdColPipeline<T, Row>::LowEdge(const T* even)
{
    qovsAddC_32s_Sfs(HighRow(0), 1, low, Length(), 0);
    qovsRShiftC_32s_I(1, low, Length());
    qovsAdd_32s_ISfs(even, low, Length(), 0);
    rowOfLow.Transform(low);
}

template class WT53FwdColPipeline<int, WT53FwdAgregate<int, ImageRowOutput<int, 1u>>::Row>;

} // namespace jpeg2000
