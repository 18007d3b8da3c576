// The road of one point from a source system to a target system.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "base/projection_kind.h"
#include "base/status.h"
#include "base/system_description.h"
#include "engine/geocentric.h"

namespace lagestatus {

// First coordinate, second coordinate, height: northing X, easting Y and height in metres; latitude and
// longitude in degrees and height in metres; or geocentric X, Y, Z in metres.
using Point = std::array<double, 3>;

// The point in the target system, and the normal height or, where none is computed, the height given.
using Result = std::array<double, 4>;

// One side of a transformation, built once per call. The texts and parameters belong to the caller.
struct Side {
    Side(std::string_view kindText, std::string_view ellipsoidText,
         std::span<const double, parameterCount> parameterArray) noexcept;

    ProjectionKind kind;
    std::string_view ellipsoidName;
    bool bessel;  // lies in the Bessel datum, the hub of all datum transformations
    std::span<const double, parameterCount> parameters;
    Ellipsoid ellipsoid;
};

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
// Returned: status   0; 12 a kind of system that is not carried; 90 no finite coordinates; 1110 the point needs
//                    the height model
//           result   after a failure 0.0, 0.0, 0.0 and the height given
//
// A system whose ellipsoid name begins with "Bessel" needs no datum step, nor do two systems with the same
// ellipsoid name. Geographic and geocentric systems are carried, with ellipsoidal heights; the height given comes
// back as the result's last value. A normal height that would have to be corrected is refused with 1110.
[[nodiscard]] Status transform_point(const Point& point, const Side& source, const Side& target,
                                     HeightFlags heights, Result& result) noexcept;

}  // namespace lagestatus
