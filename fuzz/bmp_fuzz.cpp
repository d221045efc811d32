// A BMP file of any content. Pictures of more than a million pixels are passed over: a header may ask for as
// much memory as there is, and time is to go to the paths.
#include <cstdlib>
#include <cstring>

#include "memfile.h"
#include "qdimage.h"
#include "qkstream.h"

static bool isLarge(const uint8_t* data, size_t size)
{
    if (size < 26) return false;
    int32_t width, height;
    std::memcpy(&width, data + 18, 4);
    std::memcpy(&height, data + 22, 4);
    if (data[0] == 'M') {
        width = static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(width)));
        height = static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(height)));
    }
    return llabs(static_cast<long long>(width) * height) > 1000000;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (isLarge(data, size)) return 0;
    MemFile file(data, size);
    qdImage image;
    if (image.loadImage(file.path(), -1) && !image.m_data) std::abort();
    return 0;
}
