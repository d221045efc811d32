// An entry of a bitmap's palette, as it stands in the file.
#ifndef JPEG2000_DIBRGBVALUE_H
#define JPEG2000_DIBRGBVALUE_H

#include <cstdint>

namespace jpeg2000 {

struct DIBRGBValue {
    uint8_t blue, green, red;
};

// 256 greys.
inline void makeGreyRamp(DIBRGBValue (&palette)[256])
{
    for (int i = 0; i < 256; i++) {
        const auto grey = static_cast<uint8_t>(i);
        palette[i] = {grey, grey, grey};
    }
}

} // namespace jpeg2000

#endif
