// Gauss-Krueger by Krueger's series: the sphere of the conformal latitude, mapped by the transverse Mercator projection,
// then corrected by a sum in the double complex angle. L. Krueger, Konforme Abbildung des Erdellipsoids in der Ebene,
// 1912; in the third flattening to order 6 as in C. F. F. Karney, 2011, section 4. Both ways keep to sines and cosines
// until the last angle.
//
//   symbol          meaning
//   chi             conformal latitude
//   xi, eta         northing and easting over the rectifying radius; xiS, etaS those of the sphere
#pragma once

#include "fast/angles.h"
#include "fast/lanes.h"
#include "fast/series.h"

namespace lagestatus::fast {

// The domain: where the polynomials hold, with the accuracy that docs/accuracy.md tells.
inline constexpr double mostSideways = 0.477;  // |cos phi sin(lam - lam0)|: 28 degrees beside the meridian
// Of lam - lam0: 44 degrees. From 45 on the reference calculation takes the longitude's complement.
inline constexpr double leastCosine = 0.7193398003386512;
inline constexpr double mostXi = 1.57;                   // the pole is a little farther
inline constexpr double mostEta = 0.53;                  // beyond what mostSideways becomes
inline constexpr double leastCosineOfLatitude = 0.0175;  // 89 degrees

template <typename Real>
struct Plane {
    Real northing;
    Real easting;
};

// A point of the ellipsoid, its longitude counted from the central meridian.
template <typename Real>
struct Place {
    Direction<Real> phi;
    Direction<Real> dLam;
};

// sin 2z P(cos 2z) for a complex z: what sine_sum is for a real one.
template <typename Real>
struct ComplexSum {
    // Given:    p             coefficients of P
    //           angle         sine and cosine of the doubled real part of z
    //           sinh, cosh    of its doubled imaginary part
    [[gnu::always_inline]] ComplexSum(const Coefficients& p, const Direction<Real>& angle, const Real& sinh,
                                      const Real& cosh) noexcept {
        const Real cosineR = angle.cosine * cosh;
        const Real minusCosineI = angle.sine * sinh;
        // P by the division by z^2 - 2 Re(z) z + |z|^2, in real numbers alone: D. E. Knuth, The Art of Computer
        // Programming, vol. 2, section 4.6.4, equation 3.
        const Real twice = cosineR + cosineR;
        const Real square = cosineR * cosineR + minusCosineI * minusCosineI;
        Real next = p.of[seriesOrder - 1];
        Real sum = twice * next + p.of[seriesOrder - 2];
        for (int k = seriesOrder - 3; k > 0; --k) {
            const Real before = twice * sum + (p.of[k] - square * next);
            next = sum;
            sum = before;
        }
        const Real r = cosineR * sum + (p.of[0] - square * next);
        const Real minusI = minusCosineI * sum;
        const Real sineR = angle.sine * cosh;
        const Real sineI = angle.cosine * sinh;
        real = sineR * r + sineI * minusI;
        imaginary = sineI * r - sineR * minusI;
    }

    Real real;
    Real imaginary;
};

// Given:    series     of the ellipsoid and the origin
//           place      sines and cosines
//           inside     whether the results mean anything: in the domain, and finite
// Returned: northing and easting, metres, the central meridian true to scale.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Plane<Real> geographic_to_krueger(
    const PlaneSeries& series, const Place<Real>& place, typename Real::Mask& inside) noexcept {
    const auto& [phi, dLam] = place;
    const Direction<Real> chi = turned(phi, direction_of_small(sine_sum(series.conformal.of, doubled(phi))));
    const Real t = chi.cosine * dLam.sine;
    inside =
        (magnitude(t) < mostSideways) & (dLam.cosine > leastCosine) & (phi.cosine > leastCosineOfLatitude);
    // On the sphere: tanh etaS = t, and xiS is the angle of (sin chi, cos chi cos dLam).
    const Real cosine = chi.cosine * dLam.cosine;
    const Real square = t * t;
    const Real inverse = Real(1.0) / (1.0 - square);
    const Direction<Real> doubledXi = {2.0 * chi.sine * cosine * inverse,
                                       (cosine - chi.sine) * (cosine + chi.sine) * inverse};
    const ComplexSum<Real> sum(series.krueger, doubledXi, 2.0 * t * inverse, (1.0 + square) * inverse);
    const Real xi = arc_of_latitude(chi.sine, cosine) + sum.real;
    const Real eta = (t + t * square * polynomial(arTanhRest, square)) + sum.imaginary;
    return {xi * series.radius - series.arcOfOrigin, eta * series.radius};
}

// The inverse.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Place<Real> krueger_to_geographic(
    const PlaneSeries& series, const Plane<Real>& plane, typename Real::Mask& inside) noexcept {
    const Real xi = (plane.northing + series.arcOfOrigin) * series.perRadius;
    const Real eta = plane.easting * series.perRadius;
    inside = (magnitude(xi) < mostXi) & (magnitude(eta) < mostEta);
    const Direction<Real> angle = direction_of_latitude(xi);
    const Real square = eta * eta;
    const Real sinh = eta + eta * square * polynomial(sinhRest, square);
    const Real cosh = square_root(1.0 + sinh * sinh);
    const ComplexSum<Real> sum(series.fromKrueger, doubled(angle), 2.0 * sinh * cosh,
                               1.0 + 2.0 * sinh * sinh);
    const Direction<Real> xiS = turned(angle, direction_of_small(sum.real));
    // sinh and cosh of etaS = eta + d, d below 0.01.
    const Real d = sum.imaginary;
    const Real d2 = d * d;
    const Real sinhD = d + d * d2 * (1.0 / 6.0 + d2 * (1.0 / 120.0));
    const Real coshD = 1.0 + d2 * (0.5 + d2 * (1.0 / 24.0 + d2 * (1.0 / 720.0)));
    const Real sinhS = sinh * coshD + cosh * sinhD;
    const Real coshS = cosh * coshD + sinh * sinhD;
    // cos chi cosh etaS
    const Real q = square_root(sinhS * sinhS + xiS.cosine * xiS.cosine);
    const Real inverse = Real(1.0) / (q * coshS);
    const Real inverseCosh = inverse * q;
    const Real inverseQ = inverse * coshS;
    const Direction<Real> chi = {xiS.sine * inverseCosh, q * inverseCosh};
    const Direction<Real> phi =
        turned(chi, direction_of_small(sine_sum(series.fromConformal.of, doubled(chi))));
    const Direction<Real> dLam = {sinhS * inverseQ, xiS.cosine * inverseQ};
    inside = inside & (dLam.cosine > leastCosine) & (phi.cosine > leastCosineOfLatitude);
    return {phi, dLam};
}

}  // namespace lagestatus::fast
