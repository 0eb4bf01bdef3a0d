// What the tables made with a Fortran compiler can't show: units that are not open, damaged records, the places
// where reading departs from Fortran on purpose, and the quick ways to digits and numbers against the slow ones.
#include "core/format.h"
#include "core/plain_number.h"
#include "core/real_digits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace {

using namespace zurt;

/// Bytes on the heap without a spare byte behind them, so that a sanitizer sees one step too far: mostly of those that are
/// likely, one of `strange` any other.
std::vector<char> RandomBytes(std::mt19937& random, std::size_t length, unsigned strange,
                              const std::string& likely) {
    std::vector<char> bytes(length);
    for (char& byte : bytes)
        byte = random() % strange == 0 ? static_cast<char>(random() % 256) : likely[random() % likely.size()];
    return bytes;
}

struct RealRead {
    FieldStatus status;
    double value = -1.0;
};

RealRead ReadReal(std::string_view field, int decimals) {
    RealRead read;
    read.status = ReadRealField(field, decimals, read.value);
    return read;
}

// Formatting, or crashing on, output that nobody will see.
TEST(FormatEdge, WritesToAUnitThatIsNotOpenAreDropped) {
    TextUnit unit;
    Write(unit, "(I5,/,D13.5)", 1, 2.0);
    RecordWriter writer;
    const Format format("(I5)");
    BeginWrite(writer, unit, format);
    for (int i = 0; i < 3; ++i)
        Put(writer, i);
    EndWrite(writer);
    EXPECT_TRUE(writer.dropped);
    EXPECT_TRUE(writer.record.empty());
}

// Records lost, doubled or left over when a writer serves one statement after another.
TEST(FormatEdge, RecordsReachTheUnitInOrder) {
    TextUnit unit;
    std::FILE* stream = std::tmpfile();
    ASSERT_NE(stream, nullptr);
    AttachTextUnit(unit, stream, "scratch");
    const Format format("(2I3,2X)");
    double reals[2] = {0.5, -1.0};
    RecordWriter writer;
    for (const int first : {1, 4}) {
        BeginWrite(writer, unit, format);
        for (int i = 0; i < 3; ++i)
            Put(writer, first + i);
        EndWrite(writer);
    }
    Write(unit, "('x',2F5.1,1X,A)", RealArray(reals, 2), "end");
    std::rewind(stream);
    char text[200] = {};
    const std::size_t size = std::fread(text, 1, sizeof text, stream);
    EXPECT_EQ(std::string(text, size), "  1  2\n  3\n  4  5\n  6\nx  0.5 -1.0 end\n");
    CloseTextUnit(unit);
}

// A slip in a format, or a value of the wrong kind, that goes unnoticed.
TEST(FormatEdgeDeathTest, FaultsOfTheProgramAbort) {
    EXPECT_DEATH(Format("(I5"), "closing parenthesis");
    EXPECT_DEATH(Format("(Q5)"), "unknown descriptor");
    EXPECT_DEATH(Format("(F10)"), "decimals missing");
    EXPECT_DEATH(Format("('abc)"), "literal without an end");
    EXPECT_DEATH(Format("(I5)x"), "behind the closing parenthesis");
    EXPECT_DEATH(FormatText("(I5)", 1.0), "another kind");
    EXPECT_DEATH(FormatText("('text')", 1), "takes none");
    EXPECT_DEATH(FormatText("(I5,(' '))", 1, 2), "takes none");
}

// 1E3 under F10.2 read as 10, as Fortran has it: with an exponent and no point the number stands as written.
TEST(FormatEdge, AnExponentWithoutAPointStandsAsWritten) {
    EXPECT_EQ(ReadReal("       1E3", 2).value, 1000.0);
    EXPECT_EQ(ReadReal("15-1", 6).value, 1.5);
    EXPECT_EQ(ReadReal(" -25D0 ", 4).value, -25.0);
    EXPECT_EQ(ReadReal("12 q 2", 1).value, 1200.0);
    EXPECT_EQ(ReadReal("1500", 2).value, 15.0);
    EXPECT_EQ(ReadReal("15.E1", 2).value, 150.0);
}

/// The item that a list gives for `kind`, i or r; a failure leaves the value of before.
double Next(ListScanner& scanner, char kind, ListStatus expected) {
    std::int32_t integer = -7;
    double real = -7.0;
    EXPECT_EQ(kind == 'i' ? NextListInteger(scanner, integer) : NextListReal(scanner, real), expected);
    return kind == 'i' ? integer : real;
}

