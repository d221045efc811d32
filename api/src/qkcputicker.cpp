#include <cstdlib>

#include "qkclock.h"
#include "qkcpufreq.h"
#include "qktool.h"

int qkCpuTicker::m_freqMHz = 0;

int qkNominalFreqMHz(int measured)
{
    static constexpr int nominals[] = {60,   66,   75,   90,   100,  120,  133,  150,  166,  185,
                                       200,  220,  240,  266,  300,  333,  400,  450,  500,  530,
                                       550,  600,  800,  1000, 1400, 1700, 1800, 1900, 2000, 2200,
                                       2260, 2400, 2500, 2530, 2600, 2660, 2800, 3060};
    int nearest = nominals[0];
    for (int nominal : nominals)
        if (std::abs(nominal - measured) < std::abs(nearest - measured)) nearest = nominal;
    return std::abs(nearest - measured) * 100LL < nearest * 3LL ? nearest : measured;
}

int qkCpuTicker::getFreq()
{
    if (m_freqMHz == 0) m_freqMHz = estimateCpuFreqMHz<qkTscClock>([] { return std::time(nullptr); });
    return m_freqMHz;
}
