// Latitude and longitude to Gauss-Krueger coordinates.
//
// The isometric latitude q and the longitude l from the central meridian make the complex isometric latitude
// w = q + i l. The complex latitude Z that belongs to it solves  w = artanh(sin Z) - e artanh(e sin Z),  by the
// iteration  sin Z' = tanh(w + e artanh(e sin Z)).  The coordinates are the meridian arc at Z,
// x + i y = G(Z) - G(phi0). One loop refines Z by a step and lengthens the arc's series by a term. Reference: L.
// Krueger, Konforme Abbildung des Erdellipsoids in der Ebene, Veroeffentlichung des Koeniglich Preuszischen
// Geodaetischen Institutes, Neue Folge 52, 1912, for the mapping; the loop is this library's own form of it.
//
//   symbol          meaning
//   Q, L            real and imaginary part of w + e artanh(e sin Z)
//   Sr, Si          tanh(Q + i L) = sin Z
//   W               |1 - sin^2 Z|;  H  half the argument of 1 - sin^2 Z
//   Zr, Zi          the complex latitude
//   N               |1 - e sin Z|^2, m and g  modulus and argument of (1 + e sin Z) / (1 - e sin Z)
//   rho, theta      modulus and argument of sin Z
//   T, S            terms and partial sums of the e2 series
//   Dr, Di          sum of d_j sin^(2j) Z;  Br, Bi  the arc's series B(Z)
#include <array>
#include <cmath>
#include <cstddef>

#include "base/angles.h"
#include "projections/ellipsoid_series.h"
#include "projections/projections.h"

namespace lagestatus {
namespace {

using coefficients::evenOverOdd;

struct ComplexLatitude {
    ComplexLatitude(double real, double imaginary) noexcept
        : Zr(real), Zi(imaginary), F(std::exp(Zi * 2.0)), Fm(std::exp(Zi * -2.0)) {}

    double Zr, Zi;
    double F, Fm;  // e^2Zi, e^-2Zi
};

// A complex latitude with what the next one and the arc's series are made of.
struct Stage : ComplexLatitude {
    explicit Stage(const ComplexLatitude& Z) noexcept
        : ComplexLatitude(Z),
          sinZr(std::sin(Zr)),
          cosZr(std::cos(Zr)),
          Ep(std::exp(Zi)),
          Em(std::exp(-Zi)),
          rho(std::sqrt(sinZr * sinZr + ((Fm + F) - 2.0) * 0.25)),
          theta(sinZr * (Em + Ep) != 0.0 ? std::atan(cosZr * (Ep - Em) / (Em + Ep) / sinZr) : halfPi) {}

    double sinZr, cosZr;
    double Ep, Em;  // e^Zi, e^-Zi
    double rho, theta;
};

struct Isometric {
    double Q;
    double twoL;
};

// The complex latitude whose sine is tanh(Q + i L). The iteration waits for nothing but this function and the next:
// both are inlined for its sake.
[[gnu::always_inline]] inline ComplexLatitude latitude_of(const Isometric& w) noexcept {
    const double P = std::exp(w.Q * 2.0);
    const double M = std::exp(w.Q * -2.0);
    const double cL = std::cos(w.twoL);
    const double sL = std::sin(w.twoL);
    const double E = (M + P) * cL + 2.0;
    const double H = (E != 0.0 ? std::atan((M - P) * sL / E) : halfPi) * 0.5;
    const double h = std::cos(H);
    const double sinH = std::sin(H);
    const double D = (M + P) * 0.5 + cL;
    const double Si = sL / D;
    const double Sr = (P - M) * 0.5 / D;
    const double W =
        std::sqrt(Sr * Sr * Sr * Sr + ((Si * 2.0 * Si + (1.0 - Sr * 2.0 * Sr)) + Sr * 2.0 * Sr * Si * Si) +
                  Si * Si * Si * Si);
    const double r = std::sqrt(W);
    const double base = r * h - Si;
    return {base != 0.0 ? std::atan((sinH * r + Sr) / base) : halfPi,
            -std::log(std::sqrt((sinH * Sr - h * Si) * (r * 2.0) + ((Sr * Sr + W) + Si * Si)))};
}

// One step of the iteration, for the point (q, l): w + e artanh(e sin Z).
[[gnu::always_inline]] inline Isometric next_isometric(const Stage& Z, double e, double q,
                                                       double l) noexcept {
    const double ee = e * e;
    const double Ch = Z.F + Z.Fm;
    const double U = Z.sinZr * ee * Z.sinZr * (Ch + 2.0) * 0.25;
    const double V = Z.cosZr * ee * Z.cosZr * (Ch - 2.0);
    const double N = ((1.0 - (Z.Ep + Z.Em) * (Z.sinZr * e)) + U) + V * 0.25;
    const double F1 = V / N;
    const double F2 = ((1.0 - U) - V * 0.25) / N;
    const double m = std::sqrt(F1 / N + F2 * F2);
    const double g = F2 != 0.0 ? std::atan((Z.Ep - Z.Em) * (Z.cosZr * e) / N / F2) : halfPi;
    return {std::log(m) * e * 0.5 + q, (g * e * 0.5 + l) * 2.0};
}

// The terms and partial sums of the e2 series, by their recurrence; one pass of the loop asks for one more.
class Recurrence {
  public:
    explicit Recurrence(double eccentricitySquared) noexcept : e2(eccentricitySquared) {
        T[0] = e2 * 0.75;
        S[0] = T[0];
    }

