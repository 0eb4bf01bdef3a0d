#include "timeint/checkpoint.h"

#include "core/format.h"
#include "core/stop.h"
#include "core/word_sum.h"
#include "results/vtu_results.h"
#include "run/file_names.h"
#include "run/files.h"
#include "timeint/checkpoint_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace zurt {

namespace {

// The options that change what a run writes, as they are given.
std::string OptionsText(const RunOptions& options) {
    std::string text;
    if (options.wallCells > 0)
        text += " --wall-cells " + std::to_string(options.wallCells);
    if (options.solver == SolverChoice::Skyline)
        text += " --solver skyline";
    if (options.solver == SolverChoice::Sparse)
        text += " --solver sparse";
    if (options.solver == SolverChoice::Gradients) {
        char tolerance[32];
        std::snprintf(tolerance, sizeof tolerance, "%.17g", options.tolerance);
        text += std::string(" --solver cg --tolerance ") + tolerance;
    }
    if (options.allFree)
        text += " --free";
    if (options.vtu)
        text += " --vtu";
    if (!options.prescribed.empty())
        text += " --prescribed"; // under any name: its content counts
    if (options.history)
        text += " --history";
    for (std::size_t i = 0; i < options.probes.size(); ++i)
        text += (i == 0 ? " --probe " : ",") + std::to_string(options.probes[i]);
    return text.empty() ? "none" : text.substr(1);
}

std::size_t UnitsToContinue(const CheckpointHead& head) {
    return head.massTables ? kContinuedUnits : kContinuedUnits - 3;
}

void TransferFinished(CheckpointStream& stream, std::vector<FinishedFile>& files) {
    TransferLength(stream, files);
    for (FinishedFile& file : files) {
        TransferText(stream, file.name);
        TransferRecord(stream, file.place);
    }
}

void TransferHead(CheckpointStream& stream, CheckpointHead& head) {
    TransferText(stream, head.version);
    TransferText(stream, head.options);
    TransferRecord(stream, head.deckSize);
    TransferRecord(stream, head.deckSum);
    TransferRecord(stream, head.prescribedSize);
    TransferRecord(stream, head.prescribedSum);
    TransferRecord(stream, head.problem);
    TransferRecord(stream, head.pass);
    TransferRecord(stream, head.step);
    TransferRecord(stream, head.massTables);
    TransferRecord(stream, head.places);
    TransferFinished(stream, head.finished);
    TransferRecord(stream, head.LSK);
    TransferRecord(stream, head.LRHS);
    TransferRecord(stream, head.LMAXM);
}

void TransferNumbers(CheckpointStream& stream, std::vector<double>& numbers) {
    TransferLength(stream, numbers);
    TransferBytes(stream, numbers.data(), sizeof(double) * numbers.size());
}

// Of all passes ahead of the checkpoint's.
void TransferFlows(CheckpointStream& stream, CheckpointState& state, std::int32_t pass) {
    state.flows.resize(static_cast<std::size_t>(pass - 1));
    for (PassFlows& flows : state.flows) {
        TransferNumbers(stream, flows.micro);
        TransferNumbers(stream, flows.equivalent);
    }
}

void TransferWords(CheckpointStream& stream, RealArray words) {
    TransferBytes(stream, words.data, sizeof(double) * static_cast<std::size_t>(words.length));
}

// What the steps so far leave to those that follow.
void TransferState(CheckpointStream& stream, Run& run) {
    const Pointers& at = run.control.at;
    TransferRecord(stream, run.clock);
    TransferRecord(stream, run.outputs);
    TransferRecord(stream, run.visits.held);
    TransferNumbers(stream, run.mass.FLUXMICRO);
    TransferNumbers(stream, run.mass.FLUXEQUIV);
    TransferRecord(stream, run.mass.flowRows);
    TransferRecord(stream, run.viewer.problem);
    TransferText(stream, run.viewer.listed);
    TransferWords(stream, RealSection(run.A, 1, at.LSK - 1));
    TransferWords(stream, RealSection(run.A, at.LRHS, run.A.LMAXM - at.LRHS));
}

// --- writing ------------------------------------------------------------------------------------------------------

// Each file once. One that its user has taken away is not looked for later.
bool TakePlacesOfFinished(Units& units) {
    for (FinishedFile& file : units.finished) {
        if (file.place.length != kUnitNotOpened || TakePlace(units.Folder + file.name, file.place))
            continue;
        if (errno != ENOENT)
            return false;
        file.place.length = kUnitNoPlainFile;
    }
    return true;
}

// False, with the reason in errno, when an output is not on the disk.
bool TakeHead(Run& run, CheckpointHead& head) {
    head.version = ZURT_VERSION;
    head.options = OptionsText(run.options);
    head.deckSize = run.deck.size;
    head.deckSum = run.checkpoint.deckSum;
    head.prescribedSize = run.prescribedFile.size;
    head.prescribedSum = run.checkpoint.prescribedSum;
    head.problem = run.job.ProblemNumber;
    head.pass = run.checkpoint.pass;
    head.step = run.clock.KOR;
    head.massTables = run.units.massTables;
    head.LSK = run.control.at.LSK;
    head.LRHS = run.control.at.LRHS;
    head.LMAXM = run.A.LMAXM;
    const auto units = ContinuedUnits(run.units);
    for (std::size_t i = 0; i < UnitsToContinue(head); ++i)
        if (!TakePlace(*units[i], head.places[i]))
            return false;
    if (!TakePlacesOfFinished(run.units))
        return false;
    head.finished = run.units.finished;
    return true;
}

// The new name reaches the disk with the folder; what fails here does no harm to either checkpoint.
void StoreFolder(const std::string& folder) {
    const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
}

bool WriteCheckpoint(Run& run, const std::string& name) {
    const std::string part = name + ".part";
    CheckpointHead head;
    if (!TakeHead(run, head))
        return false;
    CheckpointStream stream = BeginCheckpointFile(part);
    TransferHead(stream, head);
    TransferFlows(stream, run.checkpoint, head.pass);
    TransferState(stream, run);
    const bool stored = EndCheckpointFile(stream) && std::rename(part.c_str(), name.c_str()) == 0;
    const int reason = errno;
    if (stored)
        StoreFolder(run.units.Folder);
    else
        unlink(part.c_str());
    errno = reason;
    return stored;
}

// --- going on -----------------------------------------------------------------------------------------------------

std::string FaultOfHead(const Run& run, const CheckpointHead& head) {
    if (head.version != ZURT_VERSION)
        return "is of version " + head.version + " of the program, and this is " ZURT_VERSION;
    if (head.deckSize != run.deck.size || head.deckSum != run.checkpoint.deckSum)
        return "is of another deck than " + run.deck.name + ", or the deck has been changed since";
    const std::string options = OptionsText(run.options);
    if (head.options != options)
        return "is of a run with other options that change what it writes: then " + head.options + ", now " +
               options;
    if (head.prescribedSize != run.prescribedFile.size || head.prescribedSum != run.checkpoint.prescribedSum)
        return "is of another file of prescribed values than " + run.prescribedFile.name +
               ", or the file has been changed since";
    return "";
}

std::uint64_t SumOf(const Deck& deck) {
    return AddToWordSum(kWordSumStart, deck.bytes.get(), static_cast<std::size_t>(deck.size));
}

// Takes the places of the files that the run goes on with. What is wrong with one; empty when nothing is.
std::string FaultOfFiles(Run& run) {
    const CheckpointHead& head = run.checkpoint.head;
    const auto names = ContinuedNames(run.units, head.problem);
    const auto units = ContinuedUnits(run.units);
    for (std::size_t i = 0; i < UnitsToContinue(head); ++i) {
        if (std::string fault = FaultOfPlace(names[i], head.places[i]); !fault.empty())
            return fault;
        units[i]->awaitsPlace = true;
    }
    for (const FinishedFile& file : head.finished)
        if (std::string fault = FaultOfPlace(run.units.Folder + file.name, file.place); !fault.empty())
            return fault;
    run.units.finished = head.finished;
    return "";
}

} // namespace

