// CJPEGMetaData on Exif payloads of real cameras and on small ones made here.
#include "jpegmeta.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "../support/listed_files.h"
#include "../support/md5.h"

namespace {
// A TIFF structure in one byte order, written field by field.
class Tiff {
public:
    explicit Tiff(const std::string& order, unsigned ifdOffset = 8) : m_bytes(order)
    {
        word(42).dword(ifdOffset);
    }
    Tiff& word(unsigned value) { return number(value, 2); }
    Tiff& dword(unsigned value) { return number(value, 4); }
    Tiff& raw(const std::string& bytes)
    {
        m_bytes += bytes;
        return *this;
    }
    Tiff& entry(unsigned tag, unsigned type, unsigned count, unsigned field)
    {
        return word(tag).word(type).dword(count).dword(field);
    }
    const std::string& bytes() const { return m_bytes; }

private:
    Tiff& number(unsigned value, int size)
    {
        const bool little = m_bytes[0] == 'I';
        for (int i = 0; i < size; i++) m_bytes += static_cast<char>(value >> 8 * (little ? i : size - 1 - i));
        return *this;
    }
    std::string m_bytes;
};

// The payload lies in a block of exactly its size, so that a read behind it is seen by the sanitizers.
struct Parsed {
    std::vector<Qov8u> data;
    std::unique_ptr<CJPEGMetaData> meta = std::make_unique<CJPEGMetaData>();
    _JPEG_ERROR result;

    explicit Parsed(const std::string& payload)
        : data(payload.begin(), payload.end()),
          result(meta->ProcessAPP1_Exif(data.data(), static_cast<int>(data.size())))
    {
    }
    std::string text(int ifd, int entry) const
    {
        const std::unique_ptr<char[]> shown(meta->ShowIfdData(ifd, entry));
        return shown ? shown.get() : "none";
    }
};

// Of several Exif segments the last one counts, as in the decoder.
std::string exifPayload(const std::string& jpeg)
{
    std::string payload;
    for (size_t at = 2; at + 10 < jpeg.size() && jpeg[at] == '\xFF' && jpeg[at + 1] != '\xDA';) {
        const size_t length =
            static_cast<unsigned char>(jpeg[at + 2]) * 256u + static_cast<unsigned char>(jpeg[at + 3]);
        if (jpeg[at + 1] == '\xE1' && jpeg.compare(at + 4, 5, std::string("Exif\0", 5)) == 0)
            payload = jpeg.substr(at + 10, length - 8);
        at += 2 + length;
    }
    return payload;
}

const char* codeName(_JPEG_ERROR code)
{
    switch (code) {
    case JPEG_OK: return "JPEG_OK";
    case JPEG_INTERNAL_ERROR: return "JPEG_INTERNAL_ERROR";
    case JPEG_BUFFER_TOO_SMALL: return "JPEG_BUFFER_TOO_SMALL";
    default: return "another code";
    }
}

// In the words of the list of files.
std::string outcome(const Parsed& parsed)
{
    const CJPEGMetaData& meta = *parsed.meta;
    std::ostringstream text;
    text << "ProcessAPP1_Exif(payload of " << parsed.data.size() << " bytes) returns "
         << codeName(parsed.result) << "; entries IFD0 " << meta.GetIfdNumEntries(0) << ", IFD1 "
         << meta.GetIfdNumEntries(1) << ", EXIF " << meta.GetIfdNumEntries(2) << ", GPS "
         << meta.GetIfdNumEntries(3) << ", INTEROP " << meta.GetIfdNumEntries(4) << "; byte order ";
    switch (meta.m_tiff_hdr.byte_order) {
    case 0x4949: text << "II"; break;
    case 0x4D4D: text << "MM"; break;
    default: text << "0x" << std::hex << meta.m_tiff_hdr.byte_order << std::dec; break;
    }
    text << "; thumbnail ";
    if (const Qov8u* thumbnail = meta.GetJPEGThumbnailsData())
        text << "at " << thumbnail - parsed.data.data() << ", " << meta.GetJPEGThumbnailsLen() << " bytes";
    else
        text << "none";
    return text.str();
}
} // namespace

