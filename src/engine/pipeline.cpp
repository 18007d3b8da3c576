#include "engine/pipeline.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "base/angles.h"
#include "engine/plane_systems.h"

namespace lagestatus {
namespace {

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

// Whether every value is finite.
bool are_finite(std::span<const double> values) noexcept {
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

}  // namespace

Status transform_point(const Point& point, const Side& source, const Side& target, HeightFlags heights,
                       const HeightAnomalies& model, Result& result) noexcept {
    result = {0.0, 0.0, 0.0, point[2]};
    if (source.kind == ProjectionKind::unknown || target.kind == ProjectionKind::unknown) {
        return status::projectionKind;
    }
    if (target.traits.hasStrips && target.zones.has_no_zones()) {
        return status::longitudeOfOrigin;
    }
    const bool sourceGeocentric = source.kind == ProjectionKind::geocentric;
    const bool targetGeocentric = target.kind == ProjectionKind::geocentric;
    const bool sameEllipsoid = source.ellipsoidName == target.ellipsoidName;
    NormalHeights normalHeights(source, target, heights, model, result[3]);

    Geographic geographic = {0.0, 0.0, point[2]};
    if (!sourceGeocentric) {
        if (const Status read = source_to_geographic(source, point, geographic); read != status::ok) {
            return read;
        }
        normalHeights.at_source(geographic);
    }
    // The carried point, in the source's datum, in the Bessel datum, and at last in the target's. Gone once, or as
    // often as it takes to find the ellipsoidal height for a normal height given.
    Geocentric carried = {point[0], point[1], point[2]};
    const bool throughBessel =
        !sameEllipsoid || (heights.targetWantsNormal && normalHeights.need_bessel_datum());
    // Between Bessel systems of the same ellipsoid latitude, longitude and height pass as they are.
    const bool unchanged = sameEllipsoid && source.bessel && !sourceGeocentric && !targetGeocentric;
    for (bool settled = unchanged; !settled;) {
        if (!sourceGeocentric) {
            carried = geographic_to_geocentric(source.ellipsoid, geographic);
        }
        settled = true;
        if (throughBessel) {
            const Geocentric inBessel = source.through_datum(carried);
            if (const Status found = normalHeights.in_bessel_datum(inBessel, geographic.h, settled);
                found != status::ok) {
                return found;
            }
            // Between systems of the same ellipsoid the Bessel datum serves the height alone.
            if (settled && !sameEllipsoid) {
                carried = target.through_datum(inBessel);
            }
        }
    }
    Point reached = {carried.x, carried.y, carried.z};
    if (!targetGeocentric) {
        if (!unchanged) {
            const Status converted = geocentric_to_geographic(target.ellipsoid, carried, geographic);
            if (converted != status::ok) {
                return converted;
            }
        }
        normalHeights.at_target(geographic);
        if (const Status written = geographic_to_target(target, geographic, reached); written != status::ok) {
            return written;
        }
    }
    if (!are_finite(reached) || !std::isfinite(result[3])) {
        return status::noGeographicCoordinates;
    }
    std::copy(reached.begin(), reached.end(), result.begin());
    return normalHeights.status();
}

}  // namespace lagestatus
