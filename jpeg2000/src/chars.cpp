#include "chars.h"

#include <cctype>

namespace jpeg2000 {

int Stricmp(const char* a, const char* b)
{
    const auto lower = [](char c) { return tolower(static_cast<unsigned char>(c)); };
    while (*a && lower(*a) == lower(*b)) a++, b++;
    const int difference = lower(*a) - lower(*b);
    return (difference > 0) - (difference < 0);
}

} // namespace jpeg2000
