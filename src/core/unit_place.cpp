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

// Checksum of the last bytes ahead of `length`; with `store` all bytes are brought to the disk first. False, with the reason in
// errno, when that or reading them fails.
bool SumLastBytes(const std::string& name, std::int64_t length, bool store, std::uint64_t& sum) {
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    const bool stored = !store || fdatasync(file) == 0;
    if (!stored)
        length = 0;
    char bytes[kComparedBytes];
    const std::int64_t count = std::min(length, kComparedBytes);
    std::int64_t taken = 0;
    if (stored)
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
    return stored && taken == count;
}

} // namespace

bool TakePlace(const std::string& name, UnitPlace& place) {
    place = {};
    struct stat about = {};
    if (stat(name.c_str(), &about) != 0)
        return false;
    UnitPlace taken;
    taken.length = S_ISREG(about.st_mode) ? about.st_size : kUnitNoPlainFile;
    if (taken.length >= 0 && !SumLastBytes(name, taken.length, true, taken.lastSum))
        return false;
    place = taken;
    return true;
}

bool TakePlace(const TextUnit& unit, UnitPlace& place) {
    place = {};
    return unit.name.empty() || TakePlace(unit.name, place);
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
    if (!SumLastBytes(name, place.length, false, sum))
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
