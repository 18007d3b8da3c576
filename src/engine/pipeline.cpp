#include "engine/pipeline.h"

#include <algorithm>
#include <cmath>

#include "base/angles.h"
#include "engine/datum_step.h"
#include "engine/plane_systems.h"

namespace lagestatus {
namespace {

// Whether a normal height given at the source has to become an ellipsoidal one on the way.
bool corrects_given_height(const Side& source, HeightFlags heights) noexcept {
    return heights.sourceIsNormal &&
           (source.bessel ? source.kind != ProjectionKind::geocentric : heights.targetWantsNormal);
}

// The source's coordinates as latitude and longitude; for systems that are not geocentric.
Status source_to_geographic(const Side& source, const Point& point, Geographic& result) noexcept {
    if (source.kind == ProjectionKind::geographic) {
        result = {point[0] * degree, point[1] * degree, point[2]};
        return status::ok;
    }
    return plane_to_geographic(source, point, result);
}

// Latitude and longitude as the target's coordinates; for systems that are not geocentric.
Status geographic_to_target(const Side& target, const Geographic& point, Point& result) noexcept {
    if (target.kind == ProjectionKind::geographic) {
        result = {point.phi / degree, point.lam / degree, point.h};
        return status::ok;
    }
    return geographic_to_plane(target, point, result);
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

Status transform_point(const Point& point, const Side& source, const Side& target, HeightFlags heights,
                       Result& result) noexcept {
    result = {0.0, 0.0, 0.0, point[2]};
    if (source.kind == ProjectionKind::unknown || target.kind == ProjectionKind::unknown) {
        return status::projectionKind;
    }
    if (target.kind == ProjectionKind::gaussKrueger && target.zones.has_no_zones()) {
        return status::longitudeOfOrigin;
    }
    const bool sourceGeocentric = source.kind == ProjectionKind::geocentric;
    const bool sameEllipsoid = source.ellipsoidName == target.ellipsoidName;

    Geographic geographic;
    Geocentric geocentric = {point[0], point[1], point[2]};
    if (!sourceGeocentric) {
        if (const Status read = source_to_geographic(source, point, geographic); read != status::ok) {
            return read;
        }
    }
    if (corrects_given_height(source, heights)) {
        return status::heightModelNotOpened;
    }
    if (!sourceGeocentric) {
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
        if (const Status written = geographic_to_target(target, geographic, reached); written != status::ok) {
            return written;
        }
    }

    const auto finite = [](double value) { return std::isfinite(value); };
    if (!std::all_of(reached.begin(), reached.end(), finite) || !std::isfinite(result[3])) {
        return status::noGeographicCoordinates;
    }
    std::copy(reached.begin(), reached.end(), result.begin());
    return status::ok;
}

}  // namespace lagestatus
