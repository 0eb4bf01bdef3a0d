// The file of a checkpoint: a mark, any number of records, and a checksum of all ahead of it, in words of eight bytes.
//
// The same calls, in the same order, write a file and read it. Numbers stand as the machine has them. Called by
// timeint/checkpoint.
#pragma once

#include "core/array_view.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>

namespace zurt {

/// Raised whenever the order or the meaning of the records changes.
constexpr std::int32_t kCheckpointFormat = 2;

struct CheckpointStream {
    std::FILE* file = nullptr;
    bool writing = false;
    // A record could not be written or read, errno says why; those behind it are passed over.
    bool failed = false;
    std::uint64_t sum = 0;
};

/// Opens `name` for writing and puts the mark; failed when that is refused.
CheckpointStream BeginCheckpointFile(const std::string& name);

/// Puts the checksum and brings the file to the disk. False, with the reason in errno, when any record of it is not there.
bool EndCheckpointFile(CheckpointStream& stream);

/// Opens a checkpoint that is to be read and leaves the stream ahead of its first record. Stops with a library error when it
/// can't be read, is no checkpoint, has another format, or its checksum is not that of its bytes.
CheckpointStream OpenCheckpointFile(const std::string& name);

/// Writes or reads `size` bytes, which take whole words of the file.
void TransferBytes(CheckpointStream& stream, void* bytes, std::size_t size);

/// The same for a record without pointers.
template <class Record> void TransferRecord(CheckpointStream& stream, Record& record) {
    static_assert(std::is_trivially_copyable_v<Record>);
    TransferBytes(stream, &record, sizeof record);
}

/// The length of a list, which one that is read takes.
template <class List> void TransferLength(CheckpointStream& stream, List& list) {
    auto length = static_cast<std::int64_t>(list.size());
    TransferRecord(stream, length);
    if (!stream.failed)
        list.resize(static_cast<std::size_t>(length));
}

/// A text with its length.
inline void TransferText(CheckpointStream& stream, std::string& text) {
    TransferLength(stream, text);
    TransferBytes(stream, text.data(), text.size());
}

} // namespace zurt
