// The height model: its file, the height anomaly, and normal heights on the road of a point.
#include <cmath>
#include <fstream>

#include "base/angles.h"
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
    found.status = StreamedHeightModel(directory).at(longitude * degree, latitude * degree, found.zeta);
    return found;
}

TEST(HeightModel, ReportsEveryDefect) {
    constexpr double tol = 1e-6;  // the way over geocentric coordinates moves the place by some nanometres
    const DataDirectory directory;
    const NoHandleLeft handles;
    EXPECT_EQ(anomaly(directory.path(), 9.3, 51.4).status, 110);
    const auto expect = [&](const std::string& file, double longitude, double latitude, int status,
                            double zeta) {
        directory.write("hoehe.ini", file);
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
        const auto check = [&row, &expect](const std::string& file) {
            expect(file, std::stod(row[2]), std::stod(row[3]), std::stoi(row[4]), std::stod(row[5]));
        };
        const auto text = [](const std::vector<std::string>& all, const char* lineEnd = "\n") {
            const std::string whole = join(all, lineEnd);
            return whole.substr(0, whole.find("END"));
        };
        check(text(lines));
        check(text(lines, "\r\n"));
        if (number > 0) {
            check(scrambled(text({lines.begin() + 1, lines.end()}), 7));
        }
    }
    // A line feed inside a line, which only de-scrambling can make, ends a value and stands before one.
    std::vector<std::string> inner = good_model();
    inner[32] = "0 0 0 5@40 50";
    std::string stored = scrambled(join(inner), 7);
    stored[stored.find('@' + 6)] = '\n' + 6;
    expect(stored, 9.3, 51.4, 0, 45.44);
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
}

TEST(SampleHeights, AreThoseOfTheQuasigeoid) {
    // Metres. On a node of the sample what the reference's own grid rounds off, between the nodes what thinning costs.
    constexpr double tolNode = 10e-6;
    constexpr double tolBetween = 0.032;
    // What three figures of the fundamental point leave of a datum step's lift, at any node of the model.
    constexpr double tolRoads = 0.16;
    // The sample's grid with a header that changes nothing.
    std::ifstream sample(SAMPLE_DIR "/hoehe.ini");
    std::vector<std::string> lines;
    for (std::string line; std::getline(sample, line);) {
        if (!line.starts_with('#')) {
            lines.push_back(line);
        }
    }
    const std::vector<std::string> neutral = good_model();
    std::copy_n(neutral.begin(), 29, lines.begin() + 1);
    const DataDirectory directory;
    directory.write("hoehe.ini", join(lines));
    for (const Row& row : rows("quasigeoid.tsv")) {
        SCOPED_TRACE(row[0] + " " + row[1]);
        const double latitude = std::stod(row[0]), longitude = std::stod(row[1]), height = std::stod(row[2]);
        const Anomaly found = anomaly(directory.path(), longitude, latitude);
        ASSERT_EQ(found.status, 0);
        const double tol = row[3] == "node" ? tolNode : tolBetween;
        EXPECT_NEAR(found.zeta, height, tol);
        // A place in ETRS89 on the quasigeoid: its normal height through the Bessel datum.
        const Transformed done = transform(SAMPLE_DIR, 201, 101, {latitude, longitude, height});
        ASSERT_EQ(done.status, 0);
        EXPECT_NEAR(done.result[3], 0, tolRoads + tol);
    }
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
    const NoHandleLeft handles;
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
