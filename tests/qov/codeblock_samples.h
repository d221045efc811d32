// Blocks of samples, signs in the top bit, for the tests of the code-block coder and decoder.
#ifndef TESTS_CODEBLOCK_SAMPLES_H
#define TESTS_CODEBLOCK_SAMPLES_H

#include "qov_testing.h"

#include <algorithm>
#include <bit>
#include <cmath>

typedef std::vector<Qov32u> CodeBlockSamples;

// Noise of all magnitudes, sparse spikes, a smooth hill, single samples, or the largest values, `bits` planes
// high.
inline CodeBlockSamples randomSamples(Random& random, QoviSize size, int bits)
{
    const int kind = random.in(0, 4), rareness = kind == 1 ? random.in(1, 40) : 300;
    const double width = random.in(1, 40), x0 = random.in(0, size.width), y0 = random.in(0, size.height);
    CodeBlockSamples samples;
    for (int y = 0; y < size.height; y++)
        for (int x = 0; x < size.width; x++) {
            const double wide = kind == 0   ? random.in(0, 1000) / 1000.0
                                : kind == 2 ? std::exp(-(std::abs(x - x0) + std::abs(y - y0)) / width)
                                : kind == 4 ? 1
                                            : random.oneIn(rareness);
            Qov32u magnitude = Qov32u(std::min(std::ldexp(wide, bits), std::ldexp(1.0, bits) - 1));
            if (kind == 0 && random.oneIn(2)) magnitude >>= random.in(0, bits);
            samples.push_back(magnitude | Qov32u(random.in(0, 1)) << 31);
        }
    return samples;
}

inline int bitsOf(const CodeBlockSamples& samples)
{
    Qov32u all = 0;
    for (Qov32u sample : samples) all |= sample & 0x7FFFFFFF;
    return int(std::bit_width(all));
}

// Mostly of any size up to 64, some of the longest, up to `across` the other way.
inline QoviSize randomBlockSize(Random& random, int across)
{
    const int along = random.in(1, 1024), other = random.in(1, across);
    switch (random.in(0, 9)) {
    case 0: return {along, other};
    case 1: return {other, along};
    default: return {random.in(1, 64), random.in(1, 64)};
    }
}

#endif
