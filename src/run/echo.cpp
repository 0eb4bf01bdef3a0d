#include "run/echo.h"

#include "core/format.h"

#include <algorithm>
#include <string>

namespace zurt {

namespace {

constexpr int kCardsPerPage = 50;
constexpr std::size_t kListedColumns = 70;

// Both rulers in one place: the tens above, the column digits below, cut at column 70.
std::string ListingRuler(const Run& run) {
    return FormatText("(A,7(9X,I1))", Say(run, " KART ", " CARD "), 1, 2, 3, 4, 5, 6, 7) +
           FormatText("(A,7('1234567890'))", Say(run, " BROJ ", " NUMB "));
}

std::string ListingDashes() {
    return FormatText("(1X,4('-'),1X,70('-'))");
}

std::string ListingHead(const Run& run) {
    return FormatText("('1'//6X,2A)",
                      Say(run, "S L E D E   K A R T I C E   L I S T I N G A   ",
                          "A   C A R D   I M A G E   L I S T I N G   O F   "),
                      Say(run, "U L A Z N E   D A T O T E K E", "T H E   I N P U T   D A T A")) +
           FormatText("(/28X,A/)", Say(run, "K O L O N A    B R O J", "C O L U M N   N U M B E R")) +
           ListingRuler(run) + ListingDashes();
}

std::string ListingFoot(const Run& run) {
    return ListingDashes() + ListingRuler(run);
}

} // namespace

void WriteEchoLines(Run& run, const EchoLine* lines, std::size_t count, const void* record) {
    static const Format integerLine("(/6X,A,I5)");
    static const Format realLine("(/6X,A,1PE10.3)");
    static const Format remarkLine("(16X,A)");
    TextUnit& listing = run.units.listing;
    const char* base = static_cast<const char*>(record);
    for (std::size_t i = 0; i < count; ++i) {
        const EchoLine& line = lines[i];
        const char* label = Say(run, line.serbian, line.english);
        if (line.kind == EchoKind::Integer)
            Write(listing, integerLine, label, *reinterpret_cast<const std::int32_t*>(base + line.offset));
        else if (line.kind == EchoKind::Real)
            Write(listing, realLine, label, *reinterpret_cast<const double*>(base + line.offset));
        else
            Write(listing, remarkLine, label);
    }
}

void PrintCardNumber(Run& run, std::int32_t first, std::int32_t page) {
    if (page != 0 && page != 1)
        return;
    TextUnit& listing = run.units.listing;
    Write(listing, page == 0 ? "(5(/))" : "(//)");
    if (page == 1)
        Write(listing, "('1')");
    if (first == run.deck.CardCounter)
        Write(listing, "(A,I5)", Say(run, " KARTICA BROJ", " CARD NUMBER "), first);
    else
        Write(listing, "(A,I5,A,I5)", Say(run, " KARTICE OD BROJA", " CARD FROM NUMBER "), first,
              Say(run, " DO", " TO"), run.deck.CardCounter);
    Write(listing, "(//)");
}

void ListCards(Run& run) {
    Deck& deck = run.deck;
    TextUnit& listing = run.units.listing;
    static const Format cardLine("(I5,1X,A)");
    const std::string head = ListingHead(run), foot = ListingFoot(run);
    const Word lines = LineCount(deck);
    CardBuffer card;
    PutBytes(listing, head);
    for (Word line = 1; line <= lines; ++line) {
        if (line > 1 && line % kCardsPerPage == 1) {
            PutBytes(listing, foot);
            PutBytes(listing, head);
        }
        TakeImage(LineText(deck, line), card);
        Write(listing, cardLine, line, Image(card).substr(0, kListedColumns));
    }
    PutBytes(listing, foot);
    Write(
        listing, "(//6X,19('*'),A,A)",
        Say(run, " K R A J   U L A Z N O G   L I S T I N G A ", " E N D   O F   I N P U T   L I S T I N G "),
        Say(run, "*************", "***************"));
    // Back behind the last card read, by its number: a list-directed read that has run over a line end leaves the
    // counter short of the true position, and the deck then stands some lines too far back.
    deck.nextLine = std::min<Word>(deck.CardCounter, lines);
}

} // namespace zurt
