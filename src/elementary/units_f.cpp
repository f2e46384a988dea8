// REAL(4) circular functions of an angle in degrees or quadrants: g_sind,
// g_cosd, g_tand, g_cotd, g_sinq, g_cosq, g_tanq, g_cotq, and the pair
// g_scnsq for the complex functions.
//
// The argument, exact as a double, is reduced exactly in its unit by the
// REAL(8) reductions (units.h), so the reduced r is exact and every multiple
// of a right angle gives exactly 0 or +-1 (+-Inf reported for the poles).
// r is then turned into radians in double (one rounding, 2^-53 relative) and
// the REAL(4) radian polynomials (sincos_f.h, relative errors 2^-47.4 and
// 2^-43.5) give sin and cos, their quotient tan or cot.  The double value is
// within 2^-43 (relative) of the function, and the one rounding to REAL(4)
// is correct unless the function lies within 2^-19 ulp of a half-way point;
// the exhaustive check over all 2^32 arguments is in the README.
//
// Reports, direct form, REAL(4) operand:
//   g_sind, g_cosd  1361: |x| >= 2.0299994561825997e17 (the REAL(8) limit),
//                   Inf, NaN; the quiet NaN or 0.70710677 (0x3F3504F3).
//   g_tand, g_cotd  1363 for the same arguments (NaN or 1.0), 1365 at the
//                   poles (+Inf or 0x7F7FFFEE, either sign).
//   g_tanq, g_cotq  1355 for both: poles, and Inf or NaN arguments.
//   g_sinq, g_cosq, g_scnsq  no report: no limit, and Inf or NaN give NaN.
#include <cmath>

#include "elementary/sincos_f.h"
#include "elementary/units.h"
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

template <const Unit& u, bool cosine>
float sin_cos(float x);

template <bool cosine>
[[gnu::cold, gnu::noinline]] float refuse_degrees(float x) {
    return report::settle_direct(
        x, [](float x) { return !units::degrees_refused(x); }, sin_cos<kDegrees, cosine>,
        report::fail(Error::sin_cos_degree_r4, _NaN_F, kSubstitute_F));
}

template <const Unit& u, bool cosine>
float sin_cos(float x) {
    const double xd = x;
    if (refused<u>(xd)) {
        if constexpr (u.degrees) return refuse_degrees<cosine>(x);
        return not_finite(x);
    }
    const Reduced rd = reduce<u>(xd);
    const __m128d sc = sincos_f::sin_cos_poly(rd.r * u.radians);
    const double v = units::by_quadrant(rd.k + (cosine ? 1 : 0), _mm_cvtsd_f64(sc), _mm_cvtsd_f64(_mm_unpackhi_pd(sc, sc)));
    if constexpr (cosine) return static_cast<float>(v);
    return static_cast<float>(signed_like<u>(v, xd));
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

extern "C" MIVOR_DISPATCHED float g_sind(const float* arg) { return sin_cos<kDegrees, false>(*arg); }
extern "C" MIVOR_DISPATCHED float g_cosd(const float* arg) { return sin_cos<kDegrees, true>(*arg); }
extern "C" MIVOR_DISPATCHED float g_tand(const float* arg) { return tan_cot<kDegrees, false>(*arg); }
extern "C" MIVOR_DISPATCHED float g_cotd(const float* arg) { return tan_cot<kDegrees, true>(*arg); }
extern "C" MIVOR_DISPATCHED float g_sinq(const float* arg) { return sin_cos<kQuadrants, false>(*arg); }
extern "C" MIVOR_DISPATCHED float g_cosq(const float* arg) { return sin_cos<kQuadrants, true>(*arg); }
extern "C" MIVOR_DISPATCHED float g_tanq(const float* arg) { return tan_cot<kQuadrants, false>(*arg); }
extern "C" MIVOR_DISPATCHED float g_cotq(const float* arg) { return tan_cot<kQuadrants, true>(*arg); }

// (sin, cos) of u pi/2 in REAL(4): one reduction, both polynomials; the
// same bits as g_sinq and g_cosq, no report (Inf and NaN give NaNs).
extern "C" MIVOR_DISPATCHED mivor_complex4* g_scnsq(mivor_complex4* result, const float* arg) {
    const float x = *arg;
    const double xd = x;
    if (refused<kQuadrants>(xd)) {
        const float v = not_finite(x);
        result->re = v;
        result->im = v;
        return result;
    }
    const Reduced rd = reduce<kQuadrants>(xd);
    const __m128d sc = sincos_f::sin_cos_poly(rd.r * kQuadrants.radians);
    const double s = _mm_cvtsd_f64(sc), c = _mm_cvtsd_f64(_mm_unpackhi_pd(sc, sc));
    result->re = static_cast<float>(signed_like<kQuadrants>(units::by_quadrant(rd.k, s, c), xd));
    result->im = static_cast<float>(units::by_quadrant(rd.k + 1, s, c));
    return result;
}
