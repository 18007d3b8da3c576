// A data directory of any bytes for lagestatus_bulk.h, and points through it by any options.
#include "bulk/lagestatus_bulk.h"

#include "fuzz.h"

using namespace fuzzing;

namespace {

constexpr std::size_t count = 3;  // of points
using Points = std::array<std::array<double, 4>, count>;

// An input has up to four files, with the file separator of ASCII between them. In place of those behind its last one
// stand good ones: a description of the code 17, one of the code 18, the height model, DEFAULT.
constexpr char betweenFiles = '\x1C';
using Files = std::array<std::string, 4>;

Files good_files(bool scrambledNames) {
    std::vector<std::string> f = good_lines(), g = f;
    f[2] = "\"Bessel\"";
    g[0] = "18";
    g[3] = "\"Gauss-Krueger\"";
    g[4] = "0 600.3";
    return {join(f), join(g), "0\n" + join(good_model()),
            "2 " + std::to_string(scrambledNames ? 1 : 0) + "\n17 4\n\"f\"\n18\n\"g\"\n"};
}

// UTF-8 without ASCII's control characters that ends within size bytes.
void check_text(const char* text, std::size_t size) {
    EXPECT_NE(std::memchr(text, '\0', size), nullptr);
    int following = 0;
    for (; *text != '\0'; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        EXPECT_EQ((byte & 0xC0U) == 0x80, following > 0);
        EXPECT_TRUE(byte >= 0x20 && byte != 0x7F && byte < 0xF5);
        following = following > 0 ? following - 1 : byte < 0xC0 ? 0 : byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
    }
    EXPECT_EQ(following, 0);
}

// Makes a call, and checks what it tells of its failure; cut is the size of a buffer for the message.
template <typename Call>
int told(std::size_t cut, Call call) {
    lagestatus_failure failure, none = {};
    std::memset(&failure, 'x', sizeof failure);
    const int status = call(&failure);
    EXPECT_EQ(status == 0, std::memcmp(&failure, &none, sizeof none) == 0);
    EXPECT_EQ(failure.status, status);
    EXPECT_EQ(failure.message[0] == '\0', status == 0);
    EXPECT_TRUE(failure.line > 0 || (failure.line == 0 && failure.text[0] == '\0'));
    check_text(failure.file, sizeof failure.file);
    check_text(failure.text, sizeof failure.text);
    check_text(failure.message, sizeof failure.message);
    if (status > 0) {
        const std::string_view whole = failure.message;
        Buffer<char> message(cut, 'x');
        EXPECT_EQ(lagestatus_message(status, failure.file, message.get(), cut), whole.size());
        check_text(message.get(), cut);
        const std::size_t length = std::strlen(message.get());
        EXPECT_EQ(whole.substr(0, length), message.get());
        EXPECT_TRUE(length == whole.size() || length + 3 >= cut);  // without half a character
    }
    return status;
}

// What the listing tells, as far as it can be compared.
std::vector<std::string> listing(const lagestatus_directory* directory) {
    std::vector<std::string> all;
    for (std::size_t index = 0; index < lagestatus_directory_count(directory); ++index) {
        lagestatus_system s = {};
        s.size = sizeof s;
        EXPECT_EQ(lagestatus_directory_system(directory, index, &s), 0);
        const auto wrong = [](int status) { return between(status, 7, 48) || status == 100; };
        expect_status(s.sourceStatus, wrong(s.sourceStatus));
        expect_status(s.targetStatus, wrong(s.targetStatus) || between(s.targetStatus, 70, 89));
        EXPECT_TRUE(s.sourceStatus != 0 || (s.kind != LAGESTATUS_KIND_UNKNOWN && s.semiMinor > 0));
        std::string row;
        for (const char* text : {s.name, s.kindName, s.ellipsoid, s.file}) {
            check_text(text, 1000);
            row += std::string(text) + "\t";
        }
        for (const int number : {s.code, s.auxiliary, s.sourceStatus, s.targetStatus, s.kind}) {
            row += std::to_string(number) + "\t";
        }
        all.push_back(row);
    }
    return all;
}

struct Carried {
    std::array<int, count> status = {};
    std::size_t defaulted = 0;
    Points results = {};
};

// Through dense columns apart from each other; or within rows, the results in the points' places.
Carried carry(const lagestatus_transformation* transformation, const Points& points, bool inPlace) {
    const auto index = [&](std::size_t point, std::size_t column) {
        return inPlace ? 4 * point + column : count * column + point;
    };
    std::array<double, 4 * count> values = {};
    std::array<std::ptrdiff_t, 4> strides = {};
    strides.fill(4 * sizeof(double));
    for (std::size_t point = 0; point < count; ++point) {
        for (std::size_t column = 0; column < 4; ++column) {
            values[index(point, column)] = points[point][column];
        }
    }
    Buffer<double> from(values), apart(values.size(), untouched);
    Buffer<double>& to = inPlace ? from : apart;
    std::array<double*, 4> input = {}, output = {};
    for (std::size_t column = 0; column < 4; ++column) {
        input[column] = from.get() + index(0, column);
        output[column] = to.get() + index(0, column);
    }
    const auto* const stride = inPlace ? strides.data() : nullptr;
    Carried carried;
    const auto failures = lagestatus_transform(transformation, count, input.data(), stride, output.data(),
                                               stride, carried.status.data(), &carried.defaulted);
    EXPECT_EQ(failures, std::ranges::count_if(carried.status, [](int status) { return status != 0; }));
    const std::vector<double> got = to.values();
    for (std::size_t point = 0; point < count; ++point) {
        for (std::size_t column = 0; column < 4; ++column) {
            carried.results[point][column] = got[index(point, column)];
        }
    }
    return carried;
}

int kind_of(const lagestatus_directory* directory, int code) {
    lagestatus_system s = {};
    s.size = sizeof s;
    for (std::size_t index = 0; lagestatus_directory_system(directory, index, &s) == 0; ++index) {
        if (s.code == code) {
            return s.kind;
        }
    }
    return LAGESTATUS_KIND_UNKNOWN;
}

// Numbers from 0 to 1.25 become a place in or around the grid of the good height model; any other stay as they are.
void put_into_place(std::array<double, 4>& point, int kind, bool any) {
    if (any) {
        return;
    }
    const double phi = 50.875 + point[0], lam = 8.875 + point[1], radian = 180 / std::numbers::pi;
    point[2] *= 100.0;
    if (kind == LAGESTATUS_KIND_GEOCENTRIC) {
        const double distance = 6.365e6 + point[2];
        point = {distance * std::cos(phi / radian) * std::cos(lam / radian),
                 distance * std::cos(phi / radian) * std::sin(lam / radian),
                 distance * std::sin(phi / radian), 0};
    } else if (kind == LAGESTATUS_KIND_GEOGRAPHIC) {
        point = {phi, lam, point[2], 0};
    } else {
        point = {5.64e6 + 1e5 * point[0], 3.49e6 + 8e4 * point[1], point[2], 0};
    }
}

// Whether the heights that play a part are those that trans_dll has, and which.
struct Heights {
    bool given;   // normal ones
    bool wanted;  // likewise
    bool ellipsoidal;
    bool towardsGeocentric;
};

// What a point must come to, as trans_dll carries it and as it is carried without normal heights.
void check(const Heights& heights, int wanted, int status, const std::array<double, 4>& result,
           const Transformed& by, int plainStatus, const std::array<double, 4>& plain) {
    expect_status(status, is_status_of_pipeline(status));
    if (heights.towardsGeocentric && heights.given && wanted != LAGESTATUS_HEIGHT_BOTH) {
        // Made ellipsoidal from every source, which trans_dll does not.
        EXPECT_TRUE(std::isnan(result[3]) &&
                    std::ranges::all_of(result.begin(), result.begin() + 3, [=](double value) {
                        return status == 0 ? std::isfinite(value) : std::isnan(value);
                    }));
        return;
    }
    const auto place = [](const auto& all) { return std::span(all).first(3); };
    const bool none = same_bits(place(by.result), std::array{0.0, 0.0, 0.0});
    const bool placed = by.status == 0 || (by.status >= 1000 && !heights.towardsGeocentric && !none);
    const bool normal = heights.given || (heights.wanted && !heights.towardsGeocentric);
    EXPECT_EQ(status, normal ? by.status : plainStatus);
    if (placed && !heights.given) {
        EXPECT_EQ(plainStatus, 0);
        EXPECT_TRUE(same_bits(place(plain), place(by.result)));
    }
    const bool there = status == 0 || (status >= 1000 && !heights.towardsGeocentric && plainStatus == 0);
    const auto& at = normal && placed ? by.result : plain;
    const bool hasHeight = there && heights.ellipsoidal && (status == 0 || !heights.given);
    EXPECT_TRUE(same_bits(result, std::array{there ? at[0] : notANumber, there ? at[1] : notANumber,
                                             hasHeight ? at[2] : notANumber,
                                             status == 0 && heights.wanted ? by.result[3] : notANumber}));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const auto pick = [&](int choices) {  // now and then none of them
        const auto value = input.take<std::uint8_t>();
        return value == 255 ? -1 : value % choices;
    };
    lagestatus_options how = {};
    how.size = sizeof how;
    how.heightGiven = pick(3);
    how.heightWanted = pick(4);
    how.sourceAxes = pick(2);
    how.targetAxes = pick(2);
    how.calculation = pick(1);
    how.hasDefaultHeight = pick(2);
    how.defaultHeight = input.take<std::int16_t>() == -1 ? infinity : 40.0;
    const auto fromEntry = input.take<std::uint8_t>(), toEntry = input.take<std::uint8_t>();
    const auto flags = input.take<std::uint8_t>();
    const std::size_t cut = 1 + input.take<std::uint8_t>();
    Points numbers = {};
    for (auto& point : numbers) {
        for (double& value : point) {
            value = (flags & 1U) != 0 ? input.take<double>() : (input.take<std::uint16_t>() % 640) / 512.0;
        }
    }
    const bool scrambledNames = (flags & 64U) != 0;
    Files files = good_files(scrambledNames);
    const std::string text(input.rest());
    for (std::size_t number = 0, from = 0; number < files.size() && from <= text.size(); ++number) {
        const std::size_t end = std::min(text.find(betweenFiles, from), text.size());
        files[number] = text.substr(from, end - from);
        from = end + 1;
    }
    const std::string path = memory().path();
    const auto remove_files = [&] {
        for (const char* name : {"f.tra", "g.tra", "f.tr0", "g.tr0", "hoehe.ini", "DEFAULT"}) {
            std::filesystem::remove(std::filesystem::path(path) / name);
        }
    };
    remove_files();
    const Files names = {scrambledNames ? "f.tr0" : "f.tra", scrambledNames ? "g.tr0" : "g.tra", "hoehe.ini",
                         "DEFAULT"};
    for (std::size_t number = 0; number < files.size(); ++number) {
        if ((flags >> (number + 2) & 1U) == 0) {
            memory().write(names[number], files[number]);
        }
    }

    const NoHandleLeft handles;
    const Listing expected = list(path);
    lagestatus_directory* directory = nullptr;
    const int opened = told(cut, [&](auto* failure) {
        const int when = (flags & 2U) != 0 ? LAGESTATUS_READ_NOW : 0;
        return lagestatus_directory_open(path.c_str(), when, &directory, failure);
    });
    EXPECT_EQ(opened, expected.status);
    EXPECT_EQ(directory == nullptr, opened != 0);
    const std::size_t entries = lagestatus_directory_count(directory);
    EXPECT_EQ(entries, opened == 0 ? std::max(expected.count, 0) : 0U);
    if (directory == nullptr) {
        return 0;
    }
    const auto code_of = [&](std::size_t entry) {
        return entry == 255 || entries == 0 ? 4711 : expected.codes[entry % entries];
    };
    const int from = code_of(fromEntry), to = code_of(toEntry);
    const int fromKind = kind_of(directory, from);
    for (auto& point : numbers) {
        put_into_place(point, fromKind, (flags & 1U) != 0);
    }
    const bool toGeocentric = kind_of(directory, to) == LAGESTATUS_KIND_GEOCENTRIC;
    const bool fromGeocentric = fromKind == LAGESTATUS_KIND_GEOCENTRIC;
    const int wanted = how.heightWanted;
    const Heights heights = {.given = how.heightGiven == LAGESTATUS_HEIGHT_NORMAL && !fromGeocentric,
                             .wanted = wanted == LAGESTATUS_HEIGHT_NORMAL || wanted == LAGESTATUS_HEIGHT_BOTH,
                             .ellipsoidal = toGeocentric || wanted == LAGESTATUS_HEIGHT_ELLIPSOIDAL ||
                                            wanted == LAGESTATUS_HEIGHT_BOTH,
                             .towardsGeocentric = toGeocentric};
    // The points as they are to be understood, and as they are given.
    Points given = numbers;
    std::size_t defaulted = 0;
    for (std::size_t point = 0; point < count; ++point) {
        double& third = numbers[point][2];
        const bool notRead = !fromGeocentric && how.heightGiven == LAGESTATUS_HEIGHT_NONE;
        if (!fromGeocentric && (notRead || std::isnan(third)) && how.hasDefaultHeight == 1) {
            third = how.defaultHeight;
            ++defaulted;
        } else if (notRead) {
            third = 0.0;
        }
        if (how.sourceAxes == LAGESTATUS_AXES_EASTING_FIRST && !fromGeocentric) {
            std::swap(given[point][0], given[point][1]);
        }
    }
    std::array<Transformed, count> by;
    std::ranges::transform(numbers, by.begin(), [&](const auto& point) {
        return transform(path, from, to, {point[0], point[1], point[2]}, heights.given ? 'N' : 'e');
    });
    const auto model = [&] {
        lagestatus_height_model head = {};
        head.size = sizeof head;
        const int status = told(
            cut, [&](auto* failure) { return lagestatus_directory_height_model(directory, &head, failure); });
        expect_status(status, between(status, 1027, 1048) || between(status, 1100, 1107) || status == 1110 ||
                                  status == 1127 || status == 1128);
        return std::pair(status, head.values);
    };
    const auto open = [&](const lagestatus_options* options, lagestatus_transformation*& transformation) {
        const int status = told(cut, [&](auto* failure) {
            return lagestatus_transformation_open(directory, from, to, options, &transformation, failure);
        });
        EXPECT_EQ(transformation == nullptr, status != 0);
        return status;
    };
    lagestatus_transformation *plainly = nullptr, *asked = nullptr;
    const int openedPlainly = open(nullptr, plainly);
    const int openedAsked = open(&how, asked);
    const auto read = [&](int code, int role) {
        return told(cut,
                    [&](auto* failure) { return lagestatus_directory_read(directory, code, role, failure); });
    };
    const int sourceStatus = read(from, LAGESTATUS_SOURCE);
    EXPECT_EQ(openedPlainly, sourceStatus != 0 ? sourceStatus : read(to, LAGESTATUS_TARGET));
    EXPECT_TRUE(openedPlainly == 0 || openedPlainly == by[0].status);
    const bool unknown = std::min({how.heightGiven, wanted, how.sourceAxes, how.targetAxes, how.calculation,
                                   how.hasDefaultHeight}) < 0;
    const bool contradictory = (how.hasDefaultHeight == 1 && !std::isfinite(how.defaultHeight)) ||
                               (toGeocentric ? wanted == LAGESTATUS_HEIGHT_NORMAL
                                             : !fromGeocentric && how.heightGiven == LAGESTATUS_HEIGHT_NONE &&
                                                   wanted != LAGESTATUS_HEIGHT_NONE);
    EXPECT_EQ(openedAsked, unknown              ? LAGESTATUS_ARGUMENT
                           : openedPlainly != 0 ? openedPlainly
                           : contradictory      ? LAGESTATUS_ARGUMENT
                                                : 0);

    // From here on without the files: what was read stays, and nothing is read again.
    const auto listed = listing(directory);
    const auto head = model();
    remove_files();
    EXPECT_EQ(listing(directory), listed);
    EXPECT_EQ(model(), head);
    lagestatus_directory_close(directory);
    if (asked != nullptr) {
        const Carried plain = carry(plainly, numbers, false);
        const Carried apart = carry(asked, given, false), within = carry(asked, given, true);
        EXPECT_EQ(apart.status, within.status);
        EXPECT_EQ(apart.defaulted, defaulted);
        EXPECT_EQ(within.defaulted, defaulted);
        for (std::size_t point = 0; point < count; ++point) {
            std::array<double, 4> result = apart.results[point];
            EXPECT_TRUE(same_bits(result, within.results[point]));
            if (how.targetAxes == LAGESTATUS_AXES_EASTING_FIRST && !toGeocentric) {
                std::swap(result[0], result[1]);
            }
            check(heights, wanted, apart.status[point], result, by[point], plain.status[point],
                  plain.results[point]);
        }
    }
    lagestatus_transformation_close(asked);
    lagestatus_transformation_close(plainly);
    return 0;
}
