// g_dsind, g_dcosd, g_dsinq, g_dcosq, g_dscnq: REAL(8) sine and cosine of an
// angle in degrees or in quadrants (u stands for u pi/2).
//
// Each reduces in its own unit, exactly (units.h): x = 90 k + r, |r| <= 45,
// or |u| = k + r, |r| <= 1/2.  Then the library's series in the unit, with
// the leading coefficient split into a power of two and a small correction
// so that the first product is exact:
//   degrees    sin(r deg) = r/64 + r (p0 + t (p1 + ... + t p6)),  t = r^2,
//              cos(r deg) = 1 + t (q1 + t (q2 + ... + t q7));
//   quadrants  sin(r pi/2) = 2 r + r (a0 + t (a1 + ... + t a6)),
//              cos(r pi/2) = 1 + t (b1 + ... + t b7),
// evaluated as written, in double.  Quadrant k mod 4 (k + 1 for the cosine)
// picks sin, cos, -sin, -cos; the degree forms reduce the signed argument,
// so the sign of a zero result follows the quadrant's negation
// (sind(180) = sind(-180) = -0), while the quadrant forms reduce |u| and put
// the sign of u back on the sine last (sinq(2) = -0, sinq(-2) = +0).
// At every multiple of a right angle r is 0 and the result exactly 0 or +-1.
//
// Accuracy (one statement per rounding; e = 2^-53):
//   The series' own errors are below 3.7e-17 (relative) for |r| <= 46 and
//   2.4e-17 for |r| <= 0.51 (fits of the library, measured at 200 bits).
//   Sines: the leading term (r/64, 2r) is exact and the rest is at most
//   0.6% (degrees) or 41% (quadrants, 1 - sin(pi/4)/(pi/4) scaled) of the
//   result; t = r^2 rounds (e), the Horner steps round (each e of a sum
//   that dominates the ones before), and the final sum rounds once (0.5 ulp).
//   Cosines: the correction t P(t) reaches -0.29 of a result of 0.71 at
//   |r| = 45 (1/2): the rounding of t = r^2 and of the last Horner sum,
//   each 2^-53 of that correction, are 0.29 ulp of the result each, the
//   last product 0.13, the fit up to 0.33, on top of the final rounding:
//   at most 0.5 + 0.29 + 0.29 + 0.13 + 0.33 = 1.54 ulp at the top of the
//   range.  The quadrant sine's correction is as large (41%) and reaches
//   the same.  Measured over 10^6 random arguments and the hard ranges
//   (mivor accuracy --count 1000000): 1.21 ulp for g_dsind (in the cosine
//   series, |r| near 45), 1.32 for g_dcosd, 1.13 for g_dsinq and 1.16 for
//   g_dcosq; exact at every multiple of a right angle, 0.5 far from the
//   top of the range.  The series and their
//   evaluation are the library's and are kept (in extended precision only
//   the fit and the final rounding would remain, about 0.85 ulp, on the
//   x87 unit at several times the cost).
//
// The degree forms reduce from 45 degrees on (the series are fitted on
// |r| <= 45: taken to 90 unreduced, the cosine series is 1e-7 off at 89.99).
//
// Reports: the degree forms refuse |x| >= 2.0299994561825997e17, infinities
// and NaN with 1362 (direct form): without a retry the quiet NaN, or
// 0.7071067811865476 (sin(pi/4), as the radian sine) with IEEE results off.
// The quadrant forms have no limit and no report: every double from 2^52 on
// is an integer; an infinity gives the quiet NaN, a NaN itself.  g_dscnq,
// the pair of the quadrant forms for the complex functions, refuses
// infinities and NaN with 203 like the radian sine and cosine, once for
// each half (its fallback computes the sine and then the cosine, each with
// its own report and retry, as g_dscn does through g_dsin and g_dcos).
#include <cmath>

#include "elementary/units.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

using units::Reduced;
using units::cos_quadrants;
using units::sin_quadrants;

inline constexpr double kSubstitute = 0x1.6a09e667f3bcdp-1;  // 0.7071067811865476

