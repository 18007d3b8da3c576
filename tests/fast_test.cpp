// The fast calculation: beside the reference calculation everywhere, and beside its own bits of every other machine.
#include <bit>
#include <cstdlib>
#include <sstream>

#include "bulk_support.h"
#include "fast/fast_road.h"

using namespace testing_support;

namespace {

// Steele, Lea, Flood: Fast splittable pseudorandom number generators, 2014 (SplitMix64).
std::uint64_t mixed(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
    return bits ^ (bits >> 31U);
}

// Places in ETRS89 where the sample has heights, made of integers: the same on every machine.
Points places_in_germany(std::uint64_t first, std::size_t count) {
    Points all(count);
    const auto share = [&first] {
        return static_cast<double>(mixed(first += 0x9E3779B97F4A7C15U) >> 11U) * 0x1p-53;
    };
    for (auto& [phi, lam, h] : all) {
        phi = 48.0 + 5.5 * share();
        lam = 8.25 + 3.75 * share();
        h = 3000.0 * share();
    }
    return all;
}

lagestatus_options fast(int given, int wanted) {
    lagestatus_options options = heights(given, wanted);
    options.calculation = LAGESTATUS_FAST;
    return options;
}

struct Way {
    int to;
    int given;
    int wanted;
};
std::vector<Way> every_way() {
    std::vector<Way> all;
    for (const int to : codes) {
        for (int way = 0; way < 12; ++way) {
            all.push_back({to, way / 4, way % 4});
        }
    }
    return all;
}

// Places in Bessel's degrees on and beside all borders that the reference calculation decides by: of strips of both
// widths, and of the height model's cells and its edges.
Points borders(const HeldDirectory& sample) {
    auto model = sized<lagestatus_height_model>();
    EXPECT_EQ(lagestatus_directory_height_model(sample.get(), &model, nullptr), 0);
    const double inRow = model.south + 17.3 * model.rowSpacing;
    const double inColumn = model.west + 23.4 * model.columnSpacing;
    Points all;
    for (const double beside :
         {0.0, 1e-13, 1e-12, 1e-10, 2.9e-10, 3.1e-10, 1e-9, 1e-8}) {  // degrees; 0.1 um is 1e-12
        for (const double side : {-beside, beside}) {
            for (const double lam :
                 {7.5, 10.5, 12.0, model.west, model.east, model.west + 9 * model.columnSpacing}) {
                all.push_back({inRow, lam + side, 100.0});
            }
            for (const double phi : {model.south, model.north, model.south + 9 * model.rowSpacing}) {
                all.push_back({phi + side, inColumn, 100.0});
            }
            all.push_back({model.south + 9 * model.rowSpacing + side,
                           model.west + 9 * model.columnSpacing + side, 100.0});
        }
    }
    return all;
}

// Likewise on and beside the edges of the domain, where the reference calculation has lost centimetres.
Points edges() {
    constexpr double sideways = 28.48903;  // degrees: arc sine of the most that is mapped
    Points all;
    for (const double beside : {-1e-6, -1e-12, 0.0, 1e-12, 1e-6}) {  // of a degree, of the height's hundredth
        for (const double lam0 : {9.0, 10.5, 12.0}) {
            for (const auto& [phi, dLam] : {std::array{89.0, 0.3},
                                            {-89.0, 0.3},
                                            {85.0, 44.0},
                                            {85.0, 44.9999},
                                            {85.0, 45.0},
                                            {1e-3, 30.0}}) {
                all.push_back({phi + beside, lam0 - dLam - beside, 100.0});
            }
            all.push_back({1e-3, lam0 + sideways + beside, 100.0});
            all.push_back({beside, lam0 + 1.0, 100.0});
        }
        for (const double lam : {-180.0, 180.0}) {
            all.push_back({50.0, lam + beside, 100.0});
        }
        for (const double h : {-100e3, 10000e3}) {
            all.push_back({50.0, 9.3, h * (1.0 + 0.01 * beside)});
        }
    }
    return all;
}

constexpr double tolPlace = 3e-6;  // metres: what the reference calculation loses, to space and in the plane
constexpr double tolSoldner = 3e-4;   // metres: an arc cosine beside the meridian
constexpr double tolEdge = 0.1;       // metres: the reference beside 45 degrees from the meridian
constexpr double tolAnomaly = 1e-9;   // metres, where both look it up at the same place
constexpr double leastChanged = 0.8;  // of the results in the area: the others come from the reference road

// The same status, the same numbers there; tolerances in metres, unit is metres for one of a coordinate.
void expect_beside(const Carried& got, const Carried& right, const std::array<double, 4>& tol,
                   const std::array<double, 3>& unit) {
    EXPECT_EQ(got.status, right.status);
    for (std::size_t k = 0; k < 4; ++k) {
        const double difference = got.at[k] - right.at[k];
        EXPECT_EQ(std::isnan(got.at[k]), std::isnan(right.at[k])) << k;
        EXPECT_FALSE(std::fabs(difference) * (k < 3 ? unit[k] : 1.0) > tol[k]) << k << ' ' << difference;
    }
}

// Every pair of the sample's systems and every choice of heights; outside the area only what there is counts.
TEST(Fast, StaysBesideTheReferenceEverywhere) {
    const auto sample = open_directory(SAMPLE_DIR);
    std::mt19937 random(17);
    std::size_t inArea = 0, changed = 0;
    for (const int from : codes) {
        Points points;
        for (int rounds = 0; rounds < 12; ++rounds) {
            std::ranges::copy(places(sample.handle, from, random), std::back_inserter(points));
        }
        const std::size_t atRandom = points.size();
        const auto toSource = open_way(sample.handle, 101, from);
        for (const Carried& one : carried(toSource.handle, borders(sample.handle))) {
            points.push_back({one.at[0], one.at[1], one.at[2]});
        }
        const std::size_t inside = points.size();
        for (const Carried& one : carried(toSource.handle, edges())) {
            points.push_back({one.at[0], one.at[1], one.at[2]});
        }
        points.push_back({5.7e6, -1.2e6, 100.0});  // a strip below 0
        const std::array besselCodes = {101, 103, 104, 105};
        for (const auto& [to, given, wanted] : every_way()) {
            SCOPED_TRACE(::testing::Message() << from << " to " << to << ", " << given << ", " << wanted);
            const auto reference = open_way(sample.handle, from, to, heights(given, wanted));
            const auto way = open_way(sample.handle, from, to, fast(given, wanted));
            ASSERT_EQ(way.status, reference.status);
            if (way.status != 0) {
                continue;
            }
            const double tolPlane = from == 105 || to == 105 ? tolSoldner : tolPlace;
            const bool looksUpOnce =
                given == LAGESTATUS_HEIGHT_ELLIPSOIDAL && std::ranges::count(besselCodes, from) > 0;
            const double tolNormal = looksUpOnce ? tolAnomaly : tolPlace;
            const auto right = carried(reference.handle, points), got = carried(way.handle, points);
            for (std::size_t number = 0; number < points.size(); ++number) {
                SCOPED_TRACE(::testing::PrintToString(points[number]));
                const bool near = number >= atRandom || number % 8 < 2 || number % 8 == 3 || number % 8 == 4;
                const double loss = number >= inside ? tolEdge : 0.0;
                expect_beside(
                    got[number], right[number],
                    near ? std::array{tolPlane + loss, tolPlane + loss, tolPlace + loss, tolNormal + loss}
                         : std::array{infinity, infinity, infinity, infinity},
                    metres_per_unit(to, right[number].at[0]));
                inArea += number < atRandom && near ? 1 : 0;
                changed += number < atRandom && near && got[number] != right[number] ? 1 : 0;
            }
        }
    }
    EXPECT_GE(static_cast<double>(changed), leastChanged * static_cast<double>(inArea));
}

// Reductions, strips and datum steps that the sample has not, in every pair; ellipsoids that the series do not serve.
TEST(Fast, TakesWhatFilesMayHold) {
    const auto systems = rows("fast_systems.tsv");
    const DataDirectory directory;
    std::string list = std::to_string(systems.size()) + "\n";
    for (std::size_t code = 1; code <= systems.size(); ++code) {
        const Row& system = systems[code - 1];
        const std::string name = std::to_string(code);
        list += name + "\n\"" + name + "\"\n";
        std::vector<std::string> lines = {name, "\"System\"", '"' + system[0] + '"', '"' + system[1] + '"',
                                          "0",  "0"};
        lines.resize(40, "0 0");
        lines[9] = lines[17] = lines[26] = lines[36] = "1 1";
        std::istringstream settings(system[2]);
        for (std::string setting; std::getline(settings, setting, '|');) {
            const std::size_t line = std::stoul(setting), value = setting.find('=') + 1;
            const bool once = line <= 20 || setting.find(' ') != std::string::npos;
            lines[line - 1] = setting.substr(value) + (once ? "" : ' ' + setting.substr(value));
        }
        directory.write(name + ".tra", join(lines));
    }
    directory.write("DEFAULT", list);
    std::filesystem::copy(SAMPLE_DIR "/hoehe.ini", directory.path());
    const auto held = open_directory(directory.path());
    std::size_t all = 0, changed = 0;
    for (int from = 1; from <= static_cast<int>(systems.size()); ++from) {
        Points points;
        for (const Carried& one : carried(open_way(held.handle, 1, from).handle, places_in_germany(1, 40))) {
            ASSERT_TRUE(one.status == 0 || systems[static_cast<std::size_t>(from - 1)][3] == "no");
            points.push_back({one.at[0], one.at[1], one.at[2]});
        }
        Points there = {{49.3, 9.0, 100.0},
                        {52.1, 10.5, 100.0}};  // on meridians, and beside a strip's border
        for (int i = -20; i <= 20; ++i) {
            there.push_back({50.0 + 0.1 * i, 10.5 + 2.5e-10 * i, 100.0});
        }
        for (const Carried& one : carried(open_way(held.handle, 3, from).handle, there)) {
            points.push_back({one.at[0], one.at[1], one.at[2]});
        }
        for (int to = 1; to <= static_cast<int>(systems.size()); ++to) {
            const Row &source = systems[static_cast<std::size_t>(from - 1)],
                      &target = systems[static_cast<std::size_t>(to - 1)];
            SCOPED_TRACE(::testing::PrintToString(source) + ::testing::PrintToString(target));
            const bool serves = source[3] == "yes" && target[3] == "yes";
            const int soldners = (source[1] == "Soldner" ? 1 : 0) + (target[1] == "Soldner" ? 1 : 0);
            const double tol = soldners > 0 ? soldners * tolSoldner : tolPlace;
            const auto right = carried(open_way(held.handle, from, to).handle, points);
            const auto got = carried(open_way(held.handle, from, to, fast(0, 0)).handle, points);
            for (std::size_t number = 0; number < points.size(); ++number) {
                SCOPED_TRACE(::testing::PrintToString(points[number]));
                expect_beside(got[number], right[number],
                              serves ? std::array{tol, tol, tolPlace, 0.0} : std::array<double, 4>{},
                              metres_per_unit(target[1] == "Geographisch" ? 1 : 3, right[number].at[0]));
                all += serves ? 1 : 0;
                changed += got[number] != right[number] ? 1 : 0;
            }
        }
    }
    EXPECT_GE(static_cast<double>(changed), leastChanged * static_cast<double>(all));
    // The scale of the second system leaves some points within a micrometre of the iteration's tolerance.
    Points settling = places_in_germany(1, 20000);
    for (auto& point : settling) {
        point[2] = 100.0;
    }
    constexpr int normal = LAGESTATUS_HEIGHT_NORMAL, both = LAGESTATUS_HEIGHT_BOTH;
    const auto right = carried(open_way(held.handle, 2, 2, heights(normal, both)).handle, settling);
    const auto got = carried(open_way(held.handle, 2, 2, fast(normal, both)).handle, settling);
    for (std::size_t number = 0; number < settling.size(); ++number) {
        expect_beside(got[number], right[number], {tolPlace, tolPlace, tolPlace, tolPlace},
                      metres_per_unit(1, right[number].at[0]));
    }
}

// Height models that the series do not serve, or that end early.
TEST(Fast, TakesWhatHeightModelsMayHold) {
    struct Edit {
        std::size_t line;  // of those that are no comment, from 1
        const char* text;
    };
    constexpr std::array edits = {Edit{2, "6200000"},
                                  Edit{6, "1000000000"},
                                  Edit{26, "0"},
                                  Edit{27, "0"},
                                  Edit{30, "1000000000"},
                                  Edit{31, "-400 15.10625 0.025"},
                                  Edit{31, "3.25625 400 0.025"},
                                  Edit{31, "370 371 0.025"},
                                  Edit{31, "3.25625 3.256287 0.0000001"},
                                  Edit{31, "3.25625 3.26 0.025"},
                                  Edit{15000, nullptr},
                                  Edit{40, nullptr}};
    const DataDirectory directory;
    std::filesystem::copy(SAMPLE_DIR, directory.path());
    std::vector<std::string> lines;
    std::istringstream model(directory.read("hoehe.ini"));
    for (std::string line; std::getline(model, line);) {
        if (!line.starts_with('#')) {
            lines.push_back(line);
        }
    }
    for (const auto& [line, text] : edits) {
        SCOPED_TRACE(::testing::Message() << line << ' ' << (text != nullptr ? text : "is the last"));
        std::vector<std::string> changed = lines;
        if (text != nullptr) {
            changed.at(line - 1) = text;
        } else {
            changed.resize(std::min(line, changed.size() / 2));
        }
        directory.write("hoehe.ini", join(changed));
        const auto held = open_directory(directory.path());
        const Points points = places_in_germany(3, 200);
        for (const int given : {LAGESTATUS_HEIGHT_ELLIPSOIDAL, LAGESTATUS_HEIGHT_NORMAL}) {
            const auto reference = open_way(held.handle, 201, 103, heights(given, LAGESTATUS_HEIGHT_BOTH));
            const auto way = open_way(held.handle, 201, 103, fast(given, LAGESTATUS_HEIGHT_BOTH));
            ASSERT_EQ(way.status, reference.status);
            if (way.status != 0) {
                continue;
            }
            const auto right = carried(reference.handle, points), got = carried(way.handle, points);
            for (std::size_t number = 0; number < points.size(); ++number) {
                expect_beside(got[number], right[number], {tolPlace, tolPlace, tolPlace, tolPlace},
                              metres_per_unit(103, 0.0));
            }
        }
    }
    // A scale with which no height settles.
    directory.write("hoehe.ini", join(lines));
    std::string system = directory.read("etrs89-geographisch.tra");
    const std::size_t scale = system.find("\n1.0 ") + 1;
    directory.write("etrs89-geographisch.tra", system.replace(scale, 3, "1.9"));
    const auto held = open_directory(directory.path());
    constexpr int normal = LAGESTATUS_HEIGHT_NORMAL;
    const Points points = places_in_germany(3, 40);
    const auto right = carried(open_way(held.handle, 201, 103, heights(normal, normal)).handle, points);
    EXPECT_EQ(carried(open_way(held.handle, 201, 103, fast(normal, normal)).handle, points), right);
    EXPECT_GT(std::ranges::count(right, 92, &Carried::status), 0);
}

// LAGESTATUS_POINTS asks for as many points a road as the second digest of a row is made of, a million.
TEST(Fast, HasTheSameBitsEverywhere) {
    constexpr std::size_t some = 10000, all = 1000000, block = 1000;
    const char* const asked = std::getenv("LAGESTATUS_POINTS");
    const std::size_t count = asked != nullptr ? all : some;
    const char* const most = std::getenv("LAGESTATUS_INSTRUCTIONS");
    RecordProperty("instructions", lagestatus::fast::instructions());
    if (most != nullptr && std::string_view(most) != lagestatus::fast::instructions()) {
        GTEST_SKIP() << "this machine has no " << most;
    }
    const auto sample = open_directory(SAMPLE_DIR);
    for (const Row& row : rows("fast_digests.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        const auto number = [&row](std::size_t column) { return std::stoi(row[column]); };
        const auto toSource = open_way(sample.handle, 201, number(0), fast(0, 0));
        const auto way = open_way(sample.handle, number(0), number(1), fast(number(2), number(3)));
        std::uint64_t digest = 0;
        for (std::size_t done = 0; done < count; done += block) {
            Points points = places_in_germany(done, block);
            for (std::size_t i = 0; const Carried& one : carried(toSource.handle, points)) {
                std::copy_n(one.at.begin(), 3, points[i++].begin());
            }
            for (const Carried& one : carried(way.handle, points)) {
                ASSERT_EQ(one.status, 0);
                for (const double value : one.at) {
                    digest = mixed(digest ^ (std::isnan(value) ? 0 : std::bit_cast<std::uint64_t>(value)));
                }
            }
        }
        EXPECT_EQ(std::to_string(digest), row[asked != nullptr ? 5 : 4]);
    }
}

}  // namespace
