// From decoded images to the bytes of bitmaps and PNM files: depths, palettes, sizes, and what is warned of.
#include "codec_testing.h"
#include "dibwrite.h"
#include "dynrange.h"
#include "imageform.h"
#include "metaimage.h"
#include "resize.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace jpeg2000;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

namespace {

template <class Family>
std::vector<std::string> textsOf(const std::vector<int>& rows)
{
    std::vector<std::string> texts;
    for (const int row : rows) texts.push_back(diagnText(Family{row}));
    return texts;
}

TEST(DynRange, LiftsShiftsAndLimits)
{
    struct Case {
        MRstrImageDepth from;
        unsigned toDepth;
        std::vector<std::pair<int, int>> samples;
    };
    for (const Case& c : {Case{{8, false}, 8, {{-1, 0}, {0, 0}, {255, 255}, {256, 255}, {INT_MAX, 255}}},
                          {{4, false}, 8, {{15, 240}, {16, 255}, {-3, 0}}},
                          {{1, false}, 8, {{1, 128}, {2, 255}}},
                          {{12, false}, 8, {{4095, 255}, {2063, 128}, {5000, 255}}},
                          {{8, true}, 8, {{-128, 0}, {0, 128}, {127, 255}, {INT_MIN, 0}, {INT_MAX, 255}}},
                          {{1, true}, 1, {{-1, 0}, {0, 1}}},
                          {{16, true}, 8, {{-32768, 0}, {256, 129}}},
                          {{32, true}, 8, {{INT_MIN, 0}, {0, 128}, {INT_MAX, 255}}},
                          {{128, false}, 31, {{INT_MAX, INT_MAX}, {-1, 0}}},
                          {{1, false}, 31, {{1, 1 << 30}, {INT_MAX, INT_MAX}}}}) {
        const DynRange<int> convert(c.from, c.toDepth);
        for (const auto& [from, to] : c.samples)
            EXPECT_EQ(convert(from), to) << c.from.bitDepth << " to " << c.toDepth << ": " << from;
    }
    EXPECT_EQ(DynRange<long long>({40, true}, 8)(-(1ll << 39)), 0);
    EXPECT_EQ(DynRange<long long>({128, true}, 8)(LLONG_MAX), 255);
}

using Samples = std::vector<int>;

// An image of components with all their samples.
struct Picture {
    MRstrImage image;
    ImageComponents components;

    Picture(unsigned width, unsigned height, const std::vector<MRstrImageDepth>& depths,
            const std::vector<Samples>& samples)
    {
        image.size = {width, height};
        image.nOfComponents = static_cast<unsigned>(depths.size());
        image.depths.Alloc(depths.size());
        components.ReAlloc(image.nOfComponents);
        for (unsigned i = 0; i < components.size; i++) {
            image.depths[i] = depths[i];
            fill(components[i], {width, height}, samples[i]);
        }
    }
    static void fill(ImageComponent& component, RectSize size, const Samples& samples)
    {
        component.Free();
        component.Alloc(size.width, size.height);
        for (unsigned k = 0; k < samples.size(); k++)
            component.row(k / size.width)[k % size.width] = samples[k];
    }
    void setPalette(MRstrImageDepth depth, const std::vector<std::vector<long long>>& columns)
    {
        MRstrImagePalette& palette = image.palette;
        palette.isPalettized = true;
        palette.nOfColumns = static_cast<unsigned>(columns.size());
        palette.nOfEntries = static_cast<unsigned>(columns[0].size());
        palette.depths.Alloc(columns.size());
        palette.values.Alloc(palette.nOfColumns, palette.nOfEntries);
        for (unsigned i = 0; i < palette.nOfColumns; i++) {
            palette.depths[i] = depth;
            Copy(columns[i], palette.values[i], palette.nOfEntries);
        }
    }

