// MCUs of pixels and blocks of samples: each function equals conversion of the picture, sampling of chroma
// and level shift one after the other, at every level.
#include "planes_testing.h"
#include "qovicolor.h"
#include "qovicopy.h"
#include "qovimcu.h"
#include "qovipacked.h"

#include <algorithm>

namespace {

// How pixels become planes and the other way round, row by row without gaps.
struct Pixels {
    int bytes, planes;
    std::function<void(const Qov8u*, Qov8u* const*, QoviSize)> split;
    std::function<void(const Qov8u* const*, Qov8u*, QoviSize)> join;
};

// By functions on pictures that have tests of their own.
template <class Pixel>
Pixels byPictures(int channels, int bytes,
                  QovStatus (*splitPicture)(const Pixel*, int, Qov8u* const*, int, QoviSize),
                  QovStatus (*joinPicture)(const Qov8u* const*, int, Pixel*, int, QoviSize))
{
    return {bytes, channels,
            [=](const Qov8u* src, Qov8u* const* dst, QoviSize roi) {
                splitPicture((const Pixel*)src, bytes * roi.width, dst, roi.width, roi);
            },
            [=](const Qov8u* const* src, Qov8u* dst, QoviSize roi) {
                joinPicture(src, roi.width, (Pixel*)dst, bytes * roi.width, roi);
            }};
}

const Pixels rgb = byPictures(3, 3, qoviRGBToYCbCr_JPEG_8u_C3P3R, qoviYCbCrToRGB_JPEG_8u_P3C3R);
const Pixels bgr = byPictures(3, 3, qoviBGRToYCbCr_JPEG_8u_C3P3R, qoviYCbCrToBGR_JPEG_8u_P3C3R);
const Pixels cmyk = byPictures(4, 4, qoviCMYKToYCCK_JPEG_8u_C4P4R, qoviYCCKToCMYK_JPEG_8u_P4C4R);
const Pixels bgr555 =
    byPictures(3, 2, qoviBGR555ToYCbCr_JPEG_16u8u_C3P3R, qoviYCbCrToBGR555_JPEG_8u16u_P3C3R);
const Pixels bgr565 =
    byPictures(3, 2, qoviBGR565ToYCbCr_JPEG_16u8u_C3P3R, qoviYCbCrToBGR565_JPEG_8u16u_P3C3R);
const Pixels samples = byPictures(3, 3, qoviCopy_8u_C3P3R, qoviCopy_8u_P3C3R);
const Pixels pairs = {2, 3,
                      [](const Qov8u* src, Qov8u* const* dst, QoviSize roi) {
                          for (int i = 0; i < roi.width * roi.height; i++) {
                              dst[0][i] = src[2 * i];
                              for (int c = 1; c < 3; c++) dst[c][i] = src[i / 2 * 4 + 2 * c - 1];
                          }
                      },
                      [](const Qov8u* const* src, Qov8u* dst, QoviSize roi) {
                          for (int i = 0; i < roi.width * roi.height; i++) {
                              dst[2 * i] = src[0][i];
                              dst[2 * i + 1] = src[1 + i % 2][i];
                          }
                      }};

constexpr QoviSize region444 = {8, 8}, region422 = {16, 8}, region411 = {16, 16};

struct Case {
    const char* name;
    const Pixels& pixels;
    QoviSize region;
    std::function<QovStatus(const void*, int, Qov16s* const*)> toBlocks;
    std::function<QovStatus(const Qov16s* const*, void*, int)> fromBlocks;
};

template <class Pixel>
auto to(QovStatus (*f)(const Pixel*, int, Qov16s* const*))
{
    return [f](const void* src, int step, Qov16s* const* dst) { return f((const Pixel*)src, step, dst); };
}
template <class Pixel>
auto from(QovStatus (*f)(const Qov16s* const*, Pixel*, int))
{
    return [f](const Qov16s* const* src, void* dst, int step) { return f(src, (Pixel*)dst, step); };
}

#define MCU(digits, name, ycc, type, n, pixels)                                                              \
    {                                                                                                        \
#name " " #digits, pixels, region##digits,                                                           \
            to(qovi##name##To##ycc##digits##LS_MCU_##type##16s_C##n##P##n##R),                               \
            from(qovi##ycc##digits##To##name##LS_MCU_16s##type##_P##n##C##n##R)                              \
    }
#define REGION(digits)                                                                                       \
    MCU(digits, RGB, YCbCr, 8u, 3, rgb), MCU(digits, BGR, YCbCr, 8u, 3, bgr),                                \
        MCU(digits, CMYK, YCCK, 8u, 4, cmyk), MCU(digits, BGR555, YCbCr, 16u, 3, bgr555),                    \
        MCU(digits, BGR565, YCbCr, 16u, 3, bgr565),                                                          \
    {                                                                                                        \
        "Sample " #digits, samples, region##digits, to(qoviSampleDown##digits##LS_MCU_8u16s_C3P3R),          \
            from(qoviSampleUp##digits##LS_MCU_16s8u_P3C3R)                                                   \
    }

const Case cases[] = {REGION(444),
                      REGION(422),
                      REGION(411),
                      {"Split, Join 422", pairs, region422, to(qoviSplit422LS_MCU_8u16s_C2P3R),
                       from(qoviJoin422LS_MCU_16s8u_P3C2R)}};

// Columns and rows of a component's samples for one, and the number of its blocks.
struct Sampling {
    int across, down, blocks;
    Sampling(QoviSize region, int component)
    {
        const bool chroma = component == 1 || component == 2;
        across = chroma ? region.width / 8 : 1;
        down = chroma ? region.height / 8 : 1;
        blocks = region.width * region.height / 64 / (across * down);
    }
};

// The place in a component's blocks of its sample for a pixel.
int place(QoviSize region, int component, int x, int y)
{
    const Sampling s(region, component);
    x /= s.across;
    y /= s.down;
    return (y / 8 * (region.width / 8 / s.across) + x / 8) * 64 + y % 8 * 8 + x % 8;
}

// An exact number of elements, for the address sanitizer, that begin `misfit` elements behind its start.
template <class T>
std::vector<T> randomBlock(Random& random, int misfit, int count)
{
    std::vector<T> block(size_t(misfit + count));
    for (T& value : block) value = random.value<T>();
    return block;
}

// The samples of a region, all of full size.
struct FullPlanes {
    std::vector<Qov8u> bytes = std::vector<Qov8u>(4 * 256);
    Qov8u* const data[4] = {&bytes[0], &bytes[256], &bytes[512], &bytes[768]};
};

void toBlocks(const Case& f, Random& random, int step, int rowBytes, int misfit)
{
    const int width = f.region.width, height = f.region.height;
    const std::vector<Qov8u> block = randomBlock<Qov8u>(random, 2 * misfit, step * (height - 1) + rowBytes);
    const Qov8u* image = block.data() + 2 * misfit;
    std::vector<Qov8u> packed;
    for (int y = 0; y < height; y++)
        packed.insert(packed.end(), image + y * step, image + y * step + rowBytes);
    const FullPlanes full;
    f.pixels.split(packed.data(), full.data, f.region);

    forEachLevel([&] {
        std::vector<Guarded> blocks;
        Qov16s* dst[4] = {};
        for (int c = 0; c < f.pixels.planes; c++)
            blocks.emplace_back(128 * size_t(Sampling(f.region, c).blocks), 2 * size_t(misfit));
        for (int c = 0; c < f.pixels.planes; c++) dst[c] = blocks[size_t(c)].as<Qov16s>();
        ASSERT_EQ(qovStsNoErr, f.toBlocks(image, step, dst));
        for (int c = 0; c < f.pixels.planes; c++) {
            ASSERT_TRUE(blocks[size_t(c)].intact()) << "component " << c;
            const auto [across, down, count] = Sampling(f.region, c);
            for (int y = 0; y < height; y += down)
                for (int x = 0; x < width; x += across) {
                    int sum = across * down / 2;
                    for (int i = 0; i < across * down; i++)
                        sum += full.data[c][(y + i / across) * width + x + i % across];
                    ASSERT_EQ(sum / (across * down) - 128, dst[c][place(f.region, c, x, y)])
                        << "component " << c << " at " << x << ", " << y;
                }
        }
    });
}

void fromBlocks(const Case& f, Random& random, int step, int rowBytes, int misfit)
{
    const int width = f.region.width, height = f.region.height;
    std::vector<Qov16s> blocks[4];
    const Qov16s* src[4] = {};
    const FullPlanes full;
    for (int c = 0; c < f.pixels.planes; c++) {
        blocks[c] = randomBlock<Qov16s>(random, misfit, 64 * Sampling(f.region, c).blocks);
        src[c] = blocks[c].data() + misfit;
        for (int i = 0; i < width * height; i++) {
            const int sample = src[c][place(f.region, c, i % width, i / width)] + 128;
            full.data[c][i] = Qov8u(std::clamp(sample, 0, 255));
        }
    }
    std::vector<Qov8u> expected(size_t(rowBytes * height));
    f.pixels.join(full.data, expected.data(), f.region);

    forEachLevel([&] {
        Guarded image(size_t(step * height), 2 * size_t(misfit));
        ASSERT_EQ(qovStsNoErr, f.fromBlocks(src, image.as<void>(), step));
        ASSERT_TRUE(image.intact(size_t(step), size_t(rowBytes)));
        for (int i = 0; i < rowBytes * height; i++)
            ASSERT_EQ(expected[size_t(i)], image.as<Qov8u>()[i / rowBytes * step + i % rowBytes])
                << "byte " << i % rowBytes << " of row " << i / rowBytes;
    });
}

// Catches wrong channels, blocks, lanes and rounding, a box before the conversion, access beside the region.
TEST(Mcu, BothDirections)
{
    Random random;
    for (const Case& f : cases)
        for (int round = 0; round < 20 && !HasFatalFailure(); round++) {
            SCOPED_TRACE(f.name);
            const int rowBytes = f.pixels.bytes * f.region.width, step = rowBytes + 2 * random.in(0, 20);
            toBlocks(f, random, step, rowBytes, random.in(0, 31));
            fromBlocks(f, random, step, rowBytes, random.in(0, 31));
        }
}

// The table of functions hands each its own number of planes and length of a row.
TEST(Mcu, Statuses)
{
    std::vector<Qov8u> image(16 * 64);
    std::vector<Qov16s> blocks(256);
    for (const Case& f : cases) {
        SCOPED_TRACE(f.name);
        const auto expect = [&](QovStatus status, Qov8u* pixels, int step, Qov16s* const* planes) {
            EXPECT_EQ(status, f.toBlocks(pixels, step, planes));
            EXPECT_EQ(status, f.fromBlocks(planes, pixels, step));
        };
        const int rowBytes = f.pixels.bytes * f.region.width;
        Qov16s* planes[4] = {};
        std::fill_n(planes, f.pixels.planes, blocks.data());
        expect(qovStsNoErr, image.data(), rowBytes, planes);
        expect(qovStsStep, image.data(), rowBytes - 1, planes);
        expect(qovStsNullPtr, nullptr, 0, planes);
        expect(qovStsNullPtr, image.data(), 0, nullptr);
        for (int c = 0; c < f.pixels.planes; c++) {
            planes[c] = nullptr;
            expect(qovStsNullPtr, image.data(), 0, planes);
            planes[c] = blocks.data();
        }
    }
}

} // namespace
