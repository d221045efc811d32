// A JPEG stream of any content, decoded twice with one decoder into heap buffers of exactly the needed size.
// Pictures of more than about a million pixels are passed over: time is to go to the paths.
#include "exif_visit.h"
#include "jpegdec.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <vector>

namespace {

// A stream that ends with EOI asks for nothing special. What stands behind EOI is not read by the decoder, so
// that a last byte of choice can be added to any stream.
struct Choice {
    bool blueFirst, yCbCr422, smaller, goOnAfterFailure;

    explicit Choice(Qov8u lastByte)
    {
        const int bits = lastByte ^ JM_EOI;
        blueFirst = bits & 1;
        yCbCr422 = bits & 2;
        smaller = bits & 4;
        goOnAfterFailure = !(bits & 8);
    }
};

struct Picture {
    int width = 0, height = 0, channels = 0, precision = 8;
    _JPEG_COLOR color = JC_UNKNOWN;
    _JPEG_SAMPLING sampling = JS_444;

    bool isLarge() const { return static_cast<long long>(width) * height > 1000000; }
};

// What a picture of the stream's colour is to become: as many channels as the colour has, which need not be
// the stream's number.
Picture wanted(const Picture& coded, const Choice& choice)
{
    Picture p = coded;
    p.sampling = JS_444;
    switch (coded.color) {
    case JC_YCBCR:
        if (choice.yCbCr422) {
            p.channels = 2;
            p.sampling = JS_422;
            break;
        }
        [[fallthrough]];
    case JC_RGB:
    case JC_BGR:
        p.channels = 3;
        p.color = choice.blueFirst ? JC_BGR : JC_RGB;
        break;
    case JC_CMYK:
    case JC_YCCK:
        p.channels = 4;
        p.color = JC_CMYK;
        break;
    case JC_GRAY:
    case JC_UNKNOWN: break;
    }
    if (choice.smaller) {
        p.width = (p.width + 1) / 2;
        p.height = std::max(1, p.height - 3);
    }
    return p;
}

template <class Sample>
_JPEG_ERROR decodeInto(CJPEGDecoder& decoder, const Picture& p)
{
    const int rowSamples = p.width * p.channels; // the picture is not large
    std::vector<Sample> memory(static_cast<size_t>(rowSamples) * static_cast<size_t>(p.height));
    JPEG_PASS(decoder.SetDestination(memory.data(), rowSamples * static_cast<int>(sizeof(Sample)),
                                     {p.width, p.height}, p.channels, p.color, p.sampling, p.precision));
    const _JPEG_ERROR error = decoder.ReadData();
    static_cast<void>(decoder.ReadData()); // whatever it answers
    return error;
}

void showExif(const CJPEGDecoder& decoder)
{
    if (!decoder.m_exif_app1_data) return;
    const auto meta = std::make_unique<CJPEGMetaData>();
    static_cast<void>(meta->ProcessAPP1_Exif(decoder.m_exif_app1_data, decoder.m_exif_app1_data_size));
    visitExif(*meta, decoder.m_exif_app1_data, decoder.m_exif_app1_data_size);
}

void decode(CJPEGDecoder& decoder, const Qov8u* data, int size, const Choice& choice)
{
    if (decoder.SetSource(data, size) != JPEG_OK) return;
    Picture coded;
    const _JPEG_ERROR error = decoder.ReadHeader(&coded.width, &coded.height, &coded.channels, &coded.color,
                                                 &coded.sampling, &coded.precision);
    if (error != JPEG_OK) {
        if (choice.goOnAfterFailure) static_cast<void>(decoder.ReadData()); // there is no destination
    } else if (!coded.isLarge()) {
        if (coded.width < 0 || coded.height < 0 || coded.channels < 1 || coded.channels > 4) std::abort();
        const Picture p = wanted(coded, choice);
        static_cast<void>(p.precision > 8 ? decodeInto<Qov16s>(decoder, p) : decodeInto<Qov8u>(decoder, p));
    }
    showExif(decoder);
    if (decoder.Clean() != JPEG_OK) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QovStatus initialized = qovInit();
    if (initialized < 0) std::abort();
    if (size < 1 || size > INT_MAX) return 0;
    CJPEGDecoder decoder;
    for (int pass = 0; pass < 2; pass++)
        decode(decoder, data, static_cast<int>(size), Choice(data[size - 1]));
    return 0;
}
