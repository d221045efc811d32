// qkString, qkParse and the formatted fields, case by case.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "qkformat.h"
#include "qkstring.h"

namespace {

std::string str(const qkString& text)
{
    return std::string(text.c_str(), static_cast<size_t>(text.length()));
}

TEST(String, EveryConstructorLeavesAText)
{
    EXPECT_EQ(str(qkString()), "");
    EXPECT_EQ(str(qkString(static_cast<const char*>(nullptr))), "");
    EXPECT_EQ(str(qkString('x')), "x");
    EXPECT_EQ(str(qkString(qkString("abc"))), "abc");
    qkString freed("abc");
    freed.free();
    EXPECT_STREQ(freed.c_str(), "");
}

// Texts around the buffer sizes, so that growing takes a new buffer or keeps the old one.
TEST(String, GrowsAndShrinksWithoutLosingText)
{
    for (int n : {0, 1, 15, 16, 17, 100}) {
        const std::string base(static_cast<size_t>(n), 'b');
        for (int more : {0, 1, 15, 16, 17}) {
            const std::string tail(static_cast<size_t>(more), 't');
            qkString s(base.c_str());
            s += tail.c_str();
            EXPECT_EQ(str(s), base + tail);
            s.resize(n, '?');
            EXPECT_EQ(str(s), base);
            s.resize(n + more, 't');
            EXPECT_EQ(str(s), base + tail);
            EXPECT_STREQ(s.c_str(), (base + tail).c_str());
        }
    }
    qkString zeroed("filled");
    zeroed.allocate(5);
    EXPECT_EQ(str(zeroed), std::string(5, '\0'));
    zeroed.allocate(-3);
    EXPECT_EQ(zeroed.length(), 0);
}

TEST(String, TakesPartsOfItself)
{
    qkString s("0123456789abcdef");
    s += s;
    EXPECT_EQ(str(s), "0123456789abcdef0123456789abcdef");
    s.setFail(true);
    s.assign(s.c_str() + 30);
    EXPECT_EQ(str(s), "ef");
    s = *&s;
    EXPECT_EQ(str(s), "ef");
    EXPECT_TRUE(s.fail()) << "the mark survives an assignment";
    EXPECT_FALSE(qkString(s).fail());
}

TEST(String, Find)
{
    const qkString s("abcabc");
    EXPECT_EQ(s.find("abc"), 0);
    EXPECT_EQ(s.find("abc", 1), 3);
    EXPECT_EQ(s.find("abc", 4), qkString::npos);
    EXPECT_EQ(s.find("", 6), 6);
    EXPECT_EQ(s.find("", 7), qkString::npos);
    EXPECT_EQ(s.rfind("abc"), 3);
    EXPECT_EQ(s.rfind("x"), qkString::npos);
    EXPECT_EQ(s.find("abcabcd"), qkString::npos);
    EXPECT_EQ(qkString::npos, -1);
}

TEST(String, Substr)
{
    const qkString s("hello");
    const std::pair<int, const char*> tails[] = {{2, "llo"}, {5, ""}, {9, ""}};
    for (const auto& [from, tail] : tails) EXPECT_EQ(str(s.substr(from)), tail);
    const struct {
        int from, count;
        const char* part;
    } parts[] = {{1, 3, "ell"}, {3, INT_MAX, "lo"}, {1, 0, ""}, {1, -4, ""}, {7, 2, ""}};
    for (const auto& c : parts) EXPECT_EQ(str(s.substr(c.from, c.count)), c.part) << c.from;
}

TEST(String, CompareIsByLengthForPrefixesAndBySignedBytesElse)
{
    const struct {
        const char *a, *b;
        int result;
    } cases[] = {
        {"", "", 0},       {"", "abc", -3},    {"abcd", "", 4},   {"abc", "abc", 0}, {"abc", "abd", -1},
        {"abz", "abd", 1}, {"ab", "abcd", -2}, {"abcd", "ab", 2}, {"\xC0", "a", -1}, {"a", "\xC0", 1},
    };
    for (const auto& c : cases) EXPECT_EQ(qkString(c.a).compare(c.b), c.result) << c.a << " " << c.b;
}

// The asymmetry is wanted: a carriage return goes at the start only.
TEST(String, Trim)
{
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},       {"a", "a"},          {" \t\r a b \t", "a b"},
        {" \t\r ", ""}, {"\r a \r", "a \r"}, {"\na\n", "\na\n"}};
    for (const auto& [text, trimmed] : cases) {
        qkString s(text);
        s.trim();
        EXPECT_EQ(str(s), trimmed) << text;
    }
}

