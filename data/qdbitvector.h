// qdBitVector: a byte buffer written and read bit by bit, as coded data are. Bit 0 is the highest bit of byte
// 0.
#ifndef QD_BITVECTOR_H
#define QD_BITVECTOR_H

#include "qdvector.h"
#include "qkstream.h"

class qdBitVector : public qdVector {
public:
    static const unsigned char byteMask[8]; // of bit i of a byte

    qdBitVector() : qdVector(qd8u) {}

    qkString objectInfo() const override;
    void deleteVector() override; // the position goes back to 0
    qkString getString() const override { return getBitString(); }

    // One bit at the position, which moves on, past the end too: there nothing is stored and 0 is read.
    // Without data nothing happens at all.
    void setBit(unsigned char bit);
    unsigned char getBit();
    void setBits(unsigned value, int count); // the low `count` bits, the highest of them first
    void setBits(const qkString& text);      // its '0' and '1' in order
    void getBits(unsigned& value, int count);
    void getBits(qkString& text, int count); // a blank before each fourth position

    void setBitPos(int pos);
    int getBitPos() const { return m_bytePos * 8 + m_bitPos; }

    // The bits first to last in columns of four, blanks in the columns outside.
    static qkString bitString(unsigned char byte, int first, int last);
    static qkString bitString(unsigned value, int first, int last);
    // `count` bits from bit `first`, in groups of four; 0: up to the end.
    qkString getBitString(int first = 0, int count = 0) const;
    void bitprn(qkOStream& out, int first, int count) const;

private:
    void next();

    int m_bytePos = 0;
    int m_bitPos = 0;
};

#endif
