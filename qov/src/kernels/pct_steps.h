// The operators of the photo core transform (ITU-T T.832, 9.9.7.2 and D.4.5) and the 4x4 transform made of
// them, in lanes: each variable holds a sample of several blocks, or of one. Every step changes one variable
// by a function of others, so steps in the reverse order undo each other, wrapped or not.
#ifndef QOV_KERNELS_PCT_STEPS_H
#define QOV_KERNELS_PCT_STEPS_H

#include "pct_lanes.h"

namespace qov::QOV_LEVEL {
namespace {

// Coefficient k is variable coefficientPlace[k] of the second step (D.4.5.1 tells it the other way round).
constexpr int coefficientPlace[16] = {0, 8, 4, 13, 2, 15, 3, 14, 1, 12, 5, 9, 7, 11, 6, 10};

enum Direction { Forward, Inverse };

template <class A>
struct Steps {
    typedef typename A::V V;

    // 2x2 Hadamard transform, its own inverse.
    template <int rounding>
    QOV_INLINE void hadamard(V& a, V& b, V& c, V& d)
    {
        a = A::add(a, d);
        b = A::subtract(b, c);
        const V oldC = c;
        c = A::template halfDifference<rounding>(a, b, d);
        d = A::template halfDifference<rounding>(a, b, oldC);
        a = A::subtract(a, d);
        b = A::add(b, c);
    }

    QOV_INLINE void odd(V& a, V& b, V& c, V& d)
    {
        b = A::subtract(b, c);
        a = A::add(a, d);
        c = A::template add<halfUp>(c, b);
        d = A::template add<halfUp>(A::negative(d), a);
        b = A::template subtract<threeEighths>(b, a);
        a = A::template add<threeEighths>(a, b);
        d = A::template subtract<threeEighths>(d, c);
        c = A::template add<threeEighths>(c, d);
        d = A::template add<half>(d, b);
        c = A::template subtract<halfUp>(c, a);
        b = A::subtract(b, d);
        a = A::add(a, c);
    }
    QOV_INLINE void inverseOdd(V& a, V& b, V& c, V& d)
    {
        b = A::add(b, d);
        a = A::subtract(a, c);
        d = A::template subtract<half>(d, b);
        c = A::template add<halfUp>(c, a);
        a = A::template subtract<threeEighths>(a, b);
        b = A::template add<threeEighths>(b, a);
        c = A::template subtract<threeEighths>(c, d);
        d = A::template add<threeEighths>(d, c);
        c = A::template subtract<halfUp>(c, b);
        d = A::template add<halfUp>(A::negative(d), a);
        b = A::add(b, c);
        a = A::subtract(a, d);
    }

    QOV_INLINE void oddOdd(V& a, V& b, V& c, V& d)
    {
        b = A::negative(b);
        c = A::negative(c);
        d = A::add(d, a);
        c = A::subtract(c, b);
        a = A::template subtract<half>(a, d);
        b = A::template add<half>(b, c);
        a = A::template add<threeEighths>(a, b);
        b = A::template subtract<threeQuarters>(b, a);
        a = A::template add<threeEighthsLow>(a, b);
        b = A::template subtract<half>(b, c);
        a = A::template add<half>(a, d);
        c = A::add(c, b);
        d = A::subtract(d, a);
    }
    QOV_INLINE void inverseOddOdd(V& a, V& b, V& c, V& d)
    {
        d = A::add(d, a);
        c = A::subtract(c, b);
        a = A::template subtract<half>(a, d);
        b = A::template add<half>(b, c);
        a = A::template subtract<threeEighthsLow>(a, b);
        b = A::template add<threeQuarters>(b, a);
        a = A::template subtract<threeEighths>(a, b);
        b = A::template subtract<half>(b, c);
        a = A::template add<half>(a, d);
        c = A::add(c, b);
        d = A::subtract(d, a);
        b = A::negative(b);
        c = A::negative(c);
    }

    // The second step on variables of one kind each.
    template <Direction direction>
    QOV_INLINE void oddOf(V& a, V& b, V& c, V& d)
    {
        if constexpr (direction == Forward)
            odd(a, b, c, d);
        else
            inverseOdd(a, b, c, d);
    }
    template <Direction direction>
    QOV_INLINE void oddOddOf(V& a, V& b, V& c, V& d)
    {
        if constexpr (direction == Forward)
            oddOdd(a, b, c, d);
        else
            inverseOddOdd(a, b, c, d);
    }

    // Of a block: x holds the samples in raster order on one side, and what coefficientPlace tells on the
    // other.
    template <Direction direction>
    QOV_INLINE void block(V (&x)[16])
    {
        if constexpr (direction == Forward) firstStep(x);
        hadamard<1>(x[0], x[1], x[4], x[5]);
        oddOf<direction>(x[2], x[3], x[6], x[7]);
        oddOf<direction>(x[8], x[12], x[9], x[13]);
        oddOddOf<direction>(x[10], x[11], x[14], x[15]);
        if constexpr (direction == Inverse) firstStep(x);
    }

private:
    QOV_INLINE void firstStep(V (&x)[16])
    {
        hadamard<0>(x[0], x[3], x[12], x[15]);
        hadamard<0>(x[5], x[6], x[9], x[10]);
        hadamard<0>(x[1], x[2], x[13], x[14]);
        hadamard<0>(x[4], x[7], x[8], x[11]);
    }
};

} // namespace
} // namespace qov::QOV_LEVEL

#endif