TEST(String, PathParts)
{
    const char* const cases[][4] = {
        {"", "", "", ""},
        {"/usr/bin/quolkit.x.exe", "/usr/bin/", "quolkit.x.exe", "quolkit.x"},
        {"c:\\bin/q.exe", "c:\\bin/", "q.exe", "q"},
        {"a/b\\c", "a/b\\", "c", "c"},
        {"dir.d/name", "dir.d/", "name", "name"},
        {"dir/", "dir/", "", ""},
    };
    for (const auto& [text, dir, name, title] : cases) {
        const qkString path(text);
        EXPECT_EQ(str(path.getFileDir()), dir) << text;
        EXPECT_EQ(str(path.getFileName()), name) << text;
        EXPECT_EQ(str(path.getFileTitle()), title) << text;
    }
}

template <class T>
std::string out(T value)
{
    qkString s("[");
    s << value;
    return str(s).substr(1);
}

TEST(String, ValuesToText)
{
    EXPECT_EQ(out(-17), "-17");
    EXPECT_EQ(out(4000000000u), "4000000000");
    EXPECT_EQ(out(static_cast<unsigned char>(200)), "200");
    EXPECT_EQ(out('c'), "c");
    EXPECT_EQ(out(LLONG_MIN), "-9223372036854775808");
    EXPECT_EQ(out(4096.7), "4.1e+03");
    EXPECT_EQ(out(0.05f), "0.05");
    EXPECT_EQ(out(true), "yes");
    EXPECT_EQ(out(false), "no");
    EXPECT_EQ(out(static_cast<const void*>(nullptr)), "NULL");
    EXPECT_EQ(out(reinterpret_cast<const void*>(0x7ffc00abcdeful)), "7FFC00ABCDEF");
}

TEST(String, TextToIntegers)
{
    const struct {
        const char* text;
        bool good;
        int value;
    } cases[] = {
        {"0Xff", true, 255},
        {"0xFFFFFFFF", true, -1},
        {"0", true, 0},
        {"017", true, 17}, // a leading zero does not mean octal
        {" 12 pixels", true, 12},
        {"-5", true, -5},
        {"", false, 99},
        {"0x", false, 99},
        {"0xg", false, 99},
        {"99999999999", true, INT_MAX},
        {"-99999999999", true, INT_MIN},
    };
    for (const auto& c : cases) {
        qkString text(c.text);
        int value = 99;
        value << text;
        EXPECT_EQ(text.fail(), !c.good) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
    }
    qkString text("0x123456789ABC");
    long long big = 0;
    big << text;
    EXPECT_EQ(big, 0x123456789ABCll);
}

TEST(String, TextToReals)
{
    qkString text("0.5x");
    double value = 0;
    value << text;
    EXPECT_EQ(value, 0.5);
    text = "half";
    text.setFail(false);
    float narrow = 3;
    narrow << text;
    EXPECT_TRUE(text.fail());
    EXPECT_EQ(narrow, 3);
    text = "1e2";
    narrow << text;
    EXPECT_FALSE(text.fail());
    EXPECT_EQ(narrow, 100);
}

TEST(String, TextToBool)
{
    const struct {
        const char* text;
        bool value, good;
    } cases[] = {{"TRUE", true, true}, {"1", true, true},   {" y", true, true},   {"tra", true, true},
                 {"no", false, true},  {"0", false, true},  {"F", false, true},   {"2", false, false},
                 {"", false, false},   {" ", false, false}, {"10", false, false}, {"on", false, false}};
    for (const auto& c : cases) {
        qkString text(c.text);
        text.setFail(c.good);
        bool value = !c.value;
        value << text;
        EXPECT_EQ(value, c.value) << c.text;
        EXPECT_EQ(text.fail(), !c.good) << c.text;
    }
}

const int s_values[] = {1, 2, 6, 8};
const char* const s_names[] = {"qovAlgOne", "qovAlgTwo", "qovAlgTwoThree", "qovAlgBit"};

TEST(String, NamesMayBeAbbreviatedWithAndWithoutTheirPrefix)
{
    const std::pair<const char*, int> cases[] = {{"one", 1}, {"QOVALGT", 2}, {"twoth", 6}, {"qovalgb", 8},
                                                 {"", 1},    {"three", 0},   {"lgOne", 0}, {"onee", 0}};
    for (const auto& [name, value] : cases) { // an empty name fits everything
        qkString text(name);
        EXPECT_EQ(qkString::enumValue(text, s_values, s_names, 4, 6), value) << name;
        EXPECT_EQ(text.fail(), value == 0) << name;
    }
    EXPECT_EQ(str(qkString::enumString(6, s_values, s_names, 4)), "qovAlgTwoThree");
    EXPECT_EQ(str(qkString::enumString(7, s_values, s_names, 4)), "7");
}

