// The JPEG decoder: a stream in the caller's buffer becomes an interleaved picture in the caller's memory.
// Reads sequential, progressive and lossless Huffman-coded data of ITU-T T.81 with the application segments
// of JFIF, JFXX, AVI1, Exif and Adobe.
//
// SetSource, ReadHeader, SetDestination, ReadData, Clean, in this order; reusable after Clean. A damaged
// sequential stream gives a partial picture and success. Whatever the bytes are, nothing is read or written
// outside the buffers, and memory is bounded by the size that the frame header tells.
#ifndef JPEG_JPEGDEC_H
#define JPEG_JPEGDEC_H

#include "jpegbase.h"

class CJPEGDecoder {
public:
    CJPEGDecoder();
    virtual ~CJPEGDecoder();
    CJPEGDecoder(const CJPEGDecoder&) = delete;
    CJPEGDecoder& operator=(const CJPEGDecoder&) = delete;

    _JPEG_ERROR SetSource(const Qov8u* src, int srcSize);

    // step: bytes from row to row. `sampling` JS_422 with JC_YCBCR asks for two channels, Y0 Cb Y1 Cr.
    // Samples are 16-bit when `precision` is above 8 (lossless streams only).
    _JPEG_ERROR SetDestination(Qov8u* dst, int step, QoviSize size, int channels, _JPEG_COLOR color,
                               _JPEG_SAMPLING sampling = JS_444, int precision = 8);
    _JPEG_ERROR SetDestination(Qov16s* dst, int step, QoviSize size, int channels, _JPEG_COLOR color,
                               _JPEG_SAMPLING sampling = JS_444, int precision = 16);

    // Reads up to the first SOS and stores what the picture is.
    _JPEG_ERROR ReadHeader(int* width, int* height, int* channels, _JPEG_COLOR* color,
                           _JPEG_SAMPLING* sampling, int* precision);
    _JPEG_ERROR ReadData();
    _JPEG_ERROR Clean();

    // What follows may be read at any time.
    _bitstream m_src;
    Qov8u* m_dst;
    int m_dst_width, m_dst_height;
    int m_dst_step; // bytes
    int m_dst_precision;
    int m_dst_channels;
    _JPEG_COLOR m_dst_color;
    _JPEG_SAMPLING m_dst_sampling;
    int m_jpeg_width, m_jpeg_height, m_jpeg_ncomp;
    int m_jpeg_precision;
    _JPEG_SAMPLING m_jpeg_sampling;
    _JPEG_COLOR m_jpeg_color; // known from the first SOS on
    int m_jpeg_quality;       // not told by a stream
    int m_jpeg_restart_interval;
    _JPEG_MODE m_jpeg_mode;
    int m_jpeg_comment_detected, m_jpeg_comment_size;
    char* m_jpeg_comment; // with a zero behind it
    int m_jfif_app0_detected, m_jfif_app0_major, m_jfif_app0_minor, m_jfif_app0_units;
    int m_jfif_app0_xDensity, m_jfif_app0_yDensity, m_jfif_app0_thumbWidth, m_jfif_app0_thumbHeight;
    int m_jfxx_app0_detected, m_jfxx_thumbnails_type;
    int m_avi1_app0_detected, m_avi1_app0_polarity;
    int m_exif_app1_detected;
    int m_exif_app1_data_size; // of the segment: six bytes more than the payload, the block ends in zeros
    Qov8u* m_exif_app1_data;   // the TIFF structure
    int m_adobe_app14_detected, m_adobe_app14_version, m_adobe_app14_flags0, m_adobe_app14_flags1;
    int m_adobe_app14_transform;
    int m_max_hsampling, m_max_vsampling;
    int m_numxMCU, m_numyMCU, m_mcuWidth, m_mcuHeight;
    int m_ccWidth, m_ccHeight; // padded width; rows of the MCU row in work
    int m_xPadding, m_yPadding;
    int m_restarts_to_go, m_next_restart_num;
    int m_sos_len;      // length field of the last SOS
    int m_curr_comp_no; // last component that the last SOS named
    int m_ss, m_se, m_al, m_ah;
    int m_dc_scan_completed, m_ac_scans_completed;
    _JPEG_MARKER m_marker;  // in hand, JM_NONE when there is none
    int m_scan_count;       // progressive scans so far
    Qov16s* m_block_buffer; // coefficients or differences
    int m_num_threads;
    int m_nblock; // blocks in an MCU
    CJPEGColorComponent m_ccomp[4];
    CJPEGDecoderQuantTable m_qntbl[4];
    CJPEGDecoderHuffmanTable m_dctbl[4];
    CJPEGDecoderHuffmanTable m_actbl[4];
    CJPEGDecoderHuffmanState m_state;

private:
    void Reset();
    void ClearSegments(); // what the segments besides frame and tables have told
    void ClearFrame();    // the frame, its geometry, buffers and the progress of its scans

