// Suite TimjRGB: colour conversion of JPEG pictures, and the component transforms of JPEG 2000.
#include "imagesuite.h"

// The same data in every run.
static void fillSource()
{
    qdVector::m_seed = 456;
    pSrc.setRandom(-32768.0, 32767.0);
}

class TimjRGB : public SizedImageTest {
public:
    using SizedImageTest::SizedImageTest;
    ~TimjRGB() override = default;

    bool initData() override
    {
        size = g_imageSize.value();
        if (!pSrc.createImage(size, -1, -1, false)) return false;
        if (!pDst.createImage(size, -1, -1, false)) return false;
        fillSource();
        takeSteps();
        return true;
    }

    double getDivisor() override
    {
        return static_cast<double>(pDst.m_width) * pDst.m_height * pDst.channels();
    }
    qkString getUnit() override { return "pxch"; }
};

#define RGB_REG(f, source, destination)                                                                      \
    QD_REG(TimjRGB, f, pSrc.source, srcStep, pDst.destination, dstStep, size)
// In place: the data are refilled where that is not timed, and drift in the loop method.
#define RGB_REG_IN_PLACE(f, planes) QD_REG_Ibs(TimjRGB, f, fillSource, pSrc.planes, srcStep, size)

RGB_REG(qoviRGBToY_JPEG_8u_P3C1R, m_planes_8u, m_8u);
RGB_REG(qoviRGBToY_JPEG_8u_C3C1R, m_8u, m_8u);
RGB_REG(qoviRGBToYCbCr_JPEG_8u_P3R, m_planes_8u, m_planes_8u);
RGB_REG(qoviRGBToYCbCr_JPEG_8u_C3P3R, m_8u, m_planes_8u);
RGB_REG(qoviYCbCrToRGB_JPEG_8u_P3R, m_planes_8u, m_planes_8u);
RGB_REG(qoviYCbCrToRGB_JPEG_8u_P3C3R, m_planes_8u, m_8u);
RGB_REG(qoviCMYKToYCCK_JPEG_8u_P4R, m_planes_8u, m_planes_8u);
RGB_REG(qoviCMYKToYCCK_JPEG_8u_C4P4R, m_8u, m_planes_8u);
RGB_REG(qoviYCCKToCMYK_JPEG_8u_P4R, m_planes_8u, m_planes_8u);
RGB_REG(qoviYCCKToCMYK_JPEG_8u_P4C4R, m_planes_8u, m_8u);
RGB_REG(qoviYCbCrToBGR_JPEG_8u_P3C3R, m_planes_8u, m_8u);
RGB_REG(qoviBGRToYCbCr_JPEG_8u_C3P3R, m_8u, m_planes_8u);
RGB_REG(qoviBGRToY_JPEG_8u_C3C1R, m_8u, m_8u);
RGB_REG(qoviICTFwd_JPEG2K_32f_C3P3R, m_32f, m_planes_32f);
RGB_REG_IN_PLACE(qoviICTFwd_JPEG2K_32f_P3IR, m_planes_32f);
RGB_REG(qoviICTInv_JPEG2K_32f_P3C3R, m_planes_32f, m_32f);
RGB_REG_IN_PLACE(qoviICTInv_JPEG2K_32f_P3IR, m_planes_32f);
RGB_REG_IN_PLACE(qoviICTFwd_JPEG2K_16s_P3IR, m_planes_16s);
RGB_REG_IN_PLACE(qoviICTFwd_JPEG2K_32s_P3IR, m_planes_32s);
RGB_REG_IN_PLACE(qoviICTInv_JPEG2K_16s_P3IR, m_planes_16s);
RGB_REG_IN_PLACE(qoviICTInv_JPEG2K_32s_P3IR, m_planes_32s);
RGB_REG_IN_PLACE(qoviRCTFwd_JPEG2K_16s_P3IR, m_planes_16s);
RGB_REG_IN_PLACE(qoviRCTInv_JPEG2K_16s_P3IR, m_planes_16s);
RGB_REG(qoviRCTFwd_JPEG2K_16s_C3P3R, m_16s, m_planes_16s);
RGB_REG(qoviRCTInv_JPEG2K_16s_P3C3R, m_planes_16s, m_16s);
RGB_REG_IN_PLACE(qoviRCTFwd_JPEG2K_32s_P3IR, m_planes_32s);
RGB_REG_IN_PLACE(qoviRCTInv_JPEG2K_32s_P3IR, m_planes_32s);
RGB_REG(qoviRCTFwd_JPEG2K_32s_C3P3R, m_32s, m_planes_32s);
RGB_REG(qoviRCTInv_JPEG2K_32s_P3C3R, m_planes_32s, m_32s);
