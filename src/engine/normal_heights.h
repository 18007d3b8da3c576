// Normal heights on the road of one point: where the height model comes in, and what it gives.
#pragma once

#include "base/status.h"
#include "engine/side.h"
#include "geodesy/geocentric.h"
#include "heights/height_anomaly.h"

namespace lagestatus {

struct HeightFlags {
    bool sourceIsNormal = false;     // the height given is a normal height
    bool targetWantsNormal = false;  // a normal height is wanted in the result
    bool alsoUnasked = true;  // in the Bessel datum one is computed for the target even if none is wanted
};

// The three places on the road where a normal height H becomes an ellipsoidal height h or comes from one, by the height
// anomaly zeta of the Bessel ellipsoid: h = H + zeta. Which of them acts depends on the flags and on which sides lie in
// the Bessel datum, as the functions say.
//
// A height anomaly that cannot be found ends nothing: it counts as 0.0, and status() tells of it in the end.
class NormalHeights {
  public:
    // normalHeight belongs to the caller: it holds the height given, and the normal height where one is computed.
    NormalHeights(const Side& from, const Side& to, HeightFlags heightFlags,
                  const HeightAnomalies& heightModel, double& normalHeight) noexcept
        : source(from),
          target(to),
          flags(heightFlags),
          iterates(heightFlags.sourceIsNormal && !from.bessel),
          model(heightModel),
          height(normalHeight) {}

    // For sources that are not geocentric, with their latitude, longitude and the height given: a source in the Bessel
    // datum has its height anomaly right here. A normal height given becomes ellipsoidal; for an ellipsoidal one the
    // normal height is computed if it is wanted.
    void at_source(Geographic& point) noexcept;

    // Whether the road leads through the Bessel datum for the heights' sake, where equal ellipsoids would spare it.
    [[nodiscard]] bool need_bessel_datum() const noexcept;

    // With the point in the Bessel datum, reached from the source with the ellipsoidal height h. If a normal height is
    // wanted, and neither side lies in the Bessel datum, or the source does and is geocentric: computes it. If one was
    // given outside the Bessel datum and one is wanted: compares the one given with the one reached, and as long as
    // they differ by more than 0.001 m, corrects h and asks for another pass, 20 at most.
    //
    // Returned: status   0; 1110, 1100, 1027, 1028 the semi-axes of Bessel cannot be read from the height model file;
    //                    90 no position on that ellipsoid; 92 the 20th pass is still not near enough
    //           h        corrected if another pass is to be made
    //           settled  set to false if the road is to be gone again with h, else unchanged
    [[nodiscard]] Status in_bessel_datum(const Geocentric& point, double& h, bool& settled) noexcept;

    // For targets that are not geocentric, with their latitude, longitude and ellipsoidal height: a target in the
    // Bessel datum has its height anomaly right here, if the source had not, the height given is ellipsoidal, and the
    // flags do not restrict it to where it is wanted.
    void at_target(const Geographic& point) noexcept;

    // 1000 + the status of the last height anomaly, if that failed; else 0.
    [[nodiscard]] Status status() const noexcept {
        return lastAnomaly == status::ok ? status::ok : status::heightModel + lastAnomaly;
    }

  private:
    double anomaly(const Geographic& point) noexcept;

    const Side& source;
    const Side& target;
    HeightFlags flags;
    bool iterates;
    const HeightAnomalies& model;
    double& height;
    int passes = 0;
    Status lastAnomaly = status::ok;
};

}  // namespace lagestatus
