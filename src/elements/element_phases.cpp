#include "elements/element_phases.h"

#include "elements/cards/group_1d.h"
#include "elements/cards/group_2d.h"
#include "elements/cards/group_3d.h"
#include "elements/forming/form_elements.h"
#include "elements/forming/nodal_averaging.h"
#include "elements/radial/radial_cards.h"
#include "elements/radial/radial_form.h"
#include "run/partition.h"
#include "solver/linear_system.h"

namespace zurt {

void ReadElementGroup(Run& run, ElementGroup& group) {
    if (group.NGE == 1)
        BeginLayout(run, NumberingOf(run));
    switch (group.NETIP) {
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
    if (group.NGE >= run.control.header.NGET) {
        StopIfLayoutOverflows(run);
        SetMatrixLength(run, FinishLayout(run, NumberingOf(run)));
    }
}

void FormElementGroup(Run& run, ElementGroup& group) {
    if (group.NETIP == 1)
        FormGroup<1>(run, group);
    else if (group.NETIP == 2)
        FormGroup<2>(run, group);
    else if (group.NETIP == 3)
        FormGroup<3>(run, group);
    else
        FormGroupRadial(run, group);
}

void AddGroupResults(Run& run, ElementGroup& group) {
    if (run.control.header.NDS == 0)
        return;
    if (group.NGE == 1)
        ClearNodalResults(run);
    if (group.NETIP == 1)
        AddGroupFluxes<1>(run, group);
    else if (group.NETIP == 2)
        AddGroupFluxes<2>(run, group);
    else if (group.NETIP == 3)
        AddGroupFluxes<3>(run, group);
}

} // namespace zurt
