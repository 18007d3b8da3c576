// What the library knows of one coordinate system.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "base/fixed_text.h"

namespace lagestatus {

inline constexpr std::size_t parameterCount = 36;
using ParameterArray = std::array<double, parameterCount>;
using Parameters = std::span<const double, parameterCount>;  // an array that belongs to the caller

// The slots of the parameter array. Their order is part of the exported interface. Note that translations and
// reduction points stand with Y before X. Lengths in metres, rotations in radians, scales as plain factors.
namespace slot {

enum Slot : std::size_t {
    latitudeOfOrigin = 0,   // radians
    longitudeOfOrigin = 1,  // degrees; above 360 a coded zone layout
    secondShiftY = 2,
    secondShiftX = 3,
    decadicComplement = 4,  // 0: not used
    meridianScale = 5,
    shiftY = 6,
    shiftX = 7,
    planeRotation = 8,  // dimensionless coefficient
    additiveY = 9,
    additiveX = 10,
    originY = 11,
    originX = 12,
    planeScale = 13,  // exactly 1.0: not used
    // Datum transformation, main set: into the Bessel datum for a source, out of it for a target.
    translationY = 14,
    translationX = 15,
    translationZ = 16,
    rotationX = 17,
    rotationY = 18,
    rotationZ = 19,
    datumScale = 20,
    reductionY = 21,
    reductionX = 22,
    reductionZ = 23,
    semiMajorAxis = 24,
    semiMinorAxis = 25,
    // Datum transformation, intermediate set.
    intermediateTranslationY = 26,
    intermediateTranslationX = 27,
    intermediateTranslationZ = 28,
    intermediateRotationX = 29,
    intermediateRotationY = 30,
    intermediateRotationZ = 31,
    intermediateScale = 32,
    intermediateReductionY = 33,
    intermediateReductionX = 34,
    intermediateReductionZ = 35,
};

}  // namespace slot

// The main datum set, then the intermediate one, each in the order that data files have their fields in.
inline constexpr std::array<std::size_t, 20> datumSlots = {slot::translationX,
                                                           slot::translationY,
                                                           slot::translationZ,
                                                           slot::rotationX,
                                                           slot::rotationY,
                                                           slot::rotationZ,
                                                           slot::datumScale,
                                                           slot::reductionX,
                                                           slot::reductionY,
                                                           slot::reductionZ,
                                                           slot::intermediateTranslationX,
                                                           slot::intermediateTranslationY,
                                                           slot::intermediateTranslationZ,
                                                           slot::intermediateRotationX,
                                                           slot::intermediateRotationY,
                                                           slot::intermediateRotationZ,
                                                           slot::intermediateScale,
                                                           slot::intermediateReductionX,
                                                           slot::intermediateReductionY,
                                                           slot::intermediateReductionZ};

// Whether a system lies in the Bessel datum, the hub of all datum transformations, by the name of its ellipsoid.
[[nodiscard]] constexpr bool lies_in_bessel_datum(std::string_view ellipsoidName) noexcept {
    return ellipsoidName.starts_with("Bessel");
}

struct SystemDescription {
    using SystemName = FixedText<100>;
    using EllipsoidName = FixedText<11>;
    using KindText = FixedText<14>;

    SystemName systemName;
    EllipsoidName ellipsoidName;
    KindText projectionKind;
    ParameterArray parameters = {};
    int zoneNumber = 0;  // written behind the longitude of origin; 0 when none is given
};

}  // namespace lagestatus
