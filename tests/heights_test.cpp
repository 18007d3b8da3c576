// The height model: its file, the height anomaly, and normal heights on the road of a point.
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <optional>
#include <random>
#include <sstream>

#include "base/angles.h"
#include "base/system_description.h"
#include "geodesy/datum_step.h"
#include "heights/height_anomaly.h"
#include "support.h"

using namespace testing_support;
using namespace lagestatus;

namespace {

// Degrees; a value that nobody wrote stands out.
struct Anomaly {
    int status = 0;
    double zeta = untouched;
};
Anomaly anomaly(const std::string& directory, double longitude, double latitude) {
    Anomaly found;
    found.status = height_anomaly(directory, longitude * degree, latitude * degree, found.zeta);
    return found;
}

TEST(HeightModel, ReportsEveryDefect) {
    constexpr double tol = 1e-6;  // the way over geocentric coordinates moves the place by some nanometres
    const DataDirectory directory;
    const std::size_t handles = open_file_handles();
    EXPECT_EQ(anomaly(directory.path(), 9.3, 51.4).status, 110);
    const auto expect = [&](const std::string& file, double longitude, double latitude, int status,
                            double zeta) {
        directory.write("hoehe.ini", file.substr(0, file.find("END")));
        const Anomaly found = anomaly(directory.path(), longitude, latitude);
        EXPECT_EQ(found.status, status);
        EXPECT_NEAR(found.zeta, zeta, tol * std::max(1.0, std::fabs(zeta)));
    };
    for (const Row& row : rows("height_models.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        const std::size_t number = std::stoul(row[0]);
        std::vector<std::string> lines = good_model();
        lines.insert(lines.begin(), "0");
        lines[number] = row[1];
        const auto check = [&](const std::string& file) {
            expect(file, std::stod(row[2]), std::stod(row[3]), std::stoi(row[4]), std::stod(row[5]));
        };
        check(join(lines));
        check(join(lines, "\r\n"));
        // A scrambled line cannot begin with a blank, and this one cannot end within.
        if (number > 0 && !row[1].starts_with(' ') && row[1].find("END") == std::string::npos) {
            std::vector<std::string> all;
            std::istringstream text(join({lines.begin() + 1, lines.end()}));
            for (std::string line; std::getline(text, line);) {
                all.push_back(line);
            }
            check(scrambled(all, 7));
        }
    }
    // A line feed inside a line, which only de-scrambling can make, ends a value and stands before one.
    std::vector<std::string> inner = good_model();
    inner[32] = "0 0 0 5\n40 50";
    expect(scrambled(inner, 7), 9.3, 51.4, 0, 45.44);
    // Every data line in turn: unreadable, and missing with all that follow.
    const std::vector<std::string> good = good_model();
    for (int number = 1; number <= 31; ++number) {
        SCOPED_TRACE(number);
        const int status = number <= 2    ? number + 26
                           : number <= 4  ? number + 124
                           : number <= 24 ? number + 24
                                          : number + 76;
        const auto line = static_cast<std::ptrdiff_t>(number - 1);
        std::vector<std::string> lines = good;
        lines[static_cast<std::size_t>(line)] = "x";
        expect("0\n" + join(lines), 9.3, 51.4, status, 0);
        lines.assign(good.begin(), good.begin() + line);
        expect("0\n" + join(lines), 9.3, 51.4, number == 1 ? 0 : 100, 0);
    }
    EXPECT_EQ(open_file_handles(), handles);
}

// The height anomaly once more, word for word, with the whole grid in memory: nothing for a place without one.
struct Model {
    std::array<double, 29> v = {};             // the header as the file has it
    std::array<double, 3> lon = {}, lat = {};  // smallest, largest, spacing
    std::vector<double> grid;
};
std::optional<double> anomaly_as_written(const Model& model, double lam, double phi) {
    constexpr double D = 0.0174532925199433;
    const auto& v = model.v;
    const double aB = v[0], bB = v[1], aG = v[2], bG = v[3];
    ParameterArray p = {};
    constexpr std::size_t slots[] = {15, 14, 16, 17, 18, 19, 20, 22, 21, 23,
                                     27, 26, 28, 29, 30, 31, 32, 34, 33, 35};
    for (std::size_t i = 0; i < 20; ++i) {
        p[slots[i]] = v[4 + i];
    }
    Geographic G;
    if (geocentric_to_geographic({aG, bG}, datum_step(p, geographic_to_geocentric({aB, bB}, {phi, lam, 0})),
                                 G) != 0) {
        return {};
    }
    const double lamR = v[24] * D, phiR = v[25] * D;
    const double xiR = v[26] * D / 3600.0, etaR = v[27] * D / 3600.0, zetaR = v[28];
    double delta = 0;
    if (phiR > 0 && lamR > 0) {
        using std::cos;
        using std::sin;
        const double VR = std::sqrt((aG * aG / bG / bG - 1) * (cos(phiR) * cos(phiR)) + 1);
        const double Rm = aG * 2.0 / bG * aG / ((VR * VR) * VR + VR);
        const double dl = G.lam - lamR;
        const double cosPsi = cos(G.phi) * cos(phiR) * cos(dl) + sin(phiR) * sin(G.phi);
        const double ds = sin(G.phi) - sin(phiR);
        delta = zetaR * cosPsi;
        delta -= sin(dl) * cos(G.phi) * Rm * etaR +
                 (sin(G.phi) * cos(phiR) - sin(phiR) * cos(G.phi) * cos(dl)) * Rm * xiR;
        delta += (aG - aB) * (cosPsi - 1);
        delta += ((aG - bG) / aG - (aB - bB) / aB) * ((cosPsi - 1) * (sin(phiR) * sin(phiR)) + ds * ds) * Rm;
    }
    if (G.lam < model.lon[0] * D || G.lam > model.lon[1] * D || G.phi < model.lat[0] * D ||
        G.phi > model.lat[1] * D) {
        return {};
    }
    const double l = G.lam / D, b = G.phi / D;
    const int n = static_cast<int>((model.lon[1] - model.lon[0]) / model.lon[2] + 1.000005);
    const int i = static_cast<int>((l - model.lon[0]) / model.lon[2]);
    const int j = static_cast<int>((b - model.lat[0]) / model.lat[2]);
    const double s = (l - i * model.lon[2] - model.lon[0]) / model.lon[2];
    const double t = (b - j * model.lat[2] - model.lat[0]) / model.lat[2];
    const auto at = [&](int k) { return model.grid.at(static_cast<std::size_t>(k)); };
    const int k = n * j + i;
    const double G00 = at(k), G10 = at(k + 1), G01 = at(k + n), G11 = at(k + n + 1);
    if (G00 == 999999.0 || G10 == 999999.0 || G01 == 999999.0 || G11 == 999999.0) {
        return {};
    }
    return ((((G11 - G10) - G01) + G00) * t + (G10 - G00)) * s + ((G01 - G00) * t + G00) - delta;
}

TEST(HeightAnomaly, HoldsEveryBitOfItsFormulasOnGridsOfEveryWidth) {
    std::mt19937_64 random(20261123);  // any number: the cases must repeat
    const auto near = [&random](double middle, double spread) {
        return middle + spread * std::uniform_real_distribution<double>(-1, 1)(random);
    };
    const auto text = [](double value) {
        std::array<char, 32> chars = {};
        return std::string(chars.data(), std::to_chars(chars.data(), chars.data() + chars.size(), value).ptr);
    };
    // Written as an angle; the value becomes what that says.
    const auto sexagesimal = [&text](double& value) {
        const int degrees = static_cast<int>(value);
        const int minutes = static_cast<int>((value - degrees) * 60);
        const double seconds = std::max(0.0, (value - degrees - minutes / 60.0) * 3600);
        value = degrees + minutes / 60.0 + seconds / 3600.0;
        return std::to_string(degrees) + "\xB0" + std::to_string(minutes) + "'" + text(seconds) + "\"";
    };
    const DataDirectory directory;
    int found = 0;
    for (int round = 0; round < 1500; ++round) {
        SCOPED_TRACE(round);
        Model model;
        auto& v = model.v;
        const double polar = round % 5 == 0 ? 5900000 : 6356400;  // very flat: terms in the flattening show
        v[0] = near(6377400, 100), v[1] = near(polar, 500), v[2] = near(6378137, 1), v[3] = near(polar, 500);
        for (std::size_t i = 4; i < 24; ++i) {
            const std::size_t inSet = (i - 4) % 10;
            const bool intermediate = i >= 14 && inSet < 6 && round % 2 == 0;
            v[i] = intermediate ? 0
                   : inSet == 6 ? near(1, 1e-5)
                                : near(0, inSet >= 3 && inSet < 6 ? 1e-4 : 500);
        }
        v[24] = round % 6 == 0 ? 0 : near(10, 9);  // 0 in either coordinate: no correction
        v[25] = round % 6 == 3 ? 0 : near(50, 10);
        v[26] = near(0, 20), v[27] = near(0, 20), v[28] = near(0, 50);
        const int columns = 1 + round % 20;
        const int valueRows = 2 + round % 5;
        const double width = near(0.25, 0.1), height = near(0.25, 0.1);
        model.lon = {near(9, 0.5), 0, width};
        model.lon[1] = model.lon[0] + width * (columns == 1 ? 0.7 : columns - 0.999);
        model.lat = {near(51, 0.5), 0, height};
        model.lat[1] = model.lat[0] + height * (valueRows - 0.999);
        std::string file = "0\n";
        for (const double value : v) {
            file += text(value) + "\n";
        }
        for (auto* const range : {&model.lon, &model.lat}) {
            for (double& value : *range) {
                file += round % 4 == 1 ? sexagesimal(value) : text(value) + " ";
            }
            file += "\n";
        }
        for (int k = 0; k < columns * (valueRows + 1) + 2; ++k) {
            model.grid.push_back(k % 97 == 96 ? 999999.0 : near(0, 1000));
            file += text(model.grid.back()) + (k % 7 == 6   ? (k % 3 == 0 ? "\n# 1 2 3\n" : "\n")
                                               : k % 5 == 0 ? " \t"
                                                            : " ");
        }
        directory.write("hoehe.ini", file);
        for (int place = 0; place < 20; ++place) {
            const double lam =
                near((model.lon[0] + model.lon[1]) / 2, (model.lon[1] - model.lon[0]) / 2) * degree;
            const double phi =
                near((model.lat[0] + model.lat[1]) / 2, (model.lat[1] - model.lat[0]) / 2) * degree;
            double zeta = untouched;
            const bool ok = height_anomaly(directory.path(), lam, phi, zeta) == 0;
            const std::optional<double> expected = anomaly_as_written(model, lam, phi);
            ASSERT_EQ(ok, expected.has_value());
            ASSERT_EQ(std::bit_cast<std::uint64_t>(zeta),
                      std::bit_cast<std::uint64_t>(expected.value_or(0.0)));
            found += ok;
        }
    }
    EXPECT_GT(found, 20000);
}

// The data lines of the sample's height model.
std::vector<std::string> sample_model() {
    std::vector<std::string> lines;
    std::ifstream file(SAMPLE_DIR "/hoehe.ini");
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('#')) {
            lines.push_back(line);
        }
    }
    lines.erase(lines.begin());  // the key
    return lines;
}

