// Makes the same calls in two builds of the library and compares statuses, numbers and texts bit for bit.
//
// usage: compare_bits REFERENCE.so OTHER.so [COUNT [FIRST]]
//
// To be run from the root of the tree; scripts/compare_bits builds both. A case follows from its number alone: what is
// reported of case n, "compare_bits REFERENCE.so OTHER.so 1 n" shows again, and leaves the files it was made with.
// Returns 1 after any difference. Linux.
#include <dlfcn.h>
#include <lagestatus.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::uint64_t start = 1912;  // of the random numbers; any will do, the cases must repeat
constexpr int defaultCount = 1'250'000;
constexpr int shownDifferences = 10;

using Parameters = std::array<double, LAGESTATUS_PARAMETER_COUNT>;
using Point = std::array<double, 3>;

// --- The two libraries, and what a call returns ---------------------------------------------------------------------

struct Library {
    explicit Library(const char* path) {
        void* const handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr) {
            throw std::runtime_error(dlerror());
        }
        bind(handle, "test_dll", test);
        bind(handle, "trans_dll", trans);
        bind(handle, "transla_dll", transla);
        bind(handle, "translz_dll", translz);
        bind(handle, "translD_dll", translD);
        bind(handle, "transr_dll", transr);
        bind(handle, "transfm_dll", transfm);
    }
    decltype(&test_dll) test;
    decltype(&trans_dll) trans;
    decltype(&transla_dll) transla;
    decltype(&translz_dll) translz;
    decltype(&translD_dll) translD;
    decltype(&transr_dll) transr;
    decltype(&transfm_dll) transfm;

  private:
    template <typename Function>
    static void bind(void* handle, const char* name, Function& function) {
        function = reinterpret_cast<Function>(dlsym(handle, name));
        if (function == nullptr) {
            throw std::runtime_error(dlerror());
        }
    }
};

struct Outcome {
    int status = 0;
    std::vector<double> numbers;
    std::vector<int> integers;
    std::vector<std::u16string> texts;

    bool operator==(const Outcome& other) const {
        const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
        return status == other.status && integers == other.integers && texts == other.texts &&
               std::ranges::equal(numbers, other.numbers, {}, bits, bits);
    }
};

// A buffer for a text, filled with something that would be seen. What stands behind the terminator is not defined.
template <std::size_t N>
struct Text {
    std::array<char16_t, N> units;
    Text() { units.fill(u'?'); }
    operator char16_t*() { return units.data(); }
    [[nodiscard]] std::u16string get() const {
        return {units.begin(), std::find(units.begin(), units.end(), u'\0')};
    }
};
using Name = Text<LAGESTATUS_NAME_SIZE>;
using Ellipsoid = Text<LAGESTATUS_ELLIPSOID_SIZE>;
using Kind = Text<LAGESTATUS_KIND_SIZE>;

constexpr double untouched = -4711.0;

// --- Printing: arguments so that they can be typed in again ---------------------------------------------------------

std::string as_literal(std::u16string_view text) {
    std::string shown = "u\"";
    for (const char16_t unit : text) {
        std::array<char, 8> code = {};
        const bool plain = unit >= 32 && unit < 127 && unit != '"' && unit != '\\';
        std::snprintf(code.data(), code.size(), plain ? "%c" : "\\u%04x", unit);
        shown += code.data();
    }
    return shown + '"';
}

template <typename Values>
std::string hexadecimal(const Values& values) {
    std::string shown = "{";
    for (const double value : values) {
        std::array<char, 64> digits = {};
        if (std::isnan(value)) {
            std::snprintf(digits.data(), digits.size(), "NaN of bits 0x%016" PRIx64,
                          std::bit_cast<std::uint64_t>(value));
        } else {
            std::snprintf(digits.data(), digits.size(), "%a", value);
        }
        shown += (shown.size() > 1 ? ", " : "") + std::string(digits.data());
    }
    return shown + "}";
}

void print(const char* name, const Outcome& outcome) {
    std::printf("  %s: status %d", name, outcome.status);
    if (!outcome.numbers.empty()) {
        std::printf(", numbers %s", hexadecimal(outcome.numbers).c_str());
    }
    for (const int value : outcome.integers) {
        std::printf(" %d", value);
    }
    for (const std::u16string& text : outcome.texts) {
        std::printf(" %s", as_literal(text).c_str());
    }
    std::printf("\n");
}

// --- The calls: their arguments, how they are made and how they are shown -------------------------------------------

