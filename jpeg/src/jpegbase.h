// What the JPEG encoder and decoder share: error codes, enumerations, the byte cursor, owned buffers, the
// record of a component, and owners of the library's Huffman and quantisation tables (ITU-T T.81).
//
// Nothing throws and nothing prints; every operation that can fail answers a _JPEG_ERROR. Enumerations are
// kept in ints, so that any number a caller hands in is a defined value.
#ifndef JPEG_JPEGBASE_H
#define JPEG_JPEGBASE_H

#include "qovcore.h"
#include "qovj.h"

enum [[nodiscard]] _JPEG_ERROR : int{
    JPEG_OK = 0,
    JPEG_NOT_SUPPORTED = -1,
    JPEG_INTERNAL_ERROR = -2,
    JPEG_BUFFER_TOO_SMALL = -3,
    JPEG_OUT_OF_MEMORY = -4,
    JPEG_BAD_SEGMENT_LENGTH = -5,
    JPEG_BAD_HUFFMAN_TABLE = -6,
    JPEG_BAD_QUANT_SEGMENT = -7,
    JPEG_BAD_SCAN_SEGMENT = -8,
    JPEG_BAD_FRAME_SEGMENT = -9,
    JPEG_BAD_COMPONENT_ID = -10,
    JPEG_BAD_SAMPLING = -11,
    JPEG_BAD_RESTART = -12 // has a text, but restart numbers are not checked
};

// "unknown code" for a value that is none of the above.
const char* GetErrorStr(_JPEG_ERROR code);

enum _JPEG_COLOR : int {
    JC_UNKNOWN = 0,
    JC_GRAY = 1,
    JC_RGB = 2,
    JC_BGR = 3,
    JC_YCBCR = 4,
    JC_CMYK = 5,
    JC_YCCK = 6
};

// Sampling factors (horizontal, vertical) of the first component over those of the second.
enum _JPEG_SAMPLING : int {
    JS_444 = 0, // 1,1 over 1,1
    JS_422 = 1, // 2,1 over 1,1
    JS_244 = 2, // 1,2 over 1,1
    JS_411 = 3, // 2,2 over 1,1
    JS_OTHER = 4
};

enum _JPEG_MODE : int { JPEG_BASELINE = 0, JPEG_PROGRESSIVE = 1, JPEG_LOSSLESS = 2 };

enum _JPEG_OPERATION : int { JO_READ_HEADER = 0, JO_READ_DATA = 1 };

// The second byte of a marker, 0 for none; a plain int, because the primitives store into it.
typedef int _JPEG_MARKER;

enum : _JPEG_MARKER {
    JM_NONE = 0,
    JM_SOF0 = 0xC0,
    JM_SOF1 = 0xC1,
    JM_SOF2 = 0xC2,
    JM_SOF3 = 0xC3,
    JM_DHT = 0xC4,
    JM_SOF5 = 0xC5,
    JM_SOF6 = 0xC6,
    JM_SOF7 = 0xC7,
    JM_SOF9 = 0xC9,
    JM_SOFA = 0xCA,
    JM_SOFB = 0xCB,
    JM_SOFD = 0xCD,
    JM_SOFE = 0xCE,
    JM_SOFF = 0xCF,
    JM_RST0 = 0xD0,
    JM_RST7 = 0xD7,
    JM_SOI = 0xD8,
    JM_EOI = 0xD9,
    JM_SOS = 0xDA,
    JM_DQT = 0xDB,
    JM_DRI = 0xDD,
    JM_APP0 = 0xE0,
    JM_APP1 = 0xE1,
    JM_APP14 = 0xEE,
    JM_COM = 0xFE
};

// Passes a failure on to the caller.
#define JPEG_PASS(call)                                                                                      \
    do {                                                                                                     \
        const _JPEG_ERROR passed_ = (call);                                                                  \
        if (passed_ != JPEG_OK) return passed_;                                                              \
    } while (false)

// The road of most primitives' statuses: anything but 0 is an internal error.
inline _JPEG_ERROR FromStatus(QovStatus status)
{
    return status == qovStsNoErr ? JPEG_OK : JPEG_INTERNAL_ERROR;
}

// A cursor over the caller's bytes. At the end of the data every operation answers JPEG_BUFFER_TOO_SMALL; of
// a word the first byte is then already written or read.
struct _bitstream {
    Qov8u* pData = nullptr;
    int DataLen = 0;
    int currPos = 0; // of the next byte

    _JPEG_ERROR _WRITE_BYTE(int byte);
    _JPEG_ERROR _WRITE_WORD(int word); // high byte first
    _JPEG_ERROR _READ_BYTE(int* byte);
    _JPEG_ERROR _READ_WORD(int* word);
};

// A block from the library's aligned allocator. Not copied.
class CMemoryBuffer {
public:
    CMemoryBuffer() = default;
    ~CMemoryBuffer();
    CMemoryBuffer(const CMemoryBuffer&) = delete;
    CMemoryBuffer& operator=(const CMemoryBuffer&) = delete;

    _JPEG_ERROR Allocate(int size); // frees what is held; on failure the buffer is empty
    void Delete();

    int m_buffer_size = 0;
    Qov8u* m_buffer = nullptr;
};

