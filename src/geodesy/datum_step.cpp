#include "geodesy/datum_step.h"

#include <cmath>
#include <cstddef>

namespace lagestatus {

using namespace slot;

// R3(c) * R2(b) * R1(a), written out; products from left to right.
DatumStep::Matrix DatumStep::rotation(double a, double b, double c) noexcept {
    const double ca = std::cos(a);
    const double sa = std::sin(a);
    const double cb = std::cos(b);
    const double sb = std::sin(b);
    const double cc = std::cos(c);
    const double sc = std::sin(c);
    return {{
        {cb * cc, ca * sc + sa * sb * cc, sa * sc - ca * sb * cc},
        {-cb * sc, ca * cc - sa * sb * sc, ca * sb * sc + sa * cc},
        {sb, -sa * cb, ca * cb},
    }};
}

DatumStep::DatumStep(Parameters parameters) noexcept
    : p(parameters),
      oneStage(!has_intermediate_set(p)),
      R(rotation(p[rotationX], p[rotationY], p[rotationZ])),
      C(oneStage ? Matrix{}
                 : rotation(p[intermediateRotationX], p[intermediateRotationY], p[intermediateRotationZ])) {}

Geocentric DatumStep::carry(const Geocentric& point) const noexcept {
    const double m = p[datumScale];
    const double dX = point.x - p[reductionX];
    const double dY = point.y - p[reductionY];
    const double dZ = point.z - p[reductionZ];
    // One component of the main transformation, for a row of the matrix.
    const auto turned = [&](const std::array<double, 3>& r) {
        return m * ((r[0] * dX + r[1] * dY) + r[2] * dZ);
    };
    if (oneStage) {
        return {p[translationX] + turned(R[0]), p[translationY] + turned(R[1]),
                p[translationZ] + turned(R[2])};
    }

    const double Ux = (p[translationX] - p[intermediateTranslationX]) + turned(R[0]);
    const double Uy = (p[translationY] - p[intermediateTranslationY]) + turned(R[1]);
    const double Uz = (p[translationZ] - p[intermediateTranslationZ]) + turned(R[2]);
    const double mz = p[intermediateScale];
    // One component of the way back, for a column of the matrix.
    const auto turnedBack = [&](std::size_t column) {
        return ((C[0][column] * Ux + C[1][column] * Uy) + C[2][column] * Uz) / mz;
    };
    return {p[intermediateReductionX] + turnedBack(0), p[intermediateReductionY] + turnedBack(1),
            p[intermediateReductionZ] + turnedBack(2)};
}

bool has_intermediate_set(Parameters p) noexcept {
    return p[intermediateTranslationX] != 0.0 || p[intermediateTranslationY] != 0.0 ||
           p[intermediateTranslationZ] != 0.0 || p[intermediateRotationX] != 0.0 ||
           p[intermediateRotationY] != 0.0 || p[intermediateRotationZ] != 0.0;
}

Geocentric datum_step(Parameters parameters, const Geocentric& point) noexcept {
    return DatumStep(parameters).carry(point);
}

}  // namespace lagestatus
