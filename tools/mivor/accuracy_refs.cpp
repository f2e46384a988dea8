// The reference registry of `mivor accuracy`.
//
// One row per export: name, MPFR function, argument kind, domain, hard
// ranges (and, for REAL(4) functions, an optional fast reference for
// --exhaustive).  Rows of exports that are not implemented yet are skipped
// by the tool, so a row can come before its function.
//
// The domain holds only arguments that the export answers without an error
// report: the tool declines every report (and counts them), but a domain
// that reaches into the reporting range measures the fallback values, not
// the function.  Hard ranges are clipped to the domain.
//
// To add a function: one Reference line below, reusing or adding a range
// set.  Functions MPFR lacks take a function with the MpfrFunction
// signature (the degree and quadrant forms use MPFR's sinu, asinu, ...
// with 360 or 4 to the turn); ATAN2 and its unit forms an MpfrFunction2;
// a pair (sin and cos, sinh and cosh) one line per value.
#include "accuracy_refs.h"

#include <cfloat>
#include <cmath>

namespace mivor::accuracy {
namespace {

constexpr double kDmax = DBL_MAX;
constexpr float kFmax = FLT_MAX;

// ---- hard ranges, shared by kind -------------------------------------

constexpr Range kCbrtHard8[] = {
    {"subnormals", Spread::Bits, -0x1p-1022, 0x1p-1022},
    {"near overflow", Spread::LogUniform, 0x1p1000, kDmax, true},
    {"near 1", Spread::Bits, 0.5, 2.0},
    {"table row starts (1 + j/16, times 1, 2, 4)", Spread::NearMultiples, 16, 128, false, nullptr, 1.0 / 16},
    {"tiny normals", Spread::LogUniform, 0x1p-1022, 0x1p-1000, true},
};
constexpr Range kCbrtHard4[] = {
    {"subnormals", Spread::Bits, -0x1p-126, 0x1p-126},
    {"near overflow", Spread::LogUniform, 0x1p120, kFmax, true},
    {"near 1", Spread::Bits, 0.5, 2.0},
    {"table row starts (1 + j/16, times 1, 2, 4)", Spread::NearMultiples, 16, 128, false, nullptr, 1.0 / 16},
};

constexpr Range kSqrtHard8[] = {
    {"subnormals", Spread::Bits, 0, 0x1p-1022},
    {"near overflow", Spread::LogUniform, 0x1p1000, kDmax},
    {"near 1", Spread::Bits, 0.5, 2.0},
};
constexpr Range kSqrtHard4[] = {
    {"subnormals", Spread::Bits, 0, 0x1p-126},
    {"near overflow", Spread::LogUniform, 0x1p120, kFmax},
    {"near 1", Spread::Bits, 0.5, 2.0},
};

// exp: both ends of the range, tiny arguments (result near 1), and the
// table points k ln2/256 where the reduced argument is near 0.
constexpr Range kExpHard8[] = {
    {"near overflow", Spread::Bits, 700.0, 709.78},
    // (-708.3984375, -708.39776) is left out: there the fast path's scale
    // wraps to +0 on purpose.
    {"subnormal results (guarded path)", Spread::Bits, -709.08, -708.3984375},
    {"near underflow", Spread::Bits, -708.3977, -700.0},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
    {"near k ln2/256", Spread::NearMultiples, -180000, 180000, false, mpfr_const_log2, 1.0 / 256},
};
constexpr Range kExpHard4[] = {
    {"near overflow", Spread::Bits, 80.0, 88.72},
    {"near underflow", Spread::Bits, -87.3, -80.0},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};

// exp2, exp10: the same ends, and tiny arguments.
constexpr Range kExp2Hard8[] = {
    {"near overflow", Spread::Bits, 1000.0, 1023.999},
    {"subnormal results", Spread::Bits, -1023.0, -1000.0},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kExp10Hard8[] = {
    {"near overflow", Spread::Bits, 300.0, 308.25},
    {"subnormal results", Spread::Bits, -307.9, -300.0},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kExp2Hard4[] = {
    {"near overflow", Spread::Bits, 120.0, 127.99},
    {"subnormal results", Spread::Bits, -149.0, -120.0},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};
constexpr Range kExp10Hard4[] = {
    {"near overflow", Spread::Bits, 35.0, 38.5},
    {"subnormal results", Spread::Bits, -44.8, -35.0},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};

// log: near 1 (cancellation), subnormals, the top of the range.
constexpr Range kLogHard8[] = {
    {"near 1", Spread::Bits, 0.99, 1.01},
    {"subnormals", Spread::Bits, 0x1p-1074, 0x1p-1022},
    {"near overflow", Spread::LogUniform, 0x1p1000, kDmax},
};
constexpr Range kLogHard4[] = {
    {"near 1", Spread::Bits, 0.99, 1.01},
    {"subnormals", Spread::Bits, 0x1p-149, 0x1p-126},
    {"near overflow", Spread::LogUniform, 0x1p120, kFmax},
};

// sin, cos: near multiples of pi/2 (tiny reduced arguments) over the ladder,
// the Cody-Waite and the three-constant ranges; tiny arguments.
constexpr Range kTrigHard8[] = {
    {"near k pi/2, |k| <= 8", Spread::NearMultiples, -8, 8, false, mpfr_const_pi, 0.5},
    {"near k pi/2, k to 6.7e7", Spread::NearMultiples, 9, 67000000, false, mpfr_const_pi, 0.5},
    {"near k pi/2, k to 2^31", Spread::NearMultiples, 67000000, 2147483647, false, mpfr_const_pi, 0.5},
    {"tiny", Spread::LogUniform, 0x1p-40, 0x1p-5, true},
    {"large", Spread::LogUniform, 1.05e8, 3.5e15, true},
};
constexpr Range kTrigHard4[] = {
    {"near k pi/2, |k| <= 8", Spread::NearMultiples, -8, 8, false, mpfr_const_pi, 0.5},
    {"near k pi/2, k to 5e5", Spread::NearMultiples, 9, 520000, false, mpfr_const_pi, 0.5},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-5, true},
};

// asin, acos: both ends, the hand-overs at 1/2 and sqrt(1/2), tiny.
constexpr Range kAsinHard8[] = {
    {"near 1", Spread::Bits, 0.999, 1.0},
    {"near -1", Spread::Bits, -1.0, -0.999},
    {"near 1/2", Spread::Bits, 0.49, 0.51},
    {"near sqrt(1/2)", Spread::Bits, 0.70, 0.715},
    {"near -sqrt(1/2)", Spread::Bits, -0.715, -0.70},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kAsinHard4[] = {
    {"near 1", Spread::Bits, 0.999, 1.0},
    {"near -1", Spread::Bits, -1.0, -0.999},
    {"near sqrt(1/2)", Spread::Bits, 0.70, 0.715},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};
// atan: tiny, near 1, huge.
constexpr Range kAtanHard8[] = {
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
    {"near 1", Spread::Bits, 0.9, 1.1},
    {"near -1", Spread::Bits, -1.1, -0.9},
    {"huge", Spread::LogUniform, 0x1p20, 0x1p60, true},
};
constexpr Range kAtanHard4[] = {
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
    {"near 1", Spread::Bits, 0.9, 1.1},
    {"huge", Spread::LogUniform, 0x1p10, 0x1p30, true},
};
// atan2: ratios y/x (see Range).
constexpr Range kAtan2Hard[] = {
    {"y/x tiny (angle near 0, pi)", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
    {"y/x near +-1 (near +-pi/4, +-3pi/4)", Spread::LogUniform, 0.99, 1.01, true},
    {"y/x huge (angle near +-pi/2)", Spread::LogUniform, 0x1p20, 0x1p60, true},
};

// Degrees and quadrants: the multiples of a right angle and of half of it,
// far ones, the largest accepted arguments, tiny ones.
constexpr double kDegreeMax = 2.0299980817930646e17;  // below the refusal limit
constexpr Range kDegreeHard8[] = {
    {"near k 90, |k| <= 8", Spread::NearMultiples, -8, 8, false, nullptr, 90.0},
    {"near k 90, k to 2^40", Spread::NearMultiples, 9, 1099511627776.0, false, nullptr, 90.0},
    {"near odd k 45", Spread::NearMultiples, -1000001, 1000001, false, nullptr, 45.0},
    {"beyond 2^52", Spread::LogUniform, 0x1p52, kDegreeMax, true},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kDegreeHard4[] = {
    {"near k 90, |k| <= 8", Spread::NearMultiples, -8, 8, false, nullptr, 90.0},
    {"near k 90, k to 2^20", Spread::NearMultiples, 9, 1048576, false, nullptr, 90.0},
    {"near odd k 45", Spread::NearMultiples, -100001, 100001, false, nullptr, 45.0},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};
constexpr Range kQuadrantHard8[] = {
    {"near integers, |k| <= 8", Spread::NearMultiples, -8, 8, false, nullptr, 1.0},
    {"near integers, k to 2^40", Spread::NearMultiples, 9, 1099511627776.0, false, nullptr, 1.0},
    {"near halves", Spread::NearMultiples, -1000001, 1000001, false, nullptr, 0.5},
    {"beyond 2^50", Spread::LogUniform, 0x1p50, 0x1p60, true},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kQuadrantHard4[] = {
    {"near integers, |k| <= 8", Spread::NearMultiples, -8, 8, false, nullptr, 1.0},
    {"near integers, k to 2^20", Spread::NearMultiples, 9, 1048576, false, nullptr, 1.0},
    {"near halves", Spread::NearMultiples, -100001, 100001, false, nullptr, 0.5},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};

// Hyperbolic: the range splits at 1 and 18.4, the overflow end.
constexpr double kCoshMax8 = 710.47;
constexpr double kCoshMax4 = 89.41;
constexpr Range kSinhHard8[] = {
    {"near 1", Spread::Bits, 0.9, 1.1},
    {"near 18.4", Spread::Bits, 18.0, 19.5},
    {"near overflow", Spread::Bits, 700.0, kCoshMax8},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kSinhHard4[] = {
    {"near 1", Spread::Bits, 0.9, 1.1},
    {"near overflow", Spread::Bits, 85.0, kCoshMax4},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};
constexpr Range kSinhQuadrantHard8[] = {  // of x pi/2: 1, 18.4 and the overflow end over pi/2
    {"near 2/pi", Spread::Bits, 0.6, 0.7},
    {"near 11.7", Spread::Bits, 11.4, 12.5},
    {"near overflow", Spread::Bits, 445.0, 452.3},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kTanhHard8[] = {
    {"near 1", Spread::Bits, 0.9, 1.1},
    {"near 18.37", Spread::Bits, 17.5, 20.0},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kTanhHard4[] = {
    {"near 1", Spread::Bits, 0.9, 1.1},
    {"near 9.1", Spread::Bits, 8.0, 10.0},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};

// ---- references MPFR lacks ----------------------------------------------

// The angle units: 360 degrees, 4 quadrants to the turn.
template <unsigned long turn>
int sin_u(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_sinu(y, x, turn, r); }
template <unsigned long turn>
int cos_u(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_cosu(y, x, turn, r); }
template <unsigned long turn>
int asin_u(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_asinu(y, x, turn, r); }
template <unsigned long turn>
int acos_u(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_acosu(y, x, turn, r); }
template <unsigned long turn>
int atan_u(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_atanu(y, x, turn, r); }
template <unsigned long turn>
int atan2_u(mpfr_ptr y, mpfr_srcptr a, mpfr_srcptr b, mpfr_rnd_t r) { return mpfr_atan2u(y, a, b, turn, r); }
// tan and cot in a unit; at a pole +Inf whatever the side, as the library's
// fallback of the pole report.
template <unsigned long turn>
int tan_u(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) {
    const int t = mpfr_tanu(y, x, turn, r);
    if (mpfr_inf_p(y)) mpfr_set_inf(y, 1);
    return t;
}
template <unsigned long turn>
int cot_u(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) {
    mpfr_t t;
    mpfr_init2(t, mpfr_get_prec(y) + 20);
    mpfr_tanu(t, x, turn, MPFR_RNDN);
    int i = 0;
    if (mpfr_zero_p(t)) mpfr_set_inf(y, 1);
    else if (mpfr_inf_p(t)) mpfr_set_zero(y, mpfr_signbit(t) ? -1 : 1);
    else i = mpfr_ui_div(y, 1, t, r);
    mpfr_clear(t);
    return i;
}
int atan2_radians(mpfr_ptr y, mpfr_srcptr a, mpfr_srcptr b, mpfr_rnd_t r) { return mpfr_atan2(y, a, b, r); }
// sinh and cosh of x pi/2 (the quadrant pairs).
template <int (*f)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)>
int of_quadrants(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) {
    mpfr_t t;
    mpfr_init2(t, mpfr_get_prec(y) + 64);
    mpfr_const_pi(t, MPFR_RNDN);
    mpfr_mul(t, t, x, MPFR_RNDN);
    mpfr_div_2ui(t, t, 1, MPFR_RNDN);
    const int i = f(y, t, r);
    mpfr_clear(t);
    return i;
}

// ---- fast references for --exhaustive ----------------------------------

// cbrt: the platform's double cube root (within a few ulps, 2^-50) refined
// by one Newton step in extended precision: the step leaves e^2 = 2^-100
// plus its own roundings, a few units of 2^-64; 2^-60 bounds the sum.
long double fast_cbrt(long double x) {
    const long double y0 = std::cbrt(static_cast<double>(x));
    return y0 - (y0 - x / (y0 * y0)) / 3.0L;
}
// sqrt: FSQRT is correctly rounded to 64 bits.
long double fast_sqrt(long double x) { return std::sqrt(x); }
// The platform's double functions, within a few ulps of double: 2^-50.
long double fast_asin(long double x) { return std::asin(static_cast<double>(x)); }
long double fast_acos(long double x) { return std::acos(static_cast<double>(x)); }
long double fast_atan(long double x) { return std::atan(static_cast<double>(x)); }
long double fast_sinh(long double x) { return std::sinh(static_cast<double>(x)); }
long double fast_cosh(long double x) { return std::cosh(static_cast<double>(x)); }
long double fast_tanh(long double x) { return std::tanh(static_cast<double>(x)); }
// Degrees and quadrants: the REAL(4) argument is reduced exactly by a
// right angle in long double (n right and x - n right are exact: 64-bit
// significand), the remainder turned into radians and rounded to double
// (2^-53), then the platform's double sine or cosine (within an ulp):
// within 2^-51 (relative).
template <int unit>  // 90 or 1
long double fast_sin_cos_u(long double x, bool cosine) {
    constexpr long double radians = unit == 90 ? 0x8efa351294e9c8aep-69L : 0xc90fdaa22168c235p-63L;
    const long double n = std::nearbyint(x / unit);
    const double r = static_cast<double>((x - n * unit) * radians);
    const auto q = static_cast<int>(static_cast<long long>(std::fmod(n, 4.0L)) + 4 + (cosine ? 1 : 0)) & 3;
    const double v = (q & 1) ? std::cos(r) : std::sin(r);
    return (q & 2) ? -v : v;
}
template <int unit>
long double fast_sin_u(long double x) { return fast_sin_cos_u<unit>(x, false); }
template <int unit>
long double fast_tan_u(long double x) {
    const long double s = fast_sin_cos_u<unit>(x, false), c = fast_sin_cos_u<unit>(x, true);
    return c == 0 ? HUGE_VALL : s / c;  // a pole: +Inf, as the library's fallback
}
template <int unit>
long double fast_cot_u(long double x) {
    const long double s = fast_sin_cos_u<unit>(x, false), c = fast_sin_cos_u<unit>(x, true);
    return s == 0 ? HUGE_VALL : c / s;
}
// The inverse forms: the platform's double function (2^-52) times the unit.
constexpr long double kDegPerRad = 0xe52ee0d31e0fbdc3p-58L, kQuadPerRad = 0xa2f9836e4e44152ap-64L;
template <int unit>
long double fast_asin_u(long double x) { return std::asin(static_cast<double>(x)) * (unit == 90 ? kDegPerRad : kQuadPerRad); }
template <int unit>
long double fast_acos_u(long double x) { return std::acos(static_cast<double>(x)) * (unit == 90 ? kDegPerRad : kQuadPerRad); }
template <int unit>
long double fast_atan_u(long double x) { return std::atan(static_cast<double>(x)) * (unit == 90 ? kDegPerRad : kQuadPerRad); }
// sinh, cosh of x pi/2 in long double.
long double fast_sinh_q(long double x) { return std::sinh(x * 0xc90fdaa22168c235p-63L); }
long double fast_cosh_q(long double x) { return std::cosh(x * 0xc90fdaa22168c235p-63L); }
template <int unit>
long double fast_cos_u(long double x) { return fast_sin_cos_u<unit>(x, true); }

// ---- the rows ----------------------------------------------------------

constexpr Reference kReferences[] = {
    {"g_dcbrt", mpfr_cbrt, "r8", -kDmax, kDmax, kCbrtHard8},
    {"g_cbrt", mpfr_cbrt, "r4", -kFmax, kFmax, kCbrtHard4, fast_cbrt, 60},
    {"g_dsqrt", mpfr_sqrt, "r8", 0.0, kDmax, kSqrtHard8},
    {"g_sqrt", mpfr_sqrt, "r4", 0.0, kFmax, kSqrtHard4, fast_sqrt, 62},
    {"g_dexp", mpfr_exp, "r8", -709.08, 709.78, kExpHard8},  // below: +0 on purpose
    {"g_exp", mpfr_exp, "r4", -87.3, 88.72, kExpHard4},
    {"g_dexp2", mpfr_exp2, "r8", -1023.0, 1023.999, kExp2Hard8},  // below: +0 on purpose
    {"g_dexp10", mpfr_exp10, "r8", -307.9, 308.25, kExp10Hard8},
    {"g_exp2", mpfr_exp2, "r4", -149.0, 127.99, kExp2Hard4},
    {"g_exp10", mpfr_exp10, "r4", -44.8, 38.5, kExp10Hard4},
    {"g_dlog", mpfr_log, "r8", 0x1p-1074, kDmax, kLogHard8},
    {"g_dlog2", mpfr_log2, "r8", 0x1p-1074, kDmax, kLogHard8},
    {"g_dlog10", mpfr_log10, "r8", 0x1p-1074, kDmax, kLogHard8},
    {"g_alog", mpfr_log, "r4", 0x1p-149, kFmax, kLogHard4},
    {"g_alog2", mpfr_log2, "r4", 0x1p-149, kFmax, kLogHard4},
    {"g_alog10", mpfr_log10, "r4", 0x1p-149, kFmax, kLogHard4},
    {"g_log", mpfr_log, "r4", 0x1p-149, kFmax, kLogHard4},
    {"g_log2", mpfr_log2, "r4", 0x1p-149, kFmax, kLogHard4},
    {"g_log10", mpfr_log10, "r4", 0x1p-149, kFmax, kLogHard4},
    {"g_dsin", mpfr_sin, "r8", -3.5e15, 3.5e15, kTrigHard8},
    {"g_dcos", mpfr_cos, "r8", -3.5e15, 3.5e15, kTrigHard8},
    {"g_sin", mpfr_sin, "r4", -823000.0, 823000.0, kTrigHard4},
    {"g_cos", mpfr_cos, "r4", -823000.0, 823000.0, kTrigHard4},
    {"g_dtan", mpfr_tan, "r8", -3.5e15, 3.5e15, kTrigHard8},
    {"g_dcotan", mpfr_cot, "r8", -3.5e15, 3.5e15, kTrigHard8},  // cot(+-0) reports 214
    {"g_tan", mpfr_tan, "r4", -823000.0, 823000.0, kTrigHard4},
    {"g_cotan", mpfr_cot, "r4", -823000.0, 823000.0, kTrigHard4},

    // Inverse circular functions, radians, degrees, quadrants.
    {"g_dasin", mpfr_asin, "r8", -1.0, 1.0, kAsinHard8},
    {"g_dacos", mpfr_acos, "r8", -1.0, 1.0, kAsinHard8},
    {"g_datan", mpfr_atan, "r8", -kDmax, kDmax, kAtanHard8},
    {"g_datan2", nullptr, "r8", -kDmax, kDmax, kAtan2Hard, nullptr, 0, atan2_radians},
    {"g_asin", mpfr_asin, "r4", -1.0, 1.0, kAsinHard4, fast_asin, 50},
    {"g_acos", mpfr_acos, "r4", -1.0, 1.0, kAsinHard4, fast_acos, 50},
    {"g_atan", mpfr_atan, "r4", -kFmax, kFmax, kAtanHard4, fast_atan, 50},
    {"g_atan2", nullptr, "r4", -kFmax, kFmax, kAtan2Hard, nullptr, 0, atan2_radians},
    {"g_dasind", asin_u<360>, "r8", -1.0, 1.0, kAsinHard8},
    {"g_dacosd", acos_u<360>, "r8", -1.0, 1.0, kAsinHard8},
    {"g_datand", atan_u<360>, "r8", -kDmax, kDmax, kAtanHard8},
    {"g_dtan2d", nullptr, "r8", -kDmax, kDmax, kAtan2Hard, nullptr, 0, atan2_u<360>},
    {"g_dasinq", asin_u<4>, "r8", -1.0, 1.0, kAsinHard8},
    {"g_dacosq", acos_u<4>, "r8", -1.0, 1.0, kAsinHard8},
    {"g_datanq", atan_u<4>, "r8", -kDmax, kDmax, kAtanHard8},
    {"g_dtan2q", nullptr, "r8", -kDmax, kDmax, kAtan2Hard, nullptr, 0, atan2_u<4>},
    {"g_asind", asin_u<360>, "r4", -1.0, 1.0, kAsinHard4, fast_asin_u<90>, 50},
    {"g_acosd", acos_u<360>, "r4", -1.0, 1.0, kAsinHard4, fast_acos_u<90>, 50},
    {"g_atand", atan_u<360>, "r4", -kFmax, kFmax, kAtanHard4, fast_atan_u<90>, 50},
    {"g_atan2d", nullptr, "r4", -kFmax, kFmax, kAtan2Hard, nullptr, 0, atan2_u<360>},
    {"g_asinq", asin_u<4>, "r4", -1.0, 1.0, kAsinHard4, fast_asin_u<1>, 50},
    {"g_acosq", acos_u<4>, "r4", -1.0, 1.0, kAsinHard4, fast_acos_u<1>, 50},
    {"g_atanq", atan_u<4>, "r4", -kFmax, kFmax, kAtanHard4, fast_atan_u<1>, 50},
    {"g_atan2q", nullptr, "r4", -kFmax, kFmax, kAtan2Hard, nullptr, 0, atan2_u<4>},

    // Circular functions of degrees and quadrants (references exact in the
    // unit: MPFR's sinu, cosu, tanu).
    {"g_dsind", sin_u<360>, "r8", -kDegreeMax, kDegreeMax, kDegreeHard8},
    {"g_dcosd", cos_u<360>, "r8", -kDegreeMax, kDegreeMax, kDegreeHard8},
    {"g_dtand", tan_u<360>, "r8", -kDegreeMax, kDegreeMax, kDegreeHard8},
    {"g_dcotd", cot_u<360>, "r8", -kDegreeMax, kDegreeMax, kDegreeHard8},
    {"g_dsinq", sin_u<4>, "r8", -kDmax, kDmax, kQuadrantHard8},
    {"g_dcosq", cos_u<4>, "r8", -kDmax, kDmax, kQuadrantHard8},
    {"g_dtanq", tan_u<4>, "r8", -kDmax, kDmax, kQuadrantHard8},
    {"g_dcotq", cot_u<4>, "r8", -kDmax, kDmax, kQuadrantHard8},
    {"g_sind", sin_u<360>, "r4", -kDegreeMax, kDegreeMax, kDegreeHard4, fast_sin_u<90>, 50},
    {"g_cosd", cos_u<360>, "r4", -kDegreeMax, kDegreeMax, kDegreeHard4, fast_cos_u<90>, 50},
    {"g_tand", tan_u<360>, "r4", -kDegreeMax, kDegreeMax, kDegreeHard4, fast_tan_u<90>, 49},
    {"g_cotd", cot_u<360>, "r4", -kDegreeMax, kDegreeMax, kDegreeHard4, fast_cot_u<90>, 49},
    {"g_sinq", sin_u<4>, "r4", -kFmax, kFmax, kQuadrantHard4, fast_sin_u<1>, 50},
    {"g_cosq", cos_u<4>, "r4", -kFmax, kFmax, kQuadrantHard4, fast_cos_u<1>, 50},
    {"g_tanq", tan_u<4>, "r4", -kFmax, kFmax, kQuadrantHard4, fast_tan_u<1>, 49},
    {"g_cotq", cot_u<4>, "r4", -kFmax, kFmax, kQuadrantHard4, fast_cot_u<1>, 49},

    // Hyperbolic functions.
    {"g_dsinh", mpfr_sinh, "r8", -kCoshMax8, kCoshMax8, kSinhHard8},
    {"g_dcosh", mpfr_cosh, "r8", -kCoshMax8, kCoshMax8, kSinhHard8},
    {"g_dtanh", mpfr_tanh, "r8", -kDmax, kDmax, kTanhHard8},
    {"g_sinh", mpfr_sinh, "r4", -kCoshMax4, kCoshMax4, kSinhHard4, fast_sinh, 50},
    {"g_cosh", mpfr_cosh, "r4", -kCoshMax4, kCoshMax4, kSinhHard4, fast_cosh, 50},
    {"g_tanh", mpfr_tanh, "r4", -kFmax, kFmax, kTanhHard4, fast_tanh, 50},

    // The pairs, each value on its own.
    {"g_dscn", mpfr_sin, "r8", -3.5e15, 3.5e15, kTrigHard8, nullptr, 0, nullptr, 0, "sin"},
    {"g_dscn", mpfr_cos, "r8", -3.5e15, 3.5e15, kTrigHard8, nullptr, 0, nullptr, 1, "cos"},
    {"g_scns", mpfr_sin, "r4", -823000.0, 823000.0, kTrigHard4, nullptr, 0, nullptr, 0, "sin"},
    {"g_scns", mpfr_cos, "r4", -823000.0, 823000.0, kTrigHard4, nullptr, 0, nullptr, 1, "cos"},
    {"g_dscnq", sin_u<4>, "r8", -kDmax, kDmax, kQuadrantHard8, nullptr, 0, nullptr, 0, "sinq"},
    {"g_dscnq", cos_u<4>, "r8", -kDmax, kDmax, kQuadrantHard8, nullptr, 0, nullptr, 1, "cosq"},
    {"g_scnsq", sin_u<4>, "r4", -kFmax, kFmax, kQuadrantHard4, nullptr, 0, nullptr, 0, "sinq"},
    {"g_scnsq", cos_u<4>, "r4", -kFmax, kFmax, kQuadrantHard4, nullptr, 0, nullptr, 1, "cosq"},
    {"g_dsch", mpfr_sinh, "r8", -kCoshMax8, kCoshMax8, kSinhHard8, nullptr, 0, nullptr, 0, "sinh"},
    {"g_dsch", mpfr_cosh, "r8", -kCoshMax8, kCoshMax8, kSinhHard8, nullptr, 0, nullptr, 1, "cosh"},
    {"g_scnh", mpfr_sinh, "r4", -kCoshMax4, kCoshMax4, kSinhHard4, nullptr, 0, nullptr, 0, "sinh"},
    {"g_scnh", mpfr_cosh, "r4", -kCoshMax4, kCoshMax4, kSinhHard4, nullptr, 0, nullptr, 1, "cosh"},
    {"g_dschq", of_quadrants<mpfr_sinh>, "r8", -452.3, 452.3, kSinhQuadrantHard8, nullptr, 0, nullptr, 0, "sinh(x pi/2)"},
    {"g_dschq", of_quadrants<mpfr_cosh>, "r8", -452.3, 452.3, kSinhQuadrantHard8, nullptr, 0, nullptr, 1, "cosh(x pi/2)"},
    {"g_scnhq", of_quadrants<mpfr_sinh>, "r4", -56.9, 56.9, kSinhHard4, fast_sinh_q, 60, nullptr, 0, "sinh(x pi/2)"},
    {"g_scnhq", of_quadrants<mpfr_cosh>, "r4", -56.9, 56.9, kSinhHard4, fast_cosh_q, 60, nullptr, 1, "cosh(x pi/2)"},
};

}  // namespace

std::span<const Reference> references() { return kReferences; }

std::vector<const Reference*> find_references(std::string_view name) {
    std::vector<const Reference*> found;
    for (const Reference& r : kReferences)
        if (r.name == name) found.push_back(&r);
    return found;
}

}  // namespace mivor::accuracy
