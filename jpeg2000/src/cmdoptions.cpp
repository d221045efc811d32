#include "cmdoptions.h"
#include "commandline.h"
#include "diagnrecords.h"
#include "quant.h"

#include <algorithm>
#include <cfloat>
#include <cstring>
#include <string>

namespace jpeg2000 {

namespace {

template <class T>
struct Word {
    const char* text;
    T value;
};

// What the text of a key stands for; `fault` for any other text.
template <CmdOptionsException fault, class T, size_t n>
T choose(const FixedString<char>& text, const Word<T> (&words)[n])
{
    for (const Word<T>& word : words)
        if (text == word.text) return word.value;
    fail<fault>();
}

// The texts that the constructor turns into options.
struct RawValues {
    FixedString<char> gray = "auto", wt = "wt53", pnm = "binary";
    double dquant = 0;
};

void addKeys(CommandLine& line, CmdOptions& options, RawValues& raw)
{
    line.AddKey("i", "defines the input (.bmp or .jp2) file name", options.srcFile);
    line.AddKey(
        "o",
        "defines the output (.jp2 or .bmp) file name, don't specify output file to display image from "
        "jp2 file on the screen",
        options.dstFile);
    line.AddKey("mct", "defines the use of multicomponent transform", options.isMCT);
    line.AddKey("wlev", "defines the maximum level of wavelet transform", options.nOfLevels);
    line.AddKey(
        "ratio",
        "defines the minimal compression ratio for lossy compression rate-distortion optimization, and "
        "zero value (default) specifies lossless mode",
        options.ratio);
    line.AddKey("linf", "show/hide library information", options.isLibInfo);
    line.AddKey(
        "gray",
        "grayscale encoding mode for 8-bit palettized images ('auto' - to detect grayscale palette, "
        "'force' - to discard actual palette information and keep only single component data, 'never' "
        "- always save palette information in jp2 file)",
        raw.gray);
    line.AddKey(
        "wt",
        "defines the type of wavelet transform ('wt53' - for reversible integer transform and'wt97' - "
        "for irreversible float point transform)",
        raw.wt);
    line.AddKey(
        "dquant",
        "defines the mode of quantization and its basic step size, zero value (default) specifies the "
        "use of expounded quantization mode with fixed quantization step equal to 1 for all subbands, "
        "any other values specifies derived quantization and value specifies step for deepest LL "
        "subband quantization",
        raw.dquant);
    line.AddKey("pnm", "defines binary/plain output for PNM format", raw.pnm);
    line.AddHelpKey("h", "help key");
}

} // namespace

CmdOptions::CmdOptions(const char* const* argv, int argc, BDiagnOutput& sink) : output(&sink)
{
    CommandLine line;
    RawValues raw;
    addKeys(line, *this, raw);
    if (!line.Parse(argv, argc)) fail<CmdOptionsException{0}>();

    chooseFiles();
    isPlainPNM = choose<CmdOptionsException{9}, bool>(raw.pnm, {{"binary", false}, {"plain", true}});
    if (nOfLevels < 0) fail<CmdOptionsException{4}>();
    if (ratio < 0) fail<CmdOptionsException{5}>();
    grayMode = choose<CmdOptionsException{6}, GrayMode>(
        raw.gray, {{"auto", GrayMode::detect}, {"force", GrayMode::force}, {"never", GrayMode::never}});
    isReversible = choose<CmdOptionsException{7}, bool>(raw.wt, {{"wt53", true}, {"wt97", false}});
    if (!isReversible && !(ratio > 0)) fail<CmdOptionsException{8}>();
    if (raw.dquant > 0) setDerivedQuant(raw.dquant);
}

void CmdOptions::chooseFiles()
{
    if (srcFile.Length() == 0) fail<CmdOptionsException{1}>();
    srcType = ExtensionType(srcFile);
    if (srcType == FileType::unknown) fail<CmdOptionsException{2}>();
    const bool isNamed = dstFile.Length() > 0;
    if (isNamed) dstType = ExtensionType(dstFile);
    mode = srcType != FileType::jp2 && srcType != FileType::codestream;
    if (mode == 0) {
        isDisplay = !isNamed;
        if (isNamed && (dstType == FileType::jp2 || dstType == FileType::unknown))
            fail<CmdOptionsException{3}>();
        return;
    }
    if (!isNamed) {
        dstFile = srcFile;
        ChangeExtension(dstFile, "jp2");
    }
    if (dstType != FileType::jp2) fail<CmdOptionsException{3}>();
}

void CmdOptions::setDerivedQuant(double step)
{
    constexpr int range = 8; // bits of the deepest low band
    if (step < 1) warn<1>(output, CmdOptionsQuantWarning{step});
    isDerivedQuant = true;
    QuantValue quant = QuantFromDelta(static_cast<float>(std::clamp<double>(step, FLT_MIN, FLT_MAX)), range);
    const bool isLimited = quant.exponent < 0 || quant.exponent > 31;
    if (quant.exponent < 0) quant = {2047, 0};
    if (quant.exponent > 31) quant = {0, 31};
    mantissa = quant.mantissa;
    exponent = quant.exponent;
    if (isLimited) warn<0>(output, CmdOptionsQuantWarning{stepOf(quant, range)});
}

FileType CmdOptions::ExtensionType(const char* name)
{
    static constexpr Word<FileType> types[] = {
        {"bmp", FileType::bmp},        {"pbm", FileType::pnm},        {"pgm", FileType::pnm},
        {"ppm", FileType::pnm},        {"pnm", FileType::pnm},        {"jp2", FileType::jp2},
        {"j2k", FileType::codestream}, {"jpc", FileType::codestream}, {"j2c", FileType::codestream}};
    const char* extension = GetFileExtension(name);
    if (!extension) return FileType::unknown;
    for (const Word<FileType>& type : types)
        if (Stricmp(extension, type.text) == 0) return type.value;
    return FileType::unknown;
}

const char* CmdOptions::GetFileExtension(const char* name)
{
    const char* point = strrchr(name, '.');
    return point && !strpbrk(point, "\"<>|/:*?\\") ? point + 1 : nullptr;
}

void CmdOptions::ChangeExtension(FixedString<char>& name, const char* extension)
{
    const char* text = name;
    const char* old = GetFileExtension(text);
    std::string changed = old ? std::string(text, old) : std::string(text) + '.';
    changed += extension;
    name = changed.c_str();
}

} // namespace jpeg2000
