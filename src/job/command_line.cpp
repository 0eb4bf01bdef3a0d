#include "job/command_line.h"

#include "core/ranks.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace zurt {

namespace {

constexpr const char* kVersion = "zurt " ZURT_VERSION "\n";

constexpr const char* kHelp =
    R"(zurt: nonlinear, transient diffusion by finite elements, from channels to fibres

Usage: zurt [options] DECK      runs the deck DECK; - reads it from standard input
       zurt                     asks for the names of deck, listing and graphics file

  -o, --output DIR   folder for every file of the run, made if it is missing
                     (default: the current folder)
  -f, --force        overwrite files of earlier runs; without it none is
  -q, --quiet        nothing on standard output
      --words N      size of the working vector in words of 8 bytes, for models
                     that outgrow it (default: 120000000)
      --free         decks of INDFOR 1 have all their cards free, those of devices too
      --check        reads the deck and lists what a run would stumble over, as
                     DECK:LINE: text; status 1 if there is anything, no files
      --json         the same as JSON
      --prescribed FILE
                     held nodes at values of their own, constant or by functions
                     of time, from FILE
      --history      a row a step in a table: stored amounts, flows, balance
      --probe N[,N...] and in it the values of these nodes
      --wall-cells N elements that a fibre wall cuts are integrated over N x N (x N)
                     sub-cells (changes digits; default: Gauss points alone)
      --solver NAME  skyline, sparse or cg (conjugate gradients) in the place of
                     the solver that the deck chooses
      --tolerance T  residual at which cg ends, relative to the right-hand side
                     (default: 1e-11)
      --threads N    threads that share the work; 0: one for each processor
                     (changes no digit; default: 1)
      --progress FILE
                     a line a step in FILE; a terminal shows one in any case
      --checkpoint N every N steps the state of the run, in NAME.checkpoint
      --restart FILE goes on from a checkpoint, with the same deck and options
      --vtu          results for ParaView, too: NAME.pvd, a NAME-0001.vtu for each step
  -h, --help         this page
      --version      the program's version

A deck plate.dat gives plate.lst (listing), plate.unv (mesh and results),
MASS-X.LST and MESSAGES.LST. Example:

  zurt --output plate plate.dat

Status: 0 finished, 1 stopped by a message of the program (end of the listing),
2 a fault of deck, files, memory or arguments, 3 interrupted.
)";

// Larger sizes exceed the memory of any machine, and their count of bytes would overflow.
constexpr Word kMostWords = Word{1} << 40;

int RefuseArguments(std::string fault) {
    for (char& c : fault) // the message is one line, whatever the argument holds
        if (static_cast<unsigned char>(c) < ' ')
            c = ' ';
    std::fprintf(stderr, "zurt: error: %s; see zurt --help\n", fault.c_str());
    return kFailed;
}

struct Arguments {
    JobSettings settings;
    std::vector<std::string> decks;
    std::string output;
    bool help = false;
    bool version = false;
    const CLI::Option* outputGiven = nullptr; // by pointer: a search by name could fail for lack of memory
    const CLI::Option* wallCellsGiven = nullptr;
    std::string solver;
    const CLI::Option* solverGiven = nullptr;
    const CLI::Option* toleranceGiven = nullptr;
    const CLI::Option* progressGiven = nullptr;
    const CLI::Option* checkpointGiven = nullptr;
    const CLI::Option* restartGiven = nullptr;
    const CLI::Option* prescribedGiven = nullptr;
};

struct SolverName {
    const char* name;
    SolverChoice choice;
};
constexpr SolverName kSolverNames[] = {
    {"skyline", SolverChoice::Skyline}, {"sparse", SolverChoice::Sparse}, {"cg", SolverChoice::Gradients}};

// OfDeck for a name that no solver has.
SolverChoice SolverOf(const std::string& name) {
    for (const SolverName& solver : kSolverNames)
        if (name == solver.name)
            return solver.choice;
    return SolverChoice::OfDeck;
}

void DescribeArguments(CLI::App& app, Arguments& arguments) {
    app.set_help_flag(); // the page above is the help
    app.add_option("DECK", arguments.decks);
    arguments.outputGiven = app.add_option("-o,--output", arguments.output);
    app.add_option("--words", arguments.settings.words);
    arguments.wallCellsGiven = app.add_option("--wall-cells", arguments.settings.options.wallCells);
    arguments.solverGiven = app.add_option("--solver", arguments.solver);
    arguments.toleranceGiven = app.add_option("--tolerance", arguments.settings.options.tolerance);
    app.add_option("--threads", arguments.settings.options.threads);
    arguments.progressGiven = app.add_option("--progress", arguments.settings.options.progress);
    arguments.checkpointGiven = app.add_option("--checkpoint", arguments.settings.options.checkpoint);
    arguments.restartGiven = app.add_option("--restart", arguments.settings.options.restart);
    app.add_flag("--vtu", arguments.settings.options.vtu);
    app.add_flag("--free", arguments.settings.options.allFree);
    app.add_flag("--check", arguments.settings.check);
    app.add_flag("--json", arguments.settings.json);
    arguments.prescribedGiven = app.add_option("--prescribed", arguments.settings.options.prescribed);
    app.add_flag("--history", arguments.settings.options.history);
    app.add_option("--probe", arguments.settings.options.probes)->delimiter(',')->allow_extra_args(false);
    app.add_flag("-f,--force", arguments.settings.force);
    app.add_flag("-q,--quiet", arguments.settings.quiet);
    app.add_flag("-h,--help", arguments.help);
    app.add_flag("--version", arguments.version);
}

