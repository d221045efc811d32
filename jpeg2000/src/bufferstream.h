// A growable byte stream of fixed blocks: nothing is moved or copied when it grows.
#ifndef JPEG2000_BUFFERSTREAM_H
#define JPEG2000_BUFFERSTREAM_H

#include "fixedbuffer.h"
#include "list.h"

#include <cstdint>

namespace jpeg2000 {

struct MemoryBlock {
    static constexpr unsigned blockSize = 8192;

    uint8_t *begin, *read, *write, *end; // free room is end - write, readable bytes write - read

    MemoryBlock() : begin(new uint8_t[blockSize]), read(begin), write(begin), end(begin + blockSize) {}
    MemoryBlock(const MemoryBlock&) = delete;
    MemoryBlock& operator=(const MemoryBlock&) = delete;
    ~MemoryBlock() { delete[] begin; }

    unsigned room() const { return static_cast<unsigned>(end - write); }
    unsigned readable() const { return static_cast<unsigned>(write - read); }
    // Copies what fits, or what there is, and returns its count.
    unsigned put(const uint8_t* src, unsigned n);
    unsigned get(uint8_t* dst, unsigned n);
};

// Writes at the tail block, reads at the head block; holds one block at least.
class BufferStream {
public:
    List<MemoryBlock> blocks;
    uint32_t size = 0; // unread bytes

    BufferStream() { PushBack(); }

    void PushBack() { blocks.PushBack(); }

    void Write(const uint8_t* src, unsigned n);
    void WriteByte(uint8_t value)
    {
        if (blocks.Tail().room() == 0) PushBack();
        *blocks.Tail().write++ = value;
        size++;
    }

    // Takes n bytes at most from the head block on: take(block, left) moves the read pointer and returns by
    // how much. Blocks that yield nothing go, but for the last one. Returns how many bytes there were.
    template <class Take>
    unsigned drain(unsigned n, Take take)
    {
        unsigned done = 0;
        while (done < n) {
            const unsigned taken = take(blocks.Head(), n - done);
            done += taken;
            if (taken > 0) continue;
            if (&blocks.Head() == &blocks.Tail()) break;
            blocks.PopHead();
        }
        size -= done;
        return done;
    }

    // Returns how many bytes there were, n at most.
    unsigned ReadBytes(uint8_t* dst, unsigned n);
    // The same; fewer than n bytes are ByteInputException 0.
    void Read(uint8_t* dst, unsigned n);
};

} // namespace jpeg2000

#endif
