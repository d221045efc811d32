// Reading boxes (ITU-T T.800, I.4).
#ifndef JPEG2000_DJP2BOXES_H
#define JPEG2000_DJP2BOXES_H

#include "diagn.h"
#include "jp2boxtype.h"

#include <cstdint>

namespace jpeg2000 {

// bodySize: what the header says; for a box without a length, what the innermost limit holds.
template <class Input>
void ReadBoxHeader(Input& input, JP2BoxType& type, unsigned& bodySize)
{
    const uint32_t length = input.Read32u();
    if (length >= 2 && length <= 7) fail<DJP2BoxException{1}>();
    type = BoxType(input.Read32u());
    if (length == 0) {
        bodySize = input.bytesLeft();
    } else if (length == 1) {
        const uint64_t high = input.Read32u();
        const uint64_t extendedLength = high << 32 | input.Read32u();
        if (extendedLength < 16) fail<DJP2BoxException{2}>();
        if (extendedLength - 16 > 0xFFFFFFFF) fail<DJP2BoxException{3}>();
        bodySize = static_cast<unsigned>(extendedLength - 16);
    } else {
        bodySize = length - 8;
    }
}

// The next box; its body is the innermost limit then. What the header said of the body's size goes to
// bodySize.
template <class Input>
JP2BoxType OpenBox(Input& input, BDiagnOutputPtr sink, unsigned& bodySize)
{
    JP2BoxType type = JP2BoxType::unknown;
    ReadBoxHeader(input, type, bodySize);
    if (input.PushSize(bodySize) != bodySize) warn<DJP2BoxWarning{3}>(sink);
    return type;
}

template <class Input>
JP2BoxType OpenBox(Input& input, BDiagnOutputPtr sink)
{
    unsigned bodySize = 0;
    return OpenBox(input, sink, bodySize);
}

// A box whose body was read.
template <class Input>
void CloseBox(Input& input, BDiagnOutputPtr sink)
{
    if (input.PopSize() != 0) warn<DJP2BoxWarning{2}>(sink);
}

// A box that is passed over.
template <class Input>
void SkipBox(Input& input)
{
    input.PopSize();
}

// What is left of the innermost limit.
template <class Input>
void SkipRest(Input& input)
{
    input.PushSize(input.bytesLeft());
    input.PopSize();
}

} // namespace jpeg2000

#endif
