// Random pictures for functions between interleaved pixels and planes: every level writes what px writes, and
// nothing beside it.
#ifndef TESTS_QOV_PLANES_TESTING_H
#define TESTS_QOV_PLANES_TESTING_H

#include "qov_testing.h"

#include <array>
#include <functional>
#include <memory>

// Bytes a pixel of each plane; `half` is a plane of (width + 1) / 2 bytes a row.
constexpr int half = 0;
using Layout = std::vector<int>;

inline size_t rowBytes(int bytesPerPixel, int width)
{
    return bytesPerPixel == half ? size_t(width + 1) / 2 : size_t(bytesPerPixel) * size_t(width);
}

// What a call is given: up to four planes a side.
struct Arguments {
    const Qov8u* src[4];
    int srcStep[4];
    Qov8u* dst[4];
    int dstStep[4];
    QoviSize roi;
};

// Elements of type T of any values.
template <class T>
void fillWith(Random& random, Qov8u* bytes, size_t count)
{
    for (size_t i = 0; i < count; i += sizeof(T)) {
        const T value = random.value<T>();
        std::memcpy(bytes + i, &value, sizeof(T));
    }
}

struct PlanesFunction {
    const char* name;
    Layout src, dst;
    std::function<QovStatus(const Arguments&)> call;
    int unit = 1; // bytes that addresses and steps are multiples of
    void (*fill)(Random&, Qov8u*, size_t) = fillWith<Qov8u>;
};

// A side as a function takes it: the only plane as a T*, or all of them as a T* const*.
template <class T>
struct Side {
    T plane;
    template <class Plane>
    explicit Side(Plane* const* planes) : plane(reinterpret_cast<T>(planes[0]))
    {
    }
    operator T() const { return plane; }
};
template <class T>
struct Side<T* const*> {
    T* planes[4];
    template <class Plane>
    explicit Side(Plane* const* from)
    {
        for (int i = 0; i < 4; i++) planes[i] = reinterpret_cast<T*>(from[i]);
    }
    operator T* const*() const { return planes; }
};

// The call of a function with one step a side.
template <class Src, class Dst>
auto call(QovStatus (*function)(Src, int, Dst, int, QoviSize))
{
    return [function](const Arguments& a) {
        return function(Side<Src>(a.src), a.srcStep[0], Side<Dst>(a.dst), a.dstStep[0], a.roi);
    };
}

// Channel c of pixel x of row y, in planes or interleaved.
template <class T = Qov8u, class Plane>
T sample(const Layout& layout, const Plane* const* planes, const int* steps, int x, int y, int c)
{
    const bool interleaved = layout.size() == 1;
    const int plane = interleaved ? 0 : c, place = x * layout[0] + (interleaved ? c * int(sizeof(T)) : 0);
    T value;
    std::memcpy(&value, planes[plane] + ptrdiff_t(y) * steps[plane] + place, sizeof(T));
    return value;
}

