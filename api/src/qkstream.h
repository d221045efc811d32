// The text channel: file wrappers, the message stream g_ostrm filtered by level, and the tracing of calls.
// The idiom everywhere is a level, the text, then END_MSG, chained:
//     g_ostrm << ERR << "-- No luck\n" << END_MSG;
#ifndef QK_STREAM_H
#define QK_STREAM_H

#include <cstdio>

#include "qkstring.h"

// The class of one message. END_MSG and END_MSG_FLUSH are commands to the stream.
enum MessageLevel {
    ERR = 1,
    WARN = 2,
    PERF = 4,
    INFO = 8,
    TRACE = 16,
    MEM = 32,
    DATA = 64,
    END_MSG = -10,
    END_MSG_FLUSH = -11
};

// Bit mask of the message levels that console and text files let through.
using OutputLevel = int;

enum io_mode {
    ioRead = 1,   // the path goes through qkSession::getInPath
    ioWrite = 2,  // the path goes through qkSession::getOutPath
    ioAppend = 4, // with ioWrite: append
    ioBinary = 8,
    ioRawPath = 256 // the path as it is
};

// A file, or stdin, stdout, or nothing (m_file null). Closes what it opened.
class io_stream {
public:
    io_stream(const qkString& name, int mode, bool warn);
    explicit io_stream(std::FILE* file) : m_file(file) {}
    virtual ~io_stream();
    io_stream(const io_stream&) = delete;
    io_stream& operator=(const io_stream&) = delete;

    bool isOpen() const { return m_file != nullptr; }
    // fclose, unless it is stdin or stdout. The stream is left without a file.
    void close();

    std::FILE* m_file;
};

class i_stream : public io_stream {
public:
    using io_stream::io_stream;
    // One line of any length without its line feed. False only at the end of input with nothing read.
    bool getline(qkString& line);
};

class o_stream : public io_stream {
public:
    using io_stream::io_stream;
};

// Writes to the file, or to standard output if there is none.
o_stream& operator<<(o_stream& out, const qkString& text);

// A heap stream on a file whose path is already resolved; null, after a message, if it does not open.
o_stream* createOStream(const qkString& name, bool append);

// One piece of a line into `buf`; true when the line is complete or the input has ended (`eof`).
bool getlinebuf(std::FILE* file, char* buf, int size, bool& eof);

extern i_stream c_in;
extern o_stream c_out;

// Where a stream writes to: any number of files, none of them meaning that all output is swallowed.
class qkSinkList : public qkList<o_stream*> {
public:
    ~qkSinkList() override; // closes what addStream(name) opened; sinks of others may be gone by then

    // `name` is a resolved path. False, after a message, if it does not open.
    bool addStream(const qkString& name, bool append);
    void addStream(o_stream& stream) { append(&stream); }
    void flush();
    void close(); // the sinks stay in the list

private:
    qkList<o_stream*> m_owned;
};

class qkOStream : public qkSinkList {
public:
    explicit qkOStream(OutputLevel outLevel = 1, MessageLevel msgLevel = PERF)
        : m_outLevel(outLevel), m_msgLevel(msgLevel)
    {
    }
    void setOutLevel(OutputLevel level) { m_outLevel = level; }
    OutputLevel outLevel() const { return m_outLevel; }
    void setMsgLevel(MessageLevel level);
    MessageLevel msgLevel() const { return m_msgLevel; }
    void restoreMsgLevel();

    // False, and nothing changes, if the level as a number exceeds the mask as a number: a text that surely
    // would not pass need not be formed. True does not promise that the mask lets it through.
    bool beginMessage(MessageLevel level);
    void endMessage() { restoreMsgLevel(); }
    void endMessageFlush();

private:
    OutputLevel m_outLevel;
    MessageLevel m_msgLevel;
    qkList<MessageLevel> m_msgStack; // most recent first
};

qkOStream& operator<<(qkOStream& out, MessageLevel level);
qkOStream& operator<<(qkOStream& out, const qkString& text);

template <class T>
qkOStream& tsOutTpl(qkOStream& out, const T& value)
{
    qkString text;
    text << value;
    return out << text;
}
inline qkOStream& operator<<(qkOStream& out, const char* value)
{
    return tsOutTpl(out, value);
}
inline qkOStream& operator<<(qkOStream& out, char value)
{
    return tsOutTpl(out, value);
}
inline qkOStream& operator<<(qkOStream& out, unsigned char value)
{
    return tsOutTpl(out, value);
}
inline qkOStream& operator<<(qkOStream& out, int value)
{
    return tsOutTpl(out, value);
}
inline qkOStream& operator<<(qkOStream& out, unsigned value)
{
    return tsOutTpl(out, value);
}
inline qkOStream& operator<<(qkOStream& out, long long value)
{
    return tsOutTpl(out, value);
}
inline qkOStream& operator<<(qkOStream& out, double value)
{
    return tsOutTpl(out, value);
}

// Open traced calls, most recent first. It serves too when no trace is printed: after an exception it tells
// which hook of a test was running.
class qkTrace : public qkList<qkString> {
public:
    void traceIn(const qkString& name);
    void traceOut(const qkString& name);
    void flush();
    qkString getCurName() const;

    // The two strings that grow with the trace; the run loop clears and restores them.
    qkString m_lastLine;
    qkString m_indent;

private:
    void traceLine(const char* what, const qkString& name);
};

extern qkOStream g_ostrm;
extern qkTrace g_trace;

#endif
