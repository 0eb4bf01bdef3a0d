// The state of a run, in records by subject. Each is written by the files of one folder alone, named at its head;
// everybody above may read it. Fields outlive a problem unless their comment says what sets them anew.
#pragma once

#include "core/array_view.h"
#include "core/language.h"

#include <cstdint>

namespace zurt {

/// What the job knows of the deck and of the problem in work. Written by job/.
struct JobState {
    std::int32_t Language = kEnglish; // set at start-up, nothing changes it
    std::int32_t CardListingDone = 0; // once a run
    std::int32_t ProblemNumber = 0;   // of the problem in work, from 1
    Word BasicDataLine = 0;           // of the deck, with the basic data of the problem in work
    std::int32_t Solving = 0;         // 1 once the problem has been read
    std::int32_t NonlinearFlag = 0;   // 1: the problem iterates within a step
    std::int32_t ConductivityNonlinear = 0, CapacityNonlinear = 0;
    std::int32_t SourcePresent = 0;       // some group has IZIP positive
    std::int32_t ConcentrationSource = 0; // some group has IZIP equal to 2
    std::int32_t LastISUB4 = 0;           // ISUB4 of the last group card read
    std::int32_t SubstructurePresent = 0; // Dormant: some group has ISUB4 positive; nothing reads it
};

/// Sizes of the linear system. Written by run/ (run/partition.h has the operations), which keeps room for them in `A`.
struct SystemSizes {
    std::int32_t SparseMode = 0; // 1 when SolverSelector is 2
    std::int32_t JEDN = 0;       // number of equations
    Word NWK = 0;                // length of SkylineMatrix
    // A fit changes between numberings of different sizes: the largest JEDN and NWK for which room is kept in `A`. 0 with
    // every new problem.
    std::int32_t EquationRoom = 0;
    Word MatrixRoom = 0;
    Word DiagonalRoom = 0; // integers that the section of MAXA holds
};

/// What one pass over the steps is asked for: set by its caller as it begins.
struct Pass {
    std::int32_t NDT = 0;              // its steps
    std::int32_t PassCounter = 1;      // of a direct calculation
    bool writesResults = true;         // to listing and graphics file
    std::int32_t GraphicsEnabled = 1;  // 1: steps may go to the graphics file
    std::int32_t SolverReportFlag = 1; // 1: the sparse solver reports its stages on the console
};

/// Time, step and iteration. Written by timeint/.
struct Clock {
    double TIME = 0.0;      // end of the current step
    double StartTime = 0.0; // start of the current step
    double TimeStep = 0.0;
    std::int32_t KOR = 0, ITER = 0;
    double OutletStart = 0.0;         // value of nodes without an equation at the start of the step
    std::int32_t FactorFlag = 0;      // 1: assemble and factor the matrix
    double ReferenceNorm = 0.0;       // TREF
    double IncrementNorm = 0.0;       // DTMOD
    double LowestIncrement = 0.0;     // smallest IncrementNorm of the step so far
    std::int32_t LowestIteration = 0; // the iteration that reached it
};

/// Counters of outputs. Written by timeint/.
struct OutputCounters {
    double GraphicsInterval = 0.0;    // Dormant: IGRAF times TimeStep; nothing reads it
    std::int32_t GraphicsLimit = 0;   // NDT / IGRAF, formed by transient passes only
    std::int32_t GraphicsCounter = 0; // steps since the last graphics output
    std::int32_t GraphicsWritten = 0; // graphics outputs of this pass
    std::int32_t PrintCounter = 0;    // steps since the last listing output; 0 with every new problem
    std::int32_t NCZZ = 0;            // steps held in the step file; 0 with every new problem
};

} // namespace zurt
