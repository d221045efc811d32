// The decoder object: its life, source and destination, and the loop over the markers of a stream.
#include "jpegdec.h"

#include <memory>

CJPEGDecoder::CJPEGDecoder()
{
    Reset();
}

CJPEGDecoder::~CJPEGDecoder()
{
    (void)Clean();
}

void CJPEGDecoder::Reset()
{
    m_src = {};
    m_dst = nullptr;
    m_dst_width = m_dst_height = m_dst_step = m_dst_channels = 0;
    m_dst_precision = 0;
    m_dst_color = JC_UNKNOWN;
    m_dst_sampling = JS_444;
    m_jpeg_quality = 100;
    m_jpeg_comment = nullptr;
    m_exif_app1_data = nullptr;
    m_block_buffer = nullptr;
    (void)Clean();
}

_JPEG_ERROR CJPEGDecoder::Clean()
{
    ClearSegments();
    ClearFrame();
    for (CJPEGDecoderHuffmanTable& table : m_dctbl) table.Destroy();
    for (CJPEGDecoderHuffmanTable& table : m_actbl) table.Destroy();
    m_state.Destroy();
    m_marker = JM_NONE;
    return JPEG_OK;
}

void CJPEGDecoder::ClearSegments()
{
    qovFree(m_jpeg_comment);
    m_jpeg_comment = nullptr;
    m_jpeg_comment_detected = m_jpeg_comment_size = 0;
    qovFree(m_exif_app1_data);
    m_exif_app1_data = nullptr;
    m_exif_app1_detected = m_exif_app1_data_size = 0;
    m_jfif_app0_detected = m_jfif_app0_major = m_jfif_app0_minor = m_jfif_app0_units = 0;
    m_jfif_app0_xDensity = m_jfif_app0_yDensity = m_jfif_app0_thumbWidth = m_jfif_app0_thumbHeight = 0;
    m_jfxx_app0_detected = m_jfxx_thumbnails_type = 0;
    m_avi1_app0_detected = m_avi1_app0_polarity = 0;
    m_adobe_app14_detected = m_adobe_app14_version = m_adobe_app14_flags0 = m_adobe_app14_flags1 = 0;
    m_adobe_app14_transform = 0;
    m_jpeg_restart_interval = 0;
}

void CJPEGDecoder::ClearFrame()
{
    m_jpeg_width = m_jpeg_height = m_jpeg_ncomp = 0;
    m_jpeg_precision = 8;
    m_jpeg_sampling = JS_444;
    m_jpeg_color = JC_UNKNOWN;
    m_jpeg_mode = JPEG_BASELINE;
    m_max_hsampling = m_max_vsampling = 0;
    m_numxMCU = m_numyMCU = m_mcuWidth = m_mcuHeight = 0;
    m_ccWidth = m_ccHeight = m_xPadding = m_yPadding = 0;
    m_restarts_to_go = m_next_restart_num = 0;
    m_sos_len = m_curr_comp_no = 0;
    m_ss = m_se = m_al = m_ah = 0;
    m_dc_scan_completed = m_ac_scans_completed = m_scan_count = 0;
    m_num_threads = get_num_threads();
    m_nblock = 1;
    qovFree(m_block_buffer);
    m_block_buffer = nullptr;
    for (CJPEGColorComponent& component : m_ccomp) {
        std::destroy_at(&component);
        std::construct_at(&component);
    }
}