struct Road {  // of transr_dll; [0] of the source, [1] of the target
    Point point = {};
    std::array<std::u16string, 2> kind, ellipsoid;
    std::array<Parameters, 2> parameters = {};
    int zone = 0;
    std::array<int, 2> heightFlags = {};
    std::u16string directory;

    [[nodiscard]] Outcome call(const Library& library) const {
        std::vector<double> result(LAGESTATUS_RESULT_SIZE, untouched);
        const int status =
            library.transr(point.data(), kind[0].c_str(), kind[1].c_str(), result.data(),
                           ellipsoid[0].c_str(), parameters[0].data(), ellipsoid[1].c_str(),
                           parameters[1].data(), zone, heightFlags[0], heightFlags[1], directory.c_str());
        return {status, std::move(result), {}, {}};
    }
    void print() const {
        std::printf("  transr_dll: point %s, zone %d, height flags %d %d, directory %s\n",
                    hexadecimal(point).c_str(), zone, heightFlags[0], heightFlags[1],
                    as_literal(directory).c_str());
        for (const std::size_t side : {0U, 1U}) {
            std::printf("  %s: kind %s, ellipsoid %s, parameters %s\n", side == 0 ? "source" : "target",
                        as_literal(kind[side]).c_str(), as_literal(ellipsoid[side]).c_str(),
                        hexadecimal(parameters[side]).c_str());
        }
    }
};

struct Driven {  // of trans_dll
    Point point = {};
    std::array<int, 2> codes = {};
    std::u16string directory;
    char heightMode = 'e';

    [[nodiscard]] Outcome call(const Library& library) const {
        std::vector<double> result(LAGESTATUS_RESULT_SIZE, untouched);
        std::vector<int> auxiliary(2, -9);
        std::array<Name, 2> names;
        std::array<Ellipsoid, 2> ellipsoids;
        std::array<Kind, 2> kinds;
        const int status = library.trans(point[0], point[1], point[2], codes[0], codes[1], directory.c_str(),
                                         &heightMode, result.data(), names[0], auxiliary.data(),
                                         ellipsoids[0], kinds[0], names[1], ellipsoids[1], kinds[1]);
        return {status,
                std::move(result),
                std::move(auxiliary),
                {names[0].get(), names[1].get(), ellipsoids[0].get(), ellipsoids[1].get(), kinds[0].get(),
                 kinds[1].get()}};
    }
    void print() const {
        std::printf("  trans_dll: point %s, codes %d %d, directory %s, letter '%c'\n",
                    hexadecimal(point).c_str(), codes[0], codes[1], as_literal(directory).c_str(),
                    heightMode);
    }
};

struct Described {  // of transla_dll, and with target of translz_dll
    bool target = false;
    std::u16string directory, file;
    int scrambled = 0, code = 0;

    // texts: name, ellipsoid, kind; integers: the zone number
    [[nodiscard]] Outcome call(const Library& library) const {
        std::vector<double> parameters(LAGESTATUS_PARAMETER_COUNT, untouched);
        Name name;
        Ellipsoid ellipsoid;
        Kind kind;
        int zone = -9;
        const int status = target ? library.translz(directory.c_str(), file.c_str(), scrambled, code, name,
                                                    ellipsoid, kind, &zone, parameters.data())
                                  : library.transla(directory.c_str(), file.c_str(), scrambled, code, name,
                                                    ellipsoid, kind, parameters.data());
        return {status, std::move(parameters), {zone}, {name.get(), ellipsoid.get(), kind.get()}};
    }
    void print() const {
        std::printf("  %s: directory %s, file %s, scrambled %d, code %d\n",
                    target ? "translz_dll" : "transla_dll", as_literal(directory).c_str(),
                    as_literal(file).c_str(), scrambled, code);
    }
};

struct Listed {  // of translD_dll
    std::u16string directory;

    // integers: scrambled, count, codes, auxiliary numbers; texts: the file names
    [[nodiscard]] Outcome call(const Library& library) const {
        std::vector<int> integers(2 + 2 * LAGESTATUS_MAX_ENTRIES, -9);
        std::vector<char16_t> slots(LAGESTATUS_MAX_ENTRIES * LAGESTATUS_NAME_SIZE);
        Outcome outcome;
        outcome.status = library.translD(directory.c_str(), integers.data(), &integers[1], &integers[2],
                                         &integers[2 + LAGESTATUS_MAX_ENTRIES], slots.data());
        outcome.integers = std::move(integers);
        for (auto slot = slots.begin(); slot != slots.end(); slot += LAGESTATUS_NAME_SIZE) {
            outcome.texts.emplace_back(slot, std::find(slot, slot + LAGESTATUS_NAME_SIZE, u'\0'));
        }
        return outcome;
    }
    void print() const { std::printf("  translD_dll: directory %s\n", as_literal(directory).c_str()); }
};

