// The harness's one exception, and the watch that turns SIGFPE, SIGILL and SIGSEGV into it.
#ifndef QK_EXCEPTION_H
#define QK_EXCEPTION_H

#include <csetjmp>
#include <csignal>
#include <exception>

#include "qkstring.h"

class qkException : public std::exception {
public:
    explicit qkException(const qkString& info); // "--QOV. Exception: ..."
    explicit qkException(const char* signal);   // "--QOV. Signal: ..."
    const char* what() const noexcept override { return m_msg; }
    const char* msg() const { return m_msg; }
    const char* info() const { return m_info; }

private:
    char m_msg[256]; // texts are cut, never overflow
    char m_info[256];
};

// The signal watch. While a target is armed, a watched signal jumps there; with none armed the signal takes
// its default course, so that the process dies honestly. The handler runs on a stack of its own, so a stack
// overflow is caught too, and any number of signals can be caught in one run.
class tsSignal {
public:
    tsSignal();                   // installs the handlers
    static const char* getInfo(); // text of the signal that was caught last

    // Saves the armed target and puts it back at the end of the scope.
    class Scope {
    public:
        Scope();
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        static void arm();

    private:
        sigjmp_buf m_saved;
        bool m_wasArmed;
    };

    static sigjmp_buf m_jmpbuf;
    static volatile std::sig_atomic_t m_code;

private:
    static volatile std::sig_atomic_t m_armed;
    static void sig_fpe(int code);
};

extern tsSignal _g_signal;

// Runs `body`. A watched signal inside it arrives at the caller as a qkException; objects that were alive
// between are not destroyed. Nests: the outer target is live again afterwards. Never inlined, so that the
// caller's locals keep their values over a jump.
template <class Body>
[[gnu::noinline]] void qkGuardSignals(Body&& body)
{
    tsSignal::Scope scope;
    if (sigsetjmp(tsSignal::m_jmpbuf, 1) != 0) throw qkException(tsSignal::getInfo());
    tsSignal::Scope::arm();
    body();
}

#endif
