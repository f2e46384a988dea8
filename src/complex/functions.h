// Small building blocks of the complex elementary functions and powers
// (complex/abs_sqrt.cpp, complex/exp.cpp, complex/log.cpp,
// power/complex_powers.cpp), usable by any complex function:
//
//   Scaled         a pair (x, y) brought near 1 by an exact power of two
//                  when its larger part is huge or tiny, so that squares
//                  neither overflow nor lose bits to underflow;
//   modulus_dd     |x + iy| as a double-double (the sum of squares is exact
//                  up to its last addition, the root gets one correction):
//                  relative error below 2^-100;
//   log_modulus_dd log|x + iy| as a double-double; near |z| = 1 it is
//                  log1p(x^2 + y^2 - 1)/2 with x^2 + y^2 - 1 formed from
//                  exact products, so that the cancellation costs nothing;
//   angle          atan2(y, x) from the x87 partial arctangent in extended
//                  precision (within one unit of 2^-64 relative), with the
//                  C signs of zero (the angle of (+-0, -0) is +-pi);
//   exp_times      e^E (cos A, sin A) for E and A double-doubles, scaled so
//                  that a part stays finite whenever it is, even where e^E
//                  alone overflows; one rounding per part, subnormal parts
//                  included.
//   scale2         2^m (hi + lo), rounded once, any sign, any m.
#pragma once

#include <emmintrin.h>

#include <cstdint>

#include "elementary/double_double.h"
#include "elementary/exp_log_dd.h"
#include "elementary/sincos_pair.h"
#include "elementary/trig_reduce.h"
#include "complex/angle_data.h"
#include "frame/values.h"
#include "frame/x87.h"
#include "mivor/mivor.h"

namespace mivor::complex {

using elementary::DD;

inline double magnitude(double v) { return __builtin_fabs(v); }
inline double with_sign_of(double v, double s) { return __builtin_copysign(v, s); }
inline bool is_finite(double v) { return magnitude(v) <= 0x1.fffffffffffffp1023; }
inline double root(double v) { return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(v))); }
inline double pow2(int k) { return double_from_bits(static_cast<std::uint64_t>(k + 1023) << 52); }  // k in [-1022, 1023]

// 2^m (hi + lo) rounded once, |lo| <= 2^-50 |hi|: hi is brought into
// [1, 2) by its own exponent (a subnormal first lifted by 2^64, exactly),
// and elementary::scale_finish rounds once, onto the subnormal grid too.
inline double scale2(double hi, double lo, std::int64_t m) {
    if (hi == 0.0) return hi;
    double h = magnitude(hi), l = hi < 0.0 ? -lo : lo;
    if (h < 0x1p-1022) h *= 0x1p64, l *= 0x1p64, m -= 64;
    const std::int64_t e = static_cast<std::int64_t>(bits_of(h) >> 52) - 1023;
    const double down = double_from_bits(static_cast<std::uint64_t>(1023 - e) << 52);
    const double r = elementary::scale_finish(m + e, h * down, l * down);
    return hi < 0.0 ? -r : r;
}

// (x, y) = 2^k (sx, sy), with the larger part of (sx, sy) between 2^-500
// and 2^500 whenever it is finite and nonzero.  k is a multiple of 600.
struct Scaled {
    double x, y;
    int k;
};
inline Scaled scaled(double x, double y) {
    const double m = magnitude(x) > magnitude(y) ? magnitude(x) : magnitude(y);
    if (m > 0x1p500) return {x * 0x1p-600, y * 0x1p-600, 600};
    if (m < 0x1p-500) return {x * 0x1p600, y * 0x1p600, -600};
    return {x, y, 0};
}

// a^2 = hi + lo exactly (Veltkamp's split into 26 + 26 significant bits,
// whose products are exact; elementary::two_prod's faster split leaves the
// product of its two 27-bit halves rounded, 2^-104 relative, which the
// cancellation of x^2 + y^2 - 1 would magnify); |a| <= 2^995.
inline DD exact_square(double a) {
    constexpr double kSplit = 0x1p27 + 1.0;
    const double p = a * a;
    const double as = kSplit * a, ah = as - (as - a), al = a - ah;
    return {p, ((ah * ah - p) + 2.0 * (ah * al)) + al * al};
}

