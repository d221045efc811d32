// A subband of the encoder, cut into precincts.
#ifndef JPEG2000_ESUBBAND_H
#define JPEG2000_ESUBBAND_H

#include "eprecinct.h"

namespace jpeg2000 {

// Exponents of the sides at one resolution.
struct ExpPair {
    unsigned width = 0, height = 0;
};

class ESubband {
public:
    QoviWTSubband type = qoviWTSubbandLxLy;
    RulerPow2 xRuler, yRuler; // cut the band at the precinct grid
    unsigned nOfPrecincts = 0;
    FixedBuffer<EPrecinct> precincts;
    int dynamicRange = 0, shift = 0;

    // `exponent` is that of the band's quantiser step. The precinct exponents are not reduced by one at a
    // band, which shows only where a side is longer than 2^exponent.
    void Init(QoviWTSubband band, const Rect& rect, const ExpPair& precinctExp, const ExpPair& codeBlockExp,
              int componentRange, int exponent);
    void Encode(CBEncoder& encoder, const ImageCoreC<int, 1u>& samples);
    void ScaleDist(double weight);

    // Precincts beyond the band's own contribute nothing.
    template <class Output, class Body>
    void WriteToPacket(unsigned precinct, int layer, PHBitOut<Output>& bits, Body& body)
    {
        if (precinct < nOfPrecincts) precincts[precinct].WriteToPacket(layer, bits, body);
    }

    template <class F>
    void forEachPrecinct(F f)
    {
        for (unsigned i = 0; i < nOfPrecincts; i++) f(precincts[i]);
    }
};

} // namespace jpeg2000

#endif
