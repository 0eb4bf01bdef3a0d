#include "elements/forming/element_work.h"

#include "core/format.h"
#include "core/stop.h"
#include "run/partition.h"

namespace zurt {

namespace {

[[noreturn]] void StopOnElementWork(Run& run) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(A)",
          Say(run, " NEDOVOLJNA DIMENZIJA RADNOG VEKTORA A ZA",
              " UNSUFFICIENT DIMENSION OF WORKING VECTOR A FOR"));
    Write(unit, "(A)", Say(run, " MATRICE ELEMENATA", " ELEMENT MATRIX"));
    Write(unit, "(A,I10)", Say(run, "POTREBNA DIMENZIJA, LMAX=", " REQUIRED DIMENSION, LMAX ="), run.A.LMAX);
    Write(unit, "(A,I10)", Say(run, "RASPOLOZIVA DIMENZIJA, NTOTA=", " AVAILABLE DIMENSION, NTOTA="),
          run.A.NTOTA);
    NoteSectionOutside(run);
    StopRun(unit);
}

// Room for tangents of another time integration; nothing uses it, and under INTEB 1 there is none.
void TakeTangents(Run& run, Word NKE) {
    if (run.control.header.INTEB == 1)
        return;
    if (run.job.CapacityNonlinear != 0)
        TakeWords(run.A, "capacity tangent", NKE);
    if (run.job.ConductivityNonlinear != 0)
        TakeWords(run.A, "conduction tangent", NKE);
    if (run.control.counts.MAXTHP > 1)
        TakeWords(run.A, "convection tangent", NKE);
}

} // namespace

ElementWork LayOutElementWork(Run& run, std::int32_t columns) {
    WorkingVector& A = run.A;
    const HeaderFields& header = run.control.header;
    const Word NKE = PackedLength(columns);
    ReleaseFrom(A, A.LMAXM);
    ElementWork work;
    work.first = A.LMAX;
    work.capacity = header.NSTAC > 0 ? TakeWords(A, "element capacity", NKE) : A.LMAX;
    work.conduction = TakeWords(A, "element conduction", NKE);
    const bool radiation = run.job.NonlinearFlag == 1 || header.NDS != 0;
    work.radiation = radiation ? TakeWords(A, "element radiation", NKE) : A.LMAX;
    work.convection = TakeWords(A, "element convection", NKE);
    work.square = TakeWords(A, "element square matrix", Word{columns} * columns);
    TakeTangents(run, NKE);
    if (A.LMAX > A.NTOTA)
        StopOnElementWork(run);
    return work;
}

} // namespace zurt
