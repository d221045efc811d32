// Parameter values of any text: lists, step rules, names, numbers and sizes. What a parameter accepts it must
// print in a form that it reads back to the same text.
#include <cstdlib>
#include <string>

#include "qdtype.h"
#include "qkparm.h"

template <class Parm>
static void readBack(Parm& parm, const qkString& text)
{
    try {
        parm.translate(text);
    } catch (const qkException&) {
        return;
    }
    const qkString printed = parm.defaultString();
    parm.translate(printed);
    if (parm.defaultString() != printed) std::abort();
    int steps = 0;
    for (bool more = parm.firstValue(); more && steps < 1000; more = parm.nextValue()) steps++;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    qkIterator<int> list("List", "");
    readBack(list, text.c_str());
    qkStepIterator<int> rule("Rule", "");
    readBack(rule, text.c_str());
    qkIterator<QovSize> sizes("Sizes", "");
    readBack(sizes, text.c_str());
    qkDefault<int> number(0, "Number", "");
    readBack(number, text.c_str());
    qkMapDefault<int> method(0, "Method", "");
    method[0] = "Auto";
    method[1] = "Manual";
    readBack(method, text.c_str());
    return 0;
}
