#include "core/text_unit.h"

#include "core/stop.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace zurt {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 18;

[[noreturn]] void StopOnWriteFailure(const TextUnit& unit) {
    StopWithLibraryError("can't write to " + unit.name + ": " + std::strerror(errno));
}

void OpenForWriting(TextUnit& unit, const char* mode) {
    unit.file = std::fopen(unit.name.c_str(), mode);
    if (unit.file == nullptr && errno == EEXIST)
        StopWithLibraryError(unit.name + " exists and is not overwritten (--force overwrites)");
    if (unit.file == nullptr)
        StopWithLibraryError("can't open " + unit.name + " for writing: " + std::strerror(errno));
    // The library takes no size without a place. Units left open at the end of the process are written out from there.
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

} // namespace

void OpenTextUnit(TextUnit& unit, const std::string& name) {
    unit.name = name;
    OpenForWriting(unit, unit.keepsOlder ? "wx" : "w");
    unit.keepsOlder = false; // what is there from now on is this run's own
}

void ReopenTextUnit(TextUnit& unit) {
    OpenForWriting(unit, "a");
}

void AttachTextUnit(TextUnit& unit, std::FILE* stream, const std::string& name) {
    unit.name = name;
    unit.file = stream;
}

void CloseTextUnit(TextUnit& unit) {
    if (unit.file != nullptr && std::fclose(unit.file) != 0)
        StopOnWriteFailure(unit);
    unit.file = nullptr;
    std::free(unit.buffer);
    unit.buffer = nullptr;
}

void FlushTextUnit(TextUnit& unit) {
    if (unit.file != nullptr && std::fflush(unit.file) != 0)
        StopOnWriteFailure(unit);
}

TextUnit& BeginMessage(TextUnit& unit) {
    unit.awaitsWords = true;
    unit.words.clear();
    return unit;
}

void PutRecord(TextUnit& unit, std::string_view record) {
    if (unit.awaitsWords)
        KeepWords(unit, record);
    if (unit.file == nullptr)
        return;
    if (fwrite_unlocked(record.data(), 1, record.size(), unit.file) != record.size() ||
        putc_unlocked('\n', unit.file) == EOF)
        StopOnWriteFailure(unit);
}

void PutBytes(TextUnit& unit, std::string_view bytes) {
    if (unit.file == nullptr)
        return;
    if (fwrite_unlocked(bytes.data(), 1, bytes.size(), unit.file) != bytes.size())
        StopOnWriteFailure(unit);
}

} // namespace zurt
