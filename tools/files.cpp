#include "files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "failure.h"

namespace fs = std::filesystem;

[[noreturn]] static void failBySystem()
{
    throw Failure(std::strerror(errno));
}

Bytes readFile(const std::string& path)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) failBySystem();
    struct stat status;
    Bytes bytes;
    if (fstat(fileno(file.get()), &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= INT_MAX)
        bytes.reserve(static_cast<size_t>(status.st_size));

    unsigned char chunk[65536];
    while (const size_t count = std::fread(chunk, 1, sizeof chunk, file.get())) {
        if (bytes.size() + count > INT_MAX) throw Failure("the file has more than 2147483647 bytes");
        bytes.insert(bytes.end(), chunk, chunk + count);
    }
    if (std::ferror(file.get())) failBySystem();
    return bytes;
}

// Of the file that is replaced, or else those that an ordinary new one has.
static mode_t rightsAfter(const fs::file_status& old)
{
    if (fs::exists(old)) return static_cast<mode_t>(old.permissions() & fs::perms::all);
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

static std::FILE* openTemporary(std::string& path, mode_t rights)
{
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) return nullptr;
    std::FILE* file = fchmod(descriptor, rights) == 0 ? fdopen(descriptor, "wb") : nullptr;
    if (!file) {
        close(descriptor);
        unlink(path.c_str());
    }
    return file;
}

OutputFile::OutputFile(const std::string& path)
{
    std::error_code ignored;
    const fs::path behindLinks = fs::canonical(path, ignored); // empty when there is no such file
    m_target = behindLinks.empty() ? path : behindLinks.string();
    const fs::file_status status = fs::status(m_target, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        m_file = std::fopen(m_target.c_str(), "wb");
        if (!m_file) failBySystem();
        return;
    }
    // A folder lets go of a file that is itself protected from writing.
    if (fs::exists(status) && access(m_target.c_str(), W_OK) != 0) failBySystem();
    std::string temporary = fs::path(m_target).replace_filename(".unfinished.XXXXXX");
    m_file = openTemporary(temporary, rightsAfter(status));
    if (!m_file) failBySystem();
    m_temporary = temporary;
}

OutputFile::~OutputFile()
{
    if (m_file) std::fclose(m_file);
    if (!m_temporary.empty()) unlink(m_temporary.c_str());
}

void OutputFile::write(const void* data, std::size_t size)
{
    if (std::fwrite(data, 1, size, m_file) != size) failBySystem();
}

void OutputFile::commit()
{
    std::FILE* file = m_file;
    m_file = nullptr;
    if (std::fclose(file) != 0) failBySystem();
    if (m_temporary.empty()) return;
    if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0) failBySystem();
    m_temporary.clear();
}
