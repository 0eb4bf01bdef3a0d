#include "results/listing.h"

#include "core/format.h"
#include "results/nodal_values.h"
#include "results/rows.h"

#include <cmath>

namespace zurt {

namespace {

constexpr double kNegligible = 1e-15;

void WritePageHead(Run& run) {
    static const Format english("(///'1'/' S T E P  NUMBER =',I6,25X,'  T I M E =',1PE12.5)");
    static const Format serbian("(///'1'/' K O R A K  BROJ =',I6,25X,'V R E M E =',1PE12.5/"
                                "'               T   E   M   P   E   R   A   T   U   R   E')");
    TextUnit& listing = run.units.listing;
    Write(listing, run.job.Language == kSerbian ? serbian : english, run.clock.KOR, run.clock.TIME);
    if (run.job.NonlinearFlag != 0)
        Write(listing, "(A,I5)",
              Say(run, " BROJ ITERACIJA ............................. ITER =",
                  " NUMBER OF ITERATIONS ....................... ITER ="),
              run.clock.ITER);
}

void ListConcentrations(Run& run) {
    TextUnit& listing = run.units.listing;
    if (run.job.Language == kSerbian) {
        Write(listing, "(A/)", "                  C V O R N E    T E M P E R A T U R E");
        Write(listing, "(A)", " CVOR  TEMPERATURA CVOR  TEMPERATURA CVOR  TEMPERATURA CVOR  TEMPERATURA");
    } else {
        Write(listing, "(A/)", "                 N O D A L    C O N C E N T R A T I O N S");
        Write(listing,
              "(' NODE  CONCENTRAT',4X,'NODE  CONCENTRAT',3X,'NODE  CONCENTRAT',2X,' NODE CONCENTRAT')");
    }
    const RealArray values = NodalValues(run);
    SetNegligibleToZero(values);
    static const Format fixedRow("(4(I8,4X,F10.3))");
    static const Format exponentRow("(4(I8,4X,E13.5))");
    WriteRows(run, listing, run.control.header.IFORM == 1 ? fixedRow : exponentRow, values.length,
              RowStatements::One, [&](RecordWriter& writer, Word i) {
                  Put(writer, i);
                  Put(writer, values(i));
              });
}

void WriteFluxes(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "(A)",
          Say(run, "                C V O R N I   M A S E N I   F L U K S E V I",
              "                N O D A L   M A S S   F L U X E S"));
    if (run.job.Language == kSerbian)
        Write(listing, "(' CVOR',10X,'FLUKS-X',11X,'FLUKS-Y',6X,'CVOR',7X,'FLUKS-X',10X,'FLUKS-Y')");
    else
        Write(listing, "(' NODE',10X,'FLUX-X',12X,'FLUX-Y',7X,'NODE',7X,'FLUX-X',11X,'FLUX-Y')");
    static const Format row("(2(I8,4X,E13.5,2X,E13.5))");
    const RealArray x = NodalResultVector(run, 1), y = NodalResultVector(run, 2);
    WriteRows(run, listing, row, run.control.header.NP, RowStatements::One,
              [&](RecordWriter& writer, Word i) {
                  Put(writer, i);
                  Put(writer, ResultAt(x, i));
                  Put(writer, ResultAt(y, i));
              });
}

} // namespace

void SetNegligibleToZero(RealArray values) {
    for (Word i = 1; i <= values.length; ++i)
        if (std::fabs(values(i)) < kNegligible)
            values(i) = 0.0;
}

void PrintNodalResults(Run& run) {
    WritePageHead(run);
    ListConcentrations(run);
    WriteFluxes(run);
}

} // namespace zurt
