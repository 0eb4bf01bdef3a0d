// Echo of input on the listing: tables of lines, one for each field or remark, in both languages.
#pragma once

#include "run/run.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zurt {

enum class EchoKind { Remark, Integer, Real };

struct EchoLine {
    const char* serbian;
    const char* english;
    EchoKind kind;
    std::size_t offset; // of the value in the record
};

/// The line of one value; compiles only where the member has the type that its kind is written from.
template <EchoKind Kind, typename Member>
constexpr EchoLine EchoValue(const char* serbian, const char* english, std::size_t offset) {
    using Written = std::conditional_t<Kind == EchoKind::Integer, std::int32_t, double>;
    static_assert(std::is_same_v<std::remove_reference_t<Member>, Written>,
                  "the echo does not fit the type of the field in the record");
    return {serbian, english, Kind, offset};
}
#define ZURT_ECHO_INTEGER(RECORD, MEMBER, SERBIAN, ENGLISH)                                                  \
    ::zurt::EchoValue<::zurt::EchoKind::Integer, decltype(RECORD::MEMBER)>(SERBIAN, ENGLISH,                 \
                                                                           offsetof(RECORD, MEMBER))
#define ZURT_ECHO_REAL(RECORD, MEMBER, SERBIAN, ENGLISH)                                                     \
    ::zurt::EchoValue<::zurt::EchoKind::Real, decltype(RECORD::MEMBER)>(SERBIAN, ENGLISH,                    \
                                                                        offsetof(RECORD, MEMBER))
#define ZURT_ECHO_REMARK(SERBIAN, ENGLISH)                                                                   \
    ::zurt::EchoLine {                                                                                       \
        SERBIAN, ENGLISH, ::zurt::EchoKind::Remark, 0                                                        \
    }

/// Writes the lines of a table: a label and its value (I5 or 1PE10.3), remarks indented below.
void WriteEchoLines(Run& run, const EchoLine* lines, std::size_t count, const void* record);

template <std::size_t N> void WriteEcho(Run& run, const EchoLine (&lines)[N], const void* record) {
    WriteEchoLines(run, lines, N, record);
}

/// The heading ahead of an echo block: the number of the card, or the range from `first` to the card counter.
/// `page` 0: after empty lines, 1: on a new page, any other value: nothing.
void PrintCardNumber(Run& run, std::int32_t first, std::int32_t page);

/// Lists the whole deck, 50 cards a page, and puts it back behind the last card read.
void ListCards(Run& run);

} // namespace zurt
