// Exif metadata of a JPEG picture: the payload of an APP1 segment (a TIFF structure) as five directories of
// entries with their names. Stands apart from the codec; the decoder only keeps the payload.
//
// Values come out as the byte order of the file leaves them: short values that stand in the offset field are
// taken from its top byte downward, so that in a little-endian file short texts are reversed, their end in
// front, and a single 16-bit number reads 0.
#ifndef JPEG_JPEGMETA_H
#define JPEG_JPEGMETA_H

#include "jpegbase.h"

struct _tiff_hdr {
    Qov16u byte_order; // 0x4949: little-endian, anything else: big-endian
    Qov16u magic;      // not tested
    Qov32u ifd_offset;
};

struct _tiff_ifd_entry {
    Qov32u tag; // 16 bits of it
    Qov16u type;
    Qov32u count;
    Qov32u value_offset; // or a short value itself; stands behind the data when a value elsewhere was read
    void* value;         // owned; at least 8 bytes, zero where nothing was read
    const char* name;    // of the dictionary; null for a tag without a name
};

struct _tiff_ifd {
    Qov16u num_entries;        // that were read, up to the first that could not be
    _tiff_ifd_entry** entries; // owned, with what they point to
    Qov32u next_ifd_offset;
};

struct _tiff_dictionary_entry {
    int tag; // 0 when unused
    const char* name;
    const char* description;
};

// Indexed by tag: look-ups without a search, for memory.
struct _tiff_dictionary {
    static const int size = 42000;
    _tiff_dictionary_entry entries[size];
};

void InitTiffDictionary(_tiff_dictionary* dictionary);

// The object is about a megabyte: it holds the dictionary.
class CJPEGMetaData {
public:
    enum { IFD0 = 0, IFD1 = 1, EXIF = 2, GPS = 3, INTEROP = 4, NUM_IFDS = 5 };

    CJPEGMetaData();
    virtual ~CJPEGMetaData();
    CJPEGMetaData(const CJPEGMetaData&) = delete;
    CJPEGMetaData& operator=(const CJPEGMetaData&) = delete;

    // data: the TIFF structure, which must stay as long as the object uses it; what an earlier call read is
    // destroyed. The first failure ends the reading; what was read before it is kept until Destroy.
    _JPEG_ERROR ProcessAPP1_Exif(const Qov8u* data, int size);
    int GetIfdNumEntries(int ifd) const; // 0 for an index above 4

    // Text of an entry, to be released with delete[]; null if there is no such entry or its type has no text.
    char* ShowIfdData(int ifd, int entry) const;
    int GetJPEGThumbnailsLen() const; // 0 when there is none

    // Inside the data; null when there is none or not all of it lies in the data.
    const Qov8u* GetJPEGThumbnailsData() const;
    void Destroy();
    void DestroyIfd(_tiff_ifd* ifd);

    _tiff_hdr m_tiff_hdr = {};
    _tiff_ifd m_ifd[NUM_IFDS] = {};

private:
    _JPEG_ERROR GET_BYTE(const Qov8u* data, int* pos, int size, Qov8u* out) const;
    _JPEG_ERROR GET_WORD(const Qov8u* data, int* pos, int size, Qov16u* out) const;
    _JPEG_ERROR GET_DWORD(const Qov8u* data, int* pos, int size, Qov32u* out) const;
    _JPEG_ERROR ReadTiffHdr();
    _JPEG_ERROR ReadIfdAt(Qov32u offset, int ifd);
    _JPEG_ERROR ReadIfdData(_tiff_ifd* ifd);
    _JPEG_ERROR ReadIfdEntry(_tiff_ifd_entry* entry);
    _JPEG_ERROR ReadIfdEntryVal(_tiff_ifd_entry* entry);
    _JPEG_ERROR ReserveValue(_tiff_ifd_entry* entry);
    _JPEG_ERROR ReadNumber(Qov32u bytes, int* pos, Qov32u* out) const;
    char* ShowIfdEntry(const _tiff_ifd_entry* entry) const;
    const _tiff_ifd_entry* FindEntry(int ifd, Qov32u tag) const;

    const Qov8u* m_data = nullptr; // not owned
    int m_pos = 0;
    int m_size = 0;
    long long m_budget = 0; // bytes of entries and values that may still be read
    _tiff_dictionary m_dictionary;
};

#endif