    _JPEG_ERROR ParseJPEGBitStream(_JPEG_OPERATION op);
    _JPEG_ERROR NextMarker(_JPEG_MARKER* marker);
    _JPEG_ERROR ParseSegment(_JPEG_OPERATION op); // the one that m_marker names
    _JPEG_ERROR ReadScan();

    // Marker segments, the cursor behind the marker. Each ends with m_marker cleared.
    _JPEG_ERROR ReadLength(int* len);       // of the bytes behind the length field
    _JPEG_ERROR CheckLength(int len) const; // not negative, and the bytes are there
    _JPEG_ERROR SkipMarker();
    _JPEG_ERROR ParseSOI();
    _JPEG_ERROR ParseEOI();
    _JPEG_ERROR ParseAPP0();
    _JPEG_ERROR ParseAPP1();
    _JPEG_ERROR ParseAPP14();
    _JPEG_ERROR ParseCOM();
    _JPEG_ERROR ParseDQT();
    _JPEG_ERROR ParseDHT();
    _JPEG_ERROR ParseDRI();
    _JPEG_ERROR ParseSOF(_JPEG_MODE mode);
    _JPEG_ERROR ParseSOS();
    _JPEG_ERROR ParseRST();
    bool SegmentStartsWith(const void* name, int size) const;
    _JPEG_ERROR ReadComponents(int ncomp);
    _JPEG_ERROR DetectSampling(int ncomp);
    void SetGeometry();
    _JPEG_COLOR DetectColor() const;

    // Scans.
    _JPEG_ERROR Init();
    _JPEG_ERROR CreateBlocks();
    _JPEG_ERROR CreateDefaultTables();
    _JPEG_ERROR BeginMCU();
    void EndMCU();
    _JPEG_ERROR ProcessRestart();
    _JPEG_ERROR DecodeScanBaseline();
    _JPEG_ERROR DecodeScanProgressive();
    _JPEG_ERROR DecodeScanDC();
    _JPEG_ERROR DecodeScanAC(CJPEGColorComponent& component);
    _JPEG_ERROR DecodeScanLossless();
    _JPEG_ERROR DecodeHuffmanMCURowBL(Qov16s* block, bool* over);
    _JPEG_ERROR DecodeHuffmanMCURowLS(Qov16s* diff);

    // The road of one row of MCUs into the picture.
    bool PlanesSuffice() const; // for the pair of colours
    QoviSize DestinationRegion(int firstRow, int rows) const;
    void RenderMCURow(int row);
    _JPEG_ERROR ReconstructMCURowBL(const Qov16s* block, int thread);
    _JPEG_ERROR ReconstructMCURowLS(const Qov16s* diff, int row, bool startsInterval, int thread);
    _JPEG_ERROR UpSampling(int row, int thread);
    _JPEG_ERROR ColorConvert(int row, int thread);
};

#endif
