// What a stream of the harness writes, caught in a temporary file that is a sink of the stream for as long as
// the object lives.
#ifndef TESTS_SUPPORT_CAPTURE_H
#define TESTS_SUPPORT_CAPTURE_H

#include <cstdio>
#include <string>

#include "qkstream.h"

template <class Stream>
class Capture {
public:
    explicit Capture(Stream& stream) : m_stream(stream), m_sink(std::tmpfile()) { stream.addStream(m_sink); }
    ~Capture()
    {
        for (auto i = m_stream.begin(); i != m_stream.end();) {
            if (*i == &m_sink)
                i = m_stream.erase(i);
            else
                ++i;
        }
    }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    std::string text()
    {
        std::string text;
        std::rewind(m_sink.m_file);
        for (int c; (c = std::fgetc(m_sink.m_file)) != EOF;) text += static_cast<char>(c);
        return text;
    }

private:
    Stream& m_stream;
    o_stream m_sink;
};

#endif
