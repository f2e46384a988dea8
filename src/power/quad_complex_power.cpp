// g_azxz: COMPLEX(16) raised to COMPLEX(16), z^w = exp(w log z), with no
// report (nothing in it is refused: an overflow gives infinite parts).
//
// Method.  log z = ln|z| + i atan2(y, x) in the working format, ln|z| from
// the exact sum x^2 + y^2 (quad_complex.h: 2^-126.4 relative, and exact
// terms near |z| = 1), the angle within 2^-124.8; the product p = w log z
// in the working format (each product and sum 2^-128), then e^Re p from
// one exponential and cos, sin of Im p from one reduction, as g_cqexp.
// Nothing is rounded to REAL(16) before the end.
//
// Error.  An absolute error d of Re p or Im p is a relative error d of
// the result; d is at most (|wr lr| + |wi li| + |Re p|) 2^-124.5 for the
// real part and the same with the cross products for the imaginary one, so
// the result is within 2^-123.9 + 2^-124.5 T relative, T the largest of the
// four products' magnitudes: 0.5 + 2^-9.5 units of the last place for T <=
// 2, growing with T to about 1.5 ulp at T = 2^10 and 5 ulp at T = 2^13
// (where the exponent itself, rounded to REAL(16), is known to 2^-100 only).
// A peer that rounds w log z to REAL(16) loses T 2^-113 instead.
//
// Special operands, as exp(w log z) with the C99 Annex G logarithm and
// exponential and IEEE products (0 Inf = NaN) where a part is infinite, a
// NaN or z is zero:
//   w = (+-0, +-0)            (1, 0) for every z, a NaN too
//   z = 0                     Re w > 0: (+0, +0); Re w < 0: (+Inf, NaN);
//                             Re w = 0: NaN parts
//   a NaN anywhere else        NaN parts (an imaginary zero where p's
//                              imaginary part is an exact zero)
//   |Im p| at or above 2^16384 (no finite angle reduction; every digit of
//   the angle is lost long before): NaN parts
// Parts below 2^-16382 are zero.  The result area may be an operand's:
// all four parts are read first.
//
// Measured against MPFR (`mivor accuracy g_azxz`): see the README.
#include "complex/quad_complex.h"
#include "mivor/mivor.h"
#include "quadfunc/atan.h"
#include "quadfunc/kernels.h"

using namespace mivor;
using namespace mivor::quadfunc;
using namespace mivor::complex::quad16;

