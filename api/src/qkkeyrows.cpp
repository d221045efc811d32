// What each key says and does. <key>_info forms the text of the key report, and does not depend on what
// <key>_apply does afterwards; hq is the key '?'.
#include "qkkeyrows.h"

#include "qkcpuid.h"
#include "qkcstream.h"
#include "qkistream.h"
#include "qkkeytexts.h"
#include "qklibenv.h"
#include "qksession.h"
#include "qktest.h"
#include "qktool.h"

namespace {

// The report of a key that the exit levels from `from` to below `below` leave without effect.
template <qkOption::Info info, int from, int below = 4>
qkString unlessExit(const qkString& arg)
{
    if (qkSession::isExit(from) && !qkSession::isExit(below)) return qkSession::getExitInfo();
    return info(arg);
}

struct BitText {
    int bit;
    const char* text;
};

template <int count>
qkString textsOfBits(int bits, const BitText (&table)[count])
{
    qkString texts;
    for (const BitText& row : table) {
        if (bits & row.bit) texts += row.text;
    }
    return texts;
}

bool isCommandKey(char key)
{
    return qkSession::pCmdList->isKey(key);
}

// --- console, parameters and ini file

qkString B_info(const qkString&)
{
    return "batch mode";
}

void B_apply(const qkString&, qkSession* session)
{
    session->setBatch();
}

qkString A_info(const qkString& arg)
{
    static const BitText asked[] = {{1, ", timing method"},
                                    {2, ", common parameters"},
                                    {4, ", data misalignment"},
                                    {8, ", each test parameters"}};
    return qkString("ask") + textsOfBits(getAskLevel(arg), asked).substr(1) + " from console";
}

void A_apply(const qkString& arg, qkSession* session)
{
    session->addAskMode(getAskLevel(arg));
}

qkString d_info(const qkString& arg)
{
    if (arg.empty()) return "ignored: empty data argument";
    if (arg.find("=") < 1) return "ignored: incorrect data format"; // no '=', or no name before it
    return qkString("set QK parameter ") + arg;
}

void d_apply(const qkString& arg, qkSession*)
{
    g_istrm.m_dataList.set(arg);
}

qkString i_info(const qkString& arg)
{
    return qkString("read from ") + qkSession::genInPath(arg, extIni);
}

void i_apply(const qkString& arg, qkSession* session)
{
    session->setIniMode(qkSession::genInPath(arg, extIni), false);
}

qkString I_info(const qkString& arg)
{
    return qkString("write QK parameters to ") + qkSession::genInPath(arg, extIni) + " and exit";
}

void I_apply(const qkString& arg, qkSession* session)
{
    session->setIniMode(qkSession::genInPath(arg, extIni), true);
}

qkString P_info(const qkString&)
{
    return "read tested function names from ini-file if any";
}

void P_apply(const qkString&, qkSession*)
{
    qkTest::m_pressing = true;
}

qkString L_info(const qkString& arg)
{
    static const BitText levels[] = {{ERR, "errors"},
                                     {WARN, ",warnings"},
                                     {PERF, ",performance results"},
                                     {INFO, ",measurement process"},
                                     {TRACE, ",tracing info"},
                                     {MEM, ",memory info"},
                                     {DATA, ",data info"}};
    const int level = getLevel(arg);
    if (level == 0) return "ignored: incorrect level of console output";
    return qkString("write ") + textsOfBits(level, levels) + " to console";
}

void L_apply(const qkString& arg, qkSession* session)
{
    session->addLevelMode(getLevel(arg));
}

// --- output files

template <class Stream>
void openOutput(Stream& stream, const qkString& path, bool append, qkSession* session)
{
    if (!stream.addStream(path, append)) session->unopenedFile();
}

qkString o_info(const qkString& arg)
{
    return qkString("write console output to ") + qkSession::genOutPath(arg, extOut);
}

void o_apply(const qkString& arg, qkSession* session)
{
    openOutput(g_ostrm, qkSession::genOutPath(arg, extOut), false, session);
}

qkString O_info(const qkString& arg)
{
    return qkString("add console output to ") + qkSession::genOutPath(arg, extOut);
}

void O_apply(const qkString& arg, qkSession* session)
{
    openOutput(g_ostrm, qkSession::genOutPath(arg, extOut), true, session);
}

qkString r_info(const qkString& arg)
{
    return qkString("write performance result table to ") + qkSession::genOutPath(arg, extCsv);
}

void r_apply(const qkString& arg, qkSession* session)
{
    openOutput(g_cstrm, qkSession::genOutPath(arg, extCsv), false, session);
}

qkString R_info(const qkString& arg)
{
    return qkString("add performance result table to ") + qkSession::genOutPath(arg, extCsv);
}

void R_apply(const qkString& arg, qkSession* session)
{
    openOutput(g_cstrm, qkSession::genOutPath(arg, extCsv), true, session);
}

qkString q_info(const qkString& arg)
{
    if (arg[0] != '+')
        return qkString("write function parameter name lines to ") + qkSession::genOutPath(arg, extName);
    if (isCommandKey('r') || isCommandKey('R'))
        return "add function parameter name lines to csv files defined by -r & -R keys";
    return "ignored because -r or -R options are not present in command line";
}

void q_apply(const qkString& arg, qkSession* session)
{
    if (arg[0] == '+') {
        qkSession::m_nameMode |= 1;
        return;
    }
    qkSession::m_nameMode |= 2;
    openOutput(g_qstrm, qkSession::genOutPath(arg, extName), false, session);
}

qkString Q_info(const qkString&)
{
    if (isCommandKey('q')) return "exit after function parameter name table creation and don't run tests";
    return "ignored because -q option is not present in command line";
}

void Q_apply(const qkString&, qkSession*)
{
    if (isCommandKey('q')) qkSession::m_nameExit = true;
}

qkString u_info(const qkString& arg)
{
    return qkString("write summary table to ") + qkSession::genOutPath(arg, extSum);
}

void u_apply(const qkString& arg, qkSession* session)
{
    openOutput(g_ustrm, qkSession::genOutPath(arg, extSum), false, session);
}

qkString U_info(const qkString& arg)
{
    return qkString("add summary table to ") + qkSession::genOutPath(arg, extSum);
}

void U_apply(const qkString& arg, qkSession* session)
{
    openOutput(g_ustrm, qkSession::genOutPath(arg, extSum), true, session);
}

qkString M_info(const qkString& arg)
{
    return qkString("write memory info table to ") + qkSession::genOutPath(arg, extMem);
}

void M_apply(const qkString& arg, qkSession* session)
{
    openOutput(g_mstrm, qkSession::genOutPath(arg, extMem), false, session);
}

qkString g_info(const qkString& arg)
{
    return qkString("create file ") + qkSession::genOutPath(arg, extSgl) + " at the end of QK work";
}

void g_apply(const qkString& arg, qkSession* session)
{
    session->setSglName(arg);
}

// --- names and directories: the session takes them before any key is applied

void appliedBefore(const qkString&, qkSession*) {}

qkString n_info(const qkString& arg)
{
    if (arg.empty()) return "ignored: empty default name";
    return qkString("name ini-file and output files as ") + arg + ".<proper-ext>";
}

qkString directoryInfo(const char* what, const qkString& arg)
{
    if (arg.empty()) return "ignored: empty directory name";
    return qkString(what) + qkSession::genDirName(arg);
}

qkString p_info(const qkString& arg)
{
    return directoryInfo("open test data files & ini-file in ", arg);
}

qkString l_info(const qkString& arg)
{
    return directoryInfo("open output files in ", arg);
}

// --- choice of tests

struct ConditionTexts {
    const char* empty;
    struct {
        const char* before;
        const char* after;
    } bySign[4]; // none, '+', '-', '='
};

// By RunCondition::Class.
const ConditionTexts conditionTexts[] = {
    {"ignored: empty function pattern",
     {{"test functions containing '", "'"},
      {"don't test functions without '", "' in the name"},
      {"don't test functions containing '", "'"},
      {"test function equal to '", "'"}}},
    {"ignored: empty test pattern",
     {{"run tests containing '", "'"},
      {"don't run tests which doesn't contain '", "'"},
      {"don't run tests containing '", "'"},
      {"run test equal to '", "'"}}},
    {"ignored: empty file pattern",
     {{"run tests from file containing '", "' in file name"},
      {"don't run tests from file which doesn't contain '", "' in file name"},
      {"don't run tests from file containing '", "' in file name"},
      {"run test equal from file with exact name '", "'"}}},
};

const int emptyPattern = 4;

template <RunCondition::Class cls>
qkString condition_info(const qkString& arg)
{
    const ConditionTexts& texts = conditionTexts[cls];
    qkString pattern = arg;
    const int sign = getCondition(pattern);
    if (sign == emptyPattern) return texts.empty;
    return texts.bySign[sign].before + pattern + texts.bySign[sign].after;
}

template <RunCondition::Class cls>
void condition_apply(const qkString& arg, qkSession* session)
{
    qkString pattern = arg;
    const int sign = getCondition(pattern);
    if (sign != emptyPattern) session->addCondition(newRunCondition(cls, sign, pattern));
}

qkString k_info(const qkString& arg)
{
    if (arg[0] == 'o') return "keys composition: -f<conditions> OR -t<conditions> OR -m<conditiosn>";
    return "keys composition: -f<conditions> AND -t<conditions> AND -m<conditions>";
}

void k_apply(const qkString& arg, qkSession* session)
{
    session->logicCondition(arg[0] == 'o' ? 1 : 0);
}

qkString F_info(const qkString& arg)
{
    return qkString("start testing from ") + arg + " function";
}

void F_apply(const qkString& arg, qkSession*)
{
    qkTestList::m_startFunc = arg;
}

qkString H_info(const qkString& arg)
{
    return arg[0] == 'O' ? "run tests for hot functions only" : "add 'Interest' column to table file";
}

void H_apply(const qkString& arg, qkSession*)
{
    qkTest::m_hot = arg[0] == 'O' ? 2 : 1;
}

qkString s_info(const qkString& arg)
{
    return arg[0] == '-' ? "don't sort functions" : "sort functions";
}

void s_apply(const qkString& arg, qkSession* session)
{
    session->setNoSort(arg[0] == '-');
}

// --- measurement

qkString Y_info(const qkString& arg)
{
    static const char* const names[] = {nullptr, "high", "normal", "low"};
    const int priority = getPriority(arg);
    if (priority == 0) return "ignored: incorrect process priority value";
    return qkString("set ") + names[priority] + " process priority";
}

void Y_apply(const qkString& arg, qkSession*)
{
    const int priority = getPriority(arg);
    if (priority != 0) qkTool::m_priority = priority;
}

const char* const withoutLibrary = "ignored: <qovcore.h> is not included before <qd.h> in test files";

qkString T_info(const qkString& arg)
{
    if (!qovEnvironment) return withoutLibrary;
    if (qkCpuType::cpuType(arg) == -1) return "ignored: incorrect CPU type";
    return qkString("call qovInitStaticCpu ( qovCpu") + arg + " )";
}

void T_apply(const qkString& arg, qkSession*)
{
    s_cpuType = qkCpuType::cpuType(arg);
}

// 0 for what is no number.
int numThreads(const qkString& arg)
{
    qkString text = arg;
    int number = 0;
    number << text;
    return number;
}

qkString N_info(const qkString& arg)
{
    if (!qovEnvironment) return withoutLibrary;
    const int number = numThreads(arg);
    if (number <= 0) return "ignored: incorrect number of threads";
    qkString text("call qovSetNumThreads(");
    return text << number << ")";
}

void N_apply(const qkString& arg, qkSession*)
{
    s_numThreads = numThreads(arg);
}

qkString S_info(const qkString&)
{
    return "include to measurement data set & use time";
}

void S_apply(const qkString&, qkSession*)
{
    g_tool.m_dataUse = true;
}

qkString C_info(const qkString&)
{
    return "test data size will be in cache and out of cache if that is supported by test";
}

void C_apply(const qkString&, qkSession*)
{
    qkTest::m_cache = true;
}

// --- keys that end the program

qkString e_info(const qkString& arg)
{
    switch (arg[0]) {
    case '+': return "enumerate applied and not applied library functions and exit";
    case '-': return "enumerate not applied library functions and exit";
    default: return "enumerate tested functions and exit";
    }
}

void e_apply(const qkString& arg, qkSession* session)
{
    session->setEnumMode(arg[0] == '+' ? 1 : arg[0] == '-' ? -1 : 0);
}

qkString v_info(const qkString&)
{
    return "type the version number of the Quolkit and exit";
}

void v_apply(const qkString&, qkSession*)
{
    s_version = true;
}

qkString helpOfKey(const qkString& arg)
{
    return qkString("type extended help for -") + qkString(arg[0]) + " key and exit";
}

void setHint(const qkString& arg, bool hide)
{
    s_hintHide = hide;
    s_hintArg = arg.empty() ? '\1' : arg[0];
}

qkString h_info(const qkString& arg)
{
    if (arg.empty()) return "type short help and exit";
    return arg[0] == 'h' ? qkString("type extended help and exit") : helpOfKey(arg);
}

void h_apply(const qkString& arg, qkSession*)
{
    setHint(arg, true);
}

qkString hq_info(const qkString& arg)
{
    if (arg.empty()) return "type short help with hidden key sand exit";
    return arg[0] == '?' ? qkString("type extended help with hidden keys and exit") : helpOfKey(arg);
}

void hq_apply(const qkString& arg, qkSession*)
{
    setHint(arg, false);
}

constexpr auto f_info = condition_info<RunCondition::byFunction>;
constexpr auto f_apply = condition_apply<RunCondition::byFunction>;
constexpr auto t_info = condition_info<RunCondition::byTest>;
constexpr auto t_apply = condition_apply<RunCondition::byTest>;
constexpr auto m_info = condition_info<RunCondition::byFile>;
constexpr auto m_apply = condition_apply<RunCondition::byFile>;

} // namespace

