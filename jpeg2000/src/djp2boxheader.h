// What the box "jp2h" of a JP2 file says about the image (ITU-T T.800, I.5.3).
#ifndef JPEG2000_DJP2BOXHEADER_H
#define JPEG2000_DJP2BOXHEADER_H

#include "diagn.h"
#include "fixedbuffer.h"
#include "geometry.h"
#include "jp2bitspercomp.h"
#include "jp2boxtype.h"

#include <cstdint>

namespace jpeg2000 {

struct DJP2BoxImageHeader {
    RectSize size; // not 0
    unsigned short nOfComponents = 0;
    JP2BitsPerComp bitsPerComp;
    bool isBPCValid = false; // without it the depths vary and "bpcc" tells them
    bool isColorspaceUnknown = false, isIPR = false;

    template <class Input>
    void Read(Input& input, BDiagnOutputPtr sink);
};

struct DJP2BoxColorSpec {
    static constexpr uint8_t enumerated = 1; // the only method that is read

    bool isUnknown = true; // none of those that are read, or no box at all
    uint32_t enumCS = static_cast<uint32_t>(JP2Colorspace::grey);
    uint8_t method = enumerated;

    template <class Input>
    void Read(Input& input, BDiagnOutputPtr sink);
};

struct DJP2BoxPalette {
    unsigned short nOfEntries = 0; // those that the box really has
    uint8_t nOfColumns = 0;
    FixedArray<JP2BitsPerComp> depths; // one a column
    FixedBuffer2D<long long> values;   // [column][entry]

    template <class Input>
    void Read(Input& input, BDiagnOutputPtr sink);
};

struct DJP2BoxComponentMapping {
    struct Channel {
        unsigned short component = 0;
        uint8_t mappingType = 0; // 0: the component as it is, 1: through a column of the palette
        uint8_t paletteColumn = 0;
        bool isPaletteMapped = false; // type 1, and the palette has the column
    };
    FixedArray<Channel> channels;

    unsigned nOfChannels() const { return channels.size; }
    template <class Input>
    void Read(Input& input);
};

// numerator / denominator * 10^exponent samples a metre.
struct JP2RefGridResolution {
    struct Axis {
        unsigned short numerator = 0, denominator = 0; // either may be 0 in a damaged file
        int8_t exponent = 0;
    };
    Axis vertical, horizontal;

    template <class Input>
    void Read(Input& input);
};

struct DJP2BoxHeader {
    DJP2BoxImageHeader imageHeader;
    FixedArray<JP2BitsPerComp> bitsPerComp;
    DJP2BoxColorSpec colorSpec;
    DJP2BoxPalette palette;
    DJP2BoxComponentMapping componentMapping;
    JP2RefGridResolution captureResolution, displayResolution;
    // What was found.
    bool isBitsPerComp = false, isColorSpec = false, isPalette = false, isComponentMapping = false;
    bool isCaptureResolution = false, isDisplayResolution = false;

    // The body of the box: to the end of the innermost limit.
    template <class Input>
    void Read(Input& input, BDiagnOutputPtr sink);

private:
    template <class Input>
    bool readSubBox(JP2BoxType type, Input& input, BDiagnOutputPtr sink);
    template <class Input>
    void readBitsPerComp(Input& input, BDiagnOutputPtr sink);
    template <class Input>
    void readResolutions(Input& input, BDiagnOutputPtr sink);
    void CheckPaletteMappingConformance(BDiagnOutputPtr sink);
    void CheckBitsPerCompConformance(BDiagnOutputPtr sink) const;
    void CheckColorSpecConformance(BDiagnOutputPtr sink) const;
};

} // namespace jpeg2000

#endif
