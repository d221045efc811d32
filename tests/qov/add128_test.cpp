// Level shift: each level against the plain formula, on every size around the vector widths.
#include "qov_testing.h"
#include "qovi.h"

#include <algorithm>

namespace {

Qov8u plainAdd(Qov16s s)
{
    return Qov8u(std::clamp(int(s) + 128, 0, 255));
}

Qov16s plainSub(Qov8u s)
{
    return Qov16s(int(s) - 128);
}

struct Picture {
    QoviSize size;
    int srcStep, dstStep;     // bytes
    int srcOffset, dstOffset; // bytes behind a 64-byte boundary
};

template <class Src, class Dst>
Picture randomPicture(Random& random)
{
    Picture p;
    p.size = {random.oneIn(4) ? random.in(1, 700) : random.in(1, 140), random.in(1, 9)};
    const bool packed = random.oneIn(3);
    p.srcStep = int(sizeof(Src)) * (p.size.width + (packed ? 0 : random.in(0, 70)));
    p.dstStep = int(sizeof(Dst)) * (p.size.width + (packed ? 0 : random.in(0, 70)));
    p.srcOffset = int(sizeof(Src)) * random.in(0, 63 / int(sizeof(Src)));
    p.dstOffset = int(sizeof(Dst)) * random.in(0, 63 / int(sizeof(Dst)));
    return p;
}

// Catches wrong lanes and tails, a wrong saturation, writes beside the rows, steps mixed up.
template <class Src, class Dst, class Primitive, class Formula>
void comparePictures(Primitive primitive, Formula formula)
{
    Random random;
    for (int round = 0; round < 400; round++) {
        const auto p = randomPicture<Src, Dst>(random);
        SCOPED_TRACE(testing::Message()
                     << p.size.width << "x" << p.size.height << " steps " << p.srcStep << ", " << p.dstStep
                     << " offsets " << p.srcOffset << ", " << p.dstOffset);
        // The source ends with its last pixel, so that the address sanitizer sees a read past it.
        const size_t srcBytes = size_t(p.srcStep) * (p.size.height - 1) + p.size.width * sizeof(Src);
        std::vector<unsigned char> block(srcBytes + p.srcOffset + 64);
        unsigned char* start = block.data() + block.size() - srcBytes;
        start -= reinterpret_cast<uintptr_t>(start) % sizeof(Src);
        auto srcRow = [&](int y) { return reinterpret_cast<Src*>(start + size_t(y) * p.srcStep); };
        for (int y = 0; y < p.size.height; y++)
            for (int x = 0; x < p.size.width; x++) srcRow(y)[x] = random.value<Src>();

        forEachLevel([&] {
            Guarded dst(size_t(p.dstStep) * p.size.height, p.dstOffset);
            ASSERT_EQ(qovStsNoErr, primitive(srcRow(0), p.srcStep, dst.as<Dst>(), p.dstStep, p.size));
            for (int y = 0; y < p.size.height; y++) {
                const Dst* row = reinterpret_cast<Dst*>(dst.as<char>() + size_t(y) * p.dstStep);
                for (int x = 0; x < p.size.width; x++)
                    ASSERT_EQ(formula(srcRow(y)[x]), row[x])
                        << "at " << x << ", " << y << " of " << srcRow(y)[x];
            }
            ASSERT_TRUE(dst.intact(p.dstStep, p.size.width * sizeof(Dst)));
        });
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST(Add128, AnyPicture)
{
    comparePictures<Qov16s, Qov8u>(qoviAdd128_JPEG_16s8u_C1R, plainAdd);
}

TEST(Sub128, AnyPicture)
{
    comparePictures<Qov8u, Qov16s>(qoviSub128_JPEG_8u16s_C1R, plainSub);
}

// Every value once, in one row: catches a wrap at the ends of the range.
TEST(Add128, EveryValue)
{
    std::vector<Qov16s> src(65536);
    for (int i = 0; i < 65536; i++) src[i] = Qov16s(i - 32768);
    forEachLevel([&] {
        std::vector<Qov8u> dst(src.size());
        ASSERT_EQ(qovStsNoErr, qoviAdd128_JPEG_16s8u_C1R(src.data(), 0, dst.data(), 0, {65536, 1}));
        for (size_t i = 0; i < src.size(); i++) ASSERT_EQ(plainAdd(src[i]), dst[i]) << src[i];
    });
}

// One wrong argument alone, then with all later ones wrong too: the earlier kind of error decides.
TEST(LevelShift, Statuses)
{
    Qov16s words[64] = {};
    Qov8u bytes[64] = {};
    struct Case {
        bool noSrc, noDst;
        int wordStep, byteStep;
        QoviSize roi;
        QovStatus status;
    };
    const Case cases[] = {
        {true, false, 16, 8, {8, 8}, qovStsNullPtr}, {false, true, 16, 8, {8, 8}, qovStsNullPtr},
        {true, true, 0, 0, {0, 0}, qovStsNullPtr},   {false, false, 16, 8, {0, 8}, qovStsSize},
        {false, false, 16, 8, {8, -1}, qovStsSize},  {false, false, 1, 1, {-8, 8}, qovStsSize},
        {false, false, 15, 8, {8, 8}, qovStsStep},   {false, false, 16, 7, {8, 8}, qovStsStep},
        {false, false, -16, 8, {8, 8}, qovStsStep},  {false, false, 4, 4, {0x7fffffff, 2}, qovStsStep},
        {false, false, 0, 0, {8, 1}, qovStsNoErr},   {false, false, 16, 8, {8, 8}, qovStsNoErr},
    };
    int i = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(i++);
        EXPECT_EQ(c.status, qoviAdd128_JPEG_16s8u_C1R(c.noSrc ? nullptr : words, c.wordStep,
                                                      c.noDst ? nullptr : bytes, c.byteStep, c.roi));
        EXPECT_EQ(c.status, qoviSub128_JPEG_8u16s_C1R(c.noSrc ? nullptr : bytes, c.byteStep,
                                                      c.noDst ? nullptr : words, c.wordStep, c.roi));
    }
}

} // namespace