TEST(SampleHeights, AreThoseOfTheQuasigeoid) {
    // Metres. On a node of the sample what the reference's own grid rounds off, between the nodes what thinning costs.
    constexpr double tolNode = 10e-6;
    constexpr double tolBetween = 0.032;
    std::vector<std::string> lines = sample_model();
    const std::vector<std::string> neutral = good_model();
    std::copy_n(neutral.begin(), 29, lines.begin());
    const DataDirectory directory;
    directory.write("hoehe.ini", "0\n" + join(lines));
    for (const Row& row : rows("quasigeoid.tsv")) {
        SCOPED_TRACE(row[0] + " " + row[1]);
        const Anomaly found = anomaly(directory.path(), std::stod(row[1]), std::stod(row[0]));
        ASSERT_EQ(found.status, 0);
        EXPECT_NEAR(found.zeta, std::stod(row[2]), row[3] == "node" ? tolNode : tolBetween);
    }
}

TEST(SampleHeights, AreTheSameThroughBothDatums) {
    // Metres: what three figures of the fundamental point leave of a datum step's lift, at any node of the model.
    constexpr double tolRoads = 0.16;
    const std::vector<std::string> lines = sample_model();
    std::istringstream values(join({lines.begin() + 31, lines.end()}, " "));
    constexpr int columns = 475, valueRows = 526, step = 15;
    std::vector<double> grid;
    for (double value = 0; values >> value;) {
        grid.push_back(value);
    }
    ASSERT_EQ(grid.size(), static_cast<std::size_t>(columns * valueRows));
    Largest worst;
    int places = 0;
    for (int j = 0; j < valueRows; j += step) {
        for (int i = 0; i < columns; i += step) {
            const double N = grid[static_cast<std::size_t>(columns * j + i)];
            // A place in ETRS89 on the quasigeoid; its normal height through the Bessel datum.
            const double latitude = (169995.0 + 60 * j) / 3600, longitude = (11722.5 + 90 * i) / 3600;
            const Transformed done = transform(SAMPLE_DIR, 201, 101, {latitude, longitude, N});
            ASSERT_TRUE(carries_the_place(done.status));
            if (done.status == 0) {
                ASSERT_NE(N, 999999.0);
                worst.add({done.result[3]});
                ++places;
            }
        }
    }
    EXPECT_GT(places, 500);
    EXPECT_LT(worst.get(), tolRoads);
    RecordProperty("roads_mm", std::to_string(worst.get() * 1e3));
}

