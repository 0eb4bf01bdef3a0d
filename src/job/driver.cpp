#include "job/driver.h"

#include "core/stop.h"
#include "job/banner.h"
#include "job/card.h"
#include "job/files.h"
#include "job/read_problem.h"
#include "job/solve_problem.h"
#include "microscale/fibre_data.h"

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

void StartUp(Run& run, std::FILE* consoleInput, std::FILE* consoleOutput, Word size) {
    FlushDenormalsToZero();
    CreateWorkingVector(run.A, size);
    run.control.state.Language = kEnglish;
    run.units.consoleInput = consoleInput;
    AttachTextUnit(run.units.console, consoleOutput, "the console");
    OpenInputDeck(run);
}

// True when the deck holds another problem.
bool EndProblem(Run& run) {
    FreeFibreModel(run.fibres);
    WriteExecutionReport(run);
    FlushUnits(run);
    CardBuffer card;
    ReadCard(run.deck, run.control.header.INDFOR, "Card behind the problem", card);
    return Image(card).substr(0, 4) != "STOP";
}

} // namespace

void JobDriver(std::FILE* consoleInput, std::FILE* consoleOutput, Word size) {
    Run run;
    StartUp(run, consoleInput, consoleOutput, size);
    do {
        ReadProblem(run);
        SolveProblem(run);
    } while (EndProblem(run));
    CloseUnits(run);
    StopRun();
}

} // namespace zurt
