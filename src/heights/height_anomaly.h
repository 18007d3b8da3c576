// Height anomalies of points in the Bessel datum.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "base/status.h"
#include "geodesy/datum_step.h"
#include "geodesy/geocentric.h"
#include "heights/height_model_file.h"

namespace lagestatus {

// The height anomaly zeta of a point on the Bessel ellipsoid: ellipsoidal height h = normal height H + zeta.
//
// The point, at ellipsoidal height 0, goes through the datum step of the height model file to GRS80, where the grid of
// absolute height anomalies is interpolated bilinearly. The correction for the fundamental point Rauenberg leads from
// there to the Bessel ellipsoid: it is the change of height that comes with another size and form of the ellipsoid and
// with its place, given by the height anomaly and the deflection of the vertical at the fundamental point (Heiskanen
// and Moritz, Physical Geodesy, 1967, chapter 5, datum shifts).
//
// Whoever computes normal heights asks one of these, be the model a file that is read at each call or held in memory.
class HeightAnomalies {
  public:
    HeightAnomalies(const HeightAnomalies&) = delete;
    HeightAnomalies& operator=(const HeightAnomalies&) = delete;

    // Given:    lam, phi   longitude and latitude on the Bessel ellipsoid, radians
    // Returned: status     0; 110 the file cannot be opened; 100 it ends before a line that is needed; 27 to 48, 101
    //                      to 107, 127, 128 a header line is unreadable or out of range; 108 the point lies outside the
    //                      grid; 109 one of the four values around it is missing; 90 no finite position on GRS80, or
    //                      the height anomaly is not finite
    //           zeta       metres; 0.0 after a failure, and for a file without a data line
    [[nodiscard]] virtual Status at(double lam, double phi, double& zeta) const noexcept = 0;

    // What there is at a point that is given by its geocentric coordinates.
    struct Found {
        Geographic onBessel;         // by the semi-axes of the height model file, never those of a system
        Status status = status::ok;  // of the height anomaly, as above
        double zeta = 0.0;
    };

    // Given:    point   in the Bessel datum
    // Returned: status  0; 1110, 1100, 1027, 1028 the semi-axes cannot be read; 90 no position on that ellipsoid
    //           found   written on success only
    [[nodiscard]] virtual Status at(const Geocentric& point, Found& found) const noexcept = 0;

  protected:
    HeightAnomalies() noexcept = default;
    ~HeightAnomalies() = default;

    // What at() has to do once the semi-axes are read. anomaly gives the status and the height anomaly for lam, phi.
    template <typename Anomaly>
    static Status find_on(const Ellipsoid& bessel, const Geocentric& point, Found& found,
                          Anomaly anomaly) noexcept {
        Geographic onBessel;
        const Status converted = geocentric_to_geographic(bessel, point, onBessel);
        if (converted == status::ok) {
            found = {onBessel};
            found.status = anomaly(onBessel.lam, onBessel.phi, found.zeta);
        }
        return converted;
    }
};

// From hoehe.ini of a directory, which lies there at each call as it may: nothing is kept, and the file is read up to
// the values that are needed.
class StreamedHeightModel final : public HeightAnomalies {
  public:
    // At most 299 characters, which belong to the caller; "." or empty for the current directory.
    explicit StreamedHeightModel(std::string_view dataDirectory) noexcept : directory(dataDirectory) {}

    [[nodiscard]] Status at(double lam, double phi, double& zeta) const noexcept override;
    [[nodiscard]] Status at(const Geocentric& point, Found& found) const noexcept override;

  private:
    std::string_view directory;
};

// What a model's lookups have in common: its header is read, and its grid values come from wherever they are.
class HeightLookup {
  public:
    // The model outlives it.
    explicit HeightLookup(const HeightModel& heightModel) noexcept;

    // Where a point lies in the grid, and what its height anomaly on GRS80 is larger by than that on Bessel.
    struct Cell {
        std::array<std::int64_t, 4>
            corners;              // numbers of the values: the southern two from the west, the northern two
        double s = 0.0;           // 0 to 1 from the west,
        double t = 0.0;           // and from the south
        double correction = 0.0;  // metres
    };

    // Given:    lam, phi   radians, on the Bessel ellipsoid
    // Returned: status     0; 90 no finite position on GRS80; 108 outside the grid
    //           cell       written on success only
    [[nodiscard]] Status find_cell(double lam, double phi, Cell& cell) const noexcept;

    // The height anomaly by the values at the cell's corners. Returned: status 0; 90 it is not finite; zeta is then
    // unchanged.
    [[nodiscard]] static Status interpolate(const Cell& cell, const std::array<double, 4>& values,
                                            double& zeta) noexcept;

    // The place of the model's grid that belongs to a point on the Bessel ellipsoid: the first steps of the lookup.
    //
    // Returned: status     0; 90 no finite position on GRS80
    //           at         written on success only
    [[nodiscard]] Status bessel_to_grid(double lam, double phi, Geographic& at) const noexcept;

  private:
    [[nodiscard]] double fundamental_point_correction(const Geographic& at) const noexcept;

    const HeightModel& model;
    DatumStep datumStep;
    bool hasFundamentalPoint;
    // Of the correction, as far as it does not depend on the point.
    double sinR = 0.0;
    double cosR = 0.0;
    double Rm = 0.0;
    double flattenings = 0.0;
};

}  // namespace lagestatus