// What is wrong with arguments that could be read; empty when nothing is.
std::string FaultOf(const Arguments& arguments) {
    const JobSettings& settings = arguments.settings;
    if (arguments.decks.empty() || arguments.decks[0].empty())
        return "no deck is named";
    if (arguments.decks.size() > 1)
        return "one deck at a time, not " + arguments.decks[0] + " and " + arguments.decks[1];
    if (arguments.decks[0] != "-" && IsFirstRank() && access(arguments.decks[0].c_str(), R_OK) != 0)
        return "can't open the deck " + arguments.decks[0] + ": " + std::strerror(errno);
    if (arguments.outputGiven->count() > 0 && arguments.output.empty())
        return "--output needs the name of a folder";
    if (settings.json && !settings.check)
        return "--json belongs to --check";
    if (settings.check && (arguments.outputGiven->count() > 0 || settings.force))
        return "--check writes no files: --output and --force have no meaning with it";
    const RunOptions& options = settings.options;
    if (arguments.prescribedGiven->count() > 0 && access(options.prescribed.c_str(), R_OK) != 0)
        return "can't open the file of prescribed values " + options.prescribed + ": " + std::strerror(errno);
    if (!options.probes.empty() && !options.history)
        return "--probe names nodes for the table of --history, which is not asked for";
    if (settings.words < 1 || settings.words > kMostWords)
        return "--words takes a count between 1 and " + std::to_string(kMostWords);
    if (arguments.wallCellsGiven->count() > 0 &&
        (settings.options.wallCells < 2 || settings.options.wallCells > kMostWallCells))
        return "--wall-cells takes a count between 2 and " + std::to_string(kMostWallCells);
    if (arguments.solverGiven->count() > 0 && SolverOf(arguments.solver) == SolverChoice::OfDeck)
        return "--solver takes skyline, sparse or cg, not " + arguments.solver;
    if (arguments.toleranceGiven->count() > 0 && SolverOf(arguments.solver) != SolverChoice::Gradients)
        return "--tolerance belongs to --solver cg";
    if (!(settings.options.tolerance > 0.0 && settings.options.tolerance < 1.0))
        return "--tolerance takes a number between 0 and 1";
    if (settings.options.threads < 0 || settings.options.threads > kMostThreads)
        return "--threads takes a count between 0 and " + std::to_string(kMostThreads);
    if (arguments.checkpointGiven->count() > 0 && settings.options.checkpoint < 1)
        return "--checkpoint takes a count of steps, from 1";
    if (arguments.restartGiven->count() > 0 && settings.options.restart.empty())
        return "--restart needs the name of a checkpoint";
    if (arguments.progressGiven->count() > 0 && settings.options.progress.empty())
        return "--progress needs the name of a file";
    return "";
}

std::string FaultOfParsing(const CLI::ParseError& error) {
    std::string text = error.what(); // "The following argument was not expected: --x"
    const std::size_t colon = text.find(": ");
    const std::string found = colon == std::string::npos ? "" : text.substr(colon);
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
        return "no such option" + found;
    if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr)
        return "a number is expected" + found;
    return text;
}

JobSettings SettingsOf(const Arguments& arguments) {
    JobSettings settings = arguments.settings;
    settings.dialogue = false;
    settings.options.solver = SolverOf(arguments.solver);
    settings.deck = arguments.decks[0];
    settings.folder = arguments.output;
    if (!settings.folder.empty() && settings.folder.back() != '/')
        settings.folder += '/';
    return settings;
}

} // namespace

std::optional<JobSettings> ReadCommandLine(int argc, const char* const* argv, int& status) {
    status = kFinished;
    if (argc < 2)
        return JobSettings{};
    CLI::App app;
    Arguments arguments;
    DescribeArguments(app, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        status = RefuseArguments(FaultOfParsing(error));
        return std::nullopt;
    }
    if (arguments.help || arguments.version) {
        if (std::fputs(arguments.help ? kHelp : kVersion, stdout) < 0 || std::fflush(stdout) != 0)
            status = RefuseArguments(std::string("can't write to the console: ") + std::strerror(errno));
        return std::nullopt;
    }
    const std::string fault = FaultOf(arguments);
    if (!fault.empty()) {
        status = RefuseArguments(fault);
        return std::nullopt;
    }
    return SettingsOf(arguments);
}

} // namespace zurt
