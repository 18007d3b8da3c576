// What the fast calculation computes once for a road, in plain numbers and with its own sines.
#include "fast/fast_road.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "base/angles.h"
#include "fast/angles.h"
#include "geodesy/plane_reductions.h"

namespace lagestatus::fast {
namespace {

using One = Lanes<2, 1>;

struct Turn {
    double sine;
    double cosine;
};

// NaN for what is no angle of a system.
Turn turn_by(double angle) noexcept {
    if (!(std::fabs(angle) < 10.0)) {
        constexpr double none = std::numeric_limits<double>::quiet_NaN();
        return {none, none};
    }
    const Direction<One> direction = direction_of_angle(One(angle));
    return {direction.sine.part[0][0], direction.cosine.part[0][0]};
}

// Whether all numbers are ordinary ones: no sum or product of theirs leaves the range of doubles, or loses a micrometre.
bool are_ordinary(std::span<const double> numbers) noexcept {
    constexpr double largest = 1e8;
    return std::all_of(numbers.begin(), numbers.end(),
                       [](double number) { return std::fabs(number) < largest; });
}

// An ellipsoid that Bowring's two steps settle on.
bool serves(const Ellipsoid& ellipsoid) noexcept {
    return ellipsoid.a > 6.3e6 && ellipsoid.a < 6.5e6 && PlaneSeries(ellipsoid, 0.0).serves;
}

struct Rotation {
    double of[3][3];
};

// R3(c) * R2(b) * R1(a); geodesy/datum_step.cpp.
Rotation rotation(double a, double b, double c) noexcept {
    const auto [sa, ca] = turn_by(a);
    const auto [sb, cb] = turn_by(b);
    const auto [sc, cc] = turn_by(c);
    return {{{cb * cc, ca * sc + sa * sb * cc, sa * sc - ca * sb * cc},
             {-cb * sc, ca * cc - sa * sb * sc, ca * sb * sc + sa * cc},
             {sb, -sa * cb, ca * cb}}};
}

// The step that another follows.
SpaceStep followed_by(const SpaceStep& first, const SpaceStep& then) noexcept {
    SpaceStep both;
    for (int i = 0; i < 3; ++i) {
        both.shift[i] = then.shift[i];
        for (int k = 0; k < 3; ++k) {
            both.shift[i] += then.matrix[i][k] * first.shift[k];
            both.matrix[i][k] = 0.0;
            for (int j = 0; j < 3; ++j) {
                both.matrix[i][k] += then.matrix[i][j] * first.matrix[j][k];
            }
        }
    }
    return both;
}

// The datum step of geodesy/datum_step.h, its stages multiplied out.
SpaceStep space_step(Parameters p) noexcept {
    using namespace slot;
    const auto stage = [](const Rotation& turn, double scale, const double(&origin)[3],
                          const double(&reached)[3]) {
        SpaceStep step;
        for (int i = 0; i < 3; ++i) {
            step.shift[i] = reached[i];
            for (int k = 0; k < 3; ++k) {
                step.matrix[i][k] = scale * turn.of[i][k];
                step.shift[i] -= step.matrix[i][k] * origin[k];
            }
        }
        return step;
    };
    const SpaceStep main = stage(rotation(p[rotationX], p[rotationY], p[rotationZ]), p[datumScale],
                                 {p[reductionX], p[reductionY], p[reductionZ]},
                                 {p[translationX], p[translationY], p[translationZ]});
    if (!has_intermediate_set(p)) {
        return main;
    }
    Rotation back = rotation(p[intermediateRotationX], p[intermediateRotationY], p[intermediateRotationZ]);
    std::swap(back.of[0][1], back.of[1][0]);
    std::swap(back.of[0][2], back.of[2][0]);
    std::swap(back.of[1][2], back.of[2][1]);
    return followed_by(
        main, stage(back, 1.0 / p[intermediateScale],
                    {p[intermediateTranslationX], p[intermediateTranslationY], p[intermediateTranslationZ]},
                    {p[intermediateReductionX], p[intermediateReductionY], p[intermediateReductionZ]}));
}

// Whether a step is near enough to none that no point of the earth leaves its range.
bool is_ordinary(const SpaceStep& step) noexcept {
    constexpr double farthest = 1e6;
    for (int i = 0; i < 3; ++i) {
        if (!(std::fabs(step.shift[i]) < farthest)) {
            return false;
        }
        for (const double each : step.matrix[i]) {
            if (!(std::fabs(each) < 2.0)) {
                return false;
            }
        }
    }
    return true;
}

// The meridians of a system's strips, or its single one. Returned: whether there are any.
bool fill_meridians(const ZoneLayout& zones, bool hasStrips, PlaneSide& side) noexcept {
    Meridians& meridians = side.meridians;
    const auto add = [&meridians](double radians) {
        const auto [sine, cosine] = turn_by(radians);
        meridians.sine[meridians.count] = sine;
        meridians.cosine[meridians.count] = cosine;
        ++meridians.count;
    };
    side.oneMeridian = !hasStrips || !zones.hasStrips;
    if (side.oneMeridian) {
        if (!(std::fabs(zones.lam0) <= Meridians::farthest * degree)) {
            return false;
        }
        add(zones.lam0);
        return true;
    }
    // A layout has widths up to 10, and offsets from -239 unless it has no width either.
    if (zones.width < 1 || zones.offset > 720) {
        return false;
    }
    side.width = static_cast<double>(zones.width);
    side.offset = static_cast<double>(zones.offset);
    constexpr double margin = 1e-7;  // degrees: more than what any border takes
    side.sineOfHalf = turn_by((side.width * 0.5 - margin) * degree).sine;
    for (int zone = -1100; zone <= 1100 && meridians.count < Meridians::most; ++zone) {
        const auto meridian = static_cast<double>(zones.width * zone + zones.offset);
        if (std::fabs(meridian) <= Meridians::farthest) {
            meridians.first = meridians.count == 0 ? zone : meridians.first;
            add(meridian * degree);
        }
    }
    return meridians.count > 0;
}

// Of a plane system. Returned: whether the series and the reductions serve.
bool fill_plane(const Side& from, bool isTarget, PlaneSide& side) noexcept {
    using namespace slot;
    const Parameters p = from.parameters;
    side.series = PlaneSeries(from.ellipsoid, p[latitudeOfOrigin]);
    side.hasStrips = from.traits.hasStrips;
    if (!side.series.serves || !are_ordinary(p.first(translationY)) ||
        (side.hasStrips && isTarget && from.zones.has_no_zones()) ||
        !fill_meridians(from.zones, side.hasStrips, side)) {
        return false;
    }
    side.hasScale = has_scale(p);
    side.hasSimilarity = has_similarity(p);
    side.complement = p[decadicComplement];
    side.additiveX = p[additiveX];
    side.additiveY = p[additiveY];
    side.originX = p[originX];
    side.originY = p[originY];
    side.scale = p[planeScale];
    side.shiftX = p[shiftX];
    side.shiftY = p[shiftY];
    side.secondShiftX = p[secondShiftX];
    side.secondShiftY = p[secondShiftY];
    side.rotation = p[planeRotation];
    side.meridianScale = p[meridianScale];
    side.zoneNumber = isTarget ? static_cast<double>(from.zoneNumber) : 0.0;
    // Scales far from 1, where divisions would lose points, and rotations far from 0.
    const auto isScale = [](double scale) { return scale > 0.5 && scale < 2.0; };
    return isScale(side.scale) && (!side.hasStrips || isScale(side.meridianScale)) &&
           std::fabs(side.rotation) < 1.0;
}

// Of a height model. Returned: whether it has a grid that the lookups can stand on.
bool fill_heights(const HeldHeights& from, HeightGrid& grid) noexcept {
    if (from.header == nullptr) {
        return false;
    }
    const HeightModel& model = *from.header;
    const auto axis = [](const GridAxis& each) {
        return HeightAxis{each.smallest, each.largest, each.spacing, each.count};
    };
    grid.longitude = axis(model.longitude);
    grid.latitude = axis(model.latitude);
    grid.values = from.values.data();
    grid.count = static_cast<std::int64_t>(from.values.size());
    if (!serves(model.bessel) || !serves(model.grs80) ||
        grid.count < std::int64_t{grid.longitude.count} + 2) {
        return false;
    }
    for (const HeightAxis& each : {grid.longitude, grid.latitude}) {
        if (!(each.count >= 2 && each.spacing > 1e-6 && std::fabs(each.smallest) <= 360.0 &&
              std::fabs(each.largest) <= 360.0)) {
            return false;
        }
    }
    grid.bessel = EllipsoidTerms(model.bessel);
    grid.grs80 = EllipsoidTerms(model.grs80);
    if (!are_ordinary(model.datum)) {
        return false;
    }
    grid.fromBessel = space_step(model.datum);
    grid.hasFundamentalPoint = model.phiR > 0.0 && model.lamR > 0.0;
    if (grid.hasFundamentalPoint) {
        if (!are_ordinary(std::array{model.phiR, model.lamR, model.xiR, model.etaR, model.zetaR})) {
            return false;
        }
        const auto [aB, bB] = model.bessel;
        const auto [aG, bG] = model.grs80;
        const auto [sinR, cosR] = turn_by(model.phiR);
        const auto [sinLamR, cosLamR] = turn_by(model.lamR);
        const double V = std::sqrt((aG * aG / bG / bG - 1.0) * (cosR * cosR) + 1.0);
        const double Rm = aG * 2.0 / bG * aG / ((V * V) * V + V);
        grid.sinR = sinR;
        grid.cosR = cosR;
        grid.sinLamR = sinLamR;
        grid.cosLamR = cosLamR;
        grid.xi = Rm * model.xiR;
        grid.eta = Rm * model.etaR;
        grid.zeta = model.zetaR;
        grid.dA = aG - aB;
        grid.flattenings = ((aG - bG) / aG - (aB - bB) / aB) * Rm;
    }
    return is_ordinary(grid.fromBessel);
}

// Returned: whether the road can be gone fast.
bool fill(const Side& source, const Side& target, HeightFlags flags, const HeldHeights& heights,
          Plan& plan) noexcept {
    const bool fromSpace = source.kind == ProjectionKind::geocentric;
    const bool toSpace = target.kind == ProjectionKind::geocentric;
    plan.sourceKind = source.kind;
    plan.targetKind = target.kind;
    if (source.kind == ProjectionKind::unknown || target.kind == ProjectionKind::unknown ||
        !serves(source.ellipsoid) || !serves(target.ellipsoid) ||
        (source.traits.isPlane && !fill_plane(source, false, plan.source)) ||
        (target.traits.isPlane && !fill_plane(target, true, plan.target))) {
        return false;
    }
    // Soldner coordinates beside their meridian are up to 0.3 mm off in the reference calculation.
    plan.border = source.kind == ProjectionKind::soldner ? 3e-8 : 3e-10;
    plan.sourceEllipsoid = EllipsoidTerms(source.ellipsoid);
    plan.targetEllipsoid = EllipsoidTerms(target.ellipsoid);

    // As engine/normal_heights.cpp and engine/pipeline.cpp decide.
    const bool same = source.ellipsoidName == target.ellipsoidName;
    const bool unchanged = same && source.bessel && !fromSpace && !toSpace;
    plan.iterates = flags.sourceIsNormal && !source.bessel;
    const bool needBessel = plan.iterates || (!source.bessel && !toSpace);
    const bool throughBessel = !unchanged && (!same || (flags.targetWantsNormal && needBessel));
    const bool computes =
        (!flags.sourceIsNormal && !source.bessel && !target.bessel) || (source.bessel && fromSpace);
    plan.iterates = plan.iterates && throughBessel && flags.targetWantsNormal;
    plan.wantedInBessel = throughBessel && flags.targetWantsNormal && computes;
    plan.givenAtSource = !fromSpace && source.bessel && flags.sourceIsNormal;
    plan.wantedAtSource = !fromSpace && source.bessel && !flags.sourceIsNormal && flags.targetWantsNormal;
    plan.wantedAtTarget = !toSpace && flags.targetWantsNormal && !flags.sourceIsNormal && target.bessel &&
                          (!source.bessel || fromSpace);
    const bool needsHeights = plan.iterates || plan.wantedInBessel || plan.givenAtSource ||
                              plan.wantedAtSource || plan.wantedAtTarget;
    if (needsHeights && !fill_heights(heights, plan.heights)) {
        return false;
    }

    // Between systems of one ellipsoid the way through space moves nothing but the longitudes that it mirrors.
    const bool sameAxes =
        source.ellipsoid.a == target.ellipsoid.a && source.ellipsoid.b == target.ellipsoid.b;
    const bool passes = same && sameAxes && !fromSpace && !toSpace && !plan.iterates && !plan.wantedInBessel;
    plan.throughSpace = !unchanged && !passes;
    plan.mirrors = !unchanged && passes;
    if (plan.throughSpace && !(are_ordinary(source.parameters.subspan<slot::translationY>()) &&
                               are_ordinary(target.parameters.subspan<slot::translationY>()))) {
        return false;
    }
    if (!source.bessel) {
        plan.toBessel = space_step(source.parameters);
    }
    if (!same) {
        plan.toTarget =
            target.bessel ? plan.toBessel : followed_by(plan.toBessel, space_step(target.parameters));
    }
    return !plan.throughSpace || (is_ordinary(plan.toBessel) && is_ordinary(plan.toTarget));
}

}  // namespace

FastRoad::FastRoad(const Side& source, const Side& target, HeightFlags flags, const HeldHeights& heights) {
    auto made = std::make_unique<Plan>();
    if (fill(source, target, flags, heights, *made)) {
        plan = std::move(made);
    }
}

}  // namespace lagestatus::fast
