// Suite Tim_jxrPCT: the photo core transforms of JPEG XR, on rows that lie close together or one element
// apart, which gives each another alignment.
#include <iterator>

#include "pctsuite.h"

static int dataSize; // bytes of an element
static int algnImg;  // elements between the rows

namespace {

struct RoiCase {
    int width, height, alignment;
};
const RoiCase runTbl_Roi[] = {{32, 16, 0},  {64, 16, 0},   {128, 16, 0},  {256, 16, 0},
                              {512, 16, 0}, {1024, 16, 0}, {2048, 16, 0}, {4096, 16, 0},
                              {32, 16, 1},  {64, 16, 1},   {128, 16, 1},  {256, 16, 1},
                              {512, 16, 1}, {1024, 16, 1}, {2048, 16, 1}, {4096, 16, 1}};

// Width 0 stands for a single block. The first test that comes to the row puts the width of its own block
// there, and the row keeps it for all that follow. A block 16 wide that finds 8 is refused by the library.
struct FixedCase {
    int width, alignment;
};
FixedCase runTbl_Fixed[] = {{0, 0}, {64, 0}, {128, 0}, {256, 0}, {512, 0}, {1024, 0}, {2048, 0}, {4096, 0},
                            {0, 1}, {64, 1}, {128, 1}, {256, 1}, {512, 1}, {1024, 1}, {2048, 1}, {4096, 1}};
const int fixedRows = 16;

} // namespace

class Tim_jxrPCT : public PctTest {
public:
    using PctTest::PctTest;
    ~Tim_jxrPCT() override = default;

    bool canStart() override
    {
        dataSize = m_func.contains("_32s_") || m_func.contains("_32f_") ? 4 : 2;
        m_eightWide = m_func.contains("8x");
        return PctTest::canStart();
    }

    void flushData() override { pSrcDst.deleteVector(); }

protected:
    int numCases() const override
    {
        return static_cast<int>(isGeneral() ? std::size(runTbl_Roi) : std::size(runTbl_Fixed));
    }

    void takeCase(int row) override
    {
        if (isGeneral()) {
            const RoiCase& chosen = runTbl_Roi[row];
            algnImg = chosen.alignment;
            roiSize = {chosen.width, chosen.height};
        } else {
            FixedCase& chosen = runTbl_Fixed[row];
            if (chosen.width == 0) chosen.width = m_eightWide ? 8 : 16;
            algnImg = chosen.alignment;
            roiSize = {chosen.width, fixedRows};
        }
        srcDstStep = (algnImg + roiSize.width) * dataSize;
    }

    bool createData() override
    {
        return pSrcDst.createVector(roiSize.height * srcDstStep / dataSize, SET_RANDOM, -100.0, 100.0);
    }

private:
    bool m_eightWide = false;
};

#define PCT_ROI(f, t) QD_REG(Tim_jxrPCT, f, pSrcDst.m_##t, srcDstStep, roiSize)
#define PCT_FIXED(f, t) QD_REG(Tim_jxrPCT, f, pSrcDst.m_##t, srcDstStep)
#define PCT_FORMS(direction, t)                                                                              \
    PCT_ROI(qoviPCT##direction##_JPEGXR_##t##_C1IR, t);                                                      \
    PCT_FIXED(qoviPCT##direction##16x16_JPEGXR_##t##_C1IR, t);                                               \
    PCT_FIXED(qoviPCT##direction##8x16_JPEGXR_##t##_C1IR, t);                                                \
    PCT_FIXED(qoviPCT##direction##8x8_JPEGXR_##t##_C1IR, t)

PCT_FORMS(Fwd, 32s);
PCT_FORMS(Inv, 32s);
PCT_FORMS(Fwd, 16s);
PCT_FORMS(Inv, 16s);
PCT_FORMS(Fwd, 32f);
PCT_FORMS(Inv, 32f);
