#include "qdtest.h"

#include <gtest/gtest.h>

#include <string>

#include "qdbitvector.h"
#include "qdscale.h"
#include "qkcacheiter.h"
#include "qkcstream.h"
#include "qklibenv.h"
#include "support/capture.h"

using std::string;

namespace {

int goodCall()
{
    return 0;
}

class SuiteTest : public qdTest {
public:
    explicit SuiteTest(const char* name, const char* tag = "SuiteTest//QD_REG")
        : qdTest(goodCall, nullptr, nullptr, nullptr, name, "src/p_suite", tag)
    {
    }
    double getFlops() override { return 5; }
    bool canStart() override
    {
        m_seedAtStart = qdVector::m_seed;
        m_errorsOnlyAtStart = m_checkErrorsOnly;
        return false;
    }
    using qdTest::m_cacheIter;
    using qdTest::m_parms;
    unsigned m_seedAtStart = 0;
    bool m_errorsOnlyAtStart = true;
};

const char* statusName(QovStatus status)
{
    return status < 0 ? "bad thing" : "odd thing";
}

class DataTest : public testing::Test {
protected:
    DataTest()
    {
        qkFreeAll();
        qov_GetStatusString = statusName;
    }
    ~DataTest() override
    {
        qov_GetStatusString = nullptr;
        qdTest::m_checkErrorsOnly = false;
        qkTest::m_cache = false;
        qkTest::m_currentResult = UNDEFINED;
    }
};

} // namespace

// ---- Statuses

TEST_F(DataTest, StatusesBecomeResults)
{
    struct {
        QovStatus status;
        const char* name;
        OutputLevel mask;
        bool errorsOnly;
        qkResult result, merged;
        const char* text;
        qkResult before = UNDEFINED;
    } const cases[] = {
        {0, "f", 127, false, OK, UNDEFINED, ""},
        {-8, "f", 1, false, FUNCFAIL, FUNCFAIL, "--QOV ERROR. status = -8 in f: bad thing\n"},
        {-8, "", 3, true, FUNCFAIL, FUNCFAIL, "--QOV ERROR. status = -8: bad thing\n"},
        {4, "f", 3, false, FUNCWRN, FUNCWRN, "--QOV WARNING. status = 4 in f: odd thing\n"},
        {4, "f", 1, false, FUNCWRN, OK, ""}, // not shown, so the run ends well
        {4, "f", 127, true, OK, UNDEFINED, ""},
        {4, "f", 1, false, FUNCWRN, EXCPTFAIL, "", EXCPTFAIL}, // a worse result stays
    };
    for (const auto& c : cases) {
        LevelCapture out(g_ostrm, c.mask);
        qkTest::m_currentResult = c.before;
        qdTest::m_checkErrorsOnly = c.errorsOnly;
        EXPECT_EQ(qdTest::checkStatus(c.status, c.name), c.result) << c.status;
        EXPECT_EQ(qkTest::m_currentResult, c.merged) << c.status;
        EXPECT_EQ(out.take(), c.text);
        EXPECT_EQ(g_ostrm.msgLevel(), PERF) << "the level is put back";
    }
}

// Without the library the harness's own texts are given; the timing tool's calls are named after the running
// test.
TEST_F(DataTest, TheTimingToolAsksToo)
{
    LevelCapture out(g_ostrm, 3);
    SuiteTest test("qoviF_8u_C1");
    EXPECT_EQ(test.checkStatus(-8), FUNCFAIL);
    qov_GetStatusString = nullptr;
    ASSERT_NE(qkTool::m_pCheckStatus, nullptr);
    EXPECT_EQ(qkTool::m_pCheckStatus(-8), FUNCFAIL);
    qkTestList::m_pCurrentTest = &test;
    EXPECT_EQ(qkTool::m_pCheckStatus(2), FUNCWRN);
    qkTestList::m_pCurrentTest = nullptr;
    EXPECT_EQ(out.take(), "--QOV ERROR. status = -8 in qoviF_8u_C1: bad thing\n--QOV ERROR. status = -8: "
                          "Error\n--QOV WARNING. status = 2 in qoviF_8u_C1: Warning\n");
}

