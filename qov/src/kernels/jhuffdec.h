// Huffman decoding of JPEG coefficients and differences (ITU-T T.81, F.2.2, G.2, H.2).
#ifndef QOV_KERNELS_JHUFFDEC_H
#define QOV_KERNELS_JHUFFDEC_H

#include "family.h"

namespace qov {

// Tables and states are packed, since they may lie at any byte address.

// What the next `window` bits of the stream mean. Low byte: length; next byte: see below; high half: value.
//   value != 0: run + 1. A code of run and size with the bits of the value behind it, `length` bits in all.
//   value == 0: the symbol. A code of `length` bits whose value is 0 or does not lie in the window whole; a
//               length of 0 says that the code itself does not (or that there is none).
struct __attribute__((packed)) HuffDecSpec {
    static constexpr Qov32u markValue = 0x54445148;
    static constexpr int window = 10;

    Qov32u mark;
    Qov32u look[1 << window];
    // Codes by length: those of n bits, put in front of 16 bits, are below limit[n]; the values of such a
    // code stand at offset[n] + code.
    Qov32u limit[17];
    Qov32s offset[17];
    Qov8u values[256];
};

struct __attribute__((packed)) HuffDecState {
    static constexpr Qov32u markValue = 0x53445148;

    Qov32u mark;
    Qov32s count;  // bits taken from the stream and not used yet; -1 when they ran dry
    Qov64u bits;   // they, from the high end
    Qov32u eobRun; // blocks that the end-of-band run still covers
    Qov8u marker;  // the stream stands behind a marker
};

// The arguments are those of the public functions, all of them checked.
struct HuffDecKernels {
    typedef QovStatus Block(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, Qov16s* lastDC, int* marker,
                            const HuffDecSpec* dc, const HuffDecSpec* ac, HuffDecState* state);
    typedef QovStatus One(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, int* marker,
                          const HuffDecSpec* spec, HuffDecState* state);
    typedef QovStatus DCFirst(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, Qov16s* lastDC,
                              int* marker, int al, const HuffDecSpec* spec, HuffDecState* state);
    typedef QovStatus DCRefine(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, int* marker, int al,
                               HuffDecState* state);
    typedef QovStatus AC(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, int* marker, int ss, int se,
                         int al, const HuffDecSpec* spec, HuffDecState* state);

    Block* block;
    One* one;
    DCFirst* dcFirst;
    DCRefine* dcRefine;
    AC* acFirst;
    AC* acRefine;
};

QOV_DECLARE_FAMILY(HuffDecKernels, huffDecKernels)

} // namespace qov

#endif
