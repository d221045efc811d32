// The primitives of the DCT and of quantisation as one table, so that a loop visits all of them whatever the
// types of their arguments are.
#ifndef TESTS_QOV_DCT_FORMS_H
#define TESTS_QOV_DCT_FORMS_H

#include "qov_testing.h"
#include "qovi.h"

#include <xmmintrin.h>

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <type_traits>

using Ints = std::array<int, 64>; // coefficients, samples or steps by rows

enum class Element { none, u8, s16, u16, f32 };

template <class T>
constexpr Element elementOf()
{
    if constexpr (std::is_same_v<T, Qov8u>)
        return Element::u8;
    else if constexpr (std::is_same_v<T, Qov16s>)
        return Element::s16;
    else
        return std::is_same_v<T, Qov16u> ? Element::u16 : Element::f32;
}

inline int bytesOf(Element e)
{
    return e == Element::u8 ? 1 : e == Element::f32 ? 4 : 2;
}
inline int lowest(Element e)
{
    return e == Element::s16 ? -32768 : 0;
}
inline int largest(Element e)
{
    return e == Element::u8 ? 255 : e == Element::s16 ? 32767 : 65535;
}

inline void pack(Element e, const Ints& from, void* to)
{
    auto store = [&](auto zero) {
        for (int i = 0; i < 64; i++) {
            const auto v = decltype(zero)(from[i]);
            std::memcpy(static_cast<char*>(to) + i * sizeof v, &v, sizeof v);
        }
    };
    switch (e) {
    case Element::none: break;
    case Element::u8: return store(Qov8u());
    case Element::s16: return store(Qov16s());
    case Element::u16: return store(Qov16u());
    case Element::f32: return store(Qov32f());
    }
}

// Of the integer elements.
inline int elementAt(Element e, const void* from)
{
    if (e == Element::u8) return *static_cast<const Qov8u*>(from);
    Qov16u word;
    std::memcpy(&word, from, sizeof word);
    return e == Element::s16 ? Qov16s(word) : word;
}

// A block, as one row of 64, or rows in an image.
struct Side {
    Element element;
    int rows, columns;

    int rowBytes() const { return columns * bytesOf(element); }
};

struct Form {
    const char* name;
    bool forward;
    Side src, dst;
    Element table;
    std::function<QovStatus(const void* src, int srcStep, void* dst, int dstStep, const void* table)> call;
    bool inPlace = false; // `src` is not used then
    int shift = 0;        // of the samples
    int corner = 8;       // so many rows and columns of coefficients are read
    int side = 8;         // of the transformed block

    int lowestSample() const { return dst.element == Element::s16 ? -32768 : 0; }
    int largestSample() const { return shift ? 2 * shift - 1 : 32767; }
};

namespace forms {

const Side block = {Element::s16, 1, 64};

template <class T>
Side image(int side)
{
    return {elementOf<T>(), side, side};
}

inline Form form(const char* name, QovStatus (*f)(const Qov8u*, int, Qov16s*))
{
    return {name,
            true,
            image<Qov8u>(8),
            block,
            Element::none,
            [f](const void* src, int step, void* dst, int, const void*) {
                return f(static_cast<const Qov8u*>(src), step, static_cast<Qov16s*>(dst));
            }};
}

template <class Src, class Table>
Form form(const char* name, QovStatus (*f)(const Src*, int, Qov16s*, const Table*), int shift)
{
    Form result = {name,
                   true,
                   image<Src>(8),
                   block,
                   elementOf<Table>(),
                   [f](const void* src, int step, void* dst, int, const void* table) {
                       return f(static_cast<const Src*>(src), step, static_cast<Qov16s*>(dst),
                                static_cast<const Table*>(table));
                   }};
    result.shift = shift;
    return result;
}

template <class Dst, class Table>
Form form(const char* name, QovStatus (*f)(const Qov16s*, Dst*, int, const Table*), int shift, int corner = 8,
          int side = 8)
{
    Form result = {name,
                   false,
                   block,
                   image<Dst>(side),
                   elementOf<Table>(),
                   [f](const void* src, int, void* dst, int step, const void* table) {
                       return f(static_cast<const Qov16s*>(src), static_cast<Dst*>(dst), step,
                                static_cast<const Table*>(table));
                   }};
    result.shift = shift;
    result.corner = corner;
    result.side = side;
    return result;
}

inline Form form(const char* name, QovStatus (*f)(const Qov16s*, Qov16s*, const Qov16u*), bool forward)
{
    return {name,
            forward,
            block,
            block,
            Element::u16,
            [f](const void* src, int, void* dst, int, const void* table) {
                return f(static_cast<const Qov16s*>(src), static_cast<Qov16s*>(dst),
                         static_cast<const Qov16u*>(table));
            }};
}

inline Form form(const char* name, QovStatus (*f)(Qov16s*, const Qov16u*), bool forward)
{
    Form result = {
        name, forward, block, block, Element::u16, [f](const void*, int, void* dst, int, const void* table) {
            return f(static_cast<Qov16s*>(dst), static_cast<const Qov16u*>(table));
        }};
    result.inPlace = true;
    return result;
}

#define QOV_FORM(f, ...) forms::form(#f, f __VA_OPT__(, ) __VA_ARGS__)

} // namespace forms

