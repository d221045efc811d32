// The options of the codec, read from an argument vector.
#ifndef JPEG2000_CMDOPTIONS_H
#define JPEG2000_CMDOPTIONS_H

#include "diagn.h"
#include "fixedstring.h"

namespace jpeg2000 {

enum class FileType { bmp = 0, pnm = 1, jp2 = 2, codestream = 3, unknown = 4 };
enum class GrayMode { force = 0, detect = 1, never = 2 }; // `detect` is the key's "auto"

class CmdOptions {
public:
    BDiagnOutput* output;
    bool isLibInfo = true;
    bool isMCT = true;
    bool isPlainPNM = false;
    int nOfLevels = 5;
    double ratio = 0; // 0: lossless
    FixedString<char> srcFile, dstFile;
    int mode = 0; // 1 encoding, 0 decoding
    GrayMode grayMode = GrayMode::detect;
    FileType srcType = FileType::unknown, dstType = FileType::jp2;
    bool isReversible = true;
    bool isDerivedQuant = false;
    int mantissa = 0, exponent = 0; // of the derived step
    bool isDisplay = false;         // decoding, with no output named

    // argv[0] is passed over. Faults are thrown, CmdOptionsException; a step that had to be limited, and one
    // below 1, is a CmdOptionsQuantWarning.
    CmdOptions(const char* const* argv, int argc, BDiagnOutput& sink);

    // By the extension, in capitals or not.
    static FileType ExtensionType(const char* name);
    // The text behind the last point; null when there is none, or when it is no extension but part of a path.
    static const char* GetFileExtension(const char* name);
    static void ChangeExtension(FixedString<char>& name, const char* extension);

private:
    void chooseFiles();
    void setDerivedQuant(double step);
};

} // namespace jpeg2000

#endif
