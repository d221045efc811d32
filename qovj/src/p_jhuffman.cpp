// Suite TimjHuffman: sequential Huffman coding of the blocks of a picture, and the coding of differences one
// by one, on the same coefficients.
#include "huffstateful.h"

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
    restoreDecode(); // the tool's second call of a pass comes without init, and bits are left
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

class TimjHuffman : public HuffmanStateTest {
public:
    using HuffmanStateTest::HuffmanStateTest;
    ~TimjHuffman() override = default;

    bool canStart() override
    {
        m_one = m_func.contains("One");
        return HuffmanStateTest::canStart();
    }

    bool initData() override
    {
        if (!createData()) return false;
        return m_one ? createCoders(1, true, x_EncodeOne, "qoviEncodeHuffmanOne_JPEG_16s1u_C1")
                     : createCoders(1, true, x_Encode, "qoviEncodeHuffman8x8_JPEG_16s1u_C1");
    }

private:
    bool m_one = false;
};

QD_REG_I_X(TimjHuffman, qoviEncodeHuffman8x8_JPEG_16s1u_C1, restoreEncode, x_Encode);
QD_REG_I_X(TimjHuffman, qoviDecodeHuffman8x8_JPEG_1u16s_C1, restoreDecode, x_Decode);
QD_REG_I_X(TimjHuffman, qoviEncodeHuffmanOne_JPEG_16s1u_C1, restoreEncode, x_EncodeOne);
QD_REG_I_X(TimjHuffman, qoviDecodeHuffmanOne_JPEG_1u16s_C1, restoreDecode, x_DecodeOne);