TEST(MetadataFiles, giveTheListedOutcomeAndThumbnail)
{
    QK_NEED_SHARED("MANIFEST.tsv");
    const std::vector<ListedFile> files = listedFiles("exif/");
    EXPECT_FALSE(files.empty());
    for (const ListedFile& file : files) {
        SCOPED_TRACE(file.file);
        const Parsed parsed(exifPayload(readFile(sharedPath(file.file))));
        EXPECT_EQ(outcome(parsed), file.outcome);
        if (const Qov8u* thumbnail = parsed.meta->GetJPEGThumbnailsData()) {
            const auto length = static_cast<size_t>(parsed.meta->GetJPEGThumbnailsLen());
            EXPECT_EQ(Md5::of(std::string(reinterpret_cast<const char*>(thumbnail), length)), file.md5);
        }
        for (int ifd = 0; ifd < CJPEGMetaData::NUM_IFDS; ifd++)
            for (int i = 0; i < parsed.meta->GetIfdNumEntries(ifd); i++) parsed.text(ifd, i);
    }
}

TEST(MetadataValue, isReadAndShown)
{
    static const std::string description = "tag:0x010E, name:ImageDescription, value:";
    // A picture directory of one entry; `tail` lies at offset 26.
    static const struct {
        const char* order;
        unsigned tag, type, count, field;
        std::string tail, text;
    } cases[] = {
        {"MM", 271, 2, 6, 26, {"Abcde", 6}, "tag:0x010F, name:Make, value:Abcde"},
        {"MM", 271, 2, 5, 26, "AbcdeXYZ", "tag:0x010F, name:Make, value:Abcde"},
        {"MM", 270, 2, 300, 26, std::string(300, 'x'), description + std::string(86, 'x')},
        {"MM", 271, 2, 4, 0x41424344, "", "tag:0x010F, name:Make, value:ABCD"},
        {"II", 271, 2, 3, 0x43424100, "", "tag:0x010F, name:Make, value:CBA"},
        {"MM", 36864, 7, 4, 0x30323230, "", "tag:0x9000, name:ExifVersion, value:0220"},
        {"MM", 36864, 0, 5, 26, "12345", "tag:0x9000, name:ExifVersion, value:12345"},
        {"MM", 274, 3, 1, 0x00060000, "", "tag:0x0112, name:Orientation, value:6"},
        {"II", 274, 3, 1, 6, "", "tag:0x0112, name:Orientation, value:0"},
        {"II", 301, 3, 3, 26, {"\x08\x01\0\0\0", 6}, "tag:0x012D, name:TransferFunction, value:264"},
        {"II", 256, 4, 1, 0xFFFFFFFF, "", "tag:0x0100, name:ImageWidth, value:-1"},
        {"MM", 256, 9, 2, 26, {"\0\0\1\0\0\0\0", 8}, "tag:0x0100, name:ImageWidth, value:256"},
        {"MM", 282, 5, 1, 26, {"\0\0\0\x48\0\0\0\2", 8}, "tag:0x011A, name:XResolution, value:72/2"},
        {"MM", 282, 10, 0, 99, "", "tag:0x011A, name:XResolution, value:0/0"},
        {"MM", 271, 1, 4000000000, 99, "", "none"},
        {"MM", 271, 12, 4000000000, 99, "", "none"},
        {"MM", 42000, 4, 1, 7, "", "tag:0xA410, name:(null), value:7"},
        {"MM", 3, 2, 2, 0x41000000, "", "tag:0x0003, name:(null), value:A"},
    };
    for (const auto& c : cases) {
        const Parsed parsed(
            Tiff(c.order).word(1).entry(c.tag, c.type, c.count, c.field).dword(0).raw(c.tail).bytes());
        EXPECT_EQ(parsed.result, JPEG_OK) << c.text;
        EXPECT_EQ(parsed.text(0, 0), c.text) << c.text;
    }
}

