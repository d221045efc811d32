// dct_bench [processor]: clocks (of the time-stamp counter) per 8x8 block of the DCT and quantisation
// primitives, at every level of this machine. Runs pinned; the cases take turns in bursts, the first call of
// a burst is not counted, and the minimum of all rounds is printed. Data stay in the first-level cache: 32
// blocks, once from random samples with steps of 1 (as the suites have it), once from a smooth picture with
// the usual steps of quality 75.
#include "qovcore.h"
#include "qovi.h"

#include <sched.h>
#include <x86intrin.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

const int blocks = 32, width = 64, height = 32; // 8x4 blocks

struct Data {
    alignas(64) Qov8u samples[width * height];
    alignas(64) Qov8u output[width * height + 64];
    alignas(64) Qov16u samples12[width * height];
    alignas(64) Qov16s block[blocks * 64];        // level-shifted samples
    alignas(64) Qov16s coefficients[blocks * 64]; // quantised
    alignas(64) Qov16s coefficients12[blocks * 64];
    alignas(64) Qov16s result[blocks * 64];
    alignas(64) Qov16u steps[64];
    alignas(64) Qov32f steps12[64];
};

void fill(Data& d, bool smooth)
{
    static const Qov8u luminance[64] = {
        16, 11,  12, 14, 12, 10, 16,  14,  13,  14, 18, 17,  16,  19,  24,  40,  26, 24,  22,  22, 24, 49,
        35, 37,  29, 40, 58, 51, 61,  60,  57,  51, 56, 55,  64,  72,  92,  78,  64, 68,  87,  69, 55, 56,
        80, 109, 81, 87, 95, 98, 103, 104, 103, 62, 77, 113, 121, 112, 100, 120, 92, 101, 103, 99};
    std::mt19937 random(1);
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) {
            const double wave = 128 + 60 * std::sin(x * 0.11 + y * 0.05) + 30 * std::cos(y * 0.31 - x * 0.2);
            const int noise = int(random() % 9) - 4;
            const int s = smooth ? int(wave) + noise : int(random() % 256);
            d.samples[y * width + x] = Qov8u(s);
            d.samples12[y * width + x] = Qov16u(16 * s + int(random() % 16));
        }
    Qov8u raw[64];
    for (int i = 0; i < 64; i++) raw[i] = smooth ? luminance[i] : 1;
    if (smooth) qoviQuantFwdRawTableInit_JPEG_8u(raw, 75);
    qoviQuantFwdTableInit_JPEG_8u16u(raw, d.steps);
    for (int i = 0; i < 64; i++) d.steps12[i] = d.steps[i];
    for (int b = 0; b < blocks; b++) {
        const int at = (b / 8) * 8 * width + (b % 8) * 8;
        for (int i = 0; i < 64; i++)
            d.block[b * 64 + i] = Qov16s(d.samples[at + (i / 8) * width + i % 8] - 128);
        qoviDCTQuantFwd8x8_JPEG_16s_C1(d.block + b * 64, d.coefficients + b * 64, d.steps);
        qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R(d.samples12 + at, width * 2, d.coefficients12 + b * 64,
                                             d.steps12);
    }
}

struct Case {
    std::string name;
    std::function<void()> pass; // over all blocks
};

// Calls f(block number, offset of its first sample in the image).
template <class F>
std::function<void()> eachBlock(F f)
{
    return [f] {
        for (int b = 0; b < blocks; b++) f(b, (b / 8) * 8 * width + (b % 8) * 8);
    };
}

std::vector<Case> casesOn(Data& d, const std::string& kind)
{
    Data* p = &d;
    typedef QovStatus ToBytes(const Qov16s*, Qov8u*, int, const Qov16u*);
    const std::pair<const char*, ToBytes*> inverses[] = {
        {"inverse LS", qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R},
        {"inverse LS 4x4", qoviDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R},
        {"inverse LS 2x2", qoviDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R},
        {"inverse LS 1x1", qoviDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R},
        {"inverse To4x4", qoviDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R},
        {"inverse To2x2", qoviDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R}};
    std::vector<Case> cases;
    auto add = [&](const std::string& name, std::function<void()> pass) {
        cases.push_back({kind + name, pass});
    };
    add("forward LS", eachBlock([p](int b, int at) {
            qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R(p->samples + at, width, p->result + b * 64, p->steps);
        }));
    add("forward 8u16s, bare", eachBlock([p](int b, int at) {
            qoviDCT8x8Fwd_8u16s_C1R(p->samples + at, width, p->result + b * 64);
        }));
    add("forward 16s", eachBlock([p](int b, int) {
            qoviDCTQuantFwd8x8_JPEG_16s_C1(p->block + b * 64, p->result + b * 64, p->steps);
        }));
    add("forward LS 16u", eachBlock([p](int b, int at) {
            qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R(p->samples12 + at, width * 2, p->result + b * 64,
                                                 p->steps12);
        }));
    for (const auto& [name, primitive] : inverses)
        add(name, eachBlock([p, f = primitive](int b, int at) {
                f(p->coefficients + b * 64, p->output + at, width, p->steps);
            }));
    add("inverse 16s", eachBlock([p](int b, int) {
            qoviDCTQuantInv8x8_JPEG_16s_C1(p->coefficients + b * 64, p->result + b * 64, p->steps);
        }));
    add("inverse LS 16u", eachBlock([p](int b, int at) {
            qoviDCTQuantInv8x8LS_JPEG_16s16u_C1R(p->coefficients12 + b * 64, p->samples12 + at, width * 2,
                                                 p->steps12);
        }));
    add("quantise",
        eachBlock([p](int b, int) { qoviQuantFwd8x8_JPEG_16s_C1I(p->result + b * 64, p->steps); }));
    add("dequantise",
        eachBlock([p](int b, int) { qoviQuantInv8x8_JPEG_16s_C1I(p->result + b * 64, p->steps); }));
    return cases;
}

unsigned long long ticks()
{
    _mm_lfence();
    const unsigned long long t = __rdtsc();
    _mm_lfence();
    return t;
}

// The least clocks per block in a burst.
double burst(const Case& c)
{
    const unsigned long long length = 10'000'000; // a few milliseconds
    unsigned long long least = ~0ull;
    c.pass();
    for (const unsigned long long start = ticks(); ticks() - start < length;) {
        const unsigned long long before = ticks();
        for (int i = 0; i < 4; i++) c.pass();
        least = std::min(least, ticks() - before);
    }
    return double(least) / (4 * blocks);
}

} // namespace

int main(int argc, char** argv)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(argc > 1 ? std::atoi(argv[1]) : 0, &set);
    sched_setaffinity(0, sizeof set, &set);

    qovInit();
    const int best = qovGetCpuType(), rounds = 5;
    static Data random, smooth;
    fill(random, false);
    fill(smooth, true);
    std::vector<Case> cases = casesOn(random, "random, ");
    for (Case& c : casesOn(smooth, "smooth, ")) cases.push_back(c);

    std::printf("clocks per block\tpx\tv2\tv3\tv4\n");
    for (const Case& c : cases) {
        double least[5] = {1e9, 1e9, 1e9, 1e9, 1e9};
        for (int round = 0; round < rounds; round++)
            for (int level = qovCpuPx; level <= best; level++) {
                qovInitCpu(QovCpuType(level));
                least[level] = std::min(least[level], burst(c));
            }
        std::printf("%s", c.name.c_str());
        for (int level = qovCpuPx; level <= best; level++) std::printf("\t%.1f", least[level]);
        std::printf("\n");
    }
}
