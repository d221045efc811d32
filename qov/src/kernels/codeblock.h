// Coding of code-blocks (ITU-T T.800, annexes C and D).
//
// A block is cut into units of 8 columns in a stripe of 4 rows. A unit's bits of one kind (significance,
// sign, one bit plane) stand in a 64-bit word in the order of the scan, with a border of one sample on each
// side: 10 columns of 6 bits, bit 6 * (column + 1) + row + 1. So the 3 by 3 neighbours of a sample are a
// shift and a mask away, and the samples of a unit that a pass visits are the set bits of a word.
#ifndef QOV_KERNELS_CODEBLOCK_H
#define QOV_KERNELS_CODEBLOCK_H

#include "family.h"

namespace qov {

struct CodeBlockUnit {
    Qov64u significant; // border included
    Qov64u signs;       // border included
    Qov64u own;         // the samples of the block in this unit
    Qov64u refined;     // had a refinement pass
    Qov64u visited;     // in the significance pass of this plane
};

struct EncodeCBState {
    static const Qov32u markValue = 0x65436231;
    static const int mostSamples = 4096;
    static const int mostPlanes = 31;
    static const int mostPasses = 3 * mostPlanes - 2;
    // Room for what is coded. Along any way through the states of the MQ coder a symbol costs less than 5.7
    // bits on the average, if 57 bytes are added each time the contexts start anew. A sample takes one symbol
    // in each plane, one for the sign, and half of one as its share of the two that tell where a run ends; a
    // byte can hold as few as 7 bits.
    static const int bytesPerSample = 27, bytesPerBlock = 8192;
    static const int unitColumns = 8, unitRows = 4;

    Qov32u mark;
    QoviSize maxSize;

    // The block coded last.
    int passes, segments;
    int length, given; // bytes, and how many of them were handed out
    int segmentLength[mostPasses];
    int rate[mostPasses];
    double dist[mostPasses];

    // Work areas behind the state, in the same allocation, as large as maxSize needs.
    CodeBlockUnit* units; // with a border of one unit on each side
    Qov64u* planes;       // mostPlanes words for each unit without border
    Qov8u* bytes;         // one byte in front may be written
};

struct EncodeCBJob {
    const Qov32s* src;
    ptrdiff_t step;
    QoviSize size;
    int subband;   // QoviWTSubband
    int lastPlane; // the lowest to be coded
    int term;      // QoviMQTermination
    int style;
};

struct CodeBlockKernels {
    // Codes the block and answers the bits of its largest magnitude.
    int (*encode)(const EncodeCBJob* job, EncodeCBState* state);
};

QOV_DECLARE_FAMILY(CodeBlockKernels, codeBlockKernels)

} // namespace qov

#endif
