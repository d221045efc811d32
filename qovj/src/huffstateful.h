// What the suites of sequential Huffman coding with a state share. Each measured call codes all of the
// picture from a fresh state.
#ifndef QOVJ_HUFFSTATEFUL_H
#define QOVJ_HUFFSTATEFUL_H

#include "huffsequential.h"

namespace {

int lenBytes, dstPos, marker;
qdjHuffmanState<qdjEncodeSide> encodeState;
qdjHuffmanState<qdjDecodeSide> decodeState;

void restoreEncode()
{
    encodeState.restore();
}

void restoreDecode()
{
    decodeState.restore();
}

class HuffmanStateTest : public HuffmanTest {
public:
    using HuffmanTest::HuffmanTest;
    ~HuffmanStateTest() override = default;

    bool canStart() override
    {
        m_tool.m_dataUse = true;
        return HuffmanTest::canStart();
    }

    void flushData() override
    {
        HuffmanTest::flushData();
        encodeState.release();
        decodeState.release();
    }

protected:
    // For decoding, one call of `encode`, the body of the primitive `name`, makes the stream.
    bool createCoders(int dcTables, bool withAC, int (*encode)(), const char* name)
    {
        if (!encodeSpecs.alloc(dcTables, withAC) || !encodeState.alloc()) return false;
        if (!decodeSpecs.alloc(dcTables, withAC) || !decodeState.alloc()) return false;
        lenBytes = dst.m_len;
        if (!encodeState.init()) return false;
        if (m_encode) return true;
        const bool done = qdjDone(encode(), name);
        lenBytes = dstPos;
        return done && decodeState.init();
    }
};

} // namespace

#endif
