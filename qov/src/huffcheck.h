// The argument checks that Huffman encoders and decoders share.
#ifndef QOV_HUFFCHECK_H
#define QOV_HUFFCHECK_H

#include "check.h"

namespace qov {

// A position outside a buffer, whose end is allowed; length not negative.
inline bool badPosition(int pos, int length)
{
    return Qov32u(pos) > Qov32u(length);
}

inline bool badShift(int al)
{
    return Qov32u(al) > 13;
}

inline bool badBand(int ss, int se, int al)
{
    return ss < 1 || ss > se || se > 63 || badShift(al);
}

} // namespace qov

#endif
