// The bit reader of packet headers (ITU-T T.800, B.10.1): a byte behind 0xFF carries seven bits.
#ifndef JPEG2000_PHBITIN_H
#define JPEG2000_PHBITIN_H

#include "diagn.h"

#include <cstdint>

namespace jpeg2000 {

template <class Input>
class PHBitIn {
public:
    PHBitIn(Input& from, const BDiagnOutputPtr& warnings) : input(from), sink(warnings) {}

    unsigned Read()
    {
        if (bitPos < 0) {
            bitPos = byte == 0xFF ? 6 : 7;
            byte = input.Read8u();
        }
        return byte >> bitPos-- & 1u;
    }
    // Up to 32 bits, highest first.
    unsigned Read(unsigned count)
    {
        unsigned bits = 0;
        while (count-- > 0) bits = bits << 1 | Read();
        return bits;
    }
    // Ends a header: what is left of its last byte is padding, and so is the byte behind a last 0xFF. With
    // isCheck it has to be zero.
    void Flush(bool isCheck)
    {
        const bool isStuffing = byte == 0xFF;
        unsigned padding = Read(static_cast<unsigned>(bitPos + 1));
        if (isStuffing) padding |= Read(7);
        if (isCheck && padding != 0) warn<DPHWarning{0}>(sink);
    }

private:
    Input& input;
    BDiagnOutputPtr sink;
    unsigned byte = 0;
    int bitPos = -1; // of the next bit; below 0 when the byte is used up
};

} // namespace jpeg2000

#endif