    void extend_to(std::size_t last) noexcept {
        for (; known < last; ++known) {
            const double t = static_cast<double>(known + 1) * 2.0;
            const double odd = T[known] * (t + 1.0);
            T[known + 1] = odd * (t + 3.0) / ((t + 2.0) * (t + 2.0)) * e2;
            S[known + 1] = S[known] + T[known + 1];
        }
    }

    std::array<double, passLimit> T;  // T[j] is T_(j+1)
    std::array<double, passLimit> S;

  private:
    double e2;
    std::size_t known = 0;
};

// The arc's series B at one complex latitude, up to the term last + 1.
struct ArcSum {
    ArcSum(const Stage& Z, const Recurrence& terms, std::size_t last) noexcept : Br(terms.T[0]) {
        double Dr = 1.0;
        double Di = 0.0;
        for (std::size_t j = 1; j <= last; ++j) {
            const double t = static_cast<double>(j) * 2.0;
            const double w = std::pow(Z.rho, t) * evenOverOdd[j];
            Dr += std::cos(t * Z.theta) * w;
            Di += std::sin(t * Z.theta) * w;
            Br += Dr * terms.T[j];
            Bi += Di * terms.T[j];
        }
    }

    double Br;
    double Bi = 0.0;
};

// The arc at Z with the series B of the latitude before, truncated alike. K0 is (1 - e2) a.
PlanePoint arc_at(const ComplexLatitude& Z, const ArcSum& B, double S, double K0) noexcept {
    const double A = (S + 1.0) * K0;
    const double s2 = std::sin(Z.Zr * 2.0) * (Z.Fm + Z.F);
    const double c2 = std::cos(Z.Zr * 2.0) * (Z.F - Z.Fm);
    const double K = K0 * 0.25;
    return {A * Z.Zr - (s2 * B.Br - c2 * B.Bi) * K, A * Z.Zi - (c2 * B.Br + s2 * B.Bi) * K};
}

}  // namespace

Status geo_to_gauss_krueger(const ArcSeries& series, const LatLon& point, double lam0,
                            PlanePoint& res) noexcept {
    const double e2 = series.e2;
    const double e = std::sqrt(e2);
    const double K0 = (1.0 - e2) * series.a;

    // 1. The isometric latitude, the longitude from the central meridian, and a first complex latitude from them.
    const double s = std::sin(point.phi);
    const double q =
        std::log((s + 1.0) / (1.0 - s)) * 0.5 - std::log((s * e + 1.0) / (1.0 - s * e)) * 0.5 * e;
    const double l = point.lam - lam0;
    ComplexLatitude Z = latitude_of({q, l * 2.0});
    Z = latitude_of(next_isometric(Stage(Z), e, q, l));

    // 2. Pass n refines Z by a step and gives the arc at it with n terms of the series, until neither coordinate moves.
    Recurrence terms(e2);
    PlanePoint arc;
    bool moves = firstChange > series.tol.coord;
    for (int n = 2; moves; ++n) {
        if (n > passLimit) {
            return status::geoToKruegerCoordinates;
        }
        const auto last = static_cast<std::size_t>(n) - 1;
        terms.extend_to(last);
        // The sum stands between two steps that wait for each other: processors take it up meanwhile.
        const Stage stage(Z);
        const Isometric w = next_isometric(stage, e, q, l);
        const ArcSum B(stage, terms, last);
        Z = latitude_of(w);
        const PlanePoint before = arc;
        arc = arc_at(Z, B, terms.S[last], K0);
        moves = std::fabs(before.northing - arc.northing) > series.tol.coord ||
                std::fabs(before.easting - arc.easting) > series.tol.coord;
    }

    // 3. From the equator to the origin.
    if (!series.convergesS) {
        return status::geoToKruegerEccentricity;
    }
    if (!series.convergesB0) {
        return status::geoToKruegerArc;
    }
    const double x =
        series.sin2Phi0 * ((K0 * 0.5) * series.B0) + (arc.northing - ((series.S + 1.0) * K0) * series.phi0);
    if (!std::isfinite(arc.easting) || !std::isfinite(x)) {
        return status::geoToKruegerCoordinates;
    }
    res = {x, arc.easting};
    return status::ok;
}

}  // namespace lagestatus
