// Suite jMCU__RW: an MCU of packed 16-bit pixels converted to level-shifted blocks, and back. In a folder of
// its own because its unit has the name of that of TimjMCU.
#include "mcusuite.h"

class jMCU__RW : public McuTest {
public:
    using McuTest::McuTest;
    ~jMCU__RW() override = default;
};

#define MCU_TO_BLOCKS(f) QD_REG(jMCU__RW, f, pSrc.m_16u, srcStep, pDst.m_planes_16s)
#define MCU_FROM_BLOCKS(f) QD_REG(jMCU__RW, f, pSrc.m_planes_16s, pDst.m_16u, dstStep)

MCU_TO_BLOCKS(qoviBGR555ToYCbCr444LS_MCU_16u16s_C3P3R);
MCU_TO_BLOCKS(qoviBGR555ToYCbCr422LS_MCU_16u16s_C3P3R);
MCU_TO_BLOCKS(qoviBGR555ToYCbCr411LS_MCU_16u16s_C3P3R);
MCU_TO_BLOCKS(qoviBGR565ToYCbCr444LS_MCU_16u16s_C3P3R);
MCU_TO_BLOCKS(qoviBGR565ToYCbCr422LS_MCU_16u16s_C3P3R);
MCU_TO_BLOCKS(qoviBGR565ToYCbCr411LS_MCU_16u16s_C3P3R);
MCU_FROM_BLOCKS(qoviYCbCr444ToBGR555LS_MCU_16s16u_P3C3R);
MCU_FROM_BLOCKS(qoviYCbCr422ToBGR555LS_MCU_16s16u_P3C3R);
MCU_FROM_BLOCKS(qoviYCbCr411ToBGR555LS_MCU_16s16u_P3C3R);
MCU_FROM_BLOCKS(qoviYCbCr444ToBGR565LS_MCU_16s16u_P3C3R);
MCU_FROM_BLOCKS(qoviYCbCr422ToBGR565LS_MCU_16s16u_P3C3R);
MCU_FROM_BLOCKS(qoviYCbCr411ToBGR565LS_MCU_16s16u_P3C3R);
