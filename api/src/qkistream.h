// Where a parameter gets its value: -d before ini file before console before default.
#ifndef QK_ISTREAM_H
#define QK_ISTREAM_H

#include "qkinifile.h"
#include "qkstream.h"

class qkIStream {
public:
    enum Source { srcDefault = 0, srcConsole = 1, srcIniFile = 2, srcDataList = 3, srcNone = 4 };

    qkIStream() : m_section("Quolkit") {}
    ~qkIStream();
    qkIStream(const qkIStream&) = delete;
    qkIStream& operator=(const qkIStream&) = delete;

    // The console; null switches prompts off. The old one is deleted unless it is c_in.
    void setIStream(i_stream* console);
    bool hasConsole() const { return m_iStream != nullptr; }
    void deleteIStream();

    // True if the file opened. `write`: values are written back at deleteIniFile.
    bool setIniFile(const qkString& name, bool write);
    void deleteIniFile();
    qkIniFile* iniFile() const { return m_iniFile; }
    bool isIniWrite() const { return m_iniWrite && m_iniFile; }

    // Returns the section that was current.
    qkString setIniSection(const qkString& section);
    void close() {}

    // `title` is what the console is asked (empty: the name), `comment` goes behind a value written to the
    // ini file.
    qkString getItemValue(const qkString& name, const qkString& def, const qkString& title,
                          const qkString& comment);
    int source() const { return m_source; }

    qkDataList m_dataList;

private:
    qkString ask(const qkString& title, const qkString& def);

    i_stream* m_iStream = nullptr;
    qkIniFile* m_iniFile = nullptr;
    qkString m_section;
    bool m_iniWrite = false;
    int m_source = srcNone;
};

extern qkIStream g_istrm;

#endif
