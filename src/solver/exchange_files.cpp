#include "solver/exchange_files.h"

#include "core/format.h"
#include "core/stop.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace zurt {

namespace {

struct Entry {
    std::int32_t row;
    std::int32_t column;
    double value;
};
static_assert(sizeof(Entry) == 2 * sizeof(double), "an entry takes the room of two doubles");

struct SystemSize {
    std::int32_t equations;
    std::int32_t entries;
};

constexpr double kSmallestEntryWritten = 1e-20;
constexpr int kParameterLines = 3;
constexpr std::size_t kParameterLength = 55;

// --- byte streams -------------------------------------------------------------------------------------------------

[[noreturn]] void StopAtFile(const char* what, const std::string& name, const char* reason) {
    StopWithLibraryError(std::string("can't ") + what + " " + name + ": " + reason);
}

std::FILE* OpenBinary(const std::string& name, const char* mode) {
    std::FILE* file = std::fopen(name.c_str(), mode);
    if (file == nullptr)
        StopAtFile("open", name, std::strerror(errno));
    return file;
}

template <class T> void WriteItems(std::FILE* file, const std::string& name, const T* items, Word count) {
    const std::size_t wanted = static_cast<std::size_t>(count);
    if (std::fwrite(items, sizeof(T), wanted, file) != wanted)
        StopAtFile("write to", name, std::strerror(errno));
}

template <class T> void ReadItems(std::FILE* file, const std::string& name, T* items, Word count) {
    const std::size_t wanted = static_cast<std::size_t>(count);
    if (std::fread(items, sizeof(T), wanted, file) != wanted)
        StopAtFile("read", name, std::ferror(file) != 0 ? std::strerror(errno) : "it ends too early");
}

void CloseWritten(std::FILE* file, const std::string& name) {
    if (std::fclose(file) != 0)
        StopAtFile("write to", name, std::strerror(errno));
}

void FlushExchangeStream(ExchangeStream& stream) {
    WriteItems(stream.file, stream.name, stream.buffer, stream.filled);
    stream.filled = 0;
}

/// Adds `words` doubles' worth of bytes, whatever they mean.
void PutWords(ExchangeStream& stream, const void* bytes, Word words) {
    const char* from = static_cast<const char*>(bytes);
    for (Word i = 0; i < words; ++i) {
        if (stream.filled == stream.capacity)
            FlushExchangeStream(stream);
        std::memcpy(stream.buffer + stream.filled, from + i * static_cast<Word>(sizeof(double)),
                    sizeof(double));
        ++stream.filled;
    }
}

inline bool GoesOut(double value, bool onDiagonal) {
    return onDiagonal || std::abs(value) > kSmallestEntryWritten;
}

// --- params.txt ---------------------------------------------------------------------------------------------------

std::string ReadWholeFile(const std::string& name) {
    std::FILE* file = OpenBinary(name, "rb");
    std::string bytes;
    char part[4096];
    for (std::size_t got = 0; (got = std::fread(part, 1, sizeof part, file)) > 0;)
        bytes.append(part, got);
    if (std::ferror(file) != 0)
        StopAtFile("read", name, std::strerror(errno));
    std::fclose(file);
    return bytes;
}

/// The first item of a record as list-directed input takes a text: between quotes, where a doubled quote stands for
/// one, or up to a blank, comma or slash. Without an item in front of the comma or slash `text` stays as it is.
void ReadListText(const std::string& record, std::size_t first, std::string& text) {
    const char quote = record[first];
    if (quote == ',' || quote == '/')
        return;
    text.clear();
    if (quote != '\'' && quote != '"') {
        text = record.substr(first, record.find_first_of(" \t,/", first) - first);
    } else {
        for (std::size_t i = first + 1; i < record.size(); ++i) {
            if (record[i] == quote) {
                ++i; // a quote counts when another one follows
                if (i == record.size() || record[i] != quote)
                    break;
            }
            text += record[i];
        }
    }
    text.resize(std::min(text.size(), kParameterLength));
}

/// The last of the three texts: each read takes the next record that is not blank.
std::string ReadParameters(const std::string& name) {
    const std::string bytes = ReadWholeFile(name);
    std::string text;
    std::size_t next = 0;
    for (int line = 1; line <= kParameterLines;) {
        if (next >= bytes.size())
            StopAtFile("read", name, "it ends before its third text");
        const std::size_t end = std::min(bytes.find_first_of("\r\n", next), bytes.size());
        const std::string record = bytes.substr(next, end - next);
        next = end + 1;
        const std::size_t first = record.find_first_not_of(" \t");
        if (first == std::string::npos)
            continue;
        ReadListText(record, first, text);
        ++line;
    }
    return text;
}

void RunExternalCommand(const std::string& command) {
    std::fflush(nullptr);
    const int status = std::system(command.c_str());
    if (status != 0)
        WriteNote("the command of the external solver failed: " + command);
}

void ReadSolution(RealArray R, std::int32_t N, const std::string& name) {
    std::FILE* file = OpenBinary(name, "rb");
    ReadItems(file, name, Section(R, 1, N).data, N);
    std::fclose(file);
}

} // namespace

void OpenExchangeStream(ExchangeStream& stream, const std::string& name, Word capacity) {
    stream.file = OpenBinary(name, "wb");
    stream.name = name;
    stream.capacity = capacity;
    stream.filled = 0;
    stream.buffer = static_cast<double*>(std::malloc(static_cast<std::size_t>(capacity) * sizeof(double)));
    if (stream.buffer == nullptr)
        StopWithLibraryError("no memory left for the buffer of " + name);
}

