// The codec's base: the byte cursor at the end of its data, error texts, and the life of buffers and tables.
#include "jpegbase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <vector>

TEST(JpegBase, errorTexts)
{
    const struct {
        int code;
        const char* text;
    } rows[] = {
        {0, "no error"},       {-4, "out of memory"}, {-8, "bad scan segment"}, {-12, "wrong restart marker"},
        {-13, "unknown code"}, {1, "unknown code"},   {INT_MIN, "unknown code"}};
    for (const auto& row : rows) EXPECT_STREQ(row.text, GetErrorStr(_JPEG_ERROR(row.code))) << row.code;
}

// From every position, also those outside the data that a damaged length leads to.
TEST(JpegBase, cursorStopsAtTheEnd)
{
    Qov8u data[3] = {0x12, 0xAB, 0xEF};
    const struct {
        int pos, byte, word, posAfterWord; // -1: too small
    } rows[] = {{0, 0x12, 0x12AB, 2}, {1, 0xAB, 0xABEF, 3},       {2, 0xEF, -1, 3},
                {3, -1, -1, 3},       {INT_MAX, -1, -1, INT_MAX}, {-1, -1, -1, -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pos);
        const _JPEG_ERROR byteError = row.byte < 0 ? JPEG_BUFFER_TOO_SMALL : JPEG_OK;
        const _JPEG_ERROR wordError = row.word < 0 ? JPEG_BUFFER_TOO_SMALL : JPEG_OK;
        int byte = -1, word = -1;
        _bitstream reader{data, 3, row.pos};
        EXPECT_EQ(byteError, reader._READ_BYTE(&byte));
        EXPECT_EQ(row.byte, byte);
        reader.currPos = row.pos;
        EXPECT_EQ(wordError, reader._READ_WORD(&word));
        EXPECT_EQ(row.word, word);
        EXPECT_EQ(row.posAfterWord, reader.currPos);

        Qov8u out[4] = {9, 9, 9, 9};
        _bitstream writer{out, 3, row.pos};
        EXPECT_EQ(wordError, writer._WRITE_WORD(0x71234));
        EXPECT_EQ(row.posAfterWord, writer.currPos);
        Qov8u expected[4] = {9, 9, 9, 9};
        if (row.byte >= 0) expected[row.pos] = 0x12;
        if (row.word >= 0) expected[row.pos + 1] = 0x34;
        EXPECT_EQ(0, std::memcmp(expected, out, 4));
    }
}

TEST(JpegBase, planesAreBlackAndBounded)
{
    CJPEGColorComponent comp;
    comp.m_cc_height = 3;
    comp.m_cc_step = 50;
    ASSERT_EQ(JPEG_OK, comp.CreateBufferCC(2));
    EXPECT_EQ(150, comp.m_cc_bufsize);
    EXPECT_EQ(300, comp.m_cc_buffer.m_buffer_size);
    EXPECT_EQ(150, comp.GetCCBufferPtr(1) - comp.GetCCBufferPtr(0));
    EXPECT_EQ(300, std::count(comp.GetCCBufferPtr(0), comp.GetCCBufferPtr(0) + 300, 0));
    EXPECT_EQ(JPEG_OUT_OF_MEMORY, comp.m_cc_buffer.Allocate(-1));
    EXPECT_EQ(0, comp.m_cc_buffer.m_buffer_size);
    EXPECT_EQ(nullptr, comp.m_cc_buffer.m_buffer);

    // Sizes that wrap in 32 bits to a small positive number, and none.
    const struct {
        int height, step, threads;
    } rows[] = {{65537, 65537, 1}, {65536, 16385, 4}, {0, 50, 1}};
    for (const auto& row : rows) {
        comp.m_ss_height = row.height;
        comp.m_ss_step = row.step;
        EXPECT_EQ(JPEG_OUT_OF_MEMORY, comp.CreateBufferSS(row.threads)) << row.height << " " << row.step;
        EXPECT_EQ(nullptr, comp.GetSSBufferPtr(0));
    }
}

namespace {
struct DefaultTable {
    const Qov8u *bits, *vals;
    int sizes[2];
    uint32_t digest;
};
// Digests (FNV-1a) of the DQT and DHT payloads of an independent encoder at quality 50.
const DefaultTable defaultTables[] = {
    {DefaultLuminanceQuant, nullptr, {64, 0}, 0x89513C9D},
    {DefaultChrominanceQuant, nullptr, {64, 0}, 0x3491838A},
    {DefaultLuminanceDCBits, DefaultLuminanceDCValues, {16, 12}, 0xE48BFDB5},
    {DefaultChrominanceDCBits, DefaultChrominanceDCValues, {16, 12}, 0x977999B9},
    {DefaultLuminanceACBits, DefaultLuminanceACValues, {16, 162}, 0x46E27B3F},
    {DefaultChrominanceACBits, DefaultChrominanceACValues, {16, 162}, 0xDE2CEBB9},
};

template <class Table>
class JpegHuffmanTable : public testing::Test {
};
using Tables = testing::Types<CJPEGEncoderHuffmanTable, CJPEGDecoderHuffmanTable>;
TYPED_TEST_SUITE(JpegHuffmanTable, Tables);
} // namespace

