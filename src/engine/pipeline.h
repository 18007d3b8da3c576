// The road of one point from a source system to a target system.
#pragma once

#include <array>

#include "base/status.h"
#include "engine/normal_heights.h"
#include "engine/side.h"

namespace lagestatus {

// The point in the target system, and the normal height or, where none is computed, the height given.
using Result = std::array<double, 4>;

// Carries a point from one system into another.
//
// Given:    point      in the source system
//           source     parameters read for a source (its datum transformation leads into the Bessel datum)
//           target     parameters read for a target (out of the Bessel datum)
//           heights    what the heights are
//           model      asked only if a normal height needs it
// Returned: status     0; 12 a kind of system that there is not; 14 a Gauss-Krueger target without zones, or a
//                      longitude that none of its zones can be numbered for; 90 no finite coordinates; 92, 1027, 1028,
//                      1100, 1110 a normal height cannot be found (normal_heights.h); 201 to 208, 301 to 305, 401 to
//                      405, 501 to 503 a projection failed (projections.h); 1000 + k the point is complete but for
//                      its normal height, which failed with k (height_anomaly.h)
//           result     with 0 and with 1000 + k of the height anomaly the point and its normal height; after any other
//                      failure 0.0, 0.0, 0.0 and the height given, or the normal height if it was found before
//
// A system whose ellipsoid name begins with "Bessel" needs no datum step, nor do two systems with the same
// ellipsoid name. Heights are ellipsoidal but for the normal heights of the flags. Where no normal height is computed,
// the height given comes back as the result's last value.
[[nodiscard]] Status transform_point(const Point& point, const Side& source, const Side& target,
                                     HeightFlags heights, const HeightAnomalies& model,
                                     Result& result) noexcept;

}  // namespace lagestatus
