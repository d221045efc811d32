// The tile of the encoder: it covers the image, is built once, coded once, and walked by the packet writer.
#ifndef JPEG2000_ETILE_H
#define JPEG2000_ETILE_H

#include "etilecomp.h"
#include "memoryio.h"

namespace jpeg2000 {

class ETile {
public:
    FixedBuffer<ETileComp> components;
    int nOfComponents = 0;

    // Exponents are indexed [component][resolution].
    void Init(const Rect* componentRects, const FixedBuffer2D<int>& precinctWidthExp,
              const FixedBuffer2D<int>& precinctHeightExp, const FixedBuffer2D<int>& codeBlockWidthExp,
              const FixedBuffer2D<int>& codeBlockHeightExp, const int* dynamicRanges,
              const QuantComponent* quant, const int* nOfLevels, int componentCount);

    // Bring the distortion of all passes to the unit of the image's samples.
    void WeightDistAsWT53();
    void WeightDistAsWT97();
    void WeightDistAsRCT(); // three components
    void WeightDistAsICT();

    void SetCurPassToFirst();
    void CalcRDSlopes();
    // The largest double and 0 where no pass has a slope above 0.
    void RDSlopesMinMax(double& min, double& max);
    void AssignLayerTillCurPass(int layer, double slope);
    void AssignLayerTillCurPass(int layer);

    // Layer l takes the best passes whose packets take up to sizeLimits[l] bytes; 0x7fffffff takes all that
    // are left.
    void AssignLayers(const int* sizeLimits, int nOfLayers);

    void StoreEncodingState();
    void RestoreEncodingState();

    // The bytes of all packets of a layer. Changes what StoreEncodingState keeps.
    int PacketsLengthSimulate(int layer);

    int NOfResLevels(int component) const { return components[component].nOfLevels + 1; }
    int NOfPrecincts(int component, int resolution) const
    {
        return components[component].NOfPrecincts(resolution);
    }

    // One packet: the header to `header`, the bytes that follow it to `body`.
    template <class Output, class Body>
    void WritePacket(int component, int resolution, int precinct, int layer, Output& header, Body& body)
    {
        PHBitOut<Output> bits(header);
        components[component].WriteToPacket(resolution, static_cast<unsigned>(precinct), layer, bits, body);
        bits.Flush();
    }

private:
    template <class F>
    void forEachPrecinct(F f)
    {
        for (int c = 0; c < nOfComponents; c++) components[c].forEachPrecinct(f);
    }
    template <class F>
    void forEachCodeBlock(F f)
    {
        forEachPrecinct([&](EPrecinct& precinct) {
            for (unsigned i = 0; i < precinct.nOfCodeBlocks; i++) f(precinct.codeBlocks[i]);
        });
    }

    static const double m_rctDistWeights[3], m_ictDistWeights[3];
};

} // namespace jpeg2000

#endif
