// Adaptive coders of JPEG XR coefficients (ITU-T T.832, 8.7.18, 8.7.19 and 8.8 to 8.11).
#ifndef QOV_KERNELS_XRCODER_H
#define QOV_KERNELS_XRCODER_H

#include "family.h"

namespace qov {

// The state is packed, since it may lie at any byte address.

// The adaptive tables of a band: first-value tables by chroma, index tables by chroma and context, and level
// tables by context. Of each: which of its code tables is in use, and the two discriminants. These are small
// where the tables are adapted now and then; where they never are, they wrap.
struct __attribute__((packed)) XrTableSet {
    static constexpr int tables = 8, firstTables = 0, indexTables = 2, levelTables = 6;

    Qov32u first[tables], second[tables];
    Qov32u table[tables];
};

// By place, 1 to 15. The total of place 0 is above all others.
struct __attribute__((packed)) XrScan {
    static constexpr int places = 16;

    Qov32u totals[places];
    Qov8u order[places]; // raster indices
};

struct __attribute__((packed)) XrCoderState {
    static constexpr Qov32u markValue = 0x53525851;
    static constexpr int lowPass = 0, highPass = 1;                     // sets
    static constexpr int horizontal = 0, vertical = 1, lowPassScan = 2; // scans; the first two are high-pass
    static constexpr int setCount = 2, scanCount = 3;

    Qov32u mark;
    Qov32u highPassScan; // horizontal or vertical
    XrTableSet sets[setCount];
    XrScan scans[scanCount];
};

// The arguments are those of the public functions, all of them checked.
struct XrCoderKernels {
    typedef QovStatus EncodeDC(const Qov32s* src, Qov8u** dst, int* bit, int chroma, int* nonZero,
                               XrCoderState* state);
    typedef QovStatus DecodeDC(const Qov8u** src, int* bit, Qov32s* dst, int chroma, int* nonZero,
                               XrCoderState* state);
    template <class T>
    using Encode4x4 = QovStatus(const T* src, ptrdiff_t step, Qov8u** dst, int* bit, int nBits, int chroma,
                                int* nonZero, XrCoderState* state);
    template <class T>
    using Decode4x4 = QovStatus(const Qov8u** src, int* bit, T* dst, ptrdiff_t step, int nBits, int chroma,
                                int* nonZero, XrCoderState* state);
    template <class T>
    using EncodeFlex = void(const T* src, ptrdiff_t step, Qov8u** dst, int* bit, int nBits, int nTrim);
    template <class T>
    using DecodeFlex = void(const Qov8u** src, int* bit, T* dst, ptrdiff_t step, int nBits, int nTrim);

    void (*init)(XrCoderState* state);
    void (*resetScan)(XrScan* scan);
    void (*adapt)(XrTableSet* set);
    void (*scanDC)(const Qov32s* src, Qov32s* dst, XrCoderState* state);
    EncodeDC *encodeDC444, *encodeDC422, *encodeDC420;
    DecodeDC *decodeDC444, *decodeDC422, *decodeDC420;
    Encode4x4<Qov32s>* encode32s;
    Encode4x4<Qov16s>* encode16s;
    Decode4x4<Qov32s>* decode32s;
    Decode4x4<Qov16s>* decode16s;
    EncodeFlex<Qov32s>* encodeFlex32s;
    EncodeFlex<Qov16s>* encodeFlex16s;
    DecodeFlex<Qov32s>* decodeFlex32s;
    DecodeFlex<Qov16s>* decodeFlex16s;
};

QOV_DECLARE_FAMILY(XrCoderKernels, xrCoderKernels)

} // namespace qov

#endif
