// The list of tests: their order, the choice of common parameters, and what is run and counted.
#include <gmock/gmock.h>

#include "qkcacheiter.h"
#include "qkconditions.h"
#include "qkexception.h"
#include "support/script_test.h"

namespace {

using testing::HasSubstr;

// Compares by its first letter alone; answers a result without running anything.
class FixedTest : public qkTest {
public:
    explicit FixedTest(const std::string& name, qkResult result = OK)
        : qkTest(nullptr, nullptr, name.c_str(), "unit", "Fixed"), m_answer(result)
    {
    }
    int compareFunc(const qkTest* other) const override { return m_name[0] - other->name()[0]; }
    qkResult run() override
    {
        ran.push_back(m_name.c_str());
        EXPECT_EQ(qkTestList::m_pCurrentTest, this);
        return m_result = m_answer;
    }
    static Strings ran;

private:
    qkResult m_answer;
};

Strings FixedTest::ran;

class TestListRun : public RunFixture {
protected:
    TestListRun() { FixedTest::ran.clear(); }
    ~TestListRun() override { qkTestList::m_startFunc = ""; }

    static void add(qkTestList& list, const Strings& names)
    {
        for (const std::string& name : names) list.append(new FixedTest(name));
    }
    static Strings names(const qkTestList& list)
    {
        Strings all;
        for (const qkTest* test : list) all.push_back(test->name().c_str());
        return all;
    }

    qkTestList m_list;
    qkConditions m_conditions;
};

TEST_F(TestListRun, SortIsStable)
{
    Strings expected;
    for (int i = 0; i < 1000; i++) {
        expected.push_back(std::to_string(i));
        expected.back().insert(0, 1, "qazwsx"[i * 7 % 6]);
    }
    add(m_list, expected);
    std::stable_sort(expected.begin(), expected.end(),
                     [](const std::string& a, const std::string& b) { return a[0] < b[0]; });
    m_list.sortFunc();
    EXPECT_EQ(names(m_list), expected);
}

TEST_F(TestListRun, MovesUnderscoredTestsToTheFront)
{
    const std::pair<const char*, const char*> cases[] = {
        {"", ""}, {"b _y a _x", "_y _x b a"}, {"_x a _y b _z", "_x _y _z a b"}, {"b a", "b a"}};
    for (const auto& [before, after] : cases) {
        qkTestList list;
        add(list, words(before));
        list.startWithCpuTest();
        EXPECT_EQ(names(list), words(after)) << before;
    }
}

// Warnings and failures are class totals, and the exit code of the program hangs on the latter alone.
TEST_F(TestListRun, CountsResultsAndTellsFailures)
{
    const struct {
        std::vector<qkResult> results;
        int warnings, failures;
    } cases[] = {
        {{UNDEFINED, OK}, 0, 0}, {{ACCURWRN, FUNCWRN, OK}, 2, 0}, {{ACCURFAIL, DATAFAIL}, 0, 2},
        {{FAIL}, 0, 1},          {{BADSTSWRN, FUNCFAIL}, 1, 1},   {{}, 0, 0},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.results));
        qkTestList list;
        for (const qkResult result : row.results) list.append(new FixedTest("test", result));
        EXPECT_EQ(list.runTests(m_conditions), row.failures != 0);
        EXPECT_EQ(list.m_numTests, static_cast<int>(row.results.size()));
        EXPECT_EQ(list.m_counters[WARNING], row.warnings);
        EXPECT_EQ(list.m_counters[FAIL], row.failures);
        EXPECT_EQ(qkTestList::m_pCurrentTest, nullptr);
    }
}

TEST_F(TestListRun, DoesNotCountWhatIsPassedOver)
{
    useIniFile("[b]\n", false);
    qkTest::m_pressing = true;
    for (const char* name : {"a", "b", "c"}) m_list.append(new ScriptTest(name));
    EXPECT_FALSE(m_list.runTests(m_conditions));
    EXPECT_EQ(m_list.m_numTests, 1);
    EXPECT_EQ(m_list.m_counters[OK], 1);
}

