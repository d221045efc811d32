// The argument checks that the public functions share.
#ifndef QOV_CHECK_H
#define QOV_CHECK_H

#include "qovdefs.h"

namespace qov {

inline bool emptySize(QoviSize size)
{
    return size.width < 1 || size.height < 1;
}

template <class... Pointer>
bool anyNull(const Pointer*... p)
{
    return (... || !p);
}

// Is a step (bytes) shorter than a row of `width` pixels? With a single row no step is looked at.
inline bool shortStep(int step, QoviSize size, int bytesPerPixel)
{
    return size.height > 1 && step < Qov64s(size.width) * bytesPerPixel;
}

} // namespace qov

#endif