struct Message {  // of transfm_dll
    int code = 0;
    std::u16string file;

    [[nodiscard]] Outcome call(const Library& library) const {
        std::vector<char16_t> buffer(129 + file.size(), u'?');
        library.transfm(code, file.c_str(), buffer.data());
        return {0, {}, {}, {{buffer.begin(), std::find(buffer.begin(), buffer.end(), u'\0')}}};
    }
    void print() const { std::printf("  transfm_dll: code %d, file %s\n", code, as_literal(file).c_str()); }
};

struct Bound {  // of test_dll
    Point numbers = {};

    [[nodiscard]] Outcome call(const Library& library) const {
        std::vector<double> out(4, untouched);
        const int status = library.test(numbers[0], numbers[1], numbers[2], out.data());
        return {status, std::move(out), {}, {}};
    }
    void print() const { std::printf("  test_dll: %s\n", hexadecimal(numbers).c_str()); }
};

// --- What is random, the same in every run --------------------------------------------------------------------------

class Random {
  public:
    explicit Random(std::uint64_t number) : state(start + number * 0xD1342543DE82EF95U) {}

    std::uint64_t bits() {  // splitmix64
        std::uint64_t z = state += 0x9E3779B97F4A7C15U;
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31U);
    }
    std::size_t below(std::size_t limit) { return bits() % limit; }
    bool one_in(std::size_t times) { return below(times) == 0; }
    double between(double low, double high) {
        return low + (high - low) * static_cast<double>(bits() >> 11U) / 9007199254740992.0;
    }
    double any_double() { return std::bit_cast<double>(bits()); }
    template <typename Values>
    const auto& one_of(const Values& values) {
        return *(std::begin(values) + static_cast<std::ptrdiff_t>(below(std::size(values))));
    }

  private:
    std::uint64_t state;
};

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double extremes[] = {0.0,           -0.0,         1.0,   -1.0,   notANumber, infinity, -infinity,
                               1e300,         -1e300,       1e150, 1e-300, 5e-324,     -5e-324,  90.0,
                               -90.0,         180.0,        360.0, 1e10,   -1e10,      1e-17,    2147483647.0,
                               -2147483648.0, 4294967296.0, 1e6,   0.5,    45.0,       6378137,  -6378137};
constexpr double layouts[] = {600.3,     417.6,  600.6, 360.00001, 360.0,  600.0,
                              359.99999, 1e300,  3e9,   1234.5,    603.25, 9.0,
                              -9.0,      601.95, 599.1, 600.05,    1e-9,   2147483647.3};
constexpr double nudges[] = {0.0, 0.0, 1e-13, -1e-13, 1e-11, -1e-11, 1e-9, -1e-9, 1e-6, -1e-6, 1e-3, -1e-3};
constexpr int integers[] = {
    0, 1, -1, 2, 3, 32, 33, 99, -99, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};

std::u16string wide(std::string_view text) {
    std::u16string units;
    for (const char character : text) {
        units += static_cast<unsigned char>(character);
    }
    return units;
}

std::u16string any_text(Random& random, std::size_t longest) {
    std::u16string text(random.below(longest + 1), u' ');
    for (char16_t& unit : text) {
        const auto any = static_cast<char16_t>(random.bits());
        unit = random.one_in(4) ? any : static_cast<char16_t>(32U + any % 95U);
        unit = unit == 0 ? u'0' : unit;
    }
    return text;
}

std::u16string upper(std::u16string text) {
    for (char16_t& unit : text) {
        unit = unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
    }
    return text;
}

// The same directory by a longer name.
std::u16string lengthened(std::u16string directory, std::size_t length) {
    while (directory.size() + 2 <= length) {
        directory.insert(0, u"./");
    }
    return directory.size() < length ? directory.insert(directory.find(u'/'), u"/") : directory;
}

// --- Data directories and their systems -----------------------------------------------------------------------------

std::string content_of(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content(std::istreambuf_iterator<char>(file), {});
    if (!file || content.empty()) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return content;
}

// The lines that are no comments, as the files have them where they are not scrambled.
std::vector<std::string> data_lines(const std::string& content) {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < content.size();) {
        const std::size_t end = std::min(content.find('\n', start), content.size());
        if (content[start] != '#') {
            lines.push_back(content.substr(start, end - start));
        }
        start = end + 1;
    }
    return lines;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string content;
    for (const std::string& line : lines) {
        content += line + '\n';
    }
    return content;
}

