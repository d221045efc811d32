// Chroma sampling of pictures: each level against the plain formula, with and without an odd row and column.
#include "qov_testing.h"
#include "qovi.h"

#include <functional>
#include <memory>

namespace {

struct PictureFunction {
    const char* name;
    bool up, bothWays;
    QovStatus (*call)(const Qov8u*, int, QovSize, Qov8u*, int, QovSize);

    QovSize half(QovSize size) const { return {size.width / 2, bothWays ? size.height / 2 : size.height}; }
};

const PictureFunction functions[] = {
    {"down H2V1", false, false, qoviSampleDownH2V1_JPEG_8u_C1R},
    {"down H2V2", false, true, qoviSampleDownH2V2_JPEG_8u_C1R},
    {"up H2V1", true, false, qoviSampleUpH2V1_JPEG_8u_C1R},
    {"up H2V2", true, true, qoviSampleUpH2V2_JPEG_8u_C1R},
};

// The destination's sample at x, y, where s(x, y) is the source's.
int plain(const PictureFunction& f, const std::function<int(int, int)>& s, int x, int y)
{
    if (!f.up && !f.bothWays) return (s(2 * x, y) + s(2 * x + 1, y) + 1) >> 1;
    if (!f.up)
        return (s(2 * x, 2 * y) + s(2 * x + 1, 2 * y) + s(2 * x, 2 * y + 1) + s(2 * x + 1, 2 * y + 1) + 2) >>
               2;
    const int own = x / 2, beside = x % 2 ? own + 1 : own - 1;
    if (!f.bothWays) return (3 * s(own, y) + s(beside, y) + (x % 2 ? 2 : 1)) >> 2;
    const int nearRow = y / 2, farRow = y % 2 ? nearRow + 1 : nearRow - 1;
    const auto t = [&](int column) { return 3 * s(column, nearRow) + s(column, farRow); };
    return (3 * t(own) + t(beside) + (x % 2 ? 7 : 8)) >> 4;
}

// Catches wrong lanes and roundings, borders that are not read or read too far, tails, steps mixed up.
TEST(SamplePicture, AnySize)
{
    Random random;
    for (int round = 0; round < 1200; round++) {
        const PictureFunction& f = functions[round % 4];
        const int widest = random.oneIn(3) ? 500 : 140;
        const QovSize big{random.in(2, widest), random.in(f.bothWays ? 2 : 1, 7)}, small = f.half(big);
        const QovSize srcSize = f.up ? small : big, dstSize = f.up ? big : small;
        SCOPED_TRACE(testing::Message() << f.name << " of " << srcSize.width << "x" << srcSize.height
                                        << " to " << dstSize.width << "x" << dstSize.height);
        // The source and its border are a block of their own, for the address sanitizer.
        const int across = f.up ? 1 : 0, above = f.up && f.bothWays ? 1 : 0;
        const int rowBytes = srcSize.width + 2 * across, rows = srcSize.height + 2 * above;
        const int srcStep = rowBytes + random.in(0, 40), dstStep = dstSize.width + random.in(0, 40);
        const size_t bytes = size_t(srcStep) * size_t(rows - 1) + size_t(rowBytes);
        const auto block = std::make_unique<Qov8u[]>(bytes);
        for (size_t i = 0; i < bytes; i++) block[i] = random.value<Qov8u>();
        const Qov8u* src = block.get() + above * srcStep + across;
        const auto s = [&](int x, int y) { return int(src[ptrdiff_t(y) * srcStep + x]); };

        const size_t offset = size_t(random.in(0, 63));
        forEachLevel([&] {
            Guarded dst(size_t(dstStep) * size_t(dstSize.height), offset);
            ASSERT_EQ(qovStsNoErr, f.call(src, srcStep, srcSize, dst.as<Qov8u>(), dstStep, dstSize));
            for (int y = 0; y < dstSize.height; y++)
                for (int x = 0; x < dstSize.width; x++)
                    ASSERT_EQ(plain(f, s, x, y), dst.as<Qov8u>()[ptrdiff_t(y) * dstStep + x])
                        << "at " << x << ", " << y;
            ASSERT_TRUE(dst.intact(size_t(dstStep), size_t(dstSize.width)));
        });
        if (HasFatalFailure()) return;
    }
}

// The larger picture is `big`; the smaller one has its halves and `more`. One row of the smaller one has a
// step all the same where a border above and below is read.
TEST(SamplePicture, Statuses)
{
    const struct {
        int nulls; // 1 source, 2 destination
        QovSize big, more;
        int bigStep, smallStep;
        QovStatus status;
    } cases[] = {
        {0, {9, 4}, {0, 0}, 9, 6, qovStsNoErr},   {1, {9, 4}, {0, 0}, 9, 6, qovStsNullPtr},
        {2, {0, 4}, {0, 0}, 0, 0, qovStsNullPtr}, {0, {9, 4}, {1, 0}, 9, 6, qovStsSize},
        {0, {9, 4}, {0, 1}, 9, 6, qovStsSize},    {0, {1, 4}, {0, 0}, 0, 0, qovStsSize},
        {0, {-8, 4}, {0, 0}, 9, 6, qovStsSize},   {0, {9, 0}, {0, 0}, 9, 6, qovStsSize},
        {0, {9, 4}, {0, 0}, 8, 6, qovStsStep},    {0, {9, 4}, {0, 0}, 9, 3, qovStsStep},
    };
    std::vector<Qov8u> bytes(512), out(512);
    for (const PictureFunction& f : functions) {
        for (const auto& c : cases) {
            QovSize small = f.half(c.big);
            small = {small.width + c.more.width, small.height + c.more.height};
            const Qov8u* src = c.nulls & 1 ? nullptr : bytes.data() + 64;
            Qov8u* dst = c.nulls & 2 ? nullptr : out.data();
            EXPECT_EQ(c.status, f.up ? f.call(src, c.smallStep, small, dst, c.bigStep, c.big)
                                     : f.call(src, c.bigStep, c.big, dst, c.smallStep, small))
                << f.name << ", case " << &c - cases;
        }
    }
    const Qov8u* src = bytes.data() + 64;
    EXPECT_EQ(qovStsNoErr, qoviSampleUpH2V1_JPEG_8u_C1R(src, 0, {4, 1}, out.data(), 0, {8, 1}));
    EXPECT_EQ(qovStsNoErr, qoviSampleDownH2V2_JPEG_8u_C1R(src, 8, {8, 2}, out.data(), 0, {4, 1}));
    EXPECT_EQ(qovStsStep, qoviSampleUpH2V2_JPEG_8u_C1R(src, 3, {4, 1}, out.data(), 8, {8, 2}));
}

} // namespace
