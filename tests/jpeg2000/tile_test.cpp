// The encoder's tile model: header bits, tag trees, blocks and the hull of their passes, and where bands lie.
#include "cbencoder.h"
#include "etile.h"
#include "phbitout.h"
#include "quant.h"
#include "tagtree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

using namespace jpeg2000;
using testing::ElementsAre;

namespace {

struct Bytes : std::vector<uint8_t> {
    void WriteByte(uint8_t value) { push_back(value); }
};

TEST(PHBitOut, StuffsBehindFullBytes)
{
    const auto written = [](int ones) {
        Bytes bytes;
        PHBitOut<Bytes> bits(bytes);
        for (int i = 0; i < ones; i++) bits.Write1();
        bits.Flush();
        return bytes;
    };
    EXPECT_THAT(written(0), ElementsAre(0x80));
    EXPECT_THAT(written(3), ElementsAre(0xF0));
    EXPECT_THAT(written(7), ElementsAre(0xFF, 0x00)); // a header does not end in 0xFF
    EXPECT_THAT(written(8), ElementsAre(0xFF, 0x40));
    EXPECT_THAT(written(14), ElementsAre(0xFF, 0x7F)); // a full byte needs no other
}

// That the bits are right is seen where headers are read.
TEST(TagTree, ACopyGoesOnWhereTheTreeStood)
{
    TagTreeEncoder trees[2];
    trees[0].Init({5, 3});
    for (unsigned i = 0; i < 15; i++) trees[0].SetValue(i, static_cast<int>(i * 7 % 5));
    Bytes before, bytes[2];
    PHBitOut<Bytes> first(before);
    trees[0].Encode(0, 3, first);
    trees[1] = trees[0];
    for (const size_t t : {0, 1}) {
        PHBitOut<Bytes> bits(bytes[t]);
        for (unsigned i = 0; i < 15; i++)
            for (int threshold = 1; threshold <= 5; threshold++) trees[t].Encode(i, threshold, bits);
        bits.Flush();
    }
    EXPECT_EQ(bytes[0], bytes[1]);
    EXPECT_GT(bytes[0].size(), 2u);
}

TEST(CBEncoder, PlanesAreCountedInTheCodersUnit)
{
    constexpr int outside = 77, dynamicRange = 10, nOfGuardBits = 2;
    struct Case {
        int sample, shift, nOfZeroBits;
        unsigned nOfPasses;
    };
    CBEncoder encoder(nOfGuardBits, 0, qoviMQTermShort);
    for (const Case& c : {Case{0, 0, 11, 0},
                          {5, 0, 8, 7},
                          {-5, 0, 8, 7},
                          {5, 2, 6, 7},    // the planes below the shift are not coded
                          {-20, -2, 8, 7}, // -5
                          {5, 40, 11, 0}}) {
        std::vector<int> samples(8 * 8, outside);
        for (int y = 3; y < 5; y++)
            for (int x = 2; x < 6; x++) samples[static_cast<size_t>(y * 8 + x)] = 0;
        samples[4 * 8 + 5] = c.sample;
        ECodeBlock block;
        encoder.Encode({samples.data(), 8 * sizeof(int)}, {2, 3, 4, 2}, qoviWTSubbandLxLy, dynamicRange,
                       c.shift, block);
        EXPECT_EQ(block.nOfZeroBits, c.nOfZeroBits) << c.sample << ' ' << c.shift;
        EXPECT_EQ(block.nOfPasses, c.nOfPasses) << c.sample << ' ' << c.shift;
        EXPECT_EQ(block.data == nullptr, c.nOfPasses == 0);
        EXPECT_EQ(std::count(samples.begin(), samples.end(), outside), 8 * 8 - 4 * 2);
    }
}

TEST(CBEncoder, PassesFollowOneAnotherInTheBlocksBytes)
{
    std::mt19937 random(5);
    std::vector<int> samples(64 * 64);
    double energy = 0;
    for (int& sample : samples) {
        sample = static_cast<int>(random() % 100000) - 50000;
        energy += 1.0 * sample * sample;
    }
    CBEncoder encoder(2, 0, qoviMQTermShort);
    ECodeBlock blocks[2]; // by one coder, which begins anew with each
    for (ECodeBlock& block : blocks) {
        std::vector<int> altered = samples;
        encoder.Encode({altered.data(), 64 * sizeof(int)}, {0, 0, 64, 64}, qoviWTSubbandHxHy, 18, 0, block);
        unsigned position = 0;
        for (const ECBPass& pass : block.passes) {
            EXPECT_EQ(pass.startRate, position);
            EXPECT_EQ(pass.data, block.data + position);
            position = pass.endRate;
        }
        EXPECT_EQ(block.passes.Tail().dist, energy);
    }
    const unsigned size = blocks[0].passes.Tail().endRate;
    EXPECT_GT(size, MemoryBlock::blockSize);
    ASSERT_EQ(size, blocks[1].passes.Tail().endRate);
    EXPECT_EQ(memcmp(blocks[0].data, blocks[1].data, size), 0);
}

void pushPasses(ECodeBlock& block, const std::vector<std::pair<int, double>>& passes)
{
    for (const auto& [rate, dist] : passes) block.PushPass(rate, dist);
    block.SetCurPassToFirst();
    block.CalcRDSlopes();
}

std::vector<int> layersOf(const ECodeBlock& block)
{
    std::vector<int> layers;
    for (const ECBPass& pass : block.passes) layers.push_back(pass.layer);
    return layers;
}

// Against the hull found the long way: from each corner, to the farthest pass of the steepest slope.
TEST(ECodeBlock, SlopesAreThoseOfTheConvexHull)
{
    std::mt19937 random(4);
    for (int round = 0; round < 500; round++) {
        std::vector<std::pair<int, double>> passes;
        int rate = 1;
        double dist = 0;
        for (auto left = random() % 20; left > 0; left--) {
            rate += static_cast<int>(random() % 4);
            dist += static_cast<double>(random() % 100000) / 1000 - 20;
            passes.emplace_back(rate, dist);
        }
        ECodeBlock block;
        pushPasses(block, passes);

        std::vector<double> expected(passes.size(), 0.0);
        int fromRate = 0;
        double fromDist = 0;
        for (size_t corner = 0; corner < passes.size();) {
            size_t best = passes.size();
            double steepest = 0;
            for (size_t i = corner; i < passes.size(); i++) {
                const double gain = passes[i].second - fromDist;
                const int bytes = passes[i].first - fromRate;
                const double slope = bytes > 0 ? gain / bytes : gain > 0 ? 1e30 : 0;
                if (slope > 0 && slope >= steepest) steepest = slope, best = i;
            }
            if (best == passes.size()) break;
            expected[best] = steepest;
            std::tie(fromRate, fromDist) = passes[best];
            corner = best + 1;
        }
        size_t i = 0;
        for (const ECBPass& pass : block.passes) {
            EXPECT_NEAR(std::max(pass.slope, 0.0), expected[i], 1e-9) << "round " << round << " pass " << i;
            i++;
        }
    }
}

TEST(ECodeBlock, LayersEndAtTheLastPassOfTheSlope)
{
    ECodeBlock block;
    pushPasses(block, {{10, 100.0}, {20, 150.0}, {30, 190.0}, {40, 180.0}});
    double min = 1e30, max = 0;
    block.RDSlopesMinMax(min, max);
    EXPECT_EQ(min, 4);
    EXPECT_EQ(max, 10);
    block.AssignLayerTillCurPass(0, 4.5);
    EXPECT_THAT(layersOf(block), ElementsAre(0, 0, -1, -1));
    block.AssignLayerTillCurPass(0, -1.0);
    EXPECT_THAT(layersOf(block), ElementsAre(0, 0, 0, 0));
    block.AssignLayerTillCurPass(0, 11);
    EXPECT_THAT(layersOf(block), ElementsAre(-1, -1, -1, -1));
    ++ ++block.curPass;
    block.AssignLayerTillCurPass(0);
    EXPECT_THAT(layersOf(block), ElementsAre(0, 0, -1, -1));

    // A first pass that costs nothing lends its gain to the next.
    ECodeBlock free;
    pushPasses(free, {{0, 50.0}, {10, 100.0}});
    free.AssignLayerTillCurPass(0, 10);
    EXPECT_THAT(layersOf(free), ElementsAre(0, 0));
}

TEST(Quant, StepsAreSplitAndPutTogether)
{
    EXPECT_EQ(QuantFromDelta(0.5f, 8).exponent, 9);
    EXPECT_EQ(QuantFromDelta(0, 8).exponent, 31);
    for (float delta = 0.013f; delta < 300; delta *= 1.37f)
        EXPECT_NEAR(stepOf(QuantFromDelta(delta, 8), 8), delta, delta / 4000);
    EXPECT_EQ(QuantFromDelta(1.99999f, 8).mantissa, 2047);
}

// One component of 8 bits with code-blocks of 64 by 64, as the codec cuts its tile.
void initTile(ETile& tile, const Rect& rect, int levels, const QuantComponent& quant)
{
    FixedBuffer2D<int> precincts(1, 33), blocks(1, 33);
    SetValue(15, precincts[0], 33);
    SetValue(6, blocks[0], 33);
    const int range = 8;
    tile.Init(&rect, precincts, precincts, blocks, blocks, &range, &quant, &levels, 1);
}

TEST(ETile, BandsLieWhereTheStandardPutsThem)
{
    QuantComponent quant;
    quant.ll = {0, 8};
    quant.triplets.Alloc(2);
    quant.triplets[0] = {{0, 9}, {0, 9}, {0, 10}};
    quant.triplets[1] = {{0, 8}, {0, 8}, {0, 8}};
    ETile tile;
    initTile(tile, {3, 2, 200, 1}, 2, quant); // samples 3 to 202 of row 2

    ETileComp& comp = tile.components[0];
    EXPECT_EQ(tile.NOfResLevels(0), 3);
    EXPECT_EQ(comp.ll.xRuler.origin, 1u); // ceil(3 / 4) to ceil(203 / 4)
    EXPECT_EQ(comp.ll.xRuler.firstSegmentSize, 50u);
    EXPECT_EQ(comp.triplets[0].hl.xRuler.origin, 1u); // samples 3 to 201, the odd ones
    EXPECT_EQ(comp.triplets[0].hl.xRuler.firstSegmentSize, 100u);
    EXPECT_EQ(comp.triplets[0].hl.precincts[0].nOfCodeBlocks, 2u); // 1 to 63, 64 to 100
    EXPECT_EQ(comp.triplets[0].lh.nOfPrecincts, 0u);               // row 2 is even
    EXPECT_EQ(tile.NOfPrecincts(0, 2), 1);
    EXPECT_EQ(comp.triplets[0].hl.shift, 0);
    EXPECT_EQ(comp.triplets[1].hh.shift, 2);
    EXPECT_EQ(comp.triplets[1].hh.dynamicRange, 10);
}

TEST(ETile, LayersKeepTheirBudget)
{
    constexpr int everything = 0x7fffffff;
    const std::vector<std::pair<int, double>> four = {{100, 1e5}, {200, 1.5e5}, {300, 1.6e5}, {400, 1.5e5}};
    struct {
        std::vector<std::pair<int, double>> passes;
        int budget, included;
    } const cases[] = {
        {four, 0, 0},
        {four, 1, 0}, // the empty packet alone
        {four, 150, 1},
        {four, 350, 2}, // the smallest slope stays out
        {four, everything, 4},
        {{{100, 1e5}, {200, 2e5}}, 250, 2}, // unless it is the only one
        {{{100, -5.0}}, 250, 0},
        {{}, 0, 0},
        {{}, everything, 0},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(testing::Message() << one.passes.size() << " passes, budget " << one.budget);
        ETile tile;
        initTile(tile, {0, 0, 64, 64}, 0, {});
        ECodeBlock& block = tile.components[0].ll.precincts[0].codeBlocks[0];
        block.data.Alloc(400);
        pushPasses(block, one.passes);
        tile.AssignLayers(&one.budget, 1);
        const std::vector<int> layers = layersOf(block);
        EXPECT_EQ(std::ranges::count(layers, 0), one.included);

        const int bytes = one.included > 0 ? one.passes[static_cast<size_t>(one.included) - 1].first : 0;
        const int packet = tile.PacketsLengthSimulate(0);
        EXPECT_GT(packet, bytes);
        EXPECT_LT(packet, bytes + 8);
        EXPECT_TRUE(bytes == 0 || packet <= one.budget);
    }
}

} // namespace
