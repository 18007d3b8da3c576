// Between latitude and longitude and the two kinds of plane coordinates, on one ellipsoid, both ways.
//
// All four take what depends on the system alone: the ellipsoid, the latitude of origin phi0 that northings count from,
// the tolerances and their series (ellipsoid_series.h); and the longitude lam0 of the central meridian in radians. A
// routine returns a status and writes its result on success only: every loop has a limit of 100 passes with a status of
// its own, and results that are not finite are never a success. No argument is checked.
//
// The statements of accuracy are metres on the ground against GeographicLib, for the tolerances that stand in
// Tolerances and for ellipsoids like the Earth's; "the German domain" is 46 to 56 degrees of latitude, up to 4
// degrees from the central meridian. docs/accuracy.md has the whole picture.
#pragma once

#include "base/ellipsoid.h"
#include "base/status.h"
#include "projections/ellipsoid_series.h"

namespace lagestatus {

// Gauss-Krueger (conformal transverse) coordinates, unscaled and without zone.
//
// Given:    series     S is not needed for an origin on the equator
//           point, lam0
// Returned: res        easting from the central meridian, northing from phi0
//           status     0; 501 the coordinates do not settle within tol.coord, or are not finite (the poles among
//                      them); 502, 503 the series at the origin do not converge
//
// Within 0.03 micrometres in the German domain, 3 micrometres up to 85 degrees of latitude and 40 degrees away (but
// 0.9 mm on 600 m at 49.3 degrees, 24.5 away), 0.1 mm up to 89 and 7 cm up to 89.9 degrees. Poleward of 89.9933 degrees
// x may be that of the other pole, with status 0; status 501 from 6e-7 degrees off the pole. Beyond 45 degrees (poles),
// 52 (at 50 degrees), 81 degrees (equator) from the meridian results are wrong, mostly with status 0.
[[nodiscard]] Status geo_to_gauss_krueger(const ArcSeries& series, const LatLon& point, double lam0,
                                          PlanePoint& res) noexcept;

// The inverse.
//
// Given:    series     S included
//           point      unscaled and without zone
//           lam0
// Returned: res        lam0 included, which may make it other than finite
//           status     0; 301, 302 the series at the origin do not converge; 303 nor does the series of a pass; 304
//                      the complex latitude does not settle within tol.series, or the results are not finite; 305
//                      the latitude's sine does not settle within tol.angle
//
// Within 2.4 micrometres in the German domain, 4.3 micrometres up to 89.9 degrees of latitude and 40 degrees away, but
// 5.8 cm on 2 m of the meridian at 67.7994 degrees and 4 mm at 36.5 degrees, 42.7 away. 0.13 mm at 0.001 degrees from a
// pole, 304 at it. Beyond 44.6 degrees from the meridian the longitude is some 90 degrees off, with status 0.
[[nodiscard]] Status gauss_krueger_to_geo(const ArcSeries& series, const PlanePoint& point, double lam0,
                                          LatLon& res) noexcept;

// Soldner coordinates: y is the length of the geodesic that leaves the central meridian at right angles and meets
// the point, x that of the meridian from phi0 to the geodesic's footpoint.
//
// Given:    series     S included
//           point, lam0
// Returned: res        x, y
//           status     0; 401, 402 the series at the origin do not converge; 403 the footpoint does not settle
//                      within tol.angle and tol.length, or the results are not finite (the equator among them); 404
//                      the series of y does not converge to tol.length, 405 nor that of the footpoint's meridian arc
//
// x within 0.12 micrometres up to 89.9 degrees of latitude and 40 degrees away. y is off by up to 0.05 m^2 / y, since
// an arc cosine near 1 gives it: in the German domain 0.26 mm where the series beside the meridian ends (5e-5 rad), 15
// micrometres from 0.05 degrees on; 8 mm up to 89 degrees, 0.29 m at the poles, where x may be that of the other pole
// with status 0. Wrong from 90 degrees from the meridian on, with status 0.
[[nodiscard]] Status geo_to_soldner(const ArcSeries& series, const LatLon& point, double lam0,
                                    PlanePoint& res) noexcept;

// The inverse.
//
// Given:    series     S included
//           point, lam0
// Returned: res        lam0 included
//           status     0; 201, 202 the series at the origin do not converge; 203 nor does that of a pass; 204 the
//                      footpoint's latitude does not settle within tol.angle; 205 the circuit's length does not
//                      converge to tol.length; 206 the arc does not settle within tol.angle, or the results are not
//                      finite; 207, 208 the longitude does not converge to tol.angle
//
// The latitude is within 3.5 micrometres up to 89.9 degrees and 40 degrees away, but 5.8 cm off where the footpoint
// lies between 67.7986 and 67.8002 degrees. The longitude is within 0.13 mm beyond 200 m and 9 micrometres beyond 0.05
// degrees in the German domain, 0.23 mm elsewhere; up to 8 m within 0.01 degrees of a pole, where the other pole may
// come back with status 0. Wrong from 90 degrees from the meridian on, with status 0.
[[nodiscard]] Status soldner_to_geo(const ArcSeries& series, const PlanePoint& point, double lam0,
                                    LatLon& res) noexcept;

}  // namespace lagestatus