inline const std::vector<Form>& forwardForms()
{
    static const std::vector<Form> list = {
        QOV_FORM(qoviDCT8x8Fwd_8u16s_C1R),
        QOV_FORM(qoviDCTQuantFwd8x8_JPEG_16s_C1, true),
        QOV_FORM(qoviDCTQuantFwd8x8_JPEG_16s_C1I, true),
        QOV_FORM(qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R, 128),
        QOV_FORM(qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R, 2048),
    };
    return list;
}

inline const std::vector<Form>& inverseForms()
{
    static const std::vector<Form> list = {
        QOV_FORM(qoviDCTQuantInv8x8_JPEG_16s_C1, false),
        QOV_FORM(qoviDCTQuantInv8x8_JPEG_16s_C1I, false),
        QOV_FORM(qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R, 128),
        QOV_FORM(qoviDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, 128, 4),
        QOV_FORM(qoviDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, 128, 2),
        QOV_FORM(qoviDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, 128, 1),
        QOV_FORM(qoviDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, 128, 4, 4),
        QOV_FORM(qoviDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, 128, 2, 2),
        QOV_FORM(qoviDCTQuantInv8x8LS_JPEG_16s16u_C1R, 2048),
    };
    return list;
}

inline std::vector<Form> allForms()
{
    std::vector<Form> list = {QOV_FORM(qoviQuantFwd8x8_JPEG_16s_C1I, true),
                              QOV_FORM(qoviQuantInv8x8_JPEG_16s_C1I, false)};
    list.insert(list.end(), forwardForms().begin(), forwardForms().end());
    list.insert(list.end(), inverseForms().begin(), inverseForms().end());
    return list;
}

// The floating-point exceptions, Inexact aside, that something raised since `clear`.
struct FloatFlags {
    static constexpr unsigned all = 0x3F, inexact = 0x20;

    static void clear() { _mm_setcsr(_mm_getcsr() & ~all); }
    static unsigned raised() { return _mm_getcsr() & all & ~inexact; }
};

// One call on rows of 8. Samples of reduced size stand in the upper left corner of what comes back, on zeros.
inline Ints run(const Form& form, const Ints& in, const Ints& steps)
{
    alignas(64) unsigned char src[128], dst[128] = {}, table[256];
    pack(form.src.element, in, form.inPlace ? dst : src);
    pack(form.table, steps, table);
    FloatFlags::clear();
    const QovStatus status =
        form.call(src, 8 * bytesOf(form.src.element), dst, 8 * bytesOf(form.dst.element), table);
    const unsigned flags = FloatFlags::raised();
    EXPECT_EQ(qovStsNoErr, status);
    EXPECT_EQ(0u, flags) << "floating-point flags of " << form.name;
    Ints out;
    for (int i = 0; i < 64; i++) out[i] = elementAt(form.dst.element, dst + i * bytesOf(form.dst.element));
    return out;
}

#endif
