// The elements of a group shared by the workers of a run: pieces of neighbouring elements, each added to the system by the
// worker that forms it.
//
// Every sum of the system keeps the order of the elements: entries that elements of earlier pieces take part in, those of the layer
// of nodes between two pieces, are left aside with their terms and added piece by piece when all are done. A piece that ends
// early, at what is not known side by side (elements/forming/element_chunks.h), is gone on with then. Included by forming.
#pragma once

#include "elements/forming/element_chunks.h"
#include "solver/linear_system.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace zurt {

// A worker has one piece or, where there is little to leave aside, two.
constexpr Word kLargePiece = 4096;
constexpr Word kPiecesOfWorker = 2;

/// Pieces are in the hands of different workers: none shares a cache line with another.
struct alignas(128) ElementPiece {
    ChunkRange range{};
    Word next = 0;          // the element to go on with
    HeldCurveValues held{}; // what curves gave last
    std::vector<char>
        touched; // 1 for an equation, less 1, that an element of this piece has; then, of an earlier one
    std::vector<DeferredTerm> deferred;
};

inline bool IsTouched(const ElementPiece& piece, std::int32_t equation) {
    return equation > 0 && piece.touched[static_cast<std::size_t>(equation - 1)] != 0;
}

/// Marks the equations of the elements of each piece, of which node columns 1..NDMAX of NEL tell.
inline void MarkOwnEquations(ElementPiece& piece, ConstIntTable NEL, Word NDMAX, const Numbering& numbering) {
    piece.touched.assign(static_cast<std::size_t>(numbering.JEDN), 0);
    for (Word k = 1; k <= NDMAX; ++k)
        for (Word n = piece.range.first; n <= piece.range.last; ++n) {
            const std::int32_t equation = NEL(n, k) > 0 ? numbering.ID(NEL(n, k)) : 0;
            if (equation > 0)
                piece.touched[static_cast<std::size_t>(equation - 1)] = 1;
        }
}

/// From the equations of each piece's own elements to those of the pieces ahead of it.
inline void TakeEquationsAhead(Workers& workers, Word JEDN, std::vector<ElementPiece>& pieces) {
    constexpr Word kGrain = 16384;
    ForRanges(workers, JEDN, kGrain, [&](Word first, Word last, int) {
        std::vector<char> ahead(static_cast<std::size_t>(last - first + 1), 0);
        for (ElementPiece& piece : pieces) {
            char* const touched = piece.touched.data() + first - 1;
            for (std::size_t i = 0; i < ahead.size(); ++i) {
                const char own = touched[i];
                touched[i] = ahead[i];
                ahead[i] = static_cast<char>(ahead[i] | own);
            }
        }
    });
}

/// The pieces of the group, ready to be done.
inline std::vector<ElementPiece> CutIntoPieces(Run& run, const ElementGroup& group, ConstIntTable NEL) {
    const Word workers = run.workers.count,
               count = std::clamp(group.NET / kLargePiece, std::min<Word>(workers, group.NET / 2),
                                  kPiecesOfWorker * workers);
    std::vector<ElementPiece> pieces(static_cast<std::size_t>(count));
    const Numbering numbering = NumberingOf(run);
    ForRanges(run.workers, count, 1, [&](Word first, Word last, int) {
        for (Word p = first; p <= last; ++p) {
            ElementPiece& piece = pieces[static_cast<std::size_t>(p - 1)];
            piece.range = {Word{group.NET} * (p - 1) / count + 1, Word{group.NET} * p / count};
            piece.next = piece.range.first;
            MarkOwnEquations(piece, NEL, group.NDMAX, numbering);
        }
    });
    TakeEquationsAhead(run.workers, numbering.JEDN, pieces);
    return pieces;
}

/// All elements of the group in pieces.
///   form(visit, n)           forms element n
///   addBeside(visit, piece)  adds it while other workers are at work; must do so as a whole, or throw with nothing added
///   add(visit)               adds it when they are done
/// The other arguments are those of ElementsInTurn.
template <class Visit, class Begin, class Form, class AddBeside, class Add>
void ElementsInPieces(Run& run, const ElementGroup& group, ConstIntTable NEL, bool sourceStays,
                      const Begin& begin, const Form& form, const AddBeside& addBeside, const Add& add) {
    std::vector<ElementPiece> pieces = CutIntoPieces(run, group, NEL);
    HeldCurveValues& heldByGroup = run.visits.held[group.NGE];
    const HeldCurveValues unknown = UnknownValues(heldByGroup, sourceStays);
    std::vector<std::unique_ptr<Visit>> visits(static_cast<std::size_t>(run.workers.count));
    const auto visitOf = [&](int worker, HeldCurveValues& held) -> Visit& {
        std::unique_ptr<Visit>& own = visits[static_cast<std::size_t>(worker)];
        if (own == nullptr) {
            auto begun = std::make_unique<Visit>(run, group);
            begin(*begun);
            own = std::move(begun); // never one that could not begin
        }
        own->elements.held = &held;
        own->elements.material.MATE = 0; // chosen anew, with what is known now
        return *own;
    };
    const auto doPiece = [&](ElementPiece& piece, int worker) {
        try {
            piece.held = unknown;
            Visit& visit = visitOf(worker, piece.held);
            for (; piece.next <= piece.range.last; ++piece.next) {
                form(visit, static_cast<std::int32_t>(piece.next));
                addBeside(visit, piece);
            }
        } catch (...) { // gone on with by the calling thread, where it happens again if it is an error
        }
    };
    ForRanges(run.workers, static_cast<Word>(pieces.size()), 1, [&](Word first, Word last, int worker) {
        for (Word p = first; p <= last; ++p)
            doPiece(pieces[static_cast<std::size_t>(p - 1)], worker);
    });
    for (ElementPiece& piece : pieces) {
        for (const DeferredTerm& term : piece.deferred)
            *term.entry += term.value;
        TakeOverValues(piece.held, heldByGroup);
        if (piece.next > piece.range.last)
            continue;
        Visit& visit = visitOf(0, heldByGroup);
        for (; piece.next <= piece.range.last; ++piece.next) {
            form(visit, static_cast<std::int32_t>(piece.next));
            add(visit);
        }
    }
}

} // namespace zurt
