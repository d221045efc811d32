// Tracked, aligned memory for test data. A block lies at an exact distance from a 64-byte boundary, remembers
// who owns it, and all live blocks can be walked.
#ifndef QK_MEM_H
#define QK_MEM_H

#include "qkstring.h"

// Root of what a tracked block may point back to.
class qkObject {
public:
    virtual int objectSize() const { return 0; }
    virtual qkString objectInfo() const { return qkString(); }
    // A second copy of the data, from which a measured call gets its input afresh. False: there is none.
    virtual bool reserveCopy() { return false; }
    virtual bool setReservedCopy() { return false; }
    virtual void deleteReservedCopy() {}

protected:
    ~qkObject() = default; // never deleted through this class
};

// Two owners that mark a kind of block; they are compared by address.
extern qkObject* const MEM_OBJECT_IS_BUFFER;
extern qkObject* const MEM_OBJECT_IS_SUBOBJECT;

struct Address {
    void* base = nullptr;    // what malloc gave, in the manner of qk_malloc
    void* aligned = nullptr; // what the caller got
    int size = 0;            // what the caller asked for
    qkObject* object = nullptr;
};

class AddressList : public qkList<Address> {
public:
    AddressList() : m_cursor(end()) {}
    iterator m_cursor; // the walk of qkMallocFirst and qkMallocNext
};

// Untracked. The second form: the result has distance `align` modulo 64 from a 64-byte boundary and lies at
// least `shift` bytes behind the block's start; `base` is what qk_free takes. Null (both) without memory.
void* qk_malloc(int size);
void* qk_malloc(void*& base, int size, int align, int shift);
void qk_free(void* base);

// Tracked. A failure is reported and answered with null. qkFree takes null and pointers that it does not
// know.
void* qkMalloc(int size, int align, int shift, void* object);
void* qkMalloc(void*& out, int size, int align, int shift);
void qkFree(void* aligned);
bool qkMallocInfo(void* aligned, int* size, void** object);
void* qkMallocFirst(int* size, void** object);
void* qkMallocNext(int* size, void** object);

// Forgets all blocks without freeing them: the end of the program.
int qkFreeAll();

// Mutual shift of successive vectors in bytes, and misalignment of a vector: 0..63 bytes or elements, of the
// first vector of a parameter set alone (AlignSrc) or of all.
int qkGetVectorShift();
void qkSetVectorShift(int shift);
int qkGetVectorAlign();
void qkSetVectorAlign(int align);
bool qkGetAlignSrc();
void qkSetAlignSrc(bool firstOnly);
bool qkGetAlignByByte();
void qkSetAlignByByte(bool byByte);

#endif
