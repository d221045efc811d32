// Walks the packets of a tile in the order in which the codestream has them (ITU-T T.800, B.12).
#ifndef JPEG2000_PROGRITERATOR_H
#define JPEG2000_PROGRITERATOR_H

#include "codingstyle.h"
#include "decodingbudget.h"

#include <cstdint>

namespace jpeg2000 {

class JP2TileProgrIterator {
public:
    // False once all packets were walked.
    bool isValid = false;

    // Stands on the first packet afterwards. Sampling factors and styles are by component and stay the
    // caller's. The caller has made sure that the tile has a bearable number of precincts; the budget, if
    // any, bounds the walks over them that find no packet.
    void InitAttachStartProgrRangeTilePart0(const Rect& tileRect, const RectSize* sampling,
                                            const JP2CodingStyleJoint& codingStyleJoint,
                                            const JP2CodingStyleComp* const* codingStyles,
                                            unsigned componentCount,
                                            const FixedArray<JP2ProgrRange>& progressionChanges,
                                            DecodingBudget* stepBudget = nullptr);

    // The list of a later tile part runs from its start; an empty one brings back that of tile part 0.
    void AttachChangeProgrRangeTilePartN(const FixedArray<JP2ProgrRange>& changes);
    void RestoreChangeProgrRangeTilePart0();
    void RestoreProgrRangeDefault();

    void operator++(int);

    // The current packet.
    unsigned Layer() const { return layer; }
    unsigned Resolution() const { return resolution; }
    unsigned Component() const { return component; }
    unsigned PrecinctColumn() const { return precinctColumn; }
    unsigned PrecinctRow() const { return precinctRow; }

private:
    using LayerCounts = FixedArray2D<uint32_t>; // by precinct row and column: the layers already walked

    // One axis of the precincts of a component's resolution.
    struct Axis {
        uint64_t sampling;        // XRsiz or YRsiz
        unsigned nd, precinctExp; // levels above the resolution; PPx or PPy
        uint64_t start;           // the tile's first position on the reference grid

        uint64_t corner() const { return ceilDiv(start, sampling << nd); }
        uint64_t period() const { return sampling << (nd + precinctExp); }
        // Which precinct a position belongs to, counted from the grid's origin.
        uint64_t index(uint64_t position) const { return ceilDiv(position, sampling << nd) >> precinctExp; }
        // Whether a precinct begins at the position; the modulus tells the form of the test.
        bool isOpenedAt(uint64_t position, uint64_t modulus) const;
        // The next position behind `position` that may open a precinct not yet walked; `end` if there is
        // none.
        uint64_t nextOpening(uint64_t position, uint64_t modulus, uint64_t step, uint64_t end) const;

        static uint64_t ceilDiv(uint64_t a, uint64_t b) { return (a + b - 1) / b; }
    };
    // The components and resolutions that a position may open precincts of.
    struct Scope {
        unsigned resBegin, resEnd, compBegin, compEnd;
    };

    bool Step();
    bool StepLRCP();
    bool StepRLCP();
    bool StepRPCL();
    bool StepPCRL();
    bool StepCPRL();

    void SetProgrRange(const JP2ProgrRange& range);
    bool SetNextProgrRange();
    void OptimizeStepAll();
    void OptimizeStepPerComponent(unsigned c);
    void MinimizeStepPerComponent(unsigned c);
    void ClearPrecinctLayer();
    void FindComponentsWithPrecincts();
    bool skipToPrecincts(unsigned r);

    bool DoPrecinctChange();
    // A look at a position for a component's resolution has some divisions.
    static constexpr unsigned stepsPerPosition = 16;
    void takeSteps(unsigned steps) const
    {
        if (budget) budget->TakeSteps(steps);
    }
    bool takePacket();
    void giveBackPacket();

    Axis xAxis(unsigned c, unsigned r) const;
    Axis yAxis(unsigned c, unsigned r) const;
    uint64_t modulusOf(const Axis& axis) const;
    uint64_t nextX(const Scope& scope) const;
    uint64_t nextY(const Scope& scope) const;
    LayerCounts& countsOf(unsigned c, unsigned r) { return precinctLayers[c][r]; }
    bool hasPrecincts(unsigned c, unsigned r) const;
    // The first component from c on with precincts at a resolution; at any, where r is nOfResolutions.
    unsigned componentFrom(unsigned c, unsigned r) const { return nextComponent[r][c]; }
    template <class F>
    void forEachIn(const Scope& scope, F f) const
    {
        for (unsigned r = scope.resBegin; r < scope.resEnd; r++)
            for (unsigned c = scope.compBegin; (c = componentFrom(c, r)) < scope.compEnd; c++) {
                takeSteps(stepsPerPosition);
                f(c, r);
            }
    }

    const JP2CodingStyleComp* const* styles = nullptr;
    const RectSize* samplingFactors = nullptr;
    DecodingBudget* budget = nullptr;
    unsigned progression = 0;
    unsigned layer = 0, nOfLayers = 0;
    unsigned nOfComponents = 0, nOfResolutions = 0; // the most resolutions of any component
    unsigned resolution = 0, resStart = 0, resEnd = 0;
    unsigned component = 0, compStart = 0, compEnd = 0;
    bool isFirstStep = true;
    unsigned precinctColumn = 0, precinctRow = 0;
    uint64_t x = 0, x0 = 0, x1 = 0, xStep = 0;
    uint64_t y = 0, y0 = 0, y1 = 0, yStep = 0;
    uint64_t xStepOfAll = 0, yStepOfAll = 0;  // of all components; 0 while they are not known
    FixedArray2D<LayerCounts> precinctLayers; // [component][resolution]
    // [resolution][component]: a walk costs what its precincts cost, however many components have none.
    FixedArray2D<unsigned> nextComponent;

    // Ranges run one after another, the default one last: index == list->size stands for it.
    JP2ProgrRange defaultRange;
    FixedArray<JP2ProgrRange> tilePart0List, tilePartNList;
    FixedArray<JP2ProgrRange>* list = nullptr;
    unsigned listIndex = 0;
    bool isSaved = false; // a tile part's own list runs; savedIndex is the place in tilePart0List
    unsigned savedIndex = 0;
};

} // namespace jpeg2000

#endif