// Of three rationals two are read: the rest stays 0.
TEST(MetadataValue, halfOfTheRationalsIsRead)
{
    std::string tail;
    for (const char i : {'\1', '\2', '\3', '\4', '\5', '\6'}) tail += {0, 0, 0, i};
    const Parsed parsed(Tiff("MM").word(1).entry(2, 5, 3, 26).dword(0).raw(tail).bytes());
    ASSERT_EQ(parsed.result, JPEG_OK);
    const auto* values = static_cast<const Qov32u*>(parsed.meta->m_ifd[0].entries[0]->value);
    EXPECT_EQ(std::vector<Qov32u>(values, values + 6), (std::vector<Qov32u>{1, 2, 3, 4, 0, 0}));
}

TEST(MetadataDirectory, selectorsOutsideGiveNothing)
{
    const Parsed parsed(Tiff("II").word(1).entry(256, 4, 1, 5).dword(0).bytes());
    const int outside[][2] = {{0, 1}, {0, -1}, {5, 0}, {-1, 0}};
    for (const auto& at : outside) EXPECT_EQ(parsed.text(at[0], at[1]), "none") << at[0] << " " << at[1];
    for (const int ifd : {5, -1}) EXPECT_EQ(parsed.meta->GetIfdNumEntries(ifd), 0);
    parsed.meta->Destroy();
    EXPECT_EQ(parsed.meta->GetIfdNumEntries(0), 0);
}

TEST(MetadataDamage, isReportedAndWhatWasReadIsKept)
{
    const auto one = [](unsigned tag, unsigned type, unsigned count, unsigned field) {
        return Tiff("MM").word(1).entry(tag, type, count, field).dword(0).bytes();
    };
    const struct {
        const char* name;
        std::string payload;
        _JPEG_ERROR result;
        int entries; // of the first directory that were read whole
    } cases[] = {
        {"nothing", "", JPEG_BUFFER_TOO_SMALL, 0},
        {"directory far away", Tiff("MM", 0xFFFFFFFF).word(0).dword(0).bytes(), JPEG_INTERNAL_ERROR, 0},
        {"no next directory", one(256, 4, 1, 5).substr(0, 24), JPEG_INTERNAL_ERROR, 1},
        {"next directory outside", Tiff("MM").word(0).dword(14).bytes(), JPEG_INTERNAL_ERROR, 0},
        {"Exif directory outside", one(34665, 4, 1, 4000), JPEG_INTERNAL_ERROR, 1},
        {"more entries than bytes", Tiff("II").word(65535).entry(256, 4, 1, 5).dword(0).bytes(),
         JPEG_BUFFER_TOO_SMALL, 1},
        {"huge count", one(271, 2, 0xFFFFFFFF, 8), JPEG_BUFFER_TOO_SMALL, 0},
        {"count that wraps", one(282, 5, 0x20000001, 8), JPEG_BUFFER_TOO_SMALL, 0},
        {"offset that wraps", one(271, 2, 16, 0xFFFFFFF8), JPEG_BUFFER_TOO_SMALL, 0},
        {"one byte behind", one(271, 2, 5, 22), JPEG_BUFFER_TOO_SMALL, 0},
        {"up to the end", one(271, 2, 5, 21), JPEG_OK, 1},
    };
    for (const auto& c : cases) {
        const Parsed parsed(c.payload);
        EXPECT_EQ(parsed.result, c.result) << c.name;
        EXPECT_EQ(parsed.meta->GetIfdNumEntries(0), c.entries) << c.name;
        for (int i = 0; i <= c.entries; i++) EXPECT_EQ(parsed.text(0, i) == "none", i == c.entries) << c.name;
    }
}

