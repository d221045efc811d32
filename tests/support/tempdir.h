// TempDir: a directory of its own, gone with its contents at the end of the scope.
#ifndef TESTS_TEMPDIR_H
#define TESTS_TEMPDIR_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class TempDir {
public:
    TempDir()
    {
        char pattern[] = "/tmp/qk_dir_XXXXXX";
        m_path = std::string(mkdtemp(pattern)) + "/";
    }
    ~TempDir() { std::filesystem::remove_all(m_path); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    std::string path(const std::string& name = "") const { return m_path + name; }
    bool has(const std::string& name) const { return std::filesystem::exists(path(name)); }
    void create(const std::string& directory) const { std::filesystem::create_directories(path(directory)); }
    void write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path(name), std::ios::binary) << text;
    }
    std::string read(const std::string& name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::string m_path;
};

#endif
