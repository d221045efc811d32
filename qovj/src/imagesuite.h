// The design that suites of functions from one image to another share. Included once by each unit; all of it
// has internal linkage, as in qovjsuite.h.
#ifndef QOVJ_IMAGESUITE_H
#define QOVJ_IMAGESUITE_H

#include "qovj_main.h"
#include "qovjsuite.h"

namespace {

qdImage pSrc, pDst;
int srcStep, dstStep;

class ImageTest : public qdTest {
public:
    using qdTest::qdTest;
    ~ImageTest() override = default;

    bool canStart() override
    {
        pSrc.init(m_func, qdArgSrc);
        pDst.init(m_func, qdArgDst);
        return true;
    }

    void flushData() override
    {
        pSrc.deleteVector();
        pDst.deleteVector();
    }

protected:
    static void takeSteps()
    {
        srcStep = pSrc.m_step;
        dstStep = pDst.m_step;
    }

    // Random numbers, and zeros for the destination, which lies apart in the cache.
    static bool createImages(QoviSize size)
    {
        const int shift = qkGetVectorShift();
        if (!pSrc.createImageExt(size, 0, shift, SET_RANDOM, 0, 0)) return false;
        if (!pDst.createImageExt(size, 4 * shift, shift, SET_ZERO, 0, 0)) return false;
        takeSteps();
        return true;
    }
};

[[maybe_unused]] QoviSize size;

// Of every common image size.
class SizedImageTest : public ImageTest {
public:
    using ImageTest::ImageTest;
    ~SizedImageTest() override = default;

    bool canStart() override
    {
        regCacheParm(g_imageSize, pDst, nullptr);
        return ImageTest::canStart();
    }

    bool initData() override
    {
        size = g_imageSize.value();
        return createImages(size);
    }
};

} // namespace

#endif
