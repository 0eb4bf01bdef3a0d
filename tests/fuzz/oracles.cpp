#include "fuzz/oracles.h"

#include "fuzz/harness.h"
#include "fuzz/ticks.h"
#include "support/small_decks.h"

#include <algorithm>
#include <vector>

namespace zurt_fuzz {

namespace {

constexpr std::uint64_t kDecksToAPair = 50; // one deck of so many is tried as the first of a pair
constexpr std::string_view kStepHead = " S T E P  NUMBER =";

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

std::string_view Part(std::string_view text, const Stretch& stretch) {
    return text.substr(std::min(stretch.begin, text.size()), stretch.end - stretch.begin);
}

/// Takes the next line off the text, without its end.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

// --- finite ---------------------------------------------------------------------------------------------------------

bool HoldsNonFinite(std::string_view line) {
    return Contains(line, "NaN") || Contains(line, "Inf");
}

/// Numbers and nothing else; asterisks stand for what a field has no room for.
bool IsRowOfNumbers(std::string_view line) {
    return line.find_first_not_of(" 0123456789+-.EDNaInfity*") == std::string_view::npos;
}

/// Rows and heads of the tables from the first one on.
std::string NonFiniteInListing(std::string_view listing) {
    listing.remove_prefix(std::min(listing.find(kStepHead), listing.size()));
    while (!listing.empty()) {
        const std::string_view line = TakeLine(listing);
        const bool isResult = IsRowOfNumbers(line) || line.substr(0, kStepHead.size()) == kStepHead;
        if (isResult && HoldsNonFinite(line))
            return std::string(line);
    }
    return "";
}

/// Datasets of results: eight lines of names ahead of the time, then rows to a line of -1.
std::string NonFiniteInGraphics(std::string_view graphics) {
    constexpr std::string_view kHead = "    -1\n    55\n", kEnd = "    -1";
    for (std::size_t at = graphics.find(kHead); at != std::string_view::npos; at = graphics.find(kHead)) {
        graphics.remove_prefix(at + kHead.size());
        for (int i = 0; i < 7; ++i)
            TakeLine(graphics);
        for (std::string_view line = TakeLine(graphics); line != kEnd && !graphics.empty();
             line = TakeLine(graphics))
            if (HoldsNonFinite(line))
                return std::string(line);
    }
    return "";
}

std::string FindNonFinite(const Job& job) {
    for (const Problem& problem : job.problems) {
        const std::string row = NonFiniteInListing(Part(job.listing, problem.listing));
        if (!row.empty())
            return "finite: in the listing of a job that ends normally: " + row;
    }
    const std::string row = NonFiniteInGraphics(job.graphics);
    return row.empty() ? "" : "finite: in the graphics file of a job that ends normally: " + row;
}

// --- results --------------------------------------------------------------------------------------------------------

std::string FindMissingResults(const Job& job) {
    for (std::size_t i = 0; i < job.problems.size(); ++i) {
        const Problem& problem = job.problems[i];
        if (problem.asksForResults && !Contains(Part(job.listing, problem.listing), kStepHead))
            return "results: problem " + std::to_string(i + 1) + " ends normally without a result, with " +
                   std::to_string(problem.NDT) + " steps";
    }
    return "";
}

// --- pairs ----------------------------------------------------------------------------------------------------------

struct GoodDeck {
    std::string name, text, results;
};

/// From the first table of the job's last problem on.
std::string ResultsOfLast(const Job& job) {
    const std::string_view part = Part(job.listing, job.problems.back().listing);
    return std::string(part.substr(std::min(part.find(kStepHead), part.size())));
}

/// Decks that the manual lets a problem before change: a card listing asked for in a later problem puts the deck back too
/// far, radial elements keep the law of a degradation card.
bool IsSensitive(std::string_view name, const Problem& problem) {
    return problem.listsCards || name == "radial fibres";
}

/// The small decks of one problem that finish, with what they give alone.
std::vector<GoodDeck> MakeGoodDecks() {
    std::vector<GoodDeck> decks;
    for (const zurt_test::SmallDeck& deck : zurt_test::SmallDecks()) {
        const Job alone = RunJob(deck.text, kTicksOfJob);
        if (alone.end == End::Finished && alone.problems.size() == 1 &&
            !IsSensitive(deck.name, alone.problems[0]))
            decks.push_back({deck.name, deck.text, ResultsOfLast(alone)});
    }
    return decks;
}

const std::vector<GoodDeck>& GoodDecks() {
    static const std::vector<GoodDeck> decks = MakeGoodDecks();
    return decks;
}

std::string FirstDifference(std::string_view one, std::string_view other) {
    while (!one.empty() || !other.empty()) {
        const std::string_view a = TakeLine(one), b = TakeLine(other);
        if (a != b)
            return "\"" + std::string(a) + "\" and \"" + std::string(b) + "\"";
    }
    return "";
}

/// Fixed decks take a card between two problems, free ones don't.
std::string Behind(std::string_view deck, const Job& job, const std::string& next) {
    return std::string(deck.substr(0, job.bytesRead)) + (job.problems.back().INDFOR == 2 ? "NEXT\n" : "") +
           next;
}

std::string FindPairDifference(std::string_view deck, const Job& job, const GoodDeck& good) {
    if (job.problems.back().leavesOutlet)
        return "";
    const Job pair = RunJob(Behind(deck, job, good.text), 2 * kTicksOfJob);
    if (pair.end == End::OutOfTicks)
        return "";
    const std::string where = "pairs: \"" + good.name + "\" behind the deck ";
    if (pair.end != End::Finished)
        return where + "does not finish: " + pair.reason;
    if (pair.problems.size() != job.problems.size() + 1)
        return where + "is not taken as one problem more";
    const std::string results = ResultsOfLast(pair);
    if (results == good.results)
        return "";
    return where + "has other results than alone: " + FirstDifference(results, good.results);
}

} // namespace

std::uint64_t HashOf(std::string_view text) { // FNV-1a
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    return hash ^ (hash >> 32);
}

std::string CheckDeck(std::string_view deck) {
    const std::uint64_t hash = HashOf(deck);
    const Job job = RunJob(deck, kTicksOfJob);
    if (job.end != End::Finished)
        return "";
    std::string objection = FindNonFinite(job);
    if (objection.empty())
        objection = FindMissingResults(job);
    if (objection.empty() && hash % kDecksToAPair == 0)
        objection = FindPairDifference(deck, job, GoodDecks()[(hash >> 8) % GoodDecks().size()]);
    return objection;
}

} // namespace zurt_fuzz
