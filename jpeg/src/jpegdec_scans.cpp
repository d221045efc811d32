// Scans: buffers, restarts, and the entropy-coded data of sequential, progressive and lossless frames.
#include "jpegdec.h"

#include <algorithm>
#include <climits>
#include <cstddef>

namespace {

const int blockSize = 64;        // coefficients
const int maxBlocksInMCU = 10;   // T.81 B.2.3
const int progressiveMCU = 2560; // bytes for the blocks of one MCU
static_assert(progressiveMCU >= maxBlocksInMCU * blockSize * static_cast<int>(sizeof(Qov16s)));

} // namespace

// At each SOS. Plane buffers are made anew, coefficients stay from scan to scan.
_JPEG_ERROR CJPEGDecoder::Init()
{
    m_num_threads = get_num_threads();
    if (m_jpeg_sampling == JS_OTHER) return JPEG_NOT_SUPPORTED;
    m_nblock = 0;
    for (int i = 0; i < m_jpeg_ncomp; i++) m_nblock += m_ccomp[i].m_nblocks;
    if (m_nblock > maxBlocksInMCU) return JPEG_NOT_SUPPORTED;
    const bool lossless = m_jpeg_mode == JPEG_LOSSLESS;
    if (!lossless && !PlanesSuffice()) return JPEG_NOT_SUPPORTED;

    for (int i = 0; i < m_jpeg_ncomp; i++) {
        CJPEGColorComponent& component = m_ccomp[i];
        component.m_cc_height = m_mcuHeight;
        component.m_cc_step = m_numxMCU * m_mcuWidth * static_cast<int>(lossless ? sizeof(Qov16s) : 1);
        component.m_ss_height = m_mcuHeight / component.m_v_factor;
        component.m_ss_step = component.m_cc_step / component.m_h_factor;
        // Between a row above and one below for the triangle filter.
        if (component.m_h_factor == 2 && component.m_v_factor == 2) component.m_ss_height += 2;
        JPEG_PASS(component.CreateBufferCC(m_num_threads));
        JPEG_PASS(component.CreateBufferSS(m_num_threads));
        component.m_curr_row = reinterpret_cast<Qov16s*>(component.GetCCBufferPtr(0));
        component.m_prev_row = reinterpret_cast<Qov16s*>(component.GetSSBufferPtr(0));
    }

    if (!m_block_buffer) JPEG_PASS(CreateBlocks());
    return m_state.Create();
}

// Differences of a row, coefficients of a row of MCUs or of the whole picture; zeros, as far as they are
// used.
_JPEG_ERROR CJPEGDecoder::CreateBlocks()
{
    const Qov64s mcusInRow = m_numxMCU, mcuSize = m_nblock * blockSize * 2;
    Qov64s size = mcusInRow * 2, used = size;
    if (m_jpeg_mode == JPEG_BASELINE) {
        size = used = mcusInRow * mcuSize * m_num_threads;
    } else if (m_jpeg_mode == JPEG_PROGRESSIVE) {
        size = mcusInRow * m_numyMCU * progressiveMCU;
        used = mcusInRow * m_numyMCU * mcuSize;
    }
    if (size > INT_MAX) return JPEG_OUT_OF_MEMORY;
    m_block_buffer = static_cast<Qov16s*>(qovMalloc(static_cast<int>(size)));
    if (!m_block_buffer) return JPEG_OUT_OF_MEMORY;
    return FromStatus(qovsZero_8u(reinterpret_cast<Qov8u*>(m_block_buffer), static_cast<int>(used)));
}

_JPEG_ERROR CJPEGDecoder::ProcessRestart()
{
    JPEG_PASS(m_state.Init());
    for (CJPEGColorComponent& component : m_ccomp) component.m_lastDC = 0;
    JPEG_PASS(ParseRST());
    m_restarts_to_go = m_jpeg_restart_interval;
    return JPEG_OK;
}

// Whatever marker comes next is taken for the one expected.
_JPEG_ERROR CJPEGDecoder::ParseRST()
{
    if (m_marker == 0xFF) { // a reader stopped on the first byte of a marker
        m_src.currPos--;
        m_marker = JM_NONE;
    }
    if (m_marker == JM_NONE && NextMarker(&m_marker) != JPEG_OK) return JPEG_INTERNAL_ERROR;
    m_marker = JM_NONE;
    m_next_restart_num = (m_next_restart_num + 1) & 7;
    return JPEG_OK;
}

inline _JPEG_ERROR CJPEGDecoder::BeginMCU()
{
    return m_jpeg_restart_interval != 0 && m_restarts_to_go == 0 ? ProcessRestart() : JPEG_OK;
}

