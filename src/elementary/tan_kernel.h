// The evaluation of tan and cot on a reduced radian argument h + l,
// |h + l| <= pi/4 (plus a few ulps), shared by g_dtan, g_dcotan and the
// degree and quadrant tangents, which reduce in their own unit and hand
// over the reduced angle in radians as a double-double.  The method and
// its error bound are described at the top of tan.cpp.
#pragma once

#include "elementary/sincos_data.h"
#include "elementary/trig_reduce.h"

namespace mivor::elementary::tan_kernel {

inline constexpr double kSeriesLimit = 0x1p-10;
inline constexpr double kTinyLimit = 0x1p-511;  // below: cot r = 1/r, and 1/r^2 cannot overflow above
inline constexpr double kRationalLimit = 0.375;  // above: quotient of the sine and cosine tables
inline constexpr double bg8 = 0x1p+44;  // 0x42B0000000000000: rounds to a multiple of 1/256

inline constexpr double p1 = -1301.799236687197, p2 = 83.74320685784895,
                        p3 = -0.9564226841031748, p4 = 6.99035473756965e-05;
inline constexpr double q0 = -3905.3977100615907, q1 = 1813.388704598182,
                        q2 = -95.92226350064105;
inline constexpr double r1 = 18661.896982511396, r2 = -1245.0626674298392,
                        r3 = 16.457195816580885, r4 = -0.027891753049366023;
inline constexpr double s0 = -55985.69094753418, s1 = 7467.567398791784,
                        s2 = -191.74470960691806;
inline constexpr double g1 = 0.3333333333312733, g2 = 0.1333340406383807;
inline constexpr double kSplit = 0x1p+27 + 1.0;  // Veltkamp: 26 + 27 bit halves

// P/Q = 1/3 + (P - Q/3)/Q: the large part h^3/3 of the correction then
// costs three roundings instead of a rounded quotient on top of them.
inline constexpr double u0 = p1 - q0 / 3.0, u1 = p2 - q1 / 3.0, u2 = p3 - q2 / 3.0,
                        u3 = p4 - 1.0 / 3.0;
// cot: R/S = -1/3 + (R + S/3)/S.
inline constexpr double v0 = r1 + s0 / 3.0, v1 = r2 + s1 / 3.0, v2 = r3 + s2 / 3.0,
                        v3 = r4 + 1.0 / 3.0;

inline double tan_reduced(double h, double l) {
    const double z = h * h;
    const double ah = trig::magnitude(h);
    if (ah < kSeriesLimit) return h + (l + h * z * (g1 + g2 * z));
    const double num = u0 + z * (u1 + z * (u2 + z * u3));
    const double den = q0 + z * (q1 + z * (q2 + z));
    const double hz = h * z;
    const double small = hz * (num / den);
    const double t = h + (hz / 3.0 + small);
    return h + ((l * (1.0 + t * t) + small) + hz / 3.0);
}

// h != 0.
inline double cot_reduced(double h, double l) {
    const double ah = trig::magnitude(h);
    if (ah < kTinyLimit) return 1.0 / h;  // g_dcotan: only r = a gets here, l = 0; the unit forms keep out
    const double q = 1.0 / h;
    // e = 1 - q h exactly: q h = p + err by Dekker's product, 1 - p exact.
    const double p = q * h;
    const double qs = kSplit * q, qh = qs - (qs - q), ql = q - qh;
    const double hs = kSplit * h, hh = hs - (hs - h), hl = h - hh;
    const double err = (((qh * hh - p) + qh * hl) + ql * hh) + ql * hl;
    const double e = (1.0 - p) - err;
    const double z = h * h;
    const double num = v0 + z * (v1 + z * (v2 + z * v3));
    const double den = s0 + z * (s1 + z * (s2 + z));
    return q + (((q * e + h * (num / den)) - l * (1.0 + q * q)) - h / 3.0);
}

using trig::two_product;

// 3/8 <= h <= pi/4 (+ a few ulps): tan(h + l) (cotangent = false) or
// cot(h + l) as the quotient of sine and cosine from the tables of g_dsin,
// each kept as a double-double:
//   sin = uh + ((ul + d (1 + s0)) + (l cos h + h d P4)),
//   cos = c0 + (cl + (-l sin h + d P4)),
// relative errors about 2^-58 and 2^-56 (the fit of the cosine rows), and
// the quotient q + (n - q den)/den with q den exact: within 0.5 ulp plus
// about 2^-55 (relative) of tan and cot.
inline double quotient_reduced(double h, double l, bool cotangent) {
    const double jb = h + bg8;
    const std::uint32_t j = trig::low32(jb) & 0x3FF;
    const double d = h - (jb - bg8);
    const double* s = sincos_data::sc[j][0];
    const double* c = sincos_data::sc[j][1];
    const double ps = (s[1] + s[2] * d) + (d * d) * (s[3] + s[4] * d);
    const double pc = (c[1] + c[2] * d) + (d * d) * (c[3] + c[4] * d);
    const double z = h * h;
    const double rest = (s[6] + d * (1.0 + s[0])) + (l * (1.0 - z * (0.5 - z * (1.0 / 24))) + h * (d * ps));
    const double sh = s[5] + rest;  // |rest| < 2^-7 sh: normalised for the quotient
    const double sl = (s[5] - sh) + rest;
    const double tail = c[5] + (l * -(h * (1.0 - z * (1.0 / 6))) + d * pc);
    const double ch = c[0] + tail;
    const double cl = (c[0] - ch) + tail;
    const double nh = cotangent ? ch : sh, nl = cotangent ? cl : sl;
    const double dh = cotangent ? sh : ch, dl = cotangent ? sl : cl;
    const double q = nh / dh;
    double qd, qde;
    two_product(q, dh, qd, qde);
    return q + ((((nh - qd) - qde) + nl) - q * dl) / dh;
}

// tan (cotangent false) or cot of h + l; h != 0 for the cotangent.
inline double tan_or_cot_reduced(double h, double l, bool cotangent) {
    const double ah = trig::magnitude(h);
    if (ah >= kRationalLimit) {
        const __m128d sr = trig::sign_of(h);
        return trig::flip_by(quotient_reduced(ah, trig::flip_by(l, sr), cotangent), sr);
    }
    return cotangent ? cot_reduced(h, l) : tan_reduced(h, l);
}

}  // namespace mivor::elementary::tan_kernel
