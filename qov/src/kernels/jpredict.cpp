// Samples, differences and sums are numbers modulo 2^16. In the text below d is a difference, s a sample, and
// a, b, c are the samples to its left, above, and above to the left.
#include "jpredict.h"
#include "simd256.h"

namespace qov::QOV_LEVEL {
namespace {

#if defined(QOV_SIMD256)
#if defined(__AVX2__)
QOV_W_OP2(W, notFirstAnd, andnot_si256)
template <int bytes>
QOV_INLINE W shiftUp(W a)
{
    return _mm256_slli_si256(a, bytes);
}
QOV_INLINE W swapLanes(W a)
{
    return _mm256_permute4x64_epi64(a, 0x4E);
}
// The last word of a, then all but the last of b.
QOV_INLINE W moveUpOne(W a, W b)
{
    return _mm256_alignr_epi8(b, _mm256_permute2x128_si256(a, b, 0x21), 14);
}
#else
QOV_W_OP2(W, notFirstAnd, andnot_si128)
template <int bytes>
QOV_INLINE W shiftUp(W a)
{
    return {_mm_slli_si128(a.lo, bytes), _mm_slli_si128(a.hi, bytes)};
}
QOV_INLINE W swapLanes(W a)
{
    return {a.hi, a.lo};
}
QOV_INLINE W moveUpOne(W a, W b)
{
    return {_mm_alignr_epi8(b.lo, a.hi, 14), _mm_alignr_epi8(b.hi, b.lo, 14)};
}
#endif
QOV_W_OP2(W, mulLow32, mullo_epi32)
QOV_W_IMM1(W, shuffleDwords, shuffle_epi32)

// Numbers side by side, with the operators of a single one.
struct Words { // 16 of 16 bits
    W w;
};
constexpr ptrdiff_t lanes16 = 16;
QOV_INLINE Words operator+(Words a, Words b)
{
    return {add16(a.w, b.w)};
}
QOV_INLINE Words operator-(Words a, Words b)
{
    return {sub16(a.w, b.w)};
}

struct Dwords { // 8 of 32 bits
    W w;
};
QOV_INLINE Dwords operator+(Dwords a, Dwords b)
{
    return {add32(a.w, b.w)};
}
QOV_INLINE Dwords operator-(Dwords a, Dwords b)
{
    return {sub32(a.w, b.w)};
}
#endif

// One sample (T = Qov16u) or as many as T has lanes.
template <class T>
QOV_INLINE T loadAs(const Qov16s* p)
{
    return T(*p);
}

#if defined(QOV_SIMD256)
template <>
QOV_INLINE_MEMBER Words loadAs(const Qov16s* p)
{
    return {load(p)};
}
#endif

QOV_INLINE void storeAs(Qov16s* p, Qov16u value)
{
    *p = Qov16s(value);
}

#if defined(QOV_SIMD256)
QOV_INLINE void storeAs(Qov16s* p, Words value)
{
    store(p, value.w);
}
#endif

// (a - b) >> 1 and (a + b) >> 1 of the unsigned numbers, which have 17 bits before the shift.
QOV_INLINE Qov16u halfDifference(Qov16u a, Qov16u b)
{
    return Qov16u((a - b) >> 1);
}

QOV_INLINE Qov16u halfSum(Qov16u a, Qov16u b)
{
    return Qov16u((a + b) >> 1);
}

#if defined(QOV_SIMD256)
// In lanes of 16 bits: a - b = (a ^ b) - 2 (~a & b), a + b = (a ^ b) + 2 (a & b).
QOV_INLINE Words halfDifference(Words a, Words b)
{
    return {sub16(shiftRightU16<1>(unlike(a.w, b.w)), notFirstAnd(a.w, b.w))};
}

QOV_INLINE Words halfSum(Words a, Words b)
{
    return {add16(shiftRightU16<1>(unlike(a.w, b.w)), both(a.w, b.w))};
}
#endif

// The predictors of table H.1, for one sample or many.
#define QOV_PREDICTOR(Name, prediction)                                                                      \
    struct Name {                                                                                            \
        template <class T>                                                                                   \
        QOV_INLINE T of([[maybe_unused]] T a, [[maybe_unused]] T b, [[maybe_unused]] T c)                    \
        {                                                                                                    \
            return T(prediction);                                                                            \
        }                                                                                                    \
    };
QOV_PREDICTOR(Left, a)
QOV_PREDICTOR(Above, b)
QOV_PREDICTOR(AboveLeft, c)
QOV_PREDICTOR(Plane, a + b - c)
QOV_PREDICTOR(LeftSlope, a + halfDifference(b, c))
QOV_PREDICTOR(AboveSlope, b + halfDifference(a, c))
QOV_PREDICTOR(Mean, halfSum(a, b))

// What a row function makes of a value (sample or difference) and the samples around it.
template <class Predictor>
struct Minus {
    template <class T>
    QOV_INLINE T of(T value, T a, T b, T c)
    {
        return T(value - Predictor::of(a, b, c));
    }
};

template <class Predictor>
struct Plus {
    template <class T>
    QOV_INLINE T of(T value, T a, T b, T c)
    {
        return T(value + Predictor::of(a, b, c));
    }
};

template <class T, class Result>
QOV_INLINE T resultAt(const Qov16s* src, const Qov16s* prev, ptrdiff_t x)
{
    return Result::of(loadAs<T>(src + x), loadAs<T>(src + x - 1), loadAs<T>(prev + x),
                      loadAs<T>(prev + x - 1));
}

// dst[x] for 1 <= x < n. dst may be src if Result does not look to the left.
template <class Result>
inline void fillFromSecond(const Qov16s* src, const Qov16s* prev, Qov16s* dst, ptrdiff_t n)
{
#if defined(QOV_SIMD256)
    if (n > lanes16) {
        // The first and the last vector share samples with their neighbours, so that the others lie as the
        // rows do: both are formed before anything is written.
        const Words head = resultAt<Words, Result>(src, prev, 1);
        const Words tail = resultAt<Words, Result>(src, prev, n - lanes16);
        // Loads across cache lines are what limits the loop: c is made of what b was and is.
        const auto step = [&](ptrdiff_t x, W before) {
            const W above = load(prev + x);
            storeAs(dst + x, Result::of(loadAs<Words>(src + x), loadAs<Words>(src + x - 1), Words{above},
                                        Words{moveUpOne(before, above)}));
            return above;
        };
        W above = load(prev);
        ptrdiff_t x = lanes16;
        for (; x + 2 * lanes16 < n; x += 2 * lanes16) above = step(x + lanes16, step(x, above));
        if (x + lanes16 < n) step(x, above);
        storeAs(dst + 1, head);
        storeAs(dst + n - lanes16, tail);
        return;
    }
#endif
    for (ptrdiff_t x = 1; x < n; x++) storeAs(dst + x, resultAt<Qov16u, Result>(src, prev, x));
}

void diffFirstRow(const Qov16s* src, Qov16s* dst, ptrdiff_t n, int firstPrediction)
{
    assert(n > 0);
    dst[0] = Qov16s(src[0] - firstPrediction);
    fillFromSecond<Minus<Left>>(src, src, dst, n); // which looks at nothing above
}

template <class Predictor>
void diffRow(const Qov16s* src, const Qov16s* prev, Qov16s* dst, ptrdiff_t n)
{
    assert(n > 0);
    dst[0] = Qov16s(src[0] - prev[0]);
    fillFromSecond<Minus<Predictor>>(src, prev, dst, n);
}

// For predictors that do not look to the left.
template <class Predictor>
void addAbove(const Qov16s* src, const Qov16s* prev, Qov16s* dst, ptrdiff_t n)
{
    assert(n > 0);
    dst[0] = Qov16s(src[0] + prev[0]);
    fillFromSecond<Plus<Predictor>>(src, prev, dst, n);
}

// Predictors whose chain is a running sum: s[x] = base(x) + sum(x), sum(x) = sum(x - 1) + increment(x).
struct LeftSum {
    const Qov16s* src;

