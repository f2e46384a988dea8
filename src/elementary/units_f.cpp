// REAL(4) circular functions of an angle in degrees or quadrants: g_sind,
// g_cosd, g_tand, g_cotd, g_sinq, g_cosq, g_tanq, g_cotq, and the pair
// g_scnsq for the complex functions.
//
// Sine and cosine (g_sind, g_cosd, g_sinq, g_cosq, g_scnsq).  The argument,
// exact as a double, is reduced exactly in its unit and the polynomial is
// written in that unit, so nothing is converted to radians:
//   degrees    |x| < 2^32: k = x/90 rounded to an integer (x r90, then 1.5 2^52
//              added and subtracted), r = x - 90 k.  90 k is an integer below
//              2^33 and x - 90 k is exact (x is a multiple of 2^-23 once
//              |x| >= 1, |r| < 2^6; below 1, k = 0 and r = x).  x r90 is
//              within 2^-52.2 |x/90| of x/90, below 2^-26.7: a float
//              x >= 2^23 is an integer, whose x/90 is a half-integer exactly
//              or at least 1/90 away from one, so k is one off only for
//              |x| < 2^23 and then |r| exceeds 45 by at most 90 2^-35.8
//              (k = the nearest integer either way where r = +-45 exactly).
//              The signed argument is reduced: sind(-180) = -0 like
//              sind(180).  From 2^32 to the limit the REAL(8) reduction on
//              integers (units.h) gives r and k.
//   quadrants  a = |u| < 2^32: k = a rounded to an integer the same way,
//              r = a - k exact, |r| <= 1/2; from 2^32 on a float is a
//              multiple of 2^9: k mod 4 = 0, r = 0.  The sine takes the sign
//              of u last.
// The quadrant q = k mod 4 (k + 1 for the cosine) picks one of four rows:
//   sin(k 90 + r) = M P,  M = r w + v,
//   q = 0: w = 1, v = -0, P = sin series;   q = 1: w = 0, v = 1, P = cos series;
//   q = 2: w = -1, v = -0, P = sin series;  q = 3: w = 0, v = -1, P = cos series,
// with P(t) = p0 + t (p1 + ... + t p5) in t = r^2 (units_f_data.h):
// sin(a r) = r Ps(t), cos(a r) = Pc(t).  M is exact (r, -r, +-1; v = -0
// keeps the sign of a zero r, and a zero r in quadrant 2 gives -0), so
// every multiple of a right angle gives exactly +-0 or +-1, and one
// polynomial is evaluated without a branch on the quadrant.
//
// Error, relative, of the double before the one rounding to REAL(4):
//   sin  the fit 2^-47.6; t rounded (2^-53) moves P by at most 0.11 of
//        that, as t p1/p0 <= (pi/4)^2/6 = 0.103; the two last additions
//        of P (p0 + t p1 and a + t2 (...)) round by 2^-53 each, the
//        higher terms (at most 0.0081 of P) add less than 2^-58, the
//        product M P 2^-53: below 2^-47.5.
//   cos  the fit 2^-43.6; p0 + t p1 and the last addition round by 2^-53
//        each, relative to a result of at least 0.70, and the other
//        roundings (t, t2, the products, b + t2 c: a few 2^-53 of terms
//        of at most 0.30) weigh at most 0.30/0.70 of theirs: below
//        2^-43.5.
// So the REAL(4) result is within 0.5 + 2^-18.5 ulp and correctly rounded
// unless the function lies within 2^-18.5 ulp of a half-way point (double
// rounding of a subnormal result is covered by the same bound); the counts
// over every 127th argument are in the README.
//
// Tangent and cotangent: the same exact reductions (units.h), r turned
// into radians in double (2^-53 relative) and the REAL(4) radian
// polynomials (sincos_f.h, 2^-47.4 and 2^-43.5) for sin and cos, their
// quotient within 2^-43 of the function.
//
// Reports, direct form, REAL(4) operand:
//   g_sind, g_cosd  1361: |x| >= 2.0299994561825997e17 (the REAL(8) limit),
//                   Inf, NaN; the quiet NaN or 0.70710677 (0x3F3504F3).
//   g_tand, g_cotd  1363 for the same arguments (NaN or 1.0), 1365 at the
//                   poles (+Inf or 0x7F7FFFEE, either sign).
//   g_tanq, g_cotq  1355 for both: poles, and Inf or NaN arguments.
//   g_sinq, g_cosq, g_scnsq  no report: no limit, and Inf or NaN give NaN.
#include <bit>
#include <cmath>
#include <cstdint>

