// Arrays that are allocated once and free themselves; they do not grow.
#ifndef JPEG2000_FIXEDBUFFER_H
#define JPEG2000_FIXEDBUFFER_H

#include <cstddef>
#include <utility>

namespace jpeg2000 {

// One owned array without a size. The holder knows how long it is.
template <class T>
class FixedBuffer {
public:
    FixedBuffer() = default;
    explicit FixedBuffer(size_t n) { Alloc(n); }
    FixedBuffer(const FixedBuffer&) = delete;
    FixedBuffer& operator=(const FixedBuffer&) = delete;
    FixedBuffer(FixedBuffer&& other) noexcept : m_data(std::exchange(other.m_data, nullptr)) {}
    FixedBuffer& operator=(FixedBuffer&& other) noexcept
    {
        std::swap(m_data, other.m_data);
        return *this;
    }
    ~FixedBuffer() { Free(); }

    // n default-constructed elements, none for 0. Free first what is held.
    void Alloc(size_t n) { m_data = n == 0 ? nullptr : new T[n](); }
    void Free()
    {
        delete[] m_data;
        m_data = nullptr;
    }

    operator T*() { return m_data; }
    operator const T*() const { return m_data; }

private:
    T* m_data = nullptr;
};

template <class T>
struct FixedArray {
    FixedBuffer<T> data;
    unsigned size = 0;

    void ReAlloc(unsigned n)
    {
        data.Free();
        size = 0;
        data.Alloc(n);
        size = n;
    }
    T& operator[](unsigned i) { return data[i]; }
    const T& operator[](unsigned i) const { return data[i]; }
};

template <class T>
struct FixedArray2D {
    FixedBuffer<T> data;
    unsigned width = 0, height = 0;

    void ReAlloc(unsigned w, unsigned h)
    {
        data.Free();
        width = height = 0;
        data.Alloc(size_t{w} * h);
        width = w;
        height = h;
    }
    T* operator[](unsigned row) { return data + size_t{row} * width; }
    const T* operator[](unsigned row) const { return data + size_t{row} * width; }
};

// Rows that are arrays of their own.
template <class T>
class FixedBuffer2D {
public:
    FixedBuffer2D() = default;
    FixedBuffer2D(const FixedBuffer2D&) = delete;
    FixedBuffer2D& operator=(const FixedBuffer2D&) = delete;
    FixedBuffer2D(unsigned nOfRows, size_t width) { Alloc(nOfRows, width); }

    void Alloc(unsigned nOfRows, size_t width)
    {
        m_rows.Alloc(nOfRows);
        m_nOfRows = nOfRows;
        for (unsigned i = 0; i < nOfRows; i++) m_rows[i].Alloc(width);
    }
    void Free()
    {
        for (unsigned i = m_nOfRows; i-- > 0;) m_rows[i].Free();
        m_rows.Free();
        m_nOfRows = 0;
    }
    T* operator[](unsigned row) { return m_rows[row]; }
    const T* operator[](unsigned row) const { return m_rows[row]; }

private:
    FixedBuffer<FixedBuffer<T>> m_rows;
    unsigned m_nOfRows = 0;
};

} // namespace jpeg2000

#endif
