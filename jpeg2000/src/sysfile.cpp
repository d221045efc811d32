#include "sysfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iterator>
#include <memory>
#include <new>

namespace jpeg2000 {

SysStatus sysFileCreate(const char* path, int access, int disposition, int flags, SysFile** handle)
{
    static constexpr int modes[] = {-1, O_RDONLY, O_WRONLY, O_RDWR};
    static constexpr int creation[] = {O_CREAT | O_EXCL, 0, O_TRUNC, O_CREAT, O_CREAT | O_TRUNC};
    if (!handle) return sysBadParameter;
    *handle = nullptr;
    if (!path || access < sysFileRead || access >= static_cast<int>(std::size(modes)) || disposition < 0 ||
        disposition >= static_cast<int>(std::size(creation)))
        return sysBadParameter;

    std::unique_ptr<SysFile> file(new (std::nothrow) SysFile);
    if (!file) return sysNoMemory;
    file->descriptor = open(path, modes[access] | creation[disposition] | flags, 0644);
    file->isWritable = (access & sysFileWrite) != 0;
    if (file->descriptor < 0) return sysFailed;
    *handle = file.release();
    return sysOk;
}

SysStatus sysFileClose(SysFile* handle)
{
    if (!handle) return sysOk;
    const int result = close(handle->descriptor);
    delete handle;
    return result == 0 ? sysOk : sysFailed;
}

SysStatus sysFileGetSize(const SysFile* handle, uint32_t* size)
{
    if (!handle || !size) return sysBadParameter;
    *size = 0;
    struct stat status;
    if (fstat(handle->descriptor, &status) != 0) return sysFailed;
    if (S_ISDIR(status.st_mode)) return sysOk;
    if (status.st_size > UINT32_MAX) return sysFailed;
    *size = static_cast<uint32_t>(status.st_size);
    return sysOk;
}

} // namespace jpeg2000
