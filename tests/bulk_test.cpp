// The bulk library, called as its users do: beside the seven functions, bit for bit, and by what its header promises.
#include <atomic>
#include <cstdlib>
#include <latch>
#include <new>
#include <random>
#include <thread>

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

constexpr std::array codes = {101, 102, 103, 104, 105, 201, 202, 203, 301, 303};

// Of one system of the sample: inside its height model and around, anywhere, and what is no place.
Points places(const HeldDirectory& sample, int code, std::mt19937& random, std::size_t count, bool small) {
    const auto between = [&random](double least, double most) {
        return std::uniform_real_distribution(least, most)(random);
    };
    Points all;
    for (std::size_t number = 0; number < count; ++number) {
        const bool near = small || number % 3 != 0;
        all.push_back({near ? between(50.9, 52.1) : between(-90, 90),
                       near ? between(8.9, 10.1) : between(-180, 180), between(-200, 4000)});
    }
    for (std::size_t number = 0; const Carried& one : carried(open_way(sample, 101, code).handle, all)) {
        if (one.status == 0) {
            std::copy_n(one.at.begin(), 3, all[number].begin());
        }
        ++number;
    }
    if (!small) {
        const std::array odd = {notANumber, infinity, -infinity, 1e300, -1e7, 1e-310, 0.0};
        all.push_back({0, 0, 0});
        all.push_back(all[1]);
        all.back()[random() % 3] = odd[random() % odd.size()];
    }
    return all;
}

TEST(Bulk, GivesTheBitsOfTransDll) {
    std::mt19937 random(1);
    for (const char* path : {SAMPLE_DIR, SCRAMBLED_DIR}) {
        const auto directory = open_directory(path);
        for (const int from : codes) {
            for (const int to : codes) {
                expect_as_trans_dll(path, directory.handle, from, to,
                                    places(directory.handle, from, random, 6, false));
            }
        }
    }
}

// The sample without its height model.
void copy_sample(const DataDirectory& directory) {
    for (const auto& file : std::filesystem::directory_iterator(SAMPLE_DIR)) {
        if (file.path().filename() != "hoehe.ini") {
            std::filesystem::copy(file, directory.path());
        }
    }
}

// The files of a corpus, without what the fuzz target takes off their end.
std::vector<std::string> corpus(const std::string& name, std::size_t taken) {
    const DataDirectory reader;
    std::vector<std::string> all;
    for (const auto& file : std::filesystem::directory_iterator(TEST_DATA_DIR "/../fuzz/corpus/" + name)) {
        std::filesystem::copy_file(file, reader.path() + "/file",
                                   std::filesystem::copy_options::overwrite_existing);
        const std::string content = reader.read("file");
        all.push_back(content.substr(0, content.size() - std::min(taken, content.size())));
    }
    EXPECT_GT(all.size(), 50U);
    return all;
}

// Broken in the lines of the grid: what a value is may hang on what was read of its line before.
std::string odd_model(std::mt19937& random) {
    const auto any = [&random](auto... texts) {
        const char* const all[] = {texts...};
        return std::string(all[random() % std::size(all)]);
    };
    std::vector<std::string> lines = good_model();
    for (std::size_t number = 31; number < lines.size(); ++number) {
        std::string line;
        for (const char character : lines[number] + any("", "", " 7 8", "x", "\r", "\v")) {
            const bool strikes = random() % 9 == 0;
            const bool blank = character == ' ';
            line += !strikes ? std::string(1, character)
                    : blank  ? any("\v", " \v", "\v ", "\f", "\r", "\t", "@", " @", "  ", "\v\f ", " \r ")
                             : any("x", "999999", "", " ", "-", "\v", "@", "1e308", ".5", "END");
        }
        lines[number] = line.substr(0, line.find("END")) + any("", "", "", "\n# comment", "\n \n");
    }
    // As it is stored, with line feeds and zero bytes where @ stands: those within lines only scrambling can make.
    const std::string text = join(lines);
    const bool scrambles = random() % 2 == 0;
    std::string stored = scrambles ? scrambled(text, 7) : "0\n" + text;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '@') {
            stored[at + 2] =
                static_cast<char>(stored[at + 2] - '@' + (scrambles && at % 2 == 0 ? '\n' : '\0'));
        }
    }
    return stored;
}

