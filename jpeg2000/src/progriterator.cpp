#include "progriterator.h"

#include <numeric>

namespace jpeg2000 {

namespace {

void copyArray(const FixedArray<JP2ProgrRange>& from, FixedArray<JP2ProgrRange>& to)
{
    to.ReAlloc(from.size);
    Copy(from, to, from.size);
}

} // namespace

void JP2TileProgrIterator::InitAttachStartProgrRangeTilePart0(
    const Rect& tileRect, const RectSize* sampling, const JP2CodingStyleJoint& codingStyleJoint,
    const JP2CodingStyleComp* const* codingStyles, unsigned componentCount,
    const FixedArray<JP2ProgrRange>& progressionChanges, DecodingBudget* stepBudget)
{
    budget = stepBudget;
    samplingFactors = sampling;
    styles = codingStyles;
    nOfComponents = componentCount;
    x0 = tileRect.x;
    y0 = tileRect.y;
    x1 = x0 + tileRect.width;
    y1 = y0 + tileRect.height;
    xStepOfAll = yStepOfAll = 0;
    nOfResolutions = 0;
    for (unsigned c = 0; c < nOfComponents; c++)
        nOfResolutions = Max(nOfResolutions, styles[c]->nOfLevels + 1);

    precinctLayers.ReAlloc(nOfResolutions, nOfComponents);
    for (unsigned c = 0; c < nOfComponents; c++)
        for (unsigned r = 0; r <= styles[c]->nOfLevels; r++) {
            const auto count = [](const Axis& axis, uint64_t end) {
                const uint64_t first = axis.corner(), behind = Axis::ceilDiv(end, axis.sampling << axis.nd);
                if (first == behind) return 0u;
                return static_cast<unsigned>(((behind - 1) >> axis.precinctExp) + 1 -
                                             (first >> axis.precinctExp));
            };
            const unsigned columns = count(xAxis(c, r), x1), rows = count(yAxis(c, r), y1);
            if (columns > 0 && rows > 0) countsOf(c, r).ReAlloc(columns, rows);
        }
    FindComponentsWithPrecincts();

    defaultRange.progression = codingStyleJoint.progression;
    defaultRange.resolutions = {0, nOfResolutions};
    defaultRange.components = {0, nOfComponents};
    const bool isEmpty = componentFrom(0, nOfResolutions) == nOfComponents;
    defaultRange.nOfLayers = isEmpty ? 0 : codingStyleJoint.nOfLayers;
    copyArray(progressionChanges, tilePart0List);
    list = &tilePart0List;
    listIndex = 0;
    isSaved = false;
    ClearPrecinctLayer();
    SetProgrRange(tilePart0List.size > 0 ? tilePart0List[0] : defaultRange);
    (*this)++;
}

void JP2TileProgrIterator::AttachChangeProgrRangeTilePartN(const FixedArray<JP2ProgrRange>& changes)
{
    if (changes.size == 0) {
        RestoreChangeProgrRangeTilePart0();
        return;
    }
    giveBackPacket();
    if (!isSaved) savedIndex = listIndex;
    isSaved = true;
    copyArray(changes, tilePartNList);
    list = &tilePartNList;
    listIndex = 0;
    SetProgrRange(tilePartNList[0]);
    (*this)++;
}

void JP2TileProgrIterator::RestoreChangeProgrRangeTilePart0()
{
    if (!isSaved) return; // tile part 0's list, or the default, is running
    giveBackPacket();
    isSaved = false;
    list = &tilePart0List;
    listIndex = savedIndex;
    if (listIndex < list->size)
        SetProgrRange((*list)[listIndex]);
    else
        RestoreProgrRangeDefault();
    (*this)++;
}

void JP2TileProgrIterator::RestoreProgrRangeDefault()
{
    listIndex = list->size;
    SetProgrRange(defaultRange);
}

void JP2TileProgrIterator::SetProgrRange(const JP2ProgrRange& range)
{
    progression = range.progression;
    resStart = range.resolutions.origin;
    resEnd = Min(range.resolutions.end, nOfResolutions);
    compStart = Min(range.components.origin, nOfComponents);
    compEnd = Min(range.components.end, nOfComponents);
    nOfLayers = Min(range.nOfLayers, defaultRange.nOfLayers);
    isFirstStep = true;
}

// False when the default range, the last one, was running.
bool JP2TileProgrIterator::SetNextProgrRange()
{
    if (listIndex >= list->size) return false;
    if (++listIndex < list->size)
        SetProgrRange((*list)[listIndex]);
    else
        SetProgrRange(defaultRange);
    return true;
}

void JP2TileProgrIterator::operator++(int)
{
    do {
        isValid = nOfLayers > 0 && Step();
    } while (!isValid && SetNextProgrRange());
}

bool JP2TileProgrIterator::Step()
{
    if (isFirstStep) {
        layer = 0;
        resolution = resStart;
        component = compStart;
        precinctColumn = precinctRow = 0;
        x = x0;
        y = y0;
        isFirstStep = false;
        if (progression == 2 || progression == 3)
            OptimizeStepAll();
        else if (progression > 3 && component < compEnd)
            OptimizeStepPerComponent(component);
    }
    switch (progression) {
    case 0: return StepLRCP();
    case 1: return StepRLCP();
    case 2: return StepRPCL();
    case 3: return StepPCRL();
    default: return StepCPRL();
    }
}

// Each nest below goes on where the last packet left it: that packet was counted, so it is passed over.

bool JP2TileProgrIterator::StepLRCP()
{
    for (; layer < nOfLayers; layer++, resolution = resStart)
        for (; resolution < resEnd; resolution++, component = compStart)
            for (; skipToPrecincts(resolution); component++, precinctRow = 0)
                for (; precinctRow < countsOf(component, resolution).height;
                     precinctRow++, precinctColumn = 0)
                    for (; precinctColumn < countsOf(component, resolution).width; precinctColumn++)
                        if (takePacket()) return true;
    return false;
}

bool JP2TileProgrIterator::StepRLCP()
{
    for (; resolution < resEnd; resolution++, layer = 0)
        for (; layer < nOfLayers; layer++, component = compStart)
            for (; skipToPrecincts(resolution); component++, precinctRow = 0)
                for (; precinctRow < countsOf(component, resolution).height;
                     precinctRow++, precinctColumn = 0)
                    for (; precinctColumn < countsOf(component, resolution).width; precinctColumn++)
                        if (takePacket()) return true;
    return false;
}

bool JP2TileProgrIterator::StepRPCL()
{
    for (; resolution < resEnd; resolution++, y = y0) {
        const Scope scope{resolution, resolution + 1, compStart, compEnd};
        for (; y < y1; y = nextY(scope), x = x0)
            for (; x < x1; x = nextX(scope), component = compStart)
                for (; skipToPrecincts(resolution); component++, layer = 0) {
                    if (!DoPrecinctChange()) continue;
                    for (; layer < nOfLayers; layer++)
                        if (takePacket()) return true;
                }
    }
    return false;
}

bool JP2TileProgrIterator::StepPCRL()
{
    const Scope scope{resStart, resEnd, compStart, compEnd};
    for (; y < y1; y = nextY(scope), x = x0)
        for (; x < x1; x = nextX(scope), component = compStart)
            for (; skipToPrecincts(nOfResolutions); component++, resolution = resStart)
                for (; resolution < resEnd; resolution++, layer = 0) {
                    if (!DoPrecinctChange()) continue;
                    for (; layer < nOfLayers; layer++)
                        if (takePacket()) return true;
                }
    return false;
}

bool JP2TileProgrIterator::StepCPRL()
{
    while (component < compEnd) {
        const Scope scope{resStart, resEnd, component, component + 1};
        for (; y < y1; y = nextY(scope), x = x0)
            for (; x < x1; x = nextX(scope), resolution = resStart)
                for (; resolution < resEnd; resolution++, layer = 0) {
                    if (!DoPrecinctChange()) continue;
                    for (; layer < nOfLayers; layer++)
                        if (takePacket()) return true;
                }
        y = y0;
        if (++component < compEnd) OptimizeStepPerComponent(component);
    }
    return false;
}

bool JP2TileProgrIterator::takePacket()
{
    uint32_t& walked = countsOf(component, resolution)[precinctRow][precinctColumn];
    if (layer < walked) {
        takeSteps(1);
        return false;
    }
    walked++;
    return true;
}

// The current packet has not been read: another order may come to it later.
void JP2TileProgrIterator::giveBackPacket()
{
    if (isValid) countsOf(component, resolution)[precinctRow][precinctColumn]--;
}

void JP2TileProgrIterator::ClearPrecinctLayer()
{
    for (unsigned c = 0; c < nOfComponents; c++)
        for (unsigned r = 0; r < nOfResolutions; r++) {
            LayerCounts& counts = countsOf(c, r);
            Zero<uint32_t>(counts.data, counts.width * counts.height);
        }
}

void JP2TileProgrIterator::FindComponentsWithPrecincts()
{
    nextComponent.ReAlloc(nOfComponents + 1, nOfResolutions + 1);
    for (unsigned r = 0; r <= nOfResolutions; r++) nextComponent[r][nOfComponents] = nOfComponents;
    for (unsigned c = nOfComponents; c-- > 0;) {
        unsigned& ofAny = nextComponent[nOfResolutions][c];
        ofAny = nextComponent[nOfResolutions][c + 1];
        for (unsigned r = 0; r < nOfResolutions; r++) {
            nextComponent[r][c] = hasPrecincts(c, r) ? c : nextComponent[r][c + 1];
            if (hasPrecincts(c, r)) ofAny = c;
        }
    }
}

// Passes over components without precincts at the resolution (nOfResolutions stands for any); false at the
// range's end.
bool JP2TileProgrIterator::skipToPrecincts(unsigned r)
{
    takeSteps(1);
    component = componentFrom(component, r);
    return component < compEnd;
}

// Positions are multiples of what all periods have in common. It is the same for every range, and a POC has
// thousands of them: so it is looked for once.
void JP2TileProgrIterator::OptimizeStepAll()
{
    if (xStepOfAll == 0) {
        xStep = yStep = 0;
        for (unsigned c = 0; c < nOfComponents; c++) MinimizeStepPerComponent(c);
        xStepOfAll = xStep;
        yStepOfAll = yStep;
    }
    xStep = xStepOfAll;
    yStep = yStepOfAll;
}

void JP2TileProgrIterator::OptimizeStepPerComponent(unsigned c)
{
    xStep = yStep = 0;
    MinimizeStepPerComponent(c);
}

void JP2TileProgrIterator::MinimizeStepPerComponent(unsigned c)
{
    takeSteps(stepsPerPosition * (styles[c]->nOfLevels + 1));
    for (unsigned r = 0; r <= styles[c]->nOfLevels; r++) {
        xStep = std::gcd(xStep, xAxis(c, r).period());
        yStep = std::gcd(yStep, yAxis(c, r).period());
    }
}

// On success the precinct indices are those of the position.
bool JP2TileProgrIterator::DoPrecinctChange()
{
    takeSteps(1);
    if (!hasPrecincts(component, resolution)) return false;
    takeSteps(stepsPerPosition);
    const Axis xs = xAxis(component, resolution), ys = yAxis(component, resolution);
    if (!xs.isOpenedAt(x, modulusOf(xs)) || !ys.isOpenedAt(y, modulusOf(ys))) return false;
    precinctColumn = static_cast<unsigned>(xs.index(x) - xs.index(x0));
    precinctRow = static_cast<unsigned>(ys.index(y) - ys.index(y0));
    // A position behind the last sample of a sub-sampled component opens nothing.
    const LayerCounts& counts = countsOf(component, resolution);
    return precinctColumn < counts.width && precinctRow < counts.height;
}

// RPCL and PCRL look at a position without the sampling factor: at precincts of one sample, and at factors
// that are no power of two, they open sub-sampled precincts early.
uint64_t JP2TileProgrIterator::modulusOf(const Axis& axis) const
{
    return progression > 3 ? axis.period() : 1ull << (axis.nd + axis.precinctExp);
}

bool JP2TileProgrIterator::Axis::isOpenedAt(uint64_t position, uint64_t modulus) const
{
    const bool startsInside = (corner() << nd) % (1ull << (nd + precinctExp)) != 0;
    return (position == start && startsInside) || position % modulus == 0;
}

uint64_t JP2TileProgrIterator::Axis::nextOpening(uint64_t position, uint64_t modulus, uint64_t step,
                                                 uint64_t end) const
{
    const uint64_t unit = sampling << nd, raster = std::lcm(step, modulus);
    // The first position behind the start that opens precinct number `precinct` of the grid.
    const auto firstOf = [&](uint64_t precinct) {
        const uint64_t firstCell = precinct << precinctExp;
        if (firstCell > ceilDiv(end, unit)) return end;
        const uint64_t behind = firstCell == 0 ? start : Max(start, (firstCell - 1) * unit);
        return Min(end, (behind / raster + 1) * raster);
    };
    const uint64_t own = firstOf(index(position));
    return own > position ? own : firstOf(index(position) + 1);
}

JP2TileProgrIterator::Axis JP2TileProgrIterator::xAxis(unsigned c, unsigned r) const
{
    return {samplingFactors[c].width, styles[c]->nOfLevels - r, styles[c]->precinctSizeExp[r].width, x0};
}

JP2TileProgrIterator::Axis JP2TileProgrIterator::yAxis(unsigned c, unsigned r) const
{
    return {samplingFactors[c].height, styles[c]->nOfLevels - r, styles[c]->precinctSizeExp[r].height, y0};
}

bool JP2TileProgrIterator::hasPrecincts(unsigned c, unsigned r) const
{
    return precinctLayers[c][r].width > 0;
}

// Positions between openings have nothing that was not walked before: they are jumped over.

uint64_t JP2TileProgrIterator::nextX(const Scope& scope) const
{
    uint64_t next = x1;
    forEachIn(scope, [&](unsigned c, unsigned r) {
        const Axis xs = xAxis(c, r), ys = yAxis(c, r);
        if (ys.isOpenedAt(y, modulusOf(ys))) next = Min(next, xs.nextOpening(x, modulusOf(xs), xStep, x1));
    });
    return next;
}

uint64_t JP2TileProgrIterator::nextY(const Scope& scope) const
{
    uint64_t next = y1;
    forEachIn(scope, [&](unsigned c, unsigned r) {
        const Axis ys = yAxis(c, r);
        next = Min(next, ys.nextOpening(y, modulusOf(ys), yStep, y1));
    });
    return next;
}

} // namespace jpeg2000
