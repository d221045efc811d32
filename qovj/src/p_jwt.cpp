// Suite TimjWT: whole wavelet transforms of one level, between an image and its four bands or in place.
#include <cstring>

#include "waveletsuite.h"

static qdImage img, imgSub[4]; // bands in the order of QoviWTSubband
static QoviRect rect;
static Qov16s* sub_16s[4]; // null: the band is empty
static Qov32s* sub_32s[4];
static int subStep[4];
static Qov8u* pBuffer;

// In place, a call works on what the one before it has left. Of whole numbers none takes longer than another,
// so it is enough that every measurement starts from the same image.
static void restoreImage()
{
    img.setReservedCopy();
}

class TimjWT : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjWT() override = default;

    bool canStart() override
    {
        regCacheParm(g_WT_size, img, nullptr);
        img.init(m_func, qdArgSrc);
        for (qdImage& band : imgSub) band.init(m_func, qdArgDst);
        m_getBufSize = qkString("qoviWTGetBufSize") + m_func.substr(m_func.find("_"));
        return true;
    }

    bool initData() override
    {
        const QoviSize size = g_WT_size.value();
        rect = {0, 0, size.width, size.height};
        int bufSize = 0;
        if (qkIsError(checkStatus(callGetBufSize(&bufSize), m_getBufSize))) return false;
        if (!createBuffer(bufSize)) return false;
        if (m_func.inplace()) return createSamples(img, size, true) && img.reserveCopy();
        const bool forward = m_func.contains("Fwd");
        return createSamples(img, size, forward) && createBands(size, !forward);
    }

    void flushData() override
    {
        img.deleteVector();
        for (qdImage& band : imgSub) band.deleteVector();
        deallocate(pBuffer);
        pBuffer = nullptr;
    }

    double getDivisor() override { return static_cast<double>(img.m_width) * img.m_height; }
    qkString getUnit() override { return "px"; }

private:
    // The size of the work buffer, from the query that belongs to the function.
    QovStatus callGetBufSize(int* size) const
    {
#define WT_QUERY(kind)                                                                                       \
    {                                                                                                        \
        "qoviWTGetBufSize_" #kind, qoviWTGetBufSize_##kind                                                   \
    }
        static const struct {
            const char* name;
            QovStatus (*call)(const QoviRect*, int*);
        } queries[] = {WT_QUERY(B53_JPEG2K_16s_C1R),  WT_QUERY(B53_JPEG2K_32s_C1R),
                       WT_QUERY(D97_JPEG2K_16s_C1R),  WT_QUERY(D97_JPEG2K_32s_C1R),
                       WT_QUERY(B53_JPEG2K_16s_C1IR), WT_QUERY(B53_JPEG2K_32s_C1IR),
                       WT_QUERY(D97_JPEG2K_16s_C1IR), WT_QUERY(D97_JPEG2K_32s_C1IR)};
#undef WT_QUERY
        for (const auto& query : queries)
            if (m_getBufSize == query.name) return query.call(&rect, size);
        return qovStsBadArg;
    }

    static bool createBuffer(int size)
    {
        if (size <= 0) return true;
        pBuffer = static_cast<Qov8u*>(allocate(size, -1));
        if (pBuffer) std::memset(pBuffer, 0, static_cast<size_t>(size));
        return pBuffer != nullptr;
    }

    static bool createBands(QoviSize size, bool random)
    {
        for (int i = 0; i < 4; i++) {
            const bool highX = i == qoviWTSubbandHxLy || i == qoviWTSubbandHxHy;
            const bool highY = i == qoviWTSubbandLxHy || i == qoviWTSubbandHxHy;
            const QoviSize half{highX ? size.width / 2 : size.width - size.width / 2,
                                highY ? size.height / 2 : size.height - size.height / 2};
            qdImage& band = imgSub[i];
            const bool empty = half.width < 1 || half.height < 1;
            if (!empty && !createSamples(band, half, random)) return false;
            sub_16s[i] = band.m_16s;
            sub_32s[i] = band.m_32s;
            subStep[i] = band.m_step;
        }
        return true;
    }

    qkString m_getBufSize;
};

#define WT_FORWARD(T) img.m_##T, img.m_step, &rect, sub_##T, subStep, pBuffer
#define WT_INVERSE(T) sub_##T, subStep, img.m_##T, img.m_step, &rect, pBuffer
#define WT_INPLACE(T) img.m_##T, img.m_step, &rect, pBuffer

QD_REG(TimjWT, qoviWTFwd_B53_JPEG2K_16s_C1R, WT_FORWARD(16s));
QD_REG(TimjWT, qoviWTFwd_B53_JPEG2K_32s_C1R, WT_FORWARD(32s));
QD_REG(TimjWT, qoviWTFwd_D97_JPEG2K_16s_C1R, WT_FORWARD(16s));
QD_REG(TimjWT, qoviWTFwd_D97_JPEG2K_32s_C1R, WT_FORWARD(32s));
QD_REG_Ibs(TimjWT, qoviWTFwd_B53_JPEG2K_16s_C1IR, restoreImage, WT_INPLACE(16s));
QD_REG_Ibs(TimjWT, qoviWTFwd_B53_JPEG2K_32s_C1IR, restoreImage, WT_INPLACE(32s));
QD_REG_Ibs(TimjWT, qoviWTFwd_D97_JPEG2K_16s_C1IR, restoreImage, WT_INPLACE(16s));
QD_REG_Ibs(TimjWT, qoviWTFwd_D97_JPEG2K_32s_C1IR, restoreImage, WT_INPLACE(32s));
QD_REG(TimjWT, qoviWTInv_B53_JPEG2K_16s_C1R, WT_INVERSE(16s));
QD_REG(TimjWT, qoviWTInv_B53_JPEG2K_32s_C1R, WT_INVERSE(32s));
QD_REG(TimjWT, qoviWTInv_D97_JPEG2K_16s_C1R, WT_INVERSE(16s));
QD_REG(TimjWT, qoviWTInv_D97_JPEG2K_32s_C1R, WT_INVERSE(32s));
QD_REG_Ibs(TimjWT, qoviWTInv_B53_JPEG2K_16s_C1IR, restoreImage, WT_INPLACE(16s));
QD_REG_Ibs(TimjWT, qoviWTInv_B53_JPEG2K_32s_C1IR, restoreImage, WT_INPLACE(32s));
QD_REG_Ibs(TimjWT, qoviWTInv_D97_JPEG2K_16s_C1IR, restoreImage, WT_INPLACE(16s));
QD_REG_Ibs(TimjWT, qoviWTInv_D97_JPEG2K_32s_C1IR, restoreImage, WT_INPLACE(32s));
