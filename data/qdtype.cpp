#include "qdtype.h"

#include "qdvector.h"
#include "qkformat.h"

#include <cfloat>

qdLimits qdTypeLimits(qdType type)
{
    switch (qdRealType(type)) {
    case qd8u: return {0, 255, 1};
    case qd16u: return {0, 65535, 1};
    case qd32u: return {0, 4294967295.0, 1};
    case qd64u: return {0, 9223372036854775808.0, 1};
    case qd8s: return {-128, 127, 1};
    case qd16s: return {-32768, 32767, 1};
    case qd32s: return {-2147483648.0, 2147483647, 1};
    case qd64s: return {-9223372036854775808.0, 9223372036854775808.0, 1};
    case qd32f: return {-qdVector::MAXABS_32F, qdVector::MAXABS_32F, FLT_MIN};
    case qd64f: return {-qdVector::MAXABS_64F, qdVector::MAXABS_64F, DBL_MIN};
    default: return {};
    }
}

qkString& operator<<(qkString& s, const QovSize& value)
{
    return s << qkFormat("%dx%d", value.width, value.height);
}

qkString& operator<<(qkString& s, const QovPoint& value)
{
    return s << qkFormat("(%d,%d)", value.x, value.y);
}

qkString& operator<<(qkString& s, const QovRect& value)
{
    return s << qkFormat("(%d,%d)%dx%d", value.x, value.y, value.width, value.height);
}

// Reads up to `count` integers; the rest of `members` stays 0. False if a word is no number.
static bool readMembers(const qkString& text, const char* separators, int* members, int count)
{
    qkStringList words;
    text.parse(words, separators);
    bool good = true;
    int i = 0;
    for (qkStringList::iterator word = words.begin(); word != words.end() && i < count; ++word, i++) {
        word->setFail(false);
        members[i] << *word;
        if (word->fail()) good = false;
    }
    return good;
}

void operator<<(QovSize& value, qkString& text)
{
    int members[2] = {};
    const bool good = readMembers(text, " {}()x,", members, 2);
    value = {members[0], members[1]};
    text.setFail(!good || value.width <= 0 || value.height <= 0);
}

void operator<<(QovPoint& value, qkString& text)
{
    int members[2] = {};
    text.setFail(!readMembers(text, " {}(),x", members, 2));
    value = {members[0], members[1]};
}

void operator<<(QovRect& value, qkString& text)
{
    int members[4] = {};
    text.setFail(!readMembers(text, " {}(),x", members, 4));
    value = {members[0], members[1], members[2], members[3]};
}
