// g_cqsin, g_cqcos, g_cqsinq, g_cqcosq: sine and cosine of a COMPLEX(16)
// value, in radians and in quadrants (right angles: sinq z = sin(z pi/2)).
//
//   sin z = sin x cosh y + i cos x sinh y
//   cos z = cos x cosh y - i sin x sinh y
//
// sin x and cos x from one exact reduction of x (in radians, or exactly in
// quadrants, so that integers give exact zeros and ones), sinh y and cosh y
// from one exponential (|y| >= 1/2: E = e^|y|, (E +- 1/E)/2; below, the
// series kernels), each product rounded once (quad_complex.h).  Bounds
// before the final rounding: the circular factors 2^-124.3 relative
// (reduction included), the hyperbolic ones 2^-125.1, the product 2^-128:
// 2^-123.6, so at most 0.5 + 2^-10.6 units of the last place per part.
// In quadrants y pi/2 is formed with a 192-bit pi/2 in S.176 (2^-170
// absolute) before the exponential, so large y lose nothing to it.
// With y = +-0 the real part is g_qsin's (g_qcos's, g_qsinq's, g_qcosq's)
// value exactly and the imaginary part a signed zero.
//
// Reports (direct form; the record describes one REAL(16) part, type 11):
//   209 (sin, cos), 1411 (sinq, cosq): x infinite or a NaN, which the real
//        sine and cosine refuse; x is described.  Fallback: with IEEE
//        results the C99 value (sin: NaN + i(0, +-Inf or NaN as y is zero,
//        infinite or else); cos: (+Inf if y is infinite, else NaN) + i(0 if
//        y is zero, else NaN)), otherwise the formula with the real
//        functions' substitute sqrt(1/2) for both circular factors:
//        sqrt(1/2) cosh y, +-sqrt(1/2) sinh y, infinite values as +-HUGE
//   210 (sin, cos), 1412 (sinq, cosq): x finite and a part overflows, y =
//        +-Inf included (as g_qsinh, g_qcosh report their overflow); y is
//        described.  Fallback: the parts with the overflowing ones +-Inf,
//        or +-HUGE with IEEE results off
// A handler that corrects the described copy changes that part and the
// whole computation starts again.  The result area may be an operand's:
// both parts are read first.
//
// Unreported special values (C99 Annex G): a NaN y with finite x gives NaN
// parts but where the circular factor is an exact zero (x = +-0, and even
// integers x for sinq, odd ones for cosq), which keeps its signed zero: an
// exact zero factor times an infinite or NaN hyperbolic factor stays zero,
// so that sin(+-0 + iInf) = +-0 + iInf.  Parts below 2^-16382 are zero.
//
// Measured against MPFR (`mivor accuracy g_cqsin g_cqcos g_cqsinq
// g_cqcosq`): see the README.
#include "complex/quad_complex.h"
#include "frame/report.h"
#include "mivor/mivor.h"
#include "quadfunc/sincos_data.h"

using namespace mivor;
using namespace mivor::quadfunc;
using namespace mivor::complex::quad16;

