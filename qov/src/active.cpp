#include "active.h"

#define QOV_POINTER(level, name, Type) &level::name##Kernels,

namespace qov {

// Constant-initialised, so that a static initialiser of any other unit may call a primitive.
Kernels active = {QOV_FAMILIES(QOV_POINTER, px)};

static const Kernels kernelsByLevel[] = {
    {QOV_FAMILIES(QOV_POINTER, px)}, // in the place of qovCpuUnknown
    {QOV_FAMILIES(QOV_POINTER, px)}, {QOV_FAMILIES(QOV_POINTER, v2)},
    {QOV_FAMILIES(QOV_POINTER, v3)}, {QOV_FAMILIES(QOV_POINTER, v4)},
};

static QovCpuType g_level = qovCpuPx;

QovCpuType activeLevel()
{
    return g_level;
}

void activate(QovCpuType level)
{
    active = kernelsByLevel[level];
    g_level = level;
}

} // namespace qov
