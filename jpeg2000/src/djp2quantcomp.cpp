#include "djp2quantcomp.h"

#include "boundedinput.h"

namespace jpeg2000 {

namespace {

QuantValue unpackQuant(unsigned value)
{
    return {static_cast<int>(value & 0x7FF), static_cast<int>(value >> 11)};
}

} // namespace

template <class Input>
void DJP2QuantComp::Read(Input& input)
{
    ReadQuantMode(input);
    switch (mode) {
    case JP2QuantMode::derived: derived = unpackQuant(input.Read16u()); break;
    case JP2QuantMode::expounded: ReadExpounded(input); break;
    case JP2QuantMode::none: ReadNoQuant(input); break;
    }
}

template <class Input>
void DJP2QuantComp::ReadQuantMode(Input& input)
{
    const unsigned style = input.Read8u();
    nOfGuardBits = style >> 5;
    if ((style & 31) > 2)
        warn<DJP2CSWarning{0}>(sink);
    else
        mode = static_cast<JP2QuantMode>(style & 31);
}

template <class Input>
void DJP2QuantComp::ReadExpounded(Input& input)
{
    readBands(input, 2, [&input] { return unpackQuant(input.Read16u()); });
}

// The byte is the exponent's half of the two-byte form.
template <class Input>
void DJP2QuantComp::ReadNoQuant(Input& input)
{
    readBands(input, 1, [&input] { return QuantValue{0, input.Read8u() >> 3}; });
}

template <class Input, class ReadValue>
void DJP2QuantComp::readBands(Input& input, unsigned bytesPerBand, ReadValue readValue)
{
    ll = readValue();
    nOfTriplets = input.bytesLeft() / (3 * bytesPerBand);
    triplets.Alloc(nOfTriplets);
    for (unsigned i = 0; i < nOfTriplets; i++) {
        triplets[i].hl = readValue();
        triplets[i].lh = readValue();
        triplets[i].hh = readValue();
    }
}

void DJP2QuantComp::Conform(unsigned nOfLevels, QuantComponent& quant) const
{
    const bool isDerived = mode == JP2QuantMode::derived;
    if (!isDerived && nOfLevels > nOfTriplets) fail<DJP2CSException{7}>();
    quant.ll = isDerived ? derived : ll;
    quant.triplets.Free();
    quant.triplets.Alloc(nOfLevels);
    QuantValue value = derived;
    for (unsigned i = nOfLevels; i-- > 0; value.exponent--)
        quant.triplets[i] = isDerived ? QuantTriplet{value, value, value} : triplets[nOfLevels - 1 - i];
}

void DJP2QuantComp::Reset()
{
    mode = JP2QuantMode::none;
    ll = derived = {};
    triplets.Free();
    nOfGuardBits = nOfTriplets = 0;
}

template void DJP2QuantComp::Read(MemoryBoundedInputBE&);

} // namespace jpeg2000
