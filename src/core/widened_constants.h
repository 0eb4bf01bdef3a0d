// Constants that are single-precision numbers widened to double precision.
//
// Results are required to carry their digits, so none may be replaced by the plain decimal. Each is stated as a double
// and asserted to be its single-precision literal; thresholds that are plain doubles stand with their users.
#pragma once

namespace zurt {

/// The double that has exactly the value of a single-precision number.
constexpr double Widened(float single) {
    return static_cast<double>(single);
}

// --- vectors and geometry of fibres -------------------------------------------------------------------------------

/// A component of a normalized vector below this in size becomes 0.
constexpr double kNormalizeLimit = 1.000000013351432e-10;
static_assert(kNormalizeLimit == Widened(1.E-10F));

/// Wall distances that differ by no more are equal; a point at this distance or less lies in the fibre.
constexpr double kDistanceTolerance = 1.000000013351432e-10;
static_assert(kDistanceTolerance == Widened(1.E-10F));

/// How far the end of a fibre may lie outside the fibre box before it is clipped.
constexpr double kClipTolerance = 9.999999717180685e-10;
static_assert(kClipTolerance == Widened(1.E-9F));

/// A vector product shorter than this is of parallel vectors.
constexpr double kParallelLimit = 9.999999960041972e-13;
static_assert(kParallelLimit == Widened(1.E-12F));

/// Volume of a sphere of diameter 1: pi in double precision times a sixth in single precision.
constexpr double kSixthPi = 0.5235987912027583;
static_assert(kSixthPi == 3.141592653589793 * Widened(1.0F / 6.0F));

// --- correction factors and the equivalent distance ---------------------------------------------------------------

/// The least correction factor, which is also that of a point in a fibre.
constexpr double kSmallestFactor = 9.999999974752427e-07;
static_assert(kSmallestFactor == Widened(1.E-6F));

/// Times the sizes of the fibre box: the tolerance of the search for the start value of HEQ.
constexpr double kMillionth = 9.999999974752427e-07;
static_assert(kMillionth == Widened(1.E-6F));

/// HEQ is never smaller; 0.6 nm.
constexpr double kLowestHeq = 0.0006000000284984708;
static_assert(kLowestHeq == Widened(0.0006F));

// --- fit ----------------------------------------------------------------------------------------------------------

/// The relative step of a fit's parameter never falls below it.
constexpr double kLowestStep = -0.9900000095367432;
static_assert(kLowestStep == Widened(-0.99F));

/// How far, in radii of the molecule, an equivalent distance is put above the radius.
constexpr double kAboveRadius = 0.009999999776482582;
static_assert(kAboveRadius == Widened(0.01F));

/// By how much the curve that a fit of the equivalent model starts from is raised.
constexpr double kEquivalentRaise = 1.100000023841858;
static_assert(kEquivalentRaise == Widened(1.1F));

// --- cards --------------------------------------------------------------------------------------------------------

/// Relative accuracy of a deck that gives none.
constexpr double kDefaultEPSTR = 0.0010000000474974513;
static_assert(kDefaultEPSTR == Widened(1.E-3F));

/// A thickness or area on a card that is below this in size counts as none.
constexpr double kNoThickness = 1.000000013351432e-10;
static_assert(kNoThickness == Widened(1.E-10F));

} // namespace zurt
