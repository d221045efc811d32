#include "qkparm.h"

#include <cstdlib>

qkParameter::qkParameter(const qkString& name, const qkString& prompt)
{
    setName(name, prompt);
}

void qkParameter::setName(const qkString& name, const qkString& prompt)
{
    m_name = name;
    m_prompt = prompt.empty() ? name : prompt;
}

qkString qkParameter::description() const
{
    return m_name + ": " + defaultString();
}

qkString qkParameter::prompt() const
{
    const qkString valid = validString();
    return valid.empty() ? m_prompt : m_prompt + " {" + valid + "}";
}

bool qkParameter::firstValue()
{
    resetIterator();
    return nextValue();
}

bool qkParameter::nextValue()
{
    m_ended = !m_ended;
    return m_ended;
}

void qkParameter::toOStream(qkOStream& out) const
{
    if (!m_name.empty()) out << m_name << "=" << valueString() << " ";
}

void qkParameter::toCStream(qkCStream& out) const
{
    qkString cell;
    if (m_name.empty())
        cell = "";
    else if (m_useText)
        cell = m_text;
    else if (m_flags & flagQuoted)
        cell << " \"" << valueString() << "\"";
    else
        cell = valueString();
    if (colmIndex() < 0)
        out << cell;
    else
        out.setColm(colmIndex(), cell);
}

void qkParameter::nameToCStream(qkCStream& out) const
{
    if (colmIndex() < 0)
        out << m_name;
    else
        out.setColm(colmIndex(), m_name);
}

namespace {

// While the console is asked, everything but details of the measurement is shown.
class QuestionLevel {
public:
    explicit QuestionLevel(bool asking) : m_saved(g_ostrm.outLevel())
    {
        if (asking) g_ostrm.setOutLevel(ERR | WARN | PERF);
    }
    ~QuestionLevel() { g_ostrm.setOutLevel(m_saved); }
    QuestionLevel(const QuestionLevel&) = delete;
    QuestionLevel& operator=(const QuestionLevel&) = delete;

private:
    OutputLevel m_saved;
};

} // namespace

void qkParameter::fromIStream(qkIStream& in)
{
    if (m_name.empty() || !m_selected) return;
    const QuestionLevel level(in.hasConsole());
    // The strings stand outside of what is guarded: a signal jumps over destructors.
    const qkString def = defaultString(), title = prompt(), comment = validString();
    qkString text;
    try {
        qkGuardSignals([&] {
            text = in.getItemValue(m_name, def, title, comment);
            translate(text);
        });
    } catch (const qkException& e) {
        g_ostrm << ERR << "-" << e.info() << "\n" << END_MSG;
    }
    g_ostrm << PERF << " " << description() << "\n" << END_MSG;
}

void qkParameter::translate(const qkString&) {}

void qkThrowInvalid(const qkString& name, const char* separator, const qkString& text)
{
    throw qkException(qkString("Invalid value of ") + name + separator + text);
}

// Refuses a step that does not lead from `first` to `last`, and one that never gets past it: integers don't
// shrink by multiplication, and a zero step or a factor of 1 stays where it is.
void qkCheckStep(long long first, long long last, char operation, long long step, bool& down)
{
    down = first > last;
    bool good = false;
    if (operation == '+') good = down ? step < 0 : step > 0;
    if (operation == '-') good = down ? step > 0 : step < 0;
    if (operation == '*') good = first * last > 0 && std::llabs(first) <= std::llabs(last) && step > 1;
    if (!good) throw qkException(qkString("Conflict between iterator limits and operation"));
}

// One step on; false past the end. All numbers fit 32 bits, so that no result leaves 64.
bool qkNextStep(long long& value, long long last, char operation, long long step, bool down)
{
    if (operation == '+')
        value += step;
    else if (operation == '-')
        value -= step;
    else
        value *= step;
    return down ? value >= last : value <= last;
}

static bool takeBehindSign(const qkString& text, qkString& word)
{
    const int sign = text.rfind("=");
    word = text.substr(sign + 1);
    word.trim();
    return sign != qkString::npos;
}

// "for (n = 8; n <= 2048; *4)", which is how a rule is printed.
static bool splitForm(const qkString& text, qkString (&words)[3])
{
    const qkString start("for (");
    qkString form(text);
    form.trim();
    const int length = form.length() - start.length() - 1;
    if (!form.startsWith(start) || length < 0 || form[form.length() - 1] != ')') return false;
    qkString first, last;
    if (form.substr(start.length(), length).parse(first, last, words[2], ";") != 3) return false;
    words[2].trim();
    return takeBehindSign(first, words[0]) && takeBehindSign(last, words[1]);
}

// First value, last value, and the operation with its step behind it. False: the text is no rule.
bool qkSplitStep(const qkString& text, qkString (&words)[3])
{
    const bool three = splitForm(text, words) || text.parse(words[0], words[1], words[2], "; ") == 3;
    return three && !words[2].empty() && qkString("+-*").contains(qkString(words[2][0]));
}

int qkStepNumber(const char* what, const qkString& text)
{
    qkString word(text);
    word.setFail(false);
    int number = 0;
    number << word;
    if (word.fail()) throw qkException(qkString("Invalid ") + what + " = " + text);
    return number;
}
