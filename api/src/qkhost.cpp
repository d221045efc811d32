// Who this machine is, asked of the system: name, architecture, memory, system and kernel.
#include "qkhost.h"

#include <sys/utsname.h>
#include <unistd.h>

#include "qkformat.h"
#include "qkstream.h"

static utsname systemNames()
{
    utsname names = {};
    uname(&names);
    return names;
}

static qkString hostName()
{
    char name[256] = "";
    gethostname(name, sizeof name - 1);
    return name;
}

static qkString memoryText()
{
    const double bytes =
        static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
    return qkFormat("%.3g GB memory", bytes / (1 << 30));
}

qkHost::qkHost() : m_text(hostName() + ", " + systemNames().machine + ", " + memoryText()) {}

qkOS::qkOS()
{
    m_text = prettyName("/etc/os-release");
    if (m_text.empty()) m_text = prettyName("/usr/lib/os-release");
    if (!m_text.empty()) m_text += ", ";
    const utsname names = systemNames();
    m_text << names.sysname << " " << names.release;
}

// A value stands as in a shell assignment: bare or in quotes, with a backslash before what is special.
static qkString unquoted(const qkString& value)
{
    const char quote = value[0];
    const bool quoted = quote == '"' || quote == '\'';
    qkString text;
    for (int i = quoted ? 1 : 0; i < value.length(); i++) {
        if (quoted && value[i] == quote) break;
        if (value[i] == '\\' && quote != '\'' && i + 1 < value.length()) i++;
        text << value[i];
    }
    return text;
}

qkString qkOS::prettyName(const qkString& path)
{
    const qkString key("PRETTY_NAME=");
    i_stream file(path, ioRead | ioRawPath, false);
    qkString line;
    while (file.getline(line)) {
        if (line.startsWith(key)) return unquoted(line.substr(key.length()));
    }
    return "";
}
