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
// set.  Functions MPFR lacks (degrees, quadrants) take a capture-free
// lambda with the MpfrFunction signature.
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

// The powers to the base two and ten: both ends of the range (subnormal
// results, rounded once onto their grid) and the integral exponents.
constexpr Range kPow2Hard8[] = {
    {"near overflow", Spread::Bits, 1000.0, 1023.999},
    {"subnormal results", Spread::Bits, -1075.0, -1022.0},
    {"near integers", Spread::NearMultiples, -1000, 1000, false, nullptr, 1.0},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kPow10Hard8[] = {
    {"near overflow", Spread::Bits, 300.0, 308.25},
    {"subnormal results", Spread::Bits, -323.6, -307.6},
    {"near integers", Spread::NearMultiples, -300, 300, false, nullptr, 1.0},
    {"tiny", Spread::LogUniform, 0x1p-60, 0x1p-20, true},
};
constexpr Range kPow2Hard4[] = {
    {"near overflow", Spread::Bits, 120.0, 127.99},
    {"subnormal results", Spread::Bits, -150.0, -126.0},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};
constexpr Range kPow10Hard4[] = {
    {"near overflow", Spread::Bits, 35.0, 38.5},
    {"subnormal results", Spread::Bits, -45.2, -37.9},
    {"tiny", Spread::LogUniform, 0x1p-30, 0x1p-10, true},
};

// erf, erfc: the small-argument polynomial's end, the rows of the scaled
// complement, the tails (erfc down to its subnormal results).
constexpr Range kErfHard8[] = {
    {"tiny", Spread::LogUniform, 0x1p-1074, 0x1p-20, true},
    {"near 1/2", Spread::Bits, 0.49, 0.51},
    {"[1/2, 6]", Spread::Bits, -6.0, 6.0},
    {"tail", Spread::Bits, 5.0, 27.3},
    {"subnormal results", Spread::Bits, 26.5, 27.3},
};
constexpr Range kErfHard4[] = {
    {"tiny", Spread::LogUniform, 0x1p-149, 0x1p-10, true},
    {"[1/2, 6]", Spread::Bits, -6.0, 6.0},
    {"tail", Spread::Bits, 5.0, 10.1},
};

// gamma, log-gamma: around the zeros of log-gamma (1 and 2), the rows'
// ends, tiny arguments, both ends of the range, negative arguments (near
// the poles, and deep enough for subnormal and zero results).
constexpr Range kGammaHard8[] = {
    {"near 1 and 2", Spread::Bits, 0.9, 2.3},
    {"near 1/2 (the reflected rows' end)", Spread::Bits, 0.49, 0.51},
    {"tiny", Spread::LogUniform, 0x1p-1000, 0x1p-20},
    {"(0, 16)", Spread::Bits, 0x1p-10, 16.0},
    {"near overflow", Spread::Bits, 160.0, 171.62},
    {"negative, near poles", Spread::NearMultiples, -170, -1, false, nullptr, 1.0},
    {"negative", Spread::Bits, -190.0, -0x1p-10},
};
constexpr Range kLgammaHard8[] = {
    {"near 1 and 2", Spread::Bits, 0.9, 2.3},
    {"near 1/2 (the reflected rows' end)", Spread::Bits, 0.49, 0.51},
    {"tiny", Spread::LogUniform, 0x1p-1074, 0x1p-20},
    {"(0, 16)", Spread::Bits, 0x1p-10, 16.0},
    {"large", Spread::LogUniform, 16.0, 0x1p1000},
    {"negative, near poles", Spread::NearMultiples, -170, -1, false, nullptr, 1.0},
    {"negative (-190, 0)", Spread::Bits, -190.0, -0x1p-10},
    {"negative beyond -190", Spread::Bits, -0x1p40, -190.0},
};
constexpr Range kGammaHard4[] = {
    {"near 1 and 2", Spread::Bits, 0.9, 2.3},
    {"negative", Spread::Bits, -45.0, -0x1p-10},
};

// ---- argument pairs of x**y ----------------------------------------------

double uniform(std::mt19937_64& g, double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(g); }
double sign(std::mt19937_64& g) { return (g() & 1) ? -1.0 : 1.0; }
// A positive double, log-uniform in magnitude over [2^lo, 2^hi].
double magnitude(std::mt19937_64& g, double lo, double hi) { return std::exp2(uniform(g, lo, hi)); }

// x over every positive double (log-uniform), y such that |y log x| is
// uniform below the limit: results spread over the whole range.
void pow_random(std::mt19937_64& g, double limit, double& x, double& y) {
    const bool single = limit < 200;
    x = magnitude(g, single ? -149 : -1074, single ? 128 : 1024);
    const double l = std::log(x);
    y = l == 0 ? uniform(g, -1e6, 1e6) : sign(g) * uniform(g, 0, limit) / std::fabs(l);
}
// x within 2^-20 of 1, y large: log x carries the whole result.
void pow_near_one(std::mt19937_64& g, double limit, double& x, double& y) {
    x = 1.0 + sign(g) * magnitude(g, limit < 200 ? -23 : -52, -20);
    const double l = std::log(x);
    y = sign(g) * uniform(g, 0, limit) / std::fabs(l);
}
// Results near the ends: |y log x| within a few units of overflow, and the
// subnormal range.
void pow_near_overflow(std::mt19937_64& g, double limit, double& x, double& y) {
    x = magnitude(g, 0.01, limit < 200 ? 127 : 1023);
    y = uniform(g, limit < 200 ? 80 : 700, limit < 200 ? 88.72 : 709.78) / std::log(x);
}
void pow_subnormal(std::mt19937_64& g, double limit, double& x, double& y) {
    x = magnitude(g, 0.01, limit < 200 ? 127 : 1023);
    y = -uniform(g, limit < 200 ? 87.3 : 708.4, limit < 200 ? 103.9 : 745.1) / std::log(x);
}
// Negative bases with integral exponents (the sign from the parity), the
// powers finite: an overflow gives +Inf whatever the sign, on purpose.
void pow_negative_integral(std::mt19937_64& g, double limit, double& x, double& y) {
    x = -magnitude(g, -10, 10);
    y = std::trunc(sign(g) * uniform(g, 0, 0.85 * limit) / std::fabs(std::log(-x)));
}
// Small integral exponents of any base, where the result is often exact.
void pow_small_integers(std::mt19937_64& g, double limit, double& x, double& y) {
    x = sign(g) * std::nearbyint(magnitude(g, 0, 20));
    const double l = std::log(std::fabs(x));
    y = std::trunc(uniform(g, -1, 1) * (l == 0 ? 40 : std::min(40.0, 0.85 * limit / l)));
}
// Tiny exponents (result near 1) and subnormal bases.
void pow_tiny_exponent(std::mt19937_64& g, double limit, double& x, double& y) {
    x = magnitude(g, limit < 200 ? -149 : -1074, limit < 200 ? 128 : 1024);
    y = sign(g) * magnitude(g, -60, -10);
}
void pow_subnormal_base(std::mt19937_64& g, double limit, double& x, double& y) {
    x = magnitude(g, limit < 200 ? -149 : -1074, limit < 200 ? -126 : -1022);
    y = sign(g) * uniform(g, 0, limit) / std::fabs(std::log(x));
}

constexpr PairRange kPowPairs[] = {
    {"random", pow_random},
    {"x near 1, large y", pow_near_one},
    {"results near overflow", pow_near_overflow},
    {"subnormal results", pow_subnormal},
    {"negative x, integral y", pow_negative_integral},
    {"small integral y", pow_small_integers},
    {"tiny y", pow_tiny_exponent},
    {"subnormal x", pow_subnormal_base},
};

// ---- fast references for --exhaustive ----------------------------------

// cbrt: the platform's double cube root (within a few ulps, 2^-50) refined
// by one Newton step in extended precision: the step leaves e^2 = 2^-100
// plus its own roundings, a few units of 2^-64; 2^-60 bounds the sum.
long double fast_cbrt(long double x) {
    const long double y0 = std::cbrt(static_cast<double>(x));
    return y0 - (y0 - x / (y0 * y0)) / 3.0L;
}
// erf, erfc: glibc's extended-precision functions, within a few units of
// a 64-bit significand (2^-58 with margin).
long double fast_erf(long double x) { return erfl(x); }
long double fast_erfc(long double x) { return erfcl(x); }
// gamma, log-gamma: glibc's extended-precision functions, a few units of a
// 64-bit significand from the value (2^-57 with margin); log-gamma not
// near its zeros, where its error is absolute: MPFR decides there.
long double fast_gamma(long double x) { return tgammal(x); }
long double fast_lgamma(long double x) {
    const long double r = lgammal(x);
    return std::fabs(r) < 0.25L ? std::nanl("") : r;
}
int log_abs_gamma(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rnd) {
    int sign;
    return mpfr_lgamma(y, &sign, x, rnd);
}
// sqrt: FSQRT is correctly rounded to 64 bits.
long double fast_sqrt(long double x) { return std::sqrt(x); }

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
    {"g_a2xd", mpfr_exp2, "r8", -1075.0, 1023.999, kPow2Hard8},
    {"g_atxd", mpfr_exp10, "r8", -323.6, 308.25, kPow10Hard8},
    {"g_a2xr", mpfr_exp2, "r4", -150.0, 127.99, kPow2Hard4},
    {"g_atxr", mpfr_exp10, "r4", -45.2, 38.5, kPow10Hard4},
    {"g_derf", mpfr_erf, "r8", -kDmax, kDmax, kErfHard8},
    {"g_derfc", mpfr_erfc, "r8", -kDmax, kDmax, kErfHard8},
    {"g_erf", mpfr_erf, "r4", -kFmax, kFmax, kErfHard4, fast_erf, 58},
    {"g_erfc", mpfr_erfc, "r4", -kFmax, kFmax, kErfHard4, fast_erfc, 58},
    {"g_dgamma", mpfr_gamma, "r8", -190.0, 171.62, kGammaHard8},
    {"g_dlgama", log_abs_gamma, "r8", -0x1p52, 0x1p1000, kLgammaHard8},
    {"g_gamma", mpfr_gamma, "r4", -45.0, 35.04, kGammaHard4, fast_gamma, 57},
    {"g_algama", log_abs_gamma, "r4", -0x1p23f, 0x1p120f, kGammaHard4, fast_lgamma, 57},
    {"g_lgamma", log_abs_gamma, "r4", -0x1p23f, 0x1p120f, kGammaHard4, fast_lgamma, 57},
    {"g_adxd", nullptr, "r8", 0, 0, {}, nullptr, 0, mpfr_pow, kPowPairs},
    {"g_arxr", nullptr, "r4", 0, 0, {}, nullptr, 0, mpfr_pow, kPowPairs},
};

}  // namespace

std::span<const Reference> references() { return kReferences; }

const Reference* find_reference(std::string_view name) {
    for (const Reference& r : kReferences)
        if (r.name == name) return &r;
    return nullptr;
}

}  // namespace mivor::accuracy
