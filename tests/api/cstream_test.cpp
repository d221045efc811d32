#include "qkcstream.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/capture.h"
#include "support/tempfile.h"

namespace {

using Cells = std::vector<const char*>;

void setCells(qkCStream& table, const Cells& cells)
{
    for (const char* cell : cells) table.setNextColm(cell);
}

class CStream : public testing::Test {
protected:
    CStream() { EXPECT_TRUE(m_table.addStream(m_file.path(), false)); }

    TempFile m_file;
    qkCStream m_table;
};

TEST_F(CStream, LinesArePaddedAndCutToTheTitlesWidth)
{
    const struct {
        Cells cells;
        int n;
        const char* line;
    } cases[] = {
        {{"a"}, 3, "a,-,-\n"},
        {{"a", "b", "c"}, 2, "a,b\n"},
        {{"a", "b"}, 0, "a,b\n"},
        {{"", "x", ""}, 0, "-,x,-\n"},
        {{}, 0, "\n"},
        {{}, 2, "-,-\n"},
    };
    std::string expected;
    for (const auto& c : cases) {
        setCells(m_table, c.cells);
        m_table.lineOut(c.n);
        expected += c.line;
        EXPECT_EQ(m_file.read(), expected) << "a finished line must be in the file at once";
    }
}

TEST_F(CStream, CellsBeyondTheLastAreDropped)
{
    for (int i = 0; i < qkMaxColumns; i++) m_table << i;
    m_table << "lost";
    m_table.setColm(qkMaxColumns, "lost");
    m_table.setColm(-1, "lost");
    qkString cell;
    EXPECT_TRUE(m_table.getColm(31, cell));
    EXPECT_STREQ(cell.c_str(), "31");
    EXPECT_FALSE(m_table.getColm(32, cell));
    EXPECT_FALSE(m_table.getColm(-1, cell));
    m_table.lineOut(34);
    const std::string line = m_file.read();
    EXPECT_EQ(line.substr(line.find("30,")), "30,31,-,-\n");
    EXPECT_EQ(line.find("lost"), std::string::npos);
}

// A parameter with a column of its own writes beside the counter; only the counter makes cells visible.
TEST_F(CStream, PlacedCellsDoNotMoveTheCounter)
{
    m_table << "f";
    m_table.setColm(3, "placed");
    EXPECT_EQ(m_table.numColm(), 1);
    m_table.tableOut(4);
    m_table.setNumColm(4);
    m_table.tableOut(0);
    EXPECT_EQ(m_file.read(), "f,-,-,-\nf,-,-,placed\n");
}

TEST_F(CStream, AppendingOperators)
{
    m_table << "s" << 7 << 0.5 << qkString("\n") << "next\n"
            << "\n";
    EXPECT_EQ(m_file.read(), "s,7,0.5\nnext\n\n") << "only a cell that is just a line feed ends the line";
}

TEST_F(CStream, PostponedLinesFollowTheOthers)
{
    setCells(m_table, {"old", "1"});
    m_table.linePostpone();
    EXPECT_EQ(m_table.numColm(), 0);
    setCells(m_table, {"older", "2"});
    m_table.linePostpone();
    setCells(m_table, {"new", "3"});
    m_table.lineOut(3);
    m_table.linePostponeOut(3);
    m_table.linePostponeOut(3);
    EXPECT_EQ(m_file.read(), "new,3,-\nold,1,-\nolder,2,-\n");
}

// The numbers in the message are those of the file's lines, of which the first two here are titles.
TEST_F(CStream, DuplicateLinesAreReportedByTheirNumbers)
{
    const struct {
        const char* name;
        std::vector<Cells> lines;
        std::vector<Cells> postponed;
        int n;
        const char* pair; // null: no duplicates
    } cases[] = {
        {"equal in the compared cells", {{"a", "1", "x"}, {"b", "1"}, {"a", "1", "y"}}, {}, 2, "3 & 5"},
        {"differ in the last compared cell", {{"a", "1"}, {"a", "2"}}, {}, 2, nullptr},
        {"first pair only", {{"a"}, {"b"}, {"b"}, {"a"}, {"b"}}, {}, 1, "3 & 6"},
        {"among postponed ones", {{"a"}}, {{"b"}, {"b"}}, 1, "4 & 5"},
        {"postponed against regular", {{"a"}, {"b"}}, {{"b"}}, 1, "4 & 5"},
        {"switched off", {{"a"}, {"a"}}, {}, 0, nullptr},
        {"more columns than there are", {{"a"}, {"a"}}, {}, 99, "3 & 4"},
        {"one line", {{"a"}}, {}, 1, nullptr},
    };
    for (const auto& c : cases) {
        qkCStream table;
        LevelCapture console(g_ostrm, WARN);
        table << "title\n"
              << "\n"
              << "\n";
        table.identicalLinesStart(c.n);
        for (const Cells& line : c.postponed) {
            setCells(table, line);
            table.linePostpone();
        }
        for (const Cells& line : c.lines) {
            setCells(table, line);
            table.lineOut(3);
        }
        table.linePostponeOut(3);
        EXPECT_EQ(table.identicalLinesStop(), c.pair != nullptr) << c.name;
        const std::string message = c.pair ? std::string(" Performance table warning:\n Lines ") + c.pair +
                                                 " have identical parameters\n"
                                           : "";
        EXPECT_EQ(console.take(), message) << c.name;
    }
}

TEST_F(CStream, TheWatchEndsWithItsTest)
{
    LevelCapture console(g_ostrm, WARN);
    const auto line = [this] {
        m_table << "a"
                << "\n";
    };
    m_table.identicalLinesStart(1);
    line();
    m_table.identicalLinesStart(1);
    line();
    EXPECT_FALSE(m_table.identicalLinesStop()) << "a line of the test before";
    line();
    line();
    EXPECT_FALSE(m_table.identicalLinesStop()) << "nobody watches";
}

TEST(CStreamFile, AppendAndOverwrite)
{
    TempFile file("before\n");
    for (bool append : {true, false}) {
        qkCStream table;
        ASSERT_TRUE(table.addStream(file.path(), append));
        table << "row"
              << "\n";
        EXPECT_EQ(file.read(), append ? "before\nrow\n" : "row\n");
    }
    qkCStream table;
    LevelCapture console(g_ostrm);
    EXPECT_FALSE(table.addStream("/no/such/directory/x.csv", false));
    table << "swallowed"
          << "\n";
}

TEST(CStreamText, ExcludeComma)
{
    char text[] = "a,b,,c;";
    excludeComma(text);
    EXPECT_STREQ(text, "a;b;;c;");
    excludeComma(nullptr);
}

} // namespace
