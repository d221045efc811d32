// Families of diagnostics whose texts hold data of the moment: each is a record of these data.
#ifndef JPEG2000_DIAGNRECORDS_H
#define JPEG2000_DIAGNRECORDS_H

#include "chars.h"
#include "diagn.h"

#include <cstdio>

namespace jpeg2000 {

// Of a longer name, the beginning is kept.
struct FileName {
    static constexpr unsigned maxLength = 800;

    char fileName[maxLength + 1];

    explicit FileName(const char* name) { StrCopy(name, fileName, maxLength); }
    void format(const char* text, char* buffer) const
    {
        snprintf(buffer, BDiagnDescr::maxLength + 1, text, fileName);
    }
};

struct FileException : FileName {
    enum class Cause {};
    using FileName::FileName;
};

struct MapFileException : FileName {
    enum class Cause {};
    using FileName::FileName;
};

struct CmdOptionsQuantWarning {
    enum class Cause {};

    double step;

    void format(const char* text, char* buffer) const
    {
        snprintf(buffer, BDiagnDescr::maxLength + 1, text, step);
    }
};

const char* diagnText(FileException::Cause value);
const char* diagnText(MapFileException::Cause value);
const char* diagnText(CmdOptionsQuantWarning::Cause value);

// Row `value` of a family with its data, to the sink or thrown.
template <int value, class Base>
void warn(const BDiagnOutputPtr& output, const Base& data)
{
    using Cause = typename Base::Cause;
    output.Warning(DiagnDescrRT<Cause, Cause{value}, Base>(data));
}

template <int value, class Base>
[[noreturn]] void fail(const Base& data)
{
    using Cause = typename Base::Cause;
    throw DiagnDescrRT<Cause, Cause{value}, Base>(data);
}

} // namespace jpeg2000

#endif
