// A codestream, read piece by piece: main header, tile-part headers, packets; then the samples of all tiles.
#ifndef JPEG2000_DJP2CODESTREAM_H
#define JPEG2000_DJP2CODESTREAM_H

#include "djp2csmainheader.h"
#include "djp2cstile.h"
#include "djp2markers.h"
#include "mrstrimage.h"

namespace jpeg2000 {

template <class Input>
class DJP2Codestream {
public:
    DJP2CSMainHeader mainHeader;
    // Of all codestreams of a file together, which bounds the time that it can take too. The image takes its
    // samples from it as well.
    DecodingBudget budget;

    // Both outlive this.
    DJP2Codestream(Input& codestreamInput, BDiagnOutput& sink) : m_input(codestreamInput), m_sink(sink) {}
    DJP2Codestream(const DJP2Codestream&) = delete;
    DJP2Codestream& operator=(const DJP2Codestream&) = delete;

    // Forgets an earlier codestream. False for a header without any tile.
    bool ReadMainHeader();
    // False at the end of the codestream.
    bool ReadNextTilePartHeader();
    // One packet of the current tile part; false when it has no more.
    bool ReadPacket();
    // Tiles of which no header came leave their samples as they are. Component c of the image has the size of
    // the image on the component's grid.
    void UpdateImageComponents(ImageComponents& components);

private:
    bool findSOT();
    void checkTilePartIndex(const DJP2TilePartStart& start);
    void readTilePartHeader();

    Input& m_input;
    BDiagnOutput& m_sink;
    unsigned m_nOfTiles = 0;
    FixedBuffer<DJP2CSTile> m_tiles;
    unsigned m_currentTile = 0;
    uint32_t m_tilePartBytesLeft = 0;
    bool m_isLengthKnown = false, m_isMoreData = false, m_isSOTPending = false;
};

} // namespace jpeg2000

#endif
