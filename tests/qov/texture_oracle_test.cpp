// Decoded texture blocks beside another program's reading of the same blocks in a DDS file. ImageMagick reads
// DXT1, DXT3 and DXT5, and rounds down as we do: equal in every byte. It does not read BC4 and BC5, but their
// blocks are those of the alpha of DXT5.
#include "qov_testing.h"
#include "qovi.h"
#include "support/oracle.h"

namespace {

typedef std::vector<Qov8u> Bytes;

constexpr QoviSize size = {4 * 37, 4 * 21};
constexpr size_t blockCount = size_t(size.width / 4 * (size.height / 4)), texelCount = 16 * blockCount;

Bytes randomBlocks(Random& random, size_t blockBytes)
{
    Bytes blocks(blockCount * blockBytes);
    for (Qov8u& byte : blocks) byte = random.value<Qov8u>();
    return blocks;
}

// R, G, B, A of each texel.
Bytes asTheOtherReads(const char* format, const Bytes& blocks)
{
    Qov32u header[32] = {0x20534444,           124, 0x81007, Qov32u(size.height), Qov32u(size.width),
                         Qov32u(blocks.size())};
    header[19] = 32;
    header[20] = 4; // a code of four letters
    std::memcpy(&header[21], format, 4);
    header[27] = 0x1000; // a texture
    std::string file(reinterpret_cast<const char*>(header), sizeof header);
    file.append(blocks.begin(), blocks.end());
    const std::string texels = filter("convert dds:- -depth 8 rgba:-", file);
    EXPECT_EQ(4 * texelCount, texels.size());
    return Bytes(texels.begin(), texels.end());
}

typedef QovStatus Decode(const Qov8u*, Qov8u*, int, QoviSize);

void expectAtEachLevel(Decode* decode, const Bytes& blocks, const Bytes& expected)
{
    forEachLevel([&] {
        Bytes texels(expected.size());
        ASSERT_EQ(qovStsNoErr,
                  decode(blocks.data(), texels.data(), int(expected.size() / size_t(size.height)), size));
        ASSERT_TRUE(expected == texels);
    });
}

TEST(TextureOracle, ColoursAndAlpha)
{
    static const struct {
        const char* name;
        size_t blockBytes;
        Decode* decode;
    } formats[] = {
        {"DXT1", 8, qoviTextureDecodeBlockToRGBA_DXT1_8u_C1C4R},
        {"DXT3", 16, qoviTextureDecodeBlockToRGBA_DXT3_8u_C1C4R},
        {"DXT5", 16, qoviTextureDecodeBlockToRGBA_DXT5_8u_C1C4R},
    };
    Random random;
    for (const auto& format : formats) {
        SCOPED_TRACE(format.name);
        const Bytes blocks = randomBlocks(random, format.blockBytes);
        expectAtEachLevel(format.decode, blocks, asTheOtherReads(format.name, blocks));
    }
}

TEST(TextureOracle, SingleChannels)
{
    static Decode* const decoders[] = {qoviTextureDecodeBlock_BC4_8u_C1R,
                                       qoviTextureDecodeBlockToRG_BC5_8u_C1C2R};
    Random random;
    for (size_t channels = 1; channels <= 2; channels++) {
        SCOPED_TRACE(channels);
        const Bytes blocks = randomBlocks(random, 8 * channels);
        Bytes expected(channels * texelCount);
        for (size_t c = 0; c < channels; c++) {
            Bytes asAlpha(16 * blockCount);
            for (size_t i = 0; i < blockCount; i++)
                std::memcpy(&asAlpha[16 * i], &blocks[8 * (channels * i + c)], 8);
            const Bytes texels = asTheOtherReads("DXT5", asAlpha);
            ASSERT_EQ(4 * texelCount, texels.size());
            for (size_t i = 0; i < texelCount; i++) expected[channels * i + c] = texels[4 * i + 3];
        }
        expectAtEachLevel(decoders[channels - 1], blocks, expected);
    }
}

} // namespace
