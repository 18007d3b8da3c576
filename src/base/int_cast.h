// The one conversion from double to int.
#pragma once

#include <limits>
#include <optional>

namespace lagestatus {

// The value cut towards zero; nothing when it is not a number or 32 bits cannot hold it, where a bare cast would have
// no defined outcome.
[[nodiscard]] constexpr std::optional<int> truncated(double value) noexcept {
    // Both bounds are exact as doubles, and both are the first values beyond.
    constexpr double below = static_cast<double>(std::numeric_limits<int>::min()) - 1.0;
    constexpr double above = static_cast<double>(std::numeric_limits<int>::max()) + 1.0;
    if (!(value > below && value < above)) {
        return std::nullopt;
    }
    return static_cast<int>(value);
}

// The same with the smallest integer where there is none.
[[nodiscard]] constexpr int truncated_or_smallest(double value) noexcept {
    return truncated(value).value_or(std::numeric_limits<int>::min());
}

}  // namespace lagestatus
