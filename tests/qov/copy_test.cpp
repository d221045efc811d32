// Copies, conversions of the type and shifts: every level against the plain statement of each.
#include "planes_testing.h"
#include "qovicopy.h"
#include "qovs.h"

#include <algorithm>

namespace {

const PlanesFunction copies[] = {
    {"C1", {1}, {1}, call(qoviCopy_8u_C1R)},
    {"C3P3", {3}, {1, 1, 1}, call(qoviCopy_8u_C3P3R)},
    {"C4P4", {4}, {1, 1, 1, 1}, call(qoviCopy_8u_C4P4R)},
    {"P3C3", {1, 1, 1}, {3}, call(qoviCopy_8u_P3C3R)},
    {"P4C4", {1, 1, 1, 1}, {4}, call(qoviCopy_8u_P4C4R)},
};

TEST(Copy, AnyPicture)
{
    for (const PlanesFunction& f : copies)
        comparePictures(f, false, 150, [&](const Arguments& a) {
            const int channels = f.src.size() == 1 ? f.src[0] : int(f.src.size());
            for (int y = 0; y < a.roi.height; y++)
                for (int x = 0; x < a.roi.width; x++)
                    for (int c = 0; c < channels; c++)
                        ASSERT_EQ(sample(f.src, a.src, a.srcStep, x, y, c),
                                  sample(f.dst, a.dst, a.dstStep, x, y, c))
                            << "channel " << c << " of pixel " << x << ", " << y;
        });
}

// Random vectors of any length. In place, the destination holds the source before the call.
template <class Src, class Dst, class Call, class Formula>
void compareVectors(bool inPlace, Call call, Formula formula)
{
    Random random;
    for (int round = 0; round < 200; round++) {
        const int n = random.oneIn(3) ? random.in(90, 700) : random.in(1, 100), shift = random.in(0, 15);
        SCOPED_TRACE(testing::Message() << n << " elements, shift " << shift);
        const auto src = std::make_unique<Src[]>(size_t(n)); // ends with its last element, for the sanitizer
        for (int i = 0; i < n; i++) src[i] = random.value<Src>();
        const size_t offset = sizeof(Dst) * size_t(random.in(0, 31));
        forEachLevel([&] {
            Guarded dst(size_t(n) * sizeof(Dst), offset);
            if (inPlace) std::memcpy(dst.as<Dst>(), src.get(), size_t(n) * sizeof(Dst));
            ASSERT_EQ(qovStsNoErr, call(src.get(), shift, dst.as<Dst>(), n));
            for (int i = 0; i < n; i++)
                ASSERT_EQ(formula(src[i], shift), dst.as<Dst>()[i]) << "element " << i << ", " << src[i];
            ASSERT_TRUE(dst.intact());
        });
        if (testing::Test::HasFatalFailure()) return;
    }
}

// As one row or, if n is a multiple of 3, three of them in two halves, so that rows have gaps between them.
template <class Src, class Dst, class Convert>
QovStatus inRows(Convert convert, const Src* src, Dst* dst, int n)
{
    const int rows = n % 3 == 0 ? 3 : 1, width = n / rows;
    const int cut = rows == 3 && width > 1 ? width / 2 : width;
    const int srcStep = width * int(sizeof(Src)), dstStep = width * int(sizeof(Dst));
    const QovStatus status = convert(src, srcStep, dst, dstStep, QoviSize{cut, rows});
    if (status != qovStsNoErr || cut == width) return status;
    return convert(src + cut, srcStep, dst + cut, dstStep, QoviSize{width - cut, rows});
}

TEST(Vector, EveryOperation)
{
    compareVectors<Qov8u, Qov16s>(
        false,
        [](const Qov8u* src, int, Qov16s* dst, int n) { return inRows(qoviConvert_8u16s_C1R, src, dst, n); },
        [](Qov8u s, int) { return s; });
    compareVectors<Qov16s, Qov8u>(
        false,
        [](const Qov16s* src, int, Qov8u* dst, int n) { return inRows(qoviConvert_16s8u_C1R, src, dst, n); },
        [](Qov16s s, int) { return std::clamp(int(s), 0, 255); });
    compareVectors<Qov16s, Qov16s>(
        true, [](const Qov16s*, int shift, Qov16s* dst, int n) { return qovsRShiftC_16s_I(shift, dst, n); },
        [](Qov16s s, int shift) { return s >> shift; });
    compareVectors<Qov16s, Qov16s>(
        false,
        [](const Qov16s* src, int shift, Qov16s* dst, int n) { return qovsLShiftC_16s(src, shift, dst, n); },
        [](Qov16s s, int shift) { return Qov16s(unsigned(s) << shift & 0xFFFF); });
    compareVectors<Qov8u, Qov8u>(
        false, [](const Qov8u* src, int, Qov8u* dst, int n) { return qovsCopy_8u(src, dst, n); },
        [](Qov8u s, int) { return s; });
    compareVectors<Qov16s, Qov16s>(
        false, [](const Qov16s* src, int, Qov16s* dst, int n) { return qovsCopy_16s(src, dst, n); },
        [](Qov16s s, int) { return s; });
    compareVectors<Qov8u, Qov8u>(
        false, [](const Qov8u*, int, Qov8u* dst, int n) { return qovsZero_8u(dst, n); },
        [](Qov8u, int) { return 0; });
}

TEST(Copy, Statuses)
{
    for (const PlanesFunction& f : copies) checkStatuses(f, false);
    const PlanesFunction widen = {"8u16s", {1}, {2}, [](const Arguments& a) {
                                      return qoviConvert_8u16s_C1R(a.src[0], a.srcStep[0],
                                                                   reinterpret_cast<Qov16s*>(a.dst[0]),
                                                                   a.dstStep[0], a.roi);
                                  }};
    const PlanesFunction narrow = {"16s8u", {2}, {1}, [](const Arguments& a) {
                                       return qoviConvert_16s8u_C1R(reinterpret_cast<const Qov16s*>(a.src[0]),
                                                                    a.srcStep[0], a.dst[0], a.dstStep[0],
                                                                    a.roi);
                                   }};
    checkStatuses(widen, false);
    checkStatuses(narrow, false);
}

TEST(Vector, Statuses)
{
    const Qov16s src[8] = {};
    Qov16s dst[8] = {};
    const struct {
        bool noSrc, noDst;
        int len, shift;
        QovStatus plain, shifted; // of the functions without a shift, and with one
    } cases[] = {
        {true, false, 8, 0, qovStsNullPtr, qovStsNullPtr}, {false, true, 0, 16, qovStsNullPtr, qovStsNullPtr},
        {false, false, 0, 16, qovStsSize, qovStsSize},     {false, false, -8, 0, qovStsSize, qovStsSize},
        {false, false, 8, 16, qovStsNoErr, qovStsBadArg},  {false, false, 8, -1, qovStsNoErr, qovStsBadArg},
        {false, false, 8, 15, qovStsNoErr, qovStsNoErr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        const Qov16s* from = c.noSrc ? nullptr : src;
        Qov16s* to = c.noDst ? nullptr : dst;
        const auto bytesFrom = reinterpret_cast<const Qov8u*>(from);
        const auto bytesTo = reinterpret_cast<Qov8u*>(to);
        EXPECT_EQ(c.plain, qovsCopy_16s(from, to, c.len));
        EXPECT_EQ(c.plain, qovsCopy_8u(bytesFrom, bytesTo, c.len));
        EXPECT_EQ(c.shifted, qovsLShiftC_16s(from, c.shift, to, c.len));
        if (c.noSrc) continue;
        EXPECT_EQ(c.plain, qovsZero_8u(bytesTo, c.len));
        EXPECT_EQ(c.shifted, qovsRShiftC_16s_I(c.shift, to, c.len));
    }
}

} // namespace
