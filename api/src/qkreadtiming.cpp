// The common data of a session: timing method, accuracy, common parameters and the placement of test data.
#include "qkreadtiming.h"

#include "qkmem.h"
#include "qksession.h"
#include "qktool.h"

template <class T>
static T readValue(const char* name, T value)
{
    qkDefault<T> parm(value, name, "");
    parm.fromIStream(g_istrm);
    return parm.value();
}

// A value of `preset`, which has a method of its own, is the default only if that is the chosen method.
static void readMethodParameters(int method, const qkTool& preset)
{
    if (method == qkTool::Manual) {
        int loops = 10;
        preset.getMethodLoop(loops);
        g_tool.setMethodLoop(readValue("NumLoops", loops));
    } else if (method == qkTool::Statistic) {
        int calls = 3;
        long long clocks = 10000;
        preset.getMethodStat(calls, clocks);
        calls = readValue("NumCalls", calls);
        clocks = readValue("TotalCpuClocks", clocks);
        g_tool.setMethodStat(calls, clocks);
    } else if (method == qkTool::Iterative) {
        int start, stop;
        long long clocks;
        qkTool::getAutoParameters(start, stop, clocks);
        preset.getMethodBest(start, stop, clocks);
        start = readValue("StartNumLoops", start);
        stop = readValue("StopNumLoops", stop);
        clocks = readValue("MinCpuClocks", clocks);
        g_tool.setMethodBest(start, stop, clocks);
    } else {
        g_tool.setMethodAuto();
    }
}

// Whether the user is asked for what comes next; then its title is shown.
bool qkSession::readTitle(const char* title, int askBit)
{
    const bool ask = m_askMode & askBit;
    g_istrm.setIStream(ask ? &c_in : nullptr);
    if (ask) g_ostrm << ERR << getEnterTitle(title) << END_MSG;
    return ask;
}

bool qkSession::readTimingMethod()
{
    qkTool preset;
    if (initTimingMethod)
        initTimingMethod(preset);
    else
        preset.setMethodAuto();

    const bool asked = readTitle("Specify timing method, please", 1);
    qkMapDefault<int> method(preset.m_method, "Method", "");
    method[qkTool::Auto] = "Auto";
    method[qkTool::Manual] = "Manual";
    method[qkTool::Statistic] = "Statistic";
    method[qkTool::Iterative] = "Iterative";
    method.fromIStream(g_istrm);
    readMethodParameters(method.value(), preset);
    readAccuracy(method.value());
    return asked;
}

// In percent. 0 and anything above 50 switch the test of the accuracy off.
void qkSession::readAccuracy(int method)
{
    if (method == qkTool::Manual || method == qkTool::Statistic) return;
    qkDefault<int> percent(method == qkTool::Auto || method == qkTool::Iterative ? 5 : 100, "Accuracy",
                           "Accuracy, %");
    percent.fromIStream(g_istrm);
    double accuracy = percent.value() * 0.01;
    if (accuracy < 0.01) accuracy = 10.0;
    if (accuracy > 0.5) accuracy = 500.0;
    g_tool.m_accuracy = accuracy;
}

bool qkSession::readTestParameters()
{
    const bool asked = readTitle("Specify common parameters, please", 2);
    if (!g_pParmList) return asked;
    for (qkParameter* parm : *g_pParmList) parm->fromIStream(g_istrm);
    return asked;
}

bool qkSession::readDataOffset()
{
    const bool asked = readTitle("Specify vectors alignment, please", 4);
    qkMapDefault<bool> byByte(false, "AlignVectorsBy", "");
    byByte[true] = "byte";
    byByte[false] = "element";
    byByte.fromIStream(g_istrm);
    qkSetAlignByByte(byByte.value());

    DefaultAlign align(0, "VectorAlign",
                       byByte.value() ? "VectorAlign by Byte, 0..63" : "VectorAlign by Element, 0..63");
    align.fromIStream(g_istrm);
    qkSetVectorAlign(align.value());

    if (align.value() == 0) {
        // Aligned vectors lie at a fixed distance: nobody is asked for it.
        const DefaultShift shift(512, "MutualVectorShift", "MutualVectorShift in Bytes, divisible by 64");
        qkSetVectorShift(shift.value());
    } else {
        qkMapDefault<bool> firstOnly(true, "MisalignFirstVectorOnly", "");
        firstOnly[true] = "yes";
        firstOnly[false] = "no";
        firstOnly.fromIStream(g_istrm);
        qkSetAlignSrc(firstOnly.value());
    }
    return asked;
}
