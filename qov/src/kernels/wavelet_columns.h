// Columns of samples through the lifting steps of a filter: whole columns, and one step of a pipeline that
// the caller keeps the rows of.
#ifndef QOV_KERNELS_WAVELET_COLUMNS_H
#define QOV_KERNELS_WAVELET_COLUMNS_H

#include "wavelet_transforms.h"

namespace qov::QOV_LEVEL {
namespace {

// What columns go in. Those of 5-3, which does little with each number, take registers of 512 bits at v4:
// that spares instructions.
template <class T>
struct ColumnVector {
    typedef Widest<T> Type;
};
#if defined(__AVX512BW__)
constexpr int longRegisterBytes = 64;
typedef Qov16s Long16s __attribute__((vector_size(longRegisterBytes)));
typedef Qov32s Long32s __attribute__((vector_size(longRegisterBytes)));
template <class T>
struct LongHolds {
    typedef T Number;
    static constexpr ptrdiff_t count = longRegisterBytes / sizeof(T);
};
template <>
struct Holds<Long16s> : LongHolds<Qov16s> {
};
template <>
struct Holds<Long32s> : LongHolds<Qov32s> {
};
template <>
struct Wrapping<Long16s> {
    typedef Qov16u Type __attribute__((vector_size(longRegisterBytes)));
};
template <>
struct Wrapping<Long32s> {
    typedef Qov32u Type __attribute__((vector_size(longRegisterBytes)));
};
template <>
struct ColumnVector<Qov16s> {
    typedef Long16s Type;
};
template <>
struct ColumnVector<Qov32s> {
    typedef Long32s Type;
};
#endif

// The rows of a side.
template <class T>
struct SampleRows {
    T* data;
    ptrdiff_t step;

    inline T* operator[](ptrdiff_t y) const { return atByte(data, y * step); }
};

// A Pair is what one step reads, of pair m, and writes, of pair n.
template <class Filter, class T>
struct AnalysedColumns {
    SampleRows<const T> src;
    SampleRows<T> low, high;

    struct Pair {
        const T *odd, *even;
        T *low, *high;

        template <class V>
        inline void samples(ptrdiff_t x, V& target, V& known) const
        {
            target = get<V>(odd + x);
            known = get<V>(even + x);
        }
        template <class V>
        inline void result(ptrdiff_t x, const Chain<Filter, alongColumns, V>& chain, V, V lifted) const
        {
            V l = lifted, h = chain.before[Filter::steps - 1];
            Filter::finish(l, h);
            put(low + x, l);
            put(high + x, h);
        }
    };
    inline Pair pair(ptrdiff_t m, ptrdiff_t n, ptrdiff_t x) const
    {
        return {src[2 * m - 1] + x, src[2 * m] + x, low[n] + x, high[n] + x};
    }
    template <class V>
    inline V known(ptrdiff_t m, ptrdiff_t x) const
    {
        return get<V>(src[2 * m] + x);
    }
};

template <class Filter, class T>
struct SynthesisedColumns {
    SampleRows<const T> low, high;
    SampleRows<T> dst;

    struct Pair {
        const T *low, *high;
        T *even, *odd;

        template <class V>
        inline void samples(ptrdiff_t x, V& target, V& known) const
        {
            target = get<V>(low + x);
            known = get<V>(high + x);
            Filter::prepare(target, known);
        }
        template <class V>
        inline void result(ptrdiff_t x, const Chain<Filter, alongColumns, V>&, V earlier, V lifted) const
        {
            put(even + x, earlier);
            put(odd + x, lifted);
        }
    };
    inline Pair pair(ptrdiff_t m, ptrdiff_t n, ptrdiff_t x) const
    {
        return {low[m] + x, high[m] + x, dst[2 * n] + x, dst[2 * n + 1] + x};
    }
    template <class V>
    inline V known(ptrdiff_t m, ptrdiff_t x) const
    {
        V unused{}, v = get<V>(high[m] + x);
        Filter::prepare(unused, v);
        return v;
    }
};

// Columns go in strips whose chains stay in the nearest cache, and several pairs of rows at a time, between
// which the chains stay in registers.
template <class Filter, class T, class Columns, class Vector>
struct ColumnTransform {
    template <class V>
    using ColumnChain = Chain<Filter, alongColumns, V>;
    static constexpr int steps = Filter::steps;
    static constexpr ptrdiff_t delay = ColumnChain<T>::delay, atOnce = Holds<Vector>::count;
    static constexpr ptrdiff_t stripWidth = 16384 / (steps * sizeof(T));
    static constexpr int pairsAtOnce = steps; // as found best

    // Rows of it a multiple of 4096 bytes apart would hinder each other.
    struct Strip {
        alignas(64) T before[steps][stripWidth + 512 / sizeof(T)];
    };

