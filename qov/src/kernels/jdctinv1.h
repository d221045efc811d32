// The integer inverse transform value by value. Included by jdctinv.cpp, which tells the arithmetic.

// The inverse of 8 values, `stride` apart, in place.
void pass(int* a, int stride, int shift, int bias)
{
    const int n = stride;
    const int p = a[0] * c0 + a[4 * n] * c0 + bias, q = a[0] * c0 - a[4 * n] * c0 + bias;
    const int u = a[2 * n] * c2 + a[6 * n] * c6, v = a[2 * n] * c6 - a[6 * n] * c2;
    const int a1 = a[n], a3 = a[3 * n], a5 = a[5 * n], a7 = a[7 * n];
    const int o0 = a1 * c1 + a3 * c3 + a5 * c5 + a7 * c7, o1 = a1 * c3 - a3 * c7 - a5 * c1 - a7 * c5;
    const int o2 = a1 * c5 - a3 * c1 + a5 * c7 + a7 * c3, o3 = a1 * c7 - a3 * c5 + a5 * c3 - a7 * c1;
    a[0] = (p + u + o0) >> shift;
    a[n] = (q + v + o1) >> shift;
    a[2 * n] = (q - v + o2) >> shift;
    a[3 * n] = (p - u + o3) >> shift;
    a[4 * n] = (p - u - o3) >> shift;
    a[5 * n] = (q - v - o2) >> shift;
    a[6 * n] = (q + v - o1) >> shift;
    a[7 * n] = (p + u - o0) >> shift;
}

template <int size>
bool onlyDc(Corner<size>, const Qov16s* src)
{
    for (int v = 0; v < size; v++)
        for (int u = 0; u < size; u++)
            if (src[8 * v + u] && u + v > 0) return false;
    return true;
}

template <int size, class Out>
bool narrow(Corner<size>, const Qov16s* src, Out out, const Qov16u* table)
{
    int x[64] = {};
    for (int v = 0; v < 8 * size; v += 8)
        for (int u = 0; u < size; u++) x[v + u] = dequantise(src[v + u], table[v + u]);
    for (int v = 0; v < 8 * size; v += 8) pass(x + v, 1, rowShift, 1 << (rowShift - 1));
    for (int i = 0; i < 8 * size; i++)
        if (x[i] < -middleLimit || x[i] > middleLimit) return false;
    for (int u = 0; u < 8; u++) pass(x + u, 8, columnShift, columnBias(Out::shift));
    for (int y = 0; y < 8; y++)
        for (int i = 0; i < 8; i++) out.put(y, i, x[8 * y + i]);
    return true;
}
