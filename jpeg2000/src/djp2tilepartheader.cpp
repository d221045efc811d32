#include "djp2tilepartheader.h"

#include "boundedinput.h"
#include "djp2markers.h"

namespace jpeg2000 {

namespace {

// Segments up to SOD. `readOwn(marker)` reads those that the kind of header has of its own, and answers
// whether it is one of them.
template <class Input, class ReadOwn>
void readSegments(Input& input, BDiagnOutputPtr sink, ReadOwn readOwn)
{
    for (;;) {
        const JP2Marker marker = ReadMarker(input);
        if (marker == JP2Marker::SOD) return;
        ReadMarkerSegment(input, sink, [&] {
            if (readOwn(marker)) return true;
            switch (marker) {
            case JP2Marker::PLT: warn<DJP2CSWarning{23}>(sink); break;
            case JP2Marker::COM: warn<DJP2CSWarning{22}>(sink); break;
            case JP2Marker::PPM: fail<DJP2CSUnsuppException{2}>();
            case JP2Marker::PPT: fail<DJP2CSUnsuppException{3}>();
            default: warn<DJP2CSWarning{11}>(sink); break;
            }
            return false;
        });
    }
}

// A new one in place of what the map has for a component.
template <auto warning, class T>
T& createOverride(std::map<unsigned, T>& overrides, unsigned component, BDiagnOutputPtr sink)
{
    if (overrides.erase(component) > 0) warn<warning>(sink);
    return overrides[component];
}

template <auto warning, class T>
T& createOwn(OptionalRefValue<T>& value, BDiagnOutputPtr sink)
{
    if (value.IsOwn()) warn<warning>(sink);
    return value.CreateOwn();
}

// The component's own in the tile, the tile's, the one of the main header.
template <class T>
const T& resolve(const std::map<unsigned, T>& overrides, const OptionalRefValue<T>& tileDefault,
                 const OptionalSuperArray<T>& mainValues, unsigned component)
{
    const auto own = overrides.find(component);
    if (own != overrides.end()) return own->second;
    return tileDefault.IsOwn() ? tileDefault.Get() : mainValues[component].Get();
}

} // namespace

template <class Input>
void DJP2CSTilePartHeader0::Read(Input& input, const DJP2CSMainHeader& mainHeader, BDiagnOutputPtr sink)
{
    const unsigned nOfComponents = mainHeader.nOfComponents;
    m_mainHeader = &mainHeader;
    m_codingStyleJoint.SetRef(mainHeader.codingStyleJoint);
    m_progrRanges.SetRef(mainHeader.progrRanges);
    readSegments(input, sink, [&](JP2Marker marker) {
        switch (marker) {
        case JP2Marker::COD: {
            JP2CodingStyleComp& style = createOwn<DJP2CSWarning{12}>(m_codingStyleComp, sink);
            ReadCODBody(input, m_codingStyleJoint.CreateOwn(), style, sink);
            return true;
        }
        case JP2Marker::COC: {
            const unsigned index = ReadOverrideIndex<DJP2CSException{3}>(input, nOfComponents);
            ReadCOCBody(input, createOverride<DJP2CSWarning{14}>(m_codingStyleComps, index, sink), sink);
            return true;
        }
        case JP2Marker::QCD:
            ReadQCDBody(input, createOwn<DJP2CSWarning{13}>(m_quantComp, sink), sink);
            return true;
        case JP2Marker::QCC: {
            const unsigned index = ReadOverrideIndex<DJP2CSException{4}>(input, nOfComponents);
            ReadQCCBody(input, createOverride<DJP2CSWarning{15}>(m_quantComps, index, sink), sink);
            return true;
        }
        case JP2Marker::POC:
            ReadPOCBody(input, nOfComponents, createOwn<DJP2CSWarning{16}>(m_progrRanges, sink), sink);
            return true;
        default: return false;
        }
    });
}

const JP2CodingStyleComp& DJP2CSTilePartHeader0::CodingStyleComp(unsigned component) const
{
    return resolve(m_codingStyleComps, m_codingStyleComp, m_mainHeader->codingStyleComps, component);
}

const DJP2QuantComp& DJP2CSTilePartHeader0::QuantComp(unsigned component) const
{
    return resolve(m_quantComps, m_quantComp, m_mainHeader->quantComps, component);
}

template <class Input>
void DJP2CSTilePartHeaderN::Read(Input& input, unsigned nOfComponents, BDiagnOutputPtr sink)
{
    bool isPOC = false;
    readSegments(input, sink, [&](JP2Marker marker) {
        if (marker != JP2Marker::POC) return false;
        if (isPOC) warn<DJP2CSWarning{16}>(sink);
        isPOC = true;
        ReadPOCBody(input, nOfComponents, progrRanges, sink);
        return true;
    });
}

template void DJP2CSTilePartHeader0::Read(MemoryBoundedInputBE&, const DJP2CSMainHeader&, BDiagnOutputPtr);
template void DJP2CSTilePartHeaderN::Read(MemoryBoundedInputBE&, unsigned, BDiagnOutputPtr);

} // namespace jpeg2000
