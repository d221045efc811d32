// Outcome of a test, ordered: a larger value is worse, and results are merged by taking the larger.
#ifndef QK_RESULT_H
#define QK_RESULT_H

// value name, text, class
#define QK_RESULTS(X)                                                                                        \
    X(UNDEFINED, "was not run")                                                                              \
    X(OK, "successfully")                                                                                    \
    X(ACCURWRN, "wrong measure accuracy")                                                                    \
    X(BADSTSWRN, "modified control status")                                                                  \
    X(DATAWRN, "test data warning")                                                                          \
    X(FUNCWRN, "lib function warning")                                                                       \
    X(WARNING, "warning")                                                                                    \
    X(ACCURFAIL, "accuracy error")                                                                           \
    X(DATAFAIL, "test data error")                                                                           \
    X(FUNCFAIL, "lib function error")                                                                        \
    X(EXCPTFAIL, "exception")                                                                                \
    X(FAIL, "error")

#define QK_RESULT_NAME(name, text) name,
enum qkResult { QK_RESULTS(QK_RESULT_NAME) qkNumResults };
#undef QK_RESULT_NAME

const char* qkResultName(int result);   // "UNKNOWN" for other values
const char* qkResultString(int result); // "unknown result"

inline bool qkIsWarning(int result)
{
    return result >= ACCURWRN && result <= WARNING;
}
inline bool qkIsError(int result)
{
    return result >= ACCURFAIL;
}
inline qkResult qkWorse(qkResult a, qkResult b)
{
    return a > b ? a : b;
}

#endif
