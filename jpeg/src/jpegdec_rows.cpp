// The road of one row of MCUs: coefficients or differences, component planes, full resolution, the caller's
// picture.
#include "jpegdec.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

QovStatus copyPlane(const Qov8u* const planes[], int step, Qov8u* dst, int dstStep, QoviSize roi)
{
    return qoviCopy_8u_C1R(planes[0], step, dst, dstStep, roi);
}

struct Conversion {
    _JPEG_COLOR from, to;
    int planes, channels;
    QovStatus (*run)(const Qov8u* const planes[], int step, Qov8u* dst, int dstStep, QoviSize roi);
};

const Conversion conversions[] = {
    {JC_UNKNOWN, JC_UNKNOWN, 1, 1, copyPlane},
    {JC_UNKNOWN, JC_UNKNOWN, 3, 3, qoviCopy_8u_P3C3R},
    {JC_UNKNOWN, JC_UNKNOWN, 4, 4, qoviCopy_8u_P4C4R},
    {JC_GRAY, JC_GRAY, 1, 1, copyPlane},
    {JC_GRAY, JC_RGB, 3, 3, qoviCopy_8u_P3C3R},
    {JC_GRAY, JC_BGR, 3, 3, qoviCopy_8u_P3C3R},
    {JC_RGB, JC_RGB, 3, 3, qoviCopy_8u_P3C3R},
    {JC_RGB, JC_BGR, 3, 3, qoviCopy_8u_P3C3R}, // without a swap of channels
    {JC_YCBCR, JC_RGB, 3, 3, qoviYCbCrToRGB_JPEG_8u_P3C3R},
    {JC_YCBCR, JC_BGR, 3, 3, qoviYCbCrToBGR_JPEG_8u_P3C3R},
    {JC_CMYK, JC_CMYK, 4, 4, qoviCopy_8u_P4C4R},
    {JC_YCCK, JC_CMYK, 4, 4, qoviYCCKToCMYK_JPEG_8u_P4C4R},
};

// Null for a pair that leaves the destination alone. Planes of unknown meaning are copied if all are.
const Conversion* findConversion(_JPEG_COLOR from, _JPEG_COLOR to, int ncomp)
{
    for (const Conversion& one : conversions)
        if (one.from == from && one.to == to && (from != JC_UNKNOWN || one.planes == ncomp)) return &one;
    return nullptr;
}

} // namespace

bool CJPEGDecoder::PlanesSuffice() const
{
    const Conversion* const conversion = findConversion(m_jpeg_color, m_dst_color, m_jpeg_ncomp);
    return !conversion || conversion->planes <= m_jpeg_ncomp;
}

// What picture and destination have in common of `rows` rows; may be empty.
QoviSize CJPEGDecoder::DestinationRegion(int firstRow, int rows) const
{
    return {std::min(m_dst_width, m_jpeg_width), std::min(rows, m_dst_height - firstRow)};
}

// Planes to picture. A failure of one step does not keep the next one from showing what there is.
void CJPEGDecoder::RenderMCURow(int row)
{
    (void)UpSampling(row, 0);
    (void)ColorConvert(row, 0);
}

