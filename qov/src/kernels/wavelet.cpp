#include "wavelet.h"

#include "wavelet_columns.h"
#include "wavelet_scale.h"

namespace qov::QOV_LEVEL {

const WaveletKernels waveletKernels = {
    {analyseRows<B53Forward, Qov16s>, synthesiseRows<B53Inverse, Qov16s>},
    {analyseRows<B53Forward, Qov32s>, synthesiseRows<B53Inverse, Qov32s>},
    {analyseRows<D97Forward, Qov16s>, synthesiseRows<D97Inverse, Qov16s>},
    {analyseRows<D97Forward, Qov32s>, synthesiseRows<D97Inverse, Qov32s>},
    {analyseRows<D97Forward, Qov32f>, synthesiseRows<D97Inverse, Qov32f>},
    {analyseColumns<B53Forward, Qov16s>, synthesiseColumns<B53Inverse, Qov16s>},
    {analyseColumns<B53Forward, Qov32s>, synthesiseColumns<B53Inverse, Qov32s>},
    {analyseColumns<D97Forward, Qov32f>, synthesiseColumns<D97Inverse, Qov32f>},
    {forward53<Qov16s>, inverse53<Qov16s>},
    {forward53<Qov32s>, inverse53<Qov32s>},
    {forward97<Qov16s>, inverse97<Qov16s>},
    {forward97<Qov32s>, inverse97<Qov32s>},
    {forward97<Qov32f>, inverse97<Qov32f>},
    {scaleRow<Qov16s, scale97>, scaleRow<Qov16s, inverseScale97>},
    {scaleRow<Qov32s, scale97>, scaleRow<Qov32s, inverseScale97>},
};

} // namespace qov::QOV_LEVEL
