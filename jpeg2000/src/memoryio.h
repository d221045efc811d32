// Transports over memory owned elsewhere, and the sink that only counts.
#ifndef JPEG2000_MEMORYIO_H
#define JPEG2000_MEMORYIO_H

#include <cstdint>
#include <cstring>

namespace jpeg2000 {

// Counts what is written to it: so the rate control measures packets without storing them.
struct DummyOutput {
    uint32_t size = 0;

    void Write(const uint8_t*, unsigned n) { size += n; }
    void WriteByte(uint8_t) { size++; }
};

// A write cursor without a bound: the caller has sized the memory.
struct MemoryOutput {
    uint8_t* position;

    explicit MemoryOutput(uint8_t* start) : position(start) {}
    void Write(const uint8_t* src, unsigned n)
    {
        if (n > 0) memcpy(position, src, n);
        position += n;
    }
    void WriteByte(uint8_t value) { *position++ = value; }
};

// A read cursor without a bound.
struct MemoryInput {
    const uint8_t* position;

    explicit MemoryInput(const uint8_t* start) : position(start) {}
    uint8_t ReadByte() { return *position++; }
};

} // namespace jpeg2000

#endif
