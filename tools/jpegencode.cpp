// jpegcodec encode.
#include <algorithm>
#include <climits>
#include <memory>

#include "arguments.h"
#include "bmp.h"
#include "jpegcommands.h"
#include "jpegenc.h"
#include "picture.h"
#include "pnm.h"

namespace {
struct ModeName {
    const char* name;
    _JPEG_MODE mode;
};
const ModeName modes[] = {
    {"baseline", JPEG_BASELINE}, {"progressive", JPEG_PROGRESSIVE}, {"lossless", JPEG_LOSSLESS}};

struct SamplingName {
    const char* name;
    _JPEG_SAMPLING sampling;
};
const SamplingName samplings[] = {{"444", JS_444}, {"422", JS_422}, {"244", JS_244},
                                  {"411", JS_411}, {"420", JS_411}, {"440", JS_244}};

// Of the roads with the same number of channels, the first is taken when none is asked for.
struct ColorRoad {
    const char* name;
    int channels;
    _JPEG_COLOR source, stream;
};
const ColorRoad roads[] = {{"Gray-Gray", 1, JC_GRAY, JC_GRAY}, {"RGB-YCbCr", 3, JC_RGB, JC_YCBCR},
                           {"RGB-RGB", 3, JC_RGB, JC_RGB},     {"RGB-Gray", 3, JC_RGB, JC_GRAY},
                           {"BGR-YCbCr", 3, JC_BGR, JC_YCBCR}, {"CMYK-YCCK", 4, JC_CMYK, JC_YCCK},
                           {"CMYK-CMYK", 4, JC_CMYK, JC_CMYK}};

struct Settings {
    _JPEG_MODE mode;
    _JPEG_SAMPLING sampling;
    int quality;
    int restartInterval;
};

const ColorRoad& chooseRoad(const Arguments& arguments, const Picture& picture)
{
    if (!arguments.has("-color"))
        return *std::find_if(std::begin(roads), std::end(roads),
                             [&](const ColorRoad& road) { return road.channels == picture.channels; });
    const ColorRoad& road = choose(roads, arguments, "-color");
    if (road.channels != picture.channels)
        throw Failure("the picture has " + std::to_string(picture.channels) + " channels, -color " +
                      road.name + " takes " + std::to_string(road.channels));
    return road;
}

Picture readPicture(const Bytes& file)
{
    if (isBmp(file)) return readBmp(file);
    if (isPnm(file)) return readPnm(file);
    throw Failure("neither a PGM, PPM or PAM nor a BMP file");
}

// The codec takes 8-bit samples that use their whole range.
void spreadTo8Bits(Picture& picture)
{
    if (picture.maxval > 255) throw Failure("maxval " + std::to_string(picture.maxval) + " is above 255");
    const int maxval = picture.maxval;
    if (maxval == 255) return;
    for (unsigned char& sample : picture.samples)
        sample = static_cast<unsigned char>((std::min<int>(sample, maxval) * 255 + maxval / 2) / maxval);
    picture.maxval = 255;
}

// The channels of a picture in memory change places; its colours stay.
void swapToBgr(Picture& picture)
{
    for (size_t at = 0; at < picture.samples.size(); at += 3)
        std::swap(picture.samples[at], picture.samples[at + 2]);
}

struct Stream {
    std::unique_ptr<Qov8u[]> bytes;
    int size = 0;
};

_JPEG_ERROR encodeInto(Stream& stream, int capacity, const Picture& picture, const ColorRoad& road,
                       const Settings& settings)
{
    CJPEGEncoder encoder;
    JPEG_PASS(encoder.SetSource(picture.samples.data(), static_cast<int>(picture.rowBytes()),
                                {picture.width, picture.height}, picture.channels, road.source, JS_444));
    JPEG_PASS(encoder.SetDestination(stream.bytes.get(), capacity, settings.quality, road.stream,
                                     settings.sampling, settings.mode, settings.restartInterval));
    JPEG_PASS(encoder.WriteHeader());
    JPEG_PASS(encoder.WriteData());
    stream.size = encoder.GetNumOfBytes();
    return JPEG_OK;
}

// How long a stream gets is known when it is written: a buffer that turns out too small is doubled. No stream
// is longer than `most`: a block of 64 samples takes at most 64 codes of 16 bits with 11 bits each, all of
// whose bytes may need stuffing. A full buffer shows as either of two codes.
Stream encode(const Picture& picture, const ColorRoad& road, const Settings& settings)
{
    const long long raw = static_cast<long long>(picture.samples.size());
    const long long most = std::min<long long>(raw * 8 + (1 << 20), INT_MAX);
    for (long long capacity = std::min(raw / 2 + (1 << 16), most);; capacity = std::min(2 * capacity, most)) {
        Stream stream;
        stream.bytes = std::make_unique_for_overwrite<Qov8u[]>(static_cast<size_t>(capacity));
        const _JPEG_ERROR code = encodeInto(stream, static_cast<int>(capacity), picture, road, settings);
        const bool mayBeFull = code == JPEG_BUFFER_TOO_SMALL || code == JPEG_INTERNAL_ERROR;
        if (mayBeFull && capacity < most) continue;
        codecCall(code);
        return stream;
    }
}

Stream encodeFile(const Arguments& arguments, Settings settings)
{
    Picture picture = readPicture(readFile(arguments.file(0)));
    constexpr int largestSide = 65535;
    if (picture.width > largestSide || picture.height > largestSide)
        throw Failure("a picture of " + std::to_string(picture.width) + "x" + std::to_string(picture.height) +
                      "; a JPEG file holds at most 65535x65535");
    spreadTo8Bits(picture);
    const ColorRoad& road = chooseRoad(arguments, picture);
    if (settings.mode == JPEG_LOSSLESS && picture.channels != 1)
        throw Failure("lossless mode takes grey pictures only");
    if (road.stream == JC_GRAY) settings.sampling = JS_444;
    if (road.source == JC_BGR) swapToBgr(picture);
    return encode(picture, road, settings);
}
} // namespace

void encodeCommand(const std::vector<std::string>& words)
{
    const Arguments arguments(words, {"-q", "-mode", "-sampling", "-color", "-restart"}, 2);
    const Settings settings = {choose(modes, arguments, "-mode").mode,
                               choose(samplings, arguments, "-sampling").sampling,
                               arguments.number("-q", 1, 100, 75), arguments.number("-restart", 0, 65535, 0)};
    if (arguments.has("-color"))
        choose(roads, arguments, "-color"); // a wrong name shows before any file is read

    const Stream stream = onFile(arguments.file(0), [&] { return encodeFile(arguments, settings); });
    onFile(arguments.file(1), [&] {
        OutputFile out(arguments.file(1));
        out.write(stream.bytes.get(), static_cast<size_t>(stream.size));
        out.commit();
    });
}