TEST(Bulk, GivesTheBitsOfTransDllWhateverTheFiles) {
    std::mt19937 random(2);
    std::vector<std::string> models;
    for (const std::string& content : corpus("heights", 6)) {
        models.push_back("0\n" + content);
    }
    for (const std::string& content : corpus("heights_scrambled", 7)) {
        models.push_back(content);
        models.push_back(scrambled(content, 1 + static_cast<int>(random() % 127)));
    }
    for (int number = 0; number < 400; ++number) {
        models.push_back(odd_model(random));
    }
    const DataDirectory directory;
    copy_sample(directory);
    const auto sample = open_directory(SAMPLE_DIR);
    constexpr std::array<std::array<int, 2>, 5> ways = {
        {{103, 203}, {203, 303}, {203, 103}, {102, 203}, {201, 202}}};
    for (std::size_t number = 0; const std::string& model : models) {
        SCOPED_TRACE(::testing::PrintToString(model));
        directory.write("hoehe.ini", model);
        const auto [from, to] = ways[number++ % ways.size()];
        expect_as_trans_dll(directory.path(), open_directory(directory.path()).handle, from, to,
                            places(sample.handle, from, random, 12, true));
    }
    const DataDirectory small;
    small.write("DEFAULT", "1\n17\n\"f\"\n");
    for (const std::string& content : corpus("parameters", 3)) {
        small.write("f.tra", content);
        expect_as_trans_dll(small.path(), open_directory(small.path()).handle, 17, 17, {{51.4, 9.3, 100}});
    }
    small.write("f.tra", join(good_lines()));
    for (const std::string& content : corpus("definition", 2)) {
        small.write("DEFAULT", content);
        const int code = list(small.path()).codes[0];
        const auto held = open_directory(small.path());
        EXPECT_EQ(held.status, list(small.path()).status);
        if (held.status == 0) {
            expect_as_trans_dll(small.path(), held.handle, code, code, {{51.4, 9.3, 100}});
        }
    }
}

// Normal heights towards geocentric systems are made ellipsoidal from every source, as transr_dll does when asked to.
TEST(Bulk, CorrectsNormalHeightsTowardsGeocentricSystems) {
    const auto sample = open_directory(SAMPLE_DIR);
    for (const auto& [code, base] : {std::pair(201, "etrs89-geographisch"), {101, "dhdn-geographisch"}}) {
        const auto way = open_way(sample.handle, code, 202,
                                  heights(LAGESTATUS_HEIGHT_NORMAL, LAGESTATUS_HEIGHT_ELLIPSOIDAL));
        const Description from = describe(Role::source, SAMPLE_DIR, base, 0, code);
        const Description to = describe(Role::target, SAMPLE_DIR, "etrs89-geozentrisch", 0, 202);
        Road road = {.point = {52.3, 9.7, 62, 0},
                     .sourceEllipsoid = from.ellipsoid,
                     .targetKind = to.kind,
                     .targetEllipsoid = to.ellipsoid,
                     .sourceFlag = -1,
                     .targetFlag = -1};
        std::ranges::copy(from.parameters, road.source.begin());
        std::ranges::copy(to.parameters, road.target.begin());
        ASSERT_EQ(road.run(), 0);
        road.point[3] = notANumber;
        EXPECT_EQ(carried(way.handle, {{52.3, 9.7, 62}})[0], (Carried{0, road.point}));
    }
}

