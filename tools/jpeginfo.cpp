// jpegcodec info: what the segments up to the first scan tell, one "key: value" a line.
#include <cstdarg>
#include <cstdio>
#include <memory>

#include "arguments.h"
#include "files.h"
#include "jpegcommands.h"
#include "jpegdec.h"
#include "jpegmeta.h"

namespace {
// The text is collected and shown when it is whole: a file that is refused prints nothing.
class Lines {
public:
    [[gnu::format(printf, 2, 3)]] Lines& add(const char* format, ...)
    {
        va_list values;
        va_start(values, format);
        char text[256];
        std::vsnprintf(text, sizeof text, format, values);
        va_end(values);
        m_text += text;
        return *this;
    }
    Lines& addText(const std::string& text)
    {
        m_text += printable(text);
        return *this;
    }
    void end() { m_text += '\n'; }
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

const char* modeName(_JPEG_MODE mode)
{
    switch (mode) {
    case JPEG_BASELINE: return "baseline";
    case JPEG_PROGRESSIVE: return "progressive";
    case JPEG_LOSSLESS: return "lossless";
    }
    return "unknown";
}

const char* samplingName(_JPEG_SAMPLING sampling)
{
    switch (sampling) {
    case JS_444: return "444";
    case JS_422: return "422";
    case JS_244: return "244";
    case JS_411: return "411";
    case JS_OTHER: break;
    }
    return "other";
}

void addFrame(Lines& lines, const CJPEGDecoder& decoder)
{
    lines.add("mode: %s\n", modeName(decoder.m_jpeg_mode));
    lines.add("precision: %d\n", decoder.m_jpeg_precision);
    lines.add("size: %dx%d\n", decoder.m_jpeg_width, decoder.m_jpeg_height);
    lines.add("components: %d\n", decoder.m_jpeg_ncomp);
    for (int i = 0; i < decoder.m_jpeg_ncomp; i++) {
        const CJPEGColorComponent& component = decoder.m_ccomp[i];
        lines.add("component %d: id %d, factors %dx%d, quantisation table %d, DC table %d, AC table %d\n", i,
                  component.m_id, component.m_hsampling, component.m_vsampling, component.m_q_selector,
                  component.m_dc_selector, component.m_ac_selector);
    }
    lines.add("sampling: %s\n", samplingName(decoder.m_jpeg_sampling));
    lines.add("colour: %s\n", colorName(decoder.m_jpeg_color));
    lines.add("restart interval: %d\n", decoder.m_jpeg_restart_interval);
}

void addNumbers(Lines& lines, const Qov8u* numbers, int count)
{
    for (int i = 0; i < count; i++) lines.add(" %d", numbers[i]);
}

void addHuffmanTables(Lines& lines, const char* className, const CJPEGDecoderHuffmanTable (&tables)[4])
{
    for (int i = 0; i < 4; i++) {
        const CJPEGDecoderHuffmanTable& table = tables[i];
        if (!table.m_bValid) continue;
        int codes = 0;
        for (const Qov8u count : table.m_bits) codes += count;
        lines.add("Huffman table %s %d: counts", className, i);
        addNumbers(lines, table.m_bits, 16);
        lines.add(", values");
        addNumbers(lines, table.m_vals, codes);
        lines.end();
    }
}

void addTables(Lines& lines, const CJPEGDecoder& decoder)
{
    for (int i = 0; i < 4; i++) {
        if (!decoder.m_qntbl[i].m_initialized) continue;
        lines.add("quantisation table %d:", i); // in zig-zag order
        addNumbers(lines, decoder.m_qntbl[i].m_raw, 64);
        lines.end();
    }
    addHuffmanTables(lines, "DC", decoder.m_dctbl);
    addHuffmanTables(lines, "AC", decoder.m_actbl);
}

void addApplicationSegments(Lines& lines, const CJPEGDecoder& decoder)
{
    if (decoder.m_jpeg_comment_detected && decoder.m_jpeg_comment) {
        // Many writers count the zero behind the text.
        std::string text(decoder.m_jpeg_comment, static_cast<size_t>(decoder.m_jpeg_comment_size));
        if (!text.empty() && text.back() == '\0') text.pop_back();
        lines.add("comment: ").addText(text).end();
    }
    if (decoder.m_jfif_app0_detected) {
        lines.add("JFIF version: %d.%02d\n", decoder.m_jfif_app0_major, decoder.m_jfif_app0_minor);
        lines.add("JFIF units: %d\n", decoder.m_jfif_app0_units);
        lines.add("JFIF density: %dx%d\n", decoder.m_jfif_app0_xDensity, decoder.m_jfif_app0_yDensity);
        lines.add("JFIF thumbnail: %dx%d\n", decoder.m_jfif_app0_thumbWidth, decoder.m_jfif_app0_thumbHeight);
    }
    if (decoder.m_jfxx_app0_detected) lines.add("JFXX thumbnail type: %d\n", decoder.m_jfxx_thumbnails_type);
    if (decoder.m_avi1_app0_detected) lines.add("AVI1 polarity: %d\n", decoder.m_avi1_app0_polarity);
    if (decoder.m_adobe_app14_detected) {
        lines.add("Adobe version: %d\n", decoder.m_adobe_app14_version);
        lines.add("Adobe flags: 0x%04X 0x%04X\n", static_cast<unsigned>(decoder.m_adobe_app14_flags0),
                  static_cast<unsigned>(decoder.m_adobe_app14_flags1));
        lines.add("Adobe transform: %d\n", decoder.m_adobe_app14_transform);
    }
}

void addExif(Lines& lines, const CJPEGDecoder& decoder)
{
    if (!decoder.m_exif_app1_detected || !decoder.m_exif_app1_data) return;
    const int size = decoder.m_exif_app1_data_size - 6; // the name is counted in the decoder's size
    const auto meta = std::make_unique<CJPEGMetaData>();
    const _JPEG_ERROR code = meta->ProcessAPP1_Exif(decoder.m_exif_app1_data, size);
    lines.add("Exif bytes: %d\n", size);
    lines.add("Exif byte order: ");
    switch (meta->m_tiff_hdr.byte_order) {
    case 0x4949: lines.add("II\n"); break;
    case 0x4D4D: lines.add("MM\n"); break;
    default: lines.add("0x%04X\n", static_cast<unsigned>(meta->m_tiff_hdr.byte_order)); break;
    }
    lines.add("Exif status: %s\n", GetErrorStr(code));
    if (const Qov8u* thumbnail = meta->GetJPEGThumbnailsData())
        lines.add("Exif thumbnail: %d bytes at %d\n", meta->GetJPEGThumbnailsLen(),
                  static_cast<int>(thumbnail - decoder.m_exif_app1_data));

    static const char* const names[CJPEGMetaData::NUM_IFDS] = {"IFD0", "IFD1", "EXIF", "GPS", "INTEROP"};
    for (int ifd = 0; ifd < CJPEGMetaData::NUM_IFDS; ifd++) {
        const int count = meta->GetIfdNumEntries(ifd);
        if (count) lines.add("%s entries: %d\n", names[ifd], count);
        for (int i = 0; i < count; i++) {
            lines.add("%s %d: ", names[ifd], i);
            const std::unique_ptr<char[]> text(meta->ShowIfdData(ifd, i));
            const _tiff_ifd_entry& entry = *meta->m_ifd[ifd].entries[i];
            if (text)
                lines.addText(text.get()).end();
            else
                lines.add("tag:0x%04X, type %d without a text\n", static_cast<unsigned>(entry.tag),
                          entry.type);
        }
    }
}

std::string describe(const Bytes& file)
{
    CJPEGDecoder decoder;
    codecCall(decoder.SetSource(file.data(), static_cast<int>(file.size())));
    int width, height, components, precision;
    _JPEG_COLOR color;
    _JPEG_SAMPLING sampling;
    codecCall(decoder.ReadHeader(&width, &height, &components, &color, &sampling, &precision));
    Lines lines;
    addFrame(lines, decoder);
    addTables(lines, decoder);
    addApplicationSegments(lines, decoder);
    addExif(lines, decoder);
    return lines.text();
}
} // namespace

void infoCommand(const std::vector<std::string>& words)
{
    const Arguments arguments(words, {}, 1);
    const std::string& path = arguments.file(0);
    std::fputs(onFile(path, [&] { return describe(readFile(path)); }).c_str(), stdout);
}
