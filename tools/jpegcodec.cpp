// Encodes, decodes and describes JPEG files on the command line, by the codec alone.
#include <cstdio>
#include <exception>

#include "jpegcommands.h"
#include "qovcore.h"

static const char usage[] =
    "jpegcodec encode [options] IN OUT.jpg      IN: PGM, PPM, PAM (binary) or BMP\n"
    "  -q N             quality, 1 to 100 (75)\n"
    "  -mode M          baseline, progressive or lossless (baseline); lossless takes grey pictures\n"
    "  -sampling S      444, 422, 244 (or 440), 411 (or 420) (444; grey pictures always)\n"
    "  -color SRC-STREAM\n"
    "                   Gray-Gray, RGB-YCbCr, RGB-RGB, RGB-Gray, BGR-YCbCr, CMYK-YCCK, CMYK-CMYK\n"
    "  -restart N       MCUs between restart markers, 0 to 65535 (0: none)\n"
    "jpegcodec decode [-color DST] IN.jpg OUT   OUT: .pgm, .ppm, .pnm, .pam or .bmp\n"
    "  -color DST       Gray, RGB, BGR, CMYK\n"
    "jpegcodec info IN.jpg\n"
    "jpegcodec -h\n";

static const struct {
    const char* name;
    void (*run)(const std::vector<std::string>&);
} commands[] = {{"encode", encodeCommand}, {"decode", decodeCommand}, {"info", infoCommand}};

static void run(std::vector<std::string> words)
{
    if (words.empty()) throw UsageFailure("no command given; -h shows those there are");
    for (const std::string& word : words)
        if (word == "-h" || word == "--help") {
            std::fputs(usage, stdout);
            return;
        }
    const std::string name = words[0];
    words.erase(words.begin());
    for (const auto& command : commands)
        if (name == command.name) return command.run(words);
    throw UsageFailure("unknown command '" + name + "'; -h shows those there are");
}

void warn(const std::string& text)
{
    std::fprintf(stderr, "jpegcodec: %s\n", printable(text).c_str());
}

std::string printable(const std::string& text)
{
    std::string shown;
    for (const char c : text) {
        char escape[5];
        std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(c));
        shown += c >= ' ' && c <= '~' && c != '\\' ? std::string(1, c) : escape;
    }
    return shown;
}

const char* colorName(_JPEG_COLOR color)
{
    switch (color) {
    case JC_GRAY: return "Gray";
    case JC_RGB: return "RGB";
    case JC_BGR: return "BGR";
    case JC_YCBCR: return "YCbCr";
    case JC_CMYK: return "CMYK";
    case JC_YCCK: return "YCCK";
    default: return "unknown";
    }
}

int main(int argc, char** argv)
{
    qovInit();
    try {
        run(std::vector<std::string>(argv + 1, argv + argc));
        if (std::fflush(stdout) != 0 || std::ferror(stdout))
            throw Failure("cannot write to the standard output");
        return 0;
    } catch (const UsageFailure& failure) {
        warn(failure.what());
        return 2;
    } catch (const std::exception& failure) {
        warn(failure.what());
        return 1;
    }
}
