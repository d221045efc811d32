#include "qdfunc.h"

#include <gtest/gtest.h>

#include <iterator>

// Underscores and digits in base names, prefixes that are none, and what ends before its types do.
TEST(FuncName, HasFourParts)
{
    const struct {
        const char* name;
        const char *prefix, *base, *types, *descr;
    } cases[] = {
        {"qoviAdd128_JPEG_16s8u_C1R", "qovi", "Add128_JPEG", "16s8u", "C1R"},
        {"qoviDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R", "qovi", "DCTQuantInv8x8LS_4x4_JPEG", "16s8u", "C1R"},
        {"qoviDecodeHuffman8x8_JPEG_1u16s_C1", "qovi", "DecodeHuffman8x8_JPEG", "1u16s", "C1"},
        {"qovsCopy_8u", "qovs", "Copy", "8u", ""},
        {"qoviX_8u_C1_R", "qovi", "X", "8u", "C1_R"},
        {"qoviFoo_Bar_12", "qovi", "Foo_Bar_12", "", ""},
        {"qovjThing_8u", "", "qovjThing", "8u", ""},
        {"_16s_C3", "", "", "16s", "C3"},
        {"qovi", "qovi", "", "", ""},
        {"", "", "", "", ""},
    };
    for (const auto& c : cases) {
        const qdFunc func(c.name);
        EXPECT_STREQ(func.prefix().c_str(), c.prefix) << c.name;
        EXPECT_STREQ(func.baseName().c_str(), c.base) << c.name;
        EXPECT_STREQ(func.typeName().c_str(), c.types) << c.name;
        EXPECT_STREQ(func.descrName().c_str(), c.descr) << c.name;
    }
}

