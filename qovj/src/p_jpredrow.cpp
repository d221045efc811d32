// Suite TimjPredRow: prediction of lossless JPEG. The first row is measured by itself, the others in one walk
// over all of them, for which the first one is prepared.
#include "qovj_main.h"
#include "qovjsuite.h"

static qdImage srcImg, dstImg;
static qkIterator<int> predictor;
static const Qov16s* pSrc;
static Qov16s* pDst;
static int width, height;
static int srcStep, dstStep;    // bytes
static const int P = 4, Pt = 2; // precision and point transform of the first row

static inline const Qov16s* srcRow(int y)
{
    return pSrc + y * (srcStep / static_cast<ptrdiff_t>(sizeof *pSrc));
}

static inline Qov16s* dstRow(int y)
{
    return pDst + y * (dstStep / static_cast<ptrdiff_t>(sizeof *pDst));
}

// Differences are taken from the samples above; reconstruction goes on from those that it has made.
static int qoviDiffPredRow_JPEG_16s_C1_x()
{
    int status = 0;
    for (int y = 1; y < height; y++)
        status = qoviDiffPredRow_JPEG_16s_C1(srcRow(y), srcRow(y - 1), dstRow(y), width, predictor.value());
    return status;
}

static int qoviReconstructPredRow_JPEG_16s_C1_x()
{
    int status = 0;
    for (int y = 1; y < height; y++)
        status =
            qoviReconstructPredRow_JPEG_16s_C1(srcRow(y), dstRow(y - 1), dstRow(y), width, predictor.value());
    return status;
}

class TimjPredRow : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjPredRow() override = default;

    bool canStart() override
    {
        m_first = m_func.contains("First");
        m_reconstruct = m_func.contains("Reconstruct");
        if (m_first) {
            m_parms.append(&g_imageSize);
        } else {
            regCacheParm(g_imageSize, srcImg, nullptr);
            predictor.reset();
            predictor.setName("predictor", "");
            for (int i = 1; i <= 7; i++) predictor.add(i);
            m_parms.append(&predictor);
        }
        srcImg.init(m_func, 1);
        dstImg.init(m_func, 1);
        return true;
    }

    bool initData() override
    {
        const QoviSize size = g_imageSize.value();
        width = size.width;
        height = size.height;
        if (!srcImg.createVector(size, SET_ZERO, 0, 0)) return false;
        if (!dstImg.createVectorExt(size, qkGetVectorShift(), SET_ZERO, 0, 0)) return false;
        qdjJaehne(srcImg, 100.0);
        pSrc = srcImg.m_16s;
        pDst = dstImg.m_16s;
        srcStep = srcImg.m_step;
        dstStep = dstImg.m_step;
        return m_first || firstRow();
    }

    void flushData() override
    {
        srcImg.deleteVector();
        dstImg.deleteVector();
    }

    double getDivisor() override { return m_first ? width : (height - 1.0) * width; }
    qkString getUnit() override { return "e"; }

private:
    bool firstRow() const
    {
        if (m_reconstruct)
            return !qkIsError(checkStatus(qoviReconstructPredFirstRow_JPEG_16s_C1(pSrc, pDst, width, P, Pt),
                                          "qoviReconstructPredFirstRow_JPEG_16s_C1"));
        return !qkIsError(checkStatus(qoviDiffPredFirstRow_JPEG_16s_C1(pSrc, pDst, width, P, Pt),
                                      "qoviDiffPredFirstRow_JPEG_16s_C1"));
    }

    bool m_first = false;
    bool m_reconstruct = false;
};

QD_REG(TimjPredRow, qoviDiffPredFirstRow_JPEG_16s_C1, pSrc, pDst, width, P, Pt);
QD_REG(TimjPredRow, qoviReconstructPredFirstRow_JPEG_16s_C1, pSrc, pDst, width, P, Pt);
QD_REG_X(TimjPredRow, qoviDiffPredRow_JPEG_16s_C1, qoviDiffPredRow_JPEG_16s_C1_x);
QD_REG_X(TimjPredRow, qoviReconstructPredRow_JPEG_16s_C1, qoviReconstructPredRow_JPEG_16s_C1_x);
