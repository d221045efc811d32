// Colour blocks of S3TC, `lanes` of them at a time: a line through the colours of each block, its ends
// rounded to 565 and refined by least squares.
//
// What decides is exact: texels, palettes, sums over a block and scores are integers below 2^24 or halves
// below 2^23, so exactProductSum may or may not fuse. The axis and the solutions of the least squares are
// rounded, step by step and in the same order at every level.
#ifndef QOV_KERNELS_TEXTUREENC_FIT_H
#define QOV_KERNELS_TEXTUREENC_FIT_H

#include "textureenc_lanes.h"

namespace qov::QOV_LEVEL {
namespace {

struct Colour {
    Floats r, g, b;
};

QOV_INLINE Colour operator+(Colour a, Colour b)
{
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}
QOV_INLINE Colour operator-(Colour a, Colour b)
{
    return {a.r - b.r, a.g - b.g, a.b - b.b};
}
QOV_INLINE Colour operator*(Floats f, Colour a)
{
    return {f * a.r, f * a.g, f * a.b};
}
QOV_INLINE Colour select(Mask m, Colour a, Colour b)
{
    return {select(m, a.r, b.r), select(m, a.g, b.g), select(m, a.b, b.b)};
}
QOV_INLINE Colour exactProductSum(Floats f, Colour a, Colour c)
{
    return {exactProductSum(f, a.r, c.r), exactProductSum(f, a.g, c.g), exactProductSum(f, a.b, c.b)};
}
// a . b + c
QOV_INLINE Floats exactDot(Colour a, Colour b, Floats c)
{
    return exactProductSum(a.r, b.r, exactProductSum(a.g, b.g, exactProductSum(a.b, b.b, c)));
}
QOV_INLINE Floats roundedDot(Colour a, Colour b)
{
    return a.r * b.r + a.g * b.g + a.b * b.b;
}

// The texels of `lanes` blocks. Texels that are cut out are black and take no part.
struct Texels {
    Words raw[16];
    Colour colour[16];
    Mask opaque[16]; // only with cut-outs
    Floats count;    // of those that take part
    Colour sum;
};

QOV_INLINE Floats channel(Words texel, int shift)
{
    return floatsOf(texel >> shift & allWords(0xFF));
}

QOV_INLINE void load(const Qov8u* src, ptrdiff_t step, Texels& t)
{
    for (int y = 0; y < 4; y++) loadColumns(atByte(src, y * step), t.raw + 4 * y);
}

QOV_INLINE bool allOpaque(const Texels& t)
{
    Words every = t.raw[0];
    for (int i = 1; i < 16; i++) every = every & t.raw[i];
    return bitsOf(topBit(every)) == (1u << lanes) - 1;
}

template <bool cutOut>
QOV_INLINE void separate(Texels& t)
{
    t.count = all(cutOut ? 0 : 16);
    t.sum = {all(0), all(0), all(0)};
    for (int i = 0; i < 16; i++) {
        const Words raw = t.raw[i];
        t.colour[i] = {channel(raw, 0), channel(raw, 8), channel(raw, 16)};
        if constexpr (cutOut) {
            const Mask opaque = topBit(raw);
            t.opaque[i] = opaque;
            t.count = addWhere(t.count, opaque, all(1));
            t.colour[i] = {only(opaque, t.colour[i].r), only(opaque, t.colour[i].g),
                           only(opaque, t.colour[i].b)};
        }
        t.sum = t.sum + t.colour[i];
    }
}

// A symmetric matrix.
struct Spread {
    Colour diagonal; // rr, gg, bb
    Floats rg, rb, gb;
};

// count^2 times the covariance: exact.
QOV_INLINE Spread spreadOf(const Texels& t)
{
    const Floats zero = all(0);
    Spread s = {{zero, zero, zero}, zero, zero, zero};
    for (int i = 0; i < 16; i++) {
        const Colour x = t.colour[i];
        s.diagonal.r = exactProductSum(x.r, x.r, s.diagonal.r);
        s.diagonal.g = exactProductSum(x.g, x.g, s.diagonal.g);
        s.diagonal.b = exactProductSum(x.b, x.b, s.diagonal.b);
        s.rg = exactProductSum(x.r, x.g, s.rg);
        s.rb = exactProductSum(x.r, x.b, s.rb);
        s.gb = exactProductSum(x.g, x.b, s.gb);
    }
    s.diagonal.r = t.count * s.diagonal.r - t.sum.r * t.sum.r;
    s.diagonal.g = t.count * s.diagonal.g - t.sum.g * t.sum.g;
    s.diagonal.b = t.count * s.diagonal.b - t.sum.b * t.sum.b;
    s.rg = t.count * s.rg - t.sum.r * t.sum.g;
    s.rb = t.count * s.rb - t.sum.r * t.sum.b;
    s.gb = t.count * s.gb - t.sum.g * t.sum.b;
    return s;
}

// The principal axis in integers of at most 1023, so that projections on it are exact. 0 without any spread.
QOV_INLINE Colour principalAxis(const Spread& s)
{
    const Floats trace = s.diagonal.r + s.diagonal.g + s.diagonal.b;
    const Floats scale = all(1) / larger(trace, all(1));
    const Colour rows[3] = {{scale * s.diagonal.r, scale * s.rg, scale * s.rb},
                            {scale * s.rg, scale * s.diagonal.g, scale * s.gb},
                            {scale * s.rb, scale * s.gb, scale * s.diagonal.b}};
    // With trace 1 the lengths need no mending on the way: the row of the largest variance, 1/3 at least, is
    // as long, and no step makes it shorter than by this factor.
    Colour axis = select(greater(s.diagonal.g, s.diagonal.r), rows[1], rows[0]);
    axis = select(greater(s.diagonal.b, larger(s.diagonal.r, s.diagonal.g)), rows[2], axis);
    for (int i = 0; i < 4; i++)
        axis = {roundedDot(rows[0], axis), roundedDot(rows[1], axis), roundedDot(rows[2], axis)};
    const Floats zero = all(0);
    const Floats longest = larger(larger(larger(axis.r, zero - axis.r), larger(axis.g, zero - axis.g)),
                                  larger(axis.b, zero - axis.b));
    const Floats unit = all(1023) / larger(longest, all(1e-6f));
    return {truncated(unit * axis.r), truncated(unit * axis.g), truncated(unit * axis.b)};
}

// Where the texels of a block lie between its ends: w steps of `parts` from the first, for each texel.
struct Places {
    Floats w, ww; // sums of w and w^2
    Colour wx;    // sum of w times colour
};

QOV_INLINE Places noPlaces()
{
    const Floats zero = all(0);
    return {zero, zero, {zero, zero, zero}};
}

QOV_INLINE void place(Places& p, Floats w, Colour x)
{
    p.w = p.w + w;
    p.ww = exactProductSum(w, w, p.ww);
    p.wx = exactProductSum(w, x, p.wx);
}

// Parts of the axis between the outermost texels. Those at the ends are a bit wider than between the
// palette's entries: the refinement then finds better ends (0.1 dB on photos).
template <bool cutOut>
QOV_INLINE Places placesOnAxis(const Texels& t, Colour axis, Floats parts)
{
    constexpr float beyond = 1e6f; // of any projection: 3 * 255 * 1023
    Floats along[16], low = all(beyond), high = all(-beyond);
    for (int i = 0; i < 16; i++) {
        along[i] = exactDot(t.colour[i], axis, all(0));
        if constexpr (cutOut) {
            low = smaller(low, select(t.opaque[i], along[i], low));
            high = larger(high, select(t.opaque[i], along[i], high));
        } else {
            low = smaller(low, along[i]);
            high = larger(high, along[i]);
        }
    }
    const Floats scale = parts * all(8.0f / 7) / larger(high - low, all(1)); // thresholds 7/8 apart
    const Floats start = all(0.5f) - parts * all(1.0f / 14);
    Places p = noPlaces();
    for (int i = 0; i < 16; i++) {
        Floats w = truncated((along[i] - low) * scale + start);
        if constexpr (cutOut) w = only(t.opaque[i], w);
        place(p, w, t.colour[i]);
    }
    return p;
}

struct Ends {
    Colour first, second;         // 8 bits a channel
    Floats firstCode, secondCode; // 565
};

QOV_INLINE Floats roundedTo(float top, Floats v)
{
    return truncated(smaller(larger(v, all(0)), all(top)) + all(0.5f));
}
QOV_INLINE Colour round565(Colour c)
{
    return {roundedTo(31, c.r), roundedTo(63, c.g), roundedTo(31, c.b)};
}
// The top bits again below: v * 8 + v / 4 and v * 4 + v / 16.
QOV_INLINE Colour expand565(Colour c)
{
    return {truncated(c.r * all(8.25f)), truncated(c.g * all(4.0625f)), truncated(c.b * all(8.25f))};
}
QOV_INLINE Floats code565(Colour c)
{
    return exactProductSum(c.r, all(2048), exactProductSum(c.g, all(32), c.b));
}

// The ends with the least sum of squares for texels in these places. Texels all in one place don't tell both:
// their mean then is for either.
QOV_INLINE Ends endsFor(const Texels& t, const Places& p, Floats parts)
{
    // u = parts - w; sums of u u, u w, w w and of u times colour.
    const Floats uw = parts * p.w - p.ww, uu = parts * (parts * t.count - p.w) - uw;
    const Colour ux = parts * t.sum - p.wx;
    const Floats determinant = uu * p.ww - uw * uw;
    const Mask solved = greater(determinant, all(0));
    const Floats scale = select(solved, parts, all(1)) / select(solved, determinant, larger(t.count, all(1)));
    const Colour first = select(solved, p.ww * ux - uw * p.wx, t.sum);
    const Colour second = select(solved, uu * p.wx - uw * ux, t.sum);
    const Floats to5 = scale * all(31.0f / 255), to6 = scale * all(63.0f / 255);
    const Colour a = round565({to5 * first.r, to6 * first.g, to5 * first.b});
    const Colour b = round565({to5 * second.r, to6 * second.g, to5 * second.b});
    return {expand565(a), expand565(b), code565(a), code565(b)};
}

// The plane half way from one palette entry to the next: `normal . x + offset` is how much half the squared
// distance falls when x goes to the next, positive behind the plane.
struct Plane {
    Colour normal;
    Floats offset;
};

QOV_INLINE Plane planeBetween(Colour from, Colour to)
{
    const Floats zero = all(0);
    return {to - from, all(0.5f) * (exactDot(from, from, zero) - exactDot(to, to, zero))};
}

struct Match {
    Floats score; // half of what the sum of squared distances lacks to the sum of squared colours
    Floats w[2];  // places of texels 0 to 7 and 8 to 15, two bits each
    Places places;
};

// Divisions rounded down: n / 3 for integers below 2^20.
QOV_INLINE Colour thirds(Colour c)
{
    const Floats third = all(0.33333334f);
    return {truncated(c.r * third), truncated(c.g * third), truncated(c.b * third)};
}
QOV_INLINE Colour halves(Colour c)
{
    return {truncated(c.r * all(0.5f)), truncated(c.g * all(0.5f)), truncated(c.b * all(0.5f))};
}

// Every texel to the entry of the palette that is nearest: from the first end on as long as the next is
// nearer. Ends that differ are 4 apart in a channel, so no entry is the same as the next.
template <bool cutOut, bool refined>
QOV_INLINE Match match(const Texels& t, const Ends& e, Mask three)
{
    Colour inner = thirds(e.first + e.first + e.second), outer = thirds(e.first + e.second + e.second);
    if constexpr (cutOut) {
        inner = select(three, halves(e.first + e.second), inner);
        outer = select(three, e.second, outer);
    }
    const Plane a = planeBetween(e.first, inner), b = planeBetween(inner, outer),
                c = planeBetween(outer, e.second); // with three colours the last is nowhere behind
    Match m;
    m.places = noPlaces();
    m.score = exactDot(e.first, t.sum, all(-0.5f) * t.count * exactDot(e.first, e.first, all(0)));
    for (int half = 0; half < 2; half++) {
        m.w[half] = all(0);
        for (int i = 8 * half + 7; i >= 8 * half; i--) {
            const Colour x = t.colour[i];
            const Floats gainA = exactDot(a.normal, x, a.offset);
            const Floats gainB = exactDot(b.normal, x, b.offset);
            const Floats gainC = exactDot(c.normal, x, c.offset);
            const Mask behindA = cutOut ? greaterWithin(t.opaque[i], gainA, all(0)) : greater(gainA, all(0));
            const Mask behindB = greaterWithin(behindA, gainB, all(0));
            const Mask behindC = greaterWithin(behindB, gainC, all(0));
            m.score = addWhere(addWhere(addWhere(m.score, behindA, gainA), behindB, gainB), behindC, gainC);
            const Floats w = addWhere(addWhere(only(behindA, all(1)), behindB, all(1)), behindC, all(1));
            m.w[half] = exactProductSum(m.w[half], all(4), w);
            if constexpr (refined) place(m.places, w, x);
        }
    }
    return m;
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