    std::string file(FileType type, Warnings& sink, bool isPlain = false)
    {
        CmdOptions options =
            optionsOf(type == FileType::bmp ? "-i a.jp2 -o a.bmp" : "-i a.jp2 -o a.ppm", sink);
        options.isPlainPNM = isPlain;
        const std::unique_ptr<ImageForm> form = MakeImageForm(options, image, sink);
        std::string bytes(form->EstimateNOfBytes(), '?');
        auto* const start = reinterpret_cast<uint8_t*>(bytes.data());
        const uint8_t* end = form->Write(components, start);
        if (!isPlain) {
            EXPECT_EQ(end, start + bytes.size());
        }
        bytes.resize(static_cast<size_t>(end - start));
        return bytes;
    }
};

constexpr MRstrImageDepth bits(unsigned n)
{
    return {n, false};
}

TEST(ImageForm, PNMFilesFollowDepthsAndComponents)
{
    struct Case {
        std::vector<MRstrImageDepth> depths;
        std::vector<Samples> samples; // of 3x1
        std::string binary, plain;
        std::vector<int> warnings;
    };
    const Samples a{0, 1, 255};
    for (const Case& c :
         {Case{{bits(8)}, {a}, std::string("P5\n3 1\n255\n\0\1\xff", 14), "P2\n3 1\n255\n0 1 255\n", {}},
          {{bits(1)}, {{0, 1, 0}}, "P4\n3 1\n\xa0", "P1\n3 1\n1 0 1\n", {}},
          {{bits(8), bits(8), bits(8)},
           {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}},
           "P6\n3 1\n255\n\1\4\7\2\5\x8\3\6\x9",
           "P3\n3 1\n255\n1 4 7 2 5 8 3 6 9\n",
           {}},
          {{bits(12)},
           {{1, 258, 4095}},
           std::string("P5\n3 1\n4095\n\0\1\1\2\xf\xff", 18),
           "P2\n3 1\n4095\n1 258 4095\n",
           {}},
          {{bits(17)},
           {{0, 1, 131072}},
           std::string("P5\n3 1\n131071\n\0\0\0\0\0\0\0\1\0\1\xff\xff", 26),
           "P2\n3 1\n131071\n0 1 131071\n",
           {}},
          {{{4, true}}, {{-8, 0, 7}}, std::string("P5\n3 1\n15\n\0\x8\xf", 13), "P2\n3 1\n15\n0 8 15\n", {}},
          // Averages: of two, and of the first and the fourth; shallow components are widened.
          {{bits(8), bits(8)}, {a, {1, 4, 255}}, "P5\n3 1\n255\n\1\3\xff", "P2\n3 1\n255\n1 3 255\n", {0}},
          {{bits(2), bits(2), bits(2), bits(1)},
           {{0, 1, 2}, {1, 1, 1}, {0, 0, 0}, {1, 1, 1}},
           std::string("P6\n3 1\n3\n\1\1\0\2\1\0\2\1\0", 18),
           "P3\n3 1\n3\n1 1 0 2 1 0 2 1 0\n",
           {0}}}) {
        for (const bool isPlain : {false, true}) {
            Picture picture(3, 1, c.depths, c.samples);
            Warnings sink;
            EXPECT_EQ(picture.file(FileType::pnm, sink, isPlain), isPlain ? c.plain : c.binary);
            EXPECT_EQ(sink.texts, textsOf<MEPNMWarning>(c.warnings));
        }
    }
}

TEST(ImageForm, LinesOfPlainFilesHave70CharactersAtMost)
{
    Picture picture(60, 2, {bits(8)}, {Samples(120, 7)});
    Warnings sink;
    const std::string file = picture.file(FileType::pnm, sink, true);
    size_t start = 0, longest = 0, samples = 0;
    for (size_t end; (end = file.find('\n', start)) != std::string::npos; start = end + 1)
        longest = std::max(longest, end - start);
    for (const char c : file.substr(file.find("255\n") + 4)) samples += c == '7';
    EXPECT_EQ(longest, 69u); // 35 digits and 34 blanks
    EXPECT_EQ(samples, 120u);
}

TEST(ImageForm, BitmapsHaveOneChannelWithAPaletteOrThree)
{
    Warnings sink;
    Picture colours(1, 2, {bits(8), bits(16), {8, true}}, {{1, 4}, {0x200, 0x5ff}, {-125, 6 - 128}});
    colours.image.displayResolution = {true, 1000.4, 2e99};
    const std::string colour = colours.file(FileType::bmp, sink);
    EXPECT_EQ(colour, std::string("BM\x3e\0\0\0\0\0\0\0\x36\0\0\0"
                                  "\x28\0\0\0\1\0\0\0\2\0\0\0\1\0\x18\0\0\0\0\0\x8\0\0\0"
                                  "\xe8\3\0\0\xff\xff\xff\x7f\0\0\0\0\0\0\0\0"
                                  "\6\5\4\0\3\2\1\0",
                                  62));
    EXPECT_THAT(sink.texts, IsEmpty());

    Picture greys(3, 1, {bits(8)}, {{9, 8, 7}});
    const std::string grey = greys.file(FileType::bmp, sink);
    EXPECT_EQ(grey.size(), 14u + 40 + 1024 + 4);
    EXPECT_THAT(grey, EndsWith(std::string("\xfe\xfe\xfe\0\xff\xff\xff\0\x9\x8\7\0", 12)));
    EXPECT_EQ(grey.substr(38, 12), std::string("\xc4\xe\0\0\xc4\xe\0\0\0\1\0\0", 12)); // 3780, 256 colours
    EXPECT_EQ(sink.texts, textsOf<MEDIBWarning>({12}));
}

