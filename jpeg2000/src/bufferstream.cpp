#include "bufferstream.h"
#include "basics.h"
#include "diagn.h"

#include <cstring>

namespace jpeg2000 {

unsigned MemoryBlock::put(const uint8_t* src, unsigned n)
{
    n = Min(n, room());
    if (n > 0) memcpy(write, src, n);
    write += n;
    return n;
}

unsigned MemoryBlock::get(uint8_t* dst, unsigned n)
{
    n = Min(n, readable());
    if (n > 0) memcpy(dst, read, n);
    read += n;
    return n;
}

void BufferStream::Write(const uint8_t* src, unsigned n)
{
    for (unsigned left = n; left > 0;) {
        const unsigned copied = blocks.Tail().put(src, left);
        if (copied == 0) PushBack();
        src += copied;
        left -= copied;
    }
    size += n;
}

unsigned BufferStream::ReadBytes(uint8_t* dst, unsigned n)
{
    return drain(n, [&dst](MemoryBlock& block, unsigned left) {
        const unsigned copied = block.get(dst, left);
        dst += copied;
        return copied;
    });
}

void BufferStream::Read(uint8_t* dst, unsigned n)
{
    if (ReadBytes(dst, n) < n) fail<ByteInputException{0}>();
}

} // namespace jpeg2000
