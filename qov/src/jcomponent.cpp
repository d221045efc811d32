#include "active.h"
#include "planescheck.h"
#include "qovicomponent.h"
#include "quietfloats.h"

using namespace qov;

namespace {

constexpr int planeCount = 3;

template <class T>
QovStatus inPlace(TransformPlanes<T>* kernel, T* const* data, int step, QoviSize roi)
{
    const Planes planes(data, step, planeCount);
    if (planes.isNull()) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (planes.isShort(roi)) return qovStsStep;
    kernel(data, step, roi);
    return qovStsNoErr;
}

struct WholeNumbers {}; // the floating-point state does not matter

} // namespace

// The forms of a transform, for elements of a type; the call happens under a State.
#define IN_PLACE(transform, type, kernel, State)                                                             \
    QovStatus qovi##transform##_JPEG2K_##type##_P3IR(Qov##type* const pSrcDst[3], int srcDstStep,            \
                                                     QoviSize roi)                                           \
    {                                                                                                        \
        [[maybe_unused]] const State state;                                                                  \
        return inPlace(active.component->kernel##type, pSrcDst, srcDstStep, roi);                            \
    }
#define TO_PLANES(transform, type, kernel, State)                                                            \
    QovStatus qovi##transform##_JPEG2K_##type##_C3P3R(const Qov##type* pSrc, int srcStep,                    \
                                                      Qov##type* const pDst[3], int dstStep, QoviSize roi)   \
    {                                                                                                        \
        [[maybe_unused]] const State state;                                                                  \
        return convert(active.component->kernel##type, Pixels(pSrc, srcStep, planeCount),                    \
                       Planes(pDst, dstStep, planeCount), roi);                                              \
    }
#define FROM_PLANES(transform, type, kernel, State)                                                          \
    QovStatus qovi##transform##_JPEG2K_##type##_P3C3R(const Qov##type* const pSrc[3], int srcStep,           \
                                                      Qov##type* pDst, int dstStep, QoviSize roi)            \
    {                                                                                                        \
        [[maybe_unused]] const State state;                                                                  \
        return convert(active.component->kernel##type, Planes(pSrc, srcStep, planeCount),                    \
                       Pixels(pDst, dstStep, planeCount), roi);                                              \
    }

#define REVERSIBLE(type)                                                                                     \
    IN_PLACE(RCTFwd, type, rctFwd, WholeNumbers)                                                             \
    IN_PLACE(RCTInv, type, rctInv, WholeNumbers)                                                             \
    TO_PLANES(RCTFwd, type, rctToPlanes, WholeNumbers)                                                       \
    FROM_PLANES(RCTInv, type, rctFromPlanes, WholeNumbers)

REVERSIBLE(16s)
REVERSIBLE(32s)

#define IRREVERSIBLE(type, State)                                                                            \
    IN_PLACE(ICTFwd, type, ictFwd, State)                                                                    \
    IN_PLACE(ICTInv, type, ictInv, State)

IRREVERSIBLE(16s, WholeNumbers)
IRREVERSIBLE(32s, QuietFloats)
IRREVERSIBLE(32f, QuietFloats)
TO_PLANES(ICTFwd, 32f, ictToPlanes, QuietFloats)
FROM_PLANES(ICTInv, 32f, ictFromPlanes, QuietFloats)
