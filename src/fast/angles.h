// Sines, cosines and arcs, without the mathematical library.
#pragma once

#include "fast/lanes.h"
#include "fast/polynomials.h"

namespace lagestatus::fast {

// A polynomial by Horner's rule, the lowest power first.
template <typename Real, int count>
[[nodiscard, gnu::always_inline]] inline Real polynomial(const double (&coefficients)[count],
                                                         const Real& x) noexcept {
    Real sum = coefficients[count - 1];
    for (int i = count - 2; i >= 0; --i) {
        sum = sum * x + coefficients[i];
    }
    return sum;
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

// Of a rest below a right angle's half, and the number of right angles that were taken off, below 2^20.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> reduced_direction(const Real& rest,
                                                                           const Real& quadrant) noexcept {
    const Real square = rest * rest;
    const Real sine = rest + rest * square * polynomial(sineRest, square);
    const Real cosine = (1.0 - 0.5 * square) + square * square * polynomial(cosineRest, square);
    const Real q = quadrant - 4.0 * nearest_integer(quadrant * 0.25);  // -2 to 2
    const auto isOdd = magnitude(magnitude(q) - 1.0) < 0.5;
    const Real s = select(isOdd, cosine, sine);
    const Real c = select(isOdd, sine, cosine);
    return {select((q > 1.5) | (q < -0.5), -s, s), select((q > 0.5) | (q < -1.5), -c, c)};
}

// The direction of an angle in radians, at most 10^5: the reduction is exact to 2^-64.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> direction_of_angle(const Real& angle) noexcept {
    const Real quadrant = nearest_integer(angle * (1.0 / rightAngle));
    const Real rest =
        ((angle - quadrant * rightAngleHigh) - quadrant * rightAngleMiddle) - quadrant * rightAngleLow;
    return reduced_direction(rest, quadrant);
}

// The direction of an angle in degrees, at most 10^6, reduced before it is turned into radians: exactly.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> direction_of_degrees(const Real& degrees) noexcept {
    const Real quadrant = nearest_integer(degrees * (1.0 / 90.0));
    return reduced_direction((degrees - quadrant * 90.0) * radiansOfDegree, quadrant);
}

// The direction of an angle below 0.02, by the first terms of its series: within 10^-17.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Direction<Real> direction_of_small(const Real& angle) noexcept {
    const Real square = angle * angle;
    return {angle - angle * square * (1.0 / 6.0 - square * (1.0 / 120.0)),
            1.0 - square * (0.5 - square * (1.0 / 24.0 - square * (1.0 / 720.0)))};
}

// The angle of a direction, radians from -pi to pi; its sine and cosine may have any common positive factor, and are
// not both 0. It is folded into the first half of a quadrant and turned back by 0, pi / 8 or pi / 4, so that a short
// arc is left.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Real arc(const Real& sine, const Real& cosine) noexcept {
    const Real absSine = magnitude(sine);
    const Real absCosine = magnitude(cosine);
    const auto isSteep = absSine > absCosine;
    const Real y = select(isSteep, absCosine, absSine);
    const Real x = select(isSteep, absSine, absCosine);
    const auto isMiddle = y > x * tangentOfSixteenth;
    const auto isUpper = y > x * tangentOfThreeSixteenths;
    const Real turnSine =
        select(isUpper, Real(sineOfQuarter), select(isMiddle, Real(sineOfEighth), Real(0.0)));
    const Real turnCosine =
        select(isUpper, Real(sineOfQuarter), select(isMiddle, Real(cosineOfEighth), Real(1.0)));
    const Real turn = select(isUpper, Real(quarter), select(isMiddle, Real(eighth), Real(0.0)));
    const Real t = (y * turnCosine - x * turnSine) / (x * turnCosine + y * turnSine);
    const Real square = t * t;
    const Real shallow = turn + (t + t * square * polynomial(arcTangentRest, square));
    const Real quadrant = select(isSteep, rightAngle - shallow, shallow);
    const Real half = select(cosine < 0.0, straightAngle - quadrant, quadrant);
    return select(sine < 0.0, -half, half);
}

// A sum of count coefficients times sin 2 x, sin 4 x, ..., by Clenshaw's recurrence.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Real sine_sum(const double* coefficients, int count,
                                                       const Direction<Real>& doubledAngle) noexcept {
    const Real twice = doubledAngle.cosine + doubledAngle.cosine;
    Real next = 0.0;
    Real sum = coefficients[count - 1];
    for (int i = count - 2; i >= 0; --i) {
        const Real before = twice * sum - next + coefficients[i];
        next = sum;
        sum = before;
    }
    return sum * doubledAngle.sine;
}

}  // namespace lagestatus::fast
