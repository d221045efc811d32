// Sequential and progressive scans (ITU-T T.81, F.1 and G.1). A progressive picture is transformed as a
// whole; then each scan goes over its blocks twice: once to count symbols for its Huffman tables, once to
// code.
#include "jpegenc.h"

#include <algorithm>

static bool isAC(int ss, int se)
{
    return ss != 0 && se != 0;
}

// The blocks of one component alone (A.2.2), each an MCU of its own; those that are padding of the
// interleaved order are left out.
template <class Restart, class Code>
_JPEG_ERROR CJPEGEncoder::WalkBand(int component, Restart restart, Code code)
{
    const int h = m_ccomp[component].m_hsampling, v = m_ccomp[component].m_vsampling;
    const int wide = std::min(m_numxMCU * h, (m_src_width + 7) / 8);
    const int high = std::min(m_numyMCU * v, (m_src_height + 7) / 8);
    const ptrdiff_t mcuSize = ptrdiff_t(m_nblock) * 64;
    ptrdiff_t before = 0; // blocks of the MCU's components ahead of this one
    for (int i = 0; i < component; i++) before += m_ccomp[i].m_nblocks;

    for (int y = 0; y < high; y++) {
        const Qov16s* mcu = m_block_buffer + y / v * m_numxMCU * mcuSize + (before + y % v * h) * 64;
        for (int x = 0; x < wide; x += h, mcu += mcuSize) {
            const Qov16s* const end = mcu + std::min(h, wide - x) * 64;
            for (const Qov16s* block = mcu; block != end; block += 64) {
                if (m_jpeg_restart_interval && m_restarts_to_go == 0) JPEG_PASS(restart());
                if (code(block) < 0) return JPEG_INTERNAL_ERROR;
                m_restarts_to_go--;
            }
        }
    }
    return JPEG_OK;
}

// All blocks of all MCUs, in interleaved order.
template <class Restart, class Code>
_JPEG_ERROR CJPEGEncoder::WalkMCUs(Restart restart, Code code)
{
    const Qov16s* block = m_block_buffer;
    for (int mcus = m_numxMCU * m_numyMCU; mcus > 0; mcus--) {
        if (m_jpeg_restart_interval && m_restarts_to_go == 0) JPEG_PASS(restart());
        for (int i = 0; i < m_jpeg_ncomp; i++) {
            CJPEGColorComponent& comp = m_ccomp[i];
            for (const Qov16s* const end = block + comp.m_nblocks * 64; block != end; block += 64)
                if (code(comp, block) < 0) return JPEG_INTERNAL_ERROR;
        }
        m_restarts_to_go--;
    }
    return JPEG_OK;
}

// The state in which a scan and each of its restart intervals begins.
_JPEG_ERROR CJPEGEncoder::BeginInterval()
{
    for (CJPEGColorComponent& comp : m_ccomp) comp.m_lastDC = 0;
    m_restarts_to_go = m_jpeg_restart_interval;
    return m_state.Init();
}

// Writes out what the scan's coding procedure has pending.
QovStatus CJPEGEncoder::FlushState(const int* idx, int ss, int se, int ah, int al)
{
    Qov8u* const dst = m_dst.pData;
    const int dstLen = m_dst.DataLen;
    int* const pos = &m_dst.currPos;
    QoviEncodeHuffmanState* const state = m_state.m_state;
    if (m_jpeg_mode == JPEG_BASELINE)
        return qoviEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst, dstLen, pos, nullptr, nullptr, nullptr, state,
                                                  1);
    if (m_jpeg_mode == JPEG_LOSSLESS)
        return qoviEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, dst, dstLen, pos, nullptr, state, 1);
    if (ss != 0 || se != 0) {
        const auto code =
            ah ? qoviEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1 : qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1;
        const QoviEncodeHuffmanSpec* table = m_actbl[m_ccomp[idx[0]].m_ac_selector].m_table;
        return code(nullptr, dst, dstLen, pos, ss, se, al, table, state, 1);
    }
    if (ah) return qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(nullptr, dst, dstLen, pos, al, state, 1);
    return qoviEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(nullptr, dst, dstLen, pos, nullptr, al, nullptr, state,
                                                      1);
}

_JPEG_ERROR CJPEGEncoder::ProcessRestart(const int* idx, int ss, int se, int ah, int al)
{
    if (FlushState(idx, ss, se, ah, al) < 0) return JPEG_INTERNAL_ERROR;
    JPEG_PASS(WriteRST(m_next_restart_num));
    return BeginInterval();
}

// The counterpart for counting: a restart ends a run of blocks without coefficients.
_JPEG_ERROR CJPEGEncoder::ProcessRestart(int* stats, const int*, int ss, int se, int ah, int al)
{
    if (m_jpeg_mode == JPEG_PROGRESSIVE && (ss != 0 || se != 0)) {
        const auto count = ah ? qoviGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1
                              : qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1;
        JPEG_PASS(FromStatus(count(nullptr, stats, ss, se, al, m_state.m_state, 1)));
    }
    return BeginInterval();
}