// The axes and the set of a model, with an intermediate set and reduction points, over a grid of a degree that is read
// in no time. Some nodes have no value.
std::string coarse_model(const std::string& model) {
    constexpr std::size_t firstReductionPoint = 12;
    std::vector<std::string> lines = data_lines(model);
    const std::vector<std::string> fundamentalPoint(lines.begin() + 25, lines.begin() + 30);
    lines.resize(firstReductionPoint);
    lines.insert(lines.end(), {"100.5", "-200.25", "300.125", "0.5", "-0.25", "0.75", "1e-7", "-2e-7", "3e-7",
                               "1.0000001", "10.0", "20.0", "30.0"});
    lines.insert(lines.end(), fundamentalPoint.begin(), fundamentalPoint.end());
    lines.insert(lines.end(), {"5.0 16.0 1.0", "47.0 56.0 1.0"});
    for (int node = 0; node < 12 * 10; ++node) {
        if (node % 7 == 0) {
            lines.emplace_back();
        }
        lines.back() +=
            node % 31 == 16 ? "999999 " : std::to_string(35.0 + node % 12 + node / 12 * 0.37) + ' ';
    }
    return joined(lines);
}

struct System {
    int code = 0;
    std::u16string file;
    std::array<Outcome, 2> described;  // as source, as target

    [[nodiscard]] const std::u16string& kind() const { return described[0].texts[2]; }
    [[nodiscard]] bool is(std::u16string_view name) const { return kind().starts_with(name); }
};

// A copy of one of the samples with the coarse height model, in which one file at a time is changed.
class Directory {
  public:
    Directory(const std::string& sample, std::string copy, const std::string& heightModel)
        : path(std::move(copy)) {
        std::filesystem::create_directories(path);
        std::set<std::filesystem::path> names;  // sorted, as the order of a directory is anybody's
        for (const auto& entry : std::filesystem::directory_iterator(sample)) {
            names.insert(entry.path().filename());
        }
        for (const auto& name : names) {
            const bool model = name == "hoehe.ini";
            originals.emplace_back(name, model ? heightModel : content_of(sample / name));
            write(originals.back().first, originals.back().second);
        }
    }
    // Puts back what was changed before.
    void restore() {
        if (changed < originals.size()) {
            write(originals[changed].first, originals[changed].second);
            changed = originals.size();
        }
    }
    void change(const std::string& name, Random& random) {
        const auto at = std::ranges::find(originals, name, &std::pair<std::string, std::string>::first);
        changed = static_cast<std::size_t>(at - originals.begin());
        // Without its comments, lest most changes hit these. Of scrambled files the first line alone is plain.
        const bool plain = !name.ends_with(".tr0") && !random.one_in(8);
        std::string content = plain ? joined(data_lines(at->second)) : at->second;
        const bool renumbers = name.ends_with(".tra") && random.one_in(3);
        content = renumbers ? renumbered(content, random) : damaged(std::move(content), random);
        for (std::size_t end = random.one_in(4) ? content.find('\n') : std::string::npos;
             end != std::string::npos; end = content.find('\n', end + 2)) {
            content.insert(end, 1, '\r');
        }
        write(name, content);
    }

    std::string path;
    std::vector<System> systems;
    int scrambled = 0;

