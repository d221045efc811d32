// Suite TimjSplit_TIFF: a row of 16-bit samples into a row of high bytes and one of low bytes, and back.
#include <initializer_list>

#include "qovj_main.h"
#include "qovjsuite.h"

static qkIterator<int> len;
static qdVector pRow; // the 16-bit side, whichever way the function goes
static qdVector pSegm0, pSegm1;
static const Qov16u* pSplitSrc;
static Qov8u* pSplitDst[2];
static const Qov8u* pJoinSrc[2];
static Qov16u* pJoinDst;

class TimjSplit_TIFF : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjSplit_TIFF() override = default;

    bool canStart() override
    {
        regCacheParm(len, &pRow, nullptr);
        len.reset();
        len.setName("len", "");
        for (const int length : {64, 256, 720}) len.add(length);
        pRow.init(qd16u);
        pSegm0.init(qd8u);
        pSegm1.init(qd8u);
        return true;
    }

    bool initData() override
    {
        for (qdVector* vector : {&pRow, &pSegm0, &pSegm1})
            if (!vector->createVector(len.value(), SET_RANDOM)) return false;
        pSplitSrc = pJoinDst = pRow.m_16u;
        pJoinSrc[0] = pSplitDst[0] = pSegm0.m_8u;
        pJoinSrc[1] = pSplitDst[1] = pSegm1.m_8u;
        return true;
    }

    void flushData() override
    {
        pRow.deleteVector();
        pSegm0.deleteVector();
        pSegm1.deleteVector();
    }

    double getDivisor() override { return pRow.m_len; }
    qkString getUnit() override { return "e"; }
};

QD_REG(TimjSplit_TIFF, qoviSplitRow_TIFF_16u8u_C1, pSplitSrc, pSplitDst, len.value());
QD_REG(TimjSplit_TIFF, qoviJoinRow_TIFF_8u16u_C1, pJoinSrc, pJoinDst, len.value());
