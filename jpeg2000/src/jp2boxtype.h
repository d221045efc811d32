// Types of boxes (ITU-T T.800, table I.2) and what they enumerate.
#ifndef JPEG2000_JP2BOXTYPE_H
#define JPEG2000_JP2BOXTYPE_H

#include <cstdint>

namespace jpeg2000 {

constexpr uint32_t boxCode(const char (&text)[5])
{
    uint32_t code = 0;
    for (int i = 0; i < 4; i++) code = code << 8 | static_cast<uint8_t>(text[i]);
    return code;
}

enum class JP2BoxType : uint32_t {
    unknown = 0,
    signature = boxCode("jP  "),
    fileType = boxCode("ftyp"),
    header = boxCode("jp2h"),
    imageHeader = boxCode("ihdr"),
    bitsPerComp = boxCode("bpcc"),
    colorSpec = boxCode("colr"),
    palette = boxCode("pclr"),
    compMapping = boxCode("cmap"),
    channelDef = boxCode("cdef"),
    resolution = boxCode("res "),
    captureResolution = boxCode("resc"),
    displayResolution = boxCode("resd"),
    codestream = boxCode("jp2c"),
    intellectualProperty = boxCode("jp2i"),
    xml = boxCode("xml "),
    uuid = boxCode("uuid"),
    uuidInfo = boxCode("uinf"),
    uuidList = boxCode("ulst"),
    url = boxCode("url ")
};

// The type of a code read from a file; `unknown` for every other one.
JP2BoxType BoxType(unsigned code);

enum class JP2Colorspace : uint32_t { sRGB = 16, grey = 17, sYCC = 18 };

} // namespace jpeg2000

#endif
