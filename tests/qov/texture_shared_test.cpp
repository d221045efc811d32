// Texture blocks of files from elsewhere. The list tells what another decoder makes of them; ours rounds as
// it does, so every byte is the same. Of BC4 and BC5 there are blocks of another encoder, with ends that need
// not be among the values of a block: ours keeps those values to 46 dB.
#include "qov_testing.h"
#include "qovi.h"
#include "support/md5.h"
#include "support/shared_data.h"

#include <fstream>
#include <regex>
#include <sstream>

namespace {

typedef QovStatus Decode(const Qov8u*, Qov8u*, int, QoviSize);
typedef QovStatus Encode(const Qov8u*, int, QoviSize, Qov8u*);

struct Format {
    const char* name; // in the list
    int texelBytes;
    Decode* decode;
    Encode* encode;
};
const Format formats[] = {
    {"BC1", 4, qoviTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, qoviTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R},
    {"BC2", 4, qoviTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, qoviTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R},
    {"BC3", 4, qoviTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, qoviTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R},
    {"BC4", 1, qoviTextureDecodeBlock_BC4_8u_C1R, qoviTextureEncodeBlock_BC4_8u_C1R},
    {"BC5", 2, qoviTextureDecodeBlockToRG_BC5_8u_C1C2R, qoviTextureEncodeBlockFromRG_BC5_8u_C2C1R},
};

// A row of the list: "BC1 256x256 data at 128, 32768 bytes", and the digest of the texels where one is known.
struct Texture {
    std::string file, digest;
    const Format* format = nullptr;
    QoviSize size;
    std::string blocks;

    explicit Texture(const std::string& row)
    {
        std::istringstream cells(row);
        std::vector<std::string> cell;
        for (std::string text; std::getline(cells, text, '\t');) cell.push_back(text);
        cell.resize(12);
        file = cell[0];
        digest = cell[10];
        std::smatch part;
        if (!std::regex_match(cell[5], part,
                              std::regex("(BC\\d) (\\d+)x(\\d+) data at (\\d+), (\\d+) bytes")))
            return;
        for (const Format& known : formats)
            if (part[1] == known.name) format = &known;
        size = {std::stoi(part[2]), std::stoi(part[3])};
        blocks.resize(std::stoul(part[5]));
        std::ifstream(sharedPath(file), std::ios::binary)
            .seekg(std::stol(part[4]))
            .read(blocks.data(), std::stol(part[5]));
    }
    int step() const { return size.width * format->texelBytes; }
    std::string texels() const
    {
        std::string made(size_t(step() * size.height), '\0');
        EXPECT_EQ(qovStsNoErr, format->decode(reinterpret_cast<const Qov8u*>(blocks.data()),
                                              reinterpret_cast<Qov8u*>(made.data()), step(), size));
        return made;
    }
};

double meanSquaredError(const std::string& a, const std::string& b)
{
    double sum = 0;
    for (size_t i = 0; i < a.size(); i++) {
        const int difference = Qov8u(a[i]) - Qov8u(b[i]);
        sum += difference * difference;
    }
    return sum / double(a.size());
}

TEST(TextureShared, Files)
{
    QK_NEED_SHARED("MANIFEST.tsv");
    std::ifstream list(sharedPath("MANIFEST.tsv"));
    int compared = 0, coded = 0;
    for (std::string row; std::getline(list, row);) {
        if (!row.starts_with("dds/")) continue;
        Texture texture(row);
        SCOPED_TRACE(texture.file);
        ASSERT_NE(texture.format, nullptr);
        const std::string texels = texture.texels();
        if (!texture.digest.empty()) {
            EXPECT_EQ(texture.digest, Md5::of(texels));
            compared++;
            continue;
        }
        texture.format->encode(reinterpret_cast<const Qov8u*>(texels.data()), texture.step(), texture.size,
                               reinterpret_cast<Qov8u*>(texture.blocks.data()));
        EXPECT_LT(meanSquaredError(texels, texture.texels()), 1.5);
        coded++;
    }
    EXPECT_EQ(5, compared);
    EXPECT_EQ(2, coded);
}

} // namespace
