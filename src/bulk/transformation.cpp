#include "bulk/transformation.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <utility>

#include "base/caller_memory.h"
#include "base/projection_kind.h"
#include "bulk/carrier.h"

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

void read_column(const InputColumn& column, std::size_t first, int count, double* into) noexcept {
    const auto size = static_cast<std::size_t>(count);
    if (column.stride == sizeof(double)) {
        std::memcpy(into, place_in(column, first), size * sizeof(double));
        return;
    }
    for (std::size_t i = 0; i < size; ++i) {
        into[i] = read(column, first + i);
    }
}

// Without values: NaN.
void write_column(const OutputColumn& column, std::size_t first, int count, const double* values) noexcept {
    const auto size = static_cast<std::size_t>(count);
    if (column.values != nullptr && values != nullptr && column.stride == sizeof(double)) {
        std::memcpy(place_in(column, first), values, size * sizeof(double));
        return;
    }
    for (std::size_t i = 0; i < size; ++i) {
        write(column, first + i, values != nullptr ? values[i] : none);
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
                               const TransformationOptions& how,
                               const std::shared_ptr<const HeldHeightModel>& model)
    : options(how),
      road(source, target, model),
      sourceGeocentric(is_geocentric(source)),
      targetGeocentric(is_geocentric(target)),
      flags(flags_of(sourceGeocentric, targetGeocentric, how)),
      fastRoad(how.fast ? fast::FastRoad(road.source(), road.target(), flags, fast_heights(model.get()))
                        : fast::FastRoad()) {}

bool Transformation::needs_third_input() const noexcept {
    return sourceGeocentric || options.given != HeightGiven::none;
}

bool Transformation::has_third_output() const noexcept {
    return targetGeocentric || wants_ellipsoidal(options.wanted);
}

bool Transformation::has_normal_output() const noexcept {
    return wants_normal(options.wanted);
}

Point Transformation::read_point(Work& work, std::size_t number) const noexcept {
    const double notRead = options.defaultHeight ? none : 0.0;
    Point point = {read(work.input[0], number), read(work.input[1], number),
                   needs_third_input() ? read(work.input[2], number) : notRead};
    if (options.sourceEastingFirst && !sourceGeocentric) {
        std::swap(point[0], point[1]);
    }
    if (std::isnan(point[2]) && !sourceGeocentric && options.defaultHeight) {
        point[2] = *options.defaultHeight;
        ++work.outcome.defaulted;
    }
    return point;
}

void Transformation::write_point(Work& work, std::size_t number, const CarriedPoint& carried) const noexcept {
    double first = carried.hasPlace ? carried.at[0] : none;
    double second = carried.hasPlace ? carried.at[1] : none;
    if (options.targetEastingFirst && !targetGeocentric) {
        std::swap(first, second);
    }
    write(work.output[0], number, first);
    write(work.output[1], number, second);
    write(work.output[2], number, has_third_output() && carried.hasHeight ? carried.at[2] : none);
    write(work.output[3], number, has_normal_output() && carried.hasNormal ? carried.at[3] : none);
    if (work.statuses != nullptr) {
        store<int>(work.statuses, number, carried.status);
    }
    work.outcome.failures += carried.status == status::ok ? 0 : 1;
}

// Column by column. Points that the fast road leaves alone take the reference road.
void Transformation::carry_block(Work& work, std::size_t first, int count,
                                 fast::Block& block) const noexcept {
    const bool swapsInput = options.sourceEastingFirst && !sourceGeocentric;
    const bool swapsOutput = options.targetEastingFirst && !targetGeocentric;
    read_column(work.input[swapsInput ? 1 : 0], first, count, block.given.first);
    read_column(work.input[swapsInput ? 0 : 1], first, count, block.given.second);
    if (needs_third_input()) {
        read_column(work.input[2], first, count, block.given.third);
    } else {
        std::fill_n(block.given.third, count, options.defaultHeight ? none : 0.0);
    }
    if (options.defaultHeight && !sourceGeocentric) {
        for (double& height : std::span(block.given.third, static_cast<std::size_t>(count))) {
            work.outcome.defaulted += std::isnan(height) ? 1 : 0;
            height = std::isnan(height) ? *options.defaultHeight : height;
        }
    }
    fastRoad.carry(block, count);
    write_column(work.output[swapsOutput ? 1 : 0], first, count, block.reached.first);
    write_column(work.output[swapsOutput ? 0 : 1], first, count, block.reached.second);
    const auto height = [](bool isThere, const double* column) { return isThere ? column : nullptr; };
    write_column(work.output[2], first, count, height(has_third_output(), block.reached.third));
    write_column(work.output[3], first, count, height(has_normal_output(), block.normal));
    if (!block.leavesSome && work.statuses == nullptr) {
        return;
    }
    for (int i = 0; i < count; ++i) {
        const std::size_t number = first + static_cast<std::size_t>(i);
        if (block.leaves(i)) {
            write_point(work, number, carried_point(block, i, road, flags));
        } else if (work.statuses != nullptr) {
            store<int>(work.statuses, number, status::ok);
        }
    }
}

Transformation::Outcome Transformation::carry(std::size_t count, const std::array<InputColumn, 3>& input,
                                              const std::array<OutputColumn, 4>& output,
                                              int* statuses) const noexcept {
    Work work = {input, output, statuses, {}};
    if (!fastRoad.serves()) {
        for (std::size_t number = 0; number < count; ++number) {
            write_point(work, number, road.carry(read_point(work, number), flags));
        }
        return work.outcome;
    }
    fast::Block block;
    for (std::size_t first = 0; first < count; first += fast::blockSize) {
        carry_block(work, first, static_cast<int>(std::min<std::size_t>(count - first, fast::blockSize)),
                    block);
    }
    return work.outcome;
}

}  // namespace lagestatus
