#include "djp2cstile.h"
#include "boundedinput.h"
#include "postprocess.h"
#include "wtinv.h"

#include "qovs.h"

#include <limits>

namespace jpeg2000 {

namespace {

ImageCoreC<float, 1u> asFloat(const ImageCoreC<int, 1u>& image)
{
    return {reinterpret_cast<float*>(image.data), image.step};
}

void complement(const ImageC<int, 1u>& band)
{
    if (band.data) qoviComplement_32s_C1IR(band.data, static_cast<int>(band.step), band.size);
}

// From sign and magnitude to float, times the step of the quantiser. A row stays in the cache for all of it.
void dequantize(ImageC<int, 1u>& band, const QuantValue& quant, int dynamicRange, ImageC<float, 1u>& values)
{
    const auto delta = static_cast<float>(
        Min(stepOf(quant, dynamicRange), static_cast<double>(std::numeric_limits<float>::max())));
    const int width = static_cast<int>(band.size.width);
    for (unsigned y = 0; band.data && y < band.size.height; y++) {
        int* const row = band.row(y);
        auto* const converted = reinterpret_cast<float*>(row);
        qoviComplement_32s_C1IR(row, static_cast<int>(band.step), {width, 1});
        qovsConvert_32s32f_Sfs(row, converted, width, 0);
        if (delta != 1) qovsMulC_32f_I(delta, converted, width);
    }
    values.TakeStorage(band);
}

} // namespace

void DJP2CSTile::InitAttach(const DJP2CSMainHeader& header, unsigned index, BDiagnOutputPtr warnings,
                            DecodingBudget& memory)
{
    mainHeader = &header;
    sink = warnings;
    budget = &memory;
    const unsigned column = index % header.nOfTileColumns(), row = index / header.nOfTileColumns();
    // Corners are below 2^31 as the image's are, and so is the size.
    const Rect cell(header.tileGridOrigin.x + column * header.tileSize.width,
                    header.tileGridOrigin.y + row * header.tileSize.height, header.tileSize.width,
                    header.tileSize.height);
    rect = Intersection(cell, header.imageRect);
    if (rect.width == 0 || rect.height == 0) rect = {header.imageRect.x, header.imageRect.y, 0, 0};
}

Rect DJP2CSTile::ComponentRect(unsigned component) const
{
    const Point2D<unsigned> corner = mainHeader->ToComponentGrid(rect, component);
    const Point2D<unsigned> end =
        mainHeader->ToComponentGrid({rect.x + rect.width, rect.y + rect.height}, component);
    return {corner.x, corner.y, end.x - corner.x, end.y - corner.y};
}

template <class Input>
void DJP2CSTile::ReadPartHeader0(Input& input)
{
    header0.Read(input, *mainHeader, sink);
    if (header0.CodingStyleJoint().isSOP) fail<DJP2CSUnsuppException{0}>();
    if (header0.CodingStyleJoint().isEPH) fail<DJP2CSUnsuppException{1}>();
    CheckHeader0AndCSMainHeaderConformance();
    build();
}

void DJP2CSTile::CheckHeader0AndCSMainHeaderConformance()
{
    const unsigned nOfComponents = mainHeader->nOfComponents;
    const JP2CodingStyleJoint& joint = header0.CodingStyleJoint();
    budget->Take(nOfComponents * (sizeof(JP2CodingStyleComp*) + sizeof(QuantComponent)));
    codingStyles.Free();
    codingStyles.Alloc(nOfComponents);
    for (unsigned c = 0; c < nOfComponents; c++) codingStyles[c] = &header0.CodingStyleComp(c);

    isMCT = false;
    if (joint.isMCT) {
        if (nOfComponents < 3)
            warn<DJP2CSWarning{1}>(sink);
        else if (!areFirstTransformsEqual())
            warn<DJP2CSWarning{2}>(sink);
        else
            isMCT = true;
    }
    quants.Free();
    quants.Alloc(nOfComponents);
    for (unsigned c = 0; c < nOfComponents; c++) {
        const bool isTermAll = CBCodingStyle{codingStyles[c]->codeBlockStyle}.IsTermAll();
        if (joint.nOfLayers > 1 && !isTermAll) fail<DJP2CSUnsuppException{17}>();
        budget->Take(codingStyles[c]->nOfLevels * sizeof(QuantTriplet));
        header0.QuantComp(c).Conform(codingStyles[c]->nOfLevels, quants[c]);
    }
}

bool DJP2CSTile::areFirstTransformsEqual() const
{
    return codingStyles[0]->transform == codingStyles[1]->transform &&
           codingStyles[0]->transform == codingStyles[2]->transform;
}

// For everything that build() allocates.
void DJP2CSTile::reserveMemory(const Rect* componentRects)
{
    constexpr uint64_t maxNOfNodes = 1u << 22;
    constexpr uint64_t bytesPerResolution =
        sizeof(FixedArray2D<uint32_t>) + sizeof(unsigned); // of the iterator
    unsigned nOfResolutions = 0;
    uint64_t nOfNodes = 0;
    for (unsigned c = 0; c < mainHeader->nOfComponents; c++) {
        const DTileComp::Demand demand = DTileComp::DemandOf(componentRects[c], *codingStyles[c]);
        budget->Take(demand.bytes);
        nOfNodes += demand.nOfNodes;
        if (nOfNodes > maxNOfNodes) fail<MemoryException{0}>();
        nOfResolutions = Max(nOfResolutions, codingStyles[c]->nOfLevels + 1);
    }
    budget->Take(mainHeader->nOfComponents *
                 (sizeof(DTileComp) + sizeof(SBTree<int>) + nOfResolutions * bytesPerResolution));
}

void DJP2CSTile::build()
{
    const unsigned nOfComponents = mainHeader->nOfComponents;
    const JP2CodingStyleJoint& joint = header0.CodingStyleJoint();
    FixedBuffer<Rect> componentRects(nOfComponents);
    for (unsigned c = 0; c < nOfComponents; c++) componentRects[c] = ComponentRect(c);
    reserveMemory(componentRects);

    progrIterator.InitAttachStartProgrRangeTilePart0(rect, mainHeader->sampling.data, joint, codingStyles,
                                                     nOfComponents, header0.ProgrRanges(), budget);
    workspace.sink = sink;
    workspace.budget = budget;
    workspace.isOneLayer = joint.nOfLayers <= 1;
    components.Free();
    components.Alloc(nOfComponents);
    bands.Free();
    bands.Alloc(nOfComponents);
    for (unsigned c = 0; c < nOfComponents; c++) {
        const JP2CodingStyleComp& style = *codingStyles[c];
        AllocSBTree(componentRects[c], style.nOfLevels, bands[c]);
        components[c].Init(bands[c], componentRects[c],
                           static_cast<int>(mainHeader->bitsPerComp[c].BitDepth()), style.nOfLevels,
                           style.precinctSizeExp, style.codeBlockSizeExp, {style.codeBlockStyle},
                           static_cast<int>(header0.QuantComp(c).nOfGuardBits), quants[c], workspace);
    }
}

template <class Input>
bool DJP2CSTile::ReadPacket(Input& input)
{
    if (!progrIterator.isValid) return false;
    components[progrIterator.Component()].ReadPacket(
        input, progrIterator.Resolution(), {progrIterator.PrecinctColumn(), progrIterator.PrecinctRow()},
        progrIterator.Layer());
    progrIterator++;
    return true;
}

void DJP2CSTile::UpdateComponents(const ImageCoreC<int, 1u>* dst)
{
    if (!components) return;
    for (unsigned c = 0; c < mainHeader->nOfComponents; c++) WT(c, dst[c]);
    if (isMCT && isSampledAlike())
        MCT(dst[0], dst[1], dst[2]);
    else
        for (unsigned c = 0; c < mainHeader->nOfComponents; c++) postProcess(&dst[c], c, 1);
    components.Free();
    bands.Free();
}

// Three components with the same sampling factors: others keep their planes apart.
bool DJP2CSTile::isSampledAlike() const
{
    const RectSize* factors = mainHeader->sampling.data;
    bool isAlike = mainHeader->nOfComponents == 3;
    for (unsigned c = 1; isAlike && c < 3; c++)
        isAlike = factors[c].width == factors[0].width && factors[c].height == factors[0].height;
    return isAlike;
}

void DJP2CSTile::WT(unsigned component, const ImageCoreC<int, 1u>& dst)
{
    SBTree<int>& tree = bands[component];
    const Rect componentRect = ComponentRect(component);
    if (componentRect.width == 0 || componentRect.height == 0) return;
    if (isReversible(component)) {
        complement(tree.ll);
        for (unsigned i = 0; i < tree.nOfLevels; i++) {
            complement(tree.triplets[i].hl);
            complement(tree.triplets[i].lh);
            complement(tree.triplets[i].hh);
        }
        WT53Inv<int>(tree, dst, componentRect);
    } else {
        const QuantComponent& quant = quants[component];
        const int bits = static_cast<int>(mainHeader->bitsPerComp[component].BitDepth());
        const auto toFloat = [bits](ImageC<int, 1u>& band, const QuantValue& step, QoviWTSubband type,
                                    ImageC<float, 1u>& values) {
            dequantize(band, step, bits + bandGain(type), values);
        };
        SBTree<float> floats;
        floats.nOfLevels = tree.nOfLevels;
        floats.triplets.Alloc(tree.nOfLevels);
        toFloat(tree.ll, quant.ll, qoviWTSubbandLxLy, floats.ll);
        for (unsigned i = 0; i < tree.nOfLevels; i++) {
            SBTriplet<int>& from = tree.triplets[i];
            SBTriplet<float>& to = floats.triplets[i];
            toFloat(from.hl, quant.triplets[i].hl, qoviWTSubbandHxLy, to.hl);
            toFloat(from.lh, quant.triplets[i].lh, qoviWTSubbandLxHy, to.lh);
            toFloat(from.hh, quant.triplets[i].hh, qoviWTSubbandHxHy, to.hh);
        }
        WT97Inv<float>(floats, asFloat(dst), componentRect);
    }
    tree.triplets.Free();
    tree.nOfLevels = 0;
    tree.ll.Free();
}

void DJP2CSTile::MCT(const ImageCoreC<int, 1u>& c0, const ImageCoreC<int, 1u>& c1,
                     const ImageCoreC<int, 1u>& c2)
{
    const ImageCoreC<int, 1u> planes[] = {c0, c1, c2};
    postProcess(planes, 0, 3);
}

// Level shift and what belongs to it, for planes of one size: three of them with the component transform.
void DJP2CSTile::postProcess(const ImageCoreC<int, 1u>* planes, unsigned firstComponent, unsigned nOfPlanes)
{
    const Rect area = ComponentRect(firstComponent);
    if (area.width == 0 || area.height == 0) return;
    const JP2BitsPerComp* depths = &mainHeader->bitsPerComp[firstComponent];
    if (isReversible(firstComponent))
        PostProcessWT53<int>(planes, area, depths, nOfPlanes, nOfPlanes == 3);
    else
        PostProcessWT97_32f32s(planes, area, depths, nOfPlanes, nOfPlanes == 3);
}

template void DJP2CSTile::ReadPartHeader0(MemoryBoundedInputBE& input);
template bool DJP2CSTile::ReadPacket(MemoryBoundedInputBE& input);

} // namespace jpeg2000
