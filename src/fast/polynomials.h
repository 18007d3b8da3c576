// Polynomials of the fast calculation. Made by scripts/make_polynomials: not to be edited.
#pragma once

namespace lagestatus::fast {

// Each stands for the rest of a function behind its leading terms, in the square of the argument, the lowest power
// first. The error is that of the fit, absolute, with the power that the rest is multiplied by.
// clang-format off

// sin x = x + x^3 P(x^2) for |x| <= pi / 4, within 9.9e-18.
inline constexpr double sineRest[6] = {
    -0x1.5555555555555p-3,
    0x1.1111111110bb2p-7,
    -0x1.a01a019e83aaep-13,
    0x1.71de37968a100p-19,
    -0x1.ae600b02b6262p-26,
    0x1.5e0b19f8b1451p-33};

// cos x = 1 - x^2 / 2 + x^4 P(x^2) for |x| <= pi / 4, within 4.9e-19.
inline constexpr double cosineRest[6] = {
    0x1.5555555555555p-5,
    -0x1.6c16c16c16967p-10,
    0x1.a01a019f4eb01p-16,
    -0x1.27e4fa17da09ep-22,
    0x1.1eeb68e93b64cp-29,
    -0x1.907da367a37cbp-37};

// arctan t = t + t^3 P(t^2) for |t| <= tan(pi / 8), within 2.2e-18.
inline constexpr double arcTangentRest[11] = {
    -0x1.5555555555555p-2,
    0x1.999999999934cp-3,
    -0x1.2492492436201p-3,
    0x1.c71c71853d7fap-4,
    -0x1.745d0b28a7e37p-4,
    0x1.3b1263064f6b9p-4,
    -0x1.10fa77b1a6d57p-4,
    0x1.dfe6497e96323p-5,
    -0x1.a0999c632b6edp-5,
    0x1.4162c02b1dda3p-5,
    -0x1.3a31b1c0fd3b7p-6};

// artanh t = t + t^3 P(t^2) for |t| < 0.477, within 2.8e-18.
inline constexpr double arTanhRest[13] = {
    0x1.5555555555556p-2,
    0x1.9999999999552p-3,
    0x1.24924924d3e6bp-3,
    0x1.c71c7195d6798p-4,
    0x1.745d20daa0868p-4,
    0x1.3b12967c55acdp-4,
    0x1.1125e27cd9548p-4,
    0x1.dfd7753621374p-5,
    0x1.c0856021e78b9p-5,
    0x1.221b72ff09b93p-5,
    0x1.6fd8120203000p-4,
    -0x1.17653187d68c9p-4,
    0x1.56b06ebaef008p-3};

// sinh x = x + x^3 P(x^2) for |x| < 0.75, within 5.0e-18.
inline constexpr double sinhRest[6] = {
    0x1.5555555555555p-3,
    0x1.111111111147fp-7,
    0x1.a01a019efd76cp-13,
    0x1.71de3c70d5b0ep-19,
    0x1.ae60ba55d3f05p-26,
    0x1.63fdaaded0c01p-33};

// A right angle in three parts, of which the first two have room for a factor of 20 bits.
inline constexpr double rightAngleHigh = 0x1.921fb54400000p+0;
inline constexpr double rightAngleMiddle = 0x1.0b4611a400000p-34;
inline constexpr double rightAngleLow = 0x1.13198a2e03707p-65;

// The tangent of pi / 8, half a right angle, one and two, and a degree.
inline constexpr double tangentOfEighth = 0x1.a827999fcef32p-2;
inline constexpr double quarter = 0x1.921fb54442d18p-1;
inline constexpr double rightAngle = 0x1.921fb54442d18p+0;
inline constexpr double straightAngle = 0x1.921fb54442d18p+1;
inline constexpr double radiansOfDegree = 0x1.1df46a2529d39p-6;
inline constexpr double degreesOfRadian = 0x1.ca5dc1a63c1f8p+5;

}  // namespace lagestatus::fast
