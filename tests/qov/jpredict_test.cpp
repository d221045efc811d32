// Prediction of lossless JPEG: each level against table H.1, with the extremes of 16 bits.
#include "qov_testing.h"
#include "qovi.h"

namespace {

typedef std::vector<Qov16s> Samples;

// T.81, table H.1. a, b, c: unsigned samples to the left, above, and above to the left.
int plainPrediction(int predictor, int a, int b, int c)
{
    switch (predictor) {
    case 1: return a;
    case 2: return b;
    case 3: return c;
    case 4: return a + b - c;
    case 5: return a + ((b - c) >> 1);
    case 6: return b + ((a - c) >> 1);
    default: return (a + b) >> 1;
    }
}

Samples plainDifferences(const Samples& row, const Samples& prev, int predictor)
{
    Samples out;
    for (size_t x = 0; x < row.size(); x++) {
        const int a = x ? Qov16u(row[x - 1]) : 0, b = Qov16u(prev[x]), c = x ? Qov16u(prev[x - 1]) : 0;
        out.push_back(Qov16s(row[x] - (x ? plainPrediction(predictor, a, b, c) : b)));
    }
    return out;
}

// How samples look decides which way a reconstruction takes.
enum class Kind { smooth, dark, anything, extremes };

Samples randomRow(Random& random, Kind kind, int width)
{
    Samples row;
    int s = random.in(0, 65535);
    for (int x = 0; x < width; x++) {
        switch (kind) {
        case Kind::smooth: s += random.in(-40, 40); break; // passes 0 and 65535 now and then
        case Kind::dark: s = random.in(0, 3); break;
        case Kind::anything: s = random.in(0, 65535); break;
        case Kind::extremes: s = random.oneIn(2) ? 0 : 65535; break;
        }
        row.push_back(Qov16s(s));
    }
    return row;
}

// A copy at a random place, which ends with its last sample.
class Placed {
public:
    Placed(Random& random, const Samples& row) : m_block(size_t(random.in(0, 31)))
    {
        m_start = m_block.size();
        m_block.insert(m_block.end(), row.begin(), row.end());
        m_block.shrink_to_fit();
    }
    const Qov16s* data() const { return m_block.data() + m_start; }

private:
    Samples m_block;
    size_t m_start;
};

// `call(src, dst)` at every level makes `expected` of `src`, and `inPlace` also with dst = src.
template <class Call>
void expectRow(Random& random, const Samples& src, const Samples& expected, bool inPlace, Call call)
{
    const Placed placed(random, src);
    const size_t bytes = src.size() * sizeof(Qov16s), offset = 2 * size_t(random.in(0, 31));
    forEachLevel([&] {
        for (int same = 0; same <= int(inPlace); same++) {
            Guarded memory(bytes, offset);
            Qov16s* dst = memory.as<Qov16s>();
            if (same) std::memcpy(dst, src.data(), bytes);
            ASSERT_EQ(qovStsNoErr, call(same ? dst : placed.data(), dst));
            ASSERT_EQ(expected, Samples(dst, dst + src.size())) << (same ? "in place" : "apart");
            ASSERT_TRUE(memory.intact());
        }
    });
}

std::vector<int> widths()
{
    std::vector<int> list = {768, 1031};
    for (int width = 1; width <= 200; width++) list.push_back(width);
    return list;
}

TEST(PredictRow, AnyWidthThereAndBack)
{
    Random random;
    for (int predictor = 1; predictor <= 7; predictor++) {
        for (const int width : widths()) {
            for (const Kind kind : {Kind::smooth, Kind::dark, Kind::anything, Kind::extremes}) {
                SCOPED_TRACE(testing::Message()
                             << "predictor " << predictor << ", width " << width << ", kind " << int(kind));
                const Samples row = randomRow(random, kind, width), prev = randomRow(random, kind, width);
                const Samples differences = plainDifferences(row, prev, predictor);
                const Placed above(random, prev);
                expectRow(random, row, differences, false, [&](const Qov16s* src, Qov16s* dst) {
                    return qoviDiffPredRow_JPEG_16s_C1(src, above.data(), dst, width, predictor);
                });
                expectRow(random, differences, row, true, [&](const Qov16s* src, Qov16s* dst) {
                    return qoviReconstructPredRow_JPEG_16s_C1(src, above.data(), dst, width, predictor);
                });
                if (HasFatalFailure()) return;
            }
        }
    }
}

// Smooth rows with a jump over the end of 16 bits here and there: the ways of a reconstruction take turns.
TEST(PredictRow, RareWraps)
{
    Random random;
    for (int round = 0; round < 200; round++) {
        const int width = random.in(1, 600), predictor = random.in(6, 7);
        SCOPED_TRACE(testing::Message() << "predictor " << predictor << ", width " << width);
        Samples row = randomRow(random, Kind::dark, width), prev = randomRow(random, Kind::dark, width);
        for (Samples* r : {&row, &prev})
            for (int n = random.in(0, 4); n > 0; n--) (*r)[size_t(random.in(0, width - 1))] = -1;
        const Placed above(random, prev);
        expectRow(random, plainDifferences(row, prev, predictor), row, true,
                  [&](const Qov16s* src, Qov16s* dst) {
                      return qoviReconstructPredRow_JPEG_16s_C1(src, above.data(), dst, width, predictor);
                  });
        if (HasFatalFailure()) return;
    }
}

TEST(PredictFirstRow, AnyWidthThereAndBack)
{
    Random random;
    for (const int width : widths()) {
        const int precision = random.in(2, 16), pt = random.in(0, precision - 1);
        SCOPED_TRACE(testing::Message() << "width " << width << ", " << precision << " bits, pt " << pt);
        const Samples row = randomRow(random, Kind::anything, width);
        Samples differences = {Qov16s(row[0] - (1 << precision >> (pt + 1)))};
        for (int x = 1; x < width; x++) differences.push_back(Qov16s(row[x] - row[x - 1]));
        expectRow(random, row, differences, false, [&](const Qov16s* src, Qov16s* dst) {
            return qoviDiffPredFirstRow_JPEG_16s_C1(src, dst, width, precision, pt);
        });
        expectRow(random, differences, row, true, [&](const Qov16s* src, Qov16s* dst) {
            return qoviReconstructPredFirstRow_JPEG_16s_C1(src, dst, width, precision, pt);
        });
        if (HasFatalFailure()) return;
    }
}

TEST(PredictFirstRow, Statuses)
{
    const Qov16s src[4] = {};
    Qov16s dst[4];
    const struct {
        bool noSrc, noDst;
        int width, precision, pt;
        QovStatus status;
    } cases[] = {
        {true, false, 0, 0, 0, qovStsNullPtr},  {false, true, 0, 0, 0, qovStsNullPtr},
        {false, false, 0, 0, 0, qovStsSize},    {false, false, -1, 8, 0, qovStsSize},
        {false, false, 4, 1, 0, qovStsBadArg},  {false, false, 4, 17, 0, qovStsBadArg},
        {false, false, 4, 8, -1, qovStsBadArg}, {false, false, 4, 8, 8, qovStsBadArg},
        {false, false, 4, 2, 0, qovStsNoErr},   {false, false, 4, 16, 15, qovStsNoErr},
    };
    for (const auto& c : cases) {
        for (const auto function :
             {qoviDiffPredFirstRow_JPEG_16s_C1, qoviReconstructPredFirstRow_JPEG_16s_C1})
            EXPECT_EQ(c.status,
                      function(c.noSrc ? nullptr : src, c.noDst ? nullptr : dst, c.width, c.precision, c.pt))
                << c.width << ", " << c.precision << ", " << c.pt;
    }
}

TEST(PredictRow, Statuses)
{
    const Qov16s src[4] = {};
    Qov16s dst[4];
    const struct {
        int nulls; // 1 source, 2 row above, 4 destination
        int width, predictor;
        QovStatus status;
    } cases[] = {
        {1, 0, 0, qovStsNullPtr}, {2, 0, 0, qovStsNullPtr}, {4, 0, 0, qovStsNullPtr},
        {0, 0, 0, qovStsSize},    {0, -9, 8, qovStsSize},   {0, 4, 0, qovStsBadArg},
        {0, 4, 8, qovStsBadArg},  {0, 4, -1, qovStsBadArg}, {0, 4, 1, qovStsNoErr},
        {0, 4, 7, qovStsNoErr},
    };
    for (const auto& c : cases) {
        for (const auto function : {qoviDiffPredRow_JPEG_16s_C1, qoviReconstructPredRow_JPEG_16s_C1})
            EXPECT_EQ(c.status, function(c.nulls & 1 ? nullptr : src, c.nulls & 2 ? nullptr : src,
                                         c.nulls & 4 ? nullptr : dst, c.width, c.predictor))
                << c.nulls << ", " << c.width << ", " << c.predictor;
    }
}

} // namespace
