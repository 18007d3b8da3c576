// What a number of a data file is checked for.
#pragma once

#include <cstdint>

namespace lagestatus {

enum class Check : std::uint8_t { none, latitude, notNegative, positive };

// Whether a number passes a check; latitudes are degrees. Written so that a value that cannot be compared fails.
[[nodiscard]] constexpr bool passes(Check check, double value) noexcept {
    switch (check) {
        case Check::none:
            return true;
        case Check::latitude:
            return value >= -90.0 && value <= 90.0;
        case Check::notNegative:
            return value >= 0.0;
        case Check::positive:
            return value > 0.0;
    }
    return false;
}

}  // namespace lagestatus
