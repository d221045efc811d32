// The lossless scan (ITU-T T.81, annex H): one component of 8-bit rows, differences against a prediction.
#include "jpegenc.h"

#include <utility>

_JPEG_ERROR CJPEGEncoder::EncodeScanLossless()
{
    if (m_jpeg_ncomp != 1 || m_jpeg_restart_interval != 0) return JPEG_NOT_SUPPORTED;
    m_ss = m_predictor;
    m_se = m_ah = 0;
    m_al = m_pt;
    JPEG_PASS(WriteSOS());
    JPEG_PASS(m_state.Init());

    CJPEGColorComponent& comp = m_ccomp[0];
    const QoviEncodeHuffmanSpec* const table = m_dctbl[0].m_table;
    QoviEncodeHuffmanState* const state = m_state.m_state;
    const _bitstream dst = m_dst;
    const int width = m_src_width;
    const Qov8u* src = m_src;
    for (int row = 0; row < m_src_height; row++, src += m_src_step) {
        Qov16s* const samples = comp.m_curr_row;
        JPEG_PASS(FromStatus(qoviConvert_8u16s_C1R(src, m_src_step, samples, width, {width, 1})));
        if (m_al) JPEG_PASS(FromStatus(qovsRShiftC_16s_I(m_al, samples, width)));
        const QovStatus status =
            row == 0
                ? qoviDiffPredFirstRow_JPEG_16s_C1(samples, m_block_buffer, width, m_jpeg_precision, m_al)
                : qoviDiffPredRow_JPEG_16s_C1(samples, comp.m_prev_row, m_block_buffer, width, m_ss);
        JPEG_PASS(FromStatus(status));
        std::swap(comp.m_curr_row, comp.m_prev_row);
        for (const Qov16s *diff = m_block_buffer, *end = diff + width; diff != end; diff++)
            JPEG_PASS(FromStatus(qoviEncodeHuffmanOne_JPEG_16s1u_C1(diff, dst.pData, dst.DataLen,
                                                                    &m_dst.currPos, table, state, 0)));
    }
    if (FlushState(nullptr, m_ss, m_se, m_ah, m_al) < 0) return JPEG_INTERNAL_ERROR;
    return WriteEOI();
}
