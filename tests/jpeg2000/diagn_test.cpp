// Diagnostics: texts reach the caller whole, and only where they may.
#include "codec_testing.h"
#include "diagnrecords.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace jpeg2000;

namespace {

// With guards behind the largest buffer that may be asked for.
std::string guardedText(const BDiagnDescr& descr)
{
    char buffer[BDiagnDescr::maxLength + 2];
    memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(descr.Context(buffer), buffer);
    EXPECT_EQ(buffer[BDiagnDescr::maxLength + 1], '#');
    return buffer;
}

template <auto value>
std::string text()
{
    return guardedText(DiagnDescrCT<decltype(value), value>());
}

TEST(Diagn, TextsStandAsTheyAre)
{
    EXPECT_EQ((text<(DJP2BoxWarning)17>()),
              "Number of pallete entires specified in palette box exceed 1024 limit defined by standard. "
              "Decoder will try to ignore and continue decoding.");
    EXPECT_EQ(text<DPNMException{0}>(),
              "Wrong magic number.\nPNM image file must start with the magic string.\n"
              "\"P4\" (\"P1\") for PBM\n\"P5\" (\"P2\") for PGM\n\"P6\" (\"P3\") for PPM");
    EXPECT_EQ(text<DEBCOTWarning{2}>().size(), 436u); // the longest
    EXPECT_EQ(text<DJP2CSWarning{6}>(), text<DJP2CSWarning{7}>());
    EXPECT_EQ(text<DJP2CSWarning{13}>(), text<DJP2CSWarning{14}>());
}

// A text that is missing or one too many in a table shifts the last one.
TEST(Diagn, TablesEndWithTheirLastRow)
{
    EXPECT_EQ(text<DJP2BoxWarning{25}>().substr(0, 60),
              "Bits per component value specified in image header box and a");
    EXPECT_EQ(text<DJP2CSWarning{30}>().substr(0, 49), "Unknown marker was found in the codestream box bo");
    EXPECT_EQ(text<DJP2CSUnsuppException{17}>().substr(0, 30), "Combination of multi-layered m");
    EXPECT_EQ(text<DJP2MarkerException{11}>(),
              "Inverse order specified in POC marker for progression of components.");
    EXPECT_EQ(text<MEDIBWarning{13}>().substr(0, 50), "There is no possibility to save all channels of ac");
    EXPECT_EQ(text<CmdOptionsException{9}>().substr(0, 11), "Bad 'pnm' (");
    EXPECT_EQ(text<CmdOptionsException{10}>(), "");
}

TEST(Diagn, DataOfTheMomentAreFormatted)
{
    Warnings sink;
    warn<0>(sink, CmdOptionsQuantWarning{0.25});
    EXPECT_EQ(sink.texts.back(), "Derived quantization step reduced to 0.25");
    try {
        fail<1>(FileException("a%sb.bmp"));
    } catch (const BDiagnDescr& descr) {
        EXPECT_EQ(textOf(descr), "Cannot create \"a%sb.bmp\" file.");
    }
    const std::string name(5000, 'n');
    using Longest = DiagnDescrRT<MapFileException::Cause, MapFileException::Cause{1}, MapFileException>;
    const std::string text = guardedText(Longest(MapFileException(name.c_str())));
    EXPECT_EQ(text.find_first_not_of('n', 27), 827u); // 800 characters of the name
    EXPECT_EQ(text.substr(text.size() - 11), "developers.");
}

TEST(Diagn, ASinkMayBeAbsentOrDeaf)
{
    BDiagnOutput deaf;
    warn<DPHWarning{0}>(deaf);
    warn<DPHWarning{0}>(BDiagnOutputPtr());
    Warnings sink;
    warn<DPHWarning{0}>(sink);
    EXPECT_EQ(sink.texts.back(), text<DPHWarning{0}>());
}

} // namespace
