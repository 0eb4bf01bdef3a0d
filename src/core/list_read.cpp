#include "core/real_text.h"

namespace zurt {

namespace {

/// The largest r of r*c that a Fortran library takes; a larger one is a slip, not a wish.
constexpr int kLargestRepeat = 200000000;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Reads digits alone, with a limit.
FieldStatus ReadCount(std::string_view digits, int& count) {
    std::int64_t number = 0;
    for (const char c : digits) {
        if (!IsDigit(c))
            return FieldStatus::NotANumber;
        number = 10 * number + (c - '0');
        if (number > kLargestRepeat)
            return FieldStatus::OutOfRange;
    }
    count = static_cast<int>(number);
    return digits.empty() || number == 0 ? FieldStatus::NotANumber : FieldStatus::Good;
}

/// A carriage return is what is left of a line end of the other kind.
bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool EndsItem(char c) {
    return IsBlank(c) || c == ',' || c == ';' || c == '/';
}

/// Takes all characters up to the next separator.
std::string_view TakeItem(ListScanner& scanner) {
    const std::size_t start = scanner.position;
    while (scanner.position < scanner.record.size() && !EndsItem(scanner.record[scanner.position]))
        ++scanner.position;
    scanner.itemColumn = start;
    scanner.separatorSeen = false;
    scanner.recordOpened = false;
    return scanner.record.substr(start, scanner.position - start);
}

/// Takes a comma or semicolon; true when it ends a value that is not there. Behind a record end that already parts
/// two values a comma parts the same two, but a semicolon parts anew.
bool EndsNullValue(ListScanner& scanner) {
    const char separator = scanner.record[scanner.position];
    const bool null = scanner.separatorSeen || (separator == ';' && scanner.recordOpened);
    scanner.separatorSeen = true;
    scanner.recordOpened = false;
    return null;
}

/// Finds the next item. With Value, `item` is its text, r* taken off and the repeats noted in the scanner; every
/// other status is final for this value.
ListStatus NextItem(ListScanner& scanner, std::string_view& item) {
    if (scanner.repeatsLeft > 0) {
        --scanner.repeatsLeft;
        item = scanner.repeated;
        return item.empty() ? ListStatus::Null : ListStatus::Value;
    }
    for (;; ++scanner.position) {
        if (scanner.ended)
            return ListStatus::Ended;
        if (scanner.position >= scanner.record.size())
            return ListStatus::NeedRecord;
        const char c = scanner.record[scanner.position];
        if (c == '/') {
            scanner.ended = true;
        } else if (c == ',' || c == ';') {
            if (EndsNullValue(scanner)) {
                ++scanner.position;
                return ListStatus::Null;
            }
        } else if (!IsBlank(c)) {
            break;
        }
    }
    item = TakeItem(scanner);
    const std::size_t star = item.find('*');
    if (star == std::string_view::npos)
        return ListStatus::Value;
    int count = 0;
    const FieldStatus status = ReadCount(item.substr(0, star), count);
    if (status != FieldStatus::Good) {
        scanner.text = item;
        return status == FieldStatus::OutOfRange ? ListStatus::OutOfRange : ListStatus::NotANumber;
    }
    item.remove_prefix(star + 1);
    scanner.repeatsLeft = count - 1;
    scanner.repeated = item;
    return item.empty() ? ListStatus::Null : ListStatus::Value;
}

/// Turns the outcome of a conversion into the status of the item; a failure keeps the item's text.
ListStatus Finish(ListScanner& scanner, std::string_view item, FieldStatus status) {
    if (status == FieldStatus::Good)
        return ListStatus::Value;
    scanner.text = item;
    scanner.repeatsLeft = 0;
    return status == FieldStatus::OutOfRange ? ListStatus::OutOfRange : ListStatus::NotANumber;
}

/// A sign at most, then digits alone. An item that isn't is no number, be it ever so large.
bool IsInteger(std::string_view item) {
    if (!item.empty() && (item[0] == '+' || item[0] == '-'))
        item.remove_prefix(1);
    for (const char c : item)
        if (!IsDigit(c))
            return false;
    return !item.empty();
}

/// A fixed field may do without a digit ahead of its exponent and be 0; an item may not.
bool HasMantissa(std::string_view item) {
    if (!item.empty() && (item[0] == '+' || item[0] == '-'))
        item.remove_prefix(1);
    if (!item.empty() && item[0] == '.')
        item.remove_prefix(1);
    if (item.empty())
        return false;
    const char c = item[0];
    return IsDigit(c) || c == 'i' || c == 'I' || c == 'n' || c == 'N';
}

} // namespace

void BeginList(ListScanner& scanner, std::string_view record) {
    scanner.record = record;
    scanner.position = 0;
    scanner.repeatsLeft = 0;
    scanner.separatorSeen = true;
    scanner.recordOpened = true;
    scanner.ended = false;
}

void ContinueList(ListScanner& scanner, std::string_view record) {
    scanner.record = record;
    scanner.position = 0;
    scanner.recordOpened = true;
}

ListStatus NextListInteger(ListScanner& scanner, std::int32_t& value) {
    std::string_view item;
    const ListStatus status = NextItem(scanner, item);
    if (status != ListStatus::Value)
        return status;
    return Finish(scanner, item, IsInteger(item) ? ReadIntegerField(item, value) : FieldStatus::NotANumber);
}

ListStatus NextListReal(ListScanner& scanner, double& value) {
    std::string_view item;
    const ListStatus status = NextItem(scanner, item);
    if (status != ListStatus::Value)
        return status;
    if (!HasMantissa(item))
        return Finish(scanner, item, FieldStatus::NotANumber);
    RealTextRules rules;
    rules.wideExponents = true;
    return Finish(scanner, item, RealFromText(item, rules, value));
}

} // namespace zurt
