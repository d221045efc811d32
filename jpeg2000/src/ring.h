// Rings: a cursor that wraps, and a stripe of rows that is read from any row on.
#ifndef JPEG2000_RING_H
#define JPEG2000_RING_H

#include "fixedbuffer.h"

#include <memory>

namespace jpeg2000 {

template <class T>
struct RingBuffer {
    FixedBuffer<T> data;
    unsigned size = 0, position = 0;

    RingBuffer& operator++()
    {
        if (++position == size) position = 0;
        return *this;
    }
};

// Rows whose pointers stand twice in a row, so that any nOfRows consecutive ones are read without a wrap.
template <class T>
struct RingStripe {
    FixedBuffer2D<T> rows;
    FixedBuffer<T*> doubledRows;
    unsigned nOfRows = 0, position = 0;

    // The pointers lead to cache lines, so that no vector straddles two: a sixth of the 9-7 transform's time.
    void ReAlloc(size_t width, unsigned n)
    {
        constexpr size_t cacheLine = 64;
        doubledRows.Free();
        rows.Free();
        rows.Alloc(n, width + cacheLine / sizeof(T));
        doubledRows.Alloc(size_t{n} * 2);
        for (unsigned i = 0; i < n; i++) {
            void* row = rows[i];
            size_t room = width * sizeof(T) + cacheLine;
            std::align(cacheLine, width * sizeof(T), row, room);
            doubledRows[i] = doubledRows[i + n] = static_cast<T*>(row);
        }
        nOfRows = n;
        position = 0;
    }
};

} // namespace jpeg2000

#endif
