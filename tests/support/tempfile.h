// TempFile: a path of its own in the test directory, gone at the end of the scope.
#ifndef TESTS_TEMPFILE_H
#define TESTS_TEMPFILE_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

class TempFile {
public:
    TempFile()
    {
        static int number = 0;
        m_path = testing::TempDir() + "qk_" + std::to_string(getpid()) + "_" + std::to_string(number++);
    }
    explicit TempFile(const std::string& text) : TempFile() { write(text); }
    ~TempFile() { std::remove(path()); }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    const char* path() const { return m_path.c_str(); }
    bool exists() const { return access(path(), F_OK) == 0; }
    void write(const std::string& text) { std::ofstream(m_path, std::ios::binary) << text; }
    std::string read() const
    {
        std::ostringstream text;
        text << std::ifstream(m_path, std::ios::binary).rdbuf();
        return text.str();
    }

private:
    std::string m_path;
};

#endif
