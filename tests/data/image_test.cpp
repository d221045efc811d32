#include "qdimage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "fill_cases.h"
#include "fill_expected.h"
#include "qkparm.h"
#include "qktest.h"
#include "support/capture.h"

using std::string;

namespace {

class Image : public testing::Test {
protected:
    Image()
    {
        qkTest::m_vectorNum = qkTest::m_vectorShift = 0;
        qdVector::m_seed = 456;
    }
};

// Rows without their padding.
Digest digestOf(const qdImage& image)
{
    Digest digest;
    for (int row = 0; row < image.getNumRows(); row++)
        digest.add(image.getRowPointer(row), image.getRowLen() * qdVector::item(image.func()));
    return digest;
}

} // namespace

// ---- Layout

TEST_F(Image, StepAndSizes)
{
    struct {
        qdType type;
        int channels;
        bool planar;
        int step; // asked for
        int realStep, rows, rowLen, size, objectSize, items, actualItems;
    } const cases[] = {
        // 5 by 2 pixels
        {qd8u, 1, false, -1, 16, 2, 5, 32, 10, 10, 10},
        {qd8u, 3, false, 0, 16, 2, 15, 32, 30, 30, 30},
        {qd8u, 4, false, -1, 32, 2, 20, 64, 40, 40, 30},
        {qd16s, 3, true, -1, 16, 6, 5, 96, 60, 30, 30},
        {qd32fc, 2, false, -1, 80, 2, 10, 160, 160, 20, 20},
        {qd16s, 1, false, 11, 11, 2, 5, 22, 20, 10, 10},
        {qd16s, 4, true, 11, 11, 8, 5, 88, 80, 40, 30},
        {qd16s, 1, false, 9, 16, 2, 5, 32, 20, 10, 10}, // too small for a row
    };
    for (const auto& c : cases) {
        qdImage image(c.type, c.channels, c.planar);
        ASSERT_TRUE(image.createImage(5, 2, c.step));
        EXPECT_EQ(image.m_step, c.realStep);
        EXPECT_EQ(image.getNumRows(), c.rows);
        EXPECT_EQ(image.getRowLen(), c.rowLen);
        EXPECT_EQ(image.size(), c.size);
        EXPECT_EQ(image.objectSize(), c.objectSize);
        EXPECT_EQ(image.numItems(), c.items);
        EXPECT_EQ(image.numActualItems(), c.actualItems);
        EXPECT_EQ(image.m_len, 0);
        EXPECT_FLOAT_EQ(float(image.getImageAt(4, 1, c.channels - 1)), float(image.getDataConst()));
    }
}

TEST_F(Image, LayoutComesFromTheFunction)
{
    const qdFunc func("qoviRGBToYCbCr_JPEG_8u16s_AC4P3R");
    qdImage src(func, qdArgSrc), dst;
    dst.init(func, 2);
    ASSERT_TRUE(src.createImage(4, 3) && dst.createImage({4, 3}));
    EXPECT_STREQ(src.objectInfo().c_str(), "Image 8u_AC4 size=4x3");
    EXPECT_STREQ(dst.objectInfo().c_str(), "Image 16s_P3 size=4x3");
    EXPECT_FALSE(src.planar());
    EXPECT_TRUE(dst.planar());
    EXPECT_STREQ(qdImage::channelString(4, true).c_str(), "AP4");
    EXPECT_EQ(qdImage::numActualChannels("qoviF_8u_AC4R"), 3);
    EXPECT_EQ(qdImage::numChannels("qoviF_8u_AC4R"), 4);
    EXPECT_EQ(qdImage::numChannels("qoviF_8u_R"), 1);
}

TEST_F(Image, PlanesAreBuffersOfTheirOwn)
{
    qdImage image(qd16s, 3, true);
    ASSERT_TRUE(image.createImage(4, 5));
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(image.m_planes_16s[i], image.m_planePtr[i]);
        EXPECT_EQ(image.getRowPointer(i * 5 + 2), static_cast<char*>(image.m_planePtr[i]) + 2 * image.m_step);
        EXPECT_EQ(image.getPointerAt(3, 2, i), image.m_planes_16s[i] + image.m_step + 3);
        void* owner = nullptr;
        ASSERT_TRUE(qkMallocInfo(image.m_planePtr[i], nullptr, &owner));
        EXPECT_EQ(owner, i == 0 ? static_cast<qkObject*>(&image) : MEM_OBJECT_IS_SUBOBJECT);
    }
    EXPECT_EQ(image.m_16s, image.m_planes_16s[0]);
    EXPECT_EQ(image.m_planes_16s[3], nullptr);
    EXPECT_EQ(image.m_planes_16u[0], nullptr);
    EXPECT_EQ(qkTest::m_vectorNum, 1) << "the planes count as one vector";
    void* const old = image.m_planePtr[1];
    image.deleteVector();
    EXPECT_FALSE(qkMallocInfo(old, nullptr, nullptr));
    EXPECT_EQ(image.m_planes_16s[0], nullptr);
    EXPECT_EQ(image.m_data, nullptr);
    EXPECT_EQ(image.m_width, 0);
}

