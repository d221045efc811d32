// The memory between which the codec works; all of it is the caller's.
#ifndef JPEG2000_CODECBUFFERS_H
#define JPEG2000_CODECBUFFERS_H

#include <cstdint>

namespace jpeg2000 {

// A bitmap in the form of its file. `data` are the pixel rows: from the bottom up, in whole steps.
struct _BMPBUFF {
    uint8_t* buffer; // where decoding puts a whole file
    uint8_t* data;
    int width, height;
    int step; // bytes from row to row
    uint32_t bufferSize;
    uint32_t length; // of the file in `buffer`; a result of decoding
    int bitCount;    // 8 or 24
};

struct _JP2BUFF {
    uint8_t* buffer;
    uint32_t bufferSize;
    uint32_t length;           // of the file; a result of encoding, and what decoding reads
    uint32_t codestreamLength; // of it, from SOC to EOC
};

} // namespace jpeg2000

#endif
