// Suite TimjCode2K: coding of code-blocks. The block is a band of real coefficients; what is decoded has been
// made from it by the encoder, in the code style that is measured.
#include "waveletsuite.h"

#include <algorithm>

static qkMapIterator<int> codeStyles;
static qkIterator<int> buffLens;

static const QoviWTSubband subband = qoviWTSubbandHxLy;
static const int magnBits = 31; // all planes
static const QoviMQTermination termination = qoviMQTermShort;
static const QoviMQRate rate = qoviMQRateSafe;

static QoviSize size;
static int codeStyle;
static qdImage pSrc, pDst;
static qdVector pBuffer; // where the encoder hands out its bytes, a buffer full at a time
static int buffLen;
static qdVector pCoded; // all bytes of the block
static qdVector pTermPassLen;
static int sfBits, nOfPasses, nOfTermPasses;
static QoviEncodeCBState* pEncodeState;
static QoviDecodeCBState* pDecodeState;

static bool done(QovStatus status, const char* name)
{
    return !qkIsError(qdTest::checkStatus(status, name));
}

// The high half of the middle rows of a picture: small in the centre, where the picture is smooth, and larger
// towards the sides.
static bool createCoefficients()
{
    const Border sides = bordersOf("qoviWTFwdRow_B53_JPEG2K_32s_C1R").full;
    const Border rowsLeftOut{size.height / 2, size.height / 2};
    BorderedImage picture;
    qdImage low(qd32s, 1, false);
    picture.image.init(qd32s, 1, false);
    pSrc.init(qd32s, 1, false);
    if (!picture.create({2 * size.width, size.height}, sides, rowsLeftOut, false) ||
        !low.createVector(size, SET_ZERO) || !pSrc.createVector(size, SET_ZERO))
        return false;
    picture.image.setJaehne(127.5);
    return done(qoviWTFwdRow_B53_JPEG2K_32s_C1R(picture.m_32s, picture.step, low.m_32s, low.m_step,
                                                pSrc.m_32s, pSrc.m_step, size),
                "qoviWTFwdRow_B53_JPEG2K_32s_C1R") &&
           done(qoviComplement_32s_C1IR(pSrc.m_32s, pSrc.m_step, size), "qoviComplement_32s_C1IR");
}

#define LOAD_ARGUMENTS                                                                                       \
    pSrc.m_32s, pSrc.m_step, size, pEncodeState, subband, magnBits, termination, rate, codeStyle, &sfBits,   \
        &nOfPasses, &nOfTermPasses

static void loadBlock()
{
    qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R(LOAD_ARGUMENTS);
}

// All that the block has: a loaded block can be handed out only once.
[[gnu::noinline]] static int x_StoreBits()
{
    int status, isNotFinish;
    do {
        int length = buffLen;
        status = qoviEncodeStoreBits_JPEG2K_1u(pBuffer.m_8u, &length, pEncodeState, &isNotFinish);
    } while (status >= 0 && isNotFinish);
    return status;
}

static void attachBlock()
{
    qoviDecodeCBProgrAttach_JPEG2K_32s_C1R(pDst.m_32s, pDst.m_step, size, pDecodeState, subband, sfBits,
                                           codeStyle);
    qoviDecodeCBProgrSetPassCounter_JPEG2K(nOfPasses, pDecodeState);
}

// As many segments as the code style makes.
[[gnu::noinline]] static int x_Steps()
{
    int status = 0;
    const Qov8u* segment = pCoded.m_8u;
    for (int i = 0; i < nOfTermPasses && status >= 0; i++) {
        const int length = pTermPassLen.m_32s[i];
        status = qoviDecodeCBProgrStep_JPEG2K(segment, length, pDecodeState);
        segment += length;
    }
    return status;
}

class TimjCode2K : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjCode2K() override = default;

    // Blocks have no more than 4096 samples, so their size is no parameter that could leave the cache.
    bool canStart() override
    {
        const bool store = m_func.contains("EncodeStore");
        m_decode = m_func.contains("Decode");
        m_parms.append(&g_code2k_size);
        m_parms.append(&codeStyles);
        setCodeStyles();
        setBuffLens();
        if (store) {
            m_parms.append(&buffLens);
            measureSingleCalls();
        }
        return true;
    }

    bool initData() override
    {
        size = g_code2k_size.value();
        codeStyle = codeStyles.value();
        buffLen = buffLens.value();
        return createBufferEncode() && (!m_decode || (createTermPassLen() && createBufferDecode()));
    }

    void flushData() override
    {
        deleteTermPassLen();
        deleteBuffer();
    }

    void constToOstrm() override
    {
        g_ostrm << "subband = HxLy, magnBits = " << magnBits << ", termination = short\n";
    }

    double getDivisor() override { return static_cast<double>(size.width) * size.height; }
    qkString getUnit() override { return "px"; }

