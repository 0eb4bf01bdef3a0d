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

// Reduces column n by the finished columns before it, then divides it and forms its diagonal. `store` and
// `pointers` are zero-based.
void FinishColumn(double* store, const std::int32_t* pointers, Word n) {
    double* column = store + (pointers[n] - 1);
    const Word height = pointers[n + 1] - pointers[n] - 1;
    for (Word i = height - 1; i >= 1; --i) {
        const Word K = n - i;
        const double* other = store + (pointers[K] - 1);
        const Word count = std::min<Word>(height - i, pointers[K + 1] - pointers[K] - 1);
        if (count <= 0)
            continue;
        double sum = 0.0;
        for (Word l = 1; l <= count; ++l)
            sum += other[l] * column[i + l];
        column[i] -= sum;
    }
    if (height <= 0)
        return;
    double sum = 0.0;
    for (Word i = 1; i <= height; ++i) {
        const double quotient = column[i] / store[pointers[n - i] - 1];
        sum += quotient * column[i];
        column[i] = quotient;
    }
    column[0] -= sum;
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

// Whether the panel takes less time than its columns one by one; columns of very different heights leave
// lanes idle.
bool PanelPays(const SkylinePanel& panel, const StepCosts& cost) {
    const Word rows = panel.first + panel.columns - panel.top;
    if (rows > kMostPanelRows)
        return false;
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
    return together < single;
}

// The rows of scratch that the largest panel of the layout takes; 0 when no panel pays.
Word ScratchRows(SkylinePanel& panel, Word NN, const StepCosts& cost) {
    Word rows = 0;
    for (panel.first = 0; panel.first < NN; panel.first += kPanelLanes) {
        panel.columns = std::min(kPanelLanes, NN - panel.first);
        PlacePanel(panel);
        if (PanelPays(panel, cost))
            rows = std::max(rows, panel.bottom - panel.top + 1);
    }
    return rows;
}

// All columns, panel by panel. Without scratch every column goes alone.
template <int kWidth> ZURT_INLINE Word FactorColumns(SkylinePanel& panel, Word NN, const StepCosts& cost) {
    for (panel.first = 0; panel.first < NN; panel.first += kPanelLanes) {
        StopIfInterrupted();
        panel.columns = std::min(kPanelLanes, NN - panel.first);
        if (panel.reduced != nullptr) {
            PlacePanel(panel);
            if (PanelPays(panel, cost)) {
                const Word failed = FactorPanel<kWidth>(panel);
                if (failed != 0)
                    return failed;
                continue;
            }
        }
        for (Word n = panel.first; n < panel.first + panel.columns; ++n) {
            FinishColumn(panel.store, panel.pointers, n);
            if (0.0 >= panel.store[panel.pointers[n] - 1])
                return n + 1;
        }
    }
    return 0;
}

ZURT_KERNEL(Word, FactorCopy, FactorColumns, (SkylinePanel & panel, Word NN, const StepCosts& cost),
            (panel, NN, cost))

} // namespace

Word FactorSkyline(RealArray SkylineMatrix, ConstIntArray MAXA, Word NN, InstructionSet instructions) {
    SkylinePanel panel = {};
    panel.store = SkylineMatrix.data;
    panel.pointers = MAXA.data;
    panel.NN = NN;
    const StepCosts cost = CostsOf(instructions);
    const Word rows = ScratchRows(panel, NN, cost);
    std::unique_ptr<PanelRow[]> scratch;
    if (rows > 0)
        scratch.reset(new (std::nothrow) PanelRow[static_cast<std::size_t>(rows)]);
    panel.reduced = scratch.get();
    return FactorCopy(instructions)(panel, NN, cost);
}

Word FactorSkyline(RealArray SkylineMatrix, ConstIntArray MAXA, Word NN) {
    return FactorSkyline(SkylineMatrix, MAXA, NN, WidestInstructionSet());
}

double SkylineFactorOperations(ConstIntArray MAXA, Word NN) {
    double operations = 0.0;
    for (Word n = 1; n <= NN; ++n) {
        const Word height = MAXA(n + 1) - MAXA(n) - 1;
        for (Word i = 1; i < height; ++i) {
            const Word count = std::min<Word>(height - i, MAXA(n - i + 1) - MAXA(n - i) - 1);
            if (count > 0)
                operations += 2.0 * static_cast<double>(count) + 1.0;
        }
        if (height > 0)
            operations += 3.0 * static_cast<double>(height) + 1.0;
    }
    return operations;
}

} // namespace zurt