    template <bool results, int pairs, class V>
    static inline void advance(const Columns& columns, Strip& strip, ptrdiff_t n, ptrdiff_t first,
                               ptrdiff_t width)
    {
        typename Columns::Pair pair[pairs];
        for (int i = 0; i < pairs; i++) pair[i] = columns.pair(n + i + delay, results ? n + i : 0, first);
        for (ptrdiff_t x = 0; x < width; x += Holds<V>::count) {
            ColumnChain<V> chain;
            for (int i = 0; i < steps; i++) chain.before[i] = get<V>(&strip.before[i][x]);
            for (int i = 0; i < pairs; i++) {
                V target, known;
                pair[i].samples(x, target, known);
                chain.advance(target, known);
                if (results) pair[i].result(x, chain, target, known);
            }
            for (int i = 0; i < steps; i++) put(&strip.before[i][x], chain.before[i]);
        }
    }

    template <class V>
    static void run(const Columns& columns, ptrdiff_t first, ptrdiff_t width, ptrdiff_t count)
    {
        Strip strip;
        for (ptrdiff_t x = 0; x < width; x += Holds<V>::count) {
            put(&strip.before[0][x], columns.template known<V>(-delay, first + x));
            for (int i = 1; i < steps; i++) put(&strip.before[i][x], V{});
        }
        ptrdiff_t n = 1 - 2 * delay;
        for (; n < 0; n++) advance<false, 1, V>(columns, strip, n, first, width);
        for (; n + pairsAtOnce <= count; n += pairsAtOnce)
            advance<true, pairsAtOnce, V>(columns, strip, n, first, width);
        for (; n < count; n++) advance<true, 1, V>(columns, strip, n, first, width);
    }

    // Columns that fill no vector go with some that are done already.
    static inline void runAll(const Columns& columns, QoviSize roi)
    {
        const ptrdiff_t width = roi.width, count = roi.height;
        assert(width > 0 && count > 0);
        if (width < atOnce) return run<T>(columns, 0, width, count);
        for (ptrdiff_t x = 0; x < width;) {
            ptrdiff_t strip = width - x < stripWidth ? (width - x) / atOnce * atOnce : stripWidth;
            if (strip == 0) {
                x = width - atOnce;
                strip = atOnce;
            }
            run<Vector>(columns, x, strip, count);
            x += strip;
        }
    }
};

template <class Filter, class T, class Columns>
inline void transformColumns(const Columns& columns, QoviSize roi)
{
    typedef typename ColumnVector<T>::Type Long;
    if (roi.width >= Holds<Long>::count)
        ColumnTransform<Filter, T, Columns, Long>::runAll(columns, roi);
    else
        ColumnTransform<Filter, T, Columns, Widest<T>>::runAll(columns, roi);
}

template <class Filter, class T>
void analyseColumns(const T* src, ptrdiff_t srcStep, T* low, ptrdiff_t lowStep, T* high, ptrdiff_t highStep,
                    QoviSize roi)
{
    typedef AnalysedColumns<Filter, T> Columns;
    transformColumns<Filter, T>(Columns{{src, srcStep}, {low, lowStep}, {high, highStep}}, roi);
}

template <class Filter, class T>
void synthesiseColumns(const T* low, ptrdiff_t lowStep, const T* high, ptrdiff_t highStep, T* dst,
                       ptrdiff_t dstStep, QoviSize roi)
{
    typedef SynthesisedColumns<Filter, T> Columns;
    transformColumns<Filter, T>(Columns{{low, lowStep}, {high, highStep}, {dst, dstStep}}, roi);
}

// A step of a 5-3 pipeline: `target` lies between the rows `before` and `behind` and is lifted to `first`;
// that and `earlier`, the `first` of the step before, lie around the row `before`, which is lifted to
// `second`.
template <class Filter, class T>
struct Lift53 {
    const T *before, *target, *behind, *earlier;
    T *first, *second;

    template <class V>
    struct Result {
        V first, second;
    };
    template <class V>
    QOV_INLINE_MEMBER Result<V> take(ptrdiff_t x) const
    {
        const V a = get<V>(before + x), b = get<V>(behind + x);
        const V lifted = Filter::template lift<0>(get<V>(target + x), a, b);
        return {lifted, Filter::template lift<1>(a, get<V>(earlier + x), lifted)};
    }
    template <class V>
    QOV_INLINE_MEMBER void write(ptrdiff_t x, Result<V> result) const
    {
        put(first + x, result.first);
        put(second + x, result.second);
    }
};

template <class Filter, class T>
inline void lift53(const Lift53<Filter, T>& rows, ptrdiff_t width)
{
    typedef typename ColumnVector<T>::Type Long;
    if (width >= Holds<Long>::count)
        forElements<Long, T>(rows, width);
    else
        forElements<Widest<T>, T>(rows, width);
}

template <class T>
void forward53(const T* even0, const T* odd, const T* even1, const T* highPrev, T* low, T* high,
               ptrdiff_t width)
{
    lift53(Lift53<B53Forward, T>{even0, odd, even1, highPrev, high, low}, width);
}

template <class T>
void inverse53(const T* low1, const T* high0, const T* high1, const T* even0, T* odd, T* even1,
               ptrdiff_t width)
{
    lift53(Lift53<B53Inverse, T>{high0, low1, high1, even0, even1, odd}, width);
}

// A step of a 9-7 pipeline: four rows lifted in place, the newest first. Row i lies between rows i - 1 and i
// + 1; rows -1 and 4 are only read.
template <class Filter, class T>
struct Lift97 {
    const T* newest;
    T* row[4];
    const T* oldest;

