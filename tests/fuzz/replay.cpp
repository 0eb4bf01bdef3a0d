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

namespace fs = std::filesystem;

int main(int count, char** values) {
    std::vector<std::string> arguments(values + 1, values + count), names;
    const bool verbose = !arguments.empty() && arguments[0] == "-v";
    for (std::size_t i = verbose ? 1 : 0; i < arguments.size(); ++i)
        if (!fs::is_directory(arguments[i]))
            names.push_back(arguments[i]);
        else
            for (const fs::directory_entry& entry : fs::directory_iterator(arguments[i]))
                names.push_back(entry.path().string());
    std::sort(names.begin(), names.end());
    int objections = 0;
    for (const std::string& name : names) {
        if (verbose)
            std::printf("%s\n", name.c_str());
        std::fflush(stdout);
        std::ifstream file(name, std::ios::binary);
        const std::string deck{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        const std::string objection = zurt_fuzz::CheckDeck(deck);
        if (!objection.empty()) {
            std::printf("%s: %s\n", name.c_str(), objection.c_str());
            ++objections;
        }
    }
    std::printf("%zu decks, %d objections\n", names.size(), objections);
    return names.empty() || objections > 0 ? 1 : 0;
}
