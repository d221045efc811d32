#include "qdbmp.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <memory>
#include <new>

static const int fileHeaderSize = 14;
static const int infoHeaderSize = 40;
static const Qov16u typeNormal = 19778;  // "BM" in file order
static const Qov16u typeSwapped = 16973; // "MB": all fields have the other byte order

namespace {

// Takes fields off a block of bytes, one after the other.
class FieldReader {
public:
    FieldReader(const unsigned char* bytes, bool swap) : m_at(bytes), m_swap(swap) {}
    FieldReader& operator>>(Qov16u& value)
    {
        value = static_cast<Qov16u>(next(2));
        return *this;
    }
    FieldReader& operator>>(Qov32u& value)
    {
        value = next(4);
        return *this;
    }
    FieldReader& operator>>(Qov32s& value)
    {
        value = static_cast<Qov32s>(next(4));
        return *this;
    }

private:
    Qov32u next(int size)
    {
        Qov32u value = 0;
        for (int i = 0; i < size; i++) value = value << 8 | m_at[m_swap ? i : size - 1 - i];
        m_at += size;
        return value;
    }

    const unsigned char* m_at;
    bool m_swap;
};

} // namespace

bool qdBmpFile::error(const qkString& text) const
{
    g_ostrm << ERR << "--- Can't load file " << m_name << ": " << text << "\n" << END_MSG;
    return false;
}

// ---- Headers

bool qdBmpFile::ValidFileHeader(bool& swap) const
{
    swap = m_fileHeader.bfType == typeSwapped;
    return swap || m_fileHeader.bfType == typeNormal || error("Bitmap files are valid only");
}

static void parseFileHeader(FieldReader in, qdBmpFileHeader& header)
{
    in >> header.bfType >> header.bfSize >> header.bfReserved1 >> header.bfReserved2 >> header.bfOffBits;
}

bool qdBmpFile::readHeaders(i_stream& file)
{
    unsigned char fileBytes[fileHeaderSize] = {};
    unsigned char infoBytes[infoHeaderSize] = {};
    const bool whole = std::fread(fileBytes, 1, fileHeaderSize, file.m_file) == fileHeaderSize;
    parseFileHeader(FieldReader(fileBytes, false), m_fileHeader);
    bool swap;
    if (!ValidFileHeader(swap)) return false;
    if (swap) parseFileHeader(FieldReader(fileBytes, true), m_fileHeader);
    if (!whole || std::fread(infoBytes, 1, infoHeaderSize, file.m_file) != infoHeaderSize)
        return error("Read error");
    qdBmpInfoHeader& h = m_infoHeader;
    FieldReader(infoBytes, swap) >> h.biSize >> h.biWidth >> h.biHeight >> h.biPlanes >> h.biBitCount >>
        h.biCompression >> h.biSizeImage >> h.biXPelsPerMeter >> h.biYPelsPerMeter >> h.biClrUsed >>
        h.biClrImportant;
    return true;
}

bool qdBmpFile::readInfoHeader(const qkString& name)
{
    m_name = name;
    i_stream file(name, ioRead | ioBinary, false);
    return file.isOpen() ? readHeaders(file) : error("Open error");
}

bool qdBmpFile::ValidCompression() const
{
    return m_infoHeader.biCompression == 0 || error("Compression is not valid");
}

bool qdBmpFile::SetImageWidth(int& width) const
{
    width = m_infoHeader.biWidth;
    return width > 0 || error("Bitmap header is corrupted: biWidth is invalid");
}

bool qdBmpFile::SetImageHeight(int& height) const
{
    height = m_infoHeader.biHeight;
    return height > 0 || error("Bitmap header is corrupted: biHeight is invalid");
}

bool qdBmpFile::SetImageType(qdType& type) const
{
    static const int known[] = {1, 4, 8, 16, 24, 32};
    type = qd8u;
    return std::find(std::begin(known), std::end(known), m_infoHeader.biBitCount) != std::end(known) ||
           error("Bitmap header is corrupted: biBitCount is invalid");
}

bool qdBmpFile::SetImagePlane(bool& plane) const
{
    plane = false;
    return m_infoHeader.biPlanes == 1 || error("Bitmap header is corrupted: biPlanes is invalid");
}

bool qdBmpFile::SetImageChannels(int& channels) const
{
    switch (m_infoHeader.biBitCount) {
    case 1:
    case 4:
    case 8: channels = IsGrayPalette() ? 1 : 3; return true;
    case 16: channels = 2; return true;
    case 24: channels = 3; return true;
    case 32: channels = 4; return true;
    default: return error("Bitmap header is corrupted: biBitCount is invalid");
    }
}

