// g_csin, g_ccos, g_cdsin, g_cdcos and the quadrant forms g_csinq, g_ccosq,
// g_cdsinq, g_cdcosq: sine and cosine of a COMPLEX(4) or COMPLEX(8)
// argument z = x + iy (the quadrant forms take z pi/2: x and y in right
// angles).
//
//   sin z = sin x cosh y + i cos x sinh y,
//   cos z = cos x cosh y - i sin x sinh y.
//
// Method: one reduction of x gives sin x and cos x, one exponential gives
// cosh |y| and sinh |y|, and each part is one product, rounded once.
//   sin x, cos x   radians: g_dscn (the pair of g_dsin and g_dcos, one
//                  reduction, within 0.6 ulp each away from the zeros);
//                  next to a multiple of pi/2 below 1.05e8, where g_dscn's
//                  reduction leaves the small one of the two up to 3 ulps
//                  off, that one again from a reduction with pi/2 to 2^-187
//                  (near_multiple below).  Quadrants: the exact reduction
//                  of g_dsinq (|x| = k + r, |r| <= 1/2, exact zeros and
//                  ones at every multiple of a quadrant) and its series
//                  evaluated in extended precision (units.h), within the
//                  fit's 2.4e-17.
//   cosh, sinh     a = |y| (quadrants: |y| pi/2, Dekker's product with the
//                  double-double pi/2, or below 1/2 the extended product
//                  with pi/2 to 64 bits): below 1/2 the fitted series of
//                  g_dcosh and g_dsinh in extended precision (within
//                  1.7e-17 and 3.4e-18 relative there); from 1/2 on
//                  E = e^a/2 from the exponential of g_dsch
//                  (hyperbolic_kernel.h) as (hi + lo) 2^m within 2^-62,
//                  taken to extended precision, cosh = E + 1/(4E) and
//                  sinh = E - 1/(4E) (cancelling by 1.6 at most) while 2^m
//                  is small, E alone beyond (1/(4E^2) below 2^-78 there).
//   the product    in extended precision, whose exponent range holds every
//                  product of a part with 2^m: a cosh y far beyond the
//                  largest double times a tiny sin x is still the finite
//                  product, rounded once to the part's kind.  COMPLEX(4)
//                  computes the same in double and extended and rounds each
//                  part once, to float.
//
// Accuracy, per part (the product rounds to 64 bits, then once to the
// kind; a relative error d of a factor is up to 2 d / 2^-53 ulps of a
// product whose significand is larger than the factor's):
//   COMPLEX(8) radians: sin x or cos x within 0.6 ulp of itself (1.2 ulp of
//     the product), cosh or sinh within 1.7e-17 (0.15 ulp), the rest below
//     0.01: at most 0.5 + 1.2 + 0.15 + 0.01 = 1.86 ulp; next to multiples
//     of pi/2 beyond 1.05e8 the error of g_dscn's reduction there on top.
//     Measured 1.43 (mivor accuracy --count 1000000 g_cdsin g_cdcos), 1.45
//     in complex_sin_cos_mpfr_tests, where glibc's csin and ccos reach 2.65
//     on the same arguments;
//   COMPLEX(8) quadrants: the series in extended within 2.4e-17 (0.22 ulp
//     of the product), the rest as above: at most 0.9 ulp, measured 0.7;
//   COMPLEX(4): within 0.5 ulp of float plus 2^-28 of an ulp, except where
//     the double rounding meets a half-way point (measured 0.5).
// No part is a difference: only the reduction of x can cancel.
//
// Reports (direct form).  Each pair shares one path and both members
// report both numbers:
//   out of range   x refused by the real sine and cosine: infinite, NaN,
//                  or (radians) |x| >= 3.53e15, as g_dsin refuses; the
//                  quadrant forms refuse infinities and NaN, as g_dscnq
//                  does.  COMPLEX(4) computes in double and refuses where
//                  the double functions do.  205 (g_csin, g_ccos), 207
//                  (g_cdsin, g_cdcos), 1407 (g_csinq, g_ccosq), 1409
//                  (g_cdsinq, g_cdcosq).  The record describes x.
//   overflow       a part is infinite: |y| too large for a nonzero factor,
//                  or y infinite.  206, 208, 1408, 1410.  The record
//                  describes y.
// The operand copies are x (696) and y (700); a handler that corrects one
// and asks for a retry starts the whole computation again.  A NaN y is not
// an overflow and reports nothing (the parts are NaN, or the zero of a
// zero factor).
// Fallbacks: the formula when the real functions return their own
// fallbacks:
//   out of range, IEEE results: the C99 Annex G value of a NaN x:
//                  sin (NaN, y) and cos (NaN, +0) for y = +-0, sin (NaN, y)
//                  and cos (+Inf, NaN) for an infinite y, (NaN, NaN)
//                  otherwise;
//   out of range, IEEE results off: sin x and cos x both the substitute of
//                  g_dsin and g_dcos (and of g_dscnq), 0.7071067811865476,
//                  in the formula; a part that then overflows is +-HUGE;
//   overflow:      the parts as computed, with IEEE results off each
//                  infinite part replaced by the finite HUGE of its kind
//                  (0x7F7FFFEE, 0x7FEFFFFFFFFFFFB6) with its sign.
// Special values where nothing reports (C99 Annex G, csin(z) = -i
// csinh(iz), ccos(z) = ccosh(iz)): the signs of zero parts are those of the
// IEEE products (cos(+0 + i0) = 1 - i0), and a zero factor times an
// infinite or NaN cosh or sinh gives that zero (sin(+0 + i Inf) = +0 + i
// Inf, cos(+0 + i Inf) = +Inf - i0, sin(+0 + i NaN) = +0 + i NaN).
#include <cstdint>

