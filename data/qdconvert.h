// Conversion of a double into an element of test data, and access to elements at any address: a test may ask
// for vectors that are not aligned to their type.
#ifndef QD_CONVERT_H
#define QD_CONVERT_H

#include <cstdint>
#include <cstring>
#include <type_traits>

// 64-bit integer by truncation towards zero. What lies outside its range becomes the nearer end; no number
// becomes 0.
inline std::int64_t qdTruncate(double value)
{
    if (value >= 9223372036854775808.0) return INT64_MAX;
    if (value < -9223372036854775808.0) return INT64_MIN;
    return value == value ? static_cast<std::int64_t>(value) : 0;
}

// Integers keep the low bits of the 64-bit value; a 64u from 2^63 up is converted in two halves.
template <class T>
T qdConvert(double value)
{
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(value);
    } else if constexpr (std::is_same_v<T, std::uint64_t>) {
        const double half = 9223372036854775808.0;
        const std::uint64_t top = std::uint64_t{1} << 63;
        return value >= half ? static_cast<std::uint64_t>(qdTruncate(value - half)) | top
                             : static_cast<std::uint64_t>(qdTruncate(value));
    } else {
        return static_cast<T>(qdTruncate(value));
    }
}

template <class T>
void qdStore(void* p, std::int64_t i, T value)
{
    std::memcpy(static_cast<char*>(p) + i * static_cast<std::int64_t>(sizeof(T)), &value, sizeof(T));
}

template <class T>
T qdLoad(const void* p, std::int64_t i)
{
    T value;
    std::memcpy(&value, static_cast<const char*>(p) + i * static_cast<std::int64_t>(sizeof(T)), sizeof(T));
    return value;
}

#endif
