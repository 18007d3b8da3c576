#include "engine/normal_heights.h"

#include <cmath>

#include "heights/height_anomaly.h"
#include "heights/height_model_file.h"

namespace lagestatus {
namespace {

constexpr double tolHeight = 0.001;  // metres
constexpr int maxPasses = 20;

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
    // The semi-axes of Bessel are taken from the height model file, never from the parameters of a system.
    HeightModelFile file;
    HeightModel model;
    Status read = file.open(directory);
    if (read == status::ok) {
        read = file.read_axes(model);
    }
    if (read != status::ok) {
        return status::heightModel + read;
    }
    Geographic onBessel;
    if (const Status converted = geocentric_to_geographic(model.bessel, point, onBessel);
        converted != status::ok) {
        return converted;
    }
    double zeta = 0.0;
    lastAnomaly = height_anomaly(file, model, onBessel.lam, onBessel.phi, zeta);
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
    const bool wanted = flags.targetWantsNormal || flags.alsoUnasked;
    if (wanted && !flags.sourceIsNormal && target.bessel &&
        (!source.bessel || source.kind == ProjectionKind::geocentric)) {
        height = point.h - anomaly(point);
    }
}

}  // namespace lagestatus
