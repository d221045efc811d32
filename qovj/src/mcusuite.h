// The design that the suites of whole MCUs share. A test calls its function on a single MCU, so there is no
// size parameter.
#ifndef QOVJ_MCUSUITE_H
#define QOVJ_MCUSUITE_H

#include "imagesuite.h"

namespace {

// The side of blocks is planar: a plane holds the blocks of a component one by one.
class McuTest : public ImageTest {
public:
    using ImageTest::ImageTest;
    ~McuTest() override = default;

    bool initData() override { return createImages(getSize()); }

    // The samples of the MCU.
    double getDivisor() override
    {
        static const struct {
            int channels;
            const char* digits;
            double blocks;
        } mcus[] = {{3, "444", 3.0}, {3, "422", 4.0}, {3, "411", 6.0},
                    {4, "444", 4.0}, {4, "422", 6.0}, {4, "411", 10.0}};
        // A pair of Y and one of Cb and Cr are two channels on the side of pixels only.
        const int channels = pDst.planar() ? pDst.channels() : pSrc.channels();
        double samples = 64.0;
        for (const auto& mcu : mcus) {
            if (mcu.channels == channels && m_func.contains(mcu.digits)) samples *= mcu.blocks;
        }
        return samples;
    }

    qkString getUnit() override { return "pxch"; }

protected:
    virtual QoviSize getSize() const { return {16, 16}; } // enough for any MCU
};

} // namespace

#endif
