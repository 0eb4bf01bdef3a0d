#include "support/run_deck.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zurt_test {

namespace {

// A child that ends as a program does, in a test of a stop, leaves its parent's folders alone.
struct TemporaryFolders {
    std::vector<std::string> names;
    pid_t owner = getpid();
    ~TemporaryFolders() {
        std::error_code ignored;
        for (std::size_t i = 0; getpid() == owner && i < names.size(); ++i)
            std::filesystem::remove_all(names[i], ignored);
    }
};

// Not by fork: that copies the tables of this process's memory, which are large under the sanitizers.
pid_t StartProgram(const std::string& folder, const std::vector<std::string>& arguments) {
    std::vector<char*> words = {const_cast<char*>("zurt")};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    posix_spawn_file_actions_addopen(&actions, 0, "answers", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "console", kWrite, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, "errors", kWrite, 0644);
    pid_t child = 0;
    const int failure = posix_spawn(&child, ZURT_BINARY, &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0)
        throw std::runtime_error(std::string("can't start " ZURT_BINARY ": ") + std::strerror(failure));
    return child;
}

std::vector<double> NumbersOf(std::string line) {
    std::replace(line.begin(), line.end(), 'D', 'E');
    std::istringstream items(line);
    std::vector<double> numbers;
    for (double value = 0.0; items >> value;)
        numbers.push_back(value);
    return numbers;
}

int WaitFor(pid_t child, int secondsAllowed) {
    using clock = std::chrono::steady_clock;
    const auto end = clock::now() + std::chrono::seconds(secondsAllowed);
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (clock::now() > end) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Once the console holds `words` so often, and so many milliseconds later.
void InterruptAfter(pid_t child, const std::string& console, const std::string& words, int count,
                    int milliseconds) {
    for (int tries = 0; tries < 5000 && CountOf(ReadFile(console), words) < count; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    kill(child, SIGINT);
}

} // namespace

std::string MakeTemporaryFolder() {
    static TemporaryFolders folders;
    std::string name = std::filesystem::temp_directory_path().string() + "/zurt-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    folders.names.push_back(name);
    return name;
}

std::string ReadFile(const std::string& name) {
    if (!std::filesystem::is_regular_file(name)) // nothing there, or a folder or a device has no text
        return "";
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
}

std::map<std::string, std::string> ResultFiles(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        for (const char* ending : {".lst", ".unv", ".LST", ".pvd", ".vtu", ".vtp", ".csv"})
            if (entry.path().extension() == ending)
                files[entry.path().filename()] = ReadFile(entry.path());
    return files;
}

std::string FolderWith(const std::string& deckName, const std::string& deck) {
    std::string folder = MakeTemporaryFolder();
    WriteFile(folder + "/" + deckName, deck);
    return folder;
}

std::string Replaced(std::string text, const std::string& part, const std::string& by) {
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return at == std::string::npos ? text : text.replace(at, part.size(), by);
}

RunResult RunInFolder(const std::string& folder, const std::string& answers, int secondsAllowed) {
    return RunProgram(folder, {{}, answers}, secondsAllowed);
}

RunResult RunProgram(const std::string& folder, const Invocation& invocation, int secondsAllowed) {
    WriteFile(folder + "/answers", invocation.input);
    const pid_t child = StartProgram(folder, invocation.arguments);
    if (invocation.interruptAfterSteps > 0)
        InterruptAfter(child, folder + "/console", "*** END OF TIME STEP", invocation.interruptAfterSteps, 0);
    if (invocation.interruptAfterLines > 0)
        InterruptAfter(child, folder + "/console", "\n", invocation.interruptAfterLines, 500);
    RunResult result;
    result.status = WaitFor(child, secondsAllowed);
    result.folder = folder + "/" + invocation.outputs;
    result.console = ReadFile(folder + "/console");
    result.errors = ReadFile(folder + "/errors");
    result.listing = ReadFile(result.folder + "/zurt.lst");
    result.graphics = ReadFile(result.folder + "/zurt.unv");
    result.messages = ReadFile(result.folder + "/MESSAGES.LST");
    result.mass = ReadFile(result.folder + "/MASS-X.LST");
    return result;
}

RunResult RunDeck(const std::string& deck, int secondsAllowed) {
    return RunInFolder(FolderWith("zurt.dat", deck), "\n\n\n", secondsAllowed);
}

RunResult RunWell(const std::string& deck) {
    RunResult run = RunDeck(deck);
    EXPECT_EQ(run.status, 0) << run.errors;
    return run;
}

std::vector<double> LastConcentrations(const std::string& listing) {
    std::vector<double> values;
    for (const auto& row : RowsBelow(listing, "N O D A L    C O N C E N T R A T I O N S", 3))
        for (std::size_t i = 1; i < row.size(); i += 2) // behind the number of its node
            values.push_back(row[i]);
    return values;
}

std::vector<std::vector<double>> AllConcentrations(const std::string& listing) {
    std::vector<std::vector<double>> tables;
    const std::string head = " S T E P  NUMBER =";
    for (std::size_t at = listing.find(head); at != std::string::npos;) {
        const std::size_t next = listing.find(head, at + head.size());
        tables.push_back(LastConcentrations(listing.substr(at, next - at)));
        at = next;
    }
    return tables;
}

std::vector<double> LastUnvValues(const std::string& graphics, int which) {
    static const char* const names[] = {"CVORNE KONCENTRACIJE\n", "MASS FLUX\n",
                                        "MASS FLUX PER UNIT TIME AND SURFACE\n", "DIFFUSION COEFFICIENT\n"};
    std::vector<double> values;
    const auto rows =
        RowsBelow(graphics, names[which - 1], 7); // of a node's number and of its values, in turns
    for (std::size_t i = 1; i < rows.size(); i += 2)
        values.insert(values.end(), rows[i].begin(), rows[i].end());
    return values;
}

std::string ResultsOfListing(const std::string& listing) {
    const std::size_t at = listing.find(" S T E P  NUMBER =");
    return at == std::string::npos ? "" : listing.substr(at);
}

int CountOf(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

std::vector<double> NumbersBehind(const std::string& text, const std::string& label) {
    std::vector<double> numbers;
    for (std::size_t at = text.find(label); at != std::string::npos; at = text.find(label, at + 1))
        numbers.push_back(NumbersOf(text.substr(at + label.size(), 14)).at(0));
    return numbers;
}

std::vector<std::vector<double>> RowsBelow(const std::string& text, const std::string& words, int heads) {
    std::vector<std::vector<double>> rows;
    std::istringstream lines(text.substr(std::min(text.rfind(words), text.size())));
    std::string line;
    for (int head = 0; head < heads; ++head)
        std::getline(lines, line);
    while (std::getline(lines, line) && line != "    -1" && !NumbersOf(line).empty())
        rows.push_back(NumbersOf(line));
    return rows;
}

double PorosityOf(const RunResult& run) {
    const auto rows = RowsBelow(run.mass, " NUMBER OF TIME", 1);
    return rows.empty() ? NAN : rows[0].at(1);
}

double Order(double coarseError, double fineError) {
    return std::log2(std::fabs(coarseError) / std::fabs(fineError));
}

} // namespace zurt_test