TEST_F(Image, AlignmentOfPlanes)
{
    qdImage image(qd8u, 2, true);
    for (bool firstOnly : {false, true}) {
        ASSERT_TRUE(image.createImage(4, 4, -1, 7, firstOnly));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(image.m_planePtr[0]) % 64, 7u);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(image.m_planePtr[1]) % 64, firstOnly ? 0u : 7u);
    }
}

TEST_F(Image, PlanesInOneBlockAreFound)
{
    qdImage image(qd8u, 3, true);
    ASSERT_TRUE(image.allocateVector(3 * 16 * 2, 0, nullptr));
    image.m_width = 9;
    image.m_height = 2;
    image.m_step = 16;
    ASSERT_TRUE(image.setPlaneArray());
    EXPECT_EQ(image.m_planes_8u[2], static_cast<Qov8u*>(image.m_data) + 64);
    image.setConst(3, 0);
    EXPECT_EQ(image.getImageAt(8, 1, 2), 3);
    EXPECT_FALSE(qdImage(qd8u, 3, false).setPlaneArray());
}

TEST_F(Image, InterleavedElements)
{
    qdImage image(qd16sc, 2, false);
    ASSERT_TRUE(image.createImage(3, 2));
    EXPECT_EQ(image.getPointerAt(2, 1, 1), static_cast<char*>(image.m_data) + image.m_step + 5 * 4);
    image.setImageAt(2, 1, 1, 7, 8);
    image.setIndex(0, 0, 1, SET_ONE, 0, 0);
    double re, im;
    image.getIndex(2, 1, 1, re, im);
    EXPECT_TRUE(re == 7 && im == 8);
    EXPECT_EQ(image.m_16sc[1].re, 1);
    EXPECT_EQ(image.getIndex(1), 1) << "the flat index counts from the first pixel";
}

// Suites hand over the mutual shift of their buffers as step and align; rows can be longer than that.
TEST_F(Image, ExtendedFormTakesDefaultStep)
{
    qdImage image(qd16u, 3, false);
    ASSERT_TRUE(image.createImageExt({720, 3}, 4 * 512, 512, SET_ZERO));
    EXPECT_EQ(image.m_step, 4320);
    EXPECT_EQ(image.getImageAt(719, 2, 2), 0);
}

TEST_F(Image, RefusesWhatCannotBeAllocated)
{
    struct {
        qdType type;
        int channels;
        bool planar;
        int w, h;
        const char* bytes;
        int step = -1;
    } const cases[] = {
        {qd8u, 1, false, 0, 5, "0"},
        {qd8u, 1, false, 5, 0, "0"},
        {qd8u, 1, false, -16, -16, "0"},
        {qd8u, 1, false, 200000, 200000, "40000000000"},
        {qd8u, 3, true, 30000, 30000, "2700000000"}, // each plane would do
        {qd64fc, 4, false, 0x7FFFFFFF, 0x7FFFFFFF, "9223372036854775807"},
        {qdUndef, 1, false, 8, 8, "0"},
        {qdUndef, 2, true, 8, 8, "0", 16},
    };
    for (const auto& c : cases) {
        LevelCapture out(g_ostrm);
        qdImage image(c.type, c.channels, c.planar);
        EXPECT_FALSE(image.createImage(c.w, c.h, c.step));
        EXPECT_EQ(out.take(), string("-- Memory error: can't allocate ") + c.bytes + " bytes\n");
        EXPECT_EQ(image.m_width, 0);
    }
}

// ---- Data

TEST_F(Image, FillsAreFixedToTheBit)
{
    for (const FillImageCase& c : imageCases) {
        qdImage image(c.type, c.channels, c.planar);
        ASSERT_TRUE(image.createImage(c.w, c.h));
        qdVector::m_seed = 456;
        if (c.fill == fillJaehne)
            image.setJaehne();
        else
            image.setVector(SET_RANDOM);
        const Digest digest = digestOf(image);
        EXPECT_EQ(digest.head(), c.head) << image.objectInfo().c_str() << " fill " << c.fill;
        EXPECT_EQ(digest.value(), c.digest) << image.objectInfo().c_str() << " fill " << c.fill;
        EXPECT_EQ(qdVector::m_seed, c.seed);
    }
}

TEST_F(Image, PaddingStaysAsItIs)
{
    qdImage image(qd8u, 3, false);
    ASSERT_TRUE(image.createImage(5, 4));
    std::memset(image.m_data, 0xAB, size_t(image.size()));
    image.setRandom();
    image.setJaehne();
    image.setMaxValue();
    image.setSequence(0, 10, 1, true);
    image.setConst();
    for (int y = 0; y < 4; y++) EXPECT_EQ(static_cast<Qov8u*>(image.getRowPointer(y))[15], 0xAB);
}

