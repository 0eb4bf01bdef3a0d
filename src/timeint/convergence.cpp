#include "timeint/convergence.h"

#include "core/format.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

constexpr double kSmallestNorm = 1e-10;
constexpr double kTOLABS = 1e-8;

struct IterationReport {
    double ratio = 0.0;           // increment over the step's reference
    double ratioToSolution = 0.0; // increment over the solution
    bool belowAbsolute = false;   // converged by TOLABS alone
};

bool FitRunIsSilent(const Run& run) {
    return run.fit.card.NFIT == 1 && run.fit.IFINALRUN == 0;
}

void WriteAbsoluteToleranceMessage(Run& run) {
    TextUnit& messages = run.units.messages;
    Write(messages, "(A,A)", " CONVERGENCE REACHED FOR INCREMENT SMALLER",
          " THAN NUMERICAL TOLERANCE IN ZUR-T  ");
    Write(messages, "(A,1PE12.5)", " TIME=", run.clock.TIME);
    Write(messages, "(A,I10)", " STEP NO. =", run.clock.KOR);
    Write(messages, "(A,I5)", " ITERATION NO. =", run.clock.ITER);
    Write(messages, "(A,1PE12.5)", " INCERMENT =", run.clock.IncrementNorm);
    Write(messages, "(A,1PE12.5)", " NUMERICAL TOLERANCE IN ZUR-T, TOLABS=", kTOLABS);
}

void ReportOnConsole(Run& run, const IterationReport& report, double solutionNorm) {
    static const Format head("(//' ITERATIONS FOR STEP:',I10,' /',I7)");
    static const Format line("(' ITERATION =',I3,': INCREMENT      = ',1PE12.4,2X,'NORM     = ',E12.4/"
                             "'   ICR/ICREMSTEP  =',E12.4,2X,'ICR/NORM = ',E12.4)");
    TextUnit& console = run.units.console;
    if (run.clock.ITER == 0)
        Write(console, head, run.clock.KOR, run.pass.NDT);
    Write(console, line, run.clock.ITER, run.clock.IncrementNorm, solutionNorm, report.ratio,
          report.ratioToSolution);
    if (report.belowAbsolute)
        Write(console, "(' UNBALANCED NORM.LT.ABS-TOLERANCE = ',1PE12.4)", kTOLABS);
}

void ReportOnListing(Run& run, const IterationReport& report, double solutionNorm) {
    static const Format head("(//' ITERATIONS FOR STEP:',I10,' /',I7)");
    static const Format line("(' ITERATION =',I3,': INCREMENT       = ',1PE12.4,3X,'NORM        = ',E12.4/"
                             "'   ICR/ICREMSTEP =',E12.4,3X,'ICR/NORM = ',E12.4)");
    const std::int32_t NPRINT = run.control.header.NPRINT;
    const bool printed = NPRINT < 2 || run.clock.KOR < 2 || run.clock.KOR >= run.pass.NDT ||
                         run.outputs.PrintCounter == NPRINT - 1;
    if (!printed)
        return;
    TextUnit& listing = run.units.listing;
    if (run.clock.ITER == 0)
        Write(listing, head, run.clock.KOR, run.pass.NDT);
    Write(listing, line, run.clock.ITER, run.clock.IncrementNorm, solutionNorm, report.ratio,
          report.ratioToSolution);
    if (report.belowAbsolute)
        Write(listing, "(' UNBALANCED NORM.LT.ABS-TOLERANCE = ',1PE12.4)", kTOLABS);
}

// Without a limit of iterations (MAXIT below 0) only the first hundred of a step are all reported, and of the others those
// whose number has a single digit other than 0 (200, 3000).
bool IsReported(const Run& run) {
    std::int32_t iteration = run.clock.ITER;
    if (run.control.header.MAXIT >= 0 || iteration < 100)
        return true;
    while (iteration % 10 == 0)
        iteration /= 10;
    return iteration < 10;
}

void ReportIteration(Run& run, IterationReport report, double solutionNorm) {
    if (!IsReported(run))
        return;
    if (!FitRunIsSilent(run) && !(solutionNorm < kSmallestNorm))
        report.ratioToSolution = run.clock.IncrementNorm / solutionNorm;
    ReportOnConsole(run, report, solutionNorm);
    ReportOnListing(run, report, solutionNorm);
}

// The increment is small relative to the step's reference (EPSTR), absolutely (EPSTA, when it is given), or below
// kSmallestNorm.
bool IncrementIsSmall(const HeaderFields& header, double increment, double ratio) {
    return ratio <= header.EPSTR || (header.EPSTA > kSmallestNorm && increment <= header.EPSTA) ||
           increment < kSmallestNorm;
}

// The root of a sum of squares; where the squares leave the range of numbers the vector is scaled first.
double NormOf(ConstRealArray vector, double sumOfSquares) {
    if (std::isfinite(sumOfSquares))
        return std::sqrt(sumOfSquares);
    double largest = 0.0;
    for (Word i = 1; i <= vector.length; ++i)
        largest = std::max(largest, std::fabs(vector(i)));
    double sum = 0.0;
    for (Word i = 1; i <= vector.length; ++i)
        sum += (vector(i) / largest) * (vector(i) / largest);
    return largest * std::sqrt(sum);
}

} // namespace

IterationNorms ComputeIterationNorms(ConstRealArray increment, ConstRealArray reference,
                                     ConstRealArray solution) {
    double sumIncrement = 0.0, sumReference = 0.0, sumSolution = 0.0;
    for (Word i = 1; i <= increment.length; ++i) {
        sumIncrement += increment(i) * increment(i);
        sumReference += reference(i) * reference(i);
        sumSolution += solution(i) * solution(i);
    }
    return {NormOf(increment, sumIncrement), NormOf(reference, sumReference), NormOf(solution, sumSolution)};
}

bool ConvergenceTest(Run& run, ConstRealArray increment, ConstRealArray reference, ConstRealArray solution) {
    if (run.clock.ITER == 0)
        run.clock.ReferenceNorm = 0.0;
    const IterationNorms norms = ComputeIterationNorms(increment, reference, solution);
    run.clock.IncrementNorm = norms.increment;
    if (run.clock.ReferenceNorm < norms.reference)
        run.clock.ReferenceNorm = norms.reference;
    IterationReport report;
    if (run.clock.ReferenceNorm < kSmallestNorm) {
        report.ratio = kSmallestNorm;
        ReportIteration(run, report, norms.solution);
        return true;
    }
    report.ratio = norms.increment / run.clock.ReferenceNorm;
    bool converged = IncrementIsSmall(run.control.header, norms.increment, report.ratio);
    // A fit run that prints nothing leaves the test here: the absolute tolerance below is not tried.
    if (FitRunIsSilent(run))
        return converged;
    if (norms.increment < kTOLABS && !converged) {
        converged = true;
        report.belowAbsolute = true;
        WriteAbsoluteToleranceMessage(run);
    }
    ReportIteration(run, report, norms.solution);
    return converged;
}

} // namespace zurt
