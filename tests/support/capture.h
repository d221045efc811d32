// What a stream of the harness writes in a scope, in place of its own sinks.
#ifndef TESTS_CAPTURE_H
#define TESTS_CAPTURE_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "qkcstream.h"
#include "qkstream.h"

template <class Stream>
class SinkText {
public:
    explicit SinkText(Stream& stream) : m_stream(stream), m_sink(open_memstream(&m_text, &m_size))
    {
        m_stream.swap(m_sinks);
        m_stream.addStream(m_sink);
    }
    ~SinkText()
    {
        m_stream.swap(m_sinks);
        m_sink.close();
        std::free(m_text);
    }
    SinkText(const SinkText&) = delete;
    SinkText& operator=(const SinkText&) = delete;

    // What was written since the last call.
    std::string take()
    {
        std::fflush(m_sink.m_file);
        const std::string text(m_text + m_taken, m_size - m_taken);
        m_taken = m_size;
        return text;
    }

private:
    Stream& m_stream;
    qkList<o_stream*> m_sinks;
    char* m_text = nullptr;
    std::size_t m_size = 0;
    std::size_t m_taken = 0;
    o_stream m_sink;
};

// The same for a text stream, under a level mask of the test's choice.
class LevelCapture : public SinkText<qkOStream> {
public:
    explicit LevelCapture(qkOStream& stream, OutputLevel mask = ERR)
        : SinkText(stream), m_leveled(stream), m_oldMask(stream.outLevel())
    {
        m_leveled.setOutLevel(mask);
    }
    ~LevelCapture() { m_leveled.setOutLevel(m_oldMask); }

private:
    qkOStream& m_leveled;
    OutputLevel m_oldMask;
};

#endif
