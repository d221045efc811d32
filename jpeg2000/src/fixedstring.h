// A text that owns its characters.
#ifndef JPEG2000_FIXEDSTRING_H
#define JPEG2000_FIXEDSTRING_H

#include "basics.h"
#include "chars.h"
#include "fixedbuffer.h"

#include <algorithm>

namespace jpeg2000 {

// The final zero stands beyond the length, so that even an empty one owns a character.
template <class Char>
class FixedString {
public:
    FixedString() { assign(nullptr, 0); }
    FixedString(const Char* text) { assign(text, StrSize(text)); }
    FixedString(const Char* text, unsigned length) { assign(text, length); }
    FixedString(const FixedString& other) { assign(other.m_data, other.m_length); }
    FixedString& operator=(const FixedString& other)
    {
        if (this != &other) assign(other.m_data, other.m_length);
        return *this;
    }

    unsigned Length() const { return m_length; }
    operator const Char*() const { return m_data; }

    friend bool operator==(const FixedString& a, const Char* b)
    {
        const Char* text = a;
        return std::equal(text, text + a.m_length, b, b + StrSize(b));
    }

private:
    void assign(const Char* text, unsigned length)
    {
        FixedBuffer<Char> data(length + size_t{1});
        Copy(text, data, length);
        data[length] = 0;
        m_data = std::move(data);
        m_length = length;
    }

    FixedBuffer<Char> m_data;
    unsigned m_length = 0;
};

} // namespace jpeg2000

#endif
