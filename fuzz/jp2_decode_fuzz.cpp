// A JP2 file or a codestream of any content, decoded to the image in memory or to a bitmap or PNM file.
// Images of more than a quarter of a million samples are passed over: time is to go to the paths.
#include "decode.h"
#include "qovcore.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace {

using namespace jpeg2000;

uint64_t word(const uint8_t* bytes)
{
    return uint64_t{bytes[0]} << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3];
}

// By any SIZ in the data: wherever one stands, the decoder may come to it.
bool isLarge(const uint8_t* data, size_t size)
{
    static constexpr uint8_t siz[] = {0xFF, 0x51};
    constexpr size_t length = 40; // up to and with the number of components
    for (const uint8_t *end = data + size, *at = data;
         (at = std::search(at, end, siz, siz + 2)) != end && static_cast<size_t>(end - at) >= length;
         at += 2) {
        const uint64_t width = word(at + 6) - word(at + 14), height = word(at + 10) - word(at + 18);
        const uint64_t components = at[38] << 8 | at[39];
        if (std::max({width, height, components}) > 1 << 18 || width * height * components > 1 << 18)
            return true;
    }
    return false;
}

void decodeAs(int form, const _JP2BUFF& source, bool isFile)
{
    static constexpr const char* outputs[] = {"a.bmp", "a.ppm", "a.pbm"};
    const char* const words[] = {"fuzz",
                                 "-i",
                                 isFile ? "a.jp2" : "a.j2k",
                                 "-o",
                                 outputs[form % 3],
                                 "-pnm",
                                 form & 4 ? "plain" : "binary"};
    BDiagnOutput sink;
    const CmdOptions options(words, 7, sink);
    if (form & 8) {
        _METABUFF meta;
        decode(options, sink, source, meta);
        return;
    }
    const uint32_t room = 1 << 22;
    const auto buffer = std::make_unique_for_overwrite<uint8_t[]>(room);
    _BMPBUFF bmp{};
    bmp.buffer = buffer.get();
    bmp.bufferSize = room;
    decode(options, sink, source, bmp);
}

} // namespace

// The last byte chooses the output: what stands behind EOC is not read.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QovStatus level = qovInit();
    if (level < 0 || size < 12 || isLarge(data, size)) return 0;
    const auto copy = std::make_unique_for_overwrite<uint8_t[]>(size); // so that its end is known
    std::copy(data, data + size, copy.get());
    const _JP2BUFF source{copy.get(), static_cast<uint32_t>(size), static_cast<uint32_t>(size), 0};
    try {
        decodeAs(data[size - 1], source, data[0] == 0);
    } catch (const BDiagnDescr& descr) {
        char text[BDiagnDescr::maxLength + 1];
        descr.Context(text);
    }
    return 0;
}
