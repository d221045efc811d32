// The words behind a command: options, which begin with a minus and take a value each, and file names.
#ifndef TOOLS_ARGUMENTS_H
#define TOOLS_ARGUMENTS_H

#include <map>
#include <string>
#include <vector>

class Arguments {
public:
    // Refuses options that are not in `known`, options without a value, and another number of files.
    Arguments(const std::vector<std::string>& words, const std::vector<std::string>& known, size_t files);

    bool has(const std::string& option) const { return m_values.count(option) != 0; }
    const std::string& value(const std::string& option) const { return m_values.at(option); }
    int number(const std::string& option, int from, int to, int otherwise) const;
    const std::string& file(size_t index) const { return m_files[index]; }

private:
    std::map<std::string, std::string> m_values;
    std::vector<std::string> m_files;
};

// Capitals make no difference in values.
bool sameWord(const std::string& a, const std::string& b);

[[noreturn]] void refuseValue(const std::string& option, const std::string& value, const std::string& wanted);

// The entry of a table whose `name` is the option's value; refuses a value that no entry has. Without the
// option, the first entry.
template <class Entry, size_t N>
const Entry& choose(const Entry (&table)[N], const Arguments& arguments, const std::string& option)
{
    if (!arguments.has(option)) return table[0];
    std::string names;
    for (const Entry& entry : table) {
        if (sameWord(entry.name, arguments.value(option))) return entry;
        names += names.empty() ? entry.name : std::string(", ") + entry.name;
    }
    refuseValue(option, arguments.value(option), "one of " + names);
}

#endif
