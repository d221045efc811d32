// Suite TimjHuffmanRow: Huffman coding of rows of differences, one to four of them interleaved. Every call
// reads the same rows, the first ones: what they hold is of no interest to the measure.
#include "huffsuite.h"

static qdImage srcDCT;
static qdVector src; // what is coded, and where decoding puts it
static qdBitVector dst;
static qkIterator<int> nSrcRows;
static qdjHuffmanSpecs<qdjEncodeSide> encodeSpecs;
static qdjHuffmanSpecs<qdjDecodeSide> decodeSpecs;
static qdjHuffmanState<qdjEncodeSide> encodeState;
static qdjHuffmanState<qdjDecodeSide> decodeState;
static int srcLen, width, lenBytes, dstPos, marker;

static const int mostRows = qdjHuffmanSpecs<qdjEncodeSide>::most;

static void setRows(Qov16s* (&rows)[mostRows], int nRows)
{
    for (int k = 0; k < nRows; k++) rows[k] = src.m_16s + static_cast<ptrdiff_t>(k) * width;
}

static inline int encodeRows(int nRows)
{
    Qov16s* rows[mostRows] = {};
    setRows(rows, nRows);
    return qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(rows, width, nRows, dst.m_8u, lenBytes, &dstPos,
                                                encodeSpecs.dc, encodeState.state, 0);
}

static inline int decodeRows(int nRows)
{
    Qov16s* rows[mostRows] = {};
    setRows(rows, nRows);
    return qoviDecodeHuffmanRow_JPEG_1u16s_C1P4(dst.m_8u, lenBytes, &dstPos, rows, width, nRows, &marker,
                                                decodeSpecs.dc, decodeState.state);
}

// `call` for as many rows as the picture has, up to the first status.
template <class Call>
static inline int walk(int nRows, Call call)
{
    dstPos = 0;
    marker = 0;
    for (long long srcPos = 0; srcPos < srcLen; srcPos += static_cast<long long>(width) * nRows) {
        const int status = call(nRows);
        if (status != 0) return status;
    }
    return 0;
}

// The last call codes more rows instead of a flush, so that all bits of the walk are complete bytes.
[[gnu::noinline]] static int x_EncodeRow()
{
    const int nRows = nSrcRows.value();
    const int status = walk(nRows, encodeRows);
    return status != 0 ? status : encodeRows(nRows);
}

[[gnu::noinline]] static int x_DecodeRow()
{
    const int status = walk(nSrcRows.value(), decodeRows);
    decodeState.restore(); // the tool's second call of a pass comes without init, and bits are left
    return status;
}

static void initEncode()
{
    encodeState.restore();
}

static void initDecode()
{
    decodeState.restore();
}

class TimjHuffmanRow : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjHuffmanRow() override = default;

    bool canStart() override
    {
        regCacheParm(g_imageSize, srcDCT, nullptr);
        nSrcRows.reset();
        nSrcRows.setName("nSrcRows", "");
        for (int n = 1; n <= mostRows; n++) nSrcRows.add(n);
        m_parms.append(&nSrcRows);
        m_encode = m_func.contains("Encode");
        m_tool.m_dataUse = true;
        return true;
    }

    bool initData() override
    {
        const QoviSize size = g_imageSize.value();
        const int nRows = nSrcRows.value();
        if (nRows < 1 || nRows > mostRows) return false;
        srcLen = qdjPixels(size);
        width = size.width;
        if (!qdjHuffmanSource(size, srcDCT, src, 1LL * mostRows * width, SET_ZERO)) return false;
        if (!qdjHuffmanStream(dst, 2LL * srcLen, SET_ZERO)) return false;
        m_tool.setLoopFactor(-3);
        if (!allocEncode(nRows) || !allocDecode(nRows)) return false;
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
    static bool allocEncode(int nRows) { return encodeSpecs.alloc(nRows, false) && encodeState.alloc(); }
    static bool allocDecode(int nRows) { return decodeSpecs.alloc(nRows, false) && decodeState.alloc(); }

    static bool prepareDecode()
    {
        const bool done = qdjDone(x_EncodeRow(), "qoviEncodeHuffmanRow_JPEG_16s1u_P4C1");
        lenBytes = dstPos;
        return done && decodeState.init();
    }

    bool m_encode = false;
};

QD_REG_I_X(TimjHuffmanRow, qoviEncodeHuffmanRow_JPEG_16s1u_P4C1, initEncode, x_EncodeRow);
QD_REG_I_X(TimjHuffmanRow, qoviDecodeHuffmanRow_JPEG_1u16s_C1P4, initDecode, x_DecodeRow);
