// The JPEG cases, and our own side of them.
#include "codecs_jpeg.h"

#include "jpegdec.h"
#include "jpegenc.h"

#include <stdexcept>

namespace {

struct SamplingTraits {
    const char* name;
    _JPEG_SAMPLING ours;
};

const SamplingTraits& traits(JpegSampling sampling)
{
    static const SamplingTraits all[] = {{"444", JS_444}, {"422", JS_422}, {"420", JS_411}, {"grey", JS_444}};
    return all[int(sampling)];
}

void check(_JPEG_ERROR error)
{
    if (error != JPEG_OK) throw std::runtime_error(GetErrorStr(error));
}

std::function<void()> ourEncoder(const SharedPicture& picture, const JpegVariant& variant,
                                 const std::shared_ptr<CodedStream>& stream)
{
    return [=, encoder = std::make_shared<CJPEGEncoder>()] {
        const bool grey = picture->channels == 1;
        check(encoder->SetSource(picture->samples.data(), picture->step(), {picture->width, picture->height},
                                 picture->channels, grey ? JC_GRAY : JC_RGB, JS_444));
        check(encoder->SetDestination(stream->buffer.data(), int(stream->buffer.size()), variant.quality,
                                      grey ? JC_GRAY : JC_YCBCR, traits(variant.sampling).ours,
                                      variant.progressive ? JPEG_PROGRESSIVE : JPEG_BASELINE, 0));
        check(encoder->WriteHeader());
        check(encoder->WriteData());
        stream->bytes = size_t(encoder->GetNumOfBytes());
        check(encoder->Clean());
    };
}

std::function<void()> ourDecoder(const std::shared_ptr<const CodedStream>& stream,
                                 const std::shared_ptr<Picture>& result)
{
    return [=, decoder = std::make_shared<CJPEGDecoder>()] {
        int width, height, channels, precision;
        _JPEG_COLOR color;
        _JPEG_SAMPLING sampling;
        check(decoder->SetSource(stream->buffer.data(), int(stream->bytes)));
        check(decoder->ReadHeader(&width, &height, &channels, &color, &sampling, &precision));
        if (width != result->width || height != result->height || channels != result->channels)
            throw std::runtime_error("a stream of another size");
        check(decoder->SetDestination(result->samples.data(), result->step(), {width, height}, channels,
                                      channels == 1 ? JC_GRAY : JC_RGB));
        check(decoder->ReadData());
        check(decoder->Clean());
    };
}

std::string keyOf(const char* direction, const JpegVariant& v)
{
    return std::string("jpeg.") + direction + (v.progressive ? ".prog." : ".base.") +
           traits(v.sampling).name + ".q" + std::to_string(v.quality);
}

// More than any quality needs of any picture, headers included.
size_t streamCapacity(const Picture& picture)
{
    return 4 * picture.samples.size() + 4096;
}

Case encodeCase(const JpegSide& side, const std::string& key, const SharedPicture& picture,
                const JpegVariant& variant)
{
    auto stream = std::make_shared<CodedStream>(streamCapacity(*picture));
    return {key, side.who, picture->pixels(),
            [stream, encode = side.encoder(picture, variant, stream)] {
                encode();
                return stream->bytes;
            },
            [picture, stream] {
                const auto result = blankLike(*picture);
                quolkitJpeg.decoder(stream, result)();
                return psnr(*picture, *result);
            }};
}

Case decodeCase(const JpegSide& side, const std::string& key, const SharedPicture& picture,
                const std::shared_ptr<const CodedStream>& stream)
{
    const auto result = blankLike(*picture);
    return {key, side.who, picture->pixels(),
            [stream, decode = side.decoder(stream, result)] {
                decode();
                return stream->bytes;
            },
            [picture, result] { return psnr(*picture, *result); }};
}

} // namespace

const JpegSide quolkitJpeg = {"quolkit", ourEncoder, ourDecoder};

std::vector<Case> jpegCases(const SharedPicture& picture, const Wanted& wanted)
{
    std::vector<const JpegSide*> sides = {&quolkitJpeg};
#ifdef QK_HAVE_LIBJPEG
    sides.push_back(&libjpegTurbo);
#endif
    std::vector<JpegVariant> variants;
    for (const bool progressive : {false, true})
        for (const auto sampling :
             {JpegSampling::s444, JpegSampling::s422, JpegSampling::s420, JpegSampling::grey})
            variants.push_back({progressive, sampling, 75});
    for (const int quality : {25, 100}) variants.push_back({false, JpegSampling::s420, quality});

    std::vector<Case> cases;
    for (const JpegVariant& variant : variants) {
        const bool grey = variant.sampling == JpegSampling::grey;
        if (!grey && picture->channels == 1) continue;
        const SharedPicture source = grey ? greyOf(picture) : picture;
        if (const std::string key = keyOf("enc", variant); wanted(key))
            for (const JpegSide* side : sides) cases.push_back(encodeCase(*side, key, source, variant));
        if (const std::string key = keyOf("dec", variant); wanted(key)) {
            // All sides decode one stream; the peer's, where there is one.
            const auto stream = std::make_shared<CodedStream>(streamCapacity(*source));
            sides.back()->encoder(source, variant, stream)();
            for (const JpegSide* side : sides) cases.push_back(decodeCase(*side, key, source, stream));
        }
    }
    return cases;
}
