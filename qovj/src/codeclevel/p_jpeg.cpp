// Suite TimJpegCodec: the whole JPEG codec on one picture, a synthetic one or that of a file. A measured call
// is an encode or a decode; only the work on the picture's data is timed, setting up and headers are not.
#include <memory>

#include "jpegdec.h"
#include "jpegenc.h"
#include "qovj_main.h"
#include "qovjsuite.h"

static qdImage src;  // the picture: what an encoder test reads and a decoder test writes
static qdVector dst; // the stream
static int dstLen;   // room for it
static QoviSize size;
static int channels;
static bool bEncoder;
static _JPEG_COLOR srcColor, dstColor; // of the picture, and in the stream
static std::unique_ptr<CJPEGEncoder> pEncoder;
static std::unique_ptr<CJPEGDecoder> pDecoder;

static qkMapDefault<bool> bmpInput;
static qkIterator<qkString> bmpFileName;
static qkMapIterator<int> mode;
static qkMapIterator<int> color;
static qkMapIterator<int> sampling;
static qkEnumIterator<int> quality;

// Two colours in one value of `color`: the one that a test starts from in the low nibble, the one that it
// makes in the high nibble.
static constexpr int fromTo(_JPEG_COLOR from, _JPEG_COLOR to)
{
    return from | to << 4;
}

static const struct {
    int channels;
    bool encoder, decoder; // the tests that have it
    int pair;
    const char* name;
} colorPairs[] = {
    {1, true, true, fromTo(JC_GRAY, JC_GRAY), "Gray->Gray"},
    {3, true, true, fromTo(JC_RGB, JC_RGB), "RGB->RGB"},
    {3, true, false, fromTo(JC_RGB, JC_YCBCR), "RGB->YCbCr"},
    {3, true, false, fromTo(JC_RGB, JC_GRAY), "RGB->Gray"},
    {3, true, false, fromTo(JC_BGR, JC_YCBCR), "BGR->YCbCr"},
    {3, true, false, fromTo(JC_BGR, JC_GRAY), "BGR->Gray"},
    {3, false, true, fromTo(JC_YCBCR, JC_RGB), "YCbCr->RGB"},
    {3, false, true, fromTo(JC_YCBCR, JC_BGR), "YCbCr->BGR"},
    {4, true, true, fromTo(JC_CMYK, JC_CMYK), "CMYK->CMYK"},
    {4, true, false, fromTo(JC_CMYK, JC_YCCK), "CMYK->YCCK"},
    {4, false, true, fromTo(JC_YCCK, JC_CMYK), "YCCK->CMYK"},
};

static int errorCode(_JPEG_ERROR err, const qkString& where)
{
    if (err == JPEG_OK) return 0;
    g_ostrm << ERR << "--JPEG ERROR in " << where << ". errCode = " << static_cast<int>(err) << ", "
            << GetErrorStr(err) << "\n"
            << END_MSG;
    return 1;
}

// ---- The measured calls

static const int codecFailed = -2;

static int t_jpeg_Encoder(qdTicks& tick)
{
    if (errorCode(pEncoder->Clean(), "Encoder.Clean")) return codecFailed;
    if (errorCode(pEncoder->SetSource(src.m_8u, src.m_step, size, channels, srcColor, JS_444),
                  "Encoder.SetSource"))
        return codecFailed;
    const auto factors = static_cast<_JPEG_SAMPLING>(sampling.value());
    const auto process = static_cast<_JPEG_MODE>(mode.value());
    if (errorCode(pEncoder->SetDestination(dst.m_8u, dstLen, quality.value(), dstColor, factors, process, 0),
                  "Encoder.SetDestination"))
        return codecFailed;
    if (errorCode(pEncoder->WriteHeader(), "Encoder.WriteHeader")) return codecFailed;
    tick.resume();
    tick.begin();
    const _JPEG_ERROR status = pEncoder->WriteData();
    tick.end();
    return errorCode(status, "Encoder.WriteData") ? codecFailed : 0;
}

