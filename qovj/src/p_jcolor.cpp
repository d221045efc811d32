// Suite jColorConversion__RW: colour conversion between packed 16-bit or 4:2:2 pixels and other layouts.
#include "imagesuite.h"

class jColorConversion__RW : public SizedImageTest {
public:
    using SizedImageTest::SizedImageTest;
    ~jColorConversion__RW() override = default;

    void constToOstrm() override { g_ostrm << "Src[i,j] = random\n"; }

    double getDivisor() override
    {
        return static_cast<double>(pDst.m_width) * pDst.m_height * pDst.channels();
    }
    qkString getUnit() override { return "pxch"; }
};

// A packed pixel is one word, so that rows of the C3 images have room for three times the pixels.
#define COLOR_FROM_PACKED(f)                                                                                 \
    QD_REG(jColorConversion__RW, f, pSrc.m_16u, srcStep, pDst.m_planes_8u, dstStep, size)
#define COLOR_TO_PACKED(f)                                                                                   \
    QD_REG(jColorConversion__RW, f, pSrc.m_planes_8u, srcStep, pDst.m_16u, dstStep, size)
COLOR_FROM_PACKED(qoviRGB555ToYCbCr_JPEG_16u8u_C3P3R);
COLOR_FROM_PACKED(qoviBGR555ToYCbCr_JPEG_16u8u_C3P3R);
COLOR_FROM_PACKED(qoviRGB565ToYCbCr_JPEG_16u8u_C3P3R);
COLOR_FROM_PACKED(qoviBGR565ToYCbCr_JPEG_16u8u_C3P3R);
COLOR_TO_PACKED(qoviYCbCrToRGB555_JPEG_8u16u_P3C3R);
COLOR_TO_PACKED(qoviYCbCrToBGR555_JPEG_8u16u_P3C3R);
COLOR_TO_PACKED(qoviYCbCrToRGB565_JPEG_8u16u_P3C3R);
COLOR_TO_PACKED(qoviYCbCrToBGR565_JPEG_8u16u_P3C3R);
QD_REG(jColorConversion__RW, qoviYCbCr422ToRGB_JPEG_8u_C2C3R, pSrc.m_8u, srcStep, pDst.m_8u, dstStep, size);
