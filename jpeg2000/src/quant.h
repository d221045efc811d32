// Quantiser steps (ITU-T T.800, annex E.1): mantissa and exponent of each band.
#ifndef JPEG2000_QUANT_H
#define JPEG2000_QUANT_H

#include "fixedbuffer.h"

namespace jpeg2000 {

struct QuantValue {
    int mantissa = 0, exponent = 0; // mantissa 0 to 2047
};

struct QuantTriplet {
    QuantValue hl, lh, hh;
};

struct QuantComponent {
    QuantValue ll;
    FixedBuffer<QuantTriplet> triplets; // index 0 is the finest level
};

// The pair nearest to |delta| for a band of `range` bits. A delta of 0 gives mantissa 0, exponent 31. The
// exponent is not limited here.
QuantValue QuantFromDelta(float delta, int range);

// (1 + mantissa / 2048) * 2^(range - exponent).
double stepOf(const QuantValue& quant, int range);

} // namespace jpeg2000

#endif
