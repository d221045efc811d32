// qkList: erasing and moving nodes at the ends and while walking.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qklist.h"
#include "qkstring.h"

namespace {

using Values = std::vector<int>;

struct IntList : qkList<int> {
    IntList(const Values& values = {})
    {
        for (int value : values) append(value);
    }
};

// Forwards, and checked backwards: both chains must be whole.
Values values(const qkList<int>& list)
{
    Values forwards;
    for (int value : list) forwards.push_back(value);
    Values backwards;
    for (qkList<int>::iterator i = list.end(); i != list.begin();) {
        --i;
        backwards.insert(backwards.begin(), *i);
    }
    EXPECT_EQ(forwards, backwards);
    EXPECT_EQ(list.count(), static_cast<int>(forwards.size()));
    EXPECT_EQ(list.empty(), forwards.empty());
    return forwards;
}

TEST(List, InsertGoesBeforeThePositionAndReturnsTheNewOne)
{
    qkList<int> list;
    EXPECT_EQ(values(list), Values());
    const auto last = list.insert(list.end(), 3);
    const auto first = list.insert(list.begin(), 1);
    const auto middle = list.insert(last, 2);
    EXPECT_EQ(*first, 1);
    EXPECT_EQ(*middle, 2);
    EXPECT_EQ(values(list), (Values{1, 2, 3}));
}

TEST(List, EraseReturnsTheNextPositionSoAWalkGoesOn)
{
    for (int victim = 0; victim < 4; victim++) {
        IntList list({0, 1, 2, 3});
        Values seen;
        for (auto i = list.begin(); i != list.end();) {
            seen.push_back(*i);
            if (*i == victim)
                i = list.erase(i);
            else
                ++i;
        }
        Values rest{0, 1, 2, 3};
        rest.erase(rest.begin() + victim);
        EXPECT_EQ(seen, (Values{0, 1, 2, 3}));
        EXPECT_EQ(values(list), rest);
    }
}

TEST(List, SentinelHasADefaultValueAndCannotBeErased)
{
    qkList<qkString> list;
    EXPECT_STREQ(list.end()->c_str(), "");
    list.append("a");
    EXPECT_EQ(list.erase(list.end()), list.end());
    EXPECT_EQ(list.count(), 1);
    EXPECT_EQ(list.erase(list.begin(), list.end()), list.end());
    EXPECT_TRUE(list.empty());
    list.append("b");
    EXPECT_STREQ(list.begin()->c_str(), "b");
}

TEST(List, SwapKeepsPositionsWithTheirNodes)
{
    IntList a({1, 2}), b;
    const auto two = ++a.begin();
    a.swap(b);
    EXPECT_EQ(values(a), Values());
    b.insert(two, 9);
    EXPECT_EQ(values(b), (Values{1, 9, 2}));
}

TEST(List, SpliceMovesANodeWithinAListAndBetweenLists)
{
    IntList a({1, 2, 3}), b({7});
    a.splice(a.begin(), a, ++a.begin());
    EXPECT_EQ(values(a), (Values{2, 1, 3}));
    a.splice(a.begin(), a, a.begin());
    EXPECT_EQ(values(a), (Values{2, 1, 3}));
    a.splice(a.end(), b, b.begin());
    EXPECT_EQ(values(a), (Values{2, 1, 3, 7}));
    EXPECT_EQ(values(b), Values());
    b.splice(b.end(), a, a.begin());
    EXPECT_EQ(values(a), (Values{1, 3, 7}));
    EXPECT_EQ(values(b), (Values{2}));
}

// Two values of the same ten count as equal: those of the first list stay in front.
TEST(List, MergeIsStable)
{
    IntList a({10, 20, 40}), b({11, 30, 41, 50});
    a.merge(b, [](int& x, int& y) { return x / 10 < y / 10; });
    EXPECT_EQ(values(a), (Values{10, 11, 20, 30, 40, 41, 50}));
    EXPECT_EQ(values(b), Values());
}

} // namespace
