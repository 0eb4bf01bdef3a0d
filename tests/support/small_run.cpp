#include "support/small_run.h"

#include <cstdio>
#include <sstream>

namespace zurt_test {

SmallRun::SmallRun(const std::string& deckText, zurt::Word words) : folder(MakeTemporaryFolder()) {
    zurt::CreateWorkingVector(A, words);
    WriteFile(folder + "/deck", deckText);
    zurt::OpenDeck(deck, folder + "/deck");
    zurt::OpenTextUnit(units.listing, folder + "/listing");
    zurt::OpenTextUnit(units.console, folder + "/console");
    zurt::OpenTextUnit(units.graphics, folder + "/graphics");
    zurt::OpenTextUnit(units.messages, folder + "/messages");
}

SmallRun::~SmallRun() {
    for (zurt::TextUnit* unit : {&units.listing, &units.console, &units.graphics, &units.messages})
        if (unit->file != stderr)
            zurt::CloseTextUnit(*unit);
    zurt::DestroyWorkingVector(A);
}

RunPointer MakeRun(const std::string& deckText, std::int32_t INDFOR, std::int32_t NP, zurt::Word words) {
    RunPointer run = std::make_unique<SmallRun>(deckText, words);
    zurt::TakeWords(run->A, "stale", words);
    zurt::Fill(zurt::RealSection(run->A, 1, words), 77.25);
    zurt::RestartWorkingVector(run->A);
    zurt::HeaderFields& header = run->control.header;
    header.INDFOR = INDFOR;
    header.NP = NP;
    header.NMATT = 1;
    header.NULAZ = -1;
    return run;
}

std::string Written(zurt::TextUnit& unit) {
    zurt::FlushTextUnit(unit);
    return ReadFile(unit.name);
}

void ListOnStandardError(zurt::Run& run) {
    zurt::CloseTextUnit(run.units.listing);
    zurt::AttachTextUnit(run.units.listing, stderr, "listing");
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

} // namespace zurt_test
