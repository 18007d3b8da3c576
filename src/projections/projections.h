// Between latitude and longitude and the two kinds of plane coordinates, on one ellipsoid, both ways.
//
// All four take the semi-axes a, b in metres and the latitude of origin phi0 in radians, which the northing counts
// from. Angles are radians, north and east positive; lengths metres. A routine returns a status and writes its two
// results on success only: every loop has a limit of 100 passes with a status of its own, and results that are not
// finite are never a success. No argument is checked.
//
// The statements of accuracy are metres on the ground against GeographicLib, for the tolerances of the pipeline
// (plane_systems.cpp) and for ellipsoids like the Earth's; "the German domain" is 46 to 56 degrees of latitude, up to 4
// degrees from the central meridian. docs/accuracy.md has the whole picture.
#pragma once

#include <array>

#include "base/status.h"

namespace lagestatus {

using PlaneResult = std::array<double, 2>;       // y (easting), x (northing)
using GeographicResult = std::array<double, 2>;  // latitude, longitude

// Gauss-Krueger (conformal transverse) coordinates, unscaled and without zone.
//
// Given:    phi, lam   the point
//           lam0       longitude of the central meridian
//           tolCoord   the loop ends when neither coordinate changes by more, metres
//           tolSeries  tolerance of the series at the origin
// Returned: res        y from the central meridian, x from phi0
//           status     0; 501 the coordinates do not settle or are not finite (the poles among them); 502, 503 the
//                      series at the origin do not converge
//
// Within 0.03 micrometres in the German domain, 3 micrometres up to 85 degrees of latitude and 40 degrees away (but 0.9 mm
// on 600 m at 49.3 degrees, 24.5 away), 0.1 mm up to 89 and 7 cm up to 89.9 degrees. Poleward of 89.9933 degrees x may be that of the other pole, with status 0;
// status 501 from 6e-7 degrees off the pole. Beyond 45 degrees (poles), 52 (at 50 degrees), 81 degrees (equator) from
// the meridian results are wrong, mostly with status 0.
[[nodiscard]] Status geo_to_gauss_krueger(double a, double b, double phi, double lam, double phi0,
                                          double lam0, PlaneResult& res, double tolCoord,
                                          double tolSeries) noexcept;

// The inverse.
//
// Given:    y, x       coordinates, unscaled and without zone
//           tolAngle   tolerance of the latitude's sine
//           tolSeries  tolerance of the series and of the complex latitude
// Returned: res        latitude, longitude from the central meridian
//           status     0; 301, 302 the series at the origin do not converge; 303 nor does the series of a pass; 304
//                      the complex latitude does not settle, or the results are not finite; 305 the latitude does
//                      not settle
//
// Within 2.4 micrometres in the German domain, 4.3 micrometres up to 89.9 degrees of latitude and 40 degrees away, but
// 5.8 cm on 2 m of the meridian at 67.7994 degrees and 4 mm at 36.5 degrees, 42.7 away. 0.13 mm at 0.001 degrees from a
// pole, 304 at it. Beyond 44.6 degrees from the meridian the longitude is some 90 degrees off, with status 0.
[[nodiscard]] Status gauss_krueger_to_geo(double a, double b, double y, double x, double phi0,
                                          GeographicResult& res, double tolAngle, double tolSeries) noexcept;

// Soldner coordinates: y is the length of the geodesic that leaves the central meridian at right angles and meets
// the point, x that of the meridian from phi0 to the geodesic's footpoint.
//
// Given:    phi, lam   the point
//           lam0       longitude of the central meridian
//           tolAngle, tolLength
//                      tolerances of the footpoint's angles and arc; tolLength also that of the terms of y
//           tolSeries  tolerance of the ellipsoid's series
// Returned: res        y, positive in the east; x, positive in the north of the origin
//           status     0; 401, 402 the series at the origin do not converge; 403 the footpoint does not settle, or
//                      the results are not finite (the equator among them); 404 the series of y, 405
//                      that of the footpoint's meridian arc does not converge
//
// x within 0.12 micrometres up to 89.9 degrees of latitude and 40 degrees away. y is off by up to 0.05 m^2 / y, since an
// arc cosine near 1 gives it: in the German domain 0.26 mm where the series beside the meridian ends (5e-5 rad), 15
// micrometres from 0.05 degrees on; 8 mm up to 89 degrees, 0.29 m at the poles, where x may be that of the other pole
// with status 0. Wrong from 90 degrees from the meridian on, with status 0.
[[nodiscard]] Status geo_to_soldner(double a, double b, double phi, double lam, double phi0, double lam0,
                                    PlaneResult& res, double tolAngle, double tolLength,
                                    double tolSeries) noexcept;

// The inverse.
//
// Given:    y, x       coordinates
//           lam0       longitude of the central meridian
//           tolAngle, tolLength, tolSeries
//                      tolerances of angles, of the whole circuit's length, of the ellipsoid's series
// Returned: res        latitude; longitude, lam0 included
//           status     0; 201, 202 the series at the origin do not converge; 203 nor does that of a pass; 204 the
//                      footpoint's latitude does not settle; 205 the circuit's length does not converge; 206 the arc
//                      does not settle, or the results are not finite; 207, 208 the longitude does not converge
//
// The latitude is within 3.5 micrometres up to 89.9 degrees and 40 degrees away, but 5.8 cm off where the footpoint lies
// between 67.7986 and 67.8002 degrees. The longitude is within 0.13 mm beyond 200 m and 9 micrometres beyond 0.05
// degrees in the German domain, 0.23 mm elsewhere; up to 8 m within 0.01 degrees of a pole, where the other pole may come
// back with status 0. Wrong from 90 degrees from the meridian on, with status 0.
[[nodiscard]] Status soldner_to_geo(double a, double b, double y, double x, double phi0, double lam0,
                                    GeographicResult& res, double tolAngle, double tolLength,
                                    double tolSeries) noexcept;

}  // namespace lagestatus
