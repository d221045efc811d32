// The parameters that all suites have in common, the hot list, and helpers that make test data.
#include "qovj_main.h"

#include <climits>
#include <cstddef>
#include <initializer_list>

#include "qovjsuite.h"

qkIterator<QoviSize> g_imageSize;
qkStepIterator<int> g_rowWidth;
qkIterator<QoviSize> g_WT_size;
qkIterator<QoviSize> g_code2k_size;
qkIterator<QoviSize> g_codecSize;

static const char* const FirstStr[] = {"LowFirst", "HighFirst"};
static const int FirstVal[] = {qoviWTFilterFirstLow, qoviWTFilterFirstHigh};
static const int FirstNum = 2;

static void setSizes(qkIterator<QoviSize>& parm, const char* name, std::initializer_list<QoviSize> sizes)
{
    parm.setName(name, "");
    parm.reset();
    for (const QoviSize size : sizes) parm.add(size);
}

static void regTestParameters()
{
    qkRegParm(g_imageSize);
    qkRegParm(g_rowWidth);
    qkRegParm(g_WT_size);
    qkRegParm(g_code2k_size);
    qkRegParm(g_codecSize);

    setSizes(g_imageSize, "ImageSize", {{64, 64}, {256, 256}, {720, 480}});
    g_rowWidth.setName("RowWidth", "");
    g_rowWidth.reset();
    g_rowWidth.setStep(8, 2048, '*', 4);
    setSizes(g_WT_size, "WT_Size", {{64, 128}, {512, 512}, {720, 480}});
    setSizes(g_code2k_size, "Code2k_Size", {{8, 8}, {16, 16}, {32, 32}, {64, 64}});
    setSizes(g_codecSize, "HighLevelCodec_Size", {{720, 480}});
}

static const bool regParameters = (qkRegParmFunc(regTestParameters), true);

#define QOVJ_HOT(f) static const bool hot_##f = qkRegHotFunction(#f)
QOVJ_HOT(qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R);
QOVJ_HOT(qoviDecodeHuffman8x8_JPEG_1u16s_C1);
QOVJ_HOT(qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R);
QOVJ_HOT(qoviRGBToYCbCr_JPEG_8u_C3P3R);
QOVJ_HOT(qoviWTInvRow_B53_JPEG2K_16s_C1R);
QOVJ_HOT(qoviWTInvRow_B53_JPEG2K_32s_C1R);
QOVJ_HOT(qoviWTInvRow_D97_JPEG2K_16s_C1R);
QOVJ_HOT(qoviWTInvRow_D97_JPEG2K_32f_C1R);
#undef QOVJ_HOT

void copySizeList(const qkIterator<QoviSize>& src, qkIterator<QoviSize>& dst)
{
    dst.erase(dst.begin(), dst.end());
    for (const QoviSize size : src) dst.append(size);
}

int qdjCount(long long count)
{
    return count > INT_MAX ? INT_MAX : static_cast<int>(count);
}

void qdjJaehne(qdImage& image)
{
    image.setJaehne();
}

void qdjJaehne(qdVector& vector, double amplitude)
{
    if (amplitude == 0.0)
        vector.setJaehne();
    else
        vector.setJaehne(amplitude);
}

// Calls `block(pixels, coefficients)` for each whole block; 0 after the first status of the error class.
template <class Block>
static int forEachBlock(const Qov8u* src, int step, QoviSize size, Qov16s* dst, const char* name, Block block)
{
    for (int y = 0; y < size.height - 7; y += 8) {
        for (int x = 0; x < size.width - 7; x += 8, dst += 64) {
            const QovStatus status = block(src + x + static_cast<ptrdiff_t>(y) * step, dst);
            if (qkIsError(qdTest::checkStatus(status, name))) return 0;
        }
    }
    return 1;
}

int qdjDCTFwd(const Qov8u* src, int step, QoviSize size, Qov16s* dst)
{
    return forEachBlock(
        src, step, size, dst, "qoviDCT8x8Fwd_8u16s_C1R",
        [step](const Qov8u* pixels, Qov16s* coefs) { return qoviDCT8x8Fwd_8u16s_C1R(pixels, step, coefs); });
}

int qdjDCTQuantFwd(const Qov8u* src, int step, QoviSize size, Qov16s* dst)
{
    Qov16u table[256];
    for (Qov16u& entry : table) entry = 100;
    return forEachBlock(src, step, size, dst, "qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R",
                        [step, &table](const Qov8u* pixels, Qov16s* coefs) {
                            return qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R(pixels, step, coefs, table);
                        });
}

qkString& operator<<(qkString& text, QoviWTFilterFirst value)
{
    return text << qkString::enumString(value, FirstVal, FirstStr, FirstNum);
}

void operator<<(QoviWTFilterFirst& value, qkString& text)
{
    value = static_cast<QoviWTFilterFirst>(qkString::enumValue(text, FirstVal, FirstStr, FirstNum, 0));
}
