// Kernels of the REAL(8) arcsine and arccosine, shared by the radian,
// degree and quadrant forms, and the units those forms measure in.
//
// The rational forms are the library's (coefficients as it has always had
// them); their shapes, chosen so that those coefficients reach double
// accuracy (relative errors of the forms themselves, measured at 200 bits
// with mpmath over each range; the curves are one-signed, not equioscillating,
// so these are the worst points):
//
//   |x| < 1/2              asin x = x + (x z) P1(z)/Q1(z),  z = x^2,
//                          P1 = a1 + a2 z + ... + a5 z^4,
//                          Q1 = b0 + b1 z + b2 z^2 + b3 z^3 + z^4;   <= 1.8e-17
//   1/2 <= |x| < sqrt(1/2) asin x = x + x P2(z)/Q2(z),
//                          P2 = c0 + c1 z + ... + c5 z^5 (c0 = -2.9e-9 is
//                          the constant term: P2/Q2 ~ z/6 has no root in the
//                          range, the fit just leaves it nonzero),
//                          Q2 = d0 + d1 z + ... + d4 z^4 + z^5;      <= 3.2e-17
//   sqrt(1/2) <= a <= 1    acos a = t + t P3(w)/Q3(w), w = 1 - a (exact),
//                          t = sqrt(w) (FSQRT), P3 = p0 + ... + p4 w^4,
//                          Q3 = q0 + q1 w + q2 w^2 + q3 w^3 + w^4;   <= 1.6e-17
//                          (P3(0)/Q3(0) = sqrt 2 - 1: acos a ~ sqrt(2w)).
// The other halves come by complement: asin a = pi/2 - acos a above
// sqrt(1/2), acos x = pi/2 - asin x below, acos(-a) = pi - acos a, with
// pi/2 and pi as split constants (or the exact 90, 180, 1, 2 of the other
// units); the subtracted part is at most half of the result, so its error
// does not grow.
//
// Evaluation is in x87 extended precision: every step rounds to 64 bits.
// The sums inside P and Q cancel by factors of 3 to 19 at worst (Q2 at
// z = 1/2), which leaves their errors below 2^-59 of the correction P/Q,
// itself at most 0.12 of the result: the value before the final rounding
// is within 3.3e-17 (relative) of the function, that is within 0.30 units
// of the double's last place, and the rounded result within 0.80 ulp
// (measured: see the README's accuracy table).  The degree and quadrant
// forms multiply the radian value by 180/pi or 2/pi rounded to 64 bits,
// two more errors of 2^-64.
#pragma once

#include "frame/x87.h"

namespace mivor::elementary::inverse {

inline constexpr double rh = 0x1.6a09e667f3bcdp-1;   // sqrt(1/2), 0x3FE6A09E667F3BCD
inline constexpr double hp1 = 0x1.921fb54442d18p+0;  // pi/2 high, 0x3FF921FB54442D18
inline constexpr double hp2 = 0x1.1a62633145c04p-54; // pi/2 low,  0x3C91A62633145C04
inline constexpr double pi1 = 0x1.921fb54442d18p+1;  // pi high,   0x400921FB54442D18
inline constexpr double pi2 = 0x1.1a62633145c04p-53; // pi low,    0x3CA1A62633145C04

inline constexpr double a1 = 3.614278101483137, a2 = -6.459201907684824, a3 = 3.5080564238000966,
                        a4 = -0.5642940339625301, a5 = 0.005878063057431393;
inline constexpr double b0 = 21.68566860889831, b1 = -48.513762320053395, b2 = 37.07087034958211,
                        b3 = -11.026014708098247;
inline constexpr double c0 = -2.9337113789701198e-09, c1 = -13.010108037691234, c2 = 30.273171587675083,
                        c3 = -24.065314885421614, c4 = 7.382121834580398, c5 = -0.6604179821333029;
inline constexpr double d0 = -78.06064870727668, d1 = 216.76632724636363, d2 = -221.02767465604543,
                        d3 = 99.92275963114773, d4 = -18.76080406637674;
inline constexpr double p0 = 381.04888728363596, p1 = -270.0958785644958, p2 = 39.33262011832943,
                        p3 = 3.7062731896116072, p4 = -0.5205674656916033;
inline constexpr double q0 = 919.9333916073307, q1 = -913.8065550136159, q2 = 296.06065281142884,
                        q3 = -34.31514791522208;

// Radians to degrees and to quadrants, rounded to 64 bits (relative errors
// 2.5e-21 and 1.3e-21).
inline constexpr long double kDegreesPerRadian = 0xe52ee0d31e0fbdc3p-58L;
inline constexpr long double kQuadrantsPerRadian = 0xa2f9836e4e44152ap-64L;

// asin x for |x| < sqrt(1/2), in radians; -0 gives -0.
inline long double asin_inner(long double x) {
    const long double z = x * x;
    if (__builtin_fabsl(x) < 0.5L) {
        const long double p = (((a5 * z + a4) * z + a3) * z + a2) * z + a1;
        const long double q = ((((z + b3) * z + b2) * z + b1) * z) + b0;
        return x + (x * z) * (p / q);
    }
    const long double p = ((((c5 * z + c4) * z + c3) * z + c2) * z + c1) * z + c0;
    const long double q = (((((z + d4) * z + d3) * z + d2) * z + d1) * z) + d0;
    return x + x * (p / q);
}

// acos a for sqrt(1/2) <= a <= 1, in radians; acos 1 = 0 exactly.
inline long double acos_outer(long double a) {
    const long double w = 1.0L - a;
    const long double t = x87::fsqrt(w);
    const long double p = (((p4 * w + p3) * w + p2) * w + p1) * w + p0;
    const long double q = ((((w + q3) * w + q2) * w + q1) * w) + q0;
    return t + t * (p / q);
}

}  // namespace mivor::elementary::inverse

extern "C" {
// acos x in quadrants for sqrt(1/2) <= |x| <= 1, in x87 extended precision
// (the outer range of g_dacosq and g_dasinq).
long double _jwe_gd1q(const double* arg);
// The same for REAL(4) (g_acosq, g_asinq), in double.
double _jwe_ga1q(const float* arg);
}
