// Typed byte adapters, stacked over a transport, so that a format's byte order stands in its type.
#ifndef JPEG2000_BYTEIO_H
#define JPEG2000_BYTEIO_H

#include <cstdint>

namespace jpeg2000 {

// Most significant byte first.
template <class T>
class ByteOutputBE : public T {
public:
    using T::T;
    void Write8u(uint8_t value) { this->WriteByte(value); }
    void Write16u(uint16_t value)
    {
        Write8u(static_cast<uint8_t>(value >> 8));
        Write8u(static_cast<uint8_t>(value));
    }
    void Write32u(uint32_t value)
    {
        Write16u(static_cast<uint16_t>(value >> 16));
        Write16u(static_cast<uint16_t>(value));
    }
};

// Least significant byte first.
template <class T>
class ByteOutputLE : public T {
public:
    using T::T;
    void Write8u(uint8_t value) { this->WriteByte(value); }
    void Write16u(uint16_t value)
    {
        Write8u(static_cast<uint8_t>(value));
        Write8u(static_cast<uint8_t>(value >> 8));
    }
    void Write32u(uint32_t value)
    {
        Write16u(static_cast<uint16_t>(value));
        Write16u(static_cast<uint16_t>(value >> 16));
    }
};

template <class T>
class ByteOutputSigned : public T {
public:
    using T::T;
    void Write8s(int8_t value) { this->Write8u(static_cast<uint8_t>(value)); }
    void Write16s(int16_t value) { this->Write16u(static_cast<uint16_t>(value)); }
    void Write32s(int32_t value) { this->Write32u(static_cast<uint32_t>(value)); }
};

template <class T>
class ByteInputBE : public T {
public:
    using T::T;
    uint8_t Read8u() { return this->ReadByte(); }
    uint16_t Read16u()
    {
        const unsigned high = Read8u();
        return static_cast<uint16_t>(high << 8 | Read8u());
    }
    uint32_t Read32u()
    {
        const uint32_t high = Read16u();
        return high << 16 | Read16u();
    }
};

template <class T>
class ByteInputLE : public T {
public:
    using T::T;
    uint8_t Read8u() { return this->ReadByte(); }
    uint16_t Read16u()
    {
        const unsigned low = Read8u();
        return static_cast<uint16_t>(unsigned{Read8u()} << 8 | low);
    }
    uint32_t Read32u()
    {
        const uint32_t low = Read16u();
        return static_cast<uint32_t>(Read16u()) << 16 | low;
    }
};

template <class T>
class ByteInputSigned : public T {
public:
    using T::T;
    int8_t Read8s() { return static_cast<int8_t>(this->Read8u()); }
    int16_t Read16s() { return static_cast<int16_t>(this->Read16u()); }
    int32_t Read32s() { return static_cast<int32_t>(this->Read32u()); }
};

} // namespace jpeg2000

#endif
