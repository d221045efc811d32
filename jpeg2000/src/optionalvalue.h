// Values that a header may have of its own, borrow from an outer header, or not have at all.
#ifndef JPEG2000_OPTIONALVALUE_H
#define JPEG2000_OPTIONALVALUE_H

#include "fixedbuffer.h"

namespace jpeg2000 {

template <class T>
class OptionalRefValue {
public:
    OptionalRefValue() = default;
    OptionalRefValue(const OptionalRefValue&) = delete;
    OptionalRefValue& operator=(const OptionalRefValue&) = delete;
    ~OptionalRefValue() { delete m_own; }

    // A new one in place of what there was.
    T& CreateOwn()
    {
        T* created = new T();
        delete m_own;
        m_value = m_own = created;
        return *created;
    }
    // Another's, which outlives this.
    void SetRef(const T& value)
    {
        if (m_value == &value) return;
        delete m_own;
        m_own = nullptr;
        m_value = &value;
    }

    bool IsSet() const { return m_value != nullptr; }
    bool IsOwn() const { return m_own != nullptr; }
    const T& Get() const { return *m_value; }

private:
    T* m_own = nullptr;
    const T* m_value = nullptr;
};

// One value a component.
template <class T>
class OptionalArray {
public:
    void ReAlloc(unsigned n) { m_values.ReAlloc(n); }
    unsigned Size() const { return m_values.size; }
    OptionalRefValue<T>& operator[](unsigned i) { return m_values[i]; }
    const OptionalRefValue<T>& operator[](unsigned i) const { return m_values[i]; }

private:
    FixedArray<OptionalRefValue<T>> m_values;
};

// Overrides of a value that all components share.
template <class T>
class OptionalSuperArray : public OptionalArray<T> {
public:
    const T& Resolve(unsigned i, const T& shared) const
    {
        return (*this)[i].IsSet() ? (*this)[i].Get() : shared;
    }
};

} // namespace jpeg2000

#endif