inline void CJPEGDecoder::EndMCU()
{
    if (m_jpeg_restart_interval != 0) m_restarts_to_go--;
}

// Motion streams leave out the tables of T.81 K.3.
_JPEG_ERROR CJPEGDecoder::CreateDefaultTables()
{
    const struct {
        CJPEGDecoderHuffmanTable& table;
        int id, hclass;
        const Qov8u *bits, *values;
    } defaults[] = {{m_dctbl[0], 0, 0, DefaultLuminanceDCBits, DefaultLuminanceDCValues},
                    {m_dctbl[1], 1, 0, DefaultChrominanceDCBits, DefaultChrominanceDCValues},
                    {m_actbl[0], 0, 1, DefaultLuminanceACBits, DefaultLuminanceACValues},
                    {m_actbl[1], 1, 1, DefaultChrominanceACBits, DefaultChrominanceACValues}};
    for (const auto& one : defaults) {
        if (!one.table.m_bEmpty) continue;
        JPEG_PASS(one.table.Create());
        JPEG_PASS(one.table.Init(one.id, one.hclass, one.bits, one.values));
    }
    return JPEG_OK;
}

// A damaged row is passed over: its results are dropped on purpose, and decoding goes on with the next one.
_JPEG_ERROR CJPEGDecoder::DecodeScanBaseline()
{
    JPEG_PASS(m_state.Init());
    m_marker = JM_NONE;
    JPEG_PASS(CreateDefaultTables());
    bool over = false;
    _JPEG_ERROR result = JPEG_OK;
    for (int row = 0; row < m_numyMCU; row++) {
        // Once the data are over all rows have the same blocks, which the planes hold already.
        if (!over) {
            result = DecodeHuffmanMCURowBL(m_block_buffer, &over);
            (void)ReconstructMCURowBL(m_block_buffer, 0);
        }
        RenderMCURow(row);
    }
    // Where the data end before the picture does there is no EOI to look for. The block decoder says so by
    // its marker; a restart that was not found has none.
    if (result != JPEG_OK && m_marker == JM_NONE && m_src.currPos >= m_src.DataLen) m_marker = JM_EOI;
    return JPEG_OK;
}

// What a row that fails does not reach keeps the blocks of the row before. *over: there were no data for any
// block of the row, and no restart will bring more.
_JPEG_ERROR CJPEGDecoder::DecodeHuffmanMCURowBL(Qov16s* block, bool* over)
{
    struct {
        const QoviDecodeHuffmanSpec *dcTable, *acTable;
        Qov16s* lastDC;
    } coded[maxBlocksInMCU];
    int n = 0;
    for (int i = 0; i < m_jpeg_ncomp; i++) {
        CJPEGColorComponent& component = m_ccomp[i];
        for (int k = 0; k < component.m_nblocks; k++)
            coded[n++] = {m_dctbl[component.m_dc_selector].m_table, m_actbl[component.m_ac_selector].m_table,
                          &component.m_lastDC};
    }
    QoviDecodeHuffmanState* const state = m_state.m_state;
    for (int mcu = 0; mcu < m_numxMCU; mcu++) {
        JPEG_PASS(BeginMCU());
        for (int k = 0; k < n; k++, block += blockSize) {
            const QovStatus status = qoviDecodeHuffman8x8_JPEG_1u16s_C1(
                m_src.pData, m_src.DataLen, &m_src.currPos, block, coded[k].lastDC, &m_marker,
                coded[k].dcTable, coded[k].acTable, state);
            if (status == qovStsMarker && mcu == 0 && k == 0) *over = m_jpeg_restart_interval == 0;
            if (status < 0) return JPEG_INTERNAL_ERROR;
        }
        EndMCU();
    }
    return JPEG_OK;
}

// The picture is rendered when all data are in, and also after a failure, to show what there is so far.
_JPEG_ERROR CJPEGDecoder::DecodeScanProgressive()
{
    m_scan_count++;
    JPEG_PASS(m_state.Init());
    m_marker = JM_NONE;
    const _JPEG_ERROR result =
        m_ss != 0 && m_se != 0 ? DecodeScanAC(m_ccomp[m_curr_comp_no]) : DecodeScanDC();

    m_ac_scans_completed = 0;
    for (const CJPEGColorComponent& component : m_ccomp)
        m_ac_scans_completed += component.m_ac_scan_completed;
    if (result != JPEG_OK || (m_dc_scan_completed && m_ac_scans_completed == m_jpeg_ncomp)) {
        const ptrdiff_t rowSize = static_cast<ptrdiff_t>(m_numxMCU) * m_nblock * blockSize;
        for (int row = 0; row < m_numyMCU; row++) {
            (void)ReconstructMCURowBL(m_block_buffer + row * rowSize, 0);
            RenderMCURow(row);
        }
    }
    return result;
}

