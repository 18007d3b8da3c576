// One side of a transformation.
#pragma once

#include <array>
#include <string_view>

#include "base/projection_kind.h"
#include "geodesy/geocentric.h"
#include "geodesy/plane_reductions.h"
#include "geodesy/zones.h"

namespace lagestatus {

// First coordinate, second coordinate, height: northing X, easting Y and height in metres; latitude and
// longitude in degrees and height in metres; or geocentric X, Y, Z in metres.
using Point = std::array<double, 3>;

// Built once per call. The texts and parameters belong to the caller.
struct Side {
    // zoneNumber is looked at for a Gauss-Krueger target with one meridian only.
    Side(std::string_view kindText, std::string_view ellipsoidText, Parameters parameterArray,
         int zone = 0) noexcept
        : kind(projection_kind(kindText)),
          ellipsoidName(ellipsoidText),
          bessel(lies_in_bessel_datum(ellipsoidText)),
          parameters(parameterArray),
          ellipsoid{parameterArray[slot::semiMajorAxis], parameterArray[slot::semiMinorAxis]},
          zones(decode_longitude_of_origin(parameterArray[slot::longitudeOfOrigin])),
          zoneNumber(zone) {}

    // The description outlives the side.
    explicit Side(const SystemDescription& system) noexcept
        : Side(system.projectionKind.view(), system.ellipsoidName.view(), system.parameters,
               system.zoneNumber) {}

    ProjectionKind kind;
    std::string_view ellipsoidName;
    bool bessel;  // lies in the Bessel datum, the hub of all datum transformations
    Parameters parameters;
    Ellipsoid ellipsoid;
    ZoneLayout zones;
    int zoneNumber;
};

}  // namespace lagestatus
