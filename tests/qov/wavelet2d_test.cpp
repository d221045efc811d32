// Whole wavelet transforms at every level against lifting as T.800, annex F, has it: whole numbers exactly,
// 9-7 also within a bound of the exact transform.
#include "qov_testing.h"
#include "qoviwavelet2d.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// The filters on whole numbers, Qov64s, and 9-7 exactly, on double.
struct B53 {
    static constexpr int steps = 2;
    static Qov64s lift(int step, Qov64s sum) { return step == 0 ? -(sum >> 1) : (sum + 2) >> 2; }
    static Qov64s scale(bool, Qov64s v) { return v; }
    static Qov64s half(Qov64s v) { return v >> 1; }
};
struct D97 {
    static constexpr int steps = 4;
    static constexpr int whole[] = {-103949, -3472, 57862, 29066, 53274, 80621};
    static constexpr double exact[] = {-1.586134342059924, -0.052980118572961,    0.882911075530934,
                                       0.443506852043971,  1 / 1.230174104914001, 1.230174104914001};

    static Qov64s product(int c, Qov64s v) { return (whole[c] * v + 0x8000) >> 16; }
    static double product(int c, double v) { return exact[c] * v; }
    static auto lift(int step, auto sum) { return product(step, sum); }
    static auto scale(bool up, auto v) { return product(steps + up, v); }
    static Qov64s half(Qov64s v) { return (v + 1) >> 1; }
    static double half(double v) { return v / 2; }
};

