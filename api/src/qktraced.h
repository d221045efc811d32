// A call with its name in the trace.
#ifndef QK_TRACED_H
#define QK_TRACED_H

#include <type_traits>

#include "qkstream.h"

// Hands on what `body` answers. When it throws or a signal leaves it, the name stays open on purpose: it
// tells where that happened.
template <class Body>
auto qkTraced(const char* name, Body body)
{
    g_trace.traceIn(name);
    if constexpr (std::is_void_v<decltype(body())>) {
        body();
        g_trace.traceOut(name);
    } else {
        const auto answer = body();
        g_trace.traceOut(name);
        return answer;
    }
}

#endif
