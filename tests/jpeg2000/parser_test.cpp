// The reader of files, boxes, codestreams and their headers: what each damage is answered with, and what the
// headers say in the end.
#include "boundedinput.h"
#include "djp2file.h"

#include <cxxabi.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace jpeg2000;

namespace {

using Input = MemoryBoundedInputBE;

Input inputOf(const std::string& bytes)
{
    return {reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<uint32_t>(bytes.size())};
}

std::string hex(const std::string& digits)
{
    std::string bytes, pair;
    for (const char c : digits)
        if (c != ' ' && (pair += c).size() == 2) {
            bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
            pair.clear();
        }
    return bytes;
}

std::string bigEndian(uint64_t value, int nOfBytes)
{
    std::string bytes;
    while (nOfBytes-- > 0) bytes += static_cast<char>(value >> (8 * nOfBytes));
    return bytes;
}

std::string segment(const char* marker, const std::string& body)
{
    return hex(marker) + bigEndian(body.size() + 2, 2) + body;
}

std::string box(const char* type, const std::string& body)
{
    return bigEndian(body.size() + 8, 4) + type + body;
}

// A codestream of one tile, one component, no level and one packet, which is empty; and what a case puts in
// its place.
struct Siz {
    unsigned rsiz = 0, x1 = 8, y1 = 8, x0 = 0, y0 = 0, tileWidth = 8, tileHeight = 8, tileX = 0, tileY = 0;
    unsigned nOfComponents = 1;
    const char* components = "07 01 01";

    std::string bytes() const
    {
        std::string body = bigEndian(rsiz, 2);
        for (const unsigned value : {x1, y1, x0, y0, tileWidth, tileHeight, tileX, tileY})
            body += bigEndian(value, 4);
        return segment("FF51", body + bigEndian(nOfComponents, 2) + hex(components));
    }
};

const std::string soc = hex("FF4F"), sod = hex("FF93"), eoc = hex("FFD9"), emptyPacket = hex("00");
const std::string cod = segment("FF52", hex("00 00 0001 00 00 04 04 00 01"));
const std::string qcd = segment("FF5C", hex("40 40")), qcc = segment("FF5D", hex("00 40 40"));
const std::string coc = segment("FF53", hex("00 00 00 04 04 00 01"));
const std::string poc = segment("FF5F", hex("00 00 0001 01 01 00"));

struct TilePart {
    std::string header = {}, packets = emptyPacket;
    int lengthError = 0; // Psot less the true length
    bool isLengthTold = true;
    unsigned tile = 0, index = 0, nOfParts = 1;

    std::string bytes() const
    {
        const unsigned size =
            static_cast<unsigned>(14 + header.size() + packets.size()) + static_cast<unsigned>(lengthError);
        const std::string sot = bigEndian(tile, 2) + bigEndian(isLengthTold ? size : 0, 4) +
                                bigEndian(index, 1) + bigEndian(nOfParts, 1);
        return segment("FF90", sot) + header + sod + packets;
    }
};

std::string withMain(const std::string& segments, const Siz& siz = {})
{
    return soc + siz.bytes() + segments + TilePart().bytes() + eoc;
}
std::string withSiz(const Siz& siz)
{
    return withMain(cod + qcd, siz);
}
std::string withParts(const std::string& parts)
{
    return soc + Siz().bytes() + cod + qcd + parts;
}
std::string withTileHeader(const std::string& header)
{
    TilePart part;
    part.header = header;
    return withParts(part.bytes() + eoc);
}
std::string withCOD(const char* body)
{
    return withMain(segment("FF52", hex(body)) + qcd);
}
std::string withPOC(const char* body)
{
    return withMain(cod + qcd + segment("FF5F", hex(body)));
}

const std::string signature = box("jP  ", hex("0D0A870A")),
                  fileType = box("ftyp", "jp2 " + hex("00000000") + "jp2 ");
const std::string ihdr = box("ihdr", hex("00000008 00000008 0001 07 07 00 00"));
const std::string grey = box("colr", hex("01 00 00 00000011"));
const std::string mapping = box("cmap", hex("0000 01 00")), palette = box("pclr", hex("0001 01 07 2A"));

std::string fileWith(const std::string& header,
                     const std::string& behind = box("jp2c", withParts(TilePart().bytes() + eoc)))
{
    return signature + fileType + box("jp2h", header) + behind;
}
std::string withImageHeader(const char* body, const std::string& boxes = grey)
{
    return fileWith(box("ihdr", hex(body)) + boxes);
}
std::string withSubBoxes(const std::string& boxes)
{
    return fileWith(ihdr + grey + boxes);
}

// Family and row, which end the name of the type, as in "(jpeg2000::DJP2CSWarning)7>". Without the "DJP2"
// that most of them begin with.
std::string nameOf(const BDiagnDescr& descr)
{
    const std::unique_ptr<char, void (*)(void*)> demangled(
        abi::__cxa_demangle(typeid(descr).name(), nullptr, nullptr, nullptr), free);
    const std::string type = demangled.get();
    const size_t family = type.rfind(':') + 1, row = type.rfind(')');
    const std::string name =
        type.substr(family, row - family) + " " + type.substr(row + 1, type.size() - row - 2);
    return name.starts_with("DJP2") ? name.substr(4) : name;
}

struct Log : BDiagnOutput {
    std::string text;

