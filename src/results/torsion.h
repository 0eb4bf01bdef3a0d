// The torsion analogue: shear stresses and torsional moment of a prismatic shaft from the field over its cross-section.
//
// With the conductivity 0.5 over the shear modulus and the source the angle of twist per unit length, the field that is
// 0 on the outline is the torsion function: stresses are its derivatives, the moment is twice its integral.
// Source: S. P. Timoshenko, J. N. Goodier, Theory of Elasticity, 1970, articles 104 and 105.
#pragma once

#include "run/run.h"

namespace zurt {

/// Prints shear stresses at the Gauss points and the moment of every element of the 2D groups whose print flag is not
/// 0, and the moment of the cross-section, from NodalValues. Called under ITOR 1 in steps that are printed. Without
/// source functions (NQE 0) there is one line. Stops the run on an element without a positive Jacobian.
void PrintTorsion(Run& run);

} // namespace zurt
