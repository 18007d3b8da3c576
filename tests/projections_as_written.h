// The four projection routines once more, formula by formula and with nothing kept or shared, to hold the library's
// bits against and as the baseline of the benchmarks. Stored values would not do: the functions of the runtime differ
// in last bits between processors.
#pragma once

#include <array>

namespace as_written {

int geo_to_gauss_krueger(double a, double b, double phi, double lam, double phi0, double lam0,
                         std::array<double, 2>& res, double tolCoord, double tolSeries);
int gauss_krueger_to_geo(double a, double b, double y, double x, double phi0, std::array<double, 2>& res,
                         double tolAngle, double tolSeries);
int geo_to_soldner(double a, double b, double phi, double lam, double phi0, double lam0,
                   std::array<double, 2>& res, double tolAngle, double tolLength, double tolSeries);
int soldner_to_geo(double a, double b, double y, double x, double phi0, double lam0,
                   std::array<double, 2>& res, double tolAngle, double tolLength, double tolSeries);

}  // namespace as_written