#include "elementary/lanes.h"
#include "elementary/sincos_f.h"
#include "elementary/units.h"
#include "elementary/units_f_data.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

using units::Reduced;

inline constexpr float kSubstitute_F = 0x1.6a09e6p-1f;  // 0.70710677, 0x3F3504F3

struct Unit {
    double radians;  // one unit in radians, rounded: pi/180 or pi/2
    bool degrees;
    Error refused, pole;
};
inline constexpr Unit kDegrees{0x1.1df46a2529d39p-6, true, Error::tan_cot_degree_refused_r4,
                               Error::tan_cot_degree_pole_r4};
inline constexpr Unit kQuadrants{0x1.921fb54442d18p+0, false, Error::tan_cot_quadrant_r4,
                                 Error::tan_cot_quadrant_r4};

template <const Unit& u>
inline bool refused(double x) {
    if constexpr (u.degrees) return units::degrees_refused(x);
    return !(trig::magnitude(x) < HUGE_VAL);
}

// Degrees: the signed argument; quadrants: its magnitude.
template <const Unit& u>
inline Reduced reduce(double x) {
    if constexpr (u.degrees) return units::reduce_degrees(x);
    return units::reduce_quadrants(trig::magnitude(x));
}


// The odd functions of the quadrant forms take the sign of the argument last.
template <const Unit& u>
inline double signed_like(double v, double x) {
    if constexpr (u.degrees) return v;
    return trig::flip_by(v, trig::sign_of(x));
}

[[gnu::cold, gnu::noinline]] float not_finite(float x) { return x != x ? x + x : _NaN_F; }

// The four rows of a unit, by the quadrant (see the top of the file),
// stored by columns: c[j][q] is term j of row q (w, v, then p0..p5), so
// that the quadrant indexes each load directly (scaled by 8).
struct alignas(64) Rows {
    double c[8][4];
};
constexpr Rows make_rows(const double (&s)[6], const double (&c)[6]) {
    Rows t{};
    const double w[4] = {1.0, 0.0, -1.0, 0.0}, v[4] = {-0.0, 1.0, -0.0, -1.0};
    for (int q = 0; q < 4; ++q) {
        t.c[0][q] = w[q];
        t.c[1][q] = v[q];
        for (int i = 0; i < 6; ++i) t.c[2 + i][q] = (q & 1) ? c[i] : s[i];
    }
    return t;
}
inline constexpr Rows kDegreeRows = make_rows(units_f_data::kDegreeSin, units_f_data::kDegreeCos);
inline constexpr Rows kQuadrantRows = make_rows(units_f_data::kQuadrantSin, units_f_data::kQuadrantCos);

// The pair (sin, cos) of g_scnsq: row q in lane 0, row q + 1 in lane 1,
// each lane the operations of `series`, so the bits of g_sinq and g_cosq.
struct PairRow {
    Lanes c[8];
};
struct PairRows {
    PairRow q[4];
};
constexpr PairRows make_pairs(const Rows& r) {
    PairRows t{};
    for (int q = 0; q < 4; ++q)
        for (int j = 0; j < 8; ++j) t.q[q].c[j] = Lanes{{r.c[j][q], r.c[j][(q + 1) & 3]}};
    return t;
}
inline constexpr PairRows kQuadrantPairs = make_pairs(kQuadrantRows);

template <const Unit& u>
constexpr const Rows& rows_of() {
    if constexpr (u.degrees) return kDegreeRows;
    return kQuadrantRows;
}

