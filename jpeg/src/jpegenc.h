// The JPEG encoder: an interleaved 8-bit picture in memory becomes a stream in the caller's buffer, as
// sequential (SOF0), progressive (SOF2) or lossless (SOF3) data of ITU-T T.81.
//
// Clean, SetSource, SetDestination, WriteHeader, WriteData, in this order; Clean may be left out when the
// object is new. Source and destination belong to the caller. The buffer's last byte is kept in reserve: a
// stream that would fill it is JPEG_BUFFER_TOO_SMALL.
#ifndef JPEG_JPEGENC_H
#define JPEG_JPEGENC_H

#include "jpegbase.h"

#include <cstddef>

// One scan of a progressive picture.
struct JPEGScan {
    int ncomps;
    int component[4];
    int Ss, Se, Ah, Al;
};

// The encoder's plain members: what stands here is what Clean puts back.
struct JPEGEncoderFields {
    const Qov8u* m_src = nullptr;
    int m_src_sample_bytes = 1;
    int m_src_width = 0, m_src_height = 0;
    int m_src_step = 0; // bytes
    int m_src_channels = 0;
    _JPEG_COLOR m_src_color = JC_UNKNOWN;
    _JPEG_SAMPLING m_src_sampling = JS_444;
    _bitstream m_dst;
    int m_jpeg_ncomp = 0;
    int m_jpeg_precision = 8;
    _JPEG_SAMPLING m_jpeg_sampling = JS_444;
    _JPEG_COLOR m_jpeg_color = JC_UNKNOWN;
    int m_jpeg_quality = 100;
    int m_jpeg_restart_interval = 0; // MCUs
    _JPEG_MODE m_jpeg_mode = JPEG_BASELINE;
    int m_numxMCU = 0, m_numyMCU = 0;
    int m_mcuWidth = 0, m_mcuHeight = 0; // samples
    int m_ccWidth = 0, m_ccHeight = 0;   // padded width; rows of the MCU row in work
    int m_xPadding = 0, m_yPadding = 0;  // samples to repeat at the right and below
    int m_restarts_to_go = 0;            // MCUs left in the interval
    int m_next_restart_num = 0;          // 0 to 7
    int m_scan_count = 0;
    int m_predictor = 1;
    int m_pt = 0;
    JPEGScan* m_scan_script = nullptr;
    Qov16s* m_block_buffer = nullptr; // coefficients or differences
    int m_block_bufsize = 0;          // bytes
    int m_num_threads = 0;
    int m_nblock = 0; // blocks in an MCU
};

// Of the fields a caller may set m_jpeg_precision, m_predictor (1 to 7) and m_pt (below the precision) for
// lossless mode, and m_jpeg_ncomp (1, 3, 4) for JC_UNKNOWN in both colours, between SetDestination and
// WriteHeader.
class CJPEGEncoder : public JPEGEncoderFields {
public:
    CJPEGEncoder() = default;
    virtual ~CJPEGEncoder();
    CJPEGEncoder(const CJPEGEncoder&) = delete;
    CJPEGEncoder& operator=(const CJPEGEncoder&) = delete;

    // step: bytes from row to row. channels: as many as `color` has; 2 for JC_YCBCR with JS_422, which is Y0
    // Cb Y1 Cr. Samples of 16 bits are taken here, but WriteHeader refuses them.
    _JPEG_ERROR SetSource(const Qov8u* src, int step, QoviSize size, int channels, _JPEG_COLOR color,
                          _JPEG_SAMPLING sampling);
    _JPEG_ERROR SetSource(const Qov16s* src, int step, QoviSize size, int channels, _JPEG_COLOR color,
                          _JPEG_SAMPLING sampling);

    // After SetSource, whose size it uses. quality: 1 to 100. restartInterval: MCUs, 0 for none. JS_244 is
    // coded as JS_422.
    _JPEG_ERROR SetDestination(Qov8u* dst, int dstSize, int quality, _JPEG_COLOR color,
                               _JPEG_SAMPLING sampling, _JPEG_MODE mode, int restartInterval);
    _JPEG_ERROR WriteHeader();
    _JPEG_ERROR WriteData();
    _JPEG_ERROR Clean();

    int GetNumOfBytes() const { return m_dst.currPos; } // of the stream so far

    int m_ss = 0, m_se = 63, m_al = 0, m_ah = 0; // set by each scan; Clean leaves them
    CJPEGColorComponent m_ccomp[4];
    CJPEGEncoderQuantTable m_qntbl[4];
    CJPEGEncoderHuffmanTable m_dctbl[4];
    CJPEGEncoderHuffmanTable m_actbl[4];
    CJPEGEncoderHuffmanState m_state;

private:
    // Setting up.
    _JPEG_ERROR Init();
    _JPEG_ERROR InitComponent(int number);
    _JPEG_ERROR InitBlockBuffer();
    _JPEG_ERROR InitTables();
    _JPEG_ERROR SelectScanScripts();

    // Marker segments. Each is written whole or not at all.
    _JPEG_ERROR WriteMarker(_JPEG_MARKER marker);
    _JPEG_ERROR WriteSegment(_JPEG_MARKER marker, const Qov8u* payload, int size);
    _JPEG_ERROR WriteSOI();
    _JPEG_ERROR WriteEOI();
    _JPEG_ERROR WriteAPP0();
    _JPEG_ERROR WriteAPP14();
    _JPEG_ERROR WriteCOM(const char* text);
    _JPEG_ERROR WriteDQT(const CJPEGEncoderQuantTable* table);
    _JPEG_ERROR WriteDHT(const CJPEGEncoderHuffmanTable* table);
    _JPEG_ERROR WriteSOF(_JPEG_MARKER marker, int precision);
    _JPEG_ERROR WriteSOF0();
    _JPEG_ERROR WriteSOF1();
    _JPEG_ERROR WriteSOF2();
    _JPEG_ERROR WriteSOF3();
    _JPEG_ERROR WriteDRI(int interval);
    _JPEG_ERROR WriteRST(int number);
    _JPEG_ERROR WriteSOS();
    _JPEG_ERROR WriteSOS(int ncomp, const int* idx, int ss, int se, int ah, int al);

    // The road of one row of MCUs.
    _JPEG_ERROR ColorConvert(int row, int thread);
    _JPEG_ERROR DownSampling(int row, int thread);
    _JPEG_ERROR TransformMCURowBL(Qov16s* block, int thread);
    _JPEG_ERROR EncodeHuffmanMCURowBL(const Qov16s* block);

    // Scans.
    _JPEG_ERROR EncodeScanBaseline();
    _JPEG_ERROR EncodeScanProgressive();
    _JPEG_ERROR EncodeScanLossless();
    _JPEG_ERROR EncodeScan(int ncomp, const int* idx, int ss, int se, int ah, int al);
    _JPEG_ERROR GenerateHuffmanTables(int ncomp, const int* idx, int ss, int se, int ah, int al);
    _JPEG_ERROR BeginInterval();
    template <class Restart, class Code>
    _JPEG_ERROR WalkBand(int component, Restart restart, Code code);
    template <class Restart, class Code>
    _JPEG_ERROR WalkMCUs(Restart restart, Code code);
    QovStatus FlushState(const int* idx, int ss, int se, int ah, int al);
    _JPEG_ERROR ProcessRestart(const int* idx, int ss, int se, int ah, int al);
    _JPEG_ERROR ProcessRestart(int* stats, const int* idx, int ss, int se, int ah, int al);
};

#endif