// IFD0 with Exif and GPS pointers (each twice), Interoperability in Exif, and a thumbnail in IFD1.
static std::string richPayload(unsigned thumbnail, unsigned length)
{
    Tiff tiff("MM");
    tiff.word(4).entry(34665, 4, 1, 62).entry(34665, 4, 1, 62).entry(34853, 4, 1, 80).entry(34853, 4, 1, 80);
    tiff.dword(98);                                   // 58, IFD1
    tiff.word(1).entry(40965, 4, 1, 80).dword(0);     // 62, Exif
    tiff.word(1).entry(1, 2, 4, 0x52393800).dword(0); // 80, GPS and Interoperability
    tiff.word(2).entry(513, 4, 1, thumbnail).entry(514, 4, 1, length).dword(0); // 98
    return tiff.raw("thumb").bytes();                                           // 128
}

TEST(MetadataDirectory, allFiveAreReadAndAnObjectIsReusable)
{
    Parsed parsed(richPayload(128, 5));
    for (int round = 0; round < 2; round++) {
        EXPECT_EQ(outcome(parsed),
                  "ProcessAPP1_Exif(payload of 133 bytes) returns JPEG_OK; entries IFD0 4, IFD1 2, "
                  "EXIF 1, GPS 1, INTEROP 1; byte order MM; thumbnail at 128, 5 bytes");
        EXPECT_EQ(parsed.text(CJPEGMetaData::INTEROP, 0),
                  "tag:0x0001, name:InteroperabilityIndex, value:R98");
        parsed.result =
            parsed.meta->ProcessAPP1_Exif(parsed.data.data(), static_cast<int>(parsed.data.size()));
    }
}

TEST(MetadataThumbnail, outsideTheDataIsNone)
{
    const struct {
        unsigned offset, length;
        bool inside;
    } cases[] = {{128, 5, true},  {132, 1, true},         {128, 6, false},
                 {133, 0, false}, {0xFFFFFFFF, 5, false}, {0x7FFFFFFF, 0x7FFFFFFF, false}};
    for (const auto& c : cases)
        EXPECT_EQ(Parsed(richPayload(c.offset, c.length)).meta->GetJPEGThumbnailsData() != nullptr, c.inside)
            << c.offset << " " << c.length;
}

TEST(MetadataDamage, everyPrefixEndsCleanly)
{
    const std::string payload = richPayload(128, 5);
    for (size_t size = 0; size < payload.size() - 5; size++)
        EXPECT_NE(Parsed(payload.substr(0, size)).result, JPEG_OK) << size;
}

// Directories that point at themselves from every entry, and values that all cover the whole payload.
TEST(MetadataDamage, costIsBounded)
{
    Tiff loops("MM"), values("MM");
    for (Tiff* tiff : {&loops, &values}) tiff->word(5000);
    for (unsigned i = 0; i < 5000; i++) {
        loops.entry(i % 2 ? 40965 : 34665, 4, 1, 8);
        values.entry(271, 7, 60000, 8);
    }
    for (Tiff* tiff : {&loops, &values}) EXPECT_EQ(Parsed(tiff->dword(0).bytes()).result, JPEG_OUT_OF_MEMORY);
}

TEST(MetadataDictionary, has77TagsUnderTheirNumbers)
{
    const auto dictionary = std::make_unique<_tiff_dictionary>();
    InitTiffDictionary(dictionary.get());
    int named = 0;
    for (int tag = 0; tag < _tiff_dictionary::size; tag++) {
        const _tiff_dictionary_entry& entry = dictionary->entries[tag];
        EXPECT_EQ(entry.tag, entry.name ? tag : 0);
        EXPECT_STREQ(entry.description,
                     tag == 1 ? "Indicates the identification of the Interoperability rule." : "");
        named += entry.name != nullptr;
    }
    EXPECT_EQ(named, 77);
    EXPECT_STREQ(dictionary->entries[319].name, "PrimaryChromacities");
}
