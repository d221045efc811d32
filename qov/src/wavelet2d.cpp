#include "qoviwavelet2d.h"

#include "check.h"
#include "wavelet2d_images.h"

using namespace qov;

namespace {

constexpr int longestSide = 1 << 15;

bool badSize(const QoviRect& rect)
{
    return rect.width < 1 || rect.height < 1 || rect.width > longestSide || rect.height > longestSide;
}
bool badPlace(const QoviRect& rect)
{
    return rect.x < 0 || rect.y < 0;
}

template <class T>
bool shortImage(int step, const QoviRect& rect)
{
    return shortStep(step, {rect.width, rect.height}, sizeof(T));
}

QoviSize sizeOfBand(const QoviRect& rect, int band)
{
    const Area area(rect);
    return {area.x.size(Half(band >> 1)), area.y.size(Half(band & 1))};
}

template <class T>
bool nullBand(const T* const data[4], const QoviRect& rect)
{
    for (int i = 0; i < 4; i++)
        if (!data[i] && !emptySize(sizeOfBand(rect, i))) return true;
    return false;
}
template <class T>
bool shortBand(const int step[4], const QoviRect& rect)
{
    for (int i = 0; i < 4; i++) {
        const QoviSize size = sizeOfBand(rect, i);
        if (!emptySize(size) && shortStep(step[i], size, sizeof(T))) return true;
    }
    return false;
}
// No address is formed in a band that is empty: it may be null.
template <class T>
Bands<T> bandsOf(T* const data[4], const int step[4], const QoviRect& rect)
{
    Bands<T> bands{};
    for (int i = 0; i < 4; i++)
        if (!emptySize(sizeOfBand(rect, i))) bands.band[i] = {data[i], step[i]};
    return bands;
}

typedef ptrdiff_t BufferBytes(const Area& area);
QovStatus bufferSize(BufferBytes* bytes, const QoviRect* rect, int* size)
{
    if (anyNull(rect, size)) return qovStsNullPtr;
    if (badSize(*rect)) return qovStsSize;
    if (badPlace(*rect)) return qovStsBadArg;
    *size = int(bytes(Area(*rect)));
    return qovStsNoErr;
}

template <class Filter, class T>
QovStatus forward(const Filter& filter, const T* src, int srcStep, const QoviRect* rect, T* const dst[4],
                  const int dstStep[4], Qov8u* buffer)
{
    if (anyNull(src, rect, dst, dstStep, buffer) || nullBand(dst, *rect)) return qovStsNullPtr;
    if (badSize(*rect)) return qovStsSize;
    if (shortImage<T>(srcStep, *rect) || shortBand<T>(dstStep, *rect)) return qovStsStep;
    if (badPlace(*rect)) return qovStsBadArg;
    analyseToBands(filter, Area(*rect), Plane<const T>{src, srcStep}, bandsOf(dst, dstStep, *rect), buffer);
    return qovStsNoErr;
}

template <class Filter, class T>
QovStatus inverse(const Filter& filter, const T* const src[4], const int srcStep[4], T* dst, int dstStep,
                  const QoviRect* rect, Qov8u* buffer)
{
    if (anyNull(src, srcStep, dst, rect, buffer) || nullBand(src, *rect)) return qovStsNullPtr;
    if (badSize(*rect)) return qovStsSize;
    if (shortBand<T>(srcStep, *rect) || shortImage<T>(dstStep, *rect)) return qovStsStep;
    if (badPlace(*rect)) return qovStsBadArg;
    synthesiseFromBands(filter, Area(*rect), bandsOf(src, srcStep, *rect), Plane<T>{dst, dstStep}, buffer);
    return qovStsNoErr;
}

template <class Filter, class T>
using InPlace = void(const Filter& filter, const Area& area, Plane<T> image, Qov8u* buffer);
template <class Filter, class T>
QovStatus inPlace(InPlace<Filter, T>* transform, const Filter& filter, T* image, int step,
                  const QoviRect* rect, Qov8u* buffer)
{
    if (anyNull(image, rect, buffer)) return qovStsNullPtr;
    if (badSize(*rect)) return qovStsSize;
    if (shortImage<T>(step, *rect)) return qovStsStep;
    if (badPlace(*rect)) return qovStsBadArg;
    transform(filter, Area(*rect), {image, step}, buffer);
    return qovStsNoErr;
}

} // namespace

#define QOV_KERNELS_B53(T)                                                                                   \
    B53<Qov##T>                                                                                              \
    {                                                                                                        \
        active.wavelet->rowB53_##T, active.wavelet->liftB53_##T                                              \
    }
#define QOV_KERNELS_D97(T)                                                                                   \
    D97<Qov##T>                                                                                              \
    {                                                                                                        \
        active.wavelet->rowD97_##T, active.wavelet->liftD97_##T, active.wavelet->scaleD97_##T                \
    }

#define QOV_TRANSFORMS(filter, T)                                                                            \
    QovStatus qoviWTGetBufSize_##filter##_JPEG2K_##T##_C1R(const QoviRect* pRect, int* pBufSize)             \
    {                                                                                                        \
        return bufferSize(bandsBufferBytes<Qov##T>, pRect, pBufSize);                                        \
    }                                                                                                        \
    QovStatus qoviWTGetBufSize_##filter##_JPEG2K_##T##_C1IR(const QoviRect* pRect, int* pBufSize)            \
    {                                                                                                        \
        return bufferSize(inPlaceBufferBytes<Qov##T>, pRect, pBufSize);                                      \
    }                                                                                                        \
    QovStatus qoviWTFwd_##filter##_JPEG2K_##T##_C1R(const Qov##T* pSrc, int srcStep, const QoviRect* pRect,  \
                                                    Qov##T* const pDst[4], const int dstStep[4],             \
                                                    Qov8u* pBuffer)                                          \
    {                                                                                                        \
        return forward(QOV_KERNELS_##filter(T), pSrc, srcStep, pRect, pDst, dstStep, pBuffer);               \
    }                                                                                                        \
    QovStatus qoviWTInv_##filter##_JPEG2K_##T##_C1R(const Qov##T* const pSrc[4], const int srcStep[4],       \
                                                    Qov##T* pDst, int dstStep, const QoviRect* pRect,        \
                                                    Qov8u* pBuffer)                                          \
    {                                                                                                        \
        return inverse(QOV_KERNELS_##filter(T), pSrc, srcStep, pDst, dstStep, pRect, pBuffer);               \
    }                                                                                                        \
    QovStatus qoviWTFwd_##filter##_JPEG2K_##T##_C1IR(Qov##T* pSrcDst, int step, const QoviRect* pRect,       \
                                                     Qov8u* pBuffer)                                         \
    {                                                                                                        \
        return inPlace(analyseInPlace<filter<Qov##T>, Qov##T>, QOV_KERNELS_##filter(T), pSrcDst, step,       \
                       pRect, pBuffer);                                                                      \
    }                                                                                                        \
    QovStatus qoviWTInv_##filter##_JPEG2K_##T##_C1IR(Qov##T* pSrcDst, int step, const QoviRect* pRect,       \
                                                     Qov8u* pBuffer)                                         \
    {                                                                                                        \
        return inPlace(synthesiseInPlace<filter<Qov##T>, Qov##T>, QOV_KERNELS_##filter(T), pSrcDst, step,    \
                       pRect, pBuffer);                                                                      \
    }
QOV_TRANSFORMS(B53, 16s)
QOV_TRANSFORMS(B53, 32s)
QOV_TRANSFORMS(D97, 16s)
QOV_TRANSFORMS(D97, 32s)
