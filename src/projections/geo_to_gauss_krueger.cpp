// Latitude and longitude to Gauss-Krueger coordinates.
//
// The isometric latitude q and the longitude l from the central meridian make the complex isometric latitude
// w = q + i l. The complex latitude Z that belongs to it solves  w = artanh(sin Z) - e artanh(e sin Z),  by the
// iteration  sin Z' = tanh(w + e artanh(e sin Z)).  The coordinates are the meridian arc at Z: x + i y = G(Z) - G(phi0).
// One loop refines Z by a step and lengthens the arc's series by a term. Reference: L. Krueger, Konforme Abbildung des
// Erdellipsoids in der Ebene, Veroeffentlichung des Koeniglich Preuszischen Geodaetischen Institutes, Neue Folge 52,
// 1912, for the mapping; the loop is this library's own form of it.
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
#include <cmath>
#include <cstddef>
#include <optional>

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

// A complex latitude with what the next one is made of.
struct Stage : ComplexLatitude {
    explicit Stage(const ComplexLatitude& Z) noexcept
        : ComplexLatitude(Z), sinZr(std::sin(Zr)), cosZr(std::cos(Zr)), Ep(std::exp(Zi)), Em(std::exp(-Zi)) {}

    double sinZr, cosZr;
    double Ep, Em;  // e^Zi, e^-Zi
};

struct Isometric {
    double Q;
    double twoL;
};

// The complex latitude whose sine is tanh(Q + i L). The iteration waits for nothing but this function and the next: both
// are inlined for its sake.
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

    std::array<double, maxPasses> T;  // T[j] is T_(j+1)
    std::array<double, maxPasses> S;

  private:
    double e2;
    std::size_t known = 0;
};

struct Coordinates {
    double X = 0.0;
    double Y = 0.0;
};

// The arc's series B at one complex latitude, up to the term last + 1.
struct ArcSum {
    ArcSum(const Stage& Z, const Recurrence& terms, std::size_t last) noexcept : Br(terms.T[0]) {
        const double rho = std::sqrt(Z.sinZr * Z.sinZr + ((Z.Fm + Z.F) - 2.0) * 0.25);
        const double theta = Z.sinZr * (Z.Em + Z.Ep) != 0.0
                                 ? std::atan(Z.cosZr * (Z.Ep - Z.Em) / (Z.Em + Z.Ep) / Z.sinZr)
                                 : halfPi;
        double Dr = 1.0;
        double Di = 0.0;
        for (std::size_t j = 1; j <= last; ++j) {
            const double t = static_cast<double>(j) * 2.0;
            const double w = std::pow(rho, t) * evenOverOdd[j];
            Dr += std::cos(t * theta) * w;
            Di += std::sin(t * theta) * w;
            Br += Dr * terms.T[j];
            Bi += Di * terms.T[j];
        }
    }

    double Br;
    double Bi = 0.0;
};

// The arc at Z with the series B of the latitude before, truncated alike. K0 is (1 - e2) a.
Coordinates arc_at(const ComplexLatitude& Z, const ArcSum& B, double S, double K0) noexcept {
    const double A = (S + 1.0) * K0;
    const double s2 = std::sin(Z.Zr * 2.0) * (Z.Fm + Z.F);
    const double c2 = std::cos(Z.Zr * 2.0) * (Z.F - Z.Fm);
    const double K = K0 * 0.25;
    return {A * Z.Zr - (s2 * B.Br - c2 * B.Bi) * K, A * Z.Zi - (c2 * B.Br + s2 * B.Bi) * K};
}

// Whether a pass ends the loop, from the coordinates of the pass before and its own.
bool settles(const Coordinates& from, const Coordinates& to, double tolerance) noexcept {
    return !(std::fabs(from.X - to.X) > tolerance || std::fabs(from.Y - to.Y) > tolerance);
}

// Deciding early. Most passes only have to see that the loop goes on, or that it ends; quick coordinates tell, and the
// exact ones are computed where the loop ends. No result is made of quick coordinates, and where their change is too near
// the tolerance the exact ones decide: the loop ends in the pass in which it would end without all this.

using Complex = std::array<double, 2>;
Complex product(const Complex& left, const Complex& right) noexcept {
    return {left[0] * right[0] - left[1] * right[1], left[0] * right[1] + left[1] * right[0]};
}

