#include "imageform.h"
#include "dibconvert.h"
#include "dibwrite.h"
#include "pnmconvert.h"
#include "pnmwrite.h"
#include "resize.h"

namespace jpeg2000 {

namespace {

class DIBForm : public ImageForm {
public:
    DIBForm(const MRstrImage& image, BDiagnOutput& sink) : m_image(image), m_sink(sink)
    {
        SetBestDIBSizeAndResolution(image, m_info, true, sink);
        SetBestDIBDepthAndPalette(image, m_info, sink);
    }

    uint64_t EstimateNOfBytes() const override
    {
        return DIBFileHeaderNOfBytes + jpeg2000::EstimateNOfBytes(m_info);
    }
    uint8_t* Write(ImageComponents& components, uint8_t* dst) const override
    {
        ConvertImageChannelsToDIB(m_image, m_info, components, isResizeNeeded(components, m_info.size),
                                  m_sink);
        DIBOutput out(dst);
        WriteDIBFileHeader(out, m_info);
        WriteInfoHeader(out, m_info, m_sink);
        WritePalette(out, m_info);
        WriteDIBImageData(out, m_info, components);
        return out.position;
    }

private:
    const MRstrImage& m_image;
    BDiagnOutput& m_sink;
    DIBInfo m_info;
};

class PNMForm : public ImageForm {
public:
    PNMForm(const MRstrImage& image, PNMFormat format, BDiagnOutput& sink) : m_image(image), m_sink(sink)
    {
        SetBestPNMInfo(image, format, m_info);
    }

    uint64_t EstimateNOfBytes() const override { return m_info.EstimateNOfBytes(); }
    uint8_t* Write(ImageComponents& components, uint8_t* dst) const override
    {
        ConvertImageChannelsToPNM(m_image, m_info, components, isResizeNeeded(components, m_info.size),
                                  m_sink);
        PNMOutput out(dst);
        WritePNMHeader(out, m_info);
        WritePNMImageData(out, m_info, components);
        return out.position;
    }

private:
    const MRstrImage& m_image;
    BDiagnOutput& m_sink;
    PNMInfo m_info;
};

} // namespace

std::unique_ptr<ImageForm> MakeImageForm(const CmdOptions& options, const MRstrImage& image,
                                         BDiagnOutput& sink)
{
    const PNMFormat format = options.isPlainPNM ? PNMFormat::text : PNMFormat::binary;
    switch (options.dstType) {
    case FileType::bmp: return std::make_unique<DIBForm>(image, sink);
    case FileType::pnm: return std::make_unique<PNMForm>(image, format, sink);
    default: return nullptr;
    }
}

} // namespace jpeg2000
