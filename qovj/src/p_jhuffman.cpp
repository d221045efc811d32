// Suite TimjHuffman: sequential Huffman coding of the blocks of a picture, and the coding of differences one
// by one, on the same coefficients. Each measured call codes all of the picture from a fresh state.
#include "huffsuite.h"

static qdImage srcDCT;
static qdVector src; // coefficients: what is coded, and where decoding puts them
static qdBitVector dst;
static qdjHuffmanSpecs<qdjEncodeSide> encodeSpecs;
static qdjHuffmanSpecs<qdjDecodeSide> decodeSpecs;
static qdjHuffmanState<qdjEncodeSide> encodeState;
static qdjHuffmanState<qdjDecodeSide> decodeState;
static int srcLen, lenBytes, dstPos, marker;
static Qov16s lastDC;

static void startOfData()
{
    dstPos = 0;
    lastDC = 0;
    marker = 0;
}

// All of the picture by code(coefficients), `step` of them at a time, and the flush if none went wrong.
template <class Code, class Flush>
static inline int encodeAll(int step, Code code, Flush flush)
{
    startOfData();
    int status = 0, srcPos = 0;
    for (; srcPos < srcLen; srcPos += step) {
        const int now = code(src.m_16s + srcPos);
        if (now != 0) status = now;
    }
    return status != 0 ? status : flush(src.m_16s + srcPos);
}

template <class Code>
static inline int decodeAll(int step, Code code)
{
    startOfData();
    int status = 0;
    for (int srcPos = 0; srcPos < srcLen; srcPos += step) status = code(src.m_16s + srcPos);
    decodeState.restore(); // the tool's second call of a pass comes without init, and bits are left
    return status;
}

template <int flush>
static inline int encodeBlock(const Qov16s* block)
{
    return qoviEncodeHuffman8x8_JPEG_16s1u_C1(block, dst.m_8u, lenBytes, &dstPos, &lastDC, encodeSpecs.dc[0],
                                              encodeSpecs.ac, encodeState.state, flush);
}

template <int flush>
static inline int encodeSample(const Qov16s* sample)
{
    return qoviEncodeHuffmanOne_JPEG_16s1u_C1(sample, dst.m_8u, lenBytes, &dstPos, encodeSpecs.dc[0],
                                              encodeState.state, flush);
}

[[gnu::noinline]] static int x_Encode()
{
    return encodeAll(64, encodeBlock<0>, encodeBlock<1>);
}

[[gnu::noinline]] static int x_EncodeOne()
{
    return encodeAll(1, encodeSample<0>, encodeSample<1>);
}

[[gnu::noinline]] static int x_Decode()
{
    return decodeAll(64, [](Qov16s* block) {
        return qoviDecodeHuffman8x8_JPEG_1u16s_C1(dst.m_8u, lenBytes, &dstPos, block, &lastDC, &marker,
                                                  decodeSpecs.dc[0], decodeSpecs.ac, decodeState.state);
    });
}

[[gnu::noinline]] static int x_DecodeOne()
{
    return decodeAll(1, [](Qov16s* sample) {
        return qoviDecodeHuffmanOne_JPEG_1u16s_C1(dst.m_8u, lenBytes, &dstPos, sample, &marker,
                                                  decodeSpecs.dc[0], decodeState.state);
    });
}

static void initEncode()
{
    encodeState.restore();
}

static void initDecode()
{
    decodeState.restore();
}

class TimjHuffman : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjHuffman() override = default;

    bool canStart() override
    {
        regCacheParm(g_imageSize, srcDCT, nullptr);
        m_encode = m_func.contains("Encode");
        m_one = m_func.contains("One");
        m_tool.m_dataUse = true;
        return true;
    }

    bool initData() override
    {
        const QoviSize size = g_imageSize.value();
        srcLen = qdjPixels(size);
        if (!qdjHuffmanSource(size, srcDCT, src, srcLen, SET_ZERO)) return false;
        if (!qdjHuffmanStream(dst, 2LL * srcLen, SET_ZERO)) return false;
        m_tool.setLoopFactor(-3);
        if (!allocEncode() || !allocDecode()) return false;
        lenBytes = dst.m_len;
        return encodeState.init() && (m_encode || prepareDecode());
    }

    void flushData() override
    {
        srcDCT.deleteVector();
        src.deleteVector();
        dst.deleteVector();
        encodeSpecs.release();
        encodeState.release();
        decodeSpecs.release();
        decodeState.release();
    }

    double getDivisor() override { return srcLen; }
    qkString getUnit() override { return "px"; }

private:
    static bool allocEncode() { return encodeSpecs.alloc(1, true) && encodeState.alloc(); }
    static bool allocDecode() { return decodeSpecs.alloc(1, true) && decodeState.alloc(); }

    bool prepareDecode() const
    {
        const bool done = m_one ? qdjDone(x_EncodeOne(), "qoviEncodeHuffmanOne_JPEG_16s1u_C1")
                                : qdjDone(x_Encode(), "qoviEncodeHuffman8x8_JPEG_16s1u_C1");
        lenBytes = dstPos;
        return done && decodeState.init();
    }

    bool m_encode = false;
    bool m_one = false;
};

QD_REG_I_X(TimjHuffman, qoviEncodeHuffman8x8_JPEG_16s1u_C1, initEncode, x_Encode);
QD_REG_I_X(TimjHuffman, qoviDecodeHuffman8x8_JPEG_1u16s_C1, initDecode, x_Decode);
QD_REG_I_X(TimjHuffman, qoviEncodeHuffmanOne_JPEG_16s1u_C1, initEncode, x_EncodeOne);
QD_REG_I_X(TimjHuffman, qoviDecodeHuffmanOne_JPEG_1u16s_C1, initDecode, x_DecodeOne);
