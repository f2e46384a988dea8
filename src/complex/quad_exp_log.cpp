// g_cqexp, g_cqlog: the exponential and the principal logarithm of a
// COMPLEX(16) value.
//
// exp z = e^x (cos y + i sin y): e^x from one exponential in the working
// format (exp_s176, 2^-126.9 relative), cos y and sin y from one exact
// reduction (2^-124.3 with the reduction), each product rounded (2^-128):
// within 2^-123.9 relative before the final rounding of each part, so at
// most 0.5 + 2^-10.9 units of the last place.  exp(x + i0) is g_qexp's
// value (+ i0 with y's sign) exactly.
//
// log z = ln|z| + i atan2(y, x).  ln|z| = ln(x^2 + y^2)/2 with the sum of
// squares exact in 384 bits (quad_complex.h): near |z| = 1 the distance d
// = x^2 + y^2 - 1 is exact, and ln(1 + d) = d + d^2 q(d) is summed from its
// exact terms and rounded once, so the real part keeps every digit however
// close |z| is to 1 (x = 0.6, y = 0.8 rounded: about 2^-113 there).
// Elsewhere the logarithm of the sum is within 2^-126.4 relative.  The
// angle comes from the working-format atan2 (2^-124.8).  Both parts at most
// 0.5 + 2^-11 units of the last place.
//
// Reports (direct form; the record describes REAL(16) parts, type 11):
//   236  exp: y infinite or a NaN, which the real sine and cosine refuse
//        (as g_qsin, g_qcos); the imaginary part is described.  Fallback:
//        with IEEE results the C99 value (x finite or a NaN: NaN + iNaN;
//        x = -Inf: +0 + i0; x = +Inf: +Inf + iNaN), otherwise what the
//        formula gives with the real functions' substitutes, e^x sqrt(1/2)
//        in both parts (e^+Inf and an overflow give HUGE, e^-Inf 0, a NaN x
//        its NaN)
//   237  exp: a part overflows (x = +Inf with y finite included, as g_qexp
//        reports +Inf); the real part is described.  Fallback: the parts
//        with the overflowing ones +-Inf, or +-HUGE with IEEE results off
//   249  log of (+-0, +-0); both parts described (count 2).  Fallback:
//        -Inf + i atan2(y, x) (+-0 or +-pi by the signs), or -HUGE for the
//        real part with IEEE results off
// A handler that corrects a described copy changes that part and the
// whole computation starts again.  The result area may be an operand's:
// both parts are read first.
//
// Other special values (C99 Annex G): exp(-Inf + iy) = +0 cis y, exp(NaN +
// i0) = NaN + i0, exp(NaN + iy) = NaN + iNaN; log(-Inf + iy) = +Inf + i pi,
// log(+Inf + iy) = +Inf + i0, log(x + iInf) = +Inf + i pi/2, log(-Inf +
// iInf) = +Inf + i 3pi/4, log(+Inf + iInf) = +Inf + i pi/4, an infinite
// part with a NaN: +Inf + iNaN, a NaN otherwise: NaN + iNaN (the imaginary
// signs follow y).  Parts below 2^-16382 are zero, unreported.
//
// Measured against MPFR (`mivor accuracy g_cqexp g_cqlog`): see the README.
#include "complex/quad_complex.h"
#include "frame/report.h"
#include "mivor/mivor.h"
#include "quadfunc/atan.h"
#include "quadfunc/kernels.h"
#include "quadfunc/sincos_data.h"

using namespace mivor;
using namespace mivor::quadfunc;
using namespace mivor::complex::quad16;

namespace {

using Pass = report::Step<Complex16, Real16, Real16>;

// e^x for finite x, |x| < 2^15.
Wide exp_wide(const Wide& x) { return is_zero(x) ? kWideOne : exp_s176(to_s176(x)); }

// The real part when the imaginary one is refused: e^x sqrt(1/2), with
// e^x as g_qexp gives it when IEEE results are off.
Real16 refused_substitute(const Real16& x) {
    if (is_nan(x)) return quieted(x);
    if (is_inf(x)) return sign_of(x) ? kZeroQ : kHuge_Q;
    const Wide w = from_real16(x);
    if (w.e > 15) return w.neg ? kZeroQ : kHuge_Q;
    const Part p = part(mul(exp_wide(w), from_real16(sincos_data::kSqrtHalfQ)));
    return p.overflow ? kHuge_Q : p.value;
}

report::Failure<Complex16> overflow(const Complex16& ieee) {
    return report::fail(Error::complex_exp_overflow_c16, ieee, huge_for_infinite(ieee))
        .described(report::Describe::first);
}

Pass exp_pass(Real16 x, Real16 y) {
    if (!finite(y)) {
        Complex16 ieee{nan_of(x, y), nan_of(x, y)};
        if (is_inf(x)) ieee = sign_of(x) ? Complex16{kZeroQ, kZeroQ} : Complex16{_Inf_Q, nan_of(y, x)};
        const Real16 s = refused_substitute(x);
        return report::fail(Error::complex_exp_refused_c16, ieee, Complex16{s, s})
            .described(report::Describe::second);
    }
    if (is_nan(x)) return Complex16{quieted(x), is_zero(y) ? y : quieted(x)};
    const SinCos sc = sin_cos(from_real16(y), false);
    const Wide w = is_inf(x) ? Wide{{kTop64, 0}, 1 << 20, x.w[3] >> 31} : from_real16(x);
    if (w.e > 15) {
        // e^x is below 2^-47000 or above 2^47000: zeros, or an overflow
        // of every part that is not an exact zero (sin 0).
        const Real16 re = w.neg ? zero_q(sc.cos.neg) : inf_q(sc.cos.neg);
        const Real16 im = w.neg || is_zero(sc.sin) ? zero_q(sc.sin.neg) : inf_q(sc.sin.neg);
        if (w.neg) return Complex16{re, im};
        return overflow({re, im});
    }
    Part re, im;
    if (is_zero(sc.sin)) {
        // y = +-0: e^x itself, rounded as g_qexp rounds it.
        re = w.e <= -20 ? Part{exp_near_zero(w).value, false} : part(exp_wide(w));
        im = Part{y, false};
    } else {
        const Wide e = exp_wide(w);
        re = part(mul(e, sc.cos));
        im = part(mul(e, sc.sin));
    }
    if (re.overflow || im.overflow) return overflow({re.value, im.value});
    return Complex16{re.value, im.value};
}

Pass log_pass(Real16 x, Real16 y) {
    if (is_zero(x) && is_zero(y)) {
        const Real16 angle = special_angle(x, y);
        return report::fail(Error::complex_log_c16, Complex16{_MInf_Q, angle}, Complex16{kMHugeQ, angle});
    }
    if (is_inf(x) || is_inf(y)) {
        if (is_nan(x) || is_nan(y)) return Complex16{_Inf_Q, nan_of(x, y)};
        return Complex16{_Inf_Q, special_angle(x, y)};
    }
    if (is_nan(x) || is_nan(y)) return Complex16{nan_of(x, y), nan_of(x, y)};
    const Wide a = from_real16(x), b = from_real16(y);
    return Complex16{log_modulus(a, b).rounded().value, round_to_real16(atan2_wide(b, a)).value};
}

}  // namespace

extern "C" Complex16* g_cqexp(Complex16* result, const Complex16* z) {
    *result = report::settle<report::Form::direct>(exp_pass, z->re, z->im);
    return result;
}

extern "C" Complex16* g_cqlog(Complex16* result, const Complex16* z) {
    *result = report::settle<report::Form::direct>(log_pass, z->re, z->im);
    return result;
}
