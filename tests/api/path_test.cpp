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
    const struct {
        const char* exe;
        const char* dir;
        const char* expected;
    } rows[] = {
        {"/opt/qk/quolkit", "", "/opt/qk/"},
        {"/opt/qk/quolkit", "res", "/opt/qk/res/"},
        {"/opt/qk/quolkit", "res\\", "/opt/qk/res\\"},
        {"/opt/qk/quolkit", "/data", "/data/"},
        {"/opt/qk/quolkit", "d:", "d:/"},
        {"quolkit", "", ""},
        {"quolkit", "res", "res/"},
    };
    for (const auto& row : rows) {
        qkSession::m_exePath = row.exe;
        EXPECT_STREQ(qkSession::genDirName(row.dir).c_str(), row.expected) << row.exe << " " << row.dir;
    }
}

TEST_F(PathTest, NamesOfFiles)
{
    const struct {
        const char* defName;
        const char* name;
        const char* in;
        const char* out;
    } rows[] = {
        {"", "", "/opt/qk/in/quolkit.ini", "/out/quolkit.csv"},
        {"v1.2", "", "/opt/qk/in/v1.2.ini", "/out/v1.2.csv"},
        {"v1.2", "a", "/opt/qk/in/a.ini", "/out/a.csv"},
        {"", "a.dat", "/opt/qk/in/a.dat", "/out/a.dat"},
        {"", "a.b/foo", "/opt/qk/in/a.b/foo", "/out/a.b/foo"}, // any dot means "has an extension"
        {"", "/data/foo", "/data/foo", "/data/foo"},
    };
    for (const auto& row : rows) {
        set("/opt/qk/quolkit.bin", "in", "/out", row.defName);
        EXPECT_STREQ(qkSession::genInPath(row.name, extIni).c_str(), row.in) << row.name;
        EXPECT_STREQ(qkSession::genOutPath(row.name, extCsv).c_str(), row.out) << row.name;
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
