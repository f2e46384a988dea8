// The common part of the real powers x**y, 2**y and 10**y of REAL(4) and
// REAL(8): the magnitude e^(y log x) from the double-double kernels, and
// the one pass that decides every special case and names the failures.
//
// Special cases of x**y, tested in this order (each pass tests them anew,
// so a corrected operand can land in any of them):
//   y = 0, or x = 1            1 (NaN**0 and 1**NaN included)
//   x or y NaN                 a quiet NaN
//   x = +-0                    y > 0: +0 (the sign of a zero base is not
//                              kept, as in the integer powers); y < 0:
//                              zero to a negative power (266 / 262), the
//                              report describing the exponent only
//   x < 0, y finite and not    negative base (267 / 263), both operands
//   integral                   described; IEEE results: NaN, otherwise the
//                              power goes on with |x|
//   x < 0 otherwise            |x|**y, negated for an odd integral y
//   |x|**y infinite            overflow (1417 / 1416), both described; the
//                              fallback is +Inf or the finite substitute
//                              whatever the sign of the power, as the
//                              run-time's fallback table has it
// Whether y is integral is asked of the intrinsic run-time's truncation
// (f_dint, f_aint), only for a negative base.  Infinite exponents need no
// such answer: |x|**+-Inf is 0, 1 or +Inf.  Underflow is not reported.
// REAL(4) operands are widened and the double result rounded once.
#pragma once

#include <cmath>
#include <cstdint>

#include "elementary/exp_log_dd.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivorfsse2.h"

namespace mivor::power {

using elementary::DD;

// e^(y log x) from log x = hi + lo (elementary::log_dd: to 2^-68.5
// relative, |lo| <= 2^-22 |hi|), for x**y alone: the general
// elementary::exp_dd wants the exponent as a double-double first, and
// forming y log x that way and then reducing it puts a product, a
// renormalising sum and a second product one after another.  Here every
// piece hangs off log x directly, so that the reduction and the polynomial
// start as early as the operands allow:
//   k = round((y 256/ln2) hi), from the high part alone;
//   E = yhi lhi + (ylo lhi + y (hi - lhi)) + y lo, with yhi, lhi the upper
//       halves (elementary::upper): yhi lhi and hi - lhi are exact;
//   r = (yhi lhi - k Ln2Nhi) + ((ylo lhi + y (hi - lhi) - k Ln2Nlo) + y lo).
// k Ln2Nhi is exact (34 by 19 bits) and so is the first difference: k is
// within 1/2 + 2^-24 |k| of yhi lhi / Ln2Nhi, so for |k| >= 2 the two are
// within a factor two of each other, and for k = +-1 the difference, near
// ln2/512, keeps the 2^-62 grid of yhi lhi.  The small terms sum to
// 2^-24.9 |E| with errors below 2^-74.6 |E|; the ln2/256 split errs by
// 2^-97 |k|.  Leaving y lo out of k puts r within ln2/512 + 2^-12.4
// (|E| <= 746), where the exponential's polynomial (fitted to ln2/512 +
// 2^-14) still errs below 2^-68.5 (the minimax error grows to there);
// r itself is rounded once (2^-62.4 relative to the result).
//
// Error of x**y before the last rounding: the logarithm 2^-68.5 |E|
// relative (0.0161 ulp at |E| = 745, 2^53 being the largest ratio of a
// result to its ulp), the pieces of E 2^-74.6 |E| (0.0003 ulp), the
// rounding of r 2^-62.4 relative (0.0015 ulp), the polynomial 2^-68.5,
// the table 2^-106, and the three roundings of the tail t r + tlo + t q,
// each at most 2^-9 ulp (the tail is below 2^-7.4 t): 0.5 + 0.024 ulp at
// |E| = 745 by this count, which adds worst cases that do not meet, and
// 0.508 ulp for |E| <= 1.  Results below 2^-1022 are rounded once onto
// their own grid (exp_far).
struct Reduced {
    std::int32_t k;  // e^E = 2^(k >> 8) 2^((k & 255)/256) e^r
    double r;
};

// v = (y 256/ln2) hi, which k rounds.
inline double scaled_exponent(DD l, double y) { return (y * elementary::exp_log_dd_data::InvLn2N) * l.hi; }

// For |v| < 2^31: k from the low word of the shifted sum (32-bit
// arithmetic, which the i386 build does in one register).
inline Reduced reduce_product(DD l, double y, double v) {
    namespace t = elementary::exp_log_dd_data;
    using elementary::kExpShift;
    const double shifted = v + kExpShift;
    const auto k = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits_of(shifted)));
    const double kd = shifted - kExpShift;
    const double yhi = elementary::upper(y), ylo = y - yhi;
    const double lhi = elementary::upper(l.hi);
    const double mid = ylo * lhi + y * (l.hi - lhi);
    return {k, (yhi * lhi - kd * t::Ln2Nhi) + ((mid - kd * t::Ln2Nlo) + y * l.lo)};
}

// The v for which exp_scaled applies: k >> 8 = m in [-866, 1022].  The
// scale goes onto the table entry before the sum, which takes the last
// multiplication off the end of the chain; for the result to be the one
// that scaling at the end would give (no product below 2^-1022), 2^m
// times the table's low part, 2^-60 or more of it, must be normal:
// m >= -866 leaves room.  NaN fails the test.
inline bool scaled_range(double v) { return v > -866.0 * 256 && v < 1022.0 * 256; }

