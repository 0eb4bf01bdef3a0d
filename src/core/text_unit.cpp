#include "core/text_unit.h"

#include "core/file_lock.h"
#include "core/ranks.h"
#include "core/stop.h"
#include "core/terminal_line.h"
#include "core/workers.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace zurt {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 18;

[[noreturn]] void StopOnWriteFailure(const TextUnit& unit) {
    StopWithLibraryError("can't write to " + unit.name + ": " + std::strerror(errno));
}

enum class OpenMode { Replace, New, Append, Behind };

int FlagsOf(OpenMode mode) {
    const bool appends = mode == OpenMode::Append || mode == OpenMode::Behind;
    return O_WRONLY | O_CLOEXEC | (mode == OpenMode::Behind ? 0 : O_CREAT) |
           (mode == OpenMode::New ? O_EXCL : 0) | (appends ? O_APPEND : 0);
}

[[noreturn]] void StopOnOpening(const TextUnit& unit, int reason) {
    if (reason == EEXIST)
        StopWithLibraryError(unit.name + " exists and is not overwritten (--force overwrites)");
    if (reason == EWOULDBLOCK)
        StopWithLibraryError("can't open " + unit.name + " for writing: another run is writing to it");
    StopWithLibraryError("can't open " + unit.name + " for writing: " + std::strerror(reason));
}

// True when another process has the file.
bool OpenElsewhere(TextUnit& unit) {
    unit.elsewhere = !IsFirstRank();
    return unit.elsewhere;
}

// The file is cut, to `length` unless that is below 0, only once this run has its lock.
void OpenForWriting(TextUnit& unit, OpenMode mode, std::int64_t length) {
    const char* const name = unit.awaitsPlace ? "/dev/null" : unit.name.c_str();
    const int descriptor = open(name, FlagsOf(mode), 0666);
    if (descriptor < 0)
        StopOnOpening(unit, errno);
    const bool locked = LockFile(descriptor);
    if (locked && length >= 0 && ftruncate(descriptor, length) != 0 && errno != EINVAL) { // EINVAL: a device
        const int reason = errno;
        close(descriptor);
        StopOnOpening(unit, reason);
    }
    if (locked)
        unit.file = fdopen(descriptor, (FlagsOf(mode) & O_APPEND) != 0 ? "a" : "w");
    if (unit.file == nullptr) {
        const int reason = locked ? errno : EWOULDBLOCK;
        close(descriptor);
        StopOnOpening(unit, reason);
    }
    // setvbuf takes a size only with a buffer. Units still open at the end of the process are written out from it.
    unit.buffer = static_cast<char*>(std::malloc(kBufferSize));
    if (unit.buffer != nullptr)
        std::setvbuf(unit.file, unit.buffer, _IOFBF, kBufferSize);
}

// The line without the blanks around it, if it holds a letter.
void KeepWords(TextUnit& unit, std::string_view record) {
    if (std::none_of(record.begin(), record.end(), [](unsigned char c) { return std::isalpha(c) != 0; }))
        return;
    const std::size_t first = record.find_first_not_of(' ');
    unit.words = record.substr(first, record.find_last_not_of(' ') + 1 - first);
    unit.awaitsWords = false;
}

void UncoverLine(TextUnit& unit) {
    EraseTerminalLine();
    unit.underLine = false;
}

} // namespace

void OpenTextUnit(TextUnit& unit, const std::string& name) {
    unit.name = name;
    if (OpenElsewhere(unit))
        return;
    if (unit.keepsOlder)
        OpenForWriting(unit, OpenMode::New, -1);
    else
        OpenForWriting(unit, OpenMode::Replace, 0);
    unit.keepsOlder = false; // what is there from now on is this run's own
}

void ReopenTextUnit(TextUnit& unit) {
    if (!OpenElsewhere(unit))
        OpenForWriting(unit, OpenMode::Append, -1);
}

void OpenTextUnitBehind(TextUnit& unit, std::int64_t length) {
    OpenForWriting(unit, OpenMode::Behind, length);
}

void AttachTextUnit(TextUnit& unit, std::FILE* stream, const std::string& name) {
    unit.name = name;
    if (!OpenElsewhere(unit))
        unit.file = stream;
}

void CloseTextUnit(TextUnit& unit) {
    const bool failed = unit.file != nullptr && std::fclose(unit.file) != 0;
    const int reason = errno;
    unit.file = nullptr;
    unit.elsewhere = false;
    std::free(unit.buffer);
    unit.buffer = nullptr;
    if (failed) {
        errno = reason;
        StopOnWriteFailure(unit);
    }
}

void FlushTextUnit(TextUnit& unit) {
    if (unit.file != nullptr && std::fflush(unit.file) != 0)
        StopOnWriteFailure(unit);
}

TextUnit& BeginMessage(TextUnit& unit) {
    if (unit.workers != nullptr && unit.workers->sideBySide)
        throw OutOfTurn{};
    unit.awaitsWords = true;
    unit.words.clear();
    unit.keepsMessage = unit.file == nullptr;
    return unit;
}

void PutRecord(TextUnit& unit, std::string_view record) {
    if (unit.awaitsWords)
        KeepWords(unit, record);
    if (unit.keepsMessage)
        unit.message.append(record).push_back('\n');
    if (unit.file == nullptr)
        return;
    if (unit.underLine)
        UncoverLine(unit);
    if (fwrite_unlocked(record.data(), 1, record.size(), unit.file) != record.size() ||
        putc_unlocked('\n', unit.file) == EOF)
        StopOnWriteFailure(unit);
}

void PutBytes(TextUnit& unit, std::string_view bytes) {
    if (unit.file == nullptr)
        return;
    if (unit.underLine)
        UncoverLine(unit);
    if (fwrite_unlocked(bytes.data(), 1, bytes.size(), unit.file) != bytes.size())
        StopOnWriteFailure(unit);
}

} // namespace zurt
