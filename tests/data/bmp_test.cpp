#include "qdbmp.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/capture.h"
#include "support/listed_files.h"
#include "support/md5.h"
#include "support/tempfile.h"

using std::string;

namespace {

string number(unsigned value, int bytes, bool swapped)
{
    string text;
    for (int i = 0; i < bytes; i++) text += static_cast<char>(value >> 8 * (swapped ? bytes - 1 - i : i));
    return text;
}

// A file with one palette and the packed rows of a small picture.
struct Bmp {
    int width = 1, height = 1;
    unsigned bits = 8;
    unsigned planes = 1;
    unsigned compression = 0;
    unsigned used = 0; // palette entries; 0: all
    string palette = "";
    string data = "";
    bool swapped = false;
    string type = "BM";

    string file() const
    {
        const unsigned offset = unsigned(54 + palette.size());
        string text = swapped ? "MB" : type;
        const auto add = [&](unsigned value, int bytes) { text += number(value, bytes, swapped); };
        add(unsigned(offset + data.size()), 4);
        add(0, 2);
        add(0, 2);
        add(offset, 4);
        for (unsigned value : {40u, unsigned(width), unsigned(height)}) add(value, 4);
        add(planes, 2);
        add(bits, 2);
        for (unsigned value : {compression, 0u, 0u, 0u, used, 0u}) add(value, 4);
        return text + palette + data;
    }
};

const string blackAndWhite("\0\0\0\0\xff\xff\xff\0", 8);
const string threeColors("\1\2\3\0\4\5\6\0\7\x8\x9\0", 12); // blue, green, red

string pixels(const qdImage& image)
{
    string text;
    for (int y = 0; y < image.m_height; y++)
        text.append(static_cast<const char*>(image.getRowPointer(y)), size_t(image.getRowLen()));
    return text;
}

// What loading prints: empty if it went well.
string load(const Bmp& bmp, qdImage& image)
{
    const TempFile file(bmp.file());
    LevelCapture out(g_ostrm);
    const bool good = qdBmpFile(image).load(file.path(), -1);
    string text = out.take();
    const string begin = string("--- Can't load file ") + file.path() + ": ";
    if (text.compare(0, begin.size(), begin) == 0) text.erase(0, begin.size());
    EXPECT_EQ(good, text.empty());
    return text;
}

const Bmp fourBits{.width = 3,
                   .height = 2,
                   .bits = 4,
                   .used = 3,
                   .palette = threeColors,
                   .data = string("\x01\x2f\0\0\xf0\x1f\0\0", 8)};

} // namespace

// Rows stay in file order. The last pixel of an odd row of nibbles is a high one; indices behind the palette
// take its last entry; colours keep the file's order.
TEST(Bmp, PicturesWithAPalette)
{
    const Bmp oneBit{.width = 9,
                     .height = 2,
                     .bits = 1,
                     .palette = blackAndWhite,
                     .data = string("\xA0\x80\0\0\x01\0\0\0", 8)};
    Bmp swapped = oneBit;
    swapped.swapped = true;
    const Bmp eightBits{.width = 2, .used = 3, .palette = threeColors, .data = string("\2\xff\0\0", 4)};
    const string nine("\xff\0\xff\0\0\0\0\0\xff\0\0\0\0\0\0\0\xff\0", 18);
    const struct {
        Bmp bmp;
        const char* info;
        string pixels;
    } cases[] = {
        {oneBit, "Image 8u_C1 size=9x2", nine},
        {swapped, "Image 8u_C1 size=9x2", nine},
        {fourBits, "Image 8u_C3 size=3x2", "\1\2\3\4\5\6\7\x8\x9\7\x8\x9\1\2\3\4\5\6"},
        {eightBits, "Image 8u_C3 size=2x1", "\7\x8\x9\7\x8\x9"},
    };
    qdImage image(qd16s, 3, true); // whatever it was before
    for (const auto& c : cases) {
        ASSERT_EQ(load(c.bmp, image), "");
        EXPECT_STREQ(image.objectInfo().c_str(), c.info);
        EXPECT_EQ(pixels(image), c.pixels);
    }
}

// Read as one block: right where the file's rows are as long as the image's, askew where they are not, and
// what the file does not hold keeps the constant of a fresh image.
TEST(Bmp, PicturesWithoutPalette)
{
    qdImage image;
    string rows(96, '\0');
    for (size_t i = 0; i < rows.size(); i++) rows[i] = static_cast<char>(i);
    ASSERT_EQ(load({.width = 16, .height = 2, .bits = 24, .data = rows}, image), "");
    EXPECT_EQ(pixels(image), rows);
    ASSERT_EQ(
        load(
            {.width = 2, .height = 2, .bits = 24, .data = string("\x11\x12\x13\x14\x15\x16\0\0\x21\x22", 10)},
            image),
        "");
    EXPECT_EQ(pixels(image), string("\x11\x12\x13\x14\x15\x16\2\2\2\2\2\2", 12));
    EXPECT_EQ(image.m_8u[8], 0x21) << "the second row stands behind the first";
    ASSERT_EQ(load({.width = 8, .height = 1, .bits = 16, .data = string(16, 'a')}, image), "");
    EXPECT_STREQ(image.objectInfo().c_str(), "Image 8u_C2 size=8x1");
    ASSERT_EQ(load({.width = 4, .height = 1, .bits = 32, .data = string(16, 'a')}, image), "");
    EXPECT_EQ(image.channels(), 4);
}