// Every call has a new decoder. The whole buffer is offered, not the stream alone: the decoder finds its end.
static int t_jpeg_Decoder(qdTicks& tick)
{
    static_cast<void>(pDecoder->Clean());
    pDecoder = std::make_unique<CJPEGDecoder>();
    if (errorCode(pDecoder->Clean(), "Decoder.Clean")) return codecFailed;
    if (errorCode(pDecoder->SetSource(dst.m_8u, dstLen), "Decoder.SetSource")) return codecFailed;
    if (errorCode(pDecoder->SetDestination(src.m_8u, src.m_step, size, channels, srcColor, JS_444, 8),
                  "Decoder.SetDestination"))
        return codecFailed;
    int width, height, components, precision;
    _JPEG_COLOR streamColor;
    _JPEG_SAMPLING factors;
    if (errorCode(pDecoder->ReadHeader(&width, &height, &components, &streamColor, &factors, &precision),
                  "Decoder.ReadHeader"))
        return codecFailed;
    tick.resume();
    tick.begin();
    const _JPEG_ERROR status = pDecoder->ReadData();
    tick.end();
    return errorCode(status, "Decoder.ReadData") ? codecFailed : 0;
}

// ---- The suite

static qkString dataName()
{
    return bmpInput.value() ? bmpFileName.value() : qkString("Jaehne");
}

class TimJpegCodec : public qdTest {
public:
    using qdTest::qdTest;
    ~TimJpegCodec() override = default;

    bool canStart() override
    {
        m_tool.m_stopFactor = 32; // calls that take long
        bEncoder = m_func.contains("Encoder");
        channels = m_func.srcChannels();
        initInput();
        m_parms.append(&mode);
        m_parms.append(&color);
        m_parms.append(&sampling);
        m_parms.append(&quality);
        initMode();
        initColor();
        initSampling();
        quality.reset();
        quality.setName("QualityFactor", "");
        for (const int factor : {100, 75, 50, 25}) quality.add(factor);
        return true;
    }

    bool initData() override
    {
        if (!createSrcImage() || !isCoded()) return false;
        const int pair = color.value();
        const int sizes = pair == fromTo(JC_CMYK, JC_CMYK) ? 3 : 2; // of the picture
        dstLen = qdjCount(static_cast<long long>(size.width) * size.height * channels * sizes);
        dst.init(qd8u);
        if (!dst.createVectorExt(dstLen, qkGetVectorShift(), SET_ZERO)) return false;
        pEncoder = std::make_unique<CJPEGEncoder>();
        pDecoder = std::make_unique<CJPEGDecoder>();
        const auto from = static_cast<_JPEG_COLOR>(pair & 15), to = static_cast<_JPEG_COLOR>(pair >> 4);
        srcColor = bEncoder ? from : to;
        dstColor = bEncoder ? to : from;
        if (!bEncoder) {
            // The stream for all the measured calls. Without one they tell of it.
            qdTicks tick;
            t_jpeg_Encoder(tick);
        }
        return true;
    }

    void flushData() override
    {
        src.deleteVector();
        dst.deleteVector();
        pEncoder.reset();
        pDecoder.reset();
    }

    double getDivisor() override { return static_cast<double>(src.m_width) * src.m_height; }
    qkString getUnit() override { return "px"; }

    void parmsToCstrm() override
    {
        g_cstrm << qkToText(size) << dataName();
        mode.toCStream(g_cstrm);
        g_cstrm << strColorSampling();
        quality.toCStream(g_cstrm);
    }

    void parmsToOstrm() override
    {
        g_ostrm << "size=" << size << " data=" << dataName() << " ";
        mode.toOStream(g_ostrm);
        color.toOStream(g_ostrm);
        sampling.toOStream(g_ostrm);
        quality.toOStream(g_ostrm);
    }

private:
    // Asked here already and so not again with the others: the list of parameters depends on it.
    void initInput()
    {
        m_parms.append(&bmpInput);
        bmpInput[true] = "file";
        bmpInput[false] = "jaehne";
        bmpInput.setName("imageInput", "");
        bmpInput.setValue(false);
        bmpInput.setSelected(true);
        bmpInput.fromIStream(g_istrm);
        bmpInput.setSelected(false);
        if (!bmpInput.value()) {
            m_parms.append(&g_codecSize);
            return;
        }
        m_parms.append(&bmpFileName);
        bmpFileName.setName("bmpFile", "");
        bmpFileName.reset();
        bmpFileName.add("rose.bmp");
        bmpFileName.add("sbikers2.bmp");
    }

