// qdTest: the base of all suites. It knows the tested function by name, turns the library's statuses into
// results, sorts by function name, lists the test's data, and offers sizes to the cache iterator.
#ifndef QD_TEST_H
#define QD_TEST_H

#include "qdimage.h"
#include "qktest.h"

class qdTest : public qkTest {
public:
    qdTest(qkFuncOld funcOld, const qkString& name, const qkString& file, const qkString& info);
    qdTest(qkFuncLoop funcLoop, qkFuncStat funcStat, const qkString& name, const qkString& file,
           const qkString& info);
    qdTest(qkFuncCall funcCall, qkFuncCall funcInit, qkFuncLoop funcLoop, qkFuncStat funcStat,
           const qkString& name, const qkString& file, const qkString& info);

    qkResult run() override;
    int compareFunc(const qkTest* other) const override;
    void funcToCstrm() override; // name, types, descriptor
    bool isFloatFunction() override;
    int printAllMemoryBlocks(const qkString& title) override;
    qkString regInfo() override;

    // Pieces of the data listing.
    virtual void printFirstDebugLine(const qkString& title);
    virtual void printLastDebugLine(const qkString& title);
    virtual void printFirstBlockLine(int number, qkObject* object, int size);
    virtual void printLastBlockLine(int number, qkObject* object);
    virtual void printVectorBlock(qdVector* vector);
    virtual void printByteBlock(void* p, int size);

    // Reports a status other than 0 and raises the running test's result. Every status of a timed call passes
    // here. Without a name, that of the tested function.
    static qkResult checkStatus(QovStatus status, const qkString& name);
    qkResult checkStatus(QovStatus status) const { return checkStatus(status, m_func); }

    // Appends a size parameter; with -C the first one of the test is wrapped by a cache iterator.
    using qkTest::regCacheParm;
    void regCacheParm(qkIterator_NSC<QovSize>& sizes, qdImage& image, qkCacheUpdate update);
    void regCacheParm(qkIterator_NSC<QovSize>& sizes, qkCacheUpdate update);

    const qdFunc& func() const { return m_func; }

    static bool m_checkErrorsOnly; // the library's warnings are passed over

protected:
    qdFunc m_func;

private:
    void regSizeParm(qkIterator_NSC<QovSize>& sizes, qkObject* object, qkCacheUpdate update);
    void printBlock(int number, void* block, qkObject* object, int size);
};

#endif
