// The tracked allocator: exact alignment, the walk over live blocks, and pointers it does not know.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>

#include "qkmem.h"
#include "support/capture.h"

namespace {

int distance64(const void* p)
{
    return static_cast<int>(reinterpret_cast<std::uintptr_t>(p) & 63);
}

class Owner : public qkObject {
public:
    int objectSize() const override { return 5; }
};

TEST(Mem, RawBlocksLieOn64ByteBoundaries)
{
    for (int size : {0, 1, 63, 64, 1000}) {
        void* p = qk_malloc(size);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(distance64(p), 0);
        std::memset(p, 0xA5, static_cast<size_t>(size));
        qk_free(p);
    }
    EXPECT_EQ(qk_malloc(-1), nullptr);
    qk_free(nullptr);
}

// Every byte asked for is written: a block that is too short shows under the address sanitizer, and a damaged
// raw pointer when it is freed.
TEST(Mem, DistanceFromTheBoundaryIsExact)
{
    for (int align = -130; align < 130; align++) {
        for (int shift : {0, 64, 512}) {
            void* base = nullptr;
            void* p = qk_malloc(base, 77, align, shift);
            ASSERT_NE(p, nullptr);
            std::memset(p, 0xA5, 77);
            if (align >= 0) {
                EXPECT_EQ(distance64(p), align % 64);
                EXPECT_GE(static_cast<char*>(p) - static_cast<char*>(base), shift);
            }
            qk_free(base);
        }
    }
}

TEST(Mem, SizesBeyondTheRangeFailInsteadOfWrapping)
{
    LevelCapture console(g_ostrm);
    EXPECT_EQ(qkMalloc(INT_MAX, 63, 512, nullptr), nullptr);
    EXPECT_EQ(console.take(), "-- Memory error: can't allocate 2147483647 bytes\n");
    EXPECT_EQ(qkMalloc(INT_MAX, 0, INT_MAX, nullptr), nullptr); // the sum exceeds 32 bits altogether
    console.take();
    void* out = &console;
    EXPECT_EQ(qkMalloc(out, -5, 0, 0), nullptr);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(console.take(), "-- Memory error: can't allocate -5 bytes\n");
    void* base = &console;
    EXPECT_EQ(qk_malloc(base, INT_MAX - 10, 0, 0), nullptr);
    EXPECT_EQ(base, nullptr);
}

TEST(Mem, LiveBlocksCanBeWalkedAndLookedUp)
{
    qkFreeAll();
    int size = 0;
    void* object = nullptr;
    EXPECT_EQ(qkMallocFirst(&size, &object), nullptr);
    EXPECT_FALSE(qkMallocInfo(&size, nullptr, nullptr));
    qkFree(&size);

    Owner owner;
    void* a = qkMalloc(10, 3, 0, MEM_OBJECT_IS_BUFFER);
    EXPECT_EQ(qkMallocNext(&size, &object), nullptr); // no walk has been started
    void* b = nullptr;
    EXPECT_EQ(qkMalloc(b, 20, 0, 512), b);
    void* c = qkMalloc(30, 0, 0, static_cast<qkObject*>(&owner));

    EXPECT_EQ(qkMallocFirst(&size, &object), a);
    EXPECT_EQ(size, 10);
    EXPECT_EQ(object, MEM_OBJECT_IS_BUFFER);
    EXPECT_EQ(qkMallocNext(&size, &object), b);
    EXPECT_EQ(size, 20);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(qkMallocNext(nullptr, nullptr), c);
    EXPECT_EQ(qkMallocNext(&size, &object), nullptr);

    qkFree(b);
    qkFree(b); // by now unknown
    qkFree(static_cast<char*>(c) + 1);
    qkFree(nullptr);
    EXPECT_FALSE(qkMallocInfo(b, &size, &object));
    ASSERT_TRUE(qkMallocInfo(c, &size, &object));
    EXPECT_EQ(size, 30);
    EXPECT_EQ(static_cast<qkObject*>(object)->objectSize(), 5);
    // Freeing the block that a walk would reach next does not break the walk.
    EXPECT_EQ(qkMallocFirst(nullptr, nullptr), a);
    qkFree(c);
    EXPECT_EQ(qkMallocNext(nullptr, nullptr), nullptr);
    qkFree(a);
    EXPECT_EQ(qkMallocFirst(nullptr, nullptr), nullptr);
}

// At the end of the program blocks are forgotten, not freed: their contents stay, and freeing them does
// nothing.
TEST(Mem, FreeAllForgets)
{
    char* block = static_cast<char*>(qkMalloc(16, 0, 0, nullptr));
    *block = 'x';
    EXPECT_EQ(qkFreeAll(), 0);
    EXPECT_EQ(*block, 'x');
    EXPECT_FALSE(qkMallocInfo(block, nullptr, nullptr));
    qkFree(block);
    EXPECT_EQ(*block, 'x');
}

TEST(Mem, BlocksAreReportedAtTheMemoryLevel)
{
    LevelCapture console(g_ostrm, ERR | MEM);
    void* p = qkMalloc(40, 1, 0, nullptr);
    const std::string made = console.take();
    qkFree(p);
    const std::string freed = console.take();
    qkFree(p);
    EXPECT_EQ(console.take(), "");

    qkString address;
    address << static_cast<const void*>(p);
    const std::string tail = std::string("  alignedPointer:") + address.c_str() + "\n";
    EXPECT_EQ(made.find(" - qkMalloc: size:40  address:"), 0u) << made;
    EXPECT_EQ(freed.find(" - qkFree: size:40  address:"), 0u) << freed;
    EXPECT_EQ(made.substr(made.size() - tail.size()), tail);
    EXPECT_EQ(made.substr(made.find("size:")), freed.substr(freed.find("size:")));
}

} // namespace
