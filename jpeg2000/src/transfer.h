// Moves bytes between blocks, streams and outputs. All forms move n bytes at most and return how many there
// were.
#ifndef JPEG2000_TRANSFER_H
#define JPEG2000_TRANSFER_H

#include "basics.h"
#include "bufferstream.h"

namespace jpeg2000 {

unsigned Transfer(MemoryBlock& src, MemoryBlock& dst, unsigned n);
unsigned Transfer(BufferStream& src, BufferStream& dst, unsigned n);

// Into any output that takes blocks of bytes by Write.
template <class D>
unsigned Transfer_ISpec(MemoryBlock& src, D& dst, unsigned n)
{
    n = Min(n, src.readable());
    dst.Write(src.read, n);
    src.read += n;
    return n;
}

template <class D>
unsigned Transfer_ISpec(BufferStream& src, D& dst, unsigned n)
{
    return src.drain(n,
                     [&dst](MemoryBlock& block, unsigned left) { return Transfer_ISpec(block, dst, left); });
}

template <class S, class D>
unsigned Transfer(S& src, D& dst, unsigned n)
{
    return Transfer_ISpec<D>(src, dst, n);
}

template <class D>
unsigned TransferAllSrc(BufferStream& src, D& dst)
{
    return Transfer(src, dst, src.size);
}

} // namespace jpeg2000

#endif
