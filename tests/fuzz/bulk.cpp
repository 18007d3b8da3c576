// A data directory of any bytes for lagestatus_bulk.h, and points through it by any options.
#include "../bulk_support.h"
#include "fuzz.h"

using namespace fuzzing;

namespace {

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

// Asks for all that is told of the systems and the height model; the kind of one of them is returned.
int told_of(const HeldDirectory& directory, std::size_t one) {
    int kind = LAGESTATUS_KIND_UNKNOWN;
    auto s = sized<lagestatus_system>();
    for (std::size_t index = 0; lagestatus_directory_system(directory.get(), index, &s) == 0; ++index) {
        expect_status(s.sourceStatus, s.sourceStatus == 7 || is_status_of_parameter_file(s.sourceStatus));
        expect_status(s.targetStatus, s.targetStatus == 7 || is_status_of_parameter_file(s.targetStatus));
        for (const char* text : {s.name, s.kindName, s.ellipsoid, s.file}) {
            check_text(text, 1000);
        }
        kind = index == one ? s.kind : kind;
    }
    const int status = told([&](lagestatus_failure* failure) {
        return lagestatus_directory_height_model(directory.get(), nullptr, failure);
    });
    expect_status(status, status >= 1000 && is_status_of_pipeline(status));
    return kind;
}

// Any numbers as they are; others, from 0 to 1.25, become a place in or around the grid of the good height model.
Points points_of(const std::array<std::array<double, 4>, 3>& numbers, int kind, bool any) {
    Points points;
    for (const auto& n : numbers) {
        points.push_back(any ? std::array{n[0], n[1], n[2]}
                         : kind == LAGESTATUS_KIND_GEOGRAPHIC
                             ? std::array{50.875 + n[0], 8.875 + n[1], 100 * n[2]}
                         : kind == LAGESTATUS_KIND_GEOCENTRIC
                             ? std::array{3.95e6 - 8e4 * n[0], 6.2e5 + 9e4 * n[1], 4.92e6 + 7e4 * n[0]}
                             : std::array{5.64e6 + 1e5 * n[0], 3.49e6 + 8e4 * n[1], 100 * n[2]});
    }
    return points;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const auto pick = [&](int choices) {  // now and then none of them
        const auto value = input.take<std::uint8_t>();
        return value == 255 ? -1 : value % choices;
    };
    const int given = pick(3), wanted = pick(4);
    lagestatus_options options = heights(given, wanted);
    options.sourceAxes = pick(2);
    options.targetAxes = pick(2);
    options.calculation = pick(2);
    options.hasDefaultHeight = pick(2);
    options.defaultHeight = input.take<std::int16_t>() == -1 ? infinity : 40.0;
    const auto fromEntry = input.take<std::uint8_t>(), toEntry = input.take<std::uint8_t>();
    const auto flags = input.take<std::uint8_t>();
    input.take<std::uint8_t>();
    const bool any = (flags & 1U) != 0;
    std::array<std::array<double, 4>, 3> numbers = {};
    for (auto& point : numbers) {
        for (double& value : point) {
            value = any ? input.take<double>() : (input.take<std::uint16_t>() % 640) / 512.0;
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
    const auto remove_files = [&path] {
        for (const auto& file : std::filesystem::directory_iterator(path)) {
            std::filesystem::remove(file);
        }
    };
    remove_files();
    const std::string extension = scrambledNames ? ".tr0" : ".tra";
    const Files names = {"f" + extension, "g" + extension, "hoehe.ini", "DEFAULT"};
    for (std::size_t number = 0; number < files.size(); ++number) {
        if ((flags >> (number + 2) & 1U) == 0) {
            memory().write(names[number], files[number]);
        }
    }

    const NoHandleLeft handles;
    const Listing expected = list(path);
    const auto directory = open_directory(path, (flags & 2U) != 0 ? LAGESTATUS_READ_NOW : 0);
    EXPECT_EQ(directory.status, expected.status);
    const std::size_t entries = lagestatus_directory_count(directory.handle.get());
    EXPECT_EQ(entries, directory.status == 0 ? std::max(expected.count, 0) : 0U);
    if (directory.status != 0) {
        return 0;
    }
    const auto code_of = [&](std::size_t entry) {
        return entry == 255 || entries == 0 ? 4711 : expected.codes[entry % entries];
    };
    const int from = code_of(fromEntry), to = code_of(toEntry);
    const Points points =
        points_of(numbers, told_of(directory.handle, fromEntry % std::max<std::size_t>(entries, 1)), any);
    expect_as_trans_dll(path, directory.handle, from, to, points);
    const auto way = open_way(directory.handle, from, to, options);
    if (way.status == 0) {
        options.calculation = LAGESTATUS_FAST - options.calculation;
        const auto other = carried(open_way(directory.handle, from, to, options).handle, points);
        EXPECT_TRUE(
            std::ranges::equal(other, carried(way.handle, points), {}, &Carried::status, &Carried::status))
            << "the fast calculation has other statuses";
        options.calculation = LAGESTATUS_FAST - options.calculation;
    }

    // From here on without the files: what was read stays, and nothing is read again.
    remove_files();
    told_of(directory.handle, 0);
    const auto again = open_way(directory.handle, from, to, options);
    EXPECT_EQ(again.status, way.status);
    if (way.status == 0) {
        EXPECT_EQ(carried(way.handle, points), carried(again.handle, points));
    }
    return 0;
}
