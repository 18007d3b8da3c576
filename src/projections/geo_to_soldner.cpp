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
#include <array>
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

Status geo_to_soldner(const ArcSeries& series, const LatLon& point, double lam0, PlanePoint& res) noexcept {
    // 1. The meridian arc from the equator to the origin.
    if (!series.convergesS) {
        return status::geoToSoldnerEccentricity;
    }
    if (!series.convergesB0) {
        return status::geoToSoldnerArc;
    }
    const auto [phi, lam] = point;
    const double a = series.a;
    const double e2 = series.e2;
    const double A = series.S + 1.0;
    const double o = 1.0 - e2;
    const double K1 = A * (o * a);
    const double K2 = (o * a) * 0.5;
    const double G0 = K1 * series.phi0 - series.sin2Phi0 * (K2 * series.B0);

    // 2. The point on the auxiliary sphere, and its footpoint as if the ellipsoid were that sphere.
    const double r = std::sqrt(o);
    const double tPhi = std::tan(phi);
    const double beta = std::atan(tPhi * r);
    const double tb = std::tan(beta);
    const double sb = std::sin(beta);
    const double l = lam - lam0;
    const bool east = lam >= lam0;
    const bool west = lam0 > lam;
    Arcs arcs(std::atan(tb / std::cos(l)), sb, east, west);

    // 3. The footpoint: pass n takes n terms of the longitude series, until none of the arcs moves.
    Roots g(e2);
    std::array<double, passLimit> sinePowers;  // sin^(2j) beta d_j, as far as known
    std::size_t known = 0;
    const auto sinePower = [&](std::size_t j) {
        for (; known <= j; ++known) {
            sinePowers[known] =
                std::pow(sb, static_cast<double>(known) * 2.0) * coefficients::evenOverOdd[known];
        }
        return sinePowers[j];
    };
    double betaFOld = -firstChange;
    double sigmaOld = -firstChange;
    double psiOld = -firstChange;
    const auto moves = [&] {
        return std::fabs(betaFOld - arcs.betaF) > series.tol.angle ||
               std::fabs(sigmaOld - arcs.sigma) > series.tol.angle ||
               std::fabs(psiOld - arcs.psi) * a > series.tol.length;
    };
    for (int n = 1; moves(); ++n) {
        if (n > passLimit) {
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
            omega -= (geodesic.P(k - 1) * arcs.psi - Q) * (cb * g[k]);
        }
        arcs = Arcs(std::atan(tb / std::cos(omega)), sb, east, west);
    }

    // 4. y, the length of the geodesic from the footpoint to the point.
    GeodesicSeries geodesic(arcs.sinBetaF * arcs.sinBetaF);
    const double s2 = std::sin(arcs.sigma * 2.0);
    const double Y0 = arcs.psi * a;
    double y = Y0;
    const auto lengthTerm = [&](int k) {
        return (Y0 * g[k]) * geodesic.P(k) - (((s2 * a) * g[k]) * geodesic.Q(k, sinePower)) * 0.5;
    };
    if (!sum_series(series.tol.length, y, lengthTerm)) {
        return status::geoToSoldnerY;
    }

    // 5. x, the meridian arc from the origin to the footpoint.
    const double phiF = std::atan(std::tan(arcs.betaF) / r);
    double Bf = 0.0;
    if (!series.sum_b(phiF, Bf)) {
        return status::geoToSoldnerFootpointArc;
    }
    const double x = (K1 * phiF - std::sin(phiF * 2.0) * (K2 * Bf)) - G0;

    // 6. Beside the meridian y by its series in l.
    if (!(std::fabs(l) >= nearMeridian)) {
        const double c = std::cos(phi);
        const double L2 = ((l * c) * l) * c;
        const double N = ((a / series.b) * a) / std::sqrt(((c * c) * e2) / o + 1.0);
        y = ((N * l) * c) * (1.0 - ((((8.0 - tPhi * tPhi) * L2) / 20.0 + 1.0) * ((tPhi * L2) * tPhi)) / 6.0);
    }
    if (!std::isfinite(y) || !std::isfinite(x)) {
        return status::geoToSoldnerFootpoint;
    }
    res = {x, y};
    return status::ok;
}

}  // namespace lagestatus
