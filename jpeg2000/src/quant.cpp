#include "quant.h"

#include <cmath>

namespace jpeg2000 {

QuantValue QuantFromDelta(float delta, int range)
{
    int exponent = 0;
    const float fraction = std::fabs(std::frexp(delta, &exponent));
    if (!(fraction > 0)) return {0, 31};
    const float mantissa = (fraction - 0.5f) * 4096;
    QuantValue quant{0, range - exponent + 1};
    if (mantissa > 2047)
        quant.mantissa = 2047;
    else if (mantissa >= 0)
        quant.mantissa = static_cast<int>(mantissa + 0.5f);
    return quant;
}

double stepOf(const QuantValue& quant, int range)
{
    return std::ldexp(1 + quant.mantissa * 0.00048828125, range - quant.exponent);
}

} // namespace jpeg2000
