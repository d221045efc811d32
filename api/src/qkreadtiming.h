// Parameters of the placement of test data, which keep their values in the range that the allocator serves.
#ifndef QK_READ_TIMING_H
#define QK_READ_TIMING_H

#include "qkparm.h"

// Misalignment, 0..63.
class DefaultAlign : public qkDefault<int> {
public:
    using qkDefault<int>::qkDefault;
    int validItem(const qkString& text) const override { return qkDefault<int>::validItem(text) & 63; }
};

// Distance between vectors in bytes, divisible by 64.
class DefaultShift : public qkDefault<int> {
public:
    using qkDefault<int>::qkDefault;
    int validItem(const qkString& text) const override { return qkDefault<int>::validItem(text) & ~63; }
};

#endif
