// A picture in memory as the commands pass it between files and codecs.
#ifndef TOOLS_PICTURE_H
#define TOOLS_PICTURE_H

#include <cstddef>
#include <string>

#include "failure.h"
#include "files.h"

struct Picture {
    int width = 0, height = 0;
    int channels = 0; // 1 grey, 3 RGB, 4 CMYK as stored
    int maxval = 255; // above 255 samples are 16-bit, in the host's order
    Bytes samples;    // interleaved; rows from the top, without gaps

    // Of the samples. Sizes that no honest picture has are refused before there is memory for them.
    static std::size_t bytesOf(long long width, long long height, int channels, int maxval)
    {
        constexpr long long largest = 1LL << 30;
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        if (width < 1 || height < 1) throw Failure("a picture of " + size);
        const long long pixelBytes = channels * (maxval > 255 ? 2 : 1);
        if (width > largest || height > largest / width / pixelBytes)
            throw Failure("a picture of " + size + " is too large: more than " + std::to_string(largest) +
                          " bytes of samples");
        return static_cast<std::size_t>(width * height * pixelBytes);
    }

    // All zero.
    static Picture make(long long width, long long height, int channels, int maxval)
    {
        Picture picture;
        picture.samples.resize(bytesOf(width, height, channels, maxval));
        picture.width = static_cast<int>(width);
        picture.height = static_cast<int>(height);
        picture.channels = channels;
        picture.maxval = maxval;
        return picture;
    }

    bool isWide() const { return maxval > 255; }
    std::size_t rowSamples() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    }
    std::size_t rowBytes() const { return rowSamples() * (isWide() ? 2 : 1); }
    unsigned char* row(int y) { return samples.data() + rowBytes() * static_cast<std::size_t>(y); }
    const unsigned char* row(int y) const
    {
        return samples.data() + rowBytes() * static_cast<std::size_t>(y);
    }
};

// Of what a file holds behind its header, refuses less than is needed.
inline void needBytes(std::size_t needed, std::size_t present)
{
    if (needed > present)
        throw Failure("the file ends early: " + std::to_string(present) + " of " + std::to_string(needed) +
                      " bytes of samples");
}

#endif
