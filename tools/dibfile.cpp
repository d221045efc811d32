#include "dibfile.h"

#include <algorithm>

#include "diagn.h"
#include "dibread.h"

using namespace jpeg2000;

namespace {

constexpr uint32_t fileHeaderBytes = 14;
constexpr uint32_t infoHeaderBytes = 40;
constexpr uint32_t headerBytes = fileHeaderBytes + infoHeaderBytes;

struct Header {
    uint32_t magic, offset, infoBytes, nOfPlanes, bitCount, compression, nOfColors;
    int32_t width, height; // a negative height: from the top down

    explicit Header(const Bytes& file)
    {
        if (file.size() < headerBytes) fail<DDIBException{0}>();
        DIBInput in(file.data());
        magic = in.Read16u();
        in.position += 8; // size of the file, reserved fields
        offset = in.Read32u();
        infoBytes = in.Read32u();
        width = in.Read32s();
        height = in.Read32s();
        nOfPlanes = in.Read16u();
        bitCount = in.Read16u();
        compression = in.Read32u();
        in.position += 12; // size of the rows, resolution
        nOfColors = in.Read32u();
    }

    // Both sides fit 31 bits, so that these fit 64.
    uint64_t rowBytes() const { return static_cast<uint64_t>(width) * (bitCount / 8); }
    uint64_t step() const { return (rowBytes() + 3) / 4 * 4; }
    uint64_t allBytes() const { return step() * (static_cast<uint64_t>(height) - 1) + rowBytes(); }

    void check(uint64_t fileBytes) const
    {
        const bool isSound = magic == ('B' | 'M' << 8) && infoBytes >= infoHeaderBytes && width > 0 &&
                             height > 0 && nOfPlanes == 1 && offset >= headerBytes && offset <= fileBytes;
        if (!isSound) fail<DDIBException{0}>();
        if (bitCount != 8 && bitCount != 24) fail<DDIBException{1}>();
        if (compression != 0) fail<DDIBException{2}>();
        if (allBytes() > fileBytes - offset) fail<DDIBException{0}>();
    }

    // Whether some index stands for anything but the grey of the same value.
    bool findPalette(const Bytes& file) const
    {
        if (bitCount != 8) return false;
        const uint64_t palette = uint64_t{fileHeaderBytes} + infoBytes;
        const uint64_t end = palette + 4 * (nOfColors > 0 && nOfColors < 256 ? nOfColors : 256);
        for (uint64_t i = palette; i + 4 <= std::min<uint64_t>(end, offset); i += 4)
            for (uint64_t channel = 0; channel < 3; channel++)
                if (file[i + channel] != (i - palette) / 4) return true;
        return false;
    }
};

} // namespace

DIBFile::DIBFile(Bytes file) : m_file(std::move(file))
{
    const Header header(m_file);
    header.check(m_file.size());
    m_offset = header.offset;
    m_width = header.width;
    m_height = header.height;
    m_bitCount = static_cast<int>(header.bitCount);
    m_step = static_cast<int>(header.step());
    m_hasPalette = header.findPalette(m_file);
    const size_t padded = m_offset + header.step() * static_cast<uint32_t>(m_height);
    m_file.resize(std::max(m_file.size(), padded));
}

_BMPBUFF DIBFile::rows()
{
    return {nullptr, m_file.data() + m_offset, m_width, m_height, m_step, 0, 0, m_bitCount};
}
