// Suite TimjAdd: the level shift of JPEG, in both directions.
#include "qovj_main.h"
#include "qovjsuite.h"

static qdImage pSrc, pDst;
static QoviSize size;
static int srcStep, dstStep;

class TimjAdd : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjAdd() override = default;

    bool canStart() override
    {
        regCacheParm(g_imageSize, pDst, nullptr);
        pSrc.init(m_func, qdArgSrc);
        pDst.init(m_func, qdArgDst);
        return true;
    }

    bool initData() override
    {
        const int shift = qkGetVectorShift();
        size = g_imageSize.value();
        if (!pSrc.createImageExt(size, 0, shift, SET_RANDOM, 0, 0)) return false;
        if (!pDst.createImageExt(size, 4 * shift, shift, SET_ZERO, 0, 0)) return false;
        srcStep = pSrc.m_step;
        dstStep = pDst.m_step;
        return true;
    }

    void flushData() override
    {
        pSrc.deleteVector();
        pDst.deleteVector();
    }

    double getDivisor() override { return static_cast<double>(pDst.m_width) * pDst.m_height; }
    qkString getUnit() override { return "px"; }
};

QD_REG(TimjAdd, qoviAdd128_JPEG_16s8u_C1R, pSrc.m_16s, srcStep, pDst.m_8u, dstStep, size);
QD_REG(TimjAdd, qoviSub128_JPEG_8u16s_C1R, pSrc.m_8u, srcStep, pDst.m_16s, dstStep, size);
