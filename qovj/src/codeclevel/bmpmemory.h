// A picture as a BMP file has it, and the memory between which the JPEG 2000 codec works on it.
#ifndef QOVJ_BMPMEMORY_H
#define QOVJ_BMPMEMORY_H

#include "codecbuffers.h"
#include "qd.h"

class BmpMemory {
public:
    // What the picture is: that of a file, or a synthetic one. 1 channel is 8 bits to a pixel, 3 are 24.
    // False, after a message: the file is of no use here.
    bool readBmpHeaders(const qkString& name, int channels);
    void setJaehneHeaders(QoviSize size, int channels);

    // Then its memory, and then its pixels.
    bool mallocData();
    bool readBmpData(const qkString& name);
    bool setJaehneData();
    void keepCopy();
    void restore(); // what keepCopy() has kept
    void freeData();

    QoviSize size() const { return {bmpStruct.width, bmpStruct.height}; }

    // Each with a buffer of as many bytes as the whole BMP file has.
    jpeg2000::_BMPBUFF bmpStruct{};
    jpeg2000::_JP2BUFF jp2Struct{};

private:
    void setHeaders(int width, int height, int bitCount, Qov32u dataOffset);

    Qov32u m_dataOffset = 0;
    int m_bmpDataSize = 0; // the pixels
    Qov8u* m_bmpDataCopy = nullptr;
};

#endif
