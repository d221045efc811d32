#include "djp2codestream.h"

#include "boundedinput.h"
#include "djp2markers.h"

namespace jpeg2000 {

template <class Input>
bool DJP2Codestream<Input>::ReadMainHeader()
{
    m_tiles.Free();
    m_nOfTiles = 0;
    m_isLengthKnown = false;
    m_isMoreData = m_isSOTPending = mainHeader.Read(m_input, m_sink);
    if (!m_isMoreData) return false;
    const unsigned nOfTiles = mainHeader.nOfTileColumns() * mainHeader.nOfTileRows();
    budget.Take(nOfTiles * sizeof(DJP2CSTile));
    m_tiles.Alloc(nOfTiles);
    m_nOfTiles = nOfTiles;
    for (unsigned i = 0; i < nOfTiles; i++) m_tiles[i].InitAttach(mainHeader, i, m_sink, budget);
    return true;
}

template <class Input>
bool DJP2Codestream<Input>::ReadNextTilePartHeader()
{
    if (!m_isMoreData || !findSOT()) return false;
    // Psot counts from the first byte of the marker SOT to the end of the tile part.
    constexpr unsigned markerSize = 2;
    const uint32_t bytesLeftBehindMarker = m_input.bytesLeft();
    DJP2TilePartStart start;
    ReadMarkerSegment(m_input, m_sink, [&] {
        start = ReadSOTBody(m_input);
        return true;
    });
    if (start.tileIndex >= m_nOfTiles) fail<DJP2CSException{0}>();
    m_currentTile = start.tileIndex;
    checkTilePartIndex(start);
    readTilePartHeader();

    const uint32_t headerSize = markerSize + (bytesLeftBehindMarker - m_input.bytesLeft());
    m_isLengthKnown = start.length != 0;
    if (m_isLengthKnown && start.length < headerSize) {
        warn<DJP2CSWarning{26}>(m_sink);
        m_isLengthKnown = false;
    }
    m_tilePartBytesLeft = m_isLengthKnown ? start.length - headerSize : 0;
    return true;
}

// To the segment of the next SOT; false at EOC, which ends the codestream.
template <class Input>
bool DJP2Codestream<Input>::findSOT()
{
    if (m_isSOTPending) {
        m_isSOTPending = false;
        return true;
    }
    for (;;) {
        const JP2Marker marker = ReadMarker(m_input);
        if (marker == JP2Marker::SOT) return true;
        if (marker == JP2Marker::EOC) {
            m_isMoreData = false;
            return false;
        }
        ReadMarkerSegment(m_input, m_sink, [this] {
            warn<DJP2CSWarning{30}>(m_sink);
            return false;
        });
    }
}

// The stream's numbering of a tile's parts against ours, which stands.
template <class Input>
void DJP2Codestream<Input>::checkTilePartIndex(const DJP2TilePartStart& start)
{
    DJP2CSTile& tile = m_tiles[m_currentTile];
    if (start.partIndex != tile.tilePartIndex) warn<DJP2CSWarning{24}>(m_sink);
    if (start.nOfParts != 0 && tile.nOfTileParts != 0 && start.nOfParts != tile.nOfTileParts)
        warn<DJP2CSWarning{25}>(m_sink);
    tile.nOfTileParts = Max(tile.nOfTileParts, start.nOfParts);
    if (tile.nOfTileParts != 0 && tile.tilePartIndex >= tile.nOfTileParts) warn<DJP2CSWarning{29}>(m_sink);
}

template <class Input>
void DJP2Codestream<Input>::readTilePartHeader()
{
    DJP2CSTile& tile = m_tiles[m_currentTile];
    if (tile.tilePartIndex == 0) {
        // The tile's iterator has a copy of the main header's list; a list of the tile itself costs the
        // stream as much as it costs memory.
        budget.Take(mainHeader.progrRanges.size * sizeof(JP2ProgrRange));
        tile.ReadPartHeader0(m_input);
    } else {
        DJP2CSTilePartHeaderN header;
        header.Read(m_input, mainHeader.nOfComponents, m_sink);
        tile.progrIterator.AttachChangeProgrRangeTilePartN(header.progrRanges);
    }
    tile.tilePartIndex++;
}

template <class Input>
bool DJP2Codestream<Input>::ReadPacket()
{
    if (!m_isMoreData) return false;
    DJP2CSTile& tile = m_tiles[m_currentTile];
    if (!m_isLengthKnown) return tile.ReadPacket(m_input);
    if (m_tilePartBytesLeft == 0) return false;

    const uint32_t bytesLeft = m_input.bytesLeft();
    if (!tile.ReadPacket(m_input)) {
        warn<DJP2CSWarning{28}>(m_sink);
        m_input.PushSize(m_tilePartBytesLeft);
        m_input.PopSize();
        m_tilePartBytesLeft = 0;
        return false;
    }
    const uint32_t packetSize = bytesLeft - m_input.bytesLeft();
    if (packetSize > m_tilePartBytesLeft) {
        warn<DJP2CSWarning{27}>(m_sink);
        m_isLengthKnown = false;
    } else {
        m_tilePartBytesLeft -= packetSize;
    }
    return true;
}

template <class Input>
void DJP2Codestream<Input>::UpdateImageComponents(ImageComponents& components)
{
    const unsigned nOfComponents = mainHeader.nOfComponents;
    const Point2D<unsigned> imageOrigin = mainHeader.imageRect;
    FixedBuffer<ImageCoreC<int, 1u>> views(nOfComponents);
    for (unsigned i = 0; i < m_nOfTiles; i++) {
        DJP2CSTile& tile = m_tiles[i];
        if (tile.tilePartIndex == 0) continue;
        for (unsigned c = 0; c < nOfComponents; c++) {
            const Rect rect = tile.ComponentRect(c);
            const Point2D<unsigned> corner = rect - mainHeader.ToComponentGrid(imageOrigin, c);
            views[c] = {};
            if (rect.width > 0 && rect.height > 0) views[c] = components[c].at(corner.x, corner.y);
        }
        tile.UpdateComponents(views);
    }
}

template class DJP2Codestream<MemoryBoundedInputBE>;

} // namespace jpeg2000
