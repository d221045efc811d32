// Constants of the integer 8x8 DCT (ITU-T T.81, A.3.3).
//
// One pass of 8 values is scaled by sqrt(8) against the orthonormal one, as Loeffler, Ligtenberg and Moschytz
// have it: its factors are 1 and sqrt(2) cos(k pi/16). So two passes give 8 times the coefficient or sample,
// and what is exact in the standard (DC, and every coefficient with u and v in {0, 4}) stays exact.
#ifndef QOV_KERNELS_DCTCONST_H
#define QOV_KERNELS_DCTCONST_H

namespace qov {

// sqrt(2) cos(k pi/16), also for the floating-point transforms.
static constexpr double dctCos[8] = {
    1.41421356237309505,  1.38703984532214746,  1.30656296487637653, 1.17587560241935872, 1.0,
    0.785694958387102181, 0.541196100146196985, 0.275899379282943012};

// Factor k with `bits` fraction bits, to nearest. At 14 bits all fit a signed word.
static constexpr int dctFactor(int k, int bits)
{
    return int(dctCos[k] * (1 << bits) + 0.5);
}

} // namespace qov

#endif
