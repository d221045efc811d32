#!/usr/bin/env python3
"""Writes fill_expected.h: digests of test data, made from the rules by code that shares nothing with the data layer.

    ./make_fill_expected.py > fill_expected.h && clang-format -i fill_expected.h
"""
import math
import struct

# name: (format of a part, parts, min, max, is floating, is signed)
MAX32F = 0.4 * math.sqrt(3.4028234663852886e+38)
MAX64F = 0.4 * math.sqrt(1.7976931348623157e+308)
PARTS = {
    "8u": ("B", 0.0, 255.0), "16u": ("H", 0.0, 65535.0), "32u": ("I", 0.0, 4294967295.0), "64u": ("Q", 0.0, 2.0**63),
    "8s": ("b", -128.0, 127.0), "16s": ("h", -32768.0, 32767.0), "32s": ("i", -2.0**31, 2.0**31 - 1),
    "64s": ("q", -2.0**63, 2.0**63), "32f": ("f", -MAX32F, MAX32F), "64f": ("d", -MAX64F, MAX64F),
}
ALL = ["8u", "16u", "32u", "64u", "8s", "16s", "32s", "64s", "8sc", "16sc", "16uc", "32sc", "64sc", "32f", "64f",
       "32fc", "64fc"]


class Type:
    def __init__(self, name):
        self.name = name
        self.parts = 2 if name.endswith("c") else 1
        part = name[:-1] if self.parts == 2 else name
        self.code, self.min, self.max = PARTS[part]
        self.floating = part.endswith("f")
        self.signed = part.endswith("s")
        self.size = struct.calcsize(self.code)

    def pack(self, value):
        if self.floating:
            return struct.pack("<" + self.code, value)
        bits = 8 * self.size
        if self.code == "Q" and value >= 2.0**63:
            number = int(value - 2.0**63) | 1 << 63
        else:
            number = min(max(int(value), -2**63), 2**63 - 1)
        return (number & (1 << bits) - 1).to_bytes(self.size, "little")


def random_values(seed, count):
    """Pairs of the drawn signed number and the state to go on from."""
    def wrap(x):
        return x & 0xFFFFFFFF

    def signed(x):
        return x - (1 << 32) if x >> 31 else x

    states = [seed]
    for _ in range(2):
        states.append(wrap(69069 * states[-1] + 1013904243))
    x1, x2, x3 = states
    borrow, q = -1, 1131199209
    for _ in range(count):
        q = wrap(69069 * q + 1013904243)
        t = wrap(x2 - x3 + borrow)
        borrow = -1 if t >> 31 else 0
        if t >> 31:
            t = wrap(t - 18)
        x1, x2, x3 = t, x1, x2
        yield signed(wrap(q + t)), t


class Random:
    def __init__(self, seed):
        self.seed = seed

    def fill(self, t, n, a, b):
        lo, hi = max(a, t.min), min(b, t.max)
        scale, mid = (hi - lo) * 2.3283064365387e-10, (hi + lo) * 0.5
        out = b""
        for number, state in random_values(self.seed, n * t.parts):
            out += t.pack(number * scale + mid)
            last = state
        self.seed = last
        return out


def amplitude(t, magn):
    offset = 0.0 if t.floating or t.signed else (t.min + t.max) * 0.5
    return min(magn, (t.max - t.min) * 0.5), offset


def jaehne(t, n, magn):
    magn, offset = amplitude(t, magn)
    k = 1.5707963267948966 / n
    return b"".join(t.pack(magn * math.sin(k * i * i) + offset) * t.parts for i in range(n))


def sequence(t, n, a, b, step):
    lo, hi = max(a, t.min), min(b, t.max)
    out, x = b"", lo
    for _ in range(n):
        out += t.pack(x) * t.parts
        x += step
        if x > hi:
            x = lo
    return out


def default_range(t):
    return (-1.0, 1.0) if t.floating else (t.min, t.max)


def digest(data):
    h = 0xCBF29CE484222325
    for byte in data:
        h = (h ^ byte) * 0x100000001B3 & 0xFFFFFFFFFFFFFFFF
    return h