    void Warning(const BDiagnDescr& descr) override { add(nameOf(descr)); }
    void add(const std::string& entry) { text += (text.empty() ? "" : ", ") + entry; }
};

void readTileParts(DJP2Codestream<Input>& codestream)
{
    while (codestream.ReadNextTilePartHeader())
        while (codestream.ReadPacket()) {
        }
}

// What is said while all of a file or codestream is read. The memory ends where the stream does.
std::string read(const std::string& stream)
{
    const std::unique_ptr<uint8_t[]> memory(new uint8_t[stream.size()]);
    std::copy(stream.begin(), stream.end(), memory.get());
    Input input(memory.get(), static_cast<uint32_t>(stream.size()));
    Log log;
    try {
        if (stream.substr(0, 2) == soc) {
            DJP2Codestream<Input> codestream(input, log);
            codestream.ReadMainHeader();
            readTileParts(codestream);
        } else {
            DJP2File<Input> file(input, log);
            file.ReadSignatureBox();
            file.ReadFileTypeBox();
            file.FindAndReadHeaderBox();
            while (file.ReadNextCSMainHeader()) readTileParts(file.codestream);
        }
    } catch (const BDiagnDescr& descr) {
        log.add("throws " + nameOf(descr));
    }
    return log.text;
}

struct Case {
    const char* what;
    std::string stream;
    const char* said;
};

template <size_t n>
void check(const Case (&cases)[n])
{
    for (const Case& c : cases) {
        EXPECT_EQ(read(c.stream), c.said) << c.what;
        // However short it is cut, reading ends with an answer.
        for (size_t size = 0; size < c.stream.size(); size++) read(c.stream.substr(0, size));
    }
}

TEST(Parser, MainHeader)
{
    const Case cases[] = {
        {"as it should be", withMain(cod + qcd), ""},
        {"no SIZ", hex("FF4F FF52"), "throws CSException 2"},
        {"capabilities, tile grid in the image, depth 39",
         withSiz({.rsiz = 1, .tileX = 1, .components = "26 01 01"}),
         "MarkerWarning 3, MarkerWarning 4, MarkerWarning 5"},
        {"31 bits of width", withSiz({.x1 = 0x80000000}), "throws MarkerException 1"},
        {"31 bits of tile origin", withSiz({.tileY = 0x80000000}), "throws MarkerException 1"},
        {"origin behind the image", withSiz({.y0 = 9}), "throws MarkerException 2"},
        {"empty image", withSiz({.x0 = 8}), "throws MarkerException 2"},
        {"no component", withSiz({.nOfComponents = 0, .components = ""}), "throws MarkerException 2"},
        {"no tile width", withSiz({.tileWidth = 0}), "throws MarkerException 1"},
        {"tile grid behind the image", withSiz({.x1 = 8, .tileX = 8}),
         "MarkerWarning 4, throws MarkerException 1"},
        {"65536 tiles", withSiz({.x1 = 256, .y1 = 256, .tileWidth = 1, .tileHeight = 1}),
         "throws MarkerException 1"},
        {"2^62 tiles", withSiz({.x1 = 0x7FFFFFFF, .y1 = 0x7FFFFFFF, .tileWidth = 1, .tileHeight = 1}),
         "throws MarkerException 1"},
        {"no sampling", withSiz({.components = "07 01 00"}), "throws MarkerException 1"},
        {"short SIZ", soc + segment("FF51", hex("0000 00000008")), "throws ByteInputException 0"},
        {"segments twice", withMain(cod + cod + qcd + coc + coc + qcd + qcc + qcc + poc + poc),
         "CSWarning 5, CSWarning 7, CSWarning 6, CSWarning 8, CSWarning 9"},
        {"COC and QCC behind the components",
         withMain(cod + qcd + segment("FF53", hex("01 00 00 04 04 00 01")) +
                  segment("FF5D", hex("01 40 40"))),
         ""},
        {"COC farther", withMain(segment("FF53", hex("02"))), "throws CSException 3"},
        {"QCC farther", withMain(segment("FF5D", hex("02"))), "throws CSException 4"},
        {"what is passed over",
         withMain(cod + qcd + segment("FF55", "x") + segment("FF57", "x") + segment("FF63", "x") +
                  segment("FF64", "x") + segment("ABCD", "x")),
         "CSWarning 19, CSWarning 20, CSWarning 21, CSWarning 22, CSWarning 4"},
        {"RGN", withMain(segment("FF5E", "x")), "throws CSUnsuppException 4"},
        {"PPM", withMain(segment("FF60", "x")), "throws CSUnsuppException 2"},
        {"no tile", soc + Siz().bytes() + eoc, "CSWarning 10"},
        {"no COD", withMain(qcd), "throws CSException 5"},
        {"no QCD", withMain(cod), "throws CSException 6"},
        {"padding", withMain(segment("FF52", hex("00 00 0001 00 00 04 04 00 01 FF")) + qcd), "CSWarning 17"},
        {"segment behind the end", soc + Siz().bytes() + hex("FF64 FFFF 00"),
         "CSWarning 18, CSWarning 22, throws ByteInputException 0"},
        {"length 1", withMain(hex("FF64 0001")), "throws MarkerException 0"},
    };
    check(cases);

    const std::string other = hex("FF52");
    Input input = inputOf(other);
    DJP2CSMainHeader header;
    using NoSOC = DiagnDescrCT<DJP2CSException, DJP2CSException{1}>;
    EXPECT_THROW(header.Read(input, nullptr), NoSOC);
}

TEST(Parser, CodingStyleAndProgression)
{
    const Case cases[] = {
        {"progression 5", withCOD("00 05 0001 00 00 04 04 00 01"), "throws MarkerException 3"},
        {"no layer, component transform 2", withCOD("00 00 0000 02 00 04 04 00 01"),
         "MarkerWarning 2, MarkerWarning 6, CSWarning 28"},
        {"33 levels", withCOD("00 00 0001 00 21 04 04 00 01"), "throws MarkerException 4"},
        {"width 2048", withCOD("00 00 0001 00 00 09 04 00 01"), "throws MarkerException 5"},
        {"height 2048", withCOD("00 00 0001 00 00 04 09 00 01"), "throws MarkerException 6"},
        {"transform 2", withCOD("00 00 0001 00 00 04 04 00 02"), "throws MarkerException 7"},
        {"another block coder", withCOD("00 00 0001 00 00 04 04 40 01"), "throws CSUnsuppException 7"},
        {"precincts of 1",
         withMain(segment("FF52", hex("01 00 0001 00 01 04 04 00 01 00 00")) +
                  segment("FF5C", hex("40 40 40 40 40"))),
         "MarkerWarning 0, MarkerWarning 1"},
        {"quantisation 3", withMain(cod + segment("FF5C", hex("43 40"))), "CSWarning 0"},
        {"fewer steps than bands", withCOD("00 00 0001 00 01 04 04 00 01"), "throws CSException 7"},
        {"QCD without a step", withMain(cod + segment("FF5C", hex("42 40"))), "throws ByteInputException 0"},
        {"QCD without anything", withMain(cod + segment("FF5C", "")), "throws ByteInputException 0"},
        {"POC of resolution 34", withPOC("22 00 0001 23 01 00"), "throws MarkerException 8"},
        {"POC behind the components", withPOC("00 01 0001 01 01 00"), ""},
        {"POC farther", withPOC("00 02 0001 01 03 00"), "throws MarkerException 9"},
        {"POC without layers", withPOC("00 00 0000 01 01 00"), "MarkerWarning 2"},
        {"POC of resolutions backwards", withPOC("02 00 0001 01 01 00"), "throws MarkerException 10"},
        {"POC of components backwards",
         withMain(cod + qcd + segment("FF5F", hex("00 02 0001 01 01 00")),
                  {.nOfComponents = 2, .components = "07 01 01 07 01 01"}),
         "throws MarkerException 11"},
        {"POC of progression 5", withPOC("00 00 0001 01 01 05"), "throws MarkerException 3"},
        {"POC of no entry", withPOC("00 00 00"), "CSWarning 17"},
    };
    check(cases);
}

TEST(Parser, TileParts)
{
    const auto part = [](const TilePart& told) { return told.bytes(); };
    const std::string further = part({.packets = "", .index = 1, .nOfParts = 2}),
                      first = part({.nOfParts = 2});
    const Case cases[] = {
        {"of unknown length", withParts(part({.isLengthTold = false}) + eoc), ""},
        {"two", withParts(first + further + eoc), ""},
        {"tile 1 of 1", withParts(part({.tile = 1})), "throws CSException 0"},
        {"index out of order", withParts(part({.index = 1}) + eoc), "CSWarning 24"},
        {"another number of parts", withParts(first + part({.packets = "", .index = 1, .nOfParts = 3}) + eoc),
         "CSWarning 25"},
        {"more parts than told", withParts(part({}) + part({.packets = "", .index = 1, .nOfParts = 0}) + eoc),
         "CSWarning 29"},
        {"shorter than its header", withParts(part({.lengthError = -2}) + eoc), "CSWarning 26"},
        {"shorter than its packet", withParts(part({.packets = hex("E1 00"), .lengthError = -1}) + eoc),
         "CSWarning 27"},
        {"longer than its packets", withParts(part({.packets = hex("00 01 02 03")}) + eoc), "CSWarning 28"},
        {"longer than the stream", withParts(part({.lengthError = 1 << 20}) + eoc),
         "CSWarning 28, throws ByteInputException 0"},
        {"something between", withParts(part({}) + segment("FF64", "x") + eoc), "CSWarning 30"},
        {"no EOC", withParts(part({})), "throws ByteInputException 0"},
        {"long SOT", withParts(segment("FF90", hex("0000 00000000 00 01 00")) + sod + emptyPacket + eoc),
         "CSWarning 17"},
        {"segments twice", withTileHeader(cod + cod + coc + coc + qcd + qcd + qcc + qcc + poc + poc),
         "CSWarning 12, CSWarning 14, CSWarning 13, CSWarning 15, CSWarning 16"},
        {"COD, POC twice in a further part",
         withParts(first + part({.header = cod + poc + poc, .packets = "", .index = 1, .nOfParts = 2}) + eoc),
         "CSWarning 11, CSWarning 16"},
        {"what is passed over",
         withTileHeader(segment("FF58", "x") + segment("FF64", "x") + segment("FF5E", "x")),
         "CSWarning 23, CSWarning 22, CSWarning 11"},
        {"PPT", withTileHeader(segment("FF61", "x")), "throws CSUnsuppException 3"},
        {"PPM", withTileHeader(segment("FF60", "x")), "throws CSUnsuppException 2"},
        {"COC behind the components", withTileHeader(segment("FF53", hex("01 00 00 04 04 00 01"))), ""},
        {"COC farther", withTileHeader(segment("FF53", hex("02"))), "throws CSException 3"},
        {"QCC farther", withTileHeader(segment("FF5D", hex("02"))), "throws CSException 4"},
    };
    check(cases);
}

TEST(Parser, FilesAndBoxes)
{
    const std::string stream = withParts(TilePart().bytes() + eoc);
    const std::string ones = hex("0001 0001 0001 0001 00 00");
    const std::string resc = box("resc", ones), resd = box("resd", ones);
    const char* const varying = "00000008 00000008 0001 FF 07 00 00";
    const auto ofBox = [&](const std::string& boxes) { return signature + fileType + boxes; };
    const auto withPalette = [&](const char* body) { return withSubBoxes(box("pclr", hex(body)) + mapping); };
    const Case cases[] = {
        {"two codestreams", withSubBoxes("") + box("jp2c", stream), ""},
        {"another brand",
         signature + box("ftyp", "jpx " + hex("00000000") + "jpx jp2 ") + fileWith(ihdr).substr(32), ""},
        {"no signature", fileType, "throws FileException 0"},
        {"another signature", box("jP  ", "abcd"), "throws FileException 1"},
        {"no file type", signature + signature, "throws FileException 2"},
        {"version 1", signature + box("ftyp", "jp2 " + hex("00000001") + "jp2 ") + fileWith(ihdr).substr(32),
         "FileWarning 2"},
        {"no brand", signature + box("ftyp", "jpx " + hex("00000000") + "jpx "), "throws FileException 3"},
        {"short file type", signature + box("ftyp", "jp2 "), "throws ByteInputException 0"},
        {"no header", ofBox(box("xml ", "x")), "FileWarning 1, throws FileException 4"},
        {"no image header", ofBox(box("jp2h", grey)), "throws BoxException 4"},
        {"boxes around", fileWith(ihdr, box("xml ", "x") + box("jp2c", stream) + box("????", "")),
         "FileWarning 1, FileWarning 1"},
        {"padding behind the codestream", fileWith(ihdr, box("jp2c", stream + "x")), "BoxWarning 2"},
        {"box behind the end", ofBox(hex("00001000") + "jp2h" + ihdr), "BoxWarning 3"},
        {"box of 7 bytes", hex("00000007") + "jP  ", "throws BoxException 1"},
        {"box of 15 bytes", hex("00000001") + "jP  " + hex("00000000 0000000F"), "throws BoxException 2"},
        {"box of 4 GiB", hex("00000001") + "jP  " + hex("00000001 00000010"), "throws BoxException 3"},
        {"long form", fileWith(ihdr, hex("00000001") + "jp2c" + bigEndian(stream.size() + 16, 8) + stream),
         ""},
        {"without a length", fileWith(ihdr, hex("00000000") + "jp2c" + stream + box("xml ", "")),
         "BoxWarning 2"},
        {"no height", withImageHeader("00000000 00000008 0001 07 07 00 00"), "throws BoxException 5"},
        {"no component", withImageHeader("00000008 00000008 0000 07 07 00 00"), "throws BoxException 6"},
        {"compression 6", withImageHeader("00000008 00000008 0001 07 06 00 00"), "throws BoxException 7"},
        {"depth 39", withImageHeader("00000008 00000008 0001 26 07 00 00"), "BoxWarning 10, FileWarning 5"},
        {"unknown colour 2", withImageHeader("00000008 00000008 0001 07 07 02 02"), "BoxWarning 11"},
        {"long image header", withImageHeader("00000008 00000008 0001 07 07 00 00 00"), "BoxWarning 2"},
        {"another size", withImageHeader("00000009 00000008 0001 07 07 00 00"), "FileWarning 4"},
        {"2 components of 1", withImageHeader("00000008 00000008 0002 07 07 00 00"),
         "BoxWarning 21, FileWarning 3"},
        {"unknown box, others twice",
         withSubBoxes(box("cdef", "x") + grey + palette + palette + mapping + mapping),
         "BoxWarning 0, BoxWarning 6, BoxWarning 4, BoxWarning 5"},
        {"colour by a profile", fileWith(ihdr + box("colr", hex("02 00 00 0102"))), "BoxWarning 12"},
        {"colour space 12", fileWith(ihdr + box("colr", hex("01 00 00 0000000C"))), "BoxWarning 13"},
        {"RGB of 1", fileWith(ihdr + box("colr", hex("01 00 00 00000010"))), "BoxWarning 21"},
        {"depths twice, equal", withSubBoxes(box("bpcc", "\7") + box("bpcc", "\7")),
         "BoxWarning 7, BoxWarning 20"},
        {"other depths", withSubBoxes(box("bpcc", "\6")), "BoxWarning 25"},
        {"depth of 39 bits", withSubBoxes(box("bpcc", "\x26")), "BoxWarning 15, BoxWarning 25"},
        {"varying depths", withImageHeader(varying, box("bpcc", "\7")), ""},
        {"varying depths untold", withImageHeader(varying), "BoxWarning 25"},
        {"varying depths wrong", withImageHeader(varying, box("bpcc", "\6")), "FileWarning 6"},
        {"resolutions, palette", withSubBoxes(box("res ", resc + resd) + palette + mapping), ""},
        {"resolutions twice", withSubBoxes(box("res ", resc + resc + resd + resd + box("resx", ""))),
         "BoxWarning 8, BoxWarning 9, BoxWarning 1"},
        {"palette alone", withSubBoxes(palette), "BoxWarning 24"},
        {"mapping alone", withSubBoxes(mapping), "BoxWarning 23"},
        {"mapping to no column", withSubBoxes(palette + box("cmap", hex("0000 01 01"))), "BoxWarning 18"},
        {"mapping of another type", withSubBoxes(palette + box("cmap", hex("0000 00 00"))), "BoxWarning 19"},
        {"no palette entry", withPalette("0000 01 07"), "BoxWarning 16"},
        {"65535 entries of 1", withPalette("FFFF 01 07 00"), "BoxWarning 17"},
        {"depth of a column", withPalette("0001 01 7F 00010203 04050607 08090A0B 0C0D0E0F"), "BoxWarning 14"},
        {"no column", withPalette("0001 00"), "BoxWarning 18"},
    };
    check(cases);
}

// A tile's COC goes before its COD, that before the main header's COC and COD; QCC and QCD alike.
TEST(Parser, PrecedenceOfHeaders)
{
    const auto codOf = [](const char* blockWidth) {
        return segment("FF52", hex(std::string("00 00 0001 00 00 ") + blockWidth + " 04 00 01"));
    };
    const auto cocOf = [](const char* component, const char* blockWidth) {
        return segment("FF53", hex(std::string(component) + "00 00 " + blockWidth + " 04 00 01"));
    };
    const auto qcdOf = [](const char* step) { return segment("FF5C", hex(std::string("40") + step)); };
    const auto qccOf = [](const char* component, const char* step) {
        return segment("FF5D", hex(std::string(component) + "40" + step));
    };
    const std::string mainHeader =
        soc + Siz{.nOfComponents = 3, .components = "070101 070101 070101"}.bytes() + codOf("00") +
        qcdOf("08") + cocOf("01", "01") + qccOf("01", "10") + hex("FF90");
    const struct {
        const char* what;
        std::string tileHeader;
        unsigned blockWidthExps[3];
        int exponents[3];
    } cases[] = {
        {"main header alone", "", {2, 3, 2}, {1, 2, 1}},
        {"tile defaults", codOf("02") + qcdOf("18"), {4, 4, 4}, {3, 3, 3}},
        {"tile's components", cocOf("02", "03") + qccOf("02", "20"), {2, 3, 5}, {1, 2, 4}},
        {"all", qccOf("01", "20") + qcdOf("18") + cocOf("01", "03") + codOf("02"), {4, 5, 4}, {3, 4, 3}},
    };
    for (const auto& c : cases) {
        const std::string stream = mainHeader + c.tileHeader + sod;
        Input input = inputOf(stream);
        DJP2CSMainHeader header;
        ASSERT_TRUE(header.Read(input, nullptr)) << c.what;
        DJP2CSTilePartHeader0 tileHeader;
        tileHeader.Read(input, header, nullptr);
        for (unsigned i = 0; i < 3; i++) {
            EXPECT_EQ(tileHeader.CodingStyleComp(i).codeBlockSizeExp.width, c.blockWidthExps[i])
                << c.what << i;
            EXPECT_EQ(tileHeader.QuantComp(i).ll.exponent, c.exponents[i]) << c.what << i;
        }
    }
}

// Steps count from the deepest band of the component, which may have fewer levels than the header has steps.
TEST(Parser, StepsOfAComponent)
{
    const auto stepsOf = [](const char* body, unsigned nOfLevels, QuantComponent& steps) {
        const std::string bytes = hex(body);
        Input input = inputOf(bytes);
        DJP2QuantComp quant;
        quant.Read(input);
        quant.Conform(nOfLevels, steps);
        return quant.nOfGuardBits;
    };
    QuantComponent steps;
    EXPECT_EQ(stepsOf("60 08 10 18 20 28 30 38", 1, steps), 3u);
    EXPECT_EQ(steps.triplets[0].lh.exponent, 3);
    stepsOf("60 08 10 18 20 28 30 38", 2, steps);
    EXPECT_EQ(steps.triplets[1].lh.exponent, 3);
    EXPECT_EQ(steps.triplets[0].hh.exponent, 7);
    stepsOf("42 0801 1002 1803 2004", 1, steps);
    EXPECT_EQ(steps.ll.mantissa, 1);
    EXPECT_EQ(steps.triplets[0].hl.exponent, 2);
    EXPECT_EQ(steps.triplets[0].hh.mantissa, 4);
    stepsOf("41 5003", 3, steps);
    EXPECT_EQ(steps.ll.exponent, 10);
    EXPECT_EQ(steps.triplets[2].hl.exponent, 10);
    EXPECT_EQ(steps.triplets[0].hh.exponent, 8);
    EXPECT_EQ(steps.triplets[0].hh.mantissa, 3);
}

TEST(Parser, PaletteValues)
{
    const std::string body = ihdr + box("pclr", hex("0002 03 84 8B 3F"
                                                    "1F 0800 0102030405060708"
                                                    "0F 07FF FFFFFFFFFFFFFFFF"));
    Input input = inputOf(body);
    DJP2BoxHeader header;
    header.Read(input, nullptr);
    const long long expected[3][2] = {{-1, 15}, {-2048, 2047}, {0x0102030405060708, -1}};
    ASSERT_TRUE(header.palette.nOfEntries == 2 && header.palette.nOfColumns == 3);
    for (unsigned column = 0; column < 3; column++)
        for (unsigned entry = 0; entry < 2; entry++)
            EXPECT_EQ(header.palette.values[column][entry], expected[column][entry]) << column << entry;
}

TEST(Parser, ProgressionChanges)
{
    const std::string stream = withPOC("01 00 0002 03 00 04  00 01 0001 21 02 02  00 00 00");
    Input input = inputOf(stream);
    DJP2CSMainHeader header;
    ASSERT_TRUE(header.Read(input, nullptr));
    const auto& ranges = header.progrRanges;
    ASSERT_EQ(ranges.size, 2u);
    EXPECT_THAT(
        (std::vector{ranges[0].resolutions.origin, ranges[0].resolutions.end, ranges[0].components.end,
                     ranges[0].nOfLayers, ranges[0].progression, ranges[1].progression}),
        testing::ElementsAre(1, 3, 256, 2, 4, 2)); // no end of the components is all
}

} // namespace
