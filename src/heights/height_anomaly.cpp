#include "heights/height_anomaly.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "base/angles.h"
#include "base/int_cast.h"

// Symbols: index G for GRS80, B for Bessel, R for the fundamental point Rauenberg; V the auxiliary root of the
// latitude, Rm the harmonic mean of the two principal radii of curvature, psi the distance from Rauenberg. The grouping
// of every formula is fixed: results repeat to the last bit.

namespace lagestatus {
namespace {

// Longitude or latitude, in radians, beside the border of the grid.
bool outside(const GridAxis& axis, double angle) noexcept {
    return angle < axis.smallest * degree || angle > axis.largest * degree;
}

// Where a point lies on one axis: behind which value, and how far on its way to the next.
struct AxisPlace {
    int index = 0;
    double share = 0.0;  // 0 to 1
};

// False for an angle that lies on the grid by rounding only, on a grid so fine that the number of its value cannot be
// told.
bool find_place(const GridAxis& axis, double angle, AxisPlace& place) noexcept {
    const double degrees = angle / degree;
    const auto index = truncated((degrees - axis.smallest) / axis.spacing);
    if (!index || *index < 0) {
        return false;
    }
    place = {*index, (degrees - *index * axis.spacing - axis.smallest) / axis.spacing};
    return true;
}

// From an open file, of which read_axes has read the beginning into model.
Status read_height_anomaly(HeightModelFile& file, HeightModel& model, double lam, double phi,
                           double& zeta) noexcept {
    if (const Status read = file.read_rest_of_header(model); read != status::ok) {
        return read;
    }
    HeightLookup::Cell cell;
    if (const Status found = HeightLookup(model).find_cell(lam, phi, cell); found != status::ok) {
        return found;
    }
    std::array<double, 4> values = {};
    for (std::size_t corner = 0; corner < values.size(); ++corner) {
        if (const Status read = file.grid_value(cell.corners[corner], values[corner]); read != status::ok) {
            return read;
        }
    }
    return HeightLookup::interpolate(cell, values, zeta);
}

}  // namespace

HeightLookup::HeightLookup(const HeightModel& heightModel) noexcept
    : model(heightModel),
      datumStep(heightModel.datum),
      hasFundamentalPoint(heightModel.phiR > 0.0 && heightModel.lamR > 0.0) {
    if (!hasFundamentalPoint) {
        return;
    }
    const auto [aB, bB] = model.bessel;
    const auto [aG, bG] = model.grs80;
    sinR = std::sin(model.phiR);
    cosR = std::cos(model.phiR);
    const double V = std::sqrt((aG * aG / bG / bG - 1.0) * (cosR * cosR) + 1.0);
    Rm = aG * 2.0 / bG * aG / ((V * V) * V + V);
    flattenings = (aG - bG) / aG - (aB - bB) / aB;
}

// What the height anomaly on Bessel lies below that on GRS80, metres.
double HeightLookup::fundamental_point_correction(const Geographic& at) const noexcept {
    if (!hasFundamentalPoint) {
        return 0.0;
    }
    const double aB = model.bessel.a;
    const double aG = model.grs80.a;
    const double sinG = std::sin(at.phi);
    const double cosG = std::cos(at.phi);
    const double dLam = at.lam - model.lamR;
    const double cosDLam = std::cos(dLam);

    const double cosPsi = cosG * cosR * cosDLam + sinR * sinG;
    const double deflections =
        std::sin(dLam) * cosG * Rm * model.etaR + (sinG * cosR - sinR * cosG * cosDLam) * Rm * model.xiR;
    const double dSin = sinG - sinR;
    return model.zetaR * cosPsi - deflections + (aG - aB) * (cosPsi - 1.0) +
           flattenings * ((cosPsi - 1.0) * (sinR * sinR) + dSin * dSin) * Rm;
}

Status HeightLookup::bessel_to_grid(double lam, double phi, Geographic& at) const noexcept {
    const Geocentric onBessel = geographic_to_geocentric(model.bessel, {phi, lam, 0.0});
    return geocentric_to_geographic(model.grs80, datumStep.carry(onBessel), at);
}

Status HeightLookup::find_cell(double lam, double phi, Cell& cell) const noexcept {
    Geographic at;
    if (const Status reached = bessel_to_grid(lam, phi, at); reached != status::ok) {
        return reached;
    }
    AxisPlace column;
    AxisPlace row;
    if (outside(model.longitude, at.lam) || outside(model.latitude, at.phi) ||
        !find_place(model.longitude, at.lam, column) || !find_place(model.latitude, at.phi, row)) {
        return status::outsideHeightModel;
    }
    const std::int64_t columns = model.longitude.count;
    const std::int64_t first = columns * row.index + column.index;
    cell = {{first, first + 1, first + columns, first + columns + 1},
            column.share,
            row.share,
            fundamental_point_correction(at)};
    return status::ok;
}

Status HeightLookup::interpolate(const Cell& cell, const std::array<double, 4>& values,
                                 double& zeta) noexcept {
    const auto [G00, G10, G01, G11] = values;
    const double absolute =
        ((((G11 - G10) - G01) + G00) * cell.t + (G10 - G00)) * cell.s + ((G01 - G00) * cell.t + G00);
    if (!std::isfinite(absolute - cell.correction)) {
        return status::noGeographicCoordinates;
    }
    zeta = absolute - cell.correction;
    return status::ok;
}

Status StreamedHeightModel::at(double lam, double phi, double& zeta) const noexcept {
    zeta = 0.0;
    HeightModelFile file;
    if (const Status opened = file.open(directory); opened != status::ok) {
        return opened;
    }
    HeightModel model;
    if (const Status read = file.read_axes(model); read != status::ok) {
        return file.is_empty() ? status::ok : read;
    }
    return read_height_anomaly(file, model, lam, phi, zeta);
}

Status StreamedHeightModel::at(const Geocentric& point, Found& found) const noexcept {
    HeightModelFile file;
    HeightModel model;
    Status read = file.open(directory);
    if (read == status::ok) {
        read = file.read_axes(model);
    }
    if (read != status::ok) {
        return status::heightModel + read;
    }
    return find_on(model.bessel, point, found, [&](double lam, double phi, double& zeta) {
        return read_height_anomaly(file, model, lam, phi, zeta);
    });
}

}  // namespace lagestatus
