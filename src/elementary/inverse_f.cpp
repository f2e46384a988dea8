// REAL(4) inverse circular functions other than g_atan: g_asin, g_acos,
// g_atan2 and the degree and quadrant forms g_asind, g_acosd, g_atand,
// g_atan2d, g_asinq, g_acosq, g_atanq, g_atan2q (with _jwe_ga1q).
//
// Computed in double and rounded once to REAL(4).
//
// Arcsine, arccosine: the rational forms of the REAL(8) kernels
// (inverse.h) evaluated in SSE2 double rather than x87 extended; the
// cancellations inside their sums (factors up to 19) and the rounding of
// each step leave the double value within 2^-50 (relative) of the function,
// so the REAL(4) result is the correctly rounded one unless the function
// lies within 2^-26 of an ulp of a rounding boundary.  Measured over all 2^32
// arguments: see the README.
//
// ATAN2 (and the one-argument forms as atan2(x, 1)): with a = |y|, b = |x|
// (exact in double, and so are their squares: 48-bit products far from
// overflow and underflow), h = sqrt(a^2 + b^2) and the smaller of a, b over
// h is s in [0, sqrt(1/2)]: theta = asin s or pi/2 - asin s, by the same
// rational forms, then pi - theta for x < 0 and the sign of y.  Each of the
// four roundings before asin adds at most 2^-53 to s, asin amplifies that
// by at most 1.27 there, and the complements at most double it: the double
// angle is within 2^-49.5 of atan2.  a = b gives exactly half a right angle
// in every unit, infinities give exact multiples of it; a NaN gives a NaN.
//
// Reports (direct form, REAL(4) operand), fallbacks as the REAL(8) forms:
//   |x| > 1     asin, acos: 217 (radians), 1367 (degrees), 1357 (quadrants);
//               the quiet NaN or the clamped value (asin +-pi/2 0x3FC90FDB,
//               0xBFC90FDB, -pi/2 for x <= 0; acos 0.0 for x > 0, else pi
//               0x40490FDB; +-90, 0, 180 in degrees; +-1, 0, 2 in quadrants).
//   y = x = 0   atan2: 220, 1369, 1359, naming the copies of y and x and
//               describing neither; the quiet NaN or +0.0.  Otherwise a -0.0
//               argument counts as +0.0 (atan2(-0.0, -1.0) = +pi).
#include <cmath>

#include "elementary/inverse.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

using namespace inverse;

inline double asin_inner_d(double x) {
    const double z = x * x;
    if (__builtin_fabs(x) < 0.5) {
        const double p = (((a5 * z + a4) * z + a3) * z + a2) * z + a1;
        const double q = ((((z + b3) * z + b2) * z + b1) * z) + b0;
        return x + (x * z) * (p / q);
    }
    const double p = ((((c5 * z + c4) * z + c3) * z + c2) * z + c1) * z + c0;
    const double q = (((((z + d4) * z + d3) * z + d2) * z + d1) * z) + d0;
    return x + x * (p / q);
}

inline double acos_outer_d(double a) {
    const double w = 1.0 - a;
    const double t = __builtin_sqrt(w);
    const double p = (((p4 * w + p3) * w + p2) * w + p1) * w + p0;
    const double q = ((((w + q3) * w + q2) * w + q1) * w) + q0;
    return t + t * (p / q);
}

struct Unit {
    double per_radian;
    bool radians;
    double right, straight;  // exact in degrees and quadrants; pi/2, pi rounded for radians
    Error domain, zeros;
    float asin_clamp, acos_clamp;  // +end of asin, the x <= 0 end of acos
};

inline constexpr Unit kRadians{1.0, true, hp1, pi1, Error::asin_acos_domain_r4, Error::atan2_zeros_r4,
                               0x1.921fb6p+0f, 0x1.921fb6p+1f};
inline constexpr Unit kDegrees{0x1.ca5dc1a63c1f8p+5, false, 90.0, 180.0, Error::asin_acos_degree_r4,
                               Error::atan2_degree_r4, 90.0f, 180.0f};
inline constexpr Unit kQuadrants{0x1.45f306dc9c883p-1, false, 1.0, 2.0, Error::asin_acos_quadrant_r4,
                                 Error::atan2_quadrant_r4, 1.0f, 2.0f};

template <const Unit& u>
inline double scaled(double radians) {
    if constexpr (u.radians) return radians;
    return radians * u.per_radian;
}

// |x| <= 1 or NaN.
template <const Unit& u, bool cosine>
inline double asin_acos(double x) {
    const double a = __builtin_fabs(x);
    if constexpr (!cosine) {
        if (a < rh) return scaled<u>(asin_inner_d(x));
        const double v = u.right - scaled<u>(acos_outer_d(a));
        return x < 0.0 ? -v : v;
    } else {
        if (a < rh) return u.right - scaled<u>(asin_inner_d(x));
        const double v = scaled<u>(acos_outer_d(a));
        return x > 0.0 ? v : u.straight - v;  // NaN: a NaN
    }
}

