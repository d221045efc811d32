// ToolTest: a folder of its own for each test, in which the programs run, seen by files, exit codes and
// texts.
#ifndef TESTS_TOOLS_TOOL_TEST_H
#define TESTS_TOOLS_TOOL_TEST_H

#include "../support/read_file.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>

namespace fs = std::filesystem;

struct Result {
    int exitCode;
    std::string out, err;
};

class ToolTest : public testing::Test {
protected:
    ToolTest()
    {
        std::string pattern = testing::TempDir() + "tool_XXXXXX";
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no folder " + pattern);
        m_root = pattern;
        m_dir = m_root / "work";
        fs::create_directory(m_dir);
    }
    ~ToolTest() override { fs::remove_all(m_root); }

    Result shell(const std::string& command) const
    {
        const int status =
            std::system(("cd " + m_dir.string() + " && (" + command + ") >../out 2>../err").c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(m_root / "out"),
                readFile(m_root / "err")};
    }

    void write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(m_dir / name, std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const { return readFile(m_dir / name); }
    bool exists(const std::string& name) const { return fs::exists(m_dir / name); }
    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(m_dir)) names.insert(entry.path().filename());
        return names;
    }

    fs::path m_root, m_dir;
};

inline std::string littleEndian(unsigned value, int bytes)
{
    std::string text;
    for (int i = 0; i < bytes; i++, value >>= 8) text += static_cast<char>(value);
    return text;
}

#endif
