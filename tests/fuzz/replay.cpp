// Every deck of the folders and files named goes through the harness once. Status 1 if an oracle objects to one.
//
//   zurt_fuzz_replay [-v] NAME...      -v: each name ahead of its run, to see which one crashes
#include "fuzz/oracles.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace zurt_fuzz {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> NamesOf(const std::vector<std::string>& arguments) {
    std::vector<std::string> names;
    for (const std::string& argument : arguments) {
        if (!fs::is_directory(argument)) {
            names.push_back(argument);
            continue;
        }
        for (const fs::directory_entry& entry : fs::directory_iterator(argument))
            names.push_back(entry.path().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadText(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int Replay(const std::vector<std::string>& names, bool verbose) {
    int objections = 0;
    for (const std::string& name : names) {
        if (verbose) {
            std::printf("%s\n", name.c_str());
            std::fflush(stdout);
        }
        const std::string objection = CheckDeck(ReadText(name));
        if (!objection.empty()) {
            std::printf("%s: %s\n", name.c_str(), objection.c_str());
            ++objections;
        }
    }
    std::printf("%zu decks, %d objections\n", names.size(), objections);
    return names.empty() || objections > 0 ? 1 : 0;
}

} // namespace

} // namespace zurt_fuzz

int main(int count, char** values) {
    std::vector<std::string> arguments(values + 1, values + count);
    const bool verbose = !arguments.empty() && arguments[0] == "-v";
    if (verbose)
        arguments.erase(arguments.begin());
    return zurt_fuzz::Replay(zurt_fuzz::NamesOf(arguments), verbose);
}
