// The second level of the photo core transform (ITU-T T.832, 9.9.7.3 and D.4.5) on the quads of pct_quads.h.
// Nothing here at px.
#ifndef QOV_KERNELS_PCT_SECOND_H
#define QOV_KERNELS_PCT_SECOND_H

#include "pct_steps.h"
#include "pct_vectors.h"

#if defined(QOV_SIMD256)

namespace qov::QOV_LEVEL {
namespace {

// Of macroblocks of 16x16 samples, with four quads, of 8x16 with two, and of 8x8 with one. Comments count
// the DC coefficients as g in raster order.
template <class A, int quads>
struct SecondLevel;

template <class A>
struct SecondLevel<A, 4> {
    typedef typename A::V V;

    QOV_INLINE void forward(V (&q)[4])
    {
        // g 0 4 1 5 | 3 7 2 6 | 12 8 13 9 | 15 11 14 10
        V a = lowPairs64(q[0], q[1]), b = lowPairs64(q[3], q[2]);
        V c = pick<3, 2, 3, 2>(q[0], q[1]), d = pick<3, 2, 3, 2>(q[3], q[2]);
        Steps<A>::template hadamard<0>(a, b, c, d);
        const V ab = pick<0, 2, 2, 0>(a, b), ab2 = pick<1, 3, 3, 1>(a, b);
        const V cd = pick<1, 0, 3, 1>(c, d), cd2 = pick<3, 2, 2, 0>(c, d);
        V operand[4] = {pick<0, 2, 0, 2>(ab, cd), pick<1, 3, 1, 3>(ab, cd), pick<0, 2, 0, 2>(ab2, cd2),
                        pick<1, 3, 1, 3>(ab2, cd2)};
        secondStep<Forward>(operand);
        a = operand[0], b = operand[1], c = operand[2], d = operand[3];
        q[0] = lowPairs64(a, choose<2>(b, d));
        q[1] = highPairs64(choose<8>(a, d), b);
        q[2] = lowPairs64(choose<2>(c, b), choose<2>(d, c));
        q[3] = highPairs64(choose<8>(d, c), choose<8>(c, a));
    }

    QOV_INLINE void inverse(V (&q)[4])
    {
        V operand[4] = {pick<0, 1, 0, 2>(q[0], pick<0, 0, 3, 3>(q[1], q[3])),
                        pick<0, 2, 2, 3>(pick<2, 2, 1, 1>(q[0], q[2]), q[1]), pick<0, 3, 2, 1>(q[2], q[3]),
                        pick<0, 2, 0, 2>(pick<2, 2, 3, 3>(q[2], q[0]), pick<0, 0, 1, 1>(q[3], q[1]))};
        secondStep<Inverse>(operand);
        const V ab = lowPairs32(operand[0], operand[1]), cd = lowPairs32(operand[2], operand[3]);
        const V ab2 = highPairs32(operand[0], operand[1]), cd2 = highPairs32(operand[2], operand[3]);
        // g 0 1 4 5 | 3 2 7 6 | 12 13 8 9 | 15 14 11 10
        V a = pick<0, 1, 0, 1>(ab, cd), b = pick<3, 2, 3, 2>(ab, cd);
        V c = pick<0, 2, 1, 3>(pick<1, 0, 1, 0>(ab2, cd2)), d = pick<3, 2, 3, 2>(cd2, ab2);
        Steps<A>::template hadamard<0>(a, b, c, d);
        q[0] = pick<0, 2, 2, 0>(a, c);
        q[1] = pick<1, 3, 3, 1>(a, c);
        q[2] = pick<1, 3, 3, 1>(b, d);
        q[3] = pick<0, 2, 2, 0>(b, d);
    }

private:
    // The operands of the Hadamard transform lie in dword 0, of the odd ones in 1 and 2, of the one odd both
    // ways in 3.
    template <Direction direction>
    QOV_INLINE void secondStep(V (&x)[4])
    {
        V y[4] = {x[0], x[1], x[2], x[3]}, z[4] = {x[0], x[1], x[2], x[3]};
        Steps<A>::template hadamard<1>(x[0], x[1], x[2], x[3]);
        Steps<A>::template oddOf<direction>(y[0], y[1], y[2], y[3]);
        Steps<A>::template oddOddOf<direction>(z[0], z[1], z[2], z[3]);
        for (int i = 0; i < 4; i++) x[i] = choose<8>(choose<6>(x[i], y[i]), z[i]);
    }
};

template <class A>
struct SecondLevel<A, 2> {
    typedef typename A::V V;

    // Both Hadamard transforms have their operands in dwords 0 and 2; what stands in the others is not used.
    QOV_INLINE void forward(V (&q)[2])
    {
        V a = q[0], b = pick<1, 1, 3, 3>(q[0]), c = q[1], d = pick<1, 1, 3, 3>(q[1]);
        Steps<A>::template hadamard<0>(a, b, c, d);
        const V lower = A::subtract(a, pick<0, 0, 0, 0>(a));
        const V upper = A::template add<halfUp>(a, pick<2, 2, 2, 2>(lower));
        q[0] = choose<10>(choose<4>(upper, lower), pick<0, 0, 2, 2>(c));
        q[1] = choose<10>(b, pick<0, 0, 2, 2>(d));
    }
    QOV_INLINE void inverse(V (&q)[2])
    {
        V a = q[0], b = q[1], c = pick<1, 1, 3, 3>(q[0]), d = pick<1, 1, 3, 3>(q[1]);
        const V upper = A::template subtract<halfUp>(a, pick<2, 2, 2, 2>(a));
        const V lower = A::add(a, pick<0, 0, 0, 0>(upper));
        a = choose<4>(upper, lower);
        Steps<A>::template hadamard<0>(a, b, c, d);
        q[0] = choose<10>(a, pick<0, 0, 2, 2>(b));
        q[1] = choose<10>(c, pick<0, 0, 2, 2>(d));
    }
};

template <class A>
struct SecondLevel<A, 1> {
    typedef typename A::V V;

    QOV_INLINE void forward(V (&q)[1])
    {
        V a = q[0], b = pick<2, 2, 2, 2>(a), c = pick<1, 1, 1, 1>(a), d = pick<3, 3, 3, 3>(a);
        Steps<A>::template hadamard<0>(a, b, c, d);
        q[0] = lowPairs64(lowPairs32(a, b), lowPairs32(c, d));
    }
    QOV_INLINE void inverse(V (&q)[1])
    {
        V a = q[0], b = pick<1, 1, 1, 1>(a), c = pick<2, 2, 2, 2>(a), d = pick<3, 3, 3, 3>(a);
        Steps<A>::template hadamard<0>(a, b, c, d);
        q[0] = lowPairs64(lowPairs32(a, c), lowPairs32(b, d));
    }
};

} // namespace
} // namespace qov::QOV_LEVEL

#endif
#endif
