// The codec's own small library: grids, arrays, streams, limits, texts, files.
#include "boundedinput.h"
#include "fixedstring.h"
#include "image.h"
#include "jp2output.h"
#include "optionalvalue.h"
#include "support/tempfile.h"
#include "sysmap.h"
#include "transfer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

using namespace jpeg2000;
using testing::ElementsAre;

namespace {

using LackOfData = DiagnDescrCT<ByteInputException, ByteInputException{0}>;
using LackOfMemory = DiagnDescrCT<MemoryException, MemoryException{0}>;

TEST(RulerPow2, SegmentsCoverTheIntervalAndEndOnTheGrid)
{
    for (const unsigned origin : {0u, 1u, 63u, 64u, 65u, 1000u, 0x7fffff00u})
        for (const unsigned size : {0u, 1u, 2u, 63u, 64u, 65u, 129u, 5000u})
            for (const unsigned order : {0u, 1u, 6u, 15u}) {
                RulerPow2 ruler;
                ruler.Init(origin, size, order);
                unsigned position = origin;
                for (unsigned i = 0; i < ruler.nOfSegments; i++) {
                    EXPECT_TRUE(i == 0 || position % ruler.step == 0);
                    EXPECT_TRUE(0 < ruler.SegmSize(i) && ruler.SegmSize(i) <= ruler.step);
                    position += ruler.SegmSize(i);
                }
                EXPECT_EQ(position, origin + size) << origin << ' ' << size << ' ' << order;
            }
}

TEST(Intersection, IsEmptyAtTheEndOfTheGridWhereNothingIsCommon)
{
    const Rect common = Intersection(Rect{2, 3, 10, 10}, Rect{5, 13, 20, 4}); // they touch along y
    EXPECT_THAT((std::vector{common.x, common.y, common.width, common.height}), ElementsAre(5, 13, 7, 0));
    const Rect apart = Intersection(Rect{0, 0, 4, 4}, Rect{5, 2, 4, 4});
    EXPECT_THAT((std::vector{apart.x, apart.y, apart.width, apart.height}), ElementsAre(0xFFFFFFFF, 2, 0, 2));
}

TEST(Image, PlanesShareOneAllocationAndSizesAreChecked)
{
    ImagePn<int> planes;
    planes.Alloc(5, 3, 3);
    EXPECT_EQ(planes.plane(1).row(0), planes.plane(0).row(3));
    EXPECT_EQ(planes.plane(2).row(0), planes.plane(0).row(6));

    ImageC<int, 1u> image;
    image.Alloc(0, 7);
    EXPECT_EQ(image.data, nullptr);
    EXPECT_EQ(image.step, 0u);
    EXPECT_THROW(image.Alloc(0x20000000, 1), LackOfMemory);
    EXPECT_THROW(image.Alloc(0xFFFFFFFF, 0xFFFFFFFF), LackOfMemory);
    ImagePn<int> tooMany;
    EXPECT_THROW(tooMany.Alloc(1, 0x60000000, 3), LackOfMemory);
}

std::vector<uint8_t> randomBytes(size_t n)
{
    std::mt19937 random(1);
    std::vector<uint8_t> bytes(n);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    return bytes;
}

unsigned blocksOf(const BufferStream& stream)
{
    unsigned count = 0;
    for ([[maybe_unused]] const MemoryBlock& block : stream.blocks) count++;
    return count;
}

std::vector<uint8_t> contentOf(BufferStream& stream)
{
    std::vector<uint8_t> bytes(stream.size);
    stream.Read(bytes.data(), stream.size);
    return bytes;
}

TEST(BufferStream, GrowsWithTheFirstByteThatFindsNoRoomAndReadsWhatThereIs)
{
    const auto bytes = randomBytes(20000);
    BufferStream stream;
    stream.Write(bytes.data(), MemoryBlock::blockSize);
    EXPECT_EQ(blocksOf(stream), 1u);
    stream.WriteByte(bytes[MemoryBlock::blockSize]);
    EXPECT_EQ(blocksOf(stream), 2u);
    stream.Write(&bytes[stream.size], 20000 - stream.size);
    std::vector<uint8_t> read(30000);
    EXPECT_EQ(stream.ReadBytes(read.data(), 30000), 20000u);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), read.begin()));
    EXPECT_EQ(stream.size, 0u);
    EXPECT_EQ(blocksOf(stream), 1u);
    EXPECT_THROW(stream.Read(read.data(), 1), LackOfData);
    stream.WriteByte(9);
    EXPECT_THAT(contentOf(stream), ElementsAre(9));
}

