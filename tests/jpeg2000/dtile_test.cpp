// The decoder's tile model: header bits, segments, where precincts and code-blocks lie, and what is too much.
#include "boundedinput.h"
#include "codec_testing.h"
#include "dtilecomp.h"
#include "eprecinct.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace jpeg2000;
using testing::ElementsAreArray;

namespace {

using BitsIn = PHBitIn<MemoryBoundedInputBE>;

struct Bytes : std::vector<uint8_t> {
    void WriteByte(uint8_t value) { push_back(value); }
    void Write(const uint8_t*, unsigned n) { resize(size() + n); }
    MemoryBoundedInputBE input() const { return {data(), static_cast<uint32_t>(size())}; }
};

TEST(PHBitIn, FlushTakesPaddingAndStuffing)
{
    struct {
        std::vector<uint8_t> bytes;
        unsigned read;
        bool isCheck;
        unsigned taken;
        size_t warnings;
    } const cases[] = {
        {{0x00, 1}, 1, true, 1, 0},
        {{0x01, 0}, 1, true, 1, 1},
        {{0x81, 0}, 1, false, 1, 0},
        {{0x80, 0}, 8, false, 1, 0},
        {{0x80, 0x00, 9}, 9, false, 2, 0},
        {{0xFF, 0x7F, 9}, 5, false, 2, 0},
        {{0xFF, 0x00, 9}, 8, false, 2, 0},  // the header ends in 0xFF
        {{0xFF, 0x7F, 9}, 15, false, 2, 0}, // seven bits behind it
        {{0xFF, 0x7F, 0x80, 9}, 16, false, 3, 0},
    };
    for (const auto& c : cases) {
        MemoryBoundedInputBE input(c.bytes.data(), static_cast<uint32_t>(c.bytes.size()));
        Warnings sink;
        BitsIn bits(input, sink);
        bits.Read(c.read);
        bits.Flush(c.isCheck);
        EXPECT_EQ(input.position - c.bytes.data(), c.taken) << testing::PrintToString(c.bytes);
        EXPECT_EQ(sink.texts.size(), c.warnings) << testing::PrintToString(c.bytes);
    }
    const uint8_t cut[] = {0xFF};
    MemoryBoundedInputBE input(cut, 1);
    BitsIn bits(input, nullptr);
    EXPECT_EQ(bits.Read(8), 0xFFu);
    EXPECT_THROW(bits.Flush(false), BDiagnDescr);
}

TEST(DPrecinct, SegmentsEndWhereTheStyleEndsThem)
{
    const auto lengths = [](unsigned passes, bool isBypass, bool isTermAll) {
        std::vector<unsigned> all;
        for (unsigned p = 0; p < passes; p += all.back())
            all.push_back(Min(passes - p, DPrecinct::SegmentMaxNOfPasses(p, isBypass, isTermAll)));
        return all;
    };
    using Lengths = std::vector<unsigned>;
    EXPECT_EQ(lengths(164, false, false), (Lengths{94, 70}));
    EXPECT_EQ(lengths(16, true, false), (Lengths{10, 2, 1, 2, 1}));
    EXPECT_EQ(lengths(3, true, true), (Lengths{1, 1, 1}));
    EXPECT_EQ(DPrecinct::SegmentMaxNOfPasses(4, true, false), 6u);
    EXPECT_EQ(DPrecinct::SegmentMaxNOfPasses(11, true, false), 1u); // a layer ended between two raw passes
}

// Headers of random precincts, as the encoder writes them.
TEST(DPrecinct, ReadsTheHeadersThatAreWritten)
{
    std::mt19937 random(5);
    for (int round = 0; round < 300; round++) {
        const bool isTermAll = round % 2 == 1;
        const Rect rect(random() % 9, random() % 9, 1 + random() % 30, 1 + random() % 30);
        EPrecinct written;
        written.Init(rect, 2, 3);
        std::vector<unsigned> segments;
        std::vector<unsigned> passCounts;
        for (unsigned i = 0; i < written.nOfCodeBlocks; i++) {
            ECodeBlock& block = written.codeBlocks[i];
            block.SetNOfZeroBits(static_cast<int>(random() % 12));
            const unsigned passes = random() % 3 == 0 ? 0 : 1 + random() % (random() % 4 == 0 ? 91 : 6);
            passCounts.push_back(passes);
            int rate = 0;
            for (unsigned p = 0; p < passes; p++) {
                const int bytes = static_cast<int>(random() % 50 * (random() % 50));
                block.PushPass(rate += bytes, 0);
                block.passes.Tail().isTerminated = isTermAll;
                if (isTermAll) segments.push_back(static_cast<unsigned>(bytes));
            }
            if (!isTermAll && passes > 0) segments.push_back(static_cast<unsigned>(rate));
            block.SetCurPassToFirst();
        }
        Bytes header, body;
        PHBitOut<Bytes> out(header);
        written.WriteToPacket(0, out, body);
        out.Flush();

        DCBWorkspace workspace;
        DCBSubband band;
        band.nOfGuardBits = 2;
        band.dynamicRange = 12;
        band.workspace = &workspace;
        band.codeBlockStyle.flags = isTermAll ? qoviCodeStyleTermAll : 0;
        ImageC<int, 1u> image;
        image.Alloc(rect.width, rect.height);
        DPrecinct precinct;
        precinct.Init(image, rect, rect, {2, 3}, band.codeBlockStyle);
        ASSERT_EQ(precinct.nOfCodeBlocks, written.nOfCodeBlocks);
        MemoryBoundedInputBE input = header.input();
        BitsIn bits(input, nullptr);
        EXPECT_EQ(bits.Read(), 1u);
        precinct.ReadPacketHeader(0, band, bits);
        bits.Flush(false);
        EXPECT_EQ(input.bytesLeft(), 0u);
        EXPECT_THAT(workspace.segments, ElementsAreArray(segments));
        auto included = workspace.included.begin();
        for (unsigned i = 0; i < precinct.nOfCodeBlocks; i++) {
            EXPECT_EQ(precinct.codeBlocks[i].nOfPasses, passCounts[i]);
            if (passCounts[i] == 0) continue;
            EXPECT_EQ((included++)->block, &precinct.codeBlocks[i]);
            EXPECT_EQ(precinct.zeroBitsTree.nodes[i].value, written.codeBlocks[i].nOfZeroBits);
        }
        EXPECT_EQ(included, workspace.included.end());
    }
}

// A component of 3 levels at an odd place.
struct Component {
    Rect rect{13, 7, 85, 62};
    JP2CodingStyleComp style;
    QuantComponent quant;
    SBTree<int> bands;
    DCBWorkspace workspace;
    DTileComp comp;