TEST(Bmp, RefusedFiles)
{
    struct {
        Bmp bmp;
        const char* message;
    } const cases[] = {
        {{.type = "PM"}, "Bitmap files are valid only\n"},
        {{.compression = 1}, "Compression is not valid\n"},
        {{.width = -1, .palette = string(1024, 'x')}, "Bitmap header is corrupted: biWidth is invalid\n"},
        {{.height = -64, .palette = string(1024, 'x')}, "Bitmap header is corrupted: biHeight is invalid\n"},
        {{.bits = 2, .palette = string(16, 'x')}, "Bitmap header is corrupted: biBitCount is invalid\n"},
        {{.bits = 5}, "Bitmap header is corrupted: biBitCount is invalid\n"}, // nor is there a palette
        {{.bits = 24, .planes = 3}, "Bitmap header is corrupted: biPlanes is invalid\n"},
        {{.width = 0, .height = 0, .bits = 5, .planes = 0, .compression = 3}, "Compression is not valid\n"},
        {{.palette = string(100, 'x')}, "Read error\n"},
    };
    for (const auto& c : cases) {
        qdImage image;
        EXPECT_EQ(load(c.bmp, image), c.message);
    }
}

// Every length of a good file: no crash, and no picture before the last byte is there.
TEST(Bmp, CutFiles)
{
    const string whole = fourBits.file();
    for (size_t length = 0; length < whole.size(); length++) {
        const TempFile file(whole.substr(0, length));
        LevelCapture out(g_ostrm);
        qdImage image;
        EXPECT_FALSE(image.loadImage(file.path(), -1)) << length;
        EXPECT_EQ(out.take().empty(), length >= 66)
            << "short data are told by the answer alone, at " << length;
    }
}

TEST(Bmp, HeaderAlone)
{
    qdImage image(qd16s, 1, false);
    ASSERT_TRUE(image.createImage(2, 2));
    const TempFile file(Bmp{.width = 300, .height = 200, .bits = 24}.file());
    qdBmpFile bmp(image);
    ASSERT_TRUE(bmp.readInfoHeader(file.path()));
    EXPECT_EQ(bmp.infoHeader().biWidth, 300);
    EXPECT_EQ(bmp.infoHeader().biHeight, 200);
    EXPECT_EQ(bmp.infoHeader().biBitCount, 24);
    EXPECT_EQ(bmp.fileHeader().bfOffBits, 54u);
    EXPECT_EQ(image.m_width, 2);

    LevelCapture out(g_ostrm);
    EXPECT_FALSE(bmp.readInfoHeader("/no/such.bmp"));
    EXPECT_FALSE(bmp.load("/no/such.bmp", -1));
    EXPECT_EQ(out.take(),
              "--- Can't load file /no/such.bmp: Open error\n--- Can't load file /no/such.bmp: Open error\n");
}

TEST(Bmp, KindsOfImagesThatTakeAFile)
{
    EXPECT_TRUE(qdImage().canLoadImage());
    EXPECT_TRUE(qdImage(qd8u, 3, false).canLoadImage());
    EXPECT_FALSE(qdImage(qd8u, 3, true).canLoadImage());
    EXPECT_FALSE(qdImage(qd16s, 1, false).canLoadImage());
}

// ---- Files of other makers, and what a list of them says of each

TEST(Bmp, FilesOfOthers)
{
    QK_NEED_SHARED("MANIFEST.tsv");
    const std::vector<ListedFile> files = listedFiles("bmp/");
    ASSERT_GT(files.size(), 15u);
    for (const ListedFile& file : files) {
        LevelCapture out(g_ostrm);
        qdImage image;
        const bool good = image.loadImage(sharedPath(file.file).c_str(), -1);
        const string message = out.take();
        const size_t quote = file.outcome.find('"');
        if (file.outcome.compare(0, 7, "refused") == 0) {
            const string text = file.outcome.substr(quote + 1, file.outcome.rfind('"') - quote - 1);
            EXPECT_FALSE(good) << file.file;
            EXPECT_EQ(message, "--- Can't load file " + sharedPath(file.file) + ": " + text + "\n");
        } else {
            EXPECT_TRUE(good) << file.file;
            EXPECT_EQ(message, "");
            // An empty digest: rows that come out askew.
            if (!file.md5.empty()) {
                EXPECT_EQ(Md5::of(pixels(image)), file.md5) << file.file;
            }
        }
    }
}
