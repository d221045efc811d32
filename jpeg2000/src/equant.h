// Quantisation in the encoder: the steps of a component's bands, and the bands brought to whole indices.
#ifndef JPEG2000_EQUANT_H
#define JPEG2000_EQUANT_H

#include "cmdoptions.h"
#include "quant.h"
#include "sbtree.h"

namespace jpeg2000 {

// Reversible, and irreversible with steps of 1: exponents of the depth and the band's gain. Derived: the
// options' pair for the deepest bands, exponents one lower with each finer level.
void fillQuantComponent(const CmdOptions& options, unsigned nOfLevels, int bits, QuantComponent& quant);

// Divides the bands by their steps, where these are derived (a band's gain is not part of its step), rounds
// them to nearest and hands their storage over to `indices`.
void quantise(SBTree<float>& bands, const QuantComponent& quant, bool isDerived, int bits,
              SBTree<int>& indices);

} // namespace jpeg2000

#endif
