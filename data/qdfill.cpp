// The routines that make test data: constants, random numbers, ramps and the Jaehne sweep. All of them are
// fixed to the bit, so that every run measures the same data.
#include <algorithm>
#include <cmath>

#include "qdconvert.h"
#include "qdvector.h"

// Number of parts in n elements.
static std::int64_t countParts(qdType type, int n)
{
    return static_cast<std::int64_t>(n) * qdNumParts(type);
}

void qdVector::setDataConst(void* p, int n, double re, double im) const
{
    const std::int64_t count = countParts(m_type, n);
    const int parts = qdNumParts(m_type);
    qdVisitPart(m_type, [&](auto part) {
        using Part = decltype(part);
        const Part values[2] = {qdConvert<Part>(re), qdConvert<Part>(im)};
        for (std::int64_t i = 0; i < count; i++) qdStore(p, i, values[i & (parts - 1)]);
    });
}

void qdVector::setDataConst_64s(void* p, int n, long long re, long long im) const
{
    if (qdRealType(m_type) != qd64s) return;
    const std::int64_t count = countParts(m_type, n);
    const int parts = qdNumParts(m_type);
    const Qov64s values[2] = {re, im};
    for (std::int64_t i = 0; i < count; i++) qdStore(p, i, values[i & (parts - 1)]);
}

namespace {

// Random 32-bit numbers: the sum of a subtract-with-borrow sequence and a linear congruential one.
class Generator {
public:
    explicit Generator(std::uint32_t seed) : m_x1(seed), m_x2(congruent(m_x1)), m_x3(congruent(m_x2)) {}

    std::int32_t next()
    {
        m_q = congruent(m_q);
        std::uint32_t t = m_x2 - m_x3 + m_borrow;
        const bool negative = static_cast<std::int32_t>(t) < 0;
        m_borrow = negative ? minusOne : 0;
        if (negative) t -= 18;
        m_x3 = m_x2;
        m_x2 = m_x1;
        m_x1 = t;
        return static_cast<std::int32_t>(m_q + t);
    }

    std::uint32_t last() const { return m_x1; } // of the subtracting sequence: the next seed

private:
    static constexpr std::uint32_t minusOne = 0xFFFFFFFF;
    static std::uint32_t congruent(std::uint32_t x) { return 69069u * x + 1013904243u; }

    std::uint32_t m_x1, m_x2, m_x3; // youngest first
    std::uint32_t m_borrow = minusOne;
    std::uint32_t m_q = 1131199209u;
};

} // namespace

void qdVector::setDataRandom(void* p, int n, double min, double max) const
{
    const double lo = std::max(min, minValue());
    const double hi = std::min(max, maxValue());
    // A little more than 2^-32; data depend on its last bit.
    const double scale = (hi - lo) * 2.3283064365387e-10;
    const double mid = (hi + lo) * 0.5;
    const std::int64_t count = countParts(m_type, n);
    if (count <= 0) return;
    qdVisitPart(m_type, [&](auto part) {
        using Part = decltype(part);
        Generator generator(m_seed);
        for (std::int64_t i = 0; i < count; i++)
            qdStore(p, i, qdConvert<Part>(generator.next() * scale + mid));
        m_seed = generator.last();
    });
}

// The bound is looked at after the store, so the last element is not affected by the wrap.
void qdVector::setDataSequence(void* p, int n, double lo, double hi, double step, bool wrap) const
{
    lo = std::max(lo, minValue());
    hi = std::min(hi, maxValue());
    const int parts = qdNumParts(m_type);
    const std::int64_t count = countParts(m_type, n);
    qdVisitPart(m_type, [&](auto part) {
        using Part = decltype(part);
        double x = lo;
        for (std::int64_t i = 0; i < count; i += parts) {
            for (int k = 0; k < parts; k++) qdStore(p, i + k, qdConvert<Part>(x));
            x += step;
            if (x > hi) x = wrap ? lo : hi;
        }
    });
}

bool qdVector::updateJaehneMagn(double& magn, double& offset) const
{
    if (magn < 0) return false;
    magn = std::min(magn, (maxValue() - minValue()) * 0.5);
    offset = qdIsFloat(m_type) || qdIsSigned(m_type) ? 0 : (minValue() + maxValue()) * 0.5;
    return true;
}

// A sine whose frequency grows along the vector: magn * sin(pi/2 / n * i^2) + offset.
void qdVector::setVectorJaehne(void* p, int n, double magn) const
{
    double offset;
    if (!updateJaehneMagn(magn, offset)) return;
    const double k = 1.5707963267948966 / n;
    const int parts = qdNumParts(m_type);
    qdVisitPart(m_type, [&](auto part) {
        using Part = decltype(part);
        for (int i = 0; i < n; i++) {
            const Part value = qdConvert<Part>(magn * std::sin(k * i * i) + offset);
            for (int j = 0; j < parts; j++) qdStore(p, static_cast<std::int64_t>(i) * parts + j, value);
        }
    });
}
