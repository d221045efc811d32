// Segments of applications and comments: JFIF, JFXX, AVI1, Exif, Adobe.
#include "jpegdec.h"

#include <cstring>

bool CJPEGDecoder::SegmentStartsWith(const void* name, int size) const
{
    return size <= m_src.DataLen - m_src.currPos &&
           std::memcmp(m_src.pData + m_src.currPos, name, static_cast<size_t>(size)) == 0;
}

_JPEG_ERROR CJPEGDecoder::ParseAPP0()
{
    int len = 0;
    JPEG_PASS(ReadLength(&len));
    // A length of 0 or 1 is let pass here: the search for the next marker starts within the length field.
    if (len >= 0) JPEG_PASS(CheckLength(len));
    if (len > 13 && SegmentStartsWith("JFIF", 5)) {
        m_jfif_app0_detected = 1;
        m_src.currPos += 5;
        JPEG_PASS(m_src._READ_BYTE(&m_jfif_app0_major));
        JPEG_PASS(m_src._READ_BYTE(&m_jfif_app0_minor));
        JPEG_PASS(m_src._READ_BYTE(&m_jfif_app0_units));
        JPEG_PASS(m_src._READ_WORD(&m_jfif_app0_xDensity));
        JPEG_PASS(m_src._READ_WORD(&m_jfif_app0_yDensity));
        JPEG_PASS(m_src._READ_BYTE(&m_jfif_app0_thumbWidth));
        JPEG_PASS(m_src._READ_BYTE(&m_jfif_app0_thumbHeight));
        len -= 14;
    }
    if (len > 5 && SegmentStartsWith("JFXX", 5)) {
        m_jfxx_app0_detected = 1;
        m_src.currPos += 5;
        JPEG_PASS(m_src._READ_BYTE(&m_jfxx_thumbnails_type));
        len -= 6;
    }
    if (len > 13 && SegmentStartsWith("AVI1", 4)) {
        m_avi1_app0_detected = 1;
        m_src.currPos += 4;
        JPEG_PASS(m_src._READ_BYTE(&m_avi1_app0_polarity));
        len -= 13; // on purpose more than was read: the search for the next marker starts 8 bytes early
    }
    m_src.currPos += len;
    m_marker = JM_NONE;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::ParseAPP1()
{
    const int headSize = 6; // "Exif" and two zeros
    int len = 0;
    JPEG_PASS(ReadLength(&len));
    JPEG_PASS(CheckLength(len));
    if (SegmentStartsWith("Exif", 5)) {
        if (len < headSize) return JPEG_BAD_SEGMENT_LENGTH;
        qovFree(m_exif_app1_data);
        m_exif_app1_detected = m_exif_app1_data_size = 0;
        m_exif_app1_data = static_cast<Qov8u*>(qovMalloc(len));
        if (!m_exif_app1_data) return JPEG_OUT_OF_MEMORY;
        m_exif_app1_detected = 1;
        m_exif_app1_data_size = len; // head included; as long is the block, whose last bytes are zero
        m_src.currPos += headSize;
        len -= headSize;
        std::memcpy(m_exif_app1_data, m_src.pData + m_src.currPos, static_cast<size_t>(len));
        std::memset(m_exif_app1_data + len, 0, headSize);
    }
    m_src.currPos += len;
    m_marker = JM_NONE;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::ParseAPP14()
{
    int len = 0;
    JPEG_PASS(ReadLength(&len));
    JPEG_PASS(CheckLength(len));
    if (len > 11 && SegmentStartsWith("Adobe", 5)) {
        m_adobe_app14_detected = 1;
        m_src.currPos += 5;
        JPEG_PASS(m_src._READ_WORD(&m_adobe_app14_version));
        JPEG_PASS(m_src._READ_WORD(&m_adobe_app14_flags0));
        JPEG_PASS(m_src._READ_WORD(&m_adobe_app14_flags1));
        JPEG_PASS(m_src._READ_BYTE(&m_adobe_app14_transform));
        len -= 12;
    }
    m_src.currPos += len;
    m_marker = JM_NONE;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::ParseCOM()
{
    int len = 0;
    JPEG_PASS(ReadLength(&len));
    JPEG_PASS(CheckLength(len));
    qovFree(m_jpeg_comment);
    m_jpeg_comment_detected = m_jpeg_comment_size = 0;
    m_jpeg_comment = static_cast<char*>(qovMalloc(len + 1));
    if (!m_jpeg_comment) return JPEG_OUT_OF_MEMORY;
    m_jpeg_comment_detected = 1;
    m_jpeg_comment_size = len;
    std::memcpy(m_jpeg_comment, m_src.pData + m_src.currPos, static_cast<size_t>(len));
    m_jpeg_comment[len] = 0;
    m_src.currPos += len;
    m_marker = JM_NONE;
    return JPEG_OK;
}
