// g_dsinh, g_dcosh, g_dtanh, _jwe_guhy and the pairs g_dsch, g_dschq:
// REAL(8) hyperbolic functions.
//
// Range plan of sinh and cosh on a = |x| (the comparisons are false for a
// NaN, which therefore reports):
//   a < 1          Taylor series, fitted: cosh = 1 + t (p1 + ... + t p7),
//                  sinh = x + x t (s0 + ... + t s6), t = x^2;
//   a < 18.4       E = e^a/2 (_jwe_guhy), cosh = E + 0.25/E, sinh = E - 0.25/E;
//   a < 709.782    E alone (e^-a/2 is at most 2^-53.08 of it);
//   a < 710.475    E = g_dexp(a/2), (0.5 E) E: e^a itself would overflow;
//   otherwise      error 224, direct form: +Inf (sinh: the sign of x) or
//                  +-0x7FEFFFFFFFFFFFB6 with IEEE results off.
// tanh: x + x t P(t)/Q(t) below 1, +-1 from 18.369 on, else
// (1 - e)/(1 + e) with e = g_dexp(-2a); no report, a NaN gives a NaN.
//
// Where it runs: the series below 1 and the quotients of tanh on the x87
// unit, in extended precision (64-bit precision set for the call, x87.h),
// rounded once to double.  E = e^a/2 from 1 on is a double and a tail
// computed in SSE2 (exp_half): the x87 unit is three to five times slower
// on this machine kind for the same steps, and E, carried to 2^-62, then
// adds nothing to the error; E +- 0.25/E is summed in double, the tail and
// 0.25/E first, and rounds once.
//
// _jwe_guhy: e^a/2 for a >= 1, left in extended precision: g_dexp's
// reduction (k = round(256 a/ln 2), r = a - k ln2/256, |r| <= 2^-9.4) and
// table, with r as a double-double, e^r - 1 by its Taylor polynomial and
// the product by the table value exact (Dekker): within 2^-63 of e^a/2
// (exp_half).  Rounded to double that is within 0.5 + 2^-10 ulp: the same
// bits as g_dexp(a)/2 wherever that is correctly rounded, except within
// 2^-10 ulp of a half-way point, and correctly rounded where g_dexp is not
// (tests/elementary/guhy_test.cpp).  sinh and cosh use the same kernel with
// the product rounded (E within 2^-62).
//
// Accuracy of the plan (e = 2^-53; measured with mivor accuracy --count
// 1000000, figures in the README):
//   series        fits within 3.2e-17 (cosh) and 7.3e-18 (sinh) relative,
//                 evaluated in extended: 0.5 + 0.29 ulp at most (0.70);
//   middle range  E to 2^-62, f = 0.25/E rounded (f < 0.14 E: 0.07 ulp),
//                 El + f rounded (0.07 ulp), the final sum once; sinh
//                 cancels by 1.16 at most (a = 1): within 0.5 + 0.17 ulp
//                 (0.66);
//   E alone       the dropped e^-a/2 is 2^-53.08 of the result at a = 18.4,
//                 up to 0.94 ulp, on top of the final rounding: the design
//                 reaches about 1.45 ulp just above 18.4 (1.17 measured),
//                 0.5 from about 19.1 on;
//   (0.5 E) E     E = g_dexp(a/2) within 0.52 ulp, squared: up to 2 ulp in
//                 the last 0.7 before overflow (1.82 measured);
//   tanh          the fitted quotient within 2.1e-18; in the middle
//                 e = g_dexp(-2a) within 0.52 ulp of e, which moves
//                 (1 - e)/(1 + e) by at most 0.3 ulp; but from 18.369
//                 (53 ln2 / 2) on the result is 1 while tanh is still
//                 1 - 2^-52 there: up to 2 ulp (2.00 measured), falling to
//                 0.5 at 19.06.
// These are the library's ranges, limits and formulas and are kept.
//
// g_dsch computes both halves along the same plan, so its bits are those of
// g_dsinh and g_dcosh, with one exponential and one report 224 for both.
// g_dschq is the pair of x pi/2 for the quadrant forms of the complex
// functions: x pi/2 is carried as a double-double (Dekker's product, so the
// argument adds no error of its own), the series take it in extended
// precision, and from 1 on the pair is E +- 0.25/E with E = e^(x pi/2)/2
// from exp_half all the way to the overflow limit (710.475 for x pi/2, the
// scale applied in two steps): within 0.5 + 0.25 ulp everywhere (0.75
// measured, at subnormal sinh results).  It reports 224 once, like g_dsch.
#include <cmath>

