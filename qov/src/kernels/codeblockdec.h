// Decoding of code-blocks (ITU-T T.800, annexes C and D).
//
// A block is cut into units of 8 columns in a stripe of 4 rows, as the encoder does it (codeblock.h). What is
// kept of a unit has no border and 4 bits a column, bit 4 * column + row; a pass puts the word with border
// together from the nine units around.
#ifndef QOV_KERNELS_CODEBLOCKDEC_H
#define QOV_KERNELS_CODEBLOCKDEC_H

#include "family.h"

namespace qov {

// A word at any address.
struct __attribute__((packed, may_alias)) LooseWord {
    Qov32u value;
};

struct DecodeCBUnit {
    LooseWord significant;
    LooseWord signs;
    LooseWord refined; // had a refinement pass
    LooseWord visited; // in the last significance pass
};

// The units follow it, stripe by stripe. A state lies at any address: this part is copied out and back.
struct DecodeCBState {
    static const Qov32u markValue = 0x62436444;
    static const int unitColumns = 8, unitRows = 4;
    static const int longestSide = 1024;
    static const int contextCount = 19;

    Qov32u mark;
    QoviSize size;
    Qov32s* dst;
    int step;
    int subband; // QoviWTSubband
    int style;
    int sfBits;
    int pass; // the next one
    int left; // of the counted passes
    Qov32u contexts[contextCount];
};

QOV_INLINE int unitsAcross(QoviSize size)
{
    return (size.width + DecodeCBState::unitColumns - 1) / DecodeCBState::unitColumns;
}
QOV_INLINE int unitsDown(QoviSize size)
{
    return (size.height + DecodeCBState::unitRows - 1) / DecodeCBState::unitRows;
}

struct CodeBlockDecKernels {
    void (*resetContexts)(Qov32u* contexts);

    // Decodes the passes of one segment, 1 or more, all of which the block has. Answers whether the data are
    // damaged.
    bool (*decodeSegment)(DecodeCBState* state, DecodeCBUnit* units, int passes, const Qov8u* src,
                          int length);
};

QOV_DECLARE_FAMILY(CodeBlockDecKernels, codeBlockDecKernels)

} // namespace qov

#endif