def row(values, data, seed):
    head = data[:8].hex()
    print("    {%s, 0x%016xull, %du, \"%s\"}," % (", ".join(values), digest(data), seed, head))


def vector_rows():
    random = [(name, 1000, 0, 0) for name in ALL] + [
        ("8u", 1000, -1000, 1000), ("16s", 999, -32768, 32767), ("32f", 1, -1, 1), ("64u", 500, 0, 1e30),
        ("8s", 100, -1, 1), ("32s", 100, 10, 20), ("16sc", 100, -100, 100), ("64fc", 33, 0, 1e-300)]
    for name, n, a, b in random:
        t, source = Type(name), Random(456)
        data = source.fill(t, n, *(default_range(t) if a == b else (a, b)))
        row(["fillRandom", "qd" + name, str(n), repr(a), repr(b)], data, source.seed)
    for name, n, magn in [("8u", 256, 127.5), ("8u", 100, 500), ("16s", 333, 1000), ("16uc", 64, 32767.5),
                          ("32s", 77, 2147483647.5), ("32f", 128, 1), ("8sc", 50, 100)]:
        row(["fillJaehne", "qd" + name, str(n), repr(magn), "0"], jaehne(Type(name), n, magn), 456)
    for name, n, a, b in [("8u", 300, 0, 255), ("8u", 1000, -5, 99), ("16s", 10, 0, 10), ("32f", 10, 0, 1),
                          ("32sc", 40, -3, 200), ("64s", 5, 0, 1e19), ("64f", 7, 3, -4)]:
        t = Type(name)
        step = (b - a) / n
        if not t.floating and step < 1:
            step = 1
        row(["fillRamp", "qd" + name, str(n), repr(a), repr(b)], sequence(t, n, a, b, step), 456)


class Picture:
    """Rows of an interleaved or planar image; the padding is not part of the digest."""

    def __init__(self, name, channels, planar, w, h):
        self.t, self.channels, self.planar, self.w, self.h = Type(name), channels, planar, w, h

    def random(self, a, b):
        source, out = Random(456), b""
        for _ in range(self.h * (self.channels if self.planar else 1)):
            out += source.fill(self.t, self.w * (1 if self.planar else self.channels), a, b)
        return out, source.seed

    def jaehne(self, magn):
        t = self.t
        magn, offset = amplitude(t, magn)
        cx, cy = (self.w - 1) * 0.5, (self.h - 1) * 0.5

        def pixel(x, y):
            d = (y - cy) * (y - cy) + (x - cx) * (x - cx)
            return t.pack((math.sin(d * 6.283185307179586 / (4.0 * self.h)) + 1.0) * magn + offset) * t.parts

        repeat = 1 if self.planar else self.channels
        plane = b"".join(pixel(x, y) * repeat for y in range(self.h) for x in range(self.w))
        return plane * (self.channels if self.planar else 1)


def image_rows():
    pictures = [("8u", 1, False, 7, 7), ("8u", 3, False, 6, 5), ("16s", 3, True, 9, 4), ("16sc", 1, False, 5, 8),
                ("16uc", 2, True, 3, 3), ("8u", 4, False, 5, 3), ("32f", 2, True, 4, 6), ("8sc", 3, False, 2, 9)]
    for name, channels, planar, w, h in pictures:
        values = ["qd" + name, str(channels), "true" if planar else "false", str(w), str(h)]
        p = Picture(name, channels, planar, w, h)
        data, seed = p.random(*default_range(p.t))
        row(["fillRandom"] + values, data, seed)
        magn = 1.0 if p.t.floating else (p.t.max - p.t.min) * 0.5
        row(["fillJaehne"] + values, p.jaehne(magn), 456)


print("// Digests of test data. Made by make_fill_expected.py; fill_cases.h tells what the columns are.")
print("inline const FillCase vectorCases[] = {")
vector_rows()
print("};\n")
print("inline const FillImageCase imageCases[] = {")
image_rows()
print("};")
