// Where files are looked for and created. Relative names never refer to the current directory but to the
// input or the output directory, and those in turn to the executable's.
#include "qksession.h"

qkString qkSession::m_exePath;
qkString qkSession::m_defName;
qkString qkSession::m_inDir;
qkString qkSession::m_outDir;

namespace {

bool isSlash(char c)
{
    return c == '/' || c == '\\';
}

// A path that has been through here once passes unchanged.
qkString behindDir(const qkString& dir, const qkString& path)
{
    if (qkSession::isAbsolutePath(path)) return path;
    if (dir.empty()) return qkSession::m_exePath.getFileDir() + path;
    return path.startsWith(dir) ? path : dir + path;
}

} // namespace

bool qkSession::isAbsolutePath(const qkString& path)
{
    return (path.length() > 0 && isSlash(path[0])) || (path.length() > 1 && path[1] == ':');
}

qkString qkSession::genDirName(const qkString& dir)
{
    if (dir.empty()) return m_exePath.getFileDir();
    const qkString full = isSlash(dir[dir.length() - 1]) ? dir : dir + "/";
    return isAbsolutePath(full) ? full : m_exePath.getFileDir() + full;
}

void qkSession::setInDir(const qkString& dir)
{
    m_inDir = genDirName(dir);
}

void qkSession::setOutDir(const qkString& dir)
{
    m_outDir = genDirName(dir);
}

void qkSession::setDefName(const qkString& name)
{
    m_defName = name.empty() ? m_exePath.getFileTitle() : name;
}

// An absolute name gets no extension, and a dot in a directory's name counts like one in the file's.
qkString qkSession::genPathName(const qkString& dir, const qkString& name, const qkString& ext)
{
    if (isAbsolutePath(name)) return name;
    if (name.empty()) return dir + m_defName + ext;
    return name.contains(".") ? dir + name : dir + name + ext;
}

qkString qkSession::genInPath(const qkString& name, const qkString& ext)
{
    return genPathName(m_inDir, name, ext);
}

qkString qkSession::genOutPath(const qkString& name, const qkString& ext)
{
    return genPathName(m_outDir, name, ext);
}

qkString qkSession::getInPath(const qkString& path)
{
    return behindDir(m_inDir, path);
}

qkString qkSession::getOutPath(const qkString& path)
{
    return behindDir(m_outDir, path);
}
