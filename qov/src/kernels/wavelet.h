// Wavelet steps of JPEG 2000 (ITU-T T.800, annex F). Steps in bytes, pointers aligned to their elements; the
// region counts pairs of samples along the filtered direction and is not empty. Border samples are there to
// be read. The floating-point forms rely on rounding to nearest.
#ifndef QOV_KERNELS_WAVELET_H
#define QOV_KERNELS_WAVELET_H

#include "family.h"

namespace qov {

// Rows or columns of samples to and from their halves; source and destination are apart.
template <class T>
using AnalyseSamples = void(const T* src, ptrdiff_t srcStep, T* low, ptrdiff_t lowStep, T* high,
                            ptrdiff_t highStep, QoviSize roi);
template <class T>
using SynthesiseSamples = void(const T* low, ptrdiff_t lowStep, const T* high, ptrdiff_t highStep, T* dst,
                               ptrdiff_t dstStep, QoviSize roi);
template <class T>
struct WaveletPair {
    AnalyseSamples<T>* forward;
    SynthesiseSamples<T>* inverse;
};

// One step of a column pipeline on `width` columns. Destinations may be sources, exactly.
template <class T>
struct Lifts53 {
    void (*forward)(const T* even0, const T* odd, const T* even1, const T* highPrev, T* low, T* high,
                    ptrdiff_t width);
    void (*inverse)(const T* low1, const T* high0, const T* high1, const T* even0, T* odd, T* even1,
                    ptrdiff_t width);
};
template <class T>
struct Lifts97 {
    void (*forward)(const T* low0, T* high0, T* low1, T* high1, T* low2, const T* high2, ptrdiff_t width);
    void (*inverse)(T* low0, const T* high0, T* low1, T* high1, const T* low2, T* high2, ptrdiff_t width);
};

// A row of whole numbers times the scale of D97, and over it; saturated.
template <class T>
struct Scales97 {
    void (*times)(const T* src, T* dst, ptrdiff_t width);
    void (*over)(const T* src, T* dst, ptrdiff_t width);
};

struct WaveletKernels {
    WaveletPair<Qov16s> rowB53_16s;
    WaveletPair<Qov32s> rowB53_32s;
    WaveletPair<Qov16s> rowD97_16s;
    WaveletPair<Qov32s> rowD97_32s;
    WaveletPair<Qov32f> rowD97_32f;
    WaveletPair<Qov16s> colB53_16s;
    WaveletPair<Qov32s> colB53_32s;
    WaveletPair<Qov32f> colD97_32f;
    Lifts53<Qov16s> liftB53_16s;
    Lifts53<Qov32s> liftB53_32s;
    Lifts97<Qov16s> liftD97_16s;
    Lifts97<Qov32s> liftD97_32s;
    Lifts97<Qov32f> liftD97_32f;
    Scales97<Qov16s> scaleD97_16s;
    Scales97<Qov32s> scaleD97_32s;
};

QOV_DECLARE_FAMILY(WaveletKernels, waveletKernels)

} // namespace qov

#endif
