// Gauss-Krueger coordinates to latitude and longitude.
//
// The complex rectifying latitude w = m + i u of the point is known; the complex latitude Z on the meridian arc solves
// Z = w + sin(2 Z) B(Z) / (2 A), by iteration with the series B taken one pass late. Z gives the complex isometric
// latitude q + i l; l is the longitude, and a second iteration finds the latitude from q. Reference: as for the way
// there, geo_to_gauss_krueger.cpp, run backwards.
//
//   symbol          meaning
//   A, o            1 + S, 1 - e2
//   m, u            complex rectifying latitude
//   Zr, Zi          complex latitude;  F, Fm  e^2Zi, e^-2Zi
//   Br, Bi          the series B(Z);  rho, theta  modulus and argument of sin Z where it is summed
//   sr, si          sin Z in the end
//   r1, j1          (1 + sin Z) / (1 - sin Z);  r2, j2  the same with e sin Z
//   t               sine of the latitude
#include <array>
#include <cmath>
#include <cstddef>

#include "base/angles.h"
#include "projections/ellipsoid_series.h"
#include "projections/projections.h"

namespace lagestatus {
namespace {

using coefficients::evenOverOdd;

// Where the series of a pass is summed: the complex latitude, and e^2Zi, e^-2Zi, which the pass before knows.
struct Place {
    double Zr;
    double Zi;
    double F;
    double Fm;
};

// Sums B(Z). Its terms are compared with their signs, the first imaginary one stands for the last change of Z.
// Returned: whether it converged within 99 passes.
bool complex_arc(const ArcSeries& series, const Place& at, double lastChange, double& Br,
                 double& Bi) noexcept {
    const double cosZr = std::cos(at.Zr);
    const double ep = std::exp(at.Zi);
    const double em = std::exp(-at.Zi);
    const double rho = std::sqrt((1.0 - cosZr * 2.0 * cosZr) * 0.5 + (at.Fm + at.F) * 0.25);
    // The real part of the sine, sin Zr (e^Zi + e^-Zi) / 2, is 0 nowhere else; an overflow makes it no number.
    const bool onImaginaryAxis = at.Zr == 0.0 && !std::isinf(ep + em);
    const double theta = onImaginaryAxis ? halfPi : std::atan((ep - em) / std::tan(at.Zr) / (ep + em));
    std::array<double, passLimit> power;  // rho^2i
    std::array<double, passLimit> cosine;
    std::array<double, passLimit> sine;  // of 2i theta

    Br = series.e2 * 0.75;
    Bi = 0.0;
    double tre = Br;
    double tim = lastChange;
    for (int k = 2; tre > series.tol.series || tim > series.tol.series; ++k) {
        if (k > passLimit) {
            return false;
        }
        const auto last = static_cast<std::size_t>(k) - 1;
        const double twice = static_cast<double>(k - 1) * 2.0;
        power[last] = std::pow(rho, twice);
        cosine[last] = std::cos(theta * twice);
        sine[last] = std::sin(theta * twice);
        const double T = series.term(k);
        tre = T;
        tim = 0.0;
        for (std::size_t i = 1; i <= last; ++i) {
            const double w = power[i] * (evenOverOdd[i] * T);
            tre += cosine[i] * w;
            tim += sine[i] * w;
        }
        Bi += tim;
        Br += tre;
    }
    return true;
}

}  // namespace

Status gauss_krueger_to_geo(const ArcSeries& series, const PlanePoint& point, double lam0,
                            LatLon& res) noexcept {
    if (!series.convergesS) {
        return status::kruegerToGeoEccentricity;
    }
    if (!series.convergesB0) {
        return status::kruegerToGeoArc;
    }
    const double a = series.a;
    const double S = series.S;
    const double A = S + 1.0;
    const double o = 1.0 - series.e2;
    const double e = std::sqrt(series.e2);
    const double tolSeries = series.tol.series;

    // 1. The complex rectifying latitude, and a first complex latitude from it.
    const double u = ((point.easting / a) / A) / o;
    const double m =
        (((A * (o * a)) * series.phi0 + point.northing) - series.sin2Phi0 * (((o * a) * 0.5) * series.B0)) /
        a / A / o;
    Place at = {m, u, std::exp(u * 2.0), std::exp(u * -2.0)};
    double sin2Zr = std::sin(m * 2.0);
    double cos2Zr = std::cos(m * 2.0);
    double Zr = sin2Zr * (at.F + at.Fm) * S * 0.25 / A + m;
    double Zi = cos2Zr * (at.F - at.Fm) * S * 0.25 / A + u;
    sin2Zr = std::sin(Zr * 2.0);
    cos2Zr = std::cos(Zr * 2.0);

    // 2. The complex latitude on the meridian arc; the imaginary part of a pass uses the real one of the same pass.
    double dRe = firstChange;
    double dIm = firstChange;
    for (int n = 1; dIm > tolSeries || dRe > tolSeries; ++n) {
        if (n > passLimit) {
            return status::kruegerToGeoLatitude;
        }
        double Br = 0.0;
        double Bi = 0.0;
        if (!complex_arc(series, at, dRe, Br, Bi)) {
            return status::kruegerToGeoSeries;
        }
        const double F = std::exp(Zi * 2.0);
        const double Fm = std::exp(Zi * -2.0);
        at = {Zr, Zi, F, Fm};
        const double newZr = (sin2Zr * (Fm + F) * Br * 0.25 / A + m) - cos2Zr * (F - Fm) * Bi * 0.25 / A;
        sin2Zr = std::sin(newZr * 2.0);
        cos2Zr = std::cos(newZr * 2.0);
        const double newZi = (sin2Zr * (Fm + F) * Bi * 0.25 / A + u) + cos2Zr * (F - Fm) * Br * 0.25 / A;
        dRe = std::fabs(newZr - Zr);
        dIm = std::fabs(newZi - Zi);
        Zr = newZr;
        Zi = newZi;
    }

    // 3. The complex isometric latitude: q, and the longitude l.
    const double ep = std::exp(Zi);
    const double em = std::exp(-Zi);
    const double sr = std::sin(Zr) * (em + ep) * 0.5;
    const double si = std::cos(Zr) * (ep - em) * 0.5;
    const double D1 = (1.0 - sr) * (1.0 - sr) + si * si;
    const double r1 = ((sr + 1.0) * (1.0 - sr) - si * si) / D1;
    const double j1 = ((sr + 1.0) * si + (1.0 - sr) * si) / D1;
    const double s = sr * e;
    const double h = ((si * si) * e) * e;
    const double D2 = (1.0 - s) * (1.0 - s) + h;
    const double r2 = ((s + 1.0) * (1.0 - s) - h) / D2;
    const double j2 = ((s + 1.0) * si * e + (1.0 - s) * si * e) / D2;
    const double q =
        std::log(std::sqrt(j1 * j1 + r1 * r1)) * 0.5 - std::log(std::sqrt(j2 * j2 + r2 * r2)) * e * 0.5;
    double l = r1 != 0.0 ? std::atan(j1 / r1) * 0.5 : pi * 0.25;
    l = r2 != 0.0 ? l - std::atan(j2 / r2) * e * 0.5 : l - e * pi * 0.25;

    // 4. The latitude from q, by its sine.
    const auto tanhOf = [](double isometric) {
        const double grown = std::exp(isometric);
        const double shrunk = std::exp(-isometric);
        return (grown - shrunk) / (shrunk + grown);
    };
    double t = tanhOf(q);
    double tOld = 0.0;
    int steps = 0;
    do {
        if (++steps > passLimit) {
            return status::kruegerToGeoPhi;
        }
        tOld = t;
        t = tanhOf(std::log((t * e + 1.0) / (1.0 - t * e)) * (e * 0.5) + q);
    } while (std::fabs(t - tOld) > series.tol.angle);

    const double phi = std::asin(t);
    if (!std::isfinite(phi) || !std::isfinite(l)) {
        return status::kruegerToGeoLatitude;
    }
    res = {phi, l + lam0};
    return status::ok;
}

}  // namespace lagestatus
