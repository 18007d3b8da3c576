#include "engine/normal_heights.h"

#include <cmath>

namespace lagestatus {
namespace {

constexpr double tolHeight = 0.001;  // metres
constexpr int maxPasses = 20;

}  // namespace

double NormalHeights::anomaly(const Geographic& point) noexcept {
    double zeta = 0.0;
    lastAnomaly = model.at(point.lam, point.phi, zeta);
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
    HeightAnomalies::Found found;
    if (const Status reached = model.at(point, found); reached != status::ok) {
        return reached;
    }
    lastAnomaly = found.status;
    if (!iterates) {
        height = found.onBessel.h - found.zeta;
        return status::ok;
    }
    const double missing = height - found.onBessel.h + found.zeta;
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
