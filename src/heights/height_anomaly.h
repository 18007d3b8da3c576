// The height anomaly of a point in the Bessel datum.
#pragma once

#include <string_view>

#include "base/status.h"
#include "geodesy/geocentric.h"
#include "heights/height_model_file.h"

namespace lagestatus {

// The height anomaly zeta of a point on the Bessel ellipsoid: ellipsoidal height h = normal height H + zeta.
//
// The point, at ellipsoidal height 0, goes through the datum step of the height model file to GRS80, where the grid of
// absolute height anomalies is interpolated bilinearly. The correction for the fundamental point Rauenberg leads from
// there to the Bessel ellipsoid: it is the change of height that comes with another size and form of the ellipsoid and
// with its place, given by the height anomaly and the deflection of the vertical at the fundamental point (Heiskanen
// and Moritz, Physical Geodesy, 1967, chapter 5, datum shifts).
//
// Given:    directory  where hoehe.ini lies, at most 299 characters; "." or empty for the current directory
//           lam, phi   longitude and latitude on the Bessel ellipsoid, radians
// Returned: status     0; 110 the file cannot be opened; 100 it ends before a line that is needed; 27 to 48, 101 to
//                      107, 127, 128 a header line is unreadable or out of range; 108 the point lies outside the grid;
//                      109 one of the four values around it is missing; 90 no finite position on GRS80, or the height
//                      anomaly is not finite
//           zeta       metres; 0.0 after a failure, and for a file without a data line
//
// Nothing is kept: every call reads the file up to the values it needs.
[[nodiscard]] Status height_anomaly(std::string_view directory, double lam, double phi,
                                    double& zeta) noexcept;

// The same from an open file, of which read_axes has read the beginning into model.
[[nodiscard]] Status height_anomaly(HeightModelFile& file, HeightModel& model, double lam, double phi,
                                    double& zeta) noexcept;

// The first steps of it: the place of the model's grid that belongs to a point on the Bessel ellipsoid.
//
// Given:    model      its ellipsoids and datum step
//           lam, phi   radians
// Returned: status     0; 90 no finite position on GRS80
//           at         written on success only
[[nodiscard]] Status bessel_to_grid(const HeightModel& model, double lam, double phi,
                                    Geographic& at) noexcept;

}  // namespace lagestatus
