// A block of points on its way, in columns.
#pragma once

namespace lagestatus::fast {

inline constexpr int blockSize = 128;  // a multiple of every size of lanes

// A triple of columns.
struct alignas(64) Triple {
    double first[blockSize];
    double second[blockSize];
    double third[blockSize];
};

// What stands between two stages: angles as sine and cosine as long as nobody needs the arc.
struct alignas(64) Block {
    Triple given;    // as Point of the reference calculation: metres, or degrees; the height as it is given
    Triple reached;  // likewise
    double normal[blockSize];  // normal height, metres

    double sinPhi[blockSize];  // latitude on the ellipsoid at hand
    double cosPhi[blockSize];
    double sinLam[blockSize];  // longitude from Greenwich
    double cosLam[blockSize];
    double h[blockSize];  // ellipsoidal height, metres

    // All bits set (a NaN) where the point is outside the domain of a stage, else 0: it takes the reference road, and
    // what the columns behind given hold of it means nothing.
    double outside[blockSize];

    // Likewise where no normal height was found that the place does not hang on.
    double heightless[blockSize];

    // Whether a point is left to the reference road, at least its normal height.
    [[nodiscard]] bool leaves(int point) const noexcept {
        return outside[point] != 0.0 || heightless[point] != 0.0;
    }

    bool leavesSome;  // whether there is such a point

    // The strips that most points are in, or NaN: of plane coordinates given and reached.
    double zoneGiven;
    double zoneReached;
};

}  // namespace lagestatus::fast
