// Dialogue: the console of a scope, with the answers it gives and the questions it is asked.
#ifndef TESTS_DIALOGUE_H
#define TESTS_DIALOGUE_H

#include <cstdio>
#include <string>
#include <utility>

#include "qkistream.h"
#include "qkstream.h"

class Dialogue {
public:
    explicit Dialogue(const char* answers = "")
    {
        std::fputs(answers, c_in.m_file);
        std::rewind(c_in.m_file);
    }
    ~Dialogue()
    {
        std::fclose(c_in.m_file);
        std::fclose(c_out.m_file);
        c_in.m_file = m_in;
        c_out.m_file = m_out;
    }
    Dialogue(const Dialogue&) = delete;
    Dialogue& operator=(const Dialogue&) = delete;

    std::string questions() const
    {
        std::string text;
        std::rewind(c_out.m_file);
        for (int c; (c = std::fgetc(c_out.m_file)) != EOF;) text += static_cast<char>(c);
        return text;
    }

private:
    std::FILE* m_in = std::exchange(c_in.m_file, std::tmpfile());
    std::FILE* m_out = std::exchange(c_out.m_file, std::tmpfile());
};

#endif
