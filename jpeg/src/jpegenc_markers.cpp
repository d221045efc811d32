// The encoder's marker segments (ITU-T T.81, annex B; JFIF 1.02).
#include "jpegenc.h"

#include "qovj.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

// Appends the bytes of segments that are put together in a local array.
namespace {
class Payload {
public:
    explicit Payload(Qov8u* start) : m_start(start), m_end(start) {}

    void byte(int value) { *m_end++ = Qov8u(value & 0xFF); }
    void nibbles(int high, int low) { byte((high << 4) | low); }
    void word(int value)
    {
        byte(value >> 8);
        byte(value);
    }
    void bytes(const Qov8u* data, int count) { m_end = std::copy_n(data, count, m_end); }
    int size() const { return int(m_end - m_start); }

private:
    Qov8u* m_start;
    Qov8u* m_end;
};
} // namespace

// Room for so many bytes and the one kept in reserve.
static _JPEG_ERROR need(const _bitstream& dst, int bytes)
{
    return bytes < dst.DataLen - dst.currPos ? JPEG_OK : JPEG_BUFFER_TOO_SMALL;
}

_JPEG_ERROR CJPEGEncoder::WriteMarker(_JPEG_MARKER marker)
{
    JPEG_PASS(need(m_dst, 2));
    return m_dst._WRITE_WORD(0xFF00 | marker);
}

_JPEG_ERROR CJPEGEncoder::WriteSegment(_JPEG_MARKER marker, const Qov8u* payload, int size)
{
    JPEG_PASS(need(m_dst, 4 + size));
    JPEG_PASS(WriteMarker(marker));
    JPEG_PASS(m_dst._WRITE_WORD(size + 2));
    std::copy_n(payload, size, m_dst.pData + m_dst.currPos);
    m_dst.currPos += size;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGEncoder::WriteSOI()
{
    return WriteMarker(JM_SOI);
}

_JPEG_ERROR CJPEGEncoder::WriteEOI()
{
    return WriteMarker(JM_EOI);
}

// Version 1.02, a density of 1 to 1 without unit, no thumbnail.
_JPEG_ERROR CJPEGEncoder::WriteAPP0()
{
    static const Qov8u jfif[] = {'J', 'F', 'I', 'F', 0, 1, 2, 0, 0, 1, 0, 1, 0, 0};
    return WriteSegment(JM_APP0, jfif, sizeof jfif);
}

// Version 100, no flags, and the colour transform.
_JPEG_ERROR CJPEGEncoder::WriteAPP14()
{
    const Qov8u transform = m_jpeg_color == JC_YCBCR ? 1 : m_jpeg_color == JC_YCCK ? 2 : 0;
    const Qov8u adobe[] = {'A', 'd', 'o', 'b', 'e', 0, 100, 0, 0, 0, 0, transform};
    return WriteSegment(JM_APP14, adobe, sizeof adobe);
}

// The terminating zero is part of the segment.
_JPEG_ERROR CJPEGEncoder::WriteCOM(const char* text)
{
    char ours[128];
    if (!text) {
        const QovLibraryVersion* version = qovjGetLibVersion();
        std::snprintf(ours, sizeof ours, "JPEG encoder based on qovJP [%d.%d.%d] - %s", version->major,
                      version->minor, version->build, version->buildDate);
        text = ours;
    }
    return WriteSegment(JM_COM, reinterpret_cast<const Qov8u*>(text), int(std::strlen(text)) + 1);
}

_JPEG_ERROR CJPEGEncoder::WriteDQT(const CJPEGEncoderQuantTable* table)
{
    Qov8u segment[1 + 64];
    Payload payload(segment);
    payload.nibbles(table->m_precision, table->m_id);
    payload.bytes(table->m_raw, 64);
    return WriteSegment(JM_DQT, segment, payload.size());
}

_JPEG_ERROR CJPEGEncoder::WriteDHT(const CJPEGEncoderHuffmanTable* table)
{
    Qov8u segment[1 + 16 + 256];
    Payload payload(segment);
    payload.nibbles(table->m_hclass, table->m_id);
    payload.bytes(table->m_bits, 16);
    int codes = 0;
    for (const Qov8u count : table->m_bits) codes += count;
    payload.bytes(table->m_vals, std::min(codes, 256));
    return WriteSegment(JM_DHT, segment, payload.size());
}

_JPEG_ERROR CJPEGEncoder::WriteSOF(_JPEG_MARKER marker, int precision)
{
    Qov8u segment[6 + 4 * 3];
    Payload payload(segment);
    payload.byte(precision);
    payload.word(m_src_height);
    payload.word(m_src_width);
    payload.byte(m_jpeg_ncomp);
    for (int i = 0; i < m_jpeg_ncomp; i++) {
        payload.byte(m_ccomp[i].m_id);
        payload.nibbles(m_ccomp[i].m_hsampling, m_ccomp[i].m_vsampling);
        payload.byte(m_ccomp[i].m_q_selector);
    }
    return WriteSegment(marker, segment, payload.size());
}

_JPEG_ERROR CJPEGEncoder::WriteSOF0()
{
    return WriteSOF(JM_SOF0, 8);
}

_JPEG_ERROR CJPEGEncoder::WriteSOF1()
{
    return WriteSOF(JM_SOF1, 8);
}

_JPEG_ERROR CJPEGEncoder::WriteSOF2()
{
    return WriteSOF(JM_SOF2, 8);
}

_JPEG_ERROR CJPEGEncoder::WriteSOF3()
{
    return WriteSOF(JM_SOF3, m_jpeg_precision);
}

_JPEG_ERROR CJPEGEncoder::WriteDRI(int interval)
{
    Qov8u segment[2];
    Payload payload(segment);
    payload.word(interval);
    JPEG_PASS(WriteSegment(JM_DRI, segment, payload.size()));
    m_next_restart_num = 0;
    m_restarts_to_go = interval;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGEncoder::WriteRST(int number)
{
    JPEG_PASS(WriteMarker(JM_RST0 + number));
    m_next_restart_num = (number + 1) & 7;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGEncoder::WriteSOS()
{
    static const int all[4] = {0, 1, 2, 3};
    return WriteSOS(m_jpeg_ncomp, all, m_ss, m_se, m_ah, m_al);
}

_JPEG_ERROR CJPEGEncoder::WriteSOS(int ncomp, const int* idx, int ss, int se, int ah, int al)
{
    Qov8u segment[1 + 4 * 2 + 3];
    Payload payload(segment);
    payload.byte(ncomp);
    for (int i = 0; i < ncomp; i++) {
        const CJPEGColorComponent& comp = m_ccomp[idx[i]];
        payload.byte(comp.m_id);
        payload.nibbles(comp.m_dc_selector, comp.m_ac_selector);
    }
    payload.byte(ss);
    payload.byte(se);
    payload.nibbles(ah, al);
    return WriteSegment(JM_SOS, segment, payload.size());
}