// e^r - 1 - r (|r| <= ln2/512 + 2^-12.4).
inline double exp_poly(double r) {
    namespace t = elementary::exp_log_dd_data;
    const double r2 = r * r;
    return r2 * (t::Q0 + t::Q1 * r) + (r2 * r2) * (t::Q2 + t::Q3 * r);
}

// 2^m T (1 + r + q) for k >> 8 = m in the scaled range: T + Tlo the table's
// 2^((k & 255)/256); the tail T r + Tlo + T q is formed from the product
// T r, which does not wait for the polynomial.  A result of at most
// 2^1023 (1 + 2^-8), normal.
inline double exp_scaled(Reduced e) {
    const double scale = double_from_bits(static_cast<std::uint64_t>((e.k >> 8) + 1023) << 52);
    const elementary::Split& c = elementary::exp_e[e.k & 255];
    const double t = scale * c.hi, tlo = scale * c.lo;
    return t + ((tlo + t * e.r) + t * exp_poly(e.r));
}

// The same outside the scaled range: +Inf beyond the largest double, a
// single rounding onto the subnormal grid below 2^-1022, +0 below half the
// least subnormal.
[[gnu::cold, gnu::noinline]] inline double exp_far(Reduced e) {
    const elementary::Split& c = elementary::exp_e[e.k & 255];
    return elementary::scale_finish(e.k >> 8, c.hi, (c.lo + c.hi * e.r) + c.hi * exp_poly(e.r));
}

// e^(y log x) for l = log x and any finite y with y l.hi not NaN.
inline double exp_product(DD l, double y) {
    // Beyond these |y log x| (E > 709.8 or E < -746) the result is +Inf or
    // 0 whatever the rest, and k would not fit.
    const double v = scaled_exponent(l, y);
    if (v > 262160.0) return _Inf_D;
    if (v < -275530.0) return 0.0;
    const Reduced e = reduce_product(l, y, v);
    return scaled_range(v) ? exp_scaled(e) : exp_far(e);
}

// e^(ehi + elo) for any double-double exponent: +Inf, 0 and subnormal
// results included (2**y, 10**y).
inline double exp_any(DD e) {
    if (e.hi > 709.8) return _Inf_D;  // also +Inf
    if (e.hi < -746.0) return 0.0;    // below 2^-1076
    return elementary::exp_finish(elementary::exp_dd(e.hi, e.lo));
}

// x**y for x in (0, +Inf], x != 1, y neither zero nor NaN.
inline double magnitude(double x, double y) {
    if (std::isinf(y)) return (x > 1.0) == (y > 0.0) ? _Inf_D : 0.0;
    if (std::isinf(x)) return y > 0.0 ? _Inf_D : 0.0;
    return exp_product(elementary::log_dd(x), y);
}

// What the two kinds differ in.
template <class T> struct Kind;
template <> struct Kind<double> {
    static constexpr Error zero_to_negative = Error::zero_to_negative_r8_r8;
    static constexpr Error negative_base = Error::negative_base_r8;
    static constexpr Error overflow = Error::power_overflow_r8;
    static constexpr double inf = _Inf_D, huge = kHuge_D, nan = _NaN_D;
    static constexpr double kOddLimit = 0x1p53;  // integral and at least this: even
    static double truncate(double y) { return f_dint(&y); }
};
template <> struct Kind<float> {
    static constexpr Error zero_to_negative = Error::zero_to_negative_r4_r4;
    static constexpr Error negative_base = Error::negative_base_r4;
    static constexpr Error overflow = Error::power_overflow_r4;
    static constexpr float inf = _Inf_F, huge = kHuge_F, nan = _NaN_F;
    static constexpr float kOddLimit = 0x1p24f;
    static float truncate(float y) { return f_aint(&y); }
};

template <class T>
report::Step<T, T, T> power_pass(T x, T y) {
    using K = Kind<T>;
    if (y == T(0) || x == T(1)) return T(1);
    if (x != x || y != y) return x + y;
    if (x == T(0)) {
        if (y > T(0)) return T(0);
        return report::fail(K::zero_to_negative, K::inf, K::huge).described(report::Describe::second);
    }
    bool negate = false;
    if (x < T(0)) {
        if (!std::isinf(y)) {
            if (K::truncate(y) != y) return report::fail_then_restart(K::negative_base, K::nan, -x, y);
            negate = std::fabs(y) < K::kOddLimit && (static_cast<std::int64_t>(y) & 1) != 0;
        }
        x = -x;
    }
    const T m = x == T(1) ? T(1) : static_cast<T>(magnitude(x, y));
    if (std::isinf(m)) return report::fail(K::overflow, K::inf, K::huge);
    return negate ? -m : m;
}

// The whole operation through the report runner: the slow path of every
// real power, and the pass a retry starts again from.
template <class T>
[[gnu::cold, gnu::noinline]] T settle_power(T x, T y) {
    return report::settle<report::Form::full>(power_pass<T>, x, y);
}

}  // namespace mivor::power
