// A JP2 file: boxes around codestreams (ITU-T T.800, annex I).
#ifndef JPEG2000_DJP2FILE_H
#define JPEG2000_DJP2FILE_H

#include "djp2boxheader.h"
#include "djp2codestream.h"

namespace jpeg2000 {

// The functions are called in the order in which they stand.
template <class Input>
class DJP2File {
public:
    DJP2BoxHeader boxHeader;
    DJP2Codestream<Input> codestream;

    // Both outlive this.
    DJP2File(Input& fileInput, BDiagnOutput& sink)
        : codestream(fileInput, sink), m_input(fileInput), m_sink(sink)
    {
    }

    void ReadSignatureBox();
    void ReadFileTypeBox();
    void FindAndReadHeaderBox();
    // To the main header of the next codestream; false at the end of the file. Its tile parts are read from
    // `codestream`.
    bool ReadNextCSMainHeader();

private:
    void compareHeaders();

    Input& m_input;
    BDiagnOutput& m_sink;
    bool m_isBoxOpen = false; // the limit of a codestream's box is still pushed
};

} // namespace jpeg2000

#endif
