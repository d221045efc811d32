#include "qkcommand.h"

#include <cstring>

#include "qkstream.h"

// The double quote switches quoting on: a word in quotes may hold separators.
static const char* const wordSeparators = " \";\t\r\n";

bool isKeyString(const qkString& word)
{
    return word.length() >= 2 && (word[0] == '-' || word[0] == '/');
}

bool qkCommandKey::getArg(char key, qkString& arg) const
{
    if (m_key != key) return false;
    arg = m_arg;
    return true;
}

bool qkCommandKey::setArg(const qkString& word, const qkString& next)
{
    if (!isKeyString(word)) return false;
    m_key = word[1];
    qkString sign;
    qkString rest = word.substr(2);
    if (!rest.empty() && std::strchr("-+=", rest[0])) {
        sign.assign(rest[0]);
        rest = rest.substr(1);
    }
    m_arg = sign + (rest.empty() ? next : rest);
    return true;
}

qkCommandList::~qkCommandList() = default;

void qkCommandList::setArgs(int argc, char** argv)
{
    qkStringList words;
    for (int i = 1; i < argc; i++) words.append(argv[i]);
    setArgs(words);
}

void qkCommandList::setArgs(const char* text)
{
    insertArgs(text, end());
}

void qkCommandList::setArgs(const qkStringList& words)
{
    insertArgs(words, end());
}

void qkCommandList::insertArgs(const char* text, iterator where)
{
    qkStringList words;
    qkString(text).parse(words, wordSeparators);
    insertArgs(words, where);
}

// A word behind a key that is no key itself belongs to that key, also if the key has its argument attached
// and has no use for it.
void qkCommandList::insertArgs(const qkStringList& words, iterator where)
{
    for (qkStringList::iterator word = words.begin(); word != words.end();) {
        const qkString& key = *word;
        ++word;
        qkString next;
        if (word != words.end() && !isKeyString(*word)) {
            next = *word;
            ++word;
        }
        insertArg(key, next, where);
    }
}

bool qkCommandList::setArg(const qkString& word, const qkString& next)
{
    return insertArg(word, next, end());
}

void qkCommandList::setArg(char key, const qkString& arg)
{
    qkCommandKey entry;
    entry.m_key = key;
    entry.m_arg = arg;
    append(entry);
}

bool qkCommandList::insertArg(const qkString& word, const qkString& next, iterator where)
{
    qkCommandKey entry;
    if (!entry.setArg(word, next)) return false;
    insert(where, entry);
    return true;
}

bool qkCommandList::isKey(char key) const
{
    for (const qkCommandKey& entry : *this) {
        if (entry.m_key == key) return true;
    }
    return false;
}

bool qkCommandList::getArg(char key, qkString& arg) const
{
    for (iterator i = end(); i != begin();) {
        --i;
        if (i->getArg(key, arg)) return true;
    }
    return false;
}

void qkCommandList::insertFromFile(const qkString& name, iterator where)
{
    i_stream file(name, ioRead, true);
    if (!file.isOpen()) return;
    qkString text;
    qkString line;
    while (file.getline(line)) text << line << " ";
    insertArgs(text.c_str(), where);
}

// Masks of the letters found anywhere in `arg`, combined.
struct LetterMask {
    char letter;
    int mask;
};

static int combineLetters(const qkString& arg, const LetterMask* table, int count)
{
    int mask = 0;
    for (int i = 0; i < arg.length(); i++) {
        for (int row = 0; row < count; row++) {
            if (table[row].letter == arg[i]) mask |= table[row].mask;
        }
    }
    return mask;
}

int getAskLevel(const qkString& arg)
{
    static const LetterMask letters[] = {{'T', 1}, {'P', 2}, {'M', 4}};
    const int mask = combineLetters(arg, letters, 3);
    return mask ? mask : 15;
}

// A level brings those below it, but tracing, memory and data leave the measurement process out.
int getLevel(const qkString& arg)
{
    static const LetterMask letters[] = {
        {'E', ERR},
        {'W', ERR | WARN},
        {'P', ERR | WARN | PERF},
        {'I', ERR | WARN | PERF | INFO},
        {'T', ERR | WARN | PERF | TRACE},
        {'M', ERR | WARN | PERF | MEM},
        {'D', ERR | WARN | PERF | DATA},
    };
    return combineLetters(arg, letters, 7);
}

int getPriority(const qkString& arg)
{
    switch (arg[0]) {
    case 'H': return 1;
    case 'N': return 2;
    case 'L': return 3;
    default: return 0;
    }
}
