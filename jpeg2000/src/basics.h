// Small templates that the whole codec uses.
#ifndef JPEG2000_BASICS_H
#define JPEG2000_BASICS_H

#include <bit>
#include <cstddef>
#include <type_traits>

namespace jpeg2000 {

template <class T>
const T& Min(const T& a, const T& b)
{
    return b < a ? b : a;
}

template <class T>
const T& Max(const T& a, const T& b)
{
    return a < b ? b : a;
}

// Element by element, between anything that can be indexed.
template <class Src, class Dst>
void Copy(const Src& src, Dst&& dst, unsigned n)
{
    for (unsigned i = 0; i < n; i++) dst[i] = src[i];
}

template <class T, class Dst>
void SetValue(const T& value, Dst&& dst, unsigned n)
{
    for (unsigned i = 0; i < n; i++) dst[i] = value;
}

template <class T>
void Zero(T* dst, unsigned n)
{
    SetValue(T{}, dst, n);
}

// The element `bytes` bytes behind `pointer`: how rows are stepped.
template <class T>
T* addrAdd(T* pointer, ptrdiff_t bytes)
{
    using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(pointer) + bytes);
}

template <class T>
void addrInc(T*& pointer, ptrdiff_t bytes)
{
    pointer = addrAdd(pointer, bytes);
}

// The index of the highest set bit; -1 for 0.
constexpr int Log2(unsigned value)
{
    return static_cast<int>(std::bit_width(value)) - 1;
}

constexpr unsigned ceilDivPow2(unsigned value, unsigned order)
{
    return static_cast<unsigned>((value + (1ull << order) - 1) >> order);
}

} // namespace jpeg2000

#endif
