// The stages of the fast calculation, over whole blocks, for any width of lanes. A stage reads and writes columns; what
// it cannot do marks the point as outside.
#pragma once

#include "fast/block.h"
#include "fast/gauss_krueger.h"
#include "fast/geocentric.h"
#include "fast/lanes.h"
#include "fast/plan.h"
#include "fast/soldner.h"

namespace lagestatus::fast {

template <typename Real>
struct Kernel {
    using Mask = typename Real::Mask;

    // Carries the points of a block. Given: count, at most blockSize; the columns given, up to the next multiple of the
    // lanes' size. Returned: reached and normal where outside is 0.
    static void carry(const Plan& plan, Block& block, int count) noexcept {
        const auto each = [&block, count](auto stage) {
            for (int at = 0; at < count; at += Real::size) {
                stage(at, block);
            }
        };
        block.zoneGiven = block.zoneReached = noZone;
        each([](int at, Block& points) {
            Real(0.0).store(points.outside + at);
            Real(0.0).store(points.heightless + at);
            Real::load(points.given.third + at).store(points.normal + at);
        });
        switch (plan.sourceKind) {
            case ProjectionKind::gaussKrueger:
                each([&plan](int at, Block& points) { from_plane<false>(plan.source, points, at); });
                break;
            case ProjectionKind::soldner:
                each([&plan](int at, Block& points) { from_plane<true>(plan.source, points, at); });
                break;
            case ProjectionKind::geographic:
                each([](int at, Block& points) { from_degrees(points, at); });
                break;
            default:
                break;
        }
        if (plan.givenAtSource || plan.wantedAtSource) {
            each([&plan](int at, Block& points) {
                normal_height_of_place(plan, points, at, plan.givenAtSource);
            });
        }
        if (plan.throughSpace) {
            each([&plan](int at, Block& points) { through_space(plan, points, at); });
        } else if (plan.mirrors) {
            each([](int at, Block& points) {
                magnitude(Real::load(points.cosLam + at)).store(points.cosLam + at);
            });
        }
        if (plan.wantedAtTarget) {
            each([&plan](int at, Block& points) { normal_height_of_place(plan, points, at, false); });
        }
        switch (plan.targetKind) {
            case ProjectionKind::gaussKrueger:
                each([&plan](int at, Block& points) { to_plane<false>(plan, points, at); });
                break;
            case ProjectionKind::soldner:
                each([&plan](int at, Block& points) { to_plane<true>(plan, points, at); });
                break;
            case ProjectionKind::geographic:
                each([](int at, Block& points) { to_degrees(points, at); });
                break;
            default:
                break;
        }
        block.leavesSome = false;
        each([](int at, Block& points) {
            const Mask stays =
                (Real::load(points.outside + at) <= 0.0) & (Real::load(points.heightless + at) <= 0.0);
            points.leavesSome = points.leavesSome || (~stays).any();
        });
    }

  private:
    [[gnu::always_inline]] static void mark(double* column, const Mask& inside) noexcept {
        const Real before = Real::load(column);
        select(inside, before, all_bits()).store(column);
    }
    [[gnu::always_inline]] static Real all_bits() noexcept {
        Real bits = 0.0;
        for (auto& part : bits.part) {
            part = (typename Real::Vector)(part == typename Real::Vector{});
        }
        return bits;
    }

    [[gnu::always_inline]] static HighPlace<Real> load_place(const Block& block, int at) noexcept {
        return {{Real::load(block.sinPhi + at), Real::load(block.cosPhi + at)},
                {Real::load(block.sinLam + at), Real::load(block.cosLam + at)},
                Real::load(block.h + at)};
    }
    [[gnu::always_inline]] static void store_place(Block& block, int at,
                                                   const HighPlace<Real>& place) noexcept {
        place.phi.sine.store(block.sinPhi + at);
        place.phi.cosine.store(block.cosPhi + at);
        place.lam.sine.store(block.sinLam + at);
        place.lam.cosine.store(block.cosLam + at);
        place.h.store(block.h + at);
    }

