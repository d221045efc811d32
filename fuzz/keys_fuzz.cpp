// A key file or .cfg line of any content: words, quotes, keys and the letters of their arguments.
#include <string>

#include "qkcommand.h"
#include "qkconditions.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    qkCommandList keys;
    keys.setArgs(text.c_str());
    for (qkCommandKey& key : keys) {
        qkString arg;
        keys.getArg(key.m_key, arg);
        getAskLevel(arg);
        getLevel(arg);
        getPriority(arg);
        getCondition(arg);
    }
    return 0;
}
