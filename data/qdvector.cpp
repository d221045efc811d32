// Construction, memory and the operations on whole vectors. The routines that make the data are in
// qdfill.cpp, the text forms in qddata.cpp.
#include "qdvector.h"

#include <climits>
#include <cstdlib>
#include <cstring>

#include "qktest.h"

unsigned qdVector::m_seed = 0;

qdVector::qdVector() {}

qdVector::qdVector(qdType type)
{
    initFunc(type, qkString());
}

qdVector::qdVector(const qdFunc& func, int index)
{
    initFunc(func.type(index), func.channelsName(index));
}

qdVector::qdVector(const qdFunc& func, qdArg arg)
{
    initFunc(func.type(arg), func.channelsName(arg));
}

qdVector::~qdVector()
{
    qdVector::deleteVector();
}

void qdVector::initFunc(qdType type, const qkString& channelsName)
{
    m_type = type;
    m_func = qkString("_") + typeString() + "_" + channelsName;
}

void qdVector::init(qdType type)
{
    deleteVector();
    initFunc(type, qkString());
}

void qdVector::init(const qdFunc& func, int index)
{
    deleteVector();
    initFunc(func.type(index), func.channelsName(index));
}

void qdVector::init(const qdFunc& func, qdArg arg)
{
    deleteVector();
    initFunc(func.type(arg), func.channelsName(arg));
}

// ---- Memory

bool qdVector::memError(long long bytes)
{
    g_ostrm << ERR << "-- Memory error: can't allocate " << bytes << " bytes\n" << END_MSG;
    return false;
}

bool qdVector::allocateVector(long long bytes, int align, qkObject* owner)
{
    deleteVector();
    if (bytes < 1 || bytes > INT_MAX) return memError(bytes);
    if (align < 0) align = qkGetAlignByByte() ? -1 : -qdItemSize(m_type);
    m_data = qkTest::allocate(static_cast<int>(bytes), align, owner ? owner : this);
    if (!m_data) return false;
    std::memset(m_data, 0, static_cast<size_t>(bytes));
    setTypedPointers();
    return true;
}

bool qdVector::createVector(int len, int align, qkObject* owner)
{
    if (!allocateVector(static_cast<long long>(len) * qdItemSize(m_type), align, owner)) return false;
    m_len = len;
    setConst();
    return true;
}

bool qdVector::createVector(int len, SetMode mode, double a, double b)
{
    return createVectorExt(len, -1, mode, a, b);
}

bool qdVector::createVectorExt(int len, int align, SetMode mode, double a, double b)
{
    if (!createVector(len, align)) return false;
    setVector(mode, a, b);
    return true;
}

void qdVector::deleteVector()
{
    if (m_data) qkTest::deallocate(m_data);
    m_data = nullptr;
    m_len = 0;
    setTypedPointers();
    qdVector::deleteReservedCopy();
}

void qdVector::setTypedPointers()
{
#define QD_SET(name, part, code) m_##name = m_type == qd##name ? static_cast<Qov##name*>(m_data) : nullptr;
    QD_TYPES(QD_SET)
#undef QD_SET
}

int qdVector::size() const
{
    return m_len * qdItemSize(m_type);
}

qkString qdVector::objectInfo() const
{
    qkString text("Vector ");
    text << typeString() << " len=" << m_len;
    return text;
}

bool qdVector::reserveCopy()
{
    deleteReservedCopy();
    if (!m_data) return false;
    m_reserved = std::calloc(1, static_cast<size_t>(size()));
    if (!m_reserved) return false;
    std::memcpy(m_reserved, m_data, static_cast<size_t>(size()));
    return true;
}

bool qdVector::setReservedCopy()
{
    if (!m_data || !m_reserved) return false;
    std::memcpy(m_data, m_reserved, static_cast<size_t>(size()));
    return true;
}

void qdVector::deleteReservedCopy()
{
    std::free(m_reserved);
    m_reserved = nullptr;
}

// ---- Whole vectors

double qdVector::getDataConst() const
{
    return qdIsFloat(m_type) ? 1.00001 : 2.0;
}

void qdVector::setConst()
{
    setConst(getDataConst(), getDataConst());
}

void qdVector::setConst(double re, double im)
{
    if (m_data) setDataConst(m_data, m_len, re, im);
}

void qdVector::setConst_64s(long long re, long long im)
{
    if (m_data) setDataConst_64s(m_data, m_len, re, im);
}

