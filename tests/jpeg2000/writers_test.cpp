// Boxes and marker segments byte by byte (ITU-T T.800, annexes A and I), and packets with nothing in them.
#include "boxes.h"
#include "codec_testing.h"
#include "codestream.h"
#include "markers.h"

#include <gtest/gtest.h>

#include <functional>

using namespace jpeg2000;

namespace {

std::string hexOf(JP2Output& out)
{
    std::vector<uint8_t> bytes(out.size);
    out.Read(bytes.data(), out.size);
    std::string hex;
    for (const uint8_t byte : bytes)
        for (const int digit : {byte >> 4, byte & 15}) hex += "0123456789ABCDEF"[digit];
    return hex;
}

std::string withoutSpaces(std::string text)
{
    std::erase(text, ' ');
    return text;
}

CmdOptions withKeys(const std::string& keys)
{
    return optionsOf("-i in.bmp " + keys);
}

TEST(Writers, BytesAreThoseOfTheStandard)
{
    const JP2BitsPerComp depths[] = {{7}, {0x8B}};
    const uint8_t precincts[] = {0x88, 0x99};
    DIBRGBValue palette[2] = {};
    palette[1].blue = 1, palette[1].green = 2, palette[1].red = 3;
    const CmdOptions reversible = withKeys("-wt wt53"), expounded = withKeys("-wt wt97 -ratio 2");
    CmdOptions derived = withKeys("-wt wt97 -ratio 2 -dquant 0.75");
    derived.mantissa = 0x123;

    struct {
        const char* expected;
        std::function<void(JP2Output&)> write;
    } const cases[] = {
        {"FFFFFFFF 6A703263", [](auto& out) { WriteBoxHeader(JP2BoxType::codestream, 0xFFFFFFF7, out); }},
        {"00000001 6A703263 0000000100000008",
         [](auto& out) { WriteBoxHeader(JP2BoxType::codestream, 0xFFFFFFF8, out); }},
        {"00000000 6A703263", [](auto& out) { WriteUknLenBoxHeader(JP2BoxType::codestream, out); }},
        {"0000000C 6A502020 0D0A870A", writeSignatureBox},
        {"00000014 66747970 6A703220 00000000 6A703220", writeFileTypeBox},
        {"0000000A 62706363 07 8B", [&](auto& out) { writeBitPerCompBox(out, 2, depths); }},
        {"0000002D 6A703268 00000016 69686472 00000203 00000105 0003 07 07 00 00 "
         "0000000F 636F6C72 01 00 00 00000010",
         [](auto& out) {
             writeHeaderSuperBox(out, 0x203, 0x105, 3, {7}, false, JP2Colorspace::sRGB, nullptr, 0, false);
         }},
        {"00000055 6A703268 00000016 69686472 00000203 00000105 0001 07 07 00 01 "
         "0000000F 636F6C72 01 00 00 00000011 00000014 70636C72 0002 03 070707 "
         "000000 010203 00000014 636D6170 00000100 00000101 00000102",
         [&](auto& out) {
             writeHeaderSuperBox(out, 0x203, 0x105, 1, {7}, true, JP2Colorspace::grey, palette, 2, true);
         }},
        {"FF4F", writeSOCMarker},
        {"FF51 002C 0000 00000105 00000203 00000000 00000000 00000105 00000203 "
         "00000000 00000000 0002 070101 8B0101",
         [&](auto& out) { writeSIZMarker(out, 0x203, 0x105, 2, depths); }},
        {"FF52 000C 00 00 0001 01 05 04 04 00 01",
         [&](auto& out) { writeCODMarker(out, 0, 1, true, true, 5, 0, precincts); }},
        {"FF52 000E 01 02 0103 00 01 04 04 00 00 88 99",
         [&](auto& out) { writeCODMarker(out, 2, 0x103, false, false, 1, 1, precincts); }},
        {"FF52 000C 01 00 0001 00 00 04 04 00 01",
         [&](auto& out) { writeCODMarker(out, 0, 1, false, true, 0, 1, precincts); }},
        {"FF5C 000A 40 40 48 48 50 48 48 50", [&](auto& out) { writeQCDMarker(out, 2, reversible, 8); }},
        {"FF5C 000B 42 4000 4800 4800 5000", [&](auto& out) { writeQCDMarker(out, 1, expounded, 8); }},
        {"FF5C 0005 42 4000", [&](auto& out) { writeQCDMarker(out, 0, expounded, 8); }},
        {"FF5C 0005 41 4923", [&](auto& out) { writeQCDMarker(out, 5, derived, 8); }},
        {"FF90 000A 0001 12345678 02 03", [](auto& out) { writeSOTMarker(out, 1, 0x12345678, 2, 3); }},
        {"FF93", writeSODMarker},
        {"FFD9", writeEOCMarker},
    };
    for (const auto& one : cases) {
        JP2Output out;
        one.write(out);
        EXPECT_EQ(hexOf(out), withoutSpaces(one.expected));
    }
}

// A packet that carries nothing is one byte: not empty, and no block of any band is included.
TEST(Writers, PacketsMayCarryNothing)
{
    const struct {
        const char* keys;
        int sample; // 128: no block has a pass
        int contrast;
    } cases[] = {
        {"-ratio 0", 128, 0},
        {"-ratio 2", 128, 0},
        {"-ratio 1e9", 128, 0},
        {"-ratio 1e9", 100, 7},
        {"-ratio 600", 100, 7}, // a byte less than the empty packets take
        {"-ratio 1e9 -wt wt97", 100, 7},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.keys);
        ImagePn<int> image;
        image.Alloc(40, 40, 3);
        for (unsigned c = 0; c < 3; c++)
            for (unsigned y = 0; y < 40; y++)
                for (unsigned x = 0; x < 40; x++)
                    image.plane(c).row(y)[x] = one.sample + one.contrast * static_cast<int>((x * y + c) % 17);
        JP2Output out;
        writeCodeStream(out, 2, image, {7}, 40 * 40 * 3, withKeys(one.keys));
        EXPECT_EQ(hexOf(out), "808080808080808080"); // three resolutions of three components
    }
}

} // namespace
