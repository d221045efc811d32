// Text forms of test data, and the reading of single elements.
#include <algorithm>
#include <climits>
#include <cstdio>

#include "qdconvert.h"
#include "qdvector.h"

// One part in its column. Every value of a type fits the column, so all texts of a type are equally long.
static const size_t maxPart = 32;

#define QD_PRINT(Part, format, Wide)                                                                         \
    static int printPart(char* out, Part value)                                                              \
    {                                                                                                        \
        return std::snprintf(out, maxPart, format, static_cast<Wide>(value));                                \
    }
QD_PRINT(Qov8u, "%4u", unsigned)
QD_PRINT(Qov16u, "%6u", unsigned)
QD_PRINT(Qov32u, "%11u", unsigned)
QD_PRINT(Qov64u, "%24llu", unsigned long long)
QD_PRINT(Qov8s, "%5d", int)
QD_PRINT(Qov16s, "%7d", int)
QD_PRINT(Qov32s, "%12d", int)
QD_PRINT(Qov64s, "%24lld", long long)
QD_PRINT(Qov32f, "%14.6g", double)
QD_PRINT(Qov64f, "%20.12g", double)
#undef QD_PRINT

template <class Part>
static char* printElement(char* out, const void* p, std::int64_t i, bool isComplex)
{
    if (!isComplex) return out + printPart(out, qdLoad<Part>(p, i));
    *out++ = ' ';
    *out++ = '(';
    out += printPart(out, qdLoad<Part>(p, 2 * i));
    *out++ = ',';
    out += printPart(out, qdLoad<Part>(p, 2 * i + 1));
    *out++ = ')';
    return out;
}

int qdVector::dataStringWidth(qdType type)
{
    int width = 0;
    qdVisitPart(type, [&](auto part) {
        char text[2 * maxPart + 4];
        const decltype(part) zero[2] = {};
        width = static_cast<int>(printElement<decltype(part)>(text, zero, 0, qdIsComplex(type)) - text);
    });
    return width;
}

char* qdVector::writeDataString(char* out, qdType type, const void* p, int count)
{
    qdVisitPart(type, [&](auto part) {
        for (int i = 0; i < count; i++) out = printElement<decltype(part)>(out, p, i, qdIsComplex(type));
    });
    return out;
}

// A text has at most 2^31 characters; of longer data the beginning is shown.
qkString qdVector::getDataString(qdType type, const void* p, int count)
{
    qkString text;
    const int width = dataStringWidth(type);
    if (!p || count < 1 || width == 0) return text;
    count = std::min(count, INT_MAX / 2 / width);
    text.allocate(count * width);
    writeDataString(&text[0], type, p, count);
    return text;
}

qkString qdVector::getByteString(const void* p, int count)
{
    qkString text;
    if (!p || count < 1) return text;
    count = std::min(count, INT_MAX / 2 / 3);
    text.allocate(count * 3);
    const auto* bytes = static_cast<const unsigned char*>(p);
    for (int i = 0; i < count; i++) std::snprintf(&text[i * 3], 4, " %02X", bytes[i]);
    return text;
}

qkString qdVector::getString() const
{
    return getDataString(m_data, m_len);
}

void qdVector::getElement(const void* p, double& re, double& im) const
{
    re = im = 0;
    if (!p) return;
    qdVisitPart(m_type, [&](auto part) {
        using Part = decltype(part);
        re = static_cast<double>(qdLoad<Part>(p, 0));
        if (qdIsComplex(m_type)) im = static_cast<double>(qdLoad<Part>(p, 1));
    });
}