#include "elementary/hyperbolic_kernel.h"
#include "elementary/trig_reduce.h"
#include "elementary/units.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "frame/x87.h"
#include "mivor/mivor.h"

namespace mivor::complex {
namespace {

using x87::ExtendedPrecision;
namespace hyp = elementary::hyperbolic;
namespace trig = elementary::trig;
namespace units = elementary::units;

enum class Unit { radians, quadrants };

// sin x and cos x from g_dsin/g_dcos when the real functions refuse x.
inline constexpr double kSubstitute = 0x1.6a09e667f3bcdp-1;  // 0.7071067811865476
inline constexpr long double kHalfPi = 0xc90fdaa22168c235p-63L;  // pi/2 to 64 bits
// From a = 1500 on, cosh a > 2^2163: times the least nonzero sin x or cos
// x of any argument (2^-1074) it overflows every kind.
inline constexpr double kBeyond = 1500.0;
// Below 2^64 the scale 2^m goes into E at once and 1/(4E) counts.
inline constexpr int kScaleInline = 64;

template <class K>
struct Kind;
template <>
struct Kind<float> {
    using Complex = mivor_complex4;
    static constexpr float nan = _NaN_F, inf = _Inf_F, huge = kHuge_F;
    static float round(long double v) { return ExtendedPrecision::to_float(v); }
};
template <>
struct Kind<double> {
    using Complex = mivor_complex8;
    static constexpr double nan = _NaN_D, inf = _Inf_D, huge = kHuge_D;
    static double round(long double v) { return ExtendedPrecision::to_double(v); }
};

// v 2^m in extended precision, 0 <= m < 2200 (exact: the extended
// exponent range holds every such product), by factors of 2^1000 and a
// double power of two.
inline long double scaled(long double v, int m) {
    while (m > 1000) {
        v *= 0x1p1000L;
        m -= 1000;
    }
    return v * hyp::power_of_two(m);
}

// cosh a and sinh a as (c, s) 2^m, a = |y| or |y| pi/2.  An infinite or NaN
// a passes through: c = s = a.
struct Hyperbolic {
    long double c, s;
    int m;
};

// From E = e^a/2 with a = ah + al >= 0.5.
inline Hyperbolic from_exponential(ExtendedPrecision& scope, double ah, double al) {
    if (!(ah < kBeyond)) {
        // Infinite, NaN (passed on), or beyond every overflow (infinite).
        const long double a = ah != ah ? scope.pin(ah + ah) : scope.pin(__builtin_infl());
        return {a, a, 0};
    }
    const hyp::HalfExp E = hyp::exp_half<false>(ah, al);
    if (E.e >= kScaleInline) {
        const long double v = scope.pin(E.hi) + E.lo;
        return {v, v, E.e};
    }
    // 2^m scales hi and lo exactly in double (-2 <= m < 64).
    const double scale = hyp::power_of_two(E.e);
    const long double ev = scope.pin(E.hi * scale) + E.lo * scale;
    const long double f = 0.25L / ev;
    return {ev + f, ev - f, 0};
}

template <Unit unit>
inline Hyperbolic hyperbolic(ExtendedPrecision& scope, double y) {
    const double a = trig::magnitude(y);
    if constexpr (unit == Unit::radians) {
        if (a < 0.5) {
            const long double al = scope.pin(a);
            return {hyp::cosh_series(al), hyp::sinh_series(al), 0};
        }
        return from_exponential(scope, a, 0.0);
    } else {
        if (a < 0x1.45f306dc9c883p-2) {  // 1/pi: a pi/2 < 0.5
            const long double al = scope.pin(a) * kHalfPi;
            return {hyp::cosh_series(al), hyp::sinh_series(al), 0};
        }
        if (!(a < kBeyond)) return from_exponential(scope, a, 0.0);
        double ah, al;
        trig::two_product(a, trig::HP1, ah, al);
        al += a * 0x1.1a62633145c07p-54;  // pi/2 - HP1 to 2^-107
        return from_exponential(scope, ah, al);
    }
}

// sin x and cos x in extended precision.
struct SinCos {
    long double s, c;
};

// Next to a multiple k pi/2 (k >= 1) one of sin x, cos x is +-sin r with
// r = |x| - k pi/2 tiny, and the reduction of g_dscn, good to 2^-105
// absolute, leaves it a few ulps off (3 at the doubles nearest k pi/2).
// For |x| < 1.05e8 (k < 2^26) r is formed again with pi/2 in five pieces:
// k HPA, k HPB, k HPD1 are exact, so is (a - k HPA) - k HPB (trig_reduce.h),
// the next two terms are carried by two_sum and Dekker's product, and
// pi/2 - HPA - HPB - HPD1 - HPD2 - HPD3 is below 2^-187: r = rh + rl within
// 2^-150 + 2^-106 |r|.  The smallest |r| of a double below 1.05e8 is above
// 2^-62, so the small factor sin r = rh + (rl - rh^3/6) (|r| < 2^-25: the
// next term is 2^-107 of it) is then within 2^-80, where the other factor,
// cos r, is within 0.5 ulp as g_dscn gives it.
inline constexpr double HPD3 = -0x1.bf6c7ddd660cep-133;
inline constexpr double kSmallFactor = 0x1p-26;

[[gnu::cold, gnu::noinline]] SinCos near_multiple(ExtendedPrecision& scope, double x, SinCos sc) {
    using namespace trig;
    const double a = magnitude(x);
    const double sb = a * RHP + BG;
    const double kd = sb - BG;
    const std::uint32_t k = low32(sb);
    const double p = (a - kd * HPA) - kd * HPB;
    double h, e1, ph, pl, h2, e2, rh, rl;
    two_sum(p, -(kd * HPD1), h, e1);
    two_product(kd, HPD2, ph, pl);
    two_sum(h, -ph, h2, e2);
    two_sum(h2, ((e1 + e2) - pl) - kd * HPD3, rh, rl);
    if (!(magnitude(rh) < 2 * kSmallFactor)) return sc;  // not so near after all
    const long double sr = scope.pin(rh) + (rl - (rh * rh * rh) / 6);
    // sin a = [sin r, cos r, -sin r, -cos r][k mod 4], cos a = sin of a quadrant on.
    if (k & 1) sc.c = (k & 2) ? sr : -sr;
    else sc.s = ((k & 2) != 0) != __builtin_signbit(x) ? -sr : sr;
    return sc;
}

template <Unit unit>
inline SinCos sin_cos(ExtendedPrecision& scope, double x) {
    if constexpr (unit == Unit::radians) {
        mivor_complex8 sc;
        g_dscn(&sc, &x);
        const SinCos v{scope.pin(sc.re), scope.pin(sc.im)};
        const double small = trig::magnitude(sc.re) < trig::magnitude(sc.im) ? sc.re : sc.im;
        if (trig::magnitude(small) < kSmallFactor && trig::magnitude(x) >= 1.0 && trig::magnitude(x) < trig::XBIG)
            return near_multiple(scope, x, v);
        return v;
    } else {
        const double a = trig::magnitude(x);
        const units::Reduced rd = units::reduce_quadrants(a);
        const long double r = scope.pin(rd.r);
        const long double sv = units::sin_quadrants(r), cv = units::cos_quadrants(r);
        // [s, c, -s, -c][n mod 4], the sign of x on the sine.
        const auto pick = [&](std::uint32_t n) {
            const long double v = (n & 1) ? cv : sv;
            return (n & 2) ? -v : v;
        };
        const long double s = pick(rd.k), c = pick(rd.k + 1);
        return {__builtin_signbit(x) ? -s : s, c};
    }
}

// f h 2^m; a zero factor gives its zero, with the sign of the product, even
// next to an infinite h.
inline long double times(long double f, long double h, int m) {
    if (f == 0.0L) return __builtin_signbitl(h) ? -f : f;
    const long double p = f * h;
    return m == 0 ? p : scaled(p, m);
}

template <class K>
struct Parts {
    K re, im;
    bool infinite;  // a part overflowed, or y is infinite
};

// The formula on factors (fs, fc) = (sin x, cos x), rounded to K.  A NaN
// y gives itself, quieted, in each part whose factor is not zero: taken
// as it stands rather than through products, whose NaN sign the compiler
// may move with a negation, so that every flavour gives the same bits.
template <Unit unit, bool cosine, class K>
inline Parts<K> formula(ExtendedPrecision& scope, long double fs, long double fc, K y) {
    if (y != y) {
        const K q = y + y;
        const long double fre = cosine ? fc : fs, fim = cosine ? -fs : fc;
        return {fre == 0.0L ? Kind<K>::round(fre) : q, fim == 0.0L ? Kind<K>::round(fim) : q, false};
    }
    const Hyperbolic h = hyperbolic<unit>(scope, y);
    const long double sh = __builtin_signbit(y) ? -h.s : h.s;
    long double re, im;
    if constexpr (cosine) {
        re = times(fc, h.c, h.m);
        im = times(-fs, sh, h.m);
    } else {
        re = times(fs, h.c, h.m);
        im = times(fc, sh, h.m);
    }
    const K r = Kind<K>::round(re), i = Kind<K>::round(im);
    const bool infinite = trig::magnitude(r) == Kind<K>::inf || trig::magnitude(i) == Kind<K>::inf;
    return {r, i, infinite};
}

template <class K>
inline K finite(K v) {
    if (trig::magnitude(v) != Kind<K>::inf) return v;
    return __builtin_signbit(v) ? -Kind<K>::huge : Kind<K>::huge;
}

template <class K>
inline typename Kind<K>::Complex make(K re, K im) {
    return {re, im};
}

// The IEEE fallback of a refused x: Annex G's value for a NaN x.
template <bool cosine, class K>
typename Kind<K>::Complex refused_ieee(K y) {
    constexpr K nan = Kind<K>::nan;
    if (y == K(0)) return cosine ? make<K>(nan, K(0)) : make<K>(nan, y);
    if (trig::magnitude(y) == Kind<K>::inf) return cosine ? make<K>(Kind<K>::inf, nan) : make<K>(nan, y);
    return make<K>(nan, nan);
}

// errors.h names each pair's two numbers after its members; both members
// report both: the first for a refused x, the second for an overflow.
template <Unit unit, bool cosine, class K>
struct Errors;
template <bool cosine>
struct Errors<Unit::radians, cosine, float> {
    static constexpr Error range = Error::complex_sin_c4, overflow = Error::complex_cos_c4;
};
template <bool cosine>
struct Errors<Unit::radians, cosine, double> {
    static constexpr Error range = Error::complex_sin_c8, overflow = Error::complex_cos_c8;
};
template <bool cosine>
struct Errors<Unit::quadrants, cosine, float> {
    static constexpr Error range = Error::complex_sin_quadrant_c4, overflow = Error::complex_cos_quadrant_c4;
};
template <bool cosine>
struct Errors<Unit::quadrants, cosine, double> {
    static constexpr Error range = Error::complex_sin_quadrant_c8, overflow = Error::complex_cos_quadrant_c8;
};

template <Unit unit>
inline bool accepted(double x) {
    if constexpr (unit == Unit::radians) return trig::magnitude(x) < trig::DSINMX;
    return trig::magnitude(x) < __builtin_inf();
}

// The parts for an accepted x.
template <Unit unit, bool cosine, class K>
inline Parts<K> parts(K x, K y) {
    ExtendedPrecision scope;
    const SinCos sc = sin_cos<unit>(scope, x);
    return formula<unit, cosine, K>(scope, sc.s, sc.c, y);
}

// One pass over (x, y): the result, or the failure that decides.
template <Unit unit, bool cosine, class K>
report::Step<typename Kind<K>::Complex, K, K> pass(K x, K y) {
    using E = Errors<unit, cosine, K>;
    if (!accepted<unit>(x)) {
        ExtendedPrecision scope;
        const Parts<K> p = formula<unit, cosine, K>(scope, kSubstitute, kSubstitute, y);
        return report::fail(E::range, refused_ieee<cosine, K>(y), make<K>(finite(p.re), finite(p.im)))
            .described(report::Describe::first);
    }
    const Parts<K> p = parts<unit, cosine, K>(x, y);
    if (!p.infinite) return make<K>(p.re, p.im);
    return report::fail(E::overflow, make<K>(p.re, p.im), make<K>(finite(p.re), finite(p.im)))
        .described(report::Describe::second);
}

template <Unit unit, bool cosine, class K>
[[gnu::cold, gnu::noinline]] typename Kind<K>::Complex reported(K x, K y) {
    return report::settle<report::Form::direct>(pass<unit, cosine, K>, x, y);
}

// The hot path computes the parts of an accepted x directly; a refused x
// or an infinite part runs the pass again under `settle`.
template <Unit unit, bool cosine, class K>
inline typename Kind<K>::Complex* evaluate(typename Kind<K>::Complex* result, const typename Kind<K>::Complex* z) {
    const K x = z->re, y = z->im;
    if (accepted<unit>(x)) {
        const Parts<K> p = parts<unit, cosine, K>(x, y);
        if (!p.infinite) {
            *result = make<K>(p.re, p.im);
            return result;
        }
    }
    *result = reported<unit, cosine, K>(x, y);
    return result;
}

}  // namespace
}  // namespace mivor::complex

