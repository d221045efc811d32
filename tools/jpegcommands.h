// The commands of jpegcodec. Each takes the words behind its name, and throws a Failure.
#ifndef TOOLS_JPEGCOMMANDS_H
#define TOOLS_JPEGCOMMANDS_H

#include <string>
#include <vector>

#include "failure.h"
#include "jpegbase.h"

void encodeCommand(const std::vector<std::string>& words);
void decodeCommand(const std::vector<std::string>& words);
void infoCommand(const std::vector<std::string>& words);

// One line on stderr.
void warn(const std::string& text);

// Anything but printable ASCII as \xHH.
std::string printable(const std::string& text);

const char* colorName(_JPEG_COLOR color);

inline void codecCall(_JPEG_ERROR code)
{
    if (code != JPEG_OK) throw Failure(GetErrorStr(code));
}

#endif