// Samples from place `first` on, 0 or 1, to their halves, the low one in front, or back. `hold` is what
// becomes of each lifted sample.
template <class Filter, class R, class Hold>
void transformLine(std::vector<R>& line, size_t first, bool inverse, Hold hold)
{
    const size_t count = line.size(), low = (count + 1 - first) / 2;
    const auto odd = [&](size_t i) { return ((i + first) & 1) != 0; };
    const auto inLine = [&](size_t i) { return (odd(i) ? low : 0) + i / 2; };

    std::vector<R> x;
    for (size_t i = 0; i < count; i++) x.push_back(line[inverse ? inLine(i) : i]);
    const auto scale = [&] {
        for (size_t i = 0; i < count; i++) x[i] = hold(Filter::scale(odd(i) != inverse, x[i]));
    };
    if (inverse && count > 1) scale();
    for (int s = 0; count > 1 && s < Filter::steps; s++) {
        const int step = inverse ? Filter::steps - 1 - s : s;
        for (size_t i = 0; i < count; i++) {
            if (odd(i) == (step % 2 != 0)) continue;
            const R change = Filter::lift(step, x[i ? i - 1 : 1] + x[i + 1 < count ? i + 1 : i - 1]);
            x[i] = hold(inverse ? x[i] - change : x[i] + change);
        }
    }
    if (!inverse && count > 1) scale();
    if (count == 1 && first == 1) x[0] = hold(inverse ? Filter::half(x[0]) : x[0] * 2);
    for (size_t i = 0; i < count; i++) line[inverse ? i : inLine(i)] = x[i];
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

// The bands side by side, or the image from them. `limit` is applied to every lifted sample, but for 9-7
// along rows to finished ones only.
template <class Filter, class R, class Limit>
Image<R> transformed(Image<R> image, bool inverse, Limit limit)
{
    const QoviRect r = image.rect;
    for (const bool rows : {inverse, !inverse}) {
        const auto hold = [&](R v) { return rows && Filter::steps == 4 ? v : limit(v); };
        std::vector<R> line(size_t(rows ? r.width : r.height));
        for (int j = 0; j < (rows ? r.height : r.width); j++) {
            const auto at = [&](size_t i) -> R& { return rows ? image.at(int(i), j) : image.at(j, int(i)); };
            for (size_t i = 0; i < line.size(); i++) line[i] = at(i);
            transformLine<Filter>(line, size_t(rows ? r.x : r.y), inverse, hold);
            for (size_t i = 0; i < line.size(); i++) at(i) = limit(line[i]);
        }
    }
    return image;
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
#filter " " #T, wanted < filter, Qov##T>, qoviWTGetBufSize_##filter##_JPEG2K_##T##_C1R,              \
            qoviWTGetBufSize_##filter##_JPEG2K_##T##_C1IR, qoviWTFwd_##filter##_JPEG2K_##T##_C1R,            \
            qoviWTInv_##filter##_JPEG2K_##T##_C1R, qoviWTFwd_##filter##_JPEG2K_##T##_C1IR,                   \
            qoviWTInv_##filter##_JPEG2K_##T##_C1IR                                                           \
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
struct Memory {
    size_t misfit;
    std::vector<Qov8u> bytes;

    Memory(size_t size, size_t offset) : misfit(offset), bytes(offset + size, guard) {}
    Qov8u* start() { return bytes.data() + misfit; }

    static constexpr Qov8u guard = 0xA5;
};

// A rectangle of an image as a primitive gets it: rows with bytes between them that must not change.
template <class T>
struct Plane {
    QoviRect rect;
    int step;
    Memory memory;

    Plane(const QoviRect& r, Random& random)
        : rect(r), step(int(sizeof(T)) * (r.width + random.in(0, 9))),
          memory(size_t(std::max(0, r.height - 1) * step) + size_t(r.width) * sizeof(T),
                 sizeof(T) * size_t(random.in(0, 31)))
    {
    }
    T* row(int y) { return reinterpret_cast<T*>(memory.start() + y * step); }
    T* data() { return rect.width && rect.height ? row(0) : nullptr; }
    void take(const Image<Qov64s>& from)
    {
        for (int y = 0; y < rect.height; y++)
            for (int x = 0; x < rect.width; x++) row(y)[x] = T(from.at(rect.x + x, rect.y + y));
    }
    // Reports the first sample that differs.
    void expect(const Image<Qov64s>& right)
    {
        Memory surroundings = memory;
        for (int y = 0; rect.width && y < rect.height; y++) {
            for (int x = 0; x < rect.width; x++)
                ASSERT_EQ(right.at(rect.x + x, rect.y + y), row(y)[x]) << "column " << x << ", row " << y;
            std::memset(surroundings.start() + y * step, Memory::guard, size_t(rect.width) * sizeof(T));
        }
        for (const Qov8u byte : surroundings.bytes) ASSERT_EQ(Memory::guard, byte);
    }
};

// The four bands, as they lie in the arranged image.
template <class T>
struct Bands {
    std::vector<Plane<T>> planes;
    T* data[4];
    int step[4];

    Bands(const QoviRect& r, Random& random)
    {
        const int w = (r.width + 1 - (r.x & 1)) / 2, h = (r.height + 1 - (r.y & 1)) / 2;
        const int restW = r.width - w, restH = r.height - h;
        for (const QoviRect& band :
             {QoviRect{0, 0, w, h}, {0, h, w, restH}, {w, 0, restW, h}, {w, h, restW, restH}})
            planes.emplace_back(band, random);
        for (size_t i = 0; i < 4; i++) {
            data[i] = planes[i].data();
            step[i] = data[i] ? planes[i].step : -1;
        }
    }
};

Memory bufferOf(QovStatus (*query)(const QoviRect*, int*), const QoviRect& rect, Random& random)
{
    int size = -1;
    EXPECT_EQ(qovStsNoErr, query(&rect, &size));
    return Memory(size_t(size), size_t(random.in(0, 67)));
}

// Any numbers, or such as 9-7 lifts in fewer bits: all at their limits, where neighbours make the largest
// sums, or small ones with some among them that are not.
template <class T>
void fill(Image<Qov64s>& image, Random& random)
{
    constexpr int small = 3840, word = 32767;
    const int kind = random.in(0, 3);
    for (Qov64s& v : image.samples) {
        const bool negative = random.oneIn(2);
        v = kind == 0   ? random.value<T>()
            : kind == 1 ? (negative ? -small - 1 : small)
            : kind == 2 ? (negative ? -word - 1 : word)
                        : (random.oneIn(300) ? random.value<T>() : random.in(-small, small));
    }
}

template <class T>
void compare(const Form<T>& f, const QoviRect& rect, Random& random)
{
    SCOPED_TRACE(testing::Message() << f.name << " " << rect.width << "x" << rect.height << " at " << rect.x
                                    << "," << rect.y);
    const QoviRect whole = {0, 0, rect.width, rect.height};
    Image<Qov64s> image(rect);
    fill<T>(image, random);
    const Image<Qov64s> analysed = f.wanted(image, false), synthesised = f.wanted(image, true);
    // Any samples come back from 5-3, unless one that was doubled did not fit.
    if (f.wanted == wanted<B53, T> && rect.width > 1 && rect.height > 1) {
        ASSERT_EQ(image.samples, f.wanted(analysed, true).samples);
    }
    Plane<T> src(whole, random);
    Bands<T> srcBands(rect, random);
    src.take(image);
    for (auto& plane : srcBands.planes) plane.take(image);
    Memory buffer = bufferOf(f.bandsSize, rect, random),
           inPlaceBuffer = bufferOf(f.inPlaceSize, rect, random);

    forEachLevel([&] {
        Bands<T> bands(rect, random);
        ASSERT_EQ(qovStsNoErr,
                  f.forward(src.data(), src.step, &rect, bands.data, bands.step, buffer.start()));
        for (auto& plane : bands.planes) ASSERT_NO_FATAL_FAILURE(plane.expect(analysed)) << "forward";
        Plane<T> dst(whole, random);
        ASSERT_EQ(qovStsNoErr,
                  f.inverse(srcBands.data, srcBands.step, dst.data(), dst.step, &rect, buffer.start()));
        ASSERT_NO_FATAL_FAILURE(dst.expect(synthesised)) << "inverse";
        for (const bool inverse : {false, true}) {
            dst.take(image);
            ASSERT_EQ(qovStsNoErr, (inverse ? f.inverseInPlace : f.forwardInPlace)(
                                       dst.data(), dst.step, &rect, inPlaceBuffer.start()));
            ASSERT_NO_FATAL_FAILURE(dst.expect(inverse ? synthesised : analysed)) << "in place";
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
        const QoviRect larger[] = {
            {7, 2, 67, 33},   {1, 0, 515, 12},  {2, 1, 771, 5},   {1, 0, 2, 32768},
            {0, 1, 32768, 1}, {1, 1, 32768, 3}, {0, 0, 1, 32768}, {2147483646, 2147483647 - 40, 40, 40}};
        for (const QoviRect& rect : larger) compare(f, rect, random);
    });
}

// Samples below `largest`: how far 9-7 lies from the exact transform, and from the image after both ways.
// Some units are roundings; the rest is that constants have 16 bits behind the point.
template <class T>
void accuracy97(const Form<T>& f, int largest, Random& random)
{
    for (const QoviRect& rect : {QoviRect{0, 0, 64, 64}, {1, 1, 33, 47}, {1, 0, 5, 90}, {0, 1, 90, 1}}) {
        SCOPED_TRACE(testing::Message() << f.name << " " << rect.width << "x" << rect.height);
        Image<double> image(rect);
        for (double& v : image.samples) v = random.in(1 - largest, largest - 1);
        std::vector<T> data(image.samples.begin(), image.samples.end());
        const auto distance = [&](const Image<double>& from) {
            double most = 0;
            for (size_t i = 0; i < data.size(); i++)
                most = std::max(most, std::abs(data[i] - from.samples[i]));
            return most;
        };
        const Image<double> exact = transformed<D97>(image, false, [](double v) { return v; });
        Memory buffer = bufferOf(f.inPlaceSize, rect, random);
        for (const bool inverse : {false, true}) {
            ASSERT_EQ(qovStsNoErr, (inverse ? f.inverseInPlace : f.forwardInPlace)(
                                       data.data(), rect.width * int(sizeof(T)), &rect, buffer.start()));
            EXPECT_LE(distance(inverse ? image : exact), 6 + std::ldexp(largest, inverse ? -15 : -11));
        }
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