// The same arc by products alone, from the functions of the latitude before: other last bits, a tenth of the time.
// The step d from there to Z is short, and its cube is left out.
Coordinates quick_arc_at(const ComplexLatitude& Z, const Stage& before, const Recurrence& terms,
                         std::size_t last, double K0) noexcept {
    const Complex sine = {before.sinZr * (before.Ep + before.Em) * 0.5,
                          before.cosZr * (before.Ep - before.Em) * 0.5};
    const Complex cosine = {before.cosZr * (before.Ep + before.Em) * 0.5,
                            before.sinZr * (before.Em - before.Ep) * 0.5};
    const Complex square = product(sine, sine);
    Complex power = {1.0, 0.0};
    Complex D = power;
    Complex B = {terms.T[0], 0.0};
    for (std::size_t j = 1; j <= last; ++j) {
        power = product(power, square);
        for (std::size_t part = 0; part < 2; ++part) {
            D[part] += power[part] * evenOverOdd[j];
            B[part] += D[part] * terms.T[j];
        }
    }
    const Complex d = {Z.Zr - before.Zr, Z.Zi - before.Zi};
    const Complex dd = product(d, d);
    // sin 2Z / 2 = sin Z0 cos Z0 cos 2d + cos 2Z0 / 2 sin 2d
    const Complex first = product(product(sine, cosine), {1.0 - 2.0 * dd[0], -2.0 * dd[1]});
    const Complex second = product({1.0 - 2.0 * square[0], -2.0 * square[1]}, d);
    const Complex swing = product({first[0] + second[0], first[1] + second[1]}, B);
    const double A = (terms.S[last] + 1.0) * K0;
    return {A * Z.Zr - swing[0] * K0, A * Z.Zi - swing[1] * K0};
}

// The same from quick coordinates; nothing when the change is within the margin of the tolerance.
std::optional<bool> settles_surely(const Coordinates& from, const Coordinates& to, double tolerance,
                                   double margin) noexcept {
    const double dX = std::fabs(from.X - to.X);
    const double dY = std::fabs(from.Y - to.Y);
    if (dX > tolerance + margin || dY > tolerance + margin) {
        return false;
    }
    if (dX <= tolerance - margin && dY <= tolerance - margin) {
        return true;
    }
    return std::nullopt;
}

}  // namespace

Status geo_to_gauss_krueger(double a, double b, double phi, double lam, double phi0, double lam0,
                            PlaneResult& res, double tolCoord, double tolSeries) noexcept {
    ArcSeries series(a, b);
    const double e2 = series.e2;
    const double e = std::sqrt(e2);
    const double K0 = (1.0 - e2) * a;

    const double s = std::sin(phi);
    const double q =
        std::log((s + 1.0) / (1.0 - s)) * 0.5 - std::log((s * e + 1.0) / (1.0 - s * e)) * 0.5 * e;
    const double l = lam - lam0;
    ComplexLatitude Z = latitude_of({q, l * 2.0});
    Z = latitude_of(next_isometric(Stage(Z), e, q, l));

    // The coordinates of a pass are needed where the loop ends, and before that only to see that it goes on. That the
    // quick ones tell as well, with a margin over a thousand times their difference to the exact ones for the Earth and
    // ninety times at the limit of e2; within the margin the exact ones decide.
    constexpr double shortStep = 3e-5;  // its cube times a lies far within the margin
    const double margin = std::fabs(a) * 1e-12;
    const bool likeTheEarth =
        e2 >= 0.0 && e2 < 0.1 && margin > 1e-290;  // no ellipsoid of the smallest doubles
    Recurrence terms(e2);
    Coordinates reached;
    Coordinates quickOld;
    ComplexLatitude beforeOld = Z;
    bool sureOld = true;
    bool ended = !(firstChange > tolCoord);
    for (int n = 2; !ended; ++n) {
        if (n > maxPasses) {
            return status::geoToKruegerCoordinates;
        }
        const auto last = static_cast<std::size_t>(n) - 1;
        terms.extend_to(last);
        const ComplexLatitude start = Z;
        const Stage before(start);
        Z = latitude_of(next_isometric(before, e, q, l));

        const Coordinates quick = quick_arc_at(Z, before, terms, last, K0);
        const bool sure = likeTheEarth && std::fabs(Z.Zi) < 1.0 && std::fabs(Z.Zr - before.Zr) < shortStep &&
                          std::fabs(Z.Zi - before.Zi) < shortStep;
        std::optional<bool> ends;
        if (sure && sureOld) {
            ends = settles_surely(quickOld, quick, tolCoord, margin);
        }
        if (ends.value_or(true)) {
            const auto exactOld = [&]() -> Coordinates {
                if (n == 2) {
                    return {};
                }
                return arc_at(start, ArcSum(Stage(beforeOld), terms, last - 1), terms.S[last - 1], K0);
            };
            reached = arc_at(Z, ArcSum(before, terms, last), terms.S[last], K0);
            ended = ends.has_value() || settles(exactOld(), reached, tolCoord);
        }
        quickOld = quick;
        sureOld = sure;
        beforeOld = start;
    }

    double x = phi0 + (reached.X - phi0);
    if (phi0 != 0.0 || !series.sure_to_converge(tolSeries)) {  // else the series are multiplied by 0
        double S = 0.0;
        double B = 0.0;
        if (!series.rectifying(tolSeries, S)) {
            return status::geoToKruegerEccentricity;
        }
        if (!series.meridian_arc(phi0, tolSeries, B)) {
            return status::geoToKruegerArc;
        }
        x = std::sin(phi0 * 2.0) * ((K0 * 0.5) * B) + (reached.X - ((S + 1.0) * K0) * phi0);
    }
    if (!std::isfinite(reached.Y) || !std::isfinite(x)) {
        return status::geoToKruegerCoordinates;
    }
    res = {reached.Y, x};
    return status::ok;
}

}  // namespace lagestatus
