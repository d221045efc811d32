// Whole wavelet transforms at every level against lifting as T.800, annex F, has it: whole numbers exactly,
// 9-7 also within a bound of the exact transform.
#include "qov_testing.h"
#include "qoviwavelet2d.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// The filters on whole numbers, Qov64s, and 9-7 exactly, on double.
struct Filter_B53 {
    static constexpr int steps = 2;
    static Qov64s lift(int step, Qov64s sum) { return step == 0 ? -(sum >> 1) : (sum + 2) >> 2; }
    static Qov64s scale(bool, Qov64s v) { return v; }
    static Qov64s half(Qov64s v) { return v >> 1; }
};
struct Filter_D97 {
    static constexpr int steps = 4;
    static constexpr int whole[] = {-103949, -3472, 57862, 29066, 53274, 80621};
    static constexpr double exact[] = {-1.586134342059924, -0.052980118572961,    0.882911075530934,
                                       0.443506852043971,  1 / 1.230174104914001, 1.230174104914001};

    static Qov64s product(int c, Qov64s v) { return (whole[c] * v + 0x8000) >> 16; }
    static double product(int c, double v) { return exact[c] * v; }
    template <class R>
    static R lift(int step, R sum)
    {
        return product(step, sum);
    }
    template <class R>
    static R scale(bool up, R v)
    {
        return product(steps + up, v);
    }
    static Qov64s half(Qov64s v) { return (v + 1) >> 1; }
    static double half(double v) { return v / 2; }
};

// In place, even and odd places staying where they are. `hold` is what becomes of each lifted sample.
template <class Filter, class R, class Hold>
void transformLine(std::vector<R>& x, int first, bool inverse, Hold hold)
{
    const int count = int(x.size()), last = count - 1;
    const auto odd = [&](int i) { return ((i + first) & 1) != 0; };
    if (count == 1) {
        if (odd(0)) x[0] = hold(inverse ? Filter::half(x[0]) : x[0] * 2);
        return;
    }
    const auto at = [&](int i) { return x[size_t(i < 0 ? -i : i > last ? 2 * last - i : i)]; };
    const auto scale = [&] {
        for (int i = 0; i < count; i++) x[size_t(i)] = hold(Filter::scale(odd(i) != inverse, at(i)));
    };
    if (inverse) scale();
    for (int s = 0; s < Filter::steps; s++) {
        const int step = inverse ? Filter::steps - 1 - s : s;
        for (int i = 0; i < count; i++) {
            if (odd(i) == (step % 2 != 0)) continue;
            const R change = Filter::lift(step, at(i - 1) + at(i + 1));
            x[size_t(i)] = hold(inverse ? at(i) - change : at(i) + change);
        }
    }
    if (!inverse) scale();
}

// Of the place only its parity matters.
template <class R>
struct Image {
    QoviRect rect;
    std::vector<R> samples;

    explicit Image(const QoviRect& r)
        : rect{r.x & 1, r.y & 1, r.width, r.height}, samples(size_t(r.width) * size_t(r.height))
    {
    }
    R& at(int x, int y) { return samples[size_t(y) * size_t(rect.width) + size_t(x)]; }
    R at(int x, int y) const { return samples[size_t(y) * size_t(rect.width) + size_t(x)]; }
};

// Where the sample at `place` of an axis from `first` on goes when the low half stands before the high one.
int inHalves(int place, int first, int count)
{
    const int low = (first + count + 1) / 2 - (first + 1) / 2;
    return (place & 1) == 0 ? place / 2 - (first + 1) / 2 : low + place / 2 - first / 2;
}

// The bands side by side, of samples that alternate, and back.
template <class R>
Image<R> rearranged(const Image<R>& from, bool inverse)
{
    Image<R> to(from.rect);
    const QoviRect& r = from.rect;
    for (int y = 0; y < r.height; y++)
        for (int x = 0; x < r.width; x++) {
            const int u = inHalves(r.x + x, r.x, r.width), v = inHalves(r.y + y, r.y, r.height);
            if (inverse)
                to.at(x, y) = from.at(u, v);
            else
                to.at(u, v) = from.at(x, y);
        }
    return to;
}