// One place, given and wanted in every system of the sample with every kind of height.
TEST(NormalHeights, AreTheSameWhereverAPointComesFrom) {
    constexpr double tol = 10e-6;            // metres, the tolerance of the sample data
    constexpr double tolIteration = 0.0011;  // the iteration ends at 0.001
    constexpr double height = 350;           // on Bessel
    const int codes[] = {101, 102, 103, 104, 105, 201, 202, 203, 301, 303};
    const auto geocentric = [](int code) { return code % 100 == 2; };
    const auto bessel = [](int code) { return code < 200; };
    const std::array<double, 3> place = {52.5, 13.4, height};
    const double normal = height - anomaly(SAMPLE_DIR, 13.4, 52.5).zeta;
    for (const int from : codes) {
        const Transformed given = transform(SAMPLE_DIR, 101, from, place);
        std::array<double, 3> point = {given.result[0], given.result[1], given.result[2]};
        for (const int to : codes) {
            SCOPED_TRACE(::testing::Message() << from << " to " << to);
            for (const char letter : {'E', 'e', 'x', '\0'}) {
                const Transformed done = transform(SAMPLE_DIR, from, to, point, letter);
                ASSERT_EQ(done.status, 0);
                EXPECT_NEAR(done.result[3], geocentric(to) ? point[2] : normal, tol);
            }
            const Transformed ellipsoidal = transform(SAMPLE_DIR, from, to, point);
            const std::array<double, 3> withNormal = {point[0], point[1],
                                                      geocentric(from) ? point[2] : normal};
            // Outside the Bessel datum and towards a geocentric target the height given is taken as it is.
            const bool uncorrected = !bessel(from) && geocentric(to);
            const Transformed expected =
                uncorrected ? transform(SAMPLE_DIR, from, to, withNormal) : ellipsoidal;
            for (const char letter : {'N', 'n'}) {
                const Transformed done = transform(SAMPLE_DIR, from, to, withNormal, letter);
                ASSERT_EQ(done.status, 0);
                EXPECT_EQ(done.result[3], geocentric(from) ? ellipsoidal.result[3] : normal);
                const auto scale = metres_per_unit(to, place[0]);
                for (std::size_t i = 0; i < 3; ++i) {
                    EXPECT_NEAR(done.result[i] * scale[i], expected.result[i] * scale[i],
                                i < 2 || bessel(from) || uncorrected ? tol : tolIteration);
                }
            }
        }
    }
}

