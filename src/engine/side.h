// One side of a transformation.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "base/projection_kind.h"
#include "geodesy/datum_step.h"
#include "geodesy/geocentric.h"
#include "geodesy/zones.h"
#include "projections/ellipsoid_series.h"

namespace lagestatus {

struct PlaneRoutines;  // plane_systems.h

// First coordinate, second coordinate, height: northing X, easting Y and height in metres; latitude and
// longitude in degrees and height in metres; or geocentric X, Y, Z in metres.
using Point = std::array<double, 3>;

// A system and what depends on it alone. Nothing changes once it is made: any number of points may take it at once. The
// texts and parameters belong to the caller.
struct Side {
    enum Role : std::uint8_t { source, target };

    // zone is looked at for a target with one meridian only. keepsDatumStep is for whoever takes many points through
    // the same side: for one point the step costs less where it is made, and it need not be made at all.
    Side(Role role, std::string_view kindText, std::string_view ellipsoidText, Parameters parameterArray,
         int zone = 0, bool keepsDatumStep = false) noexcept;

    // The description outlives the side.
    Side(Role role, const SystemDescription& system, bool keepsDatumStep = false) noexcept
        : Side(role, system.projectionKind.view(), system.ellipsoidName.view(), system.parameters,
               system.zoneNumber, keepsDatumStep) {}

    Side(Role role, SystemDescription&& system, bool keepsDatumStep = false) = delete;

    // From the source's datum into the Bessel datum, the hub of all datum transformations, and from there into the
    // target's. A side in the Bessel datum leaves the point as it is.
    [[nodiscard]] Geocentric through_datum(const Geocentric& point) const noexcept {
        return bessel ? point : datumStep ? datumStep->carry(point) : datum_step(parameters, point);
    }

    KindTraits traits;
    ProjectionKind kind = traits.kind;
    std::string_view ellipsoidName;
    bool bessel;  // lies in the Bessel datum
    Parameters parameters;
    Ellipsoid ellipsoid;
    ZoneLayout zones;
    int zoneNumber;
    const PlaneRoutines* plane;          // of plane systems; else null
    std::optional<ArcSeries> series;     // likewise, as far as the routine of the role needs it
    std::optional<DatumStep> datumStep;  // if it is kept
};

}  // namespace lagestatus
