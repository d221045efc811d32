// How much memory an image and its tiles may take together. A header of a few bytes can ask for any number of
// precincts and samples, and storage is handed out on credit by the system: so it is counted before.
#ifndef JPEG2000_DECODINGBUDGET_H
#define JPEG2000_DECODINGBUDGET_H

#include "diagn.h"
#include "geometry.h"

#include <cstdint>

namespace jpeg2000 {

// The memory of a plane. The library's rows begin at multiples of 64 bytes: narrow planes take far more than
// their samples do.
constexpr uint64_t planeNOfBytes(const RectSize& size)
{
    constexpr uint64_t rowAlignment = 64;
    return (size.width * uint64_t{sizeof(int)} + rowAlignment - 1) / rowAlignment * rowAlignment *
           size.height;
}

class DecodingBudget {
public:
    void Take(uint64_t bytes)
    {
        if (bytes > m_left) fail<MemoryException{0}>();
        m_left -= bytes;
    }

    // For steps that take no byte of the codestream, a nanosecond or so each: a few bytes can ask for any
    // number of them too.
    void TakeSteps(uint64_t steps)
    {
        if (steps > m_stepsLeft) fail<MemoryException{0}>();
        m_stepsLeft -= steps;
    }

private:
    uint64_t m_left = 1ull << 30, m_stepsLeft = 1ull << 32;
};

} // namespace jpeg2000

#endif
