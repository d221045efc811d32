// Bodies of the templates of qkparm.h, included at its end.
#ifndef QK_PARM_INL
#define QK_PARM_INL

#include <type_traits>

#include "qkformat.h"

// qkparm.cpp
[[noreturn]] void qkThrowInvalid(const qkString& name, const char* separator, const qkString& text);
void qkCheckStep(long long first, long long last, char operation, long long step, bool& down);
bool qkNextStep(long long& value, long long last, char operation, long long step, bool down);
bool qkSplitStep(const qkString& text, qkString (&words)[3]);
int qkStepNumber(const char* what, const qkString& text);

inline bool qkSameValue(const QovSize& a, const QovSize& b)
{
    return a.width == b.width && a.height == b.height;
}

template <class T>
bool qkSameValue(const T& a, const T& b)
{
    return a == b;
}

template <class T>
bool qkContains(const qkList<T>& list, const T& value)
{
    for (const T& item : list) {
        if (qkSameValue(item, value)) return true;
    }
    return false;
}

// The operators are looked up where a template is used, so a type may declare its own after this header. An
// enumeration without an operator to read it is read as a number.
template <class T>
qkString qkToText(const T& value)
{
    qkString text;
    text << value;
    return text;
}

template <class T>
T qkFromText(qkString& text)
{
    if constexpr (std::is_enum_v<T> && !requires(T & v, qkString & t) { v << t; }) {
        int number = 0;
        number << text;
        return static_cast<T>(number);
    } else {
        T value{};
        value << text;
        return value;
    }
}

template <class T, class ToText>
qkString qkJoin(const qkList<T>& list, const char* separator, ToText toText)
{
    qkString text;
    for (auto i = list.begin(); i != list.end(); ++i) {
        if (i != list.begin()) text << separator;
        text << toText(*i);
    }
    return text;
}

// qkDefault_NSC

template <class T>
qkDefault_NSC<T>::qkDefault_NSC(T value, const qkString& name, const qkString& prompt)
    : qkParameter(name, prompt), m_value(value)
{
}

template <class T>
void qkDefault_NSC<T>::addDeprecated(T value, const qkString& oldText)
{
    m_deprecated.append({value, oldText});
}

template <class T>
const typename qkDefault_NSC<T>::OldSpelling* qkDefault_NSC<T>::oldSpelling() const
{
    for (const OldSpelling& old : m_deprecated) {
        if (qkSameValue(old.value, m_value)) return &old;
    }
    return nullptr;
}

template <class T>
bool qkDefault_NSC<T>::isDeprecatedValue() const
{
    return oldSpelling() != nullptr;
}

template <class T>
bool qkDefault_NSC<T>::setDeprecatedFlag(bool on)
{
    const OldSpelling* old = on ? oldSpelling() : nullptr;
    m_useText = old != nullptr;
    if (old) m_text = old->text;
    return m_useText;
}

template <class T>
T qkDefault_NSC<T>::validItem(const qkString& text) const
{
    qkString item(text);
    item.setFail(false);
    const T result = stringToValue(item);
    if (item.fail()) qkThrowInvalid(m_name, ": ", text);
    return result;
}

// qkDefault

template <class T>
qkString qkDefault<T>::valueToString(T value) const
{
    return qkToText(value);
}

template <class T>
T qkDefault<T>::stringToValue(qkString& text) const
{
    return qkFromText<T>(text);
}

// qkMapDefault

template <class T>
qkString& qkMapDefault<T>::operator[](T value)
{
    auto name = m_names.begin();
    for (const T& known : m_values) {
        if (qkSameValue(known, value)) return *name;
        ++name;
    }
    m_values.append(value);
    return *m_names.append("");
}

template <class T>
qkString qkMapDefault<T>::validString() const
{
    return qkJoin(m_names, "|", [](const qkString& name) { return name; });
}

template <class T>
qkString qkMapDefault<T>::valueToString(T value) const
{
    auto name = m_names.begin();
    for (const T& known : m_values) {
        if (qkSameValue(known, value)) return *name;
        ++name;
    }
    return qkString();
}

template <class T>
T qkMapDefault<T>::stringToValue(qkString& text) const
{
    auto value = m_values.begin();
    for (const qkString& name : m_names) {
        if (qkString::fitString(text, name, 0)) return *value;
        ++value;
    }
    text.setFail(true);
    return T{};
}

// qkIterator_NSC

template <class T>
qkIterator_NSC<T>::qkIterator_NSC(const qkString& name, const qkString& prompt)
    : qkDefault_NSC<T>(T{}, name, prompt)
{
}

