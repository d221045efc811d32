// The bit writer of packet headers (ITU-T T.800, B.10.1): a byte behind 0xFF carries seven bits.
#ifndef JPEG2000_PHBITOUT_H
#define JPEG2000_PHBITOUT_H

#include <cstdint>

namespace jpeg2000 {

template <class Output>
class PHBitOut {
public:
    // The header of a packet that is not empty: its first bit is in place.
    explicit PHBitOut(Output& out) : output(out) {}

    void Write1()
    {
        byte |= 1u << bitPos;
        Write0();
    }
    void Write0()
    {
        if (--bitPos < 0) send();
    }
    void Write(bool bit) { bit ? Write1() : Write0(); }
    // The low `count` bits of value, highest first.
    void Write(int value, int count)
    {
        while (count-- > 0) Write((value >> count & 1) != 0);
    }
    // Ends the header, which never ends in 0xFF.
    void Flush()
    {
        const bool isEmpty = bitPos == 7 && !isStuffing; // after 0xFF, an empty byte begins at bit 6
        if (!isEmpty) output.WriteByte(static_cast<uint8_t>(byte));
        byte = 0;
        isStuffing = false;
        bitPos = 7;
    }

private:
    void send()
    {
        output.WriteByte(static_cast<uint8_t>(byte));
        isStuffing = byte == 0xFF;
        bitPos = isStuffing ? 6 : 7;
        byte = 0;
    }

    Output& output;
    unsigned byte = 128;
    int bitPos = 6; // of the next bit
    bool isStuffing = false;
};

} // namespace jpeg2000

#endif
