// The encoder's road of one row of MCUs: colour, sampling, transform, and the sequential coding of the
// blocks.
#include "jpegenc.h"

#include <cstring>

namespace {
using ToPlane = QovStatus (*)(const Qov8u* src, int srcStep, Qov8u* dst, int dstStep, QoviSize roi);
using ToPlanes = QovStatus (*)(const Qov8u* src, int srcStep, Qov8u* const* dst, int dstStep, QoviSize roi);

struct Conversion {
    _JPEG_COLOR src, stream;
    int ncomp;
    ToPlane one;
    ToPlanes many;
};

const Conversion conversions[] = {
    {JC_UNKNOWN, JC_UNKNOWN, 1, qoviCopy_8u_C1R, nullptr},
    {JC_UNKNOWN, JC_UNKNOWN, 3, nullptr, qoviCopy_8u_C3P3R},
    {JC_UNKNOWN, JC_UNKNOWN, 4, nullptr, qoviCopy_8u_C4P4R},
    {JC_GRAY, JC_GRAY, 1, qoviCopy_8u_C1R, nullptr},
    {JC_RGB, JC_GRAY, 1, qoviRGBToY_JPEG_8u_C3C1R, nullptr},
    {JC_RGB, JC_RGB, 3, nullptr, qoviCopy_8u_C3P3R},
    {JC_RGB, JC_YCBCR, 3, nullptr, qoviRGBToYCbCr_JPEG_8u_C3P3R},
    {JC_BGR, JC_YCBCR, 3, nullptr, qoviBGRToYCbCr_JPEG_8u_C3P3R},
    {JC_CMYK, JC_CMYK, 4, nullptr, qoviCopy_8u_C4P4R},
    {JC_CMYK, JC_YCCK, 4, nullptr, qoviCMYKToYCCK_JPEG_8u_C4P4R},
};
} // namespace

// A pair of colours without a conversion leaves the planes as they are: black.
_JPEG_ERROR CJPEGEncoder::ColorConvert(int row, int thread)
{
    m_ccHeight = row == m_numyMCU - 1 ? m_mcuHeight - m_yPadding : m_mcuHeight;
    const QoviSize roi = {m_src_width, m_ccHeight};
    const Qov8u* src = m_src + ptrdiff_t(row) * m_mcuHeight * m_src_step;
    const int step = m_ccomp[0].m_cc_step;
    Qov8u* planes[4];
    for (int i = 0; i < 4; i++) planes[i] = m_ccomp[i].GetCCBufferPtr(thread);

    for (const Conversion& c : conversions) {
        if (c.src != m_src_color || c.stream != m_jpeg_color || c.ncomp != m_jpeg_ncomp) continue;
        return FromStatus(c.one ? c.one(src, m_src_step, planes[0], step, roi)
                                : c.many(src, m_src_step, planes, step, roi));
    }
    if (m_src_color == JC_YCBCR && m_jpeg_color == JC_YCBCR && m_src_sampling == JS_422 &&
        m_jpeg_sampling == JS_422) {
        const int steps[3] = {step, m_ccomp[1].m_cc_step, m_ccomp[2].m_cc_step};
        return FromStatus(qoviYCbCr422_8u_C2P3R(src, m_src_step, planes, steps, roi));
    }
    const bool unknown = m_src_color == JC_UNKNOWN && m_jpeg_color == JC_UNKNOWN;
    return unknown ? JPEG_NOT_SUPPORTED : JPEG_OK;
}

// Repeats the last column and, in the last row of MCUs, the last row. The record keeps the height that is
// left.
static void padPlane(CJPEGColorComponent& comp, Qov8u* plane, int validWidth, int width, int yPadding)
{
    const ptrdiff_t step = comp.m_cc_step;
    comp.m_cc_height -= yPadding;
    if (validWidth < width) {
        Qov8u* row = plane;
        for (int y = 0; y < comp.m_cc_height; y++, row += step)
            std::memset(row + validWidth, row[validWidth - 1], size_t(width - validWidth));
    }
    Qov8u* below = plane + comp.m_cc_height * step;
    for (int y = 0; y < yPadding; y++, below += step) std::memcpy(below, below - step, size_t(step));
}