// sin(90 k + r) in the unit, row q = k mod 4.  P by pairs of terms
// (Estrin's scheme): half the dependent steps of Horner's rule, which is
// what limits the calls that overlap.
inline double series(const Rows& rows, std::uint32_t q, double r) {
    const auto& c = opaque(rows).c;
    const double t = r * r;
    const double t2 = t * t;
    const double a = c[2][q] + t * c[3][q], b = c[4][q] + t * c[5][q], d = c[6][q] + t * c[7][q];
    return (r * c[0][q] + c[1][q]) * (a + t2 * (b + t2 * d));
}

// Below 2^32 (float bits 0x4F800000, compared without the sign) the
// reduction runs in double; the test on the bits keeps it on the integer
// side, beside the floating-point work.
inline constexpr std::uint32_t kFastLimitBits = 0x4F800000u;
inline bool fast(float x) { return std::bit_cast<std::uint32_t>(x) << 1 < kFastLimitBits << 1; }

// Below 2^32: r, and the row q = k + shift mod 4.  Degrees reduce the
// signed argument, quadrants its magnitude.  The low word of
// s = k + 1.5 2^52 is k modulo 2^32 (two's complement).
struct Small {
    double r;
    std::uint32_t q;
};
template <const Unit& u>
inline Small reduce_small(double x, std::uint32_t shift) {
    double s, r;
    if constexpr (u.degrees) {
        s = x * units::r90 + trig::BG;
        r = x - (s - trig::BG) * 90.0;
    } else {
        s = x + trig::BG;
        r = x - (s - trig::BG);
    }
    return {r, (trig::low32(s) + shift) & 3u};
}

template <const Unit& u, bool cosine>
float sin_cos(const float* arg);

template <bool cosine>
[[gnu::cold, gnu::noinline]] float refuse_degrees(float x) {
    return report::settle_direct(
        x, [](float x) { return !units::degrees_refused(x); }, [](float x) { return sin_cos<kDegrees, cosine>(&x); },
        report::fail(Error::sin_cos_degree_r4, _NaN_F, kSubstitute_F));
}

// From 2^32 on, and the refused or non-finite arguments.  Called with the
// export's own operand and convention (noipa), so that the export jumps to
// it: a call would make every 32-bit call realign its stack.
template <const Unit& u, bool cosine>
[[gnu::cold, gnu::noinline]] float sin_cos_large(const float* arg) {
    const float x = *arg;
    const double xd = x;
    if (refused<u>(xd)) {
        if constexpr (u.degrees) return refuse_degrees<cosine>(x);
        return not_finite(x);
    }
    const Reduced rd = reduce<u>(xd);
    const double v = series(rows_of<u>(), (rd.k + (cosine ? 1 : 0)) & 3u, rd.r);
    if constexpr (cosine) return static_cast<float>(v);
    return static_cast<float>(signed_like<u>(v, xd));
}

template <const Unit& u, bool cosine>
float sin_cos(const float* arg) {
    const float x = *arg;
    if (!fast(x)) return sin_cos_large<u, cosine>(arg);
    const double xd = x;
    // The quadrant sine of a negative u is the negated sine of |u|: the
    // row two quadrants on, which negates M exactly (zeros included).
    const std::uint32_t shift =
        cosine ? 1u : u.degrees ? 0u : (std::bit_cast<std::uint32_t>(x) >> 31) << 1;
    const Small sm = reduce_small<u>(u.degrees ? xd : trig::magnitude(xd), shift);
    return static_cast<float>(series(rows_of<u>(), sm.q, sm.r));
}

template <const Unit& u, bool cotangent>
float tan_cot(float x);

template <const Unit& u, bool cotangent>
[[gnu::cold, gnu::noinline]] float refuse_tan(float x) {
    return report::settle_direct(
        x, [](float x) { return !refused<u>(x); }, tan_cot<u, cotangent>, report::fail(u.refused, _NaN_F, 1.0f));
}

