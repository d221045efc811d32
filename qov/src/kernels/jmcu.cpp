#include "jmcu.h"

#include "jmcu256.h"
#include "packed16.h"

namespace qov::QOV_LEVEL {
namespace {

// Pixels with Cb and Cr already in place.
struct NoConversion {
    template <class T>
    static inline void convert(const T (&in)[3], T (&out)[3])
    {
        for (int i = 0; i < 3; i++) out[i] = in[i];
    }
};

// How pixels lie in a row: get and put are for pixel x of a row; split and join for a strip, in one chunk for
// each of the `bytes` of a pixel.
template <int count>
struct BytePixels {
    typedef Qov8u Pixel;
    static constexpr int channels = count;

    static void get(const Qov8u* row, int x, Qov8u (&out)[count])
    {
        for (int i = 0; i < count; i++) out[i] = row[count * x + i];
    }
    static void put(const Qov8u (&in)[count], Qov8u* row, int x)
    {
        for (int i = 0; i < count; i++) row[count * x + i] = in[i];
    }
#if defined(QOV_SIMD256)
    static constexpr int bytes = count;

    static inline void split(const W (&chunk)[count], W (&out)[count])
    {
        splitChunks(chunk, out);
    }
    static inline void join(const W (&in)[count], W (&chunk)[count])
    {
        joinChunks(in, chunk);
    }
#endif
};

// 16-bit words of a format of packed16.h; the channels are R, G, B.
template <class Format>
struct WordPixels {
    typedef Qov16u Pixel;
    static constexpr int channels = 3;

    static void get(const Qov16u* row, int x, Qov8u (&out)[3]) { Format::widen(row[x], out); }
    static void put(const Qov8u (&in)[3], Qov16u* row, int x) { row[x] = Format::narrow(in); }
#if defined(QOV_SIMD256)
    static constexpr int bytes = 2;

    static inline void split(const W (&chunk)[2], W (&out)[3])
    {
        Format::split(chunk, out);
    }
    static inline void join(const W (&in)[3], W (&chunk)[2])
    {
        Format::join(in, chunk);
    }
#endif
};

// Y0 Cb Y1 Cr, taken as pixels whose Cb and Cr are those of their pair.
struct PairedPixels {
    typedef Qov8u Pixel;
    static constexpr int channels = 3;

    static void get(const Qov8u* row, int x, Qov8u (&out)[3])
    {
        const Qov8u* pair = row + x / 2 * 4;
        out[0] = row[2 * x];
        out[1] = pair[1];
        out[2] = pair[3];
    }
    static void put(const Qov8u (&in)[3], Qov8u* row, int x)
    {
        row[2 * x] = in[0];
        row[2 * x + 1] = in[1 + x % 2];
    }
#if defined(QOV_SIMD256)
    static constexpr int bytes = 2;

    static inline void split(const W (&chunk)[2], W (&out)[3])
    {
        static constexpr LaneBytes twice([](int p) { return p % 8 / 2 * 4 + (p < 8 ? 1 : 3); });
        const W low = shuffleBytes(chunk[0], constant(twice)), high = shuffleBytes(chunk[1], constant(twice));
        const W even = all16(255);
        out[0] = packU16(both(chunk[0], even), both(chunk[1], even));
        out[1] = lowQwords(low, high);
        out[2] = highQwords(low, high);
    }
    static inline void join(const W (&in)[3], W (&chunk)[2])
    {
        const W chroma = selectBytes(all16(255), in[1], in[2]);
        chunk[0] = lowBytes(in[0], chroma);
        chunk[1] = highBytes(in[0], chroma);
    }
#endif
};

// Pixels that share a sample of Cb and Cr.
template <int across_, int down_>
struct Region {
    static constexpr int across = across_, down = down_, width = 8 * across, height = 8 * down;

    // Where the sample of a pixel lies among the blocks of a component that is not subsampled.
    static constexpr ptrdiff_t place(int x, int y)
    {
        return (y / 8 * across + x / 8) * 64 + y % 8 * 8 + x % 8;
    }
};

#if defined(QOV_SIMD256)

// `down` strips at a time, of which `rows` rows of a subsampled block come.
template <class Region>
struct Strips {
    static constexpr int rows = 32 / Region::width, step = rows * Region::down;

    static ptrdiff_t chromaPlace(int y) { return y / Region::down * 8; }