// ---- What the name tells

TEST_F(DataTest, EveryRunStartsFromTheSameState)
{
    LevelCapture out(g_ostrm);
    SuiteTest test("qoviF_8u_C1");
    qdVector::m_seed = 99;
    qdTest::m_checkErrorsOnly = true;
    EXPECT_EQ(test.run(), DATAFAIL) << "canStart refuses";
    EXPECT_EQ(test.m_seedAtStart, 7u);
    EXPECT_FALSE(test.m_errorsOnlyAtStart);
}

TEST_F(DataTest, NameInTheTable)
{
    SuiteTest test("qoviAdd128_JPEG_16s8u_C1R");
    g_cstrm.tableFlush();
    test.funcToCstrm();
    const char* const cells[] = {"qoviAdd128_JPEG", "16s8u", "C1R"};
    for (int i = 0; i < 3; i++) {
        qkString cell;
        g_cstrm.getColm(i, cell);
        EXPECT_STREQ(cell.c_str(), cells[i]);
    }
    EXPECT_EQ(g_cstrm.numColm(), 3);
    g_cstrm.tableFlush();
}

TEST_F(DataTest, OrderFlopsAndRegistration)
{
    SuiteTest a("qoviAdd_8u_C1R"), b("qoviAdd_16s_C1R", "SuiteTest//QK_REG QK_"), f("qoviAdd_32f_C1R");
    EXPECT_LT(a.compareFunc(&b), 0) << "by width, where plain text would put 16s first";
    EXPECT_GT(b.compareFunc(&a), 0);
    EXPECT_FALSE(b.isFloatFunction()) << "whatever its operations";
    EXPECT_TRUE(f.isFloatFunction());
    EXPECT_STREQ(b.regInfo().c_str(), "   Test has been registered by QD_REG QK_ macro with funcCall\n"
                                      "   funcCall is called for measuring.");
}

// ---- The cache parameter

TEST_F(DataTest, FirstSizeIsWrappedForTheCache)
{
    qkIterator<QovSize> sizes("ImageSize", ""), more("More", "");
    qdImage image;
    for (bool cache : {false, true}) {
        qkTest::m_cache = cache;
        SuiteTest test("qoviF_8u_C1");
        test.regCacheParm(sizes, image, nullptr);
        test.regCacheParm(more, nullptr);
        ASSERT_EQ(test.m_parms.count(), 2);
        auto parm = test.m_parms.begin();
        EXPECT_EQ(*parm, cache ? static_cast<qkParameter*>(test.m_cacheIter) : &sizes);
        EXPECT_EQ(test.m_cacheIter != nullptr, cache);
        if (cache) {
            EXPECT_EQ(test.m_cacheIter->parm(), &sizes);
        }
        ++parm;
        EXPECT_EQ(*parm, &more);
    }
}

// The size that the iterator finds: the image as given fits the cache, and grows until it does not.
TEST_F(DataTest, CacheIteratorChangesTheImage)
{
    qov_GetMaxCacheSizeB = [](int* size) -> QovStatus {
        *size = 100000;
        return qovStsNoErr;
    };
    qkIterator<QovSize> sizes("ImageSize", "");
    sizes.translate("128x128");
    qdImage image(qd8u, 1, false);
    qkCacheIteratorSize iterator(sizes, &image, nullptr);
    iterator.resetIterator();
    int bytes[2] = {};
    for (int& found : bytes) {
        ASSERT_TRUE(iterator.nextValue());
        bool fits = false;
        for (int tries = 0; tries < 12 && !fits; tries++) {
            ASSERT_TRUE(image.createImage(sizes.value()));
            fits = iterator.validateSize();
            if (!fits) {
                ASSERT_TRUE(iterator.repeatValue());
            }
        }
        EXPECT_TRUE(fits);
        found = image.objectSize();
    }
    EXPECT_EQ(bytes[0], 128 * 128);
    EXPECT_GT(bytes[1], 105000);
    qov_GetMaxCacheSizeB = nullptr;
}

