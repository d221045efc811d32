// From bitmaps to files: which rows are read, what the boxes tell, and when there is no file.
#include "codec_testing.h"
#include "dibread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace jpeg2000;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

std::vector<int> rowOf(const ImagePn<int>& image, unsigned plane, unsigned y)
{
    const int* row = image.plane(plane).row(y);
    return {row, row + image.size.width};
}

TEST(DIBRead, RowsComeFromTheBottomAndPlanesInReverse)
{
    const uint8_t grey[] = {1, 2, 3, 9, 4, 5, 255, 9}; // 9: padding
    ImagePn<int> image;
    image.Alloc(3, 2, 1);
    DIBInput greyInput(grey);
    ReadDIBImageDataDepth_8(greyInput, image);
    EXPECT_THAT(rowOf(image, 0, 0), ElementsAre(4, 5, 255));
    EXPECT_THAT(rowOf(image, 0, 1), ElementsAre(1, 2, 3));

    const uint8_t colours[] = {1, 2, 3, 4, 5, 6, 9, 9, 11, 12, 13, 14, 15, 16, 9, 9};
    ImagePn<int> planes;
    planes.Alloc(2, 2, 3);
    DIBInput colourInput(colours);
    ReadDIBImageDataDepth_24(colourInput, planes);
    EXPECT_THAT(rowOf(planes, 0, 0), ElementsAre(13, 16));
    EXPECT_THAT(rowOf(planes, 1, 0), ElementsAre(12, 15));
    EXPECT_THAT(rowOf(planes, 2, 1), ElementsAre(1, 4));
}

// A picture with a slope.
Encoded encodePicture(int width, int height, int bitCount, const std::string& keys = "", size_t room = 65536,
                      const char* source = "in.bmp")
{
    const int step = (width * bitCount / 8 + 3) / 4 * 4;
    std::string rows(static_cast<size_t>(step * height), '\0');
    for (size_t i = 0; i < rows.size(); i++) rows[i] = static_cast<char>(i * 3);
    return encodedBitmap(std::string("-i ") + source + " " + keys, rows, width, height, bitCount, room);
}

TEST(Encode, ABufferMustHoldTheWholeFile)
{
    const Encoded whole = encodePicture(40, 30, 24);
    ASSERT_EQ(whole.result, 0);
    EXPECT_EQ(whole.printed, "");
    EXPECT_TRUE(whole.codestream.starts_with("\xFF\x4F\xFF\x51"));
    EXPECT_TRUE(whole.file.ends_with("\xFF\xD9"));
    const size_t size = whole.file.size();
    EXPECT_EQ(encodePicture(40, 30, 24, "", size).file, whole.file);
    const Encoded refused = encodePicture(40, 30, 24, "", size - 1);
    EXPECT_EQ(refused.result, -1);
    EXPECT_EQ(refused.printed, "Error: the buffer " + std::to_string(size - 1) +
                                   " bytes is small,indispensable size " + std::to_string(size) + " bytes\n");
}

TEST(Encode, OnlyBitmapsAreTaken)
{
    const Encoded refused = encodePicture(4, 4, 8, "", 65536, "in.pgm");
    EXPECT_EQ(refused.result, -1);
    EXPECT_EQ(refused.printed, "\n Error encode(): not pnm \n");
}

TEST(Encode, ColourBoxesFollowPlanesAndTheGreyMode)
{
    const std::string colr("colr\1\0\0\0\0\0", 10);
    const std::string sRGB = colr + '\x10', grey = colr + '\x11';
    EXPECT_THAT(encodePicture(8, 8, 24).file, HasSubstr(sRGB));
    EXPECT_THAT(encodePicture(8, 8, 8, "-gray auto").file, HasSubstr(grey));
    EXPECT_THAT(encodePicture(8, 8, 8, "-gray force").file, HasSubstr(grey));
    const std::string palettised = encodePicture(8, 8, 8, "-gray never").file;
    EXPECT_THAT(palettised, HasSubstr(sRGB));
    EXPECT_THAT(palettised, HasSubstr(std::string("pclr\1\0\3\7\7\7\0\0\0\1\1\1\2\2\2", 19)));
    EXPECT_THAT(palettised, HasSubstr("cmap"));
    EXPECT_THAT(encodePicture(8, 8, 24, "-gray never").file, Not(HasSubstr("pclr")));
}

TEST(Encode, LevelsAreLimitedByTheShorterSide)
{
    struct Case {
        int width, height;
        const char* wanted;
        int levels;
    };
    for (const Case& c : {Case{1, 1, "5", 1},
                          {2, 9, "5", 1},
                          {3, 3, "5", 2},
                          {9, 4, "5", 2},
                          {5, 40, "5", 3},
                          {8, 8, "5", 3},
                          {40, 33, "5", 5},
                          {40, 33, "9", 6},
                          {40, 33, "0", 0}}) {
        const std::string file = encodePicture(c.width, c.height, 8, "-wlev " + std::string(c.wanted)).file;
        const size_t cod = file.find("\xFF\x52");
        ASSERT_NE(cod, std::string::npos);
        EXPECT_EQ(file[cod + 9], c.levels) << c.width << 'x' << c.height;
    }
}

} // namespace
