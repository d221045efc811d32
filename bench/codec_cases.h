// What `codecs` times: cases of one codec on one picture, memory to memory. A case owns or shares all the
// memory it works in, and has it before the first call.
#ifndef BENCH_CODEC_CASES_H
#define BENCH_CODEC_CASES_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct Picture {
    std::string name; // of the file, without directory and ending
    int width = 0, height = 0;
    int channels = 0; // interleaved: 1, or 3 as R, G, B
    std::vector<unsigned char> samples;

    int step() const { return width * channels; }
    size_t pixels() const { return size_t(width) * size_t(height); }
};

using SharedPicture = std::shared_ptr<const Picture>;

// Binary PGM or PPM of 8 bits. Throws std::runtime_error.
Picture readPnm(const std::string& path);

// Peak signal-to-noise ratio of two pictures of one size, in dB; 99 where they are equal.
double psnr(const Picture& a, const Picture& b);

// The luminance of a colour picture; a grey one as it is.
SharedPicture greyOf(const SharedPicture& picture);

std::shared_ptr<Picture> blankLike(const Picture& picture);

// A stream in a buffer that stays as large as it was made: the stream is its first `bytes`.
struct CodedStream {
    explicit CodedStream(size_t capacity) : buffer(capacity) {}
    std::vector<unsigned char> buffer;
    size_t bytes = 0;
};

struct Case {
    std::string key;
    std::string who;
    size_t pixels;
    // Codes the picture once. Returns the bytes of the stream; throws std::runtime_error.
    std::function<size_t()> call;
    // What the last call made, against the picture, in dB: where our side is lower by more than 2, it does
    // not do the same work.
    std::function<double()> quality;
};

using Wanted = std::function<bool(const std::string& key)>;

// The cases of a codec on a picture, both sides of a key next to each other. Nothing is made for unwanted
// keys. A picture of one channel has the grey cases alone.
std::vector<Case> jpegCases(const SharedPicture& picture, const Wanted& wanted);
std::vector<Case> j2kCases(const SharedPicture& picture, const Wanted& wanted);

#endif