template <class T>
void qkIterator_NSC<T>::reset()
{
    this->m_ended = false;
    this->m_value = T{};
    m_position = {};
    this->erase(this->begin(), this->end());
}

template <class T>
qkString qkIterator_NSC<T>::defaultString() const
{
    return qkJoin<T>(*this, "; ", [this](const T& value) { return this->valueToString(value); });
}

template <class T>
bool qkIterator_NSC<T>::nextValue()
{
    if (this->m_ended)
        ++m_position;
    else
        m_position = this->begin();
    this->m_ended = m_position != this->end();
    if (this->m_ended) this->m_value = *m_position;
    return this->m_ended;
}

template <class T>
void qkIterator_NSC<T>::translate(const qkString& text)
{
    qkStringList words;
    if (text.parse(words, ";") == 0) throw qkException(qkString("Empty iterator definition"));
    qkList<T> values;
    for (qkString& word : words) {
        word.trim();
        try {
            values.append(this->validItem(word));
        } catch (const qkException&) {
            qkThrowInvalid(this->m_name, " = ", word);
        }
    }
    this->swap(values);
    this->m_ended = false;
}

// qkIterator

template <class T>
qkString qkIterator<T>::valueToString(T value) const
{
    return qkToText(value);
}

template <class T>
T qkIterator<T>::stringToValue(qkString& text) const
{
    return qkFromText<T>(text);
}

// qkStepIterator

template <class T>
void qkStepIterator<T>::setStep(T first, T last, char operation, T step)
{
    bool down = false;
    validate(first, last, step, operation, down);
    m_first = first;
    m_last = last;
    m_step = step;
    m_operation = operation;
    m_down = down;
    this->m_ended = false;
}

template <class T>
void qkStepIterator<T>::validate(T first, T last, T step, char operation, bool& down)
{
    static_assert(std::is_integral_v<T> && sizeof(T) <= sizeof(int));
    qkCheckStep(first, last, operation, step, down);
}

template <class T>
void qkStepIterator<T>::reset()
{
    qkIterator<T>::reset();
    m_operation = '?';
}

template <class T>
qkString qkStepIterator<T>::rule() const
{
    qkString text(this->m_name);
    text << " = " << this->valueToString(m_first) << "; " << this->m_name << (m_down ? " >= " : " <= ")
         << this->valueToString(m_last) << "; " << m_operation << this->valueToString(m_step);
    return text;
}

template <class T>
qkString qkStepIterator<T>::defaultString() const
{
    if (m_operation != '?') return qkString("for (") + rule() + ")";
    const qkString list = qkIterator<T>::defaultString();
    qkString words[3];
    if (!qkSplitStep(list, words)) return list;
    // A third number with a sign would read back as a step; in hexadecimal it has none.
    const auto third = --this->end();
    return words[0] + "; " + words[1] + "; " + qkFormat("0x%X", static_cast<unsigned>(*third));
}

template <class T>
qkString qkStepIterator<T>::description() const
{
    return m_operation == '?' ? qkIterator<T>::description() : qkString("for ") + rule();
}

template <class T>
qkString qkStepIterator<T>::prompt() const
{
    return m_operation == '?' ? qkIterator<T>::prompt() : qkString("for ") + qkIterator<T>::prompt();
}

template <class T>
bool qkStepIterator<T>::nextValue()
{
    if (m_operation == '?') return qkIterator<T>::nextValue();
    long long next = m_first;
    if (this->m_ended) {
        next = m_current;
        this->m_ended = qkNextStep(next, m_last, m_operation, m_step, m_down);
    } else {
        this->m_ended = true;
    }
    if (this->m_ended) this->m_value = m_current = static_cast<T>(next);
    return this->m_ended;
}

template <class T>
void qkStepIterator<T>::translate(const qkString& text)
{
    if (translateStep(text)) return;
    qkIterator<T>::translate(text);
    m_operation = '?';
}

template <class T>
bool qkStepIterator<T>::translateStep(const qkString& text)
{
    qkString words[3];
    if (!qkSplitStep(text, words)) return false;
    const int first = qkStepNumber("first value", words[0]);
    const int last = qkStepNumber("last value", words[1]);
    const int step = qkStepNumber("step", words[2].substr(1));
    setStep(static_cast<T>(first), static_cast<T>(last), words[2][0], static_cast<T>(step));
    return true;
}

// qkEnumIterator_NCS

template <class T>
qkString qkEnumIterator_NCS<T>::validString() const
{
    return qkJoin(m_valid, "|", [this](const T& value) { return this->valueToString(value); });
}