// `limit` is applied to every lifted sample, but for 9-7 along rows to finished ones only.
template <class Filter, class R, class Limit>
Image<R> transformed(const Image<R>& image, bool inverse, Limit limit)
{
    Image<R> result = inverse ? rearranged(image, true) : image;
    const QoviRect& r = image.rect;
    for (const bool rows : {inverse, !inverse}) {
        const auto hold = [&](R v) { return rows && Filter::steps == 4 ? v : limit(v); };
        std::vector<R> line(size_t(rows ? r.width : r.height));
        for (int j = 0; j < (rows ? r.height : r.width); j++) {
            const auto at = [&](size_t i) -> R& {
                return rows ? result.at(int(i), j) : result.at(j, int(i));
            };
            for (size_t i = 0; i < line.size(); i++) line[i] = at(i);
            transformLine<Filter>(line, rows ? r.x : r.y, inverse, hold);
            for (size_t i = 0; i < line.size(); i++) at(i) = limit(line[i]);
        }
    }
    return inverse ? result : rearranged(result, false);
}

// 5-3 wraps, 9-7 saturates.
template <class Filter, class T>
Image<Qov64s> wanted(const Image<Qov64s>& image, bool inverse)
{
    typedef std::numeric_limits<T> Limits;
    return transformed<Filter>(image, inverse, [](Qov64s v) {
        return Filter::steps == 2 ? Qov64s(T(v)) : std::clamp<Qov64s>(v, Limits::min(), Limits::max());
    });
}

template <class T>
struct Form {
    const char* name;
    bool lossless;
    Image<Qov64s> (*wanted)(const Image<Qov64s>&, bool);
    QovStatus (*bandsSize)(const QoviRect*, int*);
    QovStatus (*inPlaceSize)(const QoviRect*, int*);
    QovStatus (*forward)(const T*, int, const QoviRect*, T* const[4], const int[4], Qov8u*);
    QovStatus (*inverse)(const T* const[4], const int[4], T*, int, const QoviRect*, Qov8u*);
    QovStatus (*forwardInPlace)(T*, int, const QoviRect*, Qov8u*);
    QovStatus (*inverseInPlace)(T*, int, const QoviRect*, Qov8u*);
};
#define FORM(filter, T)                                                                                      \
    Form<Qov##T>                                                                                             \
    {                                                                                                        \
#filter " " #T, Filter_##filter::steps == 2, wanted < Filter_##filter, Qov##T>,                      \
            qoviWTGetBufSize_##filter##_JPEG2K_##T##_C1R, qoviWTGetBufSize_##filter##_JPEG2K_##T##_C1IR,     \
            qoviWTFwd_##filter##_JPEG2K_##T##_C1R, qoviWTInv_##filter##_JPEG2K_##T##_C1R,                    \
            qoviWTFwd_##filter##_JPEG2K_##T##_C1IR, qoviWTInv_##filter##_JPEG2K_##T##_C1IR                   \
    }

template <class Visit>
void forEachForm(Visit visit)
{
    visit(FORM(B53, 16s));
    visit(FORM(B53, 32s));
    visit(FORM(D97, 16s));
    visit(FORM(D97, 32s));
}

// Memory at any address that ends with its last byte, for the address sanitizer.
class Memory {
public:
    Memory(size_t bytes, size_t misfit) : m_misfit(misfit), m_bytes(misfit + bytes) {}
    template <class T>
    T* as()
    {
        return reinterpret_cast<T*>(m_bytes.data() + m_misfit);
    }

private:
    size_t m_misfit;
    std::vector<Qov8u> m_bytes;
};

// A rectangle of an image as a primitive gets it, read in memory of its own or written among guarded bytes.
template <class T, class Block>
struct Plane {
    int x, y, width, height, step;
    Block block;

