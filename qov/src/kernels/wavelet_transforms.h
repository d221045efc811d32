// Rows and columns of samples through the lifting steps of a filter, with the border samples that it asks
// for.
#ifndef QOV_KERNELS_WAVELET_TRANSFORMS_H
#define QOV_KERNELS_WAVELET_TRANSFORMS_H

#include "wavelet_words.h"

namespace qov::QOV_LEVEL {
namespace {

enum Direction { alongRows, alongColumns };

// The chain of lifting steps at work. Fed with the samples in their order, a `target` and the `known` sample
// behind it each time, it gives those of steps / 2 pairs ago. A vector holds neighbours along rows, or places
// side by side of different columns.
template <class Filter, Direction direction, class V>
struct Chain {
    static constexpr ptrdiff_t delay = Filter::steps / 2;
    V before[Filter::steps]; // what each step has seen last of the samples that it knows

    // What comes out of a step is known to the next one, whose target is what this one knew before.
    template <int step>
    QOV_INLINE_MEMBER void lift(V& target, V& known)
    {
        const V now = known;
        const V earlier = direction == alongRows ? previous(before[step], now) : before[step];
        before[step] = now;
        known = Filter::template lift<step>(target, earlier, now);
        target = earlier;
    }
    template <int step = 0>
    QOV_INLINE_MEMBER void advance(V& target, V& known)
    {
        if constexpr (step < Filter::steps) {
            lift<step>(target, known);
            advance<step + 1>(target, known);
        }
    }
};

// A chain whose steps work on different samples at a time, each on what the step before it gave last time, so
// that none waits for another. Results come steps - 1 calls later.
template <class Filter, class V>
struct StaggeredChain {
    static constexpr int steps = Filter::steps, delay = steps - 1;
    Chain<Filter, alongRows, V> chain;
    V target[steps], known[steps]; // what goes into each step next

    template <int step = steps - 1>
    QOV_INLINE_MEMBER void advance(V& lastTarget, V& lastKnown)
    {
        V t = target[step], k = known[step];
        chain.template lift<step>(t, k);
        if constexpr (step == steps - 1) {
            lastTarget = t;
            lastKnown = k;
        } else {
            target[step + 1] = t;
            known[step + 1] = k;
        }
        if constexpr (step > 0) advance<step - 1>(lastTarget, lastKnown);
    }
};

// A side of a transform gives the samples of pair m and takes those of pair n. Forward: the even sample 2 m
// is known, the odd one before it a target. Inverse: of the halves the high one is known.
template <class Filter, class T>
struct AnalysedRow {
    const T* src;
    T *low, *high;

    template <class V>
    QOV_INLINE_MEMBER void known(ptrdiff_t m, V& v) const
    {
        v = fetch(src + 2 * m, V());
    }
    template <class V>
    QOV_INLINE_MEMBER void samples(ptrdiff_t m, V& target, V& v) const
    {
        split(src + 2 * m - 1, target, v);
    }
    template <class V>
    QOV_INLINE_MEMBER void result(ptrdiff_t n, const Chain<Filter, alongRows, V>& chain, V, V lifted) const
    {
        V l = lifted;
        V h = chain.before[Filter::steps - 1];
        Filter::finish(l, h);
        keepHalves(low + n, high + n, saturated<T>(l), saturated<T>(h));
    }
    template <class NumberRange>
    QOV_INLINE_MEMBER void addTo(NumberRange& range, ptrdiff_t count) const
    {
        range.addRow(src - Filter::steps, 2 * (count + Filter::steps) - 1);
    }
};

template <class Filter, class T>
struct SynthesisedRow {
    static constexpr ptrdiff_t delay = Filter::steps / 2;
    const T *low, *high;
    T* dst;

    template <class V>
    QOV_INLINE_MEMBER void known(ptrdiff_t m, V& v) const
    {
        V unused{};
        v = fetch(high + m, V());
        Filter::prepare(unused, v);
    }
    template <class V>
    QOV_INLINE_MEMBER void samples(ptrdiff_t m, V& target, V& v) const
    {
        target = fetch(low + m, V());
        v = fetch(high + m, V());
        Filter::prepare(target, v);
    }
    template <class V>
    QOV_INLINE_MEMBER void result(ptrdiff_t n, const Chain<Filter, alongRows, V>&, V earlier, V lifted) const
    {
        join(dst + 2 * n, saturated<T>(earlier), saturated<T>(lifted));
    }
    template <class NumberRange>
    QOV_INLINE_MEMBER void addTo(NumberRange& range, ptrdiff_t count) const
    {
        range.addRow(low - delay + 1, count + 2 * delay - 1);
        range.addRow(high - delay, count + 2 * delay);
    }
};

template <class Filter, class Row, class Number, class Vector>
struct RowTransform {
    template <class V>
    using RowChain = Chain<Filter, alongRows, V>;
    static constexpr ptrdiff_t delay = RowChain<Number>::delay, atOnce = Holds<Vector>::count;

