#include "transfer.h"

namespace jpeg2000 {

unsigned Transfer(MemoryBlock& src, MemoryBlock& dst, unsigned n)
{
    n = dst.put(src.read, Min(n, src.readable()));
    src.read += n;
    return n;
}

unsigned Transfer(BufferStream& src, BufferStream& dst, unsigned n)
{
    const unsigned moved = src.drain(n, [&dst](MemoryBlock& block, unsigned left) {
        if (dst.blocks.Tail().room() == 0) dst.PushBack();
        return Transfer(block, dst.blocks.Tail(), left);
    });
    dst.size += moved;
    return moved;
}

} // namespace jpeg2000
