#include "qdbitvector.h"

#include <gtest/gtest.h>

#include "support/capture.h"

TEST(BitVector, BitsAreStoredFromTheHighest)
{
    qdBitVector v;
    ASSERT_TRUE(v.createVector(2, SET_ZERO));
    v.setBits(5, 3);
    EXPECT_EQ(v.m_8u[0], 0xA0);
    EXPECT_EQ(v.getBitPos(), 3);
    v.setBits("1 0x1,1"); // 1011 over the rest of the byte
    v.setBit(0);
    v.setBits(0x12345678, 4); // the low bits only
    EXPECT_EQ(v.m_8u[0], 0xB6);
    EXPECT_EQ(v.m_8u[1], 0x80);
    v.setBitPos(9);
    v.setBit(1);
    EXPECT_EQ(v.m_8u[1], 0xC0);
    v.setBitPos(8);
    v.setBit(0);
    EXPECT_EQ(v.m_8u[1], 0x40) << "a bit can be cleared";

    v.setBitPos(0);
    unsigned value = 99;
    v.getBits(value, 5);
    EXPECT_EQ(value, 0x16u);
    EXPECT_EQ(v.getBit(), 1);
}

TEST(BitVector, NothingBehindTheEnd)
{
    qdBitVector v;
    v.setBits(1, 1);
    EXPECT_EQ(v.getBit(), 0);
    EXPECT_EQ(v.getBitPos(), 0) << "without data the position stays";
    ASSERT_TRUE(v.createVector(1, SET_MAX));
    v.setBitPos(6);
    unsigned value;
    v.getBits(value, 5);
    EXPECT_EQ(value, 0x18u);
    EXPECT_EQ(v.getBitPos(), 11);
    v.setBits(0, 3);
    EXPECT_EQ(v.getBitPos(), 14);
    EXPECT_EQ(v.m_8u[0], 0xFF);
    v.setBitPos(0);
    v.setBits(3, 40); // longer than the number
    EXPECT_EQ(v.m_8u[0], 0);
    ASSERT_TRUE(v.createVector(1));
    EXPECT_EQ(v.getBitPos(), 0) << "a new buffer begins at its start";
}

TEST(BitVector, TextInGroupsOfFour)
{
    qdBitVector v;
    EXPECT_STREQ(v.getBitString().c_str(), "");
    ASSERT_TRUE(v.createVector(2, SET_CONST, 0xA3));
    EXPECT_STREQ(v.getString().c_str(), "1010 0011 1010 0011");
    struct {
        int first, count;
        const char* text;
    } const cases[] = {{0, 3, "101"},  {3, 4, "0 001"}, {6, 0, "11 1010 0011"},
                       {14, 99, "11"}, {16, 1, ""},     {4, 4, "0011"}};
    for (const auto& c : cases) {
        EXPECT_STREQ(v.getBitString(c.first, c.count).c_str(), c.text);
        LevelCapture out(g_ostrm, PERF);
        v.bitprn(g_ostrm, c.first, c.count);
        EXPECT_EQ(out.take(), c.text);
    }
    qkString text;
    v.setBitPos(3);
    v.getBits(text, 6);
    EXPECT_STREQ(text.c_str(), "0 0011 1");
    EXPECT_STREQ(v.objectInfo().c_str(), "BitVector 8u len=2");
}

TEST(BitVector, ColumnsOfAByteAndANumber)
{
    const unsigned char byte = 0xA3;
    EXPECT_STREQ(qdBitVector::bitString(byte, 0, 7).c_str(), "1010 0011");
    EXPECT_STREQ(qdBitVector::bitString(byte, 2, 7).c_str(), "  10 0011");
    EXPECT_STREQ(qdBitVector::bitString(byte, 0, 5).c_str(), "1010 00  ");
    EXPECT_STREQ(qdBitVector::bitString(0xF0000001u, 4, 31).c_str(),
                 "     0000 0000 0000 0000 0000 0000 0001");
}
