// What the suites of wavelets share: their samples, and images with a border round the region that a function
// works on. Included once by each unit; all of it has internal linkage, as in qovjsuite.h.
#ifndef QOVJ_WAVELETSUITE_H
#define QOVJ_WAVELETSUITE_H

#include "qovi.h"
#include "qovj_main.h"
#include "qovjsuite.h"

namespace {

// Samples of 8 bits, their level shifted: one transform of them stays within 16 bits.
const double leastSample = -128.0;
const double mostSample = 127.0;

// What a function reads is `random`, what it writes zero.
[[maybe_unused]] bool createSamples(qdImage& image, QoviSize size, bool random)
{
    const SetMode mode = random ? SET_RANDOM : SET_ZERO;
    return image.createVectorExt(size, qkGetVectorShift(), mode, leastSample, mostSample);
}

// Samples that are read beside a region, along the filtered direction.
struct Border {
    int before = 0;
    int behind = 0;
};

// Of the image and of its two halves. What a function writes has none.
struct Borders {
    Border full, low, high;
};

[[maybe_unused]] Borders bordersOf(const qkString& function)
{
    const bool longFilter = function.contains("D97");
    if (function.contains("Fwd")) return {longFilter ? Border{4, 3} : Border{2, 1}, {}, {}};
    if (longFilter) return {{}, {1, 2}, {2, 2}};
    return {{}, {0, 1}, {1, 1}};
}

// The pointers are those of the region's first sample; only that of the image's type is set.
struct BorderedImage {
    qdImage image;
    Qov16s* m_16s = nullptr;
    Qov32s* m_32s = nullptr;
    Qov32f* m_32f = nullptr;
    int step = 0; // bytes

    // Both the region and its border get samples.
    bool create(QoviSize region, Border alongX, Border alongY, bool random)
    {
        const QoviSize size{qdjCount(region.width + 0LL + alongX.before + alongX.behind),
                            qdjCount(region.height + 0LL + alongY.before + alongY.behind)};
        if (!createSamples(image, size, random)) return false;
        void* const first = image.getPointerAt(alongX.before, alongY.before, 0);
        if (image.m_16s) m_16s = static_cast<Qov16s*>(first);
        if (image.m_32s) m_32s = static_cast<Qov32s*>(first);
        if (image.m_32f) m_32f = static_cast<Qov32f*>(first);
        step = image.m_step;
        return true;
    }

    void release()
    {
        image.deleteVector();
        m_16s = nullptr;
        m_32s = nullptr;
        m_32f = nullptr;
    }
};

} // namespace

#endif
