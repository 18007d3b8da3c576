// Soldner (Cassini): a point is named by the geodesic that meets the central meridian at a right angle. C. F. F. Karney,
// Algorithms for geodesics, J. Geodesy 87, 2013, with the arc counted from where it meets the meridian, its vertex: there
// the sines of even multiples change their sign from one to the next.
//
//   symbol          meaning
//   beta, beta1     reduced latitude of the point and of the footpoint
//   sigma, omega    arc of the geodesic and longitude on the auxiliary sphere, from the footpoint
//   epsilon         the parameter of the series, (k / (sqrt(1 + k^2) + 1))^2, k = e' sin beta1
#pragma once

#include "fast/gauss_krueger.h"

namespace lagestatus::fast {

inline constexpr double mostSigma = 0.6;   // 34 degrees beside the meridian
inline constexpr double leastSine = 1e-9;  // of the latitude: 6 mm

// Coefficients of sin 2s, sin 4s, ... in powers of epsilon: of row l those of epsilon^(l + 1), epsilon^(l + 3), ...
struct EpsilonRows {
    double of[5][3];
};

// Of sin 2s times powers of cos 2s, as Coefficients in fast/series.h. The arc from the vertex: every other sign changes.
consteval EpsilonRows by_powers(const EpsilonRows& sines) noexcept {
    const auto& c = sines.of;
    return {{{-c[0][0], -c[0][1] + c[2][0], -c[0][2] + c[2][1] - c[4][0]},
             {2.0 * c[1][0], 2.0 * c[1][1] - 4.0 * c[3][0], 0.0},
             {-4.0 * c[2][0], -4.0 * c[2][1] + 12.0 * c[4][0], 0.0},
             {8.0 * c[3][0], 0.0, 0.0},
             {-16.0 * c[4][0], 0.0, 0.0}}};
}

// Equations 18 and 21.
inline constexpr EpsilonRows distanceRows = by_powers({{{-1.0 / 2, 3.0 / 16, -1.0 / 32},
                                                        {-1.0 / 16, 1.0 / 32},
                                                        {-1.0 / 48, 3.0 / 256},
                                                        {-5.0 / 512},
                                                        {-7.0 / 1280}}});
inline constexpr EpsilonRows arcRows = by_powers({{{1.0 / 2, -9.0 / 32, 205.0 / 1536},
                                                   {5.0 / 16, -37.0 / 96},
                                                   {29.0 / 96, -75.0 / 128},
                                                   {539.0 / 1536},
                                                   {3467.0 / 7680}}});

// The series of one geodesic.
template <typename Real>
struct GeodesicSums {
    [[gnu::always_inline]] GeodesicSums(const PlaneSeries& planeSeries, const Real& sinBeta1) noexcept
        : series(planeSeries) {
        const Real k2 = series.ePrime2 * (sinBeta1 * sinBeta1);
        const Real root = square_root(1.0 + k2) + 1.0;
        e = k2 / (root * root);
    }

    // Distance over b A1, by sigma; equation 17.
    [[nodiscard, gnu::always_inline]] Real distance(const Real& sigma,
                                                    const Direction<Real>& doubledSigma) const noexcept {
        return sigma + sum(distanceRows, doubledSigma);
    }
    // Sigma by the distance over b A1; equation 20.
    [[nodiscard, gnu::always_inline]] Real sigma(const Real& tau,
                                                 const Direction<Real>& doubledTau) const noexcept {
        return tau + sum(arcRows, doubledTau);
    }
    // b A1
    [[nodiscard, gnu::always_inline]] Real scale() const noexcept {
        const Real e2 = e * e;
        return series.b * (1.0 + e2 * (1.0 / 4 + e2 * (1.0 / 64))) / (1.0 - e);
    }
    // What longitude on the sphere is more than that on the ellipsoid; equations 23 to 25.
    [[nodiscard, gnu::always_inline]] Real longitude(const Real& sigma, const Direction<Real>& doubledSigma,
                                                     const Real& cosBeta1) const noexcept {
        const Real y = e * doubledSigma.cosine;
        const Real sum = polynomial(series.longitude0, e) +
                         y * (polynomial(series.longitude1, e) +
                              y * (polynomial(series.longitude2, e) + y * series.longitude3));
        return series.f * cosBeta1 * (polynomial(series.A3, e) * (sigma + e * doubledSigma.sine * sum));
    }

    const PlaneSeries& series;
    Real e;

