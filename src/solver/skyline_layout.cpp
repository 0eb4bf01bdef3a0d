#include "solver/skyline_layout.h"

#include <algorithm>
#include <limits>

namespace zurt {

void RaiseColumnHeights(IntArray MHT, ConstIntArray ID, ConstIntTable NEL, Word element, IntArray LM,
                        Word NDIM, Word JEDN) {
    Word count = 0;
    Word lowest = JEDN + 1;
    for (Word j = 1; j <= NDIM; ++j) {
        const std::int32_t node = NEL(element, j);
        if (node == 0 || ID(node) <= 0)
            continue;
        LM(++count) = ID(node);
        lowest = std::min<Word>(lowest, ID(node));
    }
    for (Word i = 1; i <= count; ++i) {
        const std::int32_t height = static_cast<std::int32_t>(LM(i) - lowest);
        MHT(LM(i)) = std::max(MHT(LM(i)), height);
    }
}

Word MakeColumnPointers(IntArray MAXA, Word JEDN) {
    const Word largest = std::numeric_limits<std::int32_t>::max();
    Word position = 1;
    Word height = 0;
    for (Word c = 1; c <= JEDN; ++c) {
        const Word nextHeight = c < JEDN ? MAXA(c + 1) : 0;
        MAXA(c) = static_cast<std::int32_t>(std::min(position, largest));
        position += height + 1;
        height = nextHeight;
    }
    MAXA(JEDN + 1) = static_cast<std::int32_t>(std::min(position, largest));
    return position - 1;
}

void ComputeColumnHeights(IntArray MHT, ConstIntArray ID, ConstIntTable NEL, IntArray LM, Word NE, Word JEDN,
                          bool finish, Word NDIM, Word& NWK) {
    for (Word element = 1; element <= NE; ++element)
        RaiseColumnHeights(MHT, ID, NEL, element, LM, NDIM, JEDN);
    if (finish)
        NWK = MakeColumnPointers(MHT, JEDN);
}

} // namespace zurt
