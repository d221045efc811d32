// jpegcodec decode.
#include <algorithm>
#include <filesystem>

#include "arguments.h"
#include "bmp.h"
#include "jpegcommands.h"
#include "jpegdec.h"
#include "picture.h"
#include "pnm.h"

namespace {
struct ColorName {
    const char* name;
    _JPEG_COLOR color;
};
const ColorName destinations[] = {{"Gray", JC_GRAY}, {"RGB", JC_RGB}, {"BGR", JC_BGR}, {"CMYK", JC_CMYK}};

// What becomes of a stream's colour. The first pair of a stream is the one without -color. The codec's pairs
// of grey to colours read planes that are not there, and an RGB stream comes out as RGB under either name.
struct ColorPair {
    _JPEG_COLOR stream, destination;
    int components, channels;
};
const ColorPair pairs[] = {
    {JC_GRAY, JC_GRAY, 1, 1},       {JC_YCBCR, JC_RGB, 3, 3},       {JC_YCBCR, JC_BGR, 3, 3},
    {JC_RGB, JC_RGB, 3, 3},         {JC_CMYK, JC_CMYK, 4, 4},       {JC_YCCK, JC_CMYK, 4, 4},
    {JC_UNKNOWN, JC_UNKNOWN, 1, 1}, {JC_UNKNOWN, JC_UNKNOWN, 3, 3}, {JC_UNKNOWN, JC_UNKNOWN, 4, 4}};

struct Header {
    int width = 0, height = 0, components = 0, precision = 0;
    _JPEG_COLOR color = JC_UNKNOWN;
    _JPEG_SAMPLING sampling = JS_OTHER;
};

const ColorPair& choosePair(const Arguments& arguments, const Header& header)
{
    const bool chosen = arguments.has("-color");
    const _JPEG_COLOR wanted = chosen ? choose(destinations, arguments, "-color").color : JC_UNKNOWN;
    for (const ColorPair& pair : pairs)
        if (pair.stream == header.color && pair.components == header.components &&
            (!chosen || pair.destination == wanted))
            return pair;
    throw Failure(std::to_string(header.components) + " components of colour " + colorName(header.color) +
                  (chosen ? std::string(" to ") + colorName(wanted) : std::string()) + ": " +
                  GetErrorStr(JPEG_NOT_SUPPORTED));
}

// The data of a sequential stream that was cut short, which decodes to a partial picture, do not end with
// EOI.
bool endsWithEoi(const _bitstream& stream)
{
    const int at = std::min(stream.currPos, stream.DataLen);
    return at >= 2 && stream.pData[at - 2] == 0xFF && stream.pData[at - 1] == JM_EOI;
}

struct Decoded {
    Picture picture;
    bool partial = false;
};

Decoded decode(const Bytes& file, const Arguments& arguments)
{
    CJPEGDecoder decoder;
    codecCall(decoder.SetSource(file.data(), static_cast<int>(file.size())));
    Header header;
    codecCall(decoder.ReadHeader(&header.width, &header.height, &header.components, &header.color,
                                 &header.sampling, &header.precision));
    const ColorPair& pair = choosePair(arguments, header);

    Decoded decoded;
    Picture& picture = decoded.picture;
    picture = Picture::make(header.width, header.height, pair.channels, (1 << header.precision) - 1);
    const int step = static_cast<int>(picture.rowBytes());
    const QoviSize size = {picture.width, picture.height};
    if (picture.isWide())
        codecCall(decoder.SetDestination(reinterpret_cast<Qov16s*>(picture.samples.data()), step, size,
                                         pair.channels, pair.destination, JS_444, header.precision));
    else
        codecCall(
            decoder.SetDestination(picture.samples.data(), step, size, pair.channels, pair.destination));
    const _JPEG_ERROR code = decoder.ReadData();
    // Behind the one scan of a sequential stream there is nothing that its picture needs.
    const bool scanIsRead = code == JPEG_BUFFER_TOO_SMALL && decoder.m_jpeg_mode == JPEG_BASELINE;
    if (!scanIsRead) codecCall(code);
    decoded.partial = !endsWithEoi(decoder.m_src);

    // Files have red first, whatever order was asked of the codec.
    if (pair.destination == JC_BGR)
        for (size_t at = 0; at < picture.samples.size(); at += 3)
            std::swap(picture.samples[at], picture.samples[at + 2]);
    return decoded;
}

// Grey in a format of colours: three equal channels.
Picture greyToRgb(const Picture& grey)
{
    Picture rgb = Picture::make(grey.width, grey.height, 3, grey.maxval);
    const size_t bytes = grey.isWide() ? 2 : 1;
    unsigned char* dst = rgb.samples.data();
    for (size_t at = 0; at < grey.samples.size(); at += bytes)
        for (int i = 0; i < 3; i++) dst = std::copy_n(&grey.samples[at], bytes, dst);
    return rgb;
}

struct Format {
    const char* name; // the file name's extension
    bool grey, rgb, cmyk;
    bool anyDepth;
    void (*write)(OutputFile&, const Picture&);
};
const Format formats[] = {{".pgm", true, false, false, true, writePnm},
                          {".ppm", false, true, false, true, writePnm},
                          {".pnm", true, true, false, true, writePnm},
                          {".pam", true, true, true, true, writePam},
                          {".bmp", true, true, false, false, writeBmp}};

const Format& chooseFormat(const std::string& path)
{
    const std::string extension = std::filesystem::path(path).extension().string();
    for (const Format& format : formats)
        if (sameWord(extension, format.name)) return format;
    throw UsageFailure(path + ": '" + extension + "' is not one of .pgm, .ppm, .pnm, .pam and .bmp");
}

void writePicture(const std::string& path, const Format& format, Picture picture)
{
    if (picture.channels == 1 && !format.grey) picture = greyToRgb(picture);
    const bool fits = picture.channels == 1 ? format.grey : picture.channels == 3 ? format.rgb : format.cmyk;
    if (!fits)
        throw Failure(std::to_string(picture.channels) + " channels do not go into a " + format.name +
                      " file");
    if (!format.anyDepth && picture.maxval != 255)
        throw Failure("samples up to " + std::to_string(picture.maxval) + " do not go into a " + format.name +
                      " file");
    OutputFile out(path);
    format.write(out, picture);
    out.commit();
}
} // namespace

void decodeCommand(const std::vector<std::string>& words)
{
    const Arguments arguments(words, {"-color"}, 2);
    if (arguments.has("-color")) choose(destinations, arguments, "-color"); // shows before any file is read
    const Format& format = chooseFormat(arguments.file(1));

    Decoded decoded =
        onFile(arguments.file(0), [&] { return decode(readFile(arguments.file(0)), arguments); });
    onFile(arguments.file(1), [&] { writePicture(arguments.file(1), format, std::move(decoded.picture)); });
    if (decoded.partial) warn(arguments.file(0) + ": the data end early: a partial picture");
}
