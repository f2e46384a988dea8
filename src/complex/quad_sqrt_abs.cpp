// g_cqabs, g_cqsqrt: the modulus and the principal square root of a
// COMPLEX(16) value.  Neither reports: the modulus of finite parts that
// exceeds HUGE is +Inf, as an IEEE hypotenuse.
//
// |z| = sqrt(x^2 + y^2), with the squares and their sum in the working
// format (quadfunc/wide.h: 2^-128 each, so 2^-127 relative at most for a
// sum of two positive terms), no scaling needed (its scale is 32 bits),
// and the root correctly rounded from that sum (sqrt_rounded): at most 0.5
// + 2^-14 units of the last place.
//
// sqrt z = t + i y/(2t) for x >= 0, with t = sqrt((|x| + |z|)/2), and |y|/(2t)
// + i copysign(t, y) for x < 0: no difference is formed, so there is no
// cancellation.  Bounds in the working format: |z| 2^-125.6 (the sum and
// the root), |x| + |z| 2^-125.4, t 2^-125.1 (the root of it plus its own
// 2^-126), y/(2t) 2^-124.3 (the quotient's 2^-125.5 on top of t's): at most
// 0.5 + 2^-10 units of the last place for either part.  A real argument
// (y = +-0) takes the correctly rounded real root, an imaginary one (x =
// +-0) the same root sqrt(|y|/2) for both parts.  Results below 2^-16382
// are zero (REAL(16) results are never subnormal).
//
// Special values (C99 Annex G): csqrt(+-0 + i0) = +0 + i0 (the sign of
// the imaginary zero kept), x + iInf = +Inf + iInf for every x (a NaN
// too), -Inf + iy = +0 + iInf, +Inf + iy = +Inf + i0 (y's sign), -Inf + iNaN
// = NaN + iInf, +Inf + iNaN = +Inf + iNaN, and NaN + iNaN otherwise when a
// part is a NaN.  cabs: +Inf when a part is infinite (a NaN in the other
// too), a NaN when a part is a NaN, +0 for a zero.
//
// The result area may be an operand's: both parts are read first.
//
// Measured against MPFR (`mivor accuracy g_cqabs g_cqsqrt`): see the README.
#include "complex/quad_complex.h"
#include "mivor/mivor.h"
#include "quadfunc/roots.h"

using namespace mivor;
using namespace mivor::quadfunc;
using namespace mivor::complex::quad16;

namespace {

Real16 modulus(const Real16& x, const Real16& y) {
    if (is_inf(x) || is_inf(y)) return _Inf_Q;
    if (is_nan(x) || is_nan(y)) return nan_of(x, y);
    const Wide a = from_real16(x), b = from_real16(y);
    if (is_zero(a) && is_zero(b)) return kZeroQ;
    return sqrt_rounded(add(mul(a, a), mul(b, b))).value;
}

Complex16 special_root(const Real16& x, const Real16& y) {
    const std::uint32_t sy = sign_of(y);
    if (is_inf(y)) return {_Inf_Q, y};
    if (is_inf(x)) {
        if (is_nan(y)) return sign_of(x) ? Complex16{nan_of(y, x), _Inf_Q} : Complex16{_Inf_Q, nan_of(y, x)};
        return sign_of(x) ? Complex16{kZeroQ, inf_q(sy)} : Complex16{_Inf_Q, zero_q(sy)};
    }
    const Real16 n = nan_of(x, y);
    return {n, n};
}

Complex16 root(const Real16& x, const Real16& y) {
    if (!finite(x) || !finite(y)) return special_root(x, y);
    const std::uint32_t sy = sign_of(y);
    if (is_zero(y)) {
        if (is_zero(x)) return {kZeroQ, y};
        const Real16 r = sqrt_rounded(from_real16(x)).value;
        return sign_of(x) ? Complex16{kZeroQ, with_sign(r, sy)} : Complex16{r, y};
    }
    const Wide b = abs(from_real16(y));
    if (is_zero(x)) {
        const Real16 r = sqrt_rounded(scaled(b, -1)).value;
        return {r, with_sign(r, sy)};
    }
    const Wide a = abs(from_real16(x));
    const Wide m = quadfunc::sqrt(add(mul(a, a), mul(b, b)));
    const Wide t = quadfunc::sqrt(scaled(add(a, m), -1));
    const Wide u = div(b, scaled(t, 1));
    const Real16 rt = round_to_real16(t).value, ru = round_to_real16(u).value;
    return sign_of(x) ? Complex16{ru, with_sign(rt, sy)} : Complex16{rt, with_sign(ru, sy)};
}

}  // namespace

extern "C" Real16* g_cqabs(Real16* result, const Complex16* z) {
    *result = modulus(z->re, z->im);
    return result;
}

extern "C" Complex16* g_cqsqrt(Complex16* result, const Complex16* z) {
    *result = root(z->re, z->im);
    return result;
}
