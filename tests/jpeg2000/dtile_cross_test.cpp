// The decoder's tiles beside OpenJPEG: streams of every cut and order, component by component.
#include "boundedinput.h"
#include "djp2codestream.h"
#include "encode.h"
#include "support/oracle.h"
#include "support/shared_data.h"

#include <qovcore.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace jpeg2000;

namespace {

struct CountingSink : BDiagnOutput {
    int warnings = 0;
    void Warning(const BDiagnDescr&) override { warnings++; }
};

unsigned ceilDiv(unsigned a, unsigned b)
{
    return (a + b - 1) / b;
}

// All components, which have one size; samples are cut to bytes.
Picture decoded(const std::string& codestream)
{
    CountingSink sink;
    MemoryBoundedInputBE input(reinterpret_cast<const uint8_t*>(codestream.data()),
                               static_cast<uint32_t>(codestream.size()));
    DJP2Codestream<MemoryBoundedInputBE> stream(input, sink);
    EXPECT_TRUE(stream.ReadMainHeader());
    const Rect& area = stream.mainHeader.imageRect;
    const unsigned nOfComponents = stream.mainHeader.nOfComponents;
    const RectSize factors = stream.mainHeader.sampling[0];
    const unsigned width = ceilDiv(area.x + area.width, factors.width) - ceilDiv(area.x, factors.width);
    const unsigned height = ceilDiv(area.y + area.height, factors.height) - ceilDiv(area.y, factors.height);
    ImageComponents components;
    components.ReAlloc(nOfComponents);
    for (unsigned c = 0; c < nOfComponents; c++) components[c].Alloc(width, height);
    while (stream.ReadNextTilePartHeader())
        while (stream.ReadPacket()) {
        }
    stream.UpdateImageComponents(components);

    Picture picture =
        Picture::blank(static_cast<int>(width), static_cast<int>(height), static_cast<int>(nOfComponents));
    unsigned char* sample = picture.samples.data();
    for (unsigned y = 0; y < height; y++)
        for (unsigned x = 0; x < width; x++)
            for (unsigned c = 0; c < nOfComponents; c++)
                *sample++ = static_cast<unsigned char>(Max(0, Min(255, components[c].row(y)[x])));
    return picture;
}

std::string streamOfPeer(const Picture& picture, const std::string& keys)
{
    const std::string ending = picture.channels == 3 ? "ppm" : "pgm";
    return filter("d=$(mktemp -d) && cat >$d/a." + ending + " && opj_compress -i $d/a." + ending +
                      " -o $d/a.j2k " + keys + " >&2 && cat $d/a.j2k; s=$?; rm -r $d; exit $s",
                  pnmOf(picture));
}

Picture decodedByPeer(const std::string& codestream, int channels)
{
    const std::string ending = channels == 3 ? "ppm" : "pgm";
    return parsePnm(filter("d=$(mktemp -d) && cat >$d/a.j2k && opj_decompress -i $d/a.j2k -o $d/a." + ending +
                               " >&2 && cat $d/a." + ending + "; s=$?; rm -r $d; exit $s",
                           codestream));
}

class DTileCross : public testing::Test {
protected:
    void SetUp() override
    {
        for (const char* name : {"opj_compress", "opj_decompress"})
            QK_SKIP_UNLESS(haveProgram(name), std::string(name) + " is missing");
        QK_NEED_SHARED("bmp/rose.bmp");
        qovInit();
        colour = readBmp24(sharedPath("bmp/rose.bmp")).cropped(40, 30, 217, 163);
        grey = colour.mapped(1, [](const unsigned char* from, unsigned char* to) { *to = from[1]; });
    }

