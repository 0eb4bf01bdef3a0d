// Runs the real binary on a deck in a folder of its own, through the console dialogue or its command line, and keeps all
// that it wrote.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace zurt_test {

struct RunResult {
    int status = -1;     // exit status; 128 + signal when a signal ended the run; -1 after the time limit
    std::string console; // standard output
    std::string errors;  // standard error
    std::string listing, graphics, messages, mass;
    std::string folder;
};

/// A new empty folder under the system's temporary folder; removed when the test process ends.
std::string MakeTemporaryFolder();

std::string ReadFile(const std::string& name);
void WriteFile(const std::string& name, const std::string& text);

/// All files of results in a folder, of any run, by their names.
std::map<std::string, std::string> ResultFiles(const std::string& folder);

/// A new folder with a deck in a file of this name.
std::string FolderWith(const std::string& deckName, const std::string& deck);

/// The text with `by` at the first place of `part`, which must stand in it.
std::string Replaced(std::string text, const std::string& part, const std::string& by);

/// Runs the binary in `folder` with `answers` on its console input.
RunResult RunInFolder(const std::string& folder, const std::string& answers, int secondsAllowed = 120);

/// Runs the binary in `folder` with these arguments; `input` is its standard input. What it wrote is looked for in the
/// folder `outputs` within. Status and streams are of this run alone.
struct Invocation {
    std::vector<std::string> arguments;
    std::string input;
    std::string outputs = ".";
    int interruptAfterSteps = 0; // above 0: SIGINT once the console shows so many steps ended
    int interruptAfterLines = 0; // or so many lines, and half a second more
};
RunResult RunProgram(const std::string& folder, const Invocation& invocation, int secondsAllowed = 120);

/// Puts the deck into a new folder as zurt.dat and runs it with the default names.
RunResult RunDeck(const std::string& deck, int secondsAllowed = 120);

/// The same for a deck that is good: another status than 0 fails the test.
RunResult RunWell(const std::string& deck);

/// Nodal concentrations of the last table of the listing, one a node.
std::vector<double> LastConcentrations(const std::string& listing);

/// The same for every table, one a printed step.
std::vector<std::vector<double>> AllConcentrations(const std::string& listing);

/// Values of dataset `which` (1 to 4) of the last result step in the graphics file, `components` to a node.
std::vector<double> LastUnvValues(const std::string& graphics, int which);

/// The part of the listing from the first result table on.
std::string ResultsOfListing(const std::string& listing);

inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// How often `part` stands in `text`.
int CountOf(const std::string& text, const std::string& part);

/// The numbers, with an exponent of E or D, that follow `label`, one for each place where it stands.
std::vector<double> NumbersBehind(const std::string& text, const std::string& label);

/// The rows of numbers below the last line that begins with `words`, from `heads` lines below it to a row without any.
std::vector<std::vector<double>> RowsBelow(const std::string& text, const std::string& words, int heads);

/// Porosity by the mass file of a run.
double PorosityOf(const RunResult& run);

/// Observed order of convergence of two errors, the second at half the size of the first.
double Order(double coarseError, double fineError);

} // namespace zurt_test
