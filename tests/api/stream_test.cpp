// The text channel: levels, files, lines and the trace.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "qksession.h"
#include "qkstream.h"
#include "support/capture.h"
#include "support/tempdir.h"

namespace {

using Lines = std::vector<std::string>;

class StreamTest : public testing::Test {
protected:
    qkString path(const char* name) const { return m_dir.path(name).c_str(); }
    TempDir m_dir;
};

TEST_F(StreamTest, TheMaskLetsLevelsThroughBitByBit)
{
    const MessageLevel levels[] = {ERR, WARN, PERF, INFO, TRACE, MEM, DATA};
    for (int mask : {0, 1, 3, 7, 15, 23, 39, 71, 87}) {
        qkOStream stream;
        LevelCapture sink(stream, mask);
        for (MessageLevel level : levels) {
            stream << level << "text" << END_MSG;
            EXPECT_EQ(sink.take(), level & mask ? "text" : "") << mask << " " << level;
        }
    }
}

TEST_F(StreamTest, LevelsNestAndEndInErrors)
{
    qkOStream stream;
    EXPECT_EQ(stream.msgLevel(), PERF);
    EXPECT_EQ(stream.outLevel(), 1);
    stream << WARN << INFO;
    EXPECT_EQ(stream.msgLevel(), INFO);
    stream << END_MSG;
    EXPECT_EQ(stream.msgLevel(), WARN);
    stream << END_MSG_FLUSH;
    EXPECT_EQ(stream.msgLevel(), PERF);
    stream << END_MSG;
    EXPECT_EQ(stream.msgLevel(), ERR); // one END_MSG too many leaves the initial level
    stream << END_MSG;
    EXPECT_EQ(stream.msgLevel(), ERR);
}

// It compares numbers, where the writing masks bits: with -LT a message of level INFO begins and is blocked.
TEST_F(StreamTest, BeginMessageComparesNumbers)
{
    qkOStream stream;
    LevelCapture sink(stream, 23);
    EXPECT_FALSE(stream.beginMessage(MEM));
    EXPECT_EQ(stream.msgLevel(), PERF);
    ASSERT_TRUE(stream.beginMessage(INFO));
    stream << "blocked";
    stream.endMessage();
    ASSERT_TRUE(stream.beginMessage(TRACE));
    stream << "shown";
    stream.endMessageFlush();
    EXPECT_EQ(stream.msgLevel(), PERF);
    EXPECT_EQ(sink.take(), "shown");
}

TEST_F(StreamTest, EveryPrintableTypeIsWrittenAsTheStringsWriteIt)
{
    qkOStream stream;
    LevelCapture sink(stream);
    stream << ERR << "s" << qkString("t") << 'c' << static_cast<unsigned char>(7) << -1 << 3000000000u
           << 5000000000ll << 1.23456 << END_MSG;
    EXPECT_EQ(sink.take(), "stc7-1300000000050000000001.23");
}

TEST_F(StreamTest, AllSinksGetTheTextAndFilesAreCutOrContinued)
{
    for (const char* name : {"appended.txt", "created.txt"}) m_dir.write(name, "old;");
    {
        qkOStream stream;
        ASSERT_TRUE(stream.addStream(path("appended.txt"), true));
        ASSERT_TRUE(stream.addStream(path("created.txt"), false));
        stream << ERR << "new" << END_MSG << INFO << "blocked" << END_MSG;
        stream.flush();
        EXPECT_EQ(m_dir.read("created.txt"), "new");
        stream << ERR << "!" << END_MSG;
    }
    EXPECT_EQ(m_dir.read("appended.txt"), "old;new!");
    EXPECT_EQ(m_dir.read("created.txt"), "new!");
}

TEST_F(StreamTest, CloseLeavesTheSinksWithoutFiles)
{
    qkOStream stream;
    ASSERT_TRUE(stream.addStream(path("a.txt"), false));
    stream << ERR << "text" << END_MSG;
    stream.close();
    EXPECT_EQ(m_dir.read("a.txt"), "text");
    EXPECT_EQ(stream.count(), 1);
    EXPECT_FALSE((*stream.begin())->isOpen());
    stream.close();
    stream.flush();

    o_stream out(stdout);
    out.close();
    testing::internal::CaptureStdout();
    out << qkString("to the console 100%s");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "to the console 100%s"); // stdout was not closed
}

