// Complex bases raised to a complex exponent of the same kind: g_acxc
// (COMPLEX(4)), g_axxx (COMPLEX(8)).  No error is reported.
//
// z^w = e^(w log z), computed so that the error does not grow with
// |w log z| the way a product rounded to double would make it grow:
//   log z = L + i theta with L = log|z| a double-double (complex/functions.h:
//           2^-67 relative, exact-squares log1p near |z| = 1) and theta the
//           double-double arctangent of complex/functions.h (2^-66
//           relative);
//   w log z = (a L - b theta) + i (a theta + b L) for w = a + ib, each
//           product and sum a double-double;
//   e^E (cos A, sin A) with E and A those double-doubles: the exponential
//           of the double-double (elementary/exp_log_dd.h) moved by 1024 ln2
//           beyond |E| = 700, so that a part stays finite when it is; the
//           sine and cosine of A.hi from g_dscn, corrected by A.lo to first
//           order; each part the exact product rounded once.
// Error: E and A carry the 2^-66 relative errors of L and theta times |a|
// and |b| (absolute) besides 2^-100 of their size; e^E turns the absolute
// error of E into a relative one, and the error of A moves both parts.  So
// the result is within about 1.1 ulp + (|a| + |b|)(|L| + |theta|) 2^-13 ulp
// of its modulus: 1.71 ulp measured for parts of w up to 64 (`mivor
// accuracy --count 1000000 g_axxx`), where a logarithm rounded to double,
// as C libraries multiply it, costs |w log z| ulps.
// COMPLEX(4) runs the COMPLEX(8) kernel on its parts and rounds each part
// once more: correctly rounded but next to a midpoint.
//
// Special cases, in this order:
//   w = (+-0, +-0)                      (1, 0), whatever z (NaN included);
//   z = (+-0, +-0): Re w > 0            (+0, +0);
//                   Re w < 0, Im w = 0  (+Inf, +0), as the real 0**(-y);
//                   otherwise           (NaN, NaN): the angle is undefined;
//   a NaN part in z or w (w not zero)  (NaN, NaN), the quiet NaN 0x7FF8...;
//   a part of z or w infinite, or |Re w|, |Im w| beyond 2^900:
//       exp(w log z) with the C99 logarithm and exponential of this
//       library and a double product: IEEE arithmetic decides;
//   |A| of 3.53e15 or more (beyond the sine's reduction, and beyond any
//       meaningful angle: its ulp is 0.5):
//       (+0, +0) when e^E is below the subnormals, else (NaN, NaN).
#include "complex/functions.h"
#include "mivor/mivor.h"

namespace mivor::power {
namespace {

using complex::DD;
using complex::is_finite;
using complex::magnitude;

inline DD negated(DD v) { return {-v.hi, -v.lo}; }

mivor_complex8 cpow(double x, double y, double a, double b) {
    if (a == 0.0 && b == 0.0) return {1.0, 0.0};
    if (x == 0.0 && y == 0.0) {
        if (a > 0.0) return {0.0, 0.0};
        if (a < 0.0 && b == 0.0) return {__builtin_inf(), 0.0};
        return {__builtin_nan(""), __builtin_nan("")};
    }
    // A NaN part gives (NaN, NaN), the quiet NaN itself: passing a NaN
    // operand's bits on through products of two NaNs would leave the
    // result to the operand order the compiler picks.
    if (x != x || y != y || a != a || b != b) return {__builtin_nan(""), __builtin_nan("")};
    constexpr double kLarge = 0x1p900;
    if (!(is_finite(x) && is_finite(y) && magnitude(a) <= kLarge && magnitude(b) <= kLarge)) {
        const mivor_complex8 l = complex::log_of(x, y);
        return complex::exp_of(a * l.re - b * l.im, a * l.im + b * l.re);
    }
    const DD l = complex::log_modulus_dd(x, y);
    const DD t = complex::angle_dd(y, x);
    using elementary::dd_add;
    using elementary::dd_mul;
    const DD e = dd_add(dd_mul(l, a), negated(dd_mul(t, b)));
    const DD ang = dd_add(dd_mul(t, a), dd_mul(l, b));
    const complex::Exp ex = complex::exp_parts(e.hi, e.lo);
    if (!(magnitude(ang.hi) < complex::kAngleLimit)) {
        if (ex.beyond < 0) return {0.0, 0.0};
        return {__builtin_nan(""), __builtin_nan("")};
    }
    const complex::SinCos sc = complex::sin_cos(ang.hi, ang.lo);
    return {complex::times(ex, sc.c), complex::times(ex, sc.s)};
}

}  // namespace
}  // namespace mivor::power

using namespace mivor;

// Both operands are read before the result area, which may be either, is
// written.
extern "C" mivor_complex4* g_acxc(mivor_complex4* result, const mivor_complex4* base, const mivor_complex4* exponent) {
    const mivor_complex8 r = power::cpow(base->re, base->im, exponent->re, exponent->im);
    *result = {static_cast<float>(r.re), static_cast<float>(r.im)};
    return result;
}

extern "C" mivor_complex8* g_axxx(mivor_complex8* result, const mivor_complex8* base, const mivor_complex8* exponent) {
    *result = power::cpow(base->re, base->im, exponent->re, exponent->im);
    return result;
}
