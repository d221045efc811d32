// A tile of the decoder: set up from the headers, fed packets, and at the end turned into samples.
#ifndef JPEG2000_DJP2CSTILE_H
#define JPEG2000_DJP2CSTILE_H

#include "djp2tilepartheader.h"
#include "dtilecomp.h"
#include "progriterator.h"

namespace jpeg2000 {

class DJP2CSTile {
public:
    Rect rect;                          // on the reference grid; without an area for a tile outside the image
    unsigned nOfTileParts = 0;          // as the stream tells; 0 while it does not
    unsigned tilePartIndex = 0;         // of the next tile part
    JP2TileProgrIterator progrIterator; // valid from the first tile part's header to the last packet
    bool isMCT = false;                 // the component transform is asked for and can be undone

    DJP2CSTile() = default;
    DJP2CSTile(const DJP2CSTile&) = delete;
    DJP2CSTile& operator=(const DJP2CSTile&) = delete;

    // Main header and budget outlive the tile. Nothing is allocated before the tile's first part.
    void InitAttach(const DJP2CSMainHeader& header, unsigned index, BDiagnOutputPtr warnings,
                    DecodingBudget& memory);

    // From behind the segment SOT to SOD; then the tile is ready for packets.
    template <class Input>
    void ReadPartHeader0(Input& input);

    // The next packet in the order of the progression; false when there is none.
    template <class Input>
    bool ReadPacket(Input& input);

    // What the tile covers of a component, on that component's grid.
    Rect ComponentRect(unsigned component) const;

    // The finished samples: dst[c] is the place of ComponentRect(c). Frees what was decoded. A tile of which
    // no part came leaves the samples as they are.
    void UpdateComponents(const ImageCoreC<int, 1u>* dst);

private:
    void CheckHeader0AndCSMainHeaderConformance();
    void build();
    void reserveMemory(const Rect* componentRects);

    // Inverse wavelet transform. With the irreversible one the samples in dst are float afterwards.
    void WT(unsigned component, const ImageCoreC<int, 1u>& dst);
    void MCT(const ImageCoreC<int, 1u>& c0, const ImageCoreC<int, 1u>& c1, const ImageCoreC<int, 1u>& c2);
    void postProcess(const ImageCoreC<int, 1u>* planes, unsigned firstComponent, unsigned nOfPlanes);
    bool isReversible(unsigned component) const { return codingStyles[component]->transform == 1; }
    bool areFirstTransformsEqual() const;
    bool isSampledAlike() const;

    const DJP2CSMainHeader* mainHeader = nullptr;
    BDiagnOutputPtr sink;
    DecodingBudget* budget = nullptr;
    DJP2CSTilePartHeader0 header0;
    FixedBuffer<const JP2CodingStyleComp*> codingStyles; // by component, as they are in effect
    FixedBuffer<QuantComponent> quants;
    FixedBuffer<DTileComp> components;
    FixedBuffer<SBTree<int>> bands;
    DCBWorkspace workspace;
};

} // namespace jpeg2000

#endif
