// A big-endian reader with a stack of nested limits: boxes within boxes, marker segments within a codestream.
#ifndef JPEG2000_BOUNDEDINPUT_H
#define JPEG2000_BOUNDEDINPUT_H

#include "basics.h"
#include "byteio.h"
#include "diagn.h"
#include "list.h"
#include "memoryio.h"

namespace jpeg2000 {

template <class T>
struct SerialTransport {
    T position = 0, size = 0;

    // False, with nothing changed, when less than n is left.
    bool Seek(T n)
    {
        if (n > left()) return false;
        position += n;
        return true;
    }
    T left() const { return size - position; }
};

// Every typed read takes its width from the innermost limit first.
template <class T>
class ByteInputBoundService : public T {
public:
    using T::T;
    virtual ~ByteInputBoundService() = default;
    virtual void OnLackOfData() { fail<ByteInputException{0}>(); }

    // Opens a limit of n bytes, or of what the innermost one still holds if that is less; returns its size.
    uint32_t PushSize(uint32_t n)
    {
        if (!m_limits.IsEmpty()) n = Min(n, m_limits.Tail().left());
        m_limits.PushBack().size = n;
        return n;
    }
    // Closes the innermost limit. The cursor moves over what was not read of it, and that count is returned.
    uint32_t PopSize()
    {
        const SerialTransport<uint32_t> limit = m_limits.Tail();
        this->position += limit.left();
        m_limits.PopTail();
        if (!m_limits.IsEmpty()) m_limits.Tail().Seek(limit.size);
        return limit.left();
    }
    // Bytes that the innermost limit still holds.
    uint32_t bytesLeft() const { return m_limits.Tail().left(); }

    // Takes n bytes from the innermost limit, without moving the cursor.
    void SeekPos(uint32_t n)
    {
        if (!m_limits.Tail().Seek(n)) OnLackOfData();
    }

    uint8_t Read8u()
    {
        return bounded(1, [this] { return T::Read8u(); });
    }
    uint16_t Read16u()
    {
        return bounded(2, [this] { return T::Read16u(); });
    }
    uint32_t Read32u()
    {
        return bounded(4, [this] { return T::Read32u(); });
    }
    int8_t Read8s() { return static_cast<int8_t>(Read8u()); }
    int16_t Read16s() { return static_cast<int16_t>(Read16u()); }
    int32_t Read32s() { return static_cast<int32_t>(Read32u()); }

private:
    template <class Read>
    auto bounded(uint32_t n, Read read)
    {
        SeekPos(n);
        return read();
    }

    List<SerialTransport<uint32_t>> m_limits;
};

class MemoryBoundedInputBE : public ByteInputBoundService<ByteInputSigned<ByteInputBE<MemoryInput>>> {
public:
    MemoryBoundedInputBE(const uint8_t* memory, uint32_t size) : ByteInputBoundService(memory)
    {
        PushSize(size);
    }
};

} // namespace jpeg2000

#endif