    // A chain whose next result is pair n.
    static inline RowChain<Number> start(const Row& row, ptrdiff_t n)
    {
        RowChain<Number> chain{};
        row.known(n - delay, chain.before[0]);
        for (ptrdiff_t m = n - delay + 1; m < n + delay; m++) {
            Number target, known;
            row.samples(m, target, known);
            chain.advance(target, known);
        }
        return chain;
    }
    static inline RowChain<Vector> startVectors(const Row& row, ptrdiff_t n)
    {
        const RowChain<Number> number = start(row, n);
        RowChain<Vector> chain;
        for (int i = 0; i < Filter::steps; i++)
            chain.before[i] = all<Vector>(typename Holds<Vector>::Number(number.before[i]));
        return chain;
    }

    template <class V>
    static inline void pairs(const Row& row, RowChain<V>& chain, ptrdiff_t n)
    {
        V target, known;
        row.samples(n + delay, target, known);
        chain.advance(target, known);
        row.result(n, chain, target, known);
    }

    typedef StaggeredChain<Filter, Vector> Staggered;
    static inline void feed(const Row& row, Staggered& staggered, ptrdiff_t i)
    {
        row.samples(i * atOnce + delay, staggered.target[0], staggered.known[0]);
    }
    // A step begins when the samples come to it.
    template <int i = 0>
    static inline void fill(const Row& row, Staggered& staggered, ptrdiff_t count)
    {
        if constexpr (i < Staggered::delay) {
            if (i < count) feed(row, staggered, i);
            staggered.template advance<i>(staggered.target[0], staggered.known[0]);
            fill<i + 1>(row, staggered, count);
        }
    }
    static inline void give(const Row& row, Staggered& staggered, ptrdiff_t i)
    {
        Vector target, known;
        staggered.advance(target, known);
        row.result(i * atOnce, staggered.chain, target, known);
    }
    static inline void vectors(const Row& row, ptrdiff_t count)
    {
        Staggered staggered = {startVectors(row, 0), {}, {}};
        fill(row, staggered, count);
        ptrdiff_t i = 0;
        for (; i < count - Staggered::delay; i++) {
            feed(row, staggered, i + Staggered::delay);
            give(row, staggered, i);
        }
        for (; i < count; i++) give(row, staggered, i);
    }

    // What is no full vector goes with pairs that are done already.
    static inline void run(const Row& row, ptrdiff_t count)
    {
        if (count >= atOnce) {
            vectors(row, count / atOnce);
            if (count % atOnce == 0) return;
            RowChain<Vector> chain = startVectors(row, count - atOnce);
            pairs(row, chain, count - atOnce);
        } else {
            RowChain<Number> chain = start(row, 0);
            for (ptrdiff_t n = 0; n < count; n++) pairs(row, chain, n);
        }
    }
};

template <class Filter, class T, class Row>
inline void transformRow(const Row& row, ptrdiff_t count)
{
    typedef Lifted<Filter, T> In;
    typedef typename In::Number Number;
#if defined(QOV_SIMD256)
    if constexpr (In::mayBeNarrower) {
        if (count >= Holds<Widest<T>>::count) {
            Range<Widest<T>> range;
            row.addTo(range, count);
            if (count >= Holds<Vector16s>::count && range.within(largestSmall97))
                return RowTransform<Filter, Row, Number, Vector16s>::run(row, count);
            if (range.within(largestWord))
                return RowTransform<Filter, Row, Number, Vector32s>::run(row, count);
        }
    }
#endif
    RowTransform<Filter, Row, Number, typename In::Vector>::run(row, count);
}

template <class Filter, class T>
void analyseRows(const T* src, ptrdiff_t srcStep, T* low, ptrdiff_t lowStep, T* high, ptrdiff_t highStep,
                 QoviSize roi)
{
    assert(roi.width > 0 && roi.height > 0);
    typedef AnalysedRow<Filter, T> Row;
    for (int y = 0; y < roi.height; y++) {
        transformRow<Filter, T>(Row{src, low, high}, roi.width);
        src = atByte(src, srcStep);
        low = atByte(low, lowStep);
        high = atByte(high, highStep);
    }
}

template <class Filter, class T>
void synthesiseRows(const T* low, ptrdiff_t lowStep, const T* high, ptrdiff_t highStep, T* dst,
                    ptrdiff_t dstStep, QoviSize roi)
{
    assert(roi.width > 0 && roi.height > 0);
    typedef SynthesisedRow<Filter, T> Row;
    for (int y = 0; y < roi.height; y++) {
        transformRow<Filter, T>(Row{low, high, dst}, roi.width);
        low = atByte(low, lowStep);
        high = atByte(high, highStep);
        dst = atByte(dst, dstStep);
    }
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
