#include "heights/height_anomaly.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "base/angles.h"
#include "base/int_cast.h"
#include "geodesy/datum_step.h"
#include "geodesy/geocentric.h"
#include "heights/height_model_file.h"

// Symbols: index G for GRS80, B for Bessel, R for the fundamental point Rauenberg; V the auxiliary root of the
// latitude, Rm the harmonic mean of the two principal radii of curvature, psi the distance from Rauenberg. The grouping
// of every formula is fixed: results repeat to the last bit.

namespace lagestatus {
namespace {

// What the height anomaly on Bessel lies below that on GRS80, metres.
double fundamental_point_correction(const HeightModel& model, const Geographic& at) noexcept {
    if (!(model.phiR > 0.0 && model.lamR > 0.0)) {
        return 0.0;
    }
    const auto [aB, bB] = model.bessel;
    const auto [aG, bG] = model.grs80;
    const double sinR = std::sin(model.phiR);
    const double cosR = std::cos(model.phiR);
    const double sinG = std::sin(at.phi);
    const double cosG = std::cos(at.phi);
    const double dLam = at.lam - model.lamR;
    const double cosDLam = std::cos(dLam);

    const double V = std::sqrt((aG * aG / bG / bG - 1.0) * (cosR * cosR) + 1.0);
    const double Rm = aG * 2.0 / bG * aG / ((V * V) * V + V);
    const double cosPsi = cosG * cosR * cosDLam + sinR * sinG;
    const double deflections =
        std::sin(dLam) * cosG * Rm * model.etaR + (sinG * cosR - sinR * cosG * cosDLam) * Rm * model.xiR;
    const double dSin = sinG - sinR;
    const double flattenings = (aG - bG) / aG - (aB - bB) / aB;
    return model.zetaR * cosPsi - deflections + (aG - aB) * (cosPsi - 1.0) +
           flattenings * ((cosPsi - 1.0) * (sinR * sinR) + dSin * dSin) * Rm;
}

// Longitude or latitude, in radians, beside the border of the grid.
bool outside(const GridAxis& axis, double angle) noexcept {
    return angle < axis.smallest * degree || angle > axis.largest * degree;
}

// Where a point lies on one axis: behind which value, and how far on its way to the next.
struct CellPlace {
    int index = 0;
    double share = 0.0;  // 0 to 1
};

// False for an angle that lies on the grid by rounding only, on a grid so fine that the number of its value cannot be
// told.
bool find_cell(const GridAxis& axis, double angle, CellPlace& place) noexcept {
    const double degrees = angle / degree;
    const auto index = truncated((degrees - axis.smallest) / axis.spacing);
    if (!index || *index < 0) {
        return false;
    }
    place = {*index, (degrees - *index * axis.spacing - axis.smallest) / axis.spacing};
    return true;
}

// The height anomaly on GRS80, before the correction.
Status interpolate(HeightModelFile& file, const HeightModel& model, const Geographic& at,
                   double& zeta) noexcept {
    CellPlace column;
    CellPlace row;
    if (outside(model.longitude, at.lam) || outside(model.latitude, at.phi) ||
        !find_cell(model.longitude, at.lam, column) || !find_cell(model.latitude, at.phi, row)) {
        return status::outsideHeightModel;
    }
    const std::int64_t columns = model.longitude.count;
    const std::int64_t first = columns * row.index + column.index;
    std::array<double, 4> values = {};
    for (std::size_t corner = 0;
         const std::int64_t number : {first, first + 1, first + columns, first + columns + 1}) {
        if (const Status read = file.grid_value(number, values[corner++]); read != status::ok) {
            return read;
        }
    }
    const auto [G00, G10, G01, G11] = values;
    const double s = column.share;
    const double t = row.share;
    zeta = ((((G11 - G10) - G01) + G00) * t + (G10 - G00)) * s + ((G01 - G00) * t + G00);
    return status::ok;
}

}  // namespace

Status height_anomaly(std::string_view directory, double lam, double phi, double& zeta) noexcept {
    zeta = 0.0;
    HeightModelFile file;
    if (const Status opened = file.open(directory); opened != status::ok) {
        return opened;
    }
    HeightModel model;
    if (const Status read = file.read_axes(model); read != status::ok) {
        return file.is_empty() ? status::ok : read;
    }
    return height_anomaly(file, model, lam, phi, zeta);
}

Status height_anomaly(HeightModelFile& file, HeightModel& model, double lam, double phi,
                      double& zeta) noexcept {
    zeta = 0.0;
    if (const Status read = file.read_rest_of_header(model); read != status::ok) {
        return read;
    }
    Geographic at;
    if (const Status reached = bessel_to_grid(model, lam, phi, at); reached != status::ok) {
        return reached;
    }
    const double delta = fundamental_point_correction(model, at);
    double absolute = 0.0;
    if (const Status found = interpolate(file, model, at, absolute); found != status::ok) {
        return found;
    }
    if (!std::isfinite(absolute - delta)) {
        return status::noGeographicCoordinates;
    }
    zeta = absolute - delta;
    return status::ok;
}

Status bessel_to_grid(const HeightModel& model, double lam, double phi, Geographic& at) noexcept {
    const Geocentric onBessel = geographic_to_geocentric(model.bessel, {phi, lam, 0.0});
    return geocentric_to_geographic(model.grs80, datum_step(model.datum, onBessel), at);
}

}  // namespace lagestatus