#include "elementary/exp_kernel.h"
#include "elementary/hyperbolic.h"
#include "elementary/hyperbolic_kernel.h"
#include "elementary/trig_reduce.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "frame/x87.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

using x87::ExtendedPrecision;
using namespace hyperbolic;

inline constexpr double emax = 0x1.62e4189374bc7p+9;  // 709.782, 0x40862E4189374BC7
inline constexpr double xmax = 0x1.633cccccccccdp+9;  // 710.475, 0x408633CCCCCCCCCD
// The splits at 1 and about 18.4 are on the high word of |x| (below
// 0x3FF00000, below 0x40326666); compared as the doubles with those high
// words and a zero low word, the same test without a store-forwarding
// stall on i386.
inline constexpr double kMiddle = 0x1.2666600000000p+4;  // 18.39999771118164, high word 0x40326666
inline constexpr double kOne = 1.0;
// g_dtanh.
inline constexpr double tp1 = -257446.81508084596, tp2 = -18158.832069902594, tp3 = -287.60231921162375,
                        tp4 = -0.9778922952118113;
inline constexpr double tq0 = 772340.4452425379, tq1 = 363412.67430672294, tq2 = 21182.28078391318,
                        tq3 = 309.67502337003697;
inline constexpr double txmax = 0x1.25e76c8b43958p+4;  // 18.369, 0x40325E76C8B43958

struct Pair {
    double sinh, cosh;
};

// sinh and/or cosh of x along the plan, for a = |x| < xmax (the caller
// tests); the half not wanted is left 0.
template <bool want_sinh, bool want_cosh>
inline Pair sinh_cosh(double x) {
    const double a = trig::magnitude(x);
    double sh = 0.0, ch = 0.0;
    if (a < kOne) {
        ExtendedPrecision scope;
        const long double xl = scope.pin(x);
        if (want_sinh) sh = scope.to_double(sinh_series(xl));
        if (want_cosh) ch = scope.to_double(cosh_series(xl));
        return {sh, ch};
    }
    if (a < kMiddle) {
        // E = e^a/2 = eh + el, both scaled exactly (a < 18.4), f = 0.25/E
        // rounded (below 0.14 E, so its 2^-53 is below 0.07 ulp of the
        // result), one final rounding: within 0.5 + 0.1 ulp, the difference
        // of sinh cancelling by 1.16 at most (at a = 1).
        const HalfExp E = exp_half<false>(a, 0.0);
        const double scale = power_of_two(E.e);
        const double eh = E.hi * scale, el = E.lo * scale;
        const double f = 0.25 / (eh + el);
        if (want_sinh) sh = eh + (el - f);
        if (want_cosh) ch = eh + (el + f);
    } else if (a < emax) {
        const HalfExp E = exp_half<false>(a, 0.0);
        sh = ch = (E.hi + E.lo) * power_of_two(E.e);  // m - 1 <= 1023: exact
    } else {
        const double half = a * 0.5;
        const double E = exp_kernel::fast(half);  // g_dexp(a/2): a/2 < 355.3, its fast path
        sh = ch = (0.5 * E) * E;
    }
    return {std::signbit(x) ? -sh : sh, ch};
}

// The same for (x pi/2) = yh + yl, x finite (see the top of the file).
inline Pair sinh_cosh_quadrants(double x, bool& overflow) {
    const double a = trig::magnitude(x);
    double yh, yl;
    trig::two_product(a, 0x1.921fb54442d18p+0, yh, yl);
    yl += a * 0x1.1a62633145c07p-54;
    overflow = !(yh < xmax);
    if (overflow) return {0.0, 0.0};
    if (a < 0x1p-500) {  // sinh y = y, cosh y = 1; scaled so that yl does not underflow
        const double as = a * 0x1p+600;
        trig::two_product(as, 0x1.921fb54442d18p+0, yh, yl);
        const double sh = (yh + (yl + as * 0x1.1a62633145c07p-54)) * 0x1p-600;
        return {std::signbit(x) ? -sh : sh, 1.0};
    }
    double sh, ch;
    if (yh < 1.0) {
        ExtendedPrecision scope;
        const long double y = scope.pin(yh) + yl;
        sh = scope.to_double(sinh_series(y));
        ch = scope.to_double(cosh_series(y));
    } else {
        // As in the middle range of sinh_cosh, up to the overflow limit.
        // Only the last 0.7 before it has the scale 2^1024, applied in two
        // halves; 0.25/E is below 2^-2000 of E there.
        const HalfExp E = exp_half<false>(yh, yl);
        if (E.e <= 1023) {
            const double scale = power_of_two(E.e);
            const double eh = E.hi * scale, el = E.lo * scale;
            const double f = 0.25 / (eh + el);
            sh = eh + (el - f);
            ch = eh + (el + f);
        } else {
            sh = ch = ((E.hi + E.lo) * 0x1p+512) * 0x1p+512;
        }
    }
    return {std::signbit(x) ? -sh : sh, ch};
}

