// Suite TimjQuant: quantisation of one block in place. With a table of ones the block stays as it is, so that
// every call sees the same data.
#include "qovj_main.h"
#include "qovjsuite.h"

static qdVector pSrc;
static Qov16u pSpec[256];

class TimjQuant : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjQuant() override = default;

    bool canStart() override
    {
        pSrc.init(m_func, qdArgSrc);
        for (Qov16u& step : pSpec) step = 1;
        return true;
    }

    bool initData() override { return pSrc.createVector(64, -1); }
    void flushData() override { pSrc.deleteVector(); }

    void constToOstrm() override
    {
        g_ostrm << "Src[i] = " << pSrc.getDataString(pSrc.getPointerAt(0), 1) << "\n";
    }

    double getDivisor() override { return 64.0; }
    qkString getUnit() override { return "px"; }
};

QD_REG(TimjQuant, qoviQuantFwd8x8_JPEG_16s_C1I, pSrc.m_16s, pSpec);
QD_REG(TimjQuant, qoviQuantInv8x8_JPEG_16s_C1I, pSrc.m_16s, pSpec);
