#include "jpegbase.h"

#include <algorithm>
#include <climits>
#include <cstddef>

const char* GetErrorStr(_JPEG_ERROR code)
{
    static const char* const texts[] = {"no error",
                                        "not supported",
                                        "internal error",
                                        "buffer too small",
                                        "out of memory",
                                        "bad segment length",
                                        "bad huffman table",
                                        "bad quant segment",
                                        "bad scan segment",
                                        "bad frame segment",
                                        "bad component id",
                                        "bad sampling factors",
                                        "wrong restart marker"};
    return code <= JPEG_OK && code >= JPEG_BAD_RESTART ? texts[-code] : "unknown code";
}

int get_num_threads()
{
    return 1;
}

void set_num_threads(int) {}

// A position may have been moved past the end by a segment that is longer than the data.
static bool atEnd(const _bitstream& stream)
{
    return stream.currPos < 0 || stream.currPos >= stream.DataLen;
}

_JPEG_ERROR _bitstream::_WRITE_BYTE(int byte)
{
    if (atEnd(*this)) return JPEG_BUFFER_TOO_SMALL;
    pData[currPos++] = Qov8u(byte & 0xFF);
    return JPEG_OK;
}

_JPEG_ERROR _bitstream::_WRITE_WORD(int word)
{
    JPEG_PASS(_WRITE_BYTE(word >> 8));
    return _WRITE_BYTE(word);
}

_JPEG_ERROR _bitstream::_READ_BYTE(int* byte)
{
    if (atEnd(*this)) return JPEG_BUFFER_TOO_SMALL;
    *byte = pData[currPos++];
    return JPEG_OK;
}

_JPEG_ERROR _bitstream::_READ_WORD(int* word)
{
    int high, low;
    JPEG_PASS(_READ_BYTE(&high));
    JPEG_PASS(_READ_BYTE(&low));
    *word = (high << 8) + low;
    return JPEG_OK;
}

CMemoryBuffer::~CMemoryBuffer()
{
    Delete();
}

_JPEG_ERROR CMemoryBuffer::Allocate(int size)
{
    Delete();
    m_buffer = static_cast<Qov8u*>(qovMalloc(size));
    if (!m_buffer) return JPEG_OUT_OF_MEMORY;
    m_buffer_size = size;
    return JPEG_OK;
}

void CMemoryBuffer::Delete()
{
    qovFree(m_buffer);
    m_buffer = nullptr;
    m_buffer_size = 0;
}

// A plane keeps what it had where no colour conversion writes, so it starts black.
static _JPEG_ERROR createPlane(CMemoryBuffer& buffer, int height, int step, int numThreads, int* planeSize)
{
    *planeSize = 0;
    buffer.Delete();
    const long long plane = 1ll * height * step;
    if (plane > INT_MAX || plane * numThreads > INT_MAX) return JPEG_OUT_OF_MEMORY;
    JPEG_PASS(buffer.Allocate(int(plane * numThreads)));
    *planeSize = int(plane);
    return FromStatus(qovsZero_8u(buffer.m_buffer, buffer.m_buffer_size));
}

_JPEG_ERROR CJPEGColorComponent::CreateBufferCC(int numThreads)
{
    return createPlane(m_cc_buffer, m_cc_height, m_cc_step, numThreads, &m_cc_bufsize);
}

_JPEG_ERROR CJPEGColorComponent::CreateBufferSS(int numThreads)
{
    return createPlane(m_ss_buffer, m_ss_height, m_ss_step, numThreads, &m_ss_bufsize);
}

void CJPEGColorComponent::DeleteBufferCC()
{
    m_cc_buffer.Delete();
}

void CJPEGColorComponent::DeleteBufferSS()
{
    m_ss_buffer.Delete();
}

Qov8u* CJPEGColorComponent::GetCCBufferPtr(int thread)
{
    return m_cc_buffer.m_buffer + ptrdiff_t(thread) * m_cc_bufsize;
}

Qov8u* CJPEGColorComponent::GetSSBufferPtr(int thread)
{
    return m_ss_buffer.m_buffer + ptrdiff_t(thread) * m_ss_bufsize;
}

// A block of the library in place of the one held. Its zeros are no valid block: a use before the block's own
// set-up is refused by the primitives.
template <class Opaque>
static _JPEG_ERROR createOpaque(QovStatus (*getBufSize)(int*), Opaque*& block)
{
    int size = 0;
    if (getBufSize(&size) != qovStsNoErr) return JPEG_INTERNAL_ERROR;
    qovFree(block);
    block = static_cast<Opaque*>(qovMalloc(size));
    if (!block) return JPEG_OUT_OF_MEMORY;
    return FromStatus(qovsZero_8u(reinterpret_cast<Qov8u*>(block), size));
}

template <class Opaque>
static void destroyOpaque(Opaque*& block)
{
    qovFree(block);
    block = nullptr;
}

