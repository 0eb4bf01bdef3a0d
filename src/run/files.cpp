#include "run/files.h"

#include "core/file_lock.h"
#include "core/format.h"
#include "core/ranks.h"
#include "core/stop.h"
#include "run/file_names.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace zurt {

namespace {

constexpr const char* kDefaultDeckName = "zurt.dat";

// One line of the console, without its end; the end of the input is an error. What goes beyond the length of a name is
// dropped.
std::string ReadConsoleLine(Run& run) {
    FlushTextUnit(run.units.console);
    std::string line;
    bool cut = false;
    int c = 0;
    while ((c = std::getc(run.units.consoleInput)) != EOF && c != '\n') {
        if (line.size() < kNameLength)
            line.push_back(static_cast<char>(c));
        else
            cut = cut || (c != ' ' && c != '\r');
    }
    if (cut)
        WriteNote("an answer has up to " + std::to_string(kNameLength) +
                  " characters; what is taken of this one is \"" + line + "\"");
    if (c == EOF && line.empty())
        StopWithLibraryError("the console input ended where an answer is expected");
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

// Trailing blanks don't belong to a name; a blank answer is empty.
std::string ReadName(Run& run) {
    std::string name = ReadConsoleLine(run);
    while (!name.empty() && (name.back() == ' ' || name.back() == '\t'))
        name.pop_back();
    return name;
}

bool FileExists(const std::string& name) {
    struct stat status;
    return stat(name.c_str(), &status) == 0;
}

// Only a plain file is deleted: a device or a pipe is written to as it is, and a folder can't be written to.
bool IsPlainFile(const std::string& name) {
    struct stat status;
    return stat(name.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

void DeriveDefaultNames(Run& run, const std::string& name) {
    const bool capitals = name[0] >= 'A' && name[0] <= 'Z';
    const std::size_t point = name.find('.');
    const std::string base = run.units.Base =
        run.units.Folder + name.substr(0, point != std::string::npos ? point : name.find(' '));
    run.units.DefaultListingName = base + (capitals ? ".LST" : ".lst");
    run.units.DefaultGraphicsName = base + (capitals ? ".UNV" : ".unv");
}

// A file without a name, gone with the process. Jobs of the command line have it in their own folder, which is the
// user's choice of a disk.
std::FILE* OpenScratch(const Run& run) {
    std::FILE* file = nullptr;
    if (run.units.dialogue) {
        file = std::tmpfile();
    } else {
        std::string name = run.units.Folder + ".zurt-scratch-XXXXXX";
        const int descriptor = mkostemp(name.data(), O_CLOEXEC);
        if (descriptor >= 0) {
            unlink(name.c_str());
            file = fdopen(descriptor, "w+b");
        }
    }
    if (file == nullptr)
        StopWithLibraryError(std::string("can't open a scratch file: ") + std::strerror(errno));
    return file;
}

// "ZITEMP" is there after every run, empty or as it was.
std::FILE* OpenStepArchive(const Run& run) {
    const std::string name = StepArchiveName(run.units);
    std::FILE* file = std::fopen(name.c_str(), "ab");
    if (file == nullptr)
        StopWithLibraryError("can't open " + name + " for writing: " + std::strerror(errno));
    // Every run opens this file, so its lock is the lock of the folder, whose other files have fixed names.
    if (!LockFile(fileno(file))) {
        std::fclose(file);
        StopWithLibraryError("another run is writing to this folder (it holds " + name +
                             "): wait for it, or give each run a folder of its own (zurt --output DIR DECK)");
    }
    return file;
}

void OpenWorkFiles(Run& run) {
    run.units.scratch15 = OpenScratch(run);
    run.units.restart19 = OpenStepArchive(run);
    run.units.stepFile = OpenScratch(run);
}

// True when the file may be replaced: its user has pressed ENTER or a D.
bool AskToDelete(Run& run, const std::string& name) {
    TextUnit& console = run.units.console;
    if (run.job.Language == kSerbian) {
        Write(console, "('   DATOTEKA    ',A,' VEC POSTOJI')", name);
        Write(console, "('  DA LI JE PREBRISATI  ( D / N ) \"D\" ? ')");
    } else {
        Write(console, "('   FILE    ',A,' ALREADY EXISTS')", name);
        Write(console, "(/'                 PRESS \"ENTER\" TO DELETE OR')");
        Write(console, "('                 KEY   \"N\"     TO BYPASS')");
    }
    const std::string answer = ReadConsoleLine(run);
    const char first = answer.empty() || answer[0] == ' ' ? 'D' : answer[0];
    return first == 'D' || first == 'd';
}

void AskAndOpen(Run& run, TextUnit& unit, const char* prompt, const std::string& defaultName) {
    while (true) {
        Write(run.units.console, "(A,A,'>')", prompt, defaultName);
        std::string name = ReadName(run);
        if (name.empty())
            name = defaultName;
        RequireUnused(run, name);
        if (FileExists(name)) {
            if (!AskToDelete(run, name))
                continue;
            if (IsPlainFile(name) && unlink(name.c_str()) != 0)
                StopWithLibraryError("can't delete " + name + ": " + std::strerror(errno));
        }
        OpenTextUnit(unit, name);
        return;
    }
}

void OpenOutput(Run& run, TextUnit& unit, const char* prompt, const std::string& defaultName) {
    if (run.units.dialogue)
        AskAndOpen(run, unit, prompt, defaultName);
    else
        OpenTextUnit(unit, defaultName);
}

// --- names of a job on the command line ---------------------------------------------------------------------------

std::string FileNameOf(const std::string& path) {
    const std::string name = std::filesystem::path(path).filename().string();
    return name.empty() ? kDefaultDeckName : name;
}

void MakeFolder(const std::string& folder) {
    std::error_code failure;
    if (!folder.empty() && !std::filesystem::is_directory(folder, failure)) {
        // Without the slash at its end, which create_directories would take for one more folder with an empty name.
        std::filesystem::create_directories(folder.substr(0, folder.size() - 1), failure);
        if (failure)
            StopWithLibraryError("can't make the folder " + folder + ": " + failure.message());
    }
}

// Without leave to overwrite, no output may exist. Asked before anything is calculated, so that no work is lost.
void RequireFreeNames(const Run& run) {
    const Units& units = run.units;
    std::string taken;
    int count = 0;
    for (const std::string& name : {units.DefaultListingName, units.DefaultGraphicsName, MessagesName(units),
                                    MassFileName(units, 1), MassFileName(units, 2), MassFileName(units, 3),
                                    run.options.history ? HistoryName(units, 1) : std::string()})
        if (!name.empty() && FileExists(name))
            taken += (count++ > 0 ? ", " : "") + name;
    for (const std::string& name :
         {run.options.checkpoint > 0 ? CheckpointName(units) : "", run.options.progress})
        if (!name.empty() && IsPlainFile(name))
            taken += (count++ > 0 ? ", " : "") + name;
    if (run.options.vtu) {
        const std::vector<std::string> old = OldViewerFiles(units);
        if (!old.empty())
            taken += (count++ > 0 ? ", " : "") + old[0];
        if (old.size() > 1) {
            taken += " and " + std::to_string(old.size() - 1) + " more";
            ++count;
        }
    }
    if (count > 0)
        StopWithLibraryError(taken + (count > 1 ? " exist" : " exists") +
                             " and would be overwritten: --force allows it, --output DIR writes elsewhere");
}

std::array<TextUnit*, 7> OutputUnits(Units& units) {
    return {&units.listing, &units.graphics, &units.massX,  &units.massY,
            &units.massZ,   &units.messages, &units.history};
}

// After a restart the file goes on behind the lines of the run that was interrupted.
void OpenProgressFile(Run& run) {
    TextUnit& unit = run.units.progress;
    if (run.options.progress.empty())
        return;
    if (run.options.restart.empty()) {
        OpenTextUnit(unit, run.options.progress);
    } else {
        unit.name = run.options.progress;
        ReopenTextUnit(unit);
    }
}

} // namespace

std::array<TextUnit*, kContinuedUnits> ContinuedUnits(Units& units) {
    return {&units.listing, &units.graphics, &units.messages, &units.history,
            &units.massX,   &units.massY,    &units.massZ};
}

std::array<std::string, kContinuedUnits> ContinuedNames(const Units& units, std::int32_t problem) {
    return {units.DefaultListingName,    units.DefaultGraphicsName, MessagesName(units),
            HistoryName(units, problem), MassFileName(units, 1),    MassFileName(units, 2),
            MassFileName(units, 3)};
}

void FinishFile(Units& units, const std::string& name) {
    units.finished.push_back({name.substr(units.Folder.size()), {}});
}

void OpenInputDeck(Run& run) {
    Write(run.units.console, "(A)",
          Say(run, "   IME ULAZNE DATOTEKE   <zurt.dat>", "   INPUT FILE NAME   <zurt.dat>"));
    std::string name = ReadName(run);
    if (name.empty())
        name = kDefaultDeckName;
    DeriveDefaultNames(run, name);
    OpenDeck(run.deck, name);
    RequireDistinctFiles(run);
    OpenWorkFiles(run);
}

void OpenNamedDeck(Run& run, const JobSettings& settings) {
    const bool standardInput = settings.deck == "-";
    Units& units = run.units;
    units.dialogue = false;
    units.Folder = settings.folder;
    DeriveDefaultNames(run, standardInput ? kDefaultDeckName : FileNameOf(settings.deck));
    if (standardInput)
        OpenDeckOnStandardInput(run.deck);
    else
        OpenDeck(run.deck, settings.deck);
    if (!IsFirstRank())
        return; // files are the first's
    MakeFolder(settings.folder);
    RequireDistinctFiles(run);
    RequireUnused(run, units.DefaultListingName);
    RequireUnused(run, units.DefaultGraphicsName);
    if (run.options.vtu)
        RequireUnused(run, ViewerName(units, 1) + ".pvd");
    if (run.options.history)
        RequireUnused(run, HistoryName(units, 1));
    if (run.options.checkpoint > 0)
        RequireUnused(run, CheckpointName(units));
    // A restart goes on with its own files; a checkpoint that is not of this deck and folder is refused ahead of them.
    const bool goesOn = !run.options.restart.empty();
    if (!settings.force && !goesOn)
        RequireFreeNames(run);
    units.keepsOlder = !settings.force && !goesOn;
    for (TextUnit* unit : OutputUnits(units))
        unit->keepsOlder = units.keepsOlder;
    OpenWorkFiles(run);
    OpenProgressFile(run);
}

void OpenDeckToCheck(Run& run, const JobSettings& settings) {
    run.units.dialogue = false;
    run.units.none = true;
    if (settings.deck == "-")
        OpenDeckOnStandardInput(run.deck);
    else
        OpenDeck(run.deck, settings.deck);
}

void OpenListing(Run& run) {
    run.units.ListingOpen = 1;
    if (run.units.none)
        return;
    OpenOutput(run, run.units.listing, Say(run, "   IME IZLAZNE DATOTEKE   <", "   OUTPUT FILE NAME   <"),
               run.units.DefaultListingName);
}

void OpenGraphics(Run& run) {
    run.units.GraphicsOpen = 1;
    if (run.units.none)
        return;
    OpenOutput(run, run.units.graphics,
               Say(run, "   IME GRAFICKE DATOTEKE   <", "   OUTPUT GRAPHICS FILE NAME   <"),
               run.units.DefaultGraphicsName);
}

void OpenMessages(Run& run) {
    if (run.units.none)
        return;
    if (!IsOpen(run.units.messages))
        OpenTextUnit(run.units.messages, MessagesName(run.units));
    PutRecord(run.units.messages, "      ");
}

void FlushUnits(Run& run) {
    for (TextUnit* unit : OutputUnits(run.units))
        FlushTextUnit(*unit);
    FlushTextUnit(run.units.console); // what it shows as ended is in the files by then
}

void CloseUnits(Run& run) {
    run.deck = Deck();
    for (TextUnit* unit : OutputUnits(run.units))
        CloseTextUnit(*unit);
    CloseTextUnit(run.units.progress);
}

} // namespace zurt
