// The bulk library, called as its users do: beside the seven functions, bit for bit, and by what its header promises.
#include <cstdlib>
#include <new>

#include "bulk_support.h"

using namespace testing_support;

namespace {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
thread_local std::size_t newsLeft = never;  // until operator new fails, once
thread_local std::ptrdiff_t blocksHeld = 0;

}  // namespace

// Not inlined: GCC 12 would take malloc and delete for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const memory = newsLeft-- == 0 ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    ++blocksHeld;
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    blocksHeld -= memory != nullptr ? 1 : 0;
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    operator delete(memory);
}

namespace {

TEST(Bulk, GivesTheBitsOfTransDll) {
    std::mt19937 random(1);
    for (const char* path : {SAMPLE_DIR, SCRAMBLED_DIR}) {
        const auto directory = open_directory(path);
        for (const int from : codes) {
            for (const int to : codes) {
                expect_as_trans_dll(path, directory.handle, from, to, places(directory.handle, from, random));
            }
        }
    }
}

// Towards a geocentric system normal heights are made ellipsoidal from every source, as towards any other.
TEST(Bulk, CorrectsNormalHeightsTowardsGeocentricSystems) {
    const auto sample = open_directory(SAMPLE_DIR);
    const auto normal = heights(LAGESTATUS_HEIGHT_NORMAL, LAGESTATUS_HEIGHT_ELLIPSOIDAL);
    for (const int from : {201, 101}) {
        const auto reached = [&](int to) {
            return carried(open_way(sample.handle, from, to, normal).handle, {{52.3, 9.7, 62}})[0].at;
        };
        const auto [phi, lam, h, none] = reached(201);
        const auto expected = carried(open_way(sample.handle, 201, 202).handle, {{phi, lam, h}})[0].at;
        const auto got = reached(202);
        constexpr double tolPlace = 1e-6;  // metres: of degrees that were written and read
        EXPECT_LT(std::hypot(got[0] - expected[0], got[1] - expected[1], got[2] - expected[2]), tolPlace);
        EXPECT_GT(h, 100) << "62 m above the quasigeoid";
    }
}

// Backwards, beyond other values, at odd addresses; one height for all, or none; easting first.
TEST(Bulk, TakesColumnsAsTheyLie) {
    const auto sample = open_directory(SAMPLE_DIR);
    for (const int calculation : {LAGESTATUS_REFERENCE, LAGESTATUS_FAST}) {
        lagestatus_options options = heights(0, LAGESTATUS_HEIGHT_BOTH);
        options.calculation = calculation;
        const Points points = {{5.81e6, 3.56e6, 123}, {5.82e6, 3.57e6, 123}, {5.83e6, 3.58e6, 123}};
        const auto right = carried(open_way(sample.handle, 103, 201, options).handle, points);
        options.sourceAxes = options.targetAxes = LAGESTATUS_AXES_EASTING_FIRST;
        options.hasDefaultHeight = 1;
        options.defaultHeight = 123;
        const auto way = open_way(sample.handle, 103, 201, options);
        constexpr std::ptrdiff_t one = sizeof(double);
        for (const double height : {123.0, notANumber}) {
            const std::array eastings = {3.58e6, 3.57e6, 3.56e6};
            const std::array northings = {5.81e6, untouched, 5.82e6, untouched, 5.83e6};
            const std::array<const double*, 3> input = {&eastings[2], northings.data(), &height};
            std::vector<Buffer<double>> memory(4, Buffer<double>(5, untouched));
            std::array<double*, 4> output = {};
            std::ranges::transform(memory, output.begin(), [](auto& column) { return column.get() + 1; });
            std::size_t defaulted = 99;
            EXPECT_EQ(lagestatus_transform(way.handle.get(), 3, input.data(),
                                           std::array{-one, 2 * one, 0 * one}.data(), output.data(), nullptr,
                                           nullptr, &defaulted),
                      0);
            EXPECT_EQ(defaulted, std::isnan(height) ? 3U : 0U);
            for (std::size_t column = 0; column < 4; ++column) {
                const std::size_t axis = column < 2 ? 1 - column : column;
                EXPECT_TRUE(same_bits(memory[column].values(),
                                      std::array{untouched, right[0].at[axis], right[1].at[axis],
                                                 right[2].at[axis], untouched}));
            }
        }
    }
    // Without heights and statuses, a point that fails among them.
    auto noHeights = heights(LAGESTATUS_HEIGHT_NONE, LAGESTATUS_HEIGHT_NONE);
    noHeights.calculation = LAGESTATUS_FAST;
    const std::array northings = {5.81e6, notANumber}, eastings = {3.56e6, 3.57e6};
    std::array<double, 2> phi = {}, lam = {};
    const std::array<const double*, 3> input = {northings.data(), eastings.data(), nullptr};
    const std::array<double*, 4> output = {phi.data(), lam.data(), nullptr, nullptr};
    EXPECT_EQ(lagestatus_transform(open_way(sample.handle, 103, 201, noHeights).handle.get(), 2, input.data(),
                                   nullptr, output.data(), nullptr, nullptr, nullptr),
              1);
    EXPECT_GT(phi[0], 52.0);
    EXPECT_TRUE(std::isnan(phi[1]) && std::isnan(lam[1]));
}

TEST(Bulk, RefusesWhatThereIsNot) {
    const auto sample = open_directory(SAMPLE_DIR);
    struct Larger {
        lagestatus_options options;
        unsigned char tail[9];
    };
    for (const Row& row : rows("bulk_options.tsv")) {
        std::array<int, 11> n = {};
        std::ranges::transform(row, n.begin(), [](const std::string& text) { return std::stoi(text); });
        Larger larger = {};
        larger.options = {sizeof larger.options,   n[4], n[5], n[6], n[7], n[8], n[9],
                          n[9] == 1 ? infinity : 0};
        larger.options.size += static_cast<std::size_t>(n[2]);
        larger.tail[8] = static_cast<unsigned char>(n[3]);
        EXPECT_EQ(open_way(sample.handle, n[0], n[1], larger.options).status, n[10]) << row[2];
    }

    lagestatus_directory* directory = nullptr;
    lagestatus_transformation* way = nullptr;
    lagestatus_system sizeless = {};
    auto system = sized<lagestatus_system>();
    lagestatus_height_model model = {};
    const lagestatus_directory* const held = sample.handle.get();
    const auto plain = open_way(sample.handle, 103, 203);
    std::array<double, 8> n = {5.81e6, 3.56e6, 62, 5.82e6, 3.57e6, 62};
    const std::array coordinates = {&n[0], &n[1], &n[2], &n[3]};
    const std::array<std::ptrdiff_t, 4> heap = {24, 24, 0, 24};
    const auto carry_two = [&](bool hasWay, bool hasInput, bool hasOutput) {
        return lagestatus_transform(hasWay ? plain.handle.get() : nullptr, 2,
                                    hasInput ? coordinates.data() : nullptr, nullptr,
                                    hasOutput ? coordinates.data() : nullptr, heap.data(), nullptr, nullptr);
    };
    for (const std::int64_t status : std::initializer_list<std::int64_t>{
             lagestatus_directory_open(nullptr, 0, &directory, nullptr),
             lagestatus_directory_open(SAMPLE_DIR, 0, nullptr, nullptr),
             lagestatus_directory_open(SAMPLE_DIR, 2, &directory, nullptr),
             lagestatus_transformation_open(nullptr, 103, 203, nullptr, &way, nullptr),
             lagestatus_transformation_open(held, 103, 203, nullptr, nullptr, nullptr),
             lagestatus_directory_read(nullptr, 103, 0, nullptr),
             lagestatus_directory_read(held, 103, 2, nullptr),
             lagestatus_directory_system(held, 0, &sizeless), lagestatus_directory_system(held, 10, &system),
             lagestatus_directory_system(held, 0, nullptr),
             lagestatus_directory_height_model(held, &model, nullptr),
             lagestatus_directory_height_model(nullptr, nullptr, nullptr), carry_two(true, true, true),
             carry_two(false, true, true), carry_two(true, false, true), carry_two(true, true, false)}) {
        EXPECT_EQ(status, LAGESTATUS_ARGUMENT);
    }
    EXPECT_EQ(n[3], 5.82e6);
    EXPECT_GT(lagestatus_message(93, nullptr, nullptr, 0), 0U);
    EXPECT_EQ(lagestatus_message(-4, nullptr, nullptr, 0), 0U);
    EXPECT_EQ(lagestatus_directory_count(nullptr), 0U);
    lagestatus_directory_close(nullptr);
    lagestatus_transformation_close(nullptr);

    // Every column left out, by what is given and wanted: whether that is refused. Those not wanted are all NaN.
    for (const Row& row : rows("bulk_columns.tsv")) {
        const std::string& needed = row[4];
        const auto through = open_way(sample.handle, std::stoi(row[0]), std::stoi(row[1]),
                                      heights(std::stoi(row[2]), std::stoi(row[3])));
        for (std::size_t left = 0; left <= 7; ++left) {
            std::array<double, 7> values = {
                std::stod(row[5]), std::stod(row[6]), std::stod(row[7]), 1, 1, 1, 1};
            std::array<double*, 7> columns = {};
            for (std::size_t column = 0; column < 7; ++column) {
                columns[column] = column == left ? nullptr : &values[column];
            }
            const auto transform_some = [&](std::size_t count) {
                return lagestatus_transform(through.handle.get(), count, columns.data(), nullptr,
                                            columns.data() + 3, nullptr, nullptr, nullptr);
            };
            const bool refused = left < 7 && needed[left] == '1';
            EXPECT_EQ(transform_some(0), 0);
            EXPECT_EQ(transform_some(1), refused ? LAGESTATUS_ARGUMENT : 0) << ::testing::PrintToString(row);
            for (std::size_t column = 3; column < 7; ++column) {
                EXPECT_EQ(std::isnan(values[column]), !refused && column != left && needed[column] == '0');
            }
        }
    }
}

// A system 17 in the Bessel datum, and a height model with values that cannot be told apart from the line alone.
class SmallDirectory : public DataDirectory {
  public:
    SmallDirectory() {
        write("DEFAULT", "1\n17\n\"f\"\n");
        std::vector<std::string> lines = good_lines();
        lines[2] = "\"Bessel\"";
        write("f.tra", join(lines));
        write("hoehe.ini", "0\n" + join(good_model()) + "1\v2 3\n");
    }
};

TEST(Bulk, LeavesNothingBehind) {
    const SmallDirectory small;
    const NoHandleLeft handles;
    const std::ptrdiff_t before = blocksHeld;
    for (int round = 0; round < 10000; ++round) {
        auto directory = open_directory(small.path());
        const auto way = open_way(directory.handle, 17, 17, heights(0, LAGESTATUS_HEIGHT_BOTH));
        auto model = sized<lagestatus_height_model>();
        ASSERT_EQ(lagestatus_directory_height_model(directory.handle.get(), &model, nullptr), 0);
        ASSERT_GT(model.memory, 8 * model.values);
        directory.handle.reset();  // which the transformation outlives
        ASSERT_EQ(carried(way.handle, {{51.4, 9.3, 100}})[0].status, 0);
    }
    EXPECT_EQ(blocksHeld, before);
}

TEST(Bulk, FindsItsDirectory) {
    const SmallDirectory small;
    std::filesystem::copy(small.path(), std::filesystem::path(small.path()) / u8"\u00E4\u4E2D");
    EXPECT_EQ(open_directory(small.path() + "/\u00E4\u4E2D").status, 0);
    std::string longest = small.path();
    longest.resize(LAGESTATUS_PATH_MAX, '/');
    EXPECT_EQ(open_directory(longest).status, 0);
    EXPECT_EQ(open_directory(longest + "/").status, LAGESTATUS_ARGUMENT);
    EXPECT_EQ(open_directory("").status, LAGESTATUS_ARGUMENT);
}

// Memory is lacking once, at every single place that asks for it.
TEST(Bulk, BearsThatMemoryIsLacking) {
    const SmallDirectory small;
    const std::string path = small.path();
    const lagestatus_options both = heights(0, LAGESTATUS_HEIGHT_BOTH);
    for (const int flags : {0, LAGESTATUS_READ_NOW}) {
        int lacking = 0;
        bool struck = true;
        for (std::size_t at = 0; struck; ++at) {
            const std::ptrdiff_t before = blocksHeld;
            lagestatus_directory* directory = nullptr;
            lagestatus_transformation* way = nullptr;
            const auto open = [&](lagestatus_failure* failure = nullptr) {
                return lagestatus_transformation_open(directory, 17, 17, &both, &way, failure);
            };
            const int status = told([&](lagestatus_failure* failure) {
                newsLeft = at;
                int reached = lagestatus_directory_open(path.c_str(), flags, &directory, failure);
                reached = reached == 0 ? open(failure) : reached;
                struck = newsLeft > never / 2;  // it was counted past 0
                newsLeft = never;
                return reached;
            });
            // A request that need not be met fails unnoticed: vectors that give back what they do not use.
            EXPECT_TRUE(status == 0 || (struck && status == LAGESTATUS_MEMORY)) << status;
            EXPECT_EQ(way == nullptr, status != 0);
            lacking += status != 0 ? 1 : 0;
            EXPECT_TRUE(way != nullptr || directory == nullptr || open() == 0) << "the next time";
            lagestatus_transformation_close(way);
            lagestatus_directory_close(directory);
            EXPECT_EQ(blocksHeld, before) << at;
        }
        EXPECT_GT(lacking, 10);
    }
}

}  // namespace
