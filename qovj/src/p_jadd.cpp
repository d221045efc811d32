// Suite TimjAdd: the level shift of JPEG, in both directions.
#include "imagesuite.h"

class TimjAdd : public SizedImageTest {
public:
    using SizedImageTest::SizedImageTest;
    ~TimjAdd() override = default;

    double getDivisor() override { return static_cast<double>(pDst.m_width) * pDst.m_height; }
    qkString getUnit() override { return "px"; }
};

QD_REG(TimjAdd, qoviAdd128_JPEG_16s8u_C1R, pSrc.m_16s, srcStep, pDst.m_8u, dstStep, size);
QD_REG(TimjAdd, qoviSub128_JPEG_8u16s_C1R, pSrc.m_8u, srcStep, pDst.m_16s, dstStep, size);
