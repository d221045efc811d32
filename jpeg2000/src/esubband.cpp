#include "esubband.h"

namespace jpeg2000 {

void ESubband::Init(QoviWTSubband band, const Rect& rect, const ExpPair& precinctExp,
                    const ExpPair& codeBlockExp, int componentRange, int exponent)
{
    static constexpr int gains[] = {0, 1, 1, 2}; // in the order of QoviWTSubband
    type = band;
    dynamicRange = componentRange + gains[band];
    shift = dynamicRange - exponent;
    xRuler.Init(rect.x, rect.width, precinctExp.width);
    yRuler.Init(rect.y, rect.height, precinctExp.height);
    nOfPrecincts = xRuler.nOfSegments * yRuler.nOfSegments;
    precincts.Free();
    precincts.Alloc(nOfPrecincts);
    unsigned i = 0;
    for (unsigned row = 0, y = rect.y; row < yRuler.nOfSegments; y += yRuler.SegmSize(row++))
        for (unsigned column = 0, x = rect.x; column < xRuler.nOfSegments; x += xRuler.SegmSize(column++))
            precincts[i++].Init({x, y, xRuler.SegmSize(column), yRuler.SegmSize(row)}, codeBlockExp.width,
                                codeBlockExp.height);
}

void ESubband::Encode(CBEncoder& encoder, const ImageCoreC<int, 1u>& samples)
{
    unsigned i = 0;
    for (unsigned row = 0, y = 0; row < yRuler.nOfSegments; y += yRuler.SegmSize(row++))
        for (unsigned column = 0, x = 0; column < xRuler.nOfSegments; x += xRuler.SegmSize(column++))
            precincts[i++].Encode(encoder, samples.at(x, y), type, dynamicRange, shift);
}

void ESubband::ScaleDist(double weight)
{
    forEachPrecinct([&](EPrecinct& precinct) {
        for (unsigned i = 0; i < precinct.nOfCodeBlocks; i++) precinct.codeBlocks[i].ScaleDist(weight);
    });
}

} // namespace jpeg2000
