#include "support/small_run.h"

#include <sstream>

namespace zurt_test {

SmallRun::SmallRun(const std::string& deck, zurt::Word size) : folder(MakeTemporaryFolder()) {
    zurt::CreateWorkingVector(run.A, size);
    WriteFile(folder + "/deck", deck);
    zurt::OpenDeck(run.deck, folder + "/deck");
    zurt::OpenTextUnit(run.units.listing, folder + "/listing");
    zurt::OpenTextUnit(run.units.console, folder + "/console");
    zurt::OpenTextUnit(run.units.graphics, folder + "/graphics");
    zurt::OpenTextUnit(run.units.messages, folder + "/messages");
}

SmallRun::~SmallRun() {
    for (zurt::TextUnit* unit :
         {&run.units.listing, &run.units.console, &run.units.graphics, &run.units.messages})
        zurt::CloseTextUnit(*unit);
    zurt::DestroyWorkingVector(run.A);
}

std::string Written(zurt::TextUnit& unit) {
    zurt::FlushTextUnit(unit);
    return ReadFile(unit.name);
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

} // namespace zurt_test
