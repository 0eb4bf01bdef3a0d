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

void WrapStopIfInterrupted() __asm__("__wrap__ZN4zurt17StopIfInterruptedEv");
void WrapStopIfInterrupted() {
    TakeTicks(kTicksOfLoop);
}

void WrapWriteNote(const std::string& text) __asm__(
    "__wrap__ZN4zurt9WriteNoteERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
void WrapWriteNote(const std::string& /*text*/) {}

void RealPutRecord(zurt::TextUnit& unit, std::string_view record) __asm__(
    "__real__ZN4zurt9PutRecordERNS_8TextUnitESt17basic_string_viewIcSt11char_traitsIcEE");
void WrapPutRecord(zurt::TextUnit& unit, std::string_view record) __asm__(
    "__wrap__ZN4zurt9PutRecordERNS_8TextUnitESt17basic_string_viewIcSt11char_traitsIcEE");
void WrapPutRecord(zurt::TextUnit& unit, std::string_view record) {
    TakeTicks(kTicksOfRecord + static_cast<std::int64_t>(record.size()) / kBytesOfTick);
    RealPutRecord(unit, record);
}

void RealPutBytes(zurt::TextUnit& unit, std::string_view bytes) __asm__(
    "__real__ZN4zurt8PutBytesERNS_8TextUnitESt17basic_string_viewIcSt11char_traitsIcEE");
void WrapPutBytes(zurt::TextUnit& unit, std::string_view bytes) __asm__(
    "__wrap__ZN4zurt8PutBytesERNS_8TextUnitESt17basic_string_viewIcSt11char_traitsIcEE");
void WrapPutBytes(zurt::TextUnit& unit, std::string_view bytes) {
    TakeTicks(kTicksOfRecord + static_cast<std::int64_t>(bytes.size()) / kBytesOfTick);
    RealPutBytes(unit, bytes);
}

void RealForming(zurt::Run& run, zurt::ElementGroup& group) __asm__(
    "__real__ZN4zurt16FormElementGroupERNS_3RunERNS_12ElementGroupE");
void WrapForming(zurt::Run& run, zurt::ElementGroup& group) __asm__(
    "__wrap__ZN4zurt16FormElementGroupERNS_3RunERNS_12ElementGroupE");
void WrapForming(zurt::Run& run, zurt::ElementGroup& group) {
    RealForming(run, group);
    TakeTicks(kTicksOfElement * group.NET);
}

void RealResults(zurt::Run& run, zurt::ElementGroup& group) __asm__(
    "__real__ZN4zurt15AddGroupResultsERNS_3RunERNS_12ElementGroupE");
void WrapResults(zurt::Run& run, zurt::ElementGroup& group) __asm__(
    "__wrap__ZN4zurt15AddGroupResultsERNS_3RunERNS_12ElementGroupE");
void WrapResults(zurt::Run& run, zurt::ElementGroup& group) {
    RealResults(run, group);
    TakeTicks(kTicksOfElement * group.NET);
}

void RealSolver(DMUMPS_STRUC_C* instance) __asm__("__real_dmumps_c");
void WrapSolver(DMUMPS_STRUC_C* instance) __asm__("__wrap_dmumps_c");
void WrapSolver(DMUMPS_STRUC_C* instance) {
    TakeTicks(kTicksOfSolver);
    RealSolver(instance);
}

struct WholeStretch {
    WholeStretch() { mustGoOn = true; }
    ~WholeStretch() { mustGoOn = false; }
    WholeStretch(const WholeStretch&) = delete;
    WholeStretch& operator=(const WholeStretch&) = delete;
};

void RealSparse(zurt::SparseTree& tree, zurt::RealArray R, std::int32_t JEDN, std::int32_t reserved,
                zurt::TextUnit& console, zurt::TextUnit& listing,
                std::int32_t SolverReportFlag) __asm__("__real__ZN4zurt17SolveSparseSystemERNS_"
                                                       "10SparseTreeENS_9ArrayViewIdEEiiRNS_8TextUnitES5_i");
void WrapSparse(zurt::SparseTree& tree, zurt::RealArray R, std::int32_t JEDN, std::int32_t reserved,
                zurt::TextUnit& console, zurt::TextUnit& listing,
                std::int32_t SolverReportFlag) __asm__("__wrap__ZN4zurt17SolveSparseSystemERNS_"
                                                       "10SparseTreeENS_9ArrayViewIdEEiiRNS_8TextUnitES5_i");
void WrapSparse(zurt::SparseTree& tree, zurt::RealArray R, std::int32_t JEDN, std::int32_t reserved,
                zurt::TextUnit& console, zurt::TextUnit& listing, std::int32_t SolverReportFlag) {
    const WholeStretch whole;
    RealSparse(tree, R, JEDN, reserved, console, listing, SolverReportFlag);
}

} // namespace zurt_fuzz
