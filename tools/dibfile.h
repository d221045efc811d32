// A bitmap (DIB) as the JPEG 2000 codec takes it: rows from the bottom up, uncompressed, of 8 or 24 bits.
#ifndef TOOLS_DIBFILE_H
#define TOOLS_DIBFILE_H

#include "codecbuffers.h"
#include "files.h"

class DIBFile {
public:
    // Throws the codec's DDIBException for what is damaged, of another depth, compressed or from the top
    // down.
    explicit DIBFile(Bytes file);

    std::size_t size() const { return m_file.size(); }
    bool hasPalette() const { return m_hasPalette; } // other than the ramp of greys
    jpeg2000::_BMPBUFF rows();                       // as long as this lives

private:
    Bytes m_file; // the padding of the last row is there, even if the file had none
    std::size_t m_offset;
    int m_width, m_height, m_bitCount, m_step;
    bool m_hasPalette;
};

#endif