// ---- Listing of the data

TEST_F(DataTest, ListingOfAllBlocks)
{
    SuiteTest test("qoviF_8u_C1");
    qkTest::m_vectorShift = 0;
    qdImage planes(qd8u, 2, true);
    qdBitVector bits;
    ASSERT_TRUE(planes.createVector(2, 1, SET_CONST, 3) && bits.createVector(1, SET_CONST, 0xA5));
    void* buffer = qkTest::allocate(2, 0);
    ASSERT_NE(buffer, nullptr);
    static_cast<char*>(buffer)[0] = 0x1F;
    static_cast<char*>(buffer)[1] = 0;
    void* nobodys = qkMalloc(5, 0, 0, nullptr);
    {
        LevelCapture out(g_ostrm, ERR);
        EXPECT_EQ(test.printAllMemoryBlocks("before function calls"), 0);
        EXPECT_EQ(out.take(), "");
    }
    LevelCapture out(g_ostrm, 71);
    EXPECT_EQ(test.printAllMemoryBlocks("before function calls"), 3);
    EXPECT_EQ(out.take(),
              "======== OBJECTS OUTPUT START === before function calls === OBJECTS OUTPUT START ========\n"
              "======== Object 1: Image 8u_P2 size=2x1\n"
              "   3   3\n"
              "\n"
              "   3   3\n"
              "\n"
              "======== Object 2: BitVector 8u len=1\n"
              "1010 0101\n"
              "\n"
              "======== Object 3: MemoryBlock size=2\n"
              " 1F 00\n"
              "\n"
              "======== OBJECTS OUTPUT END === before function calls === OBJECTS OUTPUT END ========\n");
    EXPECT_EQ(g_ostrm.msgLevel(), PERF);
    qkTest::deallocate(buffer);
    qkFree(nobodys);
}

// ---- Scale factor

TEST(ScaleIterator, HasValuesForScaledFunctionsOnly)
{
    struct {
        const char* function;
        bool scaled;
        const char *byDefault, *given;
    } const cases[] = {
        {"qovsAdd_16s_C1RSfs", true, "0; 1; 2; -1", "4; -4"},
        {"qovsAdd_16s_Fix", true, "0; 1; 2; -1", "4; -4"},
        {"qovsAddSfs_16s_C1R", false, "0", "0"},
        {"qovsAdd_16s", false, "0", "0"},
    };
    for (const auto& c : cases) {
        qdScaleIterator scale;
        scale.init(c.function);
        EXPECT_EQ(scale.scaled(), c.scaled) << c.function;
        EXPECT_STREQ(scale.defaultString().c_str(), c.byDefault) << c.function;
        EXPECT_STREQ(scale.name().c_str(), c.scaled ? "ScaleFactor" : "");
        scale.init(c.function, 4, -4);
        EXPECT_STREQ(scale.defaultString().c_str(), c.given) << c.function;
        EXPECT_TRUE(scale.firstValue());
        EXPECT_EQ(scale.value(), c.scaled ? 4 : 0);
    }
}

TEST(ScaleIterator, CellIsTheLastParameter)
{
    const int columns = qkTest::m_numParmsColm;
    qkTest::m_numParmsColm = 9;
    qdScaleIterator scale;
    scale.init("qovsAdd_16s_C1RSfs", -1);
    ASSERT_TRUE(scale.firstValue());
    g_cstrm.tableFlush();
    scale.toCStream(g_cstrm);
    qkString cell;
    EXPECT_TRUE(g_cstrm.getColm(8, cell));
    EXPECT_STREQ(cell.c_str(), "-1");
    scale.init("qovsAdd_16s");
    scale.toCStream(g_cstrm);
    EXPECT_TRUE(g_cstrm.getColm(8, cell));
    EXPECT_STREQ(cell.c_str(), "") << "prints as '-'";
    g_cstrm.tableFlush();
    qkTest::m_numParmsColm = columns;
}
