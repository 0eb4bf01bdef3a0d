#include "core/format.h"

#include <cstdio>
#include <cstdlib>

namespace zurt {

namespace {

/// Largest numbers of a descriptor. Larger ones are errors in the format; the digit buffers of the writer rely on it.
constexpr int kLargestWidth = 512;
constexpr int kLargestDecimals = 300;
constexpr int kLargestScale = 30;
constexpr int kLargestCount = 100000;

/// A format text on its way into descriptors. The scale is what the last kP set, as it stands at `position`.
struct FormatParser {
    std::string_view text;
    std::size_t position = 0;
    int scale = 0;
    Format* format = nullptr;
    bool secondPass = false;       // the reversion pass: its groups mark no further reversion point
    std::size_t reversionText = 1; // text position of the last top-level group, its repeat count included
    int reversionScale = 0;        // the scale in force there in the first pass
};

[[noreturn]] void ReportBadFormat(const FormatParser& parser, const char* complaint) {
    ReportFormatFault(std::string(complaint) + " at character " + std::to_string(parser.position + 1) +
                      " of " + std::string(parser.text));
}

/// The next character that is no blank, as a capital, without taking it; 0 at the end of the text.
char Peek(FormatParser& parser) {
    while (parser.position < parser.text.size() && parser.text[parser.position] == ' ')
        ++parser.position;
    if (parser.position == parser.text.size())
        return '\0';
    const char c = parser.text[parser.position];
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool Take(FormatParser& parser, char wanted) {
    if (Peek(parser) != wanted)
        return false;
    ++parser.position;
    return true;
}

/// Digits, or -1 when none stand here.
int TakeNumber(FormatParser& parser) {
    int number = -1;
    for (char c = Peek(parser); c >= '0' && c <= '9'; c = Peek(parser)) {
        number = (number < 0 ? 0 : number) * 10 + (c - '0');
        if (number > kLargestCount)
            ReportBadFormat(parser, "number too large");
        ++parser.position;
    }
    return number;
}

int TakeBounded(FormatParser& parser, int least, int most) {
    const int number = TakeNumber(parser);
    if (number < least || number > most)
        ReportBadFormat(parser, "width or count missing or out of bounds");
    return number;
}

void AddItem(FormatParser& parser, const EditDescriptor& item, int repeat) {
    parser.format->items.insert(parser.format->items.end(), static_cast<std::size_t>(repeat), item);
}

void ParseLiteral(FormatParser& parser, char quote) {
    EditDescriptor item;
    item.kind = EditKind::Literal;
    for (;;) {
        if (parser.position == parser.text.size())
            ReportBadFormat(parser, "literal without an end");
        const char c = parser.text[parser.position++];
        if (c == quote) {
            const bool doubled =
                parser.position < parser.text.size() && parser.text[parser.position] == quote;
            if (!doubled)
                break;
            ++parser.position;
        }
        item.literal += c;
    }
    AddItem(parser, item, 1);
}

void ParseReal(FormatParser& parser, EditDescriptor& item) {
    item.width = TakeBounded(parser, item.kind == EditKind::Fixed ? 0 : 1, kLargestWidth);
    if (!Take(parser, '.'))
        ReportBadFormat(parser, "decimals missing");
    item.decimals = TakeBounded(parser, 0, kLargestDecimals);
    if (item.kind == EditKind::Exponent && Take(parser, 'E'))
        item.exponentWidth = TakeBounded(parser, 1, 9);
    item.scale = parser.scale;
}

/// One data descriptor; `letter` has been taken.
void ParseData(FormatParser& parser, char letter, int repeat) {
    EditDescriptor item;
    item.decimals = -1;
    switch (letter) {
    case 'I':
        item.kind = EditKind::Integer;
        item.width = TakeBounded(parser, 0, kLargestWidth);
        if (Take(parser, '.'))
            item.decimals = TakeBounded(parser, 0, kLargestWidth);
        break;
    case 'A': {
        item.kind = EditKind::Text;
        const int width = TakeNumber(parser);
        item.width = width < 0 ? 0 : width;
        break;
    }
    case 'F':
        item.kind = EditKind::Fixed;
        ParseReal(parser, item);
        break;
    case 'E':
        item.kind = EditKind::Exponent;
        ParseReal(parser, item);
        break;
    case 'D':
        item.kind = EditKind::Double;
        ParseReal(parser, item);
        break;
    default:
        ReportBadFormat(parser, "unknown descriptor");
    }
    parser.format->hasData = true;
    AddItem(parser, item, repeat);
}

/// A descriptor that carries no value. Returns false when `letter` is none of these.
bool ParseControl(FormatParser& parser, char letter, int repeat) {
    EditDescriptor item;
    switch (letter) {
    case 'X':
        item.kind = EditKind::Blanks;
        item.width = repeat;
        AddItem(parser, item, 1);
        return true;
    case '/':
        item.kind = EditKind::NewRecord;
        AddItem(parser, item, repeat);
        return true;
    case ':':
        item.kind = EditKind::Colon;
        AddItem(parser, item, 1);
        return true;
    case '\'':
    case '"':
        ParseLiteral(parser, letter);
        return true;
    default:
        return false;
    }
}

void ParseItems(FormatParser& parser, int depth);

/// A group whose '(' has been taken. It is read once per repeat, because a kP in it holds for the next round.
void ParseGroup(FormatParser& parser, int repeat, int depth) {
    const std::size_t start = parser.position;
    for (int round = 1; round <= repeat; ++round) {
        parser.position = start;
        ParseItems(parser, depth + 1);
    }
}

/// Notes where a further pass will begin: at a group directly inside the outer parentheses.
void MarkReversion(FormatParser& parser, std::size_t textStart) {
    if (parser.secondPass)
        return;
    parser.format->reversion = parser.format->items.size();
    parser.reversionText = textStart;
    parser.reversionScale = parser.scale;
}

/// All descriptors up to and with the closing parenthesis of this depth. Commas may be missing or doubled.
void ParseItems(FormatParser& parser, int depth) {
    for (;;) {
        char letter = Peek(parser);
        const std::size_t start = parser.position;
        const bool negative = letter == '-';
        if (letter == '-' || letter == '+')
            ++parser.position;
        const int number = TakeNumber(parser);
        const int repeat = number < 0 ? 1 : number;
        letter = Peek(parser);
        if (letter == '\0')
            ReportBadFormat(parser, "closing parenthesis missing");
        ++parser.position;
        if (letter == 'P') {
            parser.scale = negative ? -repeat : repeat;
            if (number < 0 || repeat > kLargestScale)
                ReportBadFormat(parser, "scale missing or out of bounds");
        } else if (letter == '(') {
            if (depth == 1)
                MarkReversion(parser, start);
            ParseGroup(parser, repeat, depth);
        } else if (letter == ')') {
            return;
        } else if (letter != ',' && !ParseControl(parser, letter, repeat)) {
            ParseData(parser, letter, repeat);
        }
    }
}

/// A pass after the first starts with the scale that the first left behind. Where that makes a difference the
/// further passes get descriptors of their own, joined by ':' and '/', which act just as reversion does.
void AddSecondPass(FormatParser& parser) {
    EditDescriptor joint;
    joint.kind = EditKind::Colon;
    AddItem(parser, joint, 1);
    joint.kind = EditKind::NewRecord;
    AddItem(parser, joint, 1);
    parser.format->reversion = parser.format->items.size();
    parser.secondPass = true;
    parser.position = parser.reversionText;
    ParseItems(parser, 1);
}

bool TakesValue(const EditDescriptor& item) {
    return item.kind <= EditKind::Text;
}

} // namespace

void ReportFormatFault(const std::string& fault) {
    std::fprintf(stderr, "zurt: format fault: %s\n", fault.c_str());
    std::abort();
}

Format::Format(const char* text) {
    FormatParser parser;
    parser.text = text;
    parser.format = this;
    if (!Take(parser, '('))
        ReportBadFormat(parser, "opening parenthesis missing");
    parser.reversionText = parser.position;
    ParseItems(parser, 1);
    if (Peek(parser) != '\0')
        ReportBadFormat(parser, "text behind the closing parenthesis");
    if (hasData && parser.scale != parser.reversionScale)
        AddSecondPass(parser);
    reverts = false;
    for (std::size_t i = reversion; i < items.size(); ++i)
        reverts = reverts || TakesValue(items[i]);
}

} // namespace zurt
