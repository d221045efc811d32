// Keys of a command line, each bound to a variable.
#ifndef JPEG2000_COMMANDLINE_H
#define JPEG2000_COMMANDLINE_H

#include "fixedstring.h"
#include "list.h"

#include <variant>

namespace jpeg2000 {

class CommandLine {
public:
    struct Help {};
    // The type of a key and the variable that takes its value.
    using Target = std::variant<Help, bool*, int*, double*, FixedString<char>*>;

    struct Key {
        FixedString<char> name, description;
        Target target;
        bool isFound = false;
    };

    // Of a name, without the minus: "name+" and "name-" for a bool; a number behind the name or as the next
    // word; a text as the next word.
    void AddKey(const char* name, const char* description, bool& target) { add(name, description, &target); }
    void AddKey(const char* name, const char* description, int& target) { add(name, description, &target); }
    void AddKey(const char* name, const char* description, double& target)
    {
        add(name, description, &target);
    }
    void AddKey(const char* name, const char* description, FixedString<char>& target)
    {
        add(name, description, &target);
    }
    // Prints the keys and ends the parse, as a fault does.
    void AddHelpKey(const char* name, const char* description) { add(name, description, Help{}); }

    // Whether it stood in the command line.
    bool IsKeyExist(const char* name) const;
    // The longest key with which the text begins; null without one.
    Key* FindNextKey(const char* text) const;
    // argv[0] is passed over. False at the first word that is no key with a value of its type.
    bool Parse(const char* const* argv, int argc);
    void HelpMessage() const; // to the standard output

private:
    void add(const char* name, const char* description, Target target);

    List<Key> m_keys;
};

// Read a decimal number and move the cursor behind it; false, with nothing changed, where there is none or
// where it does not fit.
bool Parse(const char*& cursor, int& value);
bool Parse(const char*& cursor, double& value);

} // namespace jpeg2000

#endif
