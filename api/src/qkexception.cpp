#include "qkexception.h"

#include <cstdio>
#include <cstring>

namespace {

// The handlers' own stack: on a stack overflow the ordinary one has no room for them. 64 KiB hold the largest
// register state that a processor of today saves in a signal frame several times over.
constexpr int signalStackSize = 64 * 1024;
alignas(64) char s_signalStack[signalStackSize];

struct SignalText {
    int code;
    const char* text;
};
const SignalText signalTexts[] = {
    {SIGFPE, "FP error, such as overflow, division by zero, invalid operation."},
    {SIGILL, "Illegal instruction."},
    {SIGSEGV, "Illegal storage access."},
};

} // namespace

qkException::qkException(const qkString& info)
{
    std::snprintf(m_msg, sizeof m_msg, "--QOV. Exception: %s", info.c_str());
    std::snprintf(m_info, sizeof m_info, "%s", info.c_str());
}

qkException::qkException(const char* signal)
{
    std::snprintf(m_msg, sizeof m_msg, "--QOV. Signal: %s", signal);
    std::snprintf(m_info, sizeof m_info, "%s", signal);
}

sigjmp_buf tsSignal::m_jmpbuf;
volatile std::sig_atomic_t tsSignal::m_code = 0;
volatile std::sig_atomic_t tsSignal::m_armed = 0;

tsSignal::tsSignal()
{
    stack_t stack{};
    stack.ss_sp = s_signalStack;
    stack.ss_size = sizeof s_signalStack;
    sigaltstack(&stack, nullptr);

    struct sigaction action {};
    action.sa_handler = sig_fpe;
    action.sa_flags = SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (const SignalText& row : signalTexts) sigaction(row.code, &action, nullptr);
}

const char* tsSignal::getInfo()
{
    for (const SignalText& row : signalTexts) {
        if (row.code == m_code) return row.text;
    }
    return "Unknown exception";
}

// Disarms before the jump: a crash on the way to the catch must not come back here for ever.
void tsSignal::sig_fpe(int code)
{
    if (!m_armed) {
        std::signal(code, SIG_DFL);
        std::raise(code); // blocked until this handler returns
        return;
    }
    m_code = code;
    m_armed = 0;
    siglongjmp(m_jmpbuf, -1);
}

// Not armed until arm(): the buffer is about to be overwritten.
tsSignal::Scope::Scope() : m_wasArmed(m_armed != 0)
{
    std::memcpy(&m_saved, &m_jmpbuf, sizeof m_saved);
    m_armed = 0;
}

tsSignal::Scope::~Scope()
{
    m_armed = 0;
    std::memcpy(&m_jmpbuf, &m_saved, sizeof m_saved);
    m_armed = m_wasArmed;
}

void tsSignal::Scope::arm()
{
    m_armed = 1;
}