TEST(Transfer, MovesEveryByteOnceInOrder)
{
    const auto bytes = randomBytes(25000);
    for (const unsigned n : {0u, 1u, 8192u, 8193u, 24999u, 30000u}) {
        const unsigned moved = Min(n, 25000u);
        const auto check = [&](auto& out, auto content) {
            BufferStream source;
            source.Write(bytes.data(), 25000);
            EXPECT_EQ(Transfer(source, out, n), moved);
            EXPECT_EQ(source.size, 25000 - moved);
            auto all = content();
            const auto rest = contentOf(source);
            all.insert(all.end(), rest.begin(), rest.end());
            EXPECT_EQ(all, bytes) << n;
        };
        BufferStream stream;
        check(stream, [&] { return contentOf(stream); });
        JP2Output output;
        check(output, [&] { return contentOf(output); });
        std::vector<uint8_t> memory(moved);
        MemoryOutput cursor(memory.data());
        check(cursor, [&] { return memory; });
        DummyOutput counter;
        check(counter, [&] {
            EXPECT_EQ(counter.size, moved);
            return std::vector<uint8_t>(bytes.begin(), bytes.begin() + moved);
        });
    }
    MemoryBlock from, to; // between blocks, the room counts as well
    to.write = to.end - 2;
    from.put(bytes.data(), 10);
    EXPECT_EQ(Transfer(from, to, 5), 2u);
    EXPECT_EQ(from.readable(), 8u);
}

TEST(BoundedInput, LimitsNest)
{
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    MemoryBoundedInputBE in(bytes, 8);
    EXPECT_EQ(in.Read8u(), 1);
    EXPECT_EQ(in.PushSize(5), 5u);
    EXPECT_EQ(in.PushSize(100), 5u); // no more than the enclosing limit holds
    EXPECT_EQ(in.Read16u(), 0x0203);
    EXPECT_THROW(in.Read32u(), LackOfData);
    EXPECT_THROW(in.SeekPos(0xFFFFFFFF), LackOfData);
    EXPECT_EQ(in.Read8s(), 4); // a failed read takes nothing
    EXPECT_EQ(in.PopSize(), 2u);
    EXPECT_EQ(in.PopSize(), 0u); // the inner one's size was charged
    EXPECT_EQ(in.Read16s(), 0x0708);
    EXPECT_THROW(in.Read8u(), LackOfData);
}

TEST(Texts, CopyCompareAndNumbers)
{
    char buffer[12];
    EXPECT_EQ(StrCopy("abcdef", buffer, 3), 3u);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(StrCopy("ab", buffer, 3), 2u);
    EXPECT_EQ(Stricmp("JpG", "jPg"), 0);
    EXPECT_EQ(Stricmp("a", "B"), -1);
    EXPECT_EQ(Stricmp("ab", "A"), 1);
    EXPECT_EQ(Stricmp("", "a"), -1);
    for (const unsigned value : {0u, 9u, 10u, 4294967295u}) {
        const std::string text = std::to_string(value);
        EXPECT_EQ(IntToStrR10(value, buffer), text.size());
        EXPECT_EQ(buffer, text);
    }
    for (const unsigned bit : {0u, 1u, 31u}) EXPECT_EQ(Log2(1u << bit), static_cast<int>(bit));
    EXPECT_EQ(Log2(0), -1);
    FixedString<char> text("name");
    const FixedString<char> copy(text);
    text = "other";
    EXPECT_TRUE(copy == "name");
    EXPECT_FALSE(copy == "nam");
    EXPECT_FALSE(copy == "names");
    EXPECT_TRUE(FixedString<char>() == "");
}

TEST(OptionalValues, OwnOnesStandBeforeSharedOnes)
{
    const int shared = 1, outer = 2;
    OptionalSuperArray<int> overrides;
    overrides.ReAlloc(3);
    overrides[1].CreateOwn() = 5;
    overrides[2].CreateOwn() = 6;
    overrides[2].SetRef(outer);
    EXPECT_EQ(&overrides.Resolve(0, shared), &shared);
    EXPECT_EQ(overrides.Resolve(1, shared), 5);
    EXPECT_EQ(&overrides.Resolve(2, shared), &outer);
    EXPECT_TRUE(overrides[1].IsOwn());
    EXPECT_FALSE(overrides[2].IsOwn());
}

