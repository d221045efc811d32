// Pictures of plain numbers: sign and magnitude, shifts, scaling, copies; and memory for them. Conventions of
// qovi.h.
#ifndef QOV_QOVIVECTOR_H
#define QOV_QOVIVECTOR_H

#include "qovdefs.h"

// From two's complement to sign (bit 31) and magnitude, and back: x >= 0 ? x : 2^31 - x, modulo 2^32. Its own
// inverse, save that -2^31 becomes 0.
QOV_API QovStatus qoviComplement_32s_C1IR(Qov32s* pSrcDst, int srcDstStep, QoviSize roi);

// Left modulo 2^32, right arithmetic. From 32 bits on nothing is left but zeros, or the sign.
QOV_API QovStatus qoviLShiftC_32s_C1IR(unsigned shift, Qov32s* pSrcDst, int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviRShiftC_32s_C1IR(unsigned shift, Qov32s* pSrcDst, int srcDstStep, QoviSize roi);

// As qovsMulC_32f_I.
QOV_API QovStatus qoviMulC_32f_C1IR(Qov32f val, Qov32f* pSrcDst, int srcDstStep, QoviSize roi);

// The destination may be the source.
QOV_API QovStatus qoviCopy_16s_C1R(const Qov16s* pSrc, int srcStep, Qov16s* pDst, int dstStep, QoviSize roi);

// Memory for `height` rows, each aligned to 64 bytes; what it holds is not defined. Null for a side below 1,
// for 2^31 bytes and more, and without memory; then *pStepBytes is as before. qoviFree takes null.
QOV_API Qov8u* qoviMalloc_8u_C1(int widthBytes, int height, int* pStepBytes);
QOV_API void qoviFree(void* p);

#endif
