// A road as the fast calculation takes it: all that depends on its systems alone, as plain numbers.
#pragma once

#include <cstdint>

#include "base/projection_kind.h"
#include "fast/geocentric.h"
#include "fast/series.h"

namespace lagestatus::fast {

// A similarity in space, x' = matrix x + shift.
struct SpaceStep {
    double matrix[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    double shift[3] = {0.0, 0.0, 0.0};
};

// Central meridians of strips with numbers that follow each other; of a single meridian that one under every number.
struct Meridians {
    // Those up to here from Greenwich: with the domain of the projections no longitude reaches 180 degrees.
    static constexpr double farthest = 135.0;
    static constexpr int most = 271;

    int first = 0;  // number of the strip
    int count = 0;
    double sine[most] = {};
    double cosine[most] = {};
};

// A plane system.
struct PlaneSide {
    PlaneSeries series{{0.0, 0.0}, 0.0};

    // The reductions of geodesy/plane_reductions.h; the same numbers in the same order.
    bool hasScale = false;
    bool hasSimilarity = false;
    double complement = 0.0;
    double additiveX = 0.0, additiveY = 0.0;
    double originX = 0.0, originY = 0.0, scale = 1.0;
    double shiftX = 0.0, shiftY = 0.0, secondShiftX = 0.0, secondShiftY = 0.0;
    double rotation = 0.0;

    bool hasStrips = false;  // the number of a strip leads the easting
    bool oneMeridian = false;
    double meridianScale = 1.0;
    double width = 0.0, offset = 0.0;  // degrees
    double sineOfHalf = 0.0;           // of half the width, a little less
    double zoneNumber = 0.0;           // of a target with one meridian
    Meridians meridians;
};

// One direction of the grid of heights; degrees.
struct HeightAxis {
    double smallest = 0.0;
    double largest = 0.0;
    double spacing = 0.0;
    int count = 0;
};

// A height model that is held: heights/height_model_file.h says what is what.
struct HeightGrid {
    EllipsoidTerms bessel{{1.0, 1.0}};
    EllipsoidTerms grs80{{1.0, 1.0}};
    SpaceStep fromBessel;
    HeightAxis longitude;
    HeightAxis latitude;
    const double* values = nullptr;  // NaN where there is none
    std::int64_t count = 0;

    // The correction for the fundamental point, heights/height_anomaly.cpp.
    bool hasFundamentalPoint = false;
    double sinR = 0.0, cosR = 0.0, sinLamR = 0.0, cosLamR = 0.0;
    double xi = 0.0, eta = 0.0, zeta = 0.0;  // the deflections times the mean radius of curvature, metres
    double dA = 0.0;                         // major semi-axis of GRS80 less that of Bessel, metres
    double flattenings = 0.0;                // metres
};

struct Plan {
    ProjectionKind sourceKind = ProjectionKind::unknown;
    ProjectionKind targetKind = ProjectionKind::unknown;
    PlaneSide source;
    PlaneSide target;
    EllipsoidTerms sourceEllipsoid{{1.0, 1.0}};
    EllipsoidTerms targetEllipsoid{{1.0, 1.0}};

    // So near to where the reference calculation decides between two strips or two cells of the grid, it decides itself:
    // far beyond the difference between the two calculations, which is that of the reference from the truth.
    double border = 0.0;  // degrees

    bool throughSpace = false;  // else latitude and height pass as they are,
    bool mirrors = false;       // and the longitude, or its mirror image as the way through space leaves it
    SpaceStep toTarget;         // both datum steps in one
    SpaceStep toBessel;         // the first alone

    // Where normal heights come in; engine/normal_heights.h.
    bool givenAtSource = false;   // a normal height is given in the Bessel datum
    bool wantedAtSource = false;  // one is computed there
    bool wantedInBessel = false;  // one is computed on the way
    bool iterates = false;        // one is given outside the Bessel datum
    bool wantedAtTarget = false;
    HeightGrid heights;
};

}  // namespace lagestatus::fast
