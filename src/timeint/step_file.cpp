#include "timeint/step_file.h"

#include "core/stop.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <string>
#include <unistd.h>

namespace zurt {

namespace {

constexpr double kIntegerTolerance = 1e-10;

[[noreturn]] void StopOnStepFile() {
    StopWithLibraryError(std::string("can't write to the step file: ") + std::strerror(errno));
}

// A sequential write ends the file behind its record: older records behind it are dropped.
void TruncateBehindPosition(std::FILE* unit) {
    if (std::fflush(unit) != 0 || ftruncate(fileno(unit), std::ftell(unit)) != 0)
        StopOnStepFile();
}

void WriteItems(std::FILE* unit, const void* items, std::size_t size, std::size_t count) {
    if (std::fwrite(items, size, count, unit) != count)
        StopOnStepFile();
}

void Rewind(std::FILE* unit) {
    if (std::fseek(unit, 0, SEEK_SET) != 0)
        StopOnStepFile();
}

} // namespace

void SaveStep(std::int32_t KOR, double TIME, ConstRealArray solution, std::int32_t NCZK, std::int32_t& NCZZ,
              std::FILE* unit) {
    if (unit == nullptr) // another process has it
        return;
    if (KOR == 1)
        Rewind(unit);
    // The record's length in bytes stands ahead of it and behind it, as unformatted sequential records have it.
    const std::int64_t length = 8 * (solution.length + 1);
    WriteItems(unit, &length, sizeof length, 1);
    WriteItems(unit, &TIME, sizeof TIME, 1);
    WriteItems(unit, solution.data, sizeof(double), static_cast<std::size_t>(solution.length));
    WriteItems(unit, &length, sizeof length, 1);
    TruncateBehindPosition(unit);
    if (NCZK == 0 || NCZZ != NCZK) {
        ++NCZZ;
        return;
    }
    const double x = static_cast<double>(KOR) / NCZK;
    if (std::fabs(x - std::trunc(x)) < kIntegerTolerance)
        Rewind(unit);
}

} // namespace zurt