// With 1000 and above the place may be there all the same: the height given is then taken as ellipsoidal.
TEST(NormalHeights, FailWithTheStatusOfTheHeightModel) {
    const DataDirectory directory;
    for (const auto& file : std::filesystem::directory_iterator(SAMPLE_DIR)) {
        if (file.path().filename() != "hoehe.ini") {
            std::filesystem::copy(file, directory.path());
        }
    }
    const std::size_t handles = open_file_handles();
    const std::array<double, 3> place = {52.5, 13.4, 350};
    for (const Row& row : rows("height_statuses.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        if (row[0] != "-") {
            directory.write("hoehe.ini", row[0]);
        }
        const int from = std::stoi(row[1]);
        const Transformed given = transform(SAMPLE_DIR, 101, from, place);
        const std::array<double, 3> point = {given.result[0], given.result[1], given.result[2]};
        const Transformed done = transform(directory.path(), from, std::stoi(row[2]), point, row[3][0]);
        EXPECT_EQ(done.status, std::stoi(row[4]));
        if (row[5] == "yes") {
            const Transformed expected = transform(SAMPLE_DIR, from, std::stoi(row[2]), point);
            EXPECT_TRUE(std::equal(done.result.begin(), done.result.end() - 1, expected.result.begin()));
        } else {
            EXPECT_EQ(done.result, (std::array<double, 4>{0, 0, 0, done.status < 1000 ? 0 : point[2]}));
        }
    }
    EXPECT_EQ(open_file_handles(), handles);
}

