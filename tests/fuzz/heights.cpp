// Any bytes as the height model, plain or (SCRAMBLED) scrambled, and a place to walk to in its grid.
#include "fuzz.h"

using namespace fuzzing;

namespace {

constexpr double height = 100.0;

using Answers = std::vector<Reached>;

// The ways in which the height model comes into a transformation.
Answers answers(std::string_view content, double phi, double lam) {
    memory().write("hoehe.ini", content);
    const NoHandleLeft handles;
    Answers all;
    Road road = {.directory = memory().path(), .point = {phi, lam, height, 0}, .targetFlag = -1};
    // flag: of the source; that of the target is set in road.
    const auto go = [&](const char* from, const char* to, int flag) {
        road.sourceEllipsoid = from;
        road.targetEllipsoid = to;
        road.sourceFlag = flag;
        all.push_back(reached(road));
        return all.back();
    };
    const Reached normal = go("Bessel", "Bessel", 0);
    EXPECT_NEAR(normal.result[0], phi, 1e-13);
    EXPECT_EQ(normal.result[2], height);
    if (normal.status != 0) {
        EXPECT_GE(normal.status, 1000);
        EXPECT_EQ(normal.result[3], height);
    } else {
        // Back from the normal height that came out.
        const double zeta = height - normal.result[3];
        road.point[2] = normal.result[3];
        const Reached back = go("Bessel", "Bessel", -1);
        EXPECT_EQ(back.status, 0);
        EXPECT_NEAR(back.result[2], height, 1e-14 * std::max(std::fabs(zeta), height));
        EXPECT_EQ(back.result[3], normal.result[3]);
        road.point[2] = height;
    }
    const Reached iterated = go("GRS80", "GRS80", -1);
    EXPECT_TRUE(iterated.status != 0 || iterated.result[3] == height);
    go("GRS80", "Bessel", 0);
    go("GRS80", "Other", 0);
    for (const auto& [from, to] : {std::pair("Bessel", "GRS80"), {"GRS80", "Bessel"}, {"GRS80", "Other"}}) {
        go(from, to, -1);
    }
    road.targetFlag = 0;
    go("Other", "Bessel", -1);
    road.targetKind = "Geozentrisch";
    go("Bessel", "GRS80", -1);
    road.targetKind = "Geographisch";
    road.targetFlag = -1;
    road.sourceKind = "Geozentrisch";
    const double radian = 180 / std::numbers::pi;
    road.point = {6.4e6 * std::cos(phi / radian) * std::cos(lam / radian),
                  6.4e6 * std::cos(phi / radian) * std::sin(lam / radian), 6.4e6 * std::sin(phi / radian), 0};
    go("Bessel", "Bessel", 0);
    go("Bessel", "GRS80", 0);
    return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const auto linesAhead = input.take<std::uint16_t>();
    // In and around the grid of the corpus, now and then on a line of it.
    const double phi = 50.875 + (input.take<std::uint16_t>() % 640) / 512.0;
    const double lam = 8.875 + (input.take<std::uint16_t>() % 640) / 512.0;
    const auto [stored, scrambledHere] =
        SCRAMBLED ? stored_file(input) : Stored{"0\n" + std::string(input.rest())};
    const Answers all = answers(stored, phi, lam);
    const auto otherwise = rewritten(stored, linesAhead);
    EXPECT_TRUE(!otherwise || answers(*otherwise, phi, lam) == all);
    EXPECT_TRUE(!scrambledHere || answers("0\n" + std::string(input.rest()), phi, lam) == all);
    return 0;
}
