// g_cabs, g_cdabs: |z|; g_csqrt, g_cdsqrt: the principal square root,
// COMPLEX(4) and COMPLEX(8).  No error is reported.
//
// |z|, COMPLEX(8): the pair is scaled by 2^-+600 when its larger part is
// beyond 2^500 or below 2^-500, so that no square overflows or sinks into
// the subnormals; x^2 + y^2 is exact up to the last addition of its low
// parts (Dekker's products), its root gets one Newton correction (relative
// error below 2^-100), and hi + lo is rounded once and scaled back (once
// more, onto the subnormal grid, only for results below 2^-1022).  So the
// result is correctly rounded except within 2^-47 ulp of a midpoint: no
// spurious overflow (|(DBL_MAX, 0)| = DBL_MAX) or underflow.
// COMPLEX(4): x^2 + y^2 of the REAL(4) parts is exact in double but for
// its one rounding, so is its double root but for one more: the REAL(4)
// result is correctly rounded except within 2^-28 ulp of a midpoint.
// Special values (C hypot): an infinite part gives +Inf even beside a
// NaN; otherwise a NaN part gives a NaN.
//
// sqrt z, Kahan's method: with |z| as a double-double, t = sqrt((|x| +
// |z|)/2) (no cancellation: both terms are nonnegative) as a double-double
// by one Newton correction; then
//   x >= 0:  (t, y / 2t)            x < 0:  (|y| / 2t, t with the sign of y)
// the quotient corrected once as a double-double.  Scaling by 2^-+600 (an
// even power, so that the root is scaled back by 2^+-300) keeps huge and
// tiny parts exact.  Measured (`mivor accuracy --count 1000000
// g_cdsqrt`): 99.998% of the parts correctly rounded, 0.707 ulp of the
// modulus at most; the largest part errors, 0.73 ulp, are parts just above
// 2^-1022 reached through the scaling back (not yet explained).
// COMPLEX(4) rounds the COMPLEX(8) kernel's parts once more.
// Special values (C99 Annex G), conj(sqrt z) = sqrt(conj z):
//   sqrt(+-0 + i0) = (+0, 0 of y's sign); sqrt(x + iInf) = (+Inf, Inf of y's sign) for any x, NaN
//   included; sqrt(+Inf + iy) = (+Inf, 0 of y's sign); sqrt(-Inf + iy) =
//   (+0, Inf of y's sign); sqrt(+Inf + iNaN) = (+Inf, NaN); sqrt(-Inf +
//   iNaN) = (NaN, +Inf); otherwise a NaN part gives (NaN, NaN).
#include "complex/functions.h"
#include "mivor/mivor.h"

namespace mivor::complex {
namespace {

double abs8(double x, double y) {
    if (!is_finite(x) || !is_finite(y)) {
        if ((!is_finite(x) && x == x) || (!is_finite(y) && y == y)) return __builtin_inf();
        return x != x ? x + x : y + y;  // the NaN, quieted
    }
    const Scaled z = scaled(x, y);
    if (z.x == 0.0 && z.y == 0.0) return 0.0;
    const DD m = modulus_dd(z.x, z.y);
    if (z.k == 0) return m.hi + m.lo;
    return scale2(m.hi, m.lo, z.k);
}

float abs4(float x, float y) {
    const double a = x, b = y;
    if (!is_finite(a) || !is_finite(b)) {
        if ((!is_finite(a) && a == a) || (!is_finite(b) && b == b)) return __builtin_inff();
        return static_cast<float>(a != a ? a + a : b + b);  // the NaN, quieted
    }
    return static_cast<float>(root(a * a + b * b));
}

// 2^k (hi + lo), rounded once.
inline double finish(const DD& v, int k) { return k == 0 ? v.hi + v.lo : scale2(v.hi, v.lo, k); }

mivor_complex8 sqrt8(double x, double y) {
    if (!is_finite(x) || !is_finite(y)) {
        if (!is_finite(y) && y == y) return {__builtin_inf(), y};
        if (x != x) return {x + x, x + x};
        if (x == __builtin_inf()) return {x, y != y ? y + y : with_sign_of(0.0, y)};
        if (x == -__builtin_inf()) return {y != y ? y + y : 0.0, y != y ? __builtin_inf() : with_sign_of(__builtin_inf(), y)};
        return {y + y, y + y};  // finite x, NaN y
    }
    if (x == 0.0 && y == 0.0) return {0.0, y};
    const Scaled z = scaled(x, y);
    const DD m = modulus_dd(z.x, z.y);
    // a = (|x| + |z|)/2, t = sqrt(a), both as double-doubles.
    const DD s = elementary::two_sum(m.hi, magnitude(z.x));
    const DD a = elementary::fast_two_sum(0.5 * s.hi, 0.5 * (s.lo + m.lo));
    const double th = root(a.hi);
    const DD tt = elementary::two_prod(th, th);
    const DD t = elementary::fast_two_sum(th, (((a.hi - tt.hi) - tt.lo) + a.lo) / (th + th));
    // The other part |y| / 2t from y itself, not its scaled copy, which
    // may have lost bits to underflow beside a huge x: |y| 2^j normal (a
    // subnormal or huge y moved by 2^-+200) over 2t 2^(k/2).
    double ay = magnitude(y);
    int j = 0;
    if (ay < 0x1p-900) ay *= 0x1p200, j = -200;
    else if (ay > 0x1p900) ay *= 0x1p-200, j = 200;
    const DD q = elementary::dd_div({ay, 0.0}, {t.hi + t.hi, t.lo + t.lo});
    const int k = z.k / 2, kq = j - k;
    if (x >= 0.0) return {finish(t, k), with_sign_of(finish(q, kq), y)};
    return {finish(q, kq), with_sign_of(finish(t, k), y)};
}

}  // namespace
}  // namespace mivor::complex

using namespace mivor;

extern "C" float g_cabs(const mivor_complex4* z) { return complex::abs4(z->re, z->im); }

extern "C" double g_cdabs(const mivor_complex8* z) { return complex::abs8(z->re, z->im); }

// The operand is read before the result area, which may be the same, is
// written.
extern "C" mivor_complex4* g_csqrt(mivor_complex4* result, const mivor_complex4* z) {
    const mivor_complex8 r = complex::sqrt8(z->re, z->im);
    *result = {static_cast<float>(r.re), static_cast<float>(r.im)};
    return result;
}

extern "C" mivor_complex8* g_cdsqrt(mivor_complex8* result, const mivor_complex8* z) {
    *result = complex::sqrt8(z->re, z->im);
    return result;
}
