// What the rest of the program asks of radial groups besides their cards and their forming: start values, the nodes that
// they use, their part of the layout, counts of inner nodes.
//
// Called by the reader of the family, the driver, the fibre step and the writers of the graphics file.
#pragma once

#include "geometry/element_family.h"
#include "run/run.h"
#include "solver/linear_system.h"

namespace zurt {

/// Fibres whose nodes are nodes of the model: every node of every element that has an equation starts with CFIBER0.
void SetFibreInitialValues(Run& run, const ElementGroup& group);

/// Substructured fibres: all values of all fibres, now and at the start of the step, take CFIBER0, those of the last row
/// 0. For a run that begins anew, too.
void SetSubstructureInitialValues(Run& run, const ElementGroup& group);

/// Counts in `marks` (1..NP) how often each node serves a radial element. Substructured fibres bring no equation of
/// their own and count none.
void MarkRadialNodes(const Run& run, const ElementGroup& group, IntArray marks);

/// Couples the equations of each element in the layout that has been begun. Nothing for substructured fibres.
void LayOutRadialGroup(Run& run, const ElementGroup& group, const Numbering& numbering);

/// Inner nodes of the substructured fibres in the groups ahead of group NGE: their numbers run on from NP.
Word InnerNodesBefore(const Run& run, std::int32_t NGE);

} // namespace zurt
