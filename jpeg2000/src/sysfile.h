// Files, by calls of the operating system. Everything answers with a status.
#ifndef JPEG2000_SYSFILE_H
#define JPEG2000_SYSFILE_H

#include <cstdint>

namespace jpeg2000 {

enum SysStatus { sysOk = 0, sysBadParameter = 1, sysNoMemory = 2, sysFailed = 3 };

enum SysFileAccess { sysFileRead = 1, sysFileWrite = 2 }; // together: both

enum SysFileDisposition {
    sysFileCreateNew = 0, // fails for a file that exists
    sysFileOpenExisting = 1,
    sysFileTruncateExisting = 2,
    sysFileOpenOrCreate = 3,
    sysFileCreateOrTruncate = 4
};

struct SysFile {
    int descriptor;
    bool isWritable;
};

// flags: further ones for open(2). A failure leaves null in *handle, and nothing opened.
SysStatus sysFileCreate(const char* path, int access, int disposition, int flags, SysFile** handle);
// A null handle is closed already. The record is gone whatever the answer.
SysStatus sysFileClose(SysFile* handle);
// 0 for a directory, and where the answer is not sysOk: a size beyond 32 bits is sysFailed.
SysStatus sysFileGetSize(const SysFile* handle, uint32_t* size);

} // namespace jpeg2000

#endif