TEST(SysFile, DispositionsAgainstPresence)
{
    struct Case {
        int disposition;
        SysStatus absent, present;
        uint32_t size; // of a file of 5 bytes that was present
    };
    for (const Case& c : {Case{0, sysOk, sysFailed, 5},
                          {1, sysFailed, sysOk, 5},
                          {2, sysFailed, sysOk, 0},
                          {3, sysOk, sysOk, 5},
                          {4, sysOk, sysOk, 0},
                          {5, sysBadParameter, sysBadParameter, 5},
                          {-1, sysBadParameter, sysBadParameter, 5}}) {
        const auto create = [&](const TempFile& file) {
            SysFile* handle = nullptr;
            const SysStatus status = sysFileCreate(file.path(), 3, c.disposition, 0, &handle);
            EXPECT_EQ(handle != nullptr, status == sysOk);
            EXPECT_EQ(sysFileClose(handle), sysOk);
            return status;
        };
        TempFile absent, present("12345");
        EXPECT_EQ(create(absent), c.absent) << c.disposition;
        EXPECT_EQ(absent.exists(), c.absent == sysOk) << c.disposition;
        EXPECT_EQ(create(present), c.present) << c.disposition;
        EXPECT_EQ(present.read().size(), c.size) << c.disposition;
    }
    SysFile* folder = nullptr;
    ASSERT_EQ(sysFileCreate("/", 1, 1, 0, &folder), sysOk);
    uint32_t size = 1;
    EXPECT_EQ(sysFileGetSize(folder, &size), sysOk);
    EXPECT_EQ(size, 0u);
    sysFileClose(folder);
}

TEST(SysMap, ViewsReachTheFileThatGrew)
{
    constexpr uint32_t mapSize = 10000, offset = 5000;
    TempFile file("12345");
    SysFile* handle = nullptr;
    SysMap* map = nullptr;
    ASSERT_EQ(sysFileCreate(file.path(), 3, 1, 0, &handle), sysOk);
    ASSERT_EQ(sysMemoryMapCreate(handle, sysMapShared, mapSize, &map), sysOk);
    EXPECT_EQ(file.read().substr(0, 5), "12345");
    EXPECT_EQ(file.read().size(), mapSize);

    const auto poke = [&](int access) {
        SysMapView* view = nullptr;
        uint8_t* address = nullptr;
        ASSERT_EQ(sysMemoryMapViewCreate(map, access, offset, 10, &view), sysOk);
        ASSERT_EQ(sysMemoryMapViewGetAddr(view, &address), sysOk);
        address[9] = 'x';
        EXPECT_EQ(sysMemoryMapViewClose(view), sysOk);
    };
    poke(sysMapPrivate);
    EXPECT_EQ(file.read()[offset + 9], 0);
    poke(sysMapShared);
    EXPECT_EQ(file.read()[offset + 9], 'x');

    SysMapView* view = nullptr;
    EXPECT_EQ(sysMemoryMapViewCreate(map, sysMapShared, 0, mapSize + 1, &view), sysFailed);
    EXPECT_EQ(sysMemoryMapViewCreate(map, sysMapShared, 1, mapSize, &view), sysFailed);
    EXPECT_EQ(sysMemoryMapViewCreate(map, 3, 0, 1, &view), sysBadParameter);
    ASSERT_EQ(sysMemoryMapViewCreate(map, sysMapReadOnly, 0, 0, &view), sysOk);
    uint8_t* address = nullptr;
    EXPECT_EQ(sysMemoryMapViewGetAddr(view, &address), sysFailed);
    EXPECT_EQ(sysMemoryMapViewClose(view), sysOk);
    sysMemoryMapClose(map);
    sysFileClose(handle);

    ASSERT_EQ(sysFileCreate(file.path(), 1, 1, 0, &handle), sysOk);
    EXPECT_EQ(sysMemoryMapCreate(handle, sysMapReadOnly, mapSize + 1, &map), sysFailed); // cannot grow
    ASSERT_EQ(sysMemoryMapCreate(handle, sysMapReadOnly, mapSize, &map), sysOk);
    EXPECT_EQ(sysMemoryMapViewCreate(map, sysMapShared, 0, 1, &view), sysFailed);
    sysMemoryMapClose(map);
    sysFileClose(handle);
}

} // namespace
