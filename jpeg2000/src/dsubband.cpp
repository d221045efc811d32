#include "dsubband.h"

namespace jpeg2000 {

namespace {

// Of the samples of a resolution along one axis, those of a band: all, the even or the odd ones.
struct BandAxis {
    unsigned order, rounding;

    BandAxis(bool isHalved, bool isHigh) : order(isHalved), rounding(isHalved && !isHigh) {}
    unsigned corner(unsigned position) const
    {
        return static_cast<unsigned>((0ull + position + rounding) >> order);
    }
    ROpenInterval<unsigned> carry(unsigned position, unsigned size) const
    {
        const unsigned begin = corner(position);
        return {begin, corner(position + size) - begin};
    }
};

} // namespace

void DSubband::Init(const ImageC<int, 1u>& image, const Rect& resolution, const DPartition& partition,
                    const DCBSubband& shared)
{
    common = shared;
    precincts.Free();
    nOfRows = nOfColumns = 0;
    isEmpty = image.size.width == 0 || image.size.height == 0;
    if (isEmpty) return;

    RulerPow2 columns, rows;
    columns.Init(resolution.x, resolution.width, partition.precinctExps.width);
    rows.Init(resolution.y, resolution.height, partition.precinctExps.height);
    const QoviWTSubband band = shared.subband;
    const bool isHalved = band != qoviWTSubbandLxLy;
    const BandAxis xAxis(isHalved, band == qoviWTSubbandHxLy || band == qoviWTSubbandHxHy);
    const BandAxis yAxis(isHalved, band == qoviWTSubbandLxHy || band == qoviWTSubbandHxHy);
    const Point2D<unsigned> corner{xAxis.corner(resolution.x), yAxis.corner(resolution.y)};

    precincts.Alloc(rows.nOfSegments, columns.nOfSegments);
    nOfRows = rows.nOfSegments;
    nOfColumns = columns.nOfSegments;
    for (unsigned row = 0, y = resolution.y; row < nOfRows; y += rows.SegmSize(row++)) {
        const ROpenInterval<unsigned> ys = yAxis.carry(y, rows.SegmSize(row));
        for (unsigned column = 0, x = resolution.x; column < nOfColumns; x += columns.SegmSize(column++)) {
            const ROpenInterval<unsigned> xs = xAxis.carry(x, columns.SegmSize(column));
            precincts[row][column].Init(image, corner, {xs.origin, ys.origin, xs.size, ys.size},
                                        partition.codeBlockExps, common.codeBlockStyle);
        }
    }
}

} // namespace jpeg2000
