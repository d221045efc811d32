// Parameters of tests. A parameter gets its value through fromIStream, prints itself to the console and the
// tables, and an iterator walks a list of values, so that one test covers many parameter sets.
//
// "NSC" and "NCS" classes have no conversion between T and text of their own; the class without the suffix
// adds it.
#ifndef QK_PARM_H
#define QK_PARM_H

#include "qkcstream.h"
#include "qkexception.h"
#include "qkistream.h"
#include "qkstream.h"
#include "qkstring.h"
#include "qovdefs.h"

class qkParameter {
public:
    qkParameter() = default;
    qkParameter(const qkString& name, const qkString& prompt); // an empty prompt means the name
    qkParameter(const qkParameter&) = delete;
    qkParameter& operator=(const qkParameter&) = delete;

    const qkString& name() const { return m_name; }
    void setName(const qkString& name, const qkString& prompt);
    bool selected() const { return m_selected; }
    void setSelected(bool on) { m_selected = on; }
    void setQuoted(bool on) { m_flags = on ? m_flags | flagQuoted : m_flags & ~flagQuoted; }

    virtual void reset() {}
    virtual qkString valueString() const { return qkString(); }
    virtual qkString defaultString() const { return qkString(); }
    virtual qkString validString() const { return qkString(); }
    virtual qkString description() const;
    virtual qkString prompt() const;
    virtual void resetIterator() { reset(); }
    virtual bool firstValue();
    virtual bool nextValue(); // a plain parameter has exactly one value
    virtual bool isDeprecatedParm() const { return false; }
    virtual bool isDeprecatedValue() const { return false; }
    virtual bool setDeprecatedFlag(bool) { return false; }
    virtual void toOStream(qkOStream& out) const;
    virtual int colmIndex() const { return -1; } // column of its table cell; negative: the next one
    virtual void toCStream(qkCStream& out) const;
    virtual void nameToCStream(qkCStream& out) const;
    virtual void fromIStream(qkIStream& in);
    virtual void translate(const qkString& text); // throws qkException for a text that is no value

protected:
    ~qkParameter() = default;
    static constexpr int flagQuoted = 2;

    qkString m_name;
    qkString m_prompt;
    bool m_ended = false;
    bool m_selected = true; // false: a common parameter that no chosen test uses
    int m_flags = 0;
    bool m_useText = false; // the table shows m_text, an old spelling
    qkString m_text;
};

template <class T>
class qkDefault_NSC : public qkParameter {
public:
    qkDefault_NSC() = default;
    qkDefault_NSC(T value, const qkString& name, const qkString& prompt);

    void setValue(T value) { m_value = value; }
    // Registers an old spelling of a value: the table then gets a second, "deprecated" line with it.
    void addDeprecated(T value, const qkString& oldText);

    void reset() override { m_ended = false; }
    qkString valueString() const override { return valueToString(m_value); }
    qkString defaultString() const override { return valueString(); }
    bool isDeprecatedParm() const override { return !m_deprecated.empty(); }
    bool isDeprecatedValue() const override;
    bool setDeprecatedFlag(bool on) override;
    void translate(const qkString& text) override { m_value = validItem(text); }

    virtual T value() const { return m_value; }
    virtual qkString valueToString(T value) const = 0;
    virtual T stringToValue(qkString& text) const = 0; // sets the fail mark of `text`
    virtual T validItem(const qkString& text) const;   // throws qkException

protected:
    struct OldSpelling {
        T value{};
        qkString text;
    };
    T m_value{};
    qkList<OldSpelling> m_deprecated;

private:
    const OldSpelling* oldSpelling() const; // of the current value; null if it has none
};

// Conversions by the operators of qkString.
template <class T>
class qkDefault : public qkDefault_NSC<T> {
public:
    using qkDefault_NSC<T>::qkDefault_NSC;
    qkString valueToString(T value) const override;
    T stringToValue(qkString& text) const override;
};

// A value with a name: "Method" is one of Auto, Manual, ... A beginning of a name selects its value, in any
// case.
template <class T>
class qkMapDefault : public qkDefault_NSC<T> {
public:
    using qkDefault_NSC<T>::qkDefault_NSC;
    qkString& operator[](T value); // the name of a value; creates the entry
    qkString validString() const override;
    qkString valueToString(T value) const override;
    T stringToValue(qkString& text) const override;

private:
    qkList<T> m_values;
    qkStringList m_names; // parallel to m_values
};

