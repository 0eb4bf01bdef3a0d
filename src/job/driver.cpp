#include "job/driver.h"

#include "check/check_report.h"
#include "core/interrupt.h"
#include "core/ranks.h"
#include "core/stop.h"
#include "input/card.h"
#include "job/read_problem.h"
#include "job/run_end.h"
#include "job/solve_problem.h"
#include "microscale/fibre_data.h"
#include "model/prescribed_file.h"
#include "run/banner.h"
#include "run/files.h"
#include "timeint/checkpoint.h"
#include "timeint/progress.h"

#include <cstdio>
#include <new>

#if defined(__x86_64__)
#include <pmmintrin.h>
#include <xmmintrin.h>
#endif

namespace zurt {

namespace {

// Denormal results and operands count as zero for the whole run.
void FlushDenormalsToZero() {
#if defined(__x86_64__)
    _MM_SET_FLUSH_ZERO_MODE(_MM_FLUSH_ZERO_ON);
    _MM_SET_DENORMALS_ZERO_MODE(_MM_DENORMALS_ZERO_ON);
#endif
}

void StartUp(Run& run, const JobSettings& settings, std::FILE* consoleInput, std::FILE* consoleOutput) {
    FlushDenormalsToZero();
    if (!settings.dialogue)
        WatchForInterrupts(); // the dialogue leaves signals to their default
    CreateWorkingVector(run.A, settings.words);
    run.options = settings.options;
    run.job.Language = kEnglish;
    StartWorkers(run.workers, run.options.threads);
    run.units.listing.workers = run.units.console.workers = &run.workers;
    run.units.consoleInput = consoleInput;
    if (!settings.quiet && !settings.check)
        AttachTextUnit(run.units.console, consoleOutput, "the console");
    run.check.on = settings.check;
    if (settings.check)
        OpenDeckToCheck(run, settings);
    else if (settings.dialogue)
        OpenInputDeck(run);
    else
        OpenNamedDeck(run, settings);
    run.deck.allFree = run.options.allFree;
    if (!settings.options.prescribed.empty())
        OpenDeck(run.prescribedFile, settings.options.prescribed);
    if (settings.check)
        return;
    OpenCheckpoint(run);
    BeginProgress(run, !settings.dialogue && !settings.quiet);
}

bool IsStopCard(Run& run) {
    CardBuffer card;
    ReadCard(run.deck, run.control.header.INDFOR, "Card behind the problem", card);
    return Image(card).substr(0, 4) == "STOP";
}

// True when the deck holds another problem.
bool EndProblem(Run& run) {
    FreeFibreModel(run.fibres);
    WriteExecutionReport(run);
    FlushUnits(run);
    return !IsStopCard(run);
}

void RunProblems(Run& run) {
    do {
        ReadProblem(run);
        if (run.control.header.IREST == 0) {
            WriteCheckReport(run);
            return;
        }
        SolveProblem(run);
    } while (EndProblem(run));
    NoteRestOfPrescribedFile(run);
    CloseUnits(run);
}

// True when another problem follows.
bool CheckProblem(Run& run) {
    run.check.nodeLine.clear();
    run.check.curveLine.clear();
    run.check.capacityLine.clear();
    run.check.elementLine.clear();
    ReadProblem(run);
    FreeFibreModel(run.fibres);
    return run.control.header.IREST != 0 && !IsStopCard(run);
}

// Status kStopped when there is something to mend.
int CheckAndReport(Run& run, const JobSettings& settings, std::FILE* consoleOutput) {
    try {
        while (CheckProblem(run)) {
        }
    } catch (const RunStop& stop) {
        if (!AddStop(run, stop))
            throw;
    }
    WriteFindings(run, settings.json, consoleOutput);
    return run.check.findings.empty() ? kFinished : kStopped;
}

int RunAndReport(Run& run, const JobSettings& settings, std::FILE* consoleInput, std::FILE* consoleOutput) {
    try {
        StartUp(run, settings, consoleInput, consoleOutput);
        if (settings.check)
            return CheckAndReport(run, settings, consoleOutput);
        RunProblems(run);
        StopWithOtherRanks();
        return kFinished;
    } catch (const RunStop& stop) {
        return ReportStop(run, AgreeOnStop(stop));
    } catch (const std::bad_alloc&) { // an enormous deck on a small machine
        return ReportStop(run, AgreeOnStop({StopKind::LibraryError, "no memory left", ""}));
    }
}

} // namespace

int JobDriver(const JobSettings& settings, std::FILE* consoleInput, std::FILE* consoleOutput) {
    Run run;
    int status = kFinished;
    try {
        status = RunAndReport(run, settings, consoleInput, consoleOutput);
        return EndOfRun(run, settings, status);
    } catch (const RunStop& stop) { // the end itself could not be written
        if (status != kFailed)      // else the reason has been reported
            std::fprintf(stderr, "zurt: error: %s\n", stop.text.c_str());
    } catch (const std::bad_alloc&) {
        std::fputs("zurt: error: no memory left\n", stderr);
    }
    return kFailed;
}

} // namespace zurt
