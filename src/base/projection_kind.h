// The kinds of coordinates that a system can have.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace lagestatus {

enum class ProjectionKind : std::uint8_t { unknown, soldner, gaussKrueger, geographic, geocentric };

// What is known of a kind beside its formulas, which engine/plane_systems.cpp has for those that are plane.
struct KindTraits {
    ProjectionKind kind = ProjectionKind::unknown;
    std::string_view name;  // as data files begin their text: "Soldner Berlin" is a Soldner system
    bool isPlane = false;   // northing and easting in metres, on a projection
    // The longitude of origin may be a layout of strips, whose number leads the easting; the meridian has a scale.
    bool hasStrips = false;
};

inline constexpr std::array<KindTraits, 4> projectionKinds = {{
    {ProjectionKind::soldner, "Soldner", true, false},
    {ProjectionKind::gaussKrueger, "Gauss-Krueger", true, true},
    {ProjectionKind::geographic, "Geographisch", false, false},
    {ProjectionKind::geocentric, "Geozentrisch", false, false},
}};

// The kind that a text names by its beginning; the default row, of kind unknown, for any other text.
[[nodiscard]] constexpr KindTraits kind_traits(std::string_view text) noexcept {
    for (const KindTraits& row : projectionKinds) {
        if (text.starts_with(row.name)) {
            return row;
        }
    }
    return {};
}
[[nodiscard]] constexpr ProjectionKind projection_kind(std::string_view text) noexcept {
    return kind_traits(text).kind;
}
[[nodiscard]] constexpr std::string_view kind_name(ProjectionKind kind) noexcept {
    for (const KindTraits& row : projectionKinds) {
        if (row.kind == kind) {
            return row.name;
        }
    }
    return {};
}

}  // namespace lagestatus
