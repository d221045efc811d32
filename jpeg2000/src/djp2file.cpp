#include "djp2file.h"

#include "boundedinput.h"
#include "djp2boxes.h"

namespace jpeg2000 {

template <class Input>
void DJP2File<Input>::ReadSignatureBox()
{
    constexpr uint32_t signature = 0x0D0A870A;

    if (OpenBox(m_input, m_sink) != JP2BoxType::signature) fail<DJP2FileException{0}>();
    if (m_input.Read32u() != signature) fail<DJP2FileException{1}>();
    CloseBox(m_input, m_sink);
}

template <class Input>
void DJP2File<Input>::ReadFileTypeBox()
{
    constexpr uint32_t brand = boxCode("jp2 ");

    unsigned bodySize = 0;
    if (OpenBox(m_input, m_sink, bodySize) != JP2BoxType::fileType) fail<DJP2FileException{2}>();
    const bool isJP2 = m_input.Read32u() == brand;
    if (m_input.Read32u() != 0) warn<DJP2FileWarning{2}>(m_sink);
    // The two fields were there, so the body has at least two words.
    bool isListed = false;
    for (unsigned i = 2; !isListed && i < bodySize >> 2; i++) isListed = m_input.Read32u() == brand;
    if (!isJP2 && !isListed) fail<DJP2FileException{3}>();
    CloseBox(m_input, m_sink);
}

template <class Input>
void DJP2File<Input>::FindAndReadHeaderBox()
{
    while (m_input.bytesLeft() > 0) {
        if (OpenBox(m_input, m_sink) == JP2BoxType::header) {
            boxHeader.Read(m_input, m_sink);
            CloseBox(m_input, m_sink);
            return;
        }
        warn<DJP2FileWarning{1}>(m_sink);
        SkipBox(m_input);
    }
    fail<DJP2FileException{4}>();
}

template <class Input>
bool DJP2File<Input>::ReadNextCSMainHeader()
{
    if (m_isBoxOpen) CloseBox(m_input, m_sink);
    m_isBoxOpen = false;
    while (m_input.bytesLeft() > 0) {
        if (OpenBox(m_input, m_sink) == JP2BoxType::codestream) {
            m_isBoxOpen = true;
            codestream.ReadMainHeader();
            compareHeaders();
            return true;
        }
        warn<DJP2FileWarning{1}>(m_sink);
        SkipBox(m_input);
    }
    return false;
}

// What the file says against what the codestream says.
template <class Input>
void DJP2File<Input>::compareHeaders()
{
    const DJP2BoxImageHeader& image = boxHeader.imageHeader;
    const DJP2CSMainHeader& header = codestream.mainHeader;
    if (image.nOfComponents != header.nOfComponents) warn<DJP2FileWarning{3}>(m_sink);
    if (image.size.width != header.imageRect.width || image.size.height != header.imageRect.height)
        warn<DJP2FileWarning{4}>(m_sink);

    unsigned n = header.nOfComponents;
    if (!image.isBPCValid) n = Min(n, boxHeader.bitsPerComp.size);
    bool isEqual = true;
    for (unsigned c = 0; isEqual && c < n; c++) {
        const JP2BitsPerComp& told = image.isBPCValid ? image.bitsPerComp : boxHeader.bitsPerComp[c];
        isEqual = told.value == header.bitsPerComp[c].value;
    }
    if (isEqual) return;
    if (image.isBPCValid)
        warn<DJP2FileWarning{5}>(m_sink);
    else
        warn<DJP2FileWarning{6}>(m_sink);
}

template class DJP2File<MemoryBoundedInputBE>;

} // namespace jpeg2000
