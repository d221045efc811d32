#include "dynrange.h"

namespace jpeg2000 {

namespace {

// Planes first, first + distance ... into plane `first`, rounded to nearest.
void average(const ImageComponents& planes, unsigned first, unsigned distance)
{
    const unsigned width = planes[first].size.width;
    const unsigned count = (planes.size - first + distance - 1) / distance;
    FixedBuffer<long long> sums(width);
    for (unsigned y = 0; y < planes[first].size.height; y++) {
        SetValue<long long>(count / 2, sums, width);
        for (unsigned i = first; i < planes.size; i += distance) {
            const int* row = planes[i].row(y);
            for (unsigned x = 0; x < width; x++) sums[x] += row[x];
        }
        int* row = planes[first].row(y);
        for (unsigned x = 0; x < width; x++) row[x] = static_cast<int>(sums[x] / count);
    }
}

} // namespace

void ConvertDynRange(const ImageComponent& plane, MRstrImageDepth from, unsigned toDepth)
{
    const DynRange<int> convert(from, toDepth);
    for (unsigned y = 0; y < plane.size.height; y++) {
        int* row = plane.row(y);
        for (unsigned x = 0; x < plane.size.width; x++) row[x] = convert(row[x]);
    }
}

void ConvertDynRangeAndAverage(const ImageComponents& planes, const MRstrImageDepth* from, unsigned toDepth,
                               unsigned nOfOutputs)
{
    for (unsigned i = 0; i < planes.size; i++) ConvertDynRange(planes[i], from[i], toDepth);
    if (planes.size <= nOfOutputs) return;
    for (unsigned i = 0; i < nOfOutputs; i++) average(planes, i, nOfOutputs);
}

} // namespace jpeg2000
