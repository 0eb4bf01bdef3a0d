#include "timeint/checkpoint_file.h"

#include "core/stop.h"
#include "core/word_sum.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zurt {

namespace {

struct Mark {
    char text[24] = "checkpoint of zurt\n";
    std::int32_t format = kCheckpointFormat;
    std::int32_t wordSize = sizeof(double); // in the byte order of the machine that wrote it
};

constexpr std::int64_t kSmallestFile = sizeof(Mark) + sizeof(std::uint64_t);
constexpr std::size_t kPieceWords = std::size_t{1} << 16;

[[noreturn]] void StopOnReading(const std::string& name, int reason) {
    StopWithLibraryError("can't read the checkpoint " + name + ": " + std::strerror(reason));
}

void ReadOrStop(std::FILE* file, const std::string& name, void* bytes, std::size_t size) {
    errno = EIO;
    if (std::fread(bytes, 1, size, file) != size)
        StopOnReading(name, errno);
}

void Require(bool good, const std::string& name, const char* fault) {
    if (!good)
        StopWithLibraryError(name + " " + fault);
}

// Reads the file to its end.
void RequireChecksum(std::FILE* file, const std::string& name, std::int64_t size) {
    std::vector<std::uint64_t> piece(kPieceWords);
    std::uint64_t sum = kWordSumStart;
    auto words = static_cast<std::size_t>(size / 8 - 1);
    while (words > 0) {
        const std::size_t count = std::min(words, kPieceWords);
        ReadOrStop(file, name, piece.data(), 8 * count);
        sum = AddToWordSum(sum, piece.data(), 8 * count);
        words -= count;
    }
    std::uint64_t written = 0;
    ReadOrStop(file, name, &written, sizeof written);
    Require(written == sum, name, "is damaged: its checksum is not that of its bytes");
}

} // namespace

CheckpointStream BeginCheckpointFile(const std::string& name) {
    CheckpointStream stream;
    stream.writing = true;
    stream.sum = kWordSumStart;
    const int descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    stream.file = descriptor < 0 ? nullptr : fdopen(descriptor, "w");
    stream.failed = stream.file == nullptr;
    if (stream.failed && descriptor >= 0)
        close(descriptor);
    Mark mark;
    TransferRecord(stream, mark);
    return stream;
}

bool EndCheckpointFile(CheckpointStream& stream) {
    std::uint64_t sum = stream.sum;
    TransferRecord(stream, sum);
    if (stream.file == nullptr)
        return false;
    const bool stored = !stream.failed && std::fflush(stream.file) == 0 && fsync(fileno(stream.file)) == 0;
    const int reason = errno;
    const bool closed = std::fclose(stream.file) == 0;
    stream.file = nullptr;
    if (!stored)
        errno = reason;
    return stored && closed;
}

CheckpointStream OpenCheckpointFile(const std::string& name) {
    CheckpointStream stream;
    stream.file = std::fopen(name.c_str(), "rbe");
    struct stat about = {};
    if (stream.file == nullptr || fstat(fileno(stream.file), &about) != 0)
        StopOnReading(name, errno);
    Mark mark;
    Require(S_ISREG(about.st_mode) && about.st_size >= kSmallestFile, name, "is no checkpoint");
    ReadOrStop(stream.file, name, &mark, sizeof mark);
    Require(std::memcmp(mark.text, Mark().text, sizeof mark.text) == 0, name, "is no checkpoint");
    Require(mark.wordSize == Mark().wordSize, name, "was written on another kind of machine");
    Require(mark.format == kCheckpointFormat, name, "was written by another version of the program");
    Require(about.st_size % 8 == 0, name, "is damaged: a part of it is missing");
    std::rewind(stream.file);
    RequireChecksum(stream.file, name, about.st_size);
    if (std::fseek(stream.file, sizeof mark, SEEK_SET) != 0)
        StopOnReading(name, errno);
    return stream;
}

void TransferBytes(CheckpointStream& stream, void* bytes, std::size_t size) {
    if (stream.failed || size == 0)
        return;
    const std::size_t rest = (8 - size % 8) % 8;
    char filling[8] = {};
    if (stream.writing) {
        stream.failed = std::fwrite(bytes, 1, size, stream.file) != size ||
                        std::fwrite(filling, 1, rest, stream.file) != rest;
        stream.sum = AddToWordSum(stream.sum, bytes, size);
    } else {
        stream.failed = std::fread(bytes, 1, size, stream.file) != size ||
                        std::fread(filling, 1, rest, stream.file) != rest;
    }
}

} // namespace zurt
