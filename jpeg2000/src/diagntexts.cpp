#include "diagnrecords.h"

#include <cstddef>

// The spelling of these texts is part of the interface: it stays, errors included.

namespace jpeg2000 {

namespace {

template <class Family, size_t n>
const char* textOf(Family value, const char* const (&texts)[n])
{
    const auto row = static_cast<size_t>(value);
    return row < n ? texts[row] : "";
}

} // namespace

const char* diagnText(DDIBWarning value)
{
    static const char* const texts[] = {
        "Wrong DIB (BMP) file identifier was found. DIB decoder will try to ignore and continue decoding.",
        "Wrong DIB (BMP) core info structure 'the number of planes for the target device' field was "
        "found. It should be equal to one. DIB decoder will try to ignore and continue decoding.",
        "DIB (BMP) image data offset specified in file header mismatchs to actual total size of DIB "
        "header structures. DIB decoder will try to ignore and continue decoding.",
    };
    return textOf(value, texts);
}

const char* diagnText(DEBCOTWarning value)
{
    static const char* const texts[] = {
        "Data damage was detected during decode of some code block layer. Correct decoding can be "
        "impossible. Decoder will try to ignore and continue decoding.",
        "Number of passes mismatch was detected for some code block layer. Correct decoding can be "
        "impossible. Decoder will try to ignore and continue decoding.",
        "Number of code-block significant (non-sign) bits exceeds 31 bits that is implementation limit. "
        "The reason could be in wide dynamic range of input image actual data or in high number of guard "
        "bits. It could be also the result of increasing of dynamic range during applaying of relatively "
        "small quantization step in irreversible wavelet transform mode. Correct decoding can be "
        "impossible. Decoder will try to ignore and continue decoding.",
        "Number of code-block significant (non-sign) bits is below zero. The reason could be in "
        "inconsistency of dynamic range and number of zero bit planes for individual code-block.It could "
        "be the result of incorrect encoding or data damage. Decoder will try to ignore and continue "
        "decoding.",
    };
    return textOf(value, texts);
}

const char* diagnText(DJP2BoxWarning value)
{
    static const char* const texts[] = {
        "Unknown sub-box was found in the header superbox. Decoder will try to ignore unknown box and "
        "continue decoding.",
        "Unknown sub-box was found in the resolution superbox. Decoder will try to ignore unknown box and "
        "continue decoding.",
        "Some of the boxes has actual length less then specified in marker length field. Decoder will try "
        "to ignore box body padding and continue decoding. But it can be a damage in box length field and "
        "in that case the successful decoding will be impossible.",
        "The length specified for some of the boxes exceeds tail space available in its container.Decoder "
        "will try to ignore and continue decoding use available box body. But the data damage can be so "
        "that successful decoding will be impossible.",
        "Extra Palette boxes was found. Decoder will try to ignore all previous box instances and "
        "continue decoding.",
        "Extra Component Mapping boxes was found. Decoder will try to ignore all previous box instances "
        "and continue decoding.",
        "Extra Colour Specification boxes was found. Decoder will try to ignore all previous box "
        "instances and continue decoding.",
        "Extra Bits Per Component boxes was found. Decoder will try to ignore all previous box instances "
        "and continue decoding.",
        "Extra Capture Resolution boxes was found. Decoder will try to ignore all previous box instances "
        "and continue decoding.",
        "Extra Display Resolution boxes was found. Decoder will try to ignore all previous box instances "
        "and continue decoding.",
        "Bit depth specified in image header box exceed 38 bit limit defined by standard. Decoder will "
        "try to ignore and continue decoding.",
        "Unknown colourspace specified in Image Header box.",
        "Unknown specification method field value was found in Colour Specifiaction box. Colour "
        "specification box will be ignored.",
        "Unknown enumerated colourspace field value was found in Colour Specifiaction box. Colour "
        "specification box will be ignored.",
        "Bit depth specified in pallete box exceed 38 bit limit defined by standard. Decoder will try to "
        "ignore and continue decoding.",
        "Bit depth specified in bits per component box exceed 38 bit limit defined by standard. Decoder "
        "will try to ignore and continue decoding.",
        "Zero number of pallete entires specified in palette box. Decoder will try to ignore and continue "
        "decoding.",
        "Number of pallete entires specified in palette box exceed 1024 limit defined by standard. "
        "Decoder will try to ignore and continue decoding.",
        "It's impossible to interpret palette box because palette component specified in component "
        "mapping box. exceeds the number of palette columns specified in palette box. Decoder will try to "
        "ignore and continue decoding. The palette data loss is possible.",
        "It's impossible to interpret palette box because palette mapping does not specified in component "
        "mapping box. Decoder will try to ignore and continue decoding. The palette data loss is possible.",
        "Superfluous bits per component box.",
        "Number of colour channels specified in colour specification box and in component mapping boxes "
        "are different. Decoder will try to ignore and continue decoding.",
        "Not enumerated colourspace specified in colour specification box. We support only enumerated "
        "colourspaces (ICC profiles NOT supported). Decoder will try to ignore and continue decoding.",
        "Palette box is absent. Palette box is required when component mapping box is present in the "
        "stream. Decoder will try to ignore and continue decoding.",
        "Component box is absent. Component mapping box is required to decode palette box appropriately. "
        "Decoder will try to ignore and continue decoding.",
        "Bits per component value specified in image header box and another one specified in bits per "
        "component boxes are different. Decoder will try to ignore and continue decoding.",
    };
    return textOf(value, texts);
}

const char* diagnText(DJP2CSWarning value)
{
    static const char* const texts[] = {
        "Quantization style defined by QCD or QCC is unknown. The 'no quantization' styel will be used.",
        "Multichannel component transformation (MCT) is specified in COD marker and number of channels is "
        "not 3, so it's impossible to use any MCT defined in standard. Decoder will try do not use MCT.",
        "Multichannel component transformation (MCT) is specified in COD marker and different wavelet "
        "transforms used for different channels, so it's impossible to use any MCT defined in standard. "
        "Decoder will try do not use MCT.",
        "Colour component specified as resampled. Our implementation designed to decode final image as "
        "equally sampled for all of components. There is no exactly unambiguous conversion from resampled "
        "data in this case. Decoder will try to resample (with filtering) each tile separately, This is "
        "mostly looks like image resizing and you should remember that lossless conversion is impossible.",
        "Unknown marker was found in main header of codestream box. Decoder will try to ignore unknown "
        "marker and continue decoding.",
        "Extra COD marker was found in main header of codestream box. Decoder will try to ignore all "
        "previous COD markers and continue decoding.",
        "Extra QCD marker was found in main header of codestream box. Decoder will try to ignore all "
        "previous QCD markers and continue decoding.",
        "Extra QCD marker was found in main header of codestream box. Decoder will try to ignore all "
        "previous QCD markers and continue decoding.",
        "Extra QCC marker was found in main header of codestream box. Decoder will try to ignore all "
        "previous QCC markers and continue decoding.",
        "Extra POC marker was found in main header of codestream box. Decoder will try to ignore all "
        "previous POC markers and continue decoding.",
        "Only main header was found in codestream box. It's a degenerated instance of codestream.",
        "Unknown marker was found in tile-part header of codestream box. Decoder will try to ignore "
        "unknown marker and continue decoding.",
        "Extra COD marker was found in tile-part header of codestream box. Decoder will try to ignore all "
        "previous COD markers and continue decoding.",
        "Extra QCD marker was found in tile-part header of codestream box. Decoder will try to ignore all "
        "previous QCD markers and continue decoding.",
        "Extra QCD marker was found in tile-part header of codestream box. Decoder will try to ignore all "
        "previous QCD markers and continue decoding.",
        "Extra QCC marker was found in tile-part header of codestream box. Decoder will try to ignore all "
        "previous QCC markers and continue decoding.",
        "Extra POC marker was found in tile-part header of codestream box. Decoder will try to ignore all "
        "previous POC markers and continue decoding.",
        "Some of the markers has actual length less then specified in marker length field. Decoder will "
        "try to ignore marker body padding and continue decoding. But it can be a damage in marker length "
        "field and in that case the successful decoding will be impossible.",
        "The length specified for some of the markers exceeds tail space available in its "
        "container.Decoder will try to ignore and continue decoding use available marker body. But the "
        "data damage can be so that successful decoding will be impossible.",
        "TLM marker was found in the codestream. TLM marker is positioning marker. The current "
        "implementation does not support random access to stream. But sequential decoding is possible in "
        "any case. So decoder will ignore this marker and continue decoding.",
        "PLM marker was found in the codestream. PLM marker is positioning marker. The current "
        "implementation does not support random access to stream. But sequential decoding is possible in "
        "any case. So decoder will ignore this marker and continue decoding.",
        "CRG marker was found in the codestream. CRG marker is 'center of mass' of component's samples. "
        "Decoder will ignore all the data in this marker.",
        "COM marker was found in the codestream. COM marker is comment marker. Decoder will ignore all "
        "the data in this marker.",
        "PLT marker was found in the codestream. PLT marker is positioning marker. The current "
        "implementation does not support random access to stream. But sequential decoding is possible in "
        "any case. So decoder will ignore this marker and continue decoding.",
        "Tile-part index in SOT marker does not follow to contiguous order. Decoder will ignore tile-part "
        "index in SOT marker and will try to use index in contiguous order.",
        "Different values for number of tile-parts specified in SOT marker for the same tile. Decoder "
        "will try to use the lagest one and continue decoding.",
        "The value for length of tile-part specified in SOT marker less then even tile-part header "
        "length. Decoder will try to ignore and continue decoding.",
        "The value for length of tile-part specified in SOT marker less then tile-part length required by "
        "specified coding progression. Decoder will try to use available data only and continue decoding.",
        "The value for length of tile-part specified in SOT marker exceed tile-part length required by "
        "specified coding progression. Decoder will try to ignore padding and continue decoding.",
        "Actual number of tile-parts exceeds specified in SOT marker for the same tile (specified by "
        "index in SOT marker). Decoder will try to ignore SOT value for number of tile-parts and continue "
        "decoding.",
        "Unknown marker was found in the codestream box body. Decoder will try to ignore unknown marker "
        "and continue decoding.",
    };
    return textOf(value, texts);
}

const char* diagnText(DJP2FileWarning value)
{
    static const char* const texts[] = {
        "Unknown box was found in the file stream body. Decoder will try to ignore unknown box and "
        "continue decoding.",
        "Some box was ignored because it is unknown not supported or unexpected (found not in the right "
        "place)",
        "Minor version field in FileType box is not equal zero.",
        "Number of components specified in image header box and in codestream boxes are different. "
        "Decoder will try to ignore and continue decoding.",
        "Image size specified in image header box and in codestream boxes are different. Decoder will try "
        "to ignore and continue decoding.",
        "Bits per component specified in image header box and in codestream boxes are different. Decoder "
        "will try to ignore and continue decoding.",
        "Bits per component value specified in main header of codestream box and another one specified in "
        "bits per component boxes are different. Decoder will try to ignore and continue decoding.",
    };
    return textOf(value, texts);
}

const char* diagnText(DJP2MarkerWarning value)
{
    static const char* const texts[] = {
        "Zero precinct width step order is specified in COD or COC marker for non the most coarse "
        "resolution level. It doesn't allowed by standard. Decoder will try to ignore and continue "
        "decoding.",
        "Zero precinct height step order is specified in COD or COC marker for non the most coarse "
        "resolution level. It doesn't allowed by standard. Decoder will try to ignore and continue "
        "decoding.",
        "Zero number of layers is specified in COD or COC or POC marker. It means that there is no actual "
        "data for any layer. Decoder will try to ignore and continue decoding.",
        "Unknown capabilities was denoted in SIZ marker. Decoder will try to ignore.",
        "According to data specified in SIZ marker tile grid origin is greater then image origin in "
        "reference grid. It does not strictly handled by the standard. But decoder will try to handle it "
        "in appropriate way.",
        "Bit depth specified in SIZ marker exceed 38 bit limit defined by standard. Decoder will try to "
        "ignore and continue decoding.",
        "Unknown multichannel component transformation (MCT) is specified in COD marker. Decoder will try "
        "do not use MCT.",
    };
    return textOf(value, texts);
}

const char* diagnText(DPHWarning value)
{
    static const char* const texts[] = {
        "Bad packet header bits padding was found. The bitstream is corrupted or incorrect. Decoder will "
        "try to ignore and continue decoding.",
    };
    return textOf(value, texts);
}

const char* diagnText(DPNMWarning value)
{
    static const char* const texts[] = {
        "PNM magic number is not corresponding to file extension. PNM decoder will try to continue "
        "decoding following magic number.",
    };
    return textOf(value, texts);
}

const char* diagnText(EDIBWarning value)
{
    static const char* const texts[] = {
        "Actual pixels per meter resolution information will be lost during converting to DIB format in "
        "version with 'core' info header.",
        "The image data orientation will be lost during converting to DIB format in version with 'core' "
        "info header.because all of such bitmaps are considered as 'bottom left' only.",
        "The actual exact information about palette will be lost during converting to DIB format in "
        "version with 'core' info header because all of such bitmaps have 'fixed' (and different from "
        "actual palette data) number of palette entries.",
    };
    return textOf(value, texts);
}

const char* diagnText(MEDIBWarning value)
{
    static const char* const texts[] = {
        "Bit depth specified for actual image data exceeds allowable in DIB image data. Codec will try to "
        "scale values and continue decoding. The image data loss is possible.",
        "Bit depth specified for actual image data exceeds allowable in DIB image data. Codec will try to "
        "scale values and continue decoding. ",
        "Signed format specified for actual image data. DIB image data does not support signed format. "
        "Codec will try to offset values and continue decoding. ",
        "Number of components specified for actual image data is not allowed for DIB image data format. "
        "Codec does not generate DIB file for this codestream and continue decoding. ",
        "Number of pallete entires specified in actual palette exceed allowable in DIB palette. Codec "
        "will try to ignore and continue decoding. The palette data loss is possible.",
        "Bit depth specified in actual palette exceed allowable in DIB palette. Codec will try to scale "
        "values and continue decoding. The palette data loss is possible.",
        "Bit depth specified in actual palette below allowable in DIB palette. Codec will try to scale "
        "values and continue decoding. ",
        "Signed format specified in actual palette. DIB palette does not support signed format. Codec "
        "will try to offset values and continue decoding. ",
        "Number of components specified in actual palette does not supported in DIB (only 1 or 3 "
        "componenent data compatible). Codec will try to ignore and continue decoding. The palette data "
        "loss is possible.",
        "There is no possibility to keep actual palette as DIB palette in direct conversion. Codec will "
        "try to use actual palette data to convert image data on its own. The palette data loss is "
        "possible.",
        "Capture resolution values specified for actual image data will be lost during converting to DIB. "
        "Codec will try to ignore and continue decoding. ",
        "Display resolution values specified for actual image data will be lost during converting to DIB. "
        "Codec will try to ignore and continue decoding. ",
        "There are no resolution values specified for actual image data. Default resolution (3780 dot per "
        "meter or ~96 dpi) will be used for DIB. ",
        "There is no possibility to save all channels of actual image data in DIB format. Codec will try "
        "to use averaging. ",
    };
    return textOf(value, texts);
}

const char* diagnText(MEPNMWarning value)
{
    static const char* const texts[] = {
        "There is no possibility to save all channels of actual image data in PNM format. Codec will try "
        "to use averaging. ",
        "Bit depth specified for actual image data exceeds allowable in PNM image data. Codec will try to "
        "scale values and continue decoding. The image data loss is possible.",
        "Number of components specified for actual image data is not allowed for PNM image data format. "
        "Some image data will be lost",
    };
    return textOf(value, texts);
}

const char* diagnText(CmdOptionsQuantWarning::Cause value)
{
    static const char* const texts[] = {
        "Derived quantization step reduced to %lg",
        "You specify quantization step is %lg that less then 1.0.\n"
        "This situation is allowed by JPEG 2000 standard.\n"
        "However dinamic range of wavelet components will be\n"
        "increased in this case, so data clipping can be produced\n"
        "during encoding or decoding.\n"
        "This implementation have some (but limited) reserve.\n"
        "32 integer bits (including sign bit) is used for\n"
        "storing quantized wavelet component data.\n"
        "It is enough in many cases.\n"
        "But some decoders may have less dinamic range,\n"
        "so at least you should care about appropriate decoder.",
    };
    return textOf(value, texts);
}

const char* diagnText(MemoryException value)
{
    static const char* const texts[] = {
        "Memory allocation failure.\n"
        "There is no sufficient memory resource in the system.",
    };
    return textOf(value, texts);
}

const char* diagnText(DPNMException value)
{
    static const char* const texts[] = {
        "Wrong magic number.\n"
        "PNM image file must start with the magic string.\n"
        "\"P4\" (\"P1\") for PBM\n"
        "\"P5\" (\"P2\") for PGM\n"
        "\"P6\" (\"P3\") for PPM",
    };
    return textOf(value, texts);
}

const char* diagnText(DJP2MarkerException value)
{
    static const char* const texts[] = {
        "Negative length of marker body was found.",
        "One of the geometrical parameters (tile size or tile offset or image size or image offset in "
        "reference grid) defined for image in SIZ marker is greater than 2147483647. At the moment "
        "decoder can't deal with such a big numbers.",
        "Negative image size (width or height).",
        "Unknown progression order is specified in COD marker.(SGcodA parameter).",
        ("Number of wavelet decomposition levels specified in COD or COC marker exceeds limit allowed by "
         "standard (32)."),
        "Code block width specified COD or COC marker exceeds limit allowed by standard (1024).",
        "Code block height specified COD or COC marker exceeds limit allowed by standard (1024).",
        "Unknown wavelet transformation specified in COD or COC marker.",
        "Resolution level index in POC marker greater than maximal allowed by standard (33).",
        "Cmponent index in POC marker greater than or equal to the number of components.",
        "Inverse order specified in POC marker for progression of resolution levels.",
        "Inverse order specified in POC marker for progression of components.",
    };
    return textOf(value, texts);
}

const char* diagnText(DJP2FileException value)
{
    static const char* const texts[] = {
        "JPEG2000 Signature box was not found in begin of file stream.",
        "Signature box isn't right.",
        "File Type box was not found after JPEG2000 Signature box.",
        "FileType box is incompatible with JP2 mode.",
        "JP2 Header Super box was not found before Codestream box.",
    };
    return textOf(value, texts);
}

const char* diagnText(DJP2CSUnsuppException value)
{
    static const char* const texts[] = {
        "The mode when SOP marker could be present in stream was used during compression.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "The mode when EPH marker could be present in stream was used during compression.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "PPM marker was used during compression.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "PPT marker was used during compression.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "RGN (roi coding) marker was used during compression.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "POC (progression order change) marker was used during compression.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "Not supported codeblock subdivision size was used during compression.\n"
        "Only 64x64 codeblocks subbdivision supported.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "Not supported codeblock style was used during compression.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "Signed interpretation of color components not supported.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "The method used in Colour Specification box to define the colourspace of the decompressed image "
        "is not supported.\n"
        "At the moment only 'Enumerated Colourspace' method is supported.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "The number of channels specified in Component Mapping box is not supported.\n"
        "At the moment only 3-channel palettized images is supported.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "At least one channel in Component Mapping box specified for direct use.\n"
        "At the moment only imges with all channels used through palette is supported.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "Bad number for component that is mapped to one from channels in Component Mapping box.\n"
        "At the moment 3-channels RGB palette is supported only for 1-component images.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "Bad palette component index was used in Component Mapping box.\n"
        "At the moment 3-channels RGB palette is supported.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "Bad number of palette entries was found in Palette box.\n"
        "At the moment maximum 256 entries are supported for 3-channels RGB palette.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "Bad number of palette channels was found in Palette box.\n"
        "At the moment only 3-channels RGB palette is supported.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "Bad bit depth for palette channels was found in Palette box.\n"
        "At the moment only 3-channels RGB unsigned 8-bit palette is supported.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
        "Combination of multi-layered mode with non-terminated layers is used.\n"
        "The reason is unsupported decoding mode.\n"
        "In cause of doubt, please, contact the program developers.",
    };
    return textOf(value, texts);
}

const char* diagnText(DJP2CSException value)
{
    static const char* const texts[] = {
        "Tile index specified in SOT marker exceed number of tiles.",
        "SOC marker not found in begin of codestream.",
        "SIZ marker not found after SOC marker.",
        "Component index in COC marker greater than or equal to the number of components.",
        "Component index in QCC marker greater than or equal to the number of components.",
        "COD marker not found in Main Header.",
        "QCD marker not found in Main Header.",
        "QCD or QCC marker does not provide sufficient quantization parameters.",
    };
    return textOf(value, texts);
}

const char* diagnText(DJP2BoxException value)
{
    static const char* const texts[] = {
        "Box of unknown (not defined in standard) type was found.",
        "Not acceptable value for LBox (Box Length) was found.",
        "Not acceptable value for XLBox (Box Extended Length) was found.",
        "Too long box length was specified. Box of length more then 4 gigabyte is not supported",
        "Image Header box was not found.",
        "Heigth or width field in Image Header box is less than 1.",
        "Number of components in Image Header box is less than 1.",
        "Compression type in Image Header box is not equal 7.",
        "Intellectual property field in Image Header box is more than 1.",
    };
    return textOf(value, texts);
}

const char* diagnText(DDIBException value)
{
    static const char* const texts[] = {
        "There is a damge in the bitmap data or this file is not a bitmap file.",
        "The bitmap data has not supported bit depth.\n"
        "At the moment this program support only 24-bit and 8-bit depth bitmap images.",
        "The bitmap data is compressed.\n"
        "At the moment this program does not support any (RLE or other) compression.",
    };
    return textOf(value, texts);
}

const char* diagnText(CmdOptionsException value)
{
    static const char* const texts[] = {
        "Cannot parse command line, please check selected options.\n"
        "Please, use -h key for help.",
        "You should specify input file name.\n"
        "Please, use -h key for help.",
        "source file has unknown extension.",
        "destination file has unknown extension.",
        "-wtlev value exceed bounds (it must be > 0).",
        "-ratio value exceed bounds (it must be >= 0).",
        "Bad 'gray' (grayscale encoding mode) switch specified. \n"
        "The following values are valid: \n"
        "    auto  - to detect grayscale palette, \n"
        "    force - to use grayscale encoding in any case, \n"
        "    never - always save palette information in jp2 file.",
        "Bad 'wt' (wavelet transform encoding mode) switch specified. \n"
        "The following values are valid: \n"
        "    wt53 - for reversible integer transform, \n"
        "    wt97 - for irreversible float point transform. ",
        "Both wt97 irreversible float point wavelet transform\n"
        "and lossless mode (-ratio 0) were specified.\n"
        "Please, use different 'ratio' value or 'wt' mode.",
        "Bad 'pnm' (output mode) switch specified.\n"
        "The following values are valid: \n"
        "    binary - for binary output, \n"
        "    plain  - for ASCII output. ",
    };
    return textOf(value, texts);
}

const char* diagnText(ByteInputException value)
{
    static const char* const texts[] = {
        "There is no data to read from input stream.\n"
        "The reason is the data damage in the input file.\n"
        "In cause of doubt, please, contact the program developers.",
    };
    return textOf(value, texts);
}

const char* diagnText(DisplayException value)
{
    static const char* const texts[] = {
        "Cannot display decoded image.\n"
        "The reason is the fail of OS API function.\n"
        "In cause of doubt, please, contact the program developers.",
    };
    return textOf(value, texts);
}

const char* diagnText(TranscodingException value)
{
    static const char* const texts[] = {
        "There are no codestreams in JP2 files, so there are no actual image data to read.",
    };
    return textOf(value, texts);
}

const char* diagnText(FileException::Cause value)
{
    static const char* const texts[] = {
        "Cannot open \"%.800s\" file.",
        "Cannot create \"%.800s\" file.",
        "Cannot open or create \"%.800s\" file.",
    };
    return textOf(value, texts);
}

const char* diagnText(MapFileException::Cause value)
{
    static const char* const texts[] = {
        "Cannot create \"%.800s\" file mapping.\n"
        "The reason is the fail of OS API functionprobably becouse of insufficient system resources.\n"
        "In cause of doubt, please, contact the program developers.",
        "ERROR: Cannot map view of \"%.800s\" file.\n"
        "The reason is the fail of OS API functionprobably becouse of insufficient system resources.\n"
        "In cause of doubt, please, contact the program developers.",
    };
    return textOf(value, texts);
}

} // namespace jpeg2000
