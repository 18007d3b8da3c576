#include "engine/side.h"

#include "engine/plane_systems.h"

namespace lagestatus {

Side::Side(Role role, std::string_view kindText, std::string_view ellipsoidText, Parameters parameterArray,
           int zone, bool keepsDatumStep) noexcept
    : traits(kind_traits(kindText)),
      ellipsoidName(ellipsoidText),
      bessel(lies_in_bessel_datum(ellipsoidText)),
      parameters(parameterArray),
      ellipsoid{parameterArray[slot::semiMajorAxis], parameterArray[slot::semiMinorAxis]},
      zones(decode_longitude_of_origin(parameterArray[slot::longitudeOfOrigin])),
      zoneNumber(zone),
      plane(plane_routines(kind)) {
    if (plane != nullptr) {
        series.emplace(ellipsoid, parameters[slot::latitudeOfOrigin], Tolerances{},
                       role == source || plane->planeRectifies);
    }
    if (!bessel && keepsDatumStep) {
        datumStep.emplace(parameters);
    }
}

}  // namespace lagestatus
