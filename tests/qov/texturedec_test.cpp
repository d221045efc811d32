// Decoding of texture blocks: every level against the tables of the formats.
#include "qov_testing.h"
#include "qovi.h"
#include "texture_reference.h"

namespace {

typedef std::vector<Qov8u> Bytes;

const struct Format {
    const char* name;
    int blockBytes, channels;
    QovStatus (*decode)(const Qov8u*, Qov8u*, int, QoviSize);
    Texel (*texel)(const Qov8u* block, int i);
} formats[] = {
    {"BC4", 8, 1, qoviTextureDecodeBlock_BC4_8u_C1R, bc4Texel},
    {"BC5", 16, 2, qoviTextureDecodeBlockToRG_BC5_8u_C1C2R, bc5Texel},
    {"DXT1", 8, 4, qoviTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, dxt1Texel},
    {"DXT3", 16, 4, qoviTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, dxt3Texel},
    {"DXT5", 16, 4, qoviTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, dxt5Texel},
};

Bytes plainRow(const Format& format, const Qov8u* blocks, int columns, int y)
{
    Bytes row;
    for (int x = 0; x < 4 * columns; x++) {
        const Texel t = format.texel(blocks + x / 4 * format.blockBytes, y % 4 * 4 + x % 4);
        row.insert(row.end(), t.begin(), t.begin() + format.channels);
    }
    return row;
}

// Whole blocks of a picture, at every level. What else the buffer holds must stay.
void checkPicture(const Format& format, const Bytes& blocks, QoviSize roi, int gap, size_t offset)
{
    const int columns = roi.width / 4, rows = roi.height / 4, rowBytes = columns * 4 * format.channels;
    const int step = roi.width * format.channels + gap;
    std::vector<Bytes> expected;
    for (int y = 0; y < 4 * rows; y++)
        expected.push_back(plainRow(format, blocks.data() + y / 4 * columns * format.blockBytes, columns, y));
    forEachLevel([&] {
        Guarded dst(size_t(rows > 0 ? (4 * rows - 1) * step + rowBytes : 0), offset);
        ASSERT_EQ(roi.width % 4 || roi.height % 4 ? qovStsPartial : qovStsNoErr,
                  format.decode(blocks.data(), dst.as<Qov8u>(), step, roi));
        for (int y = 0; y < 4 * rows; y++) {
            const Qov8u* row = dst.as<Qov8u>() + y * step;
            ASSERT_EQ(expected[size_t(y)], Bytes(row, row + rowBytes))
                << format.name << " " << roi.width << "x" << roi.height << ", row " << y;
        }
        ASSERT_TRUE(dst.intact(size_t(step), size_t(rowBytes)));
    });
}

// Catches wrong lanes, tails that are left out or written past, reads past the last block (with the address
// sanitizer), columns and rows behind the last whole block.
TEST(TextureDecoding, AnySize)
{
    Random random;
    for (const Format& format : formats) {
        for (int width = 1; width <= 82; width++) {
            const QoviSize roi = {width, random.in(1, 14)};
            const int count = roi.width / 4 * (roi.height / 4);
            Bytes blocks(size_t(count * format.blockBytes));
            for (Qov8u& byte : blocks) byte = random.value<Qov8u>();
            if (blocks.empty()) blocks.reserve(1); // an address
            checkPicture(format, blocks, roi, random.in(0, 9), size_t(random.in(0, 63)));
            if (HasFatalFailure()) return;
        }
    }
}

// Catches a division that is not exact, and either order of any end points.
TEST(TextureDecoding, EveryPairOfEndPoints)
{
    const QoviSize roi = {256, 4 * 1024}; // 65536 blocks
    for (const Format& format : formats) {
        Bytes blocks;
        for (int pair = 0; pair < 65536; pair++) {
            const int a = pair & 255, b = pair >> 8;
            const Bytes interpolated = {Qov8u(a), Qov8u(b), 0x88, 0xC6, 0xFA, 0x77, 0x39, 0x05};
            const auto colour = [](int n) { return (n & 31) << 11 | (n & 63) << 5 | (n >> 1 & 31); };
            const Bytes colours = {Qov8u(colour(a)),
                                   Qov8u(colour(a) >> 8),
                                   Qov8u(colour(b)),
                                   Qov8u(colour(b) >> 8),
                                   0x1B,
                                   0xE4,
                                   0x1B,
                                   0xE4};
            for (int half = 0; half < format.blockBytes / 8; half++) {
                const bool last = half == format.blockBytes / 8 - 1;
                const Bytes& part = format.channels == 4 && last ? colours : interpolated;
                blocks.insert(blocks.end(), part.begin(), part.end());
            }
        }
        checkPicture(format, blocks, roi, 0, 0);
        if (HasFatalFailure()) return;
    }
}

// What the tables of the formats give by hand; catches a mistake that the plain decoder shares.
TEST(TextureDecoding, KnownBlocks)
{
    const Bytes black = {0, 0, 0, 255}, white = {255, 255, 255, 255}, none = {0, 0, 0, 0};
    static const struct {
        int format;
        Bytes block;
        std::vector<Bytes> row; // the first texels
    } cases[] = {
        {2,
         {0xFF, 0xFF, 0, 0, 0x1B, 0x1B, 0x1B, 0x1B},
         {{85, 85, 85, 255}, {170, 170, 170, 255}, black, white}},
        {2, {0, 0, 0xFF, 0xFF, 0x1B, 0, 0, 0}, {none, {127, 127, 127, 255}, white, black}},
        {2,
         {0x00, 0xF8, 0x00, 0xF8, 0x1B, 0, 0, 0},
         {none, {255, 0, 0, 255}, {255, 0, 0, 255}, {255, 0, 0, 255}}},
        {3,
         {0x10, 0xF8, 0, 0, 0, 0, 0, 0, 0, 0, 0xE0, 0x07, 0x1B, 0, 0, 0},
         {{0, 170, 0, 0}, {0, 85, 0, 17}, {0, 255, 0, 136}, {0, 0, 0, 255}}},
        {4,
         {0, 255, 0xFE, 0x08, 0, 0, 0, 0, 0x1F, 0, 0, 0, 0, 0, 0, 0},
         {{0, 0, 255, 0}, {0, 0, 255, 255}, {0, 0, 255, 102}, {0, 0, 255, 153}}},
        {0, {70, 0, 0xD1, 0x58, 0x1F, 0, 0, 0}, {{0}, {60}, {50}, {40}, {30}, {20}, {10}, {70}}},
        {1, {9, 9, 0, 0, 0, 0, 0, 0, 5, 250, 0x3E, 0, 0, 0, 0, 0}, {{9, 0}, {9, 255}, {9, 5}, {9, 5}}},
    };
    for (const auto& known : cases) {
        const Format& format = formats[known.format];
        forEachLevel([&] {
            Bytes texels(size_t(16 * format.channels));
            ASSERT_EQ(qovStsNoErr,
                      format.decode(known.block.data(), texels.data(), 4 * format.channels, {4, 4}));
            size_t at = 0;
            for (const Bytes& texel : known.row)
                for (const Qov8u value : texel) ASSERT_EQ(value, texels[at++]) << format.name << ", " << at;
        });
    }
}

} // namespace
