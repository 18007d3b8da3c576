// Latitude and longitude to Soldner coordinates.
//
// The footpoint of the geodesic is found on Bessel's auxiliary sphere: the longitude omega there differs from the
// longitude l by the longitude series of the geodesic, which one loop lengthens by a term a pass while it refines the
// footpoint, tan beta_f = tan beta / cos omega. Within nearMeridian of the central meridian, where the arc cosine loses
// digits, y comes from a series in l instead. Reference: ellipsoid_series.h.
//
//   symbol          meaning
//   beta, betaF     reduced latitude of the point, of the footpoint;  sb, tb  sine and tangent of beta
//   sigma           arc from the geodesic's node to the point, beyond pi/2 in the east
//   psi             arc from the footpoint, negative in the west
//   omega           longitude difference on the sphere;  l  on the ellipsoid
//   K1, K2          factors of the meridian arc G, G0 the arc to the origin
#include <cmath>
#include <cstddef>

#include "base/angles.h"
#include "projections/ellipsoid_series.h"
#include "projections/projections.h"

namespace lagestatus {
namespace {

constexpr double nearMeridian = 5e-5;  // radians

// The arcs of a point east or west of the central meridian whose footpoint is betaF.
struct Arcs {
    Arcs(double footpoint, double sb, bool east, bool west) noexcept : betaF(footpoint) {
        sinBetaF = std::sin(betaF);
        const double v = sb / sinBetaF - keptBelowOne;
        sigma = std::asin(v);
        psi = std::acos(v);
        if (east) {
            sigma = pi - sigma;
        }
        if (west) {
            psi = -psi;
        }
    }

    double betaF;
    double sinBetaF;
    double sigma;
    double psi;
};

}  // namespace

Status geo_to_soldner(double a, double b, double phi, double lam, double phi0, double lam0, PlaneResult& res,
                      double tolAngle, double tolLength, double tolSeries) noexcept {
    ArcSeries series(a, b);
    const double e2 = series.e2;
    double S = 0.0;
    double B0 = 0.0;
    if (!series.rectifying(tolSeries, S)) {
        return status::geoToSoldnerEccentricity;
    }
    if (!series.meridian_arc(phi0, tolSeries, B0)) {
        return status::geoToSoldnerArc;
    }
    const double A = S + 1.0;
    const double o = 1.0 - e2;
    const double K1 = A * (o * a);
    const double K2 = (o * a) * 0.5;
    const double G0 = K1 * phi0 - std::sin(phi0 * 2.0) * (K2 * B0);

    const double r = std::sqrt(o);
    const double tPhi = std::tan(phi);
    const double beta = std::atan(tPhi * r);
    const double tb = std::tan(beta);
    const double sb = std::sin(beta);
    const double l = lam - lam0;
    const bool east = lam >= lam0;
    const bool west = lam0 > lam;

    std::array<double, maxPasses> sinePowers;  // sin^(2j) beta d_j, as far as known
    std::size_t known = 0;
    const auto sinePower = [&](std::size_t j) {
        for (; known <= j; ++known) {
            sinePowers[known] =
                std::pow(sb, static_cast<double>(known) * 2.0) * coefficients::evenOverOdd[known];
        }
        return sinePowers[j];
    };
    Arcs arcs(std::atan(tb / std::cos(l)), sb, east, west);
    double betaFOld = -firstChange;
    double sigmaOld = -firstChange;
    double psiOld = -firstChange;
    const auto moves = [&] {
        return std::fabs(betaFOld - arcs.betaF) > tolAngle || std::fabs(sigmaOld - arcs.sigma) > tolAngle ||
               std::fabs(psiOld - arcs.psi) * a > tolLength;
    };
    for (int n = 1; moves(); ++n) {
        if (n > maxPasses) {
            return status::geoToSoldnerFootpoint;
        }
        const double cb = std::cos(arcs.betaF);
        GeodesicSeries geodesic(arcs.sinBetaF * arcs.sinBetaF);
        betaFOld = arcs.betaF;
        sigmaOld = arcs.sigma;
        psiOld = arcs.psi;
        const double s2 = std::sin(arcs.sigma * 2.0);
        double omega = l;
        for (int k = 1; k <= n; ++k) {
            const double Q = geodesic.Q(k - 1, sinePower) * s2 * 0.5;
            omega -= (geodesic.P(k - 1) * arcs.psi - Q) * (cb * series.root(k));
        }
        arcs = Arcs(std::atan(tb / std::cos(omega)), sb, east, west);
    }

    GeodesicSeries geodesic(arcs.sinBetaF * arcs.sinBetaF);
    const double s2 = std::sin(arcs.sigma * 2.0);
    const double Y0 = arcs.psi * a;
    double y = Y0;
    double t = firstChange;
    for (int k = 1; std::fabs(t) > tolLength; ++k) {
        if (k > maxPasses) {
            return status::geoToSoldnerY;
        }
        t = (Y0 * series.root(k)) * geodesic.P(k) -
            (((s2 * a) * series.root(k)) * geodesic.Q(k, sinePower)) * 0.5;
        y += t;
    }

    const double phiF = std::atan(std::tan(arcs.betaF) / r);
    double Bf = 0.0;
    if (!series.meridian_arc(phiF, tolSeries, Bf)) {
        return status::geoToSoldnerFootpointArc;
    }
    const double x = (K1 * phiF - std::sin(phiF * 2.0) * (K2 * Bf)) - G0;
    if (!(std::fabs(l) >= nearMeridian)) {
        const double c = std::cos(phi);
        const double L2 = ((l * c) * l) * c;
        const double N = ((a / b) * a) / std::sqrt(((c * c) * e2) / o + 1.0);
        y = ((N * l) * c) * (1.0 - ((((8.0 - tPhi * tPhi) * L2) / 20.0 + 1.0) * ((tPhi * L2) * tPhi)) / 6.0);
    }
    if (!std::isfinite(y) || !std::isfinite(x)) {
        return status::geoToSoldnerFootpoint;
    }
    res = {y, x};
    return status::ok;
}

}  // namespace lagestatus
