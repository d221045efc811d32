// Images: views (data and row distance) and the classes that own their storage.
#ifndef JPEG2000_IMAGE_H
#define JPEG2000_IMAGE_H

#include "diagn.h"
#include "fixedbuffer.h"
#include "geometry.h"

#include "qovi.h"

namespace jpeg2000 {

template <class T>
struct ImageCore {
    T* data = nullptr;
    unsigned step = 0; // bytes from row to row

    T* row(unsigned y) const { return addrAdd(data, static_cast<ptrdiff_t>(y) * step); }
    // The view that begins at (x, y).
    ImageCore at(unsigned x, unsigned y) const { return {row(y) + x, step}; }
};

// nOfChannels interleaved channels.
template <class T, unsigned nOfChannels>
struct ImageCoreC : ImageCore<T> {
    ImageCoreC() = default;
    ImageCoreC(T* first, unsigned rowStep) : ImageCore<T>{first, rowStep} {}
    ImageCoreC(const ImageCore<T>& core) : ImageCore<T>(core) {}
};

// Storage with rows of nOfChannels * width elements; null, where the size does not fit an int or there is no
// memory. It goes back by qoviFree.
template <class T>
T* ImageAllocC(unsigned width, unsigned height, unsigned& step, unsigned nOfChannels)
{
    const unsigned long long rowBytes = 1ull * nOfChannels * width * sizeof(T);
    step = 0;
    if (rowBytes > 0x7FFFFFFF || height > 0x7FFFFFFF) return nullptr;
    int stepBytes = 0;
    Qov8u* data = qoviMalloc_8u_C1(static_cast<int>(rowBytes), static_cast<int>(height), &stepBytes);
    if (data) step = static_cast<unsigned>(stepBytes);
    return reinterpret_cast<T*>(data);
}

template <class T>
T* ImageAllocP(unsigned width, unsigned height, unsigned& step, unsigned nOfPlanes)
{
    const unsigned long long rows = 1ull * height * nOfPlanes;
    step = 0;
    return rows > 0x7FFFFFFF ? nullptr : ImageAllocC<T>(width, static_cast<unsigned>(rows), step, 1);
}

// An owned image of one channel. Its samples are not cleared.
template <class T, unsigned nOfChannels>
class ImageC : public ImageCoreC<T, nOfChannels> {
public:
    RectSize size;

    ImageC() = default;
    ImageC(const ImageC&) = delete;
    ImageC& operator=(const ImageC&) = delete;
    ~ImageC() { Free(); }

    // Without an area nothing is allocated. Free first what is held.
    void Alloc(unsigned width, unsigned height)
    {
        size = {width, height};
        this->data = nullptr;
        this->step = 0;
        if (width == 0 || height == 0) return;
        this->data = ImageAllocC<T>(width, height, this->step, nOfChannels);
        if (!this->data) fail<MemoryException{0}>();
    }
    void Free()
    {
        qoviFree(this->data);
        this->data = nullptr;
        this->step = 0;
        size = {};
    }
    void Swap(ImageC& other)
    {
        std::swap(this->data, other.data);
        std::swap(this->step, other.step);
        std::swap(size, other.size);
    }
    // Takes over the storage of an image of another type of element, of the same size: the memory holds other
    // numbers now.
    template <class U>
    void TakeStorage(ImageC<U, nOfChannels>& other)
    {
        static_assert(sizeof(U) == sizeof(T));
        Free();
        this->data = reinterpret_cast<T*>(std::exchange(other.data, nullptr));
        this->step = std::exchange(other.step, 0u);
        size = std::exchange(other.size, {});
    }
};

// Planes with one row distance.
template <class T>
struct ImageCorePn {
    FixedBuffer<T*> data;
    unsigned step = 0, nOfPlanes = 0;

    ImageCorePn() = default;
    ImageCorePn(const ImageCorePn& other) { *this = other; }
    ImageCorePn& operator=(const ImageCorePn& other)
    {
        if (this == &other) return *this;
        step = other.step;
        nOfPlanes = other.nOfPlanes;
        SetData(other.data);
        return *this;
    }
    void SetData(T* const* planes)
    {
        data.Free();
        data.Alloc(nOfPlanes);
        for (unsigned i = 0; i < nOfPlanes; i++) data[i] = planes[i];
    }
    ImageCoreC<T, 1u> plane(unsigned i) const { return {data[i], step}; }
};

// An owned planar image: one allocation, plane i at row i * height.
template <class T>
class ImagePn : public ImageCorePn<T> {
public:
    RectSize size;

    ImagePn() = default;
    ImagePn(const ImagePn&) = delete;
    ImagePn& operator=(const ImagePn&) = delete;
    ~ImagePn() { Free(); }

    void Alloc(unsigned width, unsigned height, unsigned planes)
    {
        size = {width, height};
        this->nOfPlanes = planes;
        this->step = 0;
        this->data.Alloc(planes);
        if (width == 0 || height == 0 || planes == 0) return;
        const ImageCore<T> all{ImageAllocP<T>(width, height, this->step, planes), this->step};
        if (!all.data) fail<MemoryException{0}>();
        for (unsigned i = 0; i < planes; i++)
            this->data[i] = ImageCore<T>{all.data, this->step}.row(i * height);
    }
    void Free()
    {
        if (this->nOfPlanes > 0) qoviFree(this->data[0]);
        this->data.Free();
        this->step = this->nOfPlanes = 0;
        size = {};
    }
};

} // namespace jpeg2000

#endif
