#include "active.h"
#include "planescheck.h"
#include "qovimcu.h"

using namespace qov;

namespace {

constexpr QoviSize region444 = {8, 8}, region422 = {16, 8}, region411 = {16, 16};

// The kernel's call, or what is wrong with its arguments; an image row has `bytes` bytes a pixel.
template <class Pixel>
QovStatus toBlocks(const McuPair<Pixel>& kernels, QoviSize region, int bytes, int planes, const Pixel* pSrc,
                   int srcStep, Qov16s* const* pDst)
{
    if (!pSrc || nullPlane(pDst, planes)) return qovStsNullPtr;
    if (shortStep(srcStep, region, bytes)) return qovStsStep;
    kernels.toBlocks(pSrc, srcStep, pDst);
    return qovStsNoErr;
}

template <class Pixel>
QovStatus fromBlocks(const McuPair<Pixel>& kernels, QoviSize region, int bytes, int planes,
                     const Qov16s* const* pSrc, Pixel* pDst, int dstStep)
{
    if (nullPlane(pSrc, planes) || !pDst) return qovStsNullPtr;
    if (shortStep(dstStep, region, bytes)) return qovStsStep;
    kernels.fromBlocks(pSrc, pDst, dstStep);
    return qovStsNoErr;
}

} // namespace

#define MCU_TO_BLOCKS(name, type, kernels, region, bytes, planes)                                            \
    QovStatus name(const Qov##type* pSrc, int srcStep, Qov16s* const pDstMCU[planes])                        \
    {                                                                                                        \
        return toBlocks(active.mcu->kernels, region, bytes, planes, pSrc, srcStep, pDstMCU);                 \
    }
#define MCU_FROM_BLOCKS(name, type, kernels, region, bytes, planes)                                          \
    QovStatus name(const Qov16s* const pSrcMCU[planes], Qov##type* pDst, int dstStep)                        \
    {                                                                                                        \
        return fromBlocks(active.mcu->kernels, region, bytes, planes, pSrcMCU, pDst, dstStep);               \
    }

// Both directions between pixels of `n` channels, in `bytes` bytes, and planes.
#define MCU_COLOUR(digits, pixels, planes, type, n, bytes, kernels)                                          \
    MCU_TO_BLOCKS(qovi##pixels##To##planes##digits##LS_MCU_##type##16s_C##n##P##n##R, type,                  \
                  kernels.region##digits, region##digits, bytes, n)                                          \
    MCU_FROM_BLOCKS(qovi##planes##digits##To##pixels##LS_MCU_16s##type##_P##n##C##n##R, type,                \
                    kernels.region##digits, region##digits, bytes, n)

#define MCU_REGION(digits)                                                                                   \
    MCU_COLOUR(digits, RGB, YCbCr, 8u, 3, 3, rgb)                                                            \
    MCU_COLOUR(digits, BGR, YCbCr, 8u, 3, 3, bgr)                                                            \
    MCU_COLOUR(digits, CMYK, YCCK, 8u, 4, 4, cmyk)                                                           \
    MCU_COLOUR(digits, BGR555, YCbCr, 16u, 3, 2, bgr555)                                                     \
    MCU_COLOUR(digits, BGR565, YCbCr, 16u, 3, 2, bgr565)                                                     \
    MCU_TO_BLOCKS(qoviSampleDown##digits##LS_MCU_8u16s_C3P3R, 8u, samples.region##digits, region##digits, 3, \
                  3)                                                                                         \
    MCU_FROM_BLOCKS(qoviSampleUp##digits##LS_MCU_16s8u_P3C3R, 8u, samples.region##digits, region##digits, 3, \
                    3)

MCU_REGION(444)
MCU_REGION(422)
MCU_REGION(411)

MCU_TO_BLOCKS(qoviSplit422LS_MCU_8u16s_C2P3R, 8u, pairs422, region422, 2, 3)
MCU_FROM_BLOCKS(qoviJoin422LS_MCU_16s8u_P3C2R, 8u, pairs422, region422, 2, 3)
