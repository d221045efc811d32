#include "qdtest.h"

#include "qkcacheiter.h"
#include "qkcstream.h"
#include "qklibenv.h"

static const unsigned startSeed = 7;

bool qdTest::m_checkErrorsOnly = false;

qdTest::qdTest(qkFuncOld funcOld, const qkString& name, const qkString& file, const qkString& info)
    : qkTest(funcOld, name, file, info), m_func(name)
{
}

qdTest::qdTest(qkFuncLoop funcLoop, qkFuncStat funcStat, const qkString& name, const qkString& file,
               const qkString& info)
    : qkTest(funcLoop, funcStat, name, file, info), m_func(name)
{
}

qdTest::qdTest(qkFuncCall funcCall, qkFuncCall funcInit, qkFuncLoop funcLoop, qkFuncStat funcStat,
               const qkString& name, const qkString& file, const qkString& info)
    : qkTest(funcCall, funcInit, funcLoop, funcStat, name, file, info), m_func(name)
{
}

// Every test starts from the same state of the generator, whatever ran before it.
qkResult qdTest::run()
{
    m_checkErrorsOnly = false;
    qdVector::m_seed = startSeed;
    return qkTest::run();
}

int qdTest::compareFunc(const qkTest* other) const
{
    return m_func.compare(other->name());
}

void qdTest::funcToCstrm()
{
    g_cstrm << m_func.prefix() + m_func.baseName() << m_func.typeName() << m_func.descrName();
}

bool qdTest::isFloatFunction()
{
    return qkTest::isFloatFunction() && (m_func.contains("32f") || m_func.contains("64f"));
}

qkString qdTest::regInfo()
{
    qkString text = qkTest::regInfo();
    const int at = text.find("QK_");
    if (at != qkString::npos) text[at + 1] = 'D';
    return text;
}

// ---- Statuses

static const char* statusText(QovStatus status)
{
    return qov_GetStatusString ? qov_GetStatusString(status) : s_qovGetStatusString(status);
}

qkResult qdTest::checkStatus(QovStatus status, const qkString& name)
{
    if (status == qovStsNoErr || (status > 0 && m_checkErrorsOnly)) return OK;
    const bool failed = status < 0;
    g_ostrm << (failed ? ERR : WARN) << (failed ? "--QOV ERROR. " : "--QOV WARNING. ")
            << "status = " << status;
    if (!name.empty()) g_ostrm << " in " << name;
    g_ostrm << ": " << statusText(status) << "\n" << END_MSG;
    const qkResult result = failed ? FUNCFAIL : FUNCWRN;
    // A run that does not show warnings ends well in spite of them.
    raiseResult(!failed && g_ostrm.outLevel() < WARN ? OK : result);
    return result;
}

// What the timing tool asks after the calls that it makes itself.
static qkResult checkToolStatus(int status)
{
    const qkTest* test = qkTestList::m_pCurrentTest;
    return qdTest::checkStatus(status, test ? test->name() : qkString());
}

[[maybe_unused]] static const bool s_checkIsSet = (qkTool::m_pCheckStatus = checkToolStatus, true);

// ---- The cache parameter

void qdTest::regSizeParm(qkIterator_NSC<QovSize>& sizes, qkObject* object, qkCacheUpdate update)
{
    if (m_cache && !m_cacheIter)
        wrapCacheParm(new qkCacheIteratorSize(sizes, object, update));
    else
        m_parms.append(&sizes);
}

void qdTest::regCacheParm(qkIterator_NSC<QovSize>& sizes, qdImage& image, qkCacheUpdate update)
{
    regSizeParm(sizes, &image, update);
}

void qdTest::regCacheParm(qkIterator_NSC<QovSize>& sizes, qkCacheUpdate update)
{
    regSizeParm(sizes, nullptr, update);
}

// ---- Listing of the data

void qdTest::printFirstDebugLine(const qkString& title)
{
    g_ostrm << "======== OBJECTS OUTPUT START === " << title << " === OBJECTS OUTPUT START ========\n";
}

void qdTest::printLastDebugLine(const qkString& title)
{
    g_ostrm << "======== OBJECTS OUTPUT END === " << title << " === OBJECTS OUTPUT END ========\n";
}

void qdTest::printFirstBlockLine(int number, qkObject* object, int size)
{
    g_ostrm << "======== Object " << number << ": ";
    if (object == MEM_OBJECT_IS_BUFFER)
        g_ostrm << "MemoryBlock size=" << size;
    else
        g_ostrm << object->objectInfo();
    g_ostrm << "\n";
}

void qdTest::printLastBlockLine(int, qkObject*)
{
    g_ostrm << "\n";
}

void qdTest::printVectorBlock(qdVector* vector)
{
    g_ostrm << vector->getString() << "\n";
}

void qdTest::printByteBlock(void* p, int size)
{
    g_ostrm << qdVector::getByteString(p, size) << "\n";
}

void qdTest::printBlock(int number, void* block, qkObject* object, int size)
{
    printFirstBlockLine(number, object, size);
    if (auto* vector = dynamic_cast<qdVector*>(object))
        printVectorBlock(vector);
    else
        printByteBlock(block, size);
    printLastBlockLine(number, object);
}

int qdTest::printAllMemoryBlocks(const qkString& title)
{
    if (!g_ostrm.beginMessage(DATA)) return 0;
    g_trace.traceIn("printAllMemoryBlocks");
    printFirstDebugLine(title);
    int count = 0;
    int size = 0;
    void* owner = nullptr;
    for (void* block = qkMallocFirst(&size, &owner); block; block = qkMallocNext(&size, &owner)) {
        auto* object = static_cast<qkObject*>(owner);
        if (object && object != MEM_OBJECT_IS_SUBOBJECT) printBlock(++count, block, object, size);
    }
    printLastDebugLine(title);
    g_trace.traceOut("printAllMemoryBlocks");
    g_ostrm.endMessage();
    return count;
}
