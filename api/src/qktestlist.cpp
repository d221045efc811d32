// The list of all tests: their order, which common parameters they use, and the walk that runs them and
// counts what they answer.
#include "qkcacheiter.h"
#include "qktest.h"

[[gnu::weak]] void beforeAll() {}
[[gnu::weak]] void beforeTest() {}
[[gnu::weak]] void afterTest(qkTest*) {}

qkTest* qkTestList::m_pCurrentTest = nullptr;
qkString qkTestList::m_startFunc;

qkTestList::~qkTestList()
{
    for (qkTest* test : *this) delete test;
}

namespace {

bool aless(qkTest*& a, qkTest*& b)
{
    return a && b && a->compareFunc(b) < 0;
}

bool isUnderscored(const qkTest* test)
{
    return test->name().startsWith("_");
}

} // namespace

// A merge sort that keeps the order of tests that compare equal. Bin i holds 2^i tests or none; the last
// takes all that gets so far.
void qkTestList::sortFunc()
{
    constexpr int numBins = 15;
    constexpr int lastBin = numBins - 1;
    qkList<qkTest*> bins[numBins];
    while (!empty()) {
        qkList<qkTest*> carry;
        carry.splice(carry.end(), *this, begin());
        int i = 0;
        for (; i < lastBin && !bins[i].empty(); i++) {
            bins[i].merge(carry, aless);
            carry.swap(bins[i]);
        }
        bins[i].merge(carry, aless);
    }
    // What lies in a higher bin came earlier.
    for (qkList<qkTest*>& bin : bins) {
        bin.merge(*this, aless);
        swap(bin);
    }
}

void qkTestList::startWithCpuTest()
{
    iterator front = begin();
    for (iterator i = begin(); i != end();) {
        const iterator test = i;
        ++i;
        if (!isUnderscored(*test)) continue;
        if (test == front)
            front = i;
        else
            splice(front, *this, test);
    }
}

namespace {

bool usesParm(const qkTest& test, const qkList<qkParameter*>& parms, const qkParameter* wanted)
{
    const qkCacheIterator* cacheIter = test.cacheIterator();
    for (const qkParameter* parm : parms) {
        if (parm == wanted || (cacheIter && parm == cacheIter && cacheIter->parm() == wanted)) return true;
    }
    return false;
}

// Selects those of `parms` that the test uses; true if all are selected then.
bool selectParms(qkTest& test, const qkList<qkParameter*>& parms)
{
    bool all = true;
    for (qkParameter* parm : parms) {
        if (!parm->selected()) parm->setSelected(usesParm(test, test.parms(), parm));
        all = all && parm->selected();
    }
    return all;
}

} // namespace

void qkTestList::selectCommonParms(qkConditions& conditions, qkList<qkParameter*>& parms)
{
    for (qkParameter* parm : parms) parm->setSelected(false);
    for (qkTest* test : *this) {
        if (!test->tobeRun(conditions)) continue;
        test->startAndStop();
        const bool all = selectParms(*test, parms);
        // run() starts afresh: a cache iterator left behind would pass for the one that run registers.
        test->dropCacheIterator();
        test->parms().erase(test->parms().begin(), test->parms().end());
        if (all) break;
    }
    for (auto parm = parms.end(); parm != parms.begin();) {
        --parm;
        if (!(*parm)->selected()) parm = parms.erase(parm);
    }
}

bool qkTestList::runTests(qkConditions& conditions)
{
    beforeAll();
    for (qkTest* test : *this) {
        if (!test->tobeRun(conditions)) continue;
        if (!m_startFunc.empty()) {
            if (!test->name().contains(m_startFunc)) continue;
            m_startFunc = "";
        }
        m_pCurrentTest = test;
        beforeTest();
        const qkResult result = test->run();
        afterTest(test);
        // A test that -P left out answers UNDEFINED, but its stored result is OK.
        if (result != UNDEFINED || test->result() != OK) plus(result);
        m_pCurrentTest = nullptr;
    }
    return m_counters[FAIL] != 0;
}

void qkTestList::plus(qkResult result)
{
    m_numTests++;
    m_counters[result]++;
    if (result >= ACCURWRN && result < WARNING) m_counters[WARNING]++;
    if (result >= ACCURFAIL && result < FAIL) m_counters[FAIL]++;
}
