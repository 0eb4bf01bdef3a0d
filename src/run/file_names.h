// Names of the files of a run, and the check that no two of them are one file.
#pragma once

#include "run/run.h"

#include <string>
#include <vector>

namespace zurt {

/// Name of the table of masses of direction 1, 2 or 3, of MESSAGES.LST and of ZITEMP, in the run's folder.
std::string MassFileName(const Units& units, std::int32_t direction);
std::string MessagesName(const Units& units);
std::string StepArchiveName(const Units& units);

/// Name of the checkpoint of a job on the command line: the listing's with another ending.
std::string CheckpointName(const Units& units);
/// Files for viewers begin with this: the listing's name without its ending, and in later problems of a deck "-p2" and so on.
std::string ViewerName(const Units& units, std::int32_t problem);

/// The files for viewers that runs of this deck have left in the folder: NAME.pvd, NAME-0001.vtu, NAME-fibres.vtp, of any
/// problem; each .pvd stands ahead of what it lists.
std::vector<std::string> OldViewerFiles(const Units& units);

/// Deletes them, but for finished files of this run and for `kept`; and what a run that was killed left of one.
void RemoveOldViewerFiles(const Units& units, const std::string& kept = "");
/// Name of the table of balances of problem 1, 2 ... of the deck, a job on the command line.
std::string HistoryName(const Units& units, std::int32_t problem);

/// True for two names of one plain file: by device and inode where both exist (links count), else by their paths.
bool AreOneFile(const std::string& name, const std::string& other);

/// Ends the run with a library error when `name`, to be written, is a file that the job names (the deck, the file of prescribed
/// values, that of --progress), the open listing, or one of the files with fixed names.
void RequireUnused(const Run& run, const std::string& name);

/// The same for the files with fixed names themselves and for that of --progress: none may be one that the job names, nor may
/// two of them be one.
void RequireDistinctFiles(const Run& run);

} // namespace zurt
