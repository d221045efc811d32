// The session's key table, the keys' report, and the help.
#include "qkkeyrows.h"
#include "qklibenv.h"
#include "qksession.h"

static bool isOffered(const KeyRow& row, bool library)
{
    switch (row.offer) {
    case KeyRow::always: return true;
    case KeyRow::withQKeys: return qKeys;
    case KeyRow::withLibrary: return library;
    default: return false;
    }
}

// Asking whether there is a library is also the first initialisation of it.
void qkSession::initKeyTable()
{
    const bool library = qov_Init && qov_Init() != qovStsNotSupported;
    for (int i = 0; i < numKeyRows; i++) {
        const KeyRow& row = keyRows[i];
        if (isOffered(row, library))
            initOption(row.key, row.help, row.info, row.apply, row.descr, row.hidden);
    }
}

void qkSession::initOption(char key, const qkString& help, qkOption::Info info, qkOption::Apply apply,
                           const qkString& descr, bool hidden)
{
    m_options.append(new qkOption{key, hidden, help, info, apply, descr});
}

qkOption* qkSession::getOption(char key) const
{
    for (qkOption* option : m_options) {
        if (option->m_key == key) return option;
    }
    return nullptr;
}

void qkSession::applyOption(char key, const qkString& arg)
{
    m_keyReport << "-" << key << arg << ": ";
    const qkOption* option = getOption(key);
    if (!option) {
        m_keyReport << "ignored: incorrect option key\n";
        return;
    }
    if (option->m_info) m_keyReport << option->m_info(arg);
    m_keyReport << "\n";
    if (option->m_apply) option->m_apply(arg, this);
}

// Replaces each '@' by the keys of its file. The walk goes on behind them, so an '@' in a key file stays.
void qkSession::expandKeyFiles()
{
    for (qkCommandList::iterator i = pCmdList->begin(); i != pCmdList->end();) {
        if (i->m_key != '@') {
            ++i;
            continue;
        }
        const qkString name = i->m_arg;
        i = pCmdList->erase(i);
        pCmdList->insertFromFile(name, i);
    }
}

static void writeHelp(const qkString& text)
{
    g_ostrm << ERR << text << END_MSG;
}

void qkSession::hint(char key, bool hide)
{
    const char fullHelp = hide ? 'h' : '?';
    if (key == '\1')
        hint_quick(hide);
    else if (key == fullHelp)
        hint_full(hide);
    else
        hint_descr(key);
}

static qkString helpTitle(const char* title, bool hide)
{
    return qkString(title) + (hide ? "\n" : " with hidden keys\n");
}

void qkSession::hint_quick(bool hide)
{
    writeHelp(helpTitle("QUICK HELP", hide));
    for (const qkOption* option : m_options) {
        if (!(hide && option->m_hidden)) writeHelp(option->m_help);
    }
}

void qkSession::hint_full(bool hide)
{
    writeHelp(helpTitle("EXTENDED HELP", hide));
    for (const qkOption* option : m_options) {
        if (option->m_help.empty() || (hide && option->m_hidden)) continue;
        writeHelp(qkString("\n") + option->m_help);
        if (option->m_hidden) writeHelp("This is hidden key used by developers only\n");
        writeHelp(option->m_descr);
    }
}

void qkSession::hint_descr(char key)
{
    writeHelp("EXTENDED KEY HELP\n");
    const qkOption* option = getOption(key);
    qkString text;
    if (!option) {
        text << "Key -" << key << " is not valid\n";
    } else {
        if (option->m_help.empty())
            text << "Key -" << key << " is deprecated\n";
        else
            text << option->m_help;
        if (option->m_descr.empty())
            text << "No extended description for this key\n";
        else
            text << option->m_descr;
    }
    text << "\nUse -h option to type full key list\n";
    writeHelp(text);
}