// x^2 + y^2 for |x| >= |y| as hi + lo, to 2^-104 relative (both squares
// exact as double-doubles, one rounding in the low sum).
inline DD sum_of_squares(double x, double y) {
    const DD p = exact_square(x), q = exact_square(y);
    const DD s = elementary::fast_two_sum(p.hi, q.hi);
    return elementary::fast_two_sum(s.hi, s.lo + (p.lo + q.lo));
}

// |x + iy| = 2^k (hi + lo) for finite parts, not both zero, of a Scaled
// pair: the root of the sum of squares and one Newton correction.
inline DD modulus_dd(double x, double y) {
    double a = magnitude(x), b = magnitude(y);
    if (b > a) {
        const double t = a;
        a = b, b = t;
    }
    const DD s = sum_of_squares(a, b);
    const double h = root(s.hi);
    const DD hh = exact_square(h);
    return {h, (((s.hi - hh.hi) - hh.lo) + s.lo) / (h + h)};
}

// log|x + iy| for finite parts, not both zero, as a double-double good to
// about 2^-67 relative.
inline DD log_modulus_dd(double x, double y) {
    namespace t = elementary::exp_log_dd_data;
    using elementary::fast_two_sum;
    using elementary::two_sum;
    const Scaled z = scaled(x, y);
    double a = magnitude(z.x), b = magnitude(z.y);
    if (b > a) {
        const double c = a;
        a = b, b = c;
    }
    const DD p = exact_square(a), q = exact_square(b);
    const double s = p.hi + q.hi;
    if (z.k == 0 && s >= 0.5 && s <= 2.0) {
        // d = a^2 + b^2 - 1 from the four exact pieces: p.hi - 1 by a
        // two_sum (exact), then the other pieces one by one, each sum's
        // rounding error kept.
        const DD t0 = two_sum(p.hi, -1.0);
        const DD t1 = two_sum(t0.hi, q.hi);
        const DD t2 = two_sum(t1.hi, p.lo);
        const DD t3 = two_sum(t2.hi, q.lo);
        const DD d = fast_two_sum(t3.hi, ((t0.lo + t1.lo) + t2.lo) + t3.lo);
        // log1p(d): for |d| < 2^-20 its series to d^4 (the rest is below
        // 2^-80 |d|; only d itself needs its low part); otherwise
        // log(u) + log1p(v) with u = 1 + d.hi rounded (u + u.lo exactly),
        // v = (u.lo + d.lo)/u, |v| <= 2^-52 against |log u| >= 2^-21.
        DD r;
        if (magnitude(d.hi) < 0x1p-20) {
            const double h = d.hi, h2 = h * h;
            r = fast_two_sum(h, d.lo + h2 * ((-0.5 + h * (1.0 / 3)) - 0.25 * h2));
        } else {
            const DD u = fast_two_sum(1.0, d.hi);  // |d.hi| <= 1
            const DD l = elementary::log_dd_normal(u.hi);
            const double v = (u.lo + d.lo) / u.hi;
            r = fast_two_sum(l.hi, l.lo + (v - 0.5 * v * v));
        }
        return {0.5 * r.hi, 0.5 * r.lo};
    }
    // Elsewhere log s = log(s.hi) + s.lo/s.hi, halved, plus k ln2: no
    // cancellation (|log s| >= 0.69 or the scaling moved it far from 0).
    const DD ss = fast_two_sum(s, (p.hi - s) + q.hi + (p.lo + q.lo));
    const DD l = elementary::log_dd(ss.hi);
    const double lo = 0.5 * (l.lo + ss.lo / ss.hi);
    if (z.k == 0) return fast_two_sum(0.5 * l.hi, lo);
    const double kd = static_cast<double>(z.k);
    const DD r = two_sum(kd * t::Ln2hi, 0.5 * l.hi);
    return fast_two_sum(r.hi, r.lo + (lo + kd * t::Ln2lo));
}

