#include "timeint/progress.h"

#include "core/ranks.h"
#include "core/terminal_line.h"

#include <cmath>
#include <cstdio>
#include <string>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace zurt {

namespace {

using Clockwork = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kBetweenLines{200};
constexpr std::size_t kUsualColumns = 80;

template <class... Values> std::string Print(const char* format, Values... values) {
    char text[96];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

double SecondsSince(ProgressState::Moment moment) {
    return std::chrono::duration<double>(Clockwork::now() - moment).count();
}

// Most memory that the process has had, in megabytes.
double MegabytesHeld() {
    struct rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// "fit in x, run 4, HEQ 1.2000E-02"
std::string FitText(const Run& run) {
    const FitState& fit = run.fit;
    std::string text = std::string("fit in ") + "?xyz"[fit.INDDEG & 3];
    if (fit.IPHASE == 0)
        return text + ", model with fibres";
    if (fit.IFITEND == 1)
        return text + ", closing run";
    text += ", run " + std::to_string(fit.ITERFIT);
    if (fit.ISFOFF == 0)
        return text + Print(", HEQ %.4E", fit.HEQ);
    return fit.ITERFIT < 2 ? text : text + Print(", curve from %.4E", fit.DCTRY);
}

std::string PlaceText(const Run& run) {
    std::string text;
    if (run.job.ProblemNumber > 1)
        text = "problem " + std::to_string(run.job.ProblemNumber) + ", ";
    if (run.fit.card.NFIT == 1)
        text += FitText(run) + ", ";
    else if (run.control.header.IDIRECTD == 1)
        text += "pass " + std::to_string(run.pass.PassCounter) + " of the direct calculation, ";
    return text + "step " + std::to_string(run.clock.KOR) + "/" + std::to_string(run.pass.NDT);
}

// Iteration and ratio of the last one that has ended: none ahead of a step's first.
std::string IterationText(const Run& run, bool stepEnded) {
    const Clock& clock = run.clock;
    if (run.job.NonlinearFlag == 0)
        return "";
    std::string text = ", iteration " + std::to_string(clock.ITER);
    if ((stepEnded || clock.ITER > 0) && clock.ReferenceNorm > 0.0)
        text += Print(", ratio %.1E", clock.IncrementNorm / clock.ReferenceNorm);
    return text;
}

// The steps that are left take as long as those that have been done, one with another.
std::string TimeText(const Run& run, bool stepEnded) {
    const ProgressState& state = run.progress;
    const std::int32_t ended = run.clock.KOR - (stepEnded ? 0 : 1);
    const double done = ended - state.firstStep, left = run.pass.NDT - ended;
    std::string text = ", elapsed " + DurationText(SecondsSince(state.start));
    if (done > 0.0)
        text += ", left " + DurationText(SecondsSince(state.passStart) / done * left);
    return text;
}

// The terminal's line leaves the time out, which fits into 80 columns.
std::string LineOf(const Run& run, bool stepEnded, bool withTime) {
    std::string line = PlaceText(run);
    if (withTime && run.control.header.NSTAC != 0)
        line += Print(", time %.6g", run.clock.TIME);
    line += IterationText(run, stepEnded) + TimeText(run, stepEnded);
    return line + Print(", %.0f MB", MegabytesHeld());
}

// A line that goes on in the terminal's next one could not be erased.
std::size_t ColumnsOfTerminal() {
    struct winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : kUsualColumns;
}

bool IsDue(const Run& run) {
    return run.progress.onTerminal && Clockwork::now() - run.progress.shown >= kBetweenLines;
}

void ShowLine(Run& run, const std::string& line) {
    TextUnit& console = run.units.console;
    FlushTextUnit(console);
    EraseTerminalLine();
    std::fputs(line.substr(0, ColumnsOfTerminal() - 1).c_str(), stderr);
    std::fflush(stderr);
    console.underLine = run.progress.consoleOnTerminal;
    run.progress.shown = Clockwork::now();
}

} // namespace

std::string DurationText(double seconds) {
    const long long whole = std::llround(seconds);
    return Print("%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
}

void BeginProgress(Run& run, bool onTerminal) {
    run.progress.onTerminal = onTerminal && IsFirstRank() && StandardErrorIsTerminal();
    const TextUnit& console = run.units.console;
    run.progress.consoleOnTerminal = console.file != nullptr && isatty(fileno(console.file)) == 1;
    run.progress.start = run.progress.passStart = run.progress.shown = Clockwork::now();
}

void BeginPassProgress(Run& run) {
    run.progress.passStart = Clockwork::now();
    run.progress.firstStep = run.clock.KOR;
}

void ShowProgress(Run& run) {
    if (IsDue(run))
        ShowLine(run, LineOf(run, false, false));
}

void EndStepProgress(Run& run) {
    if (IsOpen(run.units.progress)) {
        PutRecord(run.units.progress, LineOf(run, true, true));
        FlushTextUnit(run.units.progress);
    }
    if (IsDue(run))
        ShowLine(run, LineOf(run, true, false));
}

} // namespace zurt