_JPEG_ERROR CJPEGEncoder::DownSampling(int row, int thread)
{
    const int yPadding = row == m_numyMCU - 1 ? m_yPadding : 0;
    for (int i = 0; i < m_jpeg_ncomp; i++) {
        CJPEGColorComponent& comp = m_ccomp[i];
        Qov8u* cc = comp.GetCCBufferPtr(thread);
        Qov8u* ss = comp.GetSSBufferPtr(thread);
        const int step = comp.m_cc_step;

        // Chroma of a 4:2:2 source has come in at half width.
        const bool half = comp.m_h_factor == 2 && comp.m_v_factor == 1 && m_src_sampling == JS_422;
        if (half) {
            padPlane(comp, cc, (m_src_width + 1) / 2, comp.m_ss_step, yPadding);
            const QoviSize roi = {comp.m_ss_step, comp.m_ss_height};
            JPEG_PASS(FromStatus(qoviCopy_8u_C1R(cc, step, ss, comp.m_ss_step, roi)));
            continue;
        }

        padPlane(comp, cc, m_src_width, m_ccWidth, yPadding);
        if (comp.m_h_factor == 1) {
            JPEG_PASS(FromStatus(qovsCopy_8u(cc, ss, comp.m_cc_bufsize)));
            continue;
        }
        const ptrdiff_t rowsBytes = ptrdiff_t(comp.m_v_factor) * step;
        for (int y = 0; y < comp.m_ss_height; y++, cc += rowsBytes, ss += comp.m_ss_step) {
            const QovStatus status = comp.m_v_factor == 1
                                         ? qoviSampleDownRowH2V1_Box_JPEG_8u_C1(cc, step, ss)
                                         : qoviSampleDownRowH2V2_Box_JPEG_8u_C1(cc, cc + step, step, ss);
            JPEG_PASS(FromStatus(status));
        }
    }
    return JPEG_OK;
}

// Blocks come out in the order of an interleaved scan (A.2.3).
_JPEG_ERROR CJPEGEncoder::TransformMCURowBL(Qov16s* block, int thread)
{
    struct Plane {
        const Qov8u* mcu;
        const Qov16u* table;
        ptrdiff_t blockRow; // bytes
        int step, h, v;
    } planes[4];
    for (int i = 0; i < m_jpeg_ncomp; i++) {
        CJPEGColorComponent& comp = m_ccomp[i];
        planes[i] = {comp.GetSSBufferPtr(thread),
                     m_qntbl[comp.m_q_selector].m_table,
                     ptrdiff_t(8) * comp.m_ss_step,
                     comp.m_ss_step,
                     comp.m_hsampling,
                     comp.m_vsampling};
    }

    const Plane* const end = planes + m_jpeg_ncomp;
    for (int x = 0; x < m_numxMCU; x++) {
        for (Plane* plane = planes; plane != end; plane++) {
            const Qov8u* left = plane->mcu;
            for (int k = 0; k < plane->v; k++, left += plane->blockRow) {
                for (int l = 0; l < plane->h; l++, block += 64) {
                    const QovStatus status =
                        qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R(left + l * 8, plane->step, block, plane->table);
                    if (status != qovStsNoErr) return JPEG_INTERNAL_ERROR;
                }
            }
            plane->mcu += plane->h * 8;
        }
    }
    return JPEG_OK;
}

_JPEG_ERROR CJPEGEncoder::EncodeHuffmanMCURowBL(const Qov16s* block)
{
    struct Coder {
        const QoviEncodeHuffmanSpec *dc, *ac;
        Qov16s* lastDC;
        int nblocks;
    } coders[4];
    for (int i = 0; i < m_jpeg_ncomp; i++) {
        CJPEGColorComponent& comp = m_ccomp[i];
        coders[i] = {m_dctbl[comp.m_dc_selector].m_table, m_actbl[comp.m_ac_selector].m_table, &comp.m_lastDC,
                     comp.m_nblocks};
    }

    const Coder* const end = coders + m_jpeg_ncomp;
    const _bitstream dst = m_dst;
    QoviEncodeHuffmanState* const state = m_state.m_state;
    for (int x = 0; x < m_numxMCU; x++) {
        if (m_jpeg_restart_interval && m_restarts_to_go == 0) JPEG_PASS(ProcessRestart(nullptr, 0, 63, 0, 0));
        for (const Coder* coder = coders; coder != end; coder++) {
            for (int i = 0; i < coder->nblocks; i++, block += 64) {
                const QovStatus status =
                    qoviEncodeHuffman8x8_JPEG_16s1u_C1(block, dst.pData, dst.DataLen, &m_dst.currPos,
                                                       coder->lastDC, coder->dc, coder->ac, state, 0);
                if (status != qovStsNoErr) return JPEG_INTERNAL_ERROR;
            }
        }
        if (m_jpeg_restart_interval) m_restarts_to_go--;
    }
    return JPEG_OK;
}