// Degrees.
inline constexpr double p0 = 0.0018282925199432957;  // pi/180 - 1/64
inline constexpr double p1 = -8.860961557012952e-07, p2 = 1.3496016231610962e-11, p3 = -9.788384855269842e-17,
                        p4 = 4.141266526876061e-22, p5 = -1.1467559733392375e-27, p6 = 2.2163723339533255e-33;
inline constexpr double q1 = -0.00015230870989335428, q2 = 3.866323851562971e-09, q3 = -3.925831985734635e-14,
                        q4 = 2.135494301985906e-19, q5 = -7.227873495986066e-25, q6 = 1.6678863124226153e-30,
                        q7 = -2.7628686762104072e-36;
inline double sin_degrees(double r) {
    const double t = r * r;
    return r / 64.0 + r * (p0 + t * (p1 + t * (p2 + t * (p3 + t * (p4 + t * (p5 + t * p6))))));
}
inline double cos_degrees(double r) {
    const double t = r * r;
    return 1.0 + t * (q1 + t * (q2 + t * (q3 + t * (q4 + t * (q5 + t * (q6 + t * q7))))));
}
// Degrees.
template <bool cosine>
double sin_cos_degrees(double x);

template <bool cosine>
[[gnu::cold, gnu::noinline]] double refuse_degrees(double x) {
    return report::settle_direct(
        x, [](double x) { return !units::degrees_refused(x); }, sin_cos_degrees<cosine>,
        report::fail(Error::sin_cos_degree_r8, _NaN_D, kSubstitute));
}

template <bool cosine>
double sin_cos_degrees(double x) {
    if (units::degrees_refused(x)) return refuse_degrees<cosine>(x);
    const Reduced rd = units::reduce_degrees(x);
    return units::by_quadrant(rd.k + (cosine ? 1 : 0), sin_degrees(rd.r), cos_degrees(rd.r));
}

// Quadrants.  An infinity gives the quiet NaN, a NaN itself.
[[gnu::cold, gnu::noinline]] double not_finite(double u) { return u != u ? u + u : _NaN_D; }

template <bool cosine>
double sin_cos_quadrants(double u) {
    const double a = trig::magnitude(u);
    if (!(a < HUGE_VAL)) return not_finite(u);
    const Reduced rd = units::reduce_quadrants(a);
    const double v = units::by_quadrant(rd.k + (cosine ? 1 : 0), sin_quadrants(rd.r), cos_quadrants(rd.r));
    if constexpr (cosine) return v;
    return trig::flip_by(v, trig::sign_of(u));
}

// The halves of g_dscnq when the argument is refused: each reports 203.
template <bool cosine>
[[gnu::cold, gnu::noinline]] double refuse_pair_half(double u) {
    return report::settle_direct(
        u, [](double u) { return trig::magnitude(u) < HUGE_VAL; }, sin_cos_quadrants<cosine>,
        report::fail(Error::sin_cos_refused_r8, _NaN_D, kSubstitute));
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" MIVOR_DISPATCHED double g_dsind(const double* arg) { return sin_cos_degrees<false>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dcosd(const double* arg) { return sin_cos_degrees<true>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dsinq(const double* arg) { return sin_cos_quadrants<false>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dcosq(const double* arg) { return sin_cos_quadrants<true>(*arg); }

// (sin, cos) of u pi/2: one reduction, both series, the quadrant's choice
// of each; the same bits as g_dsinq and g_dcosq for every finite u.
extern "C" MIVOR_DISPATCHED mivor_complex8* g_dscnq(mivor_complex8* result, const double* arg) {
    const double u = *arg;
    const double a = trig::magnitude(u);
    if (!(a < HUGE_VAL)) {
        const double s = refuse_pair_half<false>(u);
        const double c = refuse_pair_half<true>(u);
        result->re = s;
        result->im = c;
        return result;
    }
    const units::Reduced rd = units::reduce_quadrants(a);
    const double s = sin_quadrants(rd.r), c = cos_quadrants(rd.r);
    result->re = trig::flip_by(units::by_quadrant(rd.k, s, c), trig::sign_of(u));
    result->im = units::by_quadrant(rd.k + 1, s, c);
    return result;
}
