// What the series of the fast calculation have for one ellipsoid and origin.
#pragma once

#include "base/ellipsoid.h"

namespace lagestatus::fast {

inline constexpr int seriesOrder = 6;  // in the third flattening n

// Ellipsoids flatter than this, or longer than a sphere, go the reference road. The first term left out of the worst series, that of the
// latitude by the conformal latitude, is below 5e-17 here; those of surveys have 0.0017.
inline constexpr double mostFlattening = 0.0025;

// Those of a sum of sin 2x, sin 4x, ... to sin 12x, as sin 2x times a polynomial in cos 2x: the lowest power first.
struct Coefficients {
    double of[seriesOrder];
};

// Symbols: n third flattening, f flattening, phi, beta, chi, mu geographic, reduced, conformal, rectifying latitude.
struct PlaneSeries {
    // Given:    ellipsoid        semi-axes, metres; the larger one about that of the earth
    //           originLatitude   where northings count from, radians
    PlaneSeries(const Ellipsoid& ellipsoid, double originLatitude) noexcept;

    // Whether the series hold here; if not, nothing else means anything.
    bool serves = false;

    double a = 0.0;  // semi-axes, metres
    double b = 0.0;
    double f = 0.0;
    double axisRatio = 0.0;    // b / a
    double ePrime2 = 0.0;      // second eccentricity squared
    double radius = 0.0;       // of the circle as long as a meridian, metres
    double perRadius = 0.0;    // 1 / radius
    double arcOfOrigin = 0.0;  // from the equator, metres

    Coefficients conformal = {};       // chi - phi by phi
    Coefficients fromConformal = {};   // phi - chi by chi
    Coefficients krueger = {};         // mu - chi by chi: the coefficients alpha of Krueger's series
    Coefficients fromKrueger = {};     // chi - mu by mu: -beta
    Coefficients rectifying = {};      // mu - beta by beta
    Coefficients fromRectifying = {};  // beta - mu by mu

    // Of the longitude on a geodesic, in powers of epsilon: the factor A3, and what epsilon sin 2s is multiplied by: a
    // polynomial in epsilon cos 2s.
    double A3[5] = {};
    double longitude0[4] = {};
    double longitude1[3] = {};
    double longitude2[2] = {};
    double longitude3 = 0.0;
};

}  // namespace lagestatus::fast
