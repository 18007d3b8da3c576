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

// The series of one geodesic.
template <typename Real>
struct GeodesicSums {
    [[gnu::always_inline]] GeodesicSums(const PlaneSeries& planeSeries, const Real& sinBeta1) noexcept
        : series(planeSeries) {
        const Real k2 = series.ePrime2 * (sinBeta1 * sinBeta1);
        const Real root = square_root(1.0 + k2) + 1.0;
        e = k2 / (root * root);
    }

    // Distance over b A1, by sigma; equations 17 and 18.
    [[nodiscard, gnu::always_inline]] Real distance(const Real& sigma,
                                                    const Direction<Real>& doubledSigma) const noexcept {
        const Real e2 = e * e;
        const Real c[] = {e * (1.0 / 2 - e2 * (3.0 / 16 - e2 * (1.0 / 32))),
                          -e2 * (1.0 / 16 - e2 * (1.0 / 32)), e * e2 * (1.0 / 48 - e2 * (3.0 / 256)),
                          -e2 * e2 * (5.0 / 512)};
        return sigma + sum(c, doubledSigma);
    }
    // Sigma by the distance over b A1; equations 20 and 21.
    [[nodiscard, gnu::always_inline]] Real sigma(const Real& tau,
                                                 const Direction<Real>& doubledTau) const noexcept {
        const Real e2 = e * e;
        const Real c[] = {-e * (1.0 / 2 - e2 * (9.0 / 32 - e2 * (205.0 / 1536))),
                          e2 * (5.0 / 16 - e2 * (37.0 / 96)), -e * e2 * (29.0 / 96 - e2 * (75.0 / 128)),
                          e2 * e2 * (539.0 / 1536), -e * e2 * e2 * (3467.0 / 7680)};
        return tau + sum(c, doubledTau);
    }
    // b A1
    [[nodiscard, gnu::always_inline]] Real scale() const noexcept {
        const Real e2 = e * e;
        return series.b * (1.0 + e2 * (1.0 / 4 + e2 * (1.0 / 64))) / (1.0 - e);
    }
    // What longitude on the sphere is more than that on the ellipsoid; equations 23 to 25.
    [[nodiscard, gnu::always_inline]] Real longitude(const Real& sigma, const Direction<Real>& doubledSigma,
                                                     const Real& cosBeta1) const noexcept {
        const Real e2 = e * e;
        const Real c[] = {-e * polynomial(series.c31, e), e2 * polynomial(series.c32, e),
                          -e * e2 * polynomial(series.c33, e), e2 * e2 * series.c34[0]};
        return series.f * cosBeta1 * (polynomial(series.A3, e) * (sigma + sum(c, doubledSigma)));
    }

    const PlaneSeries& series;
    Real e;

  private:
    // Of c_l sin 2 l x, by Clenshaw's recurrence.
    template <int count>
    [[nodiscard, gnu::always_inline]] static Real sum(const Real (&c)[count],
                                                      const Direction<Real>& angle) noexcept {
        const Real twice = angle.cosine + angle.cosine;
        Real next = 0.0;
        Real sum = c[count - 1];
        for (int l = count - 2; l >= 0; --l) {
            const Real before = twice * sum - next + c[l];
            next = sum;
            sum = before;
        }
        return sum * angle.sine;
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
            arcOfSigma = arc(sigma.sine, sigma.cosine);
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
        arc(at.beta1.sine, at.beta1.cosine) + sine_sum(series.rectifying.of, seriesOrder, doubled(at.beta1));
    return {mu * series.radius - series.arcOfOrigin,
            sums.scale() * sums.distance(at.arcOfSigma, doubled(at.sigma))};
}

// The inverse.
template <typename Real>
[[nodiscard, gnu::always_inline]] inline Place<Real> soldner_to_geographic(
    const PlaneSeries& series, const Plane<Real>& plane, typename Real::Mask& inside) noexcept {
    const Real mu = (plane.northing + series.arcOfOrigin) * (1.0 / series.radius);
    inside = magnitude(mu) < 1.58;
    const Direction<Real> rectifying = direction_of_angle(mu);
    const Direction<Real> beta1 = turned(
        rectifying, direction_of_small(sine_sum(series.fromRectifying.of, seriesOrder, doubled(rectifying))));
    const GeodesicSums<Real> sums(series, beta1.sine);
    const Real tau = plane.easting / sums.scale();
    inside = inside & (magnitude(tau) < mostSigma);
    const Direction<Real> directionOfTau = direction_of_angle(tau);
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
