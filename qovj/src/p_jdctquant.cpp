// Suite TimjDctQuant: DCT and quantisation of 16-bit blocks, apart and in place. One measured call walks all
// blocks.
#include "qovj_main.h"
#include "qovjsuite.h"

static qdVector src, dst, pQuantTable;
static qkIterator<QoviSize> imgSize;
static int numBlocks;

class TimjDctQuant : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjDctQuant() override = default;

    bool canStart() override
    {
        m_parms.append(&imgSize);
        imgSize.reset();
        imgSize.setName("Size", "");
        copySizeList(g_imageSize, imgSize);
        imgSize.insert(imgSize.begin(), {8, 8}); // the first case is one block
        return true;
    }

    bool initData() override
    {
        numBlocks = numberOfBlocks();
        const int numCoefs = qdjCount(numBlocks * 64LL);
        src.init(qd16s);
        dst.init(qd16s);
        pQuantTable.init(qd16u);
        return src.createVector(numCoefs, SET_RANDOM, 0, 0) && dst.createVector(numCoefs, SET_RANDOM, 0, 0) &&
               pQuantTable.createVector(256, SET_ONE, 0, 0);
    }

    void flushData() override
    {
        src.deleteVector();
        dst.deleteVector();
        pQuantTable.deleteVector();
    }

    double getDivisor() override { return numBlocks * 64.0; }
    qkString getUnit() override { return "px"; }

private:
    static int numberOfBlocks()
    {
        const QoviSize size = imgSize.value();
        return qdjCount(static_cast<long long>(size.width >> 3) * (size.height >> 3));
    }
};

// `call` for each block, given the offset of its coefficients, up to the first error.
template <class Call>
[[gnu::always_inline]] static inline int forEachBlock(Call call)
{
    int status = 0;
    for (int i = 0; i < numBlocks && status >= 0; i++) status = call(static_cast<ptrdiff_t>(i) * 64);
    return status;
}

// The walk stands in each timed loop itself, for all four alike: no further call in the span.
#define DCTQUANT_APART(f)                                                                                    \
    [[gnu::always_inline]] static inline int x_##f()                                                         \
    {                                                                                                        \
        return forEachBlock(                                                                                 \
            [](ptrdiff_t at) { return f(src.m_16s + at, dst.m_16s + at, pQuantTable.m_16u); });              \
    }                                                                                                        \
    QD_REG_X(TimjDctQuant, f, x_##f)

#define DCTQUANT_INPLACE(f)                                                                                  \
    [[gnu::always_inline]] static inline int x_##f()                                                         \
    {                                                                                                        \
        return forEachBlock([](ptrdiff_t at) { return f(dst.m_16s + at, pQuantTable.m_16u); });              \
    }                                                                                                        \
    QD_REG_X(TimjDctQuant, f, x_##f)

DCTQUANT_APART(qoviDCTQuantFwd8x8_JPEG_16s_C1);
DCTQUANT_INPLACE(qoviDCTQuantFwd8x8_JPEG_16s_C1I);
DCTQUANT_APART(qoviDCTQuantInv8x8_JPEG_16s_C1);
DCTQUANT_INPLACE(qoviDCTQuantInv8x8_JPEG_16s_C1I);
