// LevelCapture: what a text stream writes in a scope, in place of its own sinks, and under a level mask of
// the test's choice. take() gives the text since the last take().
#ifndef TESTS_SUPPORT_LEVEL_CAPTURE_H
#define TESTS_SUPPORT_LEVEL_CAPTURE_H

#include <cstdio>
#include <string>

#include "qkstream.h"

class LevelCapture {
public:
    explicit LevelCapture(qkOStream& stream, OutputLevel mask = ERR)
        : m_stream(stream), m_oldMask(stream.outLevel()), m_sink(std::tmpfile())
    {
        m_stream.swap(m_sinks);
        m_stream.addStream(m_sink);
        m_stream.setOutLevel(mask);
    }
    ~LevelCapture()
    {
        m_stream.swap(m_sinks);
        m_stream.setOutLevel(m_oldMask);
    }
    LevelCapture(const LevelCapture&) = delete;
    LevelCapture& operator=(const LevelCapture&) = delete;

    std::string take()
    {
        std::string text;
        std::fseek(m_sink.m_file, m_taken, SEEK_SET);
        for (int c; (c = std::fgetc(m_sink.m_file)) != EOF;) text += static_cast<char>(c);
        m_taken += static_cast<long>(text.size());
        std::fseek(m_sink.m_file, 0, SEEK_END);
        return text;
    }

private:
    qkOStream& m_stream;
    OutputLevel m_oldMask;
    qkList<o_stream*> m_sinks;
    o_stream m_sink;
    long m_taken = 0;
};

#endif