    Picture colour, grey;
};

TEST_F(DTileCross, ReversibleStreamsOfEveryCutComeBackExactly)
{
    const char* const keys[] = {
        "",
        "-n 1",
        "-n 1 -t 64,64",
        "-n 4 -b 4,64",
        "-n 4 -b 32,16 -t 100,70 -p RLCP",
        "-n 4 -c [64,64],[32,32] -p RPCL",
        "-n 5 -c [32,64] -b 64,64 -p PCRL -t 90,90",
        "-n 3 -c [16,32],[4,8],[2,2] -p CPRL -TP R",
        "-n 6 -d 13,7 -T 5,3 -t 61,59 -p RPCL -c [32,32]",
        "-n 2 -d 1,1 -t 7,5 -T 1,1 -b 4,4",
        "-n 4 -s 2,2 -d 6,4 -t 77,66 -c [32,32] -p PCRL",
        "-n 6 -POC T0=0,0,1,3,1,CPRL/T0=0,0,1,6,3,RLCP",
        "-n 4 -M 1",
        "-n 4 -M 2",
        "-n 4 -M 4",
        "-n 4 -M 8",
        "-n 4 -M 16",
        "-n 4 -M 32",
        "-n 4 -M 63",
        "-n 4 -M 5 -r 40,10,1",
        "-n 3 -M 4 -b 4,4 -r 200,100,50,20,1",
        "-n 4 -M 63 -r 60,30,15,8,1 -p RLCP -TP L -t 100,100 -c [32,32]",
        "-n 4 -M 4 -r 30,15,1 -p CPRL -c [32,32]",
        "-n 4 -GuardBits 5",
    };
    for (const Picture& picture : {colour, grey})
        for (const std::string key : keys) {
            const std::string stream = streamOfPeer(picture, key);
            EXPECT_EQ(distance(decoded(stream), picture).most, 0) << key << " " << picture.channels;
        }
}

// The codestream of our own encoder, which stands last in its file.
std::string ownStream(const Picture& picture, const char* wavelet, const char* ratio)
{
    const int step = (picture.width * picture.channels + 3) / 4 * 4;
    std::vector<uint8_t> rows(static_cast<size_t>(step * picture.height));
    for (int y = 0; y < picture.height; y++)
        for (int x = 0; x < picture.width; x++)
            std::reverse_copy(
                picture.at(x, y), picture.at(x, y) + picture.channels,
                &rows[static_cast<size_t>((picture.height - 1 - y) * step + x * picture.channels)]);
    const char* const argv[] = {"codec", "-i", "in.bmp", "-wt", wavelet, "-ratio", ratio};
    BDiagnOutput sink;
    const CmdOptions options(argv, 7, sink);
    _BMPBUFF bmp{nullptr, rows.data(), picture.width, picture.height, step, 0, 0, picture.channels * 8};
    std::string file(rows.size() * 2 + 65536, '\0');
    _JP2BUFF jp2{reinterpret_cast<uint8_t*>(file.data()), static_cast<uint32_t>(file.size()), 0, 0};
    EXPECT_EQ(encode(options, sink, bmp, jp2), 0);
    return file.substr(jp2.length - jp2.codestreamLength, jp2.codestreamLength);
}

TEST_F(DTileCross, OwnStreamsComeBack)
{
    for (const Picture& picture : {colour, grey, grey.cropped(3, 3, 1, 1), colour.cropped(0, 0, 5, 70)}) {
        EXPECT_EQ(distance(decoded(ownStream(picture, "wt53", "0")), picture).most, 0) << picture.width;
        if (picture.width < 100) continue;
        EXPECT_GT(distance(decoded(ownStream(picture, "wt97", "2")), picture).psnr,
                  picture.channels == 1 ? 51 : 48);
    }
}

TEST_F(DTileCross, CutAndIrreversibleStreamsAreNearThePeers)
{
    struct {
        const char* keys;
        int grey, colour; // most difference
    } const cases[] = {
        {"-n 4 -r 20", 0, 0},
        {"-n 4 -M 4 -r 100,40", 0, 0},
        {"-n 6 -I", 2, 4},
        {"-n 6 -I -t 100,70 -d 3,5", 2, 4},
        {"-n 3 -I -c [64,64] -p RPCL -M 63 -mct 0", 2, 2},
    };
    for (const auto& c : cases)
        for (const Picture& picture : {grey, colour}) {
            const std::string stream = streamOfPeer(picture, c.keys);
            EXPECT_LE(distance(decoded(stream), decodedByPeer(stream, picture.channels)).most,
                      picture.channels == 1 ? c.grey : c.colour)
                << c.keys << " " << picture.channels;
        }
}

} // namespace