TEST(ImageForm, BitmapsWarnOfWhatTheyLose)
{
    const std::vector<long long> column(300, 1);
    struct Case {
        std::vector<MRstrImageDepth> depths;
        std::vector<std::vector<long long>> columns;
        MRstrImageDepth columnDepth;
        bool isCapture, isDisplay;
        std::vector<int> warnings;
    };
    for (const Case& c :
         {Case{{bits(8), bits(8)}, {}, {}, true, false, {13}},
          {{bits(8), bits(8), bits(8), bits(8)}, {}, {}, true, true, {10, 13}},
          {{bits(4)}, {{1, 2}}, bits(8), false, false, {12}},
          {{bits(8)}, {column}, bits(12), false, true, {4, 5}},
          {{bits(8)}, {{0}, {0}}, {7, true}, false, true, {8, 6, 7}},
          {{bits(8), bits(8)}, {{1}, {2}, {3}}, {9, true}, false, true, {9, 5, 7, 5, 7, 5, 7}}}) {
        Picture picture(2, 1, c.depths, std::vector<Samples>(c.depths.size(), Samples{0, 1}));
        if (!c.columns.empty()) picture.setPalette(c.columnDepth, c.columns);
        picture.image.captureResolution.isSet = c.isCapture;
        picture.image.displayResolution.isSet = c.isDisplay;
        Warnings sink;
        picture.file(FileType::bmp, sink);
        EXPECT_EQ(sink.texts, textsOf<MEDIBWarning>(c.warnings));
    }
}