    // Towards zero, for magnitudes below 2^51.
    [[gnu::always_inline]] static Real truncated(const Real& value) noexcept {
        const Real positive = magnitude(value);
        const Real nearest = nearest_integer(positive);
        const Real whole = select(nearest > positive, nearest - 1.0, nearest);
        return select(value < 0.0, -whole, whole);
    }

    // Degrees to directions.
    [[gnu::always_inline]] static void from_degrees(Block& block, int at) noexcept {
        const Real phi = Real::load(block.given.first + at);
        const Real lam = Real::load(block.given.second + at);
        const Real h = Real::load(block.given.third + at);
        mark(block.outside + at, (magnitude(phi) < 89.0) & (magnitude(lam) < 180.0) & is_height(h));
        store_place(block, at, {direction_of_latitude(phi * radiansOfDegree), direction_of_degrees(lam), h});
    }

    // Beyond these the reference calculation may fail; also false where there is no number.
    [[gnu::always_inline]] static Mask is_height(const Real& h) noexcept {
        return (h > -100e3) & (h < 10000e3);
    }

    [[gnu::always_inline]] static void to_degrees(Block& block, int at) noexcept {
        const HighPlace<Real> place = load_place(block, at);
        (arc_of_latitude(place.phi.sine, place.phi.cosine) * degreesOfRadian).store(block.reached.first + at);
        (arc(place.lam.sine, place.lam.cosine) * degreesOfRadian).store(block.reached.second + at);
        place.h.store(block.reached.third + at);
    }

    // Most points lie in the strip of those before them. That strip's number is kept from one stretch of lanes to the
    // next, and the points are seen to be well inside the strip: then it is the one that they would be found to have.
    // NaN where there is no such strip: no point lies inside it.
    static constexpr double noZone = __builtin_nan("");
    static constexpr double farthestZone = 1e6;  // beyond all that eastings lead to

    // The direction of the central meridian of a strip that meridian_of below has left, or NaN.
    [[gnu::always_inline]] static Direction<Real> meridian_of(const PlaneSide& side, double zone) noexcept {
        if (side.oneMeridian) {
            return {side.meridians.sine[0], side.meridians.cosine[0]};
        }
        if (zone != zone) {
            return {noZone, noZone};
        }
        const int number = static_cast<int>(zone - side.meridians.first);  // 0 to count - 1
        return {side.meridians.sine[number], side.meridians.cosine[number]};
    }

    // The directions of central meridians by their strips' numbers. Inside: those that the table has. Usual: the strip
    // of the first point; of strips below 0, which reach further to one side, and of those beyond 90 degrees, none.
    [[gnu::always_inline]] static Direction<Real> meridian_of(const PlaneSide& side, const Real& zone,
                                                              Mask& inside, double& usual) noexcept {
        usual = noZone;
        if (side.oneMeridian) {
            inside = magnitude(zone) < farthestZone;
            usual = zone.part[0][0] >= 0.0 ? zone.part[0][0] : noZone;
            return {side.meridians.sine[0], side.meridians.cosine[0]};
        }
        const Real last = side.meridians.count - 1;
        const Real index = zone - side.meridians.first;
        inside = (index >= 0.0) & (index <= last);
        double numbers[Real::size];
        double sine[Real::size];
        double cosine[Real::size];
        select(inside, index, Real(0.0)).store(numbers);
        for (int lane = 0; lane < Real::size; ++lane) {
            const int number = static_cast<int>(numbers[lane]);  // 0 to count - 1
            sine[lane] = side.meridians.sine[number];
            cosine[lane] = side.meridians.cosine[number];
        }
        const double first = numbers[0] + side.meridians.first;
        usual = first >= 0.0 && cosine[0] >= 0.0 ? first : noZone;
        return {Real::load(sine), Real::load(cosine)};
    }

