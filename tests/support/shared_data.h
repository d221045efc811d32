// Tests on the files that lie beside the project. Where they are not present a test says so and is skipped;
// with QK_TESTS_NO_SKIP=1 in the environment that is a failure.
#ifndef TESTS_SHARED_DATA_H
#define TESTS_SHARED_DATA_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

// QK_SHARED_DATA comes from the test's CMakeLists.txt.
inline std::string sharedPath(const std::string& name)
{
    return std::string(QK_SHARED_DATA "/") + name;
}

inline bool skipIsFailure()
{
    const char* value = std::getenv("QK_TESTS_NO_SKIP");
    return value && std::string(value) == "1";
}

// In the body of a test: ends it with "skipped: <reason>" unless the condition holds.
#define QK_SKIP_UNLESS(condition, reason)                                                                    \
    do {                                                                                                     \
        if (condition) break;                                                                                \
        if (skipIsFailure()) FAIL() << "skipped: " << (reason);                                              \
        GTEST_SKIP() << "skipped: " << (reason);                                                             \
    } while (false)

#define QK_NEED_SHARED(name)                                                                                 \
    QK_SKIP_UNLESS(access(sharedPath(name).c_str(), R_OK) == 0, sharedPath(name) + " is missing")

#endif
