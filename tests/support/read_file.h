// All bytes of a file; none of one that cannot be read.
#ifndef TESTS_SUPPORT_READ_FILE_H
#define TESTS_SUPPORT_READ_FILE_H

#include <fstream>
#include <sstream>
#include <string>

inline std::string readFile(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

#endif
