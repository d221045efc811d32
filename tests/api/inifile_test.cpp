#include "qkinifile.h"

#include <gtest/gtest.h>

#include "support/capture.h"
#include "support/tempfile.h"

namespace {

const char* const absent = "<absent>";

TEST(IniFile, ReadsKeysAndSections)
{
    const TempFile file("early = lost // no section yet\n"
                        "[Quolkit]\n"
                        "  key = value // note\n"
                        "chain=a=b=c\n"
                        "//[hidden]\n"
                        "bare // word\n"
                        "url = http://cut\n"
                        "empty =\n"
                        "twice = 1\n"
                        "twice = 2\n"
                        " \t \r\n"
                        "around [ f1 ] ignored\r\n"
                        "key = other\n"
                        "dos = yes\r\n"
                        "[broken\n"
                        "[Quolkit]\n"
                        "late = 1");
    const struct {
        const char* section;
        const char* key;
        const char* value;
    } cases[] = {
        {"Quolkit", "early", absent},  {"Quolkit", "key", "value"}, {"Quolkit", "Key", absent},
        {"Quolkit", "chain", "a=b=c"}, {"Quolkit", "bare", "~~~"},  {"Quolkit", "url", "http:"},
        {"Quolkit", "empty", ""},      {"Quolkit", "twice", "2"},   {"Quolkit", "late", "1"},
        {"f1", "key", "other"},        {"f1", "dos", "yes\r"},      {"f1", "[broken", "~~~"},
        {"f1", "late", absent},        {"hidden", "bare", absent},  {"quolkit", "key", absent},
    };
    qkIniFile ini;
    ASSERT_TRUE(ini.open(file.path(), false));
    for (const auto& c : cases) {
        EXPECT_STREQ(ini.read(c.section, c.key, absent).c_str(), c.value) << c.section << " " << c.key;
        EXPECT_EQ(ini.valueExist(c.section, c.key), c.value != absent) << c.section << " " << c.key;
    }
    EXPECT_TRUE(ini.sectionExist("f1"));
    EXPECT_FALSE(ini.sectionExist("hidden"));
    EXPECT_EQ(ini.getSectionValues("hidden"), nullptr);
    ASSERT_NE(ini.getSectionValues("f1"), nullptr);
    EXPECT_EQ(ini.getSectionValues("f1")->count(), 3);
}

// The whole text counts: order, empty sections, bare keys, and which comments survive.
TEST(IniFile, RewritesInTheOrderOfFirstAppearance)
{
    const TempFile file("lost = 1\n[b]\nold = 1 // gone\n \t \nbare\n]x[empty]\n[a]\nx = 1\n[b]\nmore = 2\n");
    {
        qkIniFile ini;
        ASSERT_TRUE(ini.open(file.path(), true));
        ini.write("b", " new ", "3", "one|two");
        ini.write("b", "new", "4", "not this one");
        ini.write("b", "old", "5", "no comment for an old key");
        ini.write("a", "y", "", "");
        ini.write("a", "", "no key", "");
        ini.write("fresh");
        ini.write("fresh", "word");
        ini.write("last", "k", "v", "");
    }
    EXPECT_EQ(file.read(), "\n[b]\nold=5\nbare\nmore=2\nnew=4\t// one|two\n"
                           "\n[empty]\n"
                           "\n[a]\nx=1\ny=\n"
                           "\n[fresh]\nword\n"
                           "\n[last]\nk=v\n");
}

TEST(IniFile, RewritingWhatWasWrittenChangesNothing)
{
    const TempFile file("\n[a]\nk=v\nbare\n\n[b]\n");
    const std::string before = file.read();
    qkIniFile ini;
    ASSERT_TRUE(ini.open(file.path(), true));
    ini.close();
    EXPECT_EQ(file.read(), before);
    ini.close();
    EXPECT_EQ(file.read(), before) << "a second close must not write the emptied image";
}

TEST(IniFile, ErasesSectionsAndKeys)
{
    const TempFile file("[a]\nk=1\nk2=2\n[b]\nk=3\n[c]\n");
    {
        qkIniFile ini;
        ASSERT_TRUE(ini.open(file.path(), true));
        ini.deleteKey("a", "k");
        ini.deleteKey("a", "unknown");
        ini.deleteKey("unknown", "k");
        ini.eraseSection("b");
        ini.eraseSection("unknown");
    }
    EXPECT_EQ(file.read(), "\n[a]\nk2=2\n\n[c]\n");
}

TEST(IniFile, OpenedToReadLeavesTheFileAlone)
{
    const TempFile file("[a]\nk = 1 // note\n");
    {
        qkIniFile ini;
        ASSERT_TRUE(ini.open(file.path(), false));
        ini.write("a", "k", "2", "");
        EXPECT_STREQ(ini.read("a", "k", "").c_str(), "2");
    }
    EXPECT_EQ(file.read(), "[a]\nk = 1 // note\n");
}

TEST(IniFile, MissingFiles)
{
    const TempFile file;
    LevelCapture console(g_ostrm);
    qkIniFile ini;
    EXPECT_FALSE(ini.open(file.path(), false));
    EXPECT_FALSE(file.exists());
    EXPECT_EQ(console.take().rfind(std::string("-- Can't open file ") + file.path() + " to read", 0), 0u);

    EXPECT_TRUE(ini.open(file.path(), true));
    EXPECT_TRUE(file.exists());
    EXPECT_EQ(console.take(), "") << "a file to be created need not be there";
    ini.write("s", "k", "v", "");
    ini.close();
    EXPECT_EQ(file.read(), "\n[s]\nk=v\n");

    EXPECT_FALSE(ini.open("/no/such/directory/x.ini", true));
    EXPECT_EQ(console.take().rfind("-- Can't open file /no/such/directory/x.ini to write", 0), 0u);
    ini.close();
    EXPECT_EQ(console.take(), "") << "what did not open is not written";
    EXPECT_FALSE(ini.open("/tmp", true)) << "a directory can't be updated";
}

TEST(DataList, KeepsTheLastOfEachName)
{
    qkDataList list;
    list.set(" a = 1 ");
    list.set("b=2");
    list.set("a=x=y");
    list.set("=nameless");
    list.set("no equal sign");
    list.set("  ", "nameless");
    list.set("void=");
    qkString value;
    EXPECT_TRUE(list.get("a", value));
    EXPECT_STREQ(value.c_str(), "x=y");
    EXPECT_TRUE(list.get("void", value));
    EXPECT_STREQ(value.c_str(), "");
    EXPECT_FALSE(list.get("no equal sign", value));
    EXPECT_FALSE(list.get("A", value));
    std::string order;
    for (const qkData& data : list) order += std::string(data.name.c_str()) + ";";
    EXPECT_EQ(order, "b;a;void;");
}

} // namespace
