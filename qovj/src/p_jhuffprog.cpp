// Suite TimjHuffProg: progressive Huffman coding. A coder of a pass needs what the passes before it have
// left, so every test runs the scans of a picture and reports the one tick record that is its own.
#include "huffsuite.h"

#include <cstring>
#include <iterator>

namespace {

struct Scan {
    bool dc, first;
    int ss, se, al;
};
const Scan scans[] = {
    {true, true, 0, 0, 1},
    {true, false, 0, 0, 0},
    {false, true, 1, 63, 1},
    {false, false, 1, 63, 0},
};
const int scanNumber = static_cast<int>(std::size(scans));

// A tick record's number: the sum of what it is of. Without the first two: AC, refinement.
enum TickRecord { ofDC = 1, ofFirst = 2, ofEncoding = 4, ofStatistics = 8, tickRecords = 16 };

int recordOf(bool dc, bool first, bool encoding, bool statistics)
{
    return (dc ? ofDC : 0) + (first ? ofFirst : 0) + (encoding ? ofEncoding : 0) +
           (statistics ? ofStatistics : 0);
}

template <class T>
bool allocBlock(T*& block, bool (*getSize)(int*))
{
    int size = 0;
    if (getSize(&size)) block = static_cast<T*>(std::malloc(static_cast<size_t>(size)));
    return block != nullptr;
}

template <class T>
void freeBlock(T*& block)
{
    std::free(block);
    block = nullptr;
}

} // namespace

static qdImage pSrcDCT;
static qdVector pSrcEnc, pDstDec;
static qdBitVector pScan[scanNumber];
static int lenByteEnc[scanNumber], lenByteDec[scanNumber];
static Qov8u pBits[16], pValues[256];
static int pStatistics[256];
static qdTicks myTicker[tickRecords];
static int myRecord; // the test's own
static bool f_bStatistics, f_bDecode, f_bDC, f_bFirst;
static int srcDstLen, srcDstPos, currentPos, marker;
static Qov16s lastDC;
static qdjEncodeSide::State* pEncodeState;
static qdjEncodeSide::Spec* pEncodeSpec;
static qdjDecodeSide::State* pDecodeState;
static qdjDecodeSide::Spec* pDecodeSpec;

static bool initState()
{
    return qdjEncodeSide::initState(pEncodeState) && qdjDecodeSide::initState(pDecodeState);
}

// Tables of both directions for the symbols counted.
static bool initSpec()
{
    return QDJ_DONE(qoviEncodeHuffmanRawTableInit_JPEG_8u, pStatistics, pBits, pValues) &&
           qdjEncodeSide::initSpec(pBits, pValues, pEncodeSpec) &&
           qdjDecodeSide::initSpec(pBits, pValues, pDecodeSpec);
}

static bool callStatistics(int i, int flush)
{
    const Scan& scan = scans[i];
    const Qov16s* block = pSrcEnc.m_16s + srcDstPos;
    if (scan.dc && !scan.first) return true;
    if (scan.dc)
        return QDJ_DONE(qoviGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1, block, pStatistics, &lastDC,
                        scan.al);
    if (scan.first)
        return QDJ_DONE(qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1, block, pStatistics, scan.ss, scan.se,
                        scan.al, pEncodeState, flush);
    return QDJ_DONE(qoviGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1, block, pStatistics, scan.ss, scan.se,
                    scan.al, pEncodeState, flush);
}

static bool callEncode(int i, int flush)
{
    const Scan& scan = scans[i];
    const Qov16s* block = pSrcEnc.m_16s + srcDstPos;
    Qov8u* coded = pScan[i].m_8u;
    if (scan.dc && scan.first)
        return QDJ_DONE(qoviEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1, block, coded, lenByteEnc[i], &currentPos,
                        &lastDC, scan.al, pEncodeSpec, pEncodeState, flush);
    if (scan.dc)
        return QDJ_DONE(qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1, block, coded, lenByteEnc[i], &currentPos,
                        scan.al, pEncodeState, flush);
    if (scan.first)
        return QDJ_DONE(qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1, block, coded, lenByteEnc[i], &currentPos,
                        scan.ss, scan.se, scan.al, pEncodeSpec, pEncodeState, flush);
    return QDJ_DONE(qoviEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1, block, coded, lenByteEnc[i], &currentPos,
                    scan.ss, scan.se, scan.al, pEncodeSpec, pEncodeState, flush);
}

static bool callDecode(int i)
{
    const Scan& scan = scans[i];
    Qov16s* block = pDstDec.m_16s + srcDstPos;
    const Qov8u* coded = pScan[i].m_8u;
    if (scan.dc && scan.first)
        return QDJ_DONE(qoviDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1, coded, lenByteDec[i], &currentPos, block,
                        &lastDC, &marker, scan.al, pDecodeSpec, pDecodeState);
    if (scan.dc)
        return QDJ_DONE(qoviDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1, coded, lenByteDec[i], &currentPos, block,
                        &marker, scan.al, pDecodeState);
    if (scan.first)
        return QDJ_DONE(qoviDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1, coded, lenByteDec[i], &currentPos, block,
                        &marker, scan.ss, scan.se, scan.al, pDecodeSpec, pDecodeState);
    return QDJ_DONE(qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1, coded, lenByteDec[i], &currentPos, block,
                    &marker, scan.ss, scan.se, scan.al, pDecodeSpec, pDecodeState);
}

// `call` for each block, its time added to a record.
template <class Call>
static bool timeBlocks(int record, Call call)
{
    qdTicks& ticks = myTicker[record];
    bool done = true;
    ticks.resume();
    ticks.begin();
    for (srcDstPos = 0; done && srcDstPos <= srcDstLen - 64; srcDstPos += 64) done = call();
    ticks.end();
    return done;
}

