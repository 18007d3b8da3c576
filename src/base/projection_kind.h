// The kinds of coordinates that a system can have.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace lagestatus {

enum class ProjectionKind : std::uint8_t { unknown, soldner, gaussKrueger, geographic, geocentric };

// The kind that a text names. Only its beginning counts: "Soldner Berlin" is a Soldner system.
[[nodiscard]] constexpr ProjectionKind projection_kind(std::string_view text) noexcept {
    constexpr std::array<std::pair<std::string_view, ProjectionKind>, 4> kinds = {{
        {"Soldner", ProjectionKind::soldner},
        {"Gauss-Krueger", ProjectionKind::gaussKrueger},
        {"Geographisch", ProjectionKind::geographic},
        {"Geozentrisch", ProjectionKind::geocentric},
    }};
    for (const auto& [name, kind] : kinds) {
        if (text.starts_with(name)) {
            return kind;
        }
    }
    return ProjectionKind::unknown;
}

}  // namespace lagestatus