    Plane(const QoviRect& r, Random& random)
        : x(r.x), y(r.y), width(r.width), height(r.height), step(int(sizeof(T)) * (width + random.in(0, 9))),
          block(size_t(std::max(0, height - 1) * step) + size_t(width) * sizeof(T),
                sizeof(T) * size_t(random.in(0, 31)))
    {
    }
    bool empty() const { return width == 0 || height == 0; }
    T* data() { return empty() ? nullptr : block.template as<T>(); }
    T& at(int i, int j)
    {
        return *reinterpret_cast<T*>(reinterpret_cast<char*>(data()) + j * step + i * int(sizeof(T)));
    }
    void take(const Image<Qov64s>& from)
    {
        for (int j = 0; j < height; j++)
            for (int i = 0; i < width; i++) at(i, j) = T(from.at(x + i, y + j));
    }
    // The first sample that differs.
    void expect(const Image<Qov64s>& right)
    {
        for (int j = 0; j < height; j++)
            for (int i = 0; i < width; i++)
                ASSERT_EQ(right.at(x + i, y + j), at(i, j)) << "column " << x + i << ", row " << y + j;
    }
    bool intact() { return empty() || block.intact(size_t(step), size_t(width) * sizeof(T)); }
};

// Where the four bands lie in the arranged image.
std::vector<QoviRect> bandRects(const QoviRect& r)
{
    const int w = (r.width + 1 - (r.x & 1)) / 2, h = (r.height + 1 - (r.y & 1)) / 2;
    return {{0, 0, w, h}, {0, h, w, r.height - h}, {w, 0, r.width - w, h}, {w, h, r.width - w, r.height - h}};
}

template <class T, class Block>
struct BandPlanes {
    std::vector<Plane<T, Block>> planes;
    T* data[4];
    int step[4];

    BandPlanes(const QoviRect& rect, Random& random)
    {
        for (const QoviRect& r : bandRects(rect)) planes.emplace_back(r, random);
        for (size_t i = 0; i < 4; i++) {
            data[i] = planes[i].data();
            step[i] = planes[i].empty() ? -1 : planes[i].step;
        }
    }
};

template <class T>
Memory bufferOf(QovStatus (*query)(const QoviRect*, int*), const QoviRect& rect, Random& random)
{
    int size = -1;
    EXPECT_EQ(qovStsNoErr, query(&rect, &size));
    return Memory(size_t(size), size_t(random.in(0, 67)));
}

template <class T>
void compare(const Form<T>& f, const QoviRect& rect, Random& random)
{
    SCOPED_TRACE(testing::Message() << f.name << " " << rect.width << "x" << rect.height << " at " << rect.x
                                    << "," << rect.y);
    const QoviRect whole = {0, 0, rect.width, rect.height};
    Image<Qov64s> image(rect);
    for (Qov64s& v : image.samples) v = random.value<T>();
    const Image<Qov64s> analysed = f.wanted(image, false), synthesised = f.wanted(image, true);
    // Any samples come back from 5-3, unless one that was doubled did not fit.
    if (f.lossless && rect.width > 1 && rect.height > 1) {
        ASSERT_EQ(image.samples, f.wanted(analysed, true).samples);
    }
    Plane<T, Memory> src(whole, random);
    BandPlanes<T, Memory> srcBands(rect, random);
    src.take(image);
    for (auto& plane : srcBands.planes) plane.take(image);
    Memory buffer = bufferOf<T>(f.bandsSize, rect, random),
           inPlaceBuffer = bufferOf<T>(f.inPlaceSize, rect, random);

    forEachLevel([&] {
        BandPlanes<T, Guarded> bands(rect, random);
        ASSERT_EQ(qovStsNoErr,
                  f.forward(src.data(), src.step, &rect, bands.data, bands.step, buffer.as<Qov8u>()));
        for (auto& plane : bands.planes) {
            ASSERT_NO_FATAL_FAILURE(plane.expect(analysed)) << "forward";
            ASSERT_TRUE(plane.intact());
        }
        Plane<T, Guarded> dst(whole, random);
        ASSERT_EQ(qovStsNoErr,
                  f.inverse(srcBands.data, srcBands.step, dst.data(), dst.step, &rect, buffer.as<Qov8u>()));
        ASSERT_NO_FATAL_FAILURE(dst.expect(synthesised)) << "inverse";
        ASSERT_TRUE(dst.intact());
        for (const bool inverse : {false, true}) {
            dst.take(image);
            ASSERT_EQ(qovStsNoErr, (inverse ? f.inverseInPlace : f.forwardInPlace)(
                                       dst.data(), dst.step, &rect, inPlaceBuffer.as<Qov8u>()));
            ASSERT_NO_FATAL_FAILURE(dst.expect(inverse ? synthesised : analysed)) << "in place";
            ASSERT_TRUE(dst.intact());
        }
    });
}