// All components, whatever the scan header lists.
_JPEG_ERROR CJPEGDecoder::DecodeScanDC()
{
    const Qov64s mcus = static_cast<Qov64s>(m_numxMCU) * m_numyMCU;
    Qov16s* block = m_block_buffer;
    for (Qov64s mcu = 0; mcu < mcus; mcu++) {
        JPEG_PASS(BeginMCU());
        for (int i = 0; i < m_jpeg_ncomp; i++) {
            CJPEGColorComponent& component = m_ccomp[i];
            const QoviDecodeHuffmanSpec* const table = m_dctbl[component.m_dc_selector].m_table;
            for (int k = 0; k < component.m_nblocks; k++, block += blockSize) {
                const QovStatus status =
                    m_ah == 0 ? qoviDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(
                                    m_src.pData, m_src.DataLen, &m_src.currPos, block, &component.m_lastDC,
                                    &m_marker, m_al, table, m_state.m_state)
                              : qoviDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(m_src.pData, m_src.DataLen,
                                                                            &m_src.currPos, block, &m_marker,
                                                                            m_al, m_state.m_state);
                if (status < 0) return JPEG_INTERNAL_ERROR;
            }
        }
        EndMCU();
    }
    if (m_al == 0) m_dc_scan_completed = 1;
    return JPEG_OK;
}

// One component. Of its blocks only those that touch the picture are coded (T.81 A.2.2).
_JPEG_ERROR CJPEGDecoder::DecodeScanAC(CJPEGColorComponent& component)
{
    const auto decode =
        m_ah == 0 ? qoviDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1 : qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1;
    const QoviDecodeHuffmanSpec* const table = m_actbl[component.m_ac_selector].m_table;
    const int h = component.m_hsampling, v = component.m_vsampling;
    const int blockRows = std::min(m_numyMCU * v, (m_jpeg_height + 7) / 8);
    const int blockColumns = std::min(m_numxMCU * h, (m_jpeg_width + 7) / 8);
    const ptrdiff_t mcuSize = static_cast<ptrdiff_t>(m_nblock) * blockSize;
    int firstBlock = 0; // of the component in an MCU
    for (int i = 0; i < component.m_comp_no; i++) firstBlock += m_ccomp[i].m_nblocks;

    bool dry = false;
    for (int y = 0; y < blockRows && !dry; y++) {
        Qov16s* block = m_block_buffer + y / v * m_numxMCU * mcuSize + (firstBlock + y % v * h) * blockSize;
        for (int x = 0, l = 0; x < blockColumns && !dry; x++) {
            JPEG_PASS(BeginMCU());
            const QovStatus status = decode(m_src.pData, m_src.DataLen, &m_src.currPos, block, &m_marker,
                                            m_ss, m_se, m_al, table, m_state.m_state);
            if (status < 0) return JPEG_INTERNAL_ERROR;
            EndMCU();
            // A dry pass leaves all further blocks as they are; only a restart would bring new data.
            dry = status == qovStsMarker && m_jpeg_restart_interval == 0;
            block += blockSize;
            if (++l == h) {
                l = 0;
                block += mcuSize - h * blockSize;
            }
        }
    }
    if (m_al == 0) component.m_ac_scan_completed = 1;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::DecodeScanLossless()
{
    JPEG_PASS(m_state.Init());
    m_marker = JM_NONE;
    for (int row = 0; row < m_numyMCU; row++) {
        const bool startsInterval = row == 0 || (m_jpeg_restart_interval != 0 && m_restarts_to_go == 0);
        JPEG_PASS(DecodeHuffmanMCURowLS(m_block_buffer));
        JPEG_PASS(ReconstructMCURowLS(m_block_buffer, row, startsInterval, 0));
    }
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::DecodeHuffmanMCURowLS(Qov16s* diff)
{
    const QoviDecodeHuffmanSpec* const table = m_dctbl[m_ccomp[0].m_dc_selector].m_table;
    QoviDecodeHuffmanState* const state = m_state.m_state;
    for (int mcu = 0; mcu < m_numxMCU; mcu++) {
        JPEG_PASS(BeginMCU());
        const QovStatus status = qoviDecodeHuffmanOne_JPEG_1u16s_C1(
            m_src.pData, m_src.DataLen, &m_src.currPos, diff + mcu, &m_marker, table, state);
        if (status < 0) return JPEG_INTERNAL_ERROR;
        EndMCU();
    }
    return JPEG_OK;
}
