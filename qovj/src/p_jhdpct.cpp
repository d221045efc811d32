// Suite Tim_PCT: the photo core transforms of HD Photo, on regions of one large vector.
#include <iterator>

#include "pctsuite.h"

namespace {

struct Case {
    int width, height, step;
};
const Case withRoi[] = {{8, 8, 256},      {8, 8, 512},       {8, 8, 1024},     {8, 8, 2048},
                        {64, 64, 256},    {64, 64, 512},     {64, 64, 1024},   {64, 64, 2048},
                        {128, 128, 512},  {128, 128, 1024},  {128, 128, 2048}, {256, 256, 1024},
                        {512, 512, 2048}, {1024, 1024, 4096}};
const Case fixedRoi[] = {{8, 8, 256}, {8, 8, 512}, {8, 8, 1024}, {8, 8, 2048}};

} // namespace

class Tim_PCT : public PctTest {
public:
    using PctTest::PctTest;
    ~Tim_PCT() override = default;

    void flushStart() override { pSrcDst.deleteVector(); }

protected:
    int numCases() const override
    {
        return static_cast<int>(isGeneral() ? std::size(withRoi) : std::size(fixedRoi));
    }

    void takeCase(int row) override
    {
        const Case& chosen = isGeneral() ? withRoi[row] : fixedRoi[row];
        roiSize = {chosen.width, chosen.height};
        srcDstStep = chosen.step;
    }

    // Once for all cases of a test: each goes on with what the one before has left.
    bool createData() override
    {
        return pSrcDst.m_data || pSrcDst.createVector(16777216, SET_RANDOM, -100.0, 100.0);
    }
};

#define PCT_ROI(f) QD_REG(Tim_PCT, f, pSrcDst.m_32s, srcDstStep, roiSize)
#define PCT_FIXED(f) QD_REG(Tim_PCT, f, pSrcDst.m_32s, srcDstStep)

PCT_ROI(qoviPCTFwd_HDP_32s_C1IR);
PCT_FIXED(qoviPCTFwd16x16_HDP_32s_C1IR);
PCT_FIXED(qoviPCTFwd8x16_HDP_32s_C1IR);
PCT_FIXED(qoviPCTFwd8x8_HDP_32s_C1IR);
PCT_ROI(qoviPCTInv_HDP_32s_C1IR);
PCT_FIXED(qoviPCTInv16x16_HDP_32s_C1IR);
PCT_FIXED(qoviPCTInv8x16_HDP_32s_C1IR);
PCT_FIXED(qoviPCTInv8x8_HDP_32s_C1IR);