// a b = hi + lo exactly (Veltkamp's split, the radian reduction's
// product); |a|, |b| <= 2^995.
inline DD exact_product(double a, double b) {
    DD r;
    elementary::trig::two_product(a, b, r.hi, r.lo);
    return r;
}

// atan2(y, x) as a double-double, for finite parts not both zero; relative
// error below 2^-64 (SSE2 arithmetic only: the x87 partial arctangent
// takes several times as long as the whole of this).  With n = min and
// d = max of |x|, |y| (scaled by 2^-+600 so that every product below is
// exact), t = n/d:
//   t < 2^-300: r = t, the quotient rounded once;
//   t < 1/8:   r = t as q + ql, the quotient and its exact remainder over d;
//   otherwise  c = 1/4, 1/2 or 1 (t below 3/8, below 0.72, above: those
//              bounds balance |r|), r = (n - c d)/(d + c n) as a
//              double-double: n - c d is exact (Sterbenz), d + c n an exact
//              two_sum, the quotient corrected once; |r| <= 0.163;
//   atan t = atan(c) + atan(r), atan(r) = r - r^3/3 + r^5 S(r^2) with r^3/3
//       a double-double and S the series to r^23 (cut below 2^-67 |r|, its
//       roundings below 2^-66 |r|), the low part of r times 1 - r^2;
//   then pi/2 - atan t when |y| > |x|, pi - that when x < 0, the sign of y.
// Two divisions, no comparison with a quotient.  Constants from
// tools/tables/gen_complex_angle.py.
template <bool precise = true>
inline DD atan2_dd(double y, double x) {
    namespace a = angle_data;
    using elementary::dd_add;
    using elementary::fast_two_sum;
    using elementary::two_sum;
    double n = magnitude(y), d = magnitude(x);
    const bool swapped = n > d;
    if (swapped) {
        const double t = n;
        n = d, d = t;
    }
    DD r{0.0, 0.0};
    int j = 0;
    if (n < 0x1p-300 * d) {
        // t^3/3 is below 2^-600 t: the correctly rounded quotient of the
        // parts as they are (a subnormal included) is all.
        r.hi = n / d;
    } else {
        // Scaled into [2^-900, 2^900], so that every product below is exact.
        if (d > 0x1p900) n *= 0x1p-600, d *= 0x1p-600;
        else if (d < 0x1p-600) n *= 0x1p600, d *= 0x1p600;
        if (n < 0.125 * d) {
            r.hi = n / d;
            const DD qd = exact_product(r.hi, d);
            r.lo = ((n - qd.hi) - qd.lo) / d;
        } else {
            j = n < 0.375 * d ? 1 : n < 0.72 * d ? 2 : 4;
            const double c = 0.25 * j;
            const double num = n - c * d;      // exact
            const DD den = two_sum(d, c * n);  // c n exact
            const double q = num / den.hi;
            const DD qd = exact_product(q, den.hi);
            r = fast_two_sum(q, (((num - qd.hi) - qd.lo) - q * den.lo) / den.hi);
        }
    }
    const double* k = a::series;
    DD v;
    if constexpr (precise) {
        const DD r2 = exact_square(r.hi);
        const DD r3 = elementary::dd_mul(r2, r.hi);
        const DD s3 = elementary::dd_mul(r3, {a::third.hi, a::third.lo});
        const double u = r2.hi, u2 = u * u, u4 = u2 * u2;
        const double tail = ((k[0] + u * k[1]) + u2 * (k[2] + u * k[3])) +
                            u4 * (((k[4] + u * k[5]) + u2 * (k[6] + u * k[7])) + u4 * (k[8] + u * k[9]));
        const double rest = (r.lo * (1.0 - u) - s3.lo) + r3.hi * u * tail;
        v = fast_two_sum(r.hi, rest - s3.hi);
    } else {
        // For a result rounded to double: r^3/3 in double too (2^-59.6 |r|).
        const double u = r.hi * r.hi, u2 = u * u, u4 = u2 * u2;
        const double tail = ((k[0] + u * k[1]) + u2 * (k[2] + u * k[3])) +
                            u4 * (((k[4] + u * k[5]) + u2 * (k[6] + u * k[7])) + u4 * (k[8] + u * k[9]));
        v = fast_two_sum(r.hi, r.lo * (1.0 - u) + (r.hi * u) * (u * tail - a::third.hi));
    }
    if (j != 0) v = dd_add({a::atan_quarter[j].hi, a::atan_quarter[j].lo}, v);
    if (swapped) v = dd_add({a::half_pi.hi, a::half_pi.lo}, {-v.hi, -v.lo});
    if (x < 0.0) v = dd_add({a::pi.hi, a::pi.lo}, {-v.hi, -v.lo});
    return __builtin_signbit(y) ? DD{-v.hi, -v.lo} : v;
}

