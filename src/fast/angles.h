// Sines, cosines and arcs, without the mathematical library.
#pragma once

#include "fast/lanes.h"
#include "fast/polynomials.h"

namespace lagestatus::fast {

// A polynomial, the lowest power first; even and odd powers by Horner's rule each, side by side.
template <typename Real, int count>
[[nodiscard, gnu::always_inline]] inline Real polynomial(const double (&coefficients)[count],
                                                         const Real& x) noexcept {
    const Real square = x * x;
    Real last = coefficients[count - 1];
    Real before = coefficients[count - 2];
    for (int i = count - 3; i > 0; i -= 2) {
        last = last * square + coefficients[i];
        before = before * square + coefficients[i - 1];
    }
    return count % 2 == 0 ? before + x * last : coefficients[0] + x * (before + x * last);
}

// A direction: sine and cosine of an angle.
template <typename Real>
struct Direction {
    Real sine;
    Real cosine;
};

// The direction that lies the angle of another further.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> turned(const Direction<Real>& from,
                                                                const Direction<Real>& by) noexcept {
    return {from.sine * by.cosine + from.cosine * by.sine, from.cosine * by.cosine - from.sine * by.sine};
}
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> turned_back(const Direction<Real>& from,
                                                                     const Direction<Real>& by) noexcept {
    return {from.sine * by.cosine - from.cosine * by.sine, from.cosine * by.cosine + from.sine * by.sine};
}

// The direction of twice an angle.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> doubled(const Direction<Real>& angle) noexcept {
    return {(angle.sine + angle.sine) * angle.cosine, 1.0 - (angle.sine + angle.sine) * angle.sine};
}

// The direction of any pair of numbers that is not 0, 0.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> direction_of(const Real& y, const Real& x) noexcept {
    const Real inverse = Real(1.0) / square_root(x * x + y * y);
    return {y * inverse, x * inverse};
}

// The direction of an angle in radians, at most half a right angle.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> direction_of_short(const Real& angle) noexcept {
    const Real square = angle * angle;
    return {angle + angle * square * polynomial(sineRest, square),
            (1.0 - 0.5 * square) + square * square * polynomial(cosineRest, square)};
}

// The direction of an angle in radians, at most a right angle; a cosine near 0 keeps its digits.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> direction_of_latitude(const Real& angle) noexcept {
    const auto [sine, cosine] = direction_of_short(angle * 0.5);
    return {(sine + sine) * cosine, (cosine - sine) * (cosine + sine)};
}

// The direction of an angle in degrees, at most 180; folded into a quadrant, exactly, before it is turned into radians.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> direction_of_degrees(const Real& degrees) noexcept {
    const auto isFar = magnitude(degrees) > 90.0;
    const auto [sine, cosine] = direction_of_latitude(
        select(isFar, signed_by(Real(180.0), degrees) - degrees, degrees) * radiansOfDegree);
    return {sine, select(isFar, -cosine, cosine)};
}

// The direction of an angle in radians, at most 10^5: the reduction is exact to 2^-64. For what is computed once.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> direction_of_angle(const Real& angle) noexcept {
    const Real quadrant = nearest_integer(angle * (1.0 / rightAngle));
    const auto [sine, cosine] = direction_of_short(
        ((angle - quadrant * rightAngleHigh) - quadrant * rightAngleMiddle) - quadrant * rightAngleLow);
    const Real q = quadrant - 4.0 * nearest_integer(quadrant * 0.25);  // -2 to 2
    const auto isOdd = magnitude(magnitude(q) - 1.0) < 0.5;
    const Real s = select(isOdd, cosine, sine);
    const Real c = select(isOdd, sine, cosine);
    return {select((q > 1.5) | (q < -0.5), -s, s), select((q > 0.5) | (q < -1.5), -c, c)};
}

// The direction of an angle below 0.006, by the first terms of its series: within 7e-17.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> direction_of_small(const Real& angle) noexcept {
    const Real square = angle * angle;
    return {angle - angle * square * (1.0 / 6.0 - square * (1.0 / 120.0)),
            1.0 - square * (0.5 - square * (1.0 / 24.0))};
}

// The angle of a direction whose cosine is not negative, radians from -pi / 2 to pi / 2; sine and cosine may have any
// common positive factor, and are not both 0. Folded into the first half of a quadrant, and there turned back by pi / 4
// from pi / 8 on, so that a short arc is left.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Real arc_of_latitude(const Real& sine, const Real& cosine) noexcept {
    const Real absSine = magnitude(sine);
    const auto isSteep = absSine > cosine;
    const Real y = select(isSteep, cosine, absSine);
    const Real x = select(isSteep, absSine, cosine);
    const auto isUpper = y > x * tangentOfEighth;
    const Real t = select(isUpper, y - x, y) / select(isUpper, y + x, x);
    const Real square = t * t;
    const Real rest = t * square * polynomial(arcTangentRest, square);
    const Real shallow = select(isUpper, Real(quarter), Real(0.0)) + (t + rest);
    return signed_by(select(isSteep, rightAngle - shallow, shallow), sine);
}

// The angle of any direction, radians from -pi to pi.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Real arc(const Real& sine, const Real& cosine) noexcept {
    const Real near = arc_of_latitude(sine, magnitude(cosine));
    return select(cosine < 0.0, signed_by(Real(straightAngle), sine) - near, near);
}

// sin 2x P(cos 2x), which a sum of terms in sin 2x, sin 4x, ... becomes.
template <typename Real, int count>
[[nodiscard, gnu::always_inline]] inline Real sine_sum(const double (&coefficients)[count],
                                                       const Direction<Real>& doubledAngle) noexcept {
    return doubledAngle.sine * polynomial(coefficients, doubledAngle.cosine);
}

}  // namespace lagestatus::fast
