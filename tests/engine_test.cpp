// The road of a point, against independent answers.
#include <GeographicLib/Geocentric.hpp>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>
#include <sstream>
#include <tuple>

#include "base/angles.h"
#include "geodesy/geocentric.h"
#include "support.h"

using namespace testing_support;
using namespace lagestatus;

namespace {

constexpr double radian = 180 / std::numbers::pi;  // degrees, for GeographicLib

TEST(Geocentric, AgreesWithGeographicLib) {
    // Rounding of coordinates of 6.4e6 m.
    constexpr double tolForward = 5e-9;
    // The iteration ends when a step is below 0.0001 m; the step it leaves out is smaller by e2, 1/150. Metres.
    constexpr double tolInverse = 1e-6;
    Deviations forward("there", tolForward), inverse("back", tolInverse);
    for (const NamedEllipsoid& e : ellipsoids) {
        const GeographicLib::Geocentric truth(e.a, 1 / e.inverseFlattening);
        for (double lat = -89; lat <= 89; lat += 1) {
            for (double lon = -89; lon <= 89; lon += 8.9) {
                for (const double h : {-5000.0, 0.0, 3000.0, 400e3}) {
                    double x = 0, y = 0, z = 0;
                    truth.Forward(lat, lon, h, x, y, z);
                    const Geographic given = {lat / radian, lon / radian, h};
                    const Geocentric p = geographic_to_geocentric(e.axes(), given);
                    Geographic g;
                    ASSERT_EQ(geocentric_to_geographic(e.axes(), {x, y, z}, g), 0)
                        << lat << ' ' << lon << ' ' << h;
                    forward.add({p.x - x, p.y - y, p.z - z});
                    inverse.add({(g.phi - given.phi) * e.a, (g.lam - given.lam) * e.a, g.h - h});
                }
            }
        }
    }
}

TEST(Geocentric, SpecialPlaces) {
    const Ellipsoid e = {6377397.155, 6356078.962818};
    const Ellipsoid sphere = {6370000.0, 6370000.0};
    const Geographic unwritten = {untouched, untouched, untouched};
    const std::tuple<Ellipsoid, Geocentric, Geographic> places[] = {
        {e, {e.a + 10, 0, 0}, {0, 0, 10}},
        {sphere, {0, 6370100.0, 0}, {0, std::asin(1.0), 100}},
        {e, {-3000000, 4000000, 0}, {0, std::asin(0.8), 5000000 - e.a}},  // the sign of x is not used
        {e, {0, 0, e.b}, unwritten},
        {e, {0, 0, 0}, unwritten},
        {e, {1e-200, 1e-200, 6e6}, unwritten},  // p underflows
        {e, {0, 2.5e-162, 0}, unwritten},       // Y / p exceeds 1
        {e, {1e200, 0, 0}, unwritten},          // p overflows
        {e, {notANumber, 1, 1}, unwritten},
        {e, {4e6, infinity, 1}, unwritten},
        {e, {4e6, 1, -infinity}, unwritten},
        {{0, 0}, {4e6, 1, 4e6}, unwritten},
        {e, {1000, 0, 130000}, unwritten},  // the 20th update still moves it; at z = 135000 it does not
    };
    for (const auto& [ellipsoid, point, expected] : places) {
        SCOPED_TRACE(::testing::Message() << point.x << ' ' << point.y << ' ' << point.z);
        Geographic reached = unwritten;
        const bool refused = expected.phi == untouched;
        EXPECT_EQ(geocentric_to_geographic(ellipsoid, point, reached), refused ? 90 : 0);
        EXPECT_EQ(reached.phi, expected.phi);
        EXPECT_EQ(reached.lam, expected.lam);
        EXPECT_NEAR(reached.h, expected.h, 1e-9);
    }
    Geographic reached;
    EXPECT_EQ(geocentric_to_geographic(e, {1000, 0, 135000}, reached), 0);
    // 100 degrees east comes back at 80.
    ASSERT_EQ(geocentric_to_geographic(e, geographic_to_geocentric(e, {0.9, 100 / radian, 50}), reached), 0);
    EXPECT_NEAR(reached.lam, 80 / radian, 1e-15);
    // No square overflows on the way there.
    EXPECT_DOUBLE_EQ(geographic_to_geocentric({1e200, 1e200}, {std::asin(0.5), 0, 0}).z, 0.5e200);
}

TEST(Pipeline, GoesItsRoads) {
    constexpr double tol = 1e-6;  // metres and degrees; written in the rows to fewer digits
    const DataDirectory model;
    const DataDirectory none;
    const auto words = [](const std::string& text) {
        std::istringstream stream(text);
        return Row(std::istream_iterator<std::string>(stream), {});
    };
    for (const Row& row : rows("roads.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        Road road = {.directory = row[0] == "sample" ? SAMPLE_DIR : none.path()};
        if (row[0].find(' ') != std::string::npos) {
            std::vector<std::string> lines = good_model();
            lines[std::stoul(row[0]) - 1] = row[0].substr(row[0].find(' ') + 1);
            model.write("hoehe.ini", "0\n" + join(lines));
            road.directory = model.path();
        }
        road.sourceKind = row[1], road.sourceEllipsoid = row[2], road.source = parameters(row[3]);
        road.targetKind = row[4], road.targetEllipsoid = row[5], road.target = parameters(row[6]);
        const Row flags = words(row[7]), point = words(row[8]), expected = words(row[10]);
        road.sourceFlag = std::stoi(flags[0]), road.targetFlag = std::stoi(flags[1]);
        std::transform(point.begin(), point.end(), road.point.begin(),
                       [](const std::string& text) { return std::stod(text); });
        EXPECT_EQ(road.run(), std::stoi(row[9]));
        for (std::size_t i = 0; i < 4; ++i) {
            if (expected[i] != "*") {
                EXPECT_NEAR(road.point[i], std::stod(expected[i]), expected[i] == "0" ? 0 : tol);
            }
        }
        EXPECT_EQ(
            std::all_of(road.point.begin(), road.point.end() - 1, [](double value) { return value == 0; }),
            std::all_of(expected.begin(), expected.end() - 1, [](const auto& text) { return text == "0"; }));
    }
}

TEST(Pipeline, FindsTheStripOfTheTarget) {
    Road road;
    road.targetKind = "Gauss-Krueger";
    for (const Row& row : rows("strips.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        road.sourceKind = row[0], road.source = parameters("1=" + row[1]);
        road.target = parameters("9=500000 1=" + row[4]);
        road.point = {std::stod(row[2]), std::stod(row[3]), 7, untouched};
        road.zone = std::stoi(row[5]);
        ASSERT_EQ(road.run(), std::stoi(row[6]));
        EXPECT_EQ(std::floor(road.point[1] / 1e6), std::stod(row[7]));
    }
}

TEST(Sample, AgreesWithProj) {
    constexpr double tol = 10e-6;         // metres; the promise of the sample data
    constexpr double tolSoldner = 50e-6;  // what the y of the Soldner routines holds
    Deviations others("Gauss-Krueger", tol), soldner("Soldner", tolSoldner);
    for (const Row& row : rows("proj_points.tsv")) {
        SCOPED_TRACE(row[8]);
        const int from = std::stoi(row[0]);
        const int to = std::stoi(row[1]);
        const std::array given = {std::stod(row[2]), std::stod(row[3]), std::stod(row[4])};
        const std::array expected = {std::stod(row[5]), std::stod(row[6]), std::stod(row[7])};
        for (const char* directory : {SAMPLE_DIR, SCRAMBLED_DIR}) {
            const Transformed done = transform(directory, from, to, given);
            ASSERT_EQ(done.status, 0);
            const auto scale = metres_per_unit(to, expected[0]);
            for (std::size_t i = 0; i < 3; ++i) {
                (from == 105 || to == 105 ? soldner : others)
                    .add({(done.result[i] - expected[i]) * scale[i]});
            }
        }
    }
}

}  // namespace