// The angle of (x, y) in (-pi, pi] with the C signs of zeros and the
// angles of infinities: from atan2_dd for finite parts not both zero,
// otherwise from the x87 partial arctangent FPATAN, which gives those
// (and NaN for a NaN part).
[[gnu::cold, gnu::noinline]] inline long double special_angle(double y, double x) {
    x87::ExtendedPrecision scope;
    return scope.pin(x87::fpatan(scope.pin(y), scope.pin(x)));
}
inline bool ordinary_angle(double y, double x) { return is_finite(x) && is_finite(y) && (x != 0.0 || y != 0.0); }
inline double angle(double y, double x) {
    if (ordinary_angle(y, x)) [[likely]] {
        const DD v = atan2_dd<false>(y, x);
        return v.hi + v.lo;
    }
    return static_cast<double>(special_angle(y, x));  // exact: a NaN, zero or a multiple of pi/4 rounded
}
inline float angle_f(double y, double x) {
    if (ordinary_angle(y, x)) [[likely]] {
        const DD v = atan2_dd<false>(y, x);
        return static_cast<float>(v.hi + v.lo);
    }
    return static_cast<float>(static_cast<double>(special_angle(y, x)));
}
inline DD angle_dd(double y, double x) { return atan2_dd(y, x); }

// The sine and cosine of A = hi + lo, |hi| < 3.53e15 (accepted by the
// REAL(8) kernels without a report), lo small against the spacing of hi.
// The bits of g_dscn: its pair kernel inline up to 1.05e8 (saving a call
// across the library and the pair's trip through memory), the export
// beyond.
struct SinCos {
    double s, c;
};
inline SinCos sin_cos(double hi, double lo = 0.0) {
    mivor_complex8 p;
    if (magnitude(hi) <= elementary::trig::XBIG) [[likely]] {
        const __m128d v = elementary::sincos_kernel::pair(hi);
        p = {_mm_cvtsd_f64(v), _mm_cvtsd_f64(_mm_unpackhi_pd(v, v))};
    } else {
        g_dscn(&p, &hi);
    }
    if (lo == 0.0) return {p.re, p.im};
    return {p.re + lo * p.im, p.im - lo * p.re};
}

// e^(ehi + elo) = 2^m (t + tail), t + tail in [1, 2), ready to multiply a
// factor of magnitude at most 1 (a cosine or a sine).  Arguments beyond the
// exponential's reach (|ehi| > 700) are moved by 1024 ln2 first (exactly:
// a two_sum, the low part of ln2 into elo), so that e^E may lie far outside
// the double range while its product with a small factor does not.
// beyond: +1 every nonzero product overflows (E > 1500 > 709.8 + 744.5,
// with factors at least 2^-1074), -1 every product is below half the least
// subnormal (E < -1500), 0 otherwise.  E must not be a NaN.
struct Exp {
    std::int64_t m;
    double t, tail;
    int beyond;
};
inline Exp exp_parts(double ehi, double elo) {
    namespace t = elementary::exp_log_dd_data;
    std::int64_t m = 0;
    if (!(magnitude(ehi) <= 700.0)) {
        if (ehi > 1500.0) return {0, 0.0, 0.0, 1};
        if (ehi < -1500.0) return {0, 0.0, 0.0, -1};
        const double n = ehi > 0 ? 1024.0 : -1024.0;
        const DD r = elementary::two_sum(ehi, -n * t::Ln2hi);
        ehi = r.hi, elo = (r.lo + elo) - n * t::Ln2lo;
        m = static_cast<std::int64_t>(n);
    }
    const elementary::ExpParts e = elementary::exp_dd(ehi, elo);
    return {m + (e.k >> 8), e.t, e.tail, 0};
}