namespace {

// A REAL(16)-like value in the working format with IEEE infinities and
// NaNs, for the special operands only.
struct Ext {
    Wide v;
    bool inf = false, nan = false;
};
Ext ext(const Real16& x) {
    if (is_nan(x)) return {kWideZero, false, true};
    if (is_inf(x)) return {with_sign(kWideOne, sign_of(x)), true, false};
    return {from_real16(x)};
}
Ext emul(const Ext& a, const Ext& b) {
    if (a.nan || b.nan) return {kWideZero, false, true};
    if (a.inf || b.inf) {
        if ((!a.inf && is_zero(a.v)) || (!b.inf && is_zero(b.v))) return {kWideZero, false, true};
        return {with_sign(kWideOne, a.v.neg ^ b.v.neg), true, false};
    }
    return {mul(a.v, b.v)};
}
Ext eadd(const Ext& a, const Ext& b) {
    if (a.nan || b.nan) return {kWideZero, false, true};
    if (a.inf && b.inf) return a.v.neg == b.v.neg ? a : Ext{kWideZero, false, true};
    if (a.inf) return a;
    if (b.inf) return b;
    return {add(a.v, b.v)};
}
Ext eneg(Ext a) {
    a.v = negate(a.v);
    return a;
}

// e^pr (cos pi + i sin pi) for finite working values.
Complex16 exp_finite(const Wide& pr, const Wide& pi, const Real16& nan) {
    if (pi.e > 16384) return {nan, nan};
    const SinCos sc = sin_cos(pi, false);
    if (pr.e > 15) {
        const Real16 re = pr.neg ? zero_q(sc.cos.neg) : inf_q(sc.cos.neg);
        const Real16 im = pr.neg || is_zero(sc.sin) ? zero_q(sc.sin.neg) : inf_q(sc.sin.neg);
        return {re, im};
    }
    const Wide e = is_zero(pr) ? kWideOne : exp_s176(to_s176(pr));
    return {round_to_real16(mul(e, sc.cos)).value, round_to_real16(mul(e, sc.sin)).value};
}

// C99 cexp of a product with infinite or NaN parts.
Complex16 exp_special(const Ext& pr, const Ext& pi, const Real16& nan) {
    if (pi.nan || pi.inf) {
        if (pr.inf) return pr.v.neg ? Complex16{kZeroQ, kZeroQ} : Complex16{_Inf_Q, nan};
        return {nan, nan};
    }
    if (pr.nan) return {nan, is_zero(pi.v) ? zero_q(pi.v.neg) : nan};
    if (pr.inf) return exp_finite(with_sign(Wide{{kTop64, 0}, 1 << 20, 0}, pr.v.neg), pi.v, nan);
    return exp_finite(pr.v, pi.v, nan);
}

Complex16 power(const Complex16& z, const Complex16& w) {
    if (is_zero(w.re) && is_zero(w.im)) return {kOneQ, kZeroQ};
    Real16 nan = _NaN_Q;
    const Real16* const parts[4] = {&z.re, &z.im, &w.re, &w.im};
    for (const Real16* p : parts) {
        if (is_nan(*p)) {
            nan = quieted(*p);
            break;
        }
    }
    const bool plain = finite(z.re) && finite(z.im) && finite(w.re) && finite(w.im) &&
                       !(is_zero(z.re) && is_zero(z.im));
    if (plain) {
        const Wide x = from_real16(z.re), y = from_real16(z.im);
        const Wide a = from_real16(w.re), b = from_real16(w.im);
        const Wide lr = log_modulus(x, y).wide(), li = atan2_wide(y, x);
        const Wide pr = sub(mul(a, lr), mul(b, li));
        const Wide pi = add(mul(a, li), mul(b, lr));
        return exp_finite(pr, pi, nan);
    }
    // log z by Annex G: a zero z gives -Inf, an infinite part +Inf, with
    // the angle by the signs; a NaN part NaN (and the angle NaN, unless
    // the other part is infinite).
    Ext lr, li;
    const bool z_nan = is_nan(z.re) || is_nan(z.im);
    const bool z_inf = is_inf(z.re) || is_inf(z.im);
    if (z_inf) {
        lr = {kWideOne, true, false};
        li = z_nan ? Ext{kWideZero, false, true} : Ext{};
    } else if (z_nan) {
        lr = li = Ext{kWideZero, false, true};
    } else if (is_zero(z.re) && is_zero(z.im)) {
        lr = {negate(kWideOne), true, false};
    }
    if (!z_nan && (z_inf || (is_zero(z.re) && is_zero(z.im)))) {
        // The angle of a zero or of an infinite part, by the signs.
        li = ext(special_angle(z.re, z.im));
    }
    if (!z_nan && !z_inf && !lr.inf) {
        const Wide x = from_real16(z.re), y = from_real16(z.im);
        lr = {log_modulus(x, y).wide()};
        li = {atan2_wide(y, x)};
    }
    const Ext a = ext(w.re), b = ext(w.im);
    const Ext pr = eadd(emul(a, lr), eneg(emul(b, li)));
    const Ext pi = eadd(emul(a, li), emul(b, lr));
    return exp_special(pr, pi, nan);
}

}  // namespace

extern "C" Complex16* g_azxz(Complex16* result, const Complex16* z, const Complex16* w) {
    *result = power(*z, *w);
    return result;
}