// Catches wrong mirrors, halves swapped or displaced by one at odd places, what is written for a missing half
// of a pair, rows of the pipeline taken too early or too late, and strips and buffers that end too soon.
TEST(WholeWavelet, EverySize)
{
    Random random;
    forEachForm([&](const auto& f) {
        for (int height = 1; height <= 20; height++)
            for (int width = 1; width <= 20; width++)
                for (int corner = 0; corner < 4; corner++) {
                    compare(f, {corner & 1, corner >> 1, width, height}, random);
                    if (testing::Test::HasFatalFailure()) return;
                }
        const QoviRect larger[] = {{7, 2, 67, 33},   {6, 3, 130, 9},
                                   {1, 0, 515, 12},  {2, 1, 771, 5},
                                   {1, 1, 5, 1000},  {0, 0, 1, 32768},
                                   {1, 0, 2, 32768}, {0, 1, 32768, 1},
                                   {1, 1, 32768, 3}, {2147483646, 2147483647 - 40, 40, 40}};
        for (const QoviRect& rect : larger) compare(f, rect, random);
    });
}

// Samples below `largest`: how far 9-7 lies from the exact transform, and from the image after both ways.
// Some units are roundings; the rest is that constants have 16 bits behind the point.
template <class T>
void accuracy97(const Form<T>& f, int largest, Random& random)
{
    const double bound = 6 + std::ldexp(largest, -11), bothWays = 6 + std::ldexp(largest, -15);
    for (const QoviRect& rect : {QoviRect{0, 0, 64, 64}, {1, 1, 33, 47}, {1, 0, 5, 90}, {0, 1, 90, 1}}) {
        SCOPED_TRACE(testing::Message() << f.name << " " << rect.width << "x" << rect.height);
        Image<double> image(rect);
        for (double& v : image.samples) v = random.in(1 - largest, largest - 1);
        std::vector<T> data(image.samples.begin(), image.samples.end());
        const auto distance = [&](const Image<double>& from) {
            double most = 0;
            for (size_t i = 0; i < data.size(); i++)
                most = std::max(most, std::abs(double(data[i]) - from.samples[i]));
            return most;
        };
        const int step = rect.width * int(sizeof(T));
        Memory buffer = bufferOf<T>(f.inPlaceSize, rect, random);
        ASSERT_EQ(qovStsNoErr, f.forwardInPlace(data.data(), step, &rect, buffer.template as<Qov8u>()));
        EXPECT_LE(distance(transformed<Filter_D97>(image, false, [](double v) { return v; })), bound);
        ASSERT_EQ(qovStsNoErr, f.inverseInPlace(data.data(), step, &rect, buffer.template as<Qov8u>()));
        EXPECT_LE(distance(image), bothWays);
    }
}
TEST(WholeWavelet, AccuracyOf97)
{
    Random random;
    accuracy97(FORM(D97, 16s), 1 << 12, random);
    accuracy97(FORM(D97, 32s), 1 << 24, random);
}

