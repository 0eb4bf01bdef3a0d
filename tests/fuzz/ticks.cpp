#include "fuzz/ticks.h"

#include "core/stop.h"
#include "core/text_unit.h"
#include "elements/element_phases.h"
#include "solver/sparse_tree.h"

#include <dmumps_c.h>

#include <string>
#include <string_view>

namespace zurt_fuzz {

namespace {

constexpr std::int64_t kTicksOfLoop = 2;
constexpr std::int64_t kTicksOfRecord = 1;
constexpr std::int64_t kBytesOfTick = 64;
constexpr std::int64_t kTicksOfElement = 2;
constexpr std::int64_t kTicksOfSolver = 200;

std::int64_t ticksLeft = 0;
bool mustGoOn = false; // what the sparse solver has taken would be lost by a stop

/// Counts, and stops the job when its budget is used up.
void TakeTicks(std::int64_t ticks) {
    ticksLeft -= ticks;
    if (ticksLeft < 0 && !mustGoOn)
        throw zurt::RunStop{zurt::StopKind::Interrupt, "", ""};
}

} // namespace

void AllowTicks(std::int64_t ticks) {
    ticksLeft = ticks;
}

std::int64_t TicksLeft() {
    return ticksLeft;
}

// The names that the linker looks for: __wrap_ takes the call, __real_ is the program's own.
#define ZURT_WRAPPED(result, name, parameters, symbol)                                                       \
    result Real##name parameters __asm__("__real_" symbol);                                                  \
    result Wrap##name parameters __asm__("__wrap_" symbol);                                                  \
    result Wrap##name parameters

ZURT_WRAPPED(void, StopIfInterrupted, (), "_ZN4zurt17StopIfInterruptedEv") {
    TakeTicks(kTicksOfLoop);
}

ZURT_WRAPPED(void, WriteNote, (const std::string& /*text*/),
             "_ZN4zurt9WriteNoteERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE") {}

ZURT_WRAPPED(void, PutRecord, (zurt::TextUnit & unit, std::string_view record),
             "_ZN4zurt9PutRecordERNS_8TextUnitESt17basic_string_viewIcSt11char_traitsIcEE") {
    TakeTicks(kTicksOfRecord + static_cast<std::int64_t>(record.size()) / kBytesOfTick);
    RealPutRecord(unit, record);
}

ZURT_WRAPPED(void, PutBytes, (zurt::TextUnit & unit, std::string_view bytes),
             "_ZN4zurt8PutBytesERNS_8TextUnitESt17basic_string_viewIcSt11char_traitsIcEE") {
    TakeTicks(kTicksOfRecord + static_cast<std::int64_t>(bytes.size()) / kBytesOfTick);
    RealPutBytes(unit, bytes);
}

ZURT_WRAPPED(void, Forming, (zurt::Run & run, const zurt::ElementGroup& group),
             "_ZN4zurt16FormElementGroupERNS_3RunERKNS_12ElementGroupE") {
    RealForming(run, group);
    TakeTicks(kTicksOfElement * group.NET);
}

ZURT_WRAPPED(void, Results, (zurt::Run & run, const zurt::ElementGroup& group),
             "_ZN4zurt15AddGroupResultsERNS_3RunERKNS_12ElementGroupE") {
    RealResults(run, group);
    TakeTicks(kTicksOfElement * group.NET);
}

ZURT_WRAPPED(void, Solver, (DMUMPS_STRUC_C * instance), "dmumps_c") {
    TakeTicks(kTicksOfSolver);
    RealSolver(instance);
}

ZURT_WRAPPED(void, Sparse,
             (zurt::SparseTree & tree, zurt::RealArray R, std::int32_t JEDN, std::int32_t reserved,
              zurt::TextUnit& console, zurt::TextUnit& listing, std::int32_t SolverReportFlag),
             "_ZN4zurt17SolveSparseSystemERNS_10SparseTreeENS_9ArrayViewIdEEiiRNS_8TextUnitES5_i") {
    const struct WholeStretch {
        WholeStretch() { mustGoOn = true; }
        ~WholeStretch() { mustGoOn = false; }
    } whole;
    RealSparse(tree, R, JEDN, reserved, console, listing, SolverReportFlag);
}

} // namespace zurt_fuzz
