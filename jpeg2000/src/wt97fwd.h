// The irreversible 9-7 wavelet down the columns (ITU-T T.800, annex F). Rows come in from the top into a ring
// of six, are lifted there as soon as their neighbours have come, and go out scaled.
#ifndef JPEG2000_WT97FWD_H
#define JPEG2000_WT97FWD_H

#include "ring.h"
#include "wt97fwdrow.h"
#include "wtfwdrow.h"

#include <cstring>

namespace jpeg2000 {

// The schedule and the lifting, for short, int (whole numbers over 65536) and float. Where rows come from and
// go to is told by the derived class.
template <class T>
class BWT97FwdColPipeline {
public:
    virtual ~BWT97FwdColPipeline() = default;

    // Take the next input row into the ring, by NextRow.
    virtual void NextH() = 0;
    virtual void NextL() = 0;
    // The latest high or low row, or the one that came `delay` rows of its kind before it.
    virtual T* DlyRowL(unsigned delay);
    virtual T* DlyRowH(unsigned delay);

    // Takes one input row and advances the lifting; to be called `height` times.
    void Step();

protected:
    // Width and height are 1 or more.
    BWT97FwdColPipeline(unsigned rowWidth, unsigned nOfInputRows, bool isFirstRowHigh);

    // Advances the ring; the row that is to be filled.
    T* NextRow();

private:
    // A finished row, from the top. It is the receiver's until the next Step.
    virtual void OutputL(T* row) = 0;
    virtual void OutputH(T* row) = 0;

    bool IsLow() const { return (rowIndex % 2 == 1) == isOddStart; }
    T* DlyRow(unsigned delay) { return rows.doubledRows[rows.position + rows.nOfRows - delay]; }

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

    void LiftALPHA(T* high, const T* low0, const T* low1);
    void LiftALPHAx2(T* high, const T* low);
    void LiftBETA(T* low, const T* high0, const T* high1);
    void LiftBETAx2(T* low, const T* high);
    void LiftGAMMA(T* high, const T* low0, const T* low1);
    void LiftGAMMAx2(T* high, const T* low);
    void LiftDELTA(T* low, const T* high0, const T* high1);
    void LiftDELTAx2(T* low, const T* high);
    void LiftKL(T* low);
    void LiftKH(T* high);
    void FinishL(T* low);
    void FinishH(T* high);

    RingStripe<T> rows;
    unsigned width, height;
    unsigned rowIndex = 0; // of the row that Step works on
    bool isOddStart;       // the first row is a high one, which delays the schedule by a row
};

// From an image, through the row filter into the bands.
template <class T, class Row>
class WT97FwdColPipeline : public BWT97FwdColPipeline<T> {
public:
    // Of `rect`, which is not empty, size and parity matter; src is its first sample. rowOfLow and rowOfHigh
    // filter the rows of the vertical low and high half.
    WT97FwdColPipeline(const ImageCoreC<T, 1u>& src, const Rect& rect, const Row& rowOfLow,
                       const Row& rowOfHigh)
        : BWT97FwdColPipeline<T>(rect.width, rect.height, rect.y % 2 == 1), m_src(src.data),
          m_srcStep(src.step), m_rowBytes(rect.width * sizeof(T)), m_rowOfLow(rowOfLow),
          m_rowOfHigh(rowOfHigh)
    {
    }

    void NextH() override { Take(); }
    void NextL() override { Take(); }

private:
    void OutputL(T* row) override { m_rowOfLow.Transform(row); }
    void OutputH(T* row) override { m_rowOfHigh.Transform(row); }

    void Take()
    {
        std::memcpy(this->NextRow(), m_src, m_rowBytes);
        addrInc(m_src, m_srcStep);
    }

    const T* m_src;
    unsigned m_srcStep;
    size_t m_rowBytes;
    Row m_rowOfLow, m_rowOfHigh;
};

template <class T, class RowOutput>
struct WT97FwdAgregate {
    using Element = T;
    using Row = WTFwdRow<WT97FwdRowAgregate<T, RowOutput>>;
    using ColPipeline = WT97FwdColPipeline<T, Row>;
};

} // namespace jpeg2000

#endif
