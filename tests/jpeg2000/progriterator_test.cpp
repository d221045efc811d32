// The walk over packets, against the loops of the standard tried at every position of the reference grid.
#include "progriterator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <tuple>
#include <vector>

using namespace jpeg2000;

namespace {

using Packet = std::array<unsigned, 5>; // layer, resolution, component, precinct row and column

struct Tile {
    Rect rect;
    JP2CodingStyleJoint joint;
    std::vector<RectSize> sampling;
    std::vector<JP2CodingStyleComp> styles;
    std::vector<const JP2CodingStyleComp*> stylePointers;

    void addComponent(RectSize factors, const std::vector<RectSize>& precinctExps)
    {
        sampling.push_back(factors);
        JP2CodingStyleComp& style = styles.emplace_back();
        style.nOfLevels = static_cast<unsigned>(precinctExps.size()) - 1;
        style.precinctSizeExp.Alloc(precinctExps.size());
        std::copy(precinctExps.begin(), precinctExps.end(), static_cast<RectSize*>(style.precinctSizeExp));
    }

    void start(JP2TileProgrIterator& iterator, const std::vector<JP2ProgrRange>& changes = {},
               DecodingBudget* budget = nullptr)
    {
        stylePointers.clear();
        for (const JP2CodingStyleComp& style : styles) stylePointers.push_back(&style);
        FixedArray<JP2ProgrRange> list;
        list.ReAlloc(static_cast<unsigned>(changes.size()));
        Copy(changes, list, list.size);
        iterator.InitAttachStartProgrRangeTilePart0(rect, sampling.data(), joint, stylePointers.data(),
                                                    static_cast<unsigned>(styles.size()), list, budget);
    }

    std::vector<Packet> walked(const std::vector<JP2ProgrRange>& changes = {})
    {
        JP2TileProgrIterator iterator;
        std::vector<Packet> packets;
        for (start(iterator, changes); iterator.isValid; iterator++) packets.push_back(packetOf(iterator));
        return packets;
    }

    static Packet packetOf(const JP2TileProgrIterator& at)
    {
        return {at.Layer(), at.Resolution(), at.Component(), at.PrecinctRow(), at.PrecinctColumn()};
    }

