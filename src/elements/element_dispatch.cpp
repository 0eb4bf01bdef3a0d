#include "elements/element_dispatch.h"

#include "elements/form_3d.h"
#include "elements/group_3d.h"
#include "elements/group_cards.h"
#include "elements/nodal_averaging.h"
#include "job/not_built.h"

namespace zurt {

namespace {

void ReadGroup(Run& run, ElementGroup& group, std::int32_t NETIP) {
    if (run.control.state.SparseMode != 0)
        StopNotBuilt(run, "element groups for the sparse solver are");
    switch (NETIP) {
    case 1:
        StopNotBuilt(run, "1D element groups are");
    case 2:
        StopNotBuilt(run, "2D element groups are");
    case 3:
        ReadGroup3D(run, group);
        break;
    default:
        StopNotBuilt(run, "radial fibre element groups are");
    }
    if (group.NGE >= run.control.header.NGET)
        FinishColumnPointers(run);
}

void FormGroup(Run& run, ElementGroup& group, std::int32_t NETIP) {
    if (run.control.state.ResultsPhaseFlag == 1) {
        if (run.control.header.NDS == 0) // there are no nodal vectors to add to
            return;
        if (group.NGE == 1)
            ClearNodalResults(run);
    }
    if (NETIP == 3)
        FormGroup3D(run, group);
}

} // namespace

void DispatchElementPhase(Run& run, ElementGroup& group, std::int32_t NETIP, std::int32_t phase) {
    if (phase == kEmptyPhase)
        return;
    if (phase == kFormPhase)
        FormGroup(run, group, NETIP);
    else
        ReadGroup(run, group, NETIP);
}

} // namespace zurt
