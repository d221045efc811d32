#include "djp2boxheader.h"

#include "boundedinput.h"
#include "djp2boxes.h"

namespace jpeg2000 {

namespace {

constexpr unsigned maxBitDepth = 38, maxNOfPaletteEntries = 1024;

// A flag of what was found. `row` tells of a second box of a kind, which replaces the first.
template <auto row>
void noteFound(bool& isFound, BDiagnOutputPtr sink)
{
    if (isFound) warn<row>(sink);
    isFound = true;
}

// A value of `depth` bits, stored in `nOfBytes`. Of long ones the low 64 bits stay.
template <class Input>
long long readPaletteValue(Input& input, const JP2BitsPerComp& depth, unsigned nOfBytes)
{
    uint64_t value = 0;
    for (unsigned i = 0; i < nOfBytes; i++) value = value << 8 | input.Read8u();
    const unsigned nOfBits = depth.BitDepth();
    if (!depth.IsSigned() || nOfBits >= 64) return static_cast<long long>(value);
    return static_cast<long long>(value << (64 - nOfBits)) >> (64 - nOfBits);
}

unsigned bytesOf(const JP2BitsPerComp& depth)
{
    return (depth.BitDepth() + 7) >> 3;
}

} // namespace

template <class Input>
void DJP2BoxImageHeader::Read(Input& input, BDiagnOutputPtr sink)
{
    constexpr unsigned depthsVary = 255, compressionType = 7;

    if (OpenBox(input, sink) != JP2BoxType::imageHeader) fail<DJP2BoxException{4}>();
    size.height = input.Read32u();
    size.width = input.Read32u();
    if (size.height == 0 || size.width == 0) fail<DJP2BoxException{5}>();
    nOfComponents = input.Read16u();
    if (nOfComponents == 0) fail<DJP2BoxException{6}>();
    bitsPerComp.value = input.Read8u();
    isBPCValid = bitsPerComp.value != depthsVary;
    if (isBPCValid && bitsPerComp.BitDepth() > maxBitDepth) warn<DJP2BoxWarning{10}>(sink);
    if (input.Read8u() != compressionType) fail<DJP2BoxException{7}>();
    const unsigned unknownColorspace = input.Read8u();
    if (unknownColorspace > 1) warn<DJP2BoxWarning{11}>(sink);
    isColorspaceUnknown = unknownColorspace != 0;
    isIPR = input.Read8u() != 0;
    CloseBox(input, sink);
}

// METH, PREC, APPROX, and EnumCS with the first method. What other methods have behind them is passed over.
template <class Input>
void DJP2BoxColorSpec::Read(Input& input, BDiagnOutputPtr sink)
{
    *this = {};
    method = input.Read8u();
    if (method != enumerated) {
        warn<DJP2BoxWarning{12}>(sink);
        SkipRest(input);
        return;
    }
    input.Read16u();
    const uint32_t value = input.Read32u();
    switch (JP2Colorspace{value}) {
    case JP2Colorspace::sRGB:
    case JP2Colorspace::grey:
    case JP2Colorspace::sYCC:
        isUnknown = false;
        enumCS = value;
        break;
    default: warn<DJP2BoxWarning{13}>(sink); break;
    }
}

template <class Input>
void DJP2BoxPalette::Read(Input& input, BDiagnOutputPtr sink)
{
    const unsigned nOfEntriesTold = input.Read16u();
    if (nOfEntriesTold == 0) warn<DJP2BoxWarning{16}>(sink);
    if (nOfEntriesTold > maxNOfPaletteEntries) warn<DJP2BoxWarning{17}>(sink);
    nOfColumns = input.Read8u();
    depths.ReAlloc(nOfColumns);
    unsigned bytesPerEntry = 0;
    for (unsigned i = 0; i < nOfColumns; i++) {
        depths[i].value = input.Read8u();
        if (depths[i].BitDepth() > maxBitDepth) warn<DJP2BoxWarning{14}>(sink);
        bytesPerEntry += bytesOf(depths[i]);
    }
    // Only what the box holds: storage grows with the file.
    nOfEntries = static_cast<unsigned short>(
        bytesPerEntry == 0 ? 0 : Min(nOfEntriesTold, input.bytesLeft() / bytesPerEntry));
    values.Free();
    values.Alloc(nOfColumns, nOfEntries);
    for (unsigned entry = 0; entry < nOfEntries; entry++)
        for (unsigned column = 0; column < nOfColumns; column++)
            values[column][entry] = readPaletteValue(input, depths[column], bytesOf(depths[column]));
}

template <class Input>
void DJP2BoxComponentMapping::Read(Input& input)
{
    channels.ReAlloc(input.bytesLeft() / 4);
    for (unsigned i = 0; i < channels.size; i++) {
        channels[i].component = input.Read16u();
        channels[i].mappingType = input.Read8u();
        channels[i].paletteColumn = input.Read8u();
    }
}

template <class Input>
void JP2RefGridResolution::Read(Input& input)
{
    for (Axis* axis : {&vertical, &horizontal}) {
        axis->numerator = input.Read16u();
        axis->denominator = input.Read16u();
    }
    vertical.exponent = input.Read8s();
    horizontal.exponent = input.Read8s();
}

template <class Input>
void DJP2BoxHeader::Read(Input& input, BDiagnOutputPtr sink)
{
    imageHeader.Read(input, sink);
    while (input.bytesLeft() > 0) {
        const JP2BoxType type = OpenBox(input, sink);
        if (readSubBox(type, input, sink)) {
            CloseBox(input, sink);
        } else {
            warn<DJP2BoxWarning{0}>(sink);
            SkipBox(input);
        }
    }
    CheckPaletteMappingConformance(sink);
    CheckBitsPerCompConformance(sink);
    CheckColorSpecConformance(sink);
}

// False for a box that has no place here.
template <class Input>
bool DJP2BoxHeader::readSubBox(JP2BoxType type, Input& input, BDiagnOutputPtr sink)
{
    switch (type) {
    case JP2BoxType::bitsPerComp:
        noteFound<DJP2BoxWarning{7}>(isBitsPerComp, sink);
        readBitsPerComp(input, sink);
        return true;
    case JP2BoxType::compMapping:
        noteFound<DJP2BoxWarning{5}>(isComponentMapping, sink);
        componentMapping.Read(input);
        return true;
    case JP2BoxType::colorSpec:
        noteFound<DJP2BoxWarning{6}>(isColorSpec, sink);
        colorSpec.Read(input, sink);
        return true;
    case JP2BoxType::palette:
        noteFound<DJP2BoxWarning{4}>(isPalette, sink);
        palette.Read(input, sink);
        return true;
    case JP2BoxType::resolution: readResolutions(input, sink); return true;
    default: return false;
    }
}

template <class Input>
void DJP2BoxHeader::readBitsPerComp(Input& input, BDiagnOutputPtr sink)
{
    bitsPerComp.ReAlloc(input.bytesLeft());
    for (unsigned i = 0; i < bitsPerComp.size; i++) {
        bitsPerComp[i].value = input.Read8u();
        if (bitsPerComp[i].BitDepth() > maxBitDepth) warn<DJP2BoxWarning{15}>(sink);
    }
}

template <class Input>
void DJP2BoxHeader::readResolutions(Input& input, BDiagnOutputPtr sink)
{
    while (input.bytesLeft() > 0) {
        const JP2BoxType type = OpenBox(input, sink);
        if (type == JP2BoxType::captureResolution) {
            noteFound<DJP2BoxWarning{8}>(isCaptureResolution, sink);
            captureResolution.Read(input);
            CloseBox(input, sink);
        } else if (type == JP2BoxType::displayResolution) {
            noteFound<DJP2BoxWarning{9}>(isDisplayResolution, sink);
            displayResolution.Read(input);
            CloseBox(input, sink);
        } else {
            warn<DJP2BoxWarning{1}>(sink);
            SkipBox(input);
        }
    }
}

void DJP2BoxHeader::CheckPaletteMappingConformance(BDiagnOutputPtr sink)
{
    if (isPalette && !isComponentMapping) warn<DJP2BoxWarning{24}>(sink);
    if (!isPalette && isComponentMapping) warn<DJP2BoxWarning{23}>(sink);
    if (!isPalette || !isComponentMapping) return;
    for (unsigned i = 0; i < componentMapping.nOfChannels(); i++) {
        DJP2BoxComponentMapping::Channel& channel = componentMapping.channels[i];
        if (channel.mappingType != 1)
            warn<DJP2BoxWarning{19}>(sink);
        else if (channel.paletteColumn >= palette.nOfColumns)
            warn<DJP2BoxWarning{18}>(sink);
        else
            channel.isPaletteMapped = true;
    }
}

void DJP2BoxHeader::CheckBitsPerCompConformance(BDiagnOutputPtr sink) const
{
    if (imageHeader.isBPCValid == !isBitsPerComp) return;
    bool isEqual = isBitsPerComp;
    for (unsigned i = 0; isEqual && i < bitsPerComp.size; i++)
        isEqual = bitsPerComp[i].value == imageHeader.bitsPerComp.value;
    if (isEqual)
        warn<DJP2BoxWarning{20}>(sink);
    else
        warn<DJP2BoxWarning{25}>(sink);
}

void DJP2BoxHeader::CheckColorSpecConformance(BDiagnOutputPtr sink) const
{
    if (colorSpec.isUnknown) return;
    if (colorSpec.method != DJP2BoxColorSpec::enumerated) {
        warn<DJP2BoxWarning{22}>(sink);
        return;
    }
    const unsigned nOfChannels =
        isPalette && isComponentMapping ? componentMapping.nOfChannels() : imageHeader.nOfComponents;
    const JP2Colorspace colorspace{colorSpec.enumCS};
    if ((colorspace == JP2Colorspace::sRGB && nOfChannels != 3) ||
        (colorspace == JP2Colorspace::grey && nOfChannels != 1))
        warn<DJP2BoxWarning{21}>(sink);
}

template void DJP2BoxHeader::Read(MemoryBoundedInputBE&, BDiagnOutputPtr);

} // namespace jpeg2000
