// A run with a deck and a small working vector, for tests that call one reader of the model data.
#pragma once

#include "job/run.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

namespace zurt::test {

/// One line of a deck, as printf writes it.
__attribute__((format(printf, 1, 2))) inline std::string Line(const char* form, ...) {
    char text[300];
    va_list values;
    va_start(values, form);
    std::vsnprintf(text, sizeof text, form, values);
    va_end(values);
    return std::string(text) + "\n";
}

struct CloseRun {
    void operator()(Run* run) const {
        DestroyWorkingVector(run->A);
        if (run->units.listing.file != stderr)
            CloseTextUnit(run->units.listing);
        delete run;
    }
};
using RunPointer = std::unique_ptr<Run, CloseRun>;

/// A run that stands at the head of `deckText`; echo off, NP nodes, all words of `A` stale as behind another problem.
inline RunPointer MakeRun(const std::string& deckText, std::int32_t INDFOR, std::int32_t NP = 1,
                          Word words = 100000) {
    static int number = 0;
    const std::string name =
        testing::TempDir() + "model_" + std::to_string(getpid()) + "_" + std::to_string(++number) + ".dat";
    std::FILE* file = std::fopen(name.c_str(), "wb");
    std::fwrite(deckText.data(), 1, deckText.size(), file);
    std::fclose(file);
    RunPointer run(new Run);
    OpenDeck(run->deck, name);
    std::remove(name.c_str());
    CreateWorkingVector(run->A, words);
    const Word first = TakeWords(run->A, "stale", words);
    Fill(RealSection(run->A, first, words), 77.25);
    RestartWorkingVector(run->A);
    run->control.header.INDFOR = INDFOR;
    run->control.header.NP = NP;
    run->control.header.NMATT = 1;
    run->control.header.NULAZ = -1;
    AttachTextUnit(run->units.listing, std::tmpfile(), "listing");
    return run;
}

/// What stands on the listing.
inline std::string ListingOf(Run& run) {
    std::FILE* file = run.units.listing.file;
    std::string text;
    std::rewind(file);
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        text += static_cast<char>(c);
    return text;
}

/// Turns the listing to standard error, where a death test looks.
inline void ListOnStandardError(Run& run) {
    CloseTextUnit(run.units.listing);
    AttachTextUnit(run.units.listing, stderr, "listing");
}

inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace zurt::test
