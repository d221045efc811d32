#include "qkstring.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "qkformat.h"

const int qkString::npos = -1;

// ASCII only: names and file paths of the harness must not depend on the locale.
static char lowerChar(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

static bool isOneOf(char c, const char* set)
{
    return c != '\0' && std::strchr(set, c) != nullptr;
}

qkString::qkString()
{
    assign("");
}

qkString::qkString(const char* text)
{
    assign(text);
}

qkString::qkString(char c)
{
    assign(c);
}

qkString::qkString(const qkString& other)
{
    assign(other);
}

qkString::~qkString()
{
    delete[] m_buf;
}

qkString& qkString::operator=(const qkString& other)
{
    assign(other);
    return *this;
}

void qkString::assign(char c)
{
    const char text[2] = {c, '\0'};
    assign(text);
}

void qkString::assign(const char* text)
{
    if (!text) text = "";
    if (text >= m_buf && text < m_buf + m_size) {
        assign(qkString(text)); // a part of this very text: allocate would clear it
        return;
    }
    const int n = static_cast<int>(std::strlen(text));
    allocate(n);
    std::memcpy(m_buf, text, static_cast<size_t>(n));
}

void qkString::assign(const qkString& other)
{
    if (this == &other) return;
    allocate(other.m_len);
    std::memcpy(m_buf, other.m_buf, static_cast<size_t>(other.m_len));
}

int qkString::getBufSize(int n)
{
    return (n + 1 + 15) & ~15;
}

void qkString::allocate(int n)
{
    if (n < 0) n = 0;
    const int size = getBufSize(n);
    if (size == m_size) {
        std::memset(m_buf, 0, static_cast<size_t>(size));
    } else {
        char* fresh = new char[static_cast<size_t>(size)]();
        delete[] m_buf;
        m_buf = fresh;
        m_size = size;
    }
    m_len = n;
}

// The buffer never becomes null, so c_str() of a freed string is an empty text.
void qkString::free()
{
    allocate(0);
}

void qkString::growBy(int n)
{
    const int grown = m_len + n;
    if (grown >= m_size) {
        const qkString saved(*this);
        allocate(grown);
        std::memcpy(m_buf, saved.m_buf, static_cast<size_t>(saved.m_len));
    }
    m_len = grown;
}

void qkString::resize(int n, char fill)
{
    if (n < 0) n = 0;
    if (n == m_len) return;
    if (n < m_len) {
        assign(substr(0, n));
        return;
    }
    const int old = m_len;
    growBy(n - old);
    std::memset(m_buf + old, fill, static_cast<size_t>(n - old));
}

qkString& qkString::operator+=(const qkString& other)
{
    const int old = m_len;
    const int added = other.m_len; // `other` may be this string
    growBy(added);
    std::memmove(m_buf + old, other.m_buf, static_cast<size_t>(added));
    return *this;
}

bool qkString::operator==(const qkString& other) const
{
    return std::strcmp(m_buf, other.m_buf) == 0;
}

int qkString::find(const qkString& pattern, int start) const
{
    if (start < 0) start = 0;
    for (int i = start; i <= m_len - pattern.m_len; i++) {
        if (std::memcmp(m_buf + i, pattern.m_buf, static_cast<size_t>(pattern.m_len)) == 0) return i;
    }
    return npos;
}

int qkString::rfind(const qkString& pattern) const
{
    for (int i = m_len - pattern.m_len; i >= 0; i--) {
        if (std::memcmp(m_buf + i, pattern.m_buf, static_cast<size_t>(pattern.m_len)) == 0) return i;
    }
    return npos;
}

bool qkString::startsWith(const qkString& pattern) const
{
    return pattern.m_len <= m_len &&
           std::memcmp(m_buf, pattern.m_buf, static_cast<size_t>(pattern.m_len)) == 0;
}

qkString qkString::substr(int pos) const
{
    return substr(pos, m_len);
}

qkString qkString::substr(int pos, int n) const
{
    qkString part;
    if (pos < 0) pos = 0;
    if (n > m_len - pos) n = m_len - pos;
    if (n < 1) return part;
    part.allocate(n);
    std::memcpy(part.m_buf, m_buf + pos, static_cast<size_t>(n));
    return part;
}

int qkString::compare(const qkString& other) const
{
    const int common = m_len < other.m_len ? m_len : other.m_len;
    for (int i = 0; i < common; i++) {
        const auto a = static_cast<signed char>(m_buf[i]);
        const auto b = static_cast<signed char>(other.m_buf[i]);
        if (a != b) return a < b ? -1 : 1;
    }
    return m_len - other.m_len;
}

void qkString::trim()
{
    int first = 0;
    int last = m_len;
    while (first < last && isOneOf(m_buf[first], " \t\r")) first++;
    while (last > first && isOneOf(m_buf[last - 1], " \t")) last--;
    if (first > 0 || last < m_len) assign(substr(first, last - first));
}

qkString qkString::toLower() const
{
    qkString lower(*this);
    for (int i = 0; i < lower.m_len; i++) lower.m_buf[i] = lowerChar(lower.m_buf[i]);
    return lower;
}

// Index behind the last directory boundary; 0 if there is none.
static int fileNameStart(const qkString& path)
{
    const int slash = path.rfind("/");
    const int backslash = path.rfind("\\");
    return (slash > backslash ? slash : backslash) + 1;
}

qkString qkString::getFileName() const
{
    return substr(fileNameStart(*this));
}

qkString qkString::getFileDir() const
{
    return substr(0, fileNameStart(*this));
}

qkString qkString::getFileTitle() const
{
    const qkString name = getFileName();
    const int dot = name.rfind(".");
    return dot == npos ? name : name.substr(0, dot);
}

int qkString::parse(qkStringList& words, const qkString& separators) const
{
    return qkParse(*this).parse(words, separators);
}

static int fillOutputs(const qkString& text, const qkString& separators, qkString* const* outputs, int count)
{
    qkStringList words;
    const int found = text.parse(words, separators);
    qkStringList::iterator word = words.begin();
    for (int i = 0; i < count; i++) {
        *outputs[i] = "";
        if (word == words.end()) continue;
        *outputs[i] = *word;
        ++word;
    }
    return found;
}

int qkString::parse(qkString& first, qkString& second, const qkString& separators) const
{
    qkString* const outputs[] = {&first, &second};
    return fillOutputs(*this, separators, outputs, 2);
}

int qkString::parse(qkString& first, qkString& second, qkString& third, const qkString& separators) const
{
    qkString* const outputs[] = {&first, &second, &third};
    return fillOutputs(*this, separators, outputs, 3);
}

bool qkString::fitString(const qkString& pattern, const qkString& name, int start)
{
    const qkString word = pattern.toLower();
    const qkString whole = name.toLower();
    return whole.substr(start).startsWith(word) || whole.startsWith(word);
}

static int fittingRow(const qkString& word, const char* const* names, int count, int start)
{
    for (int i = 0; i < count; i++) {
        if (qkString::fitString(word, names[i], start)) return i;
    }
    return qkString::npos;
}

int qkString::enumValue(qkString& text, const int* values, const char* const* names, int count, int start)
{
    const int row = fittingRow(text, names, count, start);
    text.setFail(row == npos);
    return row == npos ? 0 : values[row];
}

qkString qkString::enumString(int value, const int* values, const char* const* names, int count)
{
    for (int i = 0; i < count; i++) {
        if (values[i] == value) return names[i];
    }
    return qkFormat("%d", value);
}

int qkString::flagValue(qkString& text, const int* values, const char* const* names, int count, int start)
{
    qkStringList words;
    text.parse(words, "|,; ");
    text.setFail(false);
    int value = 0;
    for (const qkString& word : words) {
        const int row = fittingRow(word, names, count, start);
        if (row == npos)
            text.setFail(true);
        else
            value |= values[row];
    }
    return value;
}

qkString qkString::flagString(int value, const int* values, const char* const* names, int count)
{
    qkString joined;
    for (int i = 0; i < count; i++) {
        if ((values[i] & value) == 0) continue;
        if (!joined.empty()) joined += "|";
        joined += names[i];
    }
    return joined.empty() ? qkFormat("%d", value) : joined;
}

// The C library takes L before d, x and X as it takes ll.
const char* qkString::prefixI64()
{
    return "L";
}

qkString operator+(const qkString& a, const qkString& b)
{
    qkString sum(a);
    sum += b;
    return sum;
}

qkString& operator<<(qkString& s, const qkString& value)
{
    return s += value;
}

qkString& operator<<(qkString& s, const char* value)
{
    return s += value;
}

qkString& operator<<(qkString& s, char value)
{
    return s += qkString(value);
}

qkString& operator<<(qkString& s, bool value)
{
    return s += value ? "yes" : "no";
}

qkString& operator<<(qkString& s, int value)
{
    return s += qkFormat("%d", value);
}

qkString& operator<<(qkString& s, unsigned value)
{
    return s += qkFormat("%u", value);
}

qkString& operator<<(qkString& s, unsigned char value)
{
    return s += qkFormat("%d", value);
}

// The format of a 64-bit integer is known at run time only.
static qkString format64(const char* conversion, long long value)
{
    const qkString format = qkString("%") + qkString::prefixI64() + conversion;
    char digits[32];
    std::snprintf(digits, sizeof digits, format.c_str(), value);
    return digits;
}

qkString& operator<<(qkString& s, long long value)
{
    return s += format64("d", value);
}

qkString& operator<<(qkString& s, double value)
{
    return s += qkFormat("%.3g", value);
}

qkString& operator<<(qkString& s, float value)
{
    return s << static_cast<double>(value);
}

qkString& operator<<(qkString& s, const void* value)
{
    if (!value) return s += "NULL";
    return s += format64("X", static_cast<long long>(reinterpret_cast<std::intptr_t>(value)));
}

void operator<<(bool& value, qkString& text)
{
    qkString word = text.toLower();
    word.trim();
    const bool yes = isOneOf(word[0], "yt") || word == "1";
    const bool no = isOneOf(word[0], "nf") || word == "0";
    text.setFail(!yes && !no);
    value = yes;
}

static bool isHexadecimal(const qkString& text)
{
    return text.length() >= 2 && text[0] == '0' && isOneOf(text[1], "xX");
}

// Decimal numbers out of range become the limit on their side. In "0x" alone the 0 is no number.
void operator<<(long long& value, qkString& text)
{
    const bool hexadecimal = isHexadecimal(text);
    const char* begin = text.c_str();
    char* end = nullptr;
    const long long number =
        hexadecimal ? static_cast<long long>(std::strtoull(begin, &end, 16)) : std::strtoll(begin, &end, 10);
    text.setFail(end <= begin + (hexadecimal ? 1 : 0));
    if (!text.fail()) value = number;
}

void operator<<(int& value, qkString& text)
{
    long long number = 0;
    number << text;
    if (text.fail()) return;
    if (isHexadecimal(text))
        value = static_cast<int>(static_cast<unsigned>(number)); // 0xFFFFFFFF is -1
    else
        value = number > INT_MAX ? INT_MAX : number < INT_MIN ? INT_MIN : static_cast<int>(number);
}

void operator<<(double& value, qkString& text)
{
    const char* begin = text.c_str();
    char* end = nullptr;
    const double number = std::strtod(begin, &end);
    text.setFail(end == begin);
    if (end != begin) value = number;
}

void operator<<(float& value, qkString& text)
{
    double number = 0;
    number << text;
    if (!text.fail()) value = static_cast<float>(number);
}

qkStringList::~qkStringList() = default;

qkParse::qkParse(const qkString& text) : qkString(text) {}

qkParse::~qkParse() = default;

void qkParse::initParse(const qkString& separators)
{
    m_pos = 0;
    m_quoted = false;
    m_seps = "";
    for (int i = 0; i < separators.length(); i++) {
        if (separators[i] == '"')
            m_quoted = true;
        else
            m_seps += qkString(separators[i]);
    }
}

bool qkParse::nextWord(qkString& word)
{
    const char* seps = m_seps.c_str();
    for (;;) {
        while (m_pos < length() && isOneOf((*this)[m_pos], seps)) m_pos++;
        if (m_pos >= length()) {
            word = "";
            return false;
        }
        if (m_quoted && (*this)[m_pos] == '"') {
            if (nextQuoted(word)) return true;
            continue;
        }
        const int start = m_pos;
        while (m_pos < length() && !isOneOf((*this)[m_pos], seps) && !(m_quoted && (*this)[m_pos] == '"'))
            m_pos++;
        word = substr(start, m_pos - start);
        return true;
    }
}

// From the opening quote to behind the closing one. A doubled quote stands for one quote. False: nothing is
// inside.
bool qkParse::nextQuoted(qkString& word)
{
    word = "";
    m_pos++;
    while (m_pos < length()) {
        const char c = (*this)[m_pos++];
        if (c == '"') {
            if (m_pos >= length() || (*this)[m_pos] != '"') break;
            m_pos++;
        }
        word += qkString(c);
    }
    return !word.empty();
}

int qkParse::parse(qkStringList& words, const qkString& separators)
{
    words.erase(words.begin(), words.end());
    initParse(separators);
    int count = 0;
    qkString word;
    while (nextWord(word)) {
        words.append(word);
        count++;
    }
    return count;
}
