// The common data of a session: which values reach the tool and the allocator from -d, from the console and
// by default, what the console is asked, and what a registered preset changes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qkmem.h"
#include "qkreadtiming.h"
#include "qksession.h"
#include "qktool.h"
#include "support/capture.h"
#include "support/dialogue.h"

namespace {

class Session : public qkSession {
public:
    explicit Session(int ask = 0) { m_askMode = ask; }
};

class ReadTimingTest : public testing::Test {
protected:
    ReadTimingTest() { forget(); }
    ~ReadTimingTest() override
    {
        forget();
        initTimingMethod = nullptr;
    }
    static void forget()
    {
        g_tool = qkTool();
        g_istrm.setIStream(nullptr);
        qkDataList& given = g_istrm.m_dataList;
        given.erase(given.begin(), given.end());
        qkSetVectorAlign(0);
        qkSetVectorShift(0);
        qkSetAlignSrc(false);
        qkSetAlignByByte(false);
    }
    static void give(const std::vector<const char*>& values)
    {
        for (const char* value : values) g_istrm.m_dataList.set(value);
    }

    LevelCapture m_screen{g_ostrm, PERF | WARN | ERR};
};

std::string methodOf(const qkTool& tool)
{
    int a = 0, b = 0;
    long long c = 0;
    qkString text;
    if (tool.getMethodAuto()) text << "Auto";
    if (tool.getMethodLoop(a)) text << "Manual " << a;
    if (tool.getMethodStat(a, c)) text << "Statistic " << a << " " << c;
    if (tool.getMethodBest(a, b, c)) text << "Iterative " << a << " " << b << " " << c;
    return text.c_str();
}

TEST_F(ReadTimingTest, Method)
{
    const struct {
        std::vector<const char*> given;
        bool preset;
        const char* method;
    } rows[] = {
        {{}, false, "Auto"},
        {{"Method=man"}, false, "Manual 10"},
        {{"Method=Manual", "NumLoops=77", "NumCalls=5"}, false, "Manual 77"},
        {{"Method=s"}, false, "Statistic 3 10000"},
        {{"Method=s", "NumCalls=4", "TotalCpuClocks=9876543210"}, false, "Statistic 4 9876543210"},
        {{"Method=i"}, false, "Iterative 1 2048 10000"},
        {{"Method=i", "StartNumLoops=4", "StopNumLoops=8", "MinCpuClocks=5"}, false, "Iterative 4 32 5"},
        {{"Method=fast"}, false, "Auto"}, // no method: the default stays
        {{}, true, "Statistic 9 777"},
        {{"NumCalls=4"}, true, "Statistic 4 777"},
        {{"Method=manual"}, true, "Manual 10"}, // the preset's numbers belong to its method
        {{"Method=auto"}, true, "Auto"},
    };
    for (const auto& row : rows) {
        forget();
        give(row.given);
        initTimingMethod = nullptr;
        if (row.preset) initTimingMethod = [](qkTool& tool) { tool.setMethodStat(9, 777); };
        EXPECT_FALSE(Session().readTimingMethod());
        EXPECT_EQ(methodOf(g_tool), row.method);
    }
}

TEST_F(ReadTimingTest, AccuracyInPercent)
{
    const struct {
        const char* given;
        int method;
        double accuracy;
    } rows[] = {
        {"Other=1", qkTool::Auto, 0.05},
        {"Accuracy=7", qkTool::Auto, 0.07},
        {"Accuracy=50", qkTool::Iterative, 0.5},
        {"Accuracy=0", qkTool::Auto, 500},
        {"Accuracy=51", qkTool::Auto, 500},
        {"Accuracy=x", qkTool::Iterative, 0.05},
        {"Other=1", 17, 500},
        {"Accuracy=7", qkTool::Manual, 0.25},
        {"Accuracy=7", qkTool::Statistic, 0.25},
    };
    for (const auto& row : rows) {
        forget();
        give({row.given});
        g_tool.m_accuracy = 0.25;
        Session().readAccuracy(row.method);
        EXPECT_DOUBLE_EQ(g_tool.m_accuracy, row.accuracy) << row.given << " " << row.method;
    }
}

TEST_F(ReadTimingTest, AsksForTheMethod)
{
    const Dialogue console("Iter\n2\n\n500\n10\n");
    EXPECT_TRUE(Session(1).readTimingMethod());
    EXPECT_EQ(methodOf(g_tool), "Iterative 2 2048 500");
    EXPECT_DOUBLE_EQ(g_tool.m_accuracy, 0.1);
    EXPECT_EQ(console.questions(), "\n Method {Auto|Manual|Statistic|Iterative} [Auto] = "
                                   "\n StartNumLoops [1] = "
                                   "\n StopNumLoops [2048] = "
                                   "\n MinCpuClocks [10000] = "
                                   "\n Accuracy, % [5] = ");
    EXPECT_TRUE(
        m_screen.take().starts_with(qkSession::getEnterTitle("Specify timing method, please").c_str()));
}

// The bits of the mode belong to one question each, and a console of an earlier one is taken away.
TEST_F(ReadTimingTest, AsksOnlyWhatTheModeSays)
{
    const Dialogue console("");
    EXPECT_TRUE(Session(1).readTimingMethod());
    EXPECT_TRUE(g_istrm.hasConsole());
    EXPECT_FALSE(Session(1 | 4).readTestParameters());
    EXPECT_FALSE(g_istrm.hasConsole());
    EXPECT_FALSE(Session(1 | 2).readDataOffset());
    EXPECT_FALSE(g_istrm.hasConsole());
    EXPECT_FALSE(Session(2 | 4).readTimingMethod());
    EXPECT_EQ(methodOf(g_tool), "Auto"); // at the end of the input too
}

TEST_F(ReadTimingTest, DataOffset)
{
    const struct {
        std::vector<const char*> given;
        bool byByte;
        int align, shift;
        bool firstOnly;
    } rows[] = {
        {{}, false, 0, 512, false},
        {{"MutualVectorShift=64", "MisalignFirstVectorOnly=yes"}, false, 0, 512, false}, // neither is read
        {{"AlignVectorsBy=b", "VectorAlign=65"}, true, 1, 0, true},
        {{"VectorAlign=3", "MisalignFirstVectorOnly=no"}, false, 3, 0, false},
        {{"VectorAlign=-1"}, false, 63, 0, true},
        {{"VectorAlign=128"}, false, 0, 512, false},
        {{"VectorAlign=wide"}, false, 0, 512, false},
    };
    for (const auto& row : rows) {
        forget();
        give(row.given);
        EXPECT_FALSE(Session().readDataOffset());
        EXPECT_EQ(qkGetAlignByByte(), row.byByte);
        EXPECT_EQ(qkGetVectorAlign(), row.align);
        EXPECT_EQ(qkGetVectorShift(), row.shift);
        EXPECT_EQ(qkGetAlignSrc(), row.firstOnly);
    }
    EXPECT_NE(m_screen.take().find("-Invalid value of VectorAlign: wide\n"), std::string::npos);
}

TEST_F(ReadTimingTest, PlacementStaysInRange)
{
    const DefaultAlign align(0, "VectorAlign", "");
    const DefaultShift shift(512, "MutualVectorShift", "");
    EXPECT_EQ(align.validItem("70"), 6);
    EXPECT_EQ(align.validItem("0x3F"), 63);
    EXPECT_EQ(shift.validItem("200"), 192);
    EXPECT_EQ(shift.validItem("63"), 0);
    EXPECT_THROW(align.validItem("x1"), qkException);
    EXPECT_THROW(shift.validItem("x1"), qkException);
}

} // namespace
