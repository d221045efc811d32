// The reports of a run: lines by columns, the records and their form on each channel.
#include "qkreport.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

#include "qkconditions.h"
#include "qkcpuid.h"
#include "qkhost.h"
#include "qklibenv.h"
#include "qksession.h"
#include "qktest.h"
#include "support/capture.h"

namespace {

const std::string rule = "+" + std::string(77, '-') + "+\n";

// A line of the box, with a text at the right border if there is one.
std::string boxed(const std::string& left, const std::string& right = "")
{
    return "|" + left + std::string(77 - left.length() - right.length(), ' ') + right + "|\n";
}

qkReportFormat format(bool box = true)
{
    return qkReportFormat(box, 4, {1, 11, 13, -79, -79, -79});
}

class FakeTest : public qkTest {
public:
    FakeTest(const char* name, const char* info, bool chosen = true)
        : qkTest(static_cast<qkFuncOld>(nullptr), name, "suites/p_fake", info), m_chosen(chosen)
    {
    }
    bool tobeRun(qkConditions&) override { return m_chosen; }
    void setOutcome(qkResult result, std::time_t start, std::time_t stop, bool bad87 = false,
                    bool badSSX = false)
    {
        m_result = result;
        m_startTime = start;
        m_stopTime = stop;
        m_bad87 = bad87;
        m_badSSX = badSSX;
    }

private:
    bool m_chosen;
};

// The machine and the clock as the records see them are the test's own.
class Report : public testing::Test {
protected:
    Report()
    {
        setenv("TZ", "UTC", 1);
        qkCpuTicker::m_freqMHz = 2596;
        qov_GetCpuType = [] { return qovCpuV3; };
        setCacheSize([](int* size) { return *size = 32 << 20, QovStatus(qovStsNoErr); });
        g_ostrm.setOutLevel(7);
    }
    ~Report() override
    {
        g_pLibInfoList = nullptr;
        g_pLibFuncList = nullptr;
        g_ostrm.setOutLevel(1);
    }
    static void setCacheSize(QovStatus (*getter)(int*)) { qov_GetMaxCacheSizeB = getter; }
    static std::string processors()
    {
        const int n = qkGetNumOfProcessors();
        return n > 1 ? std::to_string(n) + "x" : "";
    }
    // "Tue Nov 14 22:13:20 2023"
    static const std::time_t start = 1700000000;
};

// What a record prints on a stream of type Stream.
template <class Stream, class Record>
std::string printed(Record& record, OutputLevel level = 1)
{
    Stream stream;
    if constexpr (std::is_same_v<Stream, qkOStream>) stream.setOutLevel(level);
    SinkText<Stream> capture(stream);
    stream << record;
    return capture.take();
}

} // namespace

// Faults: an item one column off, a right-aligned item over the border, a pushed item touching its neighbour.
TEST(ReportFormat, placesItemsByColumn)
{
    struct {
        bool box;
        const char *a, *b;
        std::string c, d, line;
    } cases[] = {
        {true, "", "", "", "", "|" + std::string(77, ' ') + "|\n"},
        {false, "", "", "", "", " \n"},
        {true, "Function", ":", "f", "", boxed(" Function : f")},
        {false, "Function", ":", "f", "now", "  Function : f" + std::string(61, ' ') + "now\n"},
        {true, "Function", ":", "f", "now", boxed(" Function : f", "now")},
        // a column that the line has reached is taken: the next item moves on
        {true, "123456789", ":", "f", "", boxed(" 123456789 : f")},
        // a blank is kept before a right-aligned item, at the price of the border
        {true, "Function", ":", std::string(62, 'v'), "r", boxed(" Function : " + std::string(62, 'v'), "r")},
        {true, "Function", ":", std::string(63, 'v'), "rr", "| Function : " + std::string(63, 'v') + " rr\n"},
        // exactly to the border, and beyond it
        {true, "Function", ":", std::string(65, 'v'), "", boxed(" Function : " + std::string(65, 'v'))},
        {true, "Function", ":", std::string(66, 'v'), "", "| Function : " + std::string(66, 'v') + "\n"},
        // right-aligned items of the whole width and more
        {true, "", "", "", std::string(77, 'x'), "| " + std::string(77, 'x') + "\n"},
        {true, "", "", "", std::string(78, 'x'), "| " + std::string(78, 'x') + "\n"},
        {true, "", "", "", std::string(79, 'x'), boxed("")},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(format(c.box).getLine(c.a, c.b, c.c.c_str(), c.d.c_str(), "", "").c_str(), c.line);
    }
    qkReportFormat framed = format(false);
    EXPECT_EQ(framed.firstLine().c_str(), rule);
    EXPECT_EQ(framed.getLine("A", "", "", "", "", "").c_str(), boxed(" A"));
    EXPECT_EQ(framed.lastLine().c_str(), rule);
    EXPECT_STREQ(framed.getLine("A", "", "", "", "", "").c_str(), "  A\n");
}

