// Diagnostics: one small class per value of a small enumeration, whose only virtual work is its text. Hard
// failures are thrown by value; warnings go to a sink that the caller passes, and the work goes on.
#ifndef JPEG2000_DIAGN_H
#define JPEG2000_DIAGN_H

#include "chars.h"
#include "diagnfamilies.h"

namespace jpeg2000 {

class BDiagnDescr {
public:
    // Characters of a text without its final zero; a buffer of one more holds any.
    static constexpr unsigned maxLength = 1024;

    virtual char* Context(char* buffer) const = 0; // writes the text, returns buffer
    virtual ~BDiagnDescr() = default;
};

// A descriptor that is its type and nothing else.
template <class Enum, Enum value>
class DiagnDescrCT : public BDiagnDescr {
public:
    char* Context(char* buffer) const override
    {
        StrCopy(diagnText(value), buffer, maxLength);
        return buffer;
    }
};

// A descriptor with data of the moment: Base holds them and formats them by format(text, buffer).
template <class Cause, Cause value, class Base>
class DiagnDescrRT : public BDiagnDescr, public Base {
public:
    explicit DiagnDescrRT(const Base& data) : Base(data) {}

    char* Context(char* buffer) const override
    {
        buffer[0] = 0;
        Base::format(diagnText(value), buffer);
        return buffer;
    }
};

// The sink. This one passes over everything; who wants to see the texts derives from it.
class BDiagnOutput {
public:
    virtual ~BDiagnOutput() = default;
    virtual void Warning(const BDiagnDescr&) {}
    virtual void Error(const BDiagnDescr&) {}
};

// A sink that may be absent.
class BDiagnOutputPtr {
public:
    BDiagnOutputPtr(BDiagnOutput* output = nullptr) : m_output(output) {}
    BDiagnOutputPtr(BDiagnOutput& output) : m_output(&output) {}

    void Warning(const BDiagnDescr& descr) const
    {
        if (m_output) m_output->Warning(descr);
    }

private:
    BDiagnOutput* m_output;
};

// Row `value` of a family, to the sink or thrown.
template <auto value>
void warn(const BDiagnOutputPtr& output)
{
    output.Warning(DiagnDescrCT<decltype(value), value>());
}

template <auto value>
[[noreturn]] void fail()
{
    throw DiagnDescrCT<decltype(value), value>();
}

} // namespace jpeg2000

#endif
