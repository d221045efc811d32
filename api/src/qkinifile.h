// The two stores of parameter values: qkDataList, what -d gave, and qkIniFile, an image of an ini file that
// is read whole at open and, if it is to be updated, written whole at close.
#ifndef QK_INIFILE_H
#define QK_INIFILE_H

#include "qkstring.h"

class i_stream;

struct qkValue {
    qkString key;
    qkString value;   // "~~~" for a key without "="
    qkString comment; // of values written in this run only
};

class qkValues : public qkList<qkValue> {
public:
    qkValue* exist(const qkString& key) const;
};

struct qkSection {
    qkString name;
    qkValues* values = nullptr;
};

class qkSections : public qkList<qkSection> {
public:
    ~qkSections() override;
    qkSection* exist(const qkString& name) const;
};

// Comments "//", "[section]", "key=value", a bare key. Names are case sensitive and trimmed. Lines before the
// first section are passed over; a repeated key replaces the earlier value.
class qkIniFile {
public:
    qkIniFile() = default;
    ~qkIniFile();
    qkIniFile(const qkIniFile&) = delete;
    qkIniFile& operator=(const qkIniFile&) = delete;

    // `name` is a resolved path. With `update`, a file that does not exist is created. False: not opened.
    bool open(const qkString& name, bool update);
    void close();
    bool updateFile();

    qkString read(const qkString& section, const qkString& key, const qkString& def) const;
    void write(const qkString& section, const qkString& key, const qkString& value, const qkString& comment);
    void write(const qkString& section, const qkString& key);
    void write(const qkString& section);
    bool sectionExist(const qkString& section) const;
    bool valueExist(const qkString& section, const qkString& key) const;
    qkValues* getSectionValues(const qkString& section) const;
    void eraseSection(const qkString& section);
    void deleteKey(const qkString& section, const qkString& key);

    static bool getSection(const qkString& line, qkString& name);
    static bool getValue(const qkString& line, qkString& key, qkString& value);

private:
    void readLines(i_stream& in);
    qkValues& section(const qkString& name);
    static void setValue(qkValues& values, const qkString& key, const qkString& value,
                         const qkString& comment);

    qkString m_name;
    qkSections m_sections;
    bool m_update = false;
};

struct qkData {
    qkString name;
    qkString value;
};

class qkDataList : public qkList<qkData> {
public:
    void set(const qkString& text); // name=value; a text without "=" is ignored
    void set(const qkString& name, const qkString& value);
    bool get(const qkString& name, qkString& value) const;
    iterator find(const qkString& name) const;
};

#endif
