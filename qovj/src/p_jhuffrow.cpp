// Suite TimjHuffmanRow: Huffman coding of rows of differences, one to four of them interleaved. Every call
// reads the same rows, the first ones: what they hold is of no interest to the measure.
#include "huffstateful.h"

static qkIterator<int> nSrcRows;
static int width;

static const int mostRows = qdjHuffmanSpecs<qdjEncodeSide>::most;

namespace {

// The first rows of the coefficients.
struct Rows {
    Qov16s* at[mostRows] = {};

    explicit Rows(int n)
    {
        for (int k = 0; k < n; k++) at[k] = src.m_16s + static_cast<ptrdiff_t>(k) * width;
    }
};

} // namespace

static inline int encodeRows(int nRows)
{
    const Rows rows(nRows);
    return qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(rows.at, width, nRows, dst.m_8u, lenBytes, &dstPos,
                                                encodeSpecs.dc, encodeState.state, 0);
}

static inline int decodeRows(int nRows)
{
    const Rows rows(nRows);
    return qoviDecodeHuffmanRow_JPEG_1u16s_C1P4(dst.m_8u, lenBytes, &dstPos, rows.at, width, nRows, &marker,
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
    restoreDecode(); // the tool's second call of a pass comes without init, and bits are left
    return status;
}

class TimjHuffmanRow : public HuffmanStateTest {
public:
    using HuffmanStateTest::HuffmanStateTest;
    ~TimjHuffmanRow() override = default;

    bool canStart() override
    {
        if (!HuffmanStateTest::canStart()) return false;
        nSrcRows.reset();
        nSrcRows.setName("nSrcRows", "");
        for (int n = 1; n <= mostRows; n++) nSrcRows.add(n);
        m_parms.append(&nSrcRows);
        return true;
    }

    bool initData() override
    {
        const int nRows = nSrcRows.value();
        if (nRows < 1 || nRows > mostRows) return false;
        width = g_imageSize.value().width;
        return createData(1LL * mostRows * width) &&
               createCoders(nRows, false, x_EncodeRow, "qoviEncodeHuffmanRow_JPEG_16s1u_P4C1");
    }
};

QD_REG_I_X(TimjHuffmanRow, qoviEncodeHuffmanRow_JPEG_16s1u_P4C1, restoreEncode, x_EncodeRow);
QD_REG_I_X(TimjHuffmanRow, qoviDecodeHuffmanRow_JPEG_1u16s_C1P4, restoreDecode, x_DecodeRow);
