#include "elements/element_phases.h"

#include "elements/cards/group_cards.h"
#include "elements/forming/element_visit.h"
#include "elements/forming/form_elements.h"
#include "elements/forming/nodal_averaging.h"
#include "elements/radial/radial_cards.h"
#include "elements/radial/radial_form.h"
#include "geometry/element_family.h"
#include "run/partition.h"
#include "solver/linear_system.h"

namespace zurt {

void ReadElementGroup(Run& run, ElementGroup& group) {
    if (group.NGE == 1)
        BeginLayout(run, NumberingOf(run));
    ForgetVisits(run, group.NGE);
    if (IsRadial(group))
        ReadGroupRadial(run, group);
    else
        ReadIsoparametricGroup(run, group);
    if (group.NGE >= run.control.header.NGET) {
        StopIfLayoutOverflows(run);
        SetMatrixLength(run, FinishLayout(run, NumberingOf(run)));
    }
}

void FormElementGroup(Run& run, const ElementGroup& group) {
    if (IsRadial(group))
        FormGroupRadial(run, group);
    else
        WithFamily(group, [&](auto family) { FormGroup<family.value>(run, group); });
}

void AddGroupResults(Run& run, const ElementGroup& group) {
    if (run.control.header.NDS == 0)
        return;
    if (group.NGE == 1)
        ClearNodalResults(run);
    WithFamily(group, [&](auto family) { AddGroupFluxes<family.value>(run, group); });
}

} // namespace zurt
