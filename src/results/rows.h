// Tables of many rows: numbers formatted side by side by the workers of the run, written in the order of the rows.
//
// Called by the writers of the listing and of the graphics file.
#pragma once

#include "core/format.h"
#include "run/run.h"

#include <string>
#include <vector>

namespace zurt {

/// Rows that a worker formats at once: a multiple of all counts of rows that a record holds.
constexpr Word kRowsOfChunk = 512;

/// One statement of rows first..last under the format, or one statement a row.
enum class RowStatements { One, Each };

template <class Target, class PutRow>
void WriteRowRange(Target& target, const Format& format, Word first, Word last, RowStatements statements,
                   const PutRow& putRow) {
    RecordWriter writer;
    BeginWrite(writer, target, format);
    for (Word i = first; i <= last; ++i) {
        putRow(writer, i);
        if (statements == RowStatements::Each && i < last) {
            EndWrite(writer);
            BeginWrite(writer, target, format);
        }
    }
    EndWrite(writer);
}

/// Writes rows 1..count to a unit. putRow(writer, i) puts the values of row i.
template <class PutRow>
void WriteRows(Run& run, TextUnit& unit, const Format& format, Word count, RowStatements statements,
               const PutRow& putRow) {
    if (!IsOpen(unit) || (count < 1 && statements == RowStatements::Each))
        return;
    if (run.workers.count == 1 || count <= kRowsOfChunk)
        return WriteRowRange(unit, format, 1, count, statements, putRow);
    std::vector<std::string> texts(static_cast<std::size_t>(run.workers.count));
    const auto formatChunk = [&](Word chunk, int worker) {
        std::string& text = texts[static_cast<std::size_t>(worker)];
        text.clear();
        const ChunkRange range = RangeOfChunk(count, kRowsOfChunk, chunk);
        WriteRowRange(text, format, range.first, range.last, statements, putRow);
    };
    const auto writeChunk = [&](Word, int worker) {
        PutBytes(unit, texts[static_cast<std::size_t>(worker)]);
    };
    InTurn(run.workers, ChunkCount(count, kRowsOfChunk), formatChunk, writeChunk);
}

} // namespace zurt
