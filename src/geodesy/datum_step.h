// The seven-parameter step between two geodetic datums.
#pragma once

#include <array>

#include "base/system_description.h"
#include "geodesy/geocentric.h"

namespace lagestatus {

// Carries geocentric points from one datum into another: a similarity transformation in space, in one stage or two.
//
//   main set (T, angles a b c about X Y Z, scale m, reduction point N):
//     Q  = T + m * R(a, b, c) * (P - N)
//   intermediate set (Tz, az bz cz, mz, Nz), used when any of its translations and angles differs from 0:
//     P' = Nz + R(az, bz, cz)^T * (Q - Tz) / mz
//
// R(a, b, c) = R3(c) * R2(b) * R1(a), close to the rows (1, c, -b), (-c, 1, a), (b, -a, 1) for small angles: a
// positive angle turns the coordinate frame, not the point ("coordinate frame rotation", as in EPSG method 1032,
// which has the small angles). The second stage is the exact inverse of the similarity that the intermediate set
// describes. The reduction point is taken off before the rotation and not added back: T is the full shift.
class DatumStep {
  public:
    // Given: parameters   slots 14 to 23 and 26 to 35 are used; angles in radians, exactly as stored (no small-angle
    //                     approximation); the scales are plain factors. They stay the caller's and must outlive this
    explicit DatumStep(Parameters parameters) noexcept;

    // Given:    point   metres
    // Returned: the point in the other datum. It cannot fail; an intermediate scale of 0 gives values that are not
    // finite
    [[nodiscard]] Geocentric carry(const Geocentric& point) const noexcept;

  private:
    using Matrix = std::array<std::array<double, 3>, 3>;
    [[nodiscard]] static Matrix rotation(double a, double b, double c) noexcept;

    Parameters p;
    bool oneStage;
    Matrix R;  // of the main set
    Matrix C;  // of the intermediate set, where there are two stages
};

// Whether the intermediate set is used: any of its translations and angles differs from 0.
[[nodiscard]] bool has_intermediate_set(Parameters parameters) noexcept;

// One point, by a step that is not kept.
[[nodiscard]] Geocentric datum_step(Parameters parameters, const Geocentric& point) noexcept;

}  // namespace lagestatus
