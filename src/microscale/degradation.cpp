#include "microscale/degradation.h"

#include <cmath>

namespace zurt {

DegradedCoefficient DegradedDiffusion(const HeaderFields& header, double t) {
    const double k = header.DEGRATEK;
    const double e = std::exp(-k * t);
    const double e2 = std::exp(-(k + k) * t);
    const double P = header.DEGIPOR + (1.0 - header.DEGIPOR) * (((e2 + 1.0) - e) - e);
    const double S = std::pow(std::exp(-header.DEGRATEKW * t), header.DEGALPHA) * header.DIFFCDS;
    DegradedCoefficient law;
    law.D = (S * (1.0 - P) + header.DIFFCDL * header.DEGPART * P) / ((1.0 - P) + header.DEGPART * P);
    law.phi = 1.0 - P;
    return law;
}

} // namespace zurt
