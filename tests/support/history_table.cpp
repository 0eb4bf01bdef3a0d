#include "support/history_table.h"

#include <cmath>
#include <cstdlib>
#include <sstream>

namespace zurt_test {

namespace {

std::vector<std::string> PlacesOf(const std::string& line) {
    std::vector<std::string> places(1);
    for (const char c : line)
        if (c == ',')
            places.emplace_back();
        else
            places.back() += c;
    return places;
}

} // namespace

HistoryTable ReadHistory(const std::string& text) {
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    std::vector<std::string> names;
    for (const std::string& title : PlacesOf(line))
        names.push_back(title.substr(0, title.find(" [")));
    HistoryTable table;
    for (const std::string& name : names)
        table[name] = {};
    while (std::getline(lines, line)) {
        const std::vector<std::string> places = PlacesOf(line);
        for (std::size_t i = 0; i < names.size() && i < places.size(); ++i)
            table[names[i]].push_back(places[i].empty() ? std::nan("")
                                                        : std::strtod(places[i].c_str(), nullptr));
    }
    return table;
}

HistoryRun RunWithHistory(const std::string& deck, const std::string& prescribed, const std::string& probes) {
    const std::string folder = MakeTemporaryFolder();
    WriteFile(folder + "/zurt.dat", deck);
    Invocation invocation{{"--history"}, ""};
    if (!prescribed.empty()) {
        WriteFile(folder + "/faces", prescribed);
        invocation.arguments.insert(invocation.arguments.end(), {"--prescribed", "faces"});
    }
    if (!probes.empty())
        invocation.arguments.insert(invocation.arguments.end(), {"--probe", probes});
    invocation.arguments.push_back("zurt.dat");
    HistoryRun result;
    result.run = RunProgram(folder, invocation);
    result.text = ReadFile(folder + "/zurt-history.csv");
    result.table = ReadHistory(result.text);
    return result;
}

std::string TwoFaces(const std::vector<int>& first, double c1, const std::vector<int>& second, double c2) {
    std::ostringstream out;
    out.precision(17);
    out << first.size() + second.size() << "\n2 1\n1 1\n0.0 " << c1 << "\n2 1\n0.0 " << c2 << '\n';
    for (const int node : first)
        out << node << " 1 1.0 0\n";
    for (const int node : second)
        out << node << " 2 1.0 0\n";
    return out.str();
}

} // namespace zurt_test