// Takes over a DHT description. Counts that add up to more than 256 are left to the primitive to refuse.
template <class Table>
static void describe(Table& table, int id, int hclass, const Qov8u* bits, const Qov8u* vals)
{
    table.m_id = id & 15;
    table.m_hclass = hclass & 15;
    int codes = 0;
    for (int i = 0; i < 16; i++) codes += table.m_bits[i] = bits[i];
    codes = std::min(codes, 256);
    std::copy_n(vals, codes, table.m_vals);
    std::fill(table.m_vals + codes, table.m_vals + 256, Qov8u(0));
}

template <class Table>
static void undescribe(Table& table)
{
    const Qov8u none[16] = {};
    describe(table, 0, 0, none, none);
    destroyOpaque(table.m_table);
}

CJPEGEncoderHuffmanTable::~CJPEGEncoderHuffmanTable()
{
    Destroy();
}

_JPEG_ERROR CJPEGEncoderHuffmanTable::Create()
{
    return createOpaque(qoviEncodeHuffmanSpecGetBufSize_JPEG_8u, m_table);
}

_JPEG_ERROR CJPEGEncoderHuffmanTable::Init(int id, int hclass, const Qov8u* bits, const Qov8u* vals)
{
    describe(*this, id, hclass, bits, vals);
    return FromStatus(qoviEncodeHuffmanSpecInit_JPEG_8u(m_bits, m_vals, m_table));
}

void CJPEGEncoderHuffmanTable::Destroy()
{
    undescribe(*this);
}

CJPEGDecoderHuffmanTable::~CJPEGDecoderHuffmanTable()
{
    Destroy();
}

_JPEG_ERROR CJPEGDecoderHuffmanTable::Create()
{
    m_bEmpty = true;
    m_bValid = false;
    JPEG_PASS(createOpaque(qoviDecodeHuffmanSpecGetBufSize_JPEG_8u, m_table));
    m_bEmpty = false;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoderHuffmanTable::Init(int id, int hclass, const Qov8u* bits, const Qov8u* vals)
{
    describe(*this, id, hclass, bits, vals);
    m_bValid = false;
    JPEG_PASS(FromStatus(qoviDecodeHuffmanSpecInit_JPEG_8u(m_bits, m_vals, m_table)));
    m_bValid = true;
    m_bEmpty = false;
    return JPEG_OK;
}

void CJPEGDecoderHuffmanTable::Destroy()
{
    undescribe(*this);
    m_bEmpty = true;
    m_bValid = false;
}

CJPEGEncoderHuffmanState::~CJPEGEncoderHuffmanState()
{
    Destroy();
}

_JPEG_ERROR CJPEGEncoderHuffmanState::Create()
{
    return createOpaque(qoviEncodeHuffmanStateGetBufSize_JPEG_8u, m_state);
}

_JPEG_ERROR CJPEGEncoderHuffmanState::Init()
{
    return FromStatus(qoviEncodeHuffmanStateInit_JPEG_8u(m_state));
}

void CJPEGEncoderHuffmanState::Destroy()
{
    destroyOpaque(m_state);
}

CJPEGDecoderHuffmanState::~CJPEGDecoderHuffmanState()
{
    Destroy();
}

_JPEG_ERROR CJPEGDecoderHuffmanState::Create()
{
    return createOpaque(qoviDecodeHuffmanStateGetBufSize_JPEG_8u, m_state);
}

_JPEG_ERROR CJPEGDecoderHuffmanState::Init()
{
    return FromStatus(qoviDecodeHuffmanStateInit_JPEG_8u(m_state));
}

void CJPEGDecoderHuffmanState::Destroy()
{
    destroyOpaque(m_state);
}

QuantStorage::QuantStorage()
    : m_raw_bytes{}, m_table_bytes{}, m_raw(static_cast<Qov8u*>(qovAlignPtr(m_raw_bytes, alignment))),
      m_table(static_cast<Qov16u*>(qovAlignPtr(m_table_bytes, alignment)))
{
}

_JPEG_ERROR CJPEGEncoderQuantTable::Init(int idAndPrecision, int quality, const Qov8u* raw)
{
    m_precision = (idAndPrecision >> 4) & 15;
    m_id = idAndPrecision & 15;
    JPEG_PASS(FromStatus(qovsCopy_8u(raw, m_raw, 64)));
    JPEG_PASS(FromStatus(qoviQuantFwdRawTableInit_JPEG_8u(m_raw, quality)));
    JPEG_PASS(FromStatus(qoviQuantFwdTableInit_JPEG_8u16u(m_raw, m_table)));
    m_initialized = 1;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoderQuantTable::Init(int id, const Qov8u* raw)
{
    m_id = id & 15;
    m_precision = 0;
    JPEG_PASS(FromStatus(qovsCopy_8u(raw, m_raw, 64)));
    JPEG_PASS(FromStatus(qoviQuantInvTableInit_JPEG_8u16u(m_raw, m_table)));
    m_initialized = 1;
    return JPEG_OK;
}
