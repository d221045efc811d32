// A small BMP file for runs that measure pictures of files.
#ifndef TESTS_CLI_BMPFILE_H
#define TESTS_CLI_BMPFILE_H

#include <string>

// 48x40 pixels that get lighter from corner to corner; 8 bits mean a grey palette.
inline std::string bmpOf(int bits)
{
    const int width = 48, height = 40, colors = bits == 8 ? 256 : 0;
    std::string file = "BM";
    const auto add = [&file](int value, int bytes) {
        for (; bytes > 0; bytes--, value >>= 8) file += static_cast<char>(value);
    };
    for (const int field : {0, 0, 54 + 4 * colors, 40, width, height, bits << 16 | 1, 0, 0, 0, 0, colors, 0})
        add(field, 4);
    for (int i = 0; i < colors; i++) add(i * 0x10101, 4);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) add((3 * x + 2 * y) * 0x10101, bits / 8);
    }
    return file;
}

#endif
