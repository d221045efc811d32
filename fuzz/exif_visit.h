// Asks an Exif reader for everything it can tell, whatever it has read.
#ifndef FUZZ_EXIF_VISIT_H
#define FUZZ_EXIF_VISIT_H

#include <cstdlib>
#include <cstring>

#include "jpegmeta.h"

// data, size: the structure that `meta` has read. Numbers one beside the valid ones are asked for too.
inline void visitExif(const CJPEGMetaData& meta, const Qov8u* data, int size)
{
    for (int ifd = -1; ifd <= CJPEGMetaData::NUM_IFDS; ifd++) {
        const int entries = meta.GetIfdNumEntries(ifd);
        for (int entry = -1; entry <= entries; entry++) {
            char* const text = meta.ShowIfdData(ifd, entry);
            if (text && (entry < 0 || entry == entries)) std::abort();
            if (text && std::strlen(text) > 100000000) std::abort(); // walks the text to its end
            delete[] text;
        }
    }
    const Qov8u* const thumbnail = meta.GetJPEGThumbnailsData();
    const int length = meta.GetJPEGThumbnailsLen();
    if (thumbnail && (thumbnail < data || thumbnail > data + size || length > data + size - thumbnail))
        std::abort();
}

#endif
