// The JPEG 2000 cases, and our own side of them.
#include "codecs_j2k.h"

#include "decode.h"
#include "encode.h"

#include <cstring>
#include <stdexcept>

namespace {

using namespace jpeg2000;

// The rows of a bitmap file: from the bottom up, blue first, in steps of four bytes.
struct Bitmap {
    explicit Bitmap(const Picture& picture)
        : width(picture.width), height(picture.height), channels(picture.channels),
          step((width * channels + 3) / 4 * 4), rows(size_t(step) * size_t(height))
    {
        for (int y = 0; y < height; y++)
            for (int i = 0; i < width * channels; i++)
                rows[size_t((height - 1 - y) * step + i)] =
                    picture.samples[size_t(y * width * channels + mirrored(i))];
    }
    int mirrored(int i) const { return channels == 3 ? i / 3 * 3 + 2 - i % 3 : i; }

    int width, height, channels, step;
    std::vector<uint8_t> rows;
};

std::string encoderOptions(const J2kVariant& variant)
{
    return std::string("-i a.bmp -o a.jp2 -wt ") + (variant.reversible ? "wt53" : "wt97") + " -ratio " +
           std::to_string(variant.ratio) + " -wlev " + std::to_string(variant.levels);
}

CmdOptions optionsOf(std::string text, BDiagnOutput& sink)
{
    std::vector<const char*> words = {"codecs"};
    for (char* word = std::strtok(text.data(), " "); word; word = std::strtok(nullptr, " "))
        words.push_back(word);
    return CmdOptions(words.data(), int(words.size()), sink);
}

std::function<void()> ourEncoder(const SharedPicture& picture, const J2kVariant& variant,
                                 const std::shared_ptr<CodedStream>& stream)
{
    const auto bitmap = std::make_shared<Bitmap>(*picture);
    return [=] {
        BDiagnOutput sink;
        const CmdOptions options = optionsOf(encoderOptions(variant), sink);
        _BMPBUFF bmp{nullptr, bitmap->rows.data(), bitmap->width, bitmap->height, bitmap->step, 0,
                     0,       bitmap->channels * 8};
        _JP2BUFF jp2{stream->buffer.data(), uint32_t(stream->buffer.size()), 0, 0};
        if (encode(options, sink, bmp, jp2) != 0) throw std::runtime_error("can't encode");
        stream->bytes = jp2.length;
    };
}

// The samples stand at the end of a binary PNM file.
std::function<void()> ourDecoder(const std::shared_ptr<const CodedStream>& stream,
                                 const std::shared_ptr<Picture>& result)
{
    const auto file = std::make_shared<std::vector<uint8_t>>(result->samples.size() + 64);
    return [=] {
        BDiagnOutput sink;
        const CmdOptions options = optionsOf("-i a.jp2 -o a.pnm", sink);
        const _JP2BUFF jp2{const_cast<uint8_t*>(stream->buffer.data()), uint32_t(stream->bytes),
                           uint32_t(stream->bytes), 0};
        _BMPBUFF pnm{};
        pnm.buffer = file->data();
        pnm.bufferSize = uint32_t(file->size());
        if (decode(options, sink, jp2, pnm) != 0 || pnm.length < result->samples.size())
            throw std::runtime_error("can't decode");
        std::memcpy(result->samples.data(), file->data() + pnm.length - result->samples.size(),
                    result->samples.size());
    };
}

std::string keyOf(const char* direction, const J2kVariant& v, bool grey)
{
    std::string key = std::string("j2k.") + direction;
    key += v.reversible ? ".ll53" : ".lossy97.r" + std::to_string(int(v.ratio));
    key += ".l" + std::to_string(v.levels);
    return grey ? key + ".grey" : key;
}

size_t streamCapacity(const Picture& picture)
{
    return 2 * picture.samples.size() + 65536;
}

// Each side reads its own stream: how indices are rounded is a matter between encoder and decoder.
Case encodeCase(const J2kSide& side, const std::string& key, const SharedPicture& picture,
                const J2kVariant& variant)
{
    auto stream = std::make_shared<CodedStream>(streamCapacity(*picture));
    return {key, side.who, picture->pixels(),
            [stream, encode = side.encoder(picture, variant, stream)] {
                encode();
                return stream->bytes;
            },
            [picture, stream, &side] {
                const auto result = blankLike(*picture);
                side.decoder(stream, result)();
                return psnr(*picture, *result);
            }};
}

Case decodeCase(const J2kSide& side, const std::string& key, const SharedPicture& picture,
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

const J2kSide quolkitJ2k = {"quolkit", ourEncoder, ourDecoder};

std::vector<Case> j2kCases(const SharedPicture& picture, const Wanted& wanted)
{
    std::vector<const J2kSide*> sides = {&quolkitJ2k};
#ifdef QK_HAVE_OPENJPEG
    sides.push_back(&openJpeg);
#endif
    std::vector<Case> cases;
    for (const J2kVariant& variant : {J2kVariant{true, 0, 5}, {false, 10, 5}, {false, 100, 5}})
        for (const bool grey : {false, true}) {
            if (!grey && picture->channels == 1) continue;
            const SharedPicture source = grey ? greyOf(picture) : picture;
            if (const std::string key = keyOf("enc", variant, grey); wanted(key))
                for (const J2kSide* side : sides) cases.push_back(encodeCase(*side, key, source, variant));
            if (const std::string key = keyOf("dec", variant, grey); wanted(key)) {
                // All sides decode one stream; the peer's, where there is one.
                const auto stream = std::make_shared<CodedStream>(streamCapacity(*source));
                sides.back()->encoder(source, variant, stream)();
                for (const J2kSide* side : sides) cases.push_back(decodeCase(*side, key, source, stream));
            }
        }
    return cases;
}
