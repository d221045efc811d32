#include "qkcacheiter.h"

#include <climits>
#include <cstdlib>
#include <utility>

#include "qkcpuid.h"

namespace {

const int maxTries = 12;
const double firstLowFactor = 0.1;
const double lastLowFactor = 0.01;

int limited(double bytes)
{
    return bytes < INT_MAX ? static_cast<int>(bytes) : INT_MAX;
}

// Doubles or halves; false, and nothing changes, if the result would not be a positive int.
bool rescale(int& value, bool up)
{
    if (up ? value > INT_MAX / 2 : value < 2) return false;
    value = up ? value * 2 : value / 2;
    return value > 0;
}

// The k for which current * 2^k is the largest such product below `target`. False: there is none.
bool doublings(int current, int target, int& k)
{
    if (current <= 0 || target <= 0) return false;
    double product = current;
    for (k = 0; product <= target; k++) product *= 2;
    for (; product >= target; k--) product /= 2;
    return true;
}

} // namespace

qkCacheIterator::qkCacheIterator(qkParameter& parm, qkObject* object, qkCacheUpdate update)
    : qkIterator<int>("cacheIterator", ""), m_parm(&parm), m_object(object), m_update(update)
{
    add(inCache);
    add(outofCache);
}

int qkCacheIterator::cacheSize() const
{
    return qkGetMaxCacheSizeB();
}

int qkCacheIterator::lowSize() const
{
    return limited(cacheSize() * (value() == inCache ? m_lowFactor : 1.05));
}

int qkCacheIterator::highSize() const
{
    return value() == inCache ? limited(cacheSize() * 0.9) : INT_MAX;
}

long long qkCacheIterator::getTotalSize() const
{
    long long total = 0;
    int size = 0;
    for (void* block = qkMallocFirst(&size, nullptr); block; block = qkMallocNext(&size, nullptr))
        total += size;
    return total;
}

int qkCacheIterator::getObjectSize() const
{
    return m_object ? m_object->objectSize() : 0;
}

qkString qkCacheIterator::getComment() const
{
    if (value() == inCache) return "inCache";
    return value() == outofCache ? "outofCache" : "";
}

bool qkCacheIterator::nextValue()
{
    m_tries = 0;
    m_info = "";
    m_lowFactor = firstLowFactor;
    m_wasTooBig = false;
    return qkIterator<int>::nextValue() && m_parm->firstValue();
}

bool qkCacheIterator::repeatValue()
{
    return ++m_tries < maxTries && setNewValue();
}

bool qkCacheIterator::setNewValue()
{
    const bool big = m_totalSize > highSize();
    const int current = limited(static_cast<double>(big ? m_totalSize : m_objectSize));
    const int target = big ? highSize() : lowSize();
    const bool fast = m_tries > 1;
    return m_update ? m_update(m_parm, current, target, fast) : setNewValueToParm(current, target, fast);
}

bool qkCacheIterator::validateSize()
{
    m_objectSize = getObjectSize();
    m_totalSize = getTotalSize();
    const bool noObject = m_objectSize == 0;
    if (noObject) m_objectSize = m_totalSize;
    const bool small = m_objectSize < lowSize();
    const bool big = m_totalSize > highSize();
    if (!small && !big) {
        m_tries = 0;
        m_info = "";
        return true;
    }
    if (small) report(noObject ? " totalSize=" : " objectSize=", m_objectSize, " < ", lowSize());
    if (big) report(" totalSize=", m_totalSize, " > ", highSize());

    const bool swings = m_tries >= 2 && small && m_wasTooBig;
    if ((small && big) || swings) {
        if (!dropLowFactor())
            m_tries = maxTries;
        else if (!big)
            return validateSize();
    }
    m_wasTooBig = big;
    return false;
}

// The wanted range has no size that the steps reach: widens it once. False: it is as wide as it gets.
bool qkCacheIterator::dropLowFactor()
{
    if (m_lowFactor - 0.0001 <= lastLowFactor) return false;
    m_lowFactor = lastLowFactor;
    return true;
}

void qkCacheIterator::report(const char* what, long long size, const char* relation, int limit)
{
    qkString line("      ");
    line << getComment() << " try: cacheParm=" << m_parm->valueString() << what << size << relation << limit
         << "\n";
    m_info += line;
    g_ostrm << PERF << line << END_MSG;
}

void qkCacheIterator::outputInfo() const
{
    if (g_ostrm.outLevel() < PERF) g_ostrm << ERR << m_info << END_MSG;
}

qkCacheIteratorInt::qkCacheIteratorInt(qkIterator<int>& parm, qkObject* object, qkCacheUpdate update)
    : qkCacheIterator(parm, object, update), m_intParm(parm)
{
}

bool qkCacheIteratorInt::setNewValueToParm(int current, int target, bool fast)
{
    int value = m_intParm.value();
    if (!updateValue(value, current, target, fast)) return false;
    m_intParm.setValue(value);
    return true;
}

bool qkCacheIteratorInt::updateValue(int& value, int current, int target, bool fast)
{
    if (fast) return rescale(value, current < target);
    int k = 0;
    if (!doublings(current, target, k)) return false;
    const bool up = k > 0;
    for (k = std::abs(k); k > 0; k--) {
        if (!rescale(value, up)) return false;
    }
    return value > 0;
}

qkCacheIteratorSize::qkCacheIteratorSize(qkIterator_NSC<QovSize>& parm, qkObject* object,
                                         qkCacheUpdate update)
    : qkCacheIterator(parm, object, update), m_sizeParm(parm)
{
}

bool qkCacheIteratorSize::setNewValueToParm(int current, int target, bool fast)
{
    QovSize value = m_sizeParm.value();
    if (!updateValue(value, current, target, fast)) return false;
    m_sizeParm.setValue(value);
    return true;
}

// A single step widens the shorter side or halves the longer one, so that the shape stays near a square;
// several go to height and width in turn.
bool qkCacheIteratorSize::updateValue(QovSize& value, int current, int target, bool fast)
{
    if (fast) {
        const bool up = current < target;
        const bool tall = value.height > value.width;
        return rescale(tall == up ? value.width : value.height, up);
    }
    int k = 0;
    if (!doublings(current, target, k)) return false;
    const bool up = k > 0;
    int* side = &value.height;
    int* other = &value.width;
    for (k = std::abs(k); k > 0; k--, std::swap(side, other)) {
        if (!rescale(*side, up)) return false;
    }
    return value.width > 0 && value.height > 0;
}
