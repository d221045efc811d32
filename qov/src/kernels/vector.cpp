#include "vector.h"

#include "elements.h"
#include "wrapping.h"

#include <emmintrin.h>

namespace qov::QOV_LEVEL {
namespace {

constexpr Qov32s least = -2147483647 - 1, most = 2147483647;

// The exact sum and difference, held to 32 bits.
struct Add {
    static Qov64s exact(Qov64s a, Qov64s b) { return a + b; }
    template <class V>
    static inline V saturated(V a, V b)
    {
        const V sum = add(a, b);
        return replaced(sum, (a ^ sum) & (b ^ sum), a);
    }
    // Where `overflow` is negative the value that is most, or least for a negative a.
    template <class V>
    static inline V replaced(V result, V overflow, V a)
    {
        const V mask = overflow >> 31;
        return (result & ~mask) | (((a >> 31) ^ most) & mask);
    }
};

struct Subtract {
    static Qov64s exact(Qov64s a, Qov64s b) { return a - b; }
    template <class V>
    static inline V saturated(V a, V b)
    {
        const V difference = subtract(a, b);
        return Add::replaced(difference, (a ^ b) & (a ^ difference), a);
    }
};

// value 2^-scale, for sums of two numbers of 32 bits.
inline Qov32s scaled(Qov64s value, int scale)
{
    if (scale > 33) return 0; // at most a half, and ties go to 0
    if (scale > 0) {
        const Qov64s odd = value >> scale & 1;
        value = (value + odd + (Qov64s(1) << (scale - 1)) - 1) >> scale;
    } else if (value != 0) {
        if (scale < -31) return value < 0 ? least : most;
        value *= Qov64s(1) << -scale; // at least -2^63, at most below 2^63
    }
    return Qov32s(value < least ? least : value > most ? most : value);
}

// The second operand of a sum.
struct Elements {
    const Qov32s* data;

    template <class V>
    inline V at(ptrdiff_t x) const
    {
        return get<V>(data + x);
    }
};
struct Constant {
    Qov32s value;

    template <class V>
    inline V at(ptrdiff_t) const
    {
        return all<V>(value);
    }
};

template <class T>
struct Write {
    T* dst;

    template <class V>
    inline void write(ptrdiff_t x, V v) const
    {
        put(dst + x, v);
    }
};

template <class Combine, class Second>
struct Combined : Write<Qov32s> {
    const Qov32s* first;
    Second second;

    template <class V>
    inline V take(ptrdiff_t x) const
    {
        return Combine::saturated(get<V>(first + x), second.template at<V>(x));
    }
};

template <class Combine, class Second>
inline void combine(const Qov32s* first, Second second, Qov32s* dst, ptrdiff_t len, int scale)
{
    assert(len > 0);
    if (scale == 0)
        return forElements<Widest<Qov32s>, Qov32s>(Combined<Combine, Second>{{dst}, first, second}, len);
    for (ptrdiff_t x = 0; x < len; x++)
        dst[x] = scaled(Combine::exact(first[x], second.template at<Qov32s>(x)), scale);
}
template <class Combine>
void combineVectors(const Qov32s* src1, const Qov32s* src2, Qov32s* dst, ptrdiff_t len, int scale)
{
    combine<Combine>(src1, Elements{src2}, dst, len, scale);
}
template <class Combine>
void combineConstant(const Qov32s* src, Qov32s value, Qov32s* dst, ptrdiff_t len, int scale)
{
    combine<Combine>(src, Constant{value}, dst, len, scale);
}

struct Sum32f : Write<Qov32f> {
    const Qov32f *src1, *src2;

    template <class V>
    inline V take(ptrdiff_t x) const
    {
        return get<V>(src1 + x) + get<V>(src2 + x);
    }
};
void add_32f(const Qov32f* src1, const Qov32f* src2, Qov32f* dst, ptrdiff_t len)
{
    assert(len > 0);
    forElements<Widest<Qov32f>, Qov32f>(Sum32f{{dst}, src1, src2}, len);
}

// 2^-scale, held to what leaves no 32-bit number and no float between 0 and the ends of the other's range.
inline double powerOfTwo(int scale)
{
    scale = scale < -400 ? -400 : scale > 400 ? 400 : scale;
    const Qov64u bits = Qov64u(1023 - scale) << 52;
    return get<double>(&bits);
}

// To floats.

inline Qov32f toFloats(Qov32s v)
{
    return Qov32f(v);
}
#if defined(__AVX2__)
inline Vector32f toFloats(Vector32s v)
{
    return _mm256_cvtepi32_ps((__m256i)v);
}
#elif defined(QOV_SIMD256)
inline Vector32f toFloats(Vector32s v)
{
    return _mm_cvtepi32_ps((__m128i)v);
}
#endif

struct ToFloats : Write<Qov32f> {
    const Qov32s* src;

