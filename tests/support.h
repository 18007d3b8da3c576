// What the tests share: rows of cases, data directories made for one case, and the exported functions with
// plain types.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <limits>
#include <numbers>
#include <ranges>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/system_description.h"
#include "geodesy/geocentric.h"
#include "interface/lagestatus.h"

namespace testing_support {

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// The same bits, so that what is not a number and both zeros can be compared.
inline bool same_bits(std::span<const double> left, std::span<const double> right) {
    const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
    return std::ranges::equal(left, right, {}, bits, bits);
}

// Some deviations, the largest of which must be below a tolerance; one that is not a number counts as infinite.
class Deviations {
  public:
    Deviations(const char* what, double tolerance) : of(what), tol(tolerance) {}
    ~Deviations() { EXPECT_LT(largest, tol) << of; }
    void add(std::initializer_list<double> deviations) {
        for (const double deviation : deviations) {
            largest = std::isnan(deviation) ? infinity : std::max(largest, std::fabs(deviation));
        }
    }

  private:
    const char* of;
    double tol, largest = 0;
};

struct NamedEllipsoid {
    const char* name;
    double a;
    double inverseFlattening;
    [[nodiscard]] lagestatus::Ellipsoid axes() const { return {a, a * (1 - 1 / inverseFlattening)}; }
};
inline constexpr NamedEllipsoid ellipsoids[] = {{"Bessel", 6377397.155, 299.1528128},
                                                {"GRS80", 6378137.0, 298.257222101},
                                                {"Krassowski", 6378245.0, 298.3}};

// The rows of a file in tests/data, one case a line, fields separated by tabs. Behind a backslash stand n r t
// v f, a backslash, or x and two hexadecimal digits; {c*100} is the character c a hundred times. Lines that begin with
// # are comments.
using Row = std::vector<std::string>;
std::vector<Row> rows(const std::string& file);

// A height model, one element a data line: GRS80 on both sides, no datum step, no correction; 9 columns and 5 rows from
// 40 m, 1 more for every column and 2 for every row.
std::vector<std::string> good_model();

// A system on GRS80, of 3 degree strips, without datum step or reductions, but for settings "slot=value ...".
lagestatus::ParameterArray parameters(const std::string& settings = "");

// One call of transr_dll, with point and result in the same memory.
struct Road {
    std::string directory = SAMPLE_DIR;
    std::array<double, 4> point = {};  // the result after run()
    std::string sourceKind = "Geographisch", sourceEllipsoid = "Bessel";
    std::string targetKind = "Geographisch", targetEllipsoid = "Bessel";
    lagestatus::ParameterArray source = parameters(), target = parameters();
    int sourceFlag = 0, targetFlag = 0, zone = 0;
    int run();
};

// Metres on the ground for one unit of a coordinate of a system of the sample.
inline std::array<double, 3> metres_per_unit(int code, double latitude) {
    const double perDegree = 6.4e6 * std::numbers::pi / 180;
    return code % 10 == 1
               ? std::array{perDegree, perDegree * std::cos(latitude * std::numbers::pi / 180), 1.0}
               : std::array{1.0, 1.0, 1.0};
}

// A buffer of count values for an exported function: of that length to the byte, and at an address that no alignment
// allows.
template <typename T>
class Buffer {
  public:
    explicit Buffer(std::size_t count, T value = {}) : Buffer(std::vector<T>(count, value)) {}
    template <std::ranges::contiguous_range Values>
    explicit Buffer(const Values& values) : bytes(std::size(values) * sizeof(T) + 1) {
        std::memcpy(bytes.data() + 1, std::data(values), bytes.size() - 1);
    }
    T* get() { return reinterpret_cast<T*>(bytes.data() + 1); }
    [[nodiscard]] std::vector<T> values() const {
        std::vector<T> copy((bytes.size() - 1) / sizeof(T));
        std::memcpy(copy.data(), bytes.data() + 1, bytes.size() - 1);
        return copy;
    }

  private:
    std::vector<unsigned char> bytes;
};

// Texts as they cross the boundary; text() adds a terminator, narrow() fails the test when it is missing.
std::u16string wide(std::string_view text);
Buffer<char16_t> text(std::string_view text);
std::string narrow(const std::vector<char16_t>& units);
// The message of transfm_dll, in a buffer with not a unit more. It must be that of the catalogue, and of the promised
// length.
std::u16string message(int code, const std::u16string& fileName);

// Another number when more or fewer file handles are open: on Windows how many, elsewhere the next one.
int open_file_handles();

// Checks by its destructor that no file handle is left open.
class NoHandleLeft {
  public:
    ~NoHandleLeft() { EXPECT_EQ(open_file_handles(), before); }

  private:
    int before = open_file_handles();
};

// Heap memory asked for by this thread, if the program has heap_hook.cpp in it.
inline thread_local std::size_t heapCalls = 0;
inline std::atomic<std::size_t> callsMade = 0;  // of the exported functions

// Makes a call of an exported function, which must not ask for heap memory.
template <typename Call>
auto guarded(Call call) {
    ++callsMade;
    const std::size_t before = heapCalls;
    const auto status = call();
    EXPECT_EQ(heapCalls, before) << "heap memory was asked for";
    return status;
}

// Runs work in a thread with a stack of size bytes (Wine gives a mebibyte at least); who needs more ends the program.
void on_small_stack(std::size_t size, const std::function<void()>& work);

// A path of the file system for a name in ISO 8859-1, as the library looks for it.
std::filesystem::path on_disk(const std::string& name);

// A directory that exists as long as the object.
class DataDirectory {
  public:
    DataDirectory();
    ~DataDirectory();
    DataDirectory(const DataDirectory&) = delete;
    DataDirectory& operator=(const DataDirectory&) = delete;

    void write(const std::string& name, std::string_view content) const;
    [[nodiscard]] std::string read(const std::string& name) const;
    [[nodiscard]] std::string path() const { return root.string(); }

  private:
    std::filesystem::path root;
};

// A complete parameter file for the code 17, one element a data line.
std::vector<std::string> good_lines();
std::string join(const std::vector<std::string>& lines, std::string_view lineEnd = "\n");
// The same text as a scrambled file with its key.
std::string scrambled(std::string_view plain, int key);

constexpr double untouched = -4711.0;  // what arrays hold before a call
inline char16_t textFill = u'x';       // and texts: two calls with two of them tell what was written

struct Listing {
    int status = 0, flag = -9, count = -9;
    std::array<int, 100> codes = {}, auxiliary = {};
    std::vector<std::string> names;  // of the first entries, as many as asked for
    std::vector<char16_t> slots;     // all names as they were written
    bool operator==(const Listing&) const = default;
};
Listing list(const std::string& directory, std::size_t names = 0);

// What a call writes of a system.
struct Texts {
    std::string name, ellipsoid, kind;
    [[nodiscard]] Row row() const { return {name, ellipsoid, kind}; }
};

enum class Role { source, target };
struct Description : Texts {
    int status = 0, zone = -9;  // a zone number is read for targets only
    std::vector<double> parameters;
    bool operator==(const Description& other) const {
        return status == other.status && zone == other.zone && row() == other.row() &&
               same_bits(parameters, other.parameters);
    }
};
Description describe(Role role, const std::string& directory, const std::string& base, int scrambledFlag,
                     int code);

struct Transformed {
    int status = 0;
    std::array<double, 4> result = {};
    std::array<int, 2> auxiliary = {};
    Texts source, target;
};
Transformed transform(const std::string& directory, int from, int to, const std::array<double, 3>& point,
                      char heightMode = 'e');

}  // namespace testing_support