private:
    // Loading takes some hundred times as long as storing. So it must not lie inside the timed region, as it
    // does in the loop method, nor be done too often.
    void measureSingleCalls()
    {
        m_tool.m_useStat = true;
        m_tool.setLoopFactor(6);
    }

    void setCodeStyles() const
    {
        codeStyles.resetMap();
        codeStyles.reset();
        codeStyles.setName("CodeStyleFlags", "");
        codeStyles.addValidation(0);
        codeStyles[qoviCodeStyleVCausal] = "VerticallyCausalContext";
        codeStyles[qoviCodeStyleBypass] = "SelectiveMqBypass";
        codeStyles[qoviCodeStyleTermAll] = "TerminateOnEveryPass";
        codeStyles[qoviCodeStyleReset] = "ResetctxOnEveryPass";
        codeStyles[qoviCodeStyleSegSym] = "UseSegmentationSymbols";
        codeStyles[qoviCodeStyleLossless] = "LosslessMode";
        codeStyles.add(0);
        if (m_func.contains("EncodeLoad")) codeStyles.add(qoviCodeStyleBypass);
        if (m_decode) {
            for (int style = 1; style <= qoviCodeStyleLossless; style *= 2) codeStyles.add(style);
        }
    }

    static void setBuffLens()
    {
        buffLens.reset();
        buffLens.setName("BuffLen", "");
        for (const int length : {8, 64, 1024}) buffLens.add(length);
        buffLens.setValue(1024);
    }

    // An encoder, which limits the size, with the block loaded, and a buffer for what it hands out.
    static bool createBufferEncode()
    {
        pBuffer.init(qd8u);
        return done(qoviEncodeInitAlloc_JPEG2K(&pEncodeState, size), "qoviEncodeInitAlloc_JPEG2K") &&
               createCoefficients() && pBuffer.createVector(buffLen, SET_ZERO) &&
               done(qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R(LOAD_ARGUMENTS),
                    "qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R");
    }

    // The lengths of the block's segments.
    static bool createTermPassLen()
    {
        pTermPassLen.init(qd32s);
        if (!pTermPassLen.createVector(std::max(nOfTermPasses, 1), SET_ZERO)) return false;
        for (int i = 0; i < nOfTermPasses; i++)
            if (!done(qoviEncodeGetTermPassLen_JPEG2K(pEncodeState, i, &pTermPassLen.m_32s[i]),
                      "qoviEncodeGetTermPassLen_JPEG2K"))
                return false;
        return true;
    }

    // The block's bytes, a decoder, and room for what comes out.
    static bool createBufferDecode()
    {
        int length = 1; // of a block without bytes
        for (int i = 0; i < nOfTermPasses; i++) length += pTermPassLen.m_32s[i];
        int isNotFinish = 0;
        pCoded.init(qd8u);
        pDst.init(qd32s, 1, false);
        if (!pCoded.createVector(length, SET_ZERO) || !pDst.createVector(size, SET_ZERO) ||
            !done(qoviEncodeStoreBits_JPEG2K_1u(pCoded.m_8u, &length, pEncodeState, &isNotFinish),
                  "qoviEncodeStoreBits_JPEG2K_1u"))
            return false;
        return createDecoder();
    }

    // Its memory has no owner, since it holds addresses, which no listing of data shows.
    static bool createDecoder()
    {
        int stateSize = 0;
        if (!done(qoviDecodeCBProgrGetStateSize_JPEG2K(size, &stateSize),
                  "qoviDecodeCBProgrGetStateSize_JPEG2K"))
            return false;
        pDecodeState = static_cast<QoviDecodeCBState*>(allocate(stateSize, 0, nullptr));
        return pDecodeState &&
               done(qoviDecodeCBProgrInit_JPEG2K(pDecodeState), "qoviDecodeCBProgrInit_JPEG2K") &&
               done(qoviDecodeCBProgrAttach_JPEG2K_32s_C1R(pDst.m_32s, pDst.m_step, size, pDecodeState,
                                                           subband, sfBits, codeStyle),
                    "qoviDecodeCBProgrAttach_JPEG2K_32s_C1R");
    }

    static void deleteTermPassLen() { pTermPassLen.deleteVector(); }

    static void deleteBuffer()
    {
        pSrc.deleteVector();
        pDst.deleteVector();
        pBuffer.deleteVector();
        pCoded.deleteVector();
        deallocate(pDecodeState);
        pDecodeState = nullptr;
        qoviEncodeFree_JPEG2K(pEncodeState);
        pEncodeState = nullptr;
    }

    bool m_decode = false;
};

QD_REG(TimjCode2K, qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R, LOAD_ARGUMENTS);
QD_REG_I_X(TimjCode2K, qoviEncodeStoreBits_JPEG2K_1u, loadBlock, x_StoreBits);
QD_REG(TimjCode2K, qoviDecodeCodeBlock_JPEG2K_1u32s_C1R, pCoded.m_8u, pDst.m_32s, pDst.m_step, size, subband,
       sfBits, nOfPasses, pTermPassLen.m_32s, nOfTermPasses, codeStyle);
QD_REG_I_X(TimjCode2K, qoviDecodeCBProgrStep_JPEG2K, attachBlock, x_Steps);