int qdBmpFile::GetPaletteNum() const
{
    if (m_infoHeader.biCompression != 0 || m_infoHeader.biBitCount > 8) return 0;
    const Qov32u num = 1u << m_infoHeader.biBitCount;
    const Qov32u used = m_infoHeader.biClrUsed;
    return static_cast<int>(used != 0 ? std::min(num, used) : num);
}

bool qdBmpFile::IsGrayPalette() const
{
    return std::all_of(m_palette, m_palette + GetPaletteNum(), [](const qdBmpColor& color) {
        return color.blue == color.green && color.green == color.red;
    });
}

long long qdBmpFile::GetDataStep() const
{
    return (static_cast<long long>(m_infoHeader.biWidth) * m_infoHeader.biBitCount + 31) / 32 * 4;
}

long long qdBmpFile::GetDataSize() const
{
    return GetDataStep() * m_infoHeader.biHeight * m_infoHeader.biPlanes;
}

bool qdBmpFile::IsCompressed() const
{
    return m_infoHeader.biCompression == 0 && m_infoHeader.biBitCount < 9;
}

// ---- Picture

bool qdBmpFile::CreateImage(int align)
{
    int width, height;
    qdType type;
    bool plane;
    if (!ValidCompression() || !SetImageWidth(width) || !SetImageHeight(height) || !SetImageType(type) ||
        !SetImagePlane(plane) || !SetImageChannels(m_channels))
        return false;
    m_image->init(type, m_channels, plane);
    return m_image->createImage(width, height, -1, align, false);
}

bool qdBmpFile::load(const qkString& name, int align)
{
    m_name = name;
    i_stream file(name, ioRead | ioBinary, false);
    if (!file.isOpen()) return error("Open error");
    if (!readHeaders(file)) return false;
    const size_t colors = static_cast<size_t>(GetPaletteNum());
    const bool whole = std::fread(m_palette, sizeof(qdBmpColor), colors, file.m_file) == colors;
    // First what is wrong with the header: the palette is as long as the header has it.
    if (!CreateImage(align)) return false;
    if (!whole) return error("Read error");
    if (std::fseek(file.m_file, static_cast<long>(m_fileHeader.bfOffBits), SEEK_SET) != 0)
        return error("Read error");
    return readData(file);
}

// Pictures with more than 8 bits are read as one block. Their rows come out right only if the file's row
// length is a multiple of 16, as the image's is; a file that ends early leaves the image's constant behind
// its end.
bool qdBmpFile::readData(i_stream& file)
{
    if (!IsCompressed()) {
        [[maybe_unused]] const size_t got =
            std::fread(m_image->m_data, 1, static_cast<size_t>(m_image->size()), file.m_file);
        return true;
    }
    const size_t bytes = static_cast<size_t>(GetDataSize());
    const std::unique_ptr<unsigned char[]> data(new (std::nothrow) unsigned char[bytes]);
    if (!data || std::fread(data.get(), 1, bytes, file.m_file) != bytes) return false;
    SetImageData(data.get());
    return true;
}

void qdBmpFile::SetPixel(unsigned char index, unsigned char* row, int x) const
{
    const qdBmpColor& color = m_palette[std::min<int>(index, GetPaletteNum() - 1)];
    if (m_channels == 1) {
        row[x] = color.blue;
        return;
    }
    row[3 * x] = color.blue;
    row[3 * x + 1] = color.green;
    row[3 * x + 2] = color.red;
}

// Indices of `bits` bits, the first in the highest bits of a byte.
template <int bits>
void qdBmpFile::expandRows(const unsigned char* data)
{
    const int perByte = 8 / bits;
    const int mask = (1 << bits) - 1;
    for (int y = 0; y < m_image->m_height; y++, data += GetDataStep()) {
        auto* row = static_cast<unsigned char*>(m_image->getRowPointer(y));
        for (int x = 0; x < m_image->m_width; x++) {
            const int shift = 8 - bits - x % perByte * bits;
            SetPixel(static_cast<unsigned char>(data[x / perByte] >> shift & mask), row, x);
        }
    }
}

void qdBmpFile::SetImageData_8(const unsigned char* data)
{
    expandRows<8>(data);
}

void qdBmpFile::SetImageData_4(const unsigned char* data)
{
    expandRows<4>(data);
}

void qdBmpFile::SetImageData_1(const unsigned char* data)
{
    expandRows<1>(data);
}

void qdBmpFile::SetImageData(const unsigned char* data)
{
    switch (m_infoHeader.biBitCount) {
    case 8: SetImageData_8(data); break;
    case 4: SetImageData_4(data); break;
    case 1: SetImageData_1(data); break;
    default: break;
    }
}
