// The bulk library, called as its users do: beside the seven functions, bit for bit, and by what its header promises.
#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <random>
#include <set>

#include "base/projection_kind.h"
#include "bulk/lagestatus_bulk.h"
#include "support.h"

using namespace testing_support;

namespace {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();
thread_local std::size_t newsLeft = never;  // until operator new fails, once
thread_local std::size_t newsMade = 0;
thread_local std::ptrdiff_t blocksHeld = 0;

}  // namespace

// Not inlined: GCC 12 would take malloc and delete for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++newsMade;
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

using Directory = std::unique_ptr<lagestatus_directory, decltype(&lagestatus_directory_close)>;
using Transformation = std::unique_ptr<lagestatus_transformation, decltype(&lagestatus_transformation_close)>;
using Points = std::vector<std::array<double, 3>>;

// Checks that a failure is told of whole. Lines are those of the file: content has it, if it is stored plain.
int told(int status, const lagestatus_failure& failure, const std::string& content = "") {
    const std::string line = failure.text;
    EXPECT_EQ(failure.status, status);
    EXPECT_EQ(failure.message[0] == '\0', status == 0) << status;
    EXPECT_EQ(failure.file[0] == '\0', status <= 0) << status;
    // That of 93 names no file.
    EXPECT_TRUE(status == 93 || std::string(failure.message).find(failure.file) != std::string::npos);
    const std::set<int> withoutLine = {0, 1, 7, 93, 100, 1100, 1110};
    EXPECT_EQ(failure.line > 0, status > 0 && !withoutLine.contains(status)) << status;
    EXPECT_TRUE(failure.line > 0 || line.empty());
    const bool isAscii =
        std::ranges::all_of(content, [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); });
    if (isAscii && failure.line > 0 && !content.empty()) {
        std::size_t at = 0;
        for (std::int64_t number = 1; number < failure.line; ++number) {
            at = content.find('\n', at) + 1;
        }
        EXPECT_EQ(line, content.substr(at, content.find('\n', at) - at).substr(0, sizeof failure.text - 1));
    }
    return status;
}

// What the functions open; status tells why there is none. Whatever lay in the caller's memory is overwritten.
template <typename Handle>
struct Opened {
    int status;
    Handle handle;
};
Opened<Directory> opened(const std::string& path, int flags = 0, const std::string& content = "") {
    auto* directory = reinterpret_cast<lagestatus_directory*>(16);
    lagestatus_failure failure;
    std::memset(&failure, 'x', sizeof failure);
    const int status = lagestatus_directory_open(path.c_str(), flags, &directory, &failure);
    EXPECT_EQ(directory == nullptr, status != 0);
    return {told(status, failure, content), {directory, lagestatus_directory_close}};
}
Opened<Transformation> opened(const Directory& in, int from, int to, const lagestatus_options* options,
                              const std::string& content = "") {
    auto* transformation = reinterpret_cast<lagestatus_transformation*>(16);
    lagestatus_failure failure;
    std::memset(&failure, 'x', sizeof failure);
    const int status = lagestatus_transformation_open(in.get(), from, to, options, &transformation, &failure);
    EXPECT_EQ(transformation == nullptr, status != 0);
    return {told(status, failure, content), {transformation, lagestatus_transformation_close}};
}
lagestatus_options heights(int given, int wanted) {
    lagestatus_options options = {};
    options.size = sizeof options;
    options.height_given = given;
    options.height_wanted = wanted;
    return options;
}

struct Carried {
    int status = 0;
    std::array<double, 4> at = {};
};
// What is not a number is one like another.
void expect_equal(const Carried& got, const Carried& expected) {
    EXPECT_EQ(got.status, expected.status);
    for (std::size_t column = 0; column < 4; ++column) {
        EXPECT_TRUE((std::isnan(got.at[column]) && std::isnan(expected.at[column])) ||
                    same_bits({&got.at[column], 1}, {&expected.at[column], 1}))
            << column << ": " << got.at[column] << ", not " << expected.at[column];
    }
}

