// The irreversible 9-7 wavelet up the columns (ITU-T T.800, annex F). Rows of the bands are joined from the
// top into the rows of the destination, scaled, and lifted there as soon as their neighbours have come: the
// latest six rows of the destination are the ring.
#ifndef JPEG2000_WT97INV_H
#define JPEG2000_WT97INV_H

#include "wt97invrow.h"
#include "wtinvrow.h"

namespace jpeg2000 {

// The schedule and the lifting, for short, int (whole numbers over 65536) and float. Where rows come from is
// told by the derived class.
template <class T>
class BWT97InvColPipeline {
public:
    virtual ~BWT97InvColPipeline() = default;

    // Put the next row of the high or the low half into DlyRowDst(0).
    virtual void NextH() = 0;
    virtual void NextL() = 0;
    // The latest low or high row, or the one that came `delay` rows of its kind before it.
    virtual T* DlyRowL(unsigned delay);
    virtual T* DlyRowH(unsigned delay);
    // The latest row of the destination, or one before it.
    virtual T* DlyRowDst(unsigned delay);

    // Takes one row and advances the lifting; to be called `height` times.
    void Step();

protected:
    // Width and height are 1 or more.
    BWT97InvColPipeline(const ImageCoreC<T, 1u>& image, unsigned rowWidth, unsigned nOfRows,
                        bool isFirstRowHigh);

private:
    bool IsLow() const { return (rowIndex % 2 == 1) == isOddStart; }

    void FetchL();
    void FetchH();

    void ProcessOdd_1();
    void ProcessOdd_3();
    void ProcessEven_3();

    void StepForHeight1();
    void StepForHeight2();
    void StepForHeight3();
    void StepForHeight4();
    void StepForHeight5nMore();
    void DrainLastL();
    void DrainLastH();

    void LiftDELTA(T* low, const T* high0, const T* high1);
    void LiftDELTAx2(T* low, const T* high);
    void LiftGAMMA(T* high, const T* low0, const T* low1);
    void LiftGAMMAx2(T* high, const T* low);
    void LiftBETA(T* low, const T* high0, const T* high1);
    void LiftBETAx2(T* low, const T* high);
    void LiftALPHA(T* high, const T* low0, const T* low1);
    void LiftALPHAx2(T* high, const T* low);

    T* dst; // the row that Step fills
    ptrdiff_t dstStep;
    unsigned width, height;
    unsigned rowIndex = 0; // of that row
    bool isOddStart;       // the first row is a high one, which delays the schedule by a row
};

// From the bands, through the row filter into an image.
template <class T, class Row>
class WT97InvColPipeline : public BWT97InvColPipeline<T> {
public:
    // Of `rect`, which is not empty, size and parity matter; image is its first sample. rowOfLow and
    // rowOfHigh give the rows of the vertical low and high half.
    WT97InvColPipeline(const Row& rowOfLow, const Row& rowOfHigh, const ImageCoreC<T, 1u>& image,
                       const Rect& rect)
        : BWT97InvColPipeline<T>(image, rect.width, rect.height, rect.y % 2 == 1), m_rowOfLow(rowOfLow),
          m_rowOfHigh(rowOfHigh)
    {
    }

    void NextH() override { m_rowOfHigh.Transform(this->DlyRowDst(0)); }
    void NextL() override { m_rowOfLow.Transform(this->DlyRowDst(0)); }

private:
    Row m_rowOfLow, m_rowOfHigh;
};

template <class T, class RowInput>
struct WT97InvAgregate {
    using Element = T;
    using Row = WTInvRow<WT97InvRowAgregate<T, RowInput>>;
    using ColPipeline = WT97InvColPipeline<T, Row>;
};

} // namespace jpeg2000

#endif
