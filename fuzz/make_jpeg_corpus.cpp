// Writes the seeds of the JPEG and Exif fuzzers: make_jpeg_corpus FOLDER fills FOLDER/jpeg_decode and
// FOLDER/exif. The same files at every run.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "jpegenc.h"

namespace {

typedef std::vector<Qov8u> Bytes;

void append(Bytes& to, const Bytes& what)
{
    to.insert(to.end(), what.begin(), what.end());
}

// ---- Files
// -------------------------------------------------------------------------------------------------

class Folder {
public:
    explicit Folder(const std::filesystem::path& path) : m_path(path)
    {
        std::filesystem::create_directories(path);
    }
    void write(const std::string& name, const Bytes& bytes)
    {
        std::ofstream out(m_path / name, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        m_failed = m_failed || !out.flush();
        m_files++;
    }
    int files() const { return m_files; }
    bool failed() const { return m_failed; }

private:
    std::filesystem::path m_path;
    int m_files = 0;
    bool m_failed = false;
};

// ---- Coded pictures
// ----------------------------------------------------------------------------------------

struct Color {
    const char* name;
    _JPEG_COLOR source, coded;
    int channels;
    bool subsampled; // may be
};

const Color colors[] = {
    {"gray", JC_GRAY, JC_GRAY, 1, false},        {"ycbcr", JC_RGB, JC_YCBCR, 3, true},
    {"rgb", JC_RGB, JC_RGB, 3, false},           {"cmyk", JC_CMYK, JC_CMYK, 4, false},
    {"ycck", JC_CMYK, JC_YCCK, 4, true},         {"one", JC_UNKNOWN, JC_UNKNOWN, 1, false},
    {"three", JC_UNKNOWN, JC_UNKNOWN, 3, false}, {"four", JC_UNKNOWN, JC_UNKNOWN, 4, false},
};
const Color& gray = colors[0];
const Color& yCbCr = colors[1];

const char* const samplingNames[] = {"444", "422", "244", "411"};
const char* const modeNames[] = {"baseline", "progressive", "lossless"};

struct Coding {
    _JPEG_MODE mode = JPEG_BASELINE;
    _JPEG_SAMPLING sampling = JS_444;
    int restartInterval = 0;
    int predictor = 1, pointTransform = 0; // lossless
};

// A slope with texture, another one in every channel.
Bytes pixels(QoviSize size, int channels)
{
    Bytes out;
    for (int y = 0; y < size.height; y++)
        for (int x = 0; x < size.width; x++)
            for (int c = 0; c < channels; c++)
                out.push_back(static_cast<Qov8u>(5 * x + 3 * y * (c + 1) + 40 * ((x * y + c) % 5 == 0)));
    return out;
}

_JPEG_ERROR encode(const Bytes& source, QoviSize size, const Color& color, const Coding& coding,
                   Bytes& stream)
{
    stream.resize(65536);
    CJPEGEncoder encoder;
    JPEG_PASS(encoder.SetSource(source.data(), size.width * color.channels, size, color.channels,
                                color.source, coding.sampling));
    JPEG_PASS(encoder.SetDestination(stream.data(), static_cast<int>(stream.size()), 60, color.coded,
                                     coding.sampling, coding.mode, coding.restartInterval));
    encoder.m_predictor = coding.predictor;
    encoder.m_pt = coding.pointTransform;
    encoder.m_jpeg_ncomp = color.channels;
    JPEG_PASS(encoder.WriteHeader());
    JPEG_PASS(encoder.WriteData());
    stream.resize(static_cast<size_t>(encoder.GetNumOfBytes()));
    return JPEG_OK;
}

// Empty, with a word on stderr, where the encoder refuses.
Bytes encoded(QoviSize size, const Color& color, const Coding& coding)
{
    Bytes stream;
    const _JPEG_ERROR error = encode(pixels(size, color.channels), size, color, coding, stream);
    if (error == JPEG_OK) return stream;
    std::fprintf(stderr, "%s %s %s %dx%d: %s\n", modeNames[coding.mode], color.name,
                 samplingNames[coding.sampling], size.width, size.height, GetErrorStr(error));
    return {};
}

void writeCodedPictures(Folder& folder)
{
    const QoviSize sizes[] = {{8, 8}, {33, 17}, {1, 1}, {16, 16}, {17, 9}};
    size_t number = 0;
    const auto write = [&](const Color& color, const Coding& coding) {
        const Bytes stream = encoded(sizes[number++ % std::size(sizes)], color, coding);
        if (stream.empty()) return;
        std::string name = std::string(modeNames[coding.mode]) + "_" + color.name + "_";
        name +=
            coding.mode == JPEG_LOSSLESS ? std::to_string(coding.predictor) : samplingNames[coding.sampling];
        folder.write(coding.restartInterval ? name + "_restarts" : name, stream);
    };
    for (const Color& color : colors)
        for (const _JPEG_MODE mode : {JPEG_BASELINE, JPEG_PROGRESSIVE})
            for (const _JPEG_SAMPLING sampling : {JS_444, JS_422, JS_244, JS_411})
                for (const int interval : {0, 2})
                    if (sampling == JS_444 || color.subsampled) write(color, {mode, sampling, interval});
    for (int predictor = 1; predictor <= 7; predictor++)
        write(gray, {JPEG_LOSSLESS, JS_444, 0, predictor, predictor % 3});
}

// ---- Segments by hand
// --------------------------------------------------------------------------------------

Bytes word(int value)
{
    return {static_cast<Qov8u>(value >> 8), static_cast<Qov8u>(value)};
}

Bytes segment(_JPEG_MARKER marker, const Bytes& payload)
{
    Bytes out = {0xFF, static_cast<Qov8u>(marker)};
    append(out, word(static_cast<int>(payload.size()) + 2));
    append(out, payload);
    return out;
}

Bytes text(const std::string& s)
{
    return Bytes(s.begin(), s.end());
}

// The stream with something right behind SOI.
Bytes withFirst(const Bytes& stream, const Bytes& added)
{
    Bytes out(stream.begin(), stream.begin() + 2);
    append(out, added);
    out.insert(out.end(), stream.begin() + 2, stream.end());
    return out;
}

// The stream without its segments of one kind.
Bytes without(const Bytes& stream, _JPEG_MARKER marker)
{
    Bytes out = {stream[0], stream[1]};
    auto pos = stream.begin() + 2;
    while (pos[1] != JM_SOS) {
        const auto end = pos + 2 + (pos[2] << 8 | pos[3]);
        if (pos[1] != marker) out.insert(out.end(), pos, end);
        pos = end;
    }
    out.insert(out.end(), pos, stream.end());
    return out;
}

// ---- Lossless streams of any precision
// ---------------------------------------------------------------------

struct Lossless {
    QoviSize size;
    int precision, predictor, pointTransform;
    bool restarts; // after every row
};

// T.81 annex H with the primitives. One table for all: 17 categories, codes of five bits.
Bytes losslessStream(const Lossless& p)
{
    Qov8u bits[16] = {}, categories[17];
    bits[4] = 17;
    for (int i = 0; i < 17; i++) categories[i] = static_cast<Qov8u>(i);
    CJPEGEncoderHuffmanTable table;
    CJPEGEncoderHuffmanState state;
    if (table.Create() != JPEG_OK || table.Init(0, 0, bits, categories) != JPEG_OK ||
        state.Create() != JPEG_OK || state.Init() != JPEG_OK)
        return {};

    const int width = p.size.width;
    Bytes out = {0xFF, JM_SOI}, frame = {static_cast<Qov8u>(p.precision)}, huffman = {0};
    append(frame, word(p.size.height));
    append(frame, word(width));
    append(frame, {1, 1, 0x11, 0});
    huffman.insert(huffman.end(), bits, bits + 16);
    huffman.insert(huffman.end(), categories, categories + 17);
    append(out, segment(JM_SOF3, frame));
    append(out, segment(JM_DHT, huffman));
    if (p.restarts) append(out, segment(JM_DRI, word(width)));
    append(out, segment(JM_SOS,
                        {1, 1, 0, static_cast<Qov8u>(p.predictor), 0, static_cast<Qov8u>(p.pointTransform)}));

    int pos = static_cast<int>(out.size());
    out.resize(out.size() + 8 * static_cast<size_t>(width * p.size.height) + 64);
    const int room = static_cast<int>(out.size());
    const auto code = [&](const Qov16s* difference, int flush) {
        return qoviEncodeHuffmanOne_JPEG_16s1u_C1(difference, out.data(), room, &pos, table.m_table,
                                                  state.m_state, flush);
    };
    const int last = (1 << (p.precision - p.pointTransform)) - 1;
    std::vector<Qov16s> above;
    for (int y = 0; y < p.size.height; y++) {
        // Slopes, and jumps between the ends of the range.
        std::vector<Qov16s> row;
        for (int x = 0; x < width; x++)
            row.push_back(static_cast<Qov16s>((x * y) % 7 == 6 ? last * (x & 1) : (37 * x + 101 * y) & last));
        std::vector<Qov16s> differences(row.size());
        const bool first = y == 0 || p.restarts;
        QovStatus status = first ? qoviDiffPredFirstRow_JPEG_16s_C1(row.data(), differences.data(), width,
                                                                    p.precision, p.pointTransform)
                                 : qoviDiffPredRow_JPEG_16s_C1(row.data(), above.data(), differences.data(),
                                                               width, p.predictor);
        for (const Qov16s& difference : differences)
            if (status == qovStsNoErr) status = code(&difference, 0);
        if (status == qovStsNoErr && (p.restarts || y == p.size.height - 1)) status = code(nullptr, 1);
        if (status != qovStsNoErr) return {};
        if (p.restarts && y < p.size.height - 1) {
            out[static_cast<size_t>(pos++)] = 0xFF;
            out[static_cast<size_t>(pos++)] = static_cast<Qov8u>(JM_RST0 + y % 8);
        }
        above = std::move(row);
    }
    out.resize(static_cast<size_t>(pos));
    append(out, {0xFF, JM_EOI});
    return out;
}

void writeLossless(Folder& folder)
{
    const Lossless list[] = {
        {{8, 8}, 2, 1, 0, false},    {{17, 9}, 10, 2, 3, false}, {{33, 17}, 12, 7, 0, false},
        {{9, 5}, 16, 1, 0, true},    {{8, 8}, 16, 4, 0, false},  {{17, 9}, 16, 5, 2, false},
        {{33, 17}, 16, 6, 0, false}, {{1, 1}, 9, 3, 8, false},   {{33, 17}, 12, 6, 1, true},
        {{17, 9}, 8, 7, 0, true},
    };
    for (const Lossless& p : list) {
        const Bytes stream = losslessStream(p);
        const std::string name =
            "lossless_" + std::to_string(p.precision) + "bits_" + std::to_string(p.predictor);
        if (stream.empty())
            std::fprintf(stderr, "%s: not coded\n", name.c_str());
        else
            folder.write(p.restarts ? name + "_restarts" : name, stream);
    }
}

// ---- Exif
// --------------------------------------------------------------------------------------------------

// TIFF 6.0 section 2: types by number.
enum Type {
    BYTE = 1,
    ASCII,
    SHORT,
    LONG,
    RATIONAL,
    SBYTE,
    UNDEFINED,
    SSHORT,
    SLONG,
    SRATIONAL,
    FLOAT,
    DOUBLE
};

size_t unitSize(Type type) // of what is swapped as a whole
{
    switch (type) {
    case SHORT:
    case SSHORT: return 2;
    case LONG:
    case SLONG:
    case RATIONAL:
    case SRATIONAL:
    case FLOAT: return 4;
    case DOUBLE: return 8;
    default: return 1;
    }
}

class Tiff {
public:
    struct Entry {
        int tag;
        Type type;
        std::vector<long long> units; // a rational has two
    };

