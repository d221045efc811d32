// qkString: the harness's byte string. Conversions from text report failure in a flag of the string that was
// read, never by an exception. qkParse splits a text into words, with optional quoting.
#ifndef QK_STRING_H
#define QK_STRING_H

#include "qklist.h"

class qkStringList;

class qkString {
public:
    static const int npos; // -1

    qkString();
    qkString(const char* text); // null counts as empty
    explicit qkString(char c);
    qkString(const qkString& other);
    virtual ~qkString();
    qkString& operator=(const qkString& other);

    void assign(char c);
    void assign(const char* text);
    void assign(const qkString& other);

    const char* c_str() const { return m_buf; }
    int length() const { return m_len; }
    bool empty() const { return m_len == 0; }
    char operator[](int i) const { return m_buf[i]; }
    char& operator[](int i) { return m_buf[i]; }

    // The mark that a conversion from this text failed. An ordinary assignment leaves it alone.
    bool fail() const { return m_fail; }
    void setFail(bool fail) { m_fail = fail; }

    // The buffer. getBufSize: bytes taken for a text of n, a multiple of 16. allocate: a zeroed text of
    // length n that the caller fills. growBy keeps the text; resize cuts or fills.
    static int getBufSize(int n);
    void allocate(int n);
    void free();
    void growBy(int n);
    void resize(int n, char fill);

    qkString& operator+=(const qkString& other);
    bool operator==(const qkString& other) const;
    bool operator!=(const qkString& other) const { return !(*this == other); }

    int find(const qkString& pattern, int start = 0) const;
    int rfind(const qkString& pattern) const;
    bool contains(const qkString& pattern) const { return find(pattern) != npos; }
    bool startsWith(const qkString& pattern) const;
    qkString substr(int pos) const;
    qkString substr(int pos, int n) const;
    int compare(const qkString& other) const;

    // Blanks, tabs and carriage returns go at the start, blanks and tabs only at the end.
    void trim();
    qkString toLower() const;

    // Parts of a path: behind the last '/' or '\', up to and with it, and the name up to its last '.'.
    qkString getFileName() const;
    qkString getFileDir() const;
    qkString getFileTitle() const;

    // Words between separators (see qkParse). The forms with outputs fill them in order and return the number
    // of words found, also if there are more than outputs.
    int parse(qkStringList& words, const qkString& separators) const;
    int parse(qkString& first, qkString& second, const qkString& separators) const;
    int parse(qkString& first, qkString& second, qkString& third, const qkString& separators) const;

    // Names of values. A word fits a name if it is a beginning of it, or of what stands at `start` in it
    // (behind a prefix common to the table), in any letter case. The first row that fits counts. Flags are
    // joined with any of "|,; ". A word that fits nothing sets the fail mark of `text`.
    static bool fitString(const qkString& pattern, const qkString& name, int start);
    static int enumValue(qkString& text, const int* values, const char* const* names, int count, int start);
    static qkString enumString(int value, const int* values, const char* const* names, int count);
    static int flagValue(qkString& text, const int* values, const char* const* names, int count, int start);
    static qkString flagString(int value, const int* values, const char* const* names, int count);

    // The printf length prefix of a 64-bit integer.
    static const char* prefixI64();

private:
    char* m_buf = nullptr;
    int m_len = 0;
    int m_size = 0;
    bool m_fail = false;
};

qkString operator+(const qkString& a, const qkString& b);

// Append a value in its text form.
qkString& operator<<(qkString& s, const qkString& value);
qkString& operator<<(qkString& s, const char* value);
qkString& operator<<(qkString& s, char value);
qkString& operator<<(qkString& s, bool value);
qkString& operator<<(qkString& s, int value);
qkString& operator<<(qkString& s, unsigned value);
qkString& operator<<(qkString& s, unsigned char value);
qkString& operator<<(qkString& s, long long value);
qkString& operator<<(qkString& s, double value);
qkString& operator<<(qkString& s, float value);
qkString& operator<<(qkString& s, const void* value);

// Read a value from a text. The fail mark of `text` tells of a text that is none.
void operator<<(bool& value, qkString& text);
void operator<<(int& value, qkString& text);
void operator<<(long long& value, qkString& text);
void operator<<(double& value, qkString& text);
void operator<<(float& value, qkString& text);

class qkStringList : public qkList<qkString> {
public:
    ~qkStringList() override;
};

// A text being split. A double quote among the separators is no separator: it switches quoting on.
class qkParse : public qkString {
public:
    explicit qkParse(const qkString& text);
    ~qkParse() override;

    void initParse(const qkString& separators);
    bool nextWord(qkString& word);
    using qkString::parse;
    int parse(qkStringList& words, const qkString& separators);

private:
    bool nextQuoted(qkString& word);

    qkString m_seps;
    int m_pos = 0;
    bool m_quoted = false;
};

#endif
