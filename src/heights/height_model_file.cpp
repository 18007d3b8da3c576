#include "heights/height_model_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "base/angles.h"
#include "base/int_cast.h"
#include "datafiles/field_check.h"
#include "datafiles/field_scanner.h"

namespace lagestatus {
namespace {

using Unit = HeightField::Unit;

// The fields of the datum sets, with the statuses that parameter files have for them.
template <std::size_t... At>
consteval auto datum_fields(std::index_sequence<At...> /*at*/) noexcept {
    return std::to_array<HeightField>(
        {{status::firstTwoColumns + static_cast<Status>(At),
          [](HeightModel& m) noexcept -> double& { return m.datum[datumSlots[At]]; }}...});
}

// The header: one data line a field, in this order; each holds one number, anything behind it is ignored.
constexpr auto fields = [] {
    constexpr auto axes = std::to_array<HeightField>({
        {27, [](HeightModel& m) noexcept -> double& { return m.bessel.a; }, Check::positive},
        {28, [](HeightModel& m) noexcept -> double& { return m.bessel.b; }, Check::positive},
        {127, [](HeightModel& m) noexcept -> double& { return m.grs80.a; }, Check::positive},
        {128, [](HeightModel& m) noexcept -> double& { return m.grs80.b; }, Check::positive},
    });
    constexpr auto datum = datum_fields(std::make_index_sequence<datumSlots.size()>());
    constexpr auto rauenberg = std::to_array<HeightField>({
        {101, [](HeightModel& m) noexcept -> double& { return m.lamR; }, Check::notNegative, Unit::degrees},
        {102, [](HeightModel& m) noexcept -> double& { return m.phiR; }, Check::notNegative, Unit::degrees},
        {103, [](HeightModel& m) noexcept -> double& { return m.xiR; }, Check::none, Unit::arcSeconds},
        {104, [](HeightModel& m) noexcept -> double& { return m.etaR; }, Check::none, Unit::arcSeconds},
        {105, [](HeightModel& m) noexcept -> double& { return m.zetaR; }},
    });
    std::array<HeightField, heightFieldCount> all;
    auto end = std::copy(axes.begin(), axes.end(), all.begin());
    end = std::copy(datum.begin(), datum.end(), end);
    std::copy(rauenberg.begin(), rauenberg.end(), end);
    return all;
}();
constexpr std::size_t axesOfBessel = 2;  // the first fields

double converted(Unit unit, double value) noexcept {
    switch (unit) {
        case Unit::asWritten:
            break;
        case Unit::degrees:
            return value * degree;
        case Unit::arcSeconds:
            return value * degree / 3600.0;
    }
    return value;
}

constexpr char degreeSign = '\xB0';

// An angle as 52°27'12.5", no blank before any of the three signs. The last sign may be missing where nothing follows
// that needs it, so it is left to the caller.
bool sexagesimal(FieldScanner& scanner, double& angle) noexcept {
    int degrees = 0;
    int minutes = 0;
    double seconds = 0.0;
    if (!scanner.integer(degrees) || !scanner.literal(degreeSign) || !scanner.integer(minutes) ||
        !scanner.literal('\'') || !scanner.number(seconds)) {
        return false;
    }
    angle = degrees + minutes / 60.0 + seconds / 3600.0;
    return degrees >= 0 && degrees <= 359 && minutes >= 0 && minutes <= 59 && seconds >= 0.0 &&
           seconds <= 60.0;
}

}  // namespace

std::span<const HeightField, heightFieldCount> height_fields() noexcept {
    return fields;
}

Status read_height_field(const HeightField& field, std::string_view text, HeightModel& model) noexcept {
    double value = 0.0;
    if (!FieldScanner(text).number(value) || !passes(field.check, value)) {
        return field.failure;
    }
    field.place(model) = converted(field.unit, value);
    return status::ok;
}

bool read_grid_axis(std::string_view text, GridAxis& axis) noexcept {
    FieldScanner scanner(text);
    if (text.find(degreeSign) != std::string_view::npos) {
        if (!sexagesimal(scanner, axis.smallest) || !scanner.literal('"') ||
            !sexagesimal(scanner, axis.largest) || !scanner.literal('"') ||
            !sexagesimal(scanner, axis.spacing)) {
            return false;
        }
    } else if (!scanner.number(axis.smallest) || !scanner.number(axis.largest) ||
               !scanner.number(axis.spacing)) {
        return false;
    }
    if (!(axis.smallest >= 0.0 && axis.largest >= 0.0 && axis.spacing > 0.0 &&
          axis.largest - axis.smallest > 0.0)) {
        return false;
    }
    // A little more than 1, so that rounding does not lose the last value.
    const auto count = truncated((axis.largest - axis.smallest) / axis.spacing + 1.000005);
    axis.count = count.value_or(0);
    return count.has_value();
}

std::string_view behind_grid_value(std::string_view text) noexcept {
    const auto* const end = std::ranges::find_if(text, [](char each) { return each == ' ' || each == '\n'; });
    return {std::find_if(end, text.end(), [](char each) { return each != ' ' && each != '\t'; }), text.end()};
}

Status GridLine::value(int wanted, double& value) noexcept {
    for (; place < wanted; ++place) {
        rest = behind_grid_value(rest);
    }
    rest = {std::find_if_not(rest.begin(), rest.end(), is_blank), rest.end()};
    double read = 0.0;
    if (!FieldScanner(rest).number(read) || read == noGridValue) {
        return status::gridValue;
    }
    value = read;
    return status::ok;
}

Status HeightModelFile::open(std::string_view directory, PathText encoding) noexcept {
    if (!lines.open(directory.empty() ? "." : directory, heightModelFileName, encoding)) {
        return status::heightModelNotOpened;
    }
    return read_key();
}

Status HeightModelFile::read_fields(std::span<const HeightField> some, HeightModel& model) noexcept {
    for (const HeightField& field : some) {
        if (const Status read = lines.next(); read != status::ok) {
            return read;
        }
        anyLine = true;
        if (const Status read = read_height_field(field, lines.text(), model); read != status::ok) {
            return read;
        }
    }
    return status::ok;
}

Status HeightModelFile::read_axes(HeightModel& model) noexcept {
    return read_fields(std::span(fields).first(axesOfBessel), model);
}

Status HeightModelFile::read_rest_of_header(HeightModel& model) noexcept {
    if (const Status read = read_fields(std::span(fields).subspan(axesOfBessel), model); read != status::ok) {
        return read;
    }
    struct Range {
        GridAxis& axis;
        Status failure;
    };
    for (const auto& [axis, failure] :
         {Range{model.longitude, status::longitudeRange}, Range{model.latitude, status::latitudeRange}}) {
        if (const Status read = lines.next(); read != status::ok) {
            return read;
        }
        if (!read_grid_axis(lines.text(), axis)) {
            return failure;
        }
    }
    return status::ok;
}

Status HeightModelFile::grid_value(std::int64_t number, double& value) noexcept {
    const std::int64_t wantedLine = number / valuesPerLine;
    const auto wantedPlace = static_cast<int>(number % valuesPerLine);
    if (wantedLine > gridLine) {
        if (const Status skipped = lines.skip(wantedLine - gridLine - 1); skipped != status::ok) {
            return skipped;
        }
        if (const Status read = lines.next(); read != status::ok) {
            return read;
        }
        gridLine = wantedLine;
        grid = GridLine(lines.text());
    }
    return grid.value(wantedPlace, value);
}

}  // namespace lagestatus
