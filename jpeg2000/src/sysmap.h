// Files mapped to memory, by calls of the operating system.
#ifndef JPEG2000_SYSMAP_H
#define JPEG2000_SYSMAP_H

#include "sysfile.h"

namespace jpeg2000 {

// Of a map, what its views may be: sysMapShared allows every view, the others only private ones.
enum SysMapAccess {
    sysMapPrivate = 0, // read and write, without effect on the file
    sysMapShared = 1,  // read and write the file
    sysMapReadOnly = 2 // private
};

struct SysMap {
    int descriptor;
    int access;
    uint32_t size;
};

struct SysMapView {
    uint8_t* base;   // of the pages; null for a view of no bytes
    uint32_t shift;  // of the first byte asked for within them
    uint64_t length; // from the base on
};

// A writable file that is shorter than `size` grows to it; one that may only be read is sysFailed then. The
// file must stay open as long as views are made.
SysStatus sysMemoryMapCreate(const SysFile* file, int access, uint32_t size, SysMap** map);
SysStatus sysMemoryMapClose(SysMap* map);

// Views outlive their map. A part that reaches beyond the map, and an access that it does not allow, are
// sysFailed.
SysStatus sysMemoryMapViewCreate(const SysMap* map, int access, uint32_t offset, uint32_t size,
                                 SysMapView** view);
// Writes back what a shared view has changed. The record is gone whatever the answer.
SysStatus sysMemoryMapViewClose(SysMapView* view);
// sysFailed for a view of no bytes.
SysStatus sysMemoryMapViewGetAddr(const SysMapView* view, uint8_t** address);

} // namespace jpeg2000

#endif
