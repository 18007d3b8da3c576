// The road of one point from a source system to a target system.
#pragma once

#include <array>

#include "base/status.h"
#include "engine/side.h"

namespace lagestatus {

// The point in the target system, and the normal height or, where none is computed, the height given.
using Result = std::array<double, 4>;

struct HeightFlags {
    bool sourceIsNormal = false;     // the height given is a normal height
    bool targetWantsNormal = false;  // a normal height is wanted in the result
};

// Carries a point from one system into another.
//
// Given:    point    in the source system
//           source   parameters read for a source (its datum transformation leads into the Bessel datum)
//           target   parameters read for a target (out of the Bessel datum)
//           heights  what the heights are
// Returned: status   0; 12 a kind of system that there is not; 14 a Gauss-Krueger target without zones, or a longitude
//                    that none of its zones can be numbered for; 90 no finite coordinates; 201 to 208, 301 to 305,
//                    401 to 405, 501 to 503 a projection failed (projections.h); 1110 the point needs the height model
//           result   after a failure 0.0, 0.0, 0.0 and the height given
//
// A system whose ellipsoid name begins with "Bessel" needs no datum step, nor do two systems with the same
// ellipsoid name. Heights are ellipsoidal; the height given comes back as the result's last value. A normal height that
// would have to be corrected is refused with 1110.
[[nodiscard]] Status transform_point(const Point& point, const Side& source, const Side& target,
                                     HeightFlags heights, Result& result) noexcept;

}  // namespace lagestatus