  private:
    // Every number but the code becomes one that all fields take.
    static std::string renumbered(const std::string& content, Random& random) {
        std::vector<std::string> lines = data_lines(content);
        const auto is_number = [](const std::string& line) {
            return !line.empty() && line.find_first_not_of("0123456789+-.e \t\r") == std::string::npos;
        };
        const auto code = std::ranges::find_if(lines, is_number);
        for (auto line = code == lines.end() ? code : code + 1; line != lines.end(); ++line) {
            if (is_number(*line)) {
                *line = std::to_string(random.between(0, 90)) + ' ' + std::to_string(random.between(0, 9));
            }
        }
        return joined(lines);
    }
    static std::string damaged(std::string content, Random& random) {
        constexpr const char* tokens[] = {"1e400",       "1e-400", "-",    "+",      ".",
                                          "\"",          "\"\"",   "#",    "\n",     "\r\n",
                                          "\r",          " ",      "\t",   "inf",    "nan",
                                          "0x10",        "600.3",  "-1",   "0",      "99999999999",
                                          "-2147483649", "1e300",  "17-5", "999999", "\n\n",
                                          "Bessel",      "1.5e",   "e5",   "12 34",  "0.5 0.25 0.125"};
        for (std::size_t times = 1 + random.below(3); times > 0; --times) {
            const std::size_t at = random.below(content.size() + 1);
            switch (random.below(8)) {
                case 0:
                case 1:
                    content.insert(at, 1, static_cast<char>(random.bits()));
                    break;
                case 2:
                    content.erase(at, 1 + random.below(random.one_in(4) ? 400 : 8));
                    break;
                case 3:
                    content.insert(at, content.substr(random.below(content.size() + 1), random.below(300)));
                    break;
                case 4: {  // as long as a name, a text or a line may be, or nearly
                    constexpr std::size_t limits[] = {10, 13, 99, 299, 999, 1024, 2048};
                    const std::size_t length = random.one_of(limits) + random.below(5) - 2;
                    const std::size_t quote = random.one_in(2) ? content.find('"', at) : std::string::npos;
                    content.insert(quote == std::string::npos ? at : quote + 1,
                                   std::string(length, random.one_in(2) ? ' ' : '7'));
                    break;
                }
                case 5:
                    content.resize(random.one_in(4) ? at : content.size());
                    break;
                default: {  // in a number's place
                    const std::size_t first = content.find_first_of("0123456789", at);
                    if (first != std::string::npos) {
                        const std::size_t end = content.find_first_not_of("0123456789.", first);
                        content.replace(first, end == std::string::npos ? end : end - first,
                                        random.one_of(tokens));
                    }
                }
            }
        }
        return content;
    }
    void write(const std::string& name, const std::string& content) const {
        std::ofstream file(path + '/' + name, std::ios::binary);
        if (!(file << content).flush()) {
            throw std::runtime_error("cannot write " + path + '/' + name);
        }
    }

    std::vector<std::pair<std::string, std::string>> originals;
    std::size_t changed = std::numeric_limits<std::size_t>::max();
};

// --- The comparison -------------------------------------------------------------------------------------------------

class Comparison {
  public:
    Comparison(const Library& reference, const Library& other, const std::string& files)
        : libraries{reference, other}, noFiles(files + "/none") {
        for (const char* const name : {"DEFAULT", "hoehe.ini"}) {
            std::filesystem::create_directories(std::filesystem::path(noFiles) / name);
        }
        const std::string model = content_of("data/sample/hoehe.ini");
        const std::string coarse = coarse_model(model);
        const std::vector<std::string> lines = data_lines(model);
        if (std::sscanf(lines.at(30).c_str(), "%lf %lf %lf", &grid[1][0], &grid[1][1], &grid[1][2]) != 3 ||
            std::sscanf(lines.at(31).c_str(), "%lf %lf %lf", &grid[0][0], &grid[0][1], &grid[0][2]) != 3) {
            throw std::runtime_error("no grid in data/sample/hoehe.ini");
        }
        for (const char* const sample : {"data/sample", "data/sample-scrambled"}) {
            directories.emplace_back(sample, files + (directories.empty() ? "/plain" : "/scrambled"), coarse);
            Directory& directory = directories.back();
            const Listed listing{wide(directory.path)};
            compare("list, the samples", listing);
            const Outcome listed = listing.call(libraries[0]);
            directory.scrambled = listed.integers[0];
            for (std::size_t entry = 0; entry < static_cast<std::size_t>(listed.integers[1]); ++entry) {
                System system{listed.integers[2 + entry], listed.texts[entry], {}};
                for (const bool target : {false, true}) {
                    const Described description{target, wide(directory.path), system.file,
                                                directory.scrambled, system.code};
                    compare("describe, the samples", description);
                    system.described[target ? 1 : 0] = description.call(libraries[0]);
                }
                directory.systems.push_back(std::move(system));
            }
        }
        pairs = directories[0].systems.size();
    }

    // Descriptions that are the same need not be told apart: the reference's serve both libraries.
    void make_case(std::uint64_t caseNumber) {
        number = caseNumber;
        Random random(number);
        Directory& directory = directories[number % 2];
        const System& source = directory.systems[number / 2 % pairs];
        const System& target = directory.systems[number / 2 / pairs % pairs];
        const std::size_t heights = number / 2 / pairs / pairs % 4;
        directory.restore();
        const std::size_t share = random.below(1000);
        if (share < 600) {
            known_systems(random, source, target, heights);
        } else if (share < 840) {
            hostile(random, source, target, heights);
        } else if (share < 920) {
            driven(random, directory, source, target);
        } else if (share < 960) {
            parameter_file(random, directory, source, target);
        } else if (share < 970) {
            definition_file(random, directory, source, target);
        } else if (share < 980) {
            height_model(random, directory, source, target);
        } else if (share < 990) {
            const int code =
                random.one_in(9) ? random.one_of(integers) : static_cast<int>(random.below(2400)) - 99;
            compare("message", Message{code, any_text(random, 120)});
        } else {
            compare("test", Bound{{random.any_double(), random.any_double(), random.one_of(extremes)}});
        }
    }

