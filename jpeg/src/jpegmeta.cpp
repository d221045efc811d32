#include "jpegmeta.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

namespace {
enum : Qov32u {
    TAG_THUMBNAIL_OFFSET = 513,
    TAG_THUMBNAIL_LENGTH = 514,
    TAG_EXIF_IFD = 34665,
    TAG_GPS_IFD = 34853,
    TAG_INTEROP_IFD = 40965
};

constexpr Qov16u littleEndian = 0x4949;
constexpr int entryBytes = 12;
constexpr int textBytes = 128;

// Entries and values of an honest file do not overlap. One in which they do may cost this many times the
// payload's size, in bytes read, before it is refused: without a bound a few kilobytes of directories that
// point at each other ask for hours and gigabytes.
constexpr int costFactor = 16;

// Of an element, by type. Types 1, 6 and 8 have no size and no reader, and so have those from 11 on.
constexpr int sizeof_val[] = {1, 0, 1, 2, 4, 8, 0, 1, 0, 4, 8};

int ElementSize(const _tiff_ifd_entry* entry)
{
    return entry->type < std::size(sizeof_val) ? sizeof_val[entry->type] : 0;
}

bool IsRational(const _tiff_ifd_entry* entry)
{
    return ElementSize(entry) == 8;
}

long long ExtentOf(const _tiff_ifd_entry* entry)
{
    return static_cast<long long>(ElementSize(entry)) * entry->count;
}

// Whether the value stands in the offset field itself.
bool IsInline(const _tiff_ifd_entry* entry)
{
    return ExtentOf(entry) <= 4;
}

template <class T>
void Store(_tiff_ifd_entry* entry, Qov32u index, Qov32u number)
{
    const T value = static_cast<T>(number);
    std::memcpy(static_cast<Qov8u*>(entry->value) + index * sizeof(T), &value, sizeof(T));
}

template <class T>
int Load(const _tiff_ifd_entry* entry, int index)
{
    T value;
    std::memcpy(&value, static_cast<const T*>(entry->value) + index, sizeof(T));
    return static_cast<int>(value);
}

void DestroyEntry(_tiff_ifd_entry* entry)
{
    ::operator delete(entry->value);
    delete entry;
}
} // namespace

CJPEGMetaData::CJPEGMetaData()
{
    InitTiffDictionary(&m_dictionary);
}

CJPEGMetaData::~CJPEGMetaData()
{
    Destroy();
}

void CJPEGMetaData::Destroy()
{
    for (_tiff_ifd& ifd : m_ifd) DestroyIfd(&ifd);
    m_tiff_hdr = {};
    m_data = nullptr;
    m_pos = 0;
    m_size = 0;
}

void CJPEGMetaData::DestroyIfd(_tiff_ifd* ifd)
{
    for (int i = 0; i < ifd->num_entries; i++) DestroyEntry(ifd->entries[i]);
    delete[] ifd->entries;
    *ifd = {};
}

_JPEG_ERROR CJPEGMetaData::GET_BYTE(const Qov8u* data, int* pos, int size, Qov8u* out) const
{
    if (*pos >= size) return JPEG_BUFFER_TOO_SMALL;
    *out = data[(*pos)++];
    return JPEG_OK;
}

_JPEG_ERROR CJPEGMetaData::GET_WORD(const Qov8u* data, int* pos, int size, Qov16u* out) const
{
    Qov8u first, second;
    JPEG_PASS(GET_BYTE(data, pos, size, &first));
    JPEG_PASS(GET_BYTE(data, pos, size, &second));
    if (m_tiff_hdr.byte_order == littleEndian) std::swap(first, second);
    *out = static_cast<Qov16u>(first << 8 | second);
    return JPEG_OK;
}