    static void addNamed(qkMapIterator<int>& parm, int value, const char* name)
    {
        parm[value] = name;
        parm.add(value);
    }

    // The maps are made anew for each test: a pair of another number of channels would have the codec read
    // past the picture's rows.
    static void startMap(qkMapIterator<int>& parm, const char* name)
    {
        parm.resetMap();
        parm.reset();
        parm.setName(name, "");
    }

    static void initMode()
    {
        startMap(mode, "Mode");
        addNamed(mode, JPEG_BASELINE, "baseline");
        addNamed(mode, JPEG_PROGRESSIVE, "progressive");
        addNamed(mode, JPEG_LOSSLESS, "lossless");
    }

    static void initColor()
    {
        startMap(color, "Color");
        color[fromTo(JC_UNKNOWN, JC_UNKNOWN)] = "Unknown->Unknown";
        for (const auto& pair : colorPairs) {
            if (pair.channels == channels && (bEncoder ? pair.encoder : pair.decoder))
                addNamed(color, pair.pair, pair.name);
        }
    }

    static void initSampling()
    {
        startMap(sampling, "Sampling");
        addNamed(sampling, JS_444, "444");
        if (channels == 1) return;
        addNamed(sampling, JS_422, "422");
        addNamed(sampling, JS_244, "244");
        addNamed(sampling, JS_411, "411");
    }

    // A grey stream has no factors to choose from, and a lossless one is grey and has no quality.
    static bool isCoded()
    {
        const bool grayFromColor =
            color.value() == fromTo(JC_RGB, JC_GRAY) || color.value() == fromTo(JC_BGR, JC_GRAY);
        if (grayFromColor && sampling.value() != JS_444) return false;
        return mode.value() != JPEG_LOSSLESS ||
               (color.value() == fromTo(JC_GRAY, JC_GRAY) && quality.value() == 100);
    }

    static bool createSrcImage()
    {
        return bmpInput.value() ? createSrcImage_File(bmpFileName.value()) : createSrcImage_Jaehne();
    }

    static bool createSrcImage_File(const qkString& name)
    {
        if (!src.loadImage(name, -1)) return false;
        if (src.channels() != channels) {
            g_ostrm << ERR << "--- Can't load file " << name << ": numChannels != " << channels << "\n"
                    << END_MSG;
            return false;
        }
        size = src.imageSize();
        return true;
    }

    static bool createSrcImage_Jaehne()
    {
        size = g_codecSize.value();
        src.init(qd8u, channels, false);
        if (!src.createImageExt(size, 0, qkGetVectorShift(), SET_ZERO)) return false;
        qdjJaehne(src);
        return true;
    }

    // Colours and factors in one cell, the factors beside the stream: "RGB->YCbCr411", "YCbCr411->RGB".
    static qkString strColorSampling()
    {
        const qkString pair = color.valueString();
        const qkString factors = sampling.valueString();
        if (channels == 1) return pair;
        if (bEncoder) return pair + factors;
        const int arrow = pair.find("->");
        return arrow == qkString::npos ? qkString() : pair.substr(0, arrow) + factors + pair.substr(arrow);
    }
};

QD_REG_T(TimJpegCodec, jpeg_Encoder_8u_C1, t_jpeg_Encoder);
QD_REG_T(TimJpegCodec, jpeg_Encoder_8u_C3, t_jpeg_Encoder);
QD_REG_T(TimJpegCodec, jpeg_Encoder_8u_C4, t_jpeg_Encoder);
QD_REG_T(TimJpegCodec, jpeg_Decoder_8u_C1, t_jpeg_Decoder);
QD_REG_T(TimJpegCodec, jpeg_Decoder_8u_C3, t_jpeg_Decoder);
QD_REG_T(TimJpegCodec, jpeg_Decoder_8u_C4, t_jpeg_Decoder);
