#include "arguments.h"

#include <strings.h>

#include <algorithm>
#include <charconv>

#include "failure.h"

Arguments::Arguments(const std::vector<std::string>& words, const std::vector<std::string>& known,
                     size_t files)
{
    for (size_t i = 0; i < words.size(); i++) {
        const std::string& word = words[i];
        if (word.empty() || word[0] != '-') {
            m_files.push_back(word);
            continue;
        }
        if (std::find(known.begin(), known.end(), word) == known.end())
            throw UsageFailure("unknown option " + word + "; -h shows those there are");
        if (i + 1 == words.size()) throw UsageFailure("option " + word + " lacks its value");
        m_values[word] = words[++i];
    }
    if (m_files.size() != files)
        throw UsageFailure(std::to_string(m_files.size()) + " file names where " + std::to_string(files) +
                           " are wanted; -h shows how they stand");
}

int Arguments::number(const std::string& option, int from, int to, int otherwise) const
{
    if (!has(option)) return otherwise;
    const std::string& text = value(option);
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < from || number > to)
        refuseValue(option, text, "a number from " + std::to_string(from) + " to " + std::to_string(to));
    return number;
}

bool sameWord(const std::string& a, const std::string& b)
{
    return strcasecmp(a.c_str(), b.c_str()) == 0;
}

void refuseValue(const std::string& option, const std::string& value, const std::string& wanted)
{
    throw UsageFailure(option + " '" + value + "' is not " + wanted);
}
