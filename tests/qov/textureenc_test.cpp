// Encoding of texture blocks: what the blocks decode to, and that every level writes the same blocks.
#include "qov_testing.h"
#include "qovi.h"
#include "support/oracle.h"
#include "support/shared_data.h"
#include "texture_reference.h"

#include <algorithm>
#include <cfenv>
#include <cmath>

namespace {

typedef std::vector<Qov8u> Bytes;

typedef QovStatus Encode(const Qov8u*, int, QoviSize, Qov8u*);
const struct Format {
    const char* name;
    Encode* encode;
    int channels, blockBytes;
    Texel (*texel)(const Qov8u* block, int i);
} formats[] = {
    {"BC4", qoviTextureEncodeBlock_BC4_8u_C1R, 1, 8, bc4Texel},
    {"BC5", qoviTextureEncodeBlockFromRG_BC5_8u_C2C1R, 2, 16, bc5Texel},
    {"DXT1", qoviTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, 4, 8, dxt1Texel},
    {"DXT3", qoviTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R, 4, 16, dxt3Texel},
    {"DXT5", qoviTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, 4, 16, dxt5Texel},
};
const Format &bc4 = formats[0], &dxt1 = formats[2], &dxt3 = formats[3], &dxt5 = formats[4];

Bytes encoded(const Format& f, const Picture& p)
{
    Bytes blocks(size_t(p.width / 4 * (p.height / 4) * f.blockBytes));
    EXPECT_EQ(qovStsNoErr,
              f.encode(p.samples.data(), p.width * f.channels, {p.width, p.height}, blocks.data()));
    return blocks;
}

Texel texelOf(const Format& f, const Bytes& blocks, int width, int x, int y)
{
    return f.texel(&blocks[size_t((y / 4 * (width / 4) + x / 4) * f.blockBytes)], y % 4 * 4 + x % 4);
}

// Calls visit(x, y) in raster order.
template <class Visit>
void forEachTexel(QoviSize size, Visit visit)
{
    for (int y = 0; y < size.height; y++)
        for (int x = 0; x < size.width && !testing::Test::HasFatalFailure(); x++) visit(x, y);
}

// Blocks of noise, of slow changes, of few values and of the extremes, some with holes.
void fillBlocks(Random& random, const Format& f, Qov8u* texels, ptrdiff_t step, QoviSize roi)
{
    const int area = random.in(3, 12); // pixels that a kind of data spans
    int kind = 0, base[4] = {}, slope[4] = {};
    forEachTexel(roi, [&](int x, int y) {
        if (x % area == 0) {
            kind = random.in(0, 4);
            for (int c = 0; c < 4; c++) {
                base[c] = random.in(0, 255);
                slope[c] = random.in(-12, 12);
            }
        }
        for (int c = 0; c < f.channels; c++) {
            const int slow = base[c] + x % area * slope[c] + y % 4 * 3;
            const int values[5] = {random.in(0, 255), slow, random.oneIn(2) ? base[c] : base[c] / 2,
                                   random.oneIn(3) ? 255 * random.in(0, 1) : slow, base[c]};
            texels[y * step + x * f.channels + c] = Qov8u(std::clamp(values[kind], 0, 255));
        }
    });
}

// Catches wrong lanes and gatherings, reads and writes past the blocks, levels that round unlike, and marks
// left for programs that watch for floating-point exceptions.
TEST(TextureEnc, SameBlocksAtEveryLevel)
{
    Random random;
    for (int round = 0; round < 250; round++) {
        const Format& f = formats[round % 5];
        const QoviSize roi = {random.oneIn(3) ? random.in(1, 600) : random.in(1, 60), random.in(1, 30)};
        const int columns = roi.width / 4, rows = roi.height / 4;
        const int step = roi.width * f.channels + (random.oneIn(2) ? random.in(0, 70) : 0);
        SCOPED_TRACE(testing::Message() << f.name << ", " << roi.width << "x" << roi.height << ", " << step);
        // Ends with the last texel, so that the address sanitizer sees a read past it.
        Bytes src(size_t(step * (roi.height - 1) + roi.width * f.channels));
        fillBlocks(random, f, src.data(), step, roi);
        if (f.channels == 4 && random.oneIn(2))
            for (size_t i = 3; i < src.size(); i++) src[i] |= 0x80;

        const size_t bytes = size_t(columns * rows * f.blockBytes), offset = size_t(random.in(0, 63));
        const bool whole = roi.width % 4 == 0 && roi.height % 4 == 0;
        Bytes plain;
        forEachLevel([&] {
            Guarded dst(bytes, offset);
            std::feclearexcept(FE_ALL_EXCEPT);
            ASSERT_EQ(whole ? qovStsNoErr : qovStsPartial, f.encode(src.data(), step, roi, dst.as<Qov8u>()));
            ASSERT_EQ(0, std::fetestexcept(FE_ALL_EXCEPT));
            ASSERT_TRUE(dst.intact());
            const Bytes blocks(dst.as<Qov8u>(), dst.as<Qov8u>() + bytes);
            if (plain.empty()) plain = blocks;
            ASSERT_EQ(plain, blocks);
        });
        if (testing::Test::HasFatalFailure()) return;
    }
}

Picture mixedPicture(const Format& f)
{
    Random random;
    Picture p = Picture::blank(256, 64, f.channels);
    fillBlocks(random, f, p.samples.data(), p.width * f.channels, {p.width, p.height});
    return p;
}

int distanceOf(const Texel& t, const Qov8u* x)
{
    int sum = 0;
    for (int c = 0; c < 3; c++) sum += (t[size_t(c)] - x[c]) * (t[size_t(c)] - x[c]);
    return sum;
}

// Cut-outs are kept, and the palettes the encoder thinks of are those of the format: else others of their
// colours would be nearer. (Colours off the line of the palette may end one entry away from the nearest.)
TEST(TextureEnc, ColoursOfThePaletteAndCutOuts)
{
    for (const Format* f : {&dxt1, &dxt5}) {
        SCOPED_TRACE(f->name);
        const Picture p = mixedPicture(*f);
        const Bytes blocks = encoded(*f, p);
        double least = 0, got = 0;
        forEachTexel({p.width, p.height}, [&](int x, int y) {
            const Qov8u* const block = &blocks[size_t((y / 4 * (p.width / 4) + x / 4) * f->blockBytes)];
            const Qov8u* const texel = p.at(x, y);
            const Texel t = f->texel(block, y % 4 * 4 + x % 4);
            const bool cutOut = f == &dxt1 && texel[3] < 128;
            if (f == &dxt1) {
                ASSERT_EQ(cutOut ? 0 : 255, t[3]) << "at " << x << ", " << y;
            }
            if (cutOut) return;
            int nearest = distanceOf(t, texel);
            for (const Texel& entry : paletteOf(block + f->blockBytes - 8, f == &dxt1))
                if (entry[3] == 255) nearest = std::min(nearest, distanceOf(entry, texel));
            least += nearest;
            got += distanceOf(t, texel);
        });
        EXPECT_LE(got, 1.001 * least);
    }
}

// Each texel has the nearest value of its block, and the block the better of the two kinds of ends.
TEST(TextureEnc, RampsAreTheBetterOfTwo)
{
    const Picture p = mixedPicture(bc4);
    const Bytes blocks = encoded(bc4, p);
    int six = 0;
    for (size_t b = 0; b < blocks.size() / 8; b++) {
        const Qov8u* block = &blocks[8 * b];
        std::vector<int> x, inner;
        double error = 0;
        for (int i = 0; i < 16; i++) {
            x.push_back(*p.at(int(b) % 64 * 4 + i % 4, int(b) / 64 * 4 + i / 4));
            if (x.back() != 0 && x.back() != 255) inner.push_back(x.back());
            error += std::pow(rampTexel(block, i) - x.back(), 2);
        }
        const auto bestWith = [&](int a0, int a1) {
            const Qov8u ends[2] = {Qov8u(a0), Qov8u(a1)};
            double sum = 0;
            for (int texel : x) {
                double nearest = 1e9;
                for (int v : rampOf(ends)) nearest = std::min(nearest, std::pow(v - texel, 2));
                sum += nearest;
            }
            return sum;
        };
        const auto [least, most] = std::ranges::minmax(x);
        double expected = bestWith(most, least);
        if (!inner.empty() && inner.size() < x.size())
            expected = std::min(expected, bestWith(std::ranges::min(inner), std::ranges::max(inner)));
        ASSERT_EQ(expected, error) << "block " << b;
        six += block[0] <= block[1] && most > least;
    }
    EXPECT_GT(six, 0);
}

TEST(TextureEnc, FourBitAlphaIsTheNearest)
{
    Picture p = Picture::blank(64, 4, 4);
    for (int i = 0; i < 256; i++) p.samples[size_t(4 * i + 3)] = Qov8u(i);
    const Bytes blocks = encoded(dxt3, p);
    forEachTexel({p.width, p.height}, [&](int x, int y) {
        ASSERT_LE(std::abs(p.at(x, y)[3] - texelOf(dxt3, blocks, p.width, x, y)[3]), 8);
    });
}

// Blocks of one colour are as near as two ends of 5 and 6 bits allow; those of no texel are black.
TEST(TextureEnc, SolidColours)
{
    Picture p = Picture::blank(257 * 4, 4, 4);
    forEachTexel({1024, 4}, [&](int x, int y) {
        const int v = x / 4;
        const Qov8u colour[4] = {Qov8u(v), Qov8u(v * 37), Qov8u(255 - v), 255};
        std::copy(colour, colour + 4, p.at(x, y));
    });
    const auto leastError = [](int v, int bits) {
        int least = 255;
        for (int i = 0; i < 1 << 2 * bits; i++) {
            const int a = i & ((1 << bits) - 1), b = i >> bits;
            const auto wide = [bits](int c) { return c << (8 - bits) | c >> (2 * bits - 8); };
            least = std::min(least, std::abs((2 * wide(a) + wide(b)) / 3 - v));
        }
        return least;
    };
    const int bits[3] = {5, 6, 5};
    const Bytes blocks = encoded(dxt1, p);
    for (int x = 0; x < 1024; x += 4)
        for (int c = 0; c < 3; c++) {
            const int v = p.at(x, 0)[c], least = leastError(v, bits[c]);
            for (int i = 0; i < 4; i++)
                ASSERT_EQ(least, std::abs(texelOf(dxt1, blocks, p.width, x + i, i)[size_t(c)] - v))
                    << "at " << x + i << ", channel " << c;
        }
    EXPECT_EQ((Bytes{0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}), Bytes(blocks.end() - 8, blocks.end()));
}

double quality(const Format& f, const Picture& rgb)
{
    const Bytes blocks = encoded(f, rgb.mapped(4, [](const unsigned char* from, unsigned char* to) {
        std::copy(from, from + 3, to);
        to[3] = 255;
    }));
    Picture back = rgb;
    forEachTexel({rgb.width, rgb.height}, [&](int x, int y) {
        const Texel t = texelOf(f, blocks, rgb.width, x, y);
        std::copy(t.begin(), t.begin() + 3, back.at(x, y));
    });
    return distance(rgb, back).psnr;
}

TEST(TextureEnc, QualityOfSlowChanges)
{
    Picture p = Picture::blank(128, 128, 3);
    forEachTexel({p.width, p.height}, [&](int x, int y) {
        for (int c = 0; c < 3; c++)
            p.at(x, y)[c] =
                Qov8u(std::lround(127 + 120 * std::sin(x * (c + 1) / 40.0) * std::cos(y / 30.0 + c)));
    });
    for (const Format* f : {&dxt1, &dxt3, &dxt5}) EXPECT_GT(quality(*f, p), 39.5) << f->name;
}

TEST(TextureEnc, QualityOfPhotos)
{
    QK_NEED_SHARED("bmp/rose.bmp");
    QK_SKIP_UNLESS(haveProgram("convert"), "no other encoder");
    const Picture photo = readBmp24(sharedPath("bmp/rose.bmp"));
    const Picture small = parsePnm(filter("convert rose: -crop 68x44+0+0 +repage ppm:-", ""));
    for (const Format* f : {&dxt1, &dxt5}) {
        SCOPED_TRACE(f->name);
        EXPECT_GT(quality(*f, small), 29.3);
        const double ours = quality(*f, photo);
        EXPECT_GT(ours, 37.1);
        const char* const compression = f == &dxt1 ? "dxt1" : "dxt5";
        const std::string dds = filter(
            std::string("convert ppm:- -define dds:compression=") + compression + " dds:-", pnmOf(photo));
        EXPECT_GT(ours, distance(photo, parsePnm(filter("convert dds:- -alpha off ppm:-", dds))).psnr);
    }
}

TEST(TextureEnc, Statuses)
{
    Qov8u texels[8 * 32] = {}, blocks[64] = {};
    for (const Format& f : formats) {
        const int step = 8 * f.channels;
        const struct {
            int step;
            QoviSize roi;
            QovStatus status;
            bool src = true, dst = true; // not null
        } cases[] = {
            {step, {8, 8}, qovStsNullPtr, false, true},
            {step, {8, 8}, qovStsNullPtr, true, false},
            {0, {0, 0}, qovStsNullPtr, false, false},
            {step, {0, 8}, qovStsSize},
            {0, {8, -4}, qovStsSize},
            {step - 1, {8, 8}, qovStsStep},
            {-step, {7, 8}, qovStsStep},
            {step, {0x7ffffffc, 8}, qovStsStep},
            {step, {8, 8}, qovStsNoErr},
            {step, {7, 8}, qovStsPartial},
            {step, {8, 5}, qovStsPartial},
            {step, {3, 8}, qovStsPartial},
            {0, {0x7ffffffc, 1}, qovStsPartial},
        };
        for (const auto& c : cases)
            EXPECT_EQ(c.status, f.encode(c.src ? texels : nullptr, c.step, c.roi, c.dst ? blocks : nullptr))
                << f.name << ", case " << &c - cases;
    }
}

} // namespace
