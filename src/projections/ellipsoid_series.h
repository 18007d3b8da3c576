// What the four projection routines share: the power series of an ellipsoid and of its geodesics.
//
//   symbol     here                     meaning
//   e2         e2                       first numerical eccentricity squared
//   c_k        oddOverEven              (2k-1)!! / (2k)!!
//   d_i        evenOverOdd[i]           (2i)!! / (2i+1)!!
//   T_k        term(k)                  (2k+1) c_k^2 e^(2k)
//   alpha_j    alternating[j]           (-1)^j c_j
//   g_k        Roots[k]                 coefficient of t^k in sqrt(1 - t), times e^(2k)
//
// The coefficients that depend on nothing are computed by their recurrences when the library is compiled; doubles
// round there as they do at run time. Powers are pow(x, k), never repeated products, unless a name says so: the bits
// of the results depend on it.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "base/ellipsoid.h"

namespace lagestatus {

// Where loops end; those of the pipeline unless a caller says otherwise.
struct Tolerances {
    double coord = 1e-4;    // metres, Gauss-Krueger coordinates
    double angle = 1e-10;   // radians
    double length = 1e-4;   // metres, Soldner arcs
    double series = 1e-12;  // terms of the ellipsoid's series
};

inline constexpr int passLimit = 100;  // of every series and every iteration
inline constexpr double firstChange = 99.0;

// Adds the terms k = first, first + 1, ... to sum until one has |t| <= tolerance. The series is not entered at all, and
// keeps its start value, unless firstChange is above the tolerance. A term that is not a number ends it as well: the
// routines look at their results before they hand them out.
//
// Given:    tolerance, term(k), first
// Returned: whether a term up to the 100th is within the tolerance
//           sum   with all terms that were asked for
template <typename Term>
[[nodiscard]] inline bool sum_series(double tolerance, double& sum, Term term, int first = 1) noexcept {
    double t = firstChange;
    for (int k = first; std::fabs(t) > tolerance; ++k) {
        if (k > passLimit) {
            return false;
        }
        t = term(k);
        sum += t;
    }
    return true;
}

namespace coefficients {

inline constexpr std::size_t count = passLimit + 1;

// (2k+1) c_k^2 for k = 1 to 100, the factors of e^(2k) in T_k; [0] is not used.
inline constexpr std::array<double, count> arcFactor = [] {
    std::array<double, count> table = {};
    double oddOverEven = 1.0;
    for (std::size_t k = 1; k < count; ++k) {
        const double twice = static_cast<double>(k - 1) * 2.0;
        oddOverEven = ((twice + 1.0) * oddOverEven) / (twice + 2.0);
        table[k] = (static_cast<double>(k) * 2.0 + 1.0) * (oddOverEven * oddOverEven);
    }
    return table;
}();

inline constexpr std::array<double, count> evenOverOdd = [] {
    std::array<double, count> table = {1.0};
    for (std::size_t i = 1; i < count; ++i) {
        const double twice = static_cast<double>(i - 1) * 2.0;
        table[i] = ((twice + 2.0) * table[i - 1]) / (twice + 3.0);
    }
    return table;
}();

inline constexpr std::array<double, count> alternating = [] {
    std::array<double, count> table = {1.0};
    for (std::size_t j = 1; j < count; ++j) {
        const double twice = static_cast<double>(j - 1) * 2.0;
        table[j] = ((twice + 1.0) * -table[j - 1]) / (twice + 2.0);
    }
    return table;
}();

// Row m of the binomial coefficients begins at m (m + 1) / 2 and has m + 1 of them.
inline constexpr std::array<double, count*(count + 1) / 2> binomials = [] {
    std::array<double, count*(count + 1) / 2> table = {};
    for (std::size_t m = 0, at = 0; m < count; ++m) {
        double binomial = static_cast<double>(m);
        for (std::size_t j = 0; j <= m; ++j, ++at) {
            if (j >= 2) {
                binomial = (static_cast<double>(m - j + 1) * binomial) / static_cast<double>(j);
            }
            table[at] = j == 0 || j == m ? 1.0 : binomial;
        }
    }
    return table;
}();

}  // namespace coefficients

// Taken from the sines that give the Soldner arcs, so that rounding cannot lift them above 1.
inline constexpr double keptBelowOne = 1e-15;

// The series of an ellipsoid, and the arc of its meridian from the equator to the latitude phi0 that northings count
// from. Nothing changes once it is made: any number of points may use it at once. The meridian arc from the equator is
//
//   G(phi) = A (1 - e2) a phi - sin(2 phi) (1 - e2) a / 2 B(phi),   A = 1 + S,
//   S = sum over k >= 1 of T_k,   B(phi) = sum over k >= 1 of T_k sum over 0 <= i < k of d_i sin^(2i) phi,
//
// which is a (1 - e2) times the integral of (1 - e2 sin^2 t)^(-3/2) from 0 to phi, the root expanded by the binomial
// theorem and every power of the sine integrated by parts.
class ArcSeries {
  public:
    // Given: ellipsoid, phi0 (radians), tolerances
    //        rectifies    false: S is wanted for G(phi0) alone
    // Sums S and B(phi0), but not where G multiplies them by a phi0 of 0 and they are sure to converge: S and B0 stay 0
    // then, B0 whatever rectifies says.
    ArcSeries(const Ellipsoid& ellipsoid, double phi0, const Tolerances& tolerances, bool rectifies) noexcept;

