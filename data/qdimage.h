// qdImage: a typed two-dimensional buffer, either one block of interleaved pixels with a row step, or up to
// four planes with a buffer each. Layout and channel count come from the channel word of its function
// descriptor.
#ifndef QD_IMAGE_H
#define QD_IMAGE_H

#include "qdvector.h"

class qdImage : public qdVector {
public:
    static constexpr int maxPlanes = 4;

    qdImage() {}
    qdImage(qdType type, int channels, bool planar) { init(type, channels, planar); }
    qdImage(const qdFunc& func, int index) : qdVector(func, index) {}
    qdImage(const qdFunc& func, qdArg arg) : qdVector(func, arg) {}

    int objectSize() const override; // without the padding between rows
    qkString objectInfo() const override;
    bool reserveCopy() override;
    bool setReservedCopy() override;
    ~qdImage() override;
    void deleteVector() override;
    using qdVector::setConst;
    void setConst(double re, double im) override;
    void setConst_64s(long long re, long long im) override;
    using qdVector::setJaehne;
    void setJaehne(double magn) override;
    // Each row starts at a again. The form without a step falls by b - a from element to element: an image
    // has no length to divide by.
    using qdVector::setSequence;
    void setSequence(double a, double b, double step, bool wrap) override;
    using qdVector::setRandom;
    void setRandom(double a, double b) override;
    qkString getString() const override;
    int size() const override; // bytes, with the padding between rows
    using qdVector::getIndex;
    using qdVector::setIndex;
    virtual void setImageAt(int x, int y, int c, double re, double im);
    virtual void getImageAt(int x, int y, int c, double& re, double& im) const;
    virtual double getImageAt(int x, int y, int c) const;
    virtual int numItems() const;       // pixels times channels
    virtual int numActualItems() const; // without an alpha channel
    virtual void setIndex(int x, int y, int c, SetMode mode, double a, double b);
    virtual void getIndex(int x, int y, int c, double& re, double& im) const;
    virtual double getIndex(int x, int y, int c) const;

    using qdVector::init;
    void init(qdType type, int channels, bool planar);
    // "C3", "P2"; four channels are three and alpha: "AC4".
    static qkString channelString(int channels, bool planar);

    // What a descriptor text says of layout and channels; the actual ones are those but alpha.
    static bool isPlane(const qdFunc& func);
    static int numChannels(const qdFunc& func);
    static int numActualChannels(const qdFunc& func);
    bool planar() const { return isPlane(m_func); }
    int channels() const { return numChannels(m_func); }

    // Allocates and fills with the default constant. A `step` too small for a row means the row's bytes
    // rounded up to a multiple of 16, a negative `align` the session's alignment; with `planeAlign` it
    // applies to the first plane only. False, after a message, if that fails.
    bool createImage(QovSize size, int step = -1, int align = -1, bool planeAlign = false);
    bool createImage(int w, int h, int step = -1, int align = -1, bool planeAlign = false);
    // The same with default step and alignment, and filled. Step and align are accepted for the callers that
    // hand over the mutual shift of their buffers; rows can be longer than that.
    bool createImageExt(QovSize size, int step, int align, SetMode mode, double a = 0, double b = 0);
    bool createImageExt(int w, int h, int step, int align, SetMode mode, double a = 0, double b = 0);
    bool createVector(QovSize size, SetMode mode, double a = 0, double b = 0);
    bool createVector(int w, int h, SetMode mode, double a = 0, double b = 0);
    bool createVectorExt(QovSize size, int align, SetMode mode, double a = 0, double b = 0);
    bool createVectorExt(int w, int h, int align, SetMode mode, double a = 0, double b = 0);

    // Becomes the picture of a BMP file, whatever it was before.
    bool loadImage(const qkString& name, int align);
    // Whether a file's picture would be of this image's kind: interleaved bytes, or no kind yet.
    bool canLoadImage() const;

    QovSize imageSize() const { return {m_width, m_height}; }
    void* getRowPointer(int row) const; // planes follow one another; on a created image only
    int getNumRows() const;
    int getRowLen() const; // elements
    using qdVector::getPointerAt;
    void* getPointerAt(int x, int y, int c) const;
    // For planes that lie one after the other in one buffer: finds them. False for an interleaved image.
    bool setPlaneArray();

    int m_width = 0; // pixels
    int m_height = 0;
    int m_step = 0;              // bytes from row to row
    qdVector m_plane[maxPlanes]; // planar layout only
    void* m_planePtr[maxPlanes] = {};

    // m_planes_8u, ...: the planes as pointers to their elements; null for all types but the image's own. The
    // single pointers (m_8u, ...) are those of plane 0.
#define QD_POINTERS(name, part, code) Qov##name* m_planes_##name[maxPlanes] = {};
    QD_TYPES(QD_POINTERS)
#undef QD_POINTERS

protected:
    void setPlanePtrs();

private:
    template <class Fill>
    void forEachRow(Fill fill);
    bool createPlanes(int step, int h, int align, bool planeAlign);
    long long rowBytes(int w) const;
    long long defaultStep(int w) const;
    int step() const;
    void setPlaneJaehne(void* p, int stride, double magn);
};

#endif
