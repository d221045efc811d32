#include "qkstream.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

#include "qksession.h"

static qkString getLastErrorMessage()
{
    return std::strerror(errno);
}

static qkString resolvePath(const qkString& name, int mode)
{
    if (mode & ioRawPath) return name;
    if (mode & ioRead) return qkSession::getInPath(name);
    if (mode & ioWrite) return qkSession::getOutPath(name);
    return name;
}

static qkString openMode(int mode)
{
    const char* access = mode & ioRead ? "r" : mode & ioAppend ? "a" : "w";
    return qkString(access) + (mode & ioBinary ? "b" : "");
}

// A directory opens for reading as if it were an empty file.
static std::FILE* openFile(const qkString& path, const qkString& mode)
{
    std::FILE* file = std::fopen(path.c_str(), mode.c_str());
    struct stat status;
    if (!file || fstat(fileno(file), &status) != 0 || !S_ISDIR(status.st_mode)) return file;
    std::fclose(file);
    errno = EISDIR;
    return nullptr;
}

io_stream::io_stream(const qkString& name, int mode, bool warn) : m_file(nullptr)
{
    const qkString path = resolvePath(name, mode);
    m_file = openFile(path, openMode(mode));
    if (m_file || !warn) return;
    const qkString reason = getLastErrorMessage();
    g_ostrm << ERR << "-- Can't open file " << path << (mode & ioRead ? " to read" : " to write") << ": "
            << reason << "\n"
            << END_MSG;
}

io_stream::~io_stream()
{
    close();
}

void io_stream::close()
{
    if (m_file && m_file != stdin && m_file != stdout) std::fclose(m_file);
    m_file = nullptr;
}

bool getlinebuf(std::FILE* file, char* buf, int size, bool& eof)
{
    eof = false;
    if (!file || !std::fgets(buf, size, file)) {
        eof = true;
        return true;
    }
    const int n = static_cast<int>(std::strlen(buf));
    if (n > 0 && buf[n - 1] == '\n') {
        buf[n - 1] = '\0';
        return true;
    }
    return n != size - 1;
}

bool i_stream::getline(qkString& line)
{
    line = "";
    if (!m_file) return false;
    char piece[512];
    bool eof = false;
    bool complete = false;
    while (!complete) {
        complete = getlinebuf(m_file, piece, sizeof piece, eof);
        if (!eof) line += piece; // after a read error the piece may lack its end
    }
    return !line.empty() || !eof;
}

o_stream& operator<<(o_stream& out, const qkString& text)
{
    std::fputs(text.c_str(), out.m_file ? out.m_file : stdout);
    return out;
}

o_stream* createOStream(const qkString& name, bool append)
{
    auto* stream = new o_stream(name, ioWrite | ioRawPath | (append ? ioAppend : 0), true);
    if (stream->isOpen()) return stream;
    delete stream;
    return nullptr;
}

qkSinkList::~qkSinkList()
{
    for (o_stream* sink : m_owned) delete sink;
}

bool qkSinkList::addStream(const qkString& name, bool append)
{
    o_stream* sink = createOStream(name, append);
    if (!sink) return false;
    m_owned.append(sink);
    addStream(*sink);
    return true;
}

void qkOStream::setMsgLevel(MessageLevel level)
{
    m_msgStack.insert(m_msgStack.begin(), m_msgLevel);
    m_msgLevel = level;
}

void qkOStream::restoreMsgLevel()
{
    if (m_msgStack.empty()) {
        m_msgLevel = ERR;
        return;
    }
    m_msgLevel = *m_msgStack.begin();
    m_msgStack.erase(m_msgStack.begin());
}

bool qkOStream::beginMessage(MessageLevel level)
{
    if (static_cast<int>(level) > m_outLevel) return false;
    setMsgLevel(level);
    return true;
}

void qkOStream::endMessageFlush()
{
    endMessage();
    flush();
}

void qkSinkList::flush()
{
    for (o_stream* sink : *this) {
        if (sink->m_file) std::fflush(sink->m_file);
    }
}

void qkSinkList::close()
{
    for (o_stream* sink : *this) sink->close();
}

qkOStream& operator<<(qkOStream& out, MessageLevel level)
{
    if (level == END_MSG)
        out.endMessage();
    else if (level == END_MSG_FLUSH)
        out.endMessageFlush();
    else
        out.setMsgLevel(level);
    return out;
}

qkOStream& operator<<(qkOStream& out, const qkString& text)
{
    if ((out.msgLevel() & out.outLevel()) == 0) return out;
    for (o_stream* sink : out) *sink << text;
    return out;
}
