// Settings and life of the encoder: everything around the stream itself.
#include "jpegenc.h"

#include <climits>

static int ceilDiv(int n, int d)
{
    return n / d + (n % d > 0);
}

CJPEGEncoder::~CJPEGEncoder()
{
    static_cast<void>(Clean());
}

_JPEG_ERROR CJPEGEncoder::Clean()
{
    for (int i = 0; i < 4; i++) {
        m_dctbl[i].Destroy();
        m_actbl[i].Destroy();
        m_ccomp[i].DeleteBufferCC();
        m_ccomp[i].DeleteBufferSS();
        m_ccomp[i].m_curr_row = nullptr;
        m_ccomp[i].m_prev_row = nullptr;
    }
    m_state.Destroy();
    delete[] m_scan_script;
    qovFree(m_block_buffer);
    static_cast<JPEGEncoderFields&>(*this) = JPEGEncoderFields();
    return JPEG_OK;
}

_JPEG_ERROR CJPEGEncoder::SetSource(const Qov8u* src, int step, QoviSize size, int channels,
                                    _JPEG_COLOR color, _JPEG_SAMPLING sampling)
{
    m_src = src;
    m_src_sample_bytes = 1;
    m_src_step = step;
    m_src_width = size.width;
    m_src_height = size.height;
    m_src_channels = channels;
    m_src_color = color;
    m_src_sampling = sampling;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGEncoder::SetSource(const Qov16s* src, int step, QoviSize size, int channels,
                                    _JPEG_COLOR color, _JPEG_SAMPLING sampling)
{
    JPEG_PASS(SetSource(reinterpret_cast<const Qov8u*>(src), step, size, channels, color, sampling));
    m_src_sample_bytes = 2;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGEncoder::SetDestination(Qov8u* dst, int dstSize, int quality, _JPEG_COLOR color,
                                         _JPEG_SAMPLING sampling, _JPEG_MODE mode, int restartInterval)
{
    m_dst.pData = dst;
    m_dst.DataLen = dstSize;
    m_dst.currPos = 0;
    m_jpeg_quality = quality;
    m_jpeg_color = color;
    m_jpeg_sampling = sampling;
    m_jpeg_mode = mode;
    m_jpeg_restart_interval = restartInterval;
    m_restarts_to_go = restartInterval;
    if (mode == JPEG_LOSSLESS) {
        m_mcuWidth = m_mcuHeight = 1;
    } else {
        m_mcuWidth = sampling == JS_444 ? 8 : 16;
        m_mcuHeight = sampling == JS_411 ? 16 : 8;
    }
    m_numxMCU = ceilDiv(m_src_width, m_mcuWidth);
    m_numyMCU = ceilDiv(m_src_height, m_mcuHeight);
    return JPEG_OK;
}

// Component 3, the K of four, is sampled like component 0.
_JPEG_ERROR CJPEGEncoder::InitComponent(int number)
{
    const bool second = number == 1 || number == 2;
    const bool halfWidth = m_jpeg_sampling != JS_444, halfHeight = m_jpeg_sampling == JS_411;
    const bool chroma = m_jpeg_color == JC_YCBCR || m_jpeg_color == JC_YCCK;

    CJPEGColorComponent& comp = m_ccomp[number];
    comp.m_id = comp.m_comp_no = number;
    comp.m_hsampling = halfWidth && !second ? 2 : 1;
    comp.m_vsampling = halfHeight && !second ? 2 : 1;
    comp.m_h_factor = halfWidth && second ? 2 : 1;
    comp.m_v_factor = halfHeight && second ? 2 : 1;
    comp.m_q_selector = second && chroma ? 1 : 0;
    comp.m_dc_selector = comp.m_ac_selector = second ? 1 : 0;
    comp.m_nblocks = comp.m_hsampling * comp.m_vsampling;
    m_nblock += comp.m_nblocks;
    comp.m_lastDC = 0;

    // Lossless rows have samples of 16 bits.
    comp.m_cc_height = m_mcuHeight;
    comp.m_cc_step = m_ccWidth * (m_jpeg_mode == JPEG_LOSSLESS ? int(sizeof(Qov16s)) : 1);
    comp.m_ss_height = comp.m_cc_height / comp.m_v_factor;
    comp.m_ss_step = comp.m_cc_step / comp.m_h_factor;
    JPEG_PASS(comp.CreateBufferCC(m_num_threads));
    JPEG_PASS(comp.CreateBufferSS(m_num_threads));
    comp.m_curr_row = reinterpret_cast<Qov16s*>(comp.GetCCBufferPtr(0));
    comp.m_prev_row = reinterpret_cast<Qov16s*>(comp.GetSSBufferPtr(0));
    return JPEG_OK;
}

// Room for a row of MCUs, for the whole picture with up to 20 blocks in an MCU, or for a row of differences.
// Only what the picture uses of it is cleared: the pages of the rest stay untouched and cost nothing.
_JPEG_ERROR CJPEGEncoder::InitBlockBuffer()
{
    const long long blockBytes = 64 * sizeof(Qov16s);
    long long used = 0, size = 0;
    switch (m_jpeg_mode) {
    case JPEG_BASELINE: used = size = m_nblock * blockBytes * m_numxMCU * m_num_threads; break;
    case JPEG_PROGRESSIVE:
        used = m_nblock * blockBytes * m_numxMCU * m_numyMCU;
        size = 20 * blockBytes * m_numxMCU * m_numyMCU;
        break;
    case JPEG_LOSSLESS: used = size = 1ll * m_numxMCU * int(sizeof(Qov16s)); break;
    default: return JPEG_INTERNAL_ERROR;
    }
    const bool noComponents = m_nblock == 0;
    if (noComponents || size > INT_MAX) return JPEG_OUT_OF_MEMORY;
    if (m_block_buffer && m_block_bufsize >= size) return JPEG_OK;

    qovFree(m_block_buffer);
    m_block_buffer = static_cast<Qov16s*>(qovMalloc(int(size)));
    m_block_bufsize = m_block_buffer ? int(size) : 0;
    if (!m_block_buffer) return JPEG_OUT_OF_MEMORY;
    return FromStatus(qovsZero_8u(reinterpret_cast<Qov8u*>(m_block_buffer), int(used)));
}

_JPEG_ERROR CJPEGEncoder::InitTables()
{
    JPEG_PASS(m_dctbl[0].Create());
    JPEG_PASS(m_dctbl[1].Create());
    JPEG_PASS(m_actbl[0].Create());
    JPEG_PASS(m_actbl[1].Create());
    if (m_jpeg_mode != JPEG_LOSSLESS) {
        JPEG_PASS(m_qntbl[0].Init(0, m_jpeg_quality, DefaultLuminanceQuant));
        JPEG_PASS(m_qntbl[1].Init(1, m_jpeg_quality, DefaultChrominanceQuant));
    }
    JPEG_PASS(m_dctbl[0].Init(0, 0, DefaultLuminanceDCBits, DefaultLuminanceDCValues));
    JPEG_PASS(m_dctbl[1].Init(1, 0, DefaultChrominanceDCBits, DefaultChrominanceDCValues));
    JPEG_PASS(m_actbl[0].Init(0, 1, DefaultLuminanceACBits, DefaultLuminanceACValues));
    return m_actbl[1].Init(1, 1, DefaultChrominanceACBits, DefaultChrominanceACValues);
}

// Sizes and intervals that the stream's words can't say are refused.
_JPEG_ERROR CJPEGEncoder::Init()
{
    const int maxWord = 65535;
    if (m_src_sample_bytes != 1) return JPEG_NOT_SUPPORTED;
    if (m_src_width < 1 || m_src_width > maxWord) return JPEG_NOT_SUPPORTED;
    if (m_src_height < 1 || m_src_height > maxWord) return JPEG_NOT_SUPPORTED;
    if (m_jpeg_restart_interval < 0 || m_jpeg_restart_interval > maxWord) return JPEG_NOT_SUPPORTED;

    m_num_threads = get_num_threads();
    switch (m_jpeg_color) {
    case JC_GRAY: m_jpeg_ncomp = 1; break;
    case JC_RGB:
    case JC_YCBCR: m_jpeg_ncomp = 3; break;
    case JC_CMYK:
    case JC_YCCK: m_jpeg_ncomp = 4; break;
    case JC_BGR:
    case JC_UNKNOWN: break; // the caller's number
    }
    if (m_jpeg_ncomp < 0 || m_jpeg_ncomp > 4) return JPEG_NOT_SUPPORTED;

    m_ccWidth = m_mcuWidth * m_numxMCU;
    m_ccHeight = m_mcuHeight;
    m_xPadding = m_ccWidth - m_src_width;
    m_yPadding = m_mcuHeight * m_numyMCU - m_src_height;
    m_nblock = 0;
    for (int i = 0; i < m_jpeg_ncomp; i++) JPEG_PASS(InitComponent(i));

    // A number of components without a script gives a picture without scans.
    if (m_jpeg_mode == JPEG_PROGRESSIVE && SelectScanScripts() == JPEG_OUT_OF_MEMORY)
        return JPEG_OUT_OF_MEMORY;
    JPEG_PASS(InitBlockBuffer());
    JPEG_PASS(InitTables());
    return m_state.Create();
}

_JPEG_ERROR CJPEGEncoder::WriteHeader()
{
    const bool lossless = m_jpeg_mode == JPEG_LOSSLESS;
    JPEG_PASS(Init());
    const bool many = m_jpeg_ncomp > 1;

    JPEG_PASS(WriteSOI());
    if (!lossless) {
        switch (m_jpeg_color) {
        case JC_GRAY:
        case JC_YCBCR: JPEG_PASS(WriteAPP0()); break;
        case JC_RGB:
        case JC_CMYK:
        case JC_YCCK: JPEG_PASS(WriteAPP14()); break;
        case JC_BGR:
        case JC_UNKNOWN: break;
        }
    }
    JPEG_PASS(WriteCOM(nullptr));
    if (lossless) {
        JPEG_PASS(WriteSOF3());
        return WriteDHT(&m_dctbl[0]);
    }

    JPEG_PASS(WriteDQT(&m_qntbl[0]));
    if (many) JPEG_PASS(WriteDQT(&m_qntbl[1]));
    if (m_jpeg_mode == JPEG_PROGRESSIVE) {
        JPEG_PASS(WriteSOF2()); // each scan brings its own Huffman tables
    } else {
        JPEG_PASS(WriteSOF0());
        JPEG_PASS(WriteDHT(&m_dctbl[0]));
        if (many) JPEG_PASS(WriteDHT(&m_dctbl[1]));
        JPEG_PASS(WriteDHT(&m_actbl[0]));
        if (many) JPEG_PASS(WriteDHT(&m_actbl[1]));
    }
    return m_jpeg_restart_interval ? WriteDRI(m_jpeg_restart_interval) : JPEG_OK;
}

_JPEG_ERROR CJPEGEncoder::WriteData()
{
    switch (m_jpeg_mode) {
    case JPEG_BASELINE: return EncodeScanBaseline();
    case JPEG_PROGRESSIVE: return EncodeScanProgressive();
    case JPEG_LOSSLESS: return EncodeScanLossless();
    }
    return JPEG_OK;
}
