#include "postprocess.h"

#include "samplememory.h"

#include "qovi.h"
#include "qovs.h"

namespace jpeg2000 {

template <class T>
void LevShiftInv(T* row, unsigned width, JP2BitsPerComp depth)
{
    if (!depth.IsSigned()) qovsAddC_32s_ISfs(depth.LevelShift(), row, static_cast<int>(width), 0);
}

namespace {

void levShiftInv32f32s(int* row, unsigned width, JP2BitsPerComp depth)
{
    qovsConvert_32f32s_Sfs(asFloats(row), row, static_cast<int>(width), qovRndNear, 0);
    LevShiftInv(row, width, depth);
}

} // namespace

template <class T>
void LevShiftRCTInv(const ImageCoreC<T, 1u>* planes, const RectSize& size, const JP2BitsPerComp* depths)
{
    for (unsigned y = 0; y < size.height; y++) {
        T* const rows[3] = {planes[0].row(y), planes[1].row(y), planes[2].row(y)};
        qoviRCTInv_JPEG2K_32s_P3IR(rows, static_cast<int>(planes[0].step), RectSize{size.width, 1});
        for (unsigned i = 0; i < 3; i++) LevShiftInv(rows[i], size.width, depths[i]);
    }
}

void LevShiftICTInv32f32s(const ImageCoreC<int, 1u>* planes, const RectSize& size,
                          const JP2BitsPerComp* depths)
{
    for (unsigned y = 0; y < size.height; y++) {
        int* const rows[3] = {planes[0].row(y), planes[1].row(y), planes[2].row(y)};
        Qov32f* const floats[3] = {asFloats(rows[0]), asFloats(rows[1]), asFloats(rows[2])};
        qoviICTInv_JPEG2K_32f_P3IR(floats, static_cast<int>(planes[0].step), RectSize{size.width, 1});
        for (unsigned i = 0; i < 3; i++) levShiftInv32f32s(rows[i], size.width, depths[i]);
    }
}

template <class T>
void PostProcessWT53(const ImageCoreC<T, 1u>* planes, const RectSize& size, const JP2BitsPerComp* depths,
                     unsigned nOfPlanes, bool isMCT)
{
    if (isMCT && nOfPlanes == 3) return LevShiftRCTInv(planes, size, depths);
    for (unsigned i = 0; i < nOfPlanes; i++)
        for (unsigned y = 0; y < size.height; y++) LevShiftInv(planes[i].row(y), size.width, depths[i]);
}

void PostProcessWT97_32f32s(const ImageCoreC<int, 1u>* planes, const RectSize& size,
                            const JP2BitsPerComp* depths, unsigned nOfPlanes, bool isMCT)
{
    if (isMCT && nOfPlanes == 3) return LevShiftICTInv32f32s(planes, size, depths);
    for (unsigned i = 0; i < nOfPlanes; i++)
        for (unsigned y = 0; y < size.height; y++) levShiftInv32f32s(planes[i].row(y), size.width, depths[i]);
}

template void LevShiftInv<int>(int*, unsigned, JP2BitsPerComp);
template void LevShiftRCTInv<int>(const ImageCoreC<int, 1u>*, const RectSize&, const JP2BitsPerComp*);
template void PostProcessWT53<int>(const ImageCoreC<int, 1u>*, const RectSize&, const JP2BitsPerComp*,
                                   unsigned, bool);

} // namespace jpeg2000