template <class T>
void qkEnumIterator_NCS<T>::add(T value)
{
    if (isValid(value)) this->append(value);
}

template <class T>
T qkEnumIterator_NCS<T>::validItem(const qkString& text) const
{
    const T value = qkIterator_NSC<T>::validItem(text);
    if (!isValid(value)) qkThrowInvalid(this->m_name, ": ", text);
    return value;
}

template <class T>
void qkEnumIterator_NCS<T>::addValidation(T value)
{
    if (!qkContains(m_valid, value)) m_valid.append(value);
}

template <class T>
void qkEnumIterator_NCS<T>::addValidation(const qkList<T>* values)
{
    if (!values) return;
    for (const T& value : *values) addValidation(value);
}

template <class T>
bool qkEnumIterator_NCS<T>::isValid(T value) const
{
    return m_valid.empty() || qkContains(m_valid, value);
}

// qkEnumIterator

template <class T>
qkEnumIterator<T>::qkEnumIterator(const int* values, const char* const* names, int count, int start)
    : m_tableValues(values), m_tableNames(names), m_tableCount(count), m_tableStart(start)
{
    qkEnumIterator::initValidation();
}

template <class T>
void qkEnumIterator<T>::initValidation()
{
    this->resetValidation();
    for (int i = 0; i < m_tableCount; i++) this->addValidation(static_cast<T>(m_tableValues[i]));
}

template <class T>
qkString qkEnumIterator<T>::valueToString(T value) const
{
    return qkString::enumString(static_cast<int>(value), m_tableValues, m_tableNames, m_tableCount);
}

template <class T>
T qkEnumIterator<T>::stringToValue(qkString& text) const
{
    if (m_tableCount == 0) return qkFromText<T>(text);
    return static_cast<T>(qkString::enumValue(text, m_tableValues, m_tableNames, m_tableCount, m_tableStart));
}

// qkMapIterator

template <class T>
const typename qkMapIterator<T>::Entry* qkMapIterator<T>::findValue(const qkList<Entry>& map, T value)
{
    for (const Entry& entry : map) {
        if (qkSameValue(entry.value, value)) return &entry;
    }
    return nullptr;
}

template <class T>
const typename qkMapIterator<T>::Entry* qkMapIterator<T>::findName(const qkList<Entry>& map,
                                                                   const qkString& text)
{
    for (const Entry& entry : map) {
        if (qkString::fitString(text, entry.name, 0)) return &entry;
    }
    return nullptr;
}

template <class T>
qkString& qkMapIterator<T>::operator[](T value)
{
    for (Entry& entry : m_map) {
        if (qkSameValue(entry.value, value)) return entry.name;
    }
    this->addValidation(value);
    return m_map.append({value, ""})->name;
}

template <class T>
void qkMapIterator<T>::resetMap()
{
    m_map.erase(m_map.begin(), m_map.end());
    this->resetValidation();
}

template <class T>
qkString qkMapIterator<T>::valueToString(T value) const
{
    const Entry* entry = findValue(m_map, value);
    return entry ? entry->name : qkToText(value);
}

template <class T>
T qkMapIterator<T>::stringToValue(qkString& text) const
{
    text.setFail(false);
    if (const Entry* entry = findName(m_map, text)) return entry->value;
    for (const T& value : this->m_valid) {
        if (!findValue(m_map, value) && qkToText(value) == text) return value;
    }
    text.setFail(true);
    return T{};
}

// qkHMapIterator

template <class T>
void qkHMapIterator<T>::addName(T value, const qkString& name)
{
    m_further.append({value, name});
}

template <class T>
void qkHMapIterator<T>::resetMap()
{
    qkMapIterator<T>::resetMap();
    m_further.erase(m_further.begin(), m_further.end());
}

template <class T>
bool qkHMapIterator<T>::isValid(T value) const
{
    return qkMapIterator<T>::isValid(value) || this->findValue(m_further, value);
}

template <class T>
qkString qkHMapIterator<T>::valueToString(T value) const
{
    const Entry* entry = this->findValue(this->m_map, value);
    if (!entry) entry = this->findValue(m_further, value);
    return entry ? entry->name : qkMapIterator<T>::valueToString(value);
}

template <class T>
T qkHMapIterator<T>::stringToValue(qkString& text) const
{
    const T value = qkMapIterator<T>::stringToValue(text);
    if (!text.fail()) return value;
    const Entry* entry = this->findName(m_further, text);
    text.setFail(!entry);
    return entry ? entry->value : T{};
}

#endif
