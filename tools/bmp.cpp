#include "bmp.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

namespace {
constexpr size_t fileHeaderBytes = 14;
constexpr size_t infoHeaderBytes = 40;
constexpr size_t headerBytes = fileHeaderBytes + infoHeaderBytes;
constexpr uint32_t uncompressed = 0;
constexpr uint32_t masked = 3; // three bit masks follow the header

uint32_t get16(const Bytes& file, size_t at)
{
    return static_cast<uint32_t>(file[at] | file[at + 1] << 8);
}

uint32_t get32(const Bytes& file, size_t at)
{
    return get16(file, at) | get16(file, at + 2) << 16;
}

[[noreturn]] void refuse(const char* field, long long value)
{
    throw Failure(std::string("the bitmap's ") + field + " " + std::to_string(value) + " is not supported");
}

typedef std::array<std::array<unsigned char, 3>, 256> Palette; // R, G, B; black where the file has none

struct Bitmap {
    long long width, height;
    bool topDown;
    int bits;
    size_t offset; // of the samples
    size_t step;   // bytes from row to row, a multiple of 4
    Palette palette = {};
    bool grey = false; // the palette has nothing but greys

    explicit Bitmap(const Bytes& file)
    {
        if (file.size() < headerBytes) throw Failure("the file ends inside the bitmap's header");
        const uint32_t infoBytes = get32(file, 14);
        if (infoBytes < infoHeaderBytes || infoBytes > file.size() - fileHeaderBytes)
            refuse("header size", infoBytes);
        width = static_cast<int32_t>(get32(file, 18));
        const auto signedHeight = static_cast<int32_t>(get32(file, 22));
        topDown = signedHeight < 0;
        height = std::abs(static_cast<long long>(signedHeight));
        if (width < 1) refuse("width", width);
        if (height < 1) refuse("height", height);
        if (get16(file, 26) != 1) refuse("number of planes", get16(file, 26));
        bits = static_cast<int>(get16(file, 28));
        if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) refuse("bit count", bits);
        checkCompression(file);
        offset = get32(file, 10);
        if (offset < headerBytes || offset > file.size()) refuse("offset of the samples", get32(file, 10));
        if (bits <= 8) readPalette(file, fileHeaderBytes + infoBytes);
    }

    int channels() const { return grey ? 1 : 3; }

    // The padding of the last row may be missing.
    void needSamples(const Bytes& file)
    {
        Picture::bytesOf(width, height, channels(), 255);
        const long long rowBits = width * bits;
        step = static_cast<size_t>((rowBits + 31) / 32 * 4);
        const auto rows = static_cast<size_t>(height);
        needBytes(step * (rows - 1) + static_cast<size_t>((rowBits + 7) / 8), file.size() - offset);
    }

private:
    void checkCompression(const Bytes& file) const
    {
        const uint32_t compression = get32(file, 30);
        if (compression == uncompressed) return;
        if (compression != masked || bits != 32) refuse("compression", compression);
        if (file.size() < headerBytes + 12) throw Failure("the file ends inside the bitmap's header");
        for (size_t i = 0; i < 3; i++)
            if (get32(file, headerBytes + 4 * i) != 0xFF0000u >> 8 * i)
                refuse("colour mask", get32(file, headerBytes + 4 * i));
    }

    void readPalette(const Bytes& file, size_t at)
    {
        const uint32_t most = 1u << bits;
        const uint32_t used = get32(file, 46);
        if (used > most) refuse("number of colours", used);
        const uint32_t count = used ? used : most;
        if (file.size() - at < 4 * count) throw Failure("the file ends inside the bitmap's palette");
        grey = true;
        for (uint32_t i = 0; i < count; i++, at += 4) {
            palette[i] = {file[at + 2], file[at + 1], file[at]};
            grey = grey && file[at] == file[at + 1] && file[at] == file[at + 2];
        }
    }
};

void readRow(const Bitmap& bitmap, const unsigned char* src, unsigned char* dst)
{
    const auto width = static_cast<size_t>(bitmap.width);
    if (bitmap.bits > 8) {
        const size_t pixel = static_cast<size_t>(bitmap.bits) / 8;
        for (size_t x = 0; x < width; x++, src += pixel, dst += 3)
            dst[0] = src[2], dst[1] = src[1], dst[2] = src[0];
        return;
    }
    const auto bits = static_cast<size_t>(bitmap.bits);
    const size_t channels = static_cast<size_t>(bitmap.channels());
    for (size_t x = 0; x < width; x++, dst += channels) {
        const size_t fromRight = 8 - bits - x * bits % 8; // the leftmost pixel has the highest bits
        const size_t index = src[x * bits / 8] >> fromRight & ((1u << bits) - 1);
        std::copy_n(bitmap.palette[index].begin(), channels, dst);
    }
}

void put16(Bytes& bytes, unsigned value)
{
    bytes.push_back(static_cast<unsigned char>(value));
    bytes.push_back(static_cast<unsigned char>(value >> 8));
}

void put32(Bytes& bytes, size_t value)
{
    put16(bytes, static_cast<unsigned>(value & 0xFFFF));
    put16(bytes, static_cast<unsigned>(value >> 16 & 0xFFFF));
}
} // namespace

bool isBmp(const Bytes& file)
{
    return file.size() >= 2 && file[0] == 'B' && file[1] == 'M';
}

Picture readBmp(const Bytes& file)
{
    Bitmap bitmap(file);
    bitmap.needSamples(file);
    Picture picture = Picture::make(bitmap.width, bitmap.height, bitmap.channels(), 255);
    const unsigned char* src = file.data() + bitmap.offset;
    for (int y = 0; y < picture.height; y++, src += bitmap.step)
        readRow(bitmap, src, picture.row(bitmap.topDown ? y : picture.height - 1 - y));
    return picture;
}

void writeBmp(OutputFile& out, const Picture& picture)
{
    const bool grey = picture.channels == 1;
    const size_t paletteBytes = grey ? 256 * 4 : 0;
    const size_t offset = headerBytes + paletteBytes;
    const size_t step = (picture.rowBytes() + 3) / 4 * 4;
    const size_t sampleBytes = step * static_cast<size_t>(picture.height);

    Bytes header = {'B', 'M'};
    put32(header, offset + sampleBytes);
    put32(header, 0);
    put32(header, offset);
    put32(header, infoHeaderBytes);
    put32(header, static_cast<size_t>(picture.width));
    put32(header, static_cast<size_t>(picture.height));
    put16(header, 1); // planes
    put16(header, grey ? 8 : 24);
    put32(header, uncompressed);
    put32(header, sampleBytes);
    put32(header, 2835); // pixels a metre: 72 dpi
    put32(header, 2835);
    put32(header, 0); // all colours
    put32(header, 0);
    for (size_t i = 0; i < paletteBytes / 4; i++) put32(header, i * 0x010101);
    out.write(header.data(), header.size());

    Bytes row(step);
    for (int y = picture.height - 1; y >= 0; y--) {
        std::copy_n(picture.row(y), picture.rowBytes(), row.begin());
        if (!grey)
            for (size_t x = 0; x < picture.rowBytes(); x += 3) std::swap(row[x], row[x + 2]);
        out.write(row.data(), row.size());
    }
}