// 2^m (t + tail) f, rounded once; f finite, |f| <= 1.  f = 2^j g with
// |g| in [0.5, 1) exactly, so that (t + tail) g lies in [0.5, 2) and its
// exact product (two_prod) rounds once, either scaled exactly (normal
// results) or by scale2.
inline double times(const Exp& e, double f) {
    if (f == 0.0) return f;  // e^E is positive: the zero keeps its sign
    if (e.beyond != 0) return with_sign_of(e.beyond > 0 ? __builtin_inf() : 0.0, f);
    std::int64_t j = static_cast<std::int64_t>((bits_of(f) >> 52) & 0x7FF);
    double g = f;
    if (j == 0) {  // subnormal
        g *= 0x1p64;
        j = static_cast<std::int64_t>((bits_of(g) >> 52) & 0x7FF) - 64;
    }
    g = double_from_bits((bits_of(g) & 0x800FFFFFFFFFFFFFu) | (std::uint64_t{1022} << 52));
    const std::int64_t m = e.m + j - 1022;
    const DD p = elementary::two_prod(e.t, g);
    const double lo = p.lo + e.tail * g;
    if (m >= -1021 && m <= 1023) return (p.hi + lo) * pow2(static_cast<int>(m));  // normal: exact scaling
    return scale2(p.hi, lo, m);
}

// (t + tail) f rounded once, f a normal number of magnitude at most 1
// and at least 2^-900 (the error term of the exact product stays normal).
inline double product(const elementary::ExpParts& e, double f) {
    const DD p = elementary::two_prod(e.t, f);
    return p.hi + (p.lo + e.tail * f);
}

// Largest imaginary part whose sine and cosine the REAL(8) kernels give
// without a report (the limit of g_dsin's reduction).
inline constexpr double kAngleLimit = 3530000000000000.0;

// e^(x + iy) with the special values of C99 (Annex G), no report: the
// pair the exponential family and the powers start from.  An imaginary
// part refused by the sine and cosine (infinite, NaN, |y| >= 3.53e15)
// gives what e^x times NaN gives with the infinities of Annex G:
// (+0, +0) for x = -Inf, (+Inf, NaN) for x = +Inf, else (NaN, NaN).
inline mivor_complex8 exp_of(double x, double y) {
    if (y == 0.0) {
        if (x != x) return {x + x, y};
        return {times(exp_parts(x, 0.0), 1.0), y};
    }
    if (!(magnitude(y) < kAngleLimit)) {
        const double nan = y != y ? y + y : __builtin_nan("");
        if (x == -__builtin_inf()) return {0.0, 0.0};
        if (x == __builtin_inf()) return {x, nan};
        return {x != x ? x + x : nan, nan};
    }
    if (x != x) return {x + x, x + x};
    const SinCos sc = sin_cos(y);
    const Exp e = exp_parts(x, 0.0);
    return {times(e, sc.c), times(e, sc.s)};
}

// log|x + iy| with the special values of C99 (Annex G): -Inf for a zero,
// +Inf for an infinite part (a NaN in the other part too), otherwise NaN
// for a NaN part; to 0.5 ulp plus about 2^-13 ulp (a double-double rounded
// once).
inline double log_modulus(double x, double y) {
    if (is_finite(x) && is_finite(y)) {
        if (x == 0.0 && y == 0.0) return -__builtin_inf();
        const DD l = log_modulus_dd(x, y);
        return l.hi + l.lo;
    }
    if (!is_finite(x) && x == x) return magnitude(x);
    if (!is_finite(y) && y == y) return magnitude(y);
    return x != x ? x + x : y + y;  // the NaN, quieted (one operand: the bits do not depend on operand order)
}

// log(x + iy), no report; the imaginary part the extended angle rounded
// once (FPATAN gives the C99 angles of zeros and infinities and NaN for a
// NaN part).
inline mivor_complex8 log_of(double x, double y) { return {log_modulus(x, y), angle(y, x)}; }

}  // namespace mivor::complex
