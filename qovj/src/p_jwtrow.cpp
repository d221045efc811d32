// Suite TimjWTRow: wavelet steps along rows. The data have the border that the functions read, since these
// extend nothing.
#include "waveletsuite.h"

static BorderedImage full, low, high;
static QoviSize roi; // pairs of samples, rows

class TimjWTRow : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjWTRow() override = default;

    bool canStart() override
    {
        regCacheParm(g_WT_size, full.image, nullptr);
        full.image.init(m_func, 1);
        low.image.init(m_func, 1);
        high.image.init(m_func, 1);
        getFullOffset(m_offsets.full.before, m_offsets.full.behind);
        getLowOffset(m_offsets.low.before, m_offsets.low.behind);
        getHighOffset(m_offsets.high.before, m_offsets.high.behind);
        return true;
    }

    bool initData() override
    {
        const QoviSize size = g_WT_size.value();
        roi = {size.width / 2, size.height};
        if (roi.width < 1) return false;
        const bool forward = m_func.contains("Fwd");
        return full.create({2 * roi.width, roi.height}, m_offsets.full, {}, forward) &&
               low.create(roi, m_offsets.low, {}, !forward) && high.create(roi, m_offsets.high, {}, !forward);
    }

    void flushData() override
    {
        full.release();
        low.release();
        high.release();
    }

    void constToOstrm() override
    {
        putOffset("full", m_offsets.full);
        putOffset("low", m_offsets.low);
        putOffset("high", m_offsets.high);
    }

    double getDivisor() override { return 2.0 * roi.width * roi.height; }
    qkString getUnit() override { return "px"; }

private:
    // Samples that are read before and behind those of the region: of the rows, and of their halves.
    void getFullOffset(int& before, int& behind) const { get(bordersOf(m_func).full, before, behind); }
    void getLowOffset(int& before, int& behind) const { get(bordersOf(m_func).low, before, behind); }
    void getHighOffset(int& before, int& behind) const { get(bordersOf(m_func).high, before, behind); }

    static void get(Border border, int& before, int& behind)
    {
        before = border.before;
        behind = border.behind;
    }

    static void putOffset(const char* name, Border border)
    {
        g_ostrm << name << " offset = " << border.before << ", " << border.behind << "\n";
    }

    Borders m_offsets;
};

#define WT_FORWARD(T) full.m_##T, full.step, low.m_##T, low.step, high.m_##T, high.step, roi
#define WT_INVERSE(T) low.m_##T, low.step, high.m_##T, high.step, full.m_##T, full.step, roi

QD_REG(TimjWTRow, qoviWTFwdRow_B53_JPEG2K_16s_C1R, WT_FORWARD(16s));
QD_REG(TimjWTRow, qoviWTFwdRow_B53_JPEG2K_32s_C1R, WT_FORWARD(32s));
QD_REG(TimjWTRow, qoviWTFwdRow_D97_JPEG2K_16s_C1R, WT_FORWARD(16s));
QD_REG(TimjWTRow, qoviWTFwdRow_D97_JPEG2K_32s_C1R, WT_FORWARD(32s));
QD_REG(TimjWTRow, qoviWTFwdRow_D97_JPEG2K_32f_C1R, WT_FORWARD(32f));
QD_REG(TimjWTRow, qoviWTInvRow_B53_JPEG2K_16s_C1R, WT_INVERSE(16s));
QD_REG(TimjWTRow, qoviWTInvRow_B53_JPEG2K_32s_C1R, WT_INVERSE(32s));
QD_REG(TimjWTRow, qoviWTInvRow_D97_JPEG2K_16s_C1R, WT_INVERSE(16s));
QD_REG(TimjWTRow, qoviWTInvRow_D97_JPEG2K_32s_C1R, WT_INVERSE(32s));
QD_REG(TimjWTRow, qoviWTInvRow_D97_JPEG2K_32f_C1R, WT_INVERSE(32f));
