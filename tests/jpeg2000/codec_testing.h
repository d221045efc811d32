// What the tests of the codec's outer side share: command lines, texts of diagnostics, files in memory.
#ifndef TESTS_JPEG2000_CODEC_TESTING_H
#define TESTS_JPEG2000_CODEC_TESTING_H

#include "decode.h"
#include "encode.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace jpeg2000 {

inline std::string textOf(const BDiagnDescr& descr)
{
    char text[BDiagnDescr::maxLength + 1];
    return descr.Context(text);
}

struct Warnings : BDiagnOutput {
    std::vector<std::string> texts;
    void Warning(const BDiagnDescr& descr) override { texts.push_back(textOf(descr)); }
};

inline BDiagnOutput deafSink;

// The words behind the program's name.
inline CmdOptions optionsOf(const std::string& line, BDiagnOutput& sink = deafSink)
{
    std::istringstream stream(line);
    std::vector<std::string> words{"codec"};
    for (std::string word; stream >> word;) words.push_back(word);
    std::vector<const char*> argv;
    for (const std::string& word : words) argv.push_back(word.c_str());
    return CmdOptions(argv.data(), static_cast<int>(argv.size()), sink);
}

inline _JP2BUFF sourceOf(std::string& file)
{
    const auto size = static_cast<uint32_t>(file.size());
    return {reinterpret_cast<uint8_t*>(file.data()), size, size, 0};
}

struct Encoded {
    int result;
    std::string file, codestream;
    std::string printed; // on the standard output
};

// A bitmap whose rows, from the bottom up, are `rows`, with room for `room` bytes.
inline Encoded encodedBitmap(const std::string& line, std::string rows, int width, int height, int bitCount,
                             size_t room)
{
    const int step = static_cast<int>(rows.size()) / height;
    _BMPBUFF bmp{nullptr, reinterpret_cast<uint8_t*>(rows.data()), width, height, step, 0, 0, bitCount};
    std::string file(room, '\0');
    _JP2BUFF jp2 = sourceOf(file);
    jp2.length = 0;
    testing::internal::CaptureStdout();
    const int result = encode(optionsOf(line), deafSink, bmp, jp2);
    file.resize(jp2.length);
    return {result, file, file.substr(file.size() - jp2.codestreamLength),
            testing::internal::GetCapturedStdout()};
}

} // namespace jpeg2000

#endif