// All columns, side by side in records.
std::vector<Carried> carried(const Transformation& through, const Points& points) {
    std::vector<Carried> all(points.size());
    const double* const input[] = {points[0].data(), &points[0][1], &points[0][2]};
    double* const output[] = {all[0].at.data(), &all[0].at[1], &all[0].at[2], &all[0].at[3]};
    constexpr std::ptrdiff_t in = sizeof points[0], out = sizeof all[0];
    const std::ptrdiff_t inputStrides[] = {in, in, in}, outputStrides[] = {out, out, out, out};
    std::vector<int> status(points.size(), -9);
    const std::size_t news = newsMade;
    const auto failures = guarded([&] {
        return lagestatus_transform(through.get(), points.size(), input, inputStrides, output, outputStrides,
                                    status.data(), nullptr);
    });
    EXPECT_EQ(newsMade, news);
    EXPECT_EQ(failures, std::ranges::count_if(status, [](int each) { return each != 0; }));
    for (std::size_t number = 0; number < all.size(); ++number) {
        all[number].status = status[number];
    }
    return all;
}

// A directory whose every answer is compared with that of the seven functions.
class Compared {
  public:
    explicit Compared(std::string directory, std::string oneFile = "")
        : path(std::move(directory)), content(std::move(oneFile)), held(opened(path, 0, content)) {
        const Listing listing = list(path);
        EXPECT_EQ(held.status, listing.status);
        const auto count = static_cast<std::size_t>(held.status == 0 ? std::max(listing.count, 0) : 0);
        EXPECT_EQ(lagestatus_directory_count(held.handle.get()), count);
        const Listing named = list(path, count);
        for (std::size_t index = 0; index < count; ++index) {
            const int code = named.codes[index];
            const auto described = [&](Role role) {
                return describe(role, path, named.names[index], named.flag, code);
            };
            const System known = {described(Role::source), described(Role::target)};
            expect_described(index, code, named.auxiliary[index], known);
            systems.try_emplace(code, known);
        }
    }

    // Both kinds of height given and all that may be wanted.
    void go(int from, int to, const Points& points) const {
        for (const char letter : {'e', 'N'}) {
            SCOPED_TRACE(::testing::Message() << path << ' ' << from << " to " << to << ' ' << letter);
            go(from, to, points, letter);
        }
    }
    [[nodiscard]] const Directory& directory() const { return held.handle; }

  private:
    struct System {
        Description source, target;
    };

    void expect_described(std::size_t index, int code, int auxiliary, const System& known) const {
        lagestatus_system system = {};
        system.size = sizeof system;
        ASSERT_EQ(lagestatus_directory_system(held.handle.get(), index, &system), 0);
        EXPECT_EQ(system.code, code);
        EXPECT_EQ(system.auxiliary, auxiliary);
        EXPECT_EQ(system.source_status, known.source.status);
        EXPECT_EQ(system.target_status, known.target.status);
        EXPECT_EQ(system.kind, static_cast<int>(lagestatus::projection_kind(known.source.kind)));
        EXPECT_EQ(system.in_bessel_datum, known.source.ellipsoid.starts_with("Bessel") ? 1 : 0);
        for (const auto& [utf8, text] : {std::pair(system.name, known.source.name),
                                         {system.kind_name, known.source.kind},
                                         {system.ellipsoid, known.source.ellipsoid}}) {
            const bool isAscii = std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
            EXPECT_TRUE(isAscii ? utf8 == text : std::strlen(utf8) > text.size()) << utf8;
        }
        if (known.source.status == 0) {
            EXPECT_EQ(system.semi_major, known.source.parameters[lagestatus::slot::semiMajorAxis]);
            EXPECT_EQ(system.semi_minor, known.source.parameters[lagestatus::slot::semiMinorAxis]);
        }
        for (const auto& [role, status] :
             {std::pair(LAGESTATUS_SOURCE, known.source.status), {LAGESTATUS_TARGET, known.target.status}}) {
            lagestatus_failure failure;
            const int first = systems.contains(code) ? -9 : status;  // by its code a system is found but once
            const int read = lagestatus_directory_read(held.handle.get(), code, role, &failure);
            EXPECT_TRUE(told(read, failure, content) == first || first == -9);
        }
    }

