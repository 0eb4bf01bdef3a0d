#include "solver/skyline_factor.h"

#include "core/stop.h"
#include "solver/skyline_panel.h"

#include <algorithm>
#include <memory>
#include <new>

namespace zurt {

namespace {

// A panel of more rows than this is left to the plain loops: the scratch ends at 128 MB.
constexpr Word kMostPanelRows = 1 << 20;

// Reduces column n by the finished columns before it, then divides it and forms its diagonal. False when one of them will
// not be finished.
bool FinishColumn(SkylinePanel& panel, Word n) {
    double* store = panel.store;
    const std::int32_t* pointers = panel.pointers;
    double* column = store + (pointers[n] - 1);
    const Word height = pointers[n + 1] - pointers[n] - 1;
    for (Word i = height - 1; i >= 1; --i) {
        const Word K = n - i;
        if (!AwaitColumn(panel, K))
            return false;
        const double* other = store + (pointers[K] - 1);
        const Word count = std::min<Word>(height - i, pointers[K + 1] - pointers[K] - 1);
        if (count <= 0)
            continue;
        double sum = 0.0;
        for (Word l = 1; l <= count; ++l)
            sum += other[l] * column[i + l];
        column[i] -= sum;
    }
    if (n > 0 && !AwaitColumn(panel, n - 1))
        return false;
    if (height <= 0)
        return true;
    double sum = 0.0;
    for (Word i = 1; i <= height; ++i) {
        const double quotient = column[i] / store[pointers[n - i] - 1];
        sum += quotient * column[i];
        column[i] = quotient;
    }
    column[0] -= sum;
    return true;
}

// Processor cycles, as measured on cubes and on ragged columns: a step of a panel's sums for all lanes where
// every lane has entries, the same where some lanes are masked out, the start of a panel's row, a step of the
// sum of one column alone, and the start of that sum.
struct StepCosts {
    double whole;
    double masked;
    double row = 60.0;
    double single = 2.2;
    double singleStart = 15.0;
};

StepCosts CostsOf(InstructionSet instructions) {
    switch (instructions) {
    case InstructionSet::Avx512:
        return {3.0, 5.0};
    case InstructionSet::Avx2:
        return {4.0, 8.0};
    default:
        return {9.0, 27.0};
    }
}

// What a panel costs in cycles, and whether that is less than its columns cost one by one; columns of very different
// heights leave lanes idle.
struct PanelCost {
    double cycles;
    bool pays;
};

PanelCost CostOf(const SkylinePanel& panel, const StepCosts& cost) {
    const Word rows = panel.first + panel.columns - panel.top;
    const double steps = 0.5 * static_cast<double>(rows * rows);
    const Word wholeRows = panel.first + panel.columns - panel.allTop;
    const double wholeSteps = 0.5 * static_cast<double>(wholeRows * wholeRows);
    double single = 0.0;
    for (Word lane = 0; lane < panel.columns; ++lane) {
        const double height = static_cast<double>(panel.first + lane - panel.laneTop[lane]);
        single += height * (0.5 * height * cost.single + cost.singleStart);
    }
    const double together =
        wholeSteps * cost.whole + (steps - wholeSteps) * cost.masked + static_cast<double>(rows) * cost.row;
    const bool pays = rows <= kMostPanelRows && together < single;
    return {pays ? together : single, pays};
}

// The rows of scratch that the largest panel of the layout takes, 0 when no panel pays; and the cycles of all panels.
struct Estimate {
    Word rows = 0;
    double cycles = 0.0;
};

Estimate EstimateOf(SkylinePanel& panel, Word NN, const StepCosts& cost) {
    Estimate estimate;
    for (panel.first = 0; panel.first < NN; panel.first += kPanelLanes) {
        panel.columns = std::min(kPanelLanes, NN - panel.first);
        PlacePanel(panel);
        const PanelCost own = CostOf(panel, cost);
        estimate.cycles += own.cycles;
        if (own.pays)
            estimate.rows = std::max(estimate.rows, panel.bottom - panel.top + 1);
    }
    return estimate;
}

// Below this mean of cycles a panel is done before another worker has seen the one ahead of it.
constexpr double kCyclesWorthSharing = 10000.0;

bool WorthSharing(const Estimate& estimate, Word NN) {
    return estimate.cycles * kPanelLanes > kCyclesWorthSharing * static_cast<double>(NN);
}

Word NextPanel(const SkylinePanel& panel) {
    return panel.order == nullptr ? panel.first + kPanelLanes : panel.order->next.fetch_add(kPanelLanes);
}

// The columns of a panel one after the other; returns as FactorPanel does.
Word FinishColumns(SkylinePanel& panel) {
    for (Word n = panel.first; n < panel.first + panel.columns; ++n) {
        if (!FinishColumn(panel, n))
            return kStopped;
        if (0.0 >= panel.store[panel.pointers[n] - 1])
            return n + 1;
        FinishedColumn(panel, n);
    }
    return 0;
}

// All panels, or those that fall to one worker. Without scratch every column goes alone.
template <int kWidth>
ZURT_INLINE Word FactorColumns(SkylinePanel& panel, Word NN, const StepCosts& cost, bool calling) {
    for (panel.first = NextPanel(panel); panel.first < NN; panel.first = NextPanel(panel)) {
        if (calling)
            StopIfInterrupted();
        panel.columns = std::min(kPanelLanes, NN - panel.first);
        bool pays = false;
        if (panel.reduced != nullptr) {
            PlacePanel(panel);
            pays = CostOf(panel, cost).pays;
        }
        const Word failed = pays ? FactorPanel<kWidth>(panel) : FinishColumns(panel);
        if (failed != 0)
            return failed;
    }
    return 0;
}

ZURT_KERNEL(Word, FactorCopy, FactorColumns,
            (SkylinePanel & panel, Word NN, const StepCosts& cost, bool calling), (panel, NN, cost, calling))

// Panels side by side; `scratch` has `rows` for each worker, or is null.
Word FactorSideBySide(const SkylinePanel& layout, PanelRow* scratch, Word rows, InstructionSet instructions,
                      Workers& workers) {
    PanelOrder order;
    order.workers = &workers;
    order.next = 0;
    order.failed = 0;
    const StepCosts cost = CostsOf(instructions);
    InTeam(workers, [&](int worker) {
        SkylinePanel panel = layout;
        panel.order = &order;
        panel.known = 0;
        panel.stride = kPanelLanes * workers.count;
        panel.reduced = scratch == nullptr ? nullptr : scratch + rows * worker;
        const Word failed = FactorCopy(instructions)(panel, layout.NN, cost, worker == 0);
        if (failed != 0 && failed != kStopped) {
            order.failed = failed;
            Reach(order.finished, kStopped);
        }
    });
    return order.failed;
}

} // namespace

Word FactorSkyline(RealArray SkylineMatrix, ConstIntArray MAXA, Word NN, InstructionSet instructions,
                   Workers& workers) {
    SkylinePanel panel = {};
    panel.store = SkylineMatrix.data;
    panel.pointers = MAXA.data;
    panel.NN = panel.known = NN;
    panel.stride = kPanelLanes;
    const StepCosts cost = CostsOf(instructions);
    const Estimate estimate = EstimateOf(panel, NN, cost);
    const bool shared = workers.count > 1 && WorthSharing(estimate, NN);
    const Word rows = estimate.rows * (shared ? workers.count : 1);
    std::unique_ptr<PanelRow[]> scratch;
    if (rows > 0)
        scratch.reset(new (std::nothrow) PanelRow[static_cast<std::size_t>(rows)]);
    if (shared)
        return FactorSideBySide(panel, scratch.get(), estimate.rows, instructions, workers);
    panel.reduced = scratch.get();
    panel.first = -kPanelLanes;
    return FactorCopy(instructions)(panel, NN, cost, true);
}

Word FactorSkyline(RealArray SkylineMatrix, ConstIntArray MAXA, Word NN) {
    Workers alone;
    return FactorSkyline(SkylineMatrix, MAXA, NN, WidestInstructionSet(), alone);
}

} // namespace zurt
