// The argument checks of functions between interleaved pixels and planes.
#ifndef QOV_PLANESCHECK_H
#define QOV_PLANESCHECK_H

#include "check.h"
#include "kernels/planes.h"

namespace qov {

template <class T>
bool nullPlane(T* const* planes, int count)
{
    if (!planes) return true;
    for (int i = 0; i < count; i++)
        if (!planes[i]) return true;
    return false;
}

// A side of a picture as a caller gives it: interleaved pixels of so many elements, or planes.
template <class T>
struct Pixels {
    T* data;
    int step, elements;

    Pixels(T* p, int bytes, int count) : data(p), step(bytes), elements(count) {}
    bool isNull() const { return !data; }
    bool isShort(QoviSize roi) const { return shortStep(step, roi, elements * int(sizeof(T))); }
};

template <class T>
struct Planes {
    T* const* data;
    int step, count;

    Planes(T* const* p, int bytes, int planes) : data(p), step(bytes), count(planes) {}
    bool isNull() const { return nullPlane(data, count); }
    bool isShort(QoviSize roi) const { return shortStep(step, roi, sizeof(T)); }
};

// The kernel's call, or what is wrong with its arguments.
template <class Kernel, class Source, class Destination>
QovStatus convert(Kernel* kernel, const Source& src, const Destination& dst, QoviSize roi)
{
    if (src.isNull() || dst.isNull()) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (src.isShort(roi) || dst.isShort(roi)) return qovStsStep;
    kernel(src.data, src.step, dst.data, dst.step, roi);
    return qovStsNoErr;
}

inline QovStatus split(SplitPlanes* kernel, int channels, int planes, const Qov8u* pSrc, int srcStep,
                       Qov8u* const* pDst, int dstStep, QoviSize roi)
{
    return convert(kernel, Pixels(pSrc, srcStep, channels), Planes(pDst, dstStep, planes), roi);
}

inline QovStatus join(JoinPlanes* kernel, int channels, const Qov8u* const* pSrc, int srcStep, Qov8u* pDst,
                      int dstStep, QoviSize roi)
{
    return convert(kernel, Planes(pSrc, srcStep, channels), Pixels(pDst, dstStep, channels), roi);
}

} // namespace qov

#endif
