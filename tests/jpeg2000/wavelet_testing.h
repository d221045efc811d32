// What the tests of both directions of the wavelets share.
#ifndef QUOLKIT_TESTS_JPEG2000_WAVELET_TESTING_H
#define QUOLKIT_TESTS_JPEG2000_WAVELET_TESTING_H

#include "image.h"
#include "jp2bitspercomp.h"

#include "qovcore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

namespace jpeg2000::testing {

class OnBestLevel : public ::testing::Test {
protected:
    static void SetUpTestSuite() { qovInit(); }
};

struct PyramidCase {
    Rect rect;
    unsigned nOfLevels;
};
// Bands that run empty, levels beyond what the image holds, no level at all, rows longer than vectors.
inline const PyramidCase pyramidCases[] = {
    {{0, 0, 1, 1}, 1},     {{1, 1, 1, 1}, 1},          {{0, 0, 1, 1}, 32},  {{5, 3, 1, 1}, 4},
    {{3, 3, 3, 3}, 3},     {{0, 0, 1, 37}, 6},         {{1, 0, 1, 37}, 6},  {{7, 11, 40, 1}, 6},
    {{0, 0, 29, 17}, 0},   {{3, 0, 13, 11}, 0},        {{0, 0, 64, 64}, 7}, {{0, 0, 131, 67}, 5},
    {{13, 7, 133, 90}, 5}, {{1023, 4095, 301, 35}, 4},
};

template <class T>
using Signal = std::vector<T>;

// The sample at i of a signal that is mirrored at its two ends.
template <class T>
T mirrored(const Signal<T>& x, long i)
{
    const long period = 2 * (long(x.size()) - 1);
    i = ((i % period) + period) % period;
    return x[size_t(std::min(i, period - i))];
}

// The 9-7 filter in whole numbers: factors are over 65536, products rounded half up, what is stored is
// limited to T.
template <class T>
T limited(long long value)
{
    return T(std::clamp<long long>(value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

inline long long fixedProduct(long long factor, long long value)
{
    return (factor * value + 0x8000) >> 16;
}

// Step k of 0 to 3 lifts the samples at odd positions, even ones, odd ones, even ones. sign: 1 or, backwards,
// -1.
template <class T>
void liftFixed(Signal<T>& x, unsigned origin, unsigned k, int sign)
{
    const long long steps[] = {-103949, -3472, 57862, 29066}, doubled[] = {-207898, -6944, 115725, 58131};
    const Signal<T> before = x;
    for (size_t i = 0; i < x.size(); i++) {
        if ((origin + i) % 2 == k % 2) continue;
        const bool isEdge = i == 0 || i + 1 == x.size();
        const T a = mirrored(before, long(i) - 1), b = mirrored(before, long(i) + 1);
        x[i] = limited<T>(
            x[i] + sign * (isEdge ? fixedProduct(doubled[k], a) : fixedProduct(steps[k], 0ll + a + b)));
    }
}

template <class T>
void scaleFixed(Signal<T>& x, unsigned origin, long long even, long long odd)
{
    for (size_t i = 0; i < x.size(); i++)
        x[i] = limited<T>(fixedProduct((origin + i) % 2 == 1 ? odd : even, x[i]));
}

// Three planes of 3x2 samples in one image of some step, all samples of a plane alike.
struct Planes {
    ImagePn<int> image;
    ImageCoreC<int, 1u> planes[3];

    template <class T>
    explicit Planes(const T (&values)[3])
    {
        image.Alloc(3, 2, 3);
        for (unsigned i = 0; i < 3; i++) {
            planes[i] = image.plane(i);
            const std::vector<T> row(3, values[i]);
            for (unsigned y = 0; y < 2; y++) std::memcpy(planes[i].row(y), row.data(), 3 * sizeof(T));
        }
    }

    template <class T>
    std::vector<T> plane(unsigned i) const
    {
        std::vector<T> samples(6);
        for (unsigned y = 0; y < 2; y++) std::memcpy(&samples[3 * y], planes[i].row(y), 3 * sizeof(T));
        return samples;
    }
};

constexpr unsigned char isSigned = 128; // of JP2BitsPerComp

} // namespace jpeg2000::testing

#endif
