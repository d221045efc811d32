// The parts of a test that stand apart from its run: construction, parameters, test memory and the watch over
// the floating-point state.
#include "qktest.h"

#include "qkcacheiter.h"
#include "qkconditions.h"
#include "qkctrl87.h"
#include "qkmem.h"
#include "qkreg.h"

qkTestInfo::qkTestInfo(const qkString& text) : m_class(text)
{
    const int first = text.find("/");
    if (first == qkString::npos) return;
    m_class = text.substr(0, first);
    m_description = text.substr(first + 1);
    const int second = m_description.find("/");
    if (second == qkString::npos) return;
    m_macro = m_description.substr(second + 1);
    m_description = m_description.substr(0, second);
}

qkResult qkTest::m_currentResult = UNDEFINED;
int qkTest::m_numParmsColm = 0;
int qkTest::m_numResultColm = 0;
int qkTest::m_hot = 0;
bool qkTest::m_pressing = false;
bool qkTest::m_cache = false;
int qkTest::m_vectorNum = 0;
int qkTest::m_vectorShift = 0;

qkTest::qkTest(qkFuncOld funcOld, const qkString& name, const qkString& file, const qkString& info)
    : m_name(name), m_fileName(file.getFileName()), m_info(info), m_funcOld(funcOld)
{
    qkTest::initSettings();
}

qkTest::qkTest(qkFuncLoop funcLoop, qkFuncStat funcStat, const qkString& name, const qkString& file,
               const qkString& info)
    : qkTest(nullptr, nullptr, funcLoop, funcStat, name, file, info)
{
}

qkTest::qkTest(qkFuncCall funcCall, qkFuncCall funcInit, qkFuncLoop funcLoop, qkFuncStat funcStat,
               const qkString& name, const qkString& file, const qkString& info)
    : m_name(name), m_fileName(file.getFileName()), m_info(info), m_funcLoop(funcLoop), m_funcStat(funcStat),
      m_funcCall(funcCall), m_funcInit(funcInit)
{
    qkTest::initSettings();
}

qkTest::~qkTest()
{
    dropCacheIterator();
}

void qkTest::initSettings()
{
    m_currentResult = UNDEFINED;
    m_firstData = true;
    m_bad87 = m_badSSX = false;
    m_cacheIter = nullptr;
    m_cacheFail = false;
    m_deprecated = false;
    m_parms.erase(m_parms.begin(), m_parms.end());
}

bool qkTest::tobeRun(qkConditions& conditions)
{
    return conditions.tobeRun(this) && (m_hot != 2 || qkTest::isHotLine());
}

bool qkTest::isHotLine()
{
    if (!g_pHotList) return false;
    for (auto name = g_pHotList->begin(); name != g_pHotList->end(); ++name) {
        if (*name == m_name) return true;
    }
    return false;
}

int qkTest::compareFunc(const qkTest* other) const
{
    return m_name.compare(other->m_name);
}

void qkTest::parmsFromIstrm()
{
    for (qkParameter* parm : m_parms) parm->fromIStream(g_istrm);
}

void qkTest::parmsToOstrm()
{
    for (qkParameter* parm : m_parms) parm->toOStream(g_ostrm);
}

void qkTest::parmsToCstrm()
{
    for (qkParameter* parm : m_parms) parm->toCStream(g_cstrm);
}

void qkTest::parmsNameToCstrm()
{
    for (qkParameter* parm : m_parms) parm->nameToCStream(g_cstrm);
}

// A test that is not asked to run can be told apart from one that ran: this alone answers false.
bool qkTest::setIniSection(const qkString& name)
{
    qkIniFile* ini = g_istrm.iniFile();
    if (m_pressing && ini && !ini->sectionExist(name)) return false;
    if (g_istrm.isIniWrite()) ini->write(name);
    g_istrm.setIniSection(name);
    return true;
}

