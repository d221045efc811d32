// The cache iterator: with -C it stands in the parameter list in the place of a size parameter and changes
// that parameter until the test's data fit the largest cache, and then until they do not.
#ifndef QK_CACHEITER_H
#define QK_CACHEITER_H

#include "qkmem.h"
#include "qkparm.h"
#include "qovdefs.h"

// Sets a new value into the parameter; false: there is none. `fast`: one step of halving or doubling only.
using qkCacheUpdate = bool (*)(qkParameter* parm, int current, int target, bool fast);

class qkCacheIterator : public qkIterator<int> {
public:
    enum Mode { inCache = 0, outofCache = 1 };

    qkCacheIterator(qkParameter& parm, qkObject* object, qkCacheUpdate update);

    qkParameter* parm() const { return m_parm; }
    qkString valueString() const override { return m_parm->valueString(); }
    qkString defaultString() const override { return m_parm->defaultString(); }
    qkString validString() const override { return m_parm->validString(); }
    qkString description() const override { return m_parm->description(); }
    qkString prompt() const override { return m_parm->prompt(); }
    void toOStream(qkOStream& out) const override { m_parm->toOStream(out); }
    void toCStream(qkCStream& out) const override { m_parm->toCStream(out); }
    void nameToCStream(qkCStream& out) const override { m_parm->nameToCStream(out); }
    int colmIndex() const override { return m_parm->colmIndex(); }
    void fromIStream(qkIStream& in) override { m_parm->fromIStream(in); }
    bool nextValue() override;

    virtual bool repeatValue();
    virtual bool setNewValueToParm(int current, int target, bool fast) = 0;

    bool setNewValue();
    bool validateSize();
    void outputInfo() const;
    long long getTotalSize() const;
    int getObjectSize() const;
    int cacheSize() const;
    int lowSize() const;
    int highSize() const;
    qkString getComment() const;

private:
    bool dropLowFactor();
    void report(const char* what, long long size, const char* relation, int limit);

    qkParameter* m_parm;
    qkObject* m_object;
    int m_tries = 0;
    long long m_objectSize = 0; // the total if there is no object
    long long m_totalSize = 0;
    bool m_wasTooBig = false;
    double m_lowFactor = 0.1;
    qkString m_info; // messages of the attempts
    qkCacheUpdate m_update;
};

class qkCacheIteratorInt : public qkCacheIterator {
public:
    qkCacheIteratorInt(qkIterator<int>& parm, qkObject* object, qkCacheUpdate update);
    bool setNewValueToParm(int current, int target, bool fast) override;
    static bool updateValue(int& value, int current, int target, bool fast);

private:
    qkIterator<int>& m_intParm;
};

class qkCacheIteratorSize : public qkCacheIterator {
public:
    qkCacheIteratorSize(qkIterator_NSC<QovSize>& parm, qkObject* object, qkCacheUpdate update);
    bool setNewValueToParm(int current, int target, bool fast) override;
    static bool updateValue(QovSize& value, int current, int target, bool fast);

private:
    qkIterator_NSC<QovSize>& m_sizeParm;
};

#endif