TEST(ImageForm, PalettesAreKeptOrLookedUp)
{
    const std::vector<std::vector<long long>> columns{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    Warnings sink;
    // Indices beyond the palette are its last entry; they are neither shifted nor interpolated.
    Picture kept(2, 2, {bits(2)}, {{}});
    kept.setPalette(bits(8), columns);
    Picture::fill(kept.components[0], {1, 2}, {1, 77});
    const std::string bitmap = kept.file(FileType::bmp, sink);
    EXPECT_EQ(bitmap.substr(54, 16), std::string("\7\4\1\0\x8\5\2\0\x9\6\3\0\0\0\0\0", 16));
    EXPECT_THAT(bitmap, EndsWith(std::string("\2\2\0\0\1\1\0\0", 8)));

    Picture looked(2, 1, {bits(8), bits(8)}, {{0, 0}, {-5, 1}});
    looked.setPalette(bits(8), columns);
    looked.image.palette.componentIndex = 1;
    EXPECT_THAT(looked.file(FileType::bmp, sink), EndsWith(std::string("\7\4\1\x8\5\2\0\0", 8)));

    Picture binary(3, 1, {bits(8)}, {{2, 1, 0}});
    binary.setPalette(bits(4), columns);
    EXPECT_EQ(binary.file(FileType::pnm, sink), "P6\n3 1\n15\n\3\6\x9\2\5\x8\1\4\7");
}

TEST(ImageForm, SubSampledComponentsGrow)
{
    Picture picture(4, 2, {bits(8), bits(8), bits(8)}, {Samples(8, 200), {}, {}});
    Picture::fill(picture.components[1], {2, 1}, {10, 30});
    Picture::fill(picture.components[2], {0, 1}, {});
    Warnings sink;
    const std::string row("\xc8\xa\0\xc8\xf\0\xc8\x19\0\xc8\x1e\0", 12);
    EXPECT_EQ(picture.file(FileType::pnm, sink), "P6\n4 2\n255\n" + row + row);
    // Sides that only a lie can have.
    picture.image.size = {0x7fffffff, 0x7fffffff};
    EXPECT_THROW(ResizeUp(picture.components, picture.image.size, qoviInterpolationLinear), BDiagnDescr);
}

TEST(DIBWrite, CoreHeadersWarnOfTheFieldsTheyLack)
{
    DIBInfo info;
    info.version = DIBVersion::core;
    info.size = {5, 3};
    info.bitCount = 8;
    info.nOfColors = 7;
    info.isTopDown = true;
    EXPECT_EQ(EstimateNOfBytes(info), 12u + 3 * 7 + 3 * 8);
    uint8_t bytes[12 + 3 * 7];
    DIBOutput out(bytes);
    Warnings sink;
    WriteInfoHeader(out, info, sink);
    WritePalette(out, info);
    EXPECT_EQ(out.position, bytes + sizeof bytes);
    EXPECT_THAT(std::vector<int>(bytes, bytes + 12), ElementsAre(12, 0, 0, 0, 5, 0, 3, 0, 1, 0, 8, 0));
    EXPECT_EQ(sink.texts, textsOf<EDIBWarning>({0, 1, 2}));
}

TEST(MetaImage, RoomIsCountedBeforeItIsTaken)
{
    DJP2CSMainHeader header;
    header.imageRect = {1, 0, 0x7ffffffe, 1000};
    header.nOfComponents = 2;
    header.sampling.ReAlloc(2);
    header.bitsPerComp.ReAlloc(2);
    header.sampling[0] = {255, 255};
    header.sampling[1] = {2, 1};
    ImageComponents components;
    DecodingBudget budget;
    using NoMemory = DiagnDescrCT<MemoryException, MemoryException{0}>;
    EXPECT_THROW(ReAllocMetaImageComponents(header, budget, components), NoMemory);
    EXPECT_EQ(components.size, 0u);
    header.imageRect = {0, 0, 1, 20'000'000}; // few samples, but as many rows
    EXPECT_THROW(ReAllocMetaImageComponents(header, budget, components), NoMemory);

    header.imageRect = {1, 3, 4, 2};
    ReAllocMetaImageComponents(header, budget, components);
    EXPECT_EQ(components[0].size.width * components[0].size.height, 0u);
    EXPECT_EQ(components[1].size.width, 2u);
    EXPECT_EQ(components[1].size.height, 2u);
    EXPECT_EQ(components[1].row(1)[1], 0);
}

TEST(MetaImage, PalettesNeedEntriesAndAMappingToAComponent)
{
    using Channel = DJP2BoxComponentMapping::Channel;
    struct Case {
        unsigned short nOfEntries;
        std::vector<Channel> channels;
        std::vector<long long> first; // values of each column, none: no palette
    };
    const Channel direct{0, 0, 0, false};
    for (const Case& c : {Case{1, {{0, 1, 1, true}, {0, 1, 0, true}}, {11, 10}},
                          {1, {direct, {0, 1, 0, true}, {1, 1, 1, true}}, {10}},
                          // No column serves more than one channel.
                          {1, {{0, 1, 1, true}, {0, 1, 1, true}, {0, 1, 1, true}}, {11, 11}},
                          {1, {{2, 1, 0, true}}, {}},
                          {1, {direct}, {}},
                          {1, {}, {}},
                          {0, {{0, 1, 0, true}}, {}}}) {
        DJP2BoxHeader header;
        header.isPalette = true;
        header.palette.nOfEntries = c.nOfEntries;
        header.palette.nOfColumns = 2;
        header.palette.depths.ReAlloc(2);
        header.palette.values.Alloc(2, c.nOfEntries);
        for (unsigned i = 0; i < 2 && c.nOfEntries > 0; i++) header.palette.values[i][0] = 10 + i;
        header.componentMapping.channels.ReAlloc(static_cast<unsigned>(c.channels.size()));
        Copy(c.channels, header.componentMapping.channels, static_cast<unsigned>(c.channels.size()));
        MRstrImage image;
        image.nOfComponents = 2;
        SetMRstrImagePalette(header, image);
        EXPECT_EQ(image.palette.isPalettized, !c.first.empty());
        for (unsigned i = 0; i < c.first.size(); i++) EXPECT_EQ(image.palette.values[i][0], c.first[i]);
        if (!c.first.empty()) {
            EXPECT_EQ(image.palette.nOfColumns, c.first.size());
        }
    }
}

} // namespace
