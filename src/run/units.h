// The files of a run, under the numbers that the program's documentation gives them.
#pragma once

#include "core/unit_place.h"

#include <cstdio>
#include <string>
#include <vector>

namespace zurt {

/// Name fields take this many characters from the console.
constexpr int kNameLength = 20;

/// A file that is whole and that the run does not touch again.
struct FinishedFile {
    std::string name; // within the run's folder
    UnitPlace place;  // its end, once a checkpoint has been written behind it
};

struct Units {
    TextUnit listing;                  // 3
    TextUnit console;                  // 6
    TextUnit graphics;                 // 18
    TextUnit massX;                    // 57
    TextUnit massY;                    // 0: no number is ever assigned to it
    TextUnit massZ;                    // 59
    bool massTables = false;           // a fit or the direct calculation has written to these three
    TextUnit messages;                 // 62, MESSAGES.LST
    TextUnit progress;                 // of --progress
    TextUnit history;                  // the table of --history
    std::FILE* consoleInput = nullptr; // 5
    std::FILE* scratch15 = nullptr;    // Dormant: opened, never used
    std::FILE* restart19 = nullptr;    // "ZITEMP": opened, never written, never read
    std::FILE* stepFile = nullptr;     // 20, scratch
    std::int32_t ListingOpen = 0, GraphicsOpen = 0; // 1 once the deck asked for them
    bool none = false;                              // no output is opened, whatever the deck asks for
    bool keepsOlder = false;                        // files of earlier runs are not replaced
    bool dialogue = true; // names of outputs are asked for; else the defaults are taken
    std::string
        Folder; // of the files with fixed names and of the defaults, with a slash at its end; empty: the current one
    std::string Base; // folder and name of the deck without its end: what default names begin with
    std::string DefaultListingName;
    std::string DefaultGraphicsName;
    std::vector<FinishedFile> finished; // but for the units above
};

} // namespace zurt