    explicit Tiff(bool littleEndian) : m_little(littleEndian)
    {
        m_bytes = text(m_little ? "II" : "MM");
        put(42, 2);
        put(8, 4);
    }

    // Appends a directory and its values; answers where it stands.
    size_t directory(const std::vector<Entry>& entries, size_t next = 0)
    {
        const size_t start = m_bytes.size();
        size_t values = start + 2 + 12 * entries.size() + 4;
        Tiff behind(m_little);
        behind.m_bytes.clear();
        put(static_cast<long long>(entries.size()), 2);
        for (const Entry& e : entries) {
            const size_t unit = unitSize(e.type);
            const bool pair = e.type == RATIONAL || e.type == SRATIONAL;
            put(e.tag, 2);
            put(e.type, 2);
            put(static_cast<long long>(e.units.size()) / (pair ? 2 : 1), 4);
            Tiff& to = unit * e.units.size() <= 4 ? *this : behind;
            if (&to == &behind) put(static_cast<long long>(values + behind.m_bytes.size()), 4);
            const size_t begin = to.m_bytes.size();
            for (const long long value : e.units) to.put(value, static_cast<int>(unit));
            while ((to.m_bytes.size() - begin) % 4) to.put(0, 1);
        }
        put(static_cast<long long>(next), 4);
        append(m_bytes, behind.m_bytes);
        return start;
    }

