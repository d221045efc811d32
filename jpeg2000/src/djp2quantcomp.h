// What QCD and QCC say about the quantiser steps of a component (ITU-T T.800, A.6.4).
#ifndef JPEG2000_DJP2QUANTCOMP_H
#define JPEG2000_DJP2QUANTCOMP_H

#include "diagn.h"
#include "quant.h"

namespace jpeg2000 {

enum class JP2QuantMode : int { none, derived, expounded };

struct DJP2QuantComp {
    BDiagnOutputPtr sink;
    JP2QuantMode mode = JP2QuantMode::none;
    QuantValue ll;
    FixedBuffer<QuantTriplet> triplets; // as the stream has them: index 0 is the deepest level
    QuantValue derived;
    unsigned nOfGuardBits = 0;
    unsigned nOfTriplets = 0;

    // From Sqcd to the end of the innermost limit.
    template <class Input>
    void Read(Input& input);

    // The steps of a component with nOfLevels levels. The header is shared by components with different
    // levels, so it stays as it was read. Fails when it has fewer steps than the component has bands.
    void Conform(unsigned nOfLevels, QuantComponent& quant) const;

    void Reset();

private:
    template <class Input>
    void ReadQuantMode(Input& input);
    template <class Input>
    void ReadExpounded(Input& input);
    template <class Input>
    void ReadNoQuant(Input& input);
    template <class Input, class ReadValue>
    void readBands(Input& input, unsigned bytesPerBand, ReadValue readValue);
};

} // namespace jpeg2000

#endif
