#include "projections/ellipsoid_series.h"

namespace lagestatus {

ArcSeries::ArcSeries(const Ellipsoid& ellipsoid, double originLatitude, const Tolerances& tolerances,
                     bool rectifies) noexcept
    : a(ellipsoid.a),
      b(ellipsoid.b),
      phi0(originLatitude),
      sin2Phi0(phi0 == 0.0 ? phi0 : std::sin(phi0 * 2.0)),
      tol(tolerances),
      e2(1.0 - ((b / a) * b) / a) {
    const bool sureToConverge = e2 >= 0.0 && e2 < 0.1 && tol.series > 1e-90;  // T_k is below e^(2k)
    const bool fromEquator = phi0 == 0.0 && sureToConverge;
    if (rectifies || !fromEquator) {
        convergesS = sum_series(tol.series, S, [this](int k) {
            powers[static_cast<std::size_t>(k)] = power(k);
            known = k;
            return term(k);
        });
    }
    if (convergesS && !fromEquator) {
        convergesB0 = sum_b(phi0, B0);
    }
}

bool ArcSeries::sum_b(double phi, double& sum) const noexcept {
    std::array<double, coefficients::count> sinePower;  // sin^(2i) phi
    const double sinPhi = std::sin(phi);
    const bool equator = sinPhi == 0.0;  // where most systems have their origin
    sum = e2 * 0.75;
    const auto next = [&](int k) {
        const double T = term(k);
        const auto last = static_cast<std::size_t>(k) - 1;
        sinePower[last] = equator ? 0.0 : std::pow(sinPhi, static_cast<double>(k - 1) * 2.0);
        double t = T;
        for (std::size_t i = 1; i <= last; ++i) {
            t += sinePower[i] * (coefficients::evenOverOdd[i] * T);
        }
        return t;
    };
    return sum_series(tol.series, sum, next, 2);
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