  private:
    [[nodiscard, gnu::always_inline]] Real sum(const EpsilonRows& rows,
                                               const Direction<Real>& angle) const noexcept {
        const auto& p = rows.of;
        const Real e2 = e * e;
        const Real y = e * angle.cosine;
        return e * angle.sine *
               ((p[0][0] + e2 * (p[0][1] + e2 * p[0][2])) +
                y * ((p[1][0] + e2 * p[1][1]) +
                     y * ((p[2][0] + e2 * p[2][1]) + y * (p[3][0] + y * p[4][0]))));
    }
};

// As geographic_to_krueger. The footpoint hangs on the longitude on the sphere, which hangs on the footpoint: a first
// step with the leading term, then two of Newton's.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Plane<Real> geographic_to_soldner(
    const PlaneSeries& series, const Place<Real>& place, typename Real::Mask& inside) noexcept {
    const auto& [phi, dLam] = place;
    const Direction<Real> beta = direction_of(phi.sine * series.axisRatio, phi.cosine);
    // The footpoint and the arc for a longitude on the sphere.
    struct Triangle {
        [[gnu::always_inline]] Triangle(const Direction<Real>& reduced,
                                        const Direction<Real>& omega) noexcept {
            sigma.sine = reduced.cosine * omega.sine;
            const Real c = reduced.cosine * omega.cosine;
            sigma.cosine = square_root(reduced.sine * reduced.sine + c * c);
            const Real inverse = Real(1.0) / sigma.cosine;
            beta1 = {reduced.sine * inverse, c * inverse};
            arcOfSigma = arc_of_latitude(sigma.sine, sigma.cosine);
            tangent = sigma.sine * inverse;
        }
        Direction<Real> sigma;
        Direction<Real> beta1;
        Real arcOfSigma;
        Real tangent;
    };
    // One of Newton's steps; the derivative of the leading term, f A3 sigma cos beta1.
    const auto corrected = [&series](const Triangle& at, const Real& more, const Real& found)
        __attribute__((always_inline)) {
        const Real slope = series.f * (at.beta1.cosine * at.beta1.cosine -
                                       at.arcOfSigma * at.tangent * (at.beta1.sine * at.beta1.sine));
        return more + (found - more) * (1.0 + slope * (1.0 + slope));
    };
    const Triangle first(beta, dLam);
    // On the equator the reference calculation has no footpoint.
    inside = (magnitude(first.sigma.sine) < 0.5) & (dLam.cosine > leastCosine) &
             (phi.cosine > leastCosineOfLatitude) & (magnitude(phi.sine) > leastSine);
    Real more = corrected(first, 0.0, series.f * first.beta1.cosine * first.arcOfSigma);
    Triangle at = first;
    for (int step = 0; step < 2; ++step) {
        at = Triangle(beta, turned(dLam, direction_of_small(more)));
        const GeodesicSums<Real> sums(series, at.beta1.sine);
        more = corrected(at, more, sums.longitude(at.arcOfSigma, doubled(at.sigma), at.beta1.cosine));
    }
    at = Triangle(beta, turned(dLam, direction_of_small(more)));
    const GeodesicSums<Real> sums(series, at.beta1.sine);
    const Real mu =
        arc_of_latitude(at.beta1.sine, at.beta1.cosine) + sine_sum(series.rectifying.of, doubled(at.beta1));
    return {mu * series.radius - series.arcOfOrigin,
            sums.scale() * sums.distance(at.arcOfSigma, doubled(at.sigma))};
}

// The inverse.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Place<Real> soldner_to_geographic(
    const PlaneSeries& series, const Plane<Real>& plane, typename Real::Mask& inside) noexcept {
    const Real mu = (plane.northing + series.arcOfOrigin) * series.perRadius;
    inside = magnitude(mu) < mostXi;
    const Direction<Real> rectifying = direction_of_latitude(mu);
    const Direction<Real> beta1 =
        turned(rectifying, direction_of_small(sine_sum(series.fromRectifying.of, doubled(rectifying))));
    const GeodesicSums<Real> sums(series, beta1.sine);
    const Real tau = plane.easting / sums.scale();
    inside = inside & (magnitude(tau) < mostSigma);
    const Direction<Real> directionOfTau = direction_of_short(tau);
    const Real arcOfSigma = sums.sigma(tau, doubled(directionOfTau));
    const Direction<Real> sigma = turned(directionOfTau, direction_of_small(arcOfSigma - tau));
    const Real c = beta1.cosine * sigma.cosine;
    const Direction<Real> omega = direction_of(sigma.sine, c);
    const Real more = sums.longitude(arcOfSigma, doubled(sigma), beta1.cosine);
    const Direction<Real> dLam = turned_back(omega, direction_of_small(more));
    const Real cosBeta = square_root(sigma.sine * sigma.sine + c * c);
    const Direction<Real> phi = direction_of(beta1.sine * sigma.cosine, cosBeta * series.axisRatio);
    inside = inside & (dLam.cosine > leastCosine) & (phi.cosine > leastCosineOfLatitude);
    return {phi, dLam};
}

}  // namespace lagestatus::fast
