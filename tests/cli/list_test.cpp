// The lists that -e gives in place of a run.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "program.h"
#include "reports.h"

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

struct Runs {
    Program sorted, unsorted, chosen, hot, covered, missing;

    Runs()
    {
        sorted.start({"-e", "-r", "-u"});
        unsorted.start({"-e", "-s-"});
        chosen.start({"-e", "-mp_jadd", "-f-Sub"});
        hot.start({"-e", "-HONLY"});
        covered.start({"-e+"});
        missing.start({"-e-"});
    }
};

Runs& runs()
{
    static Runs all;
    return all;
}

// The rows behind the head of a list. Every cell of it ends in a tab.
std::vector<Cells> rowsBehind(Program& run, const std::string& head)
{
    EXPECT_EQ(run.exitCode(), 0);
    std::vector<Cells> rows;
    const size_t at = run.out().find("\n" + head + "\n");
    EXPECT_NE(at, std::string::npos) << run.out();
    if (at == std::string::npos) return rows;
    const size_t columns = std::count(head.begin(), head.end(), '\t');
    for (const std::string& line : linesOf(run.out().substr(at + head.size() + 2))) {
        EXPECT_EQ(line.back(), '\t') << line;
        const Cells cells = split(line, '\t');
        EXPECT_EQ(cells.size(), columns) << line;
        if (cells.size() == columns) rows.push_back(cells);
    }
    return rows;
}

std::vector<Cells> rowsOf(Program& run)
{
    return rowsBehind(run, "   #\tFunction\tTest\tSource\t");
}

Cells columnOf(Program& run, int column)
{
    Cells cells;
    for (const Cells& row : rowsOf(run)) cells.push_back(row[column]);
    return cells;
}

TEST(List, NamesEachTestOnce)
{
    const auto rows = rowsOf(runs().sorted);
    ASSERT_GE(rows.size(), 3u);
    EXPECT_THAT(rows[0], testing::AllOf(Contains("__qkVorexCpu"), Contains("__qkVorexCpuTest")));
    EXPECT_THAT(rows, Contains(testing::AllOf(Contains("qoviAdd128_JPEG_16s8u_C1R"), Contains("TimjAdd"),
                                              Contains("p_jadd"))));
    std::set<std::string> names;
    for (size_t i = 0; i < rows.size(); i++) {
        const std::string number = std::to_string(i + 1);
        EXPECT_EQ(rows[i][0], std::string(4 - std::min<size_t>(number.size(), 4), ' ') + number);
        EXPECT_TRUE(names.insert(rows[i][1]).second) << rows[i][1];
    }
}

// The title, twice, then the list, and no summary; the same in the performance table.
TEST(List, StandsBehindTheTitle)
{
    Program& run = runs().sorted;
    EXPECT_THAT(linesWith(run.out(), "| CPU "), testing::SizeIs(2));
    EXPECT_THAT(run.out(), Not(HasSubstr("QK Summary")));
    EXPECT_THAT(run.read("quolkit_sum.csv"), Not(HasSubstr("END_DATA")));
    Cells rows;
    for (const Cells& row : rowsOf(run)) rows.push_back(row[0] + "," + row[1] + "," + row[2] + "," + row[3]);
    const Table table(run.read("quolkit.csv"), "   #,Function,Test,Source");
    EXPECT_EQ(table.rows, rows);
    EXPECT_EQ(std::count_if(table.title.begin(), table.title.end(),
                            [](const std::string& line) { return line.starts_with("CPU,"); }),
              2);
}

// Unsorted it shows the order of registration, source units from the last name to the first.
TEST(List, UnsortedGoesBackwardsThroughTheSources)
{
    Cells unsorted = columnOf(runs().unsorted, 1);
    Cells sources = columnOf(runs().unsorted, 3);
    ASSERT_GE(sources.size(), 3u);
    EXPECT_EQ(unsorted[0], "__qkVorexCpu"); // always first
    EXPECT_THAT(runs().unsorted.out(), Not(HasSubstr("Sorting functions")));
    EXPECT_TRUE(std::is_sorted(sources.begin() + 1, sources.end(), std::greater<>()))
        << testing::PrintToString(sources);
    EXPECT_THAT(std::vector(unsorted.end() - 2, unsorted.end()),
                ElementsAre("qoviAdd128_JPEG_16s8u_C1R", "qoviSub128_JPEG_8u16s_C1R"));

    const Cells sorted = columnOf(runs().sorted, 1);
    EXPECT_THAT(unsorted, testing::UnorderedElementsAreArray(sorted));
}

TEST(List, HoldsWhatWouldRun)
{
    EXPECT_THAT(columnOf(runs().chosen, 1), ElementsAre("qoviAdd128_JPEG_16s8u_C1R"));
    const Cells hot = columnOf(runs().hot, 1);
    EXPECT_THAT(hot, Contains("qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R"));
    EXPECT_THAT(hot, Each(testing::StartsWith("qovi")));
    EXPECT_THAT(hot, Not(Contains("qoviAdd128_JPEG_16s8u_C1R")));
}

// -e+ marks the functions of the library by whether a test measures them; -e- leaves those that none
// measures.
TEST(List, OfLibraryFunctionsTellsWhichHaveATest)
{
    const std::string head = "Exist\tFunction\t";
    const Cells tests = columnOf(runs().sorted, 1);
    const std::vector<Cells> covered = rowsBehind(runs().covered, head);
    std::vector<Cells> without;
    for (const Cells& row : covered) {
        const bool tested = testing::Value(tests, Contains(row[1]));
        EXPECT_EQ(row[0], tested ? "+" : "-") << row[1];
        if (!tested) without.push_back(row);
        EXPECT_THAT(row[1], Not(HasSubstr("Init"))); // housekeeping
    }
    EXPECT_EQ(rowsBehind(runs().missing, head), without);
    EXPECT_THAT(covered, Contains(Cells{"+", "qoviAdd128_JPEG_16s8u_C1R"}));
}

} // namespace
