// The payload of an Exif segment, of any content: every entry is shown.
#include "exif_visit.h"

#include <climits>
#include <cstddef>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > INT_MAX) return 0;
    static CJPEGMetaData meta; // in use again and again, as its dictionary is large
    const int length = static_cast<int>(size);
    static_cast<void>(meta.ProcessAPP1_Exif(data, length));
    visitExif(meta, data, length);
    meta.Destroy();
    visitExif(meta, data, length);
    return 0;
}
