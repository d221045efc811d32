#include "qdimage.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "qdbmp.h"
#include "qdconvert.h"
#include "qktest.h"

qdImage::~qdImage()
{
    qdImage::deleteVector();
}

qkString qdImage::channelString(int channels, bool planar)
{
    qkString text(channels == 4 ? "A" : "");
    text << (planar ? "P" : "C") << channels;
    return text;
}

void qdImage::init(qdType type, int channels, bool planar)
{
    deleteVector();
    initFunc(type, channelString(channels, planar));
}

bool qdImage::isPlane(const qdFunc& func)
{
    return func.descrName().contains("P");
}

int qdImage::numChannels(const qdFunc& func)
{
    const qkString descr = func.descrName();
    if (descr.contains("4")) return 4;
    if (descr.contains("3")) return 3;
    return descr.contains("2") ? 2 : 1;
}

int qdImage::numActualChannels(const qdFunc& func)
{
    const int channels = numChannels(func);
    return channels == 4 && func.descrName().contains("A") ? 3 : channels;
}

// ---- Creation

long long qdImage::rowBytes(int w) const
{
    return static_cast<long long>(w) * qdItemSize(m_type) * (planar() ? 1 : channels());
}

long long qdImage::defaultStep(int w) const
{
    return (rowBytes(w) + 15) & ~15LL;
}

int qdImage::step() const
{
    return m_step != 0 ? m_step : static_cast<int>(defaultStep(m_width));
}

bool qdImage::createPlanes(int step, int h, int align, bool planeAlign)
{
    const int itemSize = qdItemSize(m_type);
    const int len = static_cast<int>((static_cast<long long>(step) + itemSize - 1) / itemSize * h);
    const int firstNum = qkTest::m_vectorNum;
    for (int i = 0; i < channels(); i++) {
        m_plane[i].init(m_type);
        // All planes of an image draw the same data offset, and the allocator lists them as one object.
        qkTest::m_vectorNum = firstNum;
        const bool first = i == 0;
        if (!m_plane[i].createVector(len, first || !planeAlign ? align : 0,
                                     first ? this : MEM_OBJECT_IS_SUBOBJECT))
            return false;
        m_planePtr[i] = m_plane[i].m_data;
    }
    setPlanePtrs();
    return true;
}

bool qdImage::createImage(int w, int h, int step, int align, bool planeAlign)
{
    deleteVector();
    if (w < 1 || h < 1 || m_type == qdUndef) return memError(0);
    const long long rowStep = step < rowBytes(w) ? defaultStep(w) : step;
    const long long planeBytes = rowStep > LLONG_MAX / h ? LLONG_MAX : rowStep * h;
    const long long bytes = planeBytes > INT_MAX || !planar() ? planeBytes : planeBytes * channels();
    if (bytes < 1 || bytes > INT_MAX) return memError(bytes);
    step = static_cast<int>(rowStep);
    const bool good =
        planar() ? createPlanes(step, h, align, planeAlign) : allocateVector(bytes, align, this);
    if (!good) return false;
    m_width = w;
    m_height = h;
    m_step = step;
    setConst();
    return true;
}

bool qdImage::createImage(QovSize size, int step, int align, bool planeAlign)
{
    return createImage(size.width, size.height, step, align, planeAlign);
}

bool qdImage::createImageExt(int w, int h, int, int, SetMode mode, double a, double b)
{
    if (!createImage(w, h, -1, -1, false)) return false;
    setVector(mode, a, b);
    return true;
}

bool qdImage::createImageExt(QovSize size, int step, int align, SetMode mode, double a, double b)
{
    return createImageExt(size.width, size.height, step, align, mode, a, b);
}

bool qdImage::createVector(int w, int h, SetMode mode, double a, double b)
{
    return createImageExt(w, h, -1, -1, mode, a, b);
}

bool qdImage::createVector(QovSize size, SetMode mode, double a, double b)
{
    return createVector(size.width, size.height, mode, a, b);
}

bool qdImage::createVectorExt(int w, int h, int align, SetMode mode, double a, double b)
{
    return createImageExt(w, h, -1, align, mode, a, b);
}

