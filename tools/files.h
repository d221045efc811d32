// Whole files in, whole files out.
#ifndef TOOLS_FILES_H
#define TOOLS_FILES_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

typedef std::vector<unsigned char> Bytes;

// At most 2^31 - 1 bytes.
Bytes readFile(const std::string& path);

// A file that appears under its name when it is complete, and not at all otherwise: it grows in a temporary
// one beside it. What is no regular file (a device, a pipe) is written straight away.
class OutputFile {
public:
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(const void* data, std::size_t size);
    void write(const std::string& text) { write(text.data(), text.size()); }
    void commit();

private:
    std::string m_target;
    std::string m_temporary; // empty when there is none (any more)
    std::FILE* m_file = nullptr;
};

#endif
