#include "bmpmemory.h"

#include <cstdio>
#include <cstring>

#include "qovi.h"
#include "qovj_main.h"
#include "qovs.h"

static const int bmpHeadersSize = 54;

// Bytes of a row, which are padded to a multiple of 4.
static long long bmpLineStep(int width, int bitCount)
{
    return (static_cast<long long>(bitCount) * width + 31) / 32 * 4;
}

void BmpMemory::setHeaders(int width, int height, int bitCount, Qov32u dataOffset)
{
    bmpStruct.width = width;
    bmpStruct.height = height;
    bmpStruct.step = qdjCount(bmpLineStep(width, bitCount));
    const long long dataSize = static_cast<long long>(bmpStruct.step) * height;
    bmpStruct.bitCount = bitCount;
    bmpStruct.bufferSize = jp2Struct.bufferSize = static_cast<uint32_t>(qdjCount(dataOffset + dataSize));
    m_dataOffset = dataOffset;
    m_bmpDataSize = qdjCount(dataSize);
}

static bool hasBytes(const qkString& name, Qov32u count)
{
    i_stream file(name, ioRead | ioBinary, false);
    return file.isOpen() && std::fseek(file.m_file, 0, SEEK_END) == 0 && std::ftell(file.m_file) >= count;
}

bool BmpMemory::readBmpHeaders(const qkString& name, int channels)
{
    qdImage unused;
    qdBmpFile file(unused);
    int width, height;
    if (!file.readInfoHeader(name) || !file.ValidCompression() || !file.SetImageWidth(width) ||
        !file.SetImageHeight(height))
        return false;
    const int bitCount = file.infoHeader().biBitCount;
    const Qov32u dataOffset = file.fileHeader().bfOffBits;
    if (bitCount != 8 * channels) return file.error(qkString("biBitCount != ") + qkToText(8 * channels));
    // With less in front of the pixels, what the decoder makes would not fit into the buffer.
    if (dataOffset < bmpHeadersSize) return file.error("Bitmap header is corrupted: bfOffBits is invalid");
    setHeaders(width, height, bitCount, dataOffset);
    // Seen to before there is memory for what the headers promise.
    return hasBytes(name, bmpStruct.bufferSize) || file.error("Read error");
}

void BmpMemory::setJaehneHeaders(QoviSize size, int channels)
{
    setHeaders(size.width, size.height, 8 * channels, bmpHeadersSize);
}

// The shifts keep the buffers from landing on the same sets of the cache.
static bool allocate(uint8_t*& buffer, int size, int shift)
{
    buffer = static_cast<uint8_t*>(qkMalloc(size, 0, shift, MEM_OBJECT_IS_BUFFER));
    if (buffer) std::memset(buffer, 0, static_cast<size_t>(size));
    return buffer != nullptr;
}

bool BmpMemory::mallocData()
{
    const int shift = qkGetVectorShift();
    m_bmpDataCopy = static_cast<Qov8u*>(qk_malloc(m_bmpDataSize));
    return m_bmpDataCopy && allocate(bmpStruct.data, m_bmpDataSize, 0) &&
           allocate(bmpStruct.buffer, static_cast<int>(bmpStruct.bufferSize), shift) &&
           allocate(jp2Struct.buffer, static_cast<int>(jp2Struct.bufferSize), 2 * shift);
}

bool BmpMemory::readBmpData(const qkString& name)
{
    i_stream file(name, ioRead | ioBinary, false);
    if (!file.isOpen() || std::fseek(file.m_file, static_cast<long>(m_dataOffset), SEEK_SET) != 0)
        return false;
    const size_t bytes = static_cast<size_t>(m_bmpDataSize);
    return std::fread(bmpStruct.data, 1, bytes, file.m_file) == bytes;
}

bool BmpMemory::setJaehneData()
{
    const bool colour = bmpStruct.bitCount == 24;
    const QovStatus status = colour ? qoviImageJaehne_8u_C3R(bmpStruct.data, bmpStruct.step, size())
                                    : qoviImageJaehne_8u_C1R(bmpStruct.data, bmpStruct.step, size());
    const char* name = colour ? "qoviImageJaehne_8u_C3R" : "qoviImageJaehne_8u_C1R";
    return !qkIsError(qdTest::checkStatus(status, name));
}

void BmpMemory::keepCopy()
{
    qovsCopy_8u(bmpStruct.data, m_bmpDataCopy, m_bmpDataSize);
}

void BmpMemory::restore()
{
    qovsCopy_8u(m_bmpDataCopy, bmpStruct.data, m_bmpDataSize);
}

void BmpMemory::freeData()
{
    qk_free(m_bmpDataCopy);
    qkFree(bmpStruct.data);
    qkFree(bmpStruct.buffer);
    qkFree(jp2Struct.buffer);
    m_bmpDataCopy = nullptr;
    bmpStruct = {};
    jp2Struct = {};
}
