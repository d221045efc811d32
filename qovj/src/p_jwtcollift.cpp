// Suite TimjWTColLift: wavelet steps along columns, for whole columns and for one step of their pipeline (the
// lifts), which works on six rows. The data have the border that the whole columns read.
#include "waveletsuite.h"

static BorderedImage full, low, high;
static QoviSize roi; // columns, pairs of samples
static qdVector rows[6];
static int width;

class TimjWTColLift : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjWTColLift() override = default;

    bool canStart() override
    {
        m_lift = m_func.contains("Lift");
        full.image.init(m_func, 1);
        low.image.init(m_func, 1);
        high.image.init(m_func, 1);
        for (qdVector& row : rows) row.init(m_func, 1);
        if (m_lift)
            m_parms.append(&g_WT_size);
        else
            regCacheParm(g_WT_size, full.image, nullptr);
        return true;
    }

    bool initData() override
    {
        const QoviSize size = g_WT_size.value();
        width = size.width;
        roi = {size.width, size.height / 2};
        return m_lift ? createRows() : createImages();
    }

    void flushData() override
    {
        full.release();
        low.release();
        high.release();
        for (qdVector& row : rows) row.deleteVector();
    }

    void parmsToOstrm() override
    {
        qdTest::parmsToOstrm();
        if (m_lift)
            g_ostrm << "width=" << width << " ";
        else
            g_ostrm << "roi=" << roi << " ";
    }

    // A lift takes in, and finishes, two rows.
    double getDivisor() override { return 2.0 * width * (m_lift ? 1 : roi.height); }
    qkString getUnit() override { return "px"; }

private:
    bool createImages() const
    {
        if (roi.height < 1) return false;
        const Borders borders = bordersOf(m_func);
        const bool forward = m_func.contains("Fwd");
        return full.create({roi.width, 2 * roi.height}, {}, borders.full, forward) &&
               low.create(roi, {}, borders.low, !forward) && high.create(roi, {}, borders.high, !forward);
    }

    bool createRows() const
    {
        for (qdVector& row : rows)
            if (!row.createVector(width, SET_RANDOM, leastSample, mostSample)) return false;
        if (m_func.contains("D97")) makeLiftsIdle();
        return true;
    }

    // The lifts of 9-7 work in place, and repeated on the same rows they would grow without end: floats to
    // infinity, after some hundred calls. But each adds a multiple of the sum of two rows, and where rows of
    // a half follow each other with opposite signs, that is 0. So every call sees the same data. Rows of both
    // halves take turns.
    static void makeLiftsIdle()
    {
        for (int i = 2; i < 6; i++)
            for (int x = 0; x < width; x++) rows[i].setIndex(x, SET_CONST, -rows[i - 2].getIndex(x));
    }

    bool m_lift = false;
};

#define WT_FORWARD(T) full.m_##T, full.step, low.m_##T, low.step, high.m_##T, high.step, roi
#define WT_INVERSE(T) low.m_##T, low.step, high.m_##T, high.step, full.m_##T, full.step, roi
#define WT_LIFT(T)                                                                                           \
    rows[0].m_##T, rows[1].m_##T, rows[2].m_##T, rows[3].m_##T, rows[4].m_##T, rows[5].m_##T, width

QD_REG(TimjWTColLift, qoviWTFwdCol_B53_JPEG2K_16s_C1R, WT_FORWARD(16s));
QD_REG(TimjWTColLift, qoviWTFwdCol_B53_JPEG2K_32s_C1R, WT_FORWARD(32s));
QD_REG(TimjWTColLift, qoviWTFwdCol_D97_JPEG2K_32f_C1R, WT_FORWARD(32f));
QD_REG(TimjWTColLift, qoviWTFwdColLift_B53_JPEG2K_16s_C1, WT_LIFT(16s));
QD_REG(TimjWTColLift, qoviWTFwdColLift_B53_JPEG2K_32s_C1, WT_LIFT(32s));
QD_REG(TimjWTColLift, qoviWTFwdColLift_D97_JPEG2K_16s_C1, WT_LIFT(16s));
QD_REG(TimjWTColLift, qoviWTFwdColLift_D97_JPEG2K_32s_C1, WT_LIFT(32s));
QD_REG(TimjWTColLift, qoviWTFwdColLift_D97_JPEG2K_32f_C1, WT_LIFT(32f));
QD_REG(TimjWTColLift, qoviWTInvCol_B53_JPEG2K_16s_C1R, WT_INVERSE(16s));
QD_REG(TimjWTColLift, qoviWTInvCol_B53_JPEG2K_32s_C1R, WT_INVERSE(32s));
QD_REG(TimjWTColLift, qoviWTInvCol_D97_JPEG2K_32f_C1R, WT_INVERSE(32f));
QD_REG(TimjWTColLift, qoviWTInvColLift_B53_JPEG2K_16s_C1, WT_LIFT(16s));
QD_REG(TimjWTColLift, qoviWTInvColLift_B53_JPEG2K_32s_C1, WT_LIFT(32s));
QD_REG(TimjWTColLift, qoviWTInvColLift_D97_JPEG2K_16s_C1, WT_LIFT(16s));
QD_REG(TimjWTColLift, qoviWTInvColLift_D97_JPEG2K_32s_C1, WT_LIFT(32s));
QD_REG(TimjWTColLift, qoviWTInvColLift_D97_JPEG2K_32f_C1, WT_LIFT(32f));