    // Prints what was compared; returns whether all was the same.
    [[nodiscard]] bool report() const {
        std::map<int, long> statuses;
        long calls = 0;
        long transformations = 0;
        std::printf("%-58s %9s\n", "calls", "number");
        for (const auto& [what, counts] : counted) {
            long sum = 0;
            for (const auto& [status, count] : counts) {
                sum += count;
                statuses[status] += count;
            }
            calls += sum;
            transformations += what.starts_with("trans") ? sum : 0;
            std::printf("%-58s %9ld\n", what.c_str(), sum);
        }
        std::printf("by status:");
        for (const auto& [status, count] : statuses) {
            std::printf(" %d: %ld;", status, count);
        }
        std::printf("\n%zu pairs of systems and heights given and wanted of %zu\n", reached.size(),
                    2 * pairs * pairs * 4);
        std::printf("%ld calls in each library, %ld of them transformations: %ld differ\n", calls,
                    transformations, differences);
        return differences == 0;
    }

  private:
    template <typename Call>
    void compare(const std::string& what, const Call& call) {
        const Outcome expected = call.call(libraries[0]);
        const Outcome got = call.call(libraries[1]);
        ++counted[what][expected.status];
        if (got == expected) {
            return;
        }
        if (++differences <= shownDifferences) {
            std::printf("case %" PRIu64 ", %s\n", number, what.c_str());
            call.print();
            print("reference", expected);
            print("other", got);
        }
    }

    // The road between two systems of the samples.
    static Road road(const System& source, const System& target, const Point& point, std::size_t heights,
                     std::u16string directory) {
        Road made{.point = point,
                  .kind = {source.kind(), target.kind()},
                  .ellipsoid = {source.described[0].texts[1], target.described[1].texts[1]},
                  .zone = target.described[1].integers[0],
                  .heightFlags = {(heights & 1U) != 0 ? -1 : 0, (heights & 2U) != 0 ? -1 : 0},
                  .directory = std::move(directory)};
        std::ranges::copy(source.described[0].numbers, made.parameters[0].begin());
        std::ranges::copy(target.described[1].numbers, made.parameters[1].begin());
        return made;
    }

    // A place as coordinates of a system, given as latitude and longitude of the datum with this hundreds digit. No
    // height model is looked for: the directory's name is too long for any.
    Point in_system(const System& system, int datum, const Point& place) const {
        const auto& systems = directories[0].systems;
        const auto geographic = std::ranges::find(systems, datum * 100 + 1, &System::code);
        const Outcome carried =
            road(*geographic, system, place, 0, std::u16string(300, u'-')).call(libraries[0]);
        return {carried.numbers[0], carried.numbers[1], carried.numbers[2]};
    }

    enum Where { area, stripBorder, gridBorder, far, extreme };
    static constexpr const char* whereNames[] = {"in the area", "at borders of strips",
                                                 "at borders of the grid", "far outside",
                                                 "not finite or extreme"};
    static Where anywhere(Random& random) {
        constexpr Where shares[] = {area,        area,       area,       area, area,   stripBorder,
                                    stripBorder, gridBorder, gridBorder, far,  extreme};
        return random.one_of(shares);
    }

    Point point(Random& random, const System& system, Where where) const {
        constexpr int gridDatum = 2;
        const double height = random.between(-50, 3000);
        const double latitude = random.between(47, 55.3);
        const double longitude = random.between(5.5, 15.5);
        switch (where) {
            case stripBorder: {
                const double border = 1.5 * static_cast<double>(3 + random.below(9)) + random.one_of(nudges);
                return in_system(system, system.code / 100, {latitude, border, height});
            }
            case gridBorder: {
                Point place = {latitude, longitude, height};
                const std::size_t coordinate = random.below(2);
                const auto& [least, most, step] = grid[coordinate];
                const double steps = std::floor(random.between(0, (most - least) / step));
                const double nodes[] = {least, most, least + steps * step, std::floor(place[coordinate])};
                place[coordinate] = random.one_of(nodes) + random.one_of(nudges);
                return in_system(system, gridDatum, place);
            }
            case far:
                if (system.is(u"Geographisch")) {
                    return {random.between(-90, 90), random.between(-400, 400), random.between(-1e7, 1e7)};
                }
                return {random.between(-1e8, 1e8), random.between(-1e8, 1e8), random.between(-1e7, 1e7)};
            case extreme: {
                Point place = in_system(system, gridDatum, {latitude, longitude, height});
                for (std::size_t times = 1 + random.below(3); times > 0; --times) {
                    place[random.below(3)] = random.one_in(4) ? random.any_double() : random.one_of(extremes);
                }
                return place;
            }
            default:
                return in_system(system, gridDatum, {latitude, longitude, height});
        }
    }

