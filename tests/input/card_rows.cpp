// Rows of a card that must not compile, one for each value of ROW from 1 on; with ROW 0 the file compiles. The tests
// CardRows.* (CMakeLists.txt) compile it with each.
#include "input/card.h"
#include "run/echo.h"

namespace {

struct Sample {
    std::int32_t N[2];
    double X;
    char TITLE[80];
};

constexpr auto kRow =
#if ROW == 0
    ZURT_PART_ROW("N", Sample, N, 1, 2, "I5", ::zurt::kAnyInteger, "", "");
#elif ROW == 1
    ZURT_REAL(Sample, X, "I5", "");
#elif ROW == 2
    ZURT_COUNT(Sample, N, "F10.2", "");
#elif ROW == 3
    ZURT_REAL(Sample, TITLE, "D10.4", "");
#elif ROW == 4
    ZURT_REAL(Sample, X, "F10", "");
#elif ROW == 5
    ZURT_PART_ROW("N", Sample, N, 2, 2, "I5", ::zurt::kAnyInteger, "", "");
#elif ROW == 6
    ZURT_DESCRIPTOR(double, "I5");
#elif ROW == 7
    ZURT_ECHO_INTEGER(Sample, X, "", "");
#endif

} // namespace

int main() {
    return sizeof kRow == 0;
}
