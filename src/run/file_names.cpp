#include "run/file_names.h"

#include "core/stop.h"
#include "core/whole_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <filesystem>
#include <functional>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace zurt {

namespace {

struct FixedFile {
    std::string name;
    bool written; // by every run, or by some
};

// Those at the end are the exchange files of an external solver, which no run writes.
std::vector<FixedFile> FixedFiles(const Units& units) {
    std::vector<FixedFile> files = {{StepArchiveName(units), true}, {MessagesName(units), true}};
    for (std::int32_t direction = 1; direction <= 3; ++direction)
        files.push_back({MassFileName(units, direction), true});
    for (const char* name : {"Sparse.bin", "FULLMATR.BIN", "comparison.txt", "params.txt", "RESENJE.OUT"})
        files.push_back({units.Folder + name, false});
    return files;
}

// Takes digits from the front; how many there were.
std::size_t TakeDigits(std::string_view& text) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(digits);
    return digits;
}

bool TakeWord(std::string_view& text, std::string_view word) {
    const bool found = text.substr(0, word.size()) == word;
    if (found)
        text.remove_prefix(word.size());
    return found;
}

// What stands behind the NAME of a file for viewers: "", "-p2" and then ".pvd", "-fibres.vtp" or "-0001.vtu".
bool IsViewerEnding(std::string_view text) {
    if (std::string_view later = text; TakeWord(later, "-p") && TakeDigits(later) > 0)
        text = later;
    if (text == ".pvd" || text == "-fibres.vtp")
        return true;
    return TakeWord(text, "-") && TakeDigits(text) >= 4 && text == ".vtu";
}

// Names of the files for viewers, or of the parts that a kill left of them.
std::vector<std::string> FindViewerFiles(const Units& units, bool parts) {
    const std::string base = ViewerName(units, 1);
    const std::string start = parts ? PartName(base).substr(0, base.size() + 1) : base;
    const std::string_view ending = parts ? ".part" : "";
    std::vector<std::string> found;
    // The library's own iterator ends the process when memory is missing.
    DIR* const folder = opendir(units.Folder.empty() ? "." : units.Folder.c_str());
    if (folder == nullptr)
        return found; // a folder that can't be read tells no names
    while (const dirent* entry = readdir(folder)) {
        const std::string name = units.Folder + entry->d_name;
        std::string_view rest = name;
        if (!TakeWord(rest, start) || rest.size() < ending.size() ||
            rest.substr(rest.size() - ending.size()) != ending)
            continue;
        rest.remove_suffix(ending.size());
        if (IsViewerEnding(rest))
            found.push_back(name);
    }
    closedir(folder);
    std::sort(found.begin(), found.end(), std::greater<>());
    return found;
}

// Files that the job names, which no output may be.
struct NamedFile {
    std::string name, what;
};
std::array<NamedFile, 3> NamedFiles(const Run& run) {
    return {{{run.deck.name, "the deck"},
             {run.options.prescribed, "the file of prescribed values"},
             {run.options.progress, "the file of --progress"}}};
}

[[noreturn]] void StopOnClash(const std::string& name, const std::string& other) {
    StopWithLibraryError("can't open " + name + " for writing: it is " + other + " of this run");
}

} // namespace

std::string MassFileName(const Units& units, std::int32_t direction) {
    return units.Folder + "MASS-" + "?XYZ"[direction] + ".LST";
}

std::string MessagesName(const Units& units) {
    return units.Folder + "MESSAGES.LST";
}

std::string HistoryName(const Units& units, std::int32_t problem) {
    return units.Base + "-history" + (problem > 1 ? "-" + std::to_string(problem) : "") + ".csv";
}

std::string StepArchiveName(const Units& units) {
    return units.Folder + "ZITEMP";
}

std::string CheckpointName(const Units& units) {
    return units.DefaultListingName.substr(0, units.DefaultListingName.rfind('.')) + ".checkpoint";
}

std::string ViewerName(const Units& units, std::int32_t problem) {
    const std::string& listing = units.DefaultListingName;
    const std::string name = listing.substr(0, listing.rfind('.'));
    return problem == 1 ? name : name + "-p" + std::to_string(problem);
}

std::vector<std::string> OldViewerFiles(const Units& units) {
    return FindViewerFiles(units, false);
}

void RemoveOldViewerFiles(const Units& units, const std::string& kept) {
    std::set<std::string> own = {kept};
    for (const FinishedFile& file : units.finished)
        own.insert(units.Folder + file.name);
    for (const bool parts : {false, true})
        for (const std::string& name : FindViewerFiles(units, parts))
            if (own.count(name) == 0 && unlink(name.c_str()) != 0)
                StopWithLibraryError("can't delete " + name + ": " + std::strerror(errno));
}

bool AreOneFile(const std::string& name, const std::string& other) {
    if (name.empty() || other.empty())
        return false;
    struct stat first, second;
    const bool firstExists = stat(name.c_str(), &first) == 0,
               secondExists = stat(other.c_str(), &second) == 0;
    if (firstExists && secondExists)
        return S_ISREG(first.st_mode) && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
    if (firstExists != secondExists)
        return false;
    std::error_code ignored;
    return std::filesystem::weakly_canonical(name, ignored) ==
           std::filesystem::weakly_canonical(other, ignored);
}

void RequireUnused(const Run& run, const std::string& name) {
    for (const NamedFile& named : NamedFiles(run))
        if (AreOneFile(name, named.name))
            StopOnClash(name, named.what);
    if (IsOpen(run.units.listing) && AreOneFile(name, run.units.listing.name))
        StopOnClash(name, "the listing");
    for (const FixedFile& fixed : FixedFiles(run.units))
        if (AreOneFile(name, fixed.name))
            StopOnClash(name, "the file " + fixed.name);
}

void RequireDistinctFiles(const Run& run) {
    const std::vector<FixedFile> files = FixedFiles(run.units);
    const auto named = NamedFiles(run);
    for (std::size_t i = 0; i < files.size(); ++i) {
        for (const NamedFile& other : named)
            if (files[i].written && AreOneFile(files[i].name, other.name))
                StopOnClash(files[i].name, other.what);
        for (std::size_t j = 0; j < i; ++j)
            if (files[i].written && AreOneFile(files[i].name, files[j].name))
                StopOnClash(files[i].name, "the file " + files[j].name);
    }
    for (const NamedFile& input : {named[0], named[1]})
        if (AreOneFile(run.options.progress, input.name))
            StopOnClash(run.options.progress, input.what);
}

} // namespace zurt
