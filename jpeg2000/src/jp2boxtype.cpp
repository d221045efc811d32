#include "jp2boxtype.h"

#include <algorithm>

namespace jpeg2000 {

JP2BoxType BoxType(unsigned code)
{
    using enum JP2BoxType;
    static constexpr JP2BoxType known[] = {signature,
                                           fileType,
                                           header,
                                           imageHeader,
                                           bitsPerComp,
                                           colorSpec,
                                           palette,
                                           compMapping,
                                           channelDef,
                                           resolution,
                                           captureResolution,
                                           displayResolution,
                                           codestream,
                                           intellectualProperty,
                                           xml,
                                           uuid,
                                           uuidInfo,
                                           uuidList,
                                           url};
    const JP2BoxType type{code};
    return std::ranges::find(known, type) != std::ranges::end(known) ? type : unknown;
}

} // namespace jpeg2000
