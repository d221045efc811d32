#include "active.h"
#include "check.h"
#include "qovipct.h"
#include "quietfloats.h"

using namespace qov;

namespace {

enum Direction { Fwd, Inv };

template <Direction direction, class T>
void run(const PctForm<T>& form, T* data, int step, ptrdiff_t columns, ptrdiff_t rows)
{
    const QuietArithmetic<T> quiet;
    (direction == Fwd ? form.forward : form.inverse)(data, step, columns, rows);
}

template <Direction direction, class T>
QovStatus transformMacroblock(const PctForm<T>& form, T* data, int step, int width)
{
    if (!data) return qovStsNullPtr;
    if (step < width * int(sizeof(T))) return qovStsStep;
    run<direction>(form, data, step, 1, 1);
    return qovStsNoErr;
}

template <Direction direction, class T>
QovStatus transformRegion(const PctForms<T>& forms, T* data, int step, QoviSize roi)
{
    if (!data) return qovStsNullPtr;
    if (emptySize(roi) || roi.width % 8 || roi.height % 8) return qovStsSize;
    if (shortStep(step, roi, sizeof(T))) return qovStsStep;
    if (roi.height % 16)
        run<direction>(forms.form8x8, data, step, roi.width / 8, roi.height / 8);
    else if (roi.width % 16)
        run<direction>(forms.form8x16, data, step, roi.width / 8, roi.height / 16);
    else
        run<direction>(forms.form16x16, data, step, roi.width / 16, roi.height / 16);
    return qovStsNoErr;
}

} // namespace

#define QOV_MACROBLOCK(direction, format, T, width, height)                                                  \
    QovStatus qoviPCT##direction##width##x##height##_##format##_##T##_C1IR(Qov##T* pSrcDst, int step)        \
    {                                                                                                        \
        return transformMacroblock<direction>(active.pct->of##T.form##width##x##height, pSrcDst, step,       \
                                              width);                                                        \
    }
#define QOV_FORMS(direction, format, T)                                                                      \
    QovStatus qoviPCT##direction##_##format##_##T##_C1IR(Qov##T* pSrcDst, int step, QoviSize roi)            \
    {                                                                                                        \
        return transformRegion<direction>(active.pct->of##T, pSrcDst, step, roi);                            \
    }                                                                                                        \
    QOV_MACROBLOCK(direction, format, T, 16, 16)                                                             \
    QOV_MACROBLOCK(direction, format, T, 8, 16)                                                              \
    QOV_MACROBLOCK(direction, format, T, 8, 8)
QOV_FORMS(Fwd, HDP, 32s)
QOV_FORMS(Inv, HDP, 32s)
QOV_FORMS(Fwd, JPEGXR, 32s)
QOV_FORMS(Inv, JPEGXR, 32s)
QOV_FORMS(Fwd, JPEGXR, 16s)
QOV_FORMS(Inv, JPEGXR, 16s)
QOV_FORMS(Fwd, JPEGXR, 32f)
QOV_FORMS(Inv, JPEGXR, 32f)
