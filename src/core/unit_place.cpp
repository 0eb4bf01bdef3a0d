#include "core/unit_place.h"

#include "core/stop.h"
#include "core/word_sum.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zurt {

namespace {

// Rows of numbers: two runs whose results differ differ in the last of them.
constexpr std::int64_t kComparedBytes = 4096;

// Checksum of the last bytes ahead of `length`. False, with the reason in errno, when they can't be read.
bool SumLastBytes(const std::string& name, std::int64_t length, std::uint64_t& sum) {
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    char bytes[kComparedBytes];
    const std::int64_t count = std::min(length, kComparedBytes);
    std::int64_t taken = 0;
    errno = EIO;
    while (taken < count) {
        const ssize_t n =
            pread(file, bytes + taken, static_cast<std::size_t>(count - taken), length - count + taken);
        if (n <= 0)
            break;
        taken += n;
    }
    const int reason = errno;
    close(file);
    errno = reason;
    sum = AddToWordSum(kWordSumStart, bytes, static_cast<std::size_t>(taken));
    return taken == count;
}

} // namespace

bool TakePlace(const TextUnit& unit, UnitPlace& place) {
    place = {};
    if (unit.name.empty())
        return true;
    struct stat about = {};
    if (stat(unit.name.c_str(), &about) != 0)
        return false;
    place.length = S_ISREG(about.st_mode) ? about.st_size : kUnitNoPlainFile;
    if (place.length < 0)
        return true;
    return (unit.file == nullptr || fdatasync(fileno(unit.file)) == 0) &&
           SumLastBytes(unit.name, place.length, place.lastSum);
}

std::string FaultOfPlace(const std::string& name, const UnitPlace& place) {
    if (place.length < 0)
        return "";
    struct stat about = {};
    if (stat(name.c_str(), &about) != 0)
        return "can't open " + name + ": " + std::strerror(errno);
    if (about.st_size < place.length)
        return name + " has " + std::to_string(about.st_size) + " bytes, and had " +
               std::to_string(place.length) + " at the checkpoint";
    std::uint64_t sum = 0;
    if (!SumLastBytes(name, place.length, sum))
        return "can't read " + name + ": " + std::strerror(errno);
    if (sum != place.lastSum)
        return name + " is not what the run of the checkpoint wrote";
    return "";
}

void GoOnAtPlace(TextUnit& unit, const UnitPlace& place) {
    if (!unit.awaitsPlace)
        return;
    unit.awaitsPlace = false;
    if (place.length == kUnitNotOpened)
        return;
    if (const std::string fault = FaultOfPlace(unit.name, place); !fault.empty())
        StopWithLibraryError(fault);
    const bool writes = IsOpen(unit);
    CloseTextUnit(unit);
    OpenTextUnitBehind(unit, place.length);
    if (!writes)
        CloseTextUnit(unit);
}

} // namespace zurt
