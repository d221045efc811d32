#include "qkinifile.h"

#include "qkstream.h"

// The value of a key that stands without "=".
static const char* const bareKey = "~~~";

// The first record whose `field` is `name`.
template <class Record>
static typename qkList<Record>::iterator findRecord(const qkList<Record>& list, qkString Record::*field,
                                                    const qkString& name)
{
    auto i = list.begin();
    while (i != list.end() && (*i).*field != name) ++i;
    return i;
}

template <class Record>
static Record* existRecord(const qkList<Record>& list, qkString Record::*field, const qkString& name)
{
    const auto i = findRecord(list, field, name);
    return i == list.end() ? nullptr : &*i;
}

static qkString trimmed(const qkString& text)
{
    qkString result(text);
    result.trim();
    return result;
}

qkValue* qkValues::exist(const qkString& key) const
{
    return existRecord(*this, &qkValue::key, key);
}

qkSections::~qkSections()
{
    for (qkSection& section : *this) delete section.values;
}

qkSection* qkSections::exist(const qkString& name) const
{
    return existRecord(*this, &qkSection::name, name);
}

qkIniFile::~qkIniFile()
{
    close();
}

bool qkIniFile::open(const qkString& name, bool update)
{
    close();
    m_name = name;
    m_update = update;
    i_stream in(name, ioRead | ioRawPath, !update);
    if (in.isOpen()) {
        readLines(in);
        return true;
    }
    if (update && o_stream(name, ioWrite | ioRawPath, true).isOpen()) return true;
    m_update = false;
    return false;
}

void qkIniFile::readLines(i_stream& in)
{
    qkValues* current = nullptr;
    for (qkString line; in.getline(line);) {
        const int comment = line.find("//");
        if (comment != qkString::npos) line = line.substr(0, comment);
        line.trim();
        qkString name, value;
        if (line.empty()) continue;
        if (getSection(line, name))
            current = &section(trimmed(name));
        else if (current && getValue(line, name, value))
            setValue(*current, trimmed(name), trimmed(value), "");
    }
}

void qkIniFile::close()
{
    updateFile();
    m_update = false;
    for (auto i = m_sections.begin(); i != m_sections.end(); i = m_sections.erase(i)) delete i->values;
}

static qkString valueLine(const qkValue& record)
{
    qkString line(record.key);
    if (record.value != bareKey) line << "=" << record.value;
    if (record.value != bareKey && !record.comment.empty()) line << "\t// " << record.comment;
    return line << "\n";
}

bool qkIniFile::updateFile()
{
    if (!m_update) return false;
    o_stream out(m_name, ioWrite | ioRawPath, true);
    if (!out.isOpen()) return false;
    for (const qkSection& section : m_sections) {
        out << qkString("\n[") + section.name + "]\n";
        for (const qkValue& record : *section.values) out << valueLine(record);
    }
    return true;
}

qkString qkIniFile::read(const qkString& section, const qkString& key, const qkString& def) const
{
    const qkValues* values = getSectionValues(section);
    const qkValue* record = values ? values->exist(key) : nullptr;
    return record ? record->value : def;
}

void qkIniFile::write(const qkString& sectionName, const qkString& key, const qkString& value,
                      const qkString& comment)
{
    qkValues& values = section(sectionName);
    const qkString name = trimmed(key);
    if (!name.empty()) setValue(values, name, value, comment);
}

void qkIniFile::write(const qkString& sectionName, const qkString& key)
{
    write(sectionName, key, bareKey, "");
}

void qkIniFile::write(const qkString& sectionName)
{
    section(sectionName);
}

bool qkIniFile::sectionExist(const qkString& section) const
{
    return m_sections.exist(section) != nullptr;
}

bool qkIniFile::valueExist(const qkString& section, const qkString& key) const
{
    const qkValues* values = getSectionValues(section);
    return values && values->exist(key);
}

qkValues* qkIniFile::getSectionValues(const qkString& section) const
{
    const qkSection* found = m_sections.exist(section);
    return found ? found->values : nullptr;
}

void qkIniFile::eraseSection(const qkString& section)
{
    const auto found = findRecord(m_sections, &qkSection::name, section);
    if (found == m_sections.end()) return;
    delete found->values;
    m_sections.erase(found);
}

void qkIniFile::deleteKey(const qkString& section, const qkString& key)
{
    if (qkValues* values = getSectionValues(section)) values->erase(findRecord(*values, &qkValue::key, key));
}

bool qkIniFile::getSection(const qkString& line, qkString& name)
{
    const int open = line.find("[");
    if (open == qkString::npos) return false;
    const int close = line.find("]", open);
    if (close == qkString::npos) return false;
    name = line.substr(open + 1, close - open - 1);
    return true;
}

bool qkIniFile::getValue(const qkString& line, qkString& key, qkString& value)
{
    const int equal = line.find("=");
    key = equal == qkString::npos ? line : line.substr(0, equal);
    value = equal == qkString::npos ? qkString(bareKey) : line.substr(equal + 1);
    return true;
}

// The section, made at the end of the file if there is none.
qkValues& qkIniFile::section(const qkString& name)
{
    qkSection* found = m_sections.exist(name);
    if (!found) found = &*m_sections.append({name, new qkValues});
    return *found->values;
}

// A key that is there already keeps its place and its comment.
void qkIniFile::setValue(qkValues& values, const qkString& key, const qkString& value,
                         const qkString& comment)
{
    if (qkValue* record = values.exist(key))
        record->value = value;
    else
        values.append({key, value, comment});
}

void qkDataList::set(const qkString& text)
{
    const int equal = text.find("=");
    if (equal != qkString::npos) set(text.substr(0, equal), text.substr(equal + 1));
}

void qkDataList::set(const qkString& name, const qkString& value)
{
    const qkData data{trimmed(name), trimmed(value)};
    if (data.name.empty()) return;
    erase(find(data.name));
    append(data);
}

bool qkDataList::get(const qkString& name, qkString& value) const
{
    const iterator found = find(name);
    if (found == end()) return false;
    value = found->value;
    return true;
}

qkDataList::iterator qkDataList::find(const qkString& name) const
{
    return findRecord(*this, &qkData::name, name);
}
