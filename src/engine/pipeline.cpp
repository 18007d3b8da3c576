#include "engine/pipeline.h"

#include <algorithm>
#include <cmath>

#include "base/angles.h"
#include "engine/datum_step.h"

namespace lagestatus {
namespace {

bool is_carried(ProjectionKind kind) noexcept {
    return kind == ProjectionKind::geographic || kind == ProjectionKind::geocentric;
}

// Whether a normal height given at the source has to become an ellipsoidal one on the way.
bool corrects_given_height(const Side& source, HeightFlags heights) noexcept {
    return heights.sourceIsNormal &&
           (source.bessel ? source.kind != ProjectionKind::geocentric : heights.targetWantsNormal);
}

Geographic source_to_geographic(const Point& point) noexcept {
    return {point[0] * degree, point[1] * degree, point[2]};
}

Point geographic_to_target(const Geographic& point) noexcept {
    return {point.phi / degree, point.lam / degree, point.h};
}

// The datum steps through the Bessel datum; neither between systems on the same ellipsoid.
Geocentric through_bessel_datum(const Side& source, const Side& target, Geocentric point) noexcept {
    if (!source.bessel) {
        point = datum_step(source.parameters, point);
    }
    if (!target.bessel) {
        point = datum_step(target.parameters, point);
    }
    return point;
}

}  // namespace

Side::Side(std::string_view kindText, std::string_view ellipsoidText,
           std::span<const double, parameterCount> parameterArray) noexcept
    : kind(projection_kind(kindText)),
      ellipsoidName(ellipsoidText),
      bessel(ellipsoidText.starts_with("Bessel")),
      parameters(parameterArray),
      ellipsoid{parameterArray[slot::semiMajorAxis], parameterArray[slot::semiMinorAxis]} {}

Status transform_point(const Point& point, const Side& source, const Side& target, HeightFlags heights,
                       Result& result) noexcept {
    result = {0.0, 0.0, 0.0, point[2]};
    if (!is_carried(source.kind) || !is_carried(target.kind)) {
        return status::projectionKind;
    }
    if (corrects_given_height(source, heights)) {
        return status::heightModelNotOpened;
    }
    const bool sourceGeocentric = source.kind == ProjectionKind::geocentric;
    const bool sameEllipsoid = source.ellipsoidName == target.ellipsoidName;

    Geographic geographic;
    Geocentric geocentric = {point[0], point[1], point[2]};
    if (!sourceGeocentric) {
        geographic = source_to_geographic(point);
        geocentric = geographic_to_geocentric(source.ellipsoid, geographic);
    }
    if (!sameEllipsoid) {
        geocentric = through_bessel_datum(source, target, geocentric);
    }
    Point reached = {geocentric.x, geocentric.y, geocentric.z};
    if (target.kind != ProjectionKind::geocentric) {
        // Between Bessel systems of the same ellipsoid latitude, longitude and height pass as they are.
        const bool unchanged = sameEllipsoid && source.bessel && !sourceGeocentric;
        if (!unchanged) {
            const Status converted = geocentric_to_geographic(target.ellipsoid, geocentric, geographic);
            if (converted != status::ok) {
                return converted;
            }
        }
        reached = geographic_to_target(geographic);
    }

    const auto finite = [](double value) { return std::isfinite(value); };
    if (!std::all_of(reached.begin(), reached.end(), finite) || !std::isfinite(result[3])) {
        return status::noGeographicCoordinates;
    }
    std::copy(reached.begin(), reached.end(), result.begin());
    return status::ok;
}

}  // namespace lagestatus
