// Texture blocks: the S3TC formats DXT1, DXT3, DXT5 and the RGTC formats BC4 (one channel) and BC5 (two), as
// the Khronos Data Format Specification has them. Conventions of qovi.h.
//
// A block is 4x4 texels, in 8 bytes (DXT1, BC4) or 16. Blocks stand one after another, left to right and then
// top to bottom, floor(width / 4) of them a row. Only whole blocks are coded and decoded: columns and rows
// behind the last multiple of 4 are neither read nor written, and the status then is qovStsPartial. A side
// below 1 is qovStsSize.
#ifndef QOV_QOVITEXTURE_H
#define QOV_QOVITEXTURE_H

#include "qovdefs.h"

// End points lie on the principal axis of the block's colours and are refined by least squares; the channels
// of BC4 and BC5 and the alpha of DXT5 take the better of six and eight values. Alpha of DXT3 is rounded to
// the nearest multiple of 17. DXT1 makes texels of alpha below 128 transparent black.
QOV_API QovStatus qoviTextureEncodeBlock_BC4_8u_C1R(const Qov8u* pSrc, int srcStep, QoviSize roi,
                                                    Qov8u* pDst);
QOV_API QovStatus qoviTextureEncodeBlockFromRG_BC5_8u_C2C1R(const Qov8u* pSrc, int srcStep, QoviSize roi,
                                                            Qov8u* pDst);
QOV_API QovStatus qoviTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const Qov8u* pSrc, int srcStep, QoviSize roi,
                                                               Qov8u* pDst);
QOV_API QovStatus qoviTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const Qov8u* pSrc, int srcStep, QoviSize roi,
                                                               Qov8u* pDst);
QOV_API QovStatus qoviTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const Qov8u* pSrc, int srcStep, QoviSize roi,
                                                               Qov8u* pDst);

// Values between the end points are rounded down. Any bytes are blocks.
QOV_API QovStatus qoviTextureDecodeBlock_BC4_8u_C1R(const Qov8u* pSrc, Qov8u* pDst, int dstStep,
                                                    QoviSize roi);
QOV_API QovStatus qoviTextureDecodeBlockToRG_BC5_8u_C1C2R(const Qov8u* pSrc, Qov8u* pDst, int dstStep,
                                                          QoviSize roi);
QOV_API QovStatus qoviTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const Qov8u* pSrc, Qov8u* pDst, int dstStep,
                                                             QoviSize roi);
QOV_API QovStatus qoviTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const Qov8u* pSrc, Qov8u* pDst, int dstStep,
                                                             QoviSize roi);
QOV_API QovStatus qoviTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const Qov8u* pSrc, Qov8u* pDst, int dstStep,
                                                             QoviSize roi);

#endif