bool qdImage::createVectorExt(QovSize size, int align, SetMode mode, double a, double b)
{
    return createVectorExt(size.width, size.height, align, mode, a, b);
}

void qdImage::deleteVector()
{
    if (m_plane[0].m_data) m_data = nullptr; // the plane's own buffer
    qdVector::deleteVector();
    for (int i = 0; i < maxPlanes; i++) {
        m_plane[i].deleteVector();
        m_planePtr[i] = nullptr;
    }
    m_width = m_height = m_step = 0;
    setPlanePtrs();
}

void qdImage::setPlanePtrs()
{
    if (planar()) m_data = m_planePtr[0];
    setTypedPointers();
#define QD_SET(name, part, code)                                                                             \
    for (int i = 0; i < maxPlanes; i++)                                                                      \
        m_planes_##name[i] = m_type == qd##name ? static_cast<Qov##name*>(m_planePtr[i]) : nullptr;
    QD_TYPES(QD_SET)
#undef QD_SET
}

bool qdImage::setPlaneArray()
{
    if (!planar()) return false;
    if (m_plane[0].m_data || !m_data) return true;
    char* block = static_cast<char*>(m_data);
    for (int i = 0; i < channels(); i++)
        m_planePtr[i] = block + static_cast<std::ptrdiff_t>(step()) * m_height * i;
    setPlanePtrs();
    return true;
}

bool qdImage::canLoadImage() const
{
    return m_type == qdUndef || (m_type == qd8u && !planar());
}

bool qdImage::loadImage(const qkString& name, int align)
{
    return qdBmpFile(*this).load(name, align);
}

// ---- Access

void* qdImage::getRowPointer(int row) const
{
    const bool isPlanar = planar();
    char* base = static_cast<char*>(isPlanar ? m_planePtr[row / m_height] : m_data);
    return base + static_cast<std::ptrdiff_t>(isPlanar ? row % m_height : row) * m_step;
}

int qdImage::getNumRows() const
{
    return planar() ? m_height * channels() : m_height;
}

int qdImage::getRowLen() const
{
    return planar() ? m_width : m_width * channels();
}

void* qdImage::getPointerAt(int x, int y, int c) const
{
    const bool isPlanar = planar();
    char* row = static_cast<char*>(getRowPointer(isPlanar ? y + m_height * c : y));
    return row + static_cast<std::ptrdiff_t>(isPlanar ? x : channels() * x + c) * item(m_func);
}

int qdImage::size() const
{
    return getNumRows() * step();
}

int qdImage::objectSize() const
{
    return numItems() * qdItemSize(m_type);
}

int qdImage::numItems() const
{
    return m_width * m_height * channels();
}

int qdImage::numActualItems() const
{
    return m_width * m_height * numActualChannels(m_func);
}

qkString qdImage::objectInfo() const
{
    qkString text("Image ");
    text << typeString() << "_" << m_func.descrName() << " size=" << imageSize();
    return text;
}

// Lines for rows, an empty line between planes. Of an image too large for one text the beginning is shown.
qkString qdImage::getString() const
{
    qkString text;
    const long long rowChars = static_cast<long long>(dataStringWidth(m_type)) * getRowLen() + 2;
    const int rows = m_data ? std::min(getNumRows(), static_cast<int>(INT_MAX / 2 / rowChars)) : 0;
    if (rows == 0) return text;
    text.allocate(static_cast<int>(rows * rowChars));
    char* const begin = &text[0];
    char* out = begin;
    for (int row = 0; row < rows; row++) {
        if (row > 0) *out++ = '\n';
        if (row > 0 && row % m_height == 0) *out++ = '\n';
        out = writeDataString(out, m_type, getRowPointer(row), getRowLen());
    }
    text.resize(static_cast<int>(out - begin), ' ');
    return text;
}

void qdImage::setImageAt(int x, int y, int c, double re, double im)
{
    if (m_data) setDataConst(getPointerAt(x, y, c), 1, re, im);
}

void qdImage::getImageAt(int x, int y, int c, double& re, double& im) const
{
    getElement(m_data ? getPointerAt(x, y, c) : nullptr, re, im);
}

