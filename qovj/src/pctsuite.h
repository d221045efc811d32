// What the suites of the photo core transforms share: data transformed in place, and a table of cases that a
// step iterator walks, one table for the general forms and one for those of a fixed block. Included once by
// each unit, with internal linkage, as qovjsuite.h is.
#ifndef QOVJ_PCTSUITE_H
#define QOVJ_PCTSUITE_H

#include "qovj_main.h"
#include "qovjsuite.h"

namespace {

qdVector pSrcDst;
int srcDstStep; // bytes
QoviSize roiSize;
qkStepIterator<int> nRun; // the row of the table, from 1

class PctTest : public qdTest {
public:
    using qdTest::qdTest;
    ~PctTest() override = default;

    bool canStart() override
    {
        static const struct {
            const char* name;
            int elements;
        } fixedForms[] = {{"16x16", 256}, {"8x16", 128}, {"8x8", 64}};
        m_blockElements = 0;
        for (const auto& form : fixedForms) {
            if (m_func.contains(form.name)) m_blockElements = form.elements;
        }
        pSrcDst.init(m_func, 1);
        nRun.reset();
        nRun.setName(isGeneral() ? "nRun with ROI case" : "nRun fixed ROI case", "");
        nRun.setStep(1, numCases(), '+', 1);
        nRun.fromIStream(g_istrm);
        return true;
    }

    bool canContinue() override
    {
        if (!(m_firstData ? nRun.firstValue() : nRun.nextValue())) return false;
        m_hasCase = nRun.value() >= 1 && nRun.value() <= numCases();
        if (m_hasCase) takeCase(nRun.value() - 1);
        return true;
    }

    // A row that the table does not have is passed over.
    bool initData() override { return m_hasCase && createData(); }

    void parmsToCstrm() override
    {
        g_cstrm << srcDstStep;
        if (isGeneral()) g_cstrm << roiSize.width << roiSize.height;
    }
    void parmsNameToCstrm() override
    {
        g_cstrm << "srcDstStep";
        if (isGeneral())
            g_cstrm << "width"
                    << "height";
    }
    void parmsToOstrm() override
    {
        g_ostrm << "srcDstStep=" << srcDstStep;
        if (isGeneral()) g_ostrm << " roiSize=" << roiSize;
    }

    double getDivisor() override
    {
        return isGeneral() ? static_cast<double>(roiSize.width) * roiSize.height : m_blockElements;
    }
    qkString getUnit() override { return "e"; }

protected:
    virtual int numCases() const = 0; // rows of the table
    virtual void takeCase(int row) = 0;
    virtual bool createData() = 0;

    bool isGeneral() const { return m_blockElements == 0; }

private:
    int m_blockElements = 0; // of a fixed block
    bool m_hasCase = false;
};

} // namespace

#endif
