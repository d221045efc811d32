#include "qkmem.h"

#include <climits>
#include <cstdint>
#include <cstdlib>

#include "qkstream.h"

namespace {
class MarkerObject final : public qkObject {};
MarkerObject s_buffer;
MarkerObject s_subObject;
} // namespace

qkObject* const MEM_OBJECT_IS_BUFFER = &s_buffer;
qkObject* const MEM_OBJECT_IS_SUBOBJECT = &s_subObject;

static AddressList* pAddressList = nullptr;
static int VectorShift = 512;
static int VectorAlign = 0;
static bool AlignSrc = true;
static bool AlignByByte = true;

// A block of qk_malloc: at least 128 bytes of guard space, the pointer of malloc at its start, then the
// caller's bytes from a 64-byte boundary on, and at least 64 bytes more behind them.
static const int guardSize = 256;
static const int rawDistance = 128;

static void*& rawPointer(void* base)
{
    return *reinterpret_cast<void**>(static_cast<char*>(base) - rawDistance);
}

void* qk_malloc(int size)
{
    if (size < 0) return nullptr;
    void* raw = std::malloc(static_cast<size_t>(size) + guardSize);
    if (!raw) return nullptr;
    const auto address = reinterpret_cast<std::uintptr_t>(raw) + guardSize - 64;
    void* base = reinterpret_cast<void*>(address & ~std::uintptr_t{63});
    rawPointer(base) = raw;
    return base;
}

void qk_free(void* base)
{
    if (base) std::free(rawPointer(base));
}

// For p on a 64-byte boundary and 0 <= align <= 63: the address `align` behind it.
static void* getAlignedPtr(char* p, int align)
{
    const auto mask = static_cast<std::uintptr_t>(static_cast<std::intptr_t>(align - 64));
    return reinterpret_cast<void*>((reinterpret_cast<std::uintptr_t>(p) + 63) & mask);
}

void* qk_malloc(void*& base, int size, int align, int shift)
{
    const int distance = align % 64;
    const long long total = static_cast<long long>(distance) + size + shift + 64;
    const bool fits = size >= 0 && shift >= 0 && total <= INT_MAX;
    base = fits ? qk_malloc(static_cast<int>(total)) : nullptr;
    return base ? getAlignedPtr(static_cast<char*>(base) + shift, distance) : nullptr;
}

static void reportBlock(const char* operation, const Address& block)
{
    if (!g_ostrm.beginMessage(MEM)) return;
    qkString text(operation);
    text << "size:" << block.size << "  address:" << static_cast<const void*>(block.base)
         << "  alignedPointer:" << static_cast<const void*>(block.aligned) << "\n";
    g_ostrm << text << END_MSG;
}

void* qkMalloc(int size, int align, int shift, void* object)
{
    Address block;
    block.aligned = qk_malloc(block.base, size, align, shift);
    if (!block.aligned) {
        g_ostrm << ERR << "-- Memory error: can't allocate " << size << " bytes\n" << END_MSG;
        return nullptr;
    }
    block.size = size;
    block.object = static_cast<qkObject*>(object);
    if (!pAddressList) pAddressList = new AddressList;
    pAddressList->append(block);
    reportBlock(" - qkMalloc: ", block);
    return block.aligned;
}

void* qkMalloc(void*& out, int size, int align, int shift)
{
    out = qkMalloc(size, align, shift, nullptr);
    return out;
}

static AddressList::iterator findBlock(const void* aligned)
{
    AddressList::iterator i = pAddressList->begin();
    while (i != pAddressList->end() && i->aligned != aligned) ++i;
    return i;
}

void qkFree(void* aligned)
{
    if (!pAddressList || !aligned) return;
    const AddressList::iterator found = findBlock(aligned);
    if (found == pAddressList->end()) return;
    reportBlock(" - qkFree: ", *found);
    void* base = found->base;
    if (pAddressList->m_cursor == found) ++pAddressList->m_cursor; // a walk goes on behind it
    pAddressList->erase(found);
    qk_free(base);
}

static void getBlock(const Address& block, int* size, void** object)
{
    if (size) *size = block.size;
    if (object) *object = block.object;
}

bool qkMallocInfo(void* aligned, int* size, void** object)
{
    if (!pAddressList) return false;
    const AddressList::iterator found = findBlock(aligned);
    if (found == pAddressList->end()) return false;
    getBlock(*found, size, object);
    return true;
}

void* qkMallocFirst(int* size, void** object)
{
    if (!pAddressList) return nullptr;
    pAddressList->m_cursor = pAddressList->begin();
    return qkMallocNext(size, object);
}

void* qkMallocNext(int* size, void** object)
{
    if (!pAddressList || pAddressList->m_cursor == pAddressList->end()) return nullptr;
    const Address& block = *pAddressList->m_cursor;
    ++pAddressList->m_cursor;
    getBlock(block, size, object);
    return block.aligned;
}

int qkFreeAll()
{
    pAddressList = nullptr;
    return 0;
}

int qkGetVectorShift()
{
    return VectorShift;
}

void qkSetVectorShift(int shift)
{
    VectorShift = shift;
}

int qkGetVectorAlign()
{
    return VectorAlign;
}

void qkSetVectorAlign(int align)
{
    VectorAlign = align % 64;
}

bool qkGetAlignSrc()
{
    return AlignSrc;
}

void qkSetAlignSrc(bool firstOnly)
{
    AlignSrc = firstOnly;
}

bool qkGetAlignByByte()
{
    return AlignByByte;
}

void qkSetAlignByByte(bool byByte)
{
    AlignByByte = byByte;
}
