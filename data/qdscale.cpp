#include "qdscale.h"

#include "qktest.h"

bool qdScaleIterator::isScaled(const qdFunc& func)
{
    const qkString descr = func.descrName();
    return descr.contains("Sfs") || descr.contains("Fix");
}

void qdScaleIterator::begin(const qkString& func)
{
    m_scaled = isScaled(func);
    setName(m_scaled ? "ScaleFactor" : "", "");
    reset();
}

int qdScaleIterator::colmIndex() const
{
    return qkTest::m_numParmsColm - 1;
}
