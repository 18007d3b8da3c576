#include "projections_as_written.h"

#include <cmath>

using std::acos, std::asin, std::atan, std::cos, std::exp, std::fabs, std::log, std::pow, std::sin, std::sqrt,
    std::tan;

namespace as_written {
namespace {

// The e2 series and the meridian-arc series; false when the last term still exceeds the tolerance.
bool e2_series(double e2, double tol, double& S) {
    double c = 1, t = 99;
    S = 0;
    int k = 0;
    while (fabs(t) > tol && k < 100) {
        k = k + 1;
        c = (((k - 1) * 2.0 + 1) * c) / ((k - 1) * 2.0 + 2);
        t = pow(e2, k) * ((k * 2.0 + 1) * (c * c));
        S = S + t;
    }
    return !(k == 100 && fabs(t) > tol);
}

bool arc_series(double e2, double phi, double tol, double& B) {
    B = e2 * 0.75;
    double c = 0.5, t = 99;
    int k = 1;
    while (fabs(t) > tol && k < 100) {
        k = k + 1;
        c = (((k - 1) * 2.0 + 1) * c) / ((k - 1) * 2.0 + 2);
        const double T = pow(e2, k) * ((k * 2.0 + 1) * (c * c));
        t = T;
        double d = 1;
        for (int i = 1; i <= k - 1; ++i) {
            d = (((i - 1) * 2.0 + 2) * d) / ((i - 1) * 2.0 + 3);
            t = t + pow(sin(phi), i * 2.0) * (d * T);
        }
        B = B + t;
    }
    return !(k == 100 && fabs(t) > tol);
}

int finish(double first, double second, int notFinite, std::array<double, 2>& res) {
    if (!std::isfinite(first) || !std::isfinite(second)) return notFinite;
    res = {first, second};
    return 0;
}

// The complex latitude whose sine is tanh(Q + iL); twice L is what enters.
void lat(double Q, double twoL, double& Zr, double& Zi) {
    const double pi = 2 * asin(1.0);
    const double P = exp(Q * 2), M = exp(Q * (-2)), cL = cos(twoL), sL = sin(twoL);
    const double D = (M + P) * 0.5 + cL;
    const double Si = sL / D;
    const double Sr = (P - M) * 0.5 / D;
    const double W = sqrt(Sr * Sr * Sr * Sr + ((Si * 2 * Si + (1 - Sr * 2 * Sr)) + Sr * 2 * Sr * Si * Si) +
                          Si * Si * Si * Si);
    const double E = (M + P) * cL + 2;
    double H = E != 0 ? atan((M - P) * sL / E) : pi * 0.5;
    H = H * 0.5;
    const double r = sqrt(W), h = cos(H);
    Zr = r * h - Si != 0 ? atan((sin(H) * r + Sr) / (r * h - Si)) : pi * 0.5;
    Zi = -log(sqrt((sin(H) * Sr - h * Si) * (r * 2) + ((Sr * Sr + W) + Si * Si)));
}

// One step of the latitude iteration; twoL is doubled as the next one takes it.
void corr(double Zr, double Zi, double e, double q, double l, double& Q, double& twoL) {
    const double pi = 2 * asin(1.0);
    const double ee = e * e;
    const double Ep = exp(Zi), Em = exp(-Zi), Ch = exp(Zi * 2) + exp(Zi * (-2)), sn = sin(Zr), cs = cos(Zr);
    const double U = sn * ee * sn * (Ch + 2) * 0.25;
    const double V = cs * ee * cs * (Ch - 2);
    const double N = ((1 - (Ep + Em) * (sn * e)) + U) + V * 0.25;
    const double F1 = V / N;
    const double F2 = ((1 - U) - V * 0.25) / N;
    const double m = sqrt(F1 / N + F2 * F2);
    const double g = F2 != 0 ? atan((Ep - Em) * (cs * e) / N / F2) : pi * 0.5;
    Q = log(m) * e * 0.5 + q;
    twoL = (g * e * 0.5 + l) * 2;
}

double binomial(int m, int j) {
    if (j == 0 || j == m) return 1;
    double bin = m;
    for (int i = 2; i <= j; ++i) {
        bin = ((m - i + 1.0) * bin) / i;
    }
    return bin;
}

double next_alpha(double alpha, int j) {
    return ((j * 2.0 + 1) * (-alpha)) / (j * 2.0 + 2);
}

double next_g(double g, double e2, int k) {
    return (((k - 1) * 2.0 - 1) * g) / ((k - 1) * 2.0 + 2) * e2;
}

double next_d(double d, int j) {
    return ((j * 2.0 + 2) * d) / (j * 2.0 + 3);
}

// The two sums of a geodesic for m, with the remainders by the sine of the point's reduced latitude, or of its arc.
void sums(int m, double x, double sine, double& P, double& Q, bool byArc = false) {
    double alpha = 1, d = 1, xj = 1, R = 0;
    P = 0;
    Q = 0;
    for (int j = 0; j <= m; ++j) {
        P = P + (xj * alpha) * binomial(m, j);
        Q = Q + (R * alpha) * binomial(m, j);
        const double t = pow(sine, j * 2.0) * d;
        R = ((byArc ? t * pow(x, j) : t) + R) * x;
        alpha = next_alpha(alpha, j);
        d = next_d(d, j);
        xj = xj * x;
    }
}

}  // namespace

int geo_to_gauss_krueger(double a, double b, double phi, double lam, double phi0, double lam0,
                         std::array<double, 2>& res, double tolCoord, double tolSeries) {
    const double pi = 2 * asin(1.0);
    const double e2 = 1 - ((b / a) * b) / a;
    const double e = sqrt(e2);
    const double s = sin(phi);
    const double q = log((s + 1) / (1 - s)) * 0.5 - log((s * e + 1) / (1 - s * e)) * 0.5 * e;
    const double l = lam - lam0;
    double Zr, Zi, Q, twoL;
    lat(q, l * 2, Zr, Zi);
    corr(Zr, Zi, e, q, l, Q, twoL);
    lat(Q, twoL, Zr, Zi);
    double X = 0, Y = 0, Xold = 99, Yold = 99;
    int n = 1;
    while ((fabs(Xold - X) > tolCoord || fabs(Yold - Y) > tolCoord) && n < 100) {
        n = n + 1;
        Yold = Y;
        Xold = X;
        double T = e2 * 0.75, SA = T, Bre = T, Bim = 0, Dr = 1, Di = 0, d = 1;
        const double Ep = exp(Zi), Em = exp(-Zi), sr = sin(Zr);
        const double rho = sqrt(sr * sr + ((exp(Zi * (-2)) + exp(Zi * 2)) - 2) * 0.25);
        const double R2 = sr * (Em + Ep);
        for (int j = 1; j <= n - 1; ++j) {
            const double t = j * 2.0;
            T = T * (t + 1);
            T = T * (t + 3) / ((t + 2) * (t + 2)) * e2;
            SA = SA + T;
            d = (((j - 1) * 2.0 + 2) * d) / ((j - 1) * 2.0 + 3);
            const double theta = R2 != 0 ? atan(cos(Zr) * (Ep - Em) / (Em + Ep) / sr) : pi * 0.5;
            const double w = pow(rho, t) * d;
            Dr = Dr + cos(t * theta) * w;
            Di = Di + sin(t * theta) * w;
            Bre = Bre + Dr * T;
            Bim = Bim + Di * T;
        }
        corr(Zr, Zi, e, q, l, Q, twoL);
        lat(Q, twoL, Zr, Zi);
        const double F = exp(Zi * 2), Fm = exp(Zi * (-2)), A = (SA + 1) * ((1 - e2) * a);
        const double s2 = sin(Zr * 2) * (Fm + F), c2 = cos(Zr * 2), K = (1 - e2) * a * 0.25;
        Y = A * Zi - ((c2 * (F - Fm)) * Bre + s2 * Bim) * K;
        X = A * Zr - (s2 * Bre - (c2 * (F - Fm)) * Bim) * K;
    }
    if (n == 100 && (fabs(Xold - X) > tolCoord || fabs(Yold - Y) > tolCoord)) return 501;
    double S, B;
    if (!e2_series(e2, tolSeries, S)) return 502;
    if (!arc_series(e2, phi0, tolSeries, B)) return 503;
    const double K0 = (1 - e2) * a;
    return finish(Y, sin(phi0 * 2) * ((K0 * 0.5) * B) + (X - ((S + 1) * K0) * phi0), 501, res);
}

int gauss_krueger_to_geo(double a, double b, double y, double x, double phi0, std::array<double, 2>& res,
                         double tolAngle, double tolSeries) {
    const double pi = 2 * asin(1.0);
    const double e2 = 1 - ((b / a) * b) / a;
    const double e = sqrt(e2);
    double S, B0;
    if (!e2_series(e2, tolSeries, S)) return 301;
    if (!arc_series(e2, phi0, tolSeries, B0)) return 302;
    const double A = S + 1, o = 1 - e2;
    const double u = ((y / a) / A) / o;
    const double m = (((A * (o * a)) * phi0 + x) - sin(phi0 * 2) * (((o * a) * 0.5) * B0)) / a / A / o;
    const double P = exp(u * 2), M = exp(u * (-2));
    double Zr = sin(m * 2) * (M + P) * S * 0.25 / A + m;
    double Zi = cos(m * 2) * (P - M) * S * 0.25 / A + u;
    double Br = m, Bi = u, dRe = 99, dIm = 99;
    int n = 0;
    while ((dIm > tolSeries || dRe > tolSeries) && n < 100) {
        n = n + 1;
        double Bre = e2 * 0.75, Bim = 0, c = 0.5, tre = e2 * 0.75, tim = dRe;
        int k = 1;
        while ((tre > tolSeries || tim > tolSeries) && k < 100) {
            k = k + 1;
            c = (((k - 1) * 2.0 + 1) * c) / ((k - 1) * 2.0 + 2);
            const double T = pow(e2, k) * ((k * 2.0 + 1) * (c * c));
            tre = T;
            tim = 0;
            double d = 1;
            const double rho =
                sqrt((1 - cos(Br) * 2 * cos(Br)) * 0.5 + (exp(Bi * (-2)) + exp(Bi * 2)) * 0.25);
            const double ep = exp(Bi), em = exp(-Bi);
            const double sr = sin(Br) * (ep + em) * 0.5;
            for (int i = 1; i <= k - 1; ++i) {
                d = (((i - 1) * 2.0 + 2) * d) / ((i - 1) * 2.0 + 3);
                const double theta = sr != 0 ? atan((ep - em) / tan(Br) / (ep + em)) : pi / 2;
                const double w = pow(rho, i * 2.0) * (d * T);
                tre = tre + cos(theta * (i * 2.0)) * w;
                tim = tim + sin(theta * (i * 2.0)) * w;
            }
            Bim = Bim + tim;
            Bre = Bre + tre;
        }
        if (k == 100 && (tre > tolSeries || tim > tolSeries)) return 303;
        Br = Zr;
        Bi = Zi;
        const double F = exp(Zi * 2), Fm = exp(Zi * (-2));
        const double ZrNew =
            (sin(Zr * 2) * (Fm + F) * Bre * 0.25 / A + m) - cos(Zr * 2) * (F - Fm) * Bim * 0.25 / A;
        const double ZiNew =
            (sin(ZrNew * 2) * (Fm + F) * Bim * 0.25 / A + u) + cos(ZrNew * 2) * (F - Fm) * Bre * 0.25 / A;
        dRe = fabs(ZrNew - Zr);
        dIm = fabs(ZiNew - Zi);
        Zr = ZrNew;
        Zi = ZiNew;
    }
    if (n == 100 && (dIm > tolSeries || dRe > tolSeries)) return 304;
    const double ep = exp(Zi), em = exp(-Zi);
    const double sr = sin(Zr) * (em + ep) * 0.5;
    const double si = cos(Zr) * (ep - em) * 0.5;
    const double D1 = (1 - sr) * (1 - sr) + si * si;
    const double r1 = ((sr + 1) * (1 - sr) - si * si) / D1;
    const double j1 = ((sr + 1) * si + (1 - sr) * si) / D1;
    const double s = sr * e;
    const double h = ((si * si) * e) * e;
    const double D2 = (1 - s) * (1 - s) + h;
    const double r2 = ((s + 1) * (1 - s) - h) / D2;
    const double j2 = ((s + 1) * si * e + (1 - s) * si * e) / D2;
    const double q = log(sqrt(j1 * j1 + r1 * r1)) * 0.5 - log(sqrt(j2 * j2 + r2 * r2)) * e * 0.5;
    double l = r1 != 0 ? atan(j1 / r1) * 0.5 : pi * 0.25;
    l = r2 != 0 ? l - atan(j2 / r2) * e * 0.5 : l - e * pi * 0.25;
    double t = (exp(q) - exp(-q)) / (exp(-q) + exp(q));
    double told;
    n = 0;
    do {
        n = n + 1;
        told = t;
        const double Q = log((t * e + 1) / (1 - t * e)) * (e * 0.5) + q;
        t = (exp(Q) - exp(-Q)) / (exp(-Q) + exp(Q));
    } while (fabs(t - told) > tolAngle && n < 100);
    if (fabs(t - told) > tolAngle) return 305;
    return finish(asin(t), l, 304, res);
}

int geo_to_soldner(double a, double b, double phi, double lam, double phi0, double lam0,
                   std::array<double, 2>& res, double tolAngle, double tolLength, double tolSeries) {
    const double pi = 2 * asin(1.0);
    const double e2 = 1 - ((b / a) * b) / a;
    double S, B0;
    if (!e2_series(e2, tolSeries, S)) return 401;
    if (!arc_series(e2, phi0, tolSeries, B0)) return 402;
    const double A = S + 1, o = 1 - e2;
    const double K1 = A * (o * a), K2 = (o * a) * 0.5;
    const double G0 = K1 * phi0 - sin(phi0 * 2) * (K2 * B0);
    const double r = sqrt(o), tphi = tan(phi), beta = atan(tphi * r), tb = tan(beta), sb = sin(beta);
    const double l = lam - lam0;
    double betaF = atan(tb / cos(l));
    double v = sb / sin(betaF) - 1e-15;
    double sigma = asin(v), psi = acos(v);
    if (lam >= lam0) sigma = pi - sigma;
    if (lam0 > lam) psi = -psi;
    double betaFOld = -99, sigmaOld = -99, psiOld = -99;
    const auto moves = [&] {
        return fabs(betaFOld - betaF) > tolAngle || fabs(sigmaOld - sigma) > tolAngle ||
               fabs(psiOld - psi) * a > tolLength;
    };
    int n = 0;
    while (moves() && n < 100) {
        n = n + 1;
        const double cb = cos(betaF);
        const double x = sin(betaF) * sin(betaF);
        betaFOld = betaF;
        sigmaOld = sigma;
        psiOld = psi;
        double omega = l;
        const double s2 = sin(sigma * 2);
        double g = 1;
        for (int k = 1; k <= n; ++k) {
            double P, Q;
            sums(k - 1, x, sb, P, Q);
            Q = Q * s2 * 0.5;
            g = next_g(g, e2, k);
            omega = omega - (P * psi - Q) * (cb * g);
        }
        betaF = atan(tb / cos(omega));
        v = sb / sin(betaF) - 1e-15;
        sigma = asin(v);
        psi = acos(v);
        if (lam >= lam0) sigma = pi - sigma;
        if (lam0 > lam) psi = -psi;
    }
    if (n == 100 && moves()) return 403;
    const double x = sin(betaF) * sin(betaF);
    const double Y0 = psi * a;
    double Y = Y0, g = 1, t = 99;
    int k = 0;
    while (fabs(t) > tolLength && k < 100) {
        k = k + 1;
        double P, Q;
        sums(k, x, sb, P, Q);
        g = next_g(g, e2, k);
        t = (Y0 * g) * P - (((sin(sigma * 2) * a) * g) * Q) * 0.5;
        Y = Y + t;
    }
    if (k == 100 && fabs(t) > tolLength) return 404;
    const double phiF = atan(tan(betaF) / r);
    double BF;
    if (!arc_series(e2, phiF, tolSeries, BF)) return 405;
    const double X = (K1 * phiF - sin(phiF * 2) * (K2 * BF)) - G0;
    if (!(fabs(l) >= 5e-5)) {
        const double cphi = cos(phi);
        const double L2 = ((l * cphi) * l) * cphi;
        const double N = ((a / b) * a) / sqrt(((cphi * cphi) * e2) / o + 1);
        Y = ((N * l) * cphi) * (1 - ((((8 - tphi * tphi) * L2) / 20 + 1) * ((tphi * L2) * tphi)) / 6);
    }
    return finish(Y, X, 403, res);
}

int soldner_to_geo(double a, double b, double y, double x, double phi0, double lam0,
                   std::array<double, 2>& res, double tolAngle, double tolLength, double tolSeries) {
    const double pi = 2 * asin(1.0);
    const double e2 = 1 - ((b / a) * b) / a;
    double S, B0;
    if (!e2_series(e2, tolSeries, S)) return 201;
    if (!arc_series(e2, phi0, tolSeries, B0)) return 202;
    const double A = S + 1, o = 1 - e2;
    const double mu = ((((A * (o * a)) * phi0 + x) - sin(phi0 * 2) * (((o * a) * 0.5) * B0)) / a) / o / A;
    double phiPrev = mu;
    double phiF = ((sin(mu * 2) * S) * 0.5) / A + mu;
    int n = 0;
    while (fabs(phiPrev - phiF) > tolAngle && n < 100) {
        n = n + 1;
        double B;
        if (!arc_series(e2, phiPrev, tolSeries, B)) return 203;
        phiPrev = phiF;
        phiF = ((sin(phiPrev * 2) * B) * 0.5) / A + mu;
    }
    if (n == 100 && fabs(phiPrev - phiF) > tolAngle) return 204;
    const double r = sqrt(o), tf = tan(phiF), betaF = atan(tf * r), cf = cos(betaF), sf = sin(betaF);
    const double xf = sf * sf;
    double L = (pi * a) * 2, c = 1, t = 99, P, Q;
    int k = 0;
    while (fabs(t) > tolLength && k < 100) {
        k = k + 1;
        c = (((k - 1) * 2.0 - 1) * c) / ((k - 1) * 2.0 + 2);
        sums(k, xf, 0, P, Q);
        t = pow(e2, k) * ((((pi * 2) * a) * c) * P);
        L = L + t;
    }
    if (k == 100 && fabs(t) > tolLength) return 205;
    const double s0 = (L * 0.25 + y) / a;
    double sigma = s0, sigmaOld = -99;
    n = 0;
    while (fabs(sigmaOld - sigma) > tolAngle && n < 100) {
        sigmaOld = sigma;
        n = n + 1;
        sigma = s0;
        double g = 1;
        const double s2 = sin(sigmaOld * 2);
        for (k = 1; k <= n; ++k) {
            sums(k, xf, sin(sigmaOld), P, Q, true);
            g = next_g(g, e2, k);
            sigma = (sigma - (sigmaOld * g) * P) + ((s2 * g) * Q) * 0.5;
        }
    }
    if (n == 100 && fabs(sigmaOld - sigma) > tolAngle) return 206;
    const double beta = asin(sin(sigma) * sf);
    const double phi = atan(tan(beta) / r);
    const double sigma1 = y >= 0 ? pi - sigma : sigma;
    const double omega = asin(((cf / cos(beta)) * sin(sigma1)) - 1e-15);
    double lamSum = omega, g = 1;
    t = 99;
    k = 0;
    while (fabs(t) > tolAngle && k < 100) {
        k = k + 1;
        sums(k - 1, xf, sin(beta), P, Q);
        g = next_g(g, e2, k);
        t = ((sigma1 * cf) * g) * P - (((sin(sigma1 * 2) * cf) * g) * Q) * 0.5;
        lamSum = lamSum + t;
    }
    if (k == 100 && fabs(t) > tolAngle) return 207;
    double quarter = pi * 0.5;
    g = 1;
    t = 99;
    k = 0;
    while (fabs(t) > tolAngle && k < 100) {
        k = k + 1;
        sums(k - 1, xf, 0, P, Q);
        g = next_g(g, e2, k);
        t = (((pi * 0.5) * cf) * g) * P;
        quarter = quarter + t;
    }
    if (k == 100 && fabs(t) > tolAngle) return 208;
    double lam = y < 0 ? (lamSum - quarter) + lam0 : (quarter + lam0) - lamSum;
    if (!(fabs(y) >= 200)) {
        const double cphi = cos(phiF);
        const double N = ((a / b) * a) / sqrt(((cphi * cphi) * e2) / o + 1);
        const double u2 = (((y / N) * y) / N) * ((tf * 3) * tf + 1);
        const double w = (((tf * tf) * y) / N) * y;
        lam = ((1 - ((1 - u2 / 5) * (w / N)) / 3) * (y / (cphi * N))) + lam0;
    }
    return finish(phi, lam, 206, res);
}

}  // namespace as_written
