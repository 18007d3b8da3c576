#include "engine/normal_heights.h"

#include <cmath>

#include "heights/height_anomaly.h"
#include "heights/height_model_file.h"

namespace lagestatus {
namespace {

constexpr double tolHeight = 0.001;  // metres
constexpr int maxPasses = 20;

// The semi-axes of Bessel are taken from the height model file, never from the parameters of a system.
Status read_bessel_axes(std::string_view directory, Ellipsoid& bessel) noexcept {
    HeightModelFile file;
    Status read = file.open(directory);
    if (read == status::ok) {
        read = file.read_bessel_axes(bessel);
    }
    return read == status::ok ? read : status::heightModel + read;
}

}  // namespace

double NormalHeights::anomaly(const Geographic& point) noexcept {
    double zeta = 0.0;
    lastAnomaly = height_anomaly(directory, point.lam, point.phi, zeta);
    return zeta;
}

void NormalHeights::at_source(Geographic& point) noexcept {
    if (!source.bessel) {
        return;
    }
    if (flags.sourceIsNormal) {
        point.h = point.h + anomaly(point);
    } else if (flags.targetWantsNormal) {
        height = point.h - anomaly(point);
    }
}

bool NormalHeights::need_bessel_datum() const noexcept {
    return iterates || (!source.bessel && target.kind != ProjectionKind::geocentric);
}

Status NormalHeights::in_bessel_datum(const Geocentric& point, double& h, bool& settled) noexcept {
    ++passes;
    const bool computes = (!flags.sourceIsNormal && !source.bessel && !target.bessel) ||
                          (source.bessel && source.kind == ProjectionKind::geocentric);
    if (!flags.targetWantsNormal || !(computes || iterates)) {
        return status::ok;
    }
    Ellipsoid bessel;
    if (const Status read = read_bessel_axes(directory, bessel); read != status::ok) {
        return read;
    }
    Geographic onBessel;
    if (const Status converted = geocentric_to_geographic(bessel, point, onBessel); converted != status::ok) {
        return converted;
    }
    const double zeta = anomaly(onBessel);
    if (!iterates) {
        height = onBessel.h - zeta;
        return status::ok;
    }
    const double missing = height - onBessel.h + zeta;
    if (std::fabs(missing) > tolHeight && lastAnomaly == status::ok) {
        if (passes >= maxPasses) {
            return status::heightIteration;
        }
        h = h + missing;
        settled = false;
    }
    return status::ok;
}

void NormalHeights::at_target(const Geographic& point) noexcept {
    if (!flags.sourceIsNormal && target.bessel &&
        (!source.bessel || source.kind == ProjectionKind::geocentric)) {
        height = point.h - anomaly(point);
    }
}

}  // namespace lagestatus
