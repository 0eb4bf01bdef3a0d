// Runs with the options --history, --probe and --prescribed, and the table that they leave.
#pragma once

#include "support/run_deck.h"

#include <map>
#include <string>
#include <vector>

namespace zurt_test {

/// Columns by their names without units; an empty place is NaN.
using HistoryTable = std::map<std::string, std::vector<double>>;

HistoryTable ReadHistory(const std::string& text);

struct HistoryRun {
    RunResult run;
    std::string text; // of the table of the first problem
    HistoryTable table;
};

/// Runs the deck with --history in a new folder; `prescribed` is the text of the file of prescribed values, "": none,
/// `probes` the argument of --probe.
HistoryRun RunWithHistory(const std::string& deck, const std::string& prescribed = "",
                          const std::string& probes = "");

/// The file of two faces: held by functions 1 and 2, of one point each.
std::string TwoFaces(const std::vector<int>& first, double c1, const std::vector<int>& second, double c2);

} // namespace zurt_test
