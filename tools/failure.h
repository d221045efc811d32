// What ends a command: a text for the one line on stderr.
#ifndef TOOLS_FAILURE_H
#define TOOLS_FAILURE_H

#include <new>
#include <stdexcept>
#include <string>

class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The user's fault, not a file's.
class UsageFailure : public Failure {
public:
    using Failure::Failure;
};

// Does work on a file: a failure in it gets the file's name in front.
template <class Work>
auto onFile(const std::string& name, Work&& work)
{
    try {
        return work();
    } catch (const Failure& failure) {
        throw Failure(name + ": " + failure.what());
    } catch (const std::bad_alloc&) {
        throw Failure(name + ": out of memory");
    }
}

#endif