    template <class T>
    QOV_INLINE_MEMBER T increment(ptrdiff_t x) const
    {
        return loadAs<T>(src + x);
    }
    template <class T>
    QOV_INLINE_MEMBER T base(ptrdiff_t) const
    {
        return T{};
    }
};

// s - b is d more than a - c, the same one column before.
struct PlaneSum : LeftSum {
    const Qov16s* prev;

    PlaneSum(const Qov16s* s, const Qov16s* p) : LeftSum{s}, prev(p) {}
    template <class T>
    QOV_INLINE_MEMBER T base(ptrdiff_t x) const
    {
        return loadAs<T>(prev + x);
    }
};

struct LeftSlopeSum : LeftSum {
    const Qov16s* prev;

    LeftSlopeSum(const Qov16s* s, const Qov16s* p) : LeftSum{s}, prev(p) {}
    template <class T>
    QOV_INLINE_MEMBER T increment(ptrdiff_t x) const
    {
        return T(loadAs<T>(src + x) + halfDifference(loadAs<T>(prev + x), loadAs<T>(prev + x - 1)));
    }
};

// dst[x] for x >= 1; `sum` stands before it. dst may be src.
template <class Chain>
inline void runningSum(Chain chain, Qov16u sum, Qov16s* dst, ptrdiff_t n)
{
    ptrdiff_t x = 1;
#if defined(QOV_SIMD256)
    const W lastWord = all16(0x0F0E);
    W before = all16(Qov16s(sum)); // in every lane
    for (; x + lanes16 <= n; x += lanes16) {
        W sums = chain.template increment<Words>(x).w;
        sums = add16(sums, shiftUp<2>(sums));
        sums = add16(sums, shiftUp<4>(sums));
        sums = add16(sums, shiftUp<8>(sums));
        const W totals = shuffleBytes(sums, lastWord); // of each half
        sums = add16(sums, crossLowLanes(all16(0), totals));
        storeAs(dst + x, Words{add16(sums, before)} + chain.template base<Words>(x));
        before = add16(before, add16(totals, swapLanes(totals)));
    }
    sum = Qov16u(_mm_extract_epi16(lowLane(before), 0));
#endif
    for (; x < n; x++) {
        sum = Qov16u(sum + chain.template increment<Qov16u>(x));
        storeAs(dst + x, Qov16u(sum + chain.template base<Qov16u>(x)));
    }
}

void reconstructFirstRow(const Qov16s* src, Qov16s* dst, ptrdiff_t n, int firstPrediction)
{
    assert(n > 0);
    dst[0] = Qov16s(src[0] + firstPrediction);
    runningSum(LeftSum{src}, Qov16u(dst[0]), dst, n);
}

void reconstructLeft(const Qov16s* src, const Qov16s* prev, Qov16s* dst, ptrdiff_t n)
{
    reconstructFirstRow(src, dst, n, prev[0]);
}

void reconstructPlane(const Qov16s* src, const Qov16s* prev, Qov16s* dst, ptrdiff_t n)
{
    assert(n > 0);
    const Qov16u sum = Qov16u(src[0]);
    dst[0] = Qov16s(sum + prev[0]);
    runningSum(PlaneSum(src, prev), sum, dst, n);
}

void reconstructLeftSlope(const Qov16s* src, const Qov16s* prev, Qov16s* dst, ptrdiff_t n)
{
    assert(n > 0);
    dst[0] = Qov16s(src[0] + prev[0]);
    runningSum(LeftSlopeSum(src, prev), Qov16u(dst[0]), dst, n);
}

// Predictors whose chain halves: s[x] = (s[x - 1] + term(x)) >> 1, then modulo 2^16. That is d + prediction
// with everything below the shift. |term| < 2^18.
struct AboveSlopeTerm {
    template <class T>
    QOV_INLINE T of(T d, T b, T c)
    {
        return d + d + b + b - c;
    }
};

struct MeanTerm {
    template <class T>
    QOV_INLINE T of(T d, T b, [[maybe_unused]] T c)
    {
        return d + d + b;
    }
};

// dst[x] for from <= x < to, from >= 1; `left` stands before them, and the last of them is answered. dst may
// be src.
template <class Term>
QOV_INLINE Qov16u halveOneByOne(const Qov16s* src, const Qov16s* prev, Qov16s* dst, ptrdiff_t from,
                                ptrdiff_t to, Qov16u left)
{
    Qov32u s = left;
    for (ptrdiff_t x = from; x < to; x++) {
        s += Qov32u(Term::template of<int>(src[x], Qov16u(prev[x]), Qov16u(prev[x - 1])));
#if defined(__BMI__)
        s = _bextr_u32(s, 1, 16);
#else
        s = (s >> 1) & 0xFFFF;
#endif
        dst[x] = Qov16s(s);
    }
    return Qov16u(s);
}

#if defined(QOV_SIMD256)
template <class Term>
QOV_INLINE W eightTerms(const Qov16s* src, const Qov16s* prev)
{
    const auto words = [](const Qov16s* p) { return _mm_loadu_si128((const __m128i*)p); };
    const Dwords d = {widenSigned(words(src))};
    const Dwords b = {widenUnsigned(words(prev))}, c = {widenUnsigned(words(prev - 1))};
    return Term::of(d, b, c).w;
}
#endif

// Floors of halves of floors are the floor of the whole: as long as no s leaves 16 bits, s[x + i] is
// (s[x - 1] + term(x) + 2 term(x + 1) + ... + 2^i term(x + i)) >> (i + 1), and a group of eight adds two
// steps only to the chain. So that is tried, and a group with such an s is done one by one, with some more:
// where one wraps, as it may with 16 bits of precision, others are likely to.
template <class Term>
void reconstructHalving(const Qov16s* src, const Qov16s* prev, Qov16s* dst, ptrdiff_t n)
{
    assert(n > 0);
    dst[0] = Qov16s(src[0] + prev[0]);
    ptrdiff_t x = 1;
#if defined(QOV_SIMD256)
    constexpr ptrdiff_t group = 8, afterWrap = 64;
    alignas(32) static const Qov32s powers[15] = {1, 2, 4, 8, 16, 32, 64, 128, 64, 32, 16, 8, 4, 2, 1};
    const W weight = load(powers), scale = load(powers + 7);
    W before = all32(Qov16u(dst[0])); // in every lane
    for (; x + group <= n; x += group) {
        W sums = mulLow32(eightTerms<Term>(src + x, prev + x), weight); // below 2^26
        sums = add32(sums, shiftUp<4>(sums));
        sums = add32(sums, shiftUp<8>(sums));
        const W totals = shuffleDwords<0xFF>(sums); // of each half
        sums = add32(sums, crossLowLanes(all32(0), totals));
        const W scaled = mulLow32(add32(sums, before), scale); // below 2^27
        const W result = shiftRight32<8>(scaled);
        if (!isZero(both(result, all32(~0xFFFF)))) {
            const ptrdiff_t end = x + afterWrap < n ? x + afterWrap : n;
            before = all32(halveOneByOne<Term>(src, prev, dst, x, end, Qov16u(dst[x - 1])));
            x = end - group;
            continue;
        }
        _mm_storeu_si128((__m128i*)(dst + x), _mm_packus_epi32(lowLane(result), highLane(result)));
        before = shiftRight32<8>(add32(before, add32(totals, swapLanes(totals))));
    }
#endif
    halveOneByOne<Term>(src, prev, dst, x, n, Qov16u(dst[x - 1]));
}

} // namespace

const PredictKernels predictKernels = {
    diffFirstRow,
    reconstructFirstRow,
    {diffRow<Left>, diffRow<Above>, diffRow<AboveLeft>, diffRow<Plane>, diffRow<LeftSlope>,
     diffRow<AboveSlope>, diffRow<Mean>},
    {reconstructLeft, addAbove<Above>, addAbove<AboveLeft>, reconstructPlane, reconstructLeftSlope,
     reconstructHalving<AboveSlopeTerm>, reconstructHalving<MeanTerm>},
};

} // namespace qov::QOV_LEVEL
