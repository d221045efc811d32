#include "active.h"
#include "qovi.h"

using namespace qov;

namespace {

// Where the coefficient of a place in zig-zag order stands in the block (ITU-T T.81, figure A.6).
const Qov8u naturalOrder[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                                12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                                35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                                58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

void prepare(const Qov8u* pRaw, Qov16u* pTable)
{
    for (int i = 0; i < 64; i++) pTable[naturalOrder[i]] = pRaw[i];
}

} // namespace

QovStatus qoviQuantFwdRawTableInit_JPEG_8u(Qov8u* pRaw, int quality)
{
    if (!pRaw) return qovStsNullPtr;
    const int q = quality < 1 ? 1 : quality > 100 ? 100 : quality;
    const int percent = q < 50 ? 5000 / q : 200 - 2 * q;
    for (int i = 0; i < 64; i++) {
        const int step = (pRaw[i] * percent + 50) / 100;
        pRaw[i] = Qov8u(step < 1 ? 1 : step > 255 ? 255 : step);
    }
    return qovStsNoErr;
}

QovStatus qoviQuantFwdTableInit_JPEG_8u16u(const Qov8u* pRaw, Qov16u* pTable)
{
    if (!pRaw || !pTable) return qovStsNullPtr;
    for (int i = 0; i < 64; i++)
        if (pRaw[i] == 0) return qovStsBadArg;
    prepare(pRaw, pTable);
    return qovStsNoErr;
}

QovStatus qoviQuantInvTableInit_JPEG_8u16u(const Qov8u* pRaw, Qov16u* pTable)
{
    if (!pRaw || !pTable) return qovStsNullPtr;
    prepare(pRaw, pTable);
    return qovStsNoErr;
}

QovStatus qoviQuantFwd8x8_JPEG_16s_C1I(Qov16s* pSrcDst, const Qov16u* pTable)
{
    if (!pSrcDst || !pTable) return qovStsNullPtr;
    active.quant->fwd_16s(pSrcDst, pTable);
    return qovStsNoErr;
}

QovStatus qoviQuantInv8x8_JPEG_16s_C1I(Qov16s* pSrcDst, const Qov16u* pTable)
{
    if (!pSrcDst || !pTable) return qovStsNullPtr;
    active.quant->inv_16s(pSrcDst, pTable);
    return qovStsNoErr;
}