_JPEG_ERROR CJPEGMetaData::GET_DWORD(const Qov8u* data, int* pos, int size, Qov32u* out) const
{
    Qov16u first, second;
    JPEG_PASS(GET_WORD(data, pos, size, &first));
    JPEG_PASS(GET_WORD(data, pos, size, &second));
    if (m_tiff_hdr.byte_order == littleEndian) std::swap(first, second);
    *out = static_cast<Qov32u>(first) << 16 | second;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGMetaData::ProcessAPP1_Exif(const Qov8u* data, int size)
{
    Destroy();
    m_data = data;
    m_size = data ? size : 0;
    m_budget = static_cast<long long>(m_size) * costFactor;

    JPEG_PASS(ReadTiffHdr());
    JPEG_PASS(ReadIfdAt(m_tiff_hdr.ifd_offset, IFD0));
    for (int i = 0; i < m_ifd[IFD0].num_entries; i++) {
        // A directory's place is in the offset field whatever the type says.
        const _tiff_ifd_entry* entry = m_ifd[IFD0].entries[i];
        if (entry->tag == TAG_EXIF_IFD) {
            JPEG_PASS(ReadIfdAt(entry->value_offset, EXIF));
            for (int k = 0; k < m_ifd[EXIF].num_entries; k++) {
                const _tiff_ifd_entry* inner = m_ifd[EXIF].entries[k];
                if (inner->tag == TAG_INTEROP_IFD) JPEG_PASS(ReadIfdAt(inner->value_offset, INTEROP));
            }
        } else if (entry->tag == TAG_GPS_IFD) {
            JPEG_PASS(ReadIfdAt(entry->value_offset, GPS));
        }
    }
    const Qov32u next = m_ifd[IFD0].next_ifd_offset;
    return next ? ReadIfdAt(next, IFD1) : JPEG_OK;
}

_JPEG_ERROR CJPEGMetaData::ReadTiffHdr()
{
    JPEG_PASS(GET_WORD(m_data, &m_pos, m_size, &m_tiff_hdr.byte_order));
    JPEG_PASS(GET_WORD(m_data, &m_pos, m_size, &m_tiff_hdr.magic));
    return GET_DWORD(m_data, &m_pos, m_size, &m_tiff_hdr.ifd_offset);
}

_JPEG_ERROR CJPEGMetaData::ReadIfdAt(Qov32u offset, int ifd)
{
    m_pos = static_cast<int>(std::min(offset, static_cast<Qov32u>(INT_MAX)));
    return ReadIfdData(&m_ifd[ifd]);
}

_JPEG_ERROR CJPEGMetaData::ReadIfdData(_tiff_ifd* ifd)
{
    DestroyIfd(ifd); // a directory may be named twice
    Qov16u count;
    if (GET_WORD(m_data, &m_pos, m_size, &count) != JPEG_OK) return JPEG_INTERNAL_ERROR;
    ifd->entries = new (std::nothrow) _tiff_ifd_entry*[count]();
    if (!ifd->entries) return JPEG_OUT_OF_MEMORY;
    for (int i = 0; i < count; i++) {
        _tiff_ifd_entry* entry = new (std::nothrow) _tiff_ifd_entry();
        if (!entry) return JPEG_OUT_OF_MEMORY;
        const _JPEG_ERROR result = ReadIfdEntry(entry);
        if (result != JPEG_OK) {
            DestroyEntry(entry);
            return result;
        }
        ifd->entries[ifd->num_entries++] = entry;
    }
    if (GET_DWORD(m_data, &m_pos, m_size, &ifd->next_ifd_offset) != JPEG_OK) return JPEG_INTERNAL_ERROR;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGMetaData::ReadIfdEntry(_tiff_ifd_entry* entry)
{
    Qov16u tag;
    JPEG_PASS(GET_WORD(m_data, &m_pos, m_size, &tag));
    entry->tag = tag;
    entry->name = tag < _tiff_dictionary::size ? m_dictionary.entries[tag].name : nullptr;
    JPEG_PASS(GET_WORD(m_data, &m_pos, m_size, &entry->type));
    JPEG_PASS(GET_DWORD(m_data, &m_pos, m_size, &entry->count));
    JPEG_PASS(GET_DWORD(m_data, &m_pos, m_size, &entry->value_offset));
    JPEG_PASS(ReserveValue(entry));
    return ReadIfdEntryVal(entry);
}

_JPEG_ERROR CJPEGMetaData::ReserveValue(_tiff_ifd_entry* entry)
{
    const long long extent = ExtentOf(entry);
    if (!IsInline(entry) && entry->value_offset + extent > m_size) return JPEG_BUFFER_TOO_SMALL;
    m_budget -= entryBytes + extent;
    if (m_budget < 0) return JPEG_OUT_OF_MEMORY;

    const size_t bytes = static_cast<size_t>(std::max(extent, 8LL)); // two numbers, also when the count is 0
    entry->value = ::operator new(bytes, std::nothrow);
    if (!entry->value) return JPEG_OUT_OF_MEMORY;
    std::memset(entry->value, 0, bytes);
    return JPEG_OK;
}

_JPEG_ERROR CJPEGMetaData::ReadIfdEntryVal(_tiff_ifd_entry* entry)
{
    const Qov32u bytes = static_cast<Qov32u>(std::min(ElementSize(entry), 4));
    if (bytes == 0) return JPEG_OK;
    const bool isInline = IsInline(entry);
    const Qov32u field = entry->value_offset;
    int pos = isInline ? 0 : static_cast<int>(field); // inside the data, as the extent is

    // A rational is two numbers, but only the first half of the rationals is read: the count is taken for
    // that of the numbers.
    const Qov32u numbers = IsRational(entry) ? entry->count + (entry->count & 1) : entry->count;
    for (Qov32u i = 0; i < numbers; i++) {
        Qov32u number;
        if (isInline)
            number = field >> (32 - 8 * bytes * (i + 1));
        else
            JPEG_PASS(ReadNumber(bytes, &pos, &number));
        switch (bytes) {
        case 1: Store<Qov8u>(entry, i, number); break;
        case 2: Store<Qov16u>(entry, i, number); break;
        default: Store<Qov32u>(entry, i, number); break;
        }
    }
    if (!isInline) entry->value_offset = static_cast<Qov32u>(pos);
    return JPEG_OK;
}

_JPEG_ERROR CJPEGMetaData::ReadNumber(Qov32u bytes, int* pos, Qov32u* out) const
{
    Qov8u byte;
    Qov16u word;
    switch (bytes) {
    case 1:
        JPEG_PASS(GET_BYTE(m_data, pos, m_size, &byte));
        *out = byte;
        return JPEG_OK;
    case 2:
        JPEG_PASS(GET_WORD(m_data, pos, m_size, &word));
        *out = word;
        return JPEG_OK;
    default: return GET_DWORD(m_data, pos, m_size, out);
    }
}

int CJPEGMetaData::GetIfdNumEntries(int ifd) const
{
    return ifd >= 0 && ifd < NUM_IFDS ? m_ifd[ifd].num_entries : 0;
}

char* CJPEGMetaData::ShowIfdData(int ifd, int entry) const
{
    if (entry < 0 || entry >= GetIfdNumEntries(ifd)) return nullptr;
    return ShowIfdEntry(m_ifd[ifd].entries[entry]);
}

char* CJPEGMetaData::ShowIfdEntry(const _tiff_ifd_entry* entry) const
{
    char* text = new (std::nothrow) char[textBytes];
    if (!text) return nullptr;
    const unsigned tag = entry->tag;
    const char* name = entry->name ? entry->name : "(null)";
    const auto showNumber = [&](int number) {
        std::snprintf(text, textBytes, "tag:0x%04X, name:%s, value:%d", tag, name, number);
    };
    switch (entry->type) {
    case 0:
    case 2:
    case 7:
        std::snprintf(text, textBytes, "tag:0x%04X, name:%s, value:%.*s", tag, name,
                      static_cast<int>(std::min(entry->count, static_cast<Qov32u>(textBytes - 1))),
                      static_cast<const char*>(entry->value));
        return text;
    case 3: showNumber(Load<Qov16u>(entry, 0)); return text;
    case 4:
    case 9: showNumber(Load<Qov32u>(entry, 0)); return text;
    case 5:
    case 10:
        std::snprintf(text, textBytes, "tag:0x%04X, name:%s, value:%d/%d", tag, name, Load<Qov32u>(entry, 0),
                      Load<Qov32u>(entry, 1));
        return text;
    default: delete[] text; return nullptr;
    }
}

const _tiff_ifd_entry* CJPEGMetaData::FindEntry(int ifd, Qov32u tag) const
{
    for (int i = 0; i < m_ifd[ifd].num_entries; i++) {
        const _tiff_ifd_entry* entry = m_ifd[ifd].entries[i];
        if (entry->tag == tag) return entry;
    }
    return nullptr;
}

int CJPEGMetaData::GetJPEGThumbnailsLen() const
{
    const _tiff_ifd_entry* entry = FindEntry(IFD1, TAG_THUMBNAIL_LENGTH);
    return entry && entry->value_offset <= INT_MAX ? static_cast<int>(entry->value_offset) : 0;
}

const Qov8u* CJPEGMetaData::GetJPEGThumbnailsData() const
{
    const _tiff_ifd_entry* entry = FindEntry(IFD1, TAG_THUMBNAIL_OFFSET);
    if (!entry) return nullptr;
    const long long offset = entry->value_offset;
    return offset < m_size && offset + GetJPEGThumbnailsLen() <= m_size ? m_data + offset : nullptr;
}
