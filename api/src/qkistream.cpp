#include "qkistream.h"

#include <cstdio>

#include "qksession.h"

qkIStream::~qkIStream()
{
    deleteIniFile();
    deleteIStream();
}

void qkIStream::setIStream(i_stream* console)
{
    if (m_iStream != console && m_iStream != &c_in) delete m_iStream;
    m_iStream = console;
}

void qkIStream::deleteIStream()
{
    setIStream(nullptr);
}

bool qkIStream::setIniFile(const qkString& name, bool write)
{
    deleteIniFile();
    m_iniFile = new qkIniFile;
    m_iniWrite = write;
    const bool opened = m_iniFile->open(qkSession::getInPath(name), write);
    if (!opened) deleteIniFile();
    return opened;
}

void qkIStream::deleteIniFile()
{
    delete m_iniFile;
    m_iniFile = nullptr;
    m_iniWrite = false;
}

qkString qkIStream::setIniSection(const qkString& section)
{
    const qkString old(m_section);
    m_section = section;
    return old;
}

qkString qkIStream::getItemValue(const qkString& name, const qkString& def, const qkString& title,
                                 const qkString& comment)
{
    qkString result;
    m_source = m_iStream ? srcConsole : srcDefault;
    if (m_dataList.get(name, result)) {
        m_source = srcDataList;
    } else if (m_iniFile) {
        result = m_iniFile->read(m_section, name, "");
        if (!result.empty()) m_source = srcIniFile;
    }
    if (m_source == srcConsole) {
        result = ask(title.empty() ? name : title, def);
        if (result.empty()) m_source = srcDefault;
    }
    if (m_source == srcDefault) result = def;
    if (isIniWrite()) m_iniFile->write(m_section, name, result, comment);
    return result;
}

// An empty answer, and so the end of the input too, means the default.
qkString qkIStream::ask(const qkString& title, const qkString& def)
{
    c_out << qkString("\n ") + title + " [" + def + "] = ";
    if (c_out.m_file) std::fflush(c_out.m_file);
    qkString answer;
    m_iStream->getline(answer);
    return answer;
}
