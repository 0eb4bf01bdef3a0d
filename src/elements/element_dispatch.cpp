#include "elements/element_dispatch.h"

#include "elements/form_elements.h"
#include "elements/group_1d.h"
#include "elements/group_2d.h"
#include "elements/group_3d.h"
#include "elements/group_cards.h"
#include "elements/nodal_averaging.h"
#include "elements/radial_cards.h"
#include "elements/radial_form.h"

namespace zurt {

namespace {

void ReadGroup(Run& run, ElementGroup& group, std::int32_t NETIP) {
    switch (NETIP) {
    case 1:
        ReadGroup1D(run, group);
        break;
    case 2:
        ReadGroup2D(run, group);
        break;
    case 3:
        ReadGroup3D(run, group);
        break;
    default:
        ReadGroupRadial(run, group);
    }
    if (group.NGE >= run.control.header.NGET && run.control.state.SparseMode == 0)
        FinishColumnPointers(run);
}

void FormGroup(Run& run, ElementGroup& group, std::int32_t NETIP) {
    if (run.control.state.ResultsPhaseFlag == 1) {
        if (run.control.header.NDS == 0) // there are no nodal vectors to add to
            return;
        if (group.NGE == 1)
            ClearNodalResults(run);
    }
    if (NETIP == 1)
        FormGroup1D(run, group);
    else if (NETIP == 2)
        FormGroup2D(run, group);
    else if (NETIP == 3)
        FormGroup3D(run, group);
    else
        FormGroupRadial(run, group);
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
