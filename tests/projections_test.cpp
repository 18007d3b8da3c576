// The projections, and the reductions and zones around them, against independent answers.
#include "projections/projections.h"

#include <GeographicLib/CassiniSoldner.hpp>
#include <GeographicLib/Geodesic.hpp>
#include <GeographicLib/TransverseMercatorExact.hpp>
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <random>

#include "base/angles.h"
#include "base/int_cast.h"
#include "geodesy/plane_reductions.h"
#include "projections_as_written.h"
#include "support.h"

using namespace testing_support;
using namespace lagestatus;

namespace {

using Pair = std::array<double, 2>;
constexpr Pair unwritten = {untouched, untouched};

// One call of any of the four: the ellipsoid's axes, latitude and longitude or y and x, the origin, and tolerances.
using Call = std::array<double, 10>;

constexpr const char* routines[] = {"geo_to_gauss_krueger", "gauss_krueger_to_geo", "geo_to_soldner",
                                    "soldner_to_geo"};

struct Outcome {
    int status;
    std::array<std::uint64_t, 2> bits;
    bool operator==(const Outcome&) const = default;
};

Outcome outcome(int status, const Pair& res) {
    return {status, std::bit_cast<std::array<std::uint64_t, 2>>(res)};
}

// The library's routine of this name; the origin's series as far as the pipeline has them.
Outcome run(std::string_view name, const Call& c) {
    const auto& [a, b, first, second, phi0, lam0, coord, angle, length, tolSeries] = c;
    const ArcSeries series({a, b}, phi0, {coord, angle, length, tolSeries}, name != routines[0]);
    PlanePoint plane = {second, first};
    LatLon place = {first, second};
    if (name.starts_with("geo")) {
        plane = {untouched, untouched};
        const auto routine = name == routines[0] ? geo_to_gauss_krueger : geo_to_soldner;
        const int status = routine(series, place, lam0, plane);
        return outcome(status, {plane.easting, plane.northing});
    }
    place = {untouched, untouched};
    const auto routine = name == routines[1] ? gauss_krueger_to_geo : soldner_to_geo;
    const int status = routine(series, plane, lam0, place);
    return outcome(status, {place.phi, place.lam});
}

// The one that keeps nothing.
Outcome run_as_written(std::string_view name, const Call& c) {
    const auto& [a, b, first, second, phi0, lam0, coord, angle, length, series] = c;
    Pair r = unwritten;
    int status = 0;
    if (name == routines[0]) {
        status = as_written::geo_to_gauss_krueger(a, b, first, second, phi0, lam0, r, coord, series);
    } else if (name == routines[1]) {
        status = as_written::gauss_krueger_to_geo(a, b, first, second, phi0, r, angle, series);
        r[1] += status == 0 ? lam0 : 0;
    } else {
        const auto soldner = name == routines[2] ? as_written::geo_to_soldner : as_written::soldner_to_geo;
        status = soldner(a, b, first, second, phi0, lam0, r, angle, length, series);
    }
    return outcome(status, r);
}

TEST(Projections, AgreeWithGeographicLib) {
    // What the formulas reach with the pipeline's tolerances, in metres on the ground; docs/accuracy.md.
    Deviations krueger("Gauss-Krueger", 0.1e-6), kruegerBack("Gauss-Krueger, inverse", 5e-6);
    Deviations x("Soldner's x", 0.1e-6), latitude("Soldner, inverse: latitude", 5e-6);
    // y and longitude of Soldner: near the meridian the arc cosine loses digits.
    constexpr double nearMeridian = 0.05;  // degrees
    Deviations near("Soldner near the meridian", 0.3e-3), far("Soldner", 0.05e-3);
    // Radians.
    Deviations kruegerThereAndBack("Gauss-Krueger there and back", 1e-12);
    Deviations soldnerThereAndBack("Soldner there and back", 1e-10);

    const double lat0 = 50;
    const double lon0 = 9;
    std::vector<double> distances = {0, 1e-5, 1e-4, 0.001, 0.0028, 0.00287, 0.003, 0.004, 0.01, 0.02, 0.04};
    for (double distance = nearMeridian; distance < 4.01; distance += 0.113) {
        distances.push_back(distance);
    }
    for (const NamedEllipsoid& e : ellipsoids) {
        const double a = e.a;
        const ArcSeries fromEquator(e.axes(), 0, {}, true);
        const ArcSeries fromOrigin(e.axes(), lat0 * degree, {}, true);
        const double lam0 = lon0 * degree;
        const GeographicLib::TransverseMercatorExact mercator(e.a, 1 / e.inverseFlattening, 1.0);
        const GeographicLib::Geodesic geodesic(e.a, 1 / e.inverseFlattening);
        const GeographicLib::CassiniSoldner cassini(lat0, lon0, geodesic);
        for (double lat = 46; lat <= 56; lat += 0.5) {
            for (std::size_t number = 0; number < 2 * distances.size(); ++number) {
                const double distance = distances[number / 2] * (number % 2 == 0 ? 1 : -1);
                const double lon = lon0 + distance;
                const LatLon given = {lat * degree, lon * degree};
                const double alongParallel = a * std::cos(given.phi);
                double easting = 0, northing = 0;
                PlanePoint plane;
                LatLon back;

                mercator.Forward(lon0, lat, lon, easting, northing);
                ASSERT_EQ(geo_to_gauss_krueger(fromEquator, given, lam0, plane), 0);
                krueger.add({plane.easting - easting, plane.northing - northing});
                ASSERT_EQ(gauss_krueger_to_geo(fromEquator, plane, lam0, back), 0);
                kruegerThereAndBack.add({back.phi - given.phi, back.lam - given.lam});
                ASSERT_EQ(gauss_krueger_to_geo(fromEquator, {northing, easting}, 0, back), 0);
                kruegerBack.add({(back.phi - given.phi) * a, (back.lam - distance * degree) * alongParallel});

                Deviations& yOrLongitude = std::fabs(distance) < nearMeridian ? near : far;
                cassini.Forward(lat, lon, easting, northing);
                ASSERT_EQ(geo_to_soldner(fromOrigin, given, lam0, plane), 0);
                yOrLongitude.add({plane.easting - easting});
                x.add({plane.northing - northing});
                ASSERT_EQ(soldner_to_geo(fromOrigin, plane, lam0, back), 0);
                soldnerThereAndBack.add({back.phi - given.phi, back.lam - given.lam});
                ASSERT_EQ(soldner_to_geo(fromOrigin, {northing, easting}, lam0, back), 0);
                latitude.add({(back.phi - given.phi) * a});
                yOrLongitude.add({(back.lam - given.lam) * alongParallel});
            }
        }
    }
}

TEST(Projections, HoldEveryBitOfTheFormulas) {
    std::mt19937_64 random(1912);  // any number: the cases must repeat
    const auto between = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    const auto power = [&between](double low, double high) { return std::pow(10, between(low, high)); };
    constexpr double hostile[] = {
        0,        -0.0,      1,          -1,      1.5707963267948966, 3.2, 1e-300, 5e-324, 1e300, -1e300,
        infinity, -infinity, notANumber, 6378137, 199.99999,          200, 1e10,   0.9,    5e-5,  1e-12,
        99};
    const auto [coord, angle, length, series] = Tolerances();
    for (int number = 0; number < 6000; ++number) {
        const bool wide = number % 3 == 1;
        const auto [a, b] = ellipsoids[static_cast<std::size_t>(number) % 3].axes();
        const double near = number % 8 == 0 ? 1e-3 : 1;  // the branches beside the meridian
        const double phi0 = number % 5 < 2 ? 0 : between(-1.2, 1.2);
        const double phi = wide ? between(-1.57, 1.57) : between(0.8, 0.98);
        const double l = near * (wide ? between(-1.5, 1.5) : between(-0.07, 0.07));
        const double y = near * (wide ? between(-9e6, 9e6) : between(-3e5, 3e5));
        const double x = wide ? between(-1e7, 1e7) : between(5e6, 6.2e6);
        for (const std::string_view name : routines) {
            const bool geo = name.starts_with("geo");
            Call call = {a,     b,      geo ? phi : y, geo ? l + 0.1 : x - phi0 * a, phi0, 0.1, coord,
                         angle, length, series};
            if (number % 12 == 4) {  // loops of every length
                call[1] = a * std::sqrt(1 - between(0, 0.9));
                call[6] = power(-13, 2), call[7] = power(-17, 1), call[8] = power(-10, 3),
                call[9] = power(-17, 1);
            }
            for (auto count = number % 6 == 2 && number < 1200 ? random() % 3 + 1 : 0; count > 0; --count) {
                call[random() % call.size()] = hostile[random() % std::size(hostile)];
            }
            if (number % 600 == 8) {  // an ellipsoid of the smallest doubles
                call[0] *= 1e-286, call[1] *= 1e-286;
            }
            ASSERT_EQ(run(name, call), run_as_written(name, call)) << name << ::testing::PrintToString(call);
        }
    }
}

TEST(Projections, FailWithTheStatusOfTheirLoop) {
    std::map<int, int> met;
    for (const Row& row : rows("projection_statuses.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        const auto number = [&row](std::size_t field) { return std::stod(row[field]); };
        const Call call = {6378137, 6378137 * number(1), number(2), number(3), number(4),
                           0,       number(5),           number(5), number(6), number(7)};
        const Outcome reached = run(row[0], call);
        EXPECT_EQ(reached, run_as_written(row[0], call));
        EXPECT_EQ(reached.status, std::stoi(row[8]));
        EXPECT_EQ(reached == outcome(reached.status, unwritten), reached.status != 0);
        ++met[reached.status];
    }
    EXPECT_EQ(met.size(), 1U + 8 + 5 + 5 + 3) << "every status of the four routines, and success";
}

TEST(Truncation, IsDefinedForEveryDouble) {
    const std::pair<double, std::optional<int>> cases[] = {
        {2.999, 2},          {-2.999, -2},
        {-0.5, 0},           {2147483647.9, 2147483647},
        {2147483648.0, {}},  {-2147483648.9, -2147483647 - 1},
        {-2147483649.0, {}}, {1e300, {}},
        {notANumber, {}},    {-infinity, {}}};
    for (const auto& [value, expected] : cases) {
        EXPECT_EQ(truncated(value), expected) << value;
    }
}

TEST(PlaneReductions, GoThereAndBack) {
    for (const Row& row : rows("plane_reductions.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        const ParameterArray p = parameters(row[0]);
        const auto number = [&row](std::size_t field) { return std::stod(row[field]); };
        EXPECT_EQ(has_more_than_constants(p), row[7] == "more");
        const PlanePoint inside = reduce_to_projection(p, {number(2), number(1)});
        EXPECT_DOUBLE_EQ(inside.easting, number(3));
        EXPECT_DOUBLE_EQ(inside.northing, number(4));
        const PlanePoint written = reduce_to_system(p, {number(4), number(3)});
        EXPECT_DOUBLE_EQ(written.easting, number(5));
        EXPECT_DOUBLE_EQ(written.northing, number(6));
    }
}

}  // namespace
