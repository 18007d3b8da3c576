// Soldner coordinates to latitude and longitude.
//
// The meridian arc of x gives the footpoint's latitude. A quarter of the geodesic's whole circuit lies between its node
// and the footpoint, which turns y into an arc length from the node; the arc-length series is inverted for the arc
// sigma on the auxiliary sphere, and the longitude series gives the longitude from the footpoint. Less than
// nearMeridian from the central meridian the longitude comes from a series in y instead. Reference: ellipsoid_series.h.
//
//   symbol          meaning
//   A, o            1 + S, 1 - e2
//   mu              rectifying latitude of the footpoint, phiF its latitude, betaF its reduced latitude
//   cf, sf, tf      cosine and sine of betaF, tangent of phiF
//   L               length of the circuit
//   sigma           arc from the node to the point, sigma1 the same for the point's side of the footpoint
//   omega           longitude from the node on the sphere, on the ellipsoid with the series
#include <array>
#include <cmath>
#include <cstddef>

#include "base/angles.h"
#include "projections/ellipsoid_series.h"
#include "projections/projections.h"

namespace lagestatus {
namespace {

constexpr double nearMeridian = 200.0;  // metres

}  // namespace

Status soldner_to_geo(const ArcSeries& series, const PlanePoint& point, double lam0, LatLon& res) noexcept {
    // 1. The rectifying latitude of the footpoint, from the meridian arc to the origin and x.
    if (!series.convergesS) {
        return status::soldnerToGeoEccentricity;
    }
    if (!series.convergesB0) {
        return status::soldnerToGeoArc;
    }
    const auto [x, y] = point;
    const double a = series.a;
    const double e2 = series.e2;
    const double A = series.S + 1.0;
    const double o = 1.0 - e2;
    const double mu =
        ((((A * (o * a)) * series.phi0 + x) - series.sin2Phi0 * (((o * a) * 0.5) * series.B0)) / a) / o / A;

    // 2. The footpoint's latitude, with B one pass late, and what hangs on it.
    double phiPrevious = mu;
    double phiF = ((std::sin(mu * 2.0) * series.S) * 0.5) / A + mu;
    for (int n = 1; std::fabs(phiPrevious - phiF) > series.tol.angle; ++n) {
        if (n > passLimit) {
            return status::soldnerToGeoFootpoint;
        }
        double B = 0.0;
        if (!series.sum_b(phiPrevious, B)) {
            return status::soldnerToGeoFootpointArc;
        }
        phiPrevious = phiF;
        phiF = ((std::sin(phiPrevious * 2.0) * B) * 0.5) / A + mu;
    }
    const double r = std::sqrt(o);
    const double tf = std::tan(phiF);
    const double betaF = std::atan(tf * r);
    const double cf = std::cos(betaF);
    const double sf = std::sin(betaF);
    GeodesicSeries geodesic(sf * sf);

    // 3. The length of the geodesic's circuit. c is the coefficient of sqrt(1 - t).
    double L = (pi * a) * 2.0;
    const auto circuitTerm = [&, c = 1.0](int k) mutable {
        const double twice = static_cast<double>(k - 1) * 2.0;
        c = ((twice - 1.0) * c) / (twice + 2.0);
        return series.power(k) * ((((pi * 2.0) * a) * c) * geodesic.P(k));
    };
    if (!sum_series(series.tol.length, L, circuitTerm)) {
        return status::soldnerToGeoCircuit;
    }

    // 4. The arc from the node to the point: pass n takes n terms of the length series.
    Roots g(e2);
    const double s0 = (L * 0.25 + y) / a;
    double sigma = s0;
    double sigmaOld = -firstChange;
    std::array<double, coefficients::count> xPower;  // x^j by pow, as far as known
    std::size_t known = 0;
    for (int n = 1; std::fabs(sigmaOld - sigma) > series.tol.angle; ++n) {
        if (n > passLimit) {
            return status::soldnerToGeoSigma;
        }
        sigmaOld = sigma;
        sigma = s0;
        const double s2 = std::sin(sigmaOld * 2.0);
        const double sinSigma = std::sin(sigmaOld);
        const auto power = [&](std::size_t j) {
            for (; known <= j; ++known) {
                xPower[known] = std::pow(sf * sf, static_cast<double>(known));
            }
            return (std::pow(sinSigma, static_cast<double>(j) * 2.0) * coefficients::evenOverOdd[j]) *
                   xPower[j];
        };
        geodesic.forget_point();
        for (int k = 1; k <= n; ++k) {
            sigma = (sigma - (sigmaOld * g[k]) * geodesic.P(k)) + ((s2 * g[k]) * geodesic.Q(k, power)) * 0.5;
        }
    }

    // 5. The latitude, from the reduced one.
    const double beta = std::asin(std::sin(sigma) * sf);
    const double phi = std::atan(std::tan(beta) / r);

    // 6. The longitudes from the node to the point and to the footpoint; their difference is that from the meridian.
    const double sinBeta = std::sin(beta);
    const double sigma1 = y >= 0.0 ? pi - sigma : sigma;
    double omega = std::asin(((cf / std::cos(beta)) * std::sin(sigma1)) - keptBelowOne);
    const double s2 = std::sin(sigma1 * 2.0);
    const auto sinePower = [&](std::size_t j) {
        return std::pow(sinBeta, static_cast<double>(j) * 2.0) * coefficients::evenOverOdd[j];
    };
    geodesic.forget_point();
    const auto pointTerm = [&](int k) {
        return ((sigma1 * cf) * g[k]) * geodesic.P(k - 1) -
               (((s2 * cf) * g[k]) * geodesic.Q(k - 1, sinePower)) * 0.5;
    };
    if (!sum_series(series.tol.angle, omega, pointTerm)) {
        return status::soldnerToGeoLongitude;
    }
    double quarter = halfPi;
    const auto footpointTerm = [&](int k) { return ((halfPi * cf) * g[k]) * geodesic.P(k - 1); };
    if (!sum_series(series.tol.angle, quarter, footpointTerm)) {
        return status::soldnerToGeoQuarter;
    }
    double lam = y < 0.0 ? (omega - quarter) + lam0 : (quarter + lam0) - omega;

    // 7. Beside the meridian the longitude by its series in y.
    if (!(std::fabs(y) >= nearMeridian)) {
        const double c = std::cos(phiF);
        const double N = ((a / series.b) * a) / std::sqrt(((c * c) * e2) / o + 1.0);
        const double u2 = (((y / N) * y) / N) * ((tf * 3.0) * tf + 1.0);
        const double w = (((tf * tf) * y) / N) * y;
        lam = ((1.0 - ((1.0 - u2 / 5.0) * (w / N)) / 3.0) * (y / (c * N))) + lam0;
    }
    if (!std::isfinite(phi) || !std::isfinite(lam)) {
        return status::soldnerToGeoSigma;
    }
    res = {phi, lam};
    return status::ok;
}

}  // namespace lagestatus
