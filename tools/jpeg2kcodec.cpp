// Encodes bitmaps to JP2 files, and decodes these and codestreams, on the command line, by the codec alone.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "cmdoptions.h"
#include "decode.h"
#include "diagn.h"
#include "dibfile.h"
#include "encode.h"
#include "failure.h"
#include "files.h"
#include "imageform.h"
#include "qovcore.h"

using namespace jpeg2000;

namespace {

void report(const char* text)
{
    std::fprintf(stderr, "jpeg2kcodec: %s\n", text);
}

void report(const BDiagnDescr& descr)
{
    char text[BDiagnDescr::maxLength + 1];
    report(descr.Context(text));
}

// Shows the first warnings: a damaged file can raise millions.
class WarningLines : public BDiagnOutput {
public:
    void Warning(const BDiagnDescr& descr) override
    {
        constexpr int most = 20;
        if (++m_count > most + 1) return;
        if (m_count > most)
            report("further warnings are not shown");
        else
            report(descr);
    }

private:
    int m_count = 0;
};

Bytes readSource(const CmdOptions& options)
{
    const std::string name = static_cast<const char*>(options.srcFile);
    return onFile(name, [&] { return readFile(name); });
}

void writeTarget(const CmdOptions& options, const uint8_t* file, size_t size)
{
    const std::string name = static_cast<const char*>(options.dstFile);
    onFile(name, [&] {
        OutputFile out(name);
        out.write(file, size);
        out.commit();
    });
}

void encodeBitmap(const CmdOptions& options, WarningLines& warnings)
{
    DIBFile bitmap(readSource(options));
    if (bitmap.hasPalette()) report("the bitmap's palette is not kept: its indices are encoded as greys");
    _BMPBUFF bmp = bitmap.rows();

    // Samples without any order take more room than the bitmap.
    const uint64_t room = std::min<uint64_t>(2 * uint64_t{bitmap.size()} + 65536, UINT32_MAX);
    const auto buffer = std::make_unique_for_overwrite<uint8_t[]>(room);
    _JP2BUFF jp2{buffer.get(), static_cast<uint32_t>(room), 0, 0};
    if (encode(options, warnings, bmp, jp2) != 0)
        throw Failure(static_cast<const char*>(options.srcFile) + std::string(" cannot be encoded"));
    writeTarget(options, jp2.buffer, jp2.length);
}

// By way of the image in memory: its headers tell how large the file can become.
void decodeImage(const CmdOptions& options, WarningLines& warnings)
{
    Bytes source = readSource(options);
    const _JP2BUFF jp2{source.data(), 0, static_cast<uint32_t>(source.size()), 0};
    _METABUFF meta;
    decode(options, warnings, jp2, meta);
    const std::unique_ptr<ImageForm> form = MakeImageForm(options, meta.image, warnings);
    const auto file = std::make_unique_for_overwrite<uint8_t[]>(form->EstimateNOfBytes());
    const uint8_t* end = form->Write(meta.components, file.get());
    writeTarget(options, file.get(), static_cast<size_t>(end - file.get()));
}

void showHelp(BDiagnOutput& sink)
{
    const char* const words[] = {"jpeg2kcodec", "-h"};
    try {
        CmdOptions(words, 2, sink);
    } catch (const DiagnDescrCT<CmdOptionsException, CmdOptionsException{0}>&) {
        // The help key ends the parse of the options as a fault does.
    }
}

void run(int argc, char** argv)
{
    WarningLines warnings;
    const auto isHelp = [](const char* word) { return std::string(word) == "-h"; };
    if (std::any_of(argv, argv + argc, isHelp)) return showHelp(warnings);
    const CmdOptions options(argv, argc, warnings);
    if (options.isDisplay) throw Failure("there is nowhere to show the image: name an output file by -o");
    qovInit(); // the kernels of this processor
    if (options.mode == 0) {
        if (options.dstType == FileType::codestream) fail<CmdOptionsException{3}>();
        return decodeImage(options, warnings);
    }
    if (options.srcType != FileType::bmp) throw Failure("only .bmp files can be encoded");
    encodeBitmap(options, warnings);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        run(argc, argv);
        return 0;
    } catch (const BDiagnDescr& descr) {
        report(descr);
    } catch (const std::bad_alloc&) {
        report(DiagnDescrCT<MemoryException, MemoryException{0}>());
    } catch (const std::exception& failure) {
        report(failure.what());
    }
    return 1;
}
