#include "jhuffrow.h"

#include "jhuffdec_block.h"
#include "jhuffenc_difference.h"
#include "jhuffrow_direct.h"

namespace qov::QOV_LEVEL {
namespace {

// As many differences of 31 bits as fit into one writing.
const int differencesAtOnce = 64;
static_assert(7 + differencesAtOnce * 31 <= mostBits);

template <int rows>
QovStatus codeRowsOf(const Qov16s* const* src, int width, Qov8u* dst, int dstLen, int* pos,
                     const HuffEncSpec* const* specs, HuffEncState* state)
{
    const int startPos = *pos;
    const Qov8u bits = state->bits, count = state->count;
    QovStatus status = qovStsNoErr;
    const int step = differencesAtOnce / rows;
    for (int start = 0; start < width && status == qovStsNoErr; start += step) {
        const int end = width - start < step ? width : start + step;
        status = intoBuffer(dst, dstLen, pos, state, [&](BitWriter& out) {
            for (int x = start; x < end; x++)
                for (int r = 0; r < rows; r++) putDifference(out, specs[r], src[r][x]);
        });
    }
    if (status == qovStsRange) { // nothing of the call is coded, as of the other coders
        *pos = startPos;
        state->bits = bits;
        state->count = count;
    }
    return status;
}

QovStatus codeRows(const Qov16s* const* src, int width, int rows, Qov8u* dst, int dstLen, int* pos,
                   const HuffEncSpec* const* specs, HuffEncState* state)
{
    switch (rows) {
    case 1: return codeRowsOf<1>(src, width, dst, dstLen, pos, specs, state);
    case 2: return codeRowsOf<2>(src, width, dst, dstLen, pos, specs, state);
    case 3: return codeRowsOf<3>(src, width, dst, dstLen, pos, specs, state);
    default: return codeRowsOf<4>(src, width, dst, dstLen, pos, specs, state);
    }
}

// Zeros from column x of row `row` on, in the order of decoding.
void clearFrom(Qov16s* const* dst, int width, int rows, int x, int row)
{
    for (int r = 0; r < rows; r++) {
        const int start = r < row ? x + 1 : x;
        memset(dst[r] + start, 0, size_t(width - start) * sizeof(Qov16s));
    }
}

QovStatus takeRows(const Qov8u* src, int srcLen, int* pos, Qov16s* const* dst, int width, int rows,
                   int* marker, const HuffDecSpec* const* specs, HuffDecState* state)
{
    BitReader in(src, srcLen, *pos, state, marker);
    bool valid = true;
    int x = 0, r = 0;
    while (!in.dry()) {
        if (in.count < 32) in.refill();
        int difference;
        valid = takeDifference(in, specs[r], maxCategory, difference);
        if (!valid || in.dry()) break;
        dst[r][x] = Qov16s(difference);
        if (++r < rows) continue;
        r = 0;
        if (++x == width) break;
    }
    clearFrom(dst, width, rows, x, r);
    if (in.dry()) return in.runDry(pos);
    in.keep(pos);
    return valid ? qovStsNoErr : qovStsData;
}

// Written aside, since there may be no room for more than the block's own bytes.
QovStatus codeBlock(const Qov16s* src, Qov8u* dst, int* bitPos, Qov16s* lastDC, const HuffEncSpec* dc,
                    const HuffEncSpec* ac)
{
    Qov8u* const start = dst + *bitPos / 8;
    const int used = *bitPos % 8;
    HuffEncState state;
    state.mark = HuffEncState::markValue;
    state.count = Qov8u(used);
    state.bits = used ? Qov8u(*start >> (8 - used)) : Qov8u(0);
    Qov8u aside[mostBytes];
    int length = 0;
    const QovStatus status = huffEncKernels.block(src, aside, mostBytes, &length, lastDC, dc, ac, &state);
    if (status != qovStsNoErr) return status;

    const Qov64s newPos = (*bitPos / 8 + Qov64s(length)) * 8 + state.count;
    if (newPos > INT_MAX) return qovStsDstFull;
    *bitPos = int(newPos);
    aside[length] = Qov8u(state.bits << (8 - state.count));
    memcpy(start, aside, size_t(length + (state.count > 0)));
    return qovStsNoErr;
}

QovStatus takeBlock(const Qov8u* src, int* bitPos, Qov16s* dst, Qov16s* lastDC, int* marker,
                    Qov32u* prefetched, int* prefetchedCount, const HuffDecSpec* dc, const HuffDecSpec* ac)
{
    clearBlock(dst);
    dst[0] = *lastDC;
    if (*prefetchedCount == 0 && *prefetched == behindMarker) return qovStsMarker;
    DirectReader in(src, *bitPos, *prefetched, *prefetchedCount, marker);
    int difference;
    QovStatus status = takeDirectDifference(in, dc, difference);
    if (status == qovStsNoErr) {
        dst[0] = Qov16s(*lastDC + difference);
        status = takeDirectCoefficients(in, ac, dst);
    }
    if (status == qovStsMarker) {
        clearBlock(dst);
        dst[0] = *lastDC;
        in.keepEnd(bitPos, prefetched, prefetchedCount);
        return status;
    }
    *lastDC = dst[0];
    in.keep(bitPos, prefetched, prefetchedCount);
    return status;
}

} // namespace

const HuffRowKernels huffRowKernels = {codeRows, takeRows, codeBlock, takeBlock};

} // namespace qov::QOV_LEVEL