namespace {

using Pass = report::Step<Complex16, Real16, Real16>;

enum class Func { sin, cos };

// A circular factor times a hyperbolic factor that is infinite (or beyond
// every finite product) or a NaN: an exact zero stays a signed zero.
Real16 times_special(const Wide& circular, std::uint32_t hyper_neg, const Real16& nan, bool is_nan_factor) {
    const std::uint32_t neg = circular.neg ^ hyper_neg;
    if (is_zero(circular)) return zero_q(neg);
    return is_nan_factor ? nan : inf_q(neg);
}

// The fallbacks of a refused x.
template <Func fn>
Complex16 refused_ieee(const Real16& x, const Real16& y) {
    const Real16 n = nan_of(x, y);
    const Real16 zero_or_inf = is_zero(y) ? y : is_inf(y) ? y : n;  // a zero or an infinity keeps y's sign
    if constexpr (fn == Func::sin) return {n, zero_or_inf};
    else return {is_inf(y) ? _Inf_Q : n, is_zero(y) ? negated(y) : n};
}

template <Func fn>
Complex16 refused_substitute(const Real16& y, bool quadrants) {
    if (is_nan(y)) return {quieted(y), quieted(y)};
    const Wide h = from_real16(sincos_data::kSqrtHalfQ);
    if (is_inf(y)) {
        const std::uint32_t s = sign_of(y) ^ (fn == Func::cos);
        return {kHuge_Q, with_sign(kHuge_Q, s)};
    }
    const Hyperbolic hy = sinh_cosh(from_real16(y), quadrants);
    if (hy.big) {
        const std::uint32_t s = sign_of(y) ^ (fn == Func::cos);
        return {kHuge_Q, with_sign(kHuge_Q, s)};
    }
    Wide sh = mul(h, hy.sinh);
    if constexpr (fn == Func::cos) sh = negate(sh);
    const Part re = part(mul(h, hy.cosh)), im = part(sh);
    return huge_for_infinite({re.value, im.value});
}

template <Func fn, bool quadrants>
Pass sin_cos_pass(Real16 x, Real16 y) {
    // Both functions of a pair share its two numbers: the first for a
    // refused x, the second for an overflow.
    constexpr Error refused = quadrants ? Error::complex_sin_quadrant_c16 : Error::complex_sin_c16;
    constexpr Error overflowed = quadrants ? Error::complex_cos_quadrant_c16 : Error::complex_cos_c16;
    if (!finite(x)) {
        return report::fail(refused, refused_ieee<fn>(x, y), refused_substitute<fn>(y, quadrants))
            .described(report::Describe::first);
    }
    const SinCos sc = sin_cos(from_real16(x), quadrants);
    // The factor of cosh y and the factor of sinh y.
    const Wide c1 = fn == Func::sin ? sc.sin : sc.cos;
    const Wide c2 = fn == Func::sin ? sc.cos : negate(sc.sin);
    Part re, im;
    if (!finite(y)) {
        const Real16 n = quieted(y);
        re = {times_special(c1, 0, n, is_nan(y)), false};
        im = {times_special(c2, sign_of(y), n, is_nan(y)), false};
        if (is_nan(y)) return Complex16{re.value, im.value};
        re.overflow = !is_zero(c1);
        im.overflow = !is_zero(c2);
    } else if (is_zero(y)) {
        // cosh 0 = 1 exactly: the real function's value; sinh(+-0) = +-0.
        re = part(c1);
        im = {zero_q(c2.neg ^ sign_of(y)), false};
    } else {
        const Hyperbolic hy = sinh_cosh(from_real16(y), quadrants);
        if (hy.big) {
            re = {times_special(c1, 0, _NaN_Q, false), !is_zero(c1)};
            im = {times_special(c2, sign_of(y), _NaN_Q, false), !is_zero(c2)};
        } else {
            re = part(mul(c1, hy.cosh));
            im = part(mul(c2, hy.sinh));
        }
    }
    if (re.overflow || im.overflow) {
        const Complex16 ieee{re.value, im.value};
        return report::fail(overflowed, ieee, huge_for_infinite(ieee))
            .described(report::Describe::second);
    }
    return Complex16{re.value, im.value};
}

template <Func fn, bool quadrants>
Complex16* sin_cos_export(Complex16* result, const Complex16* z) {
    *result = report::settle<report::Form::direct>(sin_cos_pass<fn, quadrants>, z->re, z->im);
    return result;
}

}  // namespace

extern "C" Complex16* g_cqsin(Complex16* r, const Complex16* z) { return sin_cos_export<Func::sin, false>(r, z); }
extern "C" Complex16* g_cqcos(Complex16* r, const Complex16* z) { return sin_cos_export<Func::cos, false>(r, z); }
extern "C" Complex16* g_cqsinq(Complex16* r, const Complex16* z) { return sin_cos_export<Func::sin, true>(r, z); }
extern "C" Complex16* g_cqcosq(Complex16* r, const Complex16* z) { return sin_cos_export<Func::cos, true>(r, z); }