// A double can't hold the largest 64-bit integer.
void qdVector::setMinValue()
{
    if (qdRealType(m_type) == qd64s)
        setConst_64s(LLONG_MIN, LLONG_MIN);
    else
        setConst(minValue(), minValue());
}

void qdVector::setMaxValue()
{
    if (qdRealType(m_type) == qd64s)
        setConst_64s(LLONG_MAX, LLONG_MAX);
    else
        setConst(maxValue(), maxValue());
}

void qdVector::setJaehne()
{
    setJaehne(qdIsFloat(m_type) ? 1.0 : (maxValue() - minValue()) * 0.5);
}

void qdVector::setJaehne(double magn)
{
    if (m_data) setVectorJaehne(m_data, m_len, magn);
}

void qdVector::setSequence(double a, double b)
{
    if (m_len == 1)
        setConst(a, 0);
    else
        setSequence(a, b, (b - a) / (m_len - 1), true);
}

void qdVector::setSequence(double a, double b, double step, bool wrap)
{
    if (m_data) setDataSequence(m_data, m_len, a, b, step, wrap);
}

void qdVector::setRandom()
{
    if (qdIsFloat(m_type))
        setRandom(-1, 1);
    else
        setRandom(minValue(), maxValue());
}

void qdVector::setRandom(double a, double b)
{
    if (m_data) setDataRandom(m_data, m_len, a, b);
}

void qdVector::setRandom(double a, double b, unsigned seed)
{
    m_seed = seed;
    setRandom(a, b);
}

// The ramp of this operation ends one step before b, and for integers it climbs by 1 at least: a ramp that is
// longer than its range repeats.
static double rampStep(qdType type, double a, double b, int len)
{
    const double step = (b - a) / (len > 0 ? len : 256);
    return qdIsFloat(type) || step >= 1 ? step : 1;
}

void qdVector::setVector(SetMode mode, double a, double b)
{
    switch (mode) {
    case SET_DEFAULT: setConst(); break;
    case SET_ZERO: setConst(0, 0); break;
    case SET_ONE: setConst(1, 0); break;
    case SET_MAX: setMaxValue(); break;
    case SET_MIN: setMinValue(); break;
    case SET_CONST: setConst(a, b); break;
    case SET_RANDOM:
        if (a == b)
            setRandom();
        else
            setRandom(a, b);
        break;
    case SET_SEQUENCE: setSequence(a, b, rampStep(m_type, a, b, m_len), true); break;
    }
}

// ---- Single elements

void* qdVector::getPointerAt(int i) const
{
    if (!m_data) return nullptr;
    return static_cast<char*>(m_data) + static_cast<std::ptrdiff_t>(i) * qdItemSize(m_type);
}

void qdVector::setIndex(int i, SetMode mode, double a, double b)
{
    setElement(getPointerAt(i), mode, a, b);
}

// The default of a single element is 0, not the constant of a whole vector.
void qdVector::setElement(void* p, SetMode mode, double a, double b) const
{
    if (!p) return;
    switch (mode) {
    case SET_DEFAULT:
    case SET_ZERO: setDataConst(p, 1, 0, 0); break;
    case SET_ONE: setDataConst(p, 1, 1, 0); break;
    case SET_MAX:
        if (qdRealType(m_type) == qd64s)
            setDataConst_64s(p, 1, LLONG_MAX, LLONG_MAX);
        else
            setDataConst(p, 1, maxValue(), maxValue());
        break;
    case SET_MIN: setDataConst(p, 1, minValue(), minValue()); break;
    case SET_CONST: setDataConst(p, 1, a, b); break;
    case SET_RANDOM:
        if (a == b)
            setDataRandom(p, 1, minValue(), maxValue());
        else
            setDataRandom(p, 1, a, b);
        break;
    case SET_SEQUENCE: setDataConst(p, 1, a, 0); break;
    }
}

double qdVector::getIndex(int i) const
{
    double re, im;
    getIndex(i, re, im);
    return re;
}

void qdVector::getIndex(int i, double& re, double& im) const
{
    getElement(getPointerAt(i), re, im);
}

double qdVector::rnd()
{
    const unsigned low = static_cast<unsigned>(std::rand()) & 0xFFFF;
    const unsigned high = static_cast<unsigned>(std::rand()) & 0xFFFF;
    return high * 65536.0 + low;
}
