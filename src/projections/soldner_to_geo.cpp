// Soldner coordinates to latitude and longitude.
//
// The meridian arc of x gives the footpoint's latitude. A quarter of the geodesic's whole circuit lies between its node
// and the footpoint, which turns y into an arc length from the node; the arc-length series is inverted for the arc
// sigma on the auxiliary sphere, and the longitude series gives the longitude from the footpoint. Less than nearMeridian
// from the central meridian the longitude comes from a series in y instead. Reference: ellipsoid_series.h.
//
//   symbol          meaning
//   A, o            1 + S, 1 - e2
//   mu              rectifying latitude of the footpoint, phiF its latitude, betaF its reduced latitude
//   cf, sf, tf      cosine and sine of betaF, tangent of phiF
//   L               length of the circuit
//   sigma           arc from the node to the point, sigma1 the same for the point's side of the footpoint
//   omega           longitude from the node on the sphere, on the ellipsoid with the series
#include <cmath>
#include <cstddef>

#include "base/angles.h"
#include "projections/ellipsoid_series.h"
#include "projections/projections.h"

namespace lagestatus {
namespace {

constexpr double nearMeridian = 200.0;  // metres

}  // namespace

Status soldner_to_geo(double a, double b, double y, double x, double phi0, double lam0, GeographicResult& res,
                      double tolAngle, double tolLength, double tolSeries) noexcept {
    ArcSeries series(a, b);
    const double e2 = series.e2;
    double S = 0.0;
    double B = 0.0;
    if (!series.rectifying(tolSeries, S)) {
        return status::soldnerToGeoEccentricity;
    }
    if (!series.meridian_arc(phi0, tolSeries, B)) {
        return status::soldnerToGeoArc;
    }
    const double A = S + 1.0;
    const double o = 1.0 - e2;
    const double mu =
        ((((A * (o * a)) * phi0 + x) - std::sin(phi0 * 2.0) * (((o * a) * 0.5) * B)) / a) / o / A;

    double phiPrevious = mu;
    double phiF = ((std::sin(mu * 2.0) * S) * 0.5) / A + mu;
    for (int n = 1; std::fabs(phiPrevious - phiF) > tolAngle; ++n) {
        if (n > maxPasses) {
            return status::soldnerToGeoFootpoint;
        }
        if (!series.meridian_arc(phiPrevious, tolSeries, B)) {
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
    double L = (pi * a) * 2.0;
    double root = 1.0;  // coefficient of sqrt(1 - t)
    double t = firstChange;
    for (int k = 1; std::fabs(t) > tolLength; ++k) {
        if (k > maxPasses) {
            return status::soldnerToGeoCircuit;
        }
        const double twice = static_cast<double>(k - 1) * 2.0;
        root = ((twice - 1.0) * root) / (twice + 2.0);
        t = series.power(k) * ((((pi * 2.0) * a) * root) * geodesic.P(k));
        L += t;
    }

    const double s0 = (L * 0.25 + y) / a;
    double sigma = s0;
    double sigmaOld = -firstChange;
    std::array<double, coefficients::count> xPower;  // x^j by pow, as far as known
    std::size_t known = 0;
    for (int n = 1; std::fabs(sigmaOld - sigma) > tolAngle; ++n) {
        if (n > maxPasses) {
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
            const double g = series.root(k);
            sigma = (sigma - (sigmaOld * g) * geodesic.P(k)) + ((s2 * g) * geodesic.Q(k, power)) * 0.5;
        }
    }

    const double beta = std::asin(std::sin(sigma) * sf);
    const double phi = std::atan(std::tan(beta) / r);
    const double sinBeta = std::sin(beta);
    const double sigma1 = y >= 0.0 ? pi - sigma : sigma;
    double omega = std::asin(((cf / std::cos(beta)) * std::sin(sigma1)) - keptBelowOne);
    const double s2 = std::sin(sigma1 * 2.0);
    const auto sinePower = [&](std::size_t j) {
        return std::pow(sinBeta, static_cast<double>(j) * 2.0) * coefficients::evenOverOdd[j];
    };
    geodesic.forget_point();
    t = firstChange;
    for (int k = 1; std::fabs(t) > tolAngle; ++k) {
        if (k > maxPasses) {
            return status::soldnerToGeoLongitude;
        }
        const double g = series.root(k);
        t = ((sigma1 * cf) * g) * geodesic.P(k - 1) - (((s2 * cf) * g) * geodesic.Q(k - 1, sinePower)) * 0.5;
        omega += t;
    }
    double quarter = halfPi;  // longitude of the footpoint from the node
    t = firstChange;
    for (int k = 1; std::fabs(t) > tolAngle; ++k) {
        if (k > maxPasses) {
            return status::soldnerToGeoQuarter;
        }
        const double g = series.root(k);
        t = ((halfPi * cf) * g) * geodesic.P(k - 1);
        quarter += t;
    }

    double lam = y < 0.0 ? (omega - quarter) + lam0 : (quarter + lam0) - omega;
    if (!(std::fabs(y) >= nearMeridian)) {
        const double c = std::cos(phiF);
        const double N = ((a / b) * a) / std::sqrt(((c * c) * e2) / o + 1.0);
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