TEST(String, FlagsAreJoinedByAnySeparator)
{
    qkString text("one|two,bit;twoth");
    text.setFail(true);
    EXPECT_EQ(qkString::flagValue(text, s_values, s_names, 4, 6), 1 | 2 | 8 | 6);
    EXPECT_FALSE(text.fail());
    qkString partly("one what bit");
    EXPECT_EQ(qkString::flagValue(partly, s_values, s_names, 4, 6), 1 | 8);
    EXPECT_TRUE(partly.fail());
    EXPECT_EQ(str(qkString::flagString(3, s_values, s_names, 4)), "qovAlgOne|qovAlgTwo|qovAlgTwoThree");
    EXPECT_EQ(str(qkString::flagString(16, s_values, s_names, 4)), "16");
}

TEST(Parse, SplitsWithAndWithoutQuotes)
{
    using Words = std::vector<std::string>;
    const char* const quoting = " \";\t\r\n";
    const struct {
        const char *text, *separators;
        Words words;
    } cases[] = {
        {"", " ", {}},
        {"a  b;c", " ;", {"a", "b", "c"}},
        {"say \"a b\"", " ", {"say", "\"a", "b\""}},
        {"-f \"A B;C\" -o", quoting, {"-f", "A B;C", "-o"}},
        {"\"a \"\"b\"\" c\"", quoting, {"a \"b\" c"}},
        {"x \"\" y", quoting, {"x", "y"}},
        {"\"\"\"\"", quoting, {"\""}},
        {"pre\"in it\"post", quoting, {"pre", "in it", "post"}},
        {"\"open end", quoting, {"open end"}},
    };
    for (const auto& c : cases) {
        qkStringList list;
        list.append("stale");
        const int found = qkString(c.text).parse(list, c.separators);
        Words words;
        for (const qkString& word : list) words.push_back(str(word));
        EXPECT_EQ(words, c.words) << c.text;
        EXPECT_EQ(found, static_cast<int>(c.words.size())) << c.text;
    }
}

TEST(Parse, OutputsAreFilledAsFarAsWordsGo)
{
    qkString a("old"), b("old"), c("old");
    EXPECT_EQ(qkString("8 16 32 64").parse(a, b, " "), 4);
    EXPECT_EQ(str(a) + "," + str(b), "8,16");
    EXPECT_EQ(qkString("8x16").parse(a, b, c, "x"), 2);
    EXPECT_EQ(str(a) + "," + str(b) + "," + str(c), "8,16,");
    EXPECT_EQ(a.parse(a, b, "x"), 1); // the text may be one of its outputs
    EXPECT_EQ(str(a) + "," + str(b), "8,");
    EXPECT_EQ(qkParse("1;2").parse(a, b, ";"), 2);
    EXPECT_EQ(str(a) + "," + str(b), "1,2");
}

TEST(Format, FieldsArePaddedAndNeverCut)
{
    EXPECT_EQ(str(sFormat(qkString("ab"), 5)), "   ab");
    EXPECT_EQ(str(sFormat(qkString("ab"), -5)), "ab   ");
    EXPECT_EQ(str(sFormat(qkString("abcdef"), 5)), "abcdef");
    EXPECT_EQ(str(sFormat(1234.5, 9)), " 1.23e+03");
    EXPECT_EQ(str(sFormat(123456789, 4)), "123456789"); // nine characters may exceed the width
    EXPECT_EQ(str(sFormat(1234567890, 10)), "1234567890");
    EXPECT_EQ(str(sFormat(1234567890, 9)), " 1.23e+09");
    EXPECT_EQ(str(sFormat(-123456789, -9)), "-1.23e+08");
    EXPECT_EQ(str(sFormat(2147483647ll, 12)), "  2147483647");
    EXPECT_EQ(str(sFormat(2147483648ll, 12)), "    2.15e+09");
    EXPECT_EQ(str(qkFormat("%s-%04d", std::string(600, 'x').c_str(), 7)), std::string(600, 'x') + "-0007");
    EXPECT_EQ(str(qkFormat("%s", "")), "");
    EXPECT_EQ(str(cutoffNL("a\nb\n")), "a");
    EXPECT_EQ(str(cutoffNL("ab")), "ab");
}

} // namespace
