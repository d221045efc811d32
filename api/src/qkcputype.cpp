// The processor types that the library knows: the instruction-set levels that its code is built for.
#include "qkcpuid.h"
#include "qkformat.h"

namespace {
struct CpuTypeRow {
    QovCpuType code;
    const char* label; // as -T takes it
    const char* name;  // as reports show it
};

const CpuTypeRow cpuTypes[] = {
    {qovCpuUnknown, "Unknown", "Unknown processor"}, {qovCpuPx, "Px", "x86-64"},
    {qovCpuV2, "V2", "x86-64-v2 (SSE4.2)"},          {qovCpuV3, "V3", "x86-64-v3 (AVX2)"},
    {qovCpuV4, "V4", "x86-64-v4 (AVX-512)"},
};
} // namespace

static const CpuTypeRow* findRow(int code)
{
    for (const CpuTypeRow& row : cpuTypes) {
        if (row.code == code) return &row;
    }
    return nullptr;
}

int qkCpuType::cpuType(const qkString& label)
{
    for (const CpuTypeRow& row : cpuTypes) {
        if (label.toLower() == qkString(row.label).toLower()) return row.code;
    }
    return -1;
}

qkString qkCpuType::cpuName(int code)
{
    const CpuTypeRow* row = findRow(code);
    return row ? row->name : cpuTypes[0].name;
}

qkString qkCpuType::cpuLabel(int code)
{
    const CpuTypeRow* row = findRow(code);
    return row ? row->label : "Undefined";
}

// One line for the help of -T.
qkString qkCpuType::optimizedList()
{
    qkString list("    ");
    for (const CpuTypeRow& row : cpuTypes) {
        if (row.code != qovCpuUnknown) list += formatLabel(row.label);
    }
    return list + "\n";
}

qkString qkCpuType::formatLabel(const qkString& label)
{
    return sFormat(label, -9);
}
