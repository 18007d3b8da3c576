// The series are those of C. F. F. Karney, Transverse Mercator with an accuracy of a few nanometers, J. Geodesy 85,
// 2011, equations 35 and 36 (after L. Krueger, 1912), On auxiliary latitudes, Survey Review 56, 2023, for the conformal
// and the reduced latitude, and Algorithms for geodesics, J. Geodesy 87, 2013, equations 24 and 25, for the longitude.
#include "fast/series.h"

#include <cmath>

#include "fast/angles.h"

namespace lagestatus::fast {
namespace {

// Row k has the coefficients of n^k, n^(k+1), ... up to n^6.
using Table = double[seriesOrder][seriesOrder];

constexpr Table conformalByGeographic = {{-2.0, 2.0 / 3, 4.0 / 3, -82.0 / 45, 32.0 / 45, 4642.0 / 4725},
                                         {5.0 / 3, -16.0 / 15, -13.0 / 9, 904.0 / 315, -1522.0 / 945},
                                         {-26.0 / 15, 34.0 / 21, 8.0 / 5, -12686.0 / 2835},
                                         {1237.0 / 630, -12.0 / 5, -24832.0 / 14175},
                                         {-734.0 / 315, 109598.0 / 31185},
                                         {444337.0 / 155925}};
constexpr Table geographicByConformal = {{2.0, -2.0 / 3, -2.0, 116.0 / 45, 26.0 / 45, -2854.0 / 675},
                                         {7.0 / 3, -8.0 / 5, -227.0 / 45, 2704.0 / 315, 2323.0 / 945},
                                         {56.0 / 15, -136.0 / 35, -1262.0 / 105, 73814.0 / 2835},
                                         {4279.0 / 630, -332.0 / 35, -399572.0 / 14175},
                                         {4174.0 / 315, -144838.0 / 6237},
                                         {601676.0 / 22275}};
constexpr Table rectifyingByConformal = {
    {1.0 / 2, -2.0 / 3, 5.0 / 16, 41.0 / 180, -127.0 / 288, 7891.0 / 37800},
    {13.0 / 48, -3.0 / 5, 557.0 / 1440, 281.0 / 630, -1983433.0 / 1935360},
    {61.0 / 240, -103.0 / 140, 15061.0 / 26880, 167603.0 / 181440},
    {49561.0 / 161280, -179.0 / 168, 6601661.0 / 7257600},
    {34729.0 / 80640, -3418889.0 / 1995840},
    {212378941.0 / 319334400}};
constexpr Table conformalByRectifying = {
    {-1.0 / 2, 2.0 / 3, -37.0 / 96, 1.0 / 360, 81.0 / 512, -96199.0 / 604800},
    {-1.0 / 48, -1.0 / 15, 437.0 / 1440, -46.0 / 105, 1118711.0 / 3870720},
    {-17.0 / 480, 37.0 / 840, 209.0 / 4480, -5569.0 / 90720},
    {-4397.0 / 161280, 11.0 / 504, 830251.0 / 7257600},
    {-4583.0 / 161280, 108847.0 / 3991680},
    {-20648693.0 / 638668800}};
constexpr Table rectifyingByReduced = {{-1.0 / 2, 0.0, 3.0 / 16, 0.0, -1.0 / 32, 0.0},
                                       {-1.0 / 16, 0.0, 1.0 / 32, 0.0, -9.0 / 2048},
                                       {-1.0 / 48, 0.0, 3.0 / 256, 0.0},
                                       {-5.0 / 512, 0.0, 3.0 / 512},
                                       {-7.0 / 1280, 0.0},
                                       {-7.0 / 2048}};
constexpr Table reducedByRectifying = {{1.0 / 2, 0.0, -9.0 / 32, 0.0, 205.0 / 1536, 0.0},
                                       {5.0 / 16, 0.0, -37.0 / 96, 0.0, 1335.0 / 4096},
                                       {29.0 / 96, 0.0, -75.0 / 128, 0.0},
                                       {539.0 / 1536, 0.0, -2391.0 / 2560},
                                       {3467.0 / 7680, 0.0},
                                       {38081.0 / 61440}};

Coefficients coefficients(const Table& table, double n) noexcept {
    double c[seriesOrder];  // of sin 2x, sin 4x, ...
    double power = 1.0;
    for (int k = 0; k < seriesOrder; ++k) {
        power *= n;
        double sum = 0.0;
        for (int i = seriesOrder - 1 - k; i >= 0; --i) {
            sum = sum * n + table[k][i];
        }
        c[k] = sum * power;
    }
    // sin 2kx = sin 2x U(cos 2x) with Chebyshev's polynomials of the second kind of degree k - 1. Each coefficient is n
    // times the one before at most: nothing is lost.
    return {{c[0] - c[2] + c[4], 2.0 * c[1] - 4.0 * c[3] + 6.0 * c[5], 4.0 * c[2] - 12.0 * c[4],
             8.0 * c[3] - 32.0 * c[5], 16.0 * c[4], 32.0 * c[5]}};
}

using One = Lanes<2, 1>;

}  // namespace

PlaneSeries::PlaneSeries(const Ellipsoid& ellipsoid, double originLatitude) noexcept
    : a(ellipsoid.a), b(ellipsoid.b) {
    const double n = (a - b) / (a + b);
    if (!(n >= 0.0 && n <= mostFlattening && std::fabs(originLatitude) <= 1.56)) {
        return;
    }
    serves = true;
    f = (a - b) / a;
    axisRatio = b / a;
    ePrime2 = (a - b) * (a + b) / (b * b);
    const double n2 = n * n;
    // Karney 2011, equation 14.
    radius = a / (1.0 + n) * (1.0 + n2 * (1.0 / 4 + n2 * (1.0 / 64 + n2 / 256)));
    perRadius = 1.0 / radius;
    conformal = coefficients(conformalByGeographic, n);
    fromConformal = coefficients(geographicByConformal, n);
    krueger = coefficients(rectifyingByConformal, n);
    fromKrueger = coefficients(conformalByRectifying, n);
    rectifying = coefficients(rectifyingByReduced, n);
    fromRectifying = coefficients(reducedByRectifying, n);

    A3[0] = 1.0;
    A3[1] = -(1.0 / 2 - n / 2);
    A3[2] = -(1.0 / 4 + n / 8 - 3 * n2 / 8);
    A3[3] = -(1.0 / 16 + 3 * n / 16 + n2 / 16);
    A3[4] = -(3.0 / 64 + n / 32);
    // Equation 25, the arc from the vertex: every other sign changes.
    const double c31[] = {-(1.0 / 4 - n / 4), -(1.0 / 8 - n2 / 8), -(3.0 / 64 + 3 * n / 64 - n2 / 64),
                          -(5.0 / 128 + n / 64)};
    const double c32[] = {1.0 / 16 - 3 * n / 32 + n2 / 32, 3.0 / 64 - n / 32 - 3 * n2 / 64,
                          3.0 / 128 + n / 128};
    const double c33[] = {-(5.0 / 192 - 3 * n / 64 + 5 * n2 / 192), -(3.0 / 128 - 5 * n / 192)};
    const double c34 = 7.0 / 512 - 7 * n / 256;
    for (int k = 0; k < 4; ++k) {
        longitude0[k] = c31[k] - (k < 2 ? 0.0 : c33[k - 2]);
    }
    for (int k = 0; k < 3; ++k) {
        longitude1[k] = 2.0 * c32[k] - (k < 2 ? 0.0 : 4.0 * c34);
    }
    for (int k = 0; k < 2; ++k) {
        longitude2[k] = 4.0 * c33[k];
    }
    longitude3 = 8.0 * c34;

    if (originLatitude != 0.0) {
        const Direction<One> phi = direction_of_angle(One(originLatitude));
        const Direction<One> beta = direction_of(phi.sine * axisRatio, phi.cosine);
        const One mu = arc_of_latitude(beta.sine, beta.cosine) + sine_sum(rectifying.of, doubled(beta));
        arcOfOrigin = mu.part[0][0] * radius;
    }
}

}  // namespace lagestatus::fast
