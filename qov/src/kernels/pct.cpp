#include "pct.h"

#include "pct_macroblocks.h"

namespace qov::QOV_LEVEL {
namespace {

template <class T, int wide, int high, Direction direction>
void transformAll(T* data, ptrdiff_t step, ptrdiff_t columns, ptrdiff_t rows)
{
    assert(columns > 0 && rows > 0);
    constexpr int together = tileMacroblocks<T, wide, high>;
    for (ptrdiff_t row = 0; row < rows; row++, data = atByte(data, high * step)) {
        ptrdiff_t column = 0;
        for (; column <= columns - together; column += together)
            Tile<T, wide, high, together>::template transform<direction>(data + column * wide, step);
        if constexpr (together > 1)
            if (column < columns)
                Tile<T, wide, high, 1>::template transform<direction>(data + column * wide, step);
    }
}

template <class T, int wide, int high>
constexpr PctForm<T> form = {transformAll<T, wide, high, Forward>, transformAll<T, wide, high, Inverse>};
template <class T>
constexpr PctForms<T> forms = {form<T, 16, 16>, form<T, 8, 16>, form<T, 8, 8>};

} // namespace

const PctKernels pctKernels = {forms<Qov32s>, forms<Qov16s>, forms<Qov32f>};

} // namespace qov::QOV_LEVEL
