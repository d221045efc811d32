// JPEG streams put together by hand: segments, and entropy-coded data of flat blocks.
#ifndef TESTS_JPEG_STREAM_BUILDER_H
#define TESTS_JPEG_STREAM_BUILDER_H

#include "jpegdec.h"

#include <initializer_list>
#include <string>
#include <vector>

typedef std::string Bytes;

inline Bytes bytes(std::initializer_list<int> values)
{
    Bytes text;
    for (const int value : values) text += static_cast<char>(value);
    return text;
}

inline Bytes word(int value)
{
    return bytes({value >> 8, value & 255});
}

inline Bytes marker(int code)
{
    return bytes({0xFF, code});
}

inline Bytes segment(int code, const Bytes& payload)
{
    return marker(code) + word(static_cast<int>(payload.size()) + 2) + payload;
}

struct Component {
    int id, factors, table = 0;
};

inline Bytes frame(int code, int width, int height, const std::vector<Component>& components,
                   int precision = 8)
{
    Bytes payload = bytes({precision}) + word(height) + word(width);
    payload += static_cast<char>(components.size());
    for (const Component& one : components) payload += bytes({one.id, one.factors, one.table});
    return segment(code, payload);
}

// Selectors: DC table in the high nibble, AC table in the low one.
inline Bytes scan(const std::vector<int>& ids, int selectors = 0, int ss = 0, int se = 63, int ahAl = 0)
{
    Bytes payload(1, static_cast<char>(ids.size()));
    for (const int id : ids) payload += bytes({id, selectors});
    return segment(JM_SOS, payload + bytes({ss, se, ahAl}));
}

// Steps of 8: a DC coefficient of 1 is one level of grey.
inline Bytes eights(int idAndPrecision = 0)
{
    return segment(JM_DQT, bytes({idAndPrecision}) + Bytes(64, 8));
}

// One table: counts of the codes of 1, 2, ... bits, and the values.
inline Bytes huffman(int classAndId, std::initializer_list<int> counts, std::initializer_list<int> values)
{
    Bytes bits = bytes(counts);
    bits.resize(16);
    return segment(JM_DHT, bytes({classAndId}) + bits + bytes(values));
}

// Bits from the high end of each byte, FF stuffed, the last byte filled with ones.
class Bits {
public:
    Bits& put(const char* zerosAndOnes)
    {
        m_text += zerosAndOnes;
        return *this;
    }

    // A flat block by the luminance tables of T.81 annex K: the difference of DC, -3 to 3, and end of block.
    Bits& flat(int diff)
    {
        static const char* const codes[] = {"01100", "01101", "0100", "00", "0101", "01110", "01111"};
        return put(codes[diff + 3]).put("1010");
    }

    operator Bytes() const
    {
        Bytes coded;
        std::string text = m_text;
        while (text.size() % 8 != 0) text += '1';
        for (size_t at = 0; at < text.size(); at += 8) {
            coded += static_cast<char>(std::stoi(text.substr(at, 8), nullptr, 2));
            if (coded.back() == '\xFF') coded += '\0';
        }
        return coded;
    }

private:
    std::string m_text;
};

inline const Bytes soi = marker(JM_SOI), eoi = marker(JM_EOI);

#endif
