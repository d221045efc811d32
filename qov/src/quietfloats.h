// Floating-point arithmetic that leaves no trace: nothing traps, the flags are as before when it is over, it
// rounds to nearest, and subnormal numbers are 0, which spares the processor's slow handling of them. For the
// time of a call through the table of kernels, where the compiler can't move arithmetic across.
#ifndef QOV_QUIETFLOATS_H
#define QOV_QUIETFLOATS_H

#include "qovdefs.h"

#include <xmmintrin.h>

namespace qov {

class QuietFloats {
public:
    QuietFloats() : m_saved(_mm_getcsr())
    {
        constexpr unsigned denormalsAreZero = 0x40; // xmmintrin.h has no name for it
        _mm_setcsr(_MM_MASK_MASK | _MM_ROUND_NEAREST | _MM_FLUSH_ZERO_ON | denormalsAreZero);
    }
    ~QuietFloats() { _mm_setcsr(m_saved); }
    QuietFloats(const QuietFloats&) = delete;
    QuietFloats& operator=(const QuietFloats&) = delete;

private:
    unsigned m_saved;
};

// For the arithmetic on elements of type T: whole numbers need nothing.
template <class T>
struct QuietArithmetic {
    QuietArithmetic() {}
};
template <>
struct QuietArithmetic<Qov32f> : QuietFloats {
};

} // namespace qov

#endif