    // Plane coordinates to directions: engine/plane_systems.h and geodesy/plane_reductions.h, step by step.
    template <bool isSoldner>
    [[gnu::always_inline]] static void from_plane(const PlaneSide& side, Block& block, int at) noexcept {
        Real X = Real::load(block.given.first + at);
        Real Y = Real::load(block.given.second + at);
        const Real h = Real::load(block.given.third + at);
        // Beyond it no strip of the table leads, and no step loses its meaning.
        constexpr double farthest = 1e9;
        Mask inside = (magnitude(X) < farthest) & (magnitude(Y) < farthest) & is_height(h);
        if (side.hasScale) {
            Y = (Y - side.originY) * side.scale + side.originY;
            X = (X - side.originX) * side.scale + side.originX;
        }
        X = X - side.additiveX;
        Y = Y - side.additiveY;
        if (side.complement != 0.0) {
            Y = select(Y > side.complement * 0.5, Y - side.complement, Y);
            X = select(X > side.complement * 0.5, X - side.complement, X);
        }
        if (side.hasSimilarity) {
            const double r = side.rotation;
            const Real dY = Y - side.shiftY;
            const Real dX = X - side.shiftX;
            const double q = 1.0 / (r * r + 1.0);
            X = (dY * r + dX) * q + side.secondShiftX;
            Y = (dY - dX * r) * q + side.secondShiftY;
        }
        Direction<Real> meridian = {side.meridians.sine[0], side.meridians.cosine[0]};
        if (side.hasStrips) {
            const Real easting = Y + side.additiveY;
            Real zone = block.zoneGiven;
            const Real within = easting - zone * 1e6;
            if ((~((within > 1.0) & (within < 999999.0))).any()) {
                zone = truncated(easting / 1e6);
                Mask known;
                meridian = meridian_of(side, zone, known, block.zoneGiven);
                inside = inside & known;
            } else {
                meridian = meridian_of(side, block.zoneGiven);
            }
            Y = Y - zone * 1e6;
            if (side.meridianScale != 1.0) {
                X = X / side.meridianScale;
                Y = Y / side.meridianScale;
            }
        }
        Mask mapped;
        Place<Real> place;
        if constexpr (isSoldner) {
            place = soldner_to_geographic(side.series, Plane<Real>{X, Y}, mapped);
        } else {
            place = krueger_to_geographic(side.series, Plane<Real>{X, Y}, mapped);
        }
        mark(block.outside + at, inside & mapped);
        store_place(block, at, {place.phi, turned(meridian, place.dLam), h});
    }

    template <bool isSoldner>
    [[gnu::always_inline]] static void to_plane(const Plan& plan, Block& block, int at) noexcept {
        const PlaneSide& side = plan.target;
        const HighPlace<Real> place = load_place(block, at);
        Mask inside = place.h >= place.h;
        Direction<Real> meridian = {side.meridians.sine[0], side.meridians.cosine[0]};
        Real zone = side.zoneNumber;
        Direction<Real> dLam = turned_back(place.lam, meridian);
        if (!side.oneMeridian) {
            meridian = meridian_of(side, block.zoneReached);
            dLam = turned_back(place.lam, meridian);
            zone = block.zoneReached;
            if ((~((magnitude(dLam.sine) < side.sineOfHalf) & (dLam.cosine > 0.0))).any()) {
                const Real lam = arc(place.lam.sine, place.lam.cosine) * degreesOfRadian;
                const Real strip = (lam - side.offset) / side.width + 0.5;
                zone = truncated(strip);
                meridian = meridian_of(side, zone, inside, block.zoneReached);
                const Real beyond = magnitude(strip - nearest_integer(strip));
                inside = inside & (beyond * side.width > plan.border);
                dLam = turned_back(place.lam, meridian);
            }
        }
        Mask mapped;
        Plane<Real> plane;
        if constexpr (isSoldner) {
            plane = geographic_to_soldner(side.series, Place<Real>{place.phi, dLam}, mapped);
        } else {
            plane = geographic_to_krueger(side.series, Place<Real>{place.phi, dLam}, mapped);
        }
        Real X = plane.northing;
        Real Y = plane.easting;
        if (side.hasStrips) {
            X = X * side.meridianScale;
            Y = Y * side.meridianScale + zone * 1e6;
        }
        if (side.hasSimilarity) {
            const Real dX = X - side.secondShiftX;
            const Real dY = Y - side.secondShiftY;
            Y = dY + side.shiftY + side.rotation * dX;
            X = dX + side.shiftX - side.rotation * dY;
        }
        if (side.complement != 0.0) {
            const double d = side.complement;
            constexpr double nearest = 0.01;  // metres, to where it begins: far beyond what may differ
            inside = inside & (magnitude(X) > nearest) & (magnitude(X + d * 0.5) > nearest) &
                     (magnitude(Y) > nearest) & (magnitude(Y + d * 0.5) > nearest);
            Y = select((Y < 0.0) & (-Y < d * 0.5), Y + d, Y);
            X = select((X < 0.0) & (-X < d * 0.5), X + d, X);
        }
        Y = Y + side.additiveY;
        X = X + side.additiveX;
        if (side.hasScale) {
            Y = (Y - side.originY) / side.scale + side.originY;
            X = (X - side.originX) / side.scale + side.originX;
        }
        mark(block.outside + at, inside & mapped);
        X.store(block.reached.first + at);
        Y.store(block.reached.second + at);
        place.h.store(block.reached.third + at);
    }