// '@' has gone from the list of keys before any is applied; inside a key file it does nothing. The memory
// table of the key M is not offered.
const KeyRow keyRows[] = {
    {'B', KeyRow::always, false, B_help, unlessExit<B_info, 1>, B_apply, B_descr},
    {'A', KeyRow::always, false, A_help, unlessExit<A_info, 1>, A_apply, A_descr},
    {'d', KeyRow::always, false, d_help, unlessExit<d_info, 1>, d_apply, d_descr},
    {'i', KeyRow::always, false, i_help, unlessExit<i_info, 1>, i_apply, i_descr},
    {'I', KeyRow::always, false, I_help, unlessExit<I_info, 1>, I_apply, I_descr},
    {'P', KeyRow::always, false, P_help, unlessExit<P_info, 1>, P_apply, P_descr},
    {'o', KeyRow::always, false, o_help, o_info, o_apply, o_descr},
    {'O', KeyRow::always, false, O_help, O_info, O_apply, O_descr},
    {'L', KeyRow::always, false, L_help, unlessExit<L_info, 1>, L_apply, L_descr},
    {'r', KeyRow::always, false, r_help, r_info, r_apply, r_descr},
    {'R', KeyRow::always, false, R_help, R_info, R_apply, R_descr},
    {'q', KeyRow::withQKeys, false, q_help, unlessExit<q_info, 1>, q_apply, q_descr},
    {'Q', KeyRow::withQKeys, false, Q_help, unlessExit<Q_info, 1>, Q_apply, Q_descr},
    {'u', KeyRow::always, false, u_help, unlessExit<u_info, 1>, u_apply, u_descr},
    {'U', KeyRow::always, false, U_help, unlessExit<U_info, 1>, U_apply, U_descr},
    {'g', KeyRow::always, false, g_help, g_info, g_apply, g_descr},
    {'n', KeyRow::always, false, n_help, n_info, appliedBefore, n_descr},
    {'p', KeyRow::always, false, p_help, p_info, appliedBefore, p_descr},
    {'l', KeyRow::always, false, l_help, l_info, appliedBefore, l_descr},
    {'f', KeyRow::always, false, f_help, unlessExit<f_info, 2>, f_apply, f_descr},
    {'t', KeyRow::always, false, t_help, unlessExit<t_info, 2>, t_apply, t_descr},
    {'m', KeyRow::always, false, m_help, unlessExit<m_info, 2>, m_apply, m_descr},
    {'k', KeyRow::always, false, k_help, k_info, k_apply, k_descr},
    {'F', KeyRow::always, false, F_help, unlessExit<F_info, 1>, F_apply, F_descr},
    {'Y', KeyRow::always, false, Y_help, unlessExit<Y_info, 1>, Y_apply, Y_descr},
    {'H', KeyRow::always, false, H_help, unlessExit<H_info, 2>, H_apply, H_descr},
    {'T', KeyRow::withLibrary, false, T_help, T_info, T_apply, T_descr},
    {'N', KeyRow::withLibrary, false, N_help, N_info, N_apply, N_descr},
    {'S', KeyRow::always, true, S_help, unlessExit<S_info, 1>, S_apply, S_descr},
    {'C', KeyRow::always, true, C_help, unlessExit<C_info, 1>, C_apply, C_descr},
    {'s', KeyRow::always, false, s_help, unlessExit<s_info, 2>, s_apply, s_descr},
    {'e', KeyRow::always, false, e_help, unlessExit<e_info, 2, 3>, e_apply, ""},
    {'v', KeyRow::always, false, v_help, v_info, v_apply, ""},
    {'@', KeyRow::always, false, ha_help, nullptr, nullptr, ha_descr},
    {'h', KeyRow::always, false, h_help, h_info, h_apply, h_descr},
    {'?', KeyRow::always, false, "", hq_info, hq_apply, hq_descr},
    {'M', KeyRow::never, false, M_help, unlessExit<M_info, 1>, M_apply, ""},
};
const int numKeyRows = sizeof keyRows / sizeof keyRows[0];
