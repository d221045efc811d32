#include "check.h"
#include "kernels/family.h"
#include "qoviimage.h"

#include <algorithm>
#include <cmath>

using namespace qov;

namespace {

template <int channels>
QovStatus jaehne(Qov8u* pDst, int dstStep, QoviSize roi)
{
    if (!pDst) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortStep(dstStep, roi, channels)) return qovStsStep;
    const double k = 0.785 / roi.height, cx = (roi.width - 1.0) / 2, cy = (roi.height - 1.0) / 2;
    for (int y = 0; y < roi.height; y++) {
        Qov8u* dst = atByte(pDst, ptrdiff_t(y) * dstStep);
        for (int x = 0; x < roi.width; x++) {
            const double square = (x - cx) * (x - cx) + (y - cy) * (y - cy);
            const auto value = Qov8u(127.5 * (1 + std::sin(0.5 * k * square)));
            for (int c = 0; c < channels; c++) *dst++ = value;
        }
    }
    return qovStsNoErr;
}

// Where a sample of the destination finds its values along one axis: the sample `first`, and `weight` of the
// way from it to the sample `second`.
struct Place {
    int first, second;
    double weight;
};

class Axis {
public:
    Axis(int size, double factor, bool isLinear) : m_last(size - 1.0), m_factor(factor), m_isLinear(isLinear)
    {
    }

    Place at(int i) const
    {
        const double exact = std::clamp((i + 0.5) / m_factor - 0.5, 0.0, m_last);
        if (!m_isLinear) {
            const int nearest = int(exact + 0.5);
            return {nearest, nearest, 0};
        }
        const int first = int(exact);
        return {first, first < m_last ? first + 1 : first, exact - first};
    }

private:
    double m_last, m_factor;
    bool m_isLinear;
};

// In double precision the difference of any two floats is finite. The first value alone is taken as it is:
// copies are exact whatever stands beside.
inline double between(double first, double second, double weight)
{
    return weight == 0 ? first : first + weight * (second - first);
}

template <int channels>
void resize(const Qov32f* src, int srcStep, Qov32f* dst, int dstStep, QoviSize dstSize, const Axis& xAxis,
            const Axis& yAxis)
{
    // The places of some columns serve all rows.
    constexpr int most = 128;
    Place places[most];
    for (int left = 0; left < dstSize.width; left += most) {
        const int width = std::min(most, dstSize.width - left);
        for (int x = 0; x < width; x++) places[x] = xAxis.at(left + x);
        for (int y = 0; y < dstSize.height; y++) {
            const Place row = yAxis.at(y);
            const Qov32f* above = atByte(src, ptrdiff_t(row.first) * srcStep);
            const Qov32f* below = atByte(src, ptrdiff_t(row.second) * srcStep);
            Qov32f* out = atByte(dst, ptrdiff_t(y) * dstStep) + ptrdiff_t(left) * channels;
            for (int x = 0; x < width; x++) {
                const Place& column = places[x];
                const ptrdiff_t first = ptrdiff_t(column.first) * channels;
                const ptrdiff_t second = ptrdiff_t(column.second) * channels;
                for (int c = 0; c < channels; c++) {
                    const double upper = between(above[first + c], above[second + c], column.weight);
                    const double lower = between(below[first + c], below[second + c], column.weight);
                    *out++ = Qov32f(between(upper, lower, row.weight));
                }
            }
        }
    }
}

bool isInside(QoviRect roi, QoviSize size)
{
    return roi.x >= 0 && roi.y >= 0 && Qov64s(roi.x) + roi.width <= size.width &&
           Qov64s(roi.y) + roi.height <= size.height;
}

template <int channels>
QovStatus checkedResize(const Qov32f* pSrc, QoviSize srcSize, int srcStep, QoviRect srcRoi, Qov32f* pDst,
                        int dstStep, QoviSize dstSize, double xFactor, double yFactor, int interpolation)
{
    if (anyNull(pSrc, pDst)) return qovStsNullPtr;
    if (emptySize(srcSize) || emptySize({srcRoi.width, srcRoi.height}) || emptySize(dstSize))
        return qovStsSize;
    if (!isInside(srcRoi, srcSize)) return qovStsSize;
    constexpr int pixel = channels * int(sizeof(Qov32f));
    if (shortStep(srcStep, srcSize, pixel) || shortStep(dstStep, dstSize, pixel)) return qovStsStep;
    if (!(xFactor > 0) || !(yFactor > 0)) return qovStsBadArg;
    if (interpolation != qoviInterpolationNearest && interpolation != qoviInterpolationLinear)
        return qovStsBadArg;
    const bool isLinear = interpolation == qoviInterpolationLinear;
    const Qov32f* region = atByte(pSrc, ptrdiff_t(srcRoi.y) * srcStep) + ptrdiff_t(srcRoi.x) * channels;
    resize<channels>(region, srcStep, pDst, dstStep, dstSize, Axis(srcRoi.width, xFactor, isLinear),
                     Axis(srcRoi.height, yFactor, isLinear));
    return qovStsNoErr;
}

} // namespace

QovStatus qoviImageJaehne_8u_C1R(Qov8u* pDst, int dstStep, QoviSize roi)
{
    return jaehne<1>(pDst, dstStep, roi);
}

QovStatus qoviImageJaehne_8u_C3R(Qov8u* pDst, int dstStep, QoviSize roi)
{
    return jaehne<3>(pDst, dstStep, roi);
}

QovStatus qoviResize_32f_C1R(const Qov32f* pSrc, QoviSize srcSize, int srcStep, QoviRect srcRoi, Qov32f* pDst,
                             int dstStep, QoviSize dstSize, double xFactor, double yFactor, int interpolation)
{
    return checkedResize<1>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstSize, xFactor, yFactor,
                            interpolation);
}

QovStatus qoviResize_32f_C3R(const Qov32f* pSrc, QoviSize srcSize, int srcStep, QoviRect srcRoi, Qov32f* pDst,
                             int dstStep, QoviSize dstSize, double xFactor, double yFactor, int interpolation)
{
    return checkedResize<3>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstSize, xFactor, yFactor,
                            interpolation);
}
