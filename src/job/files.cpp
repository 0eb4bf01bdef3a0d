#include "job/files.h"

#include "core/format.h"
#include "core/stop.h"

#include <cerrno>
#include <cstring>
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

bool AreOnePlainFile(const std::string& name, const std::string& other) {
    struct stat first, second;
    return stat(name.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 && S_ISREG(first.st_mode) &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// An output file of the name of the deck, or of one already open, would delete it.
void RequireUnused(const Run& run, const std::string& name) {
    const char* user = nullptr;
    if (AreOnePlainFile(name, run.deck.name))
        user = "deck";
    else if (IsOpen(run.units.listing) && AreOnePlainFile(name, run.units.listing.name))
        user = "listing";
    if (user != nullptr)
        StopWithLibraryError("can't open " + name + " for writing: it is the " + user + " of this run");
}

// Only a plain file is deleted: a device or a pipe is written to as it stands, and a folder can't be.
bool IsPlainFile(const std::string& name) {
    struct stat status;
    return stat(name.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

void DeriveDefaultNames(Run& run, const std::string& name) {
    const bool capitals = name[0] >= 'A' && name[0] <= 'Z';
    const std::size_t point = name.find('.');
    const std::string base = name.substr(0, point != std::string::npos ? point : name.find(' '));
    run.units.DefaultListingName = base + (capitals ? ".LST" : ".lst");
    run.units.DefaultGraphicsName = base + (capitals ? ".UNV" : ".unv");
}

std::FILE* OpenScratch() {
    std::FILE* file = std::tmpfile();
    if (file == nullptr)
        StopWithLibraryError(std::string("can't open a scratch file: ") + std::strerror(errno));
    return file;
}

// "ZITEMP" is there after every run, empty or as it was.
std::FILE* OpenStepArchive() {
    std::FILE* file = std::fopen("ZITEMP", "ab");
    if (file == nullptr)
        StopWithLibraryError(std::string("can't open ZITEMP for writing: ") + std::strerror(errno));
    return file;
}

// True when the file may be replaced: its user has pressed ENTER or a D.
bool AskToDelete(Run& run, const std::string& name) {
    TextUnit& console = run.units.console;
    if (run.control.state.Language == kSerbian) {
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

void OpenOutput(Run& run, TextUnit& unit, const char* prompt, const std::string& defaultName) {
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

} // namespace

void OpenInputDeck(Run& run) {
    Write(run.units.console, "(A)",
          Say(run, "   IME ULAZNE DATOTEKE   <zurt.dat>", "   INPUT FILE NAME   <zurt.dat>"));
    std::string name = ReadName(run);
    if (name.empty())
        name = kDefaultDeckName;
    DeriveDefaultNames(run, name);
    OpenDeck(run.deck, name);
    run.units.scratch15 = OpenScratch();
    run.units.restart19 = OpenStepArchive();
    run.units.stepFile = OpenScratch();
}

void OpenListing(Run& run) {
    OpenOutput(run, run.units.listing, Say(run, "   IME IZLAZNE DATOTEKE   <", "   OUTPUT FILE NAME   <"),
               run.units.DefaultListingName);
    run.control.state.ListingOpen = 1;
}

void OpenGraphics(Run& run) {
    OpenOutput(run, run.units.graphics,
               Say(run, "   IME GRAFICKE DATOTEKE   <", "   OUTPUT GRAPHICS FILE NAME   <"),
               run.units.DefaultGraphicsName);
    run.control.state.GraphicsOpen = 1;
}

void OpenMessages(Run& run) {
    if (!IsOpen(run.units.messages))
        OpenTextUnit(run.units.messages, "MESSAGES.LST");
    PutRecord(run.units.messages, "      ");
}

void FlushUnits(Run& run) {
    Units& units = run.units;
    for (TextUnit* unit : {&units.listing, &units.console, &units.graphics, &units.massX, &units.massY,
                           &units.massZ, &units.messages})
        FlushTextUnit(*unit);
}

void CloseUnits(Run& run) {
    run.deck = Deck();
    CloseTextUnit(run.units.listing);
    CloseTextUnit(run.units.graphics);
}

} // namespace zurt