// The base list holds the values; m_ended means that a value is current.
template <class T>
class qkIterator_NSC : public qkDefault_NSC<T>, public qkList<T> {
public:
    qkIterator_NSC() = default;
    qkIterator_NSC(const qkString& name, const qkString& prompt);

    void reset() override;                   // forgets all values
    qkString defaultString() const override; // "8; 16; 32"
    void resetIterator() override { this->m_ended = false; }
    bool nextValue() override;
    void translate(
        const qkString& text) override; // the new list takes the place of the old one only if it is good

    ~qkIterator_NSC() override = default;
    virtual void add(T value) { this->append(value); }

protected:
    typename qkList<T>::iterator m_position;
};

template <class T>
class qkIterator : public qkIterator_NSC<T> {
public:
    using qkIterator_NSC<T>::qkIterator_NSC;
    qkString valueToString(T value) const override;
    T stringToValue(qkString& text) const override;
};

// Values by a rule: "8; 2048; *4" is 8, 32, 128, 512, 2048. T is an integer type of at most 32 bits. In list
// mode (operation '?') it is a qkIterator.
template <class T>
class qkStepIterator : public qkIterator<T> {
public:
    using qkIterator<T>::qkIterator;
    void setStep(T first, T last, char operation, T step); // throws on a conflict

    void reset() override;
    qkString defaultString() const override;
    qkString description() const override;
    qkString prompt() const override;
    bool nextValue() override;
    void translate(const qkString& text) override;

protected:
    bool translateStep(const qkString& text);
    static void validate(T first, T last, T step, char operation, bool& down);

    T m_first{};
    T m_last{};
    T m_step{};
    char m_operation = '?';
    bool m_down = false;

private:
    qkString rule() const; // "RowWidth = 8; RowWidth <= 2048; *4"

    T m_current{}; // where the next step starts, whatever was set as the value since
};

template <class T>
class qkEnumIterator_NCS : public qkIterator_NSC<T> {
public:
    using qkIterator_NSC<T>::qkIterator_NSC;
    qkString validString() const override; // names joined with "|"
    void add(T value) override;            // passes over what is not valid
    T validItem(const qkString& text) const override;
    virtual void initValidation() { resetValidation(); } // all that the class itself knows of
    virtual void resetValidation() { m_valid.erase(m_valid.begin(), m_valid.end()); }
    virtual void addValidation(T value);
    virtual void addValidation(const qkList<T>* values);

protected:
    virtual bool isValid(T value) const;
    qkList<T> m_valid; // empty: everything is valid
};

// Names by a table of the library's enumeration; `start` is the length of the prefix common to the names.
// Without a table the values are numbers.
template <class T>
class qkEnumIterator : public qkEnumIterator_NCS<T> {
public:
    qkEnumIterator() = default;
    qkEnumIterator(const int* values, const char* const* names, int count, int start = 0);
    void initValidation() override;
    qkString valueToString(T value) const override;
    T stringToValue(qkString& text) const override;

private:
    const int* m_tableValues = nullptr;
    const char* const* m_tableNames = nullptr;
    int m_tableCount = 0;
    int m_tableStart = 0;
};

// Names by a map of its own. A beginning of a name selects its value, in any case. A value that was made
// valid without a name is written and read as it is.
template <class T>
class qkMapIterator : public qkEnumIterator_NCS<T> {
public:
    using qkEnumIterator_NCS<T>::qkEnumIterator_NCS;
    qkString& operator[](T value); // the name of a value; creates the entry and makes the value valid
    virtual void resetMap();
    qkString valueToString(T value) const override;
    T stringToValue(qkString& text) const override;

protected:
    struct Entry {
        T value{};
        qkString name;
    };
    static const Entry* findValue(const qkList<Entry>& map, T value);
    static const Entry* findName(const qkList<Entry>& map, const qkString& text);
    qkList<Entry> m_map;
};

// A map with many names for a value: the further names are accepted on input, the first is printed. A value
// that has only further names can be added and read, but is not among those offered.
template <class T>
class qkHMapIterator : public qkMapIterator<T> {
public:
    using qkMapIterator<T>::qkMapIterator;
    void addName(T value, const qkString& name);
    void resetMap() override;
    qkString valueToString(T value) const override;
    T stringToValue(qkString& text) const override;

protected:
    bool isValid(T value) const override;

private:
    using Entry = typename qkMapIterator<T>::Entry;
    qkList<Entry> m_further;
};

#include "qkparm.inl"

#endif
