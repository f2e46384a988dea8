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
#include "elementary/tan_data.h"
#include "elementary/tan_kernel.h"
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
    if (odd != cotangent && r.hi == 0.0) return pole<cotangent>(x);  // cot(+-0): a = 0
    double v = tan_kernel::tan_or_cot_reduced(r.hi, r.lo, odd != cotangent);
    if (odd) v = -v;
    return trig::flip_by(v, trig::sign_of(x));
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" MIVOR_DISPATCHED double g_dtan(const double* arg) { return tan_or_cot<false>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dcotan(const double* arg) { return tan_or_cot<true>(*arg); }