    // By transr_dll in a directory of its own choice.
    [[nodiscard]] Carried by_description(int from, int to, const std::array<double, 3>& point, int flag,
                                         const std::string& in) const {
        const Description &s = systems.at(from).source, &t = systems.at(to).target;
        Road road = {.directory = in,
                     .point = {point[0], point[1], point[2], 0},
                     .sourceKind = s.kind,
                     .sourceEllipsoid = s.ellipsoid,
                     .targetKind = t.kind,
                     .targetEllipsoid = t.ellipsoid,
                     .sourceFlag = flag,
                     .targetFlag = flag,
                     .zone = t.zone};
        std::ranges::copy(s.parameters, road.source.begin());
        std::ranges::copy(t.parameters, road.target.begin());
        const int status = road.run();
        return {status, road.point};
    }

    void go(int from, int to, const Points& points, char letter) const {
        std::vector<Transformed> right;
        for (const auto& point : points) {
            right.push_back(transform(path, from, to, point, letter));
        }
        if (held.status != 0) {
            EXPECT_EQ(held.status, right[0].status);
            return;
        }
        const int given = letter == 'e' ? LAGESTATUS_HEIGHT_ELLIPSOIDAL : LAGESTATUS_HEIGHT_NORMAL;
        for (const int wanted : {LAGESTATUS_HEIGHT_BOTH, LAGESTATUS_HEIGHT_ELLIPSOIDAL,
                                 LAGESTATUS_HEIGHT_NORMAL, LAGESTATUS_HEIGHT_NONE}) {
            SCOPED_TRACE(wanted);
            const lagestatus_options options = heights(given, wanted);
            const auto through = opened(held.handle, from, to, &options, content);
            if (through.status > 0) {
                EXPECT_EQ(through.status, right[0].status);
                continue;
            }
            const auto geocentric = [](const Description& system) {
                return system.kind.starts_with("Geozentrisch");
            };
            const bool towardsGeocentric = geocentric(systems.at(to).target);
            const bool refused = towardsGeocentric && wanted == LAGESTATUS_HEIGHT_NORMAL;
            ASSERT_EQ(through.status, refused ? LAGESTATUS_ARGUMENT : 0);
            if (refused) {
                continue;
            }
            const bool normal = letter == 'N' && !geocentric(systems.at(from).source);
            const bool both = wanted == LAGESTATUS_HEIGHT_BOTH;
            const auto got = carried(through.handle, points);
            for (std::size_t number = 0; number < points.size(); ++number) {
                SCOPED_TRACE(::testing::PrintToString(points[number]));
                // The place: no height model plays a part in it but by a normal height given.
                const auto place = [&] {
                    Carried plain = by_description(from, to, points[number], 0, empty.path());
                    plain.status = plain.status >= 1000 ? 0 : plain.status;
                    return plain;
                };
                Carried expected = {right[number].status, right[number].result};
                if (towardsGeocentric && !both) {
                    expected = normal ? by_description(from, to, points[number], -1, path) : place();
                } else if (!normal &&
                           (wanted == LAGESTATUS_HEIGHT_ELLIPSOIDAL || wanted == LAGESTATUS_HEIGHT_NONE)) {
                    expected = place();
                }
                const bool lost = expected.status >= 1000;
                bool nothing = (expected.status > 0 && !lost) || (lost && towardsGeocentric);
                if (lost && same_bits({expected.at.data(), 3}, std::array{0.0, 0.0, 0.0})) {
                    const Carried plain = place();
                    expected.at = plain.at;
                    nothing = nothing || plain.status != 0;
                }
                if (nothing) {
                    expected.at.fill(notANumber);
                }
                const bool third = towardsGeocentric || both || wanted == LAGESTATUS_HEIGHT_ELLIPSOIDAL;
                expected.at[2] = third && !(lost && normal) ? expected.at[2] : notANumber;
                expected.at[3] =
                    (both || wanted == LAGESTATUS_HEIGHT_NORMAL) && !lost ? expected.at[3] : notANumber;
                expect_equal(got[number], expected);
            }
        }
    }

    std::string path, content;
    Opened<Directory> held;
    std::map<int, System> systems;
    const DataDirectory empty;
};

