#include "pnm.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

namespace {
bool isBlank(char c)
{
    return std::strchr(" \t\n\v\f\r", c) && c != '\0';
}

// Walks the header. Words are parted by white space; a comment runs from # to the end of its line.
class Header {
public:
    explicit Header(const Bytes& file) : m_text(reinterpret_cast<const char*>(file.data()), file.size()) {}

    std::string word()
    {
        while (m_at < m_text.size() && (isBlank(m_text[m_at]) || m_text[m_at] == '#'))
            m_at = m_text[m_at] == '#' ? endOfLine() : m_at + 1;
        const size_t from = m_at;
        while (m_at < m_text.size() && !isBlank(m_text[m_at])) m_at++;
        if (from == m_at) throw Failure("the file ends inside its header");
        return std::string(m_text.substr(from, m_at - from));
    }

    long long number(const std::string& what, long long largest)
    {
        const std::string digits = word();
        long long value = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        if (error != std::errc() || end != digits.data() + digits.size() || value < 1 || value > largest)
            throw Failure(what + " '" + digits.substr(0, 40) + "' is not a number from 1 to " +
                          std::to_string(largest));
        return value;
    }

    void skipLine() { m_at = endOfLine(); }
    void skipBlank() { m_at = std::min(m_at + 1, m_text.size()); }
    size_t position() const { return m_at; }

private:
    size_t endOfLine() const { return std::min(m_text.find('\n', m_at), m_text.size()); }

    std::string_view m_text;
    size_t m_at = 0;
};

struct Shape {
    long long width = 0, height = 0, channels = 0, maxval = 0;
};

constexpr long long anySize = 1LL << 31;
constexpr long long largestMaxval = 65535;

Shape readPamHeader(Header& header)
{
    Shape shape;
    for (std::string key; (key = header.word()) != "ENDHDR";) {
        if (key == "WIDTH")
            shape.width = header.number("WIDTH", anySize);
        else if (key == "HEIGHT")
            shape.height = header.number("HEIGHT", anySize);
        else if (key == "DEPTH")
            shape.channels = header.number("DEPTH", anySize);
        else if (key == "MAXVAL")
            shape.maxval = header.number("MAXVAL", largestMaxval);
        else if (key == "TUPLTYPE")
            header.skipLine();
        else
            throw Failure("unknown PAM key '" + key.substr(0, 40) + "'");
    }
    if (!shape.width || !shape.height || !shape.channels || !shape.maxval)
        throw Failure("the PAM header lacks WIDTH, HEIGHT, DEPTH or MAXVAL");
    if (shape.channels != 1 && shape.channels != 3 && shape.channels != 4)
        throw Failure("DEPTH " + std::to_string(shape.channels) + " is not 1, 3 or 4");
    return shape;
}

Shape readPnmHeader(Header& header, long long channels)
{
    Shape shape;
    shape.channels = channels;
    shape.width = header.number("width", anySize);
    shape.height = header.number("height", anySize);
    shape.maxval = header.number("maxval", largestMaxval);
    return shape;
}

// Samples of 16 bits are big-endian in files. The same operation turns them to and fro.
void turnBytes(unsigned char* samples, size_t bytes)
{
    if constexpr (std::endian::native == std::endian::little)
        for (size_t i = 0; i + 1 < bytes; i += 2) std::swap(samples[i], samples[i + 1]);
}

void writeSamples(OutputFile& out, const Picture& picture)
{
    if (!picture.isWide()) return out.write(picture.samples.data(), picture.samples.size());
    for (int y = 0; y < picture.height; y++) {
        Bytes row(picture.row(y), picture.row(y) + picture.rowBytes());
        turnBytes(row.data(), row.size());
        out.write(row.data(), row.size());
    }
}
} // namespace

bool isPnm(const Bytes& file)
{
    return file.size() >= 2 && file[0] == 'P' && file[1] >= '1' && file[1] <= '7';
}

Picture readPnm(const Bytes& file)
{
    Header header(file);
    const std::string magic = header.word();
    Shape shape;
    if (magic == "P5")
        shape = readPnmHeader(header, 1);
    else if (magic == "P6")
        shape = readPnmHeader(header, 3);
    else if (magic == "P7")
        shape = readPamHeader(header);
    else
        throw Failure("'" + magic.substr(0, 40) + "' is not one of P5, P6 and P7");
    header.skipBlank();

    // The file is looked at first: a header alone costs no memory.
    const int channels = static_cast<int>(shape.channels);
    const int maxval = static_cast<int>(shape.maxval);
    const size_t needed = Picture::bytesOf(shape.width, shape.height, channels, maxval);
    needBytes(needed, file.size() - header.position());
    Picture picture = Picture::make(shape.width, shape.height, channels, maxval);
    std::memcpy(picture.samples.data(), file.data() + header.position(), needed);
    if (picture.isWide()) turnBytes(picture.samples.data(), needed);
    return picture;
}

void writePnm(OutputFile& out, const Picture& picture)
{
    out.write((picture.channels == 1 ? "P5\n" : "P6\n") + std::to_string(picture.width) + " " +
              std::to_string(picture.height) + "\n" + std::to_string(picture.maxval) + "\n");
    writeSamples(out, picture);
}

void writePam(OutputFile& out, const Picture& picture)
{
    const char* type = picture.channels == 1 ? "GRAYSCALE" : picture.channels == 3 ? "RGB" : "CMYK";
    out.write("P7\nWIDTH " + std::to_string(picture.width) + "\nHEIGHT " + std::to_string(picture.height) +
              "\nDEPTH " + std::to_string(picture.channels) + "\nMAXVAL " + std::to_string(picture.maxval) +
              "\nTUPLTYPE " + type + "\nENDHDR\n");
    writeSamples(out, picture);
}