TEST(NormalHeights, IterateBitForBit) {
    const DataDirectory directory;
    directory.write("hoehe.ini", "0\n" + join(good_model()));
    const Ellipsoid grs80 = ellipsoids[1].axes();
    // Heights stretched about a place on the ellipsoid; so high that a last bit shows.
    const Geocentric middle = geographic_to_geocentric(grs80, {51.4 * degree, 9.3 * degree, 0});
    for (int round = 0; round < 40; ++round) {
        const double H = 173000.7 * round;
        Road road = {.directory = directory.path(), .point = {51.4, 9.3, H}};
        road.sourceEllipsoid = "GRS80", road.targetEllipsoid = "WGS84";
        road.sourceFlag = road.targetFlag = -1;
        road.source[slot::translationX] = road.source[slot::reductionX] = middle.x;
        road.source[slot::translationY] = road.source[slot::reductionY] = middle.y;
        road.source[slot::translationZ] = road.source[slot::reductionZ] = middle.z;
        road.source[slot::datumScale] = 0.9 + 0.01 * round;
        ASSERT_EQ(road.run(), 0);
        Geographic g;
        double d = 0, zeta = 0, h = H;
        do {
            h = h + d;
            const Geocentric P = geographic_to_geocentric(grs80, {51.4 * degree, 9.3 * degree, h});
            const Geocentric P1 = datum_step(road.source, P);
            ASSERT_EQ(geocentric_to_geographic(grs80, P1, g), 0);
            ASSERT_EQ(height_anomaly(directory.path(), g.lam, g.phi, zeta), 0);
            d = H - g.h + zeta;
            ASSERT_EQ(geocentric_to_geographic(grs80, datum_step(road.target, P1), g), 0);
        } while (std::fabs(d) > 0.001);
        EXPECT_EQ(road.point, (std::array{g.phi / degree, g.lam / degree, g.h, H}));
    }
}

TEST(NormalHeights, FindTheirFile) {
    const DataDirectory directory;
    directory.write("hoehe.ini", "0\n" + join(good_model()));
    const auto status_in = [](const std::string& path) {
        Road road = {.directory = path, .point = {51.4, 9.3, 100}};
        road.targetFlag = -1;
        return road.run();
    };
    std::string longest = directory.path();
    longest.resize(299, '/');
    EXPECT_EQ(status_in(longest), 0);
    EXPECT_EQ(status_in(longest + "/"), 1110);
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(directory.path());
    EXPECT_EQ(status_in("") + status_in("."), 0);
    std::filesystem::current_path("/");
    EXPECT_EQ(status_in(""), 1110);
    std::filesystem::current_path(before);
}

}  // namespace
