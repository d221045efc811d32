// What the suites of the Huffman coders share: their tables, the coefficients that they code, and the opaque
// blocks of both directions. Included once by each unit, with internal linkage, as qovjsuite.h is.
#ifndef QOVJ_HUFFSUITE_H
#define QOVJ_HUFFSUITE_H

#include "qovi.h"
#include "qovj_main.h"
#include "qovjsuite.h"
#include "qovs.h"

#include <algorithm>
#include <cstdlib>

// The luminance tables of ITU-T T.81, K.3 and K.5.
[[maybe_unused]] static const Qov8u DCBits[16] = {0, 1, 5, 1, 1, 1, 1, 1, 1};
[[maybe_unused]] static const Qov8u DCValues[12] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
[[maybe_unused]] static const Qov8u ACBits[16] = {0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 125};
// clang-format off
[[maybe_unused]] static const Qov8u ACValues[162] = {
    0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51, 0x61, 0x07,
    0x22, 0x71, 0x14, 0x32, 0x81, 0x91, 0xA1, 0x08, 0x23, 0x42, 0xB1, 0xC1, 0x15, 0x52, 0xD1, 0xF0,
    0x24, 0x33, 0x62, 0x72, 0x82, 0x09, 0x0A, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x25, 0x26, 0x27, 0x28,
    0x29, 0x2A, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49,
    0x4A, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5A, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69,
    0x6A, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7A, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89,
    0x8A, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98, 0x99, 0x9A, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7,
    0xA8, 0xA9, 0xAA, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xC2, 0xC3, 0xC4, 0xC5,
    0xC6, 0xC7, 0xC8, 0xC9, 0xCA, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6, 0xD7, 0xD8, 0xD9, 0xDA, 0xE1, 0xE2,
    0xE3, 0xE4, 0xE5, 0xE6, 0xE7, 0xE8, 0xE9, 0xEA, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8,
    0xF9, 0xFA};
// clang-format on

static inline int qdjPixels(QoviSize size)
{
    return qdjCount(static_cast<long long>(size.width) * size.height);
}

// The coefficients of a test picture, in `coefs`, of which `length` elements are wanted at least: whole
// blocks, whatever the picture's size, since the walks end with a whole block.
[[maybe_unused]] static bool qdjHuffmanSource(QoviSize size, qdImage& picture, qdVector& coefs,
                                              long long length, SetMode fill)
{
    picture.init(qd8u, 1, false);
    coefs.init(qd16s);
    if (!picture.createVector(size, fill)) return false;
    const long long wanted = std::max<long long>(length, qdjPixels(size));
    if (!coefs.createVector(qdjCount((wanted + 63) / 64 * 64), fill)) return false;
    picture.setJaehne(100.0);
    return qdjDCTFwd(picture.m_8u, picture.m_step, size, coefs.m_16s) >= 1;
}

// Empty coded data of `bytes` bytes.
[[maybe_unused]] static bool qdjHuffmanStream(qdBitVector& stream, long long bytes, SetMode fill)
{
    if (!stream.createVector(qdjCount(bytes), fill)) return false;
    stream.setBitPos(0);
    return true;
}

static inline bool qdjDone(QovStatus status, const char* name)
{
    return status == qovStsNoErr || !qkIsError(qdTest::checkStatus(status, name));
}

// The functions for the blocks of one direction, each telling whether it went well.
#define QDJ_DONE(f, ...) qdjDone(f(__VA_ARGS__), #f)
#define QDJ_HUFFMAN_SIDE(Name)                                                                               \
    struct qdj##Name##Side {                                                                                 \
        using Spec = Qovi##Name##HuffmanSpec;                                                                \
        using State = Qovi##Name##HuffmanState;                                                              \
        static bool allocSpec(const Qov8u* bits, const Qov8u* values, Spec** spec)                           \
        {                                                                                                    \
            return QDJ_DONE(qovi##Name##HuffmanSpecInitAlloc_JPEG_8u, bits, values, spec);                   \
        }                                                                                                    \
        static bool freeSpec(Spec* spec) { return QDJ_DONE(qovi##Name##HuffmanSpecFree_JPEG_8u, spec); }     \
        static bool specSize(int* size)                                                                      \
        {                                                                                                    \
            return QDJ_DONE(qovi##Name##HuffmanSpecGetBufSize_JPEG_8u, size);                                \
        }                                                                                                    \
        static bool initSpec(const Qov8u* bits, const Qov8u* values, Spec* spec)                             \
        {                                                                                                    \
            return QDJ_DONE(qovi##Name##HuffmanSpecInit_JPEG_8u, bits, values, spec);                        \
        }                                                                                                    \
        static bool stateSize(int* size)                                                                     \
        {                                                                                                    \
            return QDJ_DONE(qovi##Name##HuffmanStateGetBufSize_JPEG_8u, size);                               \
        }                                                                                                    \
        static bool initState(State* state)                                                                  \
        {                                                                                                    \
            return QDJ_DONE(qovi##Name##HuffmanStateInit_JPEG_8u, state);                                    \
        }                                                                                                    \
    };
QDJ_HUFFMAN_SIDE(Encode)
QDJ_HUFFMAN_SIDE(Decode)
#undef QDJ_HUFFMAN_SIDE

// The tables of one direction: up to four for DC, one for AC.
template <class Side>
struct qdjHuffmanSpecs {
    using Spec = typename Side::Spec;
    static constexpr int most = 4;

    Spec* dc[most] = {};
    Spec* ac = nullptr;

    bool alloc(int dcCount, bool withAC)
    {
        bool done = true;
        for (int i = 0; i < dcCount; i++) done &= Side::allocSpec(DCBits, DCValues, &dc[i]);
        if (withAC) done &= Side::allocSpec(ACBits, ACValues, &ac);
        return done;
    }
    void release()
    {
        for (Spec*& spec : dc) free(spec);
        free(ac);
    }

private:
    static void free(Spec*& spec)
    {
        if (spec) Side::freeSpec(spec);
        spec = nullptr;
    }
};

// The state of one direction, and a copy of it as it is before the first block.
template <class Side>
struct qdjHuffmanState {
    using State = typename Side::State;

    State* state = nullptr;
    State* copy = nullptr;
    int size = 0;

    bool alloc()
    {
        if (!Side::stateSize(&size)) return false;
        state = static_cast<State*>(std::malloc(static_cast<size_t>(size)));
        copy = static_cast<State*>(std::malloc(static_cast<size_t>(size)));
        return state && copy;
    }
    bool init()
    {
        if (!Side::initState(state)) return false;
        return QDJ_DONE(qovsCopy_8u, reinterpret_cast<const Qov8u*>(state), reinterpret_cast<Qov8u*>(copy),
                        size);
    }
    void restore()
    {
        qovsCopy_8u(reinterpret_cast<const Qov8u*>(copy), reinterpret_cast<Qov8u*>(state), size);
    }
    void release()
    {
        std::free(state);
        std::free(copy);
        state = copy = nullptr;
    }
};

#endif
