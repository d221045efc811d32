// Frame and scan headers (T.81 B.2.2, B.2.3), and what follows from them: sampling, geometry, colour.
#include "jpegdec.h"

#include <algorithm>

// A frame replaces the one before it as a whole; until it has been read without a fault there is none.
_JPEG_ERROR CJPEGDecoder::ParseSOF(_JPEG_MODE mode)
{
    ClearFrame();
    int len = 0, precision = 0, ncomp = 0;
    JPEG_PASS(ReadLength(&len));
    JPEG_PASS(CheckLength(len));
    JPEG_PASS(m_src._READ_BYTE(&precision));
    if (mode == JPEG_LOSSLESS) {
        if (precision < 2 || precision > 16) return JPEG_BAD_FRAME_SEGMENT;
    } else if (precision != 8) {
        return JPEG_NOT_SUPPORTED;
    }
    JPEG_PASS(m_src._READ_WORD(&m_jpeg_height));
    JPEG_PASS(m_src._READ_WORD(&m_jpeg_width));
    JPEG_PASS(m_src._READ_BYTE(&ncomp));
    if (mode == JPEG_LOSSLESS && ncomp != 1) return JPEG_NOT_SUPPORTED;
    if (ncomp > 4) return JPEG_BAD_FRAME_SEGMENT;
    if (len - 6 != 3 * ncomp) return JPEG_BAD_SEGMENT_LENGTH;
    if (ncomp == 0 || m_jpeg_width == 0) return JPEG_BAD_FRAME_SEGMENT;
    JPEG_PASS(ReadComponents(ncomp));
    JPEG_PASS(DetectSampling(ncomp));
    m_jpeg_precision = precision;
    m_jpeg_mode = mode;
    m_jpeg_ncomp = ncomp;
    SetGeometry();
    m_marker = JM_NONE;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::ReadComponents(int ncomp)
{
    for (int i = 0; i < ncomp; i++) {
        CJPEGColorComponent& component = m_ccomp[i];
        int factors = 0;
        JPEG_PASS(m_src._READ_BYTE(&component.m_id));
        JPEG_PASS(m_src._READ_BYTE(&factors));
        JPEG_PASS(m_src._READ_BYTE(&component.m_q_selector));
        component.m_comp_no = i;
        component.m_hsampling = factors >> 4;
        component.m_vsampling = factors & 15;
        component.m_nblocks = component.m_hsampling * component.m_vsampling;
        if (std::min(component.m_hsampling, component.m_vsampling) < 1 ||
            std::max(component.m_hsampling, component.m_vsampling) > 4 || component.m_q_selector > 3)
            return JPEG_BAD_FRAME_SEGMENT;
    }
    return JPEG_OK;
}

// The four patterns that can be brought to full resolution: the first component, and the last of four, have
// the factors of a row, the others 1x1.
_JPEG_ERROR CJPEGDecoder::DetectSampling(int ncomp)
{
    static const struct {
        int h, v;
        _JPEG_SAMPLING name;
    } patterns[] = {{1, 1, JS_444}, {2, 1, JS_422}, {1, 2, JS_244}, {2, 2, JS_411}};

    const auto has = [this](int i, int h, int v) {
        return m_ccomp[i].m_hsampling == h && m_ccomp[i].m_vsampling == v;
    };
    if (ncomp == 1) return has(0, 1, 1) ? JPEG_OK : JPEG_BAD_SAMPLING;
    if (ncomp == 2) return JPEG_OK;
    m_jpeg_sampling = JS_OTHER;
    for (const auto& pattern : patterns)
        if (has(0, pattern.h, pattern.v) && has(1, 1, 1) && has(2, 1, 1) &&
            (ncomp == 3 || has(3, pattern.h, pattern.v)))
            m_jpeg_sampling = pattern.name;
    return JPEG_OK;
}

void CJPEGDecoder::SetGeometry()
{
    for (const CJPEGColorComponent& component : m_ccomp) {
        m_max_hsampling = std::max(m_max_hsampling, component.m_hsampling);
        m_max_vsampling = std::max(m_max_vsampling, component.m_vsampling);
    }
    for (int i = 0; i < m_jpeg_ncomp; i++) {
        m_ccomp[i].m_h_factor = m_max_hsampling / m_ccomp[i].m_hsampling;
        m_ccomp[i].m_v_factor = m_max_vsampling / m_ccomp[i].m_vsampling;
    }
    const int unit = m_jpeg_mode == JPEG_LOSSLESS ? 1 : 8;
    m_mcuWidth = m_max_hsampling * unit;
    m_mcuHeight = m_max_vsampling * unit;
    m_ccHeight = m_mcuHeight;
    m_numxMCU = (m_jpeg_width + m_mcuWidth - 1) / m_mcuWidth;
    m_numyMCU = (m_jpeg_height + m_mcuHeight - 1) / m_mcuHeight;
    m_ccWidth = m_numxMCU * m_mcuWidth;
    m_xPadding = m_ccWidth - m_jpeg_width;
    m_yPadding = m_numyMCU * m_mcuHeight - m_jpeg_height;
}

_JPEG_ERROR CJPEGDecoder::ParseSOS()
{
    int len = 0, Ns = 0;
    JPEG_PASS(ReadLength(&len));
    JPEG_PASS(CheckLength(len));
    m_sos_len = len + 2;
    JPEG_PASS(m_src._READ_BYTE(&Ns));
    if (Ns < 1 || Ns > 4) return JPEG_BAD_SCAN_SEGMENT;
    if (m_jpeg_mode != JPEG_PROGRESSIVE && Ns < m_jpeg_ncomp) return JPEG_NOT_SUPPORTED;
    if (len != 2 * Ns + 4) return JPEG_BAD_SEGMENT_LENGTH;
    for (int i = 0; i < Ns; i++) {
        int id = 0, selectors = 0;
        JPEG_PASS(m_src._READ_BYTE(&id));
        JPEG_PASS(m_src._READ_BYTE(&selectors));
        m_ccomp[i].m_lastDC = 0;
        const auto end = m_ccomp + m_jpeg_ncomp;
        const auto named = std::find_if(m_ccomp, end, [id](const auto& c) { return c.m_id == id; });
        if (named == end) return JPEG_BAD_COMPONENT_ID;
        if ((selectors >> 4) > 3 || (selectors & 15) > 3) return JPEG_BAD_SCAN_SEGMENT;
        m_curr_comp_no = static_cast<int>(named - m_ccomp);
        named->m_dc_selector = selectors >> 4;
        named->m_ac_selector = selectors & 15;
    }
    int AhAl = 0;
    JPEG_PASS(m_src._READ_BYTE(&m_ss));
    JPEG_PASS(m_src._READ_BYTE(&m_se));
    JPEG_PASS(m_src._READ_BYTE(&AhAl));
    m_ah = AhAl >> 4;
    m_al = AhAl & 15;
    m_jpeg_color = DetectColor();
    m_next_restart_num = 0;
    m_restarts_to_go = m_jpeg_restart_interval;
    m_marker = JM_NONE;
    return JPEG_OK;
}

// An Adobe segment says it; without one the number of components has to do, JFIF segment or not.
_JPEG_COLOR CJPEGDecoder::DetectColor() const
{
    const int ncomp = m_jpeg_ncomp;
    if (!m_adobe_app14_detected) return ncomp == 1 ? JC_GRAY : ncomp == 3 ? JC_YCBCR : JC_UNKNOWN;
    switch (m_adobe_app14_transform) {
    case 0: return ncomp == 1 ? JC_GRAY : ncomp == 3 ? JC_RGB : ncomp == 4 ? JC_CMYK : JC_UNKNOWN;
    case 1: return JC_YCBCR;
    case 2: return JC_YCCK;
    default: return JC_UNKNOWN;
    }
}
