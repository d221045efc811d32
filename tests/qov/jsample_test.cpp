// Chroma sampling of rows: each level against the plain formula, at every width around the vectors.
#include "qov_testing.h"
#include "qovi.h"

namespace {

typedef std::vector<Qov8u> Bytes;

// A row function takes one row or two and `width` of their samples.
struct RowFunction {
    const char* name;
    int rows;
    QovStatus (*oneRow)(const Qov8u*, int, Qov8u*);
    QovStatus (*twoRows)(const Qov8u*, const Qov8u*, int, Qov8u*);
    Bytes (*formula)(const Qov8u*, const Qov8u*, int width);

    QovStatus call(const Qov8u* a, const Qov8u* b, int width, Qov8u* dst) const
    {
        return rows == 1 ? oneRow(a, width, dst) : twoRows(a, b, width, dst);
    }
};

Bytes plainBox(const Qov8u* a, const Qov8u* b, int width)
{
    Bytes out;
    for (int x = 0; x + 1 < width; x += 2)
        out.push_back(Qov8u(b ? (a[x] + a[x + 1] + b[x] + b[x + 1] + 2) / 4 : (a[x] + a[x + 1] + 1) / 2));
    return out;
}

// The ends stand as they are defined, not as a border would give them.
Bytes plainTriangle(const Qov8u* a, const Qov8u* b, int width)
{
    const auto t = [&](int x) { return b ? 3 * a[x] + b[x] : a[x]; };
    const int last = width - 1;
    Bytes out;
    for (int x = 0; x < width; x++) {
        if (b) {
            out.push_back(Qov8u((x ? 3 * t(x) + t(x - 1) + 8 : 4 * t(0) + 8) / 16));
            out.push_back(Qov8u((x < last ? 3 * t(x) + t(x + 1) + 7 : 4 * t(x) + 7) / 16));
        } else {
            out.push_back(Qov8u(x ? (3 * t(x) + t(x - 1) + 1) / 4 : t(0)));
            out.push_back(Qov8u(x < last ? (3 * t(x) + t(x + 1) + 2) / 4 : t(x)));
        }
    }
    return out;
}

const RowFunction functions[] = {
    {"box H2V1", 1, qoviSampleDownRowH2V1_Box_JPEG_8u_C1, nullptr, plainBox},
    {"box H2V2", 2, nullptr, qoviSampleDownRowH2V2_Box_JPEG_8u_C1, plainBox},
    {"triangle H2V1", 1, qoviSampleUpRowH2V1_Triangle_JPEG_8u_C1, nullptr, plainTriangle},
    {"triangle H2V2", 2, nullptr, qoviSampleUpRowH2V2_Triangle_JPEG_8u_C1, plainTriangle},
};

// Samples that end with their block, so that the address sanitizer sees a read past them.
class Row {
public:
    Row(Random& random, int width) : m_block(random.in(0, 63) + width), m_start(m_block.size() - width)
    {
        for (Qov8u& s : m_block) s = random.value<Qov8u>();
    }
    const Qov8u* samples() const { return m_block.data() + m_start; }

private:
    Bytes m_block;
    size_t m_start;
};

// Catches wrong lanes and roundings, ends that read a border, tails that are left out or written past.
TEST(SampleRow, AnyWidth)
{
    Random random;
    std::vector<int> widths = {767, 768, 1025, 4099};
    for (int width = 1; width <= 200; width++) widths.push_back(width);
    for (const RowFunction& f : functions) {
        for (const int width : widths) {
            SCOPED_TRACE(testing::Message() << f.name << ", " << width);
            const Row a(random, width), b(random, width);
            const Bytes expected = f.formula(a.samples(), f.rows == 2 ? b.samples() : nullptr, width);
            const size_t offset = size_t(random.in(0, 63));
            forEachLevel([&] {
                Guarded dst(expected.size(), offset);
                ASSERT_EQ(qovStsNoErr, f.call(a.samples(), b.samples(), width, dst.as<Qov8u>()));
                ASSERT_EQ(expected, Bytes(dst.as<Qov8u>(), dst.as<Qov8u>() + expected.size()));
                ASSERT_TRUE(dst.intact());
            });
            if (HasFatalFailure()) return;
        }
    }
}

// Every pair of neighbours in one row: catches a rounding that random samples miss.
TEST(SampleRow, EveryPair)
{
    Bytes row;
    for (int a = 0; a < 256; a++)
        for (int b = 0; b < 256; b++) row.insert(row.end(), {Qov8u(a), Qov8u(b)});
    const int width = int(row.size());
    for (const RowFunction& f : functions) {
        if (f.rows == 2) continue;
        SCOPED_TRACE(f.name);
        const Bytes expected = f.formula(row.data(), nullptr, width);
        forEachLevel([&] {
            Bytes dst(expected.size());
            ASSERT_EQ(qovStsNoErr, f.call(row.data(), nullptr, width, dst.data()));
            ASSERT_TRUE(expected == dst);
        });
    }
}

TEST(SampleRow, Statuses)
{
    const Qov8u src[8] = {};
    Qov8u dst[16];
    const struct {
        int nulls; // 1 first row, 2 second row, 4 destination
        int width;
        QovStatus status;
    } cases[] = {
        {1, 8, qovStsNullPtr}, {2, 8, qovStsNullPtr}, {4, 8, qovStsNullPtr},      {7, 0, qovStsNullPtr},
        {0, 0, qovStsSize},    {0, -1, qovStsSize},   {0, INT32_MIN, qovStsSize}, {0, 8, qovStsNoErr},
    };
    for (const RowFunction& f : functions) {
        for (const auto& c : cases) {
            if (f.rows == 1 && c.nulls == 2) continue;
            EXPECT_EQ(c.status, f.call(c.nulls & 1 ? nullptr : src, c.nulls & 2 ? nullptr : src, c.width,
                                       c.nulls & 4 ? nullptr : dst))
                << f.name << ", nulls " << c.nulls << ", width " << c.width;
        }
    }
}

} // namespace
