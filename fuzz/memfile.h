// The fuzzer's bytes as a file that has a path, for parsers that open files themselves.
#ifndef FUZZ_MEMFILE_H
#define FUZZ_MEMFILE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

class MemFile {
public:
    MemFile(const uint8_t* data, size_t size) : m_fd(memfd_create("fuzz", 0))
    {
        if (write(m_fd, data, size) != static_cast<ssize_t>(size)) std::perror("memfd");
        m_path = "/proc/self/fd/" + std::to_string(m_fd);
    }
    ~MemFile() { ::close(m_fd); }
    MemFile(const MemFile&) = delete;
    MemFile& operator=(const MemFile&) = delete;

    const char* path() const { return m_path.c_str(); }

private:
    int m_fd;
    std::string m_path;
};

#endif
