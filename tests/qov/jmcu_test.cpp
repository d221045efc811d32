// MCUs of pixels and blocks of samples: each function equals conversion of the picture, sampling of chroma
// and level shift one after the other, at every level.
#include "planes_testing.h"
#include "qovicolor.h"
#include "qovicopy.h"
#include "qovimcu.h"
#include "qovipacked.h"

#include <algorithm>

namespace {

typedef std::array<std::vector<Qov8u>, 4> Planes; // of full size

// How pixels become planes and the other way round, row by row without gaps.
struct Pixels {
    int bytes, planes;
    std::function<void(const Qov8u*, Qov8u* const*, QoviSize)> split;
    std::function<void(const Qov8u* const*, Qov8u*, QoviSize)> join;
};

// Of `channels` channels in `bytes` bytes, by functions on pictures that have tests of their own.
template <class Pixel>
Pixels byPictures(int channels, int bytes,
                  QovStatus (*splitPicture)(const Pixel*, int, Qov8u* const*, int, QoviSize),
                  QovStatus (*joinPicture)(const Qov8u* const*, int, Pixel*, int, QoviSize))
{
    return {bytes, channels,
            [=](const Qov8u* src, Qov8u* const* dst, QoviSize roi) {
                ASSERT_EQ(qovStsNoErr,
                          splitPicture((const Pixel*)src, bytes * roi.width, dst, roi.width, roi));
            },
            [=](const Qov8u* const* src, Qov8u* dst, QoviSize roi) {
                ASSERT_EQ(qovStsNoErr, joinPicture(src, roi.width, (Pixel*)dst, bytes * roi.width, roi));
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
size_t place(QoviSize region, int component, int x, int y)
{
    const Sampling s(region, component);
    x /= s.across;
    y /= s.down;
    return size_t((y / 8 * (region.width / 8 / s.across) + x / 8) * 64 + y % 8 * 8 + x % 8);
}

// Blocks or pixels of a call: a block of memory of its own for each source, for the address sanitizer.
template <class T>
struct Source {
    std::unique_ptr<T[]> block;
    T* start;
    Source(Random& random, size_t count, int misfit)
    {
        block = std::make_unique<T[]>(count + size_t(misfit));
        start = block.get() + misfit;
        for (size_t i = 0; i < count; i++) start[i] = random.value<T>();
    }
};

Planes makePlanes(QoviSize region)
{
    Planes planes;
    for (auto& plane : planes) plane.resize(size_t(region.width * region.height));
    return planes;
}

// Catches wrong channels, blocks, lanes and rounding, a box before the conversion, access beside the region.
TEST(Mcu, ToBlocks)
{
    Random random;
    for (const Case& f : cases) {
        SCOPED_TRACE(f.name);
        const auto [width, height] = f.region;
        const int rowBytes = f.pixels.bytes * width;
        for (int round = 0; round < 20; round++) {
            const int step = rowBytes + 2 * random.in(0, 20);
            Source<Qov8u> image(random, size_t(step * (height - 1) + rowBytes), 2 * random.in(0, 15));
            std::vector<Qov8u> packed;
            for (int y = 0; y < height; y++)
                packed.insert(packed.end(), image.start + y * step, image.start + y * step + rowBytes);
            Planes planes = makePlanes(f.region);
            Qov8u* const full[4] = {planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data()};
            f.pixels.split(packed.data(), full, f.region);

            forEachLevel([&] {
                std::vector<Guarded> blocks;
                Qov16s* dst[4] = {};
                for (int c = 0; c < f.pixels.planes; c++)
                    blocks.emplace_back(128 * size_t(Sampling(f.region, c).blocks),
                                        2 * size_t(random.in(0, 31)));
                for (int c = 0; c < f.pixels.planes; c++) dst[c] = blocks[size_t(c)].as<Qov16s>();
                ASSERT_EQ(qovStsNoErr, f.toBlocks(image.start, step, dst));
                for (int c = 0; c < f.pixels.planes; c++) {
                    ASSERT_TRUE(blocks[size_t(c)].intact()) << "component " << c;
                    const auto [across, down, count] = Sampling(f.region, c);
                    for (int y = 0; y < height; y += down)
                        for (int x = 0; x < width; x += across) {
                            int sum = across * down / 2;
                            for (int i = 0; i < across * down; i++)
                                sum += full[c][(y + i / across) * width + x + i % across];
                            ASSERT_EQ(sum / (across * down) - 128, dst[c][place(f.region, c, x, y)])
                                << "component " << c << " at " << x << ", " << y;
                        }
                }
            });
            if (HasFatalFailure()) return;
        }
    }
}

TEST(Mcu, FromBlocks)
{
    Random random;
    for (const Case& f : cases) {
        SCOPED_TRACE(f.name);
        const auto [width, height] = f.region;
        const int rowBytes = f.pixels.bytes * width;
        for (int round = 0; round < 20; round++) {
            std::vector<Source<Qov16s>> blocks;
            const Qov16s* src[4] = {};
            for (int c = 0; c < f.pixels.planes; c++) {
                blocks.emplace_back(random, size_t(64 * Sampling(f.region, c).blocks), random.in(0, 31));
                src[c] = blocks.back().start;
            }
            Planes planes = makePlanes(f.region);
            for (int c = 0; c < f.pixels.planes; c++)
                for (int y = 0; y < height; y++)
                    for (int x = 0; x < width; x++)
                        planes[size_t(c)][size_t(y * width + x)] =
                            Qov8u(std::clamp(src[c][place(f.region, c, x, y)] + 128, 0, 255));
            const Qov8u* const full[4] = {planes[0].data(), planes[1].data(), planes[2].data(),
                                          planes[3].data()};
            std::vector<Qov8u> expected(size_t(rowBytes * height));
            f.pixels.join(full, expected.data(), f.region);

            const int step = rowBytes + 2 * random.in(0, 20);
            forEachLevel([&] {
                Guarded image(size_t(step * height), 2 * size_t(random.in(0, 31)));
                ASSERT_EQ(qovStsNoErr, f.fromBlocks(src, image.as<void>(), step));
                ASSERT_TRUE(image.intact(size_t(step), size_t(rowBytes)));
                for (int i = 0; i < rowBytes * height; i++)
                    ASSERT_EQ(expected[size_t(i)], image.as<Qov8u>()[i / rowBytes * step + i % rowBytes])
                        << "byte " << i % rowBytes << " of row " << i / rowBytes;
            });
            if (HasFatalFailure()) return;
        }
    }
}

// The table of functions hands each its own number of planes and length of a row.
TEST(Mcu, Statuses)
{
    std::vector<Qov8u> image(16 * 64);
    std::vector<Qov16s> blocks(256);
    for (const Case& f : cases) {
        SCOPED_TRACE(f.name);
        const int rowBytes = f.pixels.bytes * f.region.width;
        Qov16s* planes[4] = {};
        std::fill_n(planes, f.pixels.planes, blocks.data());
        EXPECT_EQ(qovStsNoErr, f.toBlocks(image.data(), rowBytes, planes));
        EXPECT_EQ(qovStsNoErr, f.fromBlocks(planes, image.data(), rowBytes));
        EXPECT_EQ(qovStsStep, f.toBlocks(image.data(), rowBytes - 1, planes));
        EXPECT_EQ(qovStsStep, f.fromBlocks(planes, image.data(), rowBytes - 1));
        EXPECT_EQ(qovStsNullPtr, f.toBlocks(nullptr, 0, planes));
        EXPECT_EQ(qovStsNullPtr, f.fromBlocks(planes, nullptr, 0));
        EXPECT_EQ(qovStsNullPtr, f.toBlocks(image.data(), 0, nullptr));
        EXPECT_EQ(qovStsNullPtr, f.fromBlocks(nullptr, image.data(), 0));
        for (int c = 0; c < f.pixels.planes; c++) {
            planes[c] = nullptr;
            EXPECT_EQ(qovStsNullPtr, f.toBlocks(image.data(), 0, planes)) << "plane " << c;
            EXPECT_EQ(qovStsNullPtr, f.fromBlocks(planes, image.data(), 0)) << "plane " << c;
            planes[c] = blocks.data();
        }
    }
}

} // namespace