_JPEG_ERROR CJPEGDecoder::ReconstructMCURowBL(const Qov16s* block, int thread)
{
    const ptrdiff_t mcuSize = static_cast<ptrdiff_t>(m_nblock) * 64;
    for (int i = 0; i < m_jpeg_ncomp; i++) {
        CJPEGColorComponent& component = m_ccomp[i];
        const int h = component.m_hsampling, v = component.m_vsampling;
        const bool full = h == m_max_hsampling && v == m_max_vsampling;
        const int step = full ? component.m_cc_step : component.m_ss_step;
        Qov8u* plane = full ? component.GetCCBufferPtr(thread) : component.GetSSBufferPtr(thread);
        if (component.m_h_factor == 2 && component.m_v_factor == 2) plane += step; // the border row above
        const Qov16u* const table = m_qntbl[component.m_q_selector].m_table;
        for (int k = 0; k < v; k++, plane += 8 * step, block += h * 64) {
            const Qov16s* mcu = block;
            Qov8u* dst = plane;
            for (int x = 0; x < m_numxMCU; x++, mcu += mcuSize)
                for (int l = 0; l < h; l++, dst += 8)
                    if (qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R(mcu + l * 64, dst, step, table) < 0)
                        return JPEG_INTERNAL_ERROR;
        }
    }
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::UpSampling(int row, int thread)
{
    for (int i = 0; i < m_jpeg_ncomp; i++) {
        CJPEGColorComponent& component = m_ccomp[i];
        const int ssStep = component.m_ss_step, ccStep = component.m_cc_step;
        Qov8u* ss = component.GetSSBufferPtr(thread);
        Qov8u* cc = component.GetCCBufferPtr(thread);
        const int h = component.m_h_factor, v = component.m_v_factor;

        if (h == 2 && v == 1) {
            if (m_dst_sampling == JS_422) { // the caller wants the chroma as it is
                JPEG_PASS(
                    FromStatus(qoviCopy_8u_C1R(ss, ssStep, cc, ccStep, {ssStep, component.m_ss_height})));
                continue;
            }
            for (int y = 0; y < m_mcuHeight; y++, ss += ssStep, cc += ccStep)
                JPEG_PASS(FromStatus(qoviSampleUpRowH2V1_Triangle_JPEG_8u_C1(ss, ssStep, cc)));
        } else if (h == 1 && v == 2) {
            for (int y = 0; y < m_mcuHeight / 2; y++, ss += ssStep)
                for (int twice = 0; twice < 2; twice++, cc += ccStep)
                    JPEG_PASS(FromStatus(qovsCopy_8u(ss, cc, ssStep)));
        } else if (h == 2 && v == 2) {
            // The border rows: above, the last row of the MCUs before; below, the last row once more, for
            // there is no look-ahead. The next row of MCUs finds its upper neighbour there.
            const int rows = m_mcuHeight / 2;
            Qov8u* const below = ss + (rows + 1) * ssStep;
            (void)qovsCopy_8u(row != 0 ? below : ss + ssStep, ss, ssStep);
            (void)qovsCopy_8u(below - ssStep, below, ssStep);
            for (int y = 0; y < rows; y++) {
                ss += ssStep;
                for (const Qov8u* far : {ss - ssStep, ss + ssStep}) {
                    JPEG_PASS(FromStatus(qoviSampleUpRowH2V2_Triangle_JPEG_8u_C1(ss, far, ssStep, cc)));
                    cc += ccStep;
                }
            }
        }
    }
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::ColorConvert(int row, int thread)
{
    // Told anew for every row: a progressive picture may be rendered more than once.
    m_ccHeight = row == m_numyMCU - 1 ? m_mcuHeight - m_yPadding : m_mcuHeight;
    const int firstRow = row * m_mcuHeight;
    const QoviSize roi = DestinationRegion(firstRow, m_ccHeight);
    if (roi.width < 1 || roi.height < 1) return JPEG_OK;

    const Qov8u* planes[4] = {};
    for (int i = 0; i < m_jpeg_ncomp; i++) planes[i] = m_ccomp[i].GetCCBufferPtr(thread);
    Qov8u* const dst = m_dst + static_cast<ptrdiff_t>(firstRow) * m_dst_step;
    // The primitives look at steps only from two rows on.
    const auto fits = [&](int channels) { return static_cast<Qov64s>(roi.width) * channels <= m_dst_step; };

    if (m_jpeg_color == JC_YCBCR && m_dst_color == JC_YCBCR) {
        if (m_jpeg_sampling != JS_422 || m_dst_sampling != JS_422) return JPEG_OK;
        const int steps[3] = {m_ccomp[0].m_cc_step, m_ccomp[1].m_cc_step, m_ccomp[2].m_cc_step};
        return fits(2) ? FromStatus(qoviYCbCr422_8u_P3C2R(planes, steps, dst, m_dst_step, roi))
                       : JPEG_INTERNAL_ERROR;
    }
    const Conversion* const conversion = findConversion(m_jpeg_color, m_dst_color, m_jpeg_ncomp);
    if (!conversion)
        return m_jpeg_color == JC_UNKNOWN && m_dst_color == JC_UNKNOWN ? JPEG_NOT_SUPPORTED : JPEG_OK;
    if (!fits(conversion->channels)) return JPEG_INTERNAL_ERROR;
    return FromStatus(conversion->run(planes, m_ccomp[0].m_cc_step, dst, m_dst_step, roi));
}

// A row at the start of a restart interval is predicted like the first of the picture (T.81 H.1.2.1).
_JPEG_ERROR CJPEGDecoder::ReconstructMCURowLS(const Qov16s* diff, int row, bool startsInterval, int thread)
{
    (void)thread;
    CJPEGColorComponent& component = m_ccomp[0];
    Qov16s* const curr = component.m_curr_row;
    Qov16s* const prev = component.m_prev_row;
    const int width = m_jpeg_width;
    JPEG_PASS(FromStatus(
        startsInterval ? qoviReconstructPredFirstRow_JPEG_16s_C1(diff, curr, width, m_jpeg_precision, m_al)
                       : qoviReconstructPredRow_JPEG_16s_C1(diff, prev, curr, width, m_ss)));
    // The point transform is undone beside the row, which predicts the next one as it is.
    JPEG_PASS(FromStatus(qovsLShiftC_16s(curr, m_al, prev, width)));

    const QoviSize roi = DestinationRegion(row, 1);
    if (roi.width > 0 && roi.height > 0) {
        const bool deep = m_dst_precision > 8;
        if (static_cast<Qov64s>(roi.width) * (deep ? 2 : 1) > m_dst_step) return JPEG_INTERNAL_ERROR;
        Qov8u* const dst = m_dst + static_cast<ptrdiff_t>(row) * m_dst_step;
        JPEG_PASS(FromStatus(deep ? qovsCopy_16s(prev, reinterpret_cast<Qov16s*>(dst), roi.width)
                                  : qoviConvert_16s8u_C1R(prev, 2 * width, dst, m_dst_step, roi)));
    }
    std::swap(component.m_curr_row, component.m_prev_row);
    return JPEG_OK;
}
