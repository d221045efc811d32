// The byte that tells how deep the samples of a component are (Ssiz of the codestream, BPC of the file).
#ifndef JPEG2000_JP2BITSPERCOMP_H
#define JPEG2000_JP2BITSPERCOMP_H

namespace jpeg2000 {

struct JP2BitsPerComp {
    unsigned char value = 0; // bit 7: signed; bits 0 to 6: bit depth less one

    bool IsSigned() const { return (value & 128) != 0; }
    unsigned BitDepth() const { return (value & 127) + 1u; }

    // What centres the samples on zero (T.800, G.1). Depths of up to 128 bits can be told, but samples have
    // 32 bits: beyond 31 bits the shift stays at 2^30.
    int LevelShift() const
    {
        const unsigned order = value & 127;
        if (IsSigned()) return 0;
        return 1 << (order < 30 ? order : 30);
    }
};

} // namespace jpeg2000

#endif