TEST_F(StreamTest, AFileThatDoesNotOpenIsReported)
{
    LevelCapture console(g_ostrm);
    qkOStream stream;
    EXPECT_FALSE(stream.addStream(path("none/a.txt"), false));
    EXPECT_TRUE(stream.empty());
    EXPECT_EQ(console.take(),
              "-- Can't open file " + m_dir.path("none/a.txt") + " to write: No such file or directory\n");

    i_stream folder(path(""), ioRead | ioRawPath, true);
    EXPECT_FALSE(folder.isOpen()) << "a directory is no empty file";
    EXPECT_EQ(console.take(), "-- Can't open file " + m_dir.path() + " to read: Is a directory\n");

    i_stream silent(path("none/a.txt"), ioRead | ioRawPath, false);
    EXPECT_EQ(console.take(), "");
    qkString line("old");
    EXPECT_FALSE(silent.getline(line));
    EXPECT_STREQ(line.c_str(), "");
}

TEST_F(StreamTest, RelativePathsStandBehindTheSessionsDirectories)
{
    m_dir.create("in");
    m_dir.create("out");
    qkSession::setInDir(path("in"));
    qkSession::setOutDir(path("out"));
    m_dir.write("in/a", "");
    EXPECT_TRUE(i_stream("a", ioRead, true).isOpen());
    EXPECT_TRUE(o_stream("b", ioWrite | ioBinary, true).isOpen());
    EXPECT_TRUE(m_dir.has("out/b"));
    qkSession::setInDir("");
    qkSession::setOutDir("");
}

TEST_F(StreamTest, LinesOfAnyLength)
{
    const std::string full(511, 'f'); // exactly one piece of the reader
    const std::string more(512, 'm');
    const std::string big(5000, 'b');
    const std::pair<std::string, Lines> cases[] = {
        {"", {}},
        {"\n", {""}},
        {"a\r\n", {"a\r"}},
        {full, {full}},
        {full + "\n" + more + "\n\n" + big, {full, more, "", big}},
        {big + "\nend\n", {big, "end"}},
    };
    for (const auto& [text, expected] : cases) {
        m_dir.write("lines", text);
        i_stream in(path("lines"), ioRead | ioRawPath, true);
        Lines lines;
        for (qkString line; in.getline(line);) lines.push_back(line.c_str());
        EXPECT_EQ(lines, expected);
        qkString line("old");
        EXPECT_FALSE(in.getline(line));
        EXPECT_TRUE(line.empty());
    }
}

// A disk that fails within a line: what was read of the line has no end that could be trusted.
TEST_F(StreamTest, AReadErrorEndsTheInput)
{
    const auto readOnce = [](void* cookie, char* buf, size_t) -> ssize_t {
        bool& done = *static_cast<bool*>(cookie);
        if (done) {
            errno = EIO;
            return -1;
        }
        done = true;
        std::memcpy(buf, "whole\npart", 10);
        return 10;
    };
    bool done = false;
    i_stream in(fopencookie(&done, "r", {readOnce, nullptr, nullptr, nullptr}));
    qkString line;
    EXPECT_TRUE(in.getline(line));
    EXPECT_STREQ(line.c_str(), "whole");
    EXPECT_FALSE(in.getline(line));
    EXPECT_STREQ(line.c_str(), "");
}

TEST_F(StreamTest, TraceLinesComeInPairsOfEqualDepth)
{
    LevelCapture console(g_ostrm, 23);
    qkTrace trace;
    trace.traceIn("run");
    trace.traceIn("initData");
    EXPECT_STREQ(trace.getCurName().c_str(), "initData");
    trace.traceOut("initData");
    trace.traceOut("run");
    const std::string text = "****** trace into   run\n"
                             "******* trace into   initData\n"
                             "******* trace out of initData\n"
                             "****** trace out of run\n";
    EXPECT_EQ(console.take(), text);
    EXPECT_EQ(trace.m_lastLine.c_str(), text);
    EXPECT_STREQ(trace.m_indent.c_str(), "");
    EXPECT_STREQ(trace.getCurName().c_str(), "");
    EXPECT_EQ(g_ostrm.msgLevel(), PERF);
}

// Leaving a call closes the calls inside it; a name that is not open closes nothing. After an exception the
// run loop clears the two texts but not the names, so the indent can be shorter than the list.
TEST_F(StreamTest, TraceToleratesMismatches)
{
    LevelCapture console(g_ostrm, 1);
    qkTrace trace;
    for (const char* name : {"a", "b", "c"}) trace.traceIn(name);
    trace.traceOut("x");
    EXPECT_EQ(trace.count(), 3);
    EXPECT_STREQ(trace.m_indent.c_str(), "");
    trace.traceOut("b");
    EXPECT_STREQ(trace.getCurName().c_str(), "a");
    trace.m_indent = "";
    trace.traceOut("a");
    EXPECT_TRUE(trace.empty());
    EXPECT_EQ(console.take(), ""); // blocked, but kept for the reader of m_lastLine
    EXPECT_FALSE(trace.m_lastLine.empty());
}

} // namespace
