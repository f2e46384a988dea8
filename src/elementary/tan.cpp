// g_dtan, g_dcotan: tangent and cotangent of a REAL(8) radian argument.
//
// Reduction (a = |x|, the sign of x applied at the end; both are odd):
//   a < pi/4            r = a, k = 0;
//   a < 101 (k <= 64)   k = round(a 2/pi), r = (a - hi_k) - lo_k with
//                       tblp[k] = k pi/2 as hi + lo: a - hi_k is exact
//                       (Sterbenz), so r keeps a low part and is good to
//                       2^-100 even next to a multiple of pi/2;
//   a < 3.53e15         the split-pi/2 reduction of the sine (trig_reduce.h);
//   otherwise, Inf, NaN refused: error 213.
// On r = h + l in [-pi/4, pi/4]:
//   |h| < 2^-10  tan r = h + (l + h^3 (g1 + g2 h^2))   (series; the next
//                term, 17/315 h^7, is below 2^-64 |h|);
//   otherwise    tan r = h + (h^3 P(h^2)/Q(h^2) + l (1 + tan^2 h)),
//                cot r = 1/h + h R(h^2)/S(h^2) - l (1 + cot^2 h),
//                P = p1 + p2 z + p3 z^2 + p4 z^3, Q = q0 + q1 z + q2 z^2 + z^3,
//                R = r1 + ... + r4 z^3, S = s0 + s1 z + s2 z^2 + z^3;
//                relative errors of the rational forms on [0, pi/4]:
//                2.7e-17 (tan), 4.0e-17 (cot).  1/h is carried as q + q e
//                with e = 1 - q h formed exactly (Dekker's product).
// k odd swaps tangent and minus cotangent.  The terms added to the leading
// h or q are below 0.22 of the result, so their rounding errors stay well
// below 0.5 ulp: the result is within about 0.6 ulp away from multiples of
// pi/2 (the bound becomes absolute there, as for the sine).
//
// Reports (direct form):
//   213  argument refused; fallback NaN (IEEE results) or 1.0;
//   214  zero denominator, that is g_dcotan(+-0); fallback +Inf (IEEE
//        results) or 0x7FEFFFFFFFFFFFB6.
#include "elementary/sincos_data.h"
#include "elementary/tan_data.h"
#include "elementary/trig_reduce.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

using trig::Reduced;

inline constexpr double rhp = trig::RHP;
inline constexpr double bg = trig::BG;
inline constexpr double qp = trig::QP;
inline constexpr double xmax = trig::DSINMX;  // 3.53e15
inline constexpr double kTableLimit = 101.0;  // round(101 2/pi) = 64, the last row of tblp
inline constexpr double kSeriesLimit = 0x1p-10;
inline constexpr double kTinyLimit = 0x1p-511;
inline constexpr double kRationalLimit = 0.375;  // above: quotient of the sine and cosine tables
inline constexpr double bg8 = 0x1p+44;  // 0x42B0000000000000: rounds to a multiple of 1/256  // below: cot r = 1/r, and 1/r^2 cannot overflow above

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

inline Reduced reduce(double a) {
    if (a < qp) return {a, 0.0, 0};
    if (a < kTableLimit) {
        const double s = a * rhp + bg;
        const std::uint32_t k = trig::low32(s);
        double hi, lo;
        trig::two_sum(a - tan_data::tblp[k][0], -tan_data::tblp[k][1], hi, lo);
        return {hi, lo, k};
    }
    if (!(a < trig::XBIG)) return trig::reduce_large(a);
    // reduce_medium may leave lo above half an ulp of hi (k HPD2 is added
    // after the rounding of hi); next to a pole the cotangent's second-order
    // term (lo/hi)^2 would then show, so hi + lo is renormalised.
    Reduced r = trig::reduce_medium(a);
    trig::two_sum(r.hi, r.lo, r.hi, r.lo);
    return r;
}

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
    if (ah < kTinyLimit) return 1.0 / h;  // only r = a itself gets here: l = 0
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

template <bool cotangent>
double tan_or_cot(double x);

// Refused argument: report 213; a retry starts again from the top.
template <bool cotangent>
[[gnu::cold, gnu::noinline]] double refuse(double x) {
    return report::settle_direct(x, [](double x) { return trig::magnitude(x) < xmax; }, tan_or_cot<cotangent>,
                                 report::fail(Error::tan_cot_refused_r8, _NaN_D, 1.0));
}

// cot(+-0): the quotient by zero, report 214.
template <bool cotangent>
[[gnu::cold, gnu::noinline]] double pole(double x) {
    return report::settle_direct(x, [](double x) { return x != 0.0; }, tan_or_cot<cotangent>,
                                 report::fail(Error::tan_cot_pole_r8, _Inf_D, kHuge_D));
}

template <bool cotangent>
double tan_or_cot(double x) {
    const double a = trig::magnitude(x);
    if (!(a < xmax)) return refuse<cotangent>(x);  // too large, infinite or NaN
    const Reduced r = reduce(a);
    const bool odd = r.k & 1;
    double v;
    const double ah = trig::magnitude(r.hi);
    if (ah >= kRationalLimit) {
        const __m128d sr = trig::sign_of(r.hi);
        v = quotient_reduced(ah, trig::flip_by(r.lo, sr), odd != cotangent);
        v = trig::flip_by(v, sr);
    } else if (odd != cotangent) {  // the cotangent of r (a quotient by r)
        if (r.hi == 0.0) return pole<cotangent>(x);  // a = 0
        v = cot_reduced(r.hi, r.lo);
    } else {
        v = tan_reduced(r.hi, r.lo);
    }
    if (odd) v = -v;
    return trig::flip_by(v, trig::sign_of(x));
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" MIVOR_DISPATCHED double g_dtan(const double* arg) { return tan_or_cot<false>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dcotan(const double* arg) { return tan_or_cot<true>(*arg); }
