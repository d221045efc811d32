// MD5 (RFC 1321) of a block of bytes, as 32 hexadecimal digits: what lists of test files give.
#ifndef TESTS_MD5_H
#define TESTS_MD5_H

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

class Md5 {
public:
    static std::string of(std::string bytes)
    {
        Md5 md5;
        const std::uint64_t bits = bytes.size() * 8;
        bytes += '\x80';
        while (bytes.size() % 64 != 56) bytes += '\0';
        for (int i = 0; i < 8; i++) bytes += static_cast<char>(bits >> (8 * i));
        for (size_t at = 0; at < bytes.size(); at += 64) md5.block(bytes.data() + at);
        return md5.text();
    }

private:
    void block(const char* bytes)
    {
        std::uint32_t words[16] = {};
        for (int i = 0; i < 64; i++)
            words[i / 4] |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) << (i % 4 * 8);
        static const int shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
        std::uint32_t a = m_state[0], b = m_state[1], c = m_state[2], d = m_state[3];
        for (int i = 0; i < 64; i++) {
            std::uint32_t f;
            int word;
            switch (i / 16) {
            case 0: f = (b & c) | (~b & d), word = i; break;
            case 1: f = (d & b) | (~d & c), word = (5 * i + 1) % 16; break;
            case 2: f = b ^ c ^ d, word = (3 * i + 5) % 16; break;
            default: f = c ^ (b | ~d), word = 7 * i % 16; break;
            }
            const auto sine = static_cast<std::uint32_t>(std::fabs(std::sin(i + 1.0)) * 4294967296.0);
            const std::uint32_t turned = std::rotl(a + f + sine + words[word], shifts[i / 16][i % 4]);
            a = d, d = c, c = b, b += turned;
        }
        m_state[0] += a, m_state[1] += b, m_state[2] += c, m_state[3] += d;
    }

    std::string text() const
    {
        std::string digits;
        for (int i = 0; i < 16; i++) {
            char pair[3];
            std::snprintf(pair, sizeof pair, "%02x", m_state[i / 4] >> (i % 4 * 8) & 255);
            digits += pair;
        }
        return digits;
    }

    std::uint32_t m_state[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
};

#endif
