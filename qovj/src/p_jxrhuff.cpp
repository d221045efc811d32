// Suite Tim_jxrHuffman: the adaptive coders of JPEG XR. One measured call codes a whole stream, with the
// state set up before it and adapted along it as in a tile.
#include "qdbitvector.h"
#include "qovj_main.h"
#include "qovjsuite.h"

static qdVector pSrcData, pDecodedData;
static qdBitVector pEncodedData;
static QoviVLCState_JPEGXR* pHuffState;
static int iBlocks;
static int iVectorSize; // elements of all blocks
static int iChannels;
static int iSamples; // of a channel in a low-pass block
static int iFlex;    // the low bits are coded too
static int iIteration;

static const int iterations = 5; // how many of the counts below are used
static const int iBlocksArray[] = {1, 5, 10, 50, 100, 1000};

static const int blockElements = 48;
static const int channelElements = 16; // of a 4x4 block
static const int resetInterval = 16;   // blocks

// ---- The 4x4 drivers

// The number of low bits goes round from block to block.
static inline int firstLowBits()
{
    return iFlex ? 1 : 0;
}

static inline int nextLowBits(int n)
{
    if (!iFlex) return (n + 1) % 15;
    return n == 14 ? 1 : n + 1;
}

static inline int startBlock4x4(bool reset, bool last)
{
    if (reset) {
        if (const int status = qoviVLCScanReset_JPEGXR(pHuffState, 1, last)) return status;
        if (const int status = qoviVLCScanReset_JPEGXR(pHuffState, 0)) return status;
    }
    return qoviVLCScanSet_JPEGXR(pHuffState, 1);
}

// `code` for each channel of each block, given the place of its first element, the low bits and whether it is
// chroma, up to the first status other than 0.
template <class Code>
static inline int walk4x4(Code code)
{
    if (const int status = qoviVLCInit_JPEGXR(pHuffState)) return status;
    int n = firstLowBits();
    for (int b = 0; b < iBlocks; b++) {
        const bool reset = b % resetInterval == 0;
        const bool last = reset || b == iBlocks - 1;
        if (const int status = startBlock4x4(reset, last)) return status;
        for (int c = 0; c < iChannels; c++) {
            if (const int status = code(b * blockElements + c * channelElements, n, c != 0)) return status;
        }
        n = nextLowBits(n);
        if (const int status = qoviVLCAdapt_JPEGXR(pHuffState, 1, last)) return status;
    }
    return 0;
}

namespace {

template <class T>
struct Coders4x4;

#define CODERS4X4(t)                                                                                         \
    template <>                                                                                              \
    struct Coders4x4<Qov##t> {                                                                               \
        static constexpr auto encode = qoviVLCEncode4x4_JPEGXR_##t##1u_C1R;                                  \
        static constexpr auto encodeFlex = qoviVLCEncode4x4Flex_JPEGXR_##t##1u_C1R;                          \
        static constexpr auto decode = qoviVLCDecode4x4_JPEGXR_1u##t##_C1R;                                  \
    };
CODERS4X4(32s)
CODERS4X4(16s)
#undef CODERS4X4

} // namespace

template <class T>
[[gnu::noinline]] static int xVLCEncode4x4()
{
    constexpr int step = 4 * sizeof(T);
    const T* source = static_cast<const T*>(pSrcData.m_data);
    Qov8u* dst = pEncodedData.m_8u;
    int bit = 0, nonZero;
    return walk4x4([&](int at, int n, int chroma) -> int {
        const T* block = source + at;
        if (!iFlex) return Coders4x4<T>::encode(block, step, &dst, &bit, n, chroma, &nonZero, pHuffState);
        if (const int status =
                Coders4x4<T>::encodeFlex(block, step, &dst, &bit, n, chroma, &nonZero, pHuffState))
            return status;
        return qoviFLCEncode4x4_JPEGXR(block, step, sizeof(T), &dst, &bit, n, 0);
    });
}

template <class T>
[[gnu::noinline]] static int xVLCDecode4x4()
{
    constexpr int step = 4 * sizeof(T);
    T* decoded = static_cast<T*>(pDecodedData.m_data);
    const Qov8u* src = pEncodedData.m_8u;
    int bit = 0, nonZero;
    return walk4x4([&](int at, int n, int chroma) -> int {
        T* block = decoded + at;
        if (const int status = Coders4x4<T>::decode(&src, &bit, block, step, n, chroma, &nonZero, pHuffState))
            return status;
        return iFlex ? qoviFLCDecode4x4_JPEGXR(&src, &bit, block, step, sizeof(T), n, 0) : 0;
    });
}

