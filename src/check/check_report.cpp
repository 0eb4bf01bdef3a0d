#include "check/check_report.h"

#include <algorithm>
#include <cstdlib>

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

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        if (static_cast<unsigned char>(c) < ' ') {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
            quoted += code;
        } else {
            quoted += c;
        }
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

} // namespace

bool AddStop(Run& run, const RunStop& stop) {
    Finding finding{0, stop.text};
    if (stop.kind == StopKind::Message) {
        finding.line = run.deck.cardLine;
    } else if (stop.ofCard) {
        finding.text = finding.text.substr(0, finding.text.find('\n'));
        const std::string head = "deck " + run.deck.name + ", ";
        if (finding.text.compare(0, head.size(), head) == 0)
            finding.text.erase(0, head.size());
        finding.line = TakeLine(finding.text);
        if (finding.line == 0) { // of a group as a whole, once all cards are read
            run.check.findings.push_back({run.job.BasicDataLine, finding.text});
            return true;
        }
    } else {
        return false;
    }
    // What the mesh was found to lack ends the reading, too, where fibres are laid over it.
    if (stop.kind == StopKind::Message && finding.text.find("OBIJAN") != std::string::npos &&
        !run.check.findings.empty())
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