TEST(FuncTypes, NamesAndCodesAreOneList)
{
#define CHECK(name, part, code)                                                                              \
    EXPECT_EQ(qdFunc::stringToType(#name), code);                                                            \
    EXPECT_STREQ(qdFunc::typeToString(qdType(code)).c_str(), #name);                                         \
    EXPECT_EQ(qdItemSize(qdType(code)), int(sizeof(Qov##name)));
    QD_TYPES(CHECK)
#undef CHECK
    EXPECT_EQ(qdFunc::stringToType("1u"), qd8u);
    EXPECT_EQ(qdFunc::stringToType("12u"), qdUndef);
    EXPECT_STREQ(qdFunc::typeToString(qdType(1032)).c_str(), "undef");
}

TEST(FuncTypes, FieldsOfOneTwoAndThreeTypes)
{
    struct {
        const char* name;
        qdType fields[5]; // index 0 to 4
    } const cases[] = {
        {"qoviF_16s_C1", {qd16s, qd16s, qd16s, qd16s, qdUndef}},
        {"qoviF_16s8u_C1", {qd16s, qd16s, qd8u, qd8u, qdUndef}},
        {"qoviF_16sc8u32f_C1", {qd16sc, qd16sc, qd8u, qd32f, qdUndef}},
        {"qoviF_16s8u32f64f_C1", {qd16s, qd16s, qd8u, qd32f, qdUndef}},
        {"qoviFoo", {qdUndef, qdUndef, qdUndef, qdUndef, qdUndef}},
        {"qoviAdd8u_16s_C1", {qd8u, qd16s, qd16s, qd16s, qdUndef}},
        {"qoviTo64fc8u_16s", {qd64fc, qd16s, qd16s, qd16s, qdUndef}},
        {"qoviTo16uc_16s", {qd16uc, qd16s, qd16s, qd16s, qdUndef}},
    };
    for (const auto& c : cases) {
        for (int i = 0; i < 5; i++) EXPECT_EQ(qdFunc(c.name).type(i), c.fields[i]) << c.name << " " << i;
    }
}

// Source, second source, destination, second destination, with the library's exceptions.
TEST(FuncTypes, RolesWithCorrections)
{
    struct {
        const char* name;
        qdType src, src2, dst, dst2;
    } const cases[] = {
        {"qoviAdd128_JPEG_16s8u_C1R", qd16s, qd16s, qd8u, qd8u},
        {"qovsF_16s8u32f", qd16s, qd8u, qd32f, qd32f},
        {"qovsReal_16sc", qd16sc, qd16sc, qd16s, qd16s},
        {"qovsPowerSpectr_32fc", qd32fc, qd32fc, qd32f, qd32f},
        {"qovsPolarToCart_32fc", qd32f, qd32f, qd32fc, qd32fc},
        {"qovsRealToCplx_64f", qd64f, qd64f, qd64fc, qd64fc},
        {"qovsDotProd_32f32fc", qd32f, qd32fc, qd32fc, qd32fc},
        {"qovsDotProd_16sc32fc", qd16sc, qd16sc, qd32fc, qd32fc},
        {"qovsMul_16u16s_Sfs", qd16u, qd16s, qd16s, qd16s},
        {"qovsGoertzTwo_32f", qd32f, qd32f, qd32fc, qd32fc},
        {"qoviReal_16sc_C1R", qd16sc, qd16sc, qd16sc, qd16sc},
        {"qoviMean_8u_C1R", qd8u, qd8u, qd64f, qd64f},
        {"qoviCopy_16s_C3MR", qd16s, qd8u, qd16s, qd16s},
        {"qoviSetX_16s_C3MR", qd16s, qd16s, qd16s, qd16s},
        {"qoviCompareEqual_32f_C3R", qd32f, qd32f, qd8u, qd8u},
    };
    for (const auto& c : cases) {
        const qdFunc func(c.name);
        EXPECT_EQ(func.type(qdArgSrc), c.src) << c.name;
        EXPECT_EQ(func.type(qdArgSrc2), c.src2) << c.name;
        EXPECT_EQ(func.type(qdArgDst), c.dst) << c.name;
        EXPECT_EQ(func.type(qdArgDst2), c.dst2) << c.name;
        EXPECT_EQ(func.type(qdArg(3)), qdUndef) << c.name;
    }
}

TEST(FuncChannels, WordsCountsAndLayout)
{
    struct {
        const char* descr;
        const char *src, *dst;
        int srcChannels, dstChannels;
        bool plane1, plane2;     // by the words
        bool srcPlane, dstPlane; // by the places of "C" and "P"
        bool alpha1, alpha2;
    } const cases[] = {
        {"C1R", "C1", "C1", 1, 1, false, false, false, false, false, false},
        {"AC4R", "AC4", "AC4", 4, 4, false, false, false, false, true, true},
        {"C3P3R", "C3", "P3", 3, 3, false, true, false, true, false, false},
        {"P3C3R", "P3", "C3", 3, 3, true, false, true, false, false, false},
        {"AP4AC4", "AP4", "AC4", 4, 4, true, false, true, false, true, true},
        {"C3PR", "P3", "P3", 3, 3, true, true, false, true, false, false},
        {"P2", "P2", "P2", 2, 2, true, true, true, true, false, false},
        {"C7R", "", "", 0, 0, false, false, false, false, false, false},
        {"ISfs", "", "", 0, 0, false, false, false, false, false, false},
        {"", "", "", 0, 0, false, false, false, false, false, false},
    };
    for (const auto& c : cases) {
        const qdFunc func(qkString("qoviF_8u_") + c.descr);
        EXPECT_STREQ(func.channelsName(1).c_str(), c.src) << c.descr;
        EXPECT_STREQ(func.channelsName(qdArgDst2).c_str(), c.dst) << c.descr;
        EXPECT_EQ(func.channels(1), c.srcChannels) << c.descr;
        EXPECT_EQ(func.channels(qdArgDst), c.dstChannels) << c.descr;
        EXPECT_EQ(func.plane(1), c.plane1) << c.descr;
        EXPECT_EQ(func.plane(2), c.plane2) << c.descr;
        EXPECT_EQ(func.plane(qdArgSrc2), c.srcPlane) << c.descr;
        EXPECT_EQ(func.plane(qdArgDst), c.dstPlane) << c.descr;
        EXPECT_EQ(func.alpha(1), c.alpha1) << c.descr;
        EXPECT_EQ(func.alpha(qdArgDst), c.alpha2) << c.descr;
    }
    const qdFunc func("qoviF_8u_C3R");
    EXPECT_STREQ(func.channelsName(3).c_str(), "");
    EXPECT_EQ(func.channels(3), 1);
    EXPECT_EQ(func.channels(qdArg(16)), 1);
    EXPECT_FALSE(func.plane(0) || func.alpha(0));
}

// The correction is part of the roles, not of the indices.
TEST(FuncChannels, ComparisonsHaveOneChannelOut)
{
    const qdFunc func("qoviCompare_8u_C3R");
    EXPECT_EQ(func.dstChannels(), 1);
    EXPECT_EQ(func.channels(2), 3);
    EXPECT_EQ(qdFunc("qovsCompare_8u_C3R").dstChannels(), 3);
}

// Words that a person could form, beside those that names can have.
TEST(FuncChannels, NumbersOfWords)
{
    const struct {
        const char* word;
        int number;
    } cases[] = {{"C1", 1}, {"P4", 4}, {"AC4", 4}, {"C7", 0}, {"C0", 0}, {"A", 0}, {"AC", 0}, {"", 0}};
    for (const auto& c : cases) EXPECT_EQ(numChannels(c.word), c.number) << c.word;
}

TEST(FuncFlags, OfTheDescriptor)
{
    const struct {
        const char *descr, *flags;
    } cases[] = {{"C1R", "roi "},          {"C1IR", "inplace roi "}, {"C3MR", "mask roi "}, {"C3C", "coi "},
                 {"C1RSfs", "scale roi "}, {"C3CR", "roi coi "},     {"AC4", ""},           {"", ""}};
    for (const auto& c : cases) {
        const qdFunc func(qkString("qoviRCIM_8u_") + c.descr);
        qkString flags;
        if (func.inplace()) flags << "inplace ";
        if (func.mask()) flags << "mask ";
        if (func.scale()) flags << "scale ";
        if (func.roi()) flags << "roi ";
        if (func.coi()) flags << "coi ";
        EXPECT_STREQ(flags.c_str(), c.flags) << c.descr;
    }
}

// Each name sorts strictly before the next one: base name, no type, width, kind, complex last, "C" before
// "AC4", in place last.
TEST(FuncOrder, SortsByNameTypeDescriptor)
{
    static const char* const sorted[] = {
        "qoviAdd",         "qoviAdd_8u_C1R",   "qoviAdd_8u_C3R",   "qoviAdd_8u_AC4R",
        "qoviAdd_8u_C1IR", "qoviAdd_16u_C1R",  "qoviAdd_16uc_C1R", "qoviAdd_8s_C1R",
        "qoviAdd_16s_C1R", "qoviAdd_16sc_C1R", "qoviAdd_32s_C1R",  "qoviAdd_32f_C1R",
        "qoviAdd_64f_C1R", "qoviAdd_64fc_C1R", "qoviB_8u_C1R",     "qovsA_8u",
    };
    const int n = int(std::size(sorted));
    for (int i = 0; i < n; i++) {
        for (int j = 0; j < n; j++) {
            const int sign = qdFunc(sorted[i]).compare(sorted[j]);
            EXPECT_EQ(sign < 0, i < j) << sorted[i] << " " << sorted[j];
            EXPECT_EQ(sign == 0, i == j) << sorted[i] << " " << sorted[j];
        }
    }
    EXPECT_EQ(qdFunc("qoviAdd_16s8u_C1R").compare("qoviAdd_16s32f_C1R"), 0) << "the first type alone counts";
}

TEST(FuncConversion, ToTheLibrarysEnumerations)
{
    EXPECT_EQ(qdFunc::qovType(qd8u), 1);
    EXPECT_EQ(qdFunc::qovType(qd16uc), qdFunc::qovType(qd16sc));
    EXPECT_EQ(qdFunc::qovType(qd64fc), 20);
    EXPECT_EQ(qdFunc::qovType(qd8sc), 0);
    EXPECT_EQ(qdFunc("qoviF_8u_C3P3R").qovChannels(1), 3);
    EXPECT_EQ(qdFunc("qoviF_8u_C3P3R").qovChannels(2), 6);
    EXPECT_EQ(qdFunc("qoviF_8u_AC4R").qovChannels(1), 9);
    EXPECT_EQ(qdFunc("qoviF_8u").qovChannels(1), 0);
}