    template <class V>
    struct Samples {
        V row[6]; // from the newest to the oldest
    };
    template <class V>
    QOV_INLINE_MEMBER Samples<V> samples(ptrdiff_t x) const
    {
        return {{fetch(newest + x, V()), fetch(row[0] + x, V()), fetch(row[1] + x, V()),
                 fetch(row[2] + x, V()), fetch(row[3] + x, V()), fetch(oldest + x, V())}};
    }
    template <int step = 0, class V>
    QOV_INLINE void lift(Samples<V>& s)
    {
        if constexpr (step < 4) {
            V& target = s.row[1 + step];
            target = saturated<T>(Filter::template lift<step>(target, s.row[step], s.row[step + 2]));
            lift<step + 1>(s);
        }
    }

    template <class V>
    QOV_INLINE_MEMBER Samples<V> take(ptrdiff_t x) const
    {
        Samples<V> s = samples<V>(x);
        lift(s);
        return s;
    }
    template <class V>
    QOV_INLINE_MEMBER void write(ptrdiff_t x, const Samples<V>& s) const
    {
        for (int i = 0; i < 4; i++) keep(row[i] + x, s.row[1 + i]);
    }
    Lift97 from(ptrdiff_t x) const
    {
        return {newest + x, {row[0] + x, row[1] + x, row[2] + x, row[3] + x}, oldest + x};
    }
};

#if defined(QOV_SIMD256)
template <class Filter>
inline __attribute__((flatten)) void liftAny97(const Lift97<Filter, Qov16s> rows, ptrdiff_t width)
{
    forElements<SaturatedWords, Qov64s>(rows, width);
}
inline bool areWords(const Qov32s* row, ptrdiff_t width)
{
    Range<Vector32s> range;
    range.addRow(row, width);
    return range.within(largestWord);
}
template <class Filter>
inline __attribute__((flatten)) void liftAny97(const Lift97<Filter, Qov32s> rows, ptrdiff_t width)
{
    bool words = width >= Holds<Vector32s>::count && areWords(rows.newest, width);
    for (const Qov32s* row : rows.row) words = words && areWords(row, width);
    if (words && areWords(rows.oldest, width))
        forElements<Vector32s, Qov64s>(rows, width);
    else
        forElements<Doubles, Qov64s>(rows, width);
}

template <class V>
QOV_INLINE bool areSmall97(const V (&v)[6])
{
    Range<V> range;
    range.add(v);
    return range.within(largestSmall97);
}
// A vector at a time from x on, as long as the numbers are small; where that ends.
template <class Filter, class T>
inline ptrdiff_t liftSmall97(const Lift97<Filter, T> rows, ptrdiff_t x, ptrdiff_t end)
{
    for (; x < end; x += Holds<Vector16s>::count) {
        auto samples = rows.template samples<Vector16s>(x);
        if (!areSmall97(samples.row)) return x;
        rows.lift(samples);
        rows.write(x, samples);
    }
    return x;
}
// Where numbers are not small, the next part of the rows goes in wider ones. The last vector ends with the
// rows, and is read before anything is written.
template <class Filter, class T>
inline void liftWhole97(const Lift97<Filter, T>& rows, ptrdiff_t width)
{
    constexpr ptrdiff_t atOnce = Holds<Vector16s>::count, part = 32 * atOnce;
    const ptrdiff_t last = width - atOnce;
    if (last < 0) return liftAny97(rows, width);
    auto end = rows.template samples<Vector16s>(last);
    ptrdiff_t x = 0;
    while ((x = liftSmall97(rows, x, last)) < last) {
        const ptrdiff_t count = width - x < part ? width - x : part;
        liftAny97(rows.from(x), count);
        x += count;
    }
    if (x >= width) return;
    if (!areSmall97(end.row)) return liftAny97(rows.from(x), width - x);
    rows.lift(end);
    rows.write(last, end);
}
#endif

template <class Filter, class T>
inline void lift97(const Lift97<Filter, T>& rows, ptrdiff_t width)
{
    typedef Lifted<Filter, T> In;
#if defined(QOV_SIMD256)
    if constexpr (In::mayBeNarrower) return liftWhole97(rows, width);
#endif
    forElements<typename In::Vector, typename In::Number>(rows, width);
}

template <class T>
void forward97(const T* low0, T* high0, T* low1, T* high1, T* low2, const T* high2, ptrdiff_t width)
{
    lift97(Lift97<D97Forward, T>{low0, {high0, low1, high1, low2}, high2}, width);
}

template <class T>
void inverse97(T* low0, const T* high0, T* low1, T* high1, const T* low2, T* high2, ptrdiff_t width)
{
    lift97(Lift97<D97Inverse, T>{high0, {low0, high1, low1, high2}, low2}, width);
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
