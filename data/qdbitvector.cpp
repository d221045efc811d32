#include "qdbitvector.h"

#include <algorithm>
#include <climits>

const unsigned char qdBitVector::byteMask[8] = {128, 64, 32, 16, 8, 4, 2, 1};

qkString qdBitVector::objectInfo() const
{
    return qkString("Bit") + qdVector::objectInfo();
}

void qdBitVector::deleteVector()
{
    qdVector::deleteVector();
    m_bytePos = m_bitPos = 0;
}

void qdBitVector::next()
{
    m_bitPos = (m_bitPos + 1) % 8;
    if (m_bitPos == 0) m_bytePos++;
}

void qdBitVector::setBit(unsigned char bit)
{
    if (!m_8u) return;
    if (m_bytePos < m_len) {
        const unsigned char mask = byteMask[m_bitPos];
        m_8u[m_bytePos] = static_cast<unsigned char>(bit ? m_8u[m_bytePos] | mask : m_8u[m_bytePos] & ~mask);
    }
    next();
}

unsigned char qdBitVector::getBit()
{
    if (!m_8u) return 0;
    const unsigned char bit = m_bytePos < m_len && (m_8u[m_bytePos] & byteMask[m_bitPos]) ? 1 : 0;
    next();
    return bit;
}

void qdBitVector::setBits(unsigned value, int count)
{
    for (int i = count - 1; i >= 0; i--) setBit(i < 32 ? value >> i & 1 : 0);
}

void qdBitVector::setBits(const qkString& text)
{
    for (int i = 0; i < text.length(); i++) {
        if (text[i] == '0' || text[i] == '1') setBit(text[i] == '1');
    }
}

void qdBitVector::getBits(unsigned& value, int count)
{
    value = 0;
    for (int i = 0; i < count; i++) value = value << 1 | getBit();
}

void qdBitVector::getBits(qkString& text, int count)
{
    text = qkString();
    for (int i = 0; i < count; i++) {
        if (i > 0 && m_bitPos % 4 == 0) text << ' ';
        text << (getBit() ? '1' : '0');
    }
}

void qdBitVector::setBitPos(int pos)
{
    pos = std::max(pos, 0);
    m_bytePos = pos / 8;
    m_bitPos = pos % 8;
}

// ---- Text

static qkString columns(unsigned value, int bits, int first, int last)
{
    qkString text;
    for (int i = 0; i < bits; i++) {
        if (i > 0 && i % 4 == 0) text << ' ';
        const char bit = value >> (bits - 1 - i) & 1 ? '1' : '0';
        text << (i < first || i > last ? ' ' : bit);
    }
    return text;
}

qkString qdBitVector::bitString(unsigned char byte, int first, int last)
{
    return columns(byte, 8, first, last);
}

qkString qdBitVector::bitString(unsigned value, int first, int last)
{
    return columns(value, 32, first, last);
}

// Five characters for four bits: of a vector whose text would be too long the beginning is shown.
qkString qdBitVector::getBitString(int first, int count) const
{
    qkString text;
    const long long end = static_cast<long long>(m_len) * 8;
    first = std::max(first, 0);
    if (!m_8u || first >= end) return text;
    long long bits = count < 1 ? end - first : std::min<long long>(count, end - first);
    bits = std::min<long long>(bits, INT_MAX / 2);
    text.allocate(static_cast<int>(bits + bits / 4 + 1));
    int length = 0;
    for (long long pos = first; pos < first + bits; pos++) {
        if (pos > first && pos % 4 == 0) text[length++] = ' ';
        text[length++] = m_8u[pos / 8] & byteMask[pos % 8] ? '1' : '0';
    }
    text.resize(length, ' ');
    return text;
}

void qdBitVector::bitprn(qkOStream& out, int first, int count) const
{
    out << getBitString(first, count);
}
