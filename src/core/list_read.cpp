#include "core/plain_number.h"
#include "core/real_text.h"

namespace zurt {

namespace {

/// The largest r of r*c that a Fortran library takes; a larger one is not a number.
constexpr int kLargestRepeat = 200000000;

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

/// What a character does between and behind items.
enum class ListCharacter : std::uint8_t { OfItem, Blank, Separator, Slash };

struct ListCharacters {
    ListCharacter kind[256];
};

constexpr ListCharacters MakeListCharacters() {
    ListCharacters characters{};
    for (const char blank :
         {' ', '\t', '\r', '\n'}) // a carriage return is left of a line end of the other kind
        characters.kind[static_cast<unsigned char>(blank)] = ListCharacter::Blank;
    for (const char separator : {',', ';'})
        characters.kind[static_cast<unsigned char>(separator)] = ListCharacter::Separator;
    characters.kind[static_cast<unsigned char>('/')] = ListCharacter::Slash;
    return characters;
}

constexpr ListCharacters kListCharacters = MakeListCharacters();

ListCharacter KindAt(const ListScanner& scanner, std::size_t position) {
    return kListCharacters.kind[static_cast<unsigned char>(scanner.record[position])];
}

bool EndsItem(const ListScanner& scanner, std::size_t position) {
    return position >= scanner.record.size() || KindAt(scanner, position) != ListCharacter::OfItem;
}

/// The item that begins at the scanner's position has been read and ends ahead of `end`.
void PassItem(ListScanner& scanner, std::size_t end) {
    scanner.itemColumn = scanner.position;
    scanner.position = end;
    scanner.separatorSeen = false;
    scanner.recordOpened = false;
}

/// Takes all characters up to the next separator.
std::string_view TakeItem(ListScanner& scanner) {
    const std::size_t start = scanner.position;
    std::size_t end = start;
    while (!EndsItem(scanner, end))
        ++end;
    PassItem(scanner, end);
    return scanner.record.substr(start, end - start);
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

/// Goes to where the next item begins; every status but Value is final for this value.
ListStatus FindItem(ListScanner& scanner) {
    for (; !scanner.ended && scanner.position < scanner.record.size(); ++scanner.position) {
        switch (KindAt(scanner, scanner.position)) {
        case ListCharacter::OfItem:
            return ListStatus::Value;
        case ListCharacter::Blank:
            break;
        case ListCharacter::Separator:
            if (EndsNullValue(scanner)) {
                ++scanner.position;
                return ListStatus::Null;
            }
            break;
        case ListCharacter::Slash:
            scanner.ended = true;
            break;
        }
    }
    return scanner.ended ? ListStatus::Ended : ListStatus::NeedRecord;
}

/// The next item of a scanner that has come to it, or that has repeats left. With Value, `item` is its text, r* taken
/// off and the repeats noted in the scanner; every other status is final for this value.
ListStatus NextItem(ListScanner& scanner, std::string_view& item) {
    if (scanner.repeatsLeft > 0) {
        --scanner.repeatsLeft;
        item = scanner.repeated;
        return item.empty() ? ListStatus::Null : ListStatus::Value;
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

/// A sign at most, then digits alone. Any other item is not a number, however large it is.
bool IsInteger(std::string_view item) {
    if (!item.empty() && (item[0] == '+' || item[0] == '-'))
        item.remove_prefix(1);
    for (const char c : item)
        if (!IsDigit(c))
            return false;
    return !item.empty();
}

/// A fixed field without a digit ahead of its exponent is 0; such an item is not a number.
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
    if (scanner.repeatsLeft == 0) {
        const ListStatus found = FindItem(scanner);
        if (found != ListStatus::Value)
            return found;
        std::int32_t number = 0;
        const std::size_t end = ReadPlainInteger(scanner.record, scanner.position, number);
        if (end > 0 && EndsItem(scanner, end)) {
            PassItem(scanner, end);
            value = number;
            return ListStatus::Value;
        }
    }
    std::string_view item;
    const ListStatus status = NextItem(scanner, item);
    if (status != ListStatus::Value)
        return status;
    return Finish(scanner, item, IsInteger(item) ? ReadIntegerField(item, value) : FieldStatus::NotANumber);
}

ListStatus NextListReal(ListScanner& scanner, double& value) {
    if (scanner.repeatsLeft == 0) {
        const ListStatus found = FindItem(scanner);
        if (found != ListStatus::Value)
            return found;
        double number = 0.0;
        const std::size_t end = ReadPlainReal(scanner.record, scanner.position, 0, number);
        if (end > 0 && EndsItem(scanner, end)) {
            PassItem(scanner, end);
            value = number;
            return ListStatus::Value;
        }
    }
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
