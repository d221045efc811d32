#include "oracle.h"

#include "support/tempfile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

Picture Picture::blank(int width, int height, int channels)
{
    return {width, height, channels,
            std::vector<unsigned char>(static_cast<size_t>(width * height * channels))};
}

Picture Picture::cropped(int left, int top, int newWidth, int newHeight) const
{
    Picture part = blank(newWidth, newHeight, channels);
    for (int y = 0; y < newHeight; y++)
        std::memcpy(part.at(0, y), at(left, top + y), static_cast<size_t>(newWidth * channels));
    return part;
}

Picture Picture::mapped(int newChannels, const PixelMap& convert) const
{
    Picture result = blank(width, height, newChannels);
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) convert(at(x, y), result.at(x, y));
    return result;
}

Picture readBmp24(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    const std::string file = text.str();
    auto word = [&](size_t at) { // little-endian
        int value = 0;
        for (size_t i = 4; i-- > 0;) value = value * 256 + static_cast<unsigned char>(file.at(at + i));
        return value;
    };
    const int start = word(10), width = word(18), height = word(22), bits = word(28);
    EXPECT_EQ(24, bits) << path;
    Picture picture = Picture::blank(width, height, 3);
    const int step = (width * 3 + 3) / 4 * 4;
    for (int y = 0; y < height; y++)
        for (int i = 0; i < width * 3; i++)
            picture.at(i / 3, height - 1 - y)[2 - i % 3] =
                static_cast<unsigned char>(file.at(static_cast<size_t>(start + y * step + i)));
    return picture;
}

Picture parsePnm(const std::string& file)
{
    std::istringstream in(file);
    std::string magic;
    in >> magic;
    const auto number = [&] {
        while ((in >> std::ws).peek() == '#') in.ignore(1 << 20, '\n');
        int n = 0;
        in >> n;
        return n;
    };
    const int width = number(), height = number(), maxval = number();
    in.ignore(1);
    if ((magic != "P5" && magic != "P6") || maxval != 255) {
        ADD_FAILURE() << "not a PNM file: " << file.substr(0, 16);
        return {};
    }
    Picture picture = Picture::blank(width, height, magic == "P6" ? 3 : 1);
    in.read(reinterpret_cast<char*>(picture.samples.data()),
            static_cast<std::streamsize>(picture.samples.size()));
    EXPECT_TRUE(in) << "a PNM file that ends early";
    return picture;
}

std::string pnmOf(const Picture& picture)
{
    return (picture.channels == 3 ? "P6\n" : "P5\n") + std::to_string(picture.width) + " " +
           std::to_string(picture.height) + "\n255\n" +
           std::string(picture.samples.begin(), picture.samples.end());
}

bool haveProgram(const std::string& name)
{
    return std::system(("command -v " + name + " >/dev/null").c_str()) == 0;
}

std::string filter(const std::string& command, const std::string& input)
{
    const TempFile in(input), out, errors;
    const int status = std::system(
        ("( " + command + " ) <'" + in.path() + "' >'" + out.path() + "' 2>'" + errors.path() + "'").c_str());
    EXPECT_EQ(0, status) << command << "\n" << errors.read();
    return out.read();
}

Distance distance(const Picture& a, const Picture& b, const PixelTest& leftOut)
{
    if (a.width != b.width || a.height != b.height || a.channels != b.channels) {
        ADD_FAILURE() << a.width << "x" << a.height << "x" << a.channels << " beside " << b.width << "x"
                      << b.height << "x" << b.channels;
        return {255, 0};
    }
    Distance d;
    double sum = 0, count = 0;
    for (int y = 0; y < a.height; y++)
        for (int x = 0; x < a.width; x++) {
            if (leftOut && leftOut(x, y)) continue;
            for (int c = 0; c < a.channels; c++, count++) {
                const int difference = a.at(x, y)[c] - b.at(x, y)[c];
                d.most = std::max(d.most, std::abs(difference));
                sum += difference * difference;
            }
        }
    EXPECT_GT(count, 0) << "nothing compared";
    if (sum > 0) d.psnr = 10 * std::log10(255.0 * 255.0 * count / sum);
    return d;
}
