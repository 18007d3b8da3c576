#include "bulk/transformation.h"

#include <cmath>
#include <limits>
#include <utility>

#include "base/caller_memory.h"
#include "base/projection_kind.h"

namespace lagestatus {
namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

// The place of a column's value for a point.
template <typename Memory>
Memory* place_in(const DoubleColumn<Memory>& column, std::size_t number) noexcept {
    using Byte = std::conditional_t<std::is_const_v<Memory>, const char, char>;
    return static_cast<Byte*>(column.values) + static_cast<std::ptrdiff_t>(number) * column.stride;
}

double read(const InputColumn& column, std::size_t number) noexcept {
    return load<double>(place_in(column, number));
}

// A column that the caller leaves out takes nothing.
void write(const OutputColumn& column, std::size_t number, double value) noexcept {
    if (column.values != nullptr) {
        store<double>(place_in(column, number), 0, value);
    }
}

bool is_geocentric(const SystemDescription& system) noexcept {
    return projection_kind(system.projectionKind.view()) == ProjectionKind::geocentric;
}

bool wants_ellipsoidal(HeightWanted wanted) noexcept {
    return wanted == HeightWanted::ellipsoidal || wanted == HeightWanted::both;
}

bool wants_normal(HeightWanted wanted) noexcept {
    return wanted == HeightWanted::normal || wanted == HeightWanted::both;
}

// What the heights are on the road of every point.
HeightFlags flags_of(bool sourceGeocentric, bool targetGeocentric,
                     const TransformationOptions& how) noexcept {
    HeightFlags flags = {.alsoUnasked = false};
    flags.sourceIsNormal = how.given == HeightGiven::normal && !sourceGeocentric;
    // Both heights are what trans_dll gives, which never corrects one towards a geocentric target.
    flags.targetWantsNormal = targetGeocentric ? flags.sourceIsNormal && how.wanted != HeightWanted::both
                                               : flags.sourceIsNormal || wants_normal(how.wanted);
    return flags;
}

}  // namespace

bool Transformation::needs_height_model(const SystemDescription& source, const SystemDescription& target,
                                        const TransformationOptions& how) noexcept {
    const HeightFlags flags = flags_of(is_geocentric(source), is_geocentric(target), how);
    return flags.sourceIsNormal || flags.targetWantsNormal;
}

const char* Transformation::contradiction(const SystemDescription& source, const SystemDescription& target,
                                          const TransformationOptions& how) noexcept {
    if (how.defaultHeight && !std::isfinite(*how.defaultHeight)) {
        return "defaultHeight ist keine endliche Zahl";
    }
    if (is_geocentric(target)) {
        return how.wanted == HeightWanted::normal
                   ? "heightWanted: für ein geozentrisches Ziel gibt es keine Normalhöhe allein"
                   : nullptr;
    }
    if (!is_geocentric(source) && how.given == HeightGiven::none && how.wanted != HeightWanted::none) {
        return "heightGiven und heightWanted: eine Höhe ist gewünscht, aber keine gegeben";
    }
    return nullptr;
}

Transformation::Transformation(const SystemDescription& source, const SystemDescription& target,
                               const TransformationOptions& how, std::shared_ptr<const HeightAnomalies> model)
    : options(how),
      road(source, target, std::move(model)),
      sourceGeocentric(is_geocentric(source)),
      targetGeocentric(is_geocentric(target)),
      flags(flags_of(sourceGeocentric, targetGeocentric, how)) {}

bool Transformation::needs_third_input() const noexcept {
    return sourceGeocentric || options.given != HeightGiven::none;
}

bool Transformation::has_third_output() const noexcept {
    return targetGeocentric || wants_ellipsoidal(options.wanted);
}

bool Transformation::has_normal_output() const noexcept {
    return wants_normal(options.wanted);
}

Transformation::Outcome Transformation::carry(std::size_t count, const std::array<InputColumn, 3>& input,
                                              const std::array<OutputColumn, 4>& output,
                                              int* statuses) const noexcept {
    const bool readsThird = needs_third_input();
    const bool writesThird = has_third_output();
    const bool writesNormal = has_normal_output();
    const bool swapsInput = options.sourceEastingFirst && !sourceGeocentric;
    const bool swapsOutput = options.targetEastingFirst && !targetGeocentric;
    const double notRead = options.defaultHeight ? none : 0.0;
    Outcome outcome;
    for (std::size_t number = 0; number < count; ++number) {
        Point point = {read(input[0], number), read(input[1], number),
                       readsThird ? read(input[2], number) : notRead};
        if (swapsInput) {
            std::swap(point[0], point[1]);
        }
        if (std::isnan(point[2]) && !sourceGeocentric && options.defaultHeight) {
            point[2] = *options.defaultHeight;
            ++outcome.defaulted;
        }
        const CarriedPoint carried = road.carry(point, flags);
        double first = carried.hasPlace ? carried.at[0] : none;
        double second = carried.hasPlace ? carried.at[1] : none;
        if (swapsOutput) {
            std::swap(first, second);
        }
        write(output[0], number, first);
        write(output[1], number, second);
        write(output[2], number, writesThird && carried.hasHeight ? carried.at[2] : none);
        write(output[3], number, writesNormal && carried.hasNormal ? carried.at[3] : none);
        if (statuses != nullptr) {
            store<int>(statuses, number, carried.status);
        }
        outcome.failures += carried.status == status::ok ? 0 : 1;
    }
    return outcome;
}

}  // namespace lagestatus
