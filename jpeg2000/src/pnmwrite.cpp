#include "pnmwrite.h"
#include "chars.h"

namespace jpeg2000 {

namespace {

void writeNumber(PNMOutput& out, unsigned value)
{
    char text[11];
    const unsigned length = IntToStrR10(value, text);
    for (unsigned i = 0; i < length; i++) out.Write8u(static_cast<uint8_t>(text[i]));
}

// Samples with a blank or the end of a line behind each. No line of a plain file has more than 70 characters.
class TextRow {
public:
    explicit TextRow(PNMOutput& out) : m_out(out) {}

    void put(int value)
    {
        char text[11];
        const unsigned length = IntToStrR10(static_cast<unsigned>(value), text);
        constexpr unsigned most = 70;
        if (m_column + 1 + length > most) end();
        if (m_column > 0) m_out.Write8u(' ');
        m_column += length + (m_column > 0);
        for (unsigned i = 0; i < length; i++) m_out.Write8u(static_cast<uint8_t>(text[i]));
    }
    void end()
    {
        m_out.Write8u('\n');
        m_column = 0;
    }

private:
    PNMOutput& m_out;
    unsigned m_column = 0;
};

template <unsigned nOfPlanes, class Value>
void writeText(PNMOutput& out, const RectSize& size, const ImageComponents& planes, Value value)
{
    for (unsigned y = 0; y < size.height; y++) {
        TextRow row(out);
        for (unsigned x = 0; x < size.width; x++)
            for (unsigned i = 0; i < nOfPlanes; i++) row.put(value(planes[i].row(y)[x]));
        row.end();
    }
}

void WriteImageDataPBMTxt(PNMOutput& out, const RectSize& size, const ImageComponents& planes)
{
    writeText<1>(out, size, planes, [](int white) { return 1 - white; });
}

void WriteImageDataPGMTxt(PNMOutput& out, const RectSize& size, const ImageComponents& planes)
{
    writeText<1>(out, size, planes, [](int value) { return value; });
}

void WriteImageDataPPMTxt(PNMOutput& out, const RectSize& size, const ImageComponents& planes)
{
    writeText<3>(out, size, planes, [](int value) { return value; });
}

// Eight pixels a byte, from the highest bit on; each row begins a byte.
void WriteImageDataPBMBin(PNMOutput& out, const RectSize& size, const ImageComponents& planes)
{
    for (unsigned y = 0; y < size.height; y++) {
        const int* row = planes[0].row(y);
        for (unsigned x = 0; x < size.width; x += 8) {
            unsigned bits = 0;
            for (unsigned i = 0; i < 8 && x + i < size.width; i++)
                bits |= static_cast<unsigned>(1 - row[x + i]) << (7 - i);
            out.Write8u(static_cast<uint8_t>(bits));
        }
    }
}

template <unsigned nOfPlanes, class Write>
void writeBinary(PNMOutput& out, const RectSize& size, const ImageComponents& planes, Write write)
{
    PNMOutput local = out; // a cursor that no written byte can be thought to change
    for (unsigned y = 0; y < size.height; y++) {
        const int* rows[nOfPlanes];
        for (unsigned i = 0; i < nOfPlanes; i++) rows[i] = planes[i].row(y);
        for (unsigned x = 0; x < size.width; x++)
            for (const int* row : rows) write(local, row[x]);
    }
    out = local;
}

template <unsigned nOfPlanes>
void WriteImageData_8s(PNMOutput& out, const RectSize& size, const ImageComponents& planes)
{
    writeBinary<nOfPlanes>(out, size, planes,
                           [](PNMOutput& to, int value) { to.Write8s(static_cast<int8_t>(value)); });
}

template <unsigned nOfPlanes>
void WriteImageData_16s(PNMOutput& out, const RectSize& size, const ImageComponents& planes)
{
    writeBinary<nOfPlanes>(out, size, planes,
                           [](PNMOutput& to, int value) { to.Write16s(static_cast<int16_t>(value)); });
}

template <unsigned nOfPlanes>
void WriteImageData_32s(PNMOutput& out, const RectSize& size, const ImageComponents& planes)
{
    writeBinary<nOfPlanes>(out, size, planes, [](PNMOutput& to, int value) { to.Write32s(value); });
}

template <unsigned nOfPlanes>
void writeByDepth(PNMOutput& out, const PNMInfo& info, const ImageComponents& planes)
{
    switch (info.sampleNOfBytes()) {
    case 1: return WriteImageData_8s<nOfPlanes>(out, info.size, planes);
    case 2: return WriteImageData_16s<nOfPlanes>(out, info.size, planes);
    default: return WriteImageData_32s<nOfPlanes>(out, info.size, planes);
    }
}

void WriteImageDataPGMBin(PNMOutput& out, const PNMInfo& info, const ImageComponents& planes)
{
    writeByDepth<1>(out, info, planes);
}

void WriteImageDataPPMBin(PNMOutput& out, const PNMInfo& info, const ImageComponents& planes)
{
    writeByDepth<3>(out, info, planes);
}

} // namespace

void WritePNMHeader(PNMOutput& out, const PNMInfo& info)
{
    out.Write16u(info.magic);
    out.Write8u('\n');
    writeNumber(out, info.size.width);
    out.Write8u(' ');
    writeNumber(out, info.size.height);
    out.Write8u('\n');
    if (info.isBitmap()) return;
    writeNumber(out, info.maxValue);
    out.Write8u('\n');
}

void WritePNMImageData(PNMOutput& out, const PNMInfo& info, const ImageComponents& planes)
{
    switch (info.magic) {
    case PNMMagic('1'): return WriteImageDataPBMTxt(out, info.size, planes);
    case PNMMagic('2'): return WriteImageDataPGMTxt(out, info.size, planes);
    case PNMMagic('3'): return WriteImageDataPPMTxt(out, info.size, planes);
    case PNMMagic('4'): return WriteImageDataPBMBin(out, info.size, planes);
    case PNMMagic('5'): return WriteImageDataPGMBin(out, info, planes);
    case PNMMagic('6'): return WriteImageDataPPMBin(out, info, planes);
    default: return;
    }
}

} // namespace jpeg2000
