// The 8x8 transforms of ITU-T T.81, A.3.3 in double precision, straight from the formula, and what the
// transform tests compare with them.
#ifndef TESTS_QOV_DCT_REFERENCE_H
#define TESTS_QOV_DCT_REFERENCE_H

#include "qovdefs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

typedef std::array<double, 64> RealBlock;
typedef std::array<Qov16s, 64> WordBlock;

// One value of the N-point cosine basis, orthonormal.
inline double cosine(int n, int k, int points = 8)
{
    const double scale = std::sqrt((k ? 2.0 : 1.0) / points);
    return scale * std::cos((2 * n + 1) * k * std::acos(-1.0) / (2 * points));
}

inline RealBlock referenceDct(const RealBlock& in, bool inverse)
{
    static const auto basis = [] {
        std::array<std::array<double, 8>, 8> b; // [frequency][place]
        for (int k = 0; k < 8; k++)
            for (int n = 0; n < 8; n++) b[k][n] = cosine(n, k);
        return b;
    }();
    auto pass = [&](const RealBlock& a) { // along rows, transposed result
        RealBlock r{};
        for (int row = 0; row < 8; row++)
            for (int to = 0; to < 8; to++) {
                double sum = 0;
                for (int from = 0; from < 8; from++)
                    sum += a[8 * row + from] * (inverse ? basis[from][to] : basis[to][from]);
                r[8 * to + row] = sum;
            }
        return r;
    };
    return pass(pass(in));
}

// Exact results at a half come out of the sums a little off; they are put back before rounding.
inline double rounded(double v)
{
    return std::round(std::round(v * 1e6) / 1e6);
}

inline int limited(double v, int lowest, int highest)
{
    return int(std::clamp(rounded(v), double(lowest), double(highest)));
}

// Counts how far results are from the rounded real numbers.
class Agreement {
public:
    void add(int expected, int got)
    {
        m_count++;
        m_different += expected != got;
        m_largest = std::max(m_largest, std::abs(expected - got));
    }
    int largest() const { return m_largest; }
    double equalShare() const { return 1.0 - double(m_different) / double(m_count); }

private:
    long m_count = 0, m_different = 0;
    int m_largest = 0;
};

#endif
