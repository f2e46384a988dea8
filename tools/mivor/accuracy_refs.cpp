// The reference registry of `mivor accuracy`.
//
// One entry per export: name, exact function, domain, hard ranges, the bound
// its measured error must stay within (and for REAL(4) functions of one
// argument an optional fast reference for --exhaustive).  Entries of exports
// that are not implemented yet are skipped by the tool, so an entry can come
// before its function; `mivor accuracy --list` prints every entry's name.
//
// The domain holds only arguments that the export answers without an error
// report: the tool declines every report (and counts them), but a domain
// that reaches into the reporting range measures the fallback values, not
// the function.  Hard ranges are clipped to the domain.
//
// To add a function: one Reference line below, reusing or adding a range
// set.  The argument and result kinds come from the export table.  Degree
// and quadrant forms take MPFR's unit functions (unit<mpfr_sinu, 360>,
// unit2<mpfr_atan2u, 4>); functions MPFR lacks take a capture-free lambda of
// one of the shapes in accuracy_refs.h.  Bounds are the measured maximum
// with a little room, so that a change for the worse fails the ctest run.
#include "accuracy_refs.h"

#include <array>
#include <cfloat>
#include <cmath>

#include "accuracy_core.h"

namespace mivor::accuracy {
namespace {

constexpr long double kDmax = DBL_MAX;
constexpr long double kFmax = FLT_MAX;

// ---- cube and square roots --------------------------------------------------

constexpr Range kCbrtHard8[] = {
    {"subnormals", bits(-0x1p-1022, 0x1p-1022)},
    {"near overflow", log_uniform(0x1p1000, kDmax, both_signs)},
    {"near 1", bits(0.5, 2.0)},
    {"table row starts (1 + j/16, times 1, 2, 4)", near_multiples(16, 128, nullptr, 1.0 / 16)},
    {"tiny normals", log_uniform(0x1p-1022, 0x1p-1000, both_signs)},
};
constexpr Range kCbrtHard4[] = {
    {"subnormals", bits(-0x1p-126, 0x1p-126)},
    {"near overflow", log_uniform(0x1p120, kFmax, both_signs)},
    {"near 1", bits(0.5, 2.0)},
    {"table row starts (1 + j/16, times 1, 2, 4)", near_multiples(16, 128, nullptr, 1.0 / 16)},
};

constexpr Range kSqrtHard8[] = {
    {"subnormals", bits(0, 0x1p-1022)},
    {"near overflow", log_uniform(0x1p1000, kDmax)},
    {"near 1", bits(0.5, 2.0)},
};
constexpr Range kSqrtHard4[] = {
    {"subnormals", bits(0, 0x1p-126)},
    {"near overflow", log_uniform(0x1p120, kFmax)},
    {"near 1", bits(0.5, 2.0)},
};

// cbrt: the platform's double cube root (within a few ulps, 2^-50) refined
// by one Newton step in extended precision: the step leaves e^2 = 2^-100
// plus its own roundings, a few units of 2^-64; 2^-60 bounds the sum.
long double fast_cbrt(long double x) {
    const long double y0 = std::cbrt(static_cast<double>(x));
    return y0 - (y0 - x / (y0 * y0)) / 3.0L;
}
// sqrt: FSQRT is correctly rounded to 64 bits.
long double fast_sqrt(long double x) { return std::sqrt(x); }

// ---- exponentials and logarithms ---------------------------------------------

// exp: both ends of the range, tiny arguments (result near 1), and the
// table points k ln2/256 where the reduced argument is near 0.
constexpr Range kExpHard8[] = {
    {"near overflow", bits(700.0, 709.78)},
    // (-708.3984375, -708.39776) is left out: there the fast path's scale
    // wraps to +0 on purpose.
    {"subnormal results (guarded path)", bits(-709.08, -708.3984375)},
    {"near underflow", bits(-708.3977, -700.0)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
    {"[-1, 1]", uniform(-1, 1)},
    {"near k ln2/256", near_multiples(-180000, 180000, mpfr_const_log2, 1.0 / 256)},
};
constexpr Range kExpHard8Packed[] = {
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
    {"[-1, 1]", uniform(-1, 1)},
    {"near k ln2/256", near_multiples(-180000, 180000, mpfr_const_log2, 1.0 / 256)},
};
constexpr Range kExpHard4[] = {
    {"near overflow", bits(80.0, 88.72)},
    {"near underflow", bits(-87.3, -80.0)},
    {"subnormal results", bits(-104.0, -87.3)},
    {"tiny", log_uniform(0x1p-30, 0x1p-10, both_signs)},
};

// exp2, exp10: the same ends, and tiny arguments.
constexpr Range kExp2Hard8[] = {
    {"near overflow", bits(1000.0, 1023.999)},
    {"subnormal results", bits(-1023.0, -1022.0)},
    {"near underflow", bits(-1022.0, -1000.0)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
    {"[-1, 1]", uniform(-1, 1)},
};
constexpr Range kExp10Hard8[] = {
    {"near overflow", bits(300.0, 308.25)},
    {"subnormal results", bits(-307.9, -307.65)},
    {"near underflow", bits(-307.65, -300.0)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
    {"[-1, 1]", uniform(-1, 1)},
};
constexpr Range kExp2Hard4[] = {
    {"near overflow", bits(120.0, 127.99)},
    {"subnormal results", bits(-149.0, -126.0)},
    {"tiny", log_uniform(0x1p-30, 0x1p-10, both_signs)},
};
constexpr Range kExp10Hard4[] = {
    {"near overflow", bits(35.0, 38.5)},
    {"subnormal results", bits(-44.8, -37.9)},
    {"tiny", log_uniform(0x1p-30, 0x1p-10, both_signs)},
};

// log: near 1 (cancellation), each interval of the table densely (x/2^n
// in [0.75, 1) in 16 intervals of width 1/64, [1, 1.5) in 16 of 1/32:
// 40,000 arguments each at --count 1000000), [0.5, 2] where the error is
// largest, subnormals, the top of the range.
constexpr Range kLogHard8[] = {
    {"near 1", bits(0.99, 1.01)},
    {"1 +- 2^-20", uniform(1 - 0x1p-20, 1 + 0x1p-20)},
    Range{"table intervals below 1", uniform(0.75, 1.0, 16)}.times(32),
    Range{"table intervals above 1", uniform(1.0, 1.5, 16)}.times(32),
    Range{"[0.5, 2]", uniform(0.5, 2.0)}.times(16),
    {"subnormals", bits(0x1p-1074, 0x1p-1022)},
    {"near overflow", log_uniform(0x1p1000, kDmax)},
};
constexpr Range kLogHard8Packed[] = {
    {"near 1", bits(0.99, 1.01)},
    {"1 +- 2^-20", uniform(1 - 0x1p-20, 1 + 0x1p-20)},
    Range{"table intervals below 1", uniform(0.75, 1.0, 16)}.times(32),
    Range{"table intervals above 1", uniform(1.0, 1.5, 16)}.times(32),
    Range{"[0.5, 2]", uniform(0.5, 2.0)}.times(16),
    {"near overflow", log_uniform(0x1p1000, kDmax)},
};
constexpr Range kLogHard4[] = {
    {"near 1", bits(0.99, 1.01)},
    {"[0.5, 2]", uniform(0.5, 2.0)},
    {"subnormals", bits(0x1p-149, 0x1p-126)},
    {"near overflow", log_uniform(0x1p120, kFmax)},
};

// ---- circular functions ------------------------------------------------------

// Near multiples of pi/2 the reduced argument is tiny and the reduction's
// absolute error (below 2^-103 on the ladder up to 9pi/4, 2^-105 below
// 1.05e8, 2^-79 up to 3.53e15) shows in ulps; those ranges are shown apart
// with bounds of their own: the doubles nearest k pi/2 on the ladder, the
// doubles 1 to 64 ulps from them, and the doubles within 64 ulps of k pi/2
// beyond.
constexpr std::array<Range, 8> trig_ranges(double nearest, double ladder, double beyond) {
    return {
        Range{"doubles nearest k pi/2, |k| <= 8", near_multiples(-8, 8, mpfr_const_pi, 0.5, 0, 0)}.within(nearest),
        Range{"1 to 64 ulps from them", near_multiples(-8, 8, mpfr_const_pi, 0.5, 1, 64)}.within(ladder),
        Range{"near k pi/2, k to 6.7e7", near_multiples(9, 67000000, mpfr_const_pi, 0.5)}.within(beyond),
        Range{"near k pi/2, k to 2^31", near_multiples(67000000, 2147483647, mpfr_const_pi, 0.5)}.within(beyond),
        Range{"near k pi/2, k to 2.2e15", near_multiples(2147483648, 2200000000000000, mpfr_const_pi, 0.5)}.within(
            beyond),
        Range{"[-10, 10]", uniform(-10, 10)},
        Range{"tiny", log_uniform(0x1p-40, 0x1p-5, both_signs)},
        Range{"large", log_uniform(1.05e8, 3.5e15, both_signs)},
    };
}
constexpr auto kSinCosHard8 = trig_ranges(3.0, 1.5, 0.6);
constexpr auto kTanCotHard8 = trig_ranges(1.0, 1.0, 1.0);
constexpr Range kTrigHard4[] = {
    {"near k pi/2, |k| <= 8", near_multiples(-8, 8, mpfr_const_pi, 0.5)},
    {"near k pi/2, k to 5e5", near_multiples(9, 520000, mpfr_const_pi, 0.5)},
    {"tiny", log_uniform(0x1p-30, 0x1p-5, both_signs)},
};

// glibc's double functions, within 2 ulps of a double (exp10, log10; the
// others within 1): 2^-50 leaves room, and the exhaustive run checks it on
// a sample against MPFR.  (Its extended functions are more accurate but
// several times slower, switching the x87 environment on every call.)
long double fast_exp(long double x) { return std::exp(static_cast<double>(x)); }
long double fast_exp2(long double x) { return std::exp2(static_cast<double>(x)); }
long double fast_exp10(long double x) { return exp10(static_cast<double>(x)); }
long double fast_log(long double x) { return std::log(static_cast<double>(x)); }
long double fast_log2(long double x) { return std::log2(static_cast<double>(x)); }
long double fast_log10(long double x) { return std::log10(static_cast<double>(x)); }
long double fast_sin(long double x) { return std::sin(static_cast<double>(x)); }
long double fast_cos(long double x) { return std::cos(static_cast<double>(x)); }
long double fast_tan(long double x) { return std::tan(static_cast<double>(x)); }
long double fast_cot(long double x) { return 1.0L / std::tan(static_cast<double>(x)); }
constexpr int kGlibcBits = 50;

// ---- REAL(16) operators and conversions ---------------------------------------

// Both operands within the normal range, results too.
constexpr Axis kQuadWide = magnitudes(0x1p-16000L, 0x1p16000L);
constexpr Axis kQuadHalf = magnitudes(0x1p-8000L, 0x1p8000L);

// b = -a (1 + t) with t log-uniform in [2^-113, 1/2]: sums that cancel.
void cancelling(Draw& d, const mpfr_ptr* c) {
    d.axis(0, {}, c[0]);
    d.axis(1, log_uniform(0x1p-113L, 0.5L, both_signs), c[1]);
    mpfr_add_ui(c[1], c[1], 1, MPFR_RNDN);
    mpfr_mul(c[1], c[1], c[0], MPFR_RNDN);
    mpfr_neg(c[1], c[1], MPFR_RNDN);
    d.round(1, c[1]);
}
// b about half an ulp of a, up to a few units of b's own last place
// away: sums next to a rounding boundary.
void half_ulp_apart(Draw& d, const mpfr_ptr* c) {
    d.axis(0, {}, c[0]);
    mpfr_set_ui_2exp(c[1], 1, mpfr_get_exp(c[0]) - 114, MPFR_RNDN);
    if (d.unit() < 0.5) mpfr_neg(c[1], c[1], MPFR_RNDN);
    d.step(1, c[1], static_cast<long>(d.unit() * 9) - 4);
}
// b = a 2^-k (1 + u) for k in [100, 130]: sticky bits far below a.
void far_apart(Draw& d, const mpfr_ptr* c) {
    d.axis(0, {}, c[0]);
    mpfr_mul_d(c[1], c[0], 1 + d.unit(), MPFR_RNDN);
    mpfr_mul_2si(c[1], c[1], -100 - static_cast<long>(d.unit() * 31), MPFR_RNDN);
    if (d.unit() < 0.5) mpfr_neg(c[1], c[1], MPFR_RNDN);
    d.round(1, c[1]);
}
// b = a (1 + t): quotients next to 1.
void near_ratio(Draw& d, const mpfr_ptr* c) {
    d.axis(0, {}, c[0]);
    d.axis(1, log_uniform(0x1p-113L, 0.5L, both_signs), c[1]);
    mpfr_add_ui(c[1], c[1], 1, MPFR_RNDN);
    mpfr_mul(c[1], c[1], c[0], MPFR_RNDN);
    d.round(1, c[1]);
}

constexpr Range kQuadAddHard[] = {
    {"cancellation", cancelling},
    {"b half an ulp of a", half_ulp_apart},
    {"exponents 100 to 130 apart", far_apart},
};
constexpr Range kQuadMulHard[] = {
    {"significands near 1", bits(1 - 0x1p-56L, 1 + 0x1p-56L), bits(1 - 0x1p-56L, 1 + 0x1p-56L)},
    {"small integers", bits(1, 0x1p20L), bits(1, 0x1p20L)},
};
constexpr Range kQuadDivHard[] = {
    {"quotients near 1", near_ratio},
    {"small integers", bits(1, 0x1p20L), bits(1, 0x1p20L)},
};
constexpr Range kMixedHard[] = {
    {"near 1", bits(0.5, 2), bits(0.5L, 2.0L)},
};

// COMPLEX(16) from its parts, and its conjugate: exact.
bool complex_of(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    mpfr_set(re, x[0], MPFR_RNDN);
    mpfr_set(im, x[1], MPFR_RNDN);
    return true;
}
bool conjugate(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    mpfr_set(re, x[0], MPFR_RNDN);
    mpfr_neg(im, x[1], MPFR_RNDN);
    return true;
}

// ---- NEAREST -------------------------------------------------------------------

// The neighbour of x in the direction of s's sign, in the format of x: a
// zero x steps to the smallest subnormal of s's sign; past the largest
// finite value is the infinity.
template <Scalar S>
int nearest(mpfr_ptr y, mpfr_srcptr x, mpfr_srcptr s, mpfr_rnd_t) {
    const Format& f = format_of(S);
    const bool up = !mpfr_signbit(s);
    if (mpfr_zero_p(x)) {
        mpfr_set_ui_2exp(y, 1, f.min_ulp_exp, MPFR_RNDN);
        if (!up) mpfr_neg(y, y, MPFR_RNDN);
        return 0;
    }
    mpz_t k;
    mpz_init(k);
    key_of(k, x, f);
    if (up) mpz_add_ui(k, k, 1);
    else mpz_sub_ui(k, k, 1);
    value_of(y, k, f);
    mpz_clear(k);
    if (mpfr_get_exp(y) > f.max_exp) mpfr_set_inf(y, mpfr_sgn(y));
    return 0;
}

constexpr Range kNearestHard4[] = {
    {"subnormals", bits(-0x1p-126, 0x1p-126)},
    {"largest", log_uniform(0x1p127, kFmax, both_signs)},
};
constexpr Range kNearestHard8[] = {
    {"subnormals", bits(-0x1p-1022, 0x1p-1022)},
    {"largest", log_uniform(0x1p1023, kDmax, both_signs)},
};

// ---- integer powers ----------------------------------------------------------------

// Small bases to small and to large powers, bases next to 1 to very large
// ones, and integral bases whose powers are exact.  -2^31 is left out of the
// exponents: it stays negative when negated, and its power is odd on
// purpose.
constexpr Axis kPowerBase = magnitudes(0x1p-8, 0x1p8);
constexpr Axis kPowerInt4 = interval(-2147483647, 2147483647);
constexpr Axis kPowerInt8 = interval(-0x1p62L, 0x1p62L);
constexpr Range kPowerHard4[] = {
    {"x in [0.5, 2], |n| to 120", bits(0.5, 2, both_signs), bits(-120, 120)},
    {"x next to 1, |n| to 2^24", bits(1 - 0x1p-20, 1 + 0x1p-20, both_signs), bits(-0x1p24, 0x1p24)},
    {"integral x in 2..10, n to 20", near_multiples(2, 10, nullptr, 1, 0, 0), bits(1, 20)},
};
constexpr Range kPowerHard8[] = {
    {"x in [0.5, 2], |n| to 64", bits(0.5, 2, both_signs), bits(-64, 64)},
    {"x in [0.5, 2], |n| to 1000", bits(0.5, 2, both_signs), bits(-1000, 1000)},
    {"x next to 1, |n| to 2^31", bits(1 - 0x1p-40, 1 + 0x1p-40, both_signs), bits(-2147483647, 2147483647)},
    {"integral x in 2..10, n to 20", near_multiples(2, 10, nullptr, 1, 0, 0), bits(1, 20)},
};
constexpr Range kPowerHard8Long[] = {
    {"x in [0.5, 2], |n| to 64", bits(0.5, 2, both_signs), bits(-64, 64)},
    {"x in [0.5, 2], |n| to 1000", bits(0.5, 2, both_signs), bits(-1000, 1000)},
    {"x next to 1, |n| to 2^40", bits(1 - 0x1p-45, 1 + 0x1p-45, both_signs), bits(-0x1p40L, 0x1p40L)},
    {"integral x in 2..10, n to 20", near_multiples(2, 10, nullptr, 1, 0, 0), bits(1, 20)},
};

// ---- the entries ---------------------------------------------------------------------

constexpr Reference kReferences[] = {
    {"g_dcbrt", mpfr_cbrt, {interval(-kDmax, kDmax)}, kCbrtHard8, 0.56},
    {"g_cbrt", mpfr_cbrt, {interval(-kFmax, kFmax)}, kCbrtHard4, 0.5, kUnbounded, fast_cbrt, 60},
    // REAL(8) results of the extended root are rounded twice: 0.5 + 2^-12.
    {"g_dsqrt", mpfr_sqrt, {interval(0.0, kDmax)}, kSqrtHard8, 0.5003},
    {"g_sqrt", mpfr_sqrt, {interval(0.0, kFmax)}, kSqrtHard4, 0.5, kUnbounded, fast_sqrt, 62},

    // Below the domains of the REAL(8) exponentials the result is +0 on
    // purpose.
    {"g_dexp", mpfr_exp, {interval(-709.08, 709.78)}, kExpHard8, 0.53, 0.77},
    {"pk_dexp", mpfr_exp, {interval(-708.39, 709.78)}, kExpHard8Packed, 0.53},
    {"g_dexp2", mpfr_exp2, {interval(-1023.0, 1023.999)}, kExp2Hard8, 0.53, 0.77},
    {"g_dexp10", mpfr_exp10, {interval(-307.9, 308.25)}, kExp10Hard8, 0.54, 0.77},
    {"g_exp", mpfr_exp, {interval(-104.0, 88.72)}, kExpHard4, 0.51, kUnbounded, fast_exp, kGlibcBits},
    {"g_exp2", mpfr_exp2, {interval(-151.0, 127.99)}, kExp2Hard4, 0.51, kUnbounded, fast_exp2, kGlibcBits},
    {"g_exp10", mpfr_exp10, {interval(-46.0, 38.5)}, kExp10Hard4, 0.51, kUnbounded, fast_exp10, kGlibcBits},

    {"g_dlog", mpfr_log, {interval(0x1p-1074, kDmax)}, kLogHard8, 0.58},
    {"g_dlog2", mpfr_log2, {interval(0x1p-1074, kDmax)}, kLogHard8, 0.62},
    {"g_dlog10", mpfr_log10, {interval(0x1p-1074, kDmax)}, kLogHard8, 0.59},
    // Packed: a lane below the normal range beside a normal one is not
    // scaled, on purpose; both lanes are drawn from the normal range.
    {"pk_dlog", mpfr_log, {interval(0x1p-1022, kDmax)}, kLogHard8Packed, 0.58},
    {"pk_dlog10", mpfr_log10, {interval(0x1p-1022, kDmax)}, kLogHard8Packed, 0.59},
    {"g_alog", mpfr_log, {interval(0x1p-149, kFmax)}, kLogHard4, 0.51, kUnbounded, fast_log, kGlibcBits},
    {"g_alog2", mpfr_log2, {interval(0x1p-149, kFmax)}, kLogHard4, 0.51, kUnbounded, fast_log2, kGlibcBits},
    {"g_alog10", mpfr_log10, {interval(0x1p-149, kFmax)}, kLogHard4, 0.51, kUnbounded, fast_log10, kGlibcBits},
    {"g_log", mpfr_log, {interval(0x1p-149, kFmax)}, kLogHard4, 0.51, kUnbounded, fast_log, kGlibcBits},
    {"g_log2", mpfr_log2, {interval(0x1p-149, kFmax)}, kLogHard4, 0.51, kUnbounded, fast_log2, kGlibcBits},
    {"g_log10", mpfr_log10, {interval(0x1p-149, kFmax)}, kLogHard4, 0.51, kUnbounded, fast_log10, kGlibcBits},

    {"g_dsin", mpfr_sin, {interval(-3.5e15, 3.5e15)}, kSinCosHard8, 0.6},
    {"g_dcos", mpfr_cos, {interval(-3.5e15, 3.5e15)}, kSinCosHard8, 0.6},
    {"pk_dsin", mpfr_sin, {interval(-3.5e15, 3.5e15)}, kSinCosHard8, 0.6},
    {"pk_dcos", mpfr_cos, {interval(-3.5e15, 3.5e15)}, kSinCosHard8, 0.6},
    {"g_dtan", mpfr_tan, {interval(-3.5e15, 3.5e15)}, kTanCotHard8, 0.7},
    {"g_dcotan", mpfr_cot, {magnitudes(0x1p-1022, 3.5e15)}, kTanCotHard8, 0.7},  // cot(+-0) reports
    {"g_sin", mpfr_sin, {interval(-823000.0, 823000.0)}, kTrigHard4, 0.51, kUnbounded, fast_sin, kGlibcBits},
    {"g_cos", mpfr_cos, {interval(-823000.0, 823000.0)}, kTrigHard4, 0.51, kUnbounded, fast_cos, kGlibcBits},
    {"g_tan", mpfr_tan, {interval(-823000.0, 823000.0)}, kTrigHard4, 0.51, kUnbounded, fast_tan, kGlibcBits},
    {"g_cotan", mpfr_cot, {magnitudes(0x1p-126, 823000.0)}, kTrigHard4, 0.51, kUnbounded, fast_cot, kGlibcBits},

    // REAL(16) operators, the mixed helpers and the conversions: correctly
    // rounded.
    {"g_aqaq", mpfr_add, {kQuadWide, kQuadWide}, kQuadAddHard, 0.5},
    {"g_aqsq", mpfr_sub, {kQuadWide, kQuadWide}, kQuadAddHard, 0.5},
    {"g_aqmq", mpfr_mul, {kQuadHalf, kQuadHalf}, kQuadMulHard, 0.5},
    {"g_aqdq", mpfr_div, {kQuadHalf, kQuadHalf}, kQuadDivHard, 0.5},
    {"jwe_gdsq", mpfr_sub, {magnitudes(0x1p-1000, 0x1p1000), kQuadWide}, kMixedHard, 0.5},
    {"jwe_gqmd", mpfr_mul, {kQuadHalf, magnitudes(0x1p-1000, 0x1p1000)}, kMixedHard, 0.5},
    {"jwe_gddq", mpfr_div, {magnitudes(0x1p-1000, 0x1p1000), kQuadHalf}, kMixedHard, 0.5},
    {"g_qprod", mpfr_mul, {magnitudes(0x1p-1000, 0x1p1000), magnitudes(0x1p-1000, 0x1p1000)}, {}, 0.5},
    {"g_dbleq", mpfr_set, {magnitudes(0x1p-1022, 0x1p1023)}, {}, 0.5},
    {"g_snglq", mpfr_set, {magnitudes(0x1p-126, 0x1p127)}, {}, 0.5},
    {"g_qextd", mpfr_set, {interval(-kDmax, kDmax)}, {}, 0.5},
    {"g_qext", mpfr_set, {interval(-kFmax, kFmax)}, {}, 0.5},
    {"g_qcmplx", complex_of, {Axis{}, Axis{}}, {}, 0},
    {"g_qconjg", conjugate, {Axis{}, Axis{}}, {}, 0},

    // NEAREST: exact.  A zero S reports; the domain of S leaves it out.
    {"g_neare", nearest<Scalar::binary32>, {interval(-kFmax, kFmax), magnitudes(0x1p-149, kFmax)}, kNearestHard4, 0},
    {"g_neared", nearest<Scalar::binary64>, {interval(-kDmax, kDmax), magnitudes(0x1p-1074, kDmax)}, kNearestHard8, 0},
    {"g_neareq", nearest<Scalar::binary128>, {Axis{}, magnitudes(0x1p-16000L, 0x1p16383L)}, {}, 0},

    // Integer powers: binary powering, whose error grows with the number of
    // squarings (no bound recorded; see the README).  A zero base reports
    // for n < 0 and is left out.
    {"g_arxi", mpfr_pow, {kPowerBase, kPowerInt4}, kPowerHard4},
    {"g_arxj", mpfr_pow, {kPowerBase, kPowerInt8}, kPowerHard4},
    {"g_adxi", mpfr_pow, {kPowerBase, kPowerInt4}, kPowerHard8},
    {"g_adxj", mpfr_pow, {kPowerBase, kPowerInt8}, kPowerHard8Long},
};

}  // namespace

std::span<const Reference> references() { return kReferences; }

const Reference* find_reference(std::string_view name) {
    for (const Reference& r : kReferences)
        if (r.name == name) return &r;
    return nullptr;
}

}  // namespace mivor::accuracy
