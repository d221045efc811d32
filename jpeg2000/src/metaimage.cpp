#include "metaimage.h"

#include <cmath>

namespace jpeg2000 {

namespace {

// The samples from `origin` to `origin + size` that lie on every `step`th place.
unsigned nOfSamples(unsigned origin, unsigned size, unsigned step)
{
    const auto before = [step](uint64_t end) { return (end + step - 1) / step; };
    return static_cast<unsigned>(before(uint64_t{origin} + size) - before(origin));
}

MRstrImageDepth depthOf(JP2BitsPerComp bits)
{
    return {bits.BitDepth(), bits.IsSigned()};
}

// Samples a metre; 0 for what is no number.
double valueOf(const JP2RefGridResolution::Axis& axis)
{
    return axis.denominator == 0 ? 0 : 1.0 * axis.numerator / axis.denominator * std::pow(10, axis.exponent);
}

MRstrImageResolution resolutionOf(bool isFound, const JP2RefGridResolution& resolution)
{
    if (!isFound) return {};
    return {true, valueOf(resolution.horizontal), valueOf(resolution.vertical)};
}

} // namespace

void ReAllocMetaImageComponents(const DJP2CSMainHeader& header, DecodingBudget& budget,
                                ImageComponents& components)
{
    FixedBuffer<RectSize> sizes(header.nOfComponents);
    for (unsigned i = 0; i < header.nOfComponents; i++) {
        const Rect& image = header.imageRect;
        const RectSize& step = header.sampling[i];
        sizes[i] = {nOfSamples(image.x, image.width, step.width),
                    nOfSamples(image.y, image.height, step.height)};
        budget.Take(planeNOfBytes(sizes[i]));
    }
    components.ReAlloc(header.nOfComponents);
    for (unsigned i = 0; i < components.size; i++) {
        ImageComponent& component = components[i];
        component.Alloc(sizes[i].width, sizes[i].height);
        if (!component.data) continue;
        for (unsigned y = 0; y < sizes[i].height; y++) Zero(component.row(y), sizes[i].width);
    }
}

void SetMRstrImageSizeAndDepths(const DJP2CSMainHeader& header, MRstrImage& image)
{
    image.size = header.imageRect;
    image.nOfComponents = header.nOfComponents;
    image.depths.Free();
    image.depths.Alloc(header.nOfComponents);
    for (unsigned i = 0; i < header.nOfComponents; i++) image.depths[i] = depthOf(header.bitsPerComp[i]);
}

void SetMRstrImageResolution(const DJP2BoxHeader& header, MRstrImage& image)
{
    image.captureResolution = resolutionOf(header.isCaptureResolution, header.captureResolution);
    image.displayResolution = resolutionOf(header.isDisplayResolution, header.displayResolution);
}

void SetMRstrImagePalette(const DJP2BoxHeader& header, MRstrImage& image)
{
    const DJP2BoxPalette& box = header.palette;
    const FixedArray<DJP2BoxComponentMapping::Channel>& channels = header.componentMapping.channels;
    MRstrImagePalette& palette = image.palette;
    palette.depths.Free();
    palette.values.Free();
    palette.nOfColumns = 0;
    palette.nOfEntries = box.nOfEntries;
    palette.depths.Alloc(box.nOfColumns);
    palette.values.Alloc(box.nOfColumns, box.nOfEntries);
    // A column serves one channel: so a mapping, however long, takes no more memory than the palette.
    for (unsigned i = 0; i < channels.size && palette.nOfColumns < box.nOfColumns; i++) {
        const DJP2BoxComponentMapping::Channel& channel = channels[i];
        if (!channel.isPaletteMapped) continue;
        if (palette.nOfColumns == 0) palette.componentIndex = channel.component;
        if (channel.component != palette.componentIndex) continue;
        palette.depths[palette.nOfColumns] = depthOf(box.depths[channel.paletteColumn]);
        Copy(box.values[channel.paletteColumn], palette.values[palette.nOfColumns], palette.nOfEntries);
        palette.nOfColumns++;
    }
    palette.isPalettized = header.isPalette && palette.nOfEntries > 0 && palette.nOfColumns > 0 &&
                           palette.componentIndex < image.nOfComponents;
}

} // namespace jpeg2000