// The two other departures: an exponent of five digits is out of range, and r*c may give integers and reals.
TEST(FormatEdge, DeparturesFromTheReferenceCompiler) {
    EXPECT_EQ(ReadReal("1.0E10000", 0).status, FieldStatus::OutOfRange);
    EXPECT_EQ(ReadReal("1.0E-99999999999", 0).status, FieldStatus::OutOfRange);
    EXPECT_EQ(ReadReal("1.0E9999", 0).value, HUGE_VAL);
    ListScanner scanner;
    BeginList(scanner, "2*7 2*1.5");
    EXPECT_EQ(Next(scanner, 'i', ListStatus::Value), 7.0);
    EXPECT_EQ(Next(scanner, 'r', ListStatus::Value), 7.0);
    EXPECT_EQ(Next(scanner, 'r', ListStatus::Value), 1.5);
    EXPECT_EQ(Next(scanner, 'i', ListStatus::NotANumber), -7.0);
    EXPECT_EQ(scanner.text, "1.5");
    EXPECT_EQ(scanner.itemColumn, 4u);
    // a comma between two record ends is one separator of its own, and a further comma makes a null value
    BeginList(scanner, "1");
    Next(scanner, 'i', ListStatus::Value);
    Next(scanner, 'i', ListStatus::NeedRecord);
    ContinueList(scanner, ",");
    Next(scanner, 'i', ListStatus::NeedRecord);
    ContinueList(scanner, ",2");
    Next(scanner, 'i', ListStatus::Null);
    EXPECT_EQ(Next(scanner, 'i', ListStatus::Value), 2.0);
}

// Steps behind the record, overflowing counts, digits without end.
TEST(FormatEdge, DamagedRecordsAreRefusedOrReadWithinTheirBytes) {
    const std::string zeroBytes("1\0 2", 4);
    std::int32_t integer = -1;
    EXPECT_EQ(ReadIntegerField(zeroBytes, integer), FieldStatus::NotANumber);
    EXPECT_EQ(ReadReal(zeroBytes, 0).status, FieldStatus::NotANumber);
    const std::string digits(10000, '7');
    EXPECT_EQ(ReadIntegerField(digits, integer), FieldStatus::OutOfRange);
    EXPECT_EQ(ReadReal(digits, 0).value, HUGE_VAL);
    EXPECT_EQ(ReadReal("0." + std::string(9000, '0') + "1E9001", 0).value, 1.0);
    EXPECT_EQ(ReadReal("-." + std::string(9000, '0') + "1", 0).value, 0.0);
    EXPECT_EQ(ReadReal("1." + std::string(900, '0') + "E500", 0).value,
              HUGE_VAL); // far digits do not make it small

    ListScanner scanner;
    BeginList(scanner, "999999999*1");
    Next(scanner, 'i', ListStatus::OutOfRange);
    const std::string overflowing = digits + "*1", commas(10000, ',');
    BeginList(scanner, overflowing);
    EXPECT_EQ(Next(scanner, 'r', ListStatus::OutOfRange), -7.0);
    BeginList(scanner, "200000000*1");
    Next(scanner, 'i', ListStatus::Value);
    EXPECT_EQ(scanner.repeatsLeft, 199999999);
    BeginList(scanner, commas);
    for (int i = 0; i < 10000; ++i)
        Next(scanner, 'i', ListStatus::Null);
    Next(scanner, 'i', ListStatus::NeedRecord);
}

// Any bytes: every read ends, and under a sanitizer stays within its record.
TEST(FormatEdge, RandomBytesEndEveryRead) {
    std::mt19937 random(20240229);
    for (int round = 0; round < 20000; ++round) {
        const std::vector<char> bytes =
            RandomBytes(random, random() % 90, 30, "0123456789019.+-eEdDqQ*,;/ \t\r()infanINFA");
        const std::string_view record(bytes.data(), bytes.size());
        std::int32_t integer = 0;
        double real = 0.0;
        ReadIntegerField(record, integer);
        ReadRealField(record, 2, real);
        ListScanner scanner;
        BeginList(scanner, record);
        std::size_t items = 0;
        ListStatus status = ListStatus::Null;
        while (status == ListStatus::Null || status == ListStatus::Value) {
            scanner.repeatsLeft = std::min(scanner.repeatsLeft, 3);
            status = items % 2 == 0 ? NextListReal(scanner, real) : NextListInteger(scanner, integer);
            ASSERT_LE(++items, 4 * record.size() + 4);
        }
    }
}

