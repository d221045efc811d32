// Where relative and absolute names end up: a wrong rule sends a user's tables to a directory he did not
// mean.
#include <gtest/gtest.h>

#include "qksession.h"

namespace {

class PathTest : public testing::Test {
protected:
    static void set(const char* exe, const char* in, const char* out, const char* name)
    {
        qkSession::m_exePath = exe;
        qkSession::setInDir(in);
        qkSession::setOutDir(out);
        qkSession::setDefName(name);
    }
    void TearDown() override { set("", "", "", ""); }
};

TEST_F(PathTest, AbsoluteMeansSlashBackslashOrDrive)
{
    for (const char* path : {"/", "\\a", "c:", "c:x"}) EXPECT_TRUE(qkSession::isAbsolutePath(path)) << path;
    for (const char* path : {"", "a", ":", ":a", "./a", "ab:"})
        EXPECT_FALSE(qkSession::isAbsolutePath(path)) << path;
}

TEST_F(PathTest, ADirectoryEndsInASlashAndStandsBehindTheExecutables)
{
    const char* const rows[][3] = {
        {"/opt/qk/quolkit", "", "/opt/qk/"},
        {"/opt/qk/quolkit", "res", "/opt/qk/res/"},
        {"/opt/qk/quolkit", "res\\", "/opt/qk/res\\"},
        {"/opt/qk/quolkit", "/data", "/data/"},
        {"/opt/qk/quolkit", "d:", "d:/"},
        {"quolkit", "", ""},
        {"quolkit", "res", "res/"},
    };
    for (const auto& [exe, dir, expected] : rows) {
        qkSession::m_exePath = exe;
        EXPECT_STREQ(qkSession::genDirName(dir).c_str(), expected) << exe << " " << dir;
    }
}

TEST_F(PathTest, NamesOfFiles)
{
    const char* const rows[][4] = {
        {"", "", "/opt/qk/in/quolkit.ini", "/out/quolkit.csv"},
        {"v1.2", "", "/opt/qk/in/v1.2.ini", "/out/v1.2.csv"},
        {"v1.2", "a", "/opt/qk/in/a.ini", "/out/a.csv"},
        {"", "a.dat", "/opt/qk/in/a.dat", "/out/a.dat"},
        {"", "a.b/foo", "/opt/qk/in/a.b/foo", "/out/a.b/foo"}, // any dot means "has an extension"
        {"", "/data/foo", "/data/foo", "/data/foo"},
    };
    for (const auto& [defName, name, in, out] : rows) {
        set("/opt/qk/quolkit.bin", "in", "/out", defName);
        EXPECT_STREQ(qkSession::genInPath(name, extIni).c_str(), in) << name;
        EXPECT_STREQ(qkSession::genOutPath(name, extCsv).c_str(), out) << name;
    }
}

TEST_F(PathTest, APathThatIsResolvedAlreadyPassesUnchanged)
{
    set("./quolkit", "in", "out", "");
    EXPECT_STREQ(qkSession::getInPath("/x/y").c_str(), "/x/y");
    EXPECT_STREQ(qkSession::getInPath("y").c_str(), "./in/y");
    EXPECT_STREQ(qkSession::getInPath("./in/y").c_str(), "./in/y");
    EXPECT_STREQ(qkSession::getOutPath("./in/y").c_str(), "./out/./in/y");

    // Before a session has set any directory, a path stands behind the executable's.
    qkSession::m_inDir = "";
    EXPECT_STREQ(qkSession::getInPath("y").c_str(), "./y");
}

} // namespace
