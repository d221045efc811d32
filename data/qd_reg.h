// Registration of primitives: the only header with registration macros. A macro does nothing but paste names:
// for the primitive <f> it defines
//   tcall_<f>     one plain call
//   tinit_<f>     (forms with I) resets what the call consumed
//   tim_<f>_loop  the loop method, tim_<f>_stat the statistic method (qdtime.h)
//   reg_<f>       the registration of a new test of class `cls`
// Arguments of a call are file-level objects of the suite, so that the timed region holds the call and its
// argument loads and nothing else.
//
// QD_REG(cls, f, arguments...)
//     one call
// QD_REG_X(cls, f, body)
//     a function `int body()` that does the work of one measured call
// QD_REG_I(cls, f, init, arguments...)
//     one call, and a function `void init()` before each: inside the timed region of the loop method, outside
//     of it in the statistic method
// QD_REG_I_X(cls, f, init, body)
//     both
// QD_REG_Ibs(cls, f, init, arguments...)
//     one call, and init in the statistic method only, outside the timed region
// QD_REG_T(cls, f, routine)
//     `int routine(qdTicks&)` starts and stops the tick record itself, around the part to be measured
#ifndef QD_REG_H
#define QD_REG_H

#include "qdtime.h"
#include "qkreg.h"

// The path of a source unit without its extension, from __FILE__.
inline qkString qdUnitPath(const char* file)
{
    const qkString path(file);
    return path.getFileDir() + path.getFileTitle();
}

#define QD_TEST_TAG(cls, macro) #cls "//" macro

#define QD_REG_TEST(cls, f, call, init, macro)                                                               \
    static const bool reg_##f = qkRegTest(new cls(call, init, tim_##f##_loop, tim_##f##_stat, #f,            \
                                                  qdUnitPath(__FILE__), QD_TEST_TAG(cls, macro)))

#define QD_CALL(f, call)                                                                                     \
    static int tcall_##f()                                                                                   \
    {                                                                                                        \
        return call;                                                                                         \
    }

#define QD_INIT(f, init)                                                                                     \
    static int tinit_##f()                                                                                   \
    {                                                                                                        \
        init();                                                                                              \
        return 0;                                                                                            \
    }

#define QD_TIMED(f, loop, stat)                                                                              \
    static qkResult tim_##f##_loop(int n, long long* clocks)                                                 \
    {                                                                                                        \
        return loop;                                                                                         \
    }                                                                                                        \
    static qkResult tim_##f##_stat(int* n, long long* clocks)                                                \
    {                                                                                                        \
        return stat;                                                                                         \
    }

#define QD_PLAIN(cls, f, call, macro)                                                                        \
    QD_CALL(f, call)                                                                                         \
    QD_TIMED(f, qdTimeLoop(#f, n, clocks, [] { return call; }),                                              \
             qdTimeStat(#f, n, clocks, [] { return call; }))                                                 \
    QD_REG_TEST(cls, f, tcall_##f, nullptr, macro)

#define QD_WITH_INIT(cls, f, init, call, macro)                                                              \
    QD_CALL(f, call)                                                                                         \
    QD_INIT(f, init)                                                                                         \
    QD_TIMED(f,                                                                                              \
             qdTimeLoopInit(                                                                                 \
                 #f, n, clocks, [] { init(); }, [] { return call; }),                                        \
             qdTimeStatInit(                                                                                 \
                 #f, n, clocks, [] { init(); }, [] { return call; }))                                        \
    QD_REG_TEST(cls, f, tcall_##f, tinit_##f, macro)

#define QD_REG(cls, f, ...) QD_PLAIN(cls, f, f(__VA_ARGS__), "QD_REG")
#define QD_REG_X(cls, f, body) QD_PLAIN(cls, f, body(), "QD_REG_X")
#define QD_REG_I(cls, f, init, ...) QD_WITH_INIT(cls, f, init, f(__VA_ARGS__), "QD_REG_I")
#define QD_REG_I_X(cls, f, init, body) QD_WITH_INIT(cls, f, init, body(), "QD_REG_I_X")

#define QD_REG_Ibs(cls, f, init, ...)                                                                        \
    QD_CALL(f, f(__VA_ARGS__))                                                                               \
    QD_INIT(f, init)                                                                                         \
    QD_TIMED(f, qdTimeLoop(#f, n, clocks, [] { return f(__VA_ARGS__); }),                                    \
             qdTimeStatInit(                                                                                 \
                 #f, n, clocks, [] { init(); }, [] { return f(__VA_ARGS__); }))                              \
    QD_REG_TEST(cls, f, tcall_##f, tinit_##f, "QD_REG_Ibs")

#define QD_REG_T(cls, f, routine)                                                                            \
    QD_TIMED(f, qdTimeLoopTicks(#f, n, clocks, qdTicks(), routine),                                          \
             qdTimeStatTicks(#f, n, clocks, qdTicks(), routine))                                             \
    QD_REG_TEST(cls, f, nullptr, nullptr, "QD_REG_T")

#endif
