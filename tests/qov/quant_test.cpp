// Quantisation and its tables.
#include "qov_testing.h"
#include "qovi.h"

#include <algorithm>

namespace {

// T.81, A.3.4, in whole numbers.
int plainQuantise(int c, int step)
{
    const int q = (2 * std::abs(c) + step) / (2 * step);
    return c < 0 ? -q : q;
}

int plainDequantise(int c, int step)
{
    return int(std::clamp<long long>((long long)c * step, -32768, 32767));
}

typedef QovStatus InPlace(Qov16s*, const Qov16u*);

// One block at a 2-byte boundary, each level against the formula.
void compareBlock(InPlace* primitive, int (*formula)(int, int), const Qov16s (&block)[64],
                  const Qov16u (&steps)[64])
{
    Guarded memory(sizeof block, 2);
    Qov16s* p = memory.as<Qov16s>();
    std::memcpy(p, block, sizeof block);
    ASSERT_EQ(qovStsNoErr, primitive(p, steps));
    for (int i = 0; i < 64; i++)
        ASSERT_EQ(formula(block[i], steps[i]), p[i]) << block[i] << " and step " << steps[i];
    ASSERT_TRUE(memory.intact());
}

// Every coefficient with every 8-bit step.
TEST(QuantFwd, ExactForAllSmallSteps)
{
    forEachLevel([&] {
        for (int step = 1; step <= 255; step++) {
            Qov16u steps[64];
            std::fill(std::begin(steps), std::end(steps), Qov16u(step));
            for (int first = -32768; first < 32768; first += 64) {
                Qov16s block[64];
                for (int i = 0; i < 64; i++) block[i] = Qov16s(first + i);
                ASSERT_EQ(qovStsNoErr, qoviQuantFwd8x8_JPEG_16s_C1I(block, steps));
                for (int i = 0; i < 64; i++)
                    ASSERT_EQ(plainQuantise(first + i, step), block[i]) << first + i << " / " << step;
            }
        }
    });
}

// Steps of any 16 bits, coefficients around the halves: where a rough reciprocal would show.
TEST(QuantFwd, ExactAroundTheHalves)
{
    Random random;
    for (int round = 0; round < 20000; round++) {
        Qov16s block[64];
        Qov16u steps[64];
        for (int i = 0; i < 64; i++) {
            const int step = steps[i] = Qov16u(std::max<int>(1, random.value<Qov16u>()));
            const int most = 2 * 32767 / step, halves = random.in(0, most);
            const int c = std::min(32767, halves * step / 2 + random.in(-1, 1));
            block[i] = Qov16s(random.oneIn(2) ? c : -c);
        }
        forEachLevel([&] { compareBlock(qoviQuantFwd8x8_JPEG_16s_C1I, plainQuantise, block, steps); });
        if (HasFatalFailure()) return;
    }
}

TEST(QuantInv, SaturatedProducts)
{
    Random random;
    for (int round = 0; round < 2000; round++) {
        Qov16s block[64];
        Qov16u steps[64];
        for (int i = 0; i < 64; i++) {
            block[i] = random.value<Qov16s>();
            steps[i] = random.value<Qov16u>(); // 0 is a plain factor
        }
        forEachLevel([&] { compareBlock(qoviQuantInv8x8_JPEG_16s_C1I, plainDequantise, block, steps); });
        if (HasFatalFailure()) return;
    }
}

TEST(QuantFwd, ZeroStepCountsAsOne)
{
    forEachLevel([] {
        Qov16s block[64];
        Qov16u steps[64] = {};
        for (int i = 0; i < 64; i++) block[i] = Qov16s(1000 * i - 32000);
        ASSERT_EQ(qovStsNoErr, qoviQuantFwd8x8_JPEG_16s_C1I(block, steps));
        for (int i = 0; i < 64; i++) ASSERT_EQ(1000 * i - 32000, block[i]);
    });
}

// The zig-zag walk of T.81, figure A.6, made by walking.
TEST(QuantTables, ZigZagToNatural)
{
    Qov8u raw[64];
    Qov16u forward[64], inverse[64];
    for (int i = 0; i < 64; i++) raw[i] = Qov8u(i + 1);
    ASSERT_EQ(qovStsNoErr, qoviQuantFwdTableInit_JPEG_8u16u(raw, forward));
    ASSERT_EQ(qovStsNoErr, qoviQuantInvTableInit_JPEG_8u16u(raw, inverse));
    int x = 0, y = 0;
    for (int i = 0; i < 64; i++) {
        ASSERT_EQ(i + 1, forward[8 * y + x]) << x << ", " << y;
        const bool up = (x + y) % 2 == 0;
        int &along = up ? x : y, &back = up ? y : x;
        if (along == 7)
            back++;
        else {
            along++;
            if (back > 0) back--;
        }
    }
    EXPECT_TRUE(std::equal(forward, forward + 64, inverse));
}

TEST(QuantTables, Quality)
{
    struct {
        int quality, raw, scaled;
    } const cases[] = {{50, 16, 16},   {50, 255, 255}, {75, 16, 8},  {75, 99, 50}, {90, 61, 12},
                       {100, 255, 1},  {100, 1, 1},    {101, 16, 1}, {25, 16, 32}, {25, 10, 20},
                       {10, 99, 255},  {1, 1, 50},     {1, 16, 255}, {0, 1, 50},   {-7, 1, 50},
                       {49, 100, 102}, {75, 0, 1}};
    for (const auto& c : cases) {
        Qov8u raw[64];
        std::fill(std::begin(raw), std::end(raw), Qov8u(c.raw));
        ASSERT_EQ(qovStsNoErr, qoviQuantFwdRawTableInit_JPEG_8u(raw, c.quality));
        for (int step : raw) ASSERT_EQ(c.scaled, step) << "quality " << c.quality << ", step " << c.raw;
    }
}

TEST(QuantTables, Statuses)
{
    Qov8u raw[64];
    Qov16u table[64];
    Qov16s block[64] = {};
    std::fill(std::begin(raw), std::end(raw), Qov8u(1));
    std::fill(std::begin(table), std::end(table), Qov16u(1));
    EXPECT_EQ(qovStsNullPtr, qoviQuantFwdRawTableInit_JPEG_8u(nullptr, 50));
    EXPECT_EQ(qovStsNullPtr, qoviQuantFwdTableInit_JPEG_8u16u(nullptr, table));
    EXPECT_EQ(qovStsNullPtr, qoviQuantFwdTableInit_JPEG_8u16u(raw, nullptr));
    EXPECT_EQ(qovStsNullPtr, qoviQuantInvTableInit_JPEG_8u16u(nullptr, table));
    EXPECT_EQ(qovStsNullPtr, qoviQuantInvTableInit_JPEG_8u16u(raw, nullptr));
    EXPECT_EQ(qovStsNullPtr, qoviQuantFwd8x8_JPEG_16s_C1I(nullptr, table));
    EXPECT_EQ(qovStsNullPtr, qoviQuantFwd8x8_JPEG_16s_C1I(block, nullptr));
    EXPECT_EQ(qovStsNullPtr, qoviQuantInv8x8_JPEG_16s_C1I(nullptr, table));
    EXPECT_EQ(qovStsNullPtr, qoviQuantInv8x8_JPEG_16s_C1I(block, nullptr));
    raw[63] = 0;
    EXPECT_EQ(qovStsBadArg, qoviQuantFwdTableInit_JPEG_8u16u(raw, table));
    EXPECT_EQ(qovStsNoErr, qoviQuantInvTableInit_JPEG_8u16u(raw, table));
    EXPECT_EQ(0, table[63]);
}

} // namespace
