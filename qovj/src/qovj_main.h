// What suites share: the common size parameters and the makers of test data.
#ifndef QOVJ_MAIN_H
#define QOVJ_MAIN_H

#include "qd.h"

extern qkIterator<QoviSize> g_imageSize;
extern qkStepIterator<int> g_rowWidth;
extern qkIterator<QoviSize> g_WT_size;
extern qkIterator<QoviSize> g_code2k_size;
extern qkIterator<QoviSize> g_codecSize;

// `dst` gets the values of `src`. A suite with a size list of its own takes over the common one at every
// start, so that values given by the user reach it.
void copySizeList(const qkIterator<QoviSize>& src, qkIterator<QoviSize>& dst);

// A count of elements, limited to what an int holds, so that a too large one fails to allocate instead of
// wrapping.
int qdjCount(long long count);

// The Jaehne pattern: compressible test data. Amplitude 0.0 stands for the pattern's own default.
void qdjJaehne(qdImage& image);
void qdjJaehne(qdVector& vector, double amplitude);

// Forward DCT of each whole 8x8 block of an image into `dst`, 64 coefficients a block; the second form shifts
// the level and quantises by steps of 100 as well. 1, or 0 after a reported error.
int qdjDCTFwd(const Qov8u* src, int step, QoviSize size, Qov16s* dst);
int qdjDCTQuantFwd(const Qov8u* src, int step, QoviSize size, Qov16s* dst);

// Text forms of the order of filters of a wavelet row.
qkString& operator<<(qkString& text, QoviWTFilterFirst value);
void operator<<(QoviWTFilterFirst& value, qkString& text);

#endif
