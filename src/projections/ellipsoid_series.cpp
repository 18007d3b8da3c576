#include "projections/ellipsoid_series.h"

namespace lagestatus {

bool ArcSeries::rectifying(double tolerance, double& sum) noexcept {
    sum = 0.0;
    double t = firstChange;
    for (int k = 1; std::fabs(t) > tolerance; ++k) {
        if (k > maxPasses) {
            return false;
        }
        t = term(k);
        sum += t;
    }
    return true;
}

bool ArcSeries::meridian_arc(double phi, double tolerance, double& sum) noexcept {
    std::array<double, coefficients::count> power;  // sin^(2i) phi
    const double sinPhi = std::sin(phi);
    const bool equator = sinPhi == 0.0;  // where most systems have their origin
    sum = e2 * 0.75;
    double t = firstChange;
    for (int k = 2; std::fabs(t) > tolerance; ++k) {
        if (k > maxPasses) {
            return false;
        }
        const double T = term(k);
        const auto last = static_cast<std::size_t>(k) - 1;
        power[last] = equator ? 0.0 : std::pow(sinPhi, static_cast<double>(k - 1) * 2.0);
        t = T;
        for (std::size_t i = 1; i <= last; ++i) {
            t += power[i] * (coefficients::evenOverOdd[i] * T);
        }
        sum += t;
    }
    return true;
}

double GeodesicSeries::P(int m) noexcept {
    const auto last = static_cast<std::size_t>(m);
    for (; knownX <= last; ++knownX) {
        weightedX[knownX] = xPower * coefficients::alternating[knownX];
        xPower *= x;
    }
    for (; knownP <= last; ++knownP) {
        sumsP[knownP] = weighted_by_binomials(weightedX, knownP);
    }
    return sumsP[last];
}

double GeodesicSeries::weighted_by_binomials(const Table& table, std::size_t m) noexcept {
    const double* const row = coefficients::binomials.data() + m * (m + 1) / 2;
    double sum = 0.0;
    for (std::size_t j = 0; j <= m; ++j) {
        sum += table[j] * row[j];
    }
    return sum;
}

}  // namespace lagestatus
