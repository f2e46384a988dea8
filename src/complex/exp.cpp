// g_cexp, g_cdexp: e^z = e^x (cos y, sin y) for z = x + iy, COMPLEX(4)
// and COMPLEX(8).
//
// Method (complex/functions.h): the sine and cosine of y from the REAL(8)
// pair kernel of g_dscn, inline (elementary/sincos_pair.h); e^x = 2^m (t + tail) from the double-double
// exponential (elementary/exp_log_dd.h, error below 2^-61 relative); each
// part is the exact product (t + tail) cos y rounded once and scaled by
// 2^m.  Arguments with |x| > 700 are first moved by 1024 ln2, so that a
// part stays finite whenever it is: e^710 overflows, e^710 sin(1e-300)
// does not.  Subnormal parts are rounded once onto their grid.
//
// Accuracy, per part: g_dscn's error, the exponential's 2^-61 and the
// one rounding of the product.  Measured for COMPLEX(8) (`mivor accuracy
// --count 1000000 g_cdexp`, 10^6 random arguments and the hard ranges):
// 1.57 ulp at most per part, where y lies next to pi/2 and the cosine
// carries the largest error of the pair kernel; 1.34 ulp of the modulus.  COMPLEX(4) computes the same in double from its REAL(4)
// parts and rounds each part once more: within 0.5 ulp plus 2^-27 ulp,
// correctly rounded except next to a midpoint.
//
// Special values where nothing is reported: those of C99 (Annex G):
// e^(x + i0) = (e^x, 0) with the sign of the zero kept, e^(NaN + i0) =
// (NaN, 0), e^(-Inf + iy) = (+0 cos y, +0 sin y), NaN x with y != 0 gives
// (NaN, NaN).
//
// Reports, direct form, one per pass, the record describing the part that
// decided as a REAL operand of the part's kind (type 9 or 10); both parts
// are published as modifiable copies (696, 700), and a retry runs the
// whole function again on the corrected pair:
//   232 / 234  the imaginary part is refused by the sine and cosine: an
//              infinity, a NaN, or |y| beyond the reduction of the real
//              kind (REAL(4): 823000, REAL(8): 3.53e15); the record shows
//              y.  Without a retry: with IEEE results the Annex G value
//              ((NaN, NaN); (+Inf, NaN) for x = +Inf; (+0, +0) for
//              x = -Inf), otherwise what the formula gives with the sine's
//              own substitute for both sine and cosine, e^x (s, s) with
//              s = 0.70710677 / 0.7071067811865476, a part that overflows
//              given as the kind's huge substitute with its sign.
//   233 / 235  a part overflows the kind (x large; x = +Inf with y
//              finite); the record shows x.  Without a retry the IEEE
//              result (the infinite parts) or each infinite part replaced
//              by the huge substitute 0x7F7FFFEE / 0x7FEFFFFFFFFFFFB6 with
//              its sign, the other part as computed.
#include "complex/functions.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::complex {
namespace {

template <class T>
struct Kind;
template <>
struct Kind<double> {
    using C = mivor_complex8;
    static constexpr double kLimit = kAngleLimit;
    static constexpr double kFast = 700.0;  // e^700 (cos, sin) cannot overflow
    static constexpr Error kRefused = Error::complex_exp_refused_c8;
    static constexpr Error kOverflow = Error::complex_exp_overflow_c8;
    static constexpr double kSinSubstitute = 0x1.6a09e667f3bcdp-1;  // g_dsin's 0.7071067811865476
    static constexpr double kHuge = kHuge_D;
    static double part(double v) { return v; }
};
template <>
struct Kind<float> {
    using C = mivor_complex4;
    static constexpr double kLimit = 823000.0;  // g_sin's limit
    static constexpr double kFast = 88.0;       // e^88 < 2^127
    static constexpr Error kRefused = Error::complex_exp_refused_c4;
    static constexpr Error kOverflow = Error::complex_exp_overflow_c4;
    static constexpr double kSinSubstitute = 0x1.6a09e6p-1;  // g_sin's 0.70710677 (0x3F3504F3)
    static constexpr float kHuge = kHuge_F;
    static float part(double v) { return static_cast<float>(v); }
};

template <class T>
typename Kind<T>::C rounded(const mivor_complex8& v) {
    return {Kind<T>::part(v.re), Kind<T>::part(v.im)};
}

template <class T>
T clamped(T v) {
    return is_finite(v) || v != v ? v : with_sign_of(Kind<T>::kHuge, v);
}

// One pass: the value, or the report that decides.
template <class T>
report::Step<typename Kind<T>::C, T, T> pass(T x, T y) {
    using K = Kind<T>;
    const double xd = x, yd = y;
    if (!(magnitude(yd) < K::kLimit)) {
        const typename K::C ieee = rounded<T>(exp_of(xd, magnitude(yd) < kAngleLimit ? __builtin_inf() : yd));
        typename K::C substitute;
        if (xd != xd) {
            substitute = {x + x, x + x};
        } else {
            const Exp e = exp_parts(xd, 0.0);
            const T v = clamped(K::part(times(e, K::kSinSubstitute)));
            substitute = {v, v};
        }
        return report::fail(K::kRefused, ieee, substitute).described(report::Describe::second);
    }
    const typename K::C r = rounded<T>(exp_of(xd, yd));
    if ((!is_finite(r.re) && r.re == r.re) || (!is_finite(r.im) && r.im == r.im))
        return report::fail(K::kOverflow, r, typename K::C{clamped(r.re), clamped(r.im)})
            .described(report::Describe::first);
    return r;
}

template <class T>
[[gnu::cold, gnu::noinline]] typename Kind<T>::C guarded(T x, T y) {
    return report::settle<report::Form::direct>(pass<T>, x, y);
}

// The common case inline: a finite x whose exponential cannot overflow
// the kind and an accepted nonzero y; everything else through the pass.
// Forced into the export, so that its AVX clone encodes all of it.
template <class T>
[[gnu::always_inline]] inline typename Kind<T>::C cexp(T x, T y) {
    using K = Kind<T>;
    const double xd = x, yd = y;
    if (magnitude(xd) <= K::kFast && magnitude(yd) < K::kLimit && magnitude(yd) >= 0x1p-900) [[likely]] {
        // The sine and cosine are at least 2^-900 here, so that the exact
        // products need no normalising; the scaling by 2^m is exact unless
        // a part falls below 2^-1022, which `times` rounds once instead.
        const SinCos sc = sin_cos(yd);
        const elementary::ExpParts e = elementary::exp_dd(xd, 0.0);
        const double scale = pow2(static_cast<int>(e.k >> 8));
        const double re = product(e, sc.c) * scale, im = product(e, sc.s) * scale;
        if (magnitude(re) >= 0x1p-1022 && magnitude(im) >= 0x1p-1022) [[likely]]
            return {K::part(re), K::part(im)};
    }
    return guarded<T>(x, y);
}

}  // namespace
}  // namespace mivor::complex

using namespace mivor;

// The operand is read before the result area, which may be the same, is
// written.
extern "C" mivor_complex4* g_cexp(mivor_complex4* result, const mivor_complex4* z) {
    *result = complex::cexp<float>(z->re, z->im);
    return result;
}

extern "C" MIVOR_DISPATCHED mivor_complex8* g_cdexp(mivor_complex8* result, const mivor_complex8* z) {
    *result = complex::cexp<double>(z->re, z->im);
    return result;
}
