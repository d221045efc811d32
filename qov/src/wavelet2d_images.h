// Whole transforms of an image and the buffers they work in. Between the image and its four bands a few rows
// at a time go through the columns and then the rows, or the other way. In place each strip of columns is
// put together in the buffer, for its rows move, and each row by itself.
#ifndef QOV_WAVELET2D_IMAGES_H
#define QOV_WAVELET2D_IMAGES_H

#include "wavelet2d_columns.h"

namespace qov {

struct Area {
    Span x, y;

    explicit Area(const QoviRect& rect) : x(rect.x, rect.width), y(rect.y, rect.height) {}
};

template <class T>
struct Plane {
    T* data;
    ptrdiff_t step;

    T* row(int y) const { return atByte(data, y * step); }
};

// Bands in the order of QoviWTSubband; an empty one is null with a step of 0.
template <class T>
struct Bands {
    Plane<T> band[4];

    T* row(Span y, int place, Half alongX) const
    {
        return band[2 * alongX + halfOf(place)].row(y.inHalf(place));
    }
};

template <class T>
ptrdiff_t bandsBufferBytes(const Area& area)
{
    return BufferRows<T>::bytes(area.x.count, columnRows + 4);
}

template <class Filter, class T>
struct ToBands {
    const Filter& filter;
    Area area;
    Plane<const T> image;
    const Bands<T>& bands;
    const BufferRows<T>& buffer;

    const T* sample(int place) const { return image.row(place - area.y.first); }
    T* room(int place) const { return buffer[columnRows + halfOf(place)]; }
    void give(int place, T* row) const
    {
        analyseRow(filter, area.x, row, bands.row(area.y, place, lowHalf),
                   bands.row(area.y, place, highHalf));
    }
};

template <class Filter, class T>
struct FromBands {
    const Filter& filter;
    Area area;
    Bands<const T> bands;
    Plane<T> image;
    const BufferRows<T>& buffer;

    const T* half(int place, T* spare) const
    {
        T* const halves[2] = {buffer[columnRows + 2], buffer[columnRows + 3]};
        synthesiseRow(filter, area.x, bands.row(area.y, place, lowHalf), bands.row(area.y, place, highHalf),
                      halves, spare);
        return spare;
    }
    T* room(int place) const
    {
        return area.y.holds(place) ? image.row(place - area.y.first) : buffer[columnRows + halfOf(place)];
    }
};

template <class Filter, class T>
void analyseToBands(const Filter& filter, const Area& area, Plane<const T> image, const Bands<T>& bands,
                    Qov8u* memory)
{
    const BufferRows<T> buffer(memory, area.x.count);
    const ToBands<Filter, T> rows{filter, area, image, bands, buffer};
    analyseAll(filter, area.y, area.x.count, buffer, rows);
}

template <class Filter, class T>
void synthesiseFromBands(const Filter& filter, const Area& area, const Bands<const T>& bands, Plane<T> image,
                         Qov8u* memory)
{
    const BufferRows<T> buffer(memory, area.x.count);
    const FromBands<Filter, T> rows{filter, area, bands, image, buffer};
    synthesiseAll(filter, area.y, area.x.count, buffer, rows);
}

// Wide enough for the lifts and for whole cache lines; several hundred rows of it stay in a cache of 1 MB.
constexpr int stripBytes = 512;

template <class T>
constexpr int stripWidth = stripBytes / sizeof(T);

template <class T>
ptrdiff_t inPlaceBufferBytes(const Area& area)
{
    const ptrdiff_t rows = BufferRows<T>::bytes(area.x.count, 3);
    const ptrdiff_t strip =
        BufferRows<T>::bytes(stripWidth<T>, columnRows + 2) + area.y.count * ptrdiff_t(stripBytes);
    return std::max(rows, strip);
}

// A strip of columns on its way from the image into the buffer; `result` has its rows in their new order.
template <class T>
struct Strip {
    Span y;
    Plane<T> image;
    int width;
    const BufferRows<T>& buffer;
    Plane<T> result;

    T* spare(int place) const { return buffer[columnRows + halfOf(place)]; }
    void putBack() const
    {
        for (int i = 0; i < y.count; i++) std::memcpy(image.row(i), result.row(i), size_t(width) * sizeof(T));
    }
};

template <class T>
struct ToHalves : Strip<T> {
    const T* sample(int place) const { return this->image.row(place - this->y.first); }
    T* room(int place) const
    {
        return this->y.holds(place) ? this->result.row(this->y.inHalves(place)) : this->spare(place);
    }
    void give(int, T*) const {}
};

template <class T>
struct FromHalves : Strip<T> {
    const T* half(int place, T*) const { return this->image.row(this->y.inHalves(place)); }
    T* room(int place) const
    {
        return this->y.holds(place) ? this->result.row(place - this->y.first) : this->spare(place);
    }
};

template <class Rows, class T, class Transform>
void forEachStrip(const Area& area, Plane<T> image, Qov8u* memory, Transform transform)
{
    const BufferRows<T> buffer(memory, stripWidth<T>);
    T* const result = reinterpret_cast<T*>(buffer.behind(columnRows + 2));
    for (int x = 0; x < area.x.count; x += stripWidth<T>) {
        const int width = std::min(stripWidth<T>, area.x.count - x);
        const Rows strip{{area.y, {image.data + x, image.step}, width, buffer, {result, stripBytes}}};
        transform(width, buffer, strip);
        strip.putBack();
    }
}

template <class Filter, class T>
void analyseInPlace(const Filter& filter, const Area& area, Plane<T> image, Qov8u* memory)
{
    forEachStrip<ToHalves<T>>(area, image, memory, [&](int width, const auto& buffer, const auto& rows) {
        analyseAll(filter, area.y, width, buffer, rows);
    });
    T* const line = BufferRows<T>(memory, area.x.count)[0];
    for (int y = 0; y < area.y.count; y++) {
        T* const row = image.row(y);
        std::memcpy(line, row, size_t(area.x.count) * sizeof(T));
        analyseRow(filter, area.x, line, row, row + area.x.size(lowHalf));
    }
}

template <class Filter, class T>
void synthesiseInPlace(const Filter& filter, const Area& area, Plane<T> image, Qov8u* memory)
{
    const BufferRows<T> lines(memory, area.x.count);
    T* const halves[2] = {lines[1], lines[2]};
    for (int y = 0; y < area.y.count; y++) {
        T* const row = image.row(y);
        synthesiseRow(filter, area.x, row, row + area.x.size(lowHalf), halves, lines[0]);
        std::memcpy(row, lines[0], size_t(area.x.count) * sizeof(T));
    }
    forEachStrip<FromHalves<T>>(area, image, memory, [&](int width, const auto& buffer, const auto& rows) {
        synthesiseAll(filter, area.y, width, buffer, rows);
    });
}

} // namespace qov

#endif