static bool runEncodeDecode(bool encode, int i)
{
    const Scan& scan = scans[i];
    if (!initState()) return false;
    if (!scan.dc || scan.first) { // else there are no tables
        lastDC = 0;
        std::memset(pStatistics, 0, sizeof pStatistics);
        const int record = recordOf(scan.dc, scan.first, encode, true);
        if (!timeBlocks(record, [i] { return callStatistics(i, 0); })) return false;
        if (!scan.dc && !callStatistics(i, 1)) return false;
        if (!initSpec()) return false;
    }
    if (f_bStatistics) return true;

    if (!initState()) return false;
    lastDC = 0;
    currentPos = 0;
    const int record = recordOf(scan.dc, scan.first, encode, false);
    if (!encode) return timeBlocks(record, [i] { return callDecode(i); });
    if (!timeBlocks(record, [i] { return callEncode(i, 0); })) return false;
    const bool flushed = callEncode(i, 1);
    lenByteDec[i] = currentPos;
    return flushed;
}

// The scans up to the last one that the test needs.
static bool encode_decode(bool encode)
{
    std::memset(pDstDec.m_data, 0, static_cast<size_t>(pDstDec.size()));
    for (int i = 0; i < scanNumber; i++) {
        if (!scans[i].dc && (f_bDC || (!scans[i].first && f_bFirst))) break;
        if (!runEncodeDecode(encode, i)) return false;
    }
    return true;
}

static void clearTicks()
{
    for (qdTicks& ticks : myTicker) {
        ticks.clear();
        ticks.begin();
    }
}

static long long myClocks()
{
    return qkCpuTicker::getClockFactor() * myTicker[myRecord].total;
}

// The statuses have been reported by the calls.
static qkResult timLoop(int n, long long* clocks)
{
    clearTicks();
    for (int i = 0; i < n; i++)
        if (!encode_decode(!f_bDecode)) return FUNCFAIL;
    *clocks = myClocks();
    return OK;
}

static qkResult timStat(int* n, long long* clocks)
{
    clearTicks();
    int i = 0;
    for (; i < *n || myClocks() < *clocks; i++)
        if (!encode_decode(!f_bDecode)) return FUNCFAIL;
    *n = i;
    *clocks = myClocks();
    return OK;
}

class TimjHuffProg : public qdTest {
public:
    using qdTest::qdTest;
    ~TimjHuffProg() override = default;

    bool canStart() override
    {
        regCacheParm(g_imageSize, pSrcDCT, nullptr);
        f_bStatistics = m_func.contains("Statistics");
        f_bDecode = m_func.contains("Decode");
        f_bDC = m_func.contains("DC");
        f_bFirst = m_func.contains("First");
        myRecord = recordOf(f_bDC, f_bFirst, !f_bDecode, f_bStatistics);
        return true;
    }

    bool initData() override
    {
        const QoviSize size = g_imageSize.value();
        srcDstLen = qdjPixels(size);
        if (!qdjHuffmanSource(size, pSrcDCT, pSrcEnc, srcDstLen, SET_ONE)) return false;
        pDstDec.init(qd16s);
        if (!pDstDec.createVector(srcDstLen, SET_ONE)) return false;
        for (int i = 0; i < scanNumber; i++) {
            if (!qdjHuffmanStream(pScan[i], srcDstLen, SET_ONE)) return false;
            lenByteEnc[i] = srcDstLen;
            lenByteDec[i] = 0;
        }
        if (!allocSpecState()) return false;
        return !f_bDecode || makeStreams();
    }

    void flushData() override
    {
        pSrcDCT.deleteVector();
        pSrcEnc.deleteVector();
        pDstDec.deleteVector();
        for (qdBitVector& scan : pScan) scan.deleteVector();
        freeBlock(pEncodeState);
        freeBlock(pEncodeSpec);
        freeBlock(pDecodeState);
        freeBlock(pDecodeSpec);
    }

    double getDivisor() override { return srcDstLen >> 6; }
    qkString getUnit() override { return "block"; }

private:
    static bool allocSpecState()
    {
        return allocBlock(pEncodeState, qdjEncodeSide::stateSize) &&
               allocBlock(pEncodeSpec, qdjEncodeSide::specSize) &&
               allocBlock(pDecodeState, qdjDecodeSide::stateSize) &&
               allocBlock(pDecodeSpec, qdjDecodeSide::specSize);
    }

    // Both directions once, for the streams and all tables.
    static bool makeStreams()
    {
        constexpr OutputLevel warningsOnly = ERR | WARN;
        const OutputLevel level = g_ostrm.outLevel();
        if (level == warningsOnly) g_ostrm.setOutLevel(warningsOnly | PERF | DATA);
        const bool done = encode_decode(true) && encode_decode(false);
        g_ostrm.setOutLevel(level);
        return done;
    }
};

// The wrappers are the same for all: the name chooses what they do.
#define HUFFPROG_REG(f)                                                                                      \
    static const bool reg_##f =                                                                              \
        qkRegTest(new TimjHuffProg(timLoop, timStat, #f, qdUnitPath(__FILE__), "TimjHuffProg/"))

HUFFPROG_REG(qoviGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1);
HUFFPROG_REG(qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1);
HUFFPROG_REG(qoviGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1);
HUFFPROG_REG(qoviEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1);
HUFFPROG_REG(qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1);
HUFFPROG_REG(qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1);
HUFFPROG_REG(qoviEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1);
HUFFPROG_REG(qoviDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1);
HUFFPROG_REG(qoviDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1);
HUFFPROG_REG(qoviDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1);
HUFFPROG_REG(qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1);
