// What lies between the coordinates that a plane system writes and those of its projection: scale, additive constants,
// decadic complement, shifts and rotation.
#pragma once

#include "base/ellipsoid.h"
#include "base/system_description.h"

namespace lagestatus {

// Whether there is a similarity, or a scale.
[[nodiscard]] bool has_similarity(Parameters parameters) noexcept;
[[nodiscard]] bool has_scale(Parameters parameters) noexcept;

// Whether more lies between than the additive constants: scale, complement or similarity.
[[nodiscard]] bool has_more_than_constants(Parameters parameters) noexcept;

// From the system's coordinates to those of its projection: scale, constants, complement, similarity. A Gauss-Krueger
// system still has its zone and the scale of its meridian in them afterwards. Cannot fail; what is not finite stays so.
[[nodiscard]] PlanePoint reduce_to_projection(Parameters parameters, PlanePoint point) noexcept;

// The way back: similarity, complement, constants, scale. It undoes the other but for the boundaries of the complement,
// where the written form of a small negative value is always its complement.
[[nodiscard]] PlanePoint reduce_to_system(Parameters parameters, PlanePoint point) noexcept;

}  // namespace lagestatus