template <bool cosine>
double sinh_or_cosh(double x);

// Overflow, infinite or NaN argument: report 224.
template <bool cosine>
[[gnu::cold, gnu::noinline]] double overflows(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (trig::magnitude(x) < xmax) return sinh_or_cosh<cosine>(x);  // corrected
            if (cosine || !std::signbit(x)) return report::fail(Error::hyperbolic_overflow_r8, _Inf_D, kHuge_D);
            return report::fail(Error::hyperbolic_overflow_r8, _MInf_D, -kHuge_D);
        },
        x);
}

template <bool cosine>
double sinh_or_cosh(double x) {
    if (!(trig::magnitude(x) < xmax)) return overflows<cosine>(x);
    const Pair p = sinh_cosh<!cosine, cosine>(x);
    return cosine ? p.cosh : p.sinh;
}

// The pairs' overflow: one report for both halves.
template <bool quadrants>
mivor_complex8 pair_of(double x);

template <bool quadrants>
[[gnu::cold, gnu::noinline]] mivor_complex8 pair_overflows(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<mivor_complex8, double> {
            bool overflow = !(trig::magnitude(x) < xmax);
            if constexpr (quadrants) {
                if (trig::magnitude(x) < HUGE_VAL) sinh_cosh_quadrants(x, overflow);
            }
            if (!overflow) return pair_of<quadrants>(x);  // corrected
            const bool negative = std::signbit(x);
            return report::fail(Error::hyperbolic_overflow_r8,
                                mivor_complex8{negative ? _MInf_D : _Inf_D, _Inf_D},
                                mivor_complex8{negative ? -kHuge_D : kHuge_D, kHuge_D});
        },
        x);
}

template <bool quadrants>
mivor_complex8 pair_of(double x) {
    if constexpr (quadrants) {
        bool overflow = true;
        if (trig::magnitude(x) < HUGE_VAL) {
            const Pair p = sinh_cosh_quadrants(x, overflow);
            if (!overflow) return {p.sinh, p.cosh};
        }
    } else {
        if (trig::magnitude(x) < xmax) {
            const Pair p = sinh_cosh<true, true>(x);
            return {p.sinh, p.cosh};
        }
    }
    return pair_overflows<quadrants>(x);
}

double tanh_of(double x) {
    const double a = trig::magnitude(x);
    if (a >= txmax) return std::signbit(x) ? -1.0 : 1.0;
    ExtendedPrecision scope;
    if (a < 1.0) {  // on |x|, the sign put back after: tanh(-0) = -0
        const long double al = scope.pin(a);
        const long double t = al * al;
        const long double p = ((tp4 * t + tp3) * t + tp2) * t + tp1;
        const long double q = (((t + tq3) * t + tq2) * t + tq1) * t + tq0;
        const double r = scope.to_double(al + (al * t) * (p / q));
        return std::signbit(x) ? -r : r;
    }
    const double m2a = -2.0 * a;
    const long double e = scope.pin(exp_kernel::fast(m2a));  // g_dexp(-2a): -2a > -36.8, its fast path
    const double r = scope.to_double((1.0L - e) / (1.0L + e));
    return std::signbit(x) ? -r : r;
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" long double _jwe_guhy(const double* arg) {
    const HalfExp E = exp_half<true>(*arg, 0.0);
    ExtendedPrecision scope;
    // (hi + lo) rounded to 64 bits, then 2^e in two exact steps (e <= 1024).
    const long double v = scope.pin(E.hi) + E.lo;
    return scope.pin((v * power_of_two(E.e / 2)) * power_of_two(E.e - E.e / 2));
}

extern "C" MIVOR_DISPATCHED double g_dsinh(const double* arg) { return sinh_or_cosh<false>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dcosh(const double* arg) { return sinh_or_cosh<true>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dtanh(const double* arg) { return tanh_of(*arg); }

extern "C" MIVOR_DISPATCHED mivor_complex8* g_dsch(mivor_complex8* result, const double* arg) {
    *result = pair_of<false>(*arg);
    return result;
}
extern "C" MIVOR_DISPATCHED mivor_complex8* g_dschq(mivor_complex8* result, const double* arg) {
    *result = pair_of<true>(*arg);
    return result;
}