// `verify` looks at px's result; steps of all planes are equal unless the function takes an array of them.
inline void comparePictures(const PlanesFunction& f, bool ownSteps, int rounds,
                            const std::function<void(const Arguments&)>& verify)
{
    Random random;
    for (int round = 0; round < rounds; round++) {
        Arguments a{};
        a.roi = {random.oneIn(3) ? random.in(90, 400) : random.in(1, 100), random.in(1, 5)};
        SCOPED_TRACE(testing::Message() << f.name << " " << a.roi.width << "x" << a.roi.height);
        const bool packed = random.oneIn(3);
        auto makeSteps = [&](const Layout& layout, int* steps) {
            int gap = f.unit * random.in(0, 40);
            for (size_t i = 0; i < layout.size(); i++) {
                if (ownSteps) gap = f.unit * random.in(0, 40);
                steps[i] = int(rowBytes(layout[i], a.roi.width)) + (packed ? 0 : gap);
            }
        };
        makeSteps(f.src, a.srcStep);
        makeSteps(f.dst, a.dstStep);

        // A source is a block of its own that ends with the last pixel, for the address sanitizer.
        std::unique_ptr<Qov8u[]> blocks[4];
        for (size_t i = 0; i < f.src.size(); i++) {
            const size_t misfit = size_t(f.unit * random.in(0, 31 / f.unit));
            const size_t bytes =
                misfit + size_t(a.srcStep[i]) * size_t(a.roi.height - 1) + rowBytes(f.src[i], a.roi.width);
            blocks[i] = std::make_unique<Qov8u[]>(bytes);
            f.fill(random, blocks[i].get(), bytes);
            a.src[i] = blocks[i].get() + misfit;
        }
        const size_t offset = size_t(f.unit * random.in(0, 63 / f.unit));
        auto makeDestinations = [&](std::vector<Guarded>& to) {
            to.clear();
            for (size_t i = 0; i < f.dst.size(); i++)
                to.emplace_back(size_t(a.dstStep[i]) * size_t(a.roi.height), offset);
            for (size_t i = 0; i < f.dst.size(); i++) a.dst[i] = to[i].as<Qov8u>();
        };
        std::vector<Guarded> first, other;
        forEachLevel([&] {
            makeDestinations(first.empty() ? first : other);
            ASSERT_EQ(qovStsNoErr, f.call(a));
            const bool isFirst = other.empty();
            for (size_t i = 0; i < f.dst.size(); i++) {
                const size_t bytes = rowBytes(f.dst[i], a.roi.width);
                ASSERT_TRUE((isFirst ? first : other)[i].intact(size_t(a.dstStep[i]), bytes))
                    << "plane " << i;
                for (int y = 0; y < a.roi.height; y++)
                    ASSERT_EQ(0, std::memcmp(first[i].as<Qov8u>() + ptrdiff_t(y) * a.dstStep[i],
                                             a.dst[i] + ptrdiff_t(y) * a.dstStep[i], bytes))
                        << "plane " << i << ", row " << y;
            }
            if (isFirst) verify(a);
        });
        if (testing::Test::HasFatalFailure()) return;
    }
}

// One wrong argument alone, then all later ones wrong too: the earlier kind of error decides. Steps are
// looked at only if there is a second row.
inline void checkStatuses(const PlanesFunction& f, bool ownSteps)
{
    SCOPED_TRACE(f.name);
    std::vector<Qov8u> bytes(4096);
    Arguments good{};
    good.roi = {9, 2};
    for (int i = 0; i < 4; i++) {
        good.src[i] = bytes.data();
        good.dst[i] = bytes.data() + 512 * (i + 1);
    }
    for (size_t i = 0; i < f.src.size(); i++) good.srcStep[i] = int(rowBytes(f.src[i], 9));
    for (size_t i = 0; i < f.dst.size(); i++) good.dstStep[i] = int(rowBytes(f.dst[i], 9));
    EXPECT_EQ(qovStsNoErr, f.call(good));

    Arguments bad = good;
    auto shorter = [&](const Layout& layout, int(Arguments::*steps)[4]) {
        for (size_t i = 0; i < (ownSteps ? layout.size() : 1); i++) {
            Arguments a = good;
            for (size_t k = 0; k < layout.size(); k++)
                if (k == i || !ownSteps) (a.*steps)[k]--;
            EXPECT_EQ(qovStsStep, f.call(a)) << "step " << i;
            a.roi.height = 1;
            EXPECT_EQ(qovStsNoErr, f.call(a)) << "step " << i;
        }
    };
    shorter(f.src, &Arguments::srcStep);
    shorter(f.dst, &Arguments::dstStep);
    for (int i = 0; i < 4; i++) bad.srcStep[i] = bad.dstStep[i] = -100;
    EXPECT_EQ(qovStsStep, f.call(bad));
    for (const QoviSize roi : {QoviSize{0, 2}, QoviSize{9, 0}, QoviSize{-1, 2}, QoviSize{9, -7}}) {
        Arguments a = good;
        a.roi = bad.roi = roi;
        EXPECT_EQ(qovStsSize, f.call(a));
        EXPECT_EQ(qovStsSize, f.call(bad));
    }
    auto withoutPlane = [&](size_t planes, auto member) {
        for (size_t i = 0; i < planes; i++)
            for (Arguments a : {good, bad}) {
                (a.*member)[i] = nullptr;
                EXPECT_EQ(qovStsNullPtr, f.call(a)) << "plane " << i;
            }
    };
    withoutPlane(f.src.size(), &Arguments::src);
    withoutPlane(f.dst.size(), &Arguments::dst);
}

#endif
