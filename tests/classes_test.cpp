// The classes of lagestatus.hpp: what they refuse, and what their exceptions carry.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "bulk/lagestatus.hpp"

using namespace lagestatus;

TEST(Classes, ErrorsCarryWhatTheLibraryTells) {
    const Directory directory(SAMPLE_DIR);
    try {
        const Transformation transformation(directory, 103, 999);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.status(), 93);
        EXPECT_EQ(std::string(error.file()).substr(0, 11), "data/sample");
        EXPECT_EQ(error.what(), message(93, error.file()) + ": 999");
        EXPECT_EQ(error.line() + error.text()[0], 0);
    }
    EXPECT_NO_THROW((directory.read(203, Role::target), directory.read(203, Role::source)));
    EXPECT_EQ(directory.height_model().columns, 475);
    EXPECT_THROW(static_cast<void>(directory.system(10)), std::out_of_range);
    EXPECT_THROW(detail::check(LAGESTATUS_MEMORY, {}), std::bad_alloc);
    EXPECT_EQ(version(), LAGESTATUS_VERSION);
    EXPECT_THROW(Directory(std::string("data/sample\0x", 13)), std::invalid_argument);
    EXPECT_THROW((Transformation(directory, 103, 203, {.heightGiven = HeightGiven::none})), Error);
}

TEST(Classes, LengthsAreComparedBeforeAnythingIsWritten) {
    const Transformation transformation(Directory(SAMPLE_DIR), 103, 203, {.defaultHeight = 62.0});
    std::array<double, 2> northing = {5814068.9341, 5814068.9341}, easting = {4592988.2976, 4592988.2976};
    std::array<double, 2> first = {1.0, 1.0}, second = {}, height = {};
    const double unknown = std::nan("");
    const auto shared = Column<const double>::strided(&unknown, 2, 0);
    const std::span<double> one(height.data(), 1);
    for (const Output& wrong : {Output{first, second, one}, Output{first, second}}) {
        EXPECT_THROW(transformation.transform({northing, easting, shared}, wrong), std::invalid_argument);
    }
    EXPECT_EQ(first[0], 1.0);
    EXPECT_THROW(Column<double>::strided(first.data(), 2, 0), std::invalid_argument);
    EXPECT_EQ(Column<double>::strided(first.data(), 1, 0).stride(), 0);
    const Column<double> empty(std::span<double>{});
    EXPECT_EQ(transformation.transform({empty, empty, empty}, {empty, empty, empty}).failures, 0U);
    EXPECT_EQ(Column<double>(std::span<lagestatus_options>(), &lagestatus_options::defaultHeight).size(), 0U);
    EXPECT_NE(transformation.get(), nullptr);
    const auto strided = Column<double>::strided(height.data(), 2, sizeof(double));
    EXPECT_EQ(transformation.transform({northing, easting, shared}, {first, second, strided}).defaulted, 2U);
    EXPECT_NEAR(height[1], 103.1135, 5e-5);  // of PROJ, as in data/many_points.txt
}