void CloseExchangeStream(ExchangeStream& stream) {
    FlushExchangeStream(stream);
    CloseWritten(stream.file, stream.name);
    std::free(stream.buffer);
    stream = {};
}

void WriteElementStream(ExchangeStream& stream, std::int32_t SparseMode, Word n, ConstIntArray LM,
                        ConstRealTable S) {
    if (SparseMode == 0)
        return;
    for (Word i = 1; i <= n; ++i)
        for (Word j = 1; j <= n; ++j)
            if (LM(i) != 0 && LM(j) != 0) {
                const Entry entry = {LM(j), LM(i), S(j, i)};
                PutWords(stream, &entry, 2);
            }
}

void WriteVectorStream(ExchangeStream& stream, std::int32_t SparseMode, ConstRealArray vector, Word length) {
    if (SparseMode != 0)
        PutWords(stream, Section(vector, 1, length).data, length);
}

void ReadSparseFile(std::int32_t count, IntArray IRN, IntArray JCN, RealArray A, const std::string& name) {
    if (count > IRN.length || count > JCN.length || count > A.length)
        StopAtFile("read", name, "more entries are wanted than the solver has room for");
    std::FILE* file = OpenBinary(name, "rb");
    for (Word i = 1; i <= count; ++i) {
        Entry entry;
        ReadItems(file, name, &entry, 1);
        IRN(i) = entry.row;
        JCN(i) = entry.column;
        A(i) = entry.value;
    }
    std::fclose(file);
}

void WriteFullMatrix(std::int32_t N, std::int32_t NZ, ConstIntArray IRN, ConstIntArray JCN, ConstRealArray A,
                     const std::string& name) {
    std::FILE* file = OpenBinary(name, "wb");
    const SystemSize size = {N, NZ};
    WriteItems(file, name, &size, 1);
    for (Word i = 1; i <= NZ; ++i) {
        const Entry entry = {IRN(i), JCN(i), A(i)};
        WriteItems(file, name, &entry, 1);
    }
    CloseWritten(file, name);
}

void CompareSolution(ConstRealArray X, std::int32_t N, RealArray R, const std::string& matrixName,
                     const std::string& comparisonName) {
    std::FILE* matrix = OpenBinary(matrixName, "rb");
    TextUnit comparison;
    OpenTextUnit(comparison, comparisonName);
    SystemSize size;
    ReadItems(matrix, matrixName, &size, 1);
    if (size.equations != N)
        StopAtFile("compare with", matrixName, "it holds another number of equations");
    for (Word i = 1; i <= N; ++i)
        R(i) = -R(i);
    for (Word k = 1; k <= size.entries; ++k) {
        Entry entry;
        ReadItems(matrix, matrixName, &entry, 1);
        if (entry.row < 1 || entry.row > N || entry.column < 1 || entry.column > N)
            StopAtFile("compare with", matrixName, "it holds an entry outside its equations");
        R(entry.row) += entry.value * X(entry.column);
    }
    const Format line = "(I10,1PE25.16)";
    for (std::int32_t i = 1; i <= N; ++i)
        Write(comparison, line, i, R(i));
    std::fclose(matrix);
    CloseTextUnit(comparison);
}

void WriteSkylineForExternal(ConstRealArray SkylineMatrix, ConstRealArray R, ConstIntArray MAXA,
                             std::int32_t N, const std::string& folder) {
    SystemSize size = {N, 0};
    for (std::int32_t column = 1; column <= N; ++column)
        for (Word position = MAXA(column); position < MAXA(column + 1); ++position)
            size.entries += GoesOut(SkylineMatrix(position), position == MAXA(column));

    const std::string name = folder + "/ZURF_MUMPS.OUT";
    std::FILE* file = OpenBinary(name, "wb");
    WriteItems(file, name, &size, 1);
    for (std::int32_t column = 1; column <= N; ++column)
        for (Word position = MAXA(column); position < MAXA(column + 1); ++position)
            if (GoesOut(SkylineMatrix(position), position == MAXA(column))) {
                const std::int32_t row = column - static_cast<std::int32_t>(position - MAXA(column));
                const Entry entry = {row, column, SkylineMatrix(position)};
                WriteItems(file, name, &entry, 1);
            }
    CloseWritten(file, name);

    const std::string vectorName = folder + "/ZURF_RHS.OUT";
    file = OpenBinary(vectorName, "wb");
    WriteItems(file, vectorName, Section(R, 1, N).data, N);
    CloseWritten(file, vectorName);
}

void SolveExternal(RealArray R, std::int32_t N, const ExternalRoute& route) {
    ReadParameters(route.parameters);
    RunExternalCommand(route.command);
    ReadSolution(R, N, route.result);
}

void SolveExternalNumbered(RealArray R, std::int32_t N, const ExternalRoute& route) {
    const std::string text = ReadParameters(route.parameters);
    std::int32_t number = 0;
    if (ReadIntegerField(text, number) != FieldStatus::Good)
        StopAtFile("read", route.parameters, "its third text is not the number of a result file");
    RunExternalCommand(route.command);
    ReadSolution(R, N, route.numberedFolder + "/RESENJE_" + std::to_string(number) + ".OUT");
}

} // namespace zurt