_JPEG_ERROR CJPEGDecoder::SetSource(const Qov8u* src, int srcSize)
{
    m_src.pData = const_cast<Qov8u*>(src); // the cursor serves the encoder too; here it only reads
    m_src.DataLen = src ? srcSize : 0;
    m_src.currPos = 0;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::SetDestination(Qov8u* dst, int step, QoviSize size, int channels, _JPEG_COLOR color,
                                         _JPEG_SAMPLING sampling, int precision)
{
    m_dst = dst;
    m_dst_step = step;
    m_dst_width = size.width;
    m_dst_height = size.height;
    m_dst_channels = channels;
    m_dst_color = color;
    m_dst_sampling = sampling;
    m_dst_precision = precision;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::SetDestination(Qov16s* dst, int step, QoviSize size, int channels,
                                         _JPEG_COLOR color, _JPEG_SAMPLING sampling, int precision)
{
    return SetDestination(reinterpret_cast<Qov8u*>(dst), step, size, channels, color, sampling, precision);
}

_JPEG_ERROR CJPEGDecoder::ReadHeader(int* width, int* height, int* channels, _JPEG_COLOR* color,
                                     _JPEG_SAMPLING* sampling, int* precision)
{
    JPEG_PASS(ParseJPEGBitStream(JO_READ_HEADER));
    if (m_jpeg_ncomp == 0) return JPEG_BAD_FRAME_SEGMENT; // EOI came first
    if (m_jpeg_height == 0) return JPEG_NOT_SUPPORTED;    // told by a DNL segment behind the first scan
    *width = m_jpeg_width;
    *height = m_jpeg_height;
    *channels = m_jpeg_ncomp;
    *color = m_jpeg_color;
    *sampling = m_jpeg_sampling;
    *precision = m_jpeg_precision;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::ReadData()
{
    return ParseJPEGBitStream(JO_READ_DATA);
}

// T.81 B.1.1.2: FF, any number of fill bytes FF, and a byte that is neither FF nor 0.
_JPEG_ERROR CJPEGDecoder::NextMarker(_JPEG_MARKER* marker)
{
    int byte = 0;
    do {
        do {
            JPEG_PASS(m_src._READ_BYTE(&byte));
        } while (byte != 0xFF);
        do {
            JPEG_PASS(m_src._READ_BYTE(&byte));
        } while (byte == 0xFF);
    } while (byte == 0);
    *marker = byte;
    return JPEG_OK;
}

// Every segment starts with its length, the two bytes of the field included.
_JPEG_ERROR CJPEGDecoder::ReadLength(int* len)
{
    if (m_src.currPos < 0 || m_src.DataLen - m_src.currPos <= 2) return JPEG_BUFFER_TOO_SMALL;
    JPEG_PASS(m_src._READ_WORD(len));
    *len -= 2;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::CheckLength(int len) const
{
    if (len < 0) return JPEG_BAD_SEGMENT_LENGTH;
    return len <= m_src.DataLen - m_src.currPos ? JPEG_OK : JPEG_BUFFER_TOO_SMALL;
}

_JPEG_ERROR CJPEGDecoder::SkipMarker()
{
    int len = 0;
    JPEG_PASS(ReadLength(&len));
    JPEG_PASS(CheckLength(len));
    m_src.currPos += len;
    m_marker = JM_NONE;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::ParseJPEGBitStream(_JPEG_OPERATION op)
{
    m_marker = JM_NONE;
    for (;;) {
        if (m_marker == JM_NONE) JPEG_PASS(NextMarker(&m_marker));
        if (m_marker == JM_EOI) return ParseEOI();
        if (m_marker == JM_SOS && op == JO_READ_HEADER) {
            JPEG_PASS(ParseSOS());
            m_src.currPos -= m_sos_len + 2; // ReadData meets the same SOS again
            return JPEG_OK;
        }
        JPEG_PASS(ParseSegment(op));
    }
}

_JPEG_ERROR CJPEGDecoder::ParseSegment(_JPEG_OPERATION op)
{
    switch (m_marker) {
    case JM_SOF0:
    case JM_SOF1:
    case JM_SOF2:
    case JM_SOF3:
        if (op == JO_READ_DATA) return JPEG_BAD_FRAME_SEGMENT; // buffers and destination are of the first
        if (m_marker == JM_SOF3) return ParseSOF(JPEG_LOSSLESS);
        return ParseSOF(m_marker == JM_SOF2 ? JPEG_PROGRESSIVE : JPEG_BASELINE);
    case JM_SOF5:
    case JM_SOF6:
    case JM_SOF7:
    case JM_SOF9:
    case JM_SOFA:
    case JM_SOFB:
    case JM_SOFD:
    case JM_SOFE:
    case JM_SOFF: return JPEG_NOT_SUPPORTED; // hierarchical or arithmetic
    case JM_DHT: return ParseDHT();
    case JM_SOI: return ParseSOI();
    case JM_SOS: return ReadScan();
    case JM_DQT: return ParseDQT();
    case JM_DRI: return ParseDRI();
    case JM_APP0: return ParseAPP0();
    case JM_APP1: return ParseAPP1();
    case JM_APP14: return ParseAPP14();
    case JM_COM: return ParseCOM();
    default: return m_marker >= JM_RST0 && m_marker <= JM_RST7 ? ParseRST() : SkipMarker();
    }
}

_JPEG_ERROR CJPEGDecoder::ReadScan()
{
    JPEG_PASS(ParseSOS());
    JPEG_PASS(Init());
    switch (m_jpeg_mode) {
    case JPEG_PROGRESSIVE: return DecodeScanProgressive();
    case JPEG_LOSSLESS: return DecodeScanLossless();
    default: return DecodeScanBaseline();
    }
}

_JPEG_ERROR CJPEGDecoder::ParseSOI()
{
    m_marker = JM_NONE;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::ParseEOI()
{
    m_marker = JM_NONE;
    return JPEG_OK;
}
