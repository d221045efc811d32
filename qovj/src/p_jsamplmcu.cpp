// Suite TimjSampleMCU: an MCU of pixels that need no colour conversion, sampled to level-shifted blocks, and
// back.
#include "mcusuite.h"

class TimjSampleMCU : public McuTest {
public:
    using McuTest::McuTest;
    ~TimjSampleMCU() override = default;

    void constToOstrm() override { g_ostrm << "Src[i,j] = random\n"; }

    double getDivisor() override
    {
        const QoviSize region = getSize();
        return static_cast<double>(region.width) * region.height;
    }

    qkString getUnit() override { return "px"; }

protected:
    QoviSize getSize() const override
    {
        if (m_func.contains("444")) return {8, 8};
        if (m_func.contains("422")) return {16, 8};
        return {16, 16};
    }
};

#define MCU_TO_BLOCKS(f) QD_REG(TimjSampleMCU, f, pSrc.m_8u, srcStep, pDst.m_planes_16s)
#define MCU_FROM_BLOCKS(f) QD_REG(TimjSampleMCU, f, pSrc.m_planes_16s, pDst.m_8u, dstStep)

MCU_FROM_BLOCKS(qoviSampleUp444LS_MCU_16s8u_P3C3R);
MCU_FROM_BLOCKS(qoviSampleUp422LS_MCU_16s8u_P3C3R);
MCU_FROM_BLOCKS(qoviSampleUp411LS_MCU_16s8u_P3C3R);
MCU_FROM_BLOCKS(qoviJoin422LS_MCU_16s8u_P3C2R);
MCU_TO_BLOCKS(qoviSampleDown444LS_MCU_8u16s_C3P3R);
MCU_TO_BLOCKS(qoviSampleDown422LS_MCU_8u16s_C3P3R);
MCU_TO_BLOCKS(qoviSampleDown411LS_MCU_8u16s_C3P3R);