    // Where the height model lies: mostly the coarse one, as the others take a tenth of a millisecond and more.
    std::u16string height_directory(Random& random) const {
        const std::size_t share = random.below(100);
        return share < 5    ? u"data/sample"
               : share < 20 ? u"data/sample-scrambled"
                            : wide(directories[share % 2].path);
    }

    void known_systems(Random& random, const System& source, const System& target, std::size_t heights) {
        const Where where = anywhere(random);
        reached.insert(number / 2 % (pairs * pairs * 4) * 2 + number % 2);
        compare(std::string("transr_dll, systems of the samples, ") + whereNames[where],
                road(source, target, point(random, source, where), heights, height_directory(random)));
    }

    static void make_hostile(Random& random, Parameters& parameters) {
        const std::size_t ways = 1 + random.below(31);
        if ((ways & 1U) != 0) {  // two sets, as they might be
            for (std::size_t slot = 14; slot < parameters.size(); ++slot) {
                const std::size_t entry = slot >= 26 ? slot - 26 : slot - 14;  // of ten
                if (slot == 24 || slot == 25) {
                    continue;
                }
                parameters[slot] = entry < 3    ? random.between(-1000, 1000)
                                   : entry < 6  ? random.between(-1e-4, 1e-4)
                                   : entry == 6 ? random.between(0.9999, 1.0001)
                                                : random.between(-6.4e6, 6.4e6);
            }
        }
        if ((ways & 2U) != 0) {  // a plane system with all its constants
            for (std::size_t slot = 2; slot < 14; ++slot) {
                parameters[slot] = slot == 5 || slot == 13 ? random.between(0.999, 1.001)
                                   : slot == 8             ? random.between(-1e-3, 1e-3)
                                   : random.one_in(2)      ? 0.0
                                                           : random.between(-1e5, 1e6);
            }
            parameters[0] = random.between(-1.5, 1.5);
        }
        if ((ways & 4U) != 0) {
            parameters[1] = random.one_of(layouts);
        }
        if ((ways & 8U) != 0) {
            for (std::size_t times = 1 + random.below(5); times > 0; --times) {
                const double value = random.one_in(4) ? random.any_double() : random.one_of(extremes);
                parameters[random.below(parameters.size())] = value;
            }
        }
        if ((ways & 16U) != 0 && random.one_in(16)) {
            std::ranges::generate(parameters, [&] { return random.any_double(); });
        }
    }

    void hostile(Random& random, const System& source, const System& target, std::size_t heights) {
        const Where where = anywhere(random);
        Road made = road(source, target, point(random, source, where), heights, wide(directories[0].path));
        for (const std::size_t side : {0U, 1U}) {
            if (!random.one_in(4)) {
                make_hostile(random, made.parameters[side]);
            }
            constexpr const char16_t* kinds[] = {
                u"Geographisch",   u"Geozentrisch", u"Gauss-Krueger", u"Soldner",     u"Gauss-Kruegerx",
                u"Soldner Berlin", u"soldner",      u"Geo",           u"Gauss-Krueg", u"",
                u" Soldner"};
            constexpr const char16_t* ellipsoids[] = {u"Bessel",     u"GRS80", u"Bessel 1841", u"bessel", u"",
                                                      u"Krassowski", u"Besse", u"GRS80      x"};
            if (random.one_in(6)) {
                made.kind[side] = random.one_in(8) ? any_text(random, 20) : random.one_of(kinds);
            }
            if (random.one_in(6)) {
                made.ellipsoid[side] = random.one_in(8) ? any_text(random, 20) : random.one_of(ellipsoids);
            }
            if (random.one_in(8)) {
                made.heightFlags[side] = random.one_of(integers);
            }
        }
        if (random.one_in(4)) {
            made.zone = random.one_of(integers);
        }
        if (random.one_in(16)) {
            const std::u16string names[] = {u"",
                                            u".",
                                            lengthened(made.directory, 297 + random.below(5)),
                                            wide(noFiles),
                                            u"/dev",
                                            u"\\",
                                            std::u16string(299, u'd'),
                                            std::u16string(500, u'd'),
                                            any_text(random, 300)};
            made.directory = random.one_of(names);
        }
        compare(std::string("transr_dll, hostile parameters, ") + whereNames[where], made);
    }

