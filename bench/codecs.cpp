// codecs [-k SUBSTRING] [-t SECONDS] PICTURE.ppm|.pgm...: clocks (of the time-stamp counter) per pixel of the
// codecs, in process, memory to memory, beside other libraries where those were there when this was built.
//
// One tab-separated line a case: key, picture, who, unit (px), least and median clocks, bytes of the stream,
// number of timed calls, and 1 if the case was noisy, that is if its median exceeds its minimum by more than
// a quarter. At the end lines `ratio, key, picture, sides, value`: minimum over minimum.
//
// A colour picture goes through all cases (the grey ones take its luminance), a grey one through the grey
// cases. -k chooses the keys that contain a text. Runs pinned to the processor on which it starts (taskset
// chooses it). The cases of a picture take turns in bursts of 40 ms, -t (0.5) seconds each in all and three
// bursts at least; the first call of a burst is not counted. Output buffers are made beforehand. Before
// anything is timed, our side of a key must come as close to the picture as the others; it ends with 1
// otherwise.
#include "codec_cases.h"

#include "qovcore.h"

#include <sched.h>
#include <unistd.h>
#include <x86intrin.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

Picture readPnm(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    auto number = [&] {
        while ((in >> std::ws).peek() == '#') in.ignore(1 << 20, '\n');
        int n = 0;
        in >> n;
        return n;
    };
    std::string magic;
    in >> magic;
    Picture p;
    p.name = std::filesystem::path(path).stem().string();
    p.channels = magic == "P6" ? 3 : magic == "P5" ? 1 : 0;
    p.width = number();
    p.height = number();
    if (number() != 255 || p.channels == 0 || p.width < 1 || p.height < 1 || p.width > 65535 ||
        p.height > 65535)
        throw std::runtime_error(path + ": neither PGM nor PPM of 8 bits");
    in.ignore(1);
    p.samples.resize(p.pixels() * size_t(p.channels));
    if (!in.read(reinterpret_cast<char*>(p.samples.data()), std::streamsize(p.samples.size())))
        throw std::runtime_error(path + ": ends too early");
    return p;
}

double psnr(const Picture& a, const Picture& b)
{
    double sum = 0;
    for (size_t i = 0; i < a.samples.size(); i++) {
        const double d = a.samples[i] - b.samples[i];
        sum += d * d;
    }
    return sum == 0 ? 99 : 10 * std::log10(255.0 * 255.0 * double(a.samples.size()) / sum);
}

SharedPicture greyOf(const SharedPicture& picture)
{
    if (picture->channels == 1) return picture;
    auto grey = std::make_shared<Picture>(Picture{picture->name, picture->width, picture->height, 1, {}});
    for (size_t i = 0; i < picture->samples.size(); i += 3) {
        const unsigned char* s = &picture->samples[i];
        grey->samples.push_back((unsigned char)((299 * s[0] + 587 * s[1] + 114 * s[2] + 500) / 1000));
    }
    return grey;
}

std::shared_ptr<Picture> blankLike(const Picture& picture)
{
    return std::make_shared<Picture>(Picture{picture.name, picture.width, picture.height, picture.channels,
                                             std::vector<unsigned char>(picture.samples.size())});
}

namespace {

unsigned long long ticks()
{
    _mm_lfence();
    const unsigned long long t = __rdtsc();
    _mm_lfence();
    return t;
}

struct Timed {
    Case test;
    size_t bytes = 0;
    std::vector<double> clocks; // per pixel
};

const std::chrono::milliseconds burstLength(40);

void burst(Timed& t)
{
    const auto end = std::chrono::steady_clock::now() + burstLength;
    t.bytes = t.test.call();
    do {
        const unsigned long long before = ticks();
        t.test.call();
        t.clocks.push_back(double(ticks() - before) / double(t.test.pixels));
    } while (std::chrono::steady_clock::now() < end);
}

// Sides of a key stand next to each other.
void checkQuality(std::vector<Timed>& cases)
{
    double first = 0;
    for (size_t i = 0; i < cases.size(); i++) {
        const Case& test = cases[i].test;
        test.call();
        const double quality = test.quality();
        if (i == 0 || cases[i - 1].test.key != test.key)
            first = quality;
        else if (quality - first > 2)
            throw std::runtime_error(test.key + ": " + cases[i - 1].test.who + " " + std::to_string(first) +
                                     " dB, " + test.who + " " + std::to_string(quality) + " dB");
    }
}

double least(const Timed& t)
{
    return *std::min_element(t.clocks.begin(), t.clocks.end());
}

void print(Timed& t, const std::string& picture)
{
    const auto middle = t.clocks.begin() + std::ptrdiff_t(t.clocks.size() / 2);
    std::nth_element(t.clocks.begin(), middle, t.clocks.end());
    const double minimum = least(t), median = *middle;
    std::printf("%s\t%s\t%s\tpx\t%.2f\t%.2f\t%zu\t%zu\t%d\n", t.test.key.c_str(), picture.c_str(),
                t.test.who.c_str(), minimum, median, t.bytes, t.clocks.size(), median > 1.25 * minimum);
}

std::string ratio(const Timed& a, const Timed& b, const std::string& picture)
{
    char value[32];
    std::snprintf(value, sizeof value, "%.3f", least(a) / least(b));
    return "ratio\t" + a.test.key + "\t" + picture + "\t" + a.test.who + "/" + b.test.who + "\t" + value +
           "\n";
}

// Returns the lines of ratios.
std::string run(const SharedPicture& picture, const Wanted& wanted, double seconds)
{
    using CasesOf = std::vector<Case>(const SharedPicture&, const Wanted&);
    CasesOf* const codecs[] = {jpegCases, j2kCases};
    std::vector<Timed> cases;
    for (CasesOf* casesOf : codecs)
        for (Case& test : casesOf(picture, wanted)) cases.push_back({std::move(test), 0, {}});
    checkQuality(cases);
    const int rounds =
        std::max(3, int(std::lround(seconds / std::chrono::duration<double>(burstLength).count())));
    for (int round = 0; round < rounds; round++)
        for (Timed& t : cases) burst(t);
    for (Timed& t : cases) print(t, picture->name);
    std::fflush(stdout);
    std::string ratios;
    for (size_t i = 1; i < cases.size(); i++)
        if (cases[i].test.key == cases[i - 1].test.key)
            ratios += ratio(cases[i - 1], cases[i], picture->name);
    return ratios;
}

int usage()
{
    std::fprintf(stderr, "usage: codecs [-k SUBSTRING] [-t SECONDS] PICTURE.ppm|.pgm...\n");
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    std::string part;
    double seconds = 0.5;
    for (int option; (option = getopt(argc, argv, "k:t:")) != -1;) {
        if (option == 'k')
            part = optarg;
        else if (option == 't')
            seconds = std::atof(optarg);
        else
            return usage();
    }
    if (optind == argc) return usage();

    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(sched_getcpu(), &set);
    sched_setaffinity(0, sizeof set, &set);
    qovInit();
    try {
        const Wanted wanted = [&](const std::string& key) { return key.find(part) != std::string::npos; };
        std::string ratios;
        for (int i = optind; i < argc; i++)
            ratios += run(std::make_shared<const Picture>(readPnm(argv[i])), wanted, seconds);
        std::fputs(ratios.c_str(), stdout);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "codecs: %s\n", e.what());
        return 1;
    }
}
