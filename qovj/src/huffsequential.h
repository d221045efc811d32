// The design that the suites of sequential Huffman coding share: the coefficients of a test picture, coded
// into one stream and decoded from it, on the tables of one direction each. Included once by each unit; all
// of it has internal linkage, as in qovjsuite.h.
#ifndef QOVJ_HUFFSEQUENTIAL_H
#define QOVJ_HUFFSEQUENTIAL_H

#include "huffsuite.h"

namespace {

qdImage srcDCT;
qdVector src; // coefficients: what is coded, and where decoding puts them
qdBitVector dst;
int srcLen;
qdjHuffmanSpecs<qdjEncodeSide> encodeSpecs;
qdjHuffmanSpecs<qdjDecodeSide> decodeSpecs;

class HuffmanTest : public qdTest {
public:
    using qdTest::qdTest;
    ~HuffmanTest() override = default;

    bool canStart() override
    {
        regCacheParm(g_imageSize, srcDCT, nullptr);
        m_encode = m_func.contains("Encode");
        return true;
    }

    void flushData() override
    {
        srcDCT.deleteVector();
        src.deleteVector();
        dst.deleteVector();
        encodeSpecs.release();
        decodeSpecs.release();
    }

    double getDivisor() override { return srcLen; }
    qkString getUnit() override { return "px"; }

protected:
    // Of `length` coefficients at least. Coded data are taken to fit into two bytes a sample.
    bool createData(long long length = 0)
    {
        const QoviSize size = g_imageSize.value();
        srcLen = qdjPixels(size);
        if (!qdjHuffmanSource(size, srcDCT, src, length, SET_ZERO)) return false;
        if (!qdjHuffmanStream(dst, 2LL * srcLen, SET_ZERO)) return false;
        m_tool.setLoopFactor(-3);
        return true;
    }

    bool m_encode = false;
};

} // namespace

#endif
