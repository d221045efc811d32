#include "codeblock.h"

#if defined __AVX512F__

// Nothing is gained by AVX-512, and something lost where a compiler takes short loops for long ones.
namespace qov {

namespace v3 {
int encodeBlock(const EncodeCBJob* job, EncodeCBState* state);
}

namespace v4 {
extern const CodeBlockKernels codeBlockKernels = {v3::encodeBlock};
}

} // namespace qov

#else

#include "codeblock_passes.h"
#include "codeblock_rates.h"

namespace qov::QOV_LEVEL {
namespace {

enum Style { causal = 1, bypass = 2, terminateAll = 4, resetAlways = 8, segmentSymbols = 16 };
enum PassKind { significance, refinement, cleanup };

const int firstRawPass = 10; // the first pass of the fifth plane

PassKind kindOf(int pass)
{
    return PassKind((pass + 2) % 3);
}

// Does the pass leave its code open for the next one?
bool staysOpen(int pass, int passes, int style)
{
    if (pass == passes - 1 || style & terminateAll) return false;
    return !(style & bypass) || pass < firstRawPass - 1 || kindOf(pass) == significance;
}

// How much a pass lowers the squared error, for a decoder that takes the middle of what it does not know: up
// to the plane before, a sample was 0 or stood in the middle of 2^(plane + 1).
double errorFall(const PassSum& sum, PassKind kind, int plane)
{
    if (plane == 0) return double(sum.sum); // (1 - 0)^2 each
    const Qov64s half = Qov64s(1) << (plane - 1);
    const Qov64s step = kind == refinement ? half : 3 * half; // by which the decoder's value moves
    return double(step) * double(2 * sum.sum - sum.count * step);
}

// Cuts the samples into units and bit planes.
Block slice(const EncodeCBJob& job, EncodeCBState* state, Qov32u allBits, int topPlane)
{
    const int low = __builtin_ctz(allBits | Qov32u(1) << job.lastPlane);
    Block block;
    block.base = low;
    block.columns = (job.size.width + EncodeCBState::unitColumns - 1) / EncodeCBState::unitColumns;
    block.stripes = (job.size.height + EncodeCBState::unitRows - 1) / EncodeCBState::unitRows;
    block.pitch = block.columns + 1; // the border behind a stripe is the one before the next
    block.units = state->units + block.pitch + 1;
    block.stride = topPlane + 1 - low;
    block.planes = state->planes;
    block.subband = job.subband;
    block.causal = job.style & causal;
    memset(state->units, 0, sizeof *state->units * size_t(block.pitch * (block.stripes + 2) + 1));

    Qov64u* planes = block.planes;
    for (int stripe = 0; stripe < block.stripes; stripe++)
        for (int column = 0; column < block.columns; column++, planes += block.stride) {
            CodeBlockUnit* unit = block.units + stripe * block.pitch + column;
            unit->own = samplesOfUnit(job.size, column, stripe);
            const int x = column * EncodeCBState::unitColumns, y = stripe * EncodeCBState::unitRows;
            const int width = job.size.width - x < 8 ? job.size.width - x : 8;
            const int height = job.size.height - y < 4 ? job.size.height - y : 4;
            const UnitSamples samples(atByte(job.src + x, y * job.step), job.step, width, height);
            const Qov64u signs = sliceUnit(samples, low, topPlane, planes);
            spread<&CodeBlockUnit::signs>(unit, block.pitch, signs, true);
        }
    return block;
}

class Encoder {
public:
    Encoder(const EncodeCBJob& job, EncodeCBState* state, const Block& block, int topPlane)
        : m_job(job), m_state(state), m_block(block), m_topPlane(topPlane), m_first(state->bytes)
    {
        m_mq.contexts = m_contexts;
        resetContexts(m_contexts);
    }

    void run()
    {
        for (int pass = 0; pass < m_state->passes; m_state->segments++) {
            const bool raw = m_job.style & bypass && pass >= firstRawPass && kindOf(pass) != cleanup;
            pass = raw ? runSegment(m_raw, pass) : runSegment(m_mq, pass);
        }
        m_state->length = int(m_first - m_state->bytes);
    }

private:
    // Codes the passes of one segment, answers the one behind them.
    template <class Coder>
    int runSegment(Coder& coder, const int firstPass)
    {
        decltype(markOf(coder, m_first)) marks[EncodeCBState::mostPasses];
        coder.begin(m_first);
        int pass = firstPass;
        for (;; pass++) {
            if (m_job.style & resetAlways) resetContexts(m_contexts);
            const PassKind kind = kindOf(pass);
            const int plane = m_topPlane - (pass + 2) / 3;
            m_dist += errorFall(runPass(coder, kind, plane), kind, plane);
            m_state->dist[pass] = m_dist;
            if (!staysOpen(pass, m_state->passes, m_job.style)) break;
            marks[pass] = markOf(coder, m_first);
        }
        Qov8u* end = endSegment(coder, m_first, m_job.term);
        if (end == m_state->bytes) end += 2; // nothing but ones; they stand there as FF 7F

        const Qov8u* cut = m_first;
        if (firstPass == 0) cut += cut[0] == 0xFF ? 2 : 1; // the first pass has a byte at least
        for (int open = firstPass; open < pass; open++) {
            const Qov8u* next = withoutFF(marks[open].cut(end), m_first);
            if (next > cut) cut = next;
            m_state->rate[open] = int(cut - m_state->bytes);
        }
        m_state->rate[pass] = int(end - m_state->bytes);
        m_state->segmentLength[m_state->segments] = int(end - m_first);
        m_first = end;
        return pass + 1;
    }

    PassSum runPass(MqCoder& coder, PassKind kind, int plane)
    {
        switch (kind) {
        case significance: return codeSignificance(m_block, coder, plane);
        case refinement: return codeRefinement(m_block, coder, plane);
        default: return codeCleanup(m_block, coder, plane, m_job.style & segmentSymbols);
        }
    }
    PassSum runPass(RawCoder& coder, PassKind kind, int plane)
    {
        return kind == significance ? codeSignificance(m_block, coder, plane)
                                    : codeRefinement(m_block, coder, plane);
    }

    const EncodeCBJob& m_job;
    EncodeCBState* m_state;
    const Block& m_block;
    int m_topPlane;
    Qov8u* m_first; // of the segment
    double m_dist = 0;
    MqCoder m_mq;
    RawCoder m_raw;
    Qov32u m_contexts[contextCount];
};

} // namespace

int encodeBlock(const EncodeCBJob* job, EncodeCBState* state)
{
    const Qov32u allBits = magnitudeBits(job->src, job->step, job->size);
    const int bits = allBits ? 32 - __builtin_clz(allBits) : 0, coded = bits - job->lastPlane;
    state->passes = coded > 0 ? 3 * coded - 2 : 0;
    state->segments = state->length = state->given = 0;
    if (coded > 0) {
        const Block block = slice(*job, state, allBits, bits - 1);
        Encoder(*job, state, block, bits - 1).run();
    }
    return bits;
}

extern const CodeBlockKernels codeBlockKernels = {encodeBlock};

} // namespace qov::QOV_LEVEL

#endif