// ---- The low-pass drivers

static const int scanDC = 2;

// `code` for each block, given the place of its first element, up to the first status other than 0.
template <class Code>
static inline int walkDC(Code code)
{
    if (const int status = qoviVLCInit_JPEGXR(pHuffState)) return status;
    for (int b = 0; b < iBlocks; b++) {
        if (b % resetInterval == 0) {
            if (const int status = qoviVLCScanReset_JPEGXR(pHuffState, scanDC)) return status;
        }
        if (const int status = code(b * blockElements)) return status;
        if (const int status = qoviVLCAdapt_JPEGXR(pHuffState, 0)) return status;
    }
    return 0;
}

// `move` for each place of the list of a 4:2:2 or 4:2:0 block, which takes the channels in turn, and for the
// sample that belongs there; the first sample of a channel is in no list. 4:2:0 has no sample 4.
template <class Move>
static inline void forEachPlace(Move move)
{
    static const int order[] = {4, 1, 2, 3, 5, 6, 7};
    const int* sample = iSamples == 8 ? order : order + 1;
    int place = 0;
    for (int i = 0; i < iSamples - 1; i++) {
        for (int c = 0; c < iChannels; c++) move(place++, c * iSamples + sample[i]);
    }
}

[[gnu::noinline]] static int xVLCEncodeDC4XX()
{
    Qov8u* dst = pEncodedData.m_8u;
    int bit = 0, nonZero;
    Qov32s list[channelElements];
    return walkDC([&](int at) -> int {
        const Qov32s* block = pSrcData.m_32s + at;
        if (iSamples < channelElements) {
            forEachPlace([&](int place, int sample) { list[place] = block[sample]; });
            const auto encode =
                iSamples == 8 ? qoviVLCEncodeDC422_JPEGXR_32s1u : qoviVLCEncodeDC420_JPEGXR_32s1u;
            return encode(list, &dst, &bit, &nonZero, pHuffState);
        }
        for (int c = 0; c < iChannels; c++, block += channelElements) {
            if (const int status = qoviVLCScan4x4DC_JPEGXR_32s(block, list, pHuffState)) return status;
            if (const int status =
                    qoviVLCEncodeDC444_JPEGXR_32s1u(list, &dst, &bit, c != 0, &nonZero, pHuffState))
                return status;
        }
        return 0;
    });
}

[[gnu::noinline]] static int xVLCDecodeDC4XX()
{
    const Qov8u* src = pEncodedData.m_8u;
    int bit = 0, nonZero;
    Qov32s list[channelElements];
    return walkDC([&](int at) -> int {
        Qov32s* block = pDecodedData.m_32s + at;
        if (iSamples < channelElements) {
            const auto decode =
                iSamples == 8 ? qoviVLCDecodeDC422_JPEGXR_1u32s : qoviVLCDecodeDC420_JPEGXR_1u32s;
            const int status = decode(&src, &bit, list, &nonZero, pHuffState);
            if (status == 0) forEachPlace([&](int place, int sample) { block[sample] = list[place]; });
            return status;
        }
        for (int c = 0; c < iChannels; c++, block += channelElements) {
            if (const int status =
                    qoviVLCDecodeDC444_JPEGXR_1u32s(&src, &bit, block, c != 0, &nonZero, pHuffState))
                return status;
        }
        return 0;
    });
}

// ---- The suite

class Tim_jxrHuffman : public qdTest {
public:
    using qdTest::qdTest;
    ~Tim_jxrHuffman() override = default;

    bool canStart() override
    {
        iFlex = 0;
        iSamples = channelElements;
        iIteration = 0;
        return true;
    }

    bool canContinue() override { return iIteration < iterations; }

    bool initData() override
    {
        if (!createState()) return false;
        iChannels = 3;
        iBlocks = iBlocksArray[iIteration];
        iVectorSize = iBlocks * blockElements;
        if (m_func.contains("422")) {
            iSamples = 8;
            iChannels = 2;
        }
        if (m_func.contains("420")) {
            iSamples = 4;
            iChannels = 2;
        }
        iFlex = m_func.contains("Flex") || m_func.contains("Decode4x4");
        const bool words = m_func.contains("16s");
        if (!createVectors(words ? qd16s : qd32s)) return false;
        const bool coded = m_func.contains("Decode"); // the timed calls need a stream
        if (!m_func.contains("4x4")) return !coded || succeeds(xVLCEncodeDC4XX(), "xVLCEncodeDC4XX");
        return words ? prepare4x4<Qov16s>(coded) : prepare4x4<Qov32s>(coded);
    }