TEST_F(TestListRun, StartsWithTheNamedFunction)
{
    const std::pair<const char*, const char*> cases[] = {
        {"", "one two three"}, {"w", "two three"}, {"two", "two three"}, {"e", "one two three"}, {"zz", ""}};
    for (const auto& [start, expected] : cases) {
        qkTestList list;
        add(list, words("one two three"));
        FixedTest::ran.clear();
        qkTestList::m_startFunc = start;
        list.runTests(m_conditions);
        EXPECT_EQ(FixedTest::ran, words(expected)) << start;
    }
}

TEST_F(TestListRun, RunsWhatTheConditionsAndTheHotListAllow)
{
    add(m_list, words("one two three"));
    m_conditions.append(newRunCondition(RunCondition::byFunction, 0, "t"));
    m_list.runTests(m_conditions);
    qkTest::m_hot = 1;
    m_list.runTests(m_conditions);
    EXPECT_EQ(FixedTest::ran, words("two three two three"));
    FixedTest::ran.clear();
    qkTest::m_hot = 2;
    m_list.runTests(m_conditions);
    EXPECT_TRUE(FixedTest::ran.empty()) << "no list of hot functions means that none is hot";
    qkRegHotFunction("three");
    m_list.runTests(m_conditions);
    EXPECT_EQ(FixedTest::ran, words("three"));
}

class CommonParms : public TestListRun {
protected:
    CommonParms()
    {
        for (qkIterator<int>* parm : {&m_a, &m_b, &m_c}) m_parms.append(parm);
    }
    ScriptTest* addTest(const char* name, std::vector<qkParameter*> uses)
    {
        auto* test = new ScriptTest(name);
        test->m_uses = std::move(uses);
        m_list.append(test);
        return test;
    }
    std::string left() const
    {
        std::string text;
        for (const qkParameter* parm : m_parms) text += parm->name().c_str();
        return text;
    }

    qkIterator<int> m_a{"a", ""}, m_b{"b", ""}, m_c{"c", ""};
    qkList<qkParameter*> m_parms;
};

TEST_F(CommonParms, AreThoseThatTheChosenTestsUse)
{
    addTest("first", {&m_c});
    addTest("other", {&m_b});
    addTest("further", {&m_a});
    m_conditions.append(newRunCondition(RunCondition::byFunction, 0, "f"));
    m_list.selectCommonParms(m_conditions, m_parms);
    EXPECT_EQ(left(), "ac");
    EXPECT_TRUE(m_a.selected());
    EXPECT_FALSE(m_b.selected());
    for (qkTest* test : m_list) EXPECT_TRUE(test->parms().empty());
}

TEST_F(CommonParms, AreNotSoughtOnceAllAreFound)
{
    addTest("first", {&m_c, &m_b});
    addTest("second", {&m_a});
    ScriptTest* third = addTest("third", {&m_a});
    m_list.selectCommonParms(m_conditions, m_parms);
    EXPECT_EQ(left(), "abc");
    EXPECT_TRUE(third->m_calls.empty());
}

TEST_F(CommonParms, AreFoundBehindACacheIterator)
{
    qkTest::m_cache = true;
    ScriptTest* test = addTest("cached", {});
    test->m_script["canStart"] = [&] { test->regCacheParm(m_b, nullptr, nullptr); };
    m_list.selectCommonParms(m_conditions, m_parms);
    EXPECT_EQ(left(), "b");
    EXPECT_EQ(test->cacheIterator(), nullptr) << "else its run would take this one for its own";
}

TEST_F(CommonParms, OfATestThatFailsCountAsNotUsed)
{
    ScriptTest* test = addTest("bad", {&m_a});
    test->m_script["canStart"] = [] { throw qkException(qkString("no luck")); };
    addTest("good", {&m_b});
    m_list.selectCommonParms(m_conditions, m_parms);
    EXPECT_EQ(left(), "b");
    EXPECT_EQ(test->m_calls, words("beginTest canStart"));
    EXPECT_EQ(m_console.take(), "--QOV. Exception: no luck in startAndStop of bad test\n");
    EXPECT_EQ(g_ostrm.outLevel(), performance);
}

} // namespace
