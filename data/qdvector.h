// qdVector: the typed buffer of one argument of a function under test. It takes its element type from the
// function's name, its alignment from the session, and fills itself with data that are the same in every run.
//
// The data members are public because the timed wrappers of the suites read them with no call between; nobody
// but the class itself writes them.
#ifndef QD_VECTOR_H
#define QD_VECTOR_H

#include "qdfunc.h"
#include "qkmem.h"

class qdVector : public qkObject {
public:
    qdVector();
    explicit qdVector(qdType type);
    qdVector(const qdFunc& func, int index);
    qdVector(const qdFunc& func, qdArg arg);
    qdVector(const qdVector&) = delete;
    qdVector& operator=(const qdVector&) = delete;

    int objectSize() const override { return size(); }
    qkString objectInfo() const override;
    bool reserveCopy() override;
    bool setReservedCopy() override;
    void deleteReservedCopy() override;
    virtual ~qdVector();
    virtual void deleteVector();
    virtual void setConst();
    virtual void setConst(double re, double im);
    virtual void setConst_64s(long long re, long long im); // exact, for 64s and 64sc
    virtual void setMinValue();
    virtual void setMaxValue();
    virtual void setJaehne();
    virtual void setJaehne(double magn);
    virtual void setSequence(double a, double b);
    virtual void setSequence(double a, double b, double step, bool wrap);
    virtual void setRandom();
    virtual void setRandom(double a, double b);
    virtual void setRandom(double a, double b, unsigned seed);
    virtual qkString getString() const;
    virtual int size() const; // bytes
    virtual void* getReservedData() const { return m_reserved; }
    virtual void setVector(SetMode mode, double a = 0, double b = 0);
    virtual void setIndex(int i, SetMode mode, double a = 0, double b = 0);
    virtual double getIndex(int i) const;
    virtual void getIndex(int i, double& re, double& im) const;
    virtual double getDataConst() const; // what a fresh vector is filled with

    // The type of the vector; its old buffer goes. An index is a field of the name's types (1 to 3).
    void init(qdType type);
    void init(const qdFunc& func, int index);
    void init(const qdFunc& func, qdArg arg);

    // Allocates `len` elements and fills them. A negative `align` means the session's alignment; `owner` is
    // who the allocator lists the block under (the vector itself by default). False, after a message, if that
    // fails.
    bool createVector(int len, int align = -1, qkObject* owner = nullptr);
    bool createVector(int len, SetMode mode, double a = 0, double b = 0);
    bool createVectorExt(int len, int align, SetMode mode, double a = 0, double b = 0);
    bool allocateVector(long long bytes, int align, qkObject* owner);

    const qdFunc& func() const { return m_func; }
    qkString typeString() const { return qdFunc::typeToString(m_type); }
    void* getPointerAt(int i) const; // null without data
    void getElement(const void* p, double& re, double& im) const;
    double minValue() const { return getMinValue(m_type); }
    double maxValue() const { return getMaxValue(m_type); }

    static double getMinValue(qdType type) { return qdTypeLimits(type).min; }
    static double getMaxValue(qdType type) { return qdTypeLimits(type).max; }
    static double getMinAbsValue(qdType type) { return qdTypeLimits(type).minAbs; }
    static int item(const qdFunc& func) { return qdItemSize(func.type(1)); } // bytes of an element

    // Elements as text, in columns of a width fixed by the type.
    qkString getDataString(const void* p, int count) const { return getDataString(m_type, p, count); }
    static qkString getDataString(qdType type, const void* p, int count);
    static qkString getByteString(const void* p, int count);
    static int dataStringWidth(qdType type); // characters of one element
    // Writes `count` elements without a terminator and returns the end.
    static char* writeDataString(char* out, qdType type, const void* p, int count);

    // Fill n elements at p with data of the vector's type. An undefined type leaves them as they are.
    void setDataConst(void* p, int n, double re, double im) const;
    void setDataConst_64s(void* p, int n, long long re, long long im) const;
    void setDataRandom(void* p, int n, double min, double max) const;
    void setDataSequence(void* p, int n, double lo, double hi, double step, bool wrap) const;
    void setVectorJaehne(void* p, int n, double magn) const;

    // A number of 32 random bits from the C library; the buffers don't use it.
    static double rnd();
    static double rndMax() { return 4294967295.0; }

    static unsigned m_seed; // state of the random generator
    // 0.4 times the square root of the largest finite value: products of two random values stay finite.
    static constexpr double MAXABS_32F = 7.378697409581492e+18;
    static constexpr double MAXABS_64F = 5.3631231719770384e+153;

    void* m_data = nullptr;
    int m_len = 0; // elements
    qdType m_type = qdUndef;

    // m_8u, m_16u, ... m_64fc: m_data as a pointer to its elements; null for all types but the vector's own.
#define QD_POINTER(name, part, code) Qov##name* m_##name = nullptr;
    QD_TYPES(QD_POINTER)
#undef QD_POINTER

protected:
    void setTypedPointers();
    void initFunc(qdType type, const qkString& channelsName);
    static bool memError(long long bytes); // a message; always false

    // The Jaehne signal's amplitude and offset for the vector's type; false: nothing is to be filled.
    bool updateJaehneMagn(double& magn, double& offset) const;
    void setElement(void* p, SetMode mode, double a, double b) const;

    void* m_reserved = nullptr;
    qdFunc m_func; // "_16s_C1": type and channel word of this argument
};

#endif