TEST(ReportFormat, measuresTheLastLineAndSplitsAtBlanks)
{
    const std::pair<const char*, int> lengths[] = {{"", 0}, {"abc", 3}, {"abc\n", 0}, {"a\nbc\ndef", 3}};
    for (const auto& [text, length] : lengths) EXPECT_EQ(qkReportFormat::getLastLen(text), length);
    qkString line("first\nab");
    EXPECT_FALSE(qkReportFormat::setOffsetLine(line, 1));
    EXPECT_TRUE(qkReportFormat::setOffsetLine(line, 4));
    EXPECT_STREQ(line.c_str(), "first\nab  ");

    struct {
        const char* item;
        int pos;
        const char* piece; // null: not split
        const char* rest;
    } cases[] = {
        {"one two", 7, nullptr, "one two"},
        {"one two", 6, "one", "two"},
        {"one two", 3, "one", "two"},
        {"one two", 2, nullptr, "one two"},
        {"one two three", 7, "one two", "three"},
    };
    for (const auto& c : cases) {
        qkString item(c.item), piece;
        EXPECT_EQ(qkReportFormat::getPieceItem(item, piece, c.pos), c.piece != nullptr) << c.item << c.pos;
        EXPECT_STREQ(piece.c_str(), c.piece ? c.piece : "");
        EXPECT_STREQ(item.c_str(), c.rest);
    }
}

TEST_F(Report, namesTheProcessorInOneLine)
{
    const std::string name = qkCpuType::cpuName(qovCpuV3).c_str();
    const std::pair<int, const char*> cases[] = {
        {999, "999 MHz"}, {1000, "1 GHz"}, {2596, "2.6 GHz"}, {3141, "3.14 GHz"}, {12345, "12.3 GHz"}};
    for (const auto& [mhz, text] : cases) {
        qkCpuTicker::m_freqMHz = mhz;
        EXPECT_EQ(cpuInfo().c_str(), name + ", " + processors() + text + ", Max cache size 32768 K");
    }
    setCacheSize([](int* size) { return *size = 2047, QovStatus(qovStsNoErr); });
    EXPECT_EQ(cpuInfo().c_str(), name + ", " + processors() + "12.3 GHz, Max cache size 1 K");

    setCacheSize([](int* size) { return *size = 0, QovStatus(qovStsUnknownCacheSize); });
    const auto execute = CPUID::s_execute;
    CPUID::s_execute = [](unsigned, unsigned, CPUID::Registers& regs) { std::memset(regs, 0, sizeof regs); };
    EXPECT_EQ(cpuInfo().c_str(), name + ", " + processors() + "12.3 GHz, ");
    CPUID::s_execute = execute;
}

TEST_F(Report, titleInTheTables)
{
    qkStringList libraries;
    libraries.append("qovj, 2.0, today");
    libraries.append("qovi, 2.0, today");
    g_pLibInfoList = &libraries;
    qkTestList tests;
    tests.m_startTime = start;
    qkReportTitle title(tests);

    const std::string cpu = cpuInfo().c_str(), os = qkOS().m_text.c_str(), host = qkHost().m_text.c_str();
    const std::string table =
        "CPU," + cpu + "\nOS," + os + "\nComputer," + host +
        "\nLibrary,qovj, 2.0, today\nLibrary,qovi, 2.0, today\nStart,Tue Nov 14 22:13:20 2023\n";
    EXPECT_EQ(printed<qkCStream>(title), table);
    EXPECT_EQ(printed<qkUStream>(title), table);
}

TEST_F(Report, testTitleGrowsWithTheMask)
{
    FakeTest test("qoviAdd_8u", "TimjAdd/adds/QD_REG");
    test.setOutcome(OK, start, start);
    const std::string function = boxed(" Function  : qoviAdd_8u", "Tue Nov 14 22:13:20 2023");
    {
        qkReportTestTitle title(&test);
        EXPECT_EQ(printed<qkOStream>(title, 7), rule + function + boxed(" Test      : TimjAdd") +
                                                    boxed(" Source    : p_fake") +
                                                    boxed(" Description : adds") + rule);
        EXPECT_EQ(printed<qkOStream>(title, 1), function);
        EXPECT_EQ(printed<qkUStream>(title), "qoviAdd_8u,Timing,");
    }
    g_ostrm.setOutLevel(7);
    FakeTest information("__qkVorexCpu", "__qkVorexCpuTest");
    qkReportTestTitle informationTitle(&information);
    EXPECT_EQ(informationTitle.count(), 9) << "an empty description has no line";
    EXPECT_EQ(printed<qkUStream>(informationTitle), "__qkVorexCpu,Information,");
}