// One component of the picture and its plane buffers, which hold one row of MCUs.
class CJPEGColorComponent {
public:
    virtual ~CJPEGColorComponent() = default;

    // Black planes of m_cc_height or m_ss_height rows for each thread.
    _JPEG_ERROR CreateBufferCC(int numThreads);
    _JPEG_ERROR CreateBufferSS(int numThreads);
    void DeleteBufferCC();
    void DeleteBufferSS();
    Qov8u* GetCCBufferPtr(int thread);
    Qov8u* GetSSBufferPtr(int thread);

    int m_id = 0;      // as in SOF and SOS
    int m_comp_no = 0; // index
    int m_hsampling = 0;
    int m_vsampling = 0;
    int m_h_factor = 0; // of upsampling: the frame's largest m_hsampling over this one
    int m_v_factor = 0;
    int m_nblocks = 0; // in an MCU
    int m_q_selector = 0;
    int m_dc_selector = 0;
    int m_ac_selector = 0;
    int m_ac_scan_completed = 0; // the last AC scan has been decoded
    int m_cc_height = 0;         // full-resolution plane, on the side of colour conversion
    int m_cc_step = 0;           // bytes
    int m_cc_bufsize = 0;
    int m_ss_height = 0; // subsampled plane
    int m_ss_step = 0;
    int m_ss_bufsize = 0;
    Qov16s m_lastDC = 0;
    CMemoryBuffer m_cc_buffer;
    CMemoryBuffer m_ss_buffer;
    Qov16s* m_curr_row = nullptr; // lossless: rows of samples
    Qov16s* m_prev_row = nullptr;
};

class CJPEGEncoderHuffmanTable {
public:
    virtual ~CJPEGEncoderHuffmanTable();

    _JPEG_ERROR Create();
    _JPEG_ERROR Init(int id, int hclass, const Qov8u* bits, const Qov8u* vals); // as many values as codes
    void Destroy();

    QoviEncodeHuffmanSpec* m_table = nullptr;
    int m_id = 0;
    int m_hclass = 0; // 0 DC, 1 AC
    Qov8u m_bits[16] = {};
    Qov8u m_vals[256] = {};
};

// Empty when constructed or destroyed, valid after Init; between Create and Init neither.
class CJPEGDecoderHuffmanTable {
public:
    virtual ~CJPEGDecoderHuffmanTable();

    _JPEG_ERROR Create();
    _JPEG_ERROR Init(int id, int hclass, const Qov8u* bits, const Qov8u* vals); // as many values as codes
    void Destroy();

    QoviDecodeHuffmanSpec* m_table = nullptr;
    Qov8u m_bits[16] = {};
    Qov8u m_vals[256] = {};
    bool m_bEmpty = true;
    bool m_bValid = false;
    int m_id = 0;
    int m_hclass = 0;
};

class CJPEGEncoderHuffmanState {
public:
    virtual ~CJPEGEncoderHuffmanState();

    _JPEG_ERROR Create();
    _JPEG_ERROR Init();
    void Destroy();

    QoviEncodeHuffmanState* m_state = nullptr;
};

class CJPEGDecoderHuffmanState {
public:
    virtual ~CJPEGDecoderHuffmanState();

    _JPEG_ERROR Create();
    _JPEG_ERROR Init();
    void Destroy();

    QoviDecodeHuffmanState* m_state = nullptr;
};

// Raw steps in zig-zag order and the table prepared from them, both inside the object.
struct QuantStorage {
    static const int alignment = 32;
    Qov8u m_raw_bytes[64 + alignment - 1];
    Qov8u m_table_bytes[64 * sizeof(Qov16u) + alignment - 1];
    Qov8u* m_raw; // aligned starts
    Qov16u* m_table;

    QuantStorage();
    QuantStorage(const QuantStorage&) = delete;
    QuantStorage& operator=(const QuantStorage&) = delete;
};

class CJPEGEncoderQuantTable : public QuantStorage {
public:
    virtual ~CJPEGEncoderQuantTable() = default;

    _JPEG_ERROR Init(int idAndPrecision, int quality, const Qov8u* raw);

    int m_initialized = 0;
    int m_id = 0;
    int m_precision = 0;
};

class CJPEGDecoderQuantTable : public QuantStorage {
public:
    virtual ~CJPEGDecoderQuantTable() = default;

    _JPEG_ERROR Init(int id, const Qov8u* raw);

    int m_initialized = 0;
    int m_id = 0;
    int m_precision = 0;
};

// The tables of ITU-T T.81 annex K: steps in zig-zag order; code counts and values as a DHT segment has them.
extern const Qov8u DefaultLuminanceQuant[64];
extern const Qov8u DefaultChrominanceQuant[64];
extern const Qov8u DefaultLuminanceDCBits[16];
extern const Qov8u DefaultLuminanceDCValues[16];
extern const Qov8u DefaultChrominanceDCBits[16];
extern const Qov8u DefaultChrominanceDCValues[16];
extern const Qov8u DefaultLuminanceACBits[16];
extern const Qov8u DefaultLuminanceACValues[162];
extern const Qov8u DefaultChrominanceACBits[16];
extern const Qov8u DefaultChrominanceACValues[162];

// The codec runs on one thread: the number is 1, and setting it does nothing.
int get_num_threads();
void set_num_threads(int number);

#endif
