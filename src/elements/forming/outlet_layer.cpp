#include "elements/forming/outlet_layer.h"

#include "core/ranks.h"
#include "elements/forming/form_elements.h"

#include <algorithm>

namespace zurt {

void FormOutletLayer3D(Run& run, const ElementGroup& group) {
    const HeaderFields& header = run.control.header;
    const Word layers = group.NGE == 2 ? header.NXPCL : header.NXFIB;
    const Word perLayer = Word{header.NYFIB} * header.NZFIB;
    NodalAveraging& averaging = run.averaging;
    averaging.layer.clear();
    if (layers >= 1 && perLayer >= 1 && layers - 1 <= group.NET / perLayer)
        for (Word n = (layers - 1) * perLayer + 1; n <= std::min<Word>(layers * perLayer, group.NET); ++n)
            averaging.layer.push_back(static_cast<std::int32_t>(n));
    if (averaging.layer.empty())
        return;
    AddElementResiduals<3>(
        run, group, ConstIntArray(averaging.layer.data(), static_cast<Word>(averaging.layer.size())), true,
        RealArray(averaging.layerResiduals.data(), static_cast<Word>(averaging.layerResiduals.size())));
}

void FormOutletLayers(Run& run) {
    const std::int32_t NGET = run.control.header.NGET;
    run.averaging.layerResiduals.assign(static_cast<std::size_t>(run.control.header.NP), 0.0);
    for (std::int32_t NGE = 1; NGE <= (NGET > 2 ? 2 : 1); ++NGE)
        if (run.groups[NGE].NETIP == 3)
            FormOutletLayer3D(run, run.groups[NGE]);
    SumOverRanks(RealArray(run.averaging.layerResiduals.data(),
                           static_cast<Word>(run.averaging.layerResiduals.size())));
}

} // namespace zurt
