#include "djp2csmainheader.h"

#include "boundedinput.h"
#include "djp2markers.h"

namespace jpeg2000 {

namespace {

unsigned ceilDiv(unsigned value, unsigned divisor)
{
    return static_cast<unsigned>((1ull * value + divisor - 1) / divisor);
}

// A corner or a size on the reference grid. Those beyond 31 bits are refused.
template <class Input>
unsigned readGeometry(Input& input)
{
    const unsigned value = input.Read32u();
    if (value >> 31) fail<DJP2MarkerException{1}>();
    return value;
}

template <class Point, class Input>
Point readGeometryPair(Input& input)
{
    const unsigned horizontal = readGeometry(input);
    return {horizontal, readGeometry(input)};
}

} // namespace

unsigned DJP2CSMainHeader::nOfTileColumns() const
{
    return ceilDiv(imageRect.x + imageRect.width - tileGridOrigin.x, tileSize.width);
}

unsigned DJP2CSMainHeader::nOfTileRows() const
{
    return ceilDiv(imageRect.y + imageRect.height - tileGridOrigin.y, tileSize.height);
}

Point2D<unsigned> DJP2CSMainHeader::ToComponentGrid(const Point2D<unsigned>& point, unsigned component) const
{
    return {ceilDiv(point.x, sampling[component].width), ceilDiv(point.y, sampling[component].height)};
}

void DJP2CSMainHeader::Reset()
{
    imageRect = {};
    tileGridOrigin = {};
    tileSize = {};
    nOfComponents = 0;
    bitsPerComp.ReAlloc(0);
    sampling.ReAlloc(0);
    codingStyleJoint = {};
    codingStyleComps.ReAlloc(0);
    quantComps.ReAlloc(0);
    codingStyleComp = {};
    quantComp.Reset();
    progrRanges.ReAlloc(0);
    isCODMissing = isQCDMissing = true;
}

template <class Input>
bool DJP2CSMainHeader::Read(Input& input, BDiagnOutputPtr sink)
{
    Reset();
    if (ReadMarker(input) != JP2Marker::SOC) fail<DJP2CSException{1}>();
    if (ReadMarker(input) != JP2Marker::SIZ) fail<DJP2CSException{2}>();
    ReadMarkerSegment(input, sink, [&] {
        ReadSIZBody(input, sink);
        return true;
    });
    codingStyleComps.ReAlloc(nOfComponents + 1u);
    quantComps.ReAlloc(nOfComponents + 1u);
    for (unsigned c = 0; c <= nOfComponents; c++) {
        codingStyleComps[c].SetRef(codingStyleComp);
        quantComps[c].SetRef(quantComp);
    }
    if (!readSegments(input, sink)) return false;
    if (isCODMissing) fail<DJP2CSException{5}>();
    if (isQCDMissing) fail<DJP2CSException{6}>();
    checkTileGrid();
    return true;
}

template <class Input>
void DJP2CSMainHeader::ReadSIZBody(Input& input, BDiagnOutputPtr sink)
{
    if (input.Read16u() != 0) warn<DJP2MarkerWarning{3}>(sink);
    const auto imageEnd = readGeometryPair<Point2D<unsigned>>(input);
    const auto imageOrigin = readGeometryPair<Point2D<unsigned>>(input);
    tileSize = readGeometryPair<RectSize>(input);
    tileGridOrigin = readGeometryPair<Point2D<unsigned>>(input);
    if (imageOrigin.x >= imageEnd.x || imageOrigin.y >= imageEnd.y) fail<DJP2MarkerException{2}>();
    if (tileGridOrigin.x > imageOrigin.x || tileGridOrigin.y > imageOrigin.y)
        warn<DJP2MarkerWarning{4}>(sink);
    imageRect = {imageOrigin.x, imageOrigin.y, imageEnd.x - imageOrigin.x, imageEnd.y - imageOrigin.y};

    nOfComponents = input.Read16u();
    if (nOfComponents == 0) fail<DJP2MarkerException{2}>();
    bitsPerComp.ReAlloc(nOfComponents);
    sampling.ReAlloc(nOfComponents);
    for (unsigned c = 0; c < nOfComponents; c++) {
        bitsPerComp[c].value = input.Read8u();
        if (bitsPerComp[c].BitDepth() > 38) warn<DJP2MarkerWarning{5}>(sink);
        const unsigned horizontal = input.Read8u();
        sampling[c] = {horizontal, input.Read8u()};
        if (sampling[c].width == 0 || sampling[c].height == 0) fail<DJP2MarkerException{1}>();
    }
}

// Told apart from SIZ: what is wrong in the segments behind it comes first.
void DJP2CSMainHeader::checkTileGrid() const
{
    constexpr unsigned maxNOfTiles = 65535;
    const bool isGrid = tileSize.width > 0 && tileSize.height > 0 &&
                        tileGridOrigin.x < imageRect.x + imageRect.width &&
                        tileGridOrigin.y < imageRect.y + imageRect.height;
    if (!isGrid || 1ull * nOfTileColumns() * nOfTileRows() > maxNOfTiles) fail<DJP2MarkerException{1}>();
}

// False at EOC.
template <class Input>
bool DJP2CSMainHeader::readSegments(Input& input, BDiagnOutputPtr sink)
{
    bool isPOC = false;
    for (;;) {
        const JP2Marker marker = ReadMarker(input);
        if (marker == JP2Marker::SOT) return true;
        if (marker == JP2Marker::EOC) {
            warn<DJP2CSWarning{10}>(sink);
            return false;
        }
        ReadMarkerSegment(input, sink, [&] {
            switch (marker) {
            case JP2Marker::COD:
                if (!isCODMissing) warn<DJP2CSWarning{5}>(sink);
                isCODMissing = false;
                ReadCODBody(input, codingStyleJoint, codingStyleComp, sink);
                return true;
            case JP2Marker::COC: {
                auto& style = codingStyleComps[ReadOverrideIndex<DJP2CSException{3}>(input, nOfComponents)];
                if (style.IsOwn()) warn<DJP2CSWarning{7}>(sink);
                ReadCOCBody(input, style.CreateOwn(), sink);
                return true;
            }
            case JP2Marker::QCD:
                if (!isQCDMissing) warn<DJP2CSWarning{6}>(sink);
                isQCDMissing = false;
                ReadQCDBody(input, quantComp, sink);
                return true;
            case JP2Marker::QCC: {
                auto& quant = quantComps[ReadOverrideIndex<DJP2CSException{4}>(input, nOfComponents)];
                if (quant.IsOwn()) warn<DJP2CSWarning{8}>(sink);
                ReadQCCBody(input, quant.CreateOwn(), sink);
                return true;
            }
            case JP2Marker::POC:
                if (isPOC) warn<DJP2CSWarning{9}>(sink);
                isPOC = true;
                ReadPOCBody(input, nOfComponents, progrRanges, sink);
                return true;
            case JP2Marker::TLM: warn<DJP2CSWarning{19}>(sink); return false;
            case JP2Marker::PLM: warn<DJP2CSWarning{20}>(sink); return false;
            case JP2Marker::CRG: warn<DJP2CSWarning{21}>(sink); return false;
            case JP2Marker::COM: warn<DJP2CSWarning{22}>(sink); return false;
            case JP2Marker::RGN: fail<DJP2CSUnsuppException{4}>();
            case JP2Marker::PPM: fail<DJP2CSUnsuppException{2}>();
            default: warn<DJP2CSWarning{4}>(sink); return false;
            }
        });
    }
}

template bool DJP2CSMainHeader::Read(MemoryBoundedInputBE&, BDiagnOutputPtr);

} // namespace jpeg2000
