// One directory and one transformation of the bulk library, used by many threads at once.
#include <atomic>
#include <latch>
#include <thread>

#include "bulk/lagestatus_bulk.h"
#include "support.h"

using namespace testing_support;

namespace {

// All that can be had of a directory: what it lists, points between every two of its systems, and through a
// transformation of the caller's.
std::vector<std::uint64_t> everything(const lagestatus_directory* directory,
                                      const lagestatus_transformation* shared) {
    constexpr std::size_t count = 20;
    std::vector<std::uint64_t> all;
    std::vector<int> codes;
    const auto add = [&](auto values) {
        for (const auto value : values) {
            all.push_back(std::bit_cast<std::uint64_t>(static_cast<double>(value)));
        }
    };
    const auto carry = [&](const lagestatus_transformation* transformation) {
        std::array<std::array<double, count>, 3> given;
        for (std::size_t point = 0; point < count; ++point) {
            const auto step = static_cast<double>(point);
            given[0][point] = 5.3e6 + 3e4 * step;
            given[1][point] = 4.45e6 + 9e3 * step;
            given[2][point] = 10 * step;
        }
        std::array<std::array<double, count>, 4> results = {};
        std::array<int, count> status = {};
        const std::array<const double*, 3> input = {given[0].data(), given[1].data(), given[2].data()};
        const std::array<double*, 4> output = {results[0].data(), results[1].data(), results[2].data(),
                                               results[3].data()};
        add(std::array{lagestatus_transform(transformation, count, input.data(), nullptr, output.data(),
                                            nullptr, status.data(), nullptr)});
        add(status);
        std::ranges::for_each(results, add);
    };
    carry(shared);
    for (std::size_t index = 0; index < lagestatus_directory_count(directory); ++index) {
        lagestatus_system s = {};
        s.size = sizeof s;
        add(std::array{lagestatus_directory_system(directory, index, &s), s.code, s.kind, s.sourceStatus,
                       s.targetStatus, static_cast<int>(s.name[0])});
        codes.push_back(s.code);
    }
    lagestatus_options both = {};
    both.size = sizeof both;
    both.heightWanted = LAGESTATUS_HEIGHT_BOTH;
    for (const int from : codes) {
        for (const int to : codes) {
            lagestatus_transformation* own = nullptr;
            add(std::array{lagestatus_transformation_open(directory, from, to, &both, &own, nullptr)});
            carry(own);
            lagestatus_transformation_close(own);
        }
    }
    return all;
}

TEST(Bulk, ServesManyThreads) {
    constexpr int threads = 8;
    lagestatus_options normal = {};
    normal.size = sizeof normal;
    normal.heightGiven = LAGESTATUS_HEIGHT_NORMAL;
    normal.heightWanted = LAGESTATUS_HEIGHT_BOTH;
    const NoHandleLeft handles;
    for (const int code : {103, 303}) {  // of the Bessel datum, and one whose heights are found by iteration
        lagestatus_directory* directory = nullptr;
        lagestatus_transformation* shared = nullptr;
        ASSERT_EQ(lagestatus_directory_open(SAMPLE_DIR, 0, &directory, nullptr), 0);
        ASSERT_EQ(lagestatus_transformation_open(directory, code, 203, &normal, &shared, nullptr), 0);
        const auto expected = everything(directory, shared);
        EXPECT_EQ(std::bit_cast<double>(expected[0]), 0.0) << "points that failed";
        lagestatus_directory_close(directory);
        // Anew: what is read, many need at the same time.
        ASSERT_EQ(lagestatus_directory_open(SAMPLE_DIR, 0, &directory, nullptr), 0);
        std::atomic<int> different = 0;
        std::latch start(threads);
        std::vector<std::thread> all;
        for (int number = 0; number < threads; ++number) {
            all.emplace_back([&] {
                start.arrive_and_wait();
                different += everything(directory, shared) == expected ? 0 : 1;
            });
        }
        std::ranges::for_each(all, &std::thread::join);
        EXPECT_EQ(different, 0);
        lagestatus_transformation_close(shared);
        lagestatus_directory_close(directory);
    }
}

}  // namespace
