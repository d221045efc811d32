// Suite TimjSample: chroma sampling of an image, in both directions.
#include "qovj_main.h"
#include "qovjsuite.h"

static qdImage pSrcImg, pDst;
static const Qov8u* pSrc; // in an image to be doubled: behind its border
static QoviSize size;
static QoviSize srcSize, dstSize;
static int srcStep, dstStep;

class TimjSample : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjSample() override = default;

    bool canStart() override
    {
        regCacheParm(g_imageSize, pDst, nullptr);
        pSrcImg.init(m_func, qdArgSrc);
        pDst.init(m_func, qdArgDst);
        m_up = m_func.contains("Up");
        m_rowsStay = m_func.contains("V1");
        return true;
    }

    bool initData() override
    {
        const int shift = qkGetVectorShift();
        size = g_imageSize.value();
        const QoviSize half{size.width / 2, m_rowsStay ? size.height : size.height / 2};
        if (half.width < 1 || half.height < 1) return false;
        srcSize = m_up ? half : size;
        dstSize = m_up ? size : half;
        const int border = m_up ? 1 : 0; // read by the filter, on every side
        if (!pSrcImg.createVector(srcSize.width + 2 * border, srcSize.height + 2 * border, SET_RANDOM, 0, 0))
            return false;
        if (!pDst.createVectorExt(dstSize, shift, SET_ZERO, 0, 0)) return false;
        srcStep = pSrcImg.m_step;
        dstStep = pDst.m_step;
        pSrc = pSrcImg.m_8u + static_cast<ptrdiff_t>(border) * srcStep + border;
        return true;
    }

    void flushData() override
    {
        pSrcImg.deleteVector();
        pDst.deleteVector();
    }

    double getDivisor() override { return static_cast<double>(pDst.m_width) * pDst.m_height; }
    qkString getUnit() override { return "px"; }

private:
    bool m_up = false;
    bool m_rowsStay = false; // the height is not halved
};

QD_REG(TimjSample, qoviSampleDownH2V1_JPEG_8u_C1R, pSrc, srcStep, srcSize, pDst.m_8u, dstStep, dstSize);
QD_REG(TimjSample, qoviSampleDownH2V2_JPEG_8u_C1R, pSrc, srcStep, srcSize, pDst.m_8u, dstStep, dstSize);
QD_REG(TimjSample, qoviSampleUpH2V1_JPEG_8u_C1R, pSrc, srcStep, srcSize, pDst.m_8u, dstStep, dstSize);
QD_REG(TimjSample, qoviSampleUpH2V2_JPEG_8u_C1R, pSrc, srcStep, srcSize, pDst.m_8u, dstStep, dstSize);
