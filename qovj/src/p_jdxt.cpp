// Suite Tim_DXT: texture blocks of one and of two channels, of a table of sizes and steps. The vectors hold
// the largest of them.
#include <iterator>

#include "qovj_main.h"
#include "qovjsuite.h"

static qdVector pSrc, pDst;
static QoviSize roiSize;
static int srcStep;              // bytes
static qkStepIterator<int> nRun; // the row of roi_set

// The first row is a single block and is never run.
static const struct {
    int width, height, step;
} roi_set[] = {{4, 4, 128},      {8, 8, 256},      {8, 8, 512},      {8, 8, 1024},    {8, 8, 2048},
               {64, 64, 256},    {64, 64, 512},    {64, 64, 1024},   {64, 64, 2048},  {128, 128, 512},
               {128, 128, 1024}, {128, 128, 2048}, {256, 256, 1024}, {512, 512, 2048}};
static const int firstRow = 1, lastRow = static_cast<int>(std::size(roi_set)) - 1;

class Tim_DXT : public qdTest {
public:
    using qdTest::qdTest;
    ~Tim_DXT() override = default;

    bool canStart() override
    {
        pSrc.init(qd8u);
        pDst.init(qd8u);
        nRun.reset();
        nRun.setName("nRun with ROI", "");
        nRun.setStep(firstRow, lastRow, '+', 1);
        nRun.fromIStream(g_istrm);
        return true;
    }

    bool canContinue() override { return m_firstData ? nRun.firstValue() : nRun.nextValue(); }

    // A row that is not run is passed over.
    bool initData() override
    {
        const int row = nRun.value();
        if (row < firstRow || row > lastRow) return false;
        roiSize = {roi_set[row].width, roi_set[row].height};
        srcStep = roi_set[row].step;
        return pSrc.createVector(4194304, SET_RANDOM, 0.0, 255.0) &&
               pDst.createVector(4194304, SET_CONST, 0.0, 255.0);
    }

    void flushData() override
    {
        pSrc.deleteVector();
        pDst.deleteVector();
    }

    void parmsToCstrm() override { g_cstrm << srcStep << roiSize.width << roiSize.height; }
    void parmsNameToCstrm() override
    {
        for (const char* name : {"srcDstStep", "width", "height"}) g_cstrm << name;
    }
    void parmsToOstrm() override { g_ostrm << "srcDstStep=" << srcStep << "   roiSize=" << roiSize; }

    static double getDivisor_el() { return static_cast<double>(roiSize.width) * roiSize.height; }
    double getDivisor() override { return getDivisor_el(); }
    qkString getUnit() override { return "e"; }
};

QD_REG(Tim_DXT, qoviTextureEncodeBlock_BC4_8u_C1R, pSrc.m_8u, srcStep, roiSize, pDst.m_8u);
QD_REG(Tim_DXT, qoviTextureEncodeBlockFromRG_BC5_8u_C2C1R, pSrc.m_8u, srcStep, roiSize, pDst.m_8u);
