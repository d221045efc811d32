// Huffman coding of JPEG coefficients and differences (ITU-T T.81, F.1.2, G.1.2, H.1.2).
#ifndef QOV_KERNELS_JHUFFENC_H
#define QOV_KERNELS_JHUFFENC_H

#include "family.h"

namespace qov {

// Tables and states are packed, since they may lie at any byte address.

struct __attribute__((packed)) HuffEncCode {
    // The length of a code that does not exist: no sum with one of it is below, none without reaches it.
    static constexpr Qov32u none = 128;

    Qov32u bits, length;
};

struct __attribute__((packed)) HuffEncSpec {
    static constexpr Qov32u markValue = 0x54455148;

    Qov32u mark;
    HuffEncCode symbols[256];
    // By 16 run + 16 - size: the code with as many zeros behind it as its coefficient has bits. None at
    // size 16.
    HuffEncCode coefficients[256];
};

struct __attribute__((packed)) HuffEncState {
    static constexpr Qov32u markValue = 0x53455148;
    static constexpr Qov32u fullMark = 0x46455148; // the buffer ran out
    static constexpr Qov32u longestRun = 0x7FFF;
    // With more bits than that the run is written: another block adds up to 63.
    static constexpr Qov32u manyCorrections = 1024 - 63;

    Qov32u mark;
    Qov8u count; // bits that wait, 0 to 7
    Qov8u bits;  // they, at the low end; above them anything
    Qov16u eobRun;
    Qov32u correctionCount;
    Qov8u corrections[1024 / 8 + 8]; // bits from the high end of each byte
};

// The arguments are those of the public functions, all of them checked.
struct HuffEncKernels {
    typedef QovStatus Block(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, Qov16s* lastDC,
                            const HuffEncSpec* dc, const HuffEncSpec* ac, HuffEncState* state);
    typedef QovStatus One(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, const HuffEncSpec* spec,
                          HuffEncState* state);
    typedef QovStatus DCFirst(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, Qov16s* lastDC, int al,
                              const HuffEncSpec* spec, HuffEncState* state);
    typedef QovStatus DCRefine(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, int al,
                               HuffEncState* state);
    typedef QovStatus AC(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, int ss, int se, int al,
                         const HuffEncSpec* spec, HuffEncState* state);
    typedef QovStatus Flush(Qov8u* dst, int dstLen, int* pos, const HuffEncSpec* ac, HuffEncState* state);
    typedef QovStatus CountDC(const Qov16s* src, int* counts, Qov16s* lastDC, int al);
    typedef void CountAC(const Qov16s* src, int* counts, int ss, int se, int al, HuffEncState* state);
    typedef void CountRun(int* counts, HuffEncState* state);

    Block* block;
    One* one;
    DCFirst* dcFirst;
    DCRefine* dcRefine;
    AC* acFirst;
    AC* acRefine;
    Flush* flush; // ac may be null where no run is pending
    CountDC* countDC;
    CountAC* countFirst;
    CountAC* countRefine;
    CountRun* countRun;
};

QOV_DECLARE_FAMILY(HuffEncKernels, huffEncKernels)

} // namespace qov

#endif
