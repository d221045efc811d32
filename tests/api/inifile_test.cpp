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
    const char* const cases[][3] = {
        {"Quolkit", "early", absent},  {"Quolkit", "key", "value"}, {"Quolkit", "Key", absent},
        {"Quolkit", "chain", "a=b=c"}, {"Quolkit", "bare", "~~~"},  {"Quolkit", "url", "http:"},
        {"Quolkit", "empty", ""},      {"Quolkit", "twice", "2"},   {"Quolkit", "late", "1"},
        {"f1", "key", "other"},        {"f1", "dos", "yes\r"},      {"f1", "[broken", "~~~"},
        {"f1", "late", absent},        {"hidden", "bare", absent},  {"quolkit", "key", absent},
    };
    qkIniFile ini;
    ASSERT_TRUE(ini.open(file.path(), false));
    for (const auto& [section, key, value] : cases) {
        EXPECT_STREQ(ini.read(section, key, absent).c_str(), value) << section << " " << key;
        EXPECT_EQ(ini.valueExist(section, key), value != absent) << section << " " << key;
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
        ini.close();
    }
    EXPECT_EQ(file.read(), "\n[a]\nk2=2\n\n[c]\n") << "a second close must not write the emptied image";
}

TEST(IniFile, WhatDoesNotOpenIsNotWritten)
{
    LevelCapture console(g_ostrm);
    qkIniFile ini;
    EXPECT_FALSE(ini.open("/no/such/directory/x.ini", true));
    console.take();
    ini.close();
    EXPECT_EQ(console.take(), "");
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
