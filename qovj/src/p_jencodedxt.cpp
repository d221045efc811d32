// Suite TimjEncodeRGBA_DXT: texture blocks with colours, in both directions. What is decoded is always what
// the encoder of the same format has made of a random picture.
#include "qovj_main.h"
#include "qovjsuite.h"

static qdImage pImg;
static qdVector pDxt;
static QoviSize imgSize;
static int imgStep;

class TimjEncodeRGBA_DXT : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjEncodeRGBA_DXT() override = default;

    bool canStart() override
    {
        regCacheParm(g_imageSize, pImg, nullptr);
        const bool encode = m_func.contains("Encode");
        pImg.init(m_func, encode ? qdArgSrc : qdArgDst);
        pDxt.init(m_func, encode ? qdArgDst : qdArgSrc);
        const char* const format = m_func.contains("DXT1")   ? "DXT1"
                                   : m_func.contains("DXT3") ? "DXT3"
                                                             : "DXT5";
        m_encoder = qkString("qoviTextureEncodeBlockFromRGBA_") + format + "_8u_C4C1R";
        return true;
    }

    bool initData() override
    {
        imgSize = g_imageSize.value();
        if (!pImg.createVector(imgSize, SET_RANDOM)) return false;
        imgStep = pImg.m_step;
        if (!pDxt.createVector(qdjCount(static_cast<long long>(imgSize.width) * imgSize.height)))
            return false;
        return callEncode();
    }

    void flushData() override
    {
        pImg.deleteVector();
        pDxt.deleteVector();
    }

    double getDivisor() override { return static_cast<double>(pImg.m_width) * pImg.m_height; }
    qkString getUnit() override { return "px"; }

private:
    bool callEncode() const
    {
        static const struct {
            const char* name;
            QovStatus (*encode)(const Qov8u*, int, QoviSize, Qov8u*);
        } encoders[] = {
            {"qoviTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R", qoviTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R},
            {"qoviTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R", qoviTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R},
            {"qoviTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R", qoviTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R},
        };
        for (const auto& encoder : encoders) {
            if (m_encoder == encoder.name)
                return !qkIsError(
                    checkStatus(encoder.encode(pImg.m_8u, imgStep, imgSize, pDxt.m_8u), m_encoder));
        }
        return false;
    }

    qkString m_encoder; // of the test's format
};

#define DXT_ENCODE(f) QD_REG(TimjEncodeRGBA_DXT, f, pImg.m_8u, imgStep, imgSize, pDxt.m_8u)
#define DXT_DECODE(f) QD_REG(TimjEncodeRGBA_DXT, f, pDxt.m_8u, pImg.m_8u, imgStep, imgSize)

DXT_ENCODE(qoviTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R);
DXT_ENCODE(qoviTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R);
DXT_ENCODE(qoviTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R);
DXT_DECODE(qoviTextureDecodeBlockToRGBA_DXT1_8u_C1C4R);
DXT_DECODE(qoviTextureDecodeBlockToRGBA_DXT3_8u_C1C4R);
DXT_DECODE(qoviTextureDecodeBlockToRGBA_DXT5_8u_C1C4R);