// Columns anywhere in memory, by a row of tests/data each: strides of inputs and outputs in bytes, easting first on
// either side, default height; the values lie behind one odd byte.
TEST(Bulk, TakesColumnsAsTheyLie) {
    constexpr std::ptrdiff_t count = 9;
    const auto sample = open_directory(SAMPLE_DIR);
    const auto plain = open_way(sample.handle, 103, 201, heights(0, LAGESTATUS_HEIGHT_BOTH));
    for (const Row& row : rows("bulk_layouts.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        std::array<std::ptrdiff_t, 10> n = {};
        std::ranges::transform(row, n.begin(), [](const std::string& text) { return std::stol(text); });
        lagestatus_options options = heights(0, LAGESTATUS_HEIGHT_BOTH);
        options.sourceAxes = static_cast<int>(n[7]);
        options.targetAxes = static_cast<int>(n[8]);
        options.hasDefaultHeight = static_cast<int>(n[9]);
        options.defaultHeight = 123;
        std::array<std::vector<char>, 7> blocks;
        std::array<char*, 7> first = {};
        for (std::size_t column = 0; column < 7; ++column) {
            blocks[column].assign(static_cast<std::size_t>(std::abs(n[column]) * count + 9), '\x55');
            first[column] = blocks[column].data() + 1 - std::min<std::ptrdiff_t>(n[column], 0) * (count - 1);
        }
        const auto value = [&](std::size_t column, std::ptrdiff_t point) {
            return first[column] + n[column] * point;
        };
        Points meant;
        for (std::ptrdiff_t point = 0; point < count; ++point) {
            const auto step = static_cast<double>(point);
            const double height = point % 3 == 1 && n[2] != 0 ? notANumber : n[2] != 0 ? 10 * step : 50;
            const std::array given = {5.81e6 + 1e3 * step, 3.56e6 + 1e3 * step, height};
            for (std::size_t column = 0; column < 3; ++column) {
                const std::size_t axis = column < 2 && n[7] == 1 ? 1 - column : column;
                std::memcpy(value(column, point), &given[axis], sizeof(double));
            }
            meant.push_back({given[0], given[1], std::isnan(height) && n[9] == 1 ? 123 : height});
        }
        std::array<std::vector<char>, 7> expected = blocks;
        const std::vector<Carried> right = carried(plain.handle, meant);
        std::array<const double*, 3> input = {};
        std::array<double*, 4> output = {};
        for (std::size_t column = 0; column < 7; ++column) {
            auto* const place = reinterpret_cast<double*>(first[column]);
            *(column < 3 ? &input[column] : const_cast<const double**>(&output[column - 3])) = place;
        }
        std::array<int, count> statuses = {};
        std::size_t defaulted = 0;
        lagestatus_transform(open_way(sample.handle, 103, 201, options).handle.get(), count, input.data(),
                             n.data(), output.data(), n.data() + 3, statuses.data(), &defaulted);
        EXPECT_EQ(defaulted, n[9] == 1 && n[2] != 0 ? 3U : 0U);
        for (std::size_t column = 3; column < 7; ++column) {
            const std::size_t axis = column < 5 && n[8] == 1 ? 4 - column : column - 3;
            for (std::ptrdiff_t point = 0; point < count; ++point) {
                const Carried& each = right[static_cast<std::size_t>(point)];
                Carried got = {statuses[static_cast<std::size_t>(point)], each.at};
                std::memcpy(&got.at[axis], value(column, point), sizeof(double));
                EXPECT_EQ(got, each);
                std::memcpy(expected[column].data() + (value(column, point) - blocks[column].data()),
                            value(column, point), sizeof(double));
            }
        }
        EXPECT_EQ(blocks, expected) << "nothing else is written";
    }
}

TEST(Bulk, RefusesWhatThereIsNot) {
    const auto sample = open_directory(SAMPLE_DIR);
    struct Larger {
        lagestatus_options options;
        unsigned char tail[9];
    };
    for (const Row& row : rows("bulk_options.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        std::array<int, 11> n = {};
        std::ranges::transform(row, n.begin(), [](const std::string& text) { return std::stoi(text); });
        Larger larger = {};
        larger.options = {sizeof larger.options,   n[4], n[5], n[6], n[7], n[8], n[9],
                          n[9] == 1 ? infinity : 0};
        larger.options.size += static_cast<std::size_t>(n[2]);
        larger.tail[8] = static_cast<unsigned char>(n[3]);
        EXPECT_EQ(open_way(sample.handle, n[0], n[1], larger.options).status, n[10]);
    }

    const auto is_refused = [](auto status) { EXPECT_EQ(status, LAGESTATUS_ARGUMENT); };
    lagestatus_directory* directory = nullptr;
    is_refused(lagestatus_directory_open(nullptr, 0, &directory, nullptr));
    is_refused(lagestatus_directory_open(SAMPLE_DIR, 0, nullptr, nullptr));
    is_refused(lagestatus_directory_open(SAMPLE_DIR, 2, &directory, nullptr));
    lagestatus_transformation* transformation = nullptr;
    is_refused(lagestatus_transformation_open(nullptr, 103, 203, nullptr, &transformation, nullptr));
    is_refused(lagestatus_transformation_open(sample.handle.get(), 103, 203, nullptr, nullptr, nullptr));
    is_refused(lagestatus_directory_read(nullptr, 103, 0, nullptr));
    is_refused(lagestatus_directory_read(sample.handle.get(), 103, 2, nullptr));
    EXPECT_EQ(lagestatus_directory_count(nullptr), 0U);
    lagestatus_system systems[2] = {};
    is_refused(lagestatus_directory_system(sample.handle.get(), 0, nullptr));
    is_refused(lagestatus_directory_system(sample.handle.get(), 0, systems));
    systems[0].size = sizeof systems;
    is_refused(lagestatus_directory_system(sample.handle.get(), 10, systems));
    is_refused(lagestatus_directory_system(nullptr, 0, systems));
    EXPECT_EQ(systems[0].code, 0);
    EXPECT_EQ(lagestatus_directory_system(sample.handle.get(), 0, systems), 0);
    EXPECT_EQ(systems[0].size + systems[1].size, sizeof systems)
        << "as the caller set it, and nothing behind";
    lagestatus_height_model model = {};
    is_refused(lagestatus_directory_height_model(nullptr, nullptr, nullptr));
    is_refused(lagestatus_directory_height_model(sample.handle.get(), &model, nullptr));
    lagestatus_directory_close(nullptr);
    lagestatus_transformation_close(nullptr);

    // Every column left out, by what is given and wanted: whether that is refused. Those not wanted are all NaN.
    for (const Row& row : rows("bulk_columns.tsv")) {
        const int from = std::stoi(row[0]), to = std::stoi(row[1]);
        const std::string& needed = row[4];
        const lagestatus_options options = heights(std::stoi(row[2]), std::stoi(row[3]));
        auto through = open_way(sample.handle, from, to, options);
        for (std::size_t left = 0; left <= 7; ++left) {
            SCOPED_TRACE(::testing::Message() << ::testing::PrintToString(row) << left);
            double values[7] = {5808000, 4590000, 80, 1, 1, 1, 1};
            if (from == 102) {
                std::ranges::copy(std::array{3785000.0, 902000.0, 5038000.0}, values);
            }
            const auto at = [&](std::size_t column) { return column == left ? nullptr : &values[column]; };
            const double* const input[] = {at(0), at(1), at(2)};
            double* const output[] = {at(3), at(4), at(5), at(6)};
            const bool refused = left < 7 && needed[left] == '1';
            const auto transform_some = [&](std::size_t count) {
                return lagestatus_transform(through.handle.get(), count, input, nullptr, output, nullptr,
                                            nullptr, nullptr);
            };
            EXPECT_EQ(transform_some(0), 0);
            EXPECT_EQ(transform_some(1), refused ? LAGESTATUS_ARGUMENT : 0);
            for (std::size_t column = 3; column < 7; ++column) {
                EXPECT_EQ(std::isnan(values[column]), !refused && column != left && needed[column] == '0');
                EXPECT_EQ(values[column] == 1, refused || column == left);
            }
            is_refused(lagestatus_transform(nullptr, 1, input, nullptr, output, nullptr, nullptr, nullptr));
            is_refused(lagestatus_transform(through.handle.get(), 1, nullptr, nullptr, output, nullptr,
                                            nullptr, nullptr));
            is_refused(lagestatus_transform(through.handle.get(), 1, input, nullptr, nullptr, nullptr,
                                            nullptr, nullptr));
        }
    }
}

// A small directory: its system 17 lies in the Bessel datum, 18 outside; 19 has no file.
class SmallDirectory : public DataDirectory {
  public:
    SmallDirectory() {
        write("DEFAULT", "3 0\n17 4\n\"f\"\n18 -5\n\"g\"\n19\n\"none\"\n");
        std::vector<std::string> lines = good_lines();
        lines[0] = "18";
        write("g.tra", join(lines));
        lines[0] = "17";
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
        directory.handle.reset();  // which the transformation outlives
        ASSERT_EQ(carried(way.handle, {{51.4, 9.3, 100}})[0].status, 0);
    }
    EXPECT_EQ(blocksHeld, before);
}

TEST(Bulk, FindsItsDirectory) {
    const SmallDirectory small;
    const std::filesystem::path below = std::filesystem::path(small.path()) / u8"\u00E4\u4E2D";
    std::filesystem::create_directory(below);
    for (const char* name : {"/DEFAULT", "/f.tra", "/hoehe.ini"}) {
        std::filesystem::copy(small.path() + name, below);
    }
    const auto inUtf8 = open_directory(small.path() + "/\u00E4\u4E2D");
    EXPECT_EQ(lagestatus_directory_read(inUtf8.handle.get(), 17, LAGESTATUS_SOURCE, nullptr), 0);
    EXPECT_EQ(lagestatus_directory_height_model(inUtf8.handle.get(), nullptr, nullptr), 0);
    std::string longest = small.path();
    longest.resize(LAGESTATUS_PATH_MAX, '/');
    EXPECT_EQ(open_directory(longest).status, 0);
    EXPECT_EQ(open_directory(longest + "/").status, LAGESTATUS_ARGUMENT);
    EXPECT_EQ(open_directory("").status, LAGESTATUS_ARGUMENT);
    EXPECT_EQ(open_directory(small.path() + "/none").status, 1);
}

// Memory is lacking once, at every single place that asks for it.
TEST(Bulk, BearsThatMemoryIsLacking) {
    const SmallDirectory small;
    const std::string path = small.path();
    const lagestatus_options both = heights(LAGESTATUS_HEIGHT_ELLIPSOIDAL, LAGESTATUS_HEIGHT_BOTH);
    struct Held {
        lagestatus_directory* directory = nullptr;
        lagestatus_transformation* transformation = nullptr;
    };
    using Step = std::function<int(Held&, lagestatus_failure*)>;
    const auto open = [&](int flags) {
        return [&path, flags](Held& held, lagestatus_failure* failure) {
            return lagestatus_directory_open(path.c_str(), flags, &held.directory, failure);
        };
    };
    const Step steps[] = {
        open(LAGESTATUS_READ_NOW),
        open(0),
        [](Held& held, lagestatus_failure* failure) {
            lagestatus_system system = {};
            system.size = sizeof system;
            const int status = lagestatus_directory_system(held.directory, 1, &system);
            EXPECT_EQ(system.code, status == 0 ? 18 : 0);
            *failure = {};  // none is asked for
            failure->message[0] = 'x';
            failure->status = status;
            return status;
        },
        [](Held& held, lagestatus_failure* failure) {
            return lagestatus_directory_read(held.directory, 17, LAGESTATUS_TARGET, failure);
        },
        [](Held& held, lagestatus_failure* failure) {
            lagestatus_height_model model = {};
            model.size = sizeof model;
            const int status = lagestatus_directory_height_model(held.directory, &model, failure);
            EXPECT_EQ(model.columns, status == 0 ? 9 : 0);
            return status;
        },
        [&both](Held& held, lagestatus_failure* failure) {
            return lagestatus_transformation_open(held.directory, 17, 18, &both, &held.transformation,
                                                  failure);
        }};
    int unnoticed = 0;
    for (std::size_t number = 0; const Step& step : steps) {
        bool failed = true;
        std::size_t at = 0;
        for (; failed; ++at) {
            SCOPED_TRACE(::testing::Message() << "step " << number << ", request " << at);
            Held held;
            lagestatus_failure failure;
            const std::ptrdiff_t before = blocksHeld;
            if (number > 1) {
                ASSERT_EQ(open(0)(held, &failure), 0);
            }
            newsLeft = at;
            const int status = step(held, &failure);
            failed = newsLeft > never / 2;  // it was counted past 0
            newsLeft = never;
            // A request that need not be met may fail unnoticed: vectors that give back what they do not use.
            const bool needed = failed && status != 0;
            EXPECT_EQ(status, needed ? LAGESTATUS_MEMORY : 0);
            EXPECT_EQ(failure.status, status);
            unnoticed += failed && !needed ? 1 : 0;
            EXPECT_TRUE(!needed || failure.message[0] != '\0');
            EXPECT_TRUE(!needed ||
                        (held.transformation == nullptr && (number > 1 || held.directory == nullptr)));
            EXPECT_TRUE(!needed || number > 1 || blocksHeld == before);
            EXPECT_TRUE(!needed || step(held, &failure) == 0) << "the next time";
            lagestatus_transformation_close(held.transformation);
            lagestatus_directory_close(held.directory);
            EXPECT_EQ(blocksHeld, before);
        }
        EXPECT_GT(at, 2U);
        ++number;
    }
    EXPECT_LE(unnoticed, 3) << "one for each time that the height model is read";
    newsLeft = 0;
    char message[9];
    EXPECT_EQ(lagestatus_message(1027, SAMPLE_DIR, message, sizeof message), 0U);
    newsLeft = never;
}

// All that can be had of a directory: points through a transformation of the caller's and between every two of its
// systems, and what it lists.
std::vector<Carried> everything(const HeldDirectory& directory, const HeldWay& shared) {
    Points points;
    for (double step = 0; step < 20; ++step) {
        points.push_back({5.3e6 + 3e4 * step, 4.45e6 + 9e3 * step, 10 * step});
    }
    std::vector<Carried> all = carried(shared, points);
    for (std::size_t index = 0; index < codes.size(); ++index) {
        auto system = sized<lagestatus_system>();
        const int status = lagestatus_directory_system(directory.get(), index, &system);
        all.push_back({status, {static_cast<double>(system.code), system.semiMinor}});
        for (const int to : codes) {
            const auto own = open_way(directory, codes[index], to, heights(0, LAGESTATUS_HEIGHT_BOTH));
            const std::vector<Carried> reached = carried(own.handle, points);
            all.insert(all.end(), reached.begin(), reached.end());
        }
    }
    return all;
}

TEST(Bulk, ServesManyThreads) {
    constexpr int threads = 8;
    const NoHandleLeft handles;
    for (const int code : {103, 303}) {  // of the Bessel datum, and one whose heights are found by iteration
        const lagestatus_options normal = heights(LAGESTATUS_HEIGHT_NORMAL, LAGESTATUS_HEIGHT_BOTH);
        const auto alone = open_directory(SAMPLE_DIR);
        const auto shared = open_way(alone.handle, code, 203, normal);
        const auto expected = everything(alone.handle, shared.handle);
        EXPECT_EQ(expected[0].status, 0);
        const auto anew = open_directory(SAMPLE_DIR);  // what is read, many need at the same time
        std::atomic<int> different = 0;
        std::latch start(threads);
        std::vector<std::thread> all;
        for (int number = 0; number < threads; ++number) {
            all.emplace_back([&] {
                start.arrive_and_wait();
                different += everything(anew.handle, shared.handle) == expected ? 0 : 1;
            });
        }
        std::ranges::for_each(all, &std::thread::join);
        EXPECT_EQ(different, 0);
    }
}

}  // namespace
