// A subband of the decoder, cut into precincts.
#ifndef JPEG2000_DSUBBAND_H
#define JPEG2000_DSUBBAND_H

#include "dprecinct.h"

namespace jpeg2000 {

// How the resolutions of a tile-component are cut.
struct DPartition {
    RectSize precinctExps, codeBlockExps;
};

// ITU-T T.800, E.1: the bits that a band's filters add to a component's.
constexpr int bandGain(QoviWTSubband band)
{
    return band == qoviWTSubbandLxLy ? 0 : band == qoviWTSubbandHxHy ? 2 : 1;
}

class DSubband {
public:
    bool isEmpty = true;
    unsigned nOfRows = 0, nOfColumns = 0;
    FixedBuffer2D<DPrecinct> precincts; // by row and column

    // Precincts are cut at `resolution`, the samples that the band is a part of, and carried into the band.
    void Init(const ImageC<int, 1u>& image, const Rect& resolution, const DPartition& partition,
              const DCBSubband& shared);

    // Precincts beyond the band's own have nothing in the packet.
    template <class Input>
    void ReadPacketHeader(const Point2D<unsigned>& precinct, unsigned layer, PHBitIn<Input>& bits)
    {
        if (precinct.x < nOfColumns && precinct.y < nOfRows)
            precincts[precinct.y][precinct.x].ReadPacketHeader(layer, common, bits);
    }

private:
    DCBSubband common;
};

} // namespace jpeg2000

#endif