double qdImage::getImageAt(int x, int y, int c) const
{
    double re, im;
    getImageAt(x, y, c, re, im);
    return re;
}

void qdImage::setIndex(int x, int y, int c, SetMode mode, double a, double b)
{
    if (m_data) setElement(getPointerAt(x, y, c), mode, a, b);
}

void qdImage::getIndex(int x, int y, int c, double& re, double& im) const
{
    getImageAt(x, y, c, re, im);
}

double qdImage::getIndex(int x, int y, int c) const
{
    return getImageAt(x, y, c);
}

// ---- Reserve copy: the planes lie one after the other in it

bool qdImage::reserveCopy()
{
    if (!planar()) return qdVector::reserveCopy();
    deleteReservedCopy();
    if (!m_data) return false;
    m_reserved = std::calloc(1, static_cast<size_t>(size()));
    if (!m_reserved) return false;
    const size_t planeBytes = static_cast<size_t>(step()) * m_height;
    for (int i = 0; i < channels(); i++)
        std::memcpy(static_cast<char*>(m_reserved) + planeBytes * i, m_planePtr[i], planeBytes);
    return true;
}

bool qdImage::setReservedCopy()
{
    if (!planar()) return qdVector::setReservedCopy();
    if (!m_data || !m_reserved) return false;
    const size_t planeBytes = static_cast<size_t>(step()) * m_height;
    for (int i = 0; i < channels(); i++)
        std::memcpy(m_planePtr[i], static_cast<char*>(m_reserved) + planeBytes * i, planeBytes);
    return true;
}

// ---- Filling, row by row: the padding between rows stays as it is

template <class Fill>
void qdImage::forEachRow(Fill fill)
{
    if (!m_data) return;
    const int rows = getNumRows();
    const int rowLen = getRowLen();
    for (int row = 0; row < rows; row++) fill(getRowPointer(row), rowLen);
}

void qdImage::setConst(double re, double im)
{
    forEachRow([&](void* row, int n) { setDataConst(row, n, re, im); });
}

void qdImage::setConst_64s(long long re, long long im)
{
    forEachRow([&](void* row, int n) { setDataConst_64s(row, n, re, im); });
}

void qdImage::setRandom(double a, double b)
{
    forEachRow([&](void* row, int n) { setDataRandom(row, n, a, b); });
}

void qdImage::setSequence(double a, double b, double step, bool wrap)
{
    forEachRow([&](void* row, int n) { setDataSequence(row, n, a, b, step, wrap); });
}

// Rings whose frequency grows with the squared distance d from the centre, by the image's height both ways:
// (sin(2 pi d / (4 h)) + 1) * magn + offset. On an unsigned type the default amplitude exceeds the range, and
// the values wrap: that makes the hard rings of the pattern. p: a part of the first element; `stride`: parts
// from column to column.
void qdImage::setPlaneJaehne(void* p, int stride, double magn)
{
    double offset;
    if (!updateJaehneMagn(magn, offset)) return;
    const double cx = (m_width - 1) * 0.5;
    const double cy = (m_height - 1) * 0.5;
    qdVisitPart(m_type, [&](auto part) {
        using Part = decltype(part);
        for (int y = 0; y < m_height; y++) {
            char* row = static_cast<char*>(p) + static_cast<std::ptrdiff_t>(y) * m_step;
            for (int x = 0; x < m_width; x++) {
                const double d = (y - cy) * (y - cy) + (x - cx) * (x - cx);
                const double wave = std::sin(d * 6.283185307179586 / (4.0 * m_height));
                qdStore(row, static_cast<std::int64_t>(x) * stride,
                        qdConvert<Part>((wave + 1.0) * magn + offset));
            }
        }
    });
}

void qdImage::setJaehne(double magn)
{
    if (!m_data) return;
    const int parts = qdNumParts(m_type);
    const int partSize = qdItemSize(m_type) / parts;
    const int stride = (planar() ? 1 : channels()) * parts;
    for (int c = 0; c < channels(); c++) {
        for (int i = 0; i < parts; i++)
            setPlaneJaehne(static_cast<char*>(getPointerAt(0, 0, c)) + i * partSize, stride, magn);
    }
}
