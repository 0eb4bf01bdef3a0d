#include "elements/forming/volume_source.h"

#include "core/format.h"
#include "core/stop.h"
#include "geometry/group_views.h"
#include "model/curve_messages.h"

namespace zurt {

namespace {

// Value of function f at `time`; at the exact end of the function `value` stays as it is.
void EvaluateSource(Run& run, const VolumeSource& source, const ElementPlace& place, std::int32_t f,
                    double time, double& value) {
    std::int32_t points = 0;
    if (CurveLookup(source.functions.pairs, source.functions.points, f, time, value, points) == 0)
        return;
    TextUnit& unit = BeginMessage(run);
    NoteOutsideCurve(run, place, "source", f, PairCurve(source.functions.pairs, source.functions.points, f),
                     time);
    Write(unit, "(1X,A)", Say(run, "ARGUMENT VAN OPSEGA ZADATE KRIVE", "CURVE ARGUMENT IS OUT OF RANGE"));
    Write(unit, "(1X,A,I5)",
          Say(run, "KRIVA TOPLOTNI IZVOR - VREME,  BR. =", "CURVE HEAT SOURCE - TIME,  No. ="), f);
    Write(unit, "(1X,A,1PE12.4)", Say(run, "ARGUMENT VREME, VREME =", "ARGUMENT TIME, TIME ="), time);
    StopRun(unit);
}

// A step of no length has no mean rate: the value itself stands for it.
void SetMeanRate(Run& run, const VolumeSource& source, const ElementPlace& place, HeldCurveValues& held) {
    const double t0 = run.clock.StartTime;
    const double t = run.clock.TIME;
    double start = held.rate;
    EvaluateSource(run, source, place, 1, t0, start);
    EvaluateSource(run, source, place, 1, t, held.rate);
    held.QV = t - t0 == 0.0 ? held.rate : (held.rate - start) / (t - t0);
}

} // namespace

VolumeSource BeginVolumeSource(Run& run, const ElementGroup& group) {
    const std::int32_t NQE = run.control.counts.NQE;
    VolumeSource source;
    source.group = group.NGE;
    if (NQE < 1)
        return source;
    source.functions = SourceFunctions(run);
    source.oneFunction = NQE == 1;
    if (group.IZIP == 1)
        source.curves = ElementSources(run, group);
    if (source.oneFunction && group.IZIP != 2)
        SetMeanRate(run, source, {group.NGE, 0, 0}, run.visits.held[group.NGE]);
    return source;
}

std::int32_t ElementSource(Run& run, const VolumeSource& source, Word n, HeldCurveValues& held) {
    const std::int32_t ISRC = source.curves.length > 0 ? source.curves(n) : 0;
    if (ISRC != 0 && !source.oneFunction)
        EvaluateSource(run, source, {source.group, static_cast<std::int32_t>(n), 0}, ISRC, run.clock.TIME,
                       held.QV);
    return ISRC;
}

} // namespace zurt