TEST_F(Image, RampsByRows)
{
    qdImage image(qd16s, 1, false);
    ASSERT_TRUE(image.createImage(3, 2));
    image.setSequence(20, 30); // no length to divide by: falls by the whole range
    EXPECT_STREQ(image.getString().c_str(), "     20     10      0\n     20     10      0");
    image.setVector(SET_SEQUENCE, 0, 512);
    EXPECT_STREQ(image.getString().c_str(), "      0      2      4\n      0      2      4");
    image.setVector(SET_SEQUENCE, 0, 10);
    EXPECT_STREQ(image.getString().c_str(), "      0      1      2\n      0      1      2");
}

TEST_F(Image, TextHasAnEmptyLineBetweenPlanes)
{
    qdImage image(qd8u, 2, true);
    EXPECT_STREQ(image.getString().c_str(), "");
    ASSERT_TRUE(image.createVector(1, 2, SET_CONST, 7));
    EXPECT_STREQ(image.getString().c_str(), "   7\n   7\n\n   7\n   7");
}

TEST_F(Image, NegativeJaehneFillsNothing)
{
    qdImage image(qd64s, 1, false);
    ASSERT_TRUE(image.createVector({3, 3}, SET_MAX));
    image.setJaehne(-1.0);
    EXPECT_EQ(*static_cast<Qov64s*>(image.getPointerAt(1, 1, 0)), INT64_MAX) << "exact";
}

TEST_F(Image, ReserveCopyKeepsAllPlanes)
{
    for (bool planar : {false, true}) {
        qdImage image(qd8u, 3, planar);
        EXPECT_FALSE(image.reserveCopy());
        ASSERT_TRUE(image.createVector(6, 5, SET_RANDOM));
        EXPECT_FALSE(image.setReservedCopy());
        const std::uint64_t before = digestOf(image).value();
        ASSERT_TRUE(image.reserveCopy());
        image.setConst(1, 0);
        EXPECT_NE(digestOf(image).value(), before);
        EXPECT_TRUE(image.setReservedCopy());
        EXPECT_EQ(digestOf(image).value(), before);
        image.deleteReservedCopy();
        EXPECT_FALSE(image.setReservedCopy());
    }
}

TEST_F(Image, EmptyImageTakesEveryFill)
{
    qdImage image(qd8u, 3, true);
    image.setVector(SET_RANDOM);
    image.setVector(SET_MAX);
    image.setJaehne();
    image.setImageAt(0, 0, 0, 1, 1);
    EXPECT_EQ(image.getImageAt(0, 0, 0), 0);
    EXPECT_EQ(image.getIndex(0), 0);
    EXPECT_EQ(image.size(), 0);
}

// ---- Text forms of sizes, points and rectangles

TEST(SizeText, ReadsWhatItPrints)
{
    struct {
        const char* text;
        bool fail;
        int width, height;
    } const cases[] = {
        {"640x480", false, 640, 480}, {"(640,480)", false, 640, 480}, {" { 640 x 480 } ", false, 640, 480},
        {"640 480", false, 640, 480}, {"0x20x1", true, 0, 20},        {"0x5", true, 0, 5},
        {"-8x8", true, -8, 8},        {"640", true, 640, 0},          {"", true, 0, 0},
        {"axb", true, 0, 0},          {"8x8\r", false, 8, 8},
    };
    for (const auto& c : cases) {
        qkString text(c.text);
        QovSize size = {1, 1};
        size << text;
        EXPECT_EQ(text.fail(), c.fail) << c.text;
        EXPECT_EQ(size.width, c.width) << c.text;
        EXPECT_EQ(size.height, c.height) << c.text;
    }
    qkString text;
    text << QovSize{640, 480};
    EXPECT_STREQ(text.c_str(), "640x480");
}

TEST(SizeText, PointsAndRectangles)
{
    qkString text;
    text << QovPoint{1, -2} << " " << QovRect{3, 4, 5, 6};
    EXPECT_STREQ(text.c_str(), "(1,-2) (3,4)5x6");

    qkString pointText("(1,-2)"), shortText("(7"), badText("(a,2)"), rectText("(3,4)5x6"), originText("{}");
    QovPoint point, shortPoint, badPoint;
    QovRect rect, origin;
    point << pointText;
    shortPoint << shortText;
    badPoint << badText;
    rect << rectText;
    origin << originText;
    EXPECT_TRUE(point.x == 1 && point.y == -2);
    EXPECT_TRUE(shortPoint.x == 7 && shortPoint.y == 0);
    EXPECT_TRUE(rect.x == 3 && rect.y == 4 && rect.width == 5 && rect.height == 6);
    EXPECT_FALSE(pointText.fail() || shortText.fail() || rectText.fail() || originText.fail());
    EXPECT_TRUE(badText.fail());
}

TEST(SizeText, IsWhatIteratorsOfSizesRead)
{
    qkIterator<QovSize> sizes("Size", "");
    sizes.translate("8x8; 64x32");
    EXPECT_EQ(sizes.count(), 2);
    EXPECT_STREQ(sizes.defaultString().c_str(), "8x8; 64x32");
    EXPECT_THROW(sizes.translate("8x8; 5x0"), qkException);
    EXPECT_STREQ(sizes.defaultString().c_str(), "8x8; 64x32");
}