    [[gnu::always_inline]] static SpacePoint<Real> carried(const SpaceStep& step,
                                                           const SpacePoint<Real>& p) noexcept {
        const auto& m = step.matrix;
        return {m[0][0] * p.x + m[0][1] * p.y + (m[0][2] * p.z + step.shift[0]),
                m[1][0] * p.x + m[1][1] * p.y + (m[1][2] * p.z + step.shift[1]),
                m[2][0] * p.x + m[2][1] * p.y + (m[2][2] * p.z + step.shift[2])};
    }

    // From the source's ellipsoid, or its geocentric coordinates, to the target's, with the normal height that the
    // Bessel datum gives; engine/pipeline.cpp and engine/normal_heights.cpp.
    [[gnu::always_inline]] static void through_space(const Plan& plan, Block& block, int at) noexcept {
        const bool fromSpace = plan.sourceKind == ProjectionKind::geocentric;
        const Real given = Real::load(block.given.third + at);
        SpacePoint<Real> point = {Real::load(block.given.first + at), Real::load(block.given.second + at),
                                  given};
        HighPlace<Real> place;
        if (!fromSpace) {
            place = load_place(block, at);
            point = to_geocentric(plan.sourceEllipsoid, place);
        }
        Mask inside = point.x >= point.x;
        if (plan.wantedInBessel || plan.iterates) {
            constexpr double tolHeight = 0.001;  // metres
            constexpr int maxPasses = 20;
            Mask open;  // lanes that have not settled
            for (int pass = 1;; ++pass) {
                Mask found;
                const HighPlace<Real> onBessel =
                    from_geocentric(plan.heights.bessel, carried(plan.toBessel, point), found);
                Mask has;
                const Real zeta = anomaly(plan, onBessel, has);
                inside = inside & found;
                if (!plan.iterates) {
                    (onBessel.h - zeta).store(block.normal + at);
                    mark(block.heightless + at, has);
                    break;
                }
                const Real missing = given - onBessel.h + zeta;
                // So near to the tolerance the reference calculation might make a pass more, or less.
                inside = inside & has & (magnitude(magnitude(missing) - tolHeight) > 1e-6);
                const Mask goesOn = inside & (magnitude(missing) > tolHeight);
                open = pass == 1 ? goesOn : open & goesOn;
                if (!open.any()) {
                    break;
                }
                if (pass == maxPasses) {
                    inside = inside & ~open;
                    break;
                }
                place.h = select(open, place.h + missing, place.h);
                point = to_geocentric(plan.sourceEllipsoid, place);
            }
        }
        point = carried(plan.toTarget, point);
        if (plan.targetKind == ProjectionKind::geocentric) {
            point.x.store(block.reached.first + at);
            point.y.store(block.reached.second + at);
            point.z.store(block.reached.third + at);
            constexpr double farthest = 1e8;
            inside = inside & (magnitude(point.x) < farthest) & (magnitude(point.y) < farthest) &
                     (magnitude(point.z) < farthest);
        } else {
            Mask found;
            store_place(block, at, from_geocentric(plan.targetEllipsoid, point, found));
            inside = inside & found;
        }
        mark(block.outside + at, inside);
    }

