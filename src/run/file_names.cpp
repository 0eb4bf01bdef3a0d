#include "run/file_names.h"

#include "core/stop.h"

#include <filesystem>
#include <sys/stat.h>
#include <vector>

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
    if (AreOneFile(name, run.deck.name))
        StopOnClash(name, "the deck");
    if (AreOneFile(name, run.options.prescribed))
        StopOnClash(name, "the file of prescribed values");
    if (IsOpen(run.units.listing) && AreOneFile(name, run.units.listing.name))
        StopOnClash(name, "the listing");
    for (const FixedFile& fixed : FixedFiles(run.units))
        if (AreOneFile(name, fixed.name))
            StopOnClash(name, "the file " + fixed.name);
}

void RequireDistinctFixedFiles(const Run& run) {
    const std::vector<FixedFile> files = FixedFiles(run.units);
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (files[i].written && AreOneFile(files[i].name, run.deck.name))
            StopOnClash(files[i].name, "the deck");
        if (files[i].written && AreOneFile(files[i].name, run.options.prescribed))
            StopOnClash(files[i].name, "the file of prescribed values");
        for (std::size_t j = 0; j < i; ++j)
            if (files[i].written && AreOneFile(files[i].name, files[j].name))
                StopOnClash(files[i].name, "the file " + files[j].name);
    }
}

} // namespace zurt