void OpenCheckpoint(Run& run) {
    const RunOptions& options = run.options;
    if (options.checkpoint <= 0 && options.restart.empty())
        return;
    CheckpointState& state = run.checkpoint;
    state.deckSum = SumOf(run.deck);
    state.prescribedSum = SumOf(run.prescribedFile);
    if (options.restart.empty())
        return;
    CheckpointStream stream = OpenCheckpointFile(options.restart);
    TransferHead(stream, state.head);
    std::string fault = stream.failed ? "can't be read" : FaultOfHead(run, state.head);
    if (!fault.empty())
        StopWithLibraryError("the checkpoint " + options.restart + " " + fault);
    TransferFlows(stream, state, state.head.pass);
    if (fault = FaultOfFiles(run); !fault.empty())
        StopWithLibraryError("can't go on from " + options.restart + ": " + fault);
    state.source = stream.file;
}

bool NextPassHasEnded(Run& run) {
    return ++run.checkpoint.pass < run.checkpoint.head.pass;
}

PassFlows& FlowsOfPass(Run& run) {
    std::vector<PassFlows>& flows = run.checkpoint.flows;
    flows.resize(std::max(flows.size(), static_cast<std::size_t>(run.checkpoint.pass)));
    return flows[static_cast<std::size_t>(run.checkpoint.pass - 1)];
}

void GoOnFromCheckpoint(Run& run) {
    CheckpointState& state = run.checkpoint;
    const CheckpointHead& head = state.head;
    if (state.source == nullptr || state.pass != head.pass)
        return;
    const Pointers& at = run.control.at;
    if (head.LSK != at.LSK || head.LRHS != at.LRHS || head.LMAXM != run.A.LMAXM)
        StopWithLibraryError("the checkpoint " + run.options.restart +
                             " is of another model than the one that has been read");
    CheckpointStream stream;
    stream.file = state.source;
    TransferState(stream, run);
    if (stream.failed)
        StopWithLibraryError("can't read the checkpoint " + run.options.restart);
    std::fclose(state.source);
    state.source = nullptr;
    const auto units = ContinuedUnits(run.units);
    for (std::size_t i = 0; i < units.size(); ++i)
        GoOnAtPlace(*units[i], head.places[i]);
    GoOnWithVtu(run);
    Write(run.units.console, "(/' GOING ON BEHIND STEP NUMBER',I10,' /',I7,' OF THE CHECKPOINT ',A)",
          head.step, run.pass.NDT, run.options.restart);
}

void WriteCheckpointIfDue(Run& run) {
    const std::int32_t interval = run.options.checkpoint;
    if (interval <= 0 || ++run.checkpoint.steps < interval || run.clock.KOR == run.pass.NDT)
        return;
    run.checkpoint.steps = 0;
    const std::string name = CheckpointName(run.units);
    if (!WriteCheckpoint(run, name))
        WriteNote("step " + std::to_string(run.clock.KOR) + ": can't write the checkpoint " + name + ": " +
                  std::strerror(errno) + "; the run goes on, and what stood there before stays");
}

} // namespace zurt
