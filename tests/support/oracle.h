// Pictures and other programs for tests that look at a stream from both sides: the photos that lie beside the
// project, programs run as filters, and how far two pictures are apart.
#ifndef TESTS_SUPPORT_ORACLE_H
#define TESTS_SUPPORT_ORACLE_H

#include <functional>
#include <string>
#include <vector>

struct Picture {
    int width = 0, height = 0;
    int channels = 0; // interleaved
    std::vector<unsigned char> samples;

    static Picture blank(int width, int height, int channels);
    unsigned char* at(int x, int y) { return &samples[static_cast<size_t>((y * width + x) * channels)]; }
    const unsigned char* at(int x, int y) const { return const_cast<Picture*>(this)->at(x, y); }

    Picture cropped(int left, int top, int newWidth, int newHeight) const;

    // Every pixel through `convert`, from the channels there are to `newChannels`.
    using PixelMap = std::function<void(const unsigned char* from, unsigned char* to)>;
    Picture mapped(int newChannels, const PixelMap& convert) const;
};

// An uncompressed bitmap file of 24 bits a pixel, as R, G, B.
Picture readBmp24(const std::string& path);

// Binary PGM and PPM of 8 bits. What cannot be read is a failure of the test and a picture of no size.
Picture parsePnm(const std::string& file);
std::string pnmOf(const Picture& picture);

bool haveProgram(const std::string& name);

// What the shell command writes to stdout for `input` on stdin. An exit code but 0 is a failure of the test.
std::string filter(const std::string& command, const std::string& input);

struct Distance {
    int most = 0;     // difference of any two samples
    double psnr = 99; // dB; 99 for equal pictures
};

// `leftOut` tells of pixels that do not count.
using PixelTest = std::function<bool(int x, int y)>;
Distance distance(const Picture& a, const Picture& b, const PixelTest& leftOut = nullptr);

#endif