    // A LONG of a directory whose value was not known when it was written.
    void patch(size_t at, size_t value)
    {
        Tiff number(m_little);
        number.m_bytes.clear();
        number.put(static_cast<long long>(value), 4);
        for (size_t i = 0; i < 4; i++) m_bytes[at + i] = number.m_bytes[i];
    }
    static size_t valueAt(size_t directory, size_t entry) { return directory + 2 + 12 * entry + 8; }
    static size_t nextAt(size_t directory, size_t entries) { return directory + 2 + 12 * entries; }

    Bytes m_bytes;

private:
    void put(long long value, int size)
    {
        for (int i = 0; i < size; i++)
            m_bytes.push_back(static_cast<Qov8u>(value >> 8 * (m_little ? i : size - 1 - i)));
    }

    bool m_little;
};

std::vector<long long> ascii(const std::string& s)
{
    std::vector<long long> out(s.begin(), s.end());
    out.push_back(0);
    return out;
}

// All five directories, all types, and a thumbnail.
Tiff exif(bool littleEndian)
{
    enum { exifPointer = 0x8769, gpsPointer = 0x8825, interopPointer = 0xA005 };
    Tiff tiff(littleEndian);
    const size_t ifd0 = tiff.directory({{exifPointer, LONG, {0}},
                                        {gpsPointer, LONG, {0}},
                                        {0x010F, ASCII, ascii("Maker of pictures")},
                                        {0x0112, SHORT, {6}},
                                        {0x011A, RATIONAL, {72, 1}},
                                        {0x0102, SHORT, {8, 8, 8}},
                                        {0x9C9B, BYTE, {1, 2, 3, 4, 5, 6}},
                                        {0x0001, SBYTE, {-1, 1}}});
    const size_t inner = tiff.directory({{interopPointer, LONG, {0}},
                                         {0x9000, UNDEFINED, {'0', '2', '2', '0'}},
                                         {0x9003, ASCII, ascii("2001:02:03 04:05:06")},
                                         {0x829A, RATIONAL, {1, 125}},
                                         {0x9204, SRATIONAL, {-1, 3}},
                                         {0x9214, SSHORT, {-1, -2, 3}},
                                         {0x9215, SLONG, {-1, 70000}},
                                         {0x9216, FLOAT, {0x3F800000}},
                                         {0x9217, DOUBLE, {0x3FF0000000000000}},
                                         {0x920A, RATIONAL, {50, 0}},
                                         {0x9286, UNDEFINED, ascii("a comment of the user")}});
    const size_t gps = tiff.directory(
        {{1, ASCII, ascii("N")}, {2, RATIONAL, {52, 1, 30, 1, 15, 2}}, {29, ASCII, ascii("2001:02:03")}});
    const size_t interop = tiff.directory({{1, ASCII, ascii("R98")}, {2, UNDEFINED, {'0', '1', '0', '0'}}});
    const size_t ifd1 = tiff.directory({{0x0201, LONG, {0}}, {0x0202, LONG, {4}}, {0x0103, SHORT, {6}}});
    tiff.patch(Tiff::valueAt(ifd0, 0), inner);
    tiff.patch(Tiff::valueAt(ifd0, 1), gps);
    tiff.patch(Tiff::valueAt(inner, 0), interop);
    tiff.patch(Tiff::nextAt(ifd0, 8), ifd1);
    tiff.patch(Tiff::valueAt(ifd1, 0), tiff.m_bytes.size());
    append(tiff.m_bytes, {0xFF, JM_SOI, 0xFF, JM_EOI});
    return tiff;
}

void writeExif(Folder& folder)
{
    const size_t first = 8;
    for (const bool little : {true, false}) {
        const std::string order = little ? "little_" : "big_";
        const Tiff whole = exif(little);
        folder.write(order + "whole", whole.m_bytes);
        Tiff loop = whole, far = whole, huge = whole;
        loop.patch(Tiff::nextAt(first, 8), first);
        folder.write(order + "loop", loop.m_bytes);
        far.patch(Tiff::valueAt(first, 2), 0xFFFFFFF0);
        folder.write(order + "far_value", far.m_bytes);
        huge.patch(Tiff::valueAt(first, 4) - 4, 0x20000001);
        folder.write(order + "huge_count", huge.m_bytes);
        folder.write(order + "cut", Bytes(whole.m_bytes.begin(), whole.m_bytes.begin() + 70));
    }
}

void writeSegments(Folder& folder)
{
    const Bytes color = encoded({17, 9}, yCbCr, {JPEG_BASELINE, JS_411, 0});
    const Bytes restarts = encoded({33, 17}, yCbCr, {JPEG_PROGRESSIVE, JS_422, 1});
    if (color.empty() || restarts.empty()) return;
    for (const bool little : {true, false}) {
        Bytes payload = text(std::string("Exif\0\0", 6));
        append(payload, exif(little).m_bytes);
        folder.write(little ? "exif_little" : "exif_big", withFirst(color, segment(JM_APP1, payload)));
    }
    const Bytes field = text(std::string("AVI1\1\0\0\0\0\0\0\0\0\0\0\0\0", 17));
    folder.write("avi1_own_tables", withFirst(without(color, JM_DHT), segment(JM_APP0, field)));
    const Bytes thumbnail = text(std::string("JFXX\0\x13\1\1\0\0\0", 11));
    folder.write("jfxx", withFirst(color, segment(JM_APP0, thumbnail)));
    folder.write("comment", withFirst(color, segment(JM_COM, text("of some words"))));
    for (Qov8u transform = 0; transform < 4; transform++) {
        Bytes adobe = text(std::string("Adobe\0\x64\0\0\0\0", 11));
        adobe.push_back(transform);
        folder.write("adobe_" + std::to_string(transform), withFirst(color, segment(JM_APP14, adobe)));
    }
    folder.write("no_quant", without(color, JM_DQT));
    folder.write("cut", Bytes(color.begin(), color.end() - 20));
    folder.write("restarts_cut",
                 Bytes(restarts.begin(), restarts.end() - static_cast<long>(restarts.size() / 3)));

    // What the decoding target is to do otherwise, see there: a byte behind EOI.
    for (const int choice : {1, 2, 4, 6, 8}) {
        Bytes other = color;
        other.push_back(static_cast<Qov8u>(JM_EOI ^ choice));
        folder.write("choice_" + std::to_string(choice), other);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_jpeg_corpus FOLDER\n");
        return 2;
    }
    qovInit();
    const std::filesystem::path root = argv[1];
    Folder streams(root / "jpeg_decode"), structures(root / "exif");
    writeCodedPictures(streams);
    writeLossless(streams);
    writeSegments(streams);
    writeExif(structures);
    std::printf("%d streams, %d Exif structures\n", streams.files(), structures.files());
    return streams.failed() || structures.failed() ? 1 : 0;
}
