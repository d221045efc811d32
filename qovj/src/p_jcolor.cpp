// Suite jColorConversion__RW: colour conversion between packed 16-bit or 4:2:2 pixels and other layouts.
#include "qovj_main.h"
#include "qovjsuite.h"

static qdImage Src, Dst;
static QoviSize size;
static int srcStep, dstStep;

class jColorConversion__RW : public qdTest {
public:
    using qdTest::qdTest;
    ~jColorConversion__RW() override = default;

    bool canStart() override
    {
        regCacheParm(g_imageSize, Dst, nullptr);
        Src.init(m_func, qdArgSrc);
        Dst.init(m_func, qdArgDst);
        return true;
    }

    bool initData() override
    {
        const int shift = qkGetVectorShift();
        size = g_imageSize.value();
        if (!Src.createImageExt(size, 0, shift, SET_RANDOM, 0, 0)) return false;
        if (!Dst.createImageExt(size, 4 * shift, shift, SET_ZERO, 0, 0)) return false;
        srcStep = Src.m_step;
        dstStep = Dst.m_step;
        return true;
    }

    void flushData() override
    {
        Src.deleteVector();
        Dst.deleteVector();
    }

    void constToOstrm() override { g_ostrm << "Src[i,j] = random\n"; }

    double getDivisor() override { return static_cast<double>(Dst.m_width) * Dst.m_height * Dst.channels(); }
    qkString getUnit() override { return "pxch"; }
};

// A packed pixel is one word, so that rows of the C3 images have room for three times the pixels.
#define COLOR_FROM_PACKED(f)                                                                                 \
    QD_REG(jColorConversion__RW, f, Src.m_16u, srcStep, Dst.m_planes_8u, dstStep, size)
#define COLOR_TO_PACKED(f) QD_REG(jColorConversion__RW, f, Src.m_planes_8u, srcStep, Dst.m_16u, dstStep, size)
COLOR_FROM_PACKED(qoviRGB555ToYCbCr_JPEG_16u8u_C3P3R);
COLOR_FROM_PACKED(qoviBGR555ToYCbCr_JPEG_16u8u_C3P3R);
COLOR_FROM_PACKED(qoviRGB565ToYCbCr_JPEG_16u8u_C3P3R);
COLOR_FROM_PACKED(qoviBGR565ToYCbCr_JPEG_16u8u_C3P3R);
COLOR_TO_PACKED(qoviYCbCrToRGB555_JPEG_8u16u_P3C3R);
COLOR_TO_PACKED(qoviYCbCrToBGR555_JPEG_8u16u_P3C3R);
COLOR_TO_PACKED(qoviYCbCrToRGB565_JPEG_8u16u_P3C3R);
COLOR_TO_PACKED(qoviYCbCrToBGR565_JPEG_8u16u_P3C3R);
QD_REG(jColorConversion__RW, qoviYCbCr422ToRGB_JPEG_8u_C2C3R, Src.m_8u, srcStep, Dst.m_8u, dstStep, size);