TEST_F(Report, testResultOnConsoleAndInSummary)
{
    qkSession::m_exePath = "/opt/bin/quolkit";
    FakeTest test("qoviAdd_8u", "TimjAdd//QD_REG");
    struct {
        qkResult result;
        bool bad87, badSSX;
        const char* line;
    } cases[] = {
        {OK, false, false, "-,-,-,-,TimjAdd,75,p_fake,OK,quolkit"},
        {BADSTSWRN, true, false, "-,?,-,-,TimjAdd,75,p_fake,BADSTSWRN,quolkit"},
        {EXCPTFAIL, true, true, "-,?,-,?,TimjAdd,75,p_fake,EXCPTFAIL,quolkit"},
    };
    for (const auto& c : cases) {
        test.setOutcome(c.result, start - 75, start, c.bad87, c.badSSX);
        qkReportTestResult result(&test);
        EXPECT_EQ(printed<qkUStream>(result), std::string(c.line) + "\n");
        EXPECT_TRUE(result.m_comment.empty());
    }
    qkReportTestResult result(&test);
    const std::string line = boxed(" -EXCPTFAIL  qoviAdd_8u", "Tue Nov 14 22:13:20 2023");
    EXPECT_EQ(printed<qkOStream>(result, 1), line);
    EXPECT_EQ(printed<qkOStream>(result, 3), rule + line + rule);

    test.setOutcome(UNDEFINED, start, start);
    EXPECT_STREQ(qkReportTestResult(&test).m_comment.c_str(), "--No measurements have been done\n");
}

// Faults: totals of a class counted as tests, sub-totals taken off twice, codes 6 and 11 lost.
TEST_F(Report, summaryAddsUp)
{
    struct {
        std::vector<int> results;
        std::vector<int> numbers; // from "Number of tests" to "Undefined"
    } cases[] = {
        {{}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, {12, 1, 8, 4, 3, 1, 4, 3, 1, 3}},
        {{2, 4, 5, 5, 3, 3}, {6, 0, 6, 0, 0, 0, 6, 4, 2, 0}},
        {{7, 8, 9, 9, 10, 10}, {6, 0, 6, 6, 4, 2, 0, 0, 0, 0}},
    };
    const char* const keys[] = {
        ".Number of tests", ".Successes      ", ".Failures       ", "...Fails        ", ".....-FAIL      ",
        ".....-EXCPTFAIL ", "...Warnings     ", ".....-WARNING   ", ".....-BADSTSWRN ", "...Undefined    "};
    for (const auto& c : cases) {
        qkTestList tests;
        tests.m_startTime = start;
        tests.m_stopTime = start + 360069;
        for (const int result : c.results) tests.plus(static_cast<qkResult>(result));
        qkReportEnd end(tests);
        std::string table = "END_DATA\n";
        for (size_t i = 0; i < std::size(keys); i++)
            table += std::string(keys[i]) + "," + std::to_string(c.numbers[i]) + "\n";
        table += ".Total time     ,100:01:09\n";
        EXPECT_EQ(printed<qkUStream>(end), table);
        EXPECT_EQ(printed<qkCStream>(end), table);
    }
}

TEST_F(Report, listsTestsOrFunctions)
{
    qkTestList tests;
    tests.append(new FakeTest("__qkCpu", "Cpu"));
    tests.append(new FakeTest("qovLeftOut", "Tim", false));
    tests.append(new FakeTest("qovAdd", "Tim"));
    qkConditions all;
    const std::string listed =
        "   #\tFunction\tTest\tSource\t\n   1\t__qkCpu\tCpu\tp_fake\t\n   2\tqovAdd\tTim\tp_fake\t\n";
    const std::string cells = "   #,Function,Test,Source\n   1,__qkCpu,Cpu,p_fake\n   2,qovAdd,Tim,p_fake\n";

    for (const int mode : {0, 1, -1}) {
        qkReportList list(tests, all, mode);
        EXPECT_EQ(printed<qkOStream>(list, 7), listed) << "the library has no functions, mode " << mode;
        EXPECT_EQ(printed<qkOStream>(list, 3), "");
        EXPECT_EQ(printed<qkUStream>(list), cells);
    }

    qkStringList functions;
    for (const char* name : {"qovLeftOut", "qovGetSize", "qovMissing", "qovGet_8u", "qovSetRow", "qovSet_8u",
                             "qovSetGet_8u", "qovInitX", "qovXClose", "qovAllocX", "qovMallocX", "qovFree",
                             "qovPutValX", "qovRotateCenter", "qovResizeShift", "qovDrawText"}) {
        functions.append(name);
    }
    g_pLibFuncList = &functions;
    const std::pair<int, std::string> cases[] = {
        {0, listed},
        {1, "Exist\tFunction\t\n+\tqovLeftOut\t\n-\tqovMissing\t\n-\tqovGet_8u\t\n-\tqovSet_8u\t\n"},
        {-1, "Exist\tFunction\t\n-\tqovMissing\t\n-\tqovGet_8u\t\n-\tqovSet_8u\t\n"},
    };
    for (const auto& [mode, text] : cases) {
        qkReportList list(tests, all, mode);
        EXPECT_EQ(printed<qkOStream>(list, 7), text);
    }
}