TEST(JpegBase, defaultTables)
{
    for (const DefaultTable& table : defaultTables) {
        uint32_t digest = 2166136261u;
        for (int i = 0; i < table.sizes[0]; i++) digest = (digest ^ table.bits[i]) * 16777619u;
        for (int i = 0; i < table.sizes[1]; i++) digest = (digest ^ table.vals[i]) * 16777619u;
        EXPECT_EQ(table.digest, digest) << "table " << &table - defaultTables;
    }
}

// Exactly as many values as the counts tell are read, from arrays that end there (the sanitizers watch).
TYPED_TEST(JpegHuffmanTable, takesWhatTheCountsTell)
{
    for (const DefaultTable& d : defaultTables) {
        if (!d.vals) continue;
        const std::vector<Qov8u> vals(d.vals, d.vals + d.sizes[1]);
        std::vector<Qov8u> kept = vals;
        kept.resize(256);
        TypeParam table;
        std::memset(table.m_vals, 0xEE, 256);
        ASSERT_EQ(JPEG_OK, table.Create());
        ASSERT_EQ(JPEG_OK, table.Init(0x32, 0x11, d.bits, vals.data()));
        EXPECT_EQ(2, table.m_id);
        EXPECT_EQ(1, table.m_hclass);
        EXPECT_EQ(kept, std::vector<Qov8u>(table.m_vals, table.m_vals + 256));
        for (int twice = 0; twice < 2; twice++) {
            table.Destroy();
            EXPECT_EQ(nullptr, table.m_table);
            EXPECT_EQ(0, table.m_id + table.m_hclass + table.m_bits[1] + table.m_vals[1]);
        }
    }
}

TYPED_TEST(JpegHuffmanTable, refusesImpossibleTables)
{
    const Qov8u vals[256] = {};
    const Qov8u overfull[16] = {3}, tooMany[16] = {0, 0, 0, 0, 0, 0, 0, 0, 255, 255};
    TypeParam table;
    EXPECT_EQ(JPEG_INTERNAL_ERROR, table.Init(0, 0, DefaultLuminanceDCBits, vals)) << "before Create";
    ASSERT_EQ(JPEG_OK, table.Create());
    EXPECT_EQ(JPEG_INTERNAL_ERROR, table.Init(0, 0, overfull, vals));
    EXPECT_EQ(JPEG_INTERNAL_ERROR, table.Init(0, 0, tooMany, vals));
}

TEST(JpegBase, statesOfADecoderTable)
{
    const Qov8u overfull[16] = {3};
    const Qov8u* const vals = DefaultLuminanceDCValues;
    CJPEGDecoderHuffmanTable table;
    const auto expect = [&](bool empty, bool valid) {
        EXPECT_EQ(empty, table.m_bEmpty);
        EXPECT_EQ(valid, table.m_bValid);
    };
    expect(true, false);
    ASSERT_EQ(JPEG_OK, table.Create());
    expect(false, false);
    ASSERT_EQ(JPEG_OK, table.Init(0, 0, DefaultLuminanceDCBits, vals));
    expect(false, true);
    ASSERT_NE(JPEG_OK, table.Init(0, 0, overfull, vals));
    expect(false, false);
    table.Destroy();
    expect(true, false);
}

// A table that was created but never described is refused where it is used.
TEST(JpegBase, createdTablesAreNoTables)
{
    CJPEGEncoderHuffmanTable table;
    CJPEGEncoderHuffmanState state;
    Qov8u out[16];
    int pos = 0;
    const Qov16s one = 1;
    ASSERT_EQ(JPEG_OK, table.Create());
    EXPECT_EQ(JPEG_INTERNAL_ERROR, state.Init()) << "before Create";
    ASSERT_EQ(JPEG_OK, state.Create());
    ASSERT_EQ(JPEG_OK, state.Init());
    EXPECT_EQ(qovStsContext,
              qoviEncodeHuffmanOne_JPEG_16s1u_C1(&one, out, 16, &pos, table.m_table, state.m_state, 0));
}

TEST(JpegBase, quantTables)
{
    CJPEGEncoderQuantTable encoder;
    CJPEGDecoderQuantTable decoder;
    for (const Qov16u* prepared : {encoder.m_table, decoder.m_table})
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(prepared) % 32);
    ASSERT_EQ(JPEG_OK, encoder.Init(0x1F, 75, DefaultLuminanceQuant));
    EXPECT_EQ(15, encoder.m_id);
    EXPECT_EQ(1, encoder.m_precision);
    EXPECT_EQ(8, encoder.m_raw[0]);
    EXPECT_EQ(50, encoder.m_raw[63]);
    ASSERT_EQ(JPEG_OK, decoder.Init(0x13, encoder.m_raw));
    EXPECT_EQ(3, decoder.m_id);
    EXPECT_EQ(0, decoder.m_precision);
    EXPECT_EQ(1, encoder.m_initialized & decoder.m_initialized);
    EXPECT_EQ(0, std::memcmp(encoder.m_table, decoder.m_table, 128));
    EXPECT_EQ(encoder.m_raw[2], decoder.m_table[8]) << "zig-zag 2 is the first of the second row";
}
