#include "jp2marker.h"

#include <algorithm>

namespace jpeg2000 {

JP2Marker MarkerType(unsigned short value)
{
    using enum JP2Marker;
    static constexpr JP2Marker known[] = {SOC, SIZ, COD, COC, TLM, PLM, PLT, QCD, QCC, RGN,
                                          POC, PPM, PPT, CRG, COM, SOT, SOP, EPH, SOD, EOC};
    const JP2Marker marker{value};
    return std::ranges::find(known, marker) != std::ranges::end(known) ? marker : unknown;
}

} // namespace jpeg2000
