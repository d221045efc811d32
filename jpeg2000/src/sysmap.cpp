#include "sysmap.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <new>

namespace jpeg2000 {

namespace {

bool makeAtLeast(const SysFile& file, uint32_t size)
{
    struct stat status;
    if (fstat(file.descriptor, &status) != 0) return false;
    if (status.st_size >= off_t{size}) return true;
    const char zero = 0;
    return file.isWritable && pwrite(file.descriptor, &zero, 1, off_t{size} - 1) == 1;
}

} // namespace

SysStatus sysMemoryMapCreate(const SysFile* file, int access, uint32_t size, SysMap** map)
{
    if (!map) return sysBadParameter;
    *map = nullptr;
    if (!file || access < sysMapPrivate || access > sysMapReadOnly) return sysBadParameter;
    if (!makeAtLeast(*file, size)) return sysFailed;
    *map = new (std::nothrow) SysMap{file->descriptor, access, size};
    return *map ? sysOk : sysNoMemory;
}

SysStatus sysMemoryMapClose(SysMap* map)
{
    delete map;
    return sysOk;
}

SysStatus sysMemoryMapViewCreate(const SysMap* map, int access, uint32_t offset, uint32_t size,
                                 SysMapView** view)
{
    static constexpr struct {
        int protection, sharing;
    } modes[] = {{PROT_READ | PROT_WRITE, MAP_PRIVATE},
                 {PROT_READ | PROT_WRITE, MAP_SHARED},
                 {PROT_READ, MAP_PRIVATE}};
    if (!view) return sysBadParameter;
    *view = nullptr;
    if (!map || access < sysMapPrivate || access > sysMapReadOnly) return sysBadParameter;
    if (size > map->size || offset > map->size - size) return sysFailed;
    if (access == sysMapShared && map->access != sysMapShared) return sysFailed;

    std::unique_ptr<SysMapView> created(new (std::nothrow) SysMapView{});
    if (!created) return sysNoMemory;
    if (size > 0) {
        created->shift = offset % static_cast<uint32_t>(sysconf(_SC_PAGESIZE));
        created->length = uint64_t{size} + created->shift;
        void* base = mmap(nullptr, created->length, modes[access].protection, modes[access].sharing,
                          map->descriptor, off_t{offset} - created->shift);
        if (base == MAP_FAILED) return sysFailed;
        created->base = static_cast<uint8_t*>(base);
    }
    *view = created.release();
    return sysOk;
}

SysStatus sysMemoryMapViewClose(SysMapView* view)
{
    if (!view) return sysOk;
    bool isDone = true;
    if (view->base) {
        isDone = msync(view->base, view->length, MS_INVALIDATE | MS_SYNC) == 0;
        isDone = munmap(view->base, view->length) == 0 && isDone;
    }
    delete view;
    return isDone ? sysOk : sysFailed;
}

SysStatus sysMemoryMapViewGetAddr(const SysMapView* view, uint8_t** address)
{
    if (!view || !address) return sysBadParameter;
    *address = view->base ? view->base + view->shift : nullptr;
    return *address ? sysOk : sysFailed;
}

} // namespace jpeg2000