    double a, b;
    double phi0;
    double sin2Phi0;  // sin(2 phi0)
    Tolerances tol;
    double e2;
    double S = 0.0;
    double B0 = 0.0;         // B(phi0); not summed where S does not converge
    bool convergesS = true;  // within 100 terms
    bool convergesB0 = true;

    // e^(2k) and T_k for k = 1 to 100; those that S took are kept.
    [[nodiscard]] double power(int k) const noexcept {
        return k <= known ? powers[static_cast<std::size_t>(k)] : std::pow(e2, static_cast<double>(k));
    }
    [[nodiscard]] double term(int k) const noexcept {
        return power(k) * coefficients::arcFactor[static_cast<std::size_t>(k)];
    }

    // Sums B(phi), phi in radians. Returned: whether it converged within 99 passes; sum holds what was summed.
    [[nodiscard]] bool sum_b(double phi, double& sum) const noexcept;

  private:
    int known = 0;
    std::array<double, coefficients::count> powers;  // as far as known
};

// g_k for k = 0 to 100, kept as they are asked for.
class Roots {
  public:
    explicit Roots(double eccentricitySquared) noexcept : e2(eccentricitySquared) { roots[0] = 1.0; }

    [[nodiscard]] double operator[](int k) noexcept {
        for (; known < k; ++known) {
            const auto last = static_cast<std::size_t>(known);
            const double twice = static_cast<double>(known) * 2.0;
            roots[last + 1] = ((twice - 1.0) * roots[last]) / (twice + 2.0) * e2;
        }
        return roots[static_cast<std::size_t>(k)];
    }

  private:
    double e2;
    int known = 0;
    std::array<double, coefficients::count> roots;  // as far as known
};

// The sums over a geodesic on the auxiliary sphere whose footpoint (vertex) has the reduced latitude beta_f, with
// x = sin^2 beta_f: from the geodesic's node, with sigma the arc on the sphere and omega the longitude on it,
//
//   arc length  s(sigma) = a sum over k >= 0 of g_k (sigma P_k - sin(2 sigma) / 2 Q_k)
//   longitude   lambda(sigma) = omega + cos beta_f sum over k >= 1 of g_k (sigma P_(k-1) - sin(2 sigma) / 2 Q_(k-1))
//
//   P_m = sum over 0 <= j <= m of x^j alpha_j binomial(m, j)
//   Q_m = sum over 0 <= j <= m of R_j alpha_j binomial(m, j),   R_0 = 0,   R_(j+1) = (sin^(2j) beta d_j + R_j) x
//
// with beta the reduced latitude of the point. Reference: F. W. Bessel, Ueber die Berechnung der geographischen Laengen
// und Breiten aus geodaetischen Vermessungen, Astronomische Nachrichten 4 (1826), 241-254; here the integrals are
// expanded in e2 and not in Bessel's modulus. The powers x^j are a running product.
//
// All members are for 0 <= m <= 100; values are kept as they are asked for.
class GeodesicSeries {
  public:
    explicit GeodesicSeries(double sineSquared) noexcept : x(sineSquared) {}

    [[nodiscard]] double P(int m) noexcept;

    // Q_m. power(j) gives sin^(2j) beta times d_j, as it enters R_(j+1); it is asked once for each j.
    template <typename Power>
    [[nodiscard]] double Q(int m, Power power) noexcept {
        const auto last = static_cast<std::size_t>(m);
        for (; knownR <= last; ++knownR) {
            if (knownR > 0) {
                R = (power(knownR - 1) + R) * x;
            }
            weightedR[knownR] = R * coefficients::alternating[knownR];
        }
        return weighted_by_binomials(weightedR, last);
    }

    // Forgets the remainders, for another point of the same geodesic.
    void forget_point() noexcept {
        knownR = 0;
        R = 0.0;
    }

  private:
    using Table = std::array<double, coefficients::count>;
    [[nodiscard]] static double weighted_by_binomials(const Table& table, std::size_t m) noexcept;

    double x;
    double xPower = 1.0;
    double R = 0.0;
    std::size_t knownX = 0;
    std::size_t knownR = 0;
    std::size_t knownP = 0;
    Table weightedX;  // x^j alpha_j, as far as knownX
    Table weightedR;  // R_j alpha_j, as far as knownR
    Table sumsP;      // P_m, as far as knownP
};

}  // namespace lagestatus
