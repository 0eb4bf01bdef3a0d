// Agreement with a Fortran compiler, digit by digit and bit by bit: the tables of tests/data, made by
// tests/data/make_format_tables.py.
#include "core/format.h"
#include "core/plain_number.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

using namespace zurt;

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::stringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

/// Takes the bars off a text and puts the characters in that the table spells with a backslash.
std::string Unescape(const std::string& barred) {
    std::string text;
    for (std::size_t i = 1; i + 1 < barred.size(); ++i)
        text += barred[i] != '\\' ? barred[i] : barred[++i] == 'n' ? '\n' : barred[i] == 't' ? '\t' : '\r';
    return text;
}

std::string RealBits(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    char text[20];
    std::snprintf(text, sizeof text, "r:%016llX", static_cast<unsigned long long>(bits));
    return text;
}

double RealOfBits(const std::string& hexadecimal) {
    const std::uint64_t bits = std::stoull(hexadecimal, nullptr, 16);
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Rows of a table, each split at its tabs.
std::vector<std::vector<std::string>> ReadTable(const std::string& name) {
    std::ifstream file(std::string(ZURT_SOURCE_DIR) + "/tests/data/" + name);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);)
        rows.push_back(Split(line, '\t'));
    return rows;
}

std::string WriteRow(const std::string& format, const std::vector<std::string>& values) {
    const Format parsed(format.c_str());
    std::string text;
    RecordWriter writer;
    BeginWrite(writer, text, parsed);
    for (const std::string& value : values) {
        std::string content = value.substr(2);
        if (value[0] == 'i') {
            Put(writer, static_cast<std::int64_t>(std::stoll(content)));
        } else if (value[0] == 'r') {
            Put(writer, RealOfBits(content));
        } else {
            for (char& c : content)
                c = c == '_' ? ' ' : c;
            Put(writer, content);
        }
    }
    EndWrite(writer);
    return text;
}

/// The values of a row, '-' for one that was left alone, and how the reading ended.
struct Outcome {
    std::vector<std::string> values;
    std::string status = "ok";

    std::string Text() const {
        std::string text;
        for (const std::string& value : values)
            text += value + " ";
        return text + status;
    }
    void Add(const char* ended, const std::string& value) {
        if (status == "ok")
            status = ended;
        values.push_back(status == "ok" ? value : "-");
    }
};

/// The fields of a record as cards are read: the quick way first, and what it leaves by the full reader.
Outcome ReadFixedRow(const std::string& format, std::string record, std::size_t count) {
    record.resize(200, ' ');
    std::size_t column = 0, width = 0;
    Outcome outcome;
    for (const EditDescriptor& item : Format(format.c_str()).items) {
        column += width;
        width = static_cast<std::size_t>(item.width);
        if (item.kind == EditKind::Blanks || outcome.values.size() == count)
            continue;
        const std::string_view field = std::string_view(record).substr(column, width);
        const bool isInteger = item.kind == EditKind::Integer;
        std::int32_t integer = 0;
        double real = 0.0;
        FieldStatus status = FieldStatus::Good;
        if (isInteger && !ReadPlainIntegerField(record, column, width, integer))
            status = ReadIntegerField(field, integer);
        if (!isInteger && !ReadPlainRealField(record, column, width, item.decimals, real))
            status = ReadRealField(field, item.decimals, real);
        outcome.Add(status == FieldStatus::Good         ? "ok"
                    : status == FieldStatus::OutOfRange ? "range"
                                                        : "bad",
                    isInteger ? "i:" + std::to_string(integer) : RealBits(real));
    }
    return outcome;
}

Outcome ReadListRow(const std::string& types, const std::string& text) {
    const std::vector<std::string> records = Split(text + "\n", '\n');
    std::size_t used = 1;
    ListScanner scanner;
    BeginList(scanner, records[0]);
    Outcome outcome;
    for (const char type : types) {
        std::int32_t integer = 0;
        double real = 0.0;
        ListStatus status = ListStatus::NeedRecord;
        for (;;) {
            status = type == 'i' ? NextListInteger(scanner, integer) : NextListReal(scanner, real);
            if (status != ListStatus::NeedRecord || used == records.size())
                break;
            ContinueList(scanner, records[used++]);
        }
        outcome.Add(status == ListStatus::NeedRecord   ? "eof"
                    : status == ListStatus::NotANumber ? "bad"
                    : status == ListStatus::OutOfRange ? "range"
                                                       : "ok",
                    status != ListStatus::Value ? "-"
                    : type == 'i'               ? "i:" + std::to_string(integer)
                                                : RealBits(real));
    }
    return outcome;
}

// A digit, a blank or an asterisk that differs from what Fortran writes.
TEST(FormatTable, WritesWhatFortranWrites) {
    const std::vector<std::vector<std::string>> rows = ReadTable("format_write.tsv");
    ASSERT_GE(rows.size(), 2000u);
    for (const std::vector<std::string>& row : rows) {
        ASSERT_EQ(row.size(), 3u);
        EXPECT_EQ(WriteRow(row[0], Split(row[1], ' ')), Unescape(row[2]) + "\n") << row[0] << " " << row[1];
    }
}

// A field or an item that is read as another value, accepted where Fortran refuses it, or the other way round.
TEST(FormatTable, ReadsWhatFortranReads) {
    const std::vector<std::vector<std::string>> fixedRows = ReadTable("format_read_fixed.tsv");
    const std::vector<std::vector<std::string>> listRows = ReadTable("format_read_list.tsv");
    ASSERT_GE(fixedRows.size(), 1000u);
    ASSERT_GE(listRows.size(), 500u);
    for (const auto* rows : {&fixedRows, &listRows})
        for (const std::vector<std::string>& row : *rows) {
            ASSERT_EQ(row.size(), 4u);
            const std::size_t count = Split(row[2], ' ').size();
            const Outcome outcome = rows == &fixedRows ? ReadFixedRow(row[0], Unescape(row[1]), count)
                                                       : ReadListRow(row[0], Unescape(row[1]));
            EXPECT_EQ(outcome.Text(), row[2] + " " + row[3]) << row[0] << row[1];
        }
}

} // namespace
