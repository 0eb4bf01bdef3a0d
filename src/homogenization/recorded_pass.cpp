#include "homogenization/recorded_pass.h"

#include "homogenization/direct_coefficient.h"
#include "homogenization/mass_files.h"
#include "homogenization/mass_monitor.h"
#include "run/files.h"
#include "timeint/step.h"

namespace zurt {

void RecordedPass(Run& run, const Pass& pass) {
    const HeaderFields& header = run.control.header;
    const bool direct = header.IDIRECTD == 1 && pass.PassCounter == 1;
    const bool flowRows = header.NANOCH == 3 && run.fit.card.NFIT == 1;
    std::int32_t rows = 0;
    BeginPass(run, pass);
    while (run.clock.KOR < pass.NDT) {
        SolveStep(run);
        RecordFlow(run);
        if (direct)
            RecordDirectStep(run);
        if (WriteStep(run) && flowRows)
            WriteFlowRow(run, ++rows);
        FlushUnits(run);
    }
}

} // namespace zurt
