#include "dtilecomp.h"

#include "boundedinput.h"

#include <utility>

namespace jpeg2000 {

namespace {

uint64_t nOfCells(unsigned from, unsigned size, unsigned order)
{
    RulerPow2 ruler;
    ruler.Init(from, size, order);
    return ruler.nOfSegments;
}

// Adds the precincts and code-blocks of one band, and the memory of its tree, its packet counters and its
// samples.
void addBand(DTileComp::Demand& demand, const Rect& band, uint64_t precincts, const RectSize& codeBlockExps,
             const RectSize& precinctExps)
{
    constexpr uint64_t treeNodes = 3; // a block's share of two tag trees, rounded up
    if (band.width == 0 || band.height == 0) return;
    const uint64_t codeBlocks = nOfCells(band.x, band.width, Min(codeBlockExps.width, precinctExps.width)) *
                                nOfCells(band.y, band.height, Min(codeBlockExps.height, precinctExps.height));
    demand.nOfNodes += precincts + codeBlocks;
    demand.bytes += precincts * (sizeof(DPrecinct) + sizeof(uint32_t)) +
                    codeBlocks * (sizeof(DCodeBlock) + treeNodes * sizeof(TagTree::Node)) +
                    planeNOfBytes(band);
}

} // namespace

DTileComp::Demand DTileComp::DemandOf(const Rect& rect, const JP2CodingStyleComp& style)
{
    constexpr uint64_t mostSamples = 1u << 28; // a budget's worth; below it no count leaves 64 bits
    if (uint64_t{rect.width} * rect.height > mostSamples) return {UINT64_MAX, UINT64_MAX};
    const unsigned levels = style.nOfLevels;
    const auto precinctsOf = [](const Rect& samples, const RectSize& exps) {
        return nOfCells(samples.x, samples.width, exps.width) *
               nOfCells(samples.y, samples.height, exps.height);
    };
    Demand demand;
    demand.bytes = levels * (sizeof(DResLevelTriplet) + sizeof(SBTriplet<int>));

    const Rect low = resolutionRect(rect, levels);
    const RectSize& lowExps = style.precinctSizeExp[0];
    addBand(demand, low, precinctsOf(low, lowExps), style.codeBlockSizeExp, lowExps);
    for (unsigned i = 0; i < levels; i++) {
        const RectSize& exps = style.precinctSizeExp[levels - i];
        // In a band precincts are half as large.
        const RectSize bandExps{Max(exps.width, 1u) - 1, Max(exps.height, 1u) - 1};
        const uint64_t precincts = precinctsOf(resolutionRect(rect, i), exps);
        for (const auto& [isHighX, isHighY] : {std::pair(true, false), {false, true}, {true, true}})
            addBand(demand, subbandRect(rect, i, isHighX, isHighY), precincts, style.codeBlockSizeExp,
                    bandExps);
    }
    return demand;
}

void DTileComp::Init(const SBTree<int>& bands, const Rect& rect, int bits, unsigned levels,
                     const RectSize* precinctExps, const RectSize& codeBlockExps, const CBCodingStyle& style,
                     int nOfGuardBits, const QuantComponent& quant, DCBWorkspace& workspace)
{
    nOfLevels = levels;
    m_workspace = &workspace;
    const auto initBand = [&](DSubband& band, const ImageC<int, 1u>& image, QoviWTSubband type,
                              unsigned level, int exponent) {
        const int dynamicRange = bits + bandGain(type);
        const DCBSubband shared{type, nOfGuardBits, dynamicRange, exponent - dynamicRange, style, &workspace};
        band.Init(image, resolutionRect(rect, level), {precinctExps[levels - level], codeBlockExps}, shared);
    };
    initBand(ll, bands.ll, qoviWTSubbandLxLy, levels, quant.ll.exponent);
    triplets.Free();
    triplets.Alloc(levels);
    for (unsigned i = 0; i < levels; i++) {
        const SBTriplet<int>& images = bands.triplets[i];
        const QuantTriplet& steps = quant.triplets[i];
        initBand(triplets[i].hl, images.hl, qoviWTSubbandHxLy, i, steps.hl.exponent);
        initBand(triplets[i].lh, images.lh, qoviWTSubbandLxHy, i, steps.lh.exponent);
        initBand(triplets[i].hh, images.hh, qoviWTSubbandHxHy, i, steps.hh.exponent);
    }

    firstCodedResolution = 0xFFFFFFFF;
    for (unsigned resolution = levels + 1; resolution-- > 0;)
        forEachBand(resolution, [&](const DSubband& band) {
            if (!band.isEmpty) firstCodedResolution = resolution;
        });
}

template <class Input>
void DTileComp::ReadPacket(Input& input, unsigned resolution, const Point2D<unsigned>& precinct,
                           unsigned layer)
{
    if (resolution < firstCodedResolution) return;
    DCBWorkspace& workspace = *m_workspace;
    workspace.StartPacket();
    PHBitIn<Input> bits(input, workspace.sink);
    const bool isEmpty = !bits.Read();
    if (!isEmpty)
        forEachBand(resolution, [&](DSubband& band) { band.ReadPacketHeader(precinct, layer, bits); });
    bits.Flush(isEmpty);
    for (const DCBInclusion& i : workspace.included) i.block->DecodeLayer(i.layer, *i.band, input);
}

template void DTileComp::ReadPacket(MemoryBoundedInputBE& input, unsigned resolution,
                                    const Point2D<unsigned>& precinct, unsigned layer);

} // namespace jpeg2000
