// From words to keys: what an argument is, which word a key swallows, and what key files bring in.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qkcommand.h"

namespace {

using Words = std::vector<std::string>;

// "key:argument" for each entry.
Words keysOf(const qkCommandList& list)
{
    Words keys;
    for (const qkCommandKey& entry : list)
        keys.push_back(std::string(1, entry.m_key) + ":" + entry.m_arg.c_str());
    return keys;
}

TEST(Command, ArgvWordsBecomeKeysUnsplit)
{
    const struct {
        Words argv;
        Words keys;
    } cases[] = {
        {{}, {}},
        {{"-fDCT", "-B"}, {"f:DCT", "B:"}},
        {{"-f--x"}, {"f:--x"}},
        {{"-fDCT", "Quant", "-B"}, {"f:DCT", "B:"}},  // swallowed and lost
        {{"-i", "/tmp/a.ini"}, {"i:", "t:mp/a.ini"}}, // a slash starts a key
        {{"lost", "lost too", "-B"}, {"B:"}},
        {{"-f", "A B;C"}, {"f:A B;C"}},
        {{" -B"}, {}},
        {{"-", "/"}, {}},
        {{"-f", "-"}, {"f:-"}}, // one character is no key
    };
    for (const auto& c : cases) {
        std::vector<char*> argv(1, const_cast<char*>("quolkit"));
        for (const std::string& word : c.argv) argv.push_back(const_cast<char*>(word.c_str()));
        qkCommandList list;
        list.setArgs(static_cast<int>(argv.size()), argv.data());
        EXPECT_EQ(keysOf(list), c.keys) << testing::PrintToString(c.argv);
    }
}

TEST(Command, TheLastOccurrenceGivesTheArgument)
{
    qkCommandList list;
    qkString arg("old");
    EXPECT_FALSE(list.getArg('n', arg));
    EXPECT_FALSE(list.isKey('n'));
    EXPECT_EQ(list.end()->m_key, ' ');
    list.setArgs("-nfirst -B -nsecond");
    EXPECT_TRUE(list.isKey('n'));
    EXPECT_TRUE(list.getArg('n', arg));
    EXPECT_STREQ(arg.c_str(), "second");
    EXPECT_FALSE(list.getArg('b', arg)); // letter case counts
    EXPECT_FALSE(list.setArg("word", ""));
    EXPECT_TRUE(list.setArg("-n", "third"));
    list.setArg('n', "-fourth");
    EXPECT_TRUE(list.getArg('n', arg));
    EXPECT_STREQ(arg.c_str(), "-fourth");
    EXPECT_EQ(list.count(), 5);
}

TEST(Command, LettersCountWhereverTheyStand)
{
    const struct {
        const char* arg;
        int ask, level, priority;
    } cases[] = {
        {"", 15, 0, 0},         {"TimingParams", 3, 23 | 7, 0},
        {"Misalign", 4, 39, 0}, {"All", 15, 0, 0},
        {"PTM", 7, 63 & ~8, 0}, {"ERR", 15, 1, 0},
        {"WARN", 15, 3, 0},     {"PERF", 2, 7, 0},
        {"INFO", 15, 15, 0},    {"TRACE", 1, 23, 0},
        {"DATA", 1, 87, 0},     {"xyz", 15, 0, 0},
        {"perf", 15, 0, 0},     {"HIGH", 15, 15, 1},
        {"N", 15, 0, 2},        {"LOW", 15, 3, 3},
        {"aH", 15, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(getAskLevel(c.arg), c.ask) << c.arg;
        EXPECT_EQ(getLevel(c.arg), c.level) << c.arg;
        EXPECT_EQ(getPriority(c.arg), c.priority) << c.arg;
    }
}

} // namespace