    void flushData() override
    {
        iIteration++;
        pSrcData.deleteVector();
        pEncodedData.deleteVector();
        pDecodedData.deleteVector();
        freeState();
    }

    void parmsToCstrm() override { g_cstrm << iVectorSize; }
    void parmsNameToCstrm() override { g_cstrm << "iVectorSize"; }
    void parmsToOstrm() override { g_ostrm << "iVectorSize=" << iVectorSize; }

    double getDivisor() override { return iBlocks * 15.0; }
    qkString getUnit() override { return "e"; }

private:
    static void freeState()
    {
        qovFree(pHuffState);
        pHuffState = nullptr;
    }

    static bool createState()
    {
        freeState(); // a crash in a test leaves its own
        int size = 0;
        if (!succeeds(qoviVLCGetStateSize_JPEGXR(&size), "qoviVLCGetStateSize_JPEGXR")) return false;
        pHuffState = static_cast<QoviVLCState_JPEGXR*>(qovMalloc(size));
        return pHuffState != nullptr;
    }

    static bool createVectors(qdType type)
    {
        pSrcData.init(type);
        pDecodedData.init(type);
        if (!pSrcData.createVector(iVectorSize, SET_ZERO)) return false;
        if (!pEncodedData.createVector(iBlocks << 12, SET_ZERO)) return false;
        if (!pDecodedData.createVector(iVectorSize, SET_ZERO)) return false;
        pEncodedData.setBitPos(0);
        pSrcData.setSequence(1.0, 65535.0, 10.0, true);
        return true;
    }

    static bool succeeds(int status, const char* name) { return !qkIsError(checkStatus(status, name)); }

    template <class T>
    static bool prepare4x4(bool coded)
    {
        raise(static_cast<T*>(pSrcData.m_data));
        return !coded || succeeds(xVLCEncode4x4<T>(), "xVLCEncode4x4");
    }

    // Magnitudes grow by what the low bits of their block can hold, so that no coefficient is coded as 0: a
    // list of nothing else would leave no trace in the stream. Those of 16 bits may turn over.
    template <class T>
    static void raise(T* data)
    {
        int n = firstLowBits();
        for (int b = 0; b < iBlocks; b++, n = nextLowBits(n)) {
            const int more = (1 << n) - 1;
            for (int i = 0; i < blockElements; i++, data++)
                *data = static_cast<T>(*data < 0 ? *data - more : *data + more);
        }
    }
};

QD_REG_X(Tim_jxrHuffman, qoviVLCEncodeDC444_JPEGXR_32s1u, xVLCEncodeDC4XX);
QD_REG_X(Tim_jxrHuffman, qoviVLCEncodeDC422_JPEGXR_32s1u, xVLCEncodeDC4XX);
QD_REG_X(Tim_jxrHuffman, qoviVLCEncodeDC420_JPEGXR_32s1u, xVLCEncodeDC4XX);
QD_REG_X(Tim_jxrHuffman, qoviVLCDecodeDC444_JPEGXR_1u32s, xVLCDecodeDC4XX);
QD_REG_X(Tim_jxrHuffman, qoviVLCDecodeDC422_JPEGXR_1u32s, xVLCDecodeDC4XX);
QD_REG_X(Tim_jxrHuffman, qoviVLCDecodeDC420_JPEGXR_1u32s, xVLCDecodeDC4XX);
QD_REG_X(Tim_jxrHuffman, qoviVLCEncode4x4_JPEGXR_32s1u_C1R, xVLCEncode4x4<Qov32s>);
QD_REG_X(Tim_jxrHuffman, qoviVLCEncode4x4Flex_JPEGXR_32s1u_C1R, xVLCEncode4x4<Qov32s>);
QD_REG_X(Tim_jxrHuffman, qoviVLCDecode4x4_JPEGXR_1u32s_C1R, xVLCDecode4x4<Qov32s>);
QD_REG_X(Tim_jxrHuffman, qoviVLCEncode4x4_JPEGXR_16s1u_C1R, xVLCEncode4x4<Qov16s>);
QD_REG_X(Tim_jxrHuffman, qoviVLCEncode4x4Flex_JPEGXR_16s1u_C1R, xVLCEncode4x4<Qov16s>);
QD_REG_X(Tim_jxrHuffman, qoviVLCDecode4x4_JPEGXR_1u16s_C1R, xVLCDecode4x4<Qov16s>);
