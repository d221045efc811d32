// The scans of a progressive picture: rough values of everything first, then a bit at a time. Chrominance
// comes as component 2 and then 1, on purpose.
#include "jpegenc.h"

#include <algorithm>
#include <new>

namespace {
// ncomps, component[4], Ss, Se, Ah, Al
const JPEGScan oneComponent[] = {
    {1, {0}, 0, 0, 0, 1},  {1, {0}, 1, 5, 0, 2}, {1, {0}, 6, 63, 0, 2},
    {1, {0}, 1, 63, 2, 1}, {1, {0}, 0, 0, 1, 0}, {1, {0}, 1, 63, 1, 0},
};
const JPEGScan threeComponents[] = {
    {3, {0, 1, 2}, 0, 0, 0, 1}, {1, {0}, 1, 5, 0, 2},  {1, {2}, 1, 63, 0, 1},      {1, {1}, 1, 63, 0, 1},
    {1, {0}, 6, 63, 0, 2},      {1, {0}, 1, 63, 2, 1}, {3, {0, 1, 2}, 0, 0, 1, 0}, {1, {2}, 1, 63, 1, 0},
    {1, {1}, 1, 63, 1, 0},      {1, {0}, 1, 63, 1, 0},
};
const JPEGScan fourComponents[] = {
    {4, {0, 1, 2, 3}, 0, 0, 0, 1}, {1, {0}, 1, 5, 0, 2},          {1, {1}, 1, 5, 0, 2},
    {1, {2}, 1, 5, 0, 2},          {1, {3}, 1, 5, 0, 2},          {1, {0}, 6, 63, 0, 2},
    {1, {1}, 6, 63, 0, 2},         {1, {2}, 6, 63, 0, 2},         {1, {3}, 6, 63, 0, 2},
    {1, {0}, 1, 63, 2, 1},         {1, {1}, 1, 63, 2, 1},         {1, {2}, 1, 63, 2, 1},
    {1, {3}, 1, 63, 2, 1},         {4, {0, 1, 2, 3}, 0, 0, 1, 0}, {1, {0}, 1, 63, 1, 0},
    {1, {1}, 1, 63, 1, 0},         {1, {2}, 1, 63, 1, 0},         {1, {3}, 1, 63, 1, 0},
};

struct Script {
    const JPEGScan* scans = nullptr;
    int count = 0;
};

template <int count>
Script script(const JPEGScan (&scans)[count])
{
    return {scans, count};
}
} // namespace

_JPEG_ERROR CJPEGEncoder::SelectScanScripts()
{
    delete[] m_scan_script;
    m_scan_script = nullptr;
    m_scan_count = 0;

    Script chosen;
    switch (m_jpeg_ncomp) {
    case 1: chosen = script(oneComponent); break;
    case 3: chosen = script(threeComponents); break;
    case 4: chosen = script(fourComponents); break;
    default: return JPEG_NOT_SUPPORTED;
    }
    m_scan_script = new (std::nothrow) JPEGScan[size_t(chosen.count)];
    if (!m_scan_script) return JPEG_OUT_OF_MEMORY;
    std::copy_n(chosen.scans, chosen.count, m_scan_script);
    m_scan_count = chosen.count;
    return JPEG_OK;
}