// A last digit that the quick way to digits rounds otherwise than the exact way.
TEST(FormatEdge, QuickDigitsAreTheExactDigits) {
    std::mt19937_64 random(7);
    for (int round = 0; round < 300000; ++round) {
        const int count = 1 + static_cast<int>(random() % 17);
        const double some = static_cast<double>(random() % 1000000),
                     power10 = static_cast<double>(random() % 40);
        double value =
            std::ldexp(static_cast<double>(random() >> (random() % 60)), -static_cast<int>(random() % 100));
        if (round % 3 == 0) // a tie in decimals, or the double next to one
            value = (some + 0.5) / std::pow(10.0, std::fmod(power10, 9.0));
        if (round % 3 == 1) // about a power of ten
            value = std::pow(10.0, power10 - 20.0);
        for (std::uint64_t step = random() % 3; step > 0; --step)
            value = std::nextafter(value, 0.0);
        char digits[40], exact[40];
        const int power = WriteSignificantDigits(value, count, digits);
        *std::to_chars(exact, exact + 40, value, std::chars_format::scientific, count - 1).ptr = '\0';
        const std::string expected = exact[0] + std::string(exact + 2, static_cast<std::size_t>(count - 1));
        ASSERT_EQ(std::string(digits, static_cast<std::size_t>(count)), expected) << value << " " << exact;
        ASSERT_EQ(power, std::atoi(std::strchr(exact, 'e') + 1)) << exact;
    }
}

bool SameBits(double one, double other) {
    return std::memcmp(&one, &other, sizeof one) == 0;
}

// A field that the quick way takes though the full reader refuses it, or whose value differs in its last bit; the quick
// way leaving its record, or taking hardly anything.
TEST(FormatEdge, PlainFieldsHaveTheValuesOfTheFullReader) {
    std::mt19937 random(11);
    int integers = 0, reals = 0;
    for (int round = 0; round < 300000; ++round) {
        const std::vector<char> bytes =
            RandomBytes(random, random() % 26, 60, "       000123456789901..--+eEd");
        const std::string_view record(bytes.data(), bytes.size());
        const std::size_t column = random() % (record.size() + 1), width = random() % 18;
        const std::string_view field = record.substr(column, width);
        std::int32_t number = -7, fullNumber = -7;
        double value = -7.0;
        if (ReadPlainIntegerField(record, column, width, number)) {
            ++integers;
            ASSERT_EQ(ReadIntegerField(field, fullNumber), FieldStatus::Good) << '"' << field << '"';
            ASSERT_EQ(number, fullNumber) << '"' << field << '"';
        }
        if (ReadPlainRealField(record, column, width, 3, value)) {
            ++reals;
            const RealRead full = ReadReal(field, 3);
            ASSERT_EQ(full.status, FieldStatus::Good) << '"' << field << '"';
            ASSERT_PRED2(SameBits, value, full.value) << '"' << field << '"';
        }
        const std::size_t end = ReadPlainInteger(record, column, number);
        if (end > 0) {
            ASSERT_EQ(ReadIntegerField(record.substr(column, end - column), fullNumber), FieldStatus::Good);
            ASSERT_EQ(number, fullNumber) << '"' << record << '"';
        }
    }
    EXPECT_GT(integers, 5000);
    EXPECT_GT(reals, 5000);
}

// A last bit lost by the quick way: digits beyond 2^53, ties of two doubles and what lies next to them.
TEST(FormatEdge, PlainRealsAreRoundedExactly) {
    std::mt19937_64 random(12);
    double wrapped = -7.0;
    EXPECT_EQ(ReadPlainReal("18446744073709551616.", 0, 0, wrapped), 0u) << "2^64, which 64 bits take for 0";
    for (int round = 0; round < 300000; ++round) {
        std::string digits = std::to_string(random() >> (random() % 60));
        std::size_t decimals = random() % 28;
        if (round % 3 == 0) { // an odd number of 54 bits and a half or a quarter: a tie, or a unit beside it
            decimals = 1 + random() % 2;
            const std::uint64_t tie = (random() >> 10) | (std::uint64_t{1} << 53) | 1;
            digits = std::to_string(tie * (decimals == 1 ? 5 : 25) + random() % 3 - 1);
        }
        std::string text =
            (digits.size() > decimals ? "" : std::string(decimals + 1 - digits.size(), '0')) + digits;
        text.insert(text.size() - decimals, ".");
        if (round % 4 == 1)
            text += "e" + std::to_string(static_cast<int>(random() % 60) - 30);
        double value = -7.0;
        if (ReadPlainReal("       " + text, 7, 0, value) == 0)
            ASSERT_TRUE(round % 4 == 1 || digits.size() > 19 || decimals > 18 || decimals == 0) << text;
        else
            ASSERT_PRED2(SameBits, value, std::strtod(text.c_str(), nullptr)) << text;
    }
}

} // namespace
