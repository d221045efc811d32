// An ini file of any content: reading it, asking it, changing it and writing it back.
#include <cstdlib>

#include "memfile.h"
#include "qkinifile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    MemFile file(data, size);
    qkIniFile ini;
    if (!ini.open(file.path(), true)) std::abort();
    ini.read("Quolkit", "Method", "none");
    ini.write("Quolkit", "Method", "Auto", "comment");
    if (ini.read("Quolkit", "Method", "none") != "Auto") std::abort();
    if (ini.valueExist("a", "b")) ini.deleteKey("a", "b");
    if (ini.sectionExist("c")) ini.eraseSection("c");
    ini.close();

    // What was written reads back.
    qkIniFile again;
    if (!again.open(file.path(), false)) std::abort();
    if (again.read("Quolkit", "Method", "none") != "Auto") std::abort();
    return 0;
}
