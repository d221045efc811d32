// Which tests run: signs and patterns of -f, -t and -m, and their composition.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qkconditions.h"
#include "qktest.h"

namespace {

struct Key {
    char key; // f, t or m
    const char* arg;
};

TEST(Conditions, TheSignIsReadAndRemoved)
{
    const struct {
        const char* arg;
        int sign;
        const char* pattern;
    } cases[] = {{"DCT", 0, "DCT"}, {"+DCT", 1, "DCT"}, {"-DCT", 2, "DCT"}, {"=DCT", 3, "DCT"},
                 {"", 4, ""},       {"-", 4, ""},       {"--", 2, "-"}};
    for (const auto& c : cases) {
        qkString arg(c.arg);
        EXPECT_EQ(getCondition(arg), c.sign) << c.arg;
        EXPECT_STREQ(arg.c_str(), c.pattern) << c.arg;
    }
}

TEST(Conditions, ATestRunsIfItsKeysAllowIt)
{
    const struct {
        std::vector<Key> keys;
        bool byAnd, byOr;
    } cases[] = {
        {{}, true, true},
        // One class, where AND and OR agree. The test is qoviAdd128_JPEG_16s8u_C1R of class TimjAdd in
        // p_jadd.
        {{{'f', "Add"}}, true, true},
        {{{'f', "add"}}, false, false},
        {{{'f', "Sub"}, {'f', "Add"}}, true, true},
        {{{'f', "-Add"}}, false, false},
        {{{'f', "-Sub"}}, true, true},
        {{{'f', "Add"}, {'f', "-16s"}}, false, false},
        {{{'f', "+A"}, {'f', "+X"}}, false, false},
        {{{'f', "Sub"}, {'f', "+A"}}, false, false},
        // An exact name outranks the rest, and alone it excludes others.
        {{{'f', "=qoviAdd128_JPEG_16s8u_C1R"}, {'f', "-Add"}}, true, true},
        {{{'f', "=qoviAdd128"}}, false, false},
        {{{'f', "=qoviAdd128"}, {'f', "=qoviAdd128_JPEG_16s8u_C1R"}}, true, true},
        {{{'f', "=X"}, {'f', "-Sub"}}, true, true}, // no exact fit, but the rest still decides
        {{{'f', "=X"}, {'f', "-Add"}}, false, false},
        // The texts of the other classes.
        {{{'t', "=TimjAdd"}}, true, true},
        {{{'t', "Add128"}}, false, false},
        {{{'m', "=p_jadd"}}, true, true},
        {{{'m', "src"}}, false, false},
        {{{'m', "+p_"}, {'m', "jsub"}}, false, false},
        // Several classes.
        {{{'f', "Add"}, {'t', "X"}}, false, true},
        {{{'f', "X"}, {'m', "jadd"}}, false, true},
        {{{'f', "X"}, {'t', "X"}, {'m', "X"}}, false, false},
        {{{'f', "Add"}, {'t', "Tim"}, {'m', "p_"}}, true, true},
    };
    const qkTest test(qkFuncOld(nullptr), "qoviAdd128_JPEG_16s8u_C1R", "/src/p_jadd", "TimjAdd//Add128");
    for (const auto& c : cases) {
        qkConditions conditions;
        std::string keys;
        for (const Key& key : c.keys) {
            qkString pattern(key.arg);
            const auto cls = static_cast<RunCondition::Class>(qkString("ftm").find(qkString(key.key)));
            const int sign = getCondition(pattern);
            conditions.append(newRunCondition(cls, sign, pattern));
            keys += std::string(" -") + key.key + key.arg;
        }
        EXPECT_EQ(conditions.m_logic, 0);
        EXPECT_EQ(conditions.tobeRun(&test), c.byAnd) << keys;
        conditions.m_logic = 1;
        EXPECT_EQ(conditions.tobeRun(&test), c.byOr) << keys;
    }
}

} // namespace
