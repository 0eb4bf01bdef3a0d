// What the check of a deck (--check) keeps: where cards stand, and what it has found. Empty in every other run.
#pragma once

#include "core/array_view.h"

#include <string>
#include <vector>

namespace zurt {

/// A fault, with the line of the deck that it is best looked for on.
struct Finding {
    Word line = 0;
    std::string text;
};

/// What the linear systems of a problem take, solver by solver (check/solver_sizes.h).
struct SystemSize {
    std::int32_t problem = 0, equations = 0, steps = 0;
    double skylineWords = 0.0, skylineOperations = 0.0; // of a factorisation
    double entries = 0.0;                               // of the lower triangle, diagonal included
    double gradientsOperations = 0.0;                   // of an iteration
};

struct CheckState {
    bool on = false;
    std::vector<Word> nodeLine, curveLine, capacityLine; // by number; 0 without a card
    std::vector<std::vector<Word>> elementLine; // by group and element; of generated ones their run's
    std::vector<Finding> findings;
    std::vector<SystemSize> sizes;
};

/// Keeps the line of entry `index` (from 1) of a list.
inline void KeepLine(std::vector<Word>& lines, Word index, Word line) {
    if (index >= static_cast<Word>(lines.size()))
        lines.resize(static_cast<std::size_t>(index) + 1);
    lines[static_cast<std::size_t>(index)] = line;
}

/// The line of an entry; `otherwise` where none is known.
inline Word LineOf(const std::vector<Word>& lines, Word index, Word otherwise) {
    const bool known = index < static_cast<Word>(lines.size()) && lines[static_cast<std::size_t>(index)] > 0;
    return known ? lines[static_cast<std::size_t>(index)] : otherwise;
}

} // namespace zurt
