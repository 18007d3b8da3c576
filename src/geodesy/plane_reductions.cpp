// The steps of each direction stand in the order in which they are taken; step n of one is undone by the same step of
// the other. X is the northing, Y the easting.
//
//   scale        m about the origin (X0, Y0);  exactly 1: none
//   constants    cX, cY are added
//   complement   d: a small negative value is written as d + value;  0: none
//   similarity   with the coefficient of rotation r, shifts V and second shifts V2:
//                (Y - VY) = (Y' - VY2) + r (X' - VX2),  (X - VX) = (X' - VX2) - r (Y' - VY2)
#include "geodesy/plane_reductions.h"

namespace lagestatus {

bool has_similarity(Parameters p) noexcept {
    return p[slot::planeRotation] != 0.0 || p[slot::shiftY] != 0.0 || p[slot::shiftX] != 0.0 ||
           p[slot::secondShiftY] != 0.0 || p[slot::secondShiftX] != 0.0;
}

bool has_scale(Parameters p) noexcept {
    return p[slot::planeScale] != 1.0;
}

namespace {

double without_complement(double value, double d) noexcept {
    return d != 0.0 && value > d * 0.5 ? value - d : value;
}

double with_complement(double value, double d) noexcept {
    return d != 0.0 && value < 0.0 && d * 0.5 > -value ? value + d : value;
}

}  // namespace

bool has_more_than_constants(Parameters p) noexcept {
    return has_scale(p) || p[slot::decadicComplement] != 0.0 || has_similarity(p);
}

PlanePoint reduce_to_projection(Parameters p, PlanePoint point) noexcept {
    auto [X, Y] = point;
    if (has_scale(p)) {
        Y = (Y - p[slot::originY]) * p[slot::planeScale] + p[slot::originY];
        X = (X - p[slot::originX]) * p[slot::planeScale] + p[slot::originX];
    }

    X -= p[slot::additiveX];
    Y -= p[slot::additiveY];

    Y = without_complement(Y, p[slot::decadicComplement]);
    X = without_complement(X, p[slot::decadicComplement]);

    if (has_similarity(p)) {
        const double r = p[slot::planeRotation];
        const double dY = Y - p[slot::shiftY];
        const double dX = X - p[slot::shiftX];
        const double q = 1.0 / (r * r + 1.0);
        X = (dY * r + dX) * q + p[slot::secondShiftX];
        Y = (dY - dX * r) * q + p[slot::secondShiftY];
    }
    return {X, Y};
}

PlanePoint reduce_to_system(Parameters p, PlanePoint point) noexcept {
    auto [X, Y] = point;
    if (has_similarity(p)) {
        const double r = p[slot::planeRotation];
        const double dX = X - p[slot::secondShiftX];
        const double dY = Y - p[slot::secondShiftY];
        Y = dY + p[slot::shiftY] + r * dX;
        X = dX + p[slot::shiftX] - r * dY;
    }

    Y = with_complement(Y, p[slot::decadicComplement]);
    X = with_complement(X, p[slot::decadicComplement]);

    Y += p[slot::additiveY];
    X += p[slot::additiveX];

    if (has_scale(p)) {
        Y = (Y - p[slot::originY]) / p[slot::planeScale] + p[slot::originY];
        X = (X - p[slot::originX]) / p[slot::planeScale] + p[slot::originX];
    }
    return {X, Y};
}

}  // namespace lagestatus
