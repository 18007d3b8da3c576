// The fast calculation gives the same bits on every machine: digests of its results, beside those in the tree.
#include <bit>
#include <cstdlib>

#include "bulk_support.h"

using namespace testing_support;

namespace {

// Steele, Lea, Flood: Fast splittable pseudorandom number generators, 2014 (SplitMix64).
std::uint64_t mixed(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
    return bits ^ (bits >> 31U);
}

// Places in ETRS89 where the sample has heights, made of integers: the same on every machine.
Points places(std::uint64_t first, std::size_t count) {
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

// LAGESTATUS_POINTS asks for as many points a road as the second digest of a row is made of, a million.
TEST(Fast, HasTheSameBitsEverywhere) {
    constexpr std::size_t some = 10000, all = 1000000, block = 1000;
    const char* const asked = std::getenv("LAGESTATUS_POINTS");
    const std::size_t count = asked != nullptr ? all : some;
    const auto sample = open_directory(SAMPLE_DIR);
    for (const Row& row : rows("fast_digests.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        const auto number = [&row](std::size_t column) { return std::stoi(row[column]); };
        const auto toSource = open_way(sample.handle, 201, number(0), fast(0, 0));
        const auto way = open_way(sample.handle, number(0), number(1), fast(number(2), number(3)));
        std::uint64_t digest = 0;
        for (std::size_t done = 0; done < count; done += block) {
            Points points = places(done, block);
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
