#include "microscale/fibre_geometry.h"

#include "core/vector.h"
#include "core/widened_constants.h"

#include <cmath>

namespace zurt {

namespace {

constexpr double kQuarterPi = 0.7853981633974483;

// Puts coordinate q of p on a face and shifts the other two by what the way along `a` takes, up or down by `sign`.
void PutOnFace(double p[3], const double a[3], int q, double face, double sign) {
    const double t = std::fabs((p[q] - face) / a[q]);
    for (int r = 0; r < 3; ++r)
        if (r != q)
            p[r] += sign * std::fabs(a[r] * t);
    p[q] = face;
}

void ClipPoint(double p[3], const double a[3], const double limit[3]) {
    for (int q = 0; q < 3; ++q) {
        if (p[q] < -kClipTolerance)
            PutOnFace(p, a, q, 0.0, 1.0);
        if (p[q] > limit[q] + kClipTolerance)
            PutOnFace(p, a, q, limit[q], -1.0);
    }
}

bool IsSane(const double p[3]) {
    for (int axis = 0; axis < 3; ++axis)
        if (!(std::fabs(p[axis]) <= kLargestLength))
            return false;
    return true;
}

// The clipped length; 0 when nothing sensible is left.
double ClipLine(double* points, const double limit[3]) {
    double* const p1 = points;
    double* const p2 = points + 3;
    const double a[3] = {p2[0] - p1[0], p2[1] - p1[1], p2[2] - p1[2]};
    ClipPoint(p1, a, limit);
    ClipPoint(p2, a, limit);
    if (!IsSane(p1) || !IsSane(p2))
        return 0.0;
    const double clipped[3] = {p2[0] - p1[0], p2[1] - p1[1], p2[2] - p1[2]};
    return VectorLength(clipped);
}

double SetVolume(const FibreSet& set, int dim) {
    const double D = set.DIAM;
    if (set.NTYPE == kLineFibres)
        return dim == kPlaneFibres ? set.totalLength * D : D * kQuarterPi * D * set.totalLength;
    const double one = dim == kPlaneFibres ? D * D * kQuarterPi : D * D * D * kSixthPi;
    double volume = 0.0;
    for (std::size_t i = 0; i < set.fibres.size(); ++i)
        volume += one;
    return volume;
}

} // namespace

FibrePlace ClipFibresToBox(FibreModel& model, const double (&size)[3], int dim) {
    const double limit[3] = {size[0], size[1], dim == kPlaneFibres ? 0.0 : size[2]};
    for (std::size_t s = 0; s < model.sets.size(); ++s) {
        FibreSet& set = model.sets[s];
        set.totalLength = 0.0;
        if (set.NTYPE != kLineFibres)
            continue;
        for (std::size_t i = 0; i < set.fibres.size(); ++i) {
            const double length = ClipLine(set.fibres[i].points.data(), limit);
            if (!(length >= kSmallestLength))
                return {static_cast<Word>(s) + 1, static_cast<Word>(i) + 1};
            set.totalLength += length;
        }
    }
    return {};
}

void FibreVolumes(FibreModel& model, int dim) {
    model.fibreVolume = 0.0;
    for (FibreSet& set : model.sets) {
        set.volume = SetVolume(set, dim);
        model.fibreVolume += set.volume;
    }
}

} // namespace zurt
