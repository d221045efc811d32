#include "qkformat.h"

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

qkString qkFormat(const char* format, ...)
{
    va_list args;
    va_list again;
    va_start(args, format);
    va_copy(again, args);
    const int n = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    qkString text;
    if (n > 0) {
        text.allocate(n);
        std::vsnprintf(&text[0], static_cast<size_t>(n) + 1, format, again);
    }
    va_end(again);
    return text;
}

qkString sFormat(const qkString& text, int width)
{
    const int padding = std::abs(width) - text.length();
    if (padding <= 0) return text;
    qkString blanks;
    blanks.resize(padding, ' ');
    return width > 0 ? blanks + text : text + blanks;
}

qkString sFormat(double value, int width)
{
    return sFormat(qkFormat("%.3g", value), width);
}

qkString sFormat(int value, int width)
{
    const qkString text = qkFormat("%d", value);
    if (text.length() > std::abs(width) && text.length() > 9)
        return sFormat(static_cast<double>(value), width);
    return sFormat(text, width);
}

qkString sFormat(long long value, int width)
{
    if (value >= INT_MIN && value <= INT_MAX) return sFormat(static_cast<int>(value), width);
    return sFormat(static_cast<double>(value), width);
}

qkString cutoffNL(const qkString& text)
{
    const int end = text.find("\n");
    return end == qkString::npos ? text : text.substr(0, end);
}
