#include "commandline.h"

#include <charconv>
#include <cstdio>
#include <cstring>

namespace jpeg2000 {

namespace {

// The word under the parser's eyes: what stands behind the key's name, and the words that follow.
struct Words {
    const char* rest;
    const char* const* next;
    const char* const* end;

    bool takeNext(const char*& word)
    {
        if (next == end) return false;
        word = *next++;
        return true;
    }
};

bool takeValue(CommandLine::Help, Words&)
{
    return false;
}

bool takeValue(bool* target, Words& words)
{
    if (strcmp(words.rest, "+") != 0 && strcmp(words.rest, "-") != 0) return false;
    *target = *words.rest == '+';
    return true;
}

template <class Number>
bool takeValue(Number* target, Words& words)
{
    const char* text = words.rest;
    if (!*text && !words.takeNext(text)) return false;
    Number value{};
    if (!Parse(text, value) || *text) return false;
    *target = value;
    return true;
}

bool takeValue(FixedString<char>* target, Words& words)
{
    const char* text = nullptr;
    if (*words.rest || !words.takeNext(text)) return false;
    *target = text;
    return true;
}

template <class Number>
bool parseNumber(const char*& cursor, Number& value)
{
    const char* start = cursor;
    if (*start == '+') start++;
    const bool isSigned = start == cursor && *start == '-';
    const char first = start[isSigned];
    if (first != '.' && (first < '0' || first > '9')) return false; // no names of infinities
    const auto [end, error] = std::from_chars(start, start + strlen(start), value);
    if (error != std::errc()) return false;
    cursor = end;
    return true;
}

} // namespace

void CommandLine::add(const char* name, const char* description, Target target)
{
    Key& key = m_keys.PushBack();
    key.name = name;
    key.description = description;
    key.target = target;
}

bool CommandLine::IsKeyExist(const char* name) const
{
    for (const Key& key : m_keys)
        if (key.name == name) return key.isFound;
    return false;
}

CommandLine::Key* CommandLine::FindNextKey(const char* text) const
{
    Key* longest = nullptr;
    for (Key& key : m_keys) {
        const bool isPrefix = strncmp(key.name, text, key.name.Length()) == 0;
        if (isPrefix && (!longest || key.name.Length() > longest->name.Length())) longest = &key;
    }
    return longest;
}

bool CommandLine::Parse(const char* const* argv, int argc)
{
    if (argc < 1) return false;
    Words words{nullptr, argv + 1, argv + argc};
    for (const char* word = nullptr; words.takeNext(word);) {
        Key* key = *word == '-' ? FindNextKey(word + 1) : nullptr;
        if (!key) return false;
        words.rest = word + 1 + key->name.Length();
        key->isFound = true;
        if (std::holds_alternative<Help>(key->target) && !*words.rest) HelpMessage();
        if (!std::visit([&words](auto target) { return takeValue(target, words); }, key->target))
            return false;
    }
    return true;
}

void CommandLine::HelpMessage() const
{
    printf("Command line options:\n");
    for (const Key& key : m_keys)
        printf("  -%s  %s\n", static_cast<const char*>(key.name), static_cast<const char*>(key.description));
}

bool Parse(const char*& cursor, int& value)
{
    return parseNumber(cursor, value);
}

bool Parse(const char*& cursor, double& value)
{
    return parseNumber(cursor, value);
}

} // namespace jpeg2000
