// Suite TimjSampleRow: chroma sampling of one row or of two, in both directions.
#include "qovj_main.h"
#include "qovjsuite.h"

static qdVector pSrcVec, pSrc2Vec, pDst;
static const Qov8u *pSrc, *pSrc2;
static int srcWidth, dstWidth;

class TimjSampleRow : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjSampleRow() override = default;

    bool canStart() override
    {
        regCacheParm(g_rowWidth, &pDst, nullptr);
        pSrcVec.init(m_func, qdArgSrc);
        pSrc2Vec.init(m_func, qdArgSrc);
        pDst.init(m_func, qdArgDst);
        m_up = m_func.contains("Up");
        return true;
    }

    // The three buffers lie apart in the cache.
    bool initData() override
    {
        const int shift = qkGetVectorShift();
        dstWidth = g_rowWidth.value();
        srcWidth = m_up ? dstWidth / 2 : qdjCount(2LL * dstWidth);
        if (srcWidth < 1) return false;
        const int border = m_up ? 1 : 0; // room for one, on either side
        const int length = qdjCount(srcWidth + 2LL * border);
        if (!pSrcVec.createVectorExt(length, 0, SET_RANDOM)) return false;
        if (!pSrc2Vec.createVectorExt(length, shift, SET_RANDOM)) return false;
        if (!pDst.createVectorExt(dstWidth, 2 * shift, SET_ZERO)) return false;
        pSrc = pSrcVec.m_8u + border;
        pSrc2 = pSrc2Vec.m_8u + border;
        return true;
    }

    void flushData() override
    {
        pSrcVec.deleteVector();
        pSrc2Vec.deleteVector();
        pDst.deleteVector();
    }

    void parmsToCstrm() override { g_cstrm << dstWidth; }
    void parmsNameToCstrm() override { g_cstrm << "dstWidth"; }
    void parmsToOstrm() override { g_ostrm << "dstWidth=" << dstWidth; }

    double getDivisor() override { return dstWidth; }
    qkString getUnit() override { return "px"; }

private:
    bool m_up = false;
};

QD_REG(TimjSampleRow, qoviSampleDownRowH2V1_Box_JPEG_8u_C1, pSrc, srcWidth, pDst.m_8u);
QD_REG(TimjSampleRow, qoviSampleDownRowH2V2_Box_JPEG_8u_C1, pSrc, pSrc2, srcWidth, pDst.m_8u);
QD_REG(TimjSampleRow, qoviSampleUpRowH2V1_Triangle_JPEG_8u_C1, pSrc, srcWidth, pDst.m_8u);
QD_REG(TimjSampleRow, qoviSampleUpRowH2V2_Triangle_JPEG_8u_C1, pSrc, pSrc2, srcWidth, pDst.m_8u);
