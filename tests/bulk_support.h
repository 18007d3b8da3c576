// The bulk library with plain types, and held beside the seven functions.
#pragma once

#include <memory>
#include <random>

#include "bulk/lagestatus_bulk.h"
#include "support.h"

namespace testing_support {

using HeldDirectory = std::unique_ptr<lagestatus_directory, decltype(&lagestatus_directory_close)>;
using HeldWay = std::unique_ptr<lagestatus_transformation, decltype(&lagestatus_transformation_close)>;
template <typename Handle>
struct Opened {
    int status;
    Handle handle;
};
using Points = std::vector<std::array<double, 3>>;

// A structure of the interface with its size.
template <typename Structure>
Structure sized() {
    Structure structure = {};
    structure.size = sizeof structure;
    return structure;
}

inline lagestatus_options heights(int given, int wanted) {
    auto options = sized<lagestatus_options>();
    options.heightGiven = given;
    options.heightWanted = wanted;
    return options;
}

// UTF-8 without control characters that ends within size bytes.
inline void check_text(const char* text, std::size_t size) {
    EXPECT_NE(std::memchr(text, '\0', size), nullptr);
    EXPECT_NO_THROW((void)std::filesystem::path(reinterpret_cast<const char8_t*>(text)).u16string());
    EXPECT_TRUE(std::ranges::none_of(std::string_view(text),
                                     [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; }));
}

// Makes a call, and checks what it tells of its failure; whatever lay in the caller's memory is overwritten.
template <typename Call>
int told(Call call) {
    lagestatus_failure failure, none = {};
    std::memset(&failure, 'x', sizeof failure);
    const int status = call(&failure);
    EXPECT_EQ(status == 0, std::memcmp(&failure, &none, sizeof none) == 0);
    EXPECT_EQ(failure.status, status);
    EXPECT_EQ(failure.message[0] == '\0', status == 0);
    EXPECT_EQ(failure.file[0] == '\0', status <= 0);
    const bool hasLine = status > 1 && status != 7 && status != 93 && status % 1000 != 100 && status != 1110;
    EXPECT_TRUE(hasLine ? failure.line > 0 : failure.line == 0 && failure.text[0] == '\0') << status;
    check_text(failure.file, sizeof failure.file);
    check_text(failure.text, sizeof failure.text);
    check_text(failure.message, sizeof failure.message);
    std::string cut(60, 'x');
    for (std::size_t size = 1; size < cut.size(); ++size) {
        lagestatus_message(status, failure.file, cut.data(), size);
        check_text(cut.data(), size);
    }
    return status;
}

// Opens something by a function of the interface, which takes where to put it and the failure.
template <typename Structure, typename Open>
auto opened(Open open, void (*close)(Structure*)) {
    auto* structure = reinterpret_cast<Structure*>(16);
    const int status = told([&](lagestatus_failure* failure) { return open(&structure, failure); });
    EXPECT_EQ(structure == nullptr, status != 0);
    return Opened<std::unique_ptr<Structure, decltype(close)>>{status, {structure, close}};
}
inline Opened<HeldDirectory> open_directory(const std::string& path, int flags = 0) {
    return opened<lagestatus_directory>(
        [&](auto... to) { return lagestatus_directory_open(path.c_str(), flags, to...); },
        lagestatus_directory_close);
}
inline Opened<HeldWay> open_way(const HeldDirectory& directory, int from, int to,
                                const lagestatus_options& options = sized<lagestatus_options>()) {
    return opened<lagestatus_transformation>(
        [&](auto... into) {
            return lagestatus_transformation_open(directory.get(), from, to, &options, into...);
        },
        lagestatus_transformation_close);
}

struct Carried {
    int status = 0;
    std::array<double, 4> at = {};
    std::size_t defaulted = 0;  // of all points
    // What is not a number is one like another.
    bool operator==(const Carried& other) const {
        return status == other.status && std::ranges::equal(at, other.at, [](double left, double right) {
                   return (std::isnan(left) && std::isnan(right)) || same_bits({&left, 1}, {&right, 1});
               });
    }
};

// All columns, side by side in records, the results in the place of the points.
inline std::vector<Carried> carried(const HeldWay& way, const Points& points) {
    std::vector<Carried> all(points.size());
    std::vector<int> status(points.size(), -9);
    for (std::size_t number = 0; number < all.size(); ++number) {
        std::ranges::copy(points[number], all[number].at.begin());
    }
    constexpr std::ptrdiff_t stride = sizeof(Carried);
    const std::array strides = {stride, stride, stride, stride};
    const std::array columns = {&all[0].at[0], &all[0].at[1], &all[0].at[2], &all[0].at[3]};
    std::size_t defaulted = 99;
    const auto failures = guarded([&] {
        return lagestatus_transform(way.get(), points.size(), columns.data(), strides.data(), columns.data(),
                                    strides.data(), status.data(), &defaulted);
    });
    EXPECT_EQ(failures, std::ranges::count_if(status, [](int each) { return each != 0; }));
    for (std::size_t number = 0; number < all.size(); ++number) {
        all[number].status = status[number];
        all[number].defaulted = defaulted;
    }
    return all;
}

// The systems of the sample.
inline constexpr std::array codes = {101, 102, 103, 104, 105, 201, 202, 203, 301, 303};

// Of one system of the sample: inside its height model and around, anywhere, and what is no place.
inline Points places(const HeldDirectory& sample, int code, std::mt19937& random) {
    std::uniform_real_distribution<double> share(-1, 1);
    Points all;
    for (const double around : {0.6, 0.6, 80.0, 0.6, 0.6, 80.0}) {  // degrees
        all.push_back(
            {51.5 + around / 2 * share(random), 9.5 + around * share(random), 4000 * share(random)});
    }
    for (std::size_t number = 0; const Carried& one : carried(open_way(sample, 101, code).handle, all)) {
        if (one.status == 0) {
            std::copy_n(one.at.begin(), 3, all[number].begin());
        }
        ++number;
    }
    const std::array odd = {notANumber, infinity, -infinity, 1e300, -1e7, 1e-310, 0.0};
    all.push_back({0, 0, 0});
    all.push_back(all[1]);
    all.back()[random() % 3] = odd[random() % odd.size()];
    return all;
}

// Holds points against trans_dll, with both kinds of heights given and whatever is wanted.
inline void expect_as_trans_dll(const std::string& path, const HeldDirectory& directory, int from, int to,
                                const Points& points) {
    SCOPED_TRACE(::testing::Message() << path << ' ' << from << " to " << to);
    const auto plainWay = open_way(directory, from, to);
    for (const int given : {LAGESTATUS_HEIGHT_ELLIPSOIDAL, LAGESTATUS_HEIGHT_NORMAL}) {
        std::vector<Transformed> right;
        for (const auto& point : points) {
            right.push_back(transform(path, from, to, point, given == LAGESTATUS_HEIGHT_NORMAL ? 'N' : 'e'));
        }
        if (plainWay.status != 0) {
            EXPECT_EQ(plainWay.status, right[0].status);
            continue;
        }
        const bool toGeocentric = right[0].target.kind.starts_with("Geozentrisch");
        const bool normal =
            given == LAGESTATUS_HEIGHT_NORMAL && !right[0].source.kind.starts_with("Geozentrisch");
        const std::vector<Carried> plain = carried(plainWay.handle, points);
        for (const int wanted : {LAGESTATUS_HEIGHT_ELLIPSOIDAL, LAGESTATUS_HEIGHT_NONE,
                                 LAGESTATUS_HEIGHT_NORMAL, LAGESTATUS_HEIGHT_BOTH}) {
            SCOPED_TRACE(::testing::Message() << "given " << given << ", wanted " << wanted);
            const auto way = open_way(directory, from, to, heights(given, wanted));
            const bool refused = toGeocentric && wanted == LAGESTATUS_HEIGHT_NORMAL;
            EXPECT_EQ(way.status, refused ? LAGESTATUS_ARGUMENT : 0);
            const bool both = wanted == LAGESTATUS_HEIGHT_BOTH;
            const bool corrects = toGeocentric && normal && !both;  // which trans_dll does not
            if (refused || corrects) {
                continue;
            }
            const std::vector<Carried> got = carried(way.handle, points);
            for (std::size_t number = 0; number < points.size(); ++number) {
                SCOPED_TRACE(::testing::PrintToString(points[number]));
                const bool asked = normal || both || wanted == LAGESTATUS_HEIGHT_NORMAL;
                Carried expected =
                    asked ? Carried{right[number].status, right[number].result} : plain[number];
                const bool lost = expected.status >= 1000;
                const bool early = lost && same_bits(std::span(expected.at).first(3), std::array{0., 0., 0.});
                if (early) {
                    expected.at = plain[number].at;
                } else if (!normal && !toGeocentric && asked && (lost || expected.status == 0)) {
                    EXPECT_TRUE(plain[number].status == 0 && same_bits(std::span(expected.at).first(3),
                                                                       std::span(plain[number].at).first(3)));
                }
                if ((expected.status > 0 && !lost) || (lost && toGeocentric) ||
                    (early && plain[number].status != 0)) {
                    expected.at.fill(notANumber);
                }
                if (!(toGeocentric || both || wanted == LAGESTATUS_HEIGHT_ELLIPSOIDAL) || (lost && normal)) {
                    expected.at[2] = notANumber;
                }
                if (!(both || wanted == LAGESTATUS_HEIGHT_NORMAL) || lost) {
                    expected.at[3] = notANumber;
                }
                EXPECT_EQ(got[number], expected)
                    << ::testing::PrintToString(got[number].at) << ::testing::PrintToString(expected.at);
            }
        }
    }
}

}  // namespace testing_support