    static inline void storeChroma(const W (&strip)[Region::down], Qov16s* block)
    {
        if constexpr (Region::across == 1)
            storeBlockRows<8>(strip[0], block);
        else
            storeMeans(strip, block);
    }
    static inline void loadChroma(const Qov16s* block, W (&strip)[Region::down])
    {
        if constexpr (Region::across == 1)
            strip[0] = loadBlockRows<8>(block);
        else
            loadRepeated(block, strip);
    }
};

template <class Region, class Pixels, class Conversion>
void toBlocks(const typename Pixels::Pixel* src, ptrdiff_t srcStep, Qov16s* const dst[])
{
    typedef Strips<Region> Strips;
    for (int y = 0; y < Region::height; y += Strips::step) {
        W cb[Region::down], cr[Region::down];
        for (int v = 0; v < Region::down; v++) {
            const int row = y + v * Strips::rows;
            const ptrdiff_t place = Region::place(0, row);
            W chunk[Pixels::bytes], in[Pixels::channels], out[Pixels::channels];
            loadStrip<Region::width>((const Qov8u*)src + row * srcStep, srcStep, chunk);
            Pixels::split(chunk, in);
            Conversion::convert(in, out);
            storeBlockRows<Region::width>(out[0], dst[0] + place);
            cb[v] = out[1];
            cr[v] = out[2];
            if constexpr (Pixels::channels == 4) storeBlockRows<Region::width>(out[3], dst[3] + place);
        }
        Strips::storeChroma(cb, dst[1] + Strips::chromaPlace(y));
        Strips::storeChroma(cr, dst[2] + Strips::chromaPlace(y));
    }
}

template <class Region, class Pixels, class Conversion>
void fromBlocks(const Qov16s* const src[], typename Pixels::Pixel* dst, ptrdiff_t dstStep)
{
    typedef Strips<Region> Strips;
    for (int y = 0; y < Region::height; y += Strips::step) {
        W cb[Region::down], cr[Region::down];
        Strips::loadChroma(src[1] + Strips::chromaPlace(y), cb);
        Strips::loadChroma(src[2] + Strips::chromaPlace(y), cr);
        for (int v = 0; v < Region::down; v++) {
            const int row = y + v * Strips::rows;
            const ptrdiff_t place = Region::place(0, row);
            W chunk[Pixels::bytes], in[Pixels::channels], out[Pixels::channels];
            in[0] = loadBlockRows<Region::width>(src[0] + place);
            in[1] = cb[v];
            in[2] = cr[v];
            if constexpr (Pixels::channels == 4) in[3] = loadBlockRows<Region::width>(src[3] + place);
            Conversion::convert(in, out);
            Pixels::join(out, chunk);
            storeStrip<Region::width>((Qov8u*)dst + row * dstStep, dstStep, chunk);
        }
    }
}

#else

// Visits each sample of a subsampled block, and for each the pixels that share it.
template <class Region, class Pixels, class Conversion>
void toBlocks(const typename Pixels::Pixel* src, ptrdiff_t srcStep, Qov16s* const dst[])
{
    constexpr unsigned sharing = Region::across * Region::down;
    for (int i = 0; i < 64; i++) {
        unsigned cb = sharing / 2, cr = sharing / 2; // so that the mean is rounded
        for (int v = 0; v < Region::down; v++)
            for (int h = 0; h < Region::across; h++) {
                const int x = i % 8 * Region::across + h, y = i / 8 * Region::down + v;
                const ptrdiff_t place = Region::place(x, y);
                Qov8u in[Pixels::channels], out[Pixels::channels];
                Pixels::get(atByte(src, y * srcStep), x, in);
                Conversion::convert(in, out);
                dst[0][place] = Qov16s(out[0] - 128);
                cb += out[1];
                cr += out[2];
                if constexpr (Pixels::channels == 4) dst[3][place] = Qov16s(out[3] - 128);
            }
        dst[1][i] = Qov16s(int(cb / sharing) - 128);
        dst[2][i] = Qov16s(int(cr / sharing) - 128);
    }
}

Qov8u plus128(Qov16s a)
{
    return Qov8u(a < -128 ? 0 : a > 127 ? 255 : a + 128);
}

template <class Region, class Pixels, class Conversion>
void fromBlocks(const Qov16s* const src[], typename Pixels::Pixel* dst, ptrdiff_t dstStep)
{
    for (int i = 0; i < 64; i++) {
        const Qov8u cb = plus128(src[1][i]), cr = plus128(src[2][i]);
        for (int v = 0; v < Region::down; v++)
            for (int h = 0; h < Region::across; h++) {
                const int x = i % 8 * Region::across + h, y = i / 8 * Region::down + v;
                const ptrdiff_t place = Region::place(x, y);
                Qov8u in[Pixels::channels] = {plus128(src[0][place]), cb, cr}, out[Pixels::channels];
                if constexpr (Pixels::channels == 4) in[3] = plus128(src[3][place]);
                Conversion::convert(in, out);
                Pixels::put(out, atByte(dst, y * dstStep), x);
            }
    }
}

#endif

template <class Region, class Pixels, class To, class From>
constexpr McuPair<typename Pixels::Pixel> pairOf = {toBlocks<Region, Pixels, To>,
                                                    fromBlocks<Region, Pixels, From>};

typedef Region<2, 1> Region422;

template <class Pixels, class To, class From>
constexpr McuRegions<typename Pixels::Pixel> regionsOf = {pairOf<Region<1, 1>, Pixels, To, From>,
                                                          pairOf<Region422, Pixels, To, From>,
                                                          pairOf<Region<2, 2>, Pixels, To, From>};

} // namespace

const McuKernels mcuKernels = {regionsOf<BytePixels<3>, RgbToYCbCr, YCbCrToRgb>,
                               regionsOf<BytePixels<3>, BgrToYCbCr, YCbCrToBgr>,
                               regionsOf<BytePixels<4>, CmykToYcck, YcckToCmyk>,
                               regionsOf<BytePixels<3>, NoConversion, NoConversion>,
                               regionsOf<WordPixels<Bgr555>, RgbToYCbCr, YCbCrToRgb>,
                               regionsOf<WordPixels<Bgr565>, RgbToYCbCr, YCbCrToRgb>,
                               pairOf<Region422, PairedPixels, NoConversion, NoConversion>};

} // namespace qov::QOV_LEVEL