template <const Unit& u, bool cosine>
float asin_acos_f(float x);

template <const Unit& u, bool cosine>
[[gnu::cold, gnu::noinline]] float out_of_domain(float x) {
    return report::settle<report::Form::direct>(
        [](float x) -> report::Step<float, float> {
            if (!(__builtin_fabsf(x) > 1.0f)) return asin_acos_f<u, cosine>(x);  // corrected
            float clamped;
            if constexpr (cosine) clamped = x > 0.0f ? 0.0f : u.acos_clamp;
            else clamped = x > 0.0f ? u.asin_clamp : -u.asin_clamp;
            return report::fail(u.domain, _NaN_F, clamped);
        },
        x);
}

template <const Unit& u, bool cosine>
float asin_acos_f(float x) {
    if (__builtin_fabsf(x) > 1.0f) return out_of_domain<u, cosine>(x);
    if constexpr (&u == &kQuadrants) {
        // The outer range through _jwe_ga1q, as the radian pair goes through
        // its acos.
        if (!(__builtin_fabsf(x) < float(rh))) {
            const float a = __builtin_fabsf(x);
            if constexpr (cosine) return static_cast<float>(_jwe_ga1q(&x));
            const double v = 1.0 - _jwe_ga1q(&a);
            return static_cast<float>(x < 0.0f ? -v : v);
        }
    }
    return static_cast<float>(asin_acos<u, cosine>(x));
}

// The angle of (x, y) in the unit, x and y not both zero; the sign of y
// (of a zero too) is the sign of the result.
template <const Unit& u>
inline double angle(double y, double x) {
    const double a = __builtin_fabs(y), b = __builtin_fabs(x);
    double theta;  // the angle of (b, a), in [0, a right angle]
    if (a == b) {
        theta = 0.5 * u.right;  // also both infinite; a NaN is not equal
    } else if (a == HUGE_VAL || b == HUGE_VAL) {
        theta = a == HUGE_VAL ? u.right : 0.0;
    } else {
        const double h = __builtin_sqrt(a * a + b * b);
        theta = a < b ? scaled<u>(asin_inner_d(a / h)) : u.right - scaled<u>(asin_inner_d(b / h));
    }
    if (x < 0.0) theta = u.straight - theta;
    return std::signbit(y) ? -theta : theta;  // NaN: asin_inner_d gave a NaN
}

template <const Unit& u>
[[gnu::cold, gnu::noinline]] float both_zero(float y, float x) {
    return report::settle<report::Form::direct>(
        [](float y, float x) -> report::Step<float, float, float> {
            if (!(y == 0.0f && x == 0.0f)) return static_cast<float>(angle<u>(y + 0.0, x + 0.0));  // corrected
            return report::fail(u.zeros, _NaN_F, 0.0f).described(report::Describe::none);
        },
        y, x);
}

template <const Unit& u>
inline float atan2_f(const float* py, const float* px) {
    const float y = *py, x = *px;
    if (y == 0.0f && x == 0.0f) return both_zero<u>(y, x);
    return static_cast<float>(angle<u>(y + 0.0, x + 0.0));  // -0 counts as +0
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

// acos x in quadrants for sqrt(1/2) <= |x| <= 1 (checked by the caller).
extern "C" double _jwe_ga1q(const float* arg) {
    const double x = *arg;
    const double v = acos_outer_d(__builtin_fabs(x)) * kQuadrants.per_radian;
    return x < 0.0 ? 2.0 - v : v;
}

extern "C" float g_asin(const float* arg) { return asin_acos_f<kRadians, false>(*arg); }
extern "C" float g_acos(const float* arg) { return asin_acos_f<kRadians, true>(*arg); }
extern "C" float g_asind(const float* arg) { return asin_acos_f<kDegrees, false>(*arg); }
extern "C" float g_acosd(const float* arg) { return asin_acos_f<kDegrees, true>(*arg); }
extern "C" float g_asinq(const float* arg) { return asin_acos_f<kQuadrants, false>(*arg); }
extern "C" float g_acosq(const float* arg) { return asin_acos_f<kQuadrants, true>(*arg); }

extern "C" float g_atan2(const float* y, const float* x) { return atan2_f<kRadians>(y, x); }
extern "C" float g_atan2d(const float* y, const float* x) { return atan2_f<kDegrees>(y, x); }
extern "C" float g_atan2q(const float* y, const float* x) { return atan2_f<kQuadrants>(y, x); }
extern "C" float g_atand(const float* arg) { return static_cast<float>(angle<kDegrees>(*arg, 1.0)); }
extern "C" float g_atanq(const float* arg) { return static_cast<float>(angle<kQuadrants>(*arg, 1.0)); }
