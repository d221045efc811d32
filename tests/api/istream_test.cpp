#include "qkistream.h"

#include <gtest/gtest.h>

#include "qkparm.h"
#include "support/capture.h"
#include "support/dialogue.h"
#include "support/tempfile.h"

namespace {

i_stream* consoleWith(const char* answers)
{
    std::FILE* file = std::tmpfile();
    std::fputs(answers, file);
    std::rewind(file);
    return new i_stream(file);
}

TEST(IStream, DataListBeforeIniFileBeforeConsoleBeforeDefault)
{
    const struct {
        const char* data;    // null: not given
        const char* ini;     // null: no file
        const char* console; // null: prompts are off
        const char* value;
        int source;
        bool asked;
    } cases[] = {
        {"d", "k=i", "c\n", "d", qkIStream::srcDataList, false},
        {nullptr, "k=i", "c\n", "i", qkIStream::srcIniFile, false},
        {nullptr, "k=", "c\n", "c", qkIStream::srcConsole, true},
        {nullptr, "other=i", "c", "c", qkIStream::srcConsole, true},
        {nullptr, nullptr, " c \n", " c ", qkIStream::srcConsole, true},
        {nullptr, nullptr, "\nc\n", "def", qkIStream::srcDefault, true},
        {nullptr, nullptr, "", "def", qkIStream::srcDefault, true},
        {nullptr, nullptr, nullptr, "def", qkIStream::srcDefault, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "row " << &c - cases);
        const TempFile file(std::string("[Quolkit]\n") + (c.ini ? c.ini : "") + "\n[f]\nk=of f\n");
        const Dialogue dialogue;
        qkIStream in;
        EXPECT_EQ(in.source(), qkIStream::srcNone);
        if (c.data) in.m_dataList.set("k", c.data);
        if (c.ini) {
            ASSERT_TRUE(in.setIniFile(file.path(), false));
        }
        if (c.console) in.setIStream(consoleWith(c.console));
        EXPECT_STREQ(in.getItemValue("k", "def", "", "").c_str(), c.value);
        EXPECT_EQ(in.source(), c.source);
        EXPECT_EQ(dialogue.questions(), c.asked ? "\n k [def] = " : "");
    }
}

// Every value is recorded, wherever it came from, so that a later run replays this one.
TEST(IStream, RecordsValuesInTheIniFile)
{
    const TempFile file("[Quolkit]\nkept=old // dropped\ngiven=old\n");
    const Dialogue dialogue;
    qkIStream in;
    ASSERT_TRUE(in.setIniFile(file.path(), true));
    EXPECT_TRUE(in.isIniWrite());
    in.m_dataList.set("given=new");
    in.setIStream(consoleWith("typed\n\n"));
    in.getItemValue("kept", "default", "", "a|b");
    in.getItemValue("given", "default", "", "a|b");
    in.getItemValue("asked", "default", "", "a|b");
    EXPECT_STREQ(in.setIniSection("f").c_str(), "Quolkit");
    in.getItemValue("unanswered", "default", "", "");
    EXPECT_STREQ(in.setIniSection("Quolkit").c_str(), "f");
    in.deleteIniFile();
    EXPECT_FALSE(in.isIniWrite());
    EXPECT_EQ(in.iniFile(), nullptr);
    EXPECT_EQ(file.read(), "\n[Quolkit]\nkept=old\ngiven=new\nasked=typed\t// a|b\n"
                           "\n[f]\nunanswered=default\n");
}

TEST(IStream, ANewIniFileWritesTheOldOne)
{
    const TempFile first, second;
    qkIStream in;
    ASSERT_TRUE(in.setIniFile(first.path(), true));
    in.getItemValue("k", "1", "", "");
    ASSERT_TRUE(in.setIniFile(second.path(), true));
    EXPECT_EQ(first.read(), "\n[Quolkit]\nk=1\n");
    LevelCapture console(g_ostrm);
    EXPECT_FALSE(in.setIniFile("/no/such/directory/x.ini", false));
    EXPECT_EQ(in.iniFile(), nullptr) << "a file that is not there has no sections either";
    EXPECT_STREQ(in.getItemValue("k", "default", "", "").c_str(), "default");
}

TEST(IStream, ParametersWithoutNameOrUseAreLeftOut)
{
    const TempFile file;
    const Dialogue dialogue;
    qkIStream in;
    ASSERT_TRUE(in.setIniFile(file.path(), true));
    in.setIStream(consoleWith("7\n7\n7\n"));
    LevelCapture console(g_ostrm);
    qkDefault<int> nameless(1, "", ""), unused(2, "unused", ""), used(3, "used", "");
    unused.setSelected(false);
    nameless.fromIStream(in);
    unused.fromIStream(in);
    used.fromIStream(in);
    EXPECT_EQ(nameless.value(), 1);
    EXPECT_EQ(unused.value(), 2);
    EXPECT_EQ(used.value(), 7);
    in.deleteIniFile();
    EXPECT_EQ(file.read(), "\n[Quolkit]\nused=7\n");
}

// A crash while a value is translated ends the question, not the run, and gives the level back.
TEST(IStream, SignalInTranslate)
{
    class Crash : public qkDefault<int> {
    public:
        using qkDefault<int>::qkDefault;
        void translate(const qkString&) override { std::raise(SIGSEGV); }
    };
    for (int round = 0; round < 2; round++) {
        const Dialogue dialogue;
        LevelCapture console(g_ostrm, ERR);
        qkIStream in;
        in.setIStream(consoleWith("1\n"));
        Crash parm(5, "p", "");
        parm.fromIStream(in);
        EXPECT_EQ(console.take(), "-Illegal storage access.\n p: 5\n");
        EXPECT_EQ(g_ostrm.outLevel(), ERR);
        EXPECT_EQ(parm.value(), 5);
    }
}

} // namespace
