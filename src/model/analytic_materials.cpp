#include "model/analytic_materials.h"

namespace zurt {

namespace {

// Along and across the fibres of the two orthotropic materials (5, 6 and 9, 10).
double PolynomialA(double T) {
    return 459.6700134277344 - 0.20999999344348907 * T + 2.6e-05 * (T * T) + 1.4e-09 * (T * T * T);
}

double PolynomialB(double T) {
    return 3.2300000190734863 - 0.00283 * T + 1.13e-06 * (T * T) - 1.44e-10 * (T * T * T);
}

double PolynomialP(double T) {
    return ((0.000139 - 3.43e-08 * T) * T - 0.3100000023841858) * T + 442.0;
}

double PolynomialQ(double T) {
    return ((2.08e-06 - 4.64e-10 * T) * T - 0.00329) * T + 2.809999942779541;
}

double IsotropicConductivity(std::int32_t material, double T) {
    const double T2 = T * T;
    switch (material) {
    case 2:
        return (-0.07999999821186066 - T2 * 3.86e-08) * T + T2 * 7.08e-05 + 71.75;
    case 3:
        return (-0.07999999821186066 - T2 * 3.81e-08) * T + T2 * 5.03e-05 + 404.6700134277344;
    case 4:
        return (-0.27000001072883606 - T2 * 2.5e-08) * T + T2 * 0.000142 + 204.7899932861328;
    case 7:
        return (T2 * 1.81e-09 - 0.009999999776482582) * T + (142.64999389648438 - T2 * 1.04e-05);
    case 8:
        return T * (T * 6.1e-05 - 0.14000000059604645) + 169.0;
    default:
        return (T2 * 2.38e-07 + 3.140000104904175) * T + (-471.8699951171875 - T2 * 0.00483);
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
        c = (T2 * 3.02e-06 + 2.9200000762939453) * T + (-85.27999877929688 - T2 * 0.00485);
        break;
    case 3:
        c = (T2 * 1.6e-08 + 0.15000000596046448) * T + (329.3299865722656 - T2 * 3.68e-05);
        break;
    case 4:
    case 5:
    case 6:
        c = (T2 * 1.7e-07 + 2.140000104904175) * T + (416.1099853515625 - T2 * 0.00102);
        break;
    case 7:
        c = (T2 * 1.59e-08 + 0.23999999463558197) * T + (189.6300048828125 - T2 * 0.000105);
        break;
    case 8:
        c = (0.019999999552965164 - T * 7.1e-06) * T + 133.60000610351562;
        break;
    case 9:
    case 10:
        c = ((T * 3.94e-07 - 0.00159) * T + 2.2899999618530273) * T + 755.5999755859375;
        break;
    default:
        c = (-1.1699999570846558 - T2 * 7.49e-07) * T + T2 * 0.00253 + 1016.47998046875;
    }
    return density(material) * c;
}

} // namespace zurt