bool qkTest::setDeprecatedFlag(bool on)
{
    m_deprecated = on;
    bool any = false;
    bool all = true;
    for (qkParameter* parm : m_parms) {
        if (!on) {
            parm->setDeprecatedFlag(false);
        } else if (parm->isDeprecatedParm()) {
            any = true;
            all = parm->setDeprecatedFlag(true) && all;
        }
    }
    return any && all;
}

void qkTest::wrapCacheParm(qkCacheIterator* iterator)
{
    m_cacheIter = iterator;
    m_parms.append(iterator);
}

void qkTest::regCacheParm(qkIterator<int>& parm, qkObject* object, qkCacheUpdate update)
{
    if (m_cache && !m_cacheIter)
        wrapCacheParm(new qkCacheIteratorInt(parm, object, update));
    else
        m_parms.append(&parm);
}

void qkTest::regCacheParm(qkStepIterator<int>& parm, qkObject* object, qkCacheUpdate update)
{
    regCacheParm(static_cast<qkIterator<int>&>(parm), object, update);
}

void qkTest::dropCacheIterator()
{
    delete m_cacheIter;
    m_cacheIter = nullptr;
}

// The mutual shift keeps the vectors of one parameter set from landing on the same sets of the cache.
void* qkTest::allocate(int size, int align, void* object)
{
    constexpr int shiftEnd = 32768;
    if (align < 0) {
        const bool aligned = qkGetAlignSrc() && m_vectorNum != 0;
        align = aligned ? 0 : -align * qkGetVectorAlign();
    }
    void* block = qkMalloc(size, align, m_vectorShift, object);
    if (block) {
        m_vectorNum++;
        m_vectorShift += qkGetVectorShift();
        if (m_vectorShift >= shiftEnd) m_vectorShift = 0;
    }
    return block;
}

void* qkTest::allocate(int size, int align)
{
    return allocate(size, align, MEM_OBJECT_IS_BUFFER);
}

void qkTest::deallocate(void* block)
{
    qkFree(block);
}

namespace {

int countOwners(bool (qkObject::*operation)())
{
    int count = 0;
    int size;
    void* object;
    for (void* block = qkMallocFirst(&size, &object); block; block = qkMallocNext(&size, &object)) {
        if (object && (static_cast<qkObject*>(object)->*operation)()) count++;
    }
    return count;
}

} // namespace

int qkTest::reserveAllVectors()
{
    return countOwners(&qkObject::reserveCopy);
}

int qkTest::resetAllVectors()
{
    return countOwners(&qkObject::setReservedCopy);
}

int qkTest::printAllMemoryBlocks(const qkString&)
{
    return 0;
}

void qkTest::initCtrlStatus()
{
    g_ctrl87.init();
    g_ssx.init();
}

bool qkTest::badCtrlStatus(bool& bad87, bool& badSSX)
{
    bad87 = g_ctrl87.badStatus();
    badSSX = g_ssx.badStatus();
    return bad87 || badSSX;
}

void qkTest::printCtrlStatus(bool bad87, bool badSSX)
{
    g_ostrm << WARN;
    if (bad87) g_ostrm << "-- Status    87: " << g_ctrl87.strSW() << "\n";
    if (badSSX) g_ostrm << "-- Status    SSX: " << g_ssx.strExceptionState() << "\n";
    g_ostrm << END_MSG;
}

void qkTest::clearCtrlStatus()
{
    g_ctrl87.clear();
    g_ssx.clear();
}

qkResult qkTest::checkCtrlStatus()
{
    bool bad87, badSSX;
    const bool bad = badCtrlStatus(bad87, badSSX);
    if (bad) {
        m_bad87 = m_bad87 || bad87;
        m_badSSX = m_badSSX || badSSX;
        printCtrlStatus(bad87, badSSX);
    }
    clearCtrlStatus();
    return bad ? BADSTSWRN : UNDEFINED;
}

void qkTest::setTimingResult(double clocks, const qkString& comment)
{
    m_tool.setFuncTicks(clocks);
    m_tool.m_info = comment;
}
