// Single-letter keys: a command line, a .cfg line, a compiled-in line or an @ file becomes a list of keys
// with their arguments; qkOption is one row of the session's key table.
#ifndef QK_COMMAND_H
#define QK_COMMAND_H

#include "qklist.h"
#include "qkstring.h"

class qkSession;

class qkCommandKey {
public:
    bool getArg(char key, qkString& arg) const;
    // `word` is the key with what is attached to it, `next` the candidate for its argument. False: no key
    // string.
    bool setArg(const qkString& word, const qkString& next);

    char m_key = ' ';
    qkString m_arg;
};

// At least two characters, the first '-' or '/'.
bool isKeyString(const qkString& word);

class qkCommandList : public qkList<qkCommandKey> {
public:
    ~qkCommandList() override;

    void setArgs(int argc, char** argv); // from argv[1] on; no element is split
    void setArgs(const char* text);
    void setArgs(const qkStringList& words);
    void insertArgs(const char* text, iterator where);
    void insertArgs(const qkStringList& words, iterator where);
    bool setArg(const qkString& word, const qkString& next);
    void setArg(char key, const qkString& arg);
    bool insertArg(const qkString& word, const qkString& next, iterator where);
    bool isKey(char key) const;
    bool getArg(char key, qkString& arg) const; // the last occurrence
    void insertFromFile(const qkString& name, iterator where);
};

struct qkOption {
    using Info = qkString (*)(const qkString& arg);
    using Apply = void (*)(const qkString& arg, qkSession* session);

    char m_key;
    bool m_hidden;
    qkString m_help; // the line of the quick help
    Info m_info;     // tells what the key will do
    Apply m_apply;   // does it
    qkString m_descr;
};

// Letter arguments: each letter of the text counts, anything else is passed over. Of a priority the first
// letter alone counts; 0: it is none.
int getAskLevel(const qkString& arg);
int getLevel(const qkString& arg);
int getPriority(const qkString& arg);

#endif
