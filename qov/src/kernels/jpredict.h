// Prediction of lossless JPEG (ITU-T T.81, H.1.2).
#ifndef QOV_KERNELS_JPREDICT_H
#define QOV_KERNELS_JPREDICT_H

#include "family.h"

namespace qov {

// n >= 1 samples; any alignment. Differences are written apart from their sources; reconstruction may take
// place in src, not in prev.
typedef void PredictFirstRow(const Qov16s* src, Qov16s* dst, ptrdiff_t n, int firstPrediction);
typedef void PredictRow(const Qov16s* src, const Qov16s* prev, Qov16s* dst, ptrdiff_t n);

struct PredictKernels {
    PredictFirstRow* diffFirstRow;
    PredictFirstRow* reconstructFirstRow;
    PredictRow* diffRow[7]; // predictors 1 to 7
    PredictRow* reconstructRow[7];
};

QOV_DECLARE_FAMILY(PredictKernels, predictKernels)

} // namespace qov

#endif
