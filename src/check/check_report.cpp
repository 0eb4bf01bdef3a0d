#include "check/check_report.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string_view>

namespace zurt {

namespace {

// Rates assumed of one thread: for the skyline half of what docs/performance.md measures, for conjugate gradients, which
// wait for memory, what a stream of some GB/s feeds.
constexpr double kSkylineRate = 2e10, kGradientsRate = 1e9; // operations a second

// An entry of the sparse solver's tree, and of the three arrays that it is handed over in.
constexpr double kSparseEntryBytes = 64.0 + 16.0;
// Value and column of an entry, its factor twice in single precision, the places of the elements.
constexpr double kRowEntryBytes = 8.0 + 4.0 + 8.0 + 8.0;

constexpr double kMegabyte = 1e6;

// Bytes of the character in UTF-8 that a text begins with; 0 when it begins with none.
std::size_t CharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >> 5 == 0x6 ? 2 : lead >> 4 == 0xE ? 3 : lead >> 3 == 0x1E ? 4 : 0;
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000}; // that needs so many bytes
    std::uint32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (byte(i) >> 6 != 0x2)
            return 0;
        code = code << 6 | (byte(i) & 0x3F);
    }
    const bool surrogate = code >> 11 == 0x1B;
    return code >= kLeast[length] && code < 0x110000 && !surrogate ? length : 0;
}

// A string of JSON. Names of files are any bytes: what is no character is shown as the replacement character.
std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        const char first = text.front();
        char code[8];
        if (length == 0) {
            quoted += "\\ufffd";
        } else if (length == 1 && static_cast<unsigned char>(first) < ' ') {
            std::snprintf(code, sizeof code, "\\u%04x",
                          static_cast<unsigned>(static_cast<unsigned char>(first)));
            quoted += code;
        } else {
            quoted += first == '"' || first == '\\' ? "\\" : "";
            quoted += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return quoted + '"';
}

void WriteSizeLine(const std::string& deck, const SystemSize& size, std::FILE* output) {
    std::fprintf(output, "%s: problem %d: %d equations, %d steps\n", deck.c_str(), size.problem,
                 size.equations, size.steps);
    std::fprintf(output, "  skyline: %.0f words, %.3g MB; %.3g operations a factorisation, about %.2g s\n",
                 size.skylineWords, 8.0 * size.skylineWords / kMegabyte, size.skylineOperations,
                 size.skylineOperations / kSkylineRate);
    std::fprintf(output, "  sparse: %.0f entries, %.3g MB and the factor\n",
                 2.0 * size.entries - size.equations,
                 (2.0 * size.entries - size.equations) * kSparseEntryBytes / kMegabyte);
    std::fprintf(output, "  cg: %.0f entries, %.3g MB; %.3g operations an iteration, about %.2g s\n",
                 size.entries, size.entries * kRowEntryBytes / kMegabyte, size.gradientsOperations,
                 size.gradientsOperations / kGradientsRate);
}

void WriteJson(const Run& run, std::FILE* output) {
    std::fprintf(output, "{\"deck\": %s, \"findings\": [", Quoted(run.deck.name).c_str());
    const char* comma = "";
    for (const Finding& finding : run.check.findings) {
        std::fprintf(output, "%s\n  {\"line\": %lld, \"text\": %s}", comma,
                     static_cast<long long>(finding.line), Quoted(finding.text).c_str());
        comma = ",";
    }
    std::fprintf(output, "], \"problems\": [");
    comma = "";
    for (const SystemSize& size : run.check.sizes) {
        std::fprintf(output,
                     "%s\n  {\"problem\": %d, \"equations\": %d, \"steps\": %d, \"skyline_words\": %.0f, "
                     "\"skyline_operations\": %.17g, \"sparse_entries\": %.0f, \"cg_entries\": %.0f, "
                     "\"cg_operations\": %.17g}",
                     comma, size.problem, size.equations, size.steps, size.skylineWords,
                     size.skylineOperations, 2.0 * size.entries - size.equations, size.entries,
                     size.gradientsOperations);
        comma = ",";
    }
    std::fprintf(output, "]}\n");
}

// Takes "line N, " off the head of a text; 0 when there is none.
Word TakeLine(std::string& text) {
    constexpr std::string_view kLine = "line ";
    if (text.compare(0, kLine.size(), kLine) != 0)
        return 0;
    const Word line = std::strtoll(text.c_str() + kLine.size(), nullptr, 10);
    const std::size_t comma = text.find(", ");
    text.erase(0, comma == std::string::npos ? text.size() : comma + 2);
    return line;
}

// A message, which no file shows: its lines behind each other, without the blanks that set them out.
std::string OnOneLine(const std::string& records) {
    std::string text;
    std::istringstream lines(records);
    for (std::string line; std::getline(lines, line);) {
        std::string separator = text.empty() ? "" : text.back() == ':' ? " " : "; ";
        std::istringstream words(line);
        for (std::string word; words >> word; separator = " ")
            text += separator + word;
    }
    return text;
}

// One that the check of the mesh has found ends the reading, too, where fibres are laid over it.
bool IsOfJacobian(const RunStop& stop) {
    return stop.kind == StopKind::Message && (stop.text.find("JAKOBIJAN") != std::string::npos ||
                                              stop.text.find("JACOBIAN") != std::string::npos);
}

} // namespace

bool AddStop(Run& run, const RunStop& stop) {
    Finding finding{0, stop.text};
    if (stop.kind == StopKind::Message) {
        finding = {run.deck.cardLine, OnOneLine(stop.records)};
    } else if (stop.ofCard) {
        const std::string head = "deck " + run.deck.name + ", ";
        if (finding.text.compare(0, head.size(), head) == 0)
            finding.text.erase(0, head.size());
        finding.text = finding.text.substr(0, finding.text.find('\n'));
        finding.line = TakeLine(finding.text);
        if (finding.line == 0) { // of a group as a whole, once all cards are read
            run.check.findings.push_back({run.job.BasicDataLine, finding.text});
            return true;
        }
    } else {
        return false;
    }
    if (IsOfJacobian(stop) && !run.check.findings.empty())
        return true;
    const std::string trail = TrailOfCards(run.deck, stop.ofCard);
    run.check.findings.push_back({finding.line, finding.text + (trail.empty() ? "" : " (" + trail + ")")});
    return true;
}

void WriteFindings(Run& run, bool json, std::FILE* output) {
    std::vector<Finding>& findings = run.check.findings;
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    if (json)
        return WriteJson(run, output);
    for (const Finding& finding : findings)
        std::fprintf(output, "%s:%lld: %s\n", run.deck.name.c_str(), static_cast<long long>(finding.line),
                     finding.text.c_str());
    for (const SystemSize& size : run.check.sizes)
        WriteSizeLine(run.deck.name, size, output);
}

} // namespace zurt
