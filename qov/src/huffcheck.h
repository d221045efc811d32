// What the public Huffman functions share: the insides of the opaque blocks, and the checks of arguments.
#ifndef QOV_HUFFCHECK_H
#define QOV_HUFFCHECK_H

#include "check.h"
#include "kernels/jhuffdec.h"
#include "kernels/jhuffenc.h"
#include "qovihuffman.h"

namespace qov {

inline HuffEncSpec* inside(QoviEncodeHuffmanSpec* spec)
{
    return reinterpret_cast<HuffEncSpec*>(spec);
}
inline const HuffEncSpec* inside(const QoviEncodeHuffmanSpec* spec)
{
    return reinterpret_cast<const HuffEncSpec*>(spec);
}
inline HuffEncState* inside(QoviEncodeHuffmanState* state)
{
    return reinterpret_cast<HuffEncState*>(state);
}
inline HuffDecSpec* inside(QoviDecodeHuffmanSpec* spec)
{
    return reinterpret_cast<HuffDecSpec*>(spec);
}
inline const HuffDecSpec* inside(const QoviDecodeHuffmanSpec* spec)
{
    return reinterpret_cast<const HuffDecSpec*>(spec);
}
inline HuffDecState* inside(QoviDecodeHuffmanState* state)
{
    return reinterpret_cast<HuffDecState*>(state);
}

template <class... Block>
bool marked(const Block*... blocks)
{
    return (... && (blocks->mark == Block::markValue));
}

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
