#include "model/prescribed_file.h"

#include "core/stop.h"
#include "model/curve_lookup.h"
#include "model/prescribed_values.h"
#include "model/time_functions.h"

#include <string>
#include <string_view>

namespace zurt {

namespace {

constexpr std::int32_t kFreeFormat = 1;

constexpr CardField kPrescribedCountFields[] = {
    ZURT_COUNT(CurveCounts, NZADC, "I5", "entries of prescribed values; 0: none, and no other card follows"),
    ZURT_RANGE(CurveCounts, IGATH, "I5", 0.0, 1.0,
               "1: held nodes without an entry have the value of their node card, and no held value changes "
               "within a "
               "step; may be left out"),
};

// Fields that stand on a line, apart by blanks or commas.
int FieldsOn(std::string_view line) {
    int fields = 0;
    bool inside = false;
    for (const char c : line) {
        const bool separates = c == ' ' || c == '\t' || c == ',';
        fields += !separates && !inside;
        inside = !separates;
    }
    return fields;
}

// The second field may be left out, which a list-directed read would look for on the next card.
void ReadCountCard(const CardSource& source, CurveCounts& counts) {
    CardLayout layout = kPrescribedCountCard;
    const std::int32_t counted = source.deck.CardCounter;
    if (FieldsOn(ReadCardLine(source.deck, source.INDFOR, layout.group)) < 2)
        layout.fieldCount = 1;
    source.deck.CardCounter = counted;
    counts.NZADC = counts.IGATH = 0;
    ReadCardFields(source.deck, source.INDFOR, layout, &counts);
}

[[noreturn]] void RefuseCount(const Deck& deck, const CurveCounts& counts, const std::string& reason) {
    const bool entries = counts.NZADC > 0;
    DeckError(deck, kPrescribedCountCard.group, entries ? "NZADC" : "IGATH",
              std::to_string(entries ? counts.NZADC : counts.IGATH), reason);
}

// The functions of the deck stay in force when the file has none.
void ReadFunctions(Run& run, const CardSource& source) {
    CurveCounts& counts = run.control.counts;
    const HeaderFields& header = run.control.header;
    const bool deckHasFunctions = header.NDS != 0 && header.NDS != 2 && header.NANOCH == 0;
    const std::int32_t NTABFT = counts.NTABFT, MAXTFT = counts.MAXTFT;
    counts.NTABFT = counts.MAXTFT = 0;
    ReadTimeFunctions(run, source);
    if (counts.NTABFT == 0 && deckHasFunctions) {
        counts.NTABFT = NTABFT;
        counts.MAXTFT = MAXTFT;
    }
    if (counts.NTABFT < 1)
        DeckError(
            source.deck, kTimeFunctionCountCard.group, "NTABFT", "0",
            "prescribed values need a time function (of one point for a constant), and the deck has none");
}

// At the exact end of a function no value is found, and an entry takes that of the entry before it.
void NoteFunctionsThatEndWithTheRun(const Run& run) {
    const ConstIntArray points = TimeFunctionPoints(run);
    const ConstRealTable pairs = TimeFunctionPairs(run);
    for (Word f = 1; f <= points.length; ++f)
        if (points(f) > 1 && pairs(2 * f - 1, points(f)) - run.control.counts.TotalTime <= kCurveEndTolerance)
            WriteNote("prescribed values " + run.prescribedFile.name + ": time function " +
                      std::to_string(f) +
                      " ends with the run, and at its last argument it has no value: let it end later");
}

void NoteEntriesWithoutEffect(const Run& run) {
    const ConstIntArray ID = EquationNumbers(run), nodes = PrescribedNodes(run);
    Word count = 0;
    std::int32_t first = 0;
    for (Word i = 1; i <= nodes.length; ++i)
        if (nodes(i) != 0 && ID(nodes(i)) > 0 && ++count == 1)
            first = nodes(i);
    if (count > 0)
        WriteNote("prescribed values " + run.prescribedFile.name + ": " +
                  (count == 1 ? "1 entry is for a node that is"
                              : std::to_string(count) + " entries are for nodes that are") +
                  " not held (node " + std::to_string(first) + (count == 1 ? ")" : " first)") +
                  " and has no effect: hold it by an indicator of 1 on the node card");
}

} // namespace

const CardLayout kPrescribedCountCard = Layout("Prescribed value count", kPrescribedCountFields);

void ReadPrescribedFile(Run& run) {
    if (run.prescribedFile.name.empty())
        return;
    CurveCounts& counts = run.control.counts;
    const CardSource source{run.prescribedFile, kFreeFormat};
    ReadCountCard(source, counts);
    if (counts.NZADC == 0 && counts.IGATH == 0)
        return;
    if (run.fit.card.NFIT == 1 || run.control.header.IDIRECTD == 1)
        RefuseCount(
            source.deck, counts,
            "a fit and the direct calculation free all held nodes, so they take no prescribed values: "
            "reservoirs in the mesh drive them");
    if (counts.NZADC == 0)
        return;
    ReadFunctions(run, source);
    ReadPrescribedValues(run, source);
    NoteFunctionsThatEndWithTheRun(run);
    NoteEntriesWithoutEffect(run);
    WriteDeckNotes(run.prescribedFile);
}

void RequireUseOfPrescribedValues(const Run& run) {
    const CurveCounts& counts = run.control.counts;
    const bool transient = run.control.header.NSTAC != 0;
    if (run.job.NonlinearFlag == 1 || (counts.NZADC == 0 && counts.IGATH == 0))
        return;
    if (!transient && counts.IGATH == 1)
        return;
    StopWithLibraryError(
        "prescribed values " + run.prescribedFile.name + ": a " + (transient ? "transient" : "steady") +
        " problem with constant coefficients does not take them: give a curve two points (of "
        "equal value), so that the steps iterate");
}

void NoteRestOfPrescribedFile(Run& run) {
    Deck& file = run.prescribedFile;
    for (Word line = file.nextLine + 1; line <= LineCount(file); ++line)
        if (const std::string_view text = LineText(file, line);
            text.find_first_not_of(" \t") != std::string_view::npos && !IsComment(text)) {
            WriteNote("prescribed values " + file.name + ", line " + std::to_string(line) +
                      ": cards from here on were not read: the deck has no more problems");
            return;
        }
}

} // namespace zurt
