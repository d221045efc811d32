#include "active.h"
#include "check.h"
#include "qoviwavelet.h"
#include "quietfloats.h"

using namespace qov;

namespace {

enum Direction { Row, Col };

// Along columns there are always several rows of samples, and with their border several of the halves that
// are read.
template <Direction direction, class T>
bool shortSamples(int step, QoviSize roi)
{
    return direction == Row ? shortStep(step, roi, 2 * sizeof(T))
                            : shortStep(step, {roi.width, 2}, sizeof(T));
}
template <Direction direction, class T>
bool shortBorderedHalf(int step, QoviSize roi)
{
    return shortStep(step, {roi.width, direction == Row ? roi.height : 2}, sizeof(T));
}

template <Direction direction, class T>
QovStatus forward(const WaveletPair<T>& kernels, const T* src, int srcStep, T* low, int lowStep, T* high,
                  int highStep, QoviSize roi)
{
    if (anyNull(src, low, high)) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortSamples<direction, T>(srcStep, roi) || shortStep(lowStep, roi, sizeof(T)) ||
        shortStep(highStep, roi, sizeof(T)))
        return qovStsStep;
    const QuietArithmetic<T> quiet;
    kernels.forward(src, srcStep, low, lowStep, high, highStep, roi);
    return qovStsNoErr;
}

template <Direction direction, class T>
QovStatus inverse(const WaveletPair<T>& kernels, const T* low, int lowStep, const T* high, int highStep,
                  T* dst, int dstStep, QoviSize roi)
{
    if (anyNull(low, high, dst)) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortBorderedHalf<direction, T>(lowStep, roi) || shortBorderedHalf<direction, T>(highStep, roi) ||
        shortSamples<direction, T>(dstStep, roi))
        return qovStsStep;
    const QuietArithmetic<T> quiet;
    kernels.inverse(low, lowStep, high, highStep, dst, dstStep, roi);
    return qovStsNoErr;
}

// T only chooses the arithmetic; the rows are as the kernel has them.
template <class T, class Kernel, class... Rows>
QovStatus lift(Kernel* kernel, int width, Rows*... rows)
{
    if (anyNull(rows...)) return qovStsNullPtr;
    if (width < 1) return qovStsSize;
    const QuietArithmetic<T> quiet;
    kernel(rows..., width);
    return qovStsNoErr;
}

} // namespace

#define QOV_TRANSFORM(direction, filter, T, kernels)                                                         \
    QovStatus qoviWTFwd##direction##_##filter##_JPEG2K_##T##_C1R(const Qov##T* pSrc, int srcStep,            \
                                                                 Qov##T* pLow, int lowStep, Qov##T* pHigh,   \
                                                                 int highStep, QoviSize roi)                 \
    {                                                                                                        \
        return forward<direction>(active.wavelet->kernels, pSrc, srcStep, pLow, lowStep, pHigh, highStep,    \
                                  roi);                                                                      \
    }                                                                                                        \
    QovStatus qoviWTInv##direction##_##filter##_JPEG2K_##T##_C1R(const Qov##T* pLow, int lowStep,            \
                                                                 const Qov##T* pHigh, int highStep,          \
                                                                 Qov##T* pDst, int dstStep, QoviSize roi)    \
    {                                                                                                        \
        return inverse<direction>(active.wavelet->kernels, pLow, lowStep, pHigh, highStep, pDst, dstStep,    \
                                  roi);                                                                      \
    }
QOV_TRANSFORM(Row, B53, 16s, rowB53_16s)
QOV_TRANSFORM(Row, B53, 32s, rowB53_32s)
QOV_TRANSFORM(Row, D97, 16s, rowD97_16s)
QOV_TRANSFORM(Row, D97, 32s, rowD97_32s)
QOV_TRANSFORM(Row, D97, 32f, rowD97_32f)
QOV_TRANSFORM(Col, B53, 16s, colB53_16s)
QOV_TRANSFORM(Col, B53, 32s, colB53_32s)
QOV_TRANSFORM(Col, D97, 32f, colD97_32f)

#define QOV_LIFT_B53(T)                                                                                      \
    QovStatus qoviWTFwdColLift_B53_JPEG2K_##T##_C1(const Qov##T* pEven0, const Qov##T* pOdd,                 \
                                                   const Qov##T* pEven1, const Qov##T* pHighPrev,            \
                                                   Qov##T* pLow, Qov##T* pHigh, int width)                   \
    {                                                                                                        \
        return lift<Qov##T>(active.wavelet->liftB53_##T.forward, width, pEven0, pOdd, pEven1, pHighPrev,     \
                            pLow, pHigh);                                                                    \
    }                                                                                                        \
    QovStatus qoviWTInvColLift_B53_JPEG2K_##T##_C1(const Qov##T* pLow1, const Qov##T* pHigh0,                \
                                                   const Qov##T* pHigh1, const Qov##T* pEven0, Qov##T* pOdd, \
                                                   Qov##T* pEven1, int width)                                \
    {                                                                                                        \
        return lift<Qov##T>(active.wavelet->liftB53_##T.inverse, width, pLow1, pHigh0, pHigh1, pEven0, pOdd, \
                            pEven1);                                                                         \
    }
QOV_LIFT_B53(16s)
QOV_LIFT_B53(32s)

#define QOV_LIFT_D97(T)                                                                                      \
    QovStatus qoviWTFwdColLift_D97_JPEG2K_##T##_C1(const Qov##T* pLow0, Qov##T* pHigh0, Qov##T* pLow1,       \
                                                   Qov##T* pHigh1, Qov##T* pLow2, const Qov##T* pHigh2,      \
                                                   int width)                                                \
    {                                                                                                        \
        return lift<Qov##T>(active.wavelet->liftD97_##T.forward, width, pLow0, pHigh0, pLow1, pHigh1, pLow2, \
                            pHigh2);                                                                         \
    }                                                                                                        \
    QovStatus qoviWTInvColLift_D97_JPEG2K_##T##_C1(Qov##T* pLow0, const Qov##T* pHigh0, Qov##T* pLow1,       \
                                                   Qov##T* pHigh1, const Qov##T* pLow2, Qov##T* pHigh2,      \
                                                   int width)                                                \
    {                                                                                                        \
        return lift<Qov##T>(active.wavelet->liftD97_##T.inverse, width, pLow0, pHigh0, pLow1, pHigh1, pLow2, \
                            pHigh2);                                                                         \
    }
QOV_LIFT_D97(16s)
QOV_LIFT_D97(32s)
QOV_LIFT_D97(32f)