    template <class V>
    inline auto take(ptrdiff_t x) const
    {
        return toFloats(get<V>(src + x));
    }
};
void convert_32s32f(const Qov32s* src, Qov32f* dst, ptrdiff_t len, int scale)
{
    assert(len > 0);
    if (scale == 0) return forElements<Widest<Qov32s>, Qov32s>(ToFloats{{dst}, src}, len);
    const double factor = powerOfTwo(scale);
    for (ptrdiff_t x = 0; x < len; x++) put(dst + x, Qov32f(get<Qov32s>(src + x) * factor));
}

// To whole numbers. The processor gives -2^31 for all that does not fit: right below, to be mended above and
// for what is no number.

struct Nearest {
    static Qov32s convert(Qov32f v) { return _mm_cvtss_si32(_mm_set_ss(v)); }
    static Qov32s convert(double v) { return _mm_cvtsd_si32(_mm_set_sd(v)); }
#if defined(__AVX2__)
    static Vector32s convert(Vector32f v)
    {
        return (Vector32s)_mm256_cvtps_epi32(v);
    }
#elif defined(QOV_SIMD256)
    static Vector32s convert(Vector32f v)
    {
        return (Vector32s)_mm_cvtps_epi32(v);
    }
#endif
};
struct TowardZero {
    static Qov32s convert(Qov32f v) { return _mm_cvttss_si32(_mm_set_ss(v)); }
    static Qov32s convert(double v) { return _mm_cvttsd_si32(_mm_set_sd(v)); }
#if defined(__AVX2__)
    static Vector32s convert(Vector32f v)
    {
        return (Vector32s)_mm256_cvttps_epi32(v);
    }
#elif defined(QOV_SIMD256)
    static Vector32s convert(Vector32f v)
    {
        return (Vector32s)_mm_cvttps_epi32(v);
    }
#endif
};

template <class Rounding, class V>
inline Qov32s toWhole(V v)
{
    if (!(v >= V(least))) return v < V(least) ? least : 0;
    return v >= V(2147483648.) ? most : Rounding::convert(v);
}
#if defined(QOV_SIMD256)
template <class Rounding>
inline Vector32s toWhole(Vector32f v)
{
    const Vector32s above = v >= 2147483648.f, number = v == v;
    return (Rounding::convert(v) ^ above) & number;
}
#endif

template <class Rounding>
struct ToWhole : Write<Qov32s> {
    const Qov32f* src;

    template <class V>
    inline auto take(ptrdiff_t x) const
    {
        return toWhole<Rounding>(get<V>(src + x));
    }
};
template <class Rounding>
inline void toWholeNumbers(const Qov32f* src, Qov32s* dst, ptrdiff_t len, int scale)
{
    if (scale == 0) return forElements<Widest<Qov32f>, Qov32f>(ToWhole<Rounding>{{dst}, src}, len);
    const double factor = powerOfTwo(scale);
    for (ptrdiff_t x = 0; x < len; x++) put(dst + x, toWhole<Rounding>(get<Qov32f>(src + x) * factor));
}
void convert_32f32s(const Qov32f* src, Qov32s* dst, ptrdiff_t len, QovRoundMode mode, int scale)
{
    assert(len > 0);
    if (mode == qovRndZero)
        toWholeNumbers<TowardZero>(src, dst, len, scale);
    else
        toWholeNumbers<Nearest>(src, dst, len, scale);
}

// Operations on a picture, each element alone.

struct Multiply {
    Qov32f factor;

    template <class V>
    inline V result(V v) const
    {
        return v * factor;
    }
};
struct ShiftRight {
    int shift;

    template <class V>
    inline V result(V v) const
    {
        return v >> shift;
    }
};
struct ShiftLeft {
    int shift;

    template <class V>
    inline V result(V v) const
    {
        typedef typename Wrapping<V>::Type U;
        return V(U(v) << shift);
    }
};
struct Complement {
    template <class V>
    inline V result(V v) const
    {
        const V sign = v >> 31;
        return subtract(V(v ^ (sign & most)), sign); // -x + 2^31 is ~x + 1 with the top bit of x
    }
};

template <class T, class Operation>
struct Single : Write<T> {
    const T* src;
    Operation operation;

    template <class V>
    inline V take(ptrdiff_t x) const
    {
        return operation.result(get<V>(src + x));
    }
};

template <class T, class Operation>
inline void everyElement(const T* src, ptrdiff_t srcStep, Operation operation, T* dst, ptrdiff_t dstStep,
                         QoviSize roi)
{
    const ptrdiff_t rowBytes = ptrdiff_t(sizeof(T)) * roi.width;
    const Rows rows(roi, srcStep == rowBytes && dstStep == rowBytes);
    for (ptrdiff_t y = 0; y < rows.count; y++) {
        forElements<Widest<T>, T>(Single<T, Operation>{{dst}, src, operation}, rows.width);
        src = atByte(src, srcStep);
        dst = atByte(dst, dstStep);
    }
}

void multiply_32f(const Qov32f* src, ptrdiff_t srcStep, Qov32f factor, Qov32f* dst, ptrdiff_t dstStep,
                  QoviSize roi)
{
    everyElement(src, srcStep, Multiply{factor}, dst, dstStep, roi);
}
template <class Shift>
void shift_32s(const Qov32s* src, ptrdiff_t srcStep, int shift, Qov32s* dst, ptrdiff_t dstStep, QoviSize roi)
{
    assert(shift >= 0 && shift < 32);
    everyElement(src, srcStep, Shift{shift}, dst, dstStep, roi);
}
void complement_32s(Qov32s* srcDst, ptrdiff_t step, QoviSize roi)
{
    everyElement(srcDst, step, Complement(), srcDst, step, roi);
}

} // namespace

const VectorKernels vectorKernels = {
    convert_32s32f,
    convert_32f32s,
    add_32f,
    combineVectors<Add>,
    combineVectors<Subtract>,
    combineConstant<Add>,
    combineConstant<Subtract>,
    multiply_32f,
    shift_32s<ShiftRight>,
    shift_32s<ShiftLeft>,
    complement_32s,
};

} // namespace qov::QOV_LEVEL
