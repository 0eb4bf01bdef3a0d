#include "model/analytic_materials.h"

#include "core/widened_constants.h"

namespace zurt {

namespace {

// Along and across the fibres of the two orthotropic materials (5, 6 and 9, 10).
double PolynomialA(double T) {
    return Widened(459.67F) - Widened(0.21F) * T + 2.6e-05 * (T * T) + 1.4e-09 * (T * T * T);
}

double PolynomialB(double T) {
    return Widened(3.23F) - 0.00283 * T + 1.13e-06 * (T * T) - 1.44e-10 * (T * T * T);
}

double PolynomialP(double T) {
    return ((0.000139 - 3.43e-08 * T) * T - Widened(0.31F)) * T + 442.0;
}

double PolynomialQ(double T) {
    return ((2.08e-06 - 4.64e-10 * T) * T - 0.00329) * T + Widened(2.81F);
}

double IsotropicConductivity(std::int32_t material, double T) {
    const double T2 = T * T;
    switch (material) {
    case 2:
        return (-Widened(0.08F) - T2 * 3.86e-08) * T + T2 * 7.08e-05 + 71.75;
    case 3:
        return (-Widened(0.08F) - T2 * 3.81e-08) * T + T2 * 5.03e-05 + Widened(404.67F);
    case 4:
        return (-Widened(0.27F) - T2 * 2.5e-08) * T + T2 * 0.000142 + Widened(204.79F);
    case 7:
        return (T2 * 1.81e-09 - Widened(0.01F)) * T + (Widened(142.65F) - T2 * 1.04e-05);
    case 8:
        return T * (T * 6.1e-05 - Widened(0.14F)) + 169.0;
    default:
        return (T2 * 2.38e-07 + Widened(3.14F)) * T + (-Widened(471.87F) - T2 * 0.00483);
    }
}

} // namespace

AnalyticRange AnalyticConduction(std::int32_t material, double T, ConstRealArray maximum,
                                 ConstRealArray minimum, double& K1, double& K2, double& K3) {
    if (T > maximum(material))
        return AnalyticRange::AboveMaximum;
    if (T < minimum(material))
        return AnalyticRange::BelowMinimum;
    switch (material) {
    case 5:
        K1 = K3 = PolynomialA(T);
        K2 = PolynomialB(T);
        break;
    case 6:
        K1 = PolynomialB(T);
        K2 = K3 = PolynomialA(T);
        break;
    case 9:
        K1 = K3 = PolynomialP(T);
        K2 = PolynomialQ(T);
        break;
    case 10:
        K1 = PolynomialQ(T);
        K2 = K3 = PolynomialP(T);
        break;
    default:
        K1 = K2 = K3 = IsotropicConductivity(material, T);
    }
    return AnalyticRange::Within;
}

double AnalyticSpecificHeat(std::int32_t material, double T, ConstRealArray density) {
    const double T2 = T * T;
    double c = 0.0;
    switch (material) {
    case 2:
        c = (T2 * 3.02e-06 + Widened(2.92F)) * T + (-Widened(85.28F) - T2 * 0.00485);
        break;
    case 3:
        c = (T2 * 1.6e-08 + Widened(0.15F)) * T + (Widened(329.33F) - T2 * 3.68e-05);
        break;
    case 4:
    case 5:
    case 6:
        c = (T2 * 1.7e-07 + Widened(2.14F)) * T + (Widened(416.11F) - T2 * 0.00102);
        break;
    case 7:
        c = (T2 * 1.59e-08 + Widened(0.24F)) * T + (Widened(189.63F) - T2 * 0.000105);
        break;
    case 8:
        c = (Widened(0.02F) - T * 7.1e-06) * T + Widened(133.6F);
        break;
    case 9:
    case 10:
        c = ((T * 3.94e-07 - 0.00159) * T + Widened(2.29F)) * T + Widened(755.6F);
        break;
    default:
        c = (-Widened(1.17F) - T2 * 7.49e-07) * T + T2 * 0.00253 + Widened(1016.48F);
    }
    return density(material) * c;
}

} // namespace zurt