    explicit Component(std::vector<RectSize> precinctExps, RectSize codeBlockExps)
    {
        style.nOfLevels = static_cast<unsigned>(precinctExps.size()) - 1;
        style.precinctSizeExp.Alloc(precinctExps.size());
        Copy(precinctExps, style.precinctSizeExp, style.nOfLevels + 1);
        style.codeBlockSizeExp = codeBlockExps;
    }
    void build()
    {
        quant.triplets.Alloc(style.nOfLevels);
        AllocSBTree(rect, style.nOfLevels, bands);
        comp.Init(bands, rect, 8, style.nOfLevels, style.precinctSizeExp, style.codeBlockSizeExp, {}, 2,
                  quant, workspace);
    }
};

// Every sample lies in the precinct and the code-block that ITU-T T.800, B.6 and B.7 give it.
uint64_t checkBand(DSubband& band, const ImageC<int, 1u>& image, const Rect& rect, bool isHalved,
                   bool isHighX, bool isHighY, const Rect& resolution, const RectSize& precinctExps,
                   const RectSize& codeBlockExps)
{
    const auto along = [isHalved](unsigned u, bool isHigh, unsigned start, unsigned exp, unsigned cbExp) {
        const unsigned position = isHalved ? 2 * u + isHigh : u;
        const unsigned cellExp = Min(cbExp, isHalved ? exp - 1 : exp);
        return std::pair((position >> exp) - (start >> exp), u >> cellExp);
    };
    std::vector<std::pair<unsigned, unsigned>> firstOf; // by block: the cell it stands for
    uint64_t nodes = 0;
    unsigned painted = 0;
    for (unsigned row = 0; row < band.nOfRows; row++)
        for (unsigned column = 0; column < band.nOfColumns; column++) {
            DPrecinct& precinct = band.precincts[row][column];
            nodes += 1 + precinct.nOfCodeBlocks;
            for (unsigned i = 0; i < precinct.nOfCodeBlocks; i++) {
                const DCodeBlock& block = precinct.codeBlocks[i];
                const auto offset = reinterpret_cast<const char*>(block.image.data) -
                                    reinterpret_cast<const char*>(image.data);
                const unsigned y0 = static_cast<unsigned>(offset) / image.step;
                const unsigned x0 = static_cast<unsigned>(offset) % image.step / 4;
                const auto cellOf = [&](unsigned x, unsigned y) {
                    return std::pair(
                        along(rect.x + x, isHighX, resolution.x, precinctExps.width, codeBlockExps.width),
                        along(rect.y + y, isHighY, resolution.y, precinctExps.height, codeBlockExps.height));
                };
                const auto cell = cellOf(x0, y0);
                EXPECT_EQ(cell.first.first, column);
                EXPECT_EQ(cell.second.first, row);
                for (unsigned y = y0; y < y0 + block.size.height; y++)
                    for (unsigned x = x0; x < x0 + block.size.width; x++) EXPECT_EQ(cellOf(x, y), cell);
                painted += block.size.width * block.size.height;
            }
        }
    EXPECT_EQ(painted, rect.width * rect.height);
    return nodes;
}

TEST(DTileComp, PrecinctsAndBlocksLieOnTheStandardsGrid)
{
    const std::vector<RectSize> precincts[] = {
        {{15, 15}, {15, 15}, {15, 15}},
        {{1, 2}, {3, 2}, {4, 5}},
        {{0, 0}, {1, 1}, {2, 6}, {7, 3}},
        {{3, 3}},
    };
    for (const auto& exps : precincts)
        for (const RectSize& blocks : {RectSize{2, 2}, {3, 5}, {6, 6}}) {
            Component c(exps, blocks);
            c.build();
            const unsigned levels = c.style.nOfLevels;
            uint64_t nodes = 0;
            const Rect low = resolutionRect(c.rect, levels);
            nodes += checkBand(c.comp.ll, c.bands.ll, low, false, false, false, low, exps[0], blocks);
            for (unsigned i = 0; i < levels; i++) {
                const Rect resolution = resolutionRect(c.rect, i);
                const auto check = [&](DSubband& band, const ImageC<int, 1u>& image, bool isHighX,
                                       bool isHighY) {
                    nodes += checkBand(band, image, subbandRect(c.rect, i, isHighX, isHighY), true, isHighX,
                                       isHighY, resolution, exps[levels - i], blocks);
                };
                check(c.comp.triplets[i].hl, c.bands.triplets[i].hl, true, false);
                check(c.comp.triplets[i].lh, c.bands.triplets[i].lh, false, true);
                check(c.comp.triplets[i].hh, c.bands.triplets[i].hh, true, true);
            }
            EXPECT_EQ(DTileComp::DemandOf(c.rect, c.style).nOfNodes, nodes);
            EXPECT_EQ(c.comp.firstCodedResolution, 0u);
        }
}

TEST(DTileComp, ResolutionsWithoutSamplesHaveNoPackets)
{
    struct {
        Rect rect;
        unsigned first;
    } const cases[] = {
        {{0, 0, 1, 1}, 0}, {{1, 0, 1, 1}, 2},          {{2, 3, 1, 1}, 2},
        {{2, 2, 1, 1}, 1}, {{0, 0, 0, 5}, 0xFFFFFFFF},
    };
    for (const auto& c : cases) {
        Component component({{15, 15}, {15, 15}, {15, 15}}, {6, 6});
        component.rect = c.rect;
        component.build();
        EXPECT_EQ(component.comp.firstCodedResolution, c.first);
        const uint8_t byte = 0;
        MemoryBoundedInputBE input(&byte, 1);
        for (unsigned r = 0; r < Min(c.first, 3u); r++) component.comp.ReadPacket(input, r, {0, 0}, 0);
        EXPECT_EQ(input.bytesLeft(), 1u);
    }
}

// Packets of nothing: the bit that says so, and padding.
TEST(DTileComp, WarnsOfPaddingInEmptyPackets)
{
    Component c({{15, 15}}, {6, 6});
    Warnings sink;
    c.workspace.sink = sink;
    c.build();
    const uint8_t bytes[] = {0x00, 0x01, 0x7F};
    MemoryBoundedInputBE input(bytes, sizeof bytes);
    for (const size_t warnings : {0, 1, 2}) {
        c.comp.ReadPacket(input, 0, {0, 0}, 0);
        EXPECT_EQ(sink.texts.size(), warnings);
    }
    EXPECT_EQ(input.bytesLeft(), 0u);
}

TEST(DTileComp, LengthsBeyondAnyInputEndTheDecoding)
{
    Component c({{15, 15}}, {6, 6});
    c.build();
    // Included at once, no missing planes, one pass, and lblock grows without an end.
    std::vector<uint8_t> packet(65, 0xFF);
    packet[0] = 0xF7;
    MemoryBoundedInputBE input(packet.data(), static_cast<uint32_t>(packet.size()));
    EXPECT_THROW(c.comp.ReadPacket(input, 0, {0, 0}, 0), BDiagnDescr);
    EXPECT_GT(input.bytesLeft(), 50u);
}

TEST(DTileComp, DemandsAreToldBeforeAnythingIsAllocated)
{
    const auto demandOf = [](const Rect& rect) {
        return DTileComp::DemandOf(rect, Component({{0, 0}}, {2, 2}).style);
    };
    EXPECT_EQ(demandOf({0, 0, 3000, 2000}).nOfNodes, 2u * 3000 * 2000);
    EXPECT_GE(demandOf({0, 0, 1, 1u << 27}).bytes, 64ull << 27); // each row takes a line of the cache
    EXPECT_EQ(demandOf({0, 0, 0x7FFFFFFF, 0x7FFFFFFF}).bytes, UINT64_MAX);
    DecodingBudget budget;
    EXPECT_THROW(budget.Take(64ull << 27), BDiagnDescr);
}

} // namespace
