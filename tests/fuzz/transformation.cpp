// Any arguments for transr_dll: kinds, names, numbers, flags. Buffers of texts end with the last unit that may be read.
#include "fuzz.h"

#include "base/projection_kind.h"

using namespace fuzzing;

namespace {

constexpr std::size_t kindUnits = 14;
constexpr std::size_t ellipsoidUnits = 11;

// A text as it lies in the caller's memory: as many units as are read at most need no terminator.
std::vector<char16_t> text_of(Input& input, std::initializer_list<const char*> usual, std::size_t units) {
    const auto choice = input.take<std::uint8_t>() % (usual.size() + 1);
    if (choice == usual.size()) {
        return input.units(units);
    }
    const std::u16string known = wide(usual.begin()[choice]);
    std::vector<char16_t> text(known.begin(), known.end());
    text.push_back(u'\0');
    text.resize(std::min(text.size(), units));
    return text;
}

std::string narrowed(const std::vector<char16_t>& units) {
    const auto ends = [](char16_t unit) { return unit % 256 == 0; };
    return {units.begin(), std::ranges::find_if(units, ends)};
}

std::vector<char16_t> kind_of(Input& input) {
    return text_of(
        input,
        {"Geographisch", "Gauss-Krueger", "Soldner", "Geozentrisch", "Gauss-Krueger-", "Geographisch x"},
        kindUnits);
}

// A system like those there are, but for some of its parameters; or any 36 numbers.
std::vector<double> parameters_of(Input& input) {
    const auto changes = input.take<std::uint8_t>();
    std::vector<double> values(36);
    if (changes == 255) {
        std::ranges::generate(values, [&] { return input.take<double>(); });
        return values;
    }
    std::ranges::copy(parameters(), values.begin());
    for (unsigned change = 0; change < changes % 9; ++change) {
        const std::size_t slot = input.take<std::uint8_t>() % 36;
        // Any double, or a number as people write them.
        values[slot] = (input.take<std::uint8_t>() & 1U) != 0 ? input.take<double>()
                                                              : input.take<std::int32_t>() / 1024.0;
    }
    return values;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const auto sourceKind = kind_of(input);
    const auto targetKind = kind_of(input);
    const auto sourceEllipsoid = text_of(input, {"Bessel", "GRS80", "Bessel 1841"}, ellipsoidUnits);
    const auto targetEllipsoid = text_of(input, {"Bessel", "GRS80", "Bessel 1841"}, ellipsoidUnits);
    const auto source = parameters_of(input);
    const auto target = parameters_of(input);
    const auto flags = input.take<std::uint8_t>();
    const int sourceFlag = (flags & 1U) != 0 ? -1 : input.take<std::int8_t>();
    const int targetFlag = (flags & 2U) != 0 ? -1 : input.take<std::int8_t>();
    const int zone = (flags & 4U) != 0 ? input.take<std::int32_t>() : 3;
    const auto directory = text_of(input, {SAMPLE_DIR, "", ".", "\\", "/dev"}, 20);
    std::array<double, 4> point = {};
    for (double& value : point) {
        value = (flags & 8U) != 0 ? input.take<double>() : input.take<std::int32_t>() / 256.0;
    }
    const double given = point[2];
    // As the name of a directory it needs a terminator: there are no more units behind it than in one.
    auto path = directory;
    path.push_back(u'\0');

    const NoHandleLeft handles;
    Reached apart = {};
    Reached inPlace = {};
    // The second time with the result in the point's place, and other flags of the same meaning.
    const auto call = [&](Reached& done, bool samePlace) {
        const auto flag = [samePlace](int value) { return samePlace && value != -1 ? 0 : value; };
        Buffer<double> from(std::vector<double>(point.begin(), point.begin() + (samePlace ? 4 : 3)));
        Buffer<double> to(4, untouched);
        double* const result = samePlace ? from.get() : to.get();
        done.status =
            transr_dll(from.get(), Buffer<char16_t>(sourceKind).get(), Buffer<char16_t>(targetKind).get(),
                       result, Buffer<char16_t>(sourceEllipsoid).get(), Buffer<double>(source).get(),
                       Buffer<char16_t>(targetEllipsoid).get(), Buffer<double>(target).get(), zone,
                       flag(sourceFlag), flag(targetFlag), Buffer<char16_t>(path).get());
        std::ranges::copy(samePlace ? from.values() : to.values(), done.result.begin());
    };
    call(apart, false);
    call(inPlace, true);
    EXPECT_TRUE(apart == inPlace);
    // A target in the Bessel datum has its normal height computed unasked.
    const bool heights =
        sourceFlag == -1 || targetFlag == -1 || narrowed(targetEllipsoid).starts_with("Bessel");
    check(apart, given, heights);
    const auto unknown = [](const std::vector<char16_t>& kind) {
        return lagestatus::projection_kind(narrowed(kind)) == lagestatus::ProjectionKind::unknown;
    };
    EXPECT_EQ(apart.status == 12, unknown(sourceKind) || unknown(targetKind));
    return 0;
}
