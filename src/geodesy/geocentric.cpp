#include "geodesy/geocentric.h"

#include <cmath>

// Symbols: e2 first and ePrime2 second numerical eccentricity squared, c radius of curvature at the pole,
// W and V the auxiliary roots of the latitude, N radius of curvature in the prime vertical, t tangent of the
// latitude. The grouping of every formula is fixed: results repeat to the last bit.

namespace lagestatus {

Geocentric geographic_to_geocentric(const Ellipsoid& ellipsoid, const Geographic& point) noexcept {
    const auto [a, b] = ellipsoid;
    const double sinPhi = std::sin(point.phi);
    const double q = b / a * b;
    const double e2 = 1.0 - q / a;
    const double W = std::sqrt(1.0 - e2 * sinPhi * sinPhi);
    const double r = std::cos(point.phi) * (a / W + point.h);
    return {std::cos(point.lam) * r, std::sin(point.lam) * r, (q / W + point.h) * sinPhi};
}

Status geocentric_to_geographic(const Ellipsoid& ellipsoid, const Geocentric& point,
                                Geographic& result) noexcept {
    constexpr double tolLength = 0.0001;  // metres, along the meridian and in height
    constexpr int maxUpdates = 20;

    const auto [a, b] = ellipsoid;
    const auto [X, Y, Z] = point;
    const double p = std::sqrt(Y * Y + X * X);
    const double lam = std::asin(Y / p);
    const double ePrime2 = ((a * a - b * b) / b) / b;
    const double c = a * a / b;
    const double tolTangent = tolLength / a;

    double t = (((a * Z) * a) / b) / b / p;  // as if the point lay on the surface
    double tPrevious = 0.0;
    double h = 1.0;  // away from hPrevious, so that at least one update is made
    double hPrevious = 0.0;
    // False for values that cannot be compared.
    const auto settled = [&] {
        return std::fabs(t - tPrevious) <= tolTangent * (t * t + 1.0) &&
               std::fabs(h - hPrevious) <= tolLength;
    };
    for (int updates = 0; !settled() && updates < maxUpdates; ++updates) {
        const double t2 = t * t + 1.0;
        const double V = std::sqrt(ePrime2 / t2 + 1.0);
        const double N = c / V;
        const double cosPhi = std::sqrt(1.0 / t2);
        hPrevious = h;
        tPrevious = t;
        h = p / cosPhi - N;
        t = ((((a * Z) / b) * a) / b) / p / (ePrime2 * h / (N + h) + 1.0);
    }
    // What has settled is never NaN: phi, the arc tangent of t, is finite then, and so is h, whose last change was.
    const double phi = std::atan(t);
    if (!settled() || !std::isfinite(lam)) {
        return status::noGeographicCoordinates;
    }
    result = {phi, lam, h};
    return status::ok;
}

}  // namespace lagestatus
