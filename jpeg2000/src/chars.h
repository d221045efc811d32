// Zero-terminated texts.
#ifndef JPEG2000_CHARS_H
#define JPEG2000_CHARS_H

namespace jpeg2000 {

// Characters without the final zero.
template <class Char>
unsigned StrSize(const Char* text)
{
    unsigned size = 0;
    while (text[size]) size++;
    return size;
}

// Copies at most `limit` characters and always ends the text: dst holds limit + 1. Returns how many.
template <class Char>
unsigned StrCopy(const Char* src, Char* dst, unsigned limit)
{
    unsigned size = 0;
    for (; size < limit && src[size]; size++) dst[size] = src[size];
    dst[size] = 0;
    return size;
}

// Capitals make no difference. 0, -1 or 1.
int Stricmp(const char* a, const char* b);

template <class Char>
struct StrNature {
    static const Char m_digit[];
};
template <>
inline const char StrNature<char>::m_digit[] = "0123456789";

// The decimal text of value; with its final zero it has at most 11 characters. Returns its length.
template <class Char>
unsigned IntToStrR10(unsigned value, Char* buffer)
{
    unsigned size = 1;
    for (unsigned rest = value; rest >= 10; rest /= 10) size++;
    buffer[size] = 0;
    for (unsigned i = size; i-- > 0; value /= 10) buffer[i] = StrNature<Char>::m_digit[value % 10];
    return size;
}

} // namespace jpeg2000

#endif
