#include "job/run_end.h"

#include "check/node_use.h"
#include "core/format.h"
#include "core/terminal_line.h"
#include "run/file_names.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>

namespace zurt {

namespace {

// The place in the job: "problem 2, step 3, iteration 1", as listing and console count them.
std::string PlaceOf(const Run& run) {
    std::string place = "problem " + std::to_string(run.job.ProblemNumber);
    if (run.job.Solving == 0 || run.clock.KOR == 0)
        return place;
    if (run.fit.card.NFIT == 1) {
        place += std::string(", fit in direction ") + "?XYZ"[run.fit.INDDEG & 3];
        place += ", run " + std::to_string(run.fit.ITERFIT + 1);
    }
    return place + ", step " + std::to_string(run.clock.KOR) + ", iteration " +
           std::to_string(run.clock.ITER);
}

std::string MessageLine(const Run& run, const RunStop& stop) {
    std::string where = "see the end of " + stop.place;
    if (stop.place == run.units.console.name)
        where = IsOpen(run.units.console) ? "see the console" : "without --quiet the console shows the rest";
    return "stopped: " + stop.text + " (" + PlaceOf(run) + "; " + where + ")";
}

std::string InterruptLine(const Run& run) {
    std::string line = "interrupted: " + PlaceOf(run);
    if (run.job.Solving != 0 && run.clock.KOR > 0) {
        line += " of " + std::to_string(run.pass.NDT) + " steps, time ";
        line += FormatText("(1PE12.5)", run.clock.TIME).substr(1, 11);
    }
    return line + "; what was written so far is whole";
}

// A file may hold nothing but blanks: MESSAGES.LST after most runs.
bool HoldsSomething(const std::string& name) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(name, ignored))
        return false;
    std::FILE* file = std::fopen(name.c_str(), "rb");
    if (file == nullptr)
        return false;
    int c = 0;
    do
        c = std::getc(file);
    while (c == ' ' || c == '\n');
    std::fclose(file);
    return c != EOF;
}

std::string NamesOfFiles(const Run& run) {
    const Units& units = run.units;
    const std::pair<const char*, const TextUnit*> files[] = {
        {"listing", &units.listing},  {"UNV file", &units.graphics}, {"mass table", &units.massX},
        {"mass table", &units.massY}, {"mass table", &units.massZ},  {"messages", &units.messages}};
    std::string names;
    const auto add = [&](const std::string& what, const std::string& name) {
        if (!name.empty() && HoldsSomething(name))
            names += (names.empty() ? "" : ", ") + what + " " + name;
    };
    for (const auto& [what, unit] : files)
        add(what, unit->name);
    for (std::int32_t problem = 1; run.options.vtu && problem <= run.job.ProblemNumber; ++problem)
        add("ParaView file", ViewerName(units, problem) + ".pvd");
    for (std::int32_t problem = 1; run.options.history && problem <= run.job.ProblemNumber; ++problem)
        add("table", HistoryName(units, problem));
    return names;
}

void WriteFileNames(Run& run, int status) {
    const std::string names = NamesOfFiles(run);
    const char* const end = status == kInterrupted ? "Interrupted; " : "Stopped; ";
    if (status == kFinished)
        Write(run.units.console, "(A,A)", "Results: ", names);
    else if (!names.empty())
        Write(run.units.console, "(A,A,A)", end, "written so far: ", names);
    else if (!run.units.messages.name.empty())
        Write(run.units.console, "(A,A)", end, "nothing was written");
}

// A message of another process has not reached its unit yet. One that no file was open for here is dropped once more.
void PutRecordsOfStop(Run& run, const RunStop& stop) {
    TextUnit& unit = stop.place == run.units.listing.name ? run.units.listing : run.units.console;
    PutBytes(unit, stop.records);
}

// False for what is at fault in the file of prescribed values.
bool IsOfDeck(const Run& run, const RunStop& stop) {
    const std::string head = "deck " + run.deck.name + ", ";
    return stop.kind == StopKind::Message || (stop.ofCard && stop.text.compare(0, head.size(), head) == 0);
}

// What leads from the message to its cause, ahead of it, since the last line says why the run has ended.
void NoteOnStop(const Run& run, const RunStop& stop) {
    if (stop.equation != kNoSystem)
        NoteOnEquation(run, stop.equation);
    const bool reads = run.job.Solving == 0 && IsOfDeck(run, stop);
    const std::string trail = reads ? TrailOfCards(run.deck, stop.ofCard) : "";
    if (!trail.empty())
        WriteNote("deck " + run.deck.name + ": " + trail);
}

bool FlushEverything() {
    return std::fflush(nullptr) == 0;
}

void EndTerminalLine(const Run& run) {
    if (run.progress.onTerminal)
        EraseTerminalLine();
}

} // namespace

int ReportStop(Run& run, const RunStop& stop) {
    EndTerminalLine(run);
    PutRecordsOfStop(run, stop);
    FlushEverything(); // so that the report comes last where both streams are the same
    WriteDeckNotes(run.deck);
    NoteOnStop(run, stop);
    std::string line = "error: " + stop.text;
    int status = kFailed;
    if (stop.kind == StopKind::Message) {
        line = MessageLine(run, stop);
        status = kStopped;
    } else if (stop.kind == StopKind::Interrupt) {
        line = InterruptLine(run);
        status = kInterrupted;
    }
    std::fprintf(stderr, "zurt: %s\n", line.c_str());
    return status;
}

int EndOfRun(Run& run, const JobSettings& settings, int status) {
    EndTerminalLine(run);
    if (settings.dialogue && status == kStopped)
        status = kFinished;
    bool stored = FlushEverything();
    if (!settings.dialogue && !settings.check) {
        WriteFileNames(run, status);
        stored = FlushEverything() && stored;
    }
    if (stored || status == kFailed)
        return status;
    std::fputs("zurt: error: what was written could not be stored completely; is the disk full?\n", stderr);
    return kFailed;
}

} // namespace zurt
