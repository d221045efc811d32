// Formatted text: printf into a qkString, and fields padded to a width.
#ifndef QK_FORMAT_H
#define QK_FORMAT_H

#include "qkstring.h"

[[gnu::format(printf, 1, 2)]] qkString qkFormat(const char* format, ...);

// Pads with blanks to |width|, on the left for a positive width, on the right for a negative one; never cuts.
qkString sFormat(const qkString& text, int width);
// "%.3g", then padded.
qkString sFormat(double value, int width);
// Decimal; a number longer than the width and longer than 9 characters takes the double form.
qkString sFormat(int value, int width);
// As int if it fits 32 bits, as double otherwise.
qkString sFormat(long long value, int width);

// The text up to its first line feed.
qkString cutoffNL(const qkString& text);

#endif
