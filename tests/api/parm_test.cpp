#include "qkparm.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <initializer_list>

#include "support/capture.h"

// Declared behind the templates that use them, as the data layer does it.
qkString& operator<<(qkString& text, const QovSize& size)
{
    return text << size.width << "x" << size.height;
}

void operator<<(QovSize& size, qkString& text)
{
    text.setFail(std::sscanf(text.c_str(), "%dx%d", &size.width, &size.height) != 2);
}

namespace {

// All values, as text with blanks between; at most 100, so that an endless one shows.
template <class T>
std::string walk(qkDefault_NSC<T>& parm)
{
    std::string text;
    int n = 0;
    for (bool more = parm.firstValue(); more && n < 100; more = parm.nextValue(), n++)
        text += (n ? " " : "") + std::string(parm.valueString().c_str());
    return text;
}

// The message of the exception that translate throws; empty if there is none.
std::string refusal(qkParameter& parm, const char* text)
{
    try {
        parm.translate(text);
    } catch (const qkException& e) {
        return e.info();
    }
    return "";
}

// A new parameter of the same kind that reads what this one prints must walk through the same values.
template <class T>
void expectReplay(qkIterator_NSC<T>& from, qkIterator_NSC<T>& to)
{
    const qkString stored = from.defaultString();
    EXPECT_EQ(refusal(to, stored.c_str()), "") << stored.c_str();
    EXPECT_EQ(walk(to), walk(from)) << stored.c_str();
    EXPECT_STREQ(to.defaultString().c_str(), stored.c_str());
}

TEST(StepIterator, RulesAndLists)
{
    const char* const cases[][3] = {
        {"1; 8; *2", "1 2 4 8", "for (n = 1; n <= 8; *2)"},
        {"1 9 +3", "1 4 7", "for (n = 1; n <= 9; +3)"},
        {"8; 1; +-3", "8 5 2", "for (n = 8; n >= 1; +-3)"},
        {"1; 8; --7", "1 8", "for (n = 1; n <= 8; --7)"},
        {"-8; -64; *2", "-8 -16 -32 -64", "for (n = -8; n >= -64; *2)"},
        {"8; 8; *2", "8", "for (n = 8; n <= 8; *2)"},
        {"0x10; 0x40; *2", "16 32 64", "for (n = 16; n <= 64; *2)"},
        {"for (n = 8; n <= 2048; *4)", "8 32 128 512 2048", "for (n = 8; n <= 2048; *4)"},
        {" for (x y = 4; x y >= -4; -4) ", "4 0 -4", "for (n = 4; n >= -4; -4)"},
        {"3; 5; 7; -9", "3 5 7 -9", "3; 5; 7; -9"},
        {"64", "64", "64"},
        // The last step would leave the 32-bit numbers.
        {"1; 2147483647; *1000", "1 1000 1000000 1000000000", "for (n = 1; n <= 2147483647; *1000)"},
        {"2147483646; 2147483647; +2147483647", "2147483646",
         "for (n = 2147483646; n <= 2147483647; +2147483647)"},
        {"-2147483647; -2147483648; -2", "-2147483647", "for (n = -2147483647; n >= -2147483648; -2)"},
    };
    for (const auto& [text, values, stored] : cases) {
        qkStepIterator<int> parm("n", ""), replayed("n", "");
        EXPECT_EQ(refusal(parm, text), "") << text;
        EXPECT_EQ(walk(parm), values) << text;
        EXPECT_STREQ(parm.defaultString().c_str(), stored) << text;
        expectReplay(parm, replayed);
    }
}

TEST(StepIterator, RefusalsKeepTheOldRule)
{
    const char* const conflict = "Conflict between iterator limits and operation";
    const std::pair<const char*, const char*> cases[] = {
        {"1; 8; +-1", conflict},
        {"8; 1; --1", conflict},
        {"0; 8; *2", conflict},
        {"8; -1; *2", conflict},
        {"1; 8; +0", conflict},
        {"1; 8; -0", conflict},
        {"1; 8; *1", conflict},
        {"64; 8; *2", conflict},
        {"-64; -8; *2", conflict},
        {"8; 8; +0", conflict},
        {"for (n = 8; n >= 1; *2)", conflict},
        {"a; 8; *2", "Invalid first value = a"},
        {"1; b; *2", "Invalid last value = b"},
        {"1; 8; *c", "Invalid step = c"},
        {"1; x; 8", "Invalid value of n = x"},
        {"for (n = 1; n <= 8)", "Invalid value of n = for (n = 1"},
        {"", "Empty iterator definition"},
    };
    for (const auto& [text, message] : cases) {
        qkStepIterator<int> parm("n", "");
        parm.setStep(2, 8, '*', 2);
        EXPECT_EQ(refusal(parm, text), message) << text;
        EXPECT_EQ(walk(parm), "2 4 8") << text;
    }
    qkStepIterator<int> parm("n", "");
    EXPECT_THROW(parm.setStep(1, 8, '/', 2), qkException);
}

TEST(StepIterator, ProgramLists)
{
    qkStepIterator<int> parm("n", "Number"), replayed("n", "");
    parm.setStep(1, 4, '+', 1);
    EXPECT_STREQ(parm.description().c_str(), "for n = 1; n <= 4; +1");
    EXPECT_STREQ(parm.prompt().c_str(), "for Number");
    parm.reset();
    EXPECT_EQ(walk(parm), "");
    for (int value : {8, 1, -1}) parm.add(value);
    EXPECT_EQ(walk(parm), "8 1 -1");
    EXPECT_STREQ(parm.prompt().c_str(), "Number");
    expectReplay(parm, replayed); // the third number must not be taken for a step
}

// A value set from outside, as the cache iterator does, must not lead the walk astray.
TEST(StepIterator, SetValueDoesNotDisturbTheWalk)
{
    qkStepIterator<int> parm("n", "");
    parm.setStep(1, 4, '*', 2);
    parm.firstValue();
    parm.setValue(0);
    EXPECT_TRUE(parm.nextValue());
    EXPECT_EQ(parm.value(), 2);
}

template <class T>
void expectList(std::initializer_list<T> values, const char* stored)
{
    qkIterator<T> parm("p", ""), replayed("p", "");
    for (const T& value : values) parm.add(value);
    EXPECT_STREQ(parm.defaultString().c_str(), stored);
    EXPECT_STREQ(parm.description().c_str(), (std::string("p: ") + stored).c_str());
    expectReplay(parm, replayed);
}

TEST(Iterator, ListsOfEveryType)
{
    expectList<double>({0.0, 1.5, 100.0}, "0; 1.5; 100");
    expectList<bool>({true, false}, "yes; no");
    expectList<qkString>({"rose.bmp", "a b.bmp"}, "rose.bmp; a b.bmp");
    expectList<QovSize>({{64, 64}, {720, 480}}, "64x64; 720x480");
    expectList<QovHintAlgorithm>({qovAlgHintAccurate}, "2");
}

TEST(Iterator, AGoodListTakesTheOldOnesPlaceABadOneDoesNot)
{
    qkIterator<int> parm("n", "");
    parm.add(1);
    parm.add(2);
    parm.firstValue();
    EXPECT_EQ(refusal(parm, "5; six; 7"), "Invalid value of n = six");
    EXPECT_EQ(refusal(parm, ""), "Empty iterator definition");
    EXPECT_TRUE(parm.nextValue()) << "the walk over the old list goes on";
    EXPECT_EQ(parm.value(), 2);
    EXPECT_EQ(refusal(parm, "\t5;6 ;7;"), "");
    EXPECT_EQ(walk(parm), "5 6 7");
    parm.firstValue();
    EXPECT_EQ(refusal(parm, "9"), "");
    EXPECT_TRUE(parm.nextValue()) << "a new list starts at its first value";
    EXPECT_EQ(parm.value(), 9);
}

TEST(Iterator, OnlyResetForgetsTheValues)
{
    qkIterator<int> parm("n", "");
    parm.add(3);
    EXPECT_TRUE(parm.firstValue());
    EXPECT_TRUE(parm.firstValue());
    parm.resetIterator();
    EXPECT_EQ(walk(parm), "3");
    EXPECT_EQ(parm.value(), 3) << "the end leaves the last value";
    parm.firstValue();
    parm.reset();
    EXPECT_EQ(parm.value(), 0);
    EXPECT_FALSE(parm.nextValue());
    EXPECT_FALSE(parm.firstValue());
}

TEST(Default, HasExactlyOneValue)
{
    qkDefault<int> parm(5, "p", "");
    for (int round = 0; round < 2; round++) EXPECT_EQ(walk(parm), "5");
    parm.firstValue();
    EXPECT_TRUE(parm.firstValue()) << "also from the middle of a walk";
    EXPECT_STREQ(parm.prompt().c_str(), "p") << "the name stands in for the question";
    parm.setName("m", "Number, %");
    EXPECT_STREQ(parm.prompt().c_str(), "Number, %");
    EXPECT_STREQ(parm.description().c_str(), "m: 5");
}

TEST(Default, TextsOfEveryType)
{
    qkDefault<int> number(1, "number", "");
    qkDefault<double> real(1, "real", "");
    qkDefault<bool> flag(false, "flag", "");
    qkDefault<qkString> word("w", "word", "");
    qkDefault<QovSize> size({1, 1}, "size", "");
    qkDefault<QovHintAlgorithm> hint(qovAlgHintNone, "hint", "");
    const struct {
        qkParameter& parm;
        const char* text;
        const char* value;
        const char* bad; // null: any text will do
    } cases[] = {
        {number, "0x1F", "31", "x"},       {real, "2.5e3", "2.5e+03", "?"}, {flag, "TRUE", "yes", "2"},
        {word, "a ; b", "a ; b", nullptr}, {size, "3x4", "3x4", "3"},       {hint, "2", "2", "none"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(refusal(c.parm, c.text), "") << c.text;
        EXPECT_STREQ(c.parm.valueString().c_str(), c.value);
        EXPECT_STREQ(c.parm.defaultString().c_str(), c.value) << "the default must be storable";
        if (!c.bad) continue;
        EXPECT_EQ(refusal(c.parm, c.bad),
                  std::string("Invalid value of ") + c.parm.name().c_str() + ": " + c.bad);
        EXPECT_STREQ(c.parm.valueString().c_str(), c.value) << "a bad text must not change the value";
    }
}

TEST(MapDefault, BeginningsOfNamesInAnyCase)
{
    qkMapDefault<int> parm(1, "Method", "");
    const char* const names[] = {"Auto", "Manual", "Statistic", "Max"};
    for (int i = 0; i < 4; i++) parm[i] = names[i];
    parm[0] = "Automatic";
    EXPECT_STREQ(parm.validString().c_str(), "Automatic|Manual|Statistic|Max");
    const std::pair<const char*, int> cases[] = {{"man", 1}, {"MANUAL", 1}, {"m", 1},  {"max", 3},
                                                 {"", 0},    {"anual", -1}, {"1", -1}, {"Manuals", -1}};
    for (const auto& [text, value] : cases) { // -1: refused
        parm.setValue(3);
        EXPECT_EQ(refusal(parm, text) != "", value < 0) << text;
        EXPECT_EQ(parm.value(), value < 0 ? 3 : value) << text;
    }
    EXPECT_STREQ(parm.valueToString(77).c_str(), "");
}

TEST(EnumIterator, NamesByTable)
{
    static const int values[] = {0, 1, 2};
    static const char* const names[] = {"hintNone", "hintFast", "hintAccurate"};
    qkEnumIterator<QovHintAlgorithm> parm(values, names, 3, 4);
    parm.setName("hint", "");
    EXPECT_STREQ(parm.prompt().c_str(), "hint {hintNone|hintFast|hintAccurate}");
    parm.add(qovAlgHintAccurate);
    parm.add(static_cast<QovHintAlgorithm>(3));
    EXPECT_EQ(walk(parm), "hintAccurate");
    EXPECT_EQ(refusal(parm, "fast; HINTN"), "");
    EXPECT_EQ(walk(parm), "hintFast hintNone");

    parm.resetValidation();
    qkList<QovHintAlgorithm> allowed;
    allowed.append(qovAlgHintFast);
    parm.addValidation(&allowed);
    parm.addValidation(qovAlgHintNone);
    parm.addValidation(qovAlgHintNone);
    EXPECT_STREQ(parm.validString().c_str(), "hintFast|hintNone");
    EXPECT_EQ(refusal(parm, "fast; accurate"), "Invalid value of hint = accurate");
    EXPECT_EQ(walk(parm), "hintFast hintNone");
    parm.initValidation();
    EXPECT_EQ(refusal(parm, "accurate"), "");
}

TEST(EnumIterator, NumbersWithoutTable)
{
    qkEnumIterator<int> parm, replayed;
    for (int value : {100, 25}) parm.add(value);
    EXPECT_STREQ(parm.validString().c_str(), "");
    EXPECT_EQ(refusal(parm, "80; 75"), "");
    expectReplay(parm, replayed);
    EXPECT_EQ(refusal(parm, "best"), "Invalid value of  = best");
}

TEST(MapIterator, NamesAndPlainValues)
{
    const auto fill = [](qkMapIterator<int>& parm) {
        parm.setName("level", "");
        parm[-1] = "max";
        parm[5] = "medium";
        parm.addValidation(0);
        parm.addValidation(12);
    };
    qkMapIterator<int> parm, replayed;
    fill(parm);
    fill(replayed);
    for (int value : {0, 12, 3, -1}) parm.add(value);
    EXPECT_EQ(walk(parm), "0 12 max") << "3 is not valid";
    expectReplay(parm, replayed);
    EXPECT_STREQ(parm.validString().c_str(), "max|medium|0|12");
    EXPECT_EQ(refusal(parm, "MED; m; 12"), "");
    EXPECT_EQ(walk(parm), "medium max 12");
    for (const char* bad : {"1", "5", "-1", "03", "maximum"})
        EXPECT_EQ(refusal(parm, bad), std::string("Invalid value of level = ") + bad);
    parm.resetMap();
    EXPECT_STREQ(parm.validString().c_str(), "");
    EXPECT_EQ(walk(parm), "5 -1 12") << "the map goes, the values stay";
}

TEST(HMapIterator, FurtherNames)
{
    qkHMapIterator<int> parm;
    parm.setName("color", "");
    parm[34] = "RGB";
    parm.addName(34, "colour");
    parm.addName(18, "grey");
    parm.addName(18, "gray");
    EXPECT_STREQ(parm.validString().c_str(), "RGB");
    parm.add(18);
    parm.add(99);
    EXPECT_EQ(walk(parm), "grey");
    EXPECT_EQ(refusal(parm, "gra; col; rgb"), "");
    EXPECT_EQ(walk(parm), "grey RGB RGB");
    EXPECT_EQ(refusal(parm, "blue"), "Invalid value of color = blue");
    parm.resetMap();
    EXPECT_NE(refusal(parm, "grey"), "");
}

// One line of a table with the given parameter in it.
class Placed : public qkDefault<int> {
public:
    using qkDefault<int>::qkDefault;
    int colmIndex() const override { return 2; }
};

TEST(Parameter, TableCells)
{
    qkDefault<int> plain(7, "plain", ""), nameless(7, "", ""), quoted(7, "quoted", "");
    Placed placed(7, "placed", "");
    quoted.setQuoted(true);
    const struct {
        qkParameter& parm;
        const char *cell, *nameCell;
    } cases[] = {
        {plain, "f,7,-\n", "f,plain,-\n"},
        {nameless, "f,-,-\n", "f,-,-\n"},
        {quoted, "f, \"7\",-\n", "f,quoted,-\n"},
        {placed, "f,-,7\n", "f,-,placed\n"},
    };
    for (const auto& c : cases) {
        qkCStream table;
        SinkText<qkCStream> written(table);
        for (bool name : {false, true}) {
            table << "f";
            if (name)
                c.parm.nameToCStream(table);
            else
                c.parm.toCStream(table);
            table.setNumColm(3);
            table.lineOut(0);
        }
        EXPECT_EQ(written.take(), std::string(c.cell) + c.nameCell);
    }
}

TEST(Parameter, ConsoleText)
{
    LevelCapture console(g_ostrm, PERF);
    qkDefault<int> nameless(7, "", "");
    qkDefault<double> named(0.5, "x", "");
    for (MessageLevel level : {PERF, INFO}) {
        g_ostrm << level;
        nameless.toOStream(g_ostrm);
        named.toOStream(g_ostrm);
        g_ostrm << END_MSG;
        EXPECT_EQ(console.take(), level == PERF ? "x=0.5 " : "") << "the level is the caller's";
    }
}

TEST(Parameter, DeprecatedSpellings)
{
    qkIterator<QovSize> parm("size", "");
    EXPECT_FALSE(parm.isDeprecatedParm());
    EXPECT_FALSE(parm.setDeprecatedFlag(true));
    parm.addDeprecated({8, 8}, "block");
    parm.addDeprecated({64, 64}, "small");
    EXPECT_TRUE(parm.isDeprecatedParm());
    const std::pair<QovSize, const char*> cases[] = {
        {{64, 64}, "small"}, {{64, 8}, nullptr}, {{8, 8}, "block"}};
    for (const auto& [value, spelling] : cases) {
        parm.setValue(value);
        EXPECT_EQ(parm.isDeprecatedValue(), spelling != nullptr);
        for (bool on : {true, false}) {
            EXPECT_EQ(parm.setDeprecatedFlag(on), on && spelling);
            qkCStream table;
            qkString cell;
            parm.toCStream(table);
            table.getColm(0, cell);
            EXPECT_STREQ(cell.c_str(), on && spelling ? spelling : parm.valueString().c_str());
        }
    }
}

} // namespace