    // Every packet with the position that B.12 gives its precinct, in the order of a progression.
    std::vector<Packet> expected(unsigned progression) const
    {
        struct Placed {
            Packet packet;
            unsigned x, y;
        };
        std::vector<Placed> all;
        for (unsigned c = 0; c < styles.size(); c++)
            for (unsigned r = 0; r <= styles[c].nOfLevels; r++) {
                const unsigned nd = styles[c].nOfLevels - r;
                const std::vector<unsigned> xs =
                    starts(rect.x, rect.width, sampling[c].width, nd, styles[c].precinctSizeExp[r].width);
                const std::vector<unsigned> ys =
                    starts(rect.y, rect.height, sampling[c].height, nd, styles[c].precinctSizeExp[r].height);
                for (unsigned row = 0; row < ys.size(); row++)
                    for (unsigned column = 0; column < xs.size(); column++)
                        for (unsigned l = 0; l < joint.nOfLayers; l++)
                            all.push_back({{l, r, c, row, column}, xs[column], ys[row]});
            }
        const auto key = [&](const Placed& p) -> std::array<unsigned, 7> {
            const auto [l, r, c, row, column] = p.packet;
            switch (progression) {
            case 0: return {l, r, c, row, column};
            case 1: return {r, l, c, row, column};
            case 2: return {r, p.y, p.x, c, row, column, l};
            case 3: return {p.y, p.x, c, r, row, column, l};
            default: return {c, p.y, p.x, r, row, column, l};
            }
        };
        std::ranges::stable_sort(all, {}, key);
        std::vector<Packet> packets;
        for (const Placed& p : all) packets.push_back(p.packet);
        return packets;
    }

private:
    // Where each precinct along an axis begins on the reference grid: the tile's edge, or its first multiple.
    static std::vector<unsigned> starts(unsigned origin, unsigned length, unsigned factor, unsigned nd,
                                        unsigned exp)
    {
        const auto down = [&](unsigned v) { return (v + (factor << nd) - 1) / (factor << nd); };
        const unsigned first = down(origin), behind = down(origin + length);
        std::vector<unsigned> positions;
        for (unsigned p = first; p < behind; p = ((p >> exp) + 1) << exp)
            positions.push_back(p == first && p % (1u << exp) != 0 ? origin : p * (factor << nd));
        return positions;
    }
};

// With isAwkward, also precincts of one sample and factors that are no power of two.
Tile randomTile(std::mt19937& random, bool isAwkward = false)
{
    const auto upTo = [&](unsigned most) { return static_cast<unsigned>(random() % (most + 1)); };
    const auto exponent = [&] { return (isAwkward ? 0 : 1) + upTo(3); };
    const auto factor = [&] { return isAwkward ? 1 + upTo(6) : 1u << upTo(1); };
    Tile tile;
    tile.rect = {upTo(40), upTo(40), 1 + upTo(60), 1 + upTo(60)};
    tile.joint.nOfLayers = 1 + upTo(2);
    for (unsigned c = 0, n = 1 + upTo(2); c < n; c++) {
        std::vector<RectSize> exps(1 + upTo(3));
        for (RectSize& e : exps) e = {exponent(), exponent()};
        tile.addComponent({factor(), factor()}, exps);
    }
    return tile;
}

// Where RPCL and PCRL open precincts early, the order is another; but nothing is missed, and nothing walked
// beyond the last sample.
TEST(ProgrIterator, WalksEveryPacketInTheOrderOfTheStandard)
{
    std::mt19937 random(1);
    for (int round = 0; round < 500; round++) {
        const bool isAwkward = round >= 300;
        Tile tile = randomTile(random, isAwkward);
        for (unsigned progression = 0; progression < 6; progression++) {
            tile.joint.progression = progression;
            std::vector<Packet> walked = tile.walked(), expected = tile.expected(progression);
            if (isAwkward && (progression == 2 || progression == 3)) {
                std::ranges::sort(walked);
                std::ranges::sort(expected);
            }
            ASSERT_EQ(walked, expected) << "round " << round << " order " << progression;
        }
    }
}

// Each range in turn, then what no range covered; nothing twice.
TEST(ProgrIterator, ChangesOfOrderCoverEveryPacketOnce)
{
    std::mt19937 random(2);
    for (int round = 0; round < 100; round++) {
        Tile tile = randomTile(random);
        std::vector<JP2ProgrRange> changes(1 + random() % 3);
        std::vector<Packet> expected;
        const auto take = [&](unsigned progression, const auto& isIn) {
            for (const Packet& packet : tile.expected(progression))
                if (isIn(packet) && std::ranges::find(expected, packet) == expected.end())
                    expected.push_back(packet);
        };
        for (JP2ProgrRange& range : changes) {
            const auto below = [&](unsigned end) { return static_cast<unsigned>(random() % end); };
            range = {below(5), {below(3), below(4)}, {below(4), below(300)}, below(5)};
            take(range.progression, [&](const Packet& p) {
                return p[0] < range.nOfLayers && p[1] >= range.resolutions.origin &&
                       p[1] < range.resolutions.end && p[2] >= range.components.origin &&
                       p[2] < range.components.end;
            });
        }
        tile.joint.progression = 0;
        take(0, [](const Packet&) { return true; });
        ASSERT_EQ(tile.walked(changes), expected) << "round " << round;
    }
}

// A tile part's own list interrupts the order; the packet that was due then comes again later.
TEST(ProgrIterator, LaterTilePartsMayChangeTheOrder)
{
    Tile tile;
    tile.rect = {0, 0, 8, 8};
    tile.joint.nOfLayers = 2;
    tile.addComponent({1, 1}, {{15, 15}, {15, 15}});
    JP2TileProgrIterator iterator;
    tile.start(iterator);
    EXPECT_EQ(Tile::packetOf(iterator), (Packet{0, 0, 0, 0, 0}));
    FixedArray<JP2ProgrRange> changes;
    changes.ReAlloc(1);
    changes[0].resolutions = {1, 1};
    changes[0].components = {0, 1};
    changes[0].nOfLayers = 2;
    iterator.AttachChangeProgrRangeTilePartN(changes);
    EXPECT_EQ(Tile::packetOf(iterator), (Packet{0, 1, 0, 0, 0}));
    iterator++;
    EXPECT_EQ(Tile::packetOf(iterator), (Packet{1, 1, 0, 0, 0}));
    iterator.AttachChangeProgrRangeTilePartN({});
    std::vector<Packet> rest;
    for (; iterator.isValid; iterator++) rest.push_back(Tile::packetOf(iterator));
    EXPECT_THAT(rest,
                testing::ElementsAre(Packet{0, 0, 0, 0, 0}, Packet{1, 0, 0, 0, 0}, Packet{1, 1, 0, 0, 0}));
}

// Factors without a common divisor, a tile of 2^31 positions a side: the walk costs what its precincts cost.
TEST(ProgrIterator, JumpsOverPositionsThatOpenNothing)
{
    for (const unsigned progression : {2u, 3u, 4u}) {
        Tile tile;
        tile.rect = {0, 0, 0x7fffffff, 0x7fffffff};
        tile.joint = {progression, 1, false, false, false};
        tile.addComponent({255, 253}, {{15, 15}});
        tile.addComponent({254, 251}, {{15, 15}});
        size_t expected = 0;
        for (const RectSize& factors : tile.sampling)
            expected +=
                (0x7fffffffu / factors.width / 32768 + 1) * (0x7fffffffu / factors.height / 32768 + 1);
        EXPECT_EQ(tile.walked().size(), expected);
    }
}

// 16384 components, all but one of them so coarse that the tile holds none of their samples.
TEST(ProgrIterator, PassesOverComponentsWithoutPrecincts)
{
    for (unsigned progression = 0; progression < 5; progression++)
        for (const unsigned factor : {1u, 255u}) {
            Tile tile;
            tile.rect = {1, 1, 8, 8};
            tile.joint = {progression, 65535, false, false, false};
            for (unsigned c = 0; c < 16383; c++) tile.addComponent({255, 255}, {{15, 15}, {15, 15}});
            tile.addComponent({factor, factor}, {{15, 15}});
            EXPECT_EQ(tile.walked().size(), factor == 1 ? 65535u : 0u);
        }
}

// Packets that earlier ranges have walked cost no bytes: thousands of ranges over them are not walked to the
// end.
TEST(ProgrIterator, WalksThatFindNothingAreBounded)
{
    const std::vector<JP2ProgrRange> ranges(9000, {2, {0, 1}, {0, 4000}, 1});
    Tile tile;
    tile.rect = {0, 0, 128, 128};
    tile.joint = {2, 1, false, false, false};
    tile.addComponent({1, 1}, {{0, 0}});
    for (unsigned c = 1; c < 4000; c++) tile.addComponent({255, 255}, {{15, 15}});
    JP2TileProgrIterator iterator;
    DecodingBudget budget;
    budget.TakeSteps((1ull << 32) - (1 << 24));
    EXPECT_THROW(
        {
            tile.start(iterator, ranges, &budget);
            while (iterator.isValid) iterator++;
        },
        BDiagnDescr);
    tile.joint.nOfLayers = 0;
    EXPECT_TRUE(tile.walked(ranges).empty());
}

} // namespace