using mivor::complex::evaluate;
using mivor::complex::Unit;

extern "C" mivor_complex4* g_csin(mivor_complex4* result, const mivor_complex4* z) {
    return evaluate<Unit::radians, false, float>(result, z);
}
extern "C" mivor_complex4* g_ccos(mivor_complex4* result, const mivor_complex4* z) {
    return evaluate<Unit::radians, true, float>(result, z);
}
extern "C" mivor_complex8* g_cdsin(mivor_complex8* result, const mivor_complex8* z) {
    return evaluate<Unit::radians, false, double>(result, z);
}
extern "C" mivor_complex8* g_cdcos(mivor_complex8* result, const mivor_complex8* z) {
    return evaluate<Unit::radians, true, double>(result, z);
}
extern "C" mivor_complex4* g_csinq(mivor_complex4* result, const mivor_complex4* z) {
    return evaluate<Unit::quadrants, false, float>(result, z);
}
extern "C" mivor_complex4* g_ccosq(mivor_complex4* result, const mivor_complex4* z) {
    return evaluate<Unit::quadrants, true, float>(result, z);
}
extern "C" mivor_complex8* g_cdsinq(mivor_complex8* result, const mivor_complex8* z) {
    return evaluate<Unit::quadrants, false, double>(result, z);
}
extern "C" mivor_complex8* g_cdcosq(mivor_complex8* result, const mivor_complex8* z) {
    return evaluate<Unit::quadrants, true, double>(result, z);
}
