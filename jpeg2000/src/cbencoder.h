// Drives the library's block coder over one code-block after another.
#ifndef JPEG2000_CBENCODER_H
#define JPEG2000_CBENCODER_H

#include "bufferstream.h"
#include "ecodeblock.h"
#include "image.h"

#include "qovi.h"

namespace jpeg2000 {

class CBEncoder {
public:
    // Blocks of up to 64 by 64. MemoryException 0 without memory for the coder's state.
    CBEncoder(int guardBits, int styleFlags, QoviMQTermination termination);
    CBEncoder(const CBEncoder&) = delete;
    CBEncoder& operator=(const CBEncoder&) = delete;
    ~CBEncoder();

    // Codes the samples of `rect` in `band`, which are altered on the way. dynamicRange is that of the band
    // in bits; the samples are brought to the coder's unit by a shift to the left (below 0: to the right).
    void Encode(const ImageCoreC<int, 1u>& band, const Rect& rect, QoviWTSubband subband, int dynamicRange,
                int shift, ECodeBlock& codeBlock);

private:
    static constexpr int bufferSize = 1024;

    int codeStyleFlags;
    QoviMQTermination mqTermination;
    QoviEncodeCBState* state = nullptr;
    BufferStream stream; // the block's bytes, until their number is known
    FixedBuffer<uint8_t> buffer{bufferSize};
    int nOfGuardBits;
};

} // namespace jpeg2000

#endif
