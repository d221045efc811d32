// The kernels in use. Before qovInit they are those of level px.
#ifndef QOV_ACTIVE_H
#define QOV_ACTIVE_H

#include "kernels/codeblock.h"
#include "kernels/codeblockdec.h"
#include "kernels/copy.h"
#include "kernels/jadd.h"
#include "kernels/jcolor.h"
#include "kernels/jcomponent.h"
#include "kernels/jdctfwd.h"
#include "kernels/jdctinv.h"
#include "kernels/jhuffdec.h"
#include "kernels/jhuffenc.h"
#include "kernels/jhuffrow.h"
#include "kernels/jmcu.h"
#include "kernels/jpacked.h"
#include "kernels/jpredict.h"
#include "kernels/jquant.h"
#include "kernels/jresample.h"
#include "kernels/jsample.h"
#include "kernels/pct.h"
#include "kernels/texturedec.h"
#include "kernels/textureenc.h"
#include "kernels/tiff.h"
#include "kernels/vector.h"
#include "kernels/wavelet.h"
#include "kernels/xrcoder.h"

// Every family once: F(x, name in the table, its struct).
// clang-format off
#define QOV_FAMILIES(F, x)                  \
    F(x, add, AddKernels)                   \
    F(x, codeBlock, CodeBlockKernels)       \
    F(x, codeBlockDec, CodeBlockDecKernels) \
    F(x, color, ColorKernels)               \
    F(x, component, ComponentKernels)       \
    F(x, copy, CopyKernels)                 \
    F(x, dctFwd, DctFwdKernels)             \
    F(x, dctInv, DctInvKernels)             \
    F(x, huffDec, HuffDecKernels)           \
    F(x, huffEnc, HuffEncKernels)           \
    F(x, huffRow, HuffRowKernels)           \
    F(x, mcu, McuKernels)                   \
    F(x, packed, PackedKernels)             \
    F(x, pct, PctKernels)                   \
    F(x, predict, PredictKernels)           \
    F(x, quant, QuantKernels)               \
    F(x, resample, ResampleKernels)         \
    F(x, sample, SampleKernels)             \
    F(x, textureDec, TextureDecKernels)     \
    F(x, textureEnc, TextureEncKernels)     \
    F(x, tiff, TiffKernels)                 \
    F(x, vector, VectorKernels)             \
    F(x, wavelet, WaveletKernels)           \
    F(x, xrCoder, XrCoderKernels)
// clang-format on

namespace qov {

struct Kernels {
#define QOV_MEMBER(x, name, Type) const Type* name;
    QOV_FAMILIES(QOV_MEMBER, )
#undef QOV_MEMBER
};

extern Kernels active;

QovCpuType activeLevel();
void activate(QovCpuType level); // px to v4; the caller knows that the machine can run it

} // namespace qov

#endif
