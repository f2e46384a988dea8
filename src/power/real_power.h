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

// y log x as ehi + elo: the upper halves of y and of log x's high part
// multiply exactly, and elo carries the rest to 2^-78 of y log x;
// |elo| <= 2^-25 |ehi| + |y lo| <= 2^-21.9 |ehi|, within what the
// exponential's reduction takes (elementary::exp_dd).
inline DD exponent_of_log(DD l, double y) {
    const double yhi = elementary::upper(y), ylo = y - yhi;
    const double lhi = elementary::upper(l.hi), llo = (l.hi - lhi) + l.lo;
    return {yhi * lhi, ylo * lhi + y * llo};
}
inline DD exponent_of(double x, double y) { return exponent_of_log(elementary::log_dd(x), y); }

// The exponents e^E of the hot paths: 2^m and the result normal
// (elementary::exp_normal).
inline constexpr double kLowestNormal = -706.0;
inline constexpr double kHighestNormal = 706.0;
inline bool normal_range(double e) { return e > kLowestNormal && e < kHighestNormal; }

// e^(ehi + elo) for any double-double exponent: +Inf, 0 and subnormal
// results included.
inline double exp_any(DD e) {
    if (e.hi > 709.8) return _Inf_D;  // also +Inf
    if (e.hi < -746.0) return 0.0;    // below 2^-1076
    return elementary::exp_finish(elementary::exp_dd(e.hi, e.lo));
}

// x**y for x in (0, +Inf], x != 1, y neither zero nor NaN.
inline double magnitude(double x, double y) {
    if (std::isinf(y)) return (x > 1.0) == (y > 0.0) ? _Inf_D : 0.0;
    if (std::isinf(x)) return y > 0.0 ? _Inf_D : 0.0;
    return exp_any(exponent_of(x, y));
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
