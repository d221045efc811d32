// Console text and tables of a run, taken apart for comparison.
#ifndef TESTS_CLI_REPORTS_H
#define TESTS_CLI_REPORTS_H

#include <gtest/gtest.h>
#include <regex.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

using Cells = std::vector<std::string>;

inline Cells split(const std::string& text, char separator)
{
    Cells cells;
    std::istringstream in(text);
    for (std::string cell; std::getline(in, cell, separator);) cells.push_back(cell);
    return cells;
}

inline Cells linesOf(const std::string& text)
{
    return split(text, '\n');
}

// One text for all cells in any order, of which a failed comparison shows the few lines that differ.
inline std::string inAnyOrder(Cells cells)
{
    std::sort(cells.begin(), cells.end());
    std::string text;
    for (const std::string& cell : cells) text += cell + "\n";
    return text;
}

// The words of a text, with braces as in a shell: "a{b,c}" stands for "ab ac". Braces do not nest.
inline Cells expanded(const std::string& text)
{
    Cells words;
    for (const std::string& word : split(text, ' ')) {
        const size_t open = word.find('{'), close = word.find('}');
        if (open == std::string::npos) {
            words.push_back(word);
            continue;
        }
        for (const std::string& choice : split(word.substr(open + 1, close - open - 1), ',')) {
            const Cells more = expanded(word.substr(0, open) + choice + word.substr(close + 1));
            words.insert(words.end(), more.begin(), more.end());
        }
    }
    return words;
}

// The lines that begin with `start`.
inline Cells linesWith(const std::string& text, const std::string& start)
{
    Cells found;
    for (const std::string& line : linesOf(text)) {
        if (line.starts_with(start)) found.push_back(line);
    }
    return found;
}

// A table: `title` holds the lines "key,value" before `head`, the first line that begins as told.
struct Table {
    Table(const std::string& text, const std::string& headBegins)
    {
        bool inTitle = true;
        for (const std::string& line : linesOf(text)) {
            if (inTitle && line.starts_with(headBegins)) {
                head = line;
                inTitle = false;
            } else {
                (inTitle ? title : rows).push_back(line);
            }
        }
    }

    Cells title;
    std::string head;
    Cells rows;
};

inline Table performanceTable(const std::string& text)
{
    return Table(text, "funcBase,");
}

// The part of each row that names the function and its parameters.
inline Cells parameterCells(const Table& table)
{
    Cells found;
    for (const std::string& row : table.rows) {
        const Cells cells = split(row, ',');
        std::string part;
        for (size_t i = 0; i < cells.size() && i < 9; i++) part += cells[i] + ",";
        found.push_back(part);
    }
    return found;
}

// The comment column: how a row was measured.
inline Cells comments(const Table& table)
{
    Cells found;
    for (const std::string& row : table.rows) {
        const Cells cells = split(row, ',');
        found.push_back(cells.size() > 9 ? cells[9] : "?");
    }
    return found;
}

const std::string timePattern = "[A-Z][a-z]{2} [A-Z][a-z]{2} [ 1-3][0-9] [0-9:]{8} [0-9]{4}";

// The first match of an extended regular expression and its groups; empty if there is none.
inline Cells matchOf(const std::string& text, const std::string& pattern)
{
    regex_t compiled;
    if (regcomp(&compiled, pattern.c_str(), REG_EXTENDED) != 0) {
        ADD_FAILURE() << "not a regular expression: " << pattern;
        return {};
    }
    std::vector<regmatch_t> groups(compiled.re_nsub + 1);
    const bool found = regexec(&compiled, text.c_str(), groups.size(), groups.data(), 0) == 0;
    regfree(&compiled);
    Cells texts;
    for (const regmatch_t& group : groups) {
        if (!found) break;
        if (group.rm_so < 0)
            texts.emplace_back();
        else
            texts.emplace_back(text.begin() + group.rm_so, text.begin() + group.rm_eo);
    }
    return texts;
}

// `text` with `instead` for all that matches.
inline std::string replaced(const std::string& text, const std::string& pattern, const std::string& instead)
{
    std::string result;
    std::string rest = text;
    for (Cells match; !(match = matchOf(rest, pattern)).empty() && !match[0].empty();) {
        const size_t at = rest.find(match[0]);
        result += rest.substr(0, at) + instead;
        rest.erase(0, at + match[0].size());
    }
    return result + rest;
}

// From the first common parameter on, with stand-ins of fixed width for times of day and measured numbers.
inline std::string withoutNumbers(const std::string& console)
{
    const size_t begin = console.find("\n Method: ");
    std::string text = begin == std::string::npos ? console : console.substr(begin + 1);
    text = replaced(text, timePattern, "Www Mmm dd hh:mm:ss yyyy");
    text = replaced(text, " : [0-9]{2}:[0-9]{2}:[0-9]{2}", " : hh:mm:ss");
    text = replaced(text, "perf=[ 0-9.e+]{9}/", "perf=<clocks>/");
    return replaced(text, "=[ 0-9.]{9} clocks", "=<result> clocks");
}

#endif
