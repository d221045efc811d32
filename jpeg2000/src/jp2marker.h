// Markers of a codestream (ITU-T T.800, table A.2).
#ifndef JPEG2000_JP2MARKER_H
#define JPEG2000_JP2MARKER_H

#include <cstdint>

namespace jpeg2000 {

enum class JP2Marker : uint16_t {
    SOC = 0xFF4F,
    SIZ = 0xFF51,
    COD = 0xFF52,
    COC = 0xFF53,
    TLM = 0xFF55,
    PLM = 0xFF57,
    PLT = 0xFF58,
    QCD = 0xFF5C,
    QCC = 0xFF5D,
    RGN = 0xFF5E,
    POC = 0xFF5F,
    PPM = 0xFF60,
    PPT = 0xFF61,
    CRG = 0xFF63,
    COM = 0xFF64,
    SOT = 0xFF90,
    SOP = 0xFF91,
    EPH = 0xFF92,
    SOD = 0xFF93,
    EOC = 0xFFD9,
    unknown = 0xFFFF
};

// The marker of a value read from a stream; `unknown` for every other one.
JP2Marker MarkerType(unsigned short value);

} // namespace jpeg2000

#endif
