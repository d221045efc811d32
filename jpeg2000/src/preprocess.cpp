#include "preprocess.h"

#include "samplememory.h"

#include "qovi.h"
#include "qovs.h"

namespace jpeg2000 {

template <class T>
void LevShiftFwd(T* row, unsigned width, JP2BitsPerComp depth)
{
    if (!depth.IsSigned()) qovsSubC_32s_ISfs(depth.LevelShift(), row, static_cast<int>(width), 0);
}

namespace {

void levShiftFwd32s32f(int* row, unsigned width, JP2BitsPerComp depth)
{
    LevShiftFwd(row, width, depth);
    qovsConvert_32s32f_Sfs(row, asFloats(row), static_cast<int>(width), 0);
}

} // namespace

template <class T>
void LevShiftRCTFwd(const ImageCoreC<T, 1u>* planes, const RectSize& size, const JP2BitsPerComp* depths)
{
    for (unsigned y = 0; y < size.height; y++) {
        T* const rows[3] = {planes[0].row(y), planes[1].row(y), planes[2].row(y)};
        for (unsigned i = 0; i < 3; i++) LevShiftFwd(rows[i], size.width, depths[i]);
        qoviRCTFwd_JPEG2K_32s_P3IR(rows, static_cast<int>(planes[0].step), RectSize{size.width, 1});
    }
}

void LevShiftICTFwd32s32f(const ImageCoreC<int, 1u>* planes, const RectSize& size,
                          const JP2BitsPerComp* depths)
{
    for (unsigned y = 0; y < size.height; y++) {
        int* const rows[3] = {planes[0].row(y), planes[1].row(y), planes[2].row(y)};
        for (unsigned i = 0; i < 3; i++) levShiftFwd32s32f(rows[i], size.width, depths[i]);
        Qov32f* const floats[3] = {asFloats(rows[0]), asFloats(rows[1]), asFloats(rows[2])};
        qoviICTFwd_JPEG2K_32f_P3IR(floats, static_cast<int>(planes[0].step), RectSize{size.width, 1});
    }
}

template <class T>
void PreProcessWT53(const ImageCoreC<T, 1u>* planes, const RectSize& size, const JP2BitsPerComp* depths,
                    unsigned nOfPlanes, bool isMCT)
{
    if (isMCT && nOfPlanes == 3) return LevShiftRCTFwd(planes, size, depths);
    for (unsigned i = 0; i < nOfPlanes; i++)
        for (unsigned y = 0; y < size.height; y++) LevShiftFwd(planes[i].row(y), size.width, depths[i]);
}

void PreProcessWT97_32s32f(const ImageCoreC<int, 1u>* planes, const RectSize& size,
                           const JP2BitsPerComp* depths, unsigned nOfPlanes, bool isMCT)
{
    if (isMCT && nOfPlanes == 3) return LevShiftICTFwd32s32f(planes, size, depths);
    for (unsigned i = 0; i < nOfPlanes; i++)
        for (unsigned y = 0; y < size.height; y++) levShiftFwd32s32f(planes[i].row(y), size.width, depths[i]);
}

template void LevShiftFwd<int>(int*, unsigned, JP2BitsPerComp);
template void LevShiftRCTFwd<int>(const ImageCoreC<int, 1u>*, const RectSize&, const JP2BitsPerComp*);
template void PreProcessWT53<int>(const ImageCoreC<int, 1u>*, const RectSize&, const JP2BitsPerComp*,
                                  unsigned, bool);

} // namespace jpeg2000
