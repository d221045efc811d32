// Constants of the 9-7 wavelet (ITU-T T.800, table F.4) and the arithmetic of its whole-number forms.
#ifndef JPEG2000_WT97CONST_H
#define JPEG2000_WT97CONST_H

#include <limits>

namespace jpeg2000 {

// The lifting steps are target += constant * (neighbour0 + neighbour1). The doubled constants serve at the
// ends of a signal, where symmetric extension makes both neighbours one sample. KL and KH scale the halves at
// the end.
template <class T>
struct WT97Const;

template <>
struct WT97Const<float> {
    static constexpr float ALPHA = -1.5861343f, ALPHAx2 = -3.1722686f;
    static constexpr float BETA = -0.052980117f, BETAx2 = -0.105960235f;
    static constexpr float GAMMA = 0.8829111f, GAMMAx2 = 1.7658222f;
    static constexpr float DELTA = 0.44350687f, DELTAx2 = 0.88701373f;
    static constexpr float KL = 0.8128931f, KH = 1.2301741f;
};

// Over 65536. The doubled ones are rounded on their own.
struct WT97FixedConst {
    static constexpr int ALPHA = -103949, ALPHAx2 = -207898;
    static constexpr int BETA = -3472, BETAx2 = -6944;
    static constexpr int GAMMA = 57862, GAMMAx2 = 115725;
    static constexpr int DELTA = 29066, DELTAx2 = 58131;
    static constexpr int KL = 53274, KH = 80621;
};

template <>
struct WT97Const<short> : WT97FixedConst {
};

template <>
struct WT97Const<int> : WT97FixedConst {
};

template <class T>
constexpr T Saturate(long long value)
{
    constexpr long long low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
    return static_cast<T>(value < low ? low : value > high ? high : value);
}

// constant * value with 16 fractional bits, rounded half up. The product of 18 and 33 bits fits 64.
constexpr long long RoundSF16(int constant, long long value)
{
    return (constant * value + 0x8000) >> 16;
}

// constant * value.
template <class T>
constexpr T MulRoundSF16(int constant, T value)
{
    return Saturate<T>(RoundSF16(constant, value));
}

// target + constant * value.
template <class T>
constexpr T MulAddRoundSF16(T target, int constant, T value)
{
    return Saturate<T>(target + RoundSF16(constant, value));
}

// target + constant * (value0 + value1).
template <class T>
constexpr T AddMulAddRoundSF16(T target, int constant, T value0, T value1)
{
    return Saturate<T>(target + RoundSF16(constant, static_cast<long long>(value0) + value1));
}

} // namespace jpeg2000

#endif
