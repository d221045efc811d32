// Suite TimjDctQuantLS: DCT, quantisation and level shift between an image and blocks of coefficients. Every
// inverse test starts from coefficients that a forward pass has made from the random image.
#include "qovj_main.h"
#include "qovjsuite.h"

static qdImage img;  // the pixel side, whichever way the function goes
static qdVector qnt; // the coefficient side
static qdVector pQuantTable;
static qkIterator<QoviSize> size;
static QoviSize imgSize;
static int imgStep;
static int blockWidth; // pixels that a block takes on a row

// `call` for each block, given its pixels and coefficients, up to the first error. The horizontal walk
// narrows with blockWidth; the vertical one stays at 8 rows, so the reduced forms leave gaps between their
// rows, on purpose.
template <class Pixel, class Call>
static inline int forEachBlock(Pixel* pixels, Call call)
{
    int status = 0;
    Qov16s* coefs = qnt.m_16s;
    const ptrdiff_t stepItems = imgStep / static_cast<ptrdiff_t>(sizeof(Pixel));
    for (int y = 0; y < imgSize.height - 7; y += 8) {
        Pixel* block = pixels + y * stepItems;
        for (int x = 0; x < imgSize.width - 7; x += 8) {
            status = call(block, coefs);
            if (status < 0) return status;
            coefs += 64;
            block += blockWidth;
        }
    }
    return status;
}

// One measured call is one call of x_<f>, for all nine alike: the compiler's choice would differ from one to
// the next.
#define DCTQUANTLS_FWD(f, pixels, table)                                                                     \
    [[gnu::noinline]] static int x_##f()                                                                     \
    {                                                                                                        \
        return forEachBlock(img.pixels, [](auto* block, Qov16s* coefs) {                                     \
            return f(block, imgStep, coefs, pQuantTable.table);                                              \
        });                                                                                                  \
    }
#define DCTQUANTLS_INV(f, pixels, table)                                                                     \
    [[gnu::noinline]] static int x_##f()                                                                     \
    {                                                                                                        \
        return forEachBlock(img.pixels, [](auto* block, Qov16s* coefs) {                                     \
            return f(coefs, block, imgStep, pQuantTable.table);                                              \
        });                                                                                                  \
    }

DCTQUANTLS_FWD(qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R, m_8u, m_16u)
DCTQUANTLS_INV(qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R, m_8u, m_16u)
DCTQUANTLS_FWD(qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R, m_16u, m_32f)
DCTQUANTLS_INV(qoviDCTQuantInv8x8LS_JPEG_16s16u_C1R, m_16u, m_32f)
DCTQUANTLS_INV(qoviDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, m_8u, m_16u)
DCTQUANTLS_INV(qoviDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, m_8u, m_16u)
DCTQUANTLS_INV(qoviDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, m_8u, m_16u)
DCTQUANTLS_INV(qoviDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, m_8u, m_16u)
DCTQUANTLS_INV(qoviDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, m_8u, m_16u)

class TimjDctQuantLS : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjDctQuantLS() override = default;

    bool canStart() override
    {
        regCacheParm(size, img, nullptr);
        size.reset();
        size.setName("Size", "");
        copySizeList(g_imageSize, size);
        size.insert(size.begin(), {8, 8}); // the first case is one block
        const bool forward = m_func.contains("Fwd");
        img.init(m_func, forward ? 1 : 2);
        qnt.init(m_func, forward ? 2 : 1);
        pQuantTable.init(img.m_type == qd8u ? qd16u : qd32f);
        m_fwdName = qkString("x_qoviDCTQuantFwd8x8LS_JPEG_") + qdFunc::typeToString(img.m_type) +
                    qdFunc::typeToString(qnt.m_type) + "_C1R";
        blockWidth = m_func.contains("To4x4") ? 4 : m_func.contains("To2x2") ? 2 : 8;
        return true;
    }

    bool initData() override
    {
        imgSize = size.value();
        if (!img.createVector(imgSize, SET_RANDOM, 0, 0)) return false;
        if (!qnt.createVector(qdjCount(static_cast<long long>(imgSize.width) * imgSize.height), SET_RANDOM, 0,
                              0))
            return false;
        if (!pQuantTable.createVector(256, SET_ONE, 0, 0)) return false;
        imgStep = img.m_step;
        return callFwd();
    }

    void flushData() override
    {
        img.deleteVector();
        qnt.deleteVector();
        pQuantTable.deleteVector();
    }

    double getDivisor() override { return static_cast<double>(img.m_width) * img.m_height; }
    qkString getUnit() override { return "px"; }

private:
    bool callFwd()
    {
        static const struct {
            const char* name;
            int (*call)();
        } callers[] = {
            {"x_qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R", x_qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R},
            {"x_qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R", x_qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R},
        };
        for (const auto& caller : callers) {
            if (m_fwdName == caller.name) return !qkIsError(checkStatus(caller.call(), caller.name));
        }
        return false;
    }

    qkString m_fwdName; // of the forward caller that makes this test's coefficients
};

#define DCTQUANTLS_REG(f) QD_REG_X(TimjDctQuantLS, f, x_##f)
DCTQUANTLS_REG(qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R);
DCTQUANTLS_REG(qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R);
DCTQUANTLS_REG(qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R);
DCTQUANTLS_REG(qoviDCTQuantInv8x8LS_JPEG_16s16u_C1R);
DCTQUANTLS_REG(qoviDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R);
DCTQUANTLS_REG(qoviDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R);
DCTQUANTLS_REG(qoviDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R);
DCTQUANTLS_REG(qoviDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R);
DCTQUANTLS_REG(qoviDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R);
