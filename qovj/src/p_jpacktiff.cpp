// Suite TimjPack_TIFF: PackBits of one row of random bytes, and back.
#include <initializer_list>

#include "qovj_main.h"
#include "qovjsuite.h"

static qkIterator<int> len;
static qdVector pSrc; // the row, whichever way the function goes
static qdVector pDst; // the packed bytes
static int srcLen, dstLen;
static int dstCurrPos;

class TimjPack_TIFF : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjPack_TIFF() override = default;

    bool canStart() override
    {
        m_pack = m_func.contains("Pack"); // "Unpack" has a small p
        regCacheParm(len, &pSrc, nullptr);
        len.reset();
        len.setName(m_pack ? "srcLen" : "dstLen", "");
        for (const int length : {64, 256, 720}) len.add(length);
        pSrc.init(m_func, m_pack ? 1 : 2);
        pDst.init(m_func, m_pack ? 2 : 1);
        return true;
    }

    bool initData() override
    {
        srcLen = len.value();
        dstLen = qdjCount(2LL * srcLen);
        if (!pSrc.createVector(srcLen, SET_RANDOM)) return false;
        if (!pDst.createVector(dstLen, -1)) return false;
        return m_pack || packRow();
    }

    void flushData() override
    {
        pSrc.deleteVector();
        pDst.deleteVector();
    }

    double getDivisor() override { return pSrc.m_len; }
    qkString getUnit() override { return "e"; }

private:
    // The packed form of the random row is what is unpacked.
    static bool packRow()
    {
        dstCurrPos = 0;
        const QovStatus status =
            qoviPackBitsRow_TIFF_8u_C1(pSrc.m_8u, srcLen, pDst.m_8u, &dstCurrPos, dstLen);
        if (qkIsError(qdTest::checkStatus(status, "qoviPackBitsRow_TIFF_8u_C1"))) return false;
        dstLen = dstCurrPos;
        return true;
    }

    bool m_pack = false;
};

static void rewind()
{
    dstCurrPos = 0;
}

QD_REG_I(TimjPack_TIFF, qoviPackBitsRow_TIFF_8u_C1, rewind, pSrc.m_8u, srcLen, pDst.m_8u, &dstCurrPos,
         dstLen);
QD_REG_I(TimjPack_TIFF, qoviUnpackBitsRow_TIFF_8u_C1, rewind, pDst.m_8u, &dstCurrPos, dstLen, pSrc.m_8u,
         srcLen);
