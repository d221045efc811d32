// Suite TimjHuffDirect: sequential Huffman coding without a state. Position and bits of the stream are on the
// stack of the measured call.
#include "huffsequential.h"

[[gnu::noinline]] static int x_Encode()
{
    int status = 0, bitPos = 0;
    Qov16s lastDC = 0;
    for (int i = 0; i < srcLen; i += 64)
        status = qoviEncodeHuffman8x8_Direct_JPEG_16s1u_C1(src.m_16s + i, dst.m_8u, &bitPos, &lastDC,
                                                           encodeSpecs.dc[0], encodeSpecs.ac);
    return status;
}

[[gnu::noinline]] static int x_Decode()
{
    int status = 0, bitPos = 0, marker = 0, numValidPrefetchedBits = 0;
    Qov16s lastDC = 0;
    Qov32u prefetchedBits = 0;
    for (int i = 0; i < srcLen; i += 64)
        status = qoviDecodeHuffman8x8_Direct_JPEG_1u16s_C1(dst.m_8u, &bitPos, src.m_16s + i, &lastDC, &marker,
                                                           &prefetchedBits, &numValidPrefetchedBits,
                                                           decodeSpecs.dc[0], decodeSpecs.ac);
    return status;
}

class TimjHuffDirect : public HuffmanTest {
public:
    using HuffmanTest::HuffmanTest;
    ~TimjHuffDirect() override = default;

    bool initData() override
    {
        if (!createData()) return false;
        encodeSpecs.alloc(1, true);
        decodeSpecs.alloc(1, true);
        return m_encode || qdjDone(x_Encode(), "x_Encode");
    }
};

QD_REG_X(TimjHuffDirect, qoviEncodeHuffman8x8_Direct_JPEG_16s1u_C1, x_Encode);
QD_REG_X(TimjHuffDirect, qoviDecodeHuffman8x8_Direct_JPEG_1u16s_C1, x_Decode);
