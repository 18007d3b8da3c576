// Geocentric coordinates by sines and cosines, and back.
#pragma once

#include "base/ellipsoid.h"
#include "fast/angles.h"

namespace lagestatus::fast {

// What the steps have of an ellipsoid.
struct EllipsoidTerms {
    explicit EllipsoidTerms(const Ellipsoid& ellipsoid) noexcept
        : a(ellipsoid.a),
          b(ellipsoid.b),
          e2((a - b) * (a + b) / (a * a)),
          ePrime2b((a - b) * (a + b) / (b * b) * b),
          axisRatio(b / a) {}

    double a;
    double b;
    double e2;         // eccentricity squared
    double ePrime2b;   // the second one squared, times b
    double axisRatio;  // b / a
};

template <typename Real>
struct SpacePoint {
    Real x;
    Real y;
    Real z;
};

// A place on an ellipsoid by directions, its height in metres.
template <typename Real>
struct HighPlace {
    Direction<Real> phi;
    Direction<Real> lam;
    Real h;
};

template <typename Real>
[[nodiscard, gnu::always_inline]] inline SpacePoint<Real> to_geocentric(
    const EllipsoidTerms& ellipsoid, const HighPlace<Real>& place) noexcept {
    const Real N = ellipsoid.a / square_root(1.0 - ellipsoid.e2 * (place.phi.sine * place.phi.sine));
    const Real r = (N + place.h) * place.phi.cosine;
    return {r * place.lam.cosine, r * place.lam.sine,
            (N * (ellipsoid.axisRatio * ellipsoid.axisRatio) + place.h) * place.phi.sine};
}

// By Bowring's formula (B. R. Bowring, The accuracy of geodetic latitude and height equations, Survey Review 28, 1985)
// with his start, twice: within 1e-16 from 5,000 km inside up to any height. Longitudes come from -90 to 90 degrees,
// those beyond mirrored, as the arc sine of the reference calculation does. Inside: away from the centre, the axis and
// what is not finite.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline HighPlace<Real> from_geocentric(
    const EllipsoidTerms& ellipsoid, const SpacePoint<Real>& point, typename Real::Mask& inside) noexcept {
    constexpr double nearest = 6e6;
    constexpr double farthest = 1e8;
    const Real p2 = point.x * point.x + point.y * point.y;
    const Real p = square_root(p2);
    const Real r = square_root(p2 + point.z * point.z);
    // Half a degree and more from the axis.
    inside = (r > nearest) & (r < farthest) & (p > 0.01 * r);
    Direction<Real> beta = direction_of(point.z * ellipsoid.axisRatio * (1.0 + ellipsoid.ePrime2b / r), p);
    const double ae2 = ellipsoid.a * ellipsoid.e2;
    const auto step = [&](Real& y, Real& x) {
        y = point.z + ellipsoid.ePrime2b * (beta.sine * beta.sine * beta.sine);
        x = p - ae2 * (beta.cosine * beta.cosine * beta.cosine);
    };
    Real y;
    Real x;
    step(y, x);
    beta = direction_of(y * ellipsoid.axisRatio, x);
    step(y, x);
    const Direction<Real> phi = direction_of(y, x);
    const Real W = square_root(1.0 - ellipsoid.e2 * (phi.sine * phi.sine));
    const Real h = p * phi.cosine + point.z * phi.sine - ellipsoid.a * W;
    const Real inverse = Real(1.0) / p;
    return {phi, {point.y * inverse, magnitude(point.x) * inverse}, h};
}

}  // namespace lagestatus::fast
