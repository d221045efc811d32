// The 8x8 transforms with level shift and quantisation: accuracy against double precision, equal bytes at all
// levels.
#include "dct_reference.h"
#include "qov_testing.h"
#include "qovi.h"

#include <numeric>

namespace {

typedef std::array<Qov16u, 64> Table;

Table tableOf(int step)
{
    Table t;
    t.fill(Qov16u(step));
    return t;
}

Table randomTable(Random& random)
{
    Table t;
    for (Qov16u& step : t)
        step = random.oneIn(8) ? std::max<Qov16u>(1, random.value<Qov16u>()) : Qov16u(random.in(1, 120));
    return t;
}

WordBlock randomBlock(Random& random, int amplitude)
{
    WordBlock b;
    for (Qov16s& v : b) v = Qov16s(random.in(-amplitude, amplitude - 1));
    return b;
}

RealBlock real(const WordBlock& b)
{
    RealBlock r;
    std::copy(b.begin(), b.end(), r.begin());
    return r;
}

WordBlock forward(const WordBlock& samples, const Table& table)
{
    WordBlock c;
    EXPECT_EQ(qovStsNoErr, qoviDCTQuantFwd8x8_JPEG_16s_C1(samples.data(), c.data(), table.data()));
    return c;
}

WordBlock inverse(const WordBlock& coefficients, const Table& table)
{
    WordBlock s;
    EXPECT_EQ(qovStsNoErr, qoviDCTQuantInv8x8_JPEG_16s_C1(coefficients.data(), s.data(), table.data()));
    return s;
}

void expectNear(const Agreement& agreement, int what, double share = 0.99)
{
    EXPECT_LE(agreement.largest(), 1) << what;
    EXPECT_GE(agreement.equalShare(), share) << what;
}

// ---- forward

// Samples at their ends along each basis function, both signs: where 16- and 32-bit sums are largest. The
// second half: rows at their largest for one function, alternating for another.
WordBlock waves(int k)
{
    WordBlock samples;
    for (int i = 0; i < 64; i++) {
        const double alternating = (i / 8 ^ k / 8) & 1 ? -1 : 1;
        const double wave = cosine(i % 8, k % 8) * (k < 128 ? cosine(i / 8, k / 8 % 8) : alternating);
        samples[i] = (wave >= 0) == (k / 64 % 2 == 0) ? 127 : -128;
    }
    return samples;
}

TEST(ForwardDct, NearTheRealNumbers)
{
    Random random;
    // 8-bit samples take the integer transform, wider ones single precision; both must saturate.
    for (int amplitude : {128, 30, 2048, 32768}) {
        forEachLevel([&] {
            std::array<Agreement, 64> places; // alone, so that a bias of a few coefficients shows
            Agreement all;
            for (int n = -256; n < 2000; n++) {
                const WordBlock samples = n < 0 ? waves(n + 256) : randomBlock(random, amplitude);
                const WordBlock c = forward(samples, tableOf(1));
                const RealBlock expected = referenceDct(real(samples), false);
                for (int i = 0; i < 64; i++) {
                    const int right = limited(expected[i], -32768, 32767);
                    all.add(right, c[i]);
                    if (n >= 0) places[i].add(right, c[i]);
                }
            }
            expectNear(all, amplitude);
            for (int i = 0; i < 64; i++) expectNear(places[i], amplitude, 0.98);
        });
    }
}

// DC is exact, so its halves are too: they go away from zero.
TEST(ForwardDct, HalvesOfDc)
{
    forEachLevel([] {
        for (int sum = -600; sum <= 600; sum++) {
            WordBlock samples{};
            int left = sum;
            for (Qov16s& s : samples) {
                s = Qov16s(std::clamp(left, -128, 127));
                left -= s;
            }
            for (int step : {1, 3, 16, 255}) {
                const int q = (2 * std::abs(sum) + 8 * step) / (16 * step);
                ASSERT_EQ(sum < 0 ? -q : q, forward(samples, tableOf(step))[0]) << sum << " / 8 / " << step;
            }
        }
    });
}

// The quotient is that of the coefficient before it is rounded.
TEST(ForwardDct, QuantisedOnce)
{
    Random random;
    for (int amplitude : {128, 32768})
        for (int n = 0; n < 500; n++) {
            const WordBlock samples = randomBlock(random, amplitude);
            const Table table = randomTable(random);
            const RealBlock expected = referenceDct(real(samples), false);
            forEachLevel([&] {
                const WordBlock q = forward(samples, table);
                for (int i = 0; i < 64; i++) {
                    const double quotient = std::clamp(expected[i] / table[i], -32768.0, 32767.0);
                    ASSERT_LE(std::abs(quotient - q[i]), 0.5 + 0.2 / table[i])
                        << expected[i] << " / " << table[i];
                }
            });
            if (HasFatalFailure()) return;
        }
}

// The form with level shift equals that on shifted samples; the bare transform differs in DC alone.
TEST(ForwardDct, FormsAgree)
{
    Random random;
    for (int n = 0; n < 500; n++) {
        const WordBlock samples = randomBlock(random, 128);
        const Table table = randomTable(random);
        Qov8u bytes[64];
        for (int i = 0; i < 64; i++) bytes[i] = Qov8u(samples[i] + 128);
        forEachLevel([&] {
            WordBlock c;
            ASSERT_EQ(qovStsNoErr, qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R(bytes, 8, c.data(), table.data()));
            ASSERT_EQ(forward(samples, table), c);
            const WordBlock bare = forward(samples, tableOf(1));
            ASSERT_EQ(qovStsNoErr, qoviDCT8x8Fwd_8u16s_C1R(bytes, 8, c.data()));
            ASSERT_TRUE(std::equal(bare.begin() + 1, bare.end(), c.begin() + 1));
            ASSERT_EQ((std::accumulate(samples.begin(), samples.end(), 64 * 128) + 4) / 8, c[0]);
        });
        if (HasFatalFailure()) return;
    }
}

// ---- inverse

// IEEE 1180-1990: its generator of random blocks.
class StandardRandom {
public:
    int in(int low, int high)
    {
        m_state = m_state * 1103515245 + 12345;
        const double x = double(m_state & 0x7ffffffe) / double(0x7fffffff);
        return int(x * (high - low + 1)) + low;
    }

private:
    Qov32u m_state = 1;
};

TEST(InverseDct, Ieee1180)
{
    struct {
        int low, high;
    } const ranges[] = {{-256, 255}, {-5, 5}, {-300, 300}};
    const int blocks = 10000;
    for (const auto& range : ranges)
        for (int sign : {1, -1}) {
            SCOPED_TRACE(testing::Message() << range.low << ".." << range.high << " times " << sign);
            StandardRandom random;
            std::vector<WordBlock> coefficients(blocks), expected(blocks);
            for (int b = 0; b < blocks; b++) {
                RealBlock samples;
                for (double& s : samples) s = sign * random.in(range.low, range.high);
                const RealBlock c = referenceDct(samples, false);
                for (int i = 0; i < 64; i++) coefficients[b][i] = Qov16s(limited(c[i], -2048, 2047));
                const RealBlock s = referenceDct(real(coefficients[b]), true);
                for (int i = 0; i < 64; i++) expected[b][i] = Qov16s(limited(s[i], -256, 255));
            }
            forEachLevel([&] {
                std::array<double, 64> sum{}, squares{};
                for (int b = 0; b < blocks; b++) {
                    const WordBlock got = inverse(coefficients[b], tableOf(1));
                    for (int i = 0; i < 64; i++) {
                        const int error = std::clamp<int>(got[i], -256, 255) - expected[b][i];
                        ASSERT_LE(std::abs(error), 1);
                        sum[i] += error;
                        squares[i] += error * error;
                    }
                }
                double meanOfAll = 0, squareOfAll = 0;
                for (int i = 0; i < 64; i++) {
                    EXPECT_LE(std::abs(sum[i] / blocks), 0.015) << i;
                    EXPECT_LE(squares[i] / blocks, 0.06) << i;
                    meanOfAll += sum[i] / blocks / 64;
                    squareOfAll += squares[i] / blocks / 64;
                }
                EXPECT_LE(std::abs(meanOfAll), 0.0015);
                EXPECT_LE(squareOfAll, 0.02);
            });
        }
}

// Coefficients of every size, also far beyond those of 8-bit samples.
TEST(InverseDct, NearTheRealNumbers)
{
    Random random;
    for (int amplitude : {40, 300, 1024, 32768}) {
        forEachLevel([&] {
            Agreement agreement;
            for (int n = 0; n < 2000; n++) {
                WordBlock c = randomBlock(random, amplitude);
                if (n % 2) // few coefficients, large samples
                    for (Qov16s& v : c) v = random.oneIn(8) ? v : Qov16s(0);
                const WordBlock s = inverse(c, tableOf(1));
                const RealBlock expected = referenceDct(real(c), true);
                for (int i = 0; i < 64; i++) agreement.add(limited(expected[i], -32768, 32767), s[i]);
            }
            expectNear(agreement, amplitude);
        });
    }
}

// Coefficients that meet every branch: DC alone, a corner, middle values around their limit, products at 15
// and 16 bits.
WordBlock branchyBlock(Random& random, Table& table)
{
    WordBlock c{};
    table = random.oneIn(2) ? tableOf(1) : randomTable(random);
    const int corner = random.oneIn(3) ? 1 : random.oneIn(2) ? random.in(2, 4) : 8;
    const int amplitude = random.oneIn(3) ? 32768 : random.oneIn(2) ? 1800 : 200;
    for (int v = 0; v < corner; v++)
        for (int u = 0; u < corner; u++)
            c[8 * v + u] = random.oneIn(3) ? Qov16s(random.in(-amplitude, amplitude - 1)) : 0;
    if (random.oneIn(6)) {
        const int at = 8 * random.in(0, corner - 1) + random.in(0, corner - 1);
        c[at] = Qov16s(random.in(-2, 2));
        table[at] = Qov16u(random.oneIn(2) ? 65536 - random.in(1, 40) : 32768 + random.in(-2, 2));
    }
    return c;
}

typedef QovStatus ToBytes(const Qov16s*, Qov8u*, int, const Qov16u*);
struct ByteForm {
    ToBytes* primitive;
    int corner, size; // coefficients read and samples written in each direction
};
const ByteForm byteForms[] = {
    {qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R, 8, 8},      {qoviDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, 4, 8},
    {qoviDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, 2, 8},  {qoviDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, 1, 8},
    {qoviDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, 4, 4}, {qoviDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, 2, 2},
};

// The byte forms equal the plain one with level shift and clipping; the corner forms that of the block with
// zeros around the corner; the small forms, which are of their own, themselves at px.
TEST(InverseDct, EveryFormAndLevelAgree)
{
    Random random;
    for (int n = 0; n < 6000; n++) {
        Table table;
        const WordBlock c = branchyBlock(random, table);
        for (const ByteForm& form : byteForms) {
            WordBlock corner{}, ofPx;
            for (int i = 0; i < 64; i++)
                if (i / 8 < form.corner && i % 8 < form.corner) corner[i] = c[i];
            std::vector<Qov8u> expected;
            forEachLevel([&] {
                std::vector<Qov8u> got(size_t(form.size * form.size));
                ASSERT_EQ(qovStsNoErr, form.primitive(c.data(), got.data(), form.size, table.data()));
                const WordBlock words = inverse(corner, table);
                if (expected.empty()) {
                    ofPx = words;
                    expected = got;
                    for (size_t i = 0; form.size == 8 && i < 64; i++)
                        expected[i] = Qov8u(std::clamp(words[i] + 128, 0, 255));
                }
                ASSERT_EQ(ofPx, words);
                ASSERT_EQ(expected, got) << "corner " << form.corner;
            });
            if (HasFatalFailure()) return;
        }
    }
}

// N-point transforms of the corner with the mean of the block.
TEST(InverseDct, ReducedSizes)
{
    Random random;
    for (const ByteForm& form : byteForms) {
        const int size = form.size;
        if (size == 8) continue;
        forEachLevel([&] {
            Agreement agreement;
            for (int n = 0; n < 3000; n++) {
                const WordBlock c = randomBlock(random, n % 2 ? 32768 : 200);
                std::vector<Qov8u> got(size_t(size * size));
                ASSERT_EQ(qovStsNoErr, form.primitive(c.data(), got.data(), size, tableOf(1).data()));
                for (int i = 0; i < size * size; i++) {
                    double sample = 0;
                    for (int k = 0; k < size * size; k++)
                        sample += c[8 * (k / size) + k % size] * size / 8.0 *
                                  cosine(i / size, k / size, size) * cosine(i % size, k % size, size);
                    agreement.add(limited(sample + 128, 0, 255), got[i]);
                }
            }
            expectNear(agreement, size);
        });
    }
}

TEST(InverseDct, FlatBlocks)
{
    forEachLevel([] {
        for (int dc = -1100; dc <= 1100; dc++) {
            WordBlock c{};
            c[0] = Qov16s(dc);
            const int mean = int(std::floor(dc / 8.0 + 0.5)); // halves up, as in the other blocks
            for (int sample : inverse(c, tableOf(1))) ASSERT_EQ(mean, sample) << dc;
            for (const ByteForm& form : byteForms) {
                std::vector<Qov8u> got(size_t(form.size * form.size));
                ASSERT_EQ(qovStsNoErr, form.primitive(c.data(), got.data(), form.size, tableOf(1).data()));
                // Only the floating-point transform of the 4x4 form rounds halves away from zero.
                const int own = form.size == 4 ? int(std::round(dc / 8.0)) : mean;
                for (int sample : got) ASSERT_EQ(std::clamp(own + 128, 0, 255), sample) << dc;
            }
        }
    });
}

// ---- 12 bits

TEST(Dct12, NearTheRealNumbers)
{
    Random random;
    for (int highest : {4095, 65535})
        forEachLevel([&] {
            Agreement there, back;
            std::array<Qov32f, 64> ones;
            ones.fill(1);
            for (int n = 0; n < 2000; n++) {
                std::array<Qov16u, 64> samples, again;
                RealBlock shifted;
                for (int i = 0; i < 64; i++) shifted[i] = (samples[i] = Qov16u(random.in(0, highest))) - 2048;
                WordBlock c;
                ASSERT_EQ(qovStsNoErr,
                          qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R(samples.data(), 16, c.data(), ones.data()));
                ASSERT_EQ(qovStsNoErr,
                          qoviDCTQuantInv8x8LS_JPEG_16s16u_C1R(c.data(), again.data(), 16, ones.data()));
                const RealBlock expected = referenceDct(shifted, false), sample = referenceDct(real(c), true);
                for (int i = 0; i < 64; i++) {
                    there.add(limited(expected[i], -32768, 32767), c[i]);
                    back.add(limited(sample[i] + 2048, 0, 4095), again[i]);
                }
            }
            expectNear(there, highest);
            expectNear(back, highest);
        });
}

} // namespace