// A corrected argument that is refused goes back to the top, which reports
// that.
template <const Unit& u, bool cotangent>
[[gnu::cold, gnu::noinline]] float pole(float x) {
    return report::settle_direct(
        x,
        [](float x) {
            if (refused<u>(x)) return true;
            const Reduced rd = reduce<u>(x);
            return !(rd.r == 0.0 && ((rd.k & 1) != 0) != cotangent);
        },
        tan_cot<u, cotangent>, report::fail(u.pole, _Inf_F, kHuge_F));
}

template <const Unit& u, bool cotangent>
float tan_cot(float x) {
    const double xd = x;
    if (refused<u>(xd)) return refuse_tan<u, cotangent>(x);
    const Reduced rd = reduce<u>(xd);
    const bool odd = rd.k & 1;
    const bool want_cot = odd != cotangent;
    if (want_cot && rd.r == 0.0) return pole<u, cotangent>(x);
    const __m128d sc = sincos_f::sin_cos_poly(rd.r * u.radians);
    const double s = _mm_cvtsd_f64(sc), c = _mm_cvtsd_f64(_mm_unpackhi_pd(sc, sc));
    const double v = want_cot ? c / s : s / c;
    return static_cast<float>(signed_like<u>(odd ? -v : v, xd));
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" MIVOR_DISPATCHED float g_sind(const float* arg) { return sin_cos<kDegrees, false>(arg); }
extern "C" MIVOR_DISPATCHED float g_cosd(const float* arg) { return sin_cos<kDegrees, true>(arg); }
extern "C" MIVOR_DISPATCHED float g_tand(const float* arg) { return tan_cot<kDegrees, false>(*arg); }
extern "C" MIVOR_DISPATCHED float g_cotd(const float* arg) { return tan_cot<kDegrees, true>(*arg); }
extern "C" MIVOR_DISPATCHED float g_sinq(const float* arg) { return sin_cos<kQuadrants, false>(arg); }
extern "C" MIVOR_DISPATCHED float g_cosq(const float* arg) { return sin_cos<kQuadrants, true>(arg); }
extern "C" MIVOR_DISPATCHED float g_tanq(const float* arg) { return tan_cot<kQuadrants, false>(*arg); }
extern "C" MIVOR_DISPATCHED float g_cotq(const float* arg) { return tan_cot<kQuadrants, true>(*arg); }

// (sin, cos) of u pi/2 in REAL(4): one reduction, the two rows of
// g_sinq and g_cosq side by side in the two lanes; no report (Inf and NaN
// give NaNs).
extern "C" MIVOR_DISPATCHED mivor_complex4* g_scnsq(mivor_complex4* result, const float* arg) {
    const float x = *arg;
    const double xd = x;
    if (!fast(x)) {
        result->re = sin_cos_large<kQuadrants, false>(arg);
        result->im = sin_cos_large<kQuadrants, true>(arg);
        return result;
    }
    const Small sm = reduce_small<kQuadrants>(trig::magnitude(xd), 0);
    const Lanes* c = opaque(kQuadrantPairs).q[sm.q].c;
    const __m128d r = _mm_set1_pd(sm.r), t = _mm_mul_pd(r, r), t2 = _mm_mul_pd(t, t);
    const __m128d a = _mm_add_pd(lanes(c[2]), _mm_mul_pd(t, lanes(c[3])));
    const __m128d b = _mm_add_pd(lanes(c[4]), _mm_mul_pd(t, lanes(c[5])));
    const __m128d d = _mm_add_pd(lanes(c[6]), _mm_mul_pd(t, lanes(c[7])));
    const __m128d p = _mm_add_pd(a, _mm_mul_pd(t2, _mm_add_pd(b, _mm_mul_pd(t2, d))));
    __m128d v = _mm_mul_pd(_mm_add_pd(_mm_mul_pd(r, lanes(c[0])), lanes(c[1])), p);
    v = _mm_xor_pd(v, trig::sign_of(xd));  // the sine (lane 0) takes the sign of u
    const __m128 f = _mm_cvtpd_ps(v);
    result->re = _mm_cvtss_f32(f);
    result->im = _mm_cvtss_f32(_mm_shuffle_ps(f, f, 1));
    return result;
}