// One fault at a time, and that null comes before size, size before step, step before place.
template <class T>
void statuses(const Form<T>& f)
{
    SCOPED_TRACE(f.name);
    constexpr int size = int(sizeof(T)), row = 6 * size, half = 3 * size;
    const QoviRect rect = {0, 0, 6, 4}, tooWide = {-1, 0, 32769, 4};
    const struct {
        std::string null; // of the image, rectangle, bands, steps, work buffer; or bands 0 to 3
        QoviRect rect;
        int step, bandStep;
        QovStatus bands, inPlace, query;
    } calls[] = {
        {"", rect, row, half, qovStsNoErr, qovStsNoErr, qovStsNoErr},
        {"i", tooWide, 0, 0, qovStsNullPtr, qovStsNullPtr, qovStsSize},
        {"r", rect, 0, 0, qovStsNullPtr, qovStsNullPtr, qovStsNullPtr},
        {"b", tooWide, 0, 0, qovStsNullPtr, qovStsSize, qovStsSize},
        {"s", tooWide, 0, 0, qovStsNullPtr, qovStsSize, qovStsSize},
        {"w", tooWide, 0, 0, qovStsNullPtr, qovStsNullPtr, qovStsSize},
        {"3", rect, 0, 0, qovStsNullPtr, qovStsStep, qovStsNoErr},
        {"", {0, 0, 0, 4}, 0, 0, qovStsSize, qovStsSize, qovStsSize},
        {"", {0, 0, 6, -1}, 0, 0, qovStsSize, qovStsSize, qovStsSize},
        {"", {0, 0, 6, 32769}, 0, 0, qovStsSize, qovStsSize, qovStsSize},
        {"", tooWide, 0, 0, qovStsSize, qovStsSize, qovStsSize},
        {"", {-1, 0, 6, 4}, row - 1, half, qovStsStep, qovStsStep, qovStsBadArg},
        {"", {0, -1, 6, 4}, row, half - 1, qovStsStep, qovStsBadArg, qovStsBadArg},
        {"", {-1, 0, 6, 4}, row, half, qovStsBadArg, qovStsBadArg, qovStsBadArg},
        {"", {0, 0, 6, 1}, 0, 0, qovStsNoErr, qovStsNoErr, qovStsNoErr},
        {"23", {0, 0, 1, 4}, size, size, qovStsNoErr, qovStsNoErr, qovStsNoErr},
        {"013", {1, 0, 1, 1}, 0, 0, qovStsNoErr, qovStsNoErr, qovStsNoErr},
    };
    std::vector<T> image(6 * 4), samples[4] = {image, image, image, image};
    std::vector<Qov8u> memory(100000);
    for (const auto& c : calls) {
        SCOPED_TRACE(&c - calls);
        const auto given = [&](char name, auto* p) { return c.null.find(name) == c.null.npos ? p : nullptr; };
        T* data[4];
        for (int i = 0; i < 4; i++) data[i] = given(char('0' + i), samples[i].data());
        const int step[4] = {c.bandStep, c.bandStep, c.bandStep, c.bandStep};
        T* const p = given('i', image.data());
        const QoviRect* const r = given('r', &c.rect);
        T* const* const bands = given('b', &data[0]);
        const int* const steps = given('s', &step[0]);
        Qov8u* const buffer = given('w', memory.data());
        EXPECT_EQ(c.bands, f.forward(p, c.step, r, bands, steps, buffer));
        EXPECT_EQ(c.bands, f.inverse(bands, steps, p, c.step, r, buffer));
        EXPECT_EQ(c.inPlace, f.forwardInPlace(p, c.step, r, buffer));
        EXPECT_EQ(c.inPlace, f.inverseInPlace(p, c.step, r, buffer));
        for (const auto query : {f.bandsSize, f.inPlaceSize}) {
            int bytes = -1;
            EXPECT_EQ(c.query, query(r, &bytes));
            EXPECT_EQ(c.query == qovStsNoErr, bytes >= 0 && bytes < int(memory.size()));
            EXPECT_EQ(qovStsNullPtr, query(r, nullptr));
        }
    }
    // The largest image works in a few rows, or a strip of columns.
    const QoviRect largest = {1, 1, 32768, 32768};
    int few = -1, strip = -1;
    EXPECT_EQ(qovStsNoErr, f.bandsSize(&largest, &few));
    EXPECT_EQ(qovStsNoErr, f.inPlaceSize(&largest, &strip));
    EXPECT_TRUE(few > 0 && few < 1 << 21 && strip > 0 && strip < 1 << 25) << few << " " << strip;
}

TEST(WholeWavelet, Statuses)
{
    forEachForm([](const auto& f) { statuses(f); });
}

} // namespace