// An error in a row is dropped and the scan goes on; the flush or the end marker tells of a buffer that was
// too small.
_JPEG_ERROR CJPEGEncoder::EncodeScanBaseline()
{
    m_ss = 0;
    m_se = 63;
    m_ah = m_al = 0;
    JPEG_PASS(WriteSOS());
    JPEG_PASS(m_state.Init());
    for (int row = 0; row < m_numyMCU; row++) {
        static_cast<void>(ColorConvert(row, 0));
        static_cast<void>(DownSampling(row, 0));
        static_cast<void>(TransformMCURowBL(m_block_buffer, 0));
        static_cast<void>(EncodeHuffmanMCURowBL(m_block_buffer));
    }
    if (FlushState(nullptr, m_ss, m_se, m_ah, m_al) < 0) return JPEG_INTERNAL_ERROR;
    return WriteEOI();
}

_JPEG_ERROR CJPEGEncoder::EncodeScanProgressive()
{
    const ptrdiff_t rowSize = ptrdiff_t(m_numxMCU) * m_nblock * 64;
    for (int row = 0; row < m_numyMCU; row++) {
        JPEG_PASS(ColorConvert(row, 0));
        JPEG_PASS(DownSampling(row, 0));
        JPEG_PASS(TransformMCURowBL(m_block_buffer + row * rowSize, 0));
    }
    for (int i = 0; i < m_scan_count; i++) {
        const JPEGScan& scan = m_scan_script[i];
        m_next_restart_num = 0;
        JPEG_PASS(EncodeScan(scan.ncomps, scan.component, scan.Ss, scan.Se, scan.Ah, scan.Al));
    }
    return WriteEOI();
}

_JPEG_ERROR CJPEGEncoder::EncodeScan(int ncomp, const int* idx, int ss, int se, int ah, int al)
{
    // A table that could not be made shows as a symbol without a code, or as no table at all.
    static_cast<void>(GenerateHuffmanTables(ncomp, idx, ss, se, ah, al));
    JPEG_PASS(BeginInterval());

    Qov8u* const dst = m_dst.pData;
    const int dstLen = m_dst.DataLen;
    int* const pos = &m_dst.currPos;
    QoviEncodeHuffmanState* const state = m_state.m_state;
    const auto restart = [&] { return ProcessRestart(idx, ss, se, ah, al); };
    if (isAC(ss, se)) {
        const CJPEGEncoderHuffmanTable& ac = m_actbl[m_ccomp[idx[0]].m_ac_selector];
        const auto primitive =
            ah ? qoviEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1 : qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1;
        const QoviEncodeHuffmanSpec* const table = ac.m_table;
        JPEG_PASS(WriteDHT(&ac));
        JPEG_PASS(WriteSOS(ncomp, idx, ss, se, ah, al));
        JPEG_PASS(WalkBand(idx[0], restart, [=](const Qov16s* block) {
            return primitive(block, dst, dstLen, pos, ss, se, al, table, state, 0);
        }));
    } else {
        if (!ah) {
            JPEG_PASS(WriteDHT(&m_dctbl[0]));
            if (ncomp > 1) JPEG_PASS(WriteDHT(&m_dctbl[1]));
        }
        JPEG_PASS(WriteSOS(ncomp, idx, ss, se, ah, al));
        JPEG_PASS(WalkMCUs(restart, [=, this](CJPEGColorComponent& comp, const Qov16s* block) {
            if (ah) return qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(block, dst, dstLen, pos, al, state, 0);
            return qoviEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(block, dst, dstLen, pos, &comp.m_lastDC, al,
                                                              m_dctbl[comp.m_dc_selector].m_table, state, 0);
        }));
    }
    return FlushState(idx, ss, se, ah, al) < 0 ? JPEG_INTERNAL_ERROR : JPEG_OK;
}

static _JPEG_ERROR install(CJPEGEncoderHuffmanTable& table, int id, int hclass, const int* statistics)
{
    Qov8u bits[16], vals[256];
    JPEG_PASS(FromStatus(qoviEncodeHuffmanRawTableInit_JPEG_8u(statistics, bits, vals)));
    return table.Init(id, hclass, bits, vals);
}

_JPEG_ERROR CJPEGEncoder::GenerateHuffmanTables(int ncomp, const int* idx, int ss, int se, int ah, int al)
{
    int statistics[2][256] = {}; // by table selector
    JPEG_PASS(BeginInterval());
    if (isAC(ss, se)) {
        const int selector = m_ccomp[idx[0]].m_ac_selector;
        int* const stats = statistics[selector];
        const auto count = ah ? qoviGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1
                              : qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1;
        QoviEncodeHuffmanState* const state = m_state.m_state;
        JPEG_PASS(WalkBand(
            idx[0], [&] { return ProcessRestart(stats, idx, ss, se, ah, al); },
            [=](const Qov16s* block) { return count(block, stats, ss, se, al, state, 0); }));
        JPEG_PASS(FromStatus(count(nullptr, stats, ss, se, al, state, 1)));
        return install(m_actbl[selector], selector, 1, stats);
    }
    if (ah) return JPEG_OK; // a refinement of DC has no table

    JPEG_PASS(WalkMCUs([&] { return ProcessRestart(statistics[0], idx, ss, se, ah, al); },
                       [&](CJPEGColorComponent& comp, const Qov16s* block) {
                           return qoviGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(
                               block, statistics[comp.m_dc_selector], &comp.m_lastDC, al);
                       }));
    for (int i = 0; i < ncomp; i++) {
        const int selector = m_ccomp[i].m_dc_selector;
        JPEG_PASS(install(m_dctbl[selector], selector, 0, statistics[selector]));
    }
    return JPEG_OK;
}