// Of one system: inside the sample and around it, anywhere, and what is no place.
Points places(const Directory& in, int code, std::mt19937& random, std::size_t count, bool small = false) {
    const auto between = [&random](double least, double most) {
        return std::uniform_real_distribution(least, most)(random);
    };
    Points all;
    for (std::size_t number = 0; number < count; ++number) {
        const bool near = small || number % 3 != 0;
        all.push_back({near ? between(50.9, 52.1) : between(-90, 90),
                       near ? between(8.9, 10.1) : between(-180, 180), between(-200, 4000)});
    }
    const auto through = opened(in, 101, code, nullptr);
    for (std::size_t number = 0; const Carried& one : carried(through.handle, all)) {
        if (one.status == 0) {
            std::copy_n(one.at.begin(), 3, all[number].begin());
        }
        ++number;
    }
    if (!small) {
        const double odd[] = {notANumber, infinity, -infinity, 1e300, -1e7, 1e-310, 0.0};
        all.push_back({0, 0, 0});
        all.back()[random() % 3] = odd[random() % 7];
        all.push_back(all[1]);
        all.back()[random() % 3] = odd[random() % 7];
    }
    return all;
}

constexpr int codes[] = {101, 102, 103, 104, 105, 201, 202, 203, 301, 303};

TEST(Bulk, GivesTheBitsOfTransDll) {
    std::mt19937 random(1);
    for (const char* path : {SAMPLE_DIR, SCRAMBLED_DIR}) {
        const Compared compared(path);
        for (const int from : codes) {
            for (const int to : codes) {
                compared.go(from, to, places(compared.directory(), from, random, 5));
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

TEST(Bulk, GivesTheBitsOfTransDllWhateverTheHeightModel) {
    std::mt19937 random(2);
    std::vector<std::string> models;
    for (const std::string& content : corpus("heights", 6)) {
        models.push_back("0\n" + content);
    }
    for (const std::string& content : corpus("heights_scrambled", 7)) {
        models.push_back(content);
        models.push_back(scrambled(content, 1 + static_cast<int>(random() % 127)));
    }
    for (const Row& row : rows("height_models.tsv")) {
        std::vector<std::string> lines = good_model();
        lines.insert(lines.begin(), "0");
        lines[std::stoul(row[0])] = row[1];
        const std::string text = join(lines);
        models.push_back(text.substr(0, text.find("END")));
    }
    for (int number = 0; number < 400; ++number) {
        models.push_back(odd_model(random));
    }
    const DataDirectory directory;
    copy_sample(directory);
    const auto sample = opened(SAMPLE_DIR);
    constexpr std::pair<int, int> ways[] = {{103, 203}, {203, 303}, {203, 103}, {102, 203}, {201, 202}};
    for (std::size_t number = 0; const std::string& model : models) {
        SCOPED_TRACE(::testing::PrintToString(model));
        directory.write("hoehe.ini", model);
        const Compared compared(directory.path());
        const auto [from, to] = ways[number++ % std::size(ways)];
        compared.go(from, to, places(sample.handle, from, random, 12, true));
        // What is told of the head is what points get that need a normal height.
        lagestatus_failure failure;
        const int head =
            told(lagestatus_directory_height_model(compared.directory().get(), nullptr, &failure), failure);
        const int status = transform(directory.path(), 101, 201, {51.4, 9.3, 0}).status;
        EXPECT_TRUE(status == head ||
                    (head == 0 && (status == 1090 || status == 1100 || status == 1108 || status == 1109)))
            << head << ' ' << status;
    }
}

TEST(Bulk, FailsAsTransDllWhateverTheOtherFiles) {
    const DataDirectory directory;
    directory.write("f.tra", join(good_lines()));
    directory.write("hoehe.ini", "0\n" + join(good_model()));
    const Points points = {{51.4, 9.3, 100}};
    for (const std::string& content : corpus("definition", 2)) {
        SCOPED_TRACE(::testing::PrintToString(content));
        directory.write("DEFAULT", content);
        const int code = list(directory.path()).codes[0];
        Compared(directory.path()).go(code, code, points);
    }
    for (const bool scrambles : {false, true}) {
        directory.write("DEFAULT", scrambles ? "1 1\n17 4\n\"f\"\n" : "1 0\n17 4\n\"f\"\n");
        for (const std::string& content :
             scrambles ? corpus("parameters_scrambled", 4) : corpus("parameters", 3)) {
            SCOPED_TRACE(::testing::PrintToString(content));
            directory.write(scrambles ? "f.tr0" : "f.tra", content);
            const Compared compared(directory.path(), scrambles ? "" : content);
            compared.go(17, 17, points);
            compared.go(17, 18, points);
        }
    }
}

TEST(Bulk, DescribesTheSample) {
    const auto sample = opened(SAMPLE_DIR, LAGESTATUS_READ_NOW);
    // Strips: width and offset; one meridian: its degrees.
    const std::map<int, std::array<double, 3>> origins = {{103, {3, 0, 0}},
                                                          {104, {0, 0, 9}},
                                                          {105, {0, 0, 13.62720366666667}},
                                                          {203, {6, -183, 0}},
                                                          {303, {3, 0, 0}}};
    for (std::size_t index = 0; index < 10; ++index) {
        lagestatus_system system = {};
        system.size = sizeof system;
        ASSERT_EQ(lagestatus_directory_system(sample.handle.get(), index, &system), 0);
        EXPECT_EQ(system.code, codes[index]);
        const auto origin = origins.find(system.code);
        const auto [width, offset, meridian] =
            origin != origins.end() ? origin->second : std::array<double, 3>{};
        EXPECT_EQ(system.has_strips, width > 0 ? 1 : 0);
        EXPECT_EQ(static_cast<double>(system.strip_width), width) << system.code;
        EXPECT_EQ(static_cast<double>(system.strip_offset), offset) << system.code;
        EXPECT_NEAR(system.central_meridian, meridian, 1e-12) << system.code;
        EXPECT_EQ(system.zone_number, system.code == 104 ? 3 : 0);
    }
    lagestatus_height_model model = {};
    model.size = sizeof model;
    ASSERT_EQ(lagestatus_directory_height_model(sample.handle.get(), &model, nullptr), 0);
    EXPECT_EQ(model.columns * 1000 + model.rows, 475 * 1000 + 526);
    EXPECT_EQ(model.values, (475 * 526 + 6) / 7 * 7);
    EXPECT_NEAR(static_cast<double>(model.memory), static_cast<double>(8 * model.values), 4096);
    const std::array ranges = {model.west,  model.east,           model.south,
                               model.north, model.column_spacing, model.row_spacing};
    const std::array expected = {3.25625,           15.10625, 47.22083333333333,
                                 55.97083333333333, 0.025,    0.016666666666666666};
    for (std::size_t number = 0; number < 6; ++number) {
        EXPECT_NEAR(ranges[number], expected[number], 1e-12);
    }
}

// Columns in memory of their own: any stride, any address, some of the outputs in the place of an input.
TEST(Bulk, TakesColumnsAsTheyLie) {
    constexpr std::size_t count = 9;
    const auto sample = opened(SAMPLE_DIR);
    std::mt19937 random(3);
    for (int round = 0; round < 400; ++round) {
        Points points = places(sample.handle, 103, random, count, true);
        lagestatus_options options = heights(LAGESTATUS_HEIGHT_ELLIPSOIDAL, LAGESTATUS_HEIGHT_BOTH);
        const auto plain = opened(sample.handle, 103, 201, &options);
        const std::array eastingFirst = {random() % 2 == 0, random() % 2 == 0};
        options.source_axes = eastingFirst[0] ? LAGESTATUS_AXES_EASTING_FIRST : LAGESTATUS_AXES_AS_SYSTEM;
        options.target_axes = eastingFirst[1] ? LAGESTATUS_AXES_EASTING_FIRST : LAGESTATUS_AXES_AS_SYSTEM;
        options.has_default_height = static_cast<int>(random() % 2);
        options.default_height = 123;
        const auto through = opened(sample.handle, 103, 201, &options);
        const bool same = random() % 4 == 0;  // one height for all
        std::size_t defaulted = 0;
        Points meant = points;
        for (std::size_t number = 0; number < count; ++number) {
            points[number][2] = same ? points[0][2] : random() % 3 == 0 ? notANumber : points[number][2];
            const bool takesDefault = std::isnan(points[number][2]) && options.has_default_height != 0;
            meant[number][2] = takesDefault ? 123 : points[number][2];
            defaulted += takesDefault ? 1 : 0;
        }
        const std::vector<Carried> expected = carried(plain.handle, meant);

        std::array<std::vector<unsigned char>, 7> before, after;  // the inputs, and the outputs
        std::array<std::ptrdiff_t, 7> strides = {};
        std::array<unsigned char*, 7> first = {};
        for (std::size_t column = 0; column < 7; ++column) {
            const bool inPlace = column >= 3 && column < 6 && strides[column - 3] != 0 && random() % 3 == 0;
            constexpr std::array<std::ptrdiff_t, 6> some = {8, -8, 9, 56, -31, 800};
            strides[column] = inPlace ? strides[column - 3] : column == 2 && same ? 0 : some[random() % 6];
            const std::ptrdiff_t begin =
                std::max<std::ptrdiff_t>(-strides[column], 0) * (std::ptrdiff_t{count} - 1);
            if (!inPlace) {
                before[column].assign(std::size_t{801} * count, static_cast<unsigned char>(random()));
            }
            auto& memory = inPlace ? before[column - 3] : before[column];
            first[column] = memory.data() + begin + 1;
            for (std::size_t number = 0; column < 3 && number < count; ++number) {
                const std::size_t axis = column < 2 && eastingFirst[0] ? 1 - column : column;
                std::memcpy(first[column] + strides[column] * static_cast<std::ptrdiff_t>(number),
                            &points[number][axis], sizeof(double));
            }
        }
        std::array<int, count + 1> statuses = {};
        const auto column = [&first](std::size_t number) { return reinterpret_cast<double*>(first[number]); };
        const double* const input[] = {column(0), column(1), column(2)};
        double* const output[] = {column(3), column(4), column(5), column(6)};
        std::size_t counted = 99;
        after = before;  // what is to be, but for the results
        const auto failures = lagestatus_transform(through.handle.get(), count, input, strides.data(), output,
                                                   strides.data() + 3, statuses.data(), &counted);
        EXPECT_EQ(counted, defaulted);
        EXPECT_EQ(failures,
                  std::ranges::count_if(expected, [](const Carried& each) { return each.status != 0; }));
        for (std::size_t number = 0; number < count; ++number) {
            Carried got = {statuses[number]};
            for (std::size_t place = 0; place < 4; ++place) {
                unsigned char* const value =
                    first[3 + place] + strides[3 + place] * static_cast<std::ptrdiff_t>(number);
                std::memcpy(&got.at[place < 2 && eastingFirst[1] ? 1 - place : place], value, sizeof(double));
                for (std::size_t block = 0; block < 7; ++block) {
                    if (value >= before[block].data() &&
                        value < before[block].data() + before[block].size()) {
                        std::memcpy(after[block].data() + (value - before[block].data()), value,
                                    sizeof(double));
                    }
                }
            }
            expect_equal(got, expected[number]);
        }
        EXPECT_EQ(before, after) << "nothing else is written";
    }
}

TEST(Bulk, RefusesWhatThereIsNot) {
    const auto sample = opened(SAMPLE_DIR);
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
        EXPECT_EQ(opened(sample.handle, n[0], n[1], &larger.options).status, n[10]);
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
        auto through = opened(sample.handle, from, to, &options);
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
            EXPECT_EQ(transform_some(0), refused ? LAGESTATUS_ARGUMENT : 0);
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

TEST(Bulk, CutsTextsBetweenCharacters) {
    std::size_t cuts = 0;
    for (const int status :
         {LAGESTATUS_ARGUMENT, LAGESTATUS_MEMORY, LAGESTATUS_UNAVAILABLE, 0, 1, 90, 1027, 1110, 4711}) {
        const std::string file = "H\u00F6henmodell/\u4E2D\U0001F30D";
        const std::size_t length = lagestatus_message(status, file.c_str(), nullptr, 9);
        std::string whole(length, 'x');
        EXPECT_EQ(lagestatus_message(status, file.c_str(), whole.data(), length + 1), length);
        EXPECT_EQ(whole.empty(), status == 0 || status == 4711);
        EXPECT_EQ(whole.find(file) != std::string::npos, status == 1 || status == 1027 || status == 1110)
            << whole;
        for (std::size_t size = 0; size <= length + 1; ++size) {
            std::string buffer(length + 2, 'x');
            EXPECT_EQ(lagestatus_message(status, file.c_str(), buffer.data(), size), length);
            const std::size_t end = std::min(buffer.find('\0'), buffer.size());
            EXPECT_EQ(buffer.substr(size), std::string(buffer.size() - size, 'x'));
            EXPECT_TRUE(size == 0 || (end < size && whole.starts_with(buffer.substr(0, end))));
            const auto inside = [&whole](std::size_t at) { return (whole[at] & 0xC0) == 0x80; };
            for (std::size_t at = end + 1; size > 0 && at < size; ++at) {
                EXPECT_TRUE(inside(at)) << "as much as fits";
                ++cuts;
            }
            EXPECT_TRUE(size == 0 || end == length || !inside(end));
        }
    }
    EXPECT_GT(cuts, 10U);
    EXPECT_STREQ(lagestatus_version(), "0.1.0");
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
    const lagestatus_options both = heights(LAGESTATUS_HEIGHT_ELLIPSOIDAL, LAGESTATUS_HEIGHT_BOTH);
    const std::ptrdiff_t before = blocksHeld;
    for (int round = 0; round < 10000; ++round) {
        auto directory = opened(small.path());
        auto through = opened(directory.handle, 17, 17, &both);
        directory.handle.reset();  // which the transformation outlives
        ASSERT_EQ(carried(through.handle, {{51.4, 9.3, 100}})[0].status, 0);
    }
    EXPECT_EQ(blocksHeld, before);
}

TEST(Bulk, ReadsNothingTwice) {
    DataDirectory directory;
    copy_sample(directory);
    directory.write("hoehe.ini", "0\n" + join(good_model()));
    const auto all = opened(directory.path(), LAGESTATUS_READ_NOW);
    const auto some = opened(directory.path());
    const lagestatus_options both = heights(LAGESTATUS_HEIGHT_NORMAL, LAGESTATUS_HEIGHT_BOTH);
    std::vector<Opened<Transformation>> ways;
    ways.push_back(opened(some.handle, 101, 203, &both));
    std::vector<Carried> expected;
    const Points point = {{51.4, 9.3, 100}};
    for (const int code : codes) {
        const Transformed right = transform(directory.path(), 101, code, point[0], 'N');
        expected.push_back({right.status, right.result});
    }
    std::filesystem::remove_all(directory.path());
    for (std::size_t number = 0; const int code : codes) {
        const auto through = opened(all.handle, 101, code, &both);
        ASSERT_EQ(through.status, 0);
        expect_equal(carried(through.handle, point)[0], expected[number]);
        EXPECT_EQ(opened(some.handle, 101, code, nullptr).status, code == 203 ? 0 : 7);
        ++number;
    }
    expect_equal(carried(ways[0].handle, point)[0], expected[7]);
    EXPECT_EQ(lagestatus_directory_read(some.handle.get(), 203, LAGESTATUS_SOURCE, nullptr), 7);
    EXPECT_EQ(lagestatus_directory_height_model(some.handle.get(), nullptr, nullptr), 0);
}

TEST(Bulk, FindsItsDirectory) {
    const SmallDirectory small;
    const std::filesystem::path below = std::filesystem::path(small.path()) / u8"\u00E4\u4E2D";
    std::filesystem::create_directory(below);
    for (const char* name : {"/DEFAULT", "/f.tra", "/hoehe.ini"}) {
        std::filesystem::copy(small.path() + name, below);
    }
    const auto inUtf8 = opened(small.path() + "/\u00E4\u4E2D");
    EXPECT_EQ(lagestatus_directory_read(inUtf8.handle.get(), 17, LAGESTATUS_SOURCE, nullptr), 0);
    EXPECT_EQ(lagestatus_directory_height_model(inUtf8.handle.get(), nullptr, nullptr), 0);
    EXPECT_EQ(opened(small.path() + "/\u00E4").status, 1);
    std::string longest = small.path();
    longest.resize(LAGESTATUS_PATH_MAX, '/');
    EXPECT_EQ(opened(longest).status, 0);
    EXPECT_EQ(opened(longest + "/").status, 1);
    EXPECT_EQ(opened(std::string(5000, 'x')).status, 1);
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(small.path());
    const auto here = opened(".");
    EXPECT_EQ(lagestatus_directory_height_model(here.handle.get(), nullptr, nullptr), 0);
    std::filesystem::current_path(before);
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

}  // namespace
