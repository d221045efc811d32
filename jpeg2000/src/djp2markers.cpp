#include "djp2markers.h"

#include "boundedinput.h"

#include "qovicodeblock.h"

namespace jpeg2000 {

namespace {

constexpr unsigned maxNOfLevels = 32, maxCodeBlockExp = 10, maxResolutionIndex = 33;

template <class Input>
unsigned readProgression(Input& input)
{
    const unsigned progression = input.Read8u();
    if (progression > 4) fail<DJP2MarkerException{3}>();
    return progression;
}

template <class Input>
unsigned readNOfLayers(Input& input, BDiagnOutputPtr sink)
{
    const unsigned nOfLayers = input.Read16u();
    if (nOfLayers == 0) warn<DJP2MarkerWarning{2}>(sink);
    return nOfLayers;
}

template <auto exception, class Input>
unsigned readCodeBlockExp(Input& input)
{
    const unsigned exponent = (input.Read8u() & 15u) + 2;
    if (exponent > maxCodeBlockExp) fail<exception>();
    return exponent;
}

int libraryFlags(unsigned codeBlockStyle)
{
    static constexpr int flagOfBit[6] = {qoviCodeStyleBypass,  qoviCodeStyleReset,    qoviCodeStyleTermAll,
                                         qoviCodeStyleVCausal, qoviCodeStylePredTerm, qoviCodeStyleSegSym};
    int flags = 0;
    for (unsigned bit = 0; bit < 6; bit++)
        if (codeBlockStyle >> bit & 1) flags |= flagOfBit[bit];
    return flags;
}

template <class Input>
void readPrecincts(Input& input, JP2CodingStyleComp& style, BDiagnOutputPtr sink)
{
    for (unsigned r = 0; r <= style.nOfLevels; r++) {
        const unsigned exponents = input.Read8u();
        const RectSize size{exponents & 15, exponents >> 4};
        if (r > 0 && size.width == 0) warn<DJP2MarkerWarning{0}>(sink);
        if (r > 0 && size.height == 0) warn<DJP2MarkerWarning{1}>(sink);
        style.precinctSizeExp[r] = size;
    }
}

template <class Input>
void ReadCodingStyle(Input& input, bool hasPrecincts, JP2CodingStyleComp& style, BDiagnOutputPtr sink)
{
    constexpr unsigned highThroughput = 0x40; // T.814: another block coder

    style.nOfLevels = input.Read8u();
    if (style.nOfLevels > maxNOfLevels) fail<DJP2MarkerException{4}>();
    style.precinctSizeExp.Free();
    style.precinctSizeExp.Alloc(style.nOfLevels + 1);
    style.codeBlockSizeExp.width = readCodeBlockExp<DJP2MarkerException{5}>(input);
    style.codeBlockSizeExp.height = readCodeBlockExp<DJP2MarkerException{6}>(input);
    const unsigned codeBlockStyle = input.Read8u();
    style.codeBlockStyle = libraryFlags(codeBlockStyle);
    style.transform = input.Read8u();
    if (style.transform > 1) fail<DJP2MarkerException{7}>();
    if (codeBlockStyle & highThroughput) fail<DJP2CSUnsuppException{7}>();
    if (hasPrecincts)
        readPrecincts(input, style, sink);
    else
        SetValue(RectSize{15, 15}, style.precinctSizeExp, style.nOfLevels + 1);
}

// An interval [from, to) of a POC, whose ends may reach beyond what there is.
template <auto exception>
ROpenInterval<unsigned> orderedInterval(unsigned from, unsigned to)
{
    if (to < from) fail<exception>();
    return {from, to - from};
}

template <class Input>
void ReadProgrRange(Input& input, unsigned nOfComponents, JP2ProgrRange& range, BDiagnOutputPtr sink)
{
    const unsigned firstResolution = input.Read8u();
    if (firstResolution > maxResolutionIndex) fail<DJP2MarkerException{8}>();
    // A start equal to the number of components passes: the interval has nothing then.
    const unsigned firstComponent = ReadMarkerCompIndex(input, nOfComponents);
    if (firstComponent > nOfComponents) fail<DJP2MarkerException{9}>();
    range.nOfLayers = readNOfLayers(input, sink);
    range.resolutions = orderedInterval<DJP2MarkerException{10}>(firstResolution, input.Read8u());
    unsigned behindComponents = ReadMarkerCompIndex(input, nOfComponents);
    if (behindComponents == 0) behindComponents = nOfComponents < 257 ? 256 : 16384;
    range.components = orderedInterval<DJP2MarkerException{11}>(firstComponent, behindComponents);
    range.progression = readProgression(input);
}

} // namespace

template <class Input>
void ReadCODBody(Input& input, JP2CodingStyleJoint& joint, JP2CodingStyleComp& style, BDiagnOutputPtr sink)
{
    const unsigned codingStyle = input.Read8u();
    joint.isSOP = (codingStyle & 2) != 0;
    joint.isEPH = (codingStyle & 4) != 0;
    joint.progression = readProgression(input);
    joint.nOfLayers = readNOfLayers(input, sink);
    const unsigned transform = input.Read8u();
    if (transform > 1) warn<DJP2MarkerWarning{6}>(sink);
    joint.isMCT = transform == 1;
    ReadCodingStyle(input, (codingStyle & 1) != 0, style, sink);
}

template <class Input>
void ReadCOCBody(Input& input, JP2CodingStyleComp& style, BDiagnOutputPtr sink)
{
    const bool hasPrecincts = (input.Read8u() & 1) != 0;
    ReadCodingStyle(input, hasPrecincts, style, sink);
}

template <class Input>
void ReadQCDBody(Input& input, DJP2QuantComp& quant, BDiagnOutputPtr sink)
{
    quant.Reset();
    quant.sink = sink;
    quant.Read(input);
}

template <class Input>
void ReadQCCBody(Input& input, DJP2QuantComp& quant, BDiagnOutputPtr sink)
{
    ReadQCDBody(input, quant, sink);
}

template <class Input>
void ReadPOCBody(Input& input, unsigned nOfComponents, FixedArray<JP2ProgrRange>& ranges,
                 BDiagnOutputPtr sink)
{
    const unsigned bytesPerEntry = nOfComponents < 257 ? 7 : 9;
    ranges.ReAlloc(input.bytesLeft() / bytesPerEntry);
    for (unsigned i = 0; i < ranges.size; i++) ReadProgrRange(input, nOfComponents, ranges[i], sink);
}

template void ReadCODBody(MemoryBoundedInputBE&, JP2CodingStyleJoint&, JP2CodingStyleComp&, BDiagnOutputPtr);
template void ReadCOCBody(MemoryBoundedInputBE&, JP2CodingStyleComp&, BDiagnOutputPtr);
template void ReadQCDBody(MemoryBoundedInputBE&, DJP2QuantComp&, BDiagnOutputPtr);
template void ReadQCCBody(MemoryBoundedInputBE&, DJP2QuantComp&, BDiagnOutputPtr);
template void ReadPOCBody(MemoryBoundedInputBE&, unsigned, FixedArray<JP2ProgrRange>&, BDiagnOutputPtr);

} // namespace jpeg2000
