// The suites as the tables show them: which sets they measure, in which unit and per how many elements, on
// sizes that are no multiple of a block, and that every run measures the same data.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "program.h"
#include "reports.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;

struct Runs {
    Program odd, every, data, again;

    Runs()
    {
        const std::string sizes = "1x1; 7x7; 9x9; 8x17; 17x8";
        odd.start({"-B", "-mp_jadd", "-mp_jdct", "-mp_jquant", "-dMethod=Manual", "-dNumLoops=2", "-LPERF",
                   "-r", "-dImageSize=" + sizes, "-dSize=" + sizes});
        every.start({"-B", "-mp_j", "-m-p_jpeg", "-dMethod=Manual", "-dNumLoops=1", "-r", "-dImageSize=16x16",
                     "-dSize=16x16", "-dRowWidth=16"});
        const Program::Args args{"-B",     "-fDCTQuantInv8x8LS", "-dMethod=Manual", "-dNumLoops=1",
                                 "-LDATA", "-dSize=9x17"};
        data.start(args);
        again.start(args);
    }
};

Runs& runs()
{
    static Runs all;
    return all;
}

// "size unit" of each row of a function.
Cells rowsOf(const Table& table, const std::string& function)
{
    Cells found;
    for (const std::string& row : table.rows) {
        const Cells cells = split(row, ',');
        if (cells[0] + "_" + cells[1] + "_" + cells[2] == function)
            found.push_back(cells[3] + " " + cells[11]);
    }
    return found;
}

// What the clocks of each set of a function were divided by.
Cells divisorsOf(const std::string& out, const std::string& function)
{
    const size_t begin = out.find("| Function  : " + function + " ");
    const size_t end = out.find(function + " ", begin + 20 + function.size());
    Cells found;
    for (const std::string& line : linesOf(out.substr(begin, end - begin))) {
        const Cells parts = matchOf(line, "perf= *[0-9.e+]+/ *([0-9.e+]+)=");
        if (!parts.empty()) found.push_back(parts[1]);
    }
    return found;
}

TEST(Suites, MeasureOddSizes)
{
    Program& run = runs().odd;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    const Table table = performanceTable(run.read("quolkit.csv"));
    const auto everySize = ElementsAre("1x1 px", "7x7 px", "9x9 px", "8x17 px", "17x8 px");
    EXPECT_THAT(rowsOf(table, "qoviAdd128_JPEG_16s8u_C1R"), everySize);
    EXPECT_THAT(rowsOf(table, "qoviDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R"), everySize);
    EXPECT_THAT(rowsOf(table, "qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R"), everySize);
    // Without a whole block there is nothing to allocate.
    const auto wholeBlocks = ElementsAre("9x9 px", "8x17 px", "17x8 px");
    EXPECT_THAT(rowsOf(table, "qoviDCTQuantFwd8x8_JPEG_16s_C1"), wholeBlocks);
    EXPECT_THAT(rowsOf(table, "qoviDCTQuantInv8x8_JPEG_16s_C1I"), wholeBlocks);
    EXPECT_THAT(rowsOf(table, "qoviQuantFwd8x8_JPEG_16s_C1I"), ElementsAre("- px"));
    EXPECT_THAT(table.rows, SizeIs(2 * 5 + 9 * 5 + 4 * 3 + 2));
}

// Every primitive is measured at one small size, and no test ends in an error.
TEST(Suites, MeasureEveryPrimitive)
{
    Program& run = runs().every;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    std::set<std::string> measured;
    for (const std::string& row : performanceTable(run.read("quolkit.csv")).rows) {
        const Cells cells = split(row, ',');
        measured.insert(cells[0] + "_" + cells[1] + "_" + cells[2]);
    }
    const size_t dct = 2 + 4 + 9 + 2, huffman = 4 + 2 + 2 + 11, color = 29 + 9, sampling = 4 + 4 + 7;
    EXPECT_THAT(measured,
                SizeIs(dct + huffman + color + sampling + 19 + 12 + 4 + 4)); // MCUs, prediction, TIFF
}

// One suite divides by the pixels of whole blocks, the other by those of the image.
TEST(Suites, DivideByTheirElements)
{
    const std::string& out = runs().odd.out();
    EXPECT_THAT(divisorsOf(out, "qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R"),
                ElementsAre("1", "49", "81", "136", "136"));
    EXPECT_THAT(divisorsOf(out, "qoviDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R"),
                ElementsAre("1", "49", "81", "136", "136"));
    EXPECT_THAT(divisorsOf(out, "qoviDCTQuantInv8x8_JPEG_16s_C1"), ElementsAre("64", "128", "128"));
    EXPECT_THAT(divisorsOf(out, "qoviQuantInv8x8_JPEG_16s_C1I"), ElementsAre("64"));
}

// The listings of both runs, without the blocks' addresses, which no listing names.
TEST(Suites, MeasureTheSameDataInEveryRun)
{
    const auto listing = [](Program& run) {
        std::string text;
        bool inside = false;
        for (const std::string& line : linesOf(run.out())) {
            if (line.find("OBJECTS OUTPUT START") != std::string::npos) inside = true;
            if (inside) text += line + "\n";
            if (line.find("OBJECTS OUTPUT END") != std::string::npos) inside = false;
        }
        return text;
    };
    const std::string first = listing(runs().data);
    EXPECT_EQ(runs().data.exitCode(), 0);
    EXPECT_NE(first.find("Image 8u_C1 size=9x17"), std::string::npos) << first.substr(0, 1000);
    EXPECT_NE(first.find("Vector 16s len=153"), std::string::npos);
    EXPECT_EQ(first, listing(runs().again));
}

} // namespace
