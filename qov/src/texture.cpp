#include "qovitexture.h"

#include "active.h"
#include "check.h"
#include "quietfloats.h"

using namespace qov;

namespace {

constexpr int blockSide = 4;

// What is coded or decoded of a picture.
struct WholeBlocks {
    QovStatus status; // an error, or qovStsPartial where texels are left over
    ptrdiff_t columns, rows;

    bool any() const { return status >= qovStsNoErr && columns > 0 && rows > 0; }
};

WholeBlocks wholeBlocks(const void* blocks, const void* texels, int step, QoviSize roi, int texelBytes)
{
    if (anyNull(blocks, texels)) return {qovStsNullPtr, 0, 0};
    if (emptySize(roi)) return {qovStsSize, 0, 0};
    if (shortStep(step, roi, texelBytes)) return {qovStsStep, 0, 0};
    const bool whole = roi.width % blockSide == 0 && roi.height % blockSide == 0;
    return {whole ? qovStsNoErr : qovStsPartial, roi.width / blockSide, roi.height / blockSide};
}

// Lines are fitted to colours in floats.
QovStatus encode(EncodeTexels* kernel, int texelBytes, const Qov8u* src, int srcStep, QoviSize roi,
                 Qov8u* dst)
{
    const WholeBlocks blocks = wholeBlocks(dst, src, srcStep, roi, texelBytes);
    if (blocks.any()) {
        const QuietFloats quiet;
        kernel(src, srcStep, blocks.columns, blocks.rows, dst);
    }
    return blocks.status;
}

QovStatus decode(DecodeTexels* kernel, int texelBytes, const Qov8u* src, Qov8u* dst, int dstStep,
                 QoviSize roi)
{
    const WholeBlocks blocks = wholeBlocks(src, dst, dstStep, roi, texelBytes);
    if (blocks.any()) kernel(src, dst, dstStep, blocks.columns, blocks.rows);
    return blocks.status;
}

} // namespace

QovStatus qoviTextureEncodeBlock_BC4_8u_C1R(const Qov8u* pSrc, int srcStep, QoviSize roi, Qov8u* pDst)
{
    return encode(active.textureEnc->bc4, 1, pSrc, srcStep, roi, pDst);
}

QovStatus qoviTextureEncodeBlockFromRG_BC5_8u_C2C1R(const Qov8u* pSrc, int srcStep, QoviSize roi, Qov8u* pDst)
{
    return encode(active.textureEnc->bc5, 2, pSrc, srcStep, roi, pDst);
}

QovStatus qoviTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const Qov8u* pSrc, int srcStep, QoviSize roi,
                                                       Qov8u* pDst)
{
    return encode(active.textureEnc->dxt1, 4, pSrc, srcStep, roi, pDst);
}

QovStatus qoviTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const Qov8u* pSrc, int srcStep, QoviSize roi,
                                                       Qov8u* pDst)
{
    return encode(active.textureEnc->dxt3, 4, pSrc, srcStep, roi, pDst);
}

QovStatus qoviTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const Qov8u* pSrc, int srcStep, QoviSize roi,
                                                       Qov8u* pDst)
{
    return encode(active.textureEnc->dxt5, 4, pSrc, srcStep, roi, pDst);
}

QovStatus qoviTextureDecodeBlock_BC4_8u_C1R(const Qov8u* pSrc, Qov8u* pDst, int dstStep, QoviSize roi)
{
    return decode(active.textureDec->bc4, 1, pSrc, pDst, dstStep, roi);
}

QovStatus qoviTextureDecodeBlockToRG_BC5_8u_C1C2R(const Qov8u* pSrc, Qov8u* pDst, int dstStep, QoviSize roi)
{
    return decode(active.textureDec->bc5, 2, pSrc, pDst, dstStep, roi);
}

QovStatus qoviTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const Qov8u* pSrc, Qov8u* pDst, int dstStep,
                                                     QoviSize roi)
{
    return decode(active.textureDec->dxt1, 4, pSrc, pDst, dstStep, roi);
}

QovStatus qoviTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const Qov8u* pSrc, Qov8u* pDst, int dstStep,
                                                     QoviSize roi)
{
    return decode(active.textureDec->dxt3, 4, pSrc, pDst, dstStep, roi);
}

QovStatus qoviTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const Qov8u* pSrc, Qov8u* pDst, int dstStep,
                                                     QoviSize roi)
{
    return decode(active.textureDec->dxt5, 4, pSrc, pDst, dstStep, roi);
}
