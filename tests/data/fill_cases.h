// What the data of a filled vector or image must be: a digest of its elements, the state of the generator
// afterwards, and the first bytes for a person to look at. The rows stand in fill_expected.h.
#ifndef TESTS_DATA_FILL_CASES_H
#define TESTS_DATA_FILL_CASES_H

#include <cstdint>
#include <cstdio>
#include <string>

#include "qdimage.h"

enum Fill { fillRandom, fillJaehne, fillRamp };

struct FillCase {
    Fill fill;
    qdType type;
    int n;
    double a, b;
    std::uint64_t digest;
    unsigned seed;
    const char* head;
};

struct FillImageCase {
    Fill fill;
    qdType type;
    int channels;
    bool planar;
    int w, h;
    std::uint64_t digest;
    unsigned seed;
    const char* head;
};

// 64-bit FNV-1a.
class Digest {
public:
    void add(const void* p, int size)
    {
        for (int i = 0; i < size; i++) {
            const unsigned byte = static_cast<const unsigned char*>(p)[i];
            m_value = (m_value ^ byte) * 0x100000001B3;
            char text[3];
            std::snprintf(text, sizeof text, "%02x", byte);
            if (m_head.size() < 16) m_head += text;
        }
    }
    std::uint64_t value() const { return m_value; }
    const std::string& head() const { return m_head; }

private:
    std::uint64_t m_value = 0xCBF29CE484222325;
    std::string m_head;
};

#endif