    static char letter(Random& random) { return random.one_of(std::string_view("eNnE ")); }

    void driven(Random& random, const Directory& directory, const System& source, const System& target) {
        const Where where = anywhere(random);
        Driven call{
            point(random, source, where), {source.code, target.code}, wide(directory.path), letter(random)};
        if (random.one_in(5)) {
            call.directory = random.one_in(2) ? u"data/sample" : u"data/sample-scrambled";
        } else if (random.one_in(40)) {
            call.directory = any_text(random, 120);
        } else if (random.one_in(20)) {
            call.directory = lengthened(call.directory, 97 + random.below(5));
        }
        if (random.one_in(40)) {
            call.codes[random.below(2)] = random.one_of(integers);
        }
        compare(std::string("trans_dll, ") + whereNames[where], call);
    }

    Driven one_driven(Random& random, const Directory& directory, const System& source,
                      const System& target) {
        return {
            point(random, source, area), {source.code, target.code}, wide(directory.path), letter(random)};
    }

    void parameter_file(Random& random, Directory& directory, const System& source, const System& target) {
        const System& changed = random.one_in(2) ? source : target;
        std::string file(changed.file.begin(), changed.file.end());
        directory.change(file + (directory.scrambled != 0 ? ".tr0" : ".tra"), random);
        const int code = random.one_in(20) ? random.one_of(integers) : changed.code;
        for (const bool asTarget : {false, true}) {
            compare(
                "describe, damaged parameter files",
                Described{asTarget, wide(directory.path),
                          random.one_in(8) ? upper(changed.file) : changed.file, directory.scrambled, code});
        }
        compare("trans_dll, damaged parameter files", one_driven(random, directory, source, target));
    }

    void definition_file(Random& random, Directory& directory, const System& source, const System& target) {
        directory.change("DEFAULT", random);
        compare("list, damaged definition files", Listed{wide(directory.path)});
        compare("trans_dll, damaged definition files", one_driven(random, directory, source, target));
    }

    void height_model(Random& random, Directory& directory, const System& source, const System& target) {
        directory.change("hoehe.ini", random);
        for (const std::size_t heights : {0U, 1U, 2U, 3U}) {
            const Point place = point(random, source, random.one_in(2) ? area : gridBorder);
            compare("transr_dll, damaged height models",
                    road(source, target, place, heights, wide(directory.path)));
        }
    }

    std::array<Library, 2> libraries;
    std::string noFiles;                             // a directory in which the files are directories
    std::vector<Directory> directories;              // plain, scrambled
    std::size_t pairs = 0;                           // systems of each: pairs by pairs
    std::array<std::array<double, 3>, 2> grid = {};  // latitude, longitude: least, most, step
    std::uint64_t number = 0;
    std::map<std::string, std::map<int, long>> counted;
    std::set<std::uint64_t> reached;
    long differences = 0;
};

std::uint64_t number_of(const char* text) {
    char* end = nullptr;
    const std::uint64_t number = std::strtoull(text, &end, 10);
    if (end == text || *end != '\0') {
        throw std::runtime_error(std::string("no number: ") + text);
    }
    return number;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 5) {
        std::fprintf(stderr, "usage: compare_bits REFERENCE.so OTHER.so [COUNT [FIRST]]\n");
        return 2;
    }
    try {
        const std::uint64_t count = argc > 3 ? number_of(argv[3]) : defaultCount;
        const std::uint64_t first = argc > 4 ? number_of(argv[4]) : 0;
        const Library reference(argv[1]);
        const Library other(argv[2]);
        if (reference.transr == other.transr) {
            throw std::runtime_error("the same library twice");
        }
        const std::string files = "build/compare_bits/files-" + std::to_string(getpid());
        std::printf("Cases %" PRIu64 " to %" PRIu64 "\n", first, first + count - 1);
        Comparison comparison(reference, other, files);
        for (std::uint64_t number = first; number < first + count; ++number) {
            comparison.make_case(number);
        }
        const bool same = comparison.report();
        if (same || count > 1) {
            std::filesystem::remove_all(files);
        } else {
            std::printf("The files are left in %s\n", files.c_str());
        }
        return same ? 0 : 1;
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "compare_bits: %s\n", fault.what());
        return 2;
    }
}
