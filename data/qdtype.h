// Element types of test data, their codes and limits, the fill modes, and the text forms of sizes, points and
// rectangles.
#ifndef QD_TYPE_H
#define QD_TYPE_H

#include "qkstream.h"
#include "qovdefs.h"

// name, type of a part (the element itself, or each half of a complex one), code. The order is that of the
// typed pointers of qdVector and qdImage.
#define QD_TYPES(X)                                                                                          \
    X(8u, 8u, 8)                                                                                             \
    X(16u, 16u, 16)                                                                                          \
    X(32u, 32u, 32)                                                                                          \
    X(64u, 64u, 64)                                                                                          \
    X(8s, 8s, 264)                                                                                           \
    X(16s, 16s, 272)                                                                                         \
    X(32s, 32s, 288)                                                                                         \
    X(64s, 64s, 320)                                                                                         \
    X(8sc, 8s, 1288)                                                                                         \
    X(16sc, 16s, 1296)                                                                                       \
    X(16uc, 16u, 1040)                                                                                       \
    X(32sc, 32s, 1312)                                                                                       \
    X(64sc, 64s, 1344)                                                                                       \
    X(32f, 32f, 544)                                                                                         \
    X(64f, 64f, 576)                                                                                         \
    X(32fc, 32f, 1568)                                                                                       \
    X(64fc, 64f, 1600)

// The low byte of a code is the width of a part in bits; the other bits are flags.
#define QD_ENUMERATOR(name, part, code) qd##name = code,
enum qdType : int { qdUndef = 0, QD_TYPES(QD_ENUMERATOR) };
#undef QD_ENUMERATOR

constexpr int qdTypeWidth = 255;
constexpr int qdTypeSigned = 256;
constexpr int qdTypeFloat = 512;
constexpr int qdTypeComplex = 1024;

constexpr bool qdIsComplex(qdType type)
{
    return (type & qdTypeComplex) != 0;
}
constexpr bool qdIsFloat(qdType type)
{
    return (type & qdTypeFloat) != 0;
}
constexpr bool qdIsSigned(qdType type)
{
    return (type & qdTypeSigned) != 0;
}
constexpr int qdNumParts(qdType type)
{
    return qdIsComplex(type) ? 2 : 1;
}
constexpr qdType qdRealType(qdType type)
{
    return qdType(type & ~qdTypeComplex);
}
constexpr qdType qdComplexType(qdType type)
{
    return qdType(type | qdTypeComplex);
}
// Bytes of an element.
constexpr int qdItemSize(qdType type)
{
    return (type & qdTypeWidth) / 8 * qdNumParts(type);
}

// Limits of a part: smallest and largest value and the smallest absolute value but 0. All 0 for an undefined
// type. 64u ends at 2^63 like 64s; those of the floating types keep products of two values finite.
struct qdLimits {
    double min = 0;
    double max = 0;
    double minAbs = 0;
};
qdLimits qdTypeLimits(qdType type);

// Calls visit(part), where `part` is a zero of the type of the element's parts: the one place where a type
// code turns into a type. False, and no call, for an undefined type.
template <class Visit>
bool qdVisitPart(qdType type, Visit&& visit)
{
#define QD_CASE(name, part, code)                                                                            \
    case qd##name: visit(Qov##part{}); return true;
    switch (type) {
        QD_TYPES(QD_CASE)
    default: return false;
    }
#undef QD_CASE
}

// What a vector is filled with. For SET_CONST the two arguments are real and imaginary part, for SET_RANDOM
// and SET_SEQUENCE the two ends of the range.
enum SetMode {
    SET_DEFAULT = 0, // 1.00001 for floating types, 2 for others
    SET_ZERO = 1,
    SET_ONE = 2,
    SET_MAX = 3,
    SET_MIN = 4,
    SET_CONST = 5,
    SET_RANDOM = 6, // equal ends: the type's own range
    SET_SEQUENCE = 7
};

// "640x480", "(1,2)", "(1,2)640x480".
qkString& operator<<(qkString& s, const QovSize& value);
qkString& operator<<(qkString& s, const QovPoint& value);
qkString& operator<<(qkString& s, const QovRect& value);
inline qkOStream& operator<<(qkOStream& out, const QovSize& value)
{
    return tsOutTpl(out, value);
}
inline qkOStream& operator<<(qkOStream& out, const QovPoint& value)
{
    return tsOutTpl(out, value);
}
inline qkOStream& operator<<(qkOStream& out, const QovRect& value)
{
    return tsOutTpl(out, value);
}

// Read back, also from "{640, 480}" and the like. Missing members are 0. The fail mark of `text` tells of a
// member that is no number, and of a size that is not positive both ways.
void operator<<(QovSize& value, qkString& text);
void operator<<(QovPoint& value, qkString& text);
void operator<<(QovRect& value, qkString& text);

#endif