    // A normal height by the anomaly of the place that the block is at: given, it becomes ellipsoidal.
    [[gnu::always_inline]] static void normal_height_of_place(const Plan& plan, Block& block, int at,
                                                              bool isGiven) noexcept {
        HighPlace<Real> place = load_place(block, at);
        Mask inside;
        const Real zeta = anomaly(plan, place, inside);
        if (isGiven) {
            (place.h + zeta).store(block.h + at);
            mark(block.outside + at, inside);
        } else {
            (place.h - zeta).store(block.normal + at);
            mark(block.heightless + at, inside);
        }
    }

    // Degrees on one axis of the grid, to the number of the value before and the share of the way to the next.
    [[gnu::always_inline]] static Real index_on(const HeightAxis& axis, double border, const Real& degrees,
                                                Real& share, Mask& inside) noexcept {
        const Real index = truncated((degrees - axis.smallest) / axis.spacing);
        share = (degrees - index * axis.spacing - axis.smallest) / axis.spacing;
        const double lastCell = axis.count - 2;
        const double edge = border / axis.spacing;
        inside = (degrees > axis.smallest + border) & (degrees < axis.largest - border) & (index >= 0.0) &
                 (index <= lastCell) & (share > edge) & (share < 1.0 - edge);
        return select(inside, index, Real(0.0));
    }

    // The height anomaly of a place on the Bessel ellipsoid: heights/height_anomaly.cpp.
    [[gnu::always_inline]] static Real anomaly(const Plan& plan, const HighPlace<Real>& onBessel,
                                               Mask& inside) noexcept {
        const HeightGrid& grid = plan.heights;
        const SpacePoint<Real> point =
            to_geocentric(grid.bessel, HighPlace<Real>{onBessel.phi, onBessel.lam, 0.0});
        const HighPlace<Real> place = from_geocentric(grid.grs80, carried(grid.fromBessel, point), inside);
        Real s;
        Real t;
        Mask onAxis;
        const Real column = index_on(grid.longitude, plan.border,
                                     arc(place.lam.sine, place.lam.cosine) * degreesOfRadian, s, onAxis);
        inside = inside & onAxis;
        const Real row =
            index_on(grid.latitude, plan.border,
                     arc_of_latitude(place.phi.sine, place.phi.cosine) * degreesOfRadian, t, onAxis);
        inside = inside & onAxis;
        double columns[Real::size];
        double rows[Real::size];
        column.store(columns);
        row.store(rows);
        double corners[4][Real::size];
        const std::int64_t width = grid.longitude.count;
        for (int lane = 0; lane < Real::size; ++lane) {
            // Both below the axis' count: no overflow.
            const std::int64_t first =
                static_cast<std::int64_t>(rows[lane]) * width + static_cast<std::int64_t>(columns[lane]);
            const std::int64_t from = first + width + 1 < grid.count ? first : grid.count - width - 2;
            const double* const values = grid.values + from;
            corners[0][lane] = from == first ? values[0] : __builtin_nan("");
            corners[1][lane] = values[1];
            corners[2][lane] = values[width];
            corners[3][lane] = values[width + 1];
        }
        const Real g00 = Real::load(corners[0]);
        const Real g10 = Real::load(corners[1]);
        const Real g01 = Real::load(corners[2]);
        const Real g11 = Real::load(corners[3]);
        Real zeta = ((((g11 - g10) - g01) + g00) * t + (g10 - g00)) * s + ((g01 - g00) * t + g00);
        if (grid.hasFundamentalPoint) {
            const auto [sinG, cosG] = place.phi;
            const Direction<Real> dLam = turned_back(place.lam, Direction<Real>{grid.sinLamR, grid.cosLamR});
            const Real cosPsi = cosG * grid.cosR * dLam.cosine + grid.sinR * sinG;
            const Real deflections =
                dLam.sine * cosG * grid.eta + (sinG * grid.cosR - grid.sinR * cosG * dLam.cosine) * grid.xi;
            const Real dSin = sinG - grid.sinR;
            zeta = zeta - (grid.zeta * cosPsi - deflections + grid.dA * (cosPsi - 1.0) +
                           grid.flattenings * ((cosPsi - 1.0) * (grid.sinR * grid.sinR) + dSin * dSin));
        }
        inside = inside & (magnitude(zeta) < 1e6);  // and a number
        return zeta;
    }
};

}  // namespace lagestatus::fast
