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
// The pair (sin, cos) is bounded by its norm error: two parts within e
// ulps give up to e sqrt(2) ulps of |y|.
constexpr auto kSinCosPairHard8 = trig_ranges(3.0, 1.5, 0.85);
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

// ---- inverse circular functions ----------------------------------------------

// asin, acos: both ends, the hand-overs at 1/2 and sqrt(1/2), tiny.
constexpr Range kAsinHard8[] = {
    {"near 1", bits(0.999, 1.0)},
    {"near -1", bits(-1.0, -0.999)},
    {"near 1/2", bits(0.49, 0.51)},
    {"near sqrt(1/2)", bits(0.70, 0.715, both_signs)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
};
// atan: tiny, near 1, huge.
constexpr Range kAtanHard8[] = {
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
    {"near 1", bits(0.9, 1.1, both_signs)},
    {"huge", log_uniform(0x1p20, 0x1p60, both_signs)},
};

// atan2: y = x t with x from the domain and t from a range, so that the
// angle comes close to 0 or +-pi (t tiny), +-pi/4 or +-3pi/4 (t near +-1),
// +-pi/2 (t huge).
template <const Axis& ratio>
void y_over_x(Draw& d, const mpfr_ptr* c) {
    d.axis(1, {}, c[1]);
    d.axis(0, ratio, c[0]);
    mpfr_mul(c[0], c[0], c[1], MPFR_RNDN);
    d.round(0, c[0]);
}
constexpr Axis kRatioTiny = log_uniform(0x1p-60, 0x1p-20, both_signs);
constexpr Axis kRatioNear1 = log_uniform(0.99, 1.01, both_signs);
constexpr Axis kRatioHuge = log_uniform(0x1p20, 0x1p60, both_signs);
constexpr Range kAtan2Hard[] = {
    {"y/x tiny (angle near 0, pi)", y_over_x<kRatioTiny>},
    {"y/x near +-1 (near +-pi/4, +-3pi/4)", y_over_x<kRatioNear1>},
    {"y/x huge (angle near +-pi/2)", y_over_x<kRatioHuge>},
};

// The library's atan2 takes a -0.0 argument as +0.0, on purpose
// (atan2(-0.0, -1.0) = +pi): the reference does the same.
template <int (*F)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t)>
int unsigned_zeros(mpfr_ptr r, mpfr_srcptr y, mpfr_srcptr x, mpfr_rnd_t rnd) {
    mpfr_t zero;
    mpfr_init2(zero, MPFR_PREC_MIN);
    mpfr_set_zero(zero, 1);
    const int inexact = F(r, mpfr_zero_p(y) ? zero : y, mpfr_zero_p(x) ? zero : x, rnd);
    mpfr_clear(zero);
    return inexact;
}
constexpr auto atan2r = unsigned_zeros<mpfr_atan2>;

// The degree and quadrant inverses as MPFR's unit forms.
constexpr auto asind = unit<mpfr_asinu, 360>, acosd = unit<mpfr_acosu, 360>, atand = unit<mpfr_atanu, 360>;
constexpr auto asinq = unit<mpfr_asinu, 4>, acosq = unit<mpfr_acosu, 4>, atanq = unit<mpfr_atanu, 4>;
constexpr auto atan2d = unsigned_zeros<unit2<mpfr_atan2u, 360>>, atan2q = unsigned_zeros<unit2<mpfr_atan2u, 4>>;

// ---- circular functions of degrees and quadrants ------------------------------

// The multiples of a right angle exactly (where the results must be exact),
// near them, near the odd multiples of half of it, far out, tiny.
constexpr double kDegreeMax = 2.0299980817930646e17;  // just below the refusal limit
constexpr Range kDegreeHard8[] = {
    {"k 90 exactly, |k| to 2^40", near_multiples(-1099511627776, 1099511627776, nullptr, 90.0, 0, 0)},
    {"near k 90, |k| <= 8", near_multiples(-8, 8, nullptr, 90.0)},
    {"near k 90, k to 2^40", near_multiples(9, 1099511627776, nullptr, 90.0)},
    {"near odd k 45", near_multiples(-1000001, 1000001, nullptr, 45.0)},
    {"beyond 2^52", log_uniform(0x1p52, kDegreeMax, both_signs)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
};
constexpr Range kQuadrantHard8[] = {
    {"integers exactly, |k| to 2^52", near_multiples(-4503599627370496, 4503599627370496, nullptr, 1.0, 0, 0)},
    {"near integers, |k| <= 8", near_multiples(-8, 8, nullptr, 1.0)},
    {"near integers, k to 2^40", near_multiples(9, 1099511627776, nullptr, 1.0)},
    {"near halves", near_multiples(-1000001, 1000001, nullptr, 0.5)},
    {"beyond 2^50", log_uniform(0x1p50, 0x1p60, both_signs)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
};
constexpr Range kDegreeHard4[] = {
    {"k 90 exactly, |k| to 2^20", near_multiples(-1048576, 1048576, nullptr, 90.0, 0, 0)},
    {"near k 90, k to 2^20", near_multiples(-1048576, 1048576, nullptr, 90.0)},
    {"near odd k 45", near_multiples(-100001, 100001, nullptr, 45.0)},
    {"tiny", log_uniform(0x1p-30, 0x1p-10, both_signs)},
};
constexpr Range kQuadrantHard4[] = {
    {"integers exactly, |k| to 2^24", near_multiples(-16777216, 16777216, nullptr, 1.0, 0, 0)},
    {"near integers, k to 2^20", near_multiples(-1048576, 1048576, nullptr, 1.0)},
    {"near halves", near_multiples(-100001, 100001, nullptr, 0.5)},
    {"tiny", log_uniform(0x1p-30, 0x1p-10, both_signs)},
};

constexpr auto sind = unit<mpfr_sinu, 360>, cosd = unit<mpfr_cosu, 360>;
constexpr auto sinq = unit<mpfr_sinu, 4>, cosq = unit<mpfr_cosu, 4>;
// tan and cot in a unit.  At a pole the export reports and, declined,
// returns +Inf whichever the side; the reference says the same there.
template <unsigned long turn>
int tan_unit(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rnd) {
    const int t = mpfr_tanu(y, x, turn, rnd);
    if (mpfr_inf_p(y)) mpfr_set_inf(y, 1);
    return t;
}
template <unsigned long turn>
int cot_unit(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rnd) {
    mpfr_t t;
    // tan in 400 bits, then 1/tan rounded once: an error below 2^-390
    // moves no rounding of a REAL(16) result but by a chance of 2^-270.
    mpfr_init2(t, 400);
    mpfr_tanu(t, x, turn, MPFR_RNDN);  // exact only at 0, +-1 and the poles
    int inexact = 0;
    if (mpfr_zero_p(t)) mpfr_set_inf(y, 1);
    else if (mpfr_inf_p(t)) mpfr_set_zero(y, mpfr_signbit(t) ? -1 : 1);
    else if (mpfr_cmpabs_ui(t, 1) == 0) mpfr_set(y, t, rnd);
    else {
        // 1/tan with 20 more bits is within 2^-19 ulp: enough for the
        // judge, which asks for 8 ulps at its working precision.
        inexact = mpfr_ui_div(y, 1, t, rnd);
        if (inexact == 0) inexact = 1;
    }
    mpfr_clear(t);
    return inexact;
}

// REAL(4) fast references.  The argument, exact in extended precision, is
// reduced by a right angle exactly there (n and x - n right are exact with
// a 64-bit significand), the remainder turned into radians and rounded to
// double (2^-53), then the platform's double sine or cosine (within an ulp):
// within 2^-51 (relative); tan and cot as their quotient, 2^-50.
template <int right>  // 90 or 1
long double sin_cos_unit(long double x, bool cosine) {
    constexpr long double radians = right == 90 ? 0x8efa351294e9c8aep-69L : 0xc90fdaa22168c235p-63L;
    const long double n = std::nearbyint(x / right);
    const double r = static_cast<double>((x - n * right) * radians);
    const auto q = static_cast<int>(static_cast<long long>(std::fmod(n, 4.0L)) + 4 + (cosine ? 1 : 0)) & 3;
    const double v = (q & 1) ? std::cos(r) : std::sin(r);
    return (q & 2) ? -v : v;
}
template <int right>
long double fast_sin_unit(long double x) { return sin_cos_unit<right>(x, false); }
template <int right>
long double fast_cos_unit(long double x) { return sin_cos_unit<right>(x, true); }
template <int right>
long double fast_tan_unit(long double x) {
    const long double s = sin_cos_unit<right>(x, false), c = sin_cos_unit<right>(x, true);
    return c == 0 ? HUGE_VALL : s / c;
}
template <int right>
long double fast_cot_unit(long double x) {
    const long double s = sin_cos_unit<right>(x, false), c = sin_cos_unit<right>(x, true);
    return s == 0 ? HUGE_VALL : c / s;
}
// The inverses: the platform's double function (2^-52) times the unit.
constexpr long double kDegreesPerRadian = 0xe52ee0d31e0fbdc3p-58L, kQuadrantsPerRadian = 0xa2f9836e4e44152ap-64L;
long double fast_asin(long double x) { return std::asin(static_cast<double>(x)); }
long double fast_acos(long double x) { return std::acos(static_cast<double>(x)); }
long double fast_atan(long double x) { return std::atan(static_cast<double>(x)); }
template <long double (*f)(long double), const long double& unit>
long double fast_scaled(long double x) { return f(x) * unit; }

// ---- hyperbolic functions ------------------------------------------------------

// The range splits at 1 and 18.4, the last 0.7 before overflow.
constexpr double kCoshMax8 = 710.47;
constexpr double kCoshMax4 = 89.41;
constexpr Range kSinhHard8[] = {
    {"near 1", bits(0.9, 1.1, both_signs)},
    {"near 18.4", bits(18.0, 19.5, both_signs)},
    {"near overflow", bits(700.0, kCoshMax8, both_signs)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
};
constexpr Range kTanhHard8[] = {
    {"near 1", bits(0.9, 1.1, both_signs)},
    {"near 18.37", bits(17.5, 20.0, both_signs)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
};
// Quadrant pairs: the same splits over pi/2.
constexpr Range kSinhQuadrantHard8[] = {
    {"near 2/pi", bits(0.6, 0.7, both_signs)},
    {"near 11.7", bits(11.4, 12.5, both_signs)},
    {"near overflow", bits(445.0, 452.3, both_signs)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
};
constexpr Range kSinhHard4[] = {
    {"near 1", bits(0.9, 1.1, both_signs)},
    {"near overflow", bits(85.0, kCoshMax4, both_signs)},
    {"tiny", log_uniform(0x1p-30, 0x1p-10, both_signs)},
};
constexpr Range kSinhQuadrantHard4[] = {
    {"near 2/pi", bits(0.6, 0.7, both_signs)},
    {"near overflow", bits(54.0, 56.9, both_signs)},
    {"tiny", log_uniform(0x1p-30, 0x1p-10, both_signs)},
};
long double fast_sinh(long double x) { return std::sinh(static_cast<double>(x)); }
long double fast_cosh(long double x) { return std::cosh(static_cast<double>(x)); }
long double fast_tanh(long double x) { return std::tanh(static_cast<double>(x)); }

// ---- the pairs ---------------------------------------------------------------------

bool sin_cos(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) { return mpfr_sin_cos(re, im, x[0], MPFR_RNDN) == 0; }
bool sin_cos_quadrants(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    const int a = mpfr_sinu(re, x[0], 4, MPFR_RNDN);
    return (mpfr_cosu(im, x[0], 4, MPFR_RNDN) | a) == 0;
}
bool sinh_cosh(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    return mpfr_sinh_cosh(re, im, x[0], MPFR_RNDN) == 0;
}
// sinh and cosh of x pi/2: x pi/2 with 64 bits more than the result, whose
// relative error (times |x pi/2| <= 2^10) stays far below an ulp.
bool sinh_cosh_quadrants(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    if (mpfr_zero_p(x[0])) return mpfr_sinh_cosh(re, im, x[0], MPFR_RNDN) == 0;
    mpfr_t t;
    mpfr_init2(t, mpfr_get_prec(re) + 64);
    mpfr_const_pi(t, MPFR_RNDN);
    mpfr_mul(t, t, x[0], MPFR_RNDN);
    mpfr_div_2ui(t, t, 1, MPFR_RNDN);
    mpfr_sinh_cosh(re, im, t, MPFR_RNDN);
    mpfr_clear(t);
    return false;
}

// ---- complex sine and cosine -----------------------------------------------------

// sin z = sin x cosh y + i cos x sinh y, cos z = cos x cosh y - i sin x sinh y,
// each factor 64 bits beyond the result (relative), so that each product is
// within far less than an ulp before its rounding; quadrant forms take sin
// and cos of x at unit 4 (exact zeros) and cosh, sinh of y pi/2.
template <bool cosine, bool quadrants>
bool complex_sin_cos(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    const mpfr_prec_t p = std::max(mpfr_get_prec(re), mpfr_get_prec(im)) + 64;
    mpfr_t s, c, sh, ch, y;
    mpfr_inits2(p, s, c, sh, ch, y, static_cast<mpfr_ptr>(nullptr));
    if (quadrants) {
        mpfr_sinu(s, x[0], 4, MPFR_RNDN);
        mpfr_cosu(c, x[0], 4, MPFR_RNDN);
        mpfr_set_prec(y, p + 64);
        mpfr_const_pi(y, MPFR_RNDN);
        mpfr_mul(y, y, x[1], MPFR_RNDN);
        mpfr_div_2ui(y, y, 1, MPFR_RNDN);
    } else {
        mpfr_sin_cos(s, c, x[0], MPFR_RNDN);
        mpfr_set_prec(y, mpfr_get_prec(x[1]));
        mpfr_set(y, x[1], MPFR_RNDN);
    }
    mpfr_sinh_cosh(sh, ch, y, MPFR_RNDN);
    if (cosine) {
        mpfr_mul(re, c, ch, MPFR_RNDN);
        mpfr_mul(im, s, sh, MPFR_RNDN);
        mpfr_neg(im, im, MPFR_RNDN);
    } else {
        mpfr_mul(re, s, ch, MPFR_RNDN);
        mpfr_mul(im, c, sh, MPFR_RNDN);
    }
    const bool exact = (mpfr_zero_p(x[0]) || mpfr_zero_p(s) || mpfr_zero_p(c)) && mpfr_zero_p(x[1]);
    mpfr_clears(s, c, sh, ch, y, static_cast<mpfr_ptr>(nullptr));
    return exact;
}

// The real part near multiples of pi/2 (one factor small), the imaginary
// part near the end of the series (1), where the scale of e^|y|/2 joins
// e^|y|/2 (44.4), next to overflow, and tiny parts.
constexpr Range kComplexSinCosHard8[] = {
    {"x near k pi/2, |k| <= 8", near_multiples(-8, 8, mpfr_const_pi, 0.5), uniform(-20, 20)},
    {"x near k pi/2, k to 6.7e7", near_multiples(9, 67000000, mpfr_const_pi, 0.5), uniform(-20, 20)},
    {"x large", log_uniform(1.05e8, 3.5e15, both_signs), uniform(-20, 20)},
    {"|y| near 1", uniform(-10, 10), bits(0.9, 1.1, both_signs)},
    {"|y| near 44.4", uniform(-10, 10), bits(40.0, 48.0, both_signs)},
    {"|y| near overflow", uniform(-10, 10), bits(700.0, kCoshMax8, both_signs)},
    {"tiny x", log_uniform(0x1p-1074, 0x1p-20, both_signs), uniform(-20, 20)},
    {"tiny y", uniform(-10, 10), log_uniform(0x1p-1074, 0x1p-20, both_signs)},
    {"both tiny", log_uniform(0x1p-60, 0x1p-20, both_signs), log_uniform(0x1p-60, 0x1p-20, both_signs)},
};
constexpr Range kComplexSinCosQuadrantHard8[] = {
    {"x near integers, |k| <= 8", near_multiples(-8, 8, nullptr, 1.0), uniform(-12, 12)},
    {"x integers exactly", near_multiples(-1000000, 1000000, nullptr, 1.0, 0, 0), uniform(-12, 12)},
    {"x near halves", near_multiples(-1000001, 1000001, nullptr, 0.5), uniform(-12, 12)},
    {"|y| near 2/pi", uniform(-4, 4), bits(0.6, 0.7, both_signs)},
    {"|y| near overflow", uniform(-4, 4), bits(445.0, 452.3, both_signs)},
    {"tiny x", log_uniform(0x1p-1074, 0x1p-20, both_signs), uniform(-12, 12)},
    {"tiny y", uniform(-4, 4), log_uniform(0x1p-1074, 0x1p-20, both_signs)},
};
constexpr Range kComplexSinCosHard4[] = {
    {"x near k pi/2, |k| <= 8", near_multiples(-8, 8, mpfr_const_pi, 0.5), uniform(-10, 10)},
    {"x near k pi/2, k to 5e5", near_multiples(9, 520000, mpfr_const_pi, 0.5), uniform(-10, 10)},
    {"|y| near overflow", uniform(-10, 10), bits(85.0, kCoshMax4, both_signs)},
    {"tiny parts", log_uniform(0x1p-149, 0x1p-10, both_signs), log_uniform(0x1p-149, 0x1p-10, both_signs)},
};
constexpr Range kComplexSinCosQuadrantHard4[] = {
    {"x near integers", near_multiples(-1048576, 1048576, nullptr, 1.0), uniform(-8, 8)},
    {"x near halves", near_multiples(-100001, 100001, nullptr, 0.5), uniform(-8, 8)},
    {"|y| near overflow", uniform(-4, 4), bits(54.0, 56.9, both_signs)},
    {"tiny parts", log_uniform(0x1p-149, 0x1p-10, both_signs), log_uniform(0x1p-149, 0x1p-10, both_signs)},
};

// ---- COMPLEX(16) elementary functions and power ----------------------------------

// Working values with W more bits than the result, freed on scope exit.
struct Work {
    mpfr_t v[4];
    explicit Work(mpfr_prec_t p) {
        for (auto& t : v) mpfr_init2(t, p);
    }
    ~Work() {
        for (auto& t : v) mpfr_clear(t);
    }
    mpfr_ptr operator[](int i) { return v[i]; }
};
mpfr_prec_t work_prec(mpfr_srcptr r) { return mpfr_get_prec(r) + 128; }

// ln|z| for z != 0 without losing digits near |z| = 1: x^2 + y^2 exactly
// (twice the parts' precision), its distance from 1 to the working
// precision (relative), then log1p, halved.
void quad_log_modulus(mpfr_ptr out, mpfr_srcptr x, mpfr_srcptr y, mpfr_prec_t w) {
    mpfr_t s, t, m, d;
    const mpfr_prec_t exact = 2 * (mpfr_get_prec(x) > mpfr_get_prec(y) ? mpfr_get_prec(x) : mpfr_get_prec(y)) + 2;
    mpfr_inits2(exact, s, t, m, static_cast<mpfr_ptr>(nullptr));
    mpfr_init2(d, w);
    mpfr_sqr(s, x, MPFR_RNDN);
    mpfr_sqr(t, y, MPFR_RNDN);
    mpfr_set_si(m, -1, MPFR_RNDN);
    const mpfr_ptr terms[3] = {s, t, m};
    mpfr_sum(d, terms, 3, MPFR_RNDN);  // x^2 + y^2 - 1 rounded once
    if (mpfr_cmp_d(d, -0.5) > 0 && mpfr_cmp_d(d, 1.0) < 0) {
        mpfr_log1p(d, d, MPFR_RNDN);
    } else {
        mpfr_add(d, s, t, MPFR_RNDN);
        mpfr_log(d, d, MPFR_RNDN);
    }
    mpfr_div_2ui(out, d, 1, MPFR_RNDN);
    mpfr_clears(s, t, m, d, static_cast<mpfr_ptr>(nullptr));
}

bool quad_complex_sqrt(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    Work t(work_prec(re) + 64);
    // t = sqrt((|x| + |z|)/2); (t, y/2t) for x >= 0, (|y|/2t, +-t) else.
    mpfr_hypot(t[0], x[0], x[1], MPFR_RNDN);
    mpfr_abs(t[1], x[0], MPFR_RNDN);
    mpfr_add(t[0], t[0], t[1], MPFR_RNDN);
    mpfr_div_2ui(t[0], t[0], 1, MPFR_RNDN);
    mpfr_sqrt(t[0], t[0], MPFR_RNDN);
    mpfr_abs(t[2], x[1], MPFR_RNDN);
    mpfr_div(t[2], t[2], t[0], MPFR_RNDN);
    mpfr_div_2ui(t[2], t[2], 1, MPFR_RNDN);
    if (mpfr_signbit(x[0])) mpfr_swap(t[0], t[2]);
    mpfr_set(re, t[0], MPFR_RNDN);
    mpfr_set(im, t[2], MPFR_RNDN);
    mpfr_setsign(im, im, mpfr_signbit(x[1]), MPFR_RNDN);
    return false;
}

bool quad_complex_exp(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    Work t(work_prec(re));
    mpfr_exp(t[0], x[0], MPFR_RNDN);
    mpfr_sin_cos(t[1], t[2], x[1], MPFR_RNDN);
    mpfr_mul(re, t[0], t[2], MPFR_RNDN);
    mpfr_mul(im, t[0], t[1], MPFR_RNDN);
    return false;
}

bool quad_complex_log(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    Work t(work_prec(re));
    quad_log_modulus(t[0], x[0], x[1], work_prec(re));
    mpfr_set(re, t[0], MPFR_RNDN);
    mpfr_atan2(im, x[1], x[0], MPFR_RNDN);
    return false;
}

// sin z = sin x cosh y + i cos x sinh y, cos z = cos x cosh y - i sin x
// sinh y; in quadrants with MPFR's exact unit functions for x and y pi/2
// to 64 bits beyond the working precision and the exponent of y.
template <bool cosine, bool quadrants>
bool quad_complex_sin_cos(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    Work t(work_prec(re) + 32);
    if (quadrants) {
        mpfr_sinu(t[0], x[0], 4, MPFR_RNDN);
        mpfr_cosu(t[1], x[0], 4, MPFR_RNDN);
        mpfr_const_pi(t[2], MPFR_RNDN);
        mpfr_mul(t[2], t[2], x[1], MPFR_RNDN);
        mpfr_div_2ui(t[2], t[2], 1, MPFR_RNDN);
    } else {
        mpfr_sin_cos(t[0], t[1], x[0], MPFR_RNDN);
        mpfr_set(t[2], x[1], MPFR_RNDN);
    }
    // Below 2^-300, sinh t = t and cosh t = 1 to 2^-600 (MPFR's cosh
    // would work to the precision of t^2 there, thousands of bits).
    if (mpfr_zero_p(t[2]) || mpfr_get_exp(t[2]) < -300) mpfr_set_ui(t[3], 1, MPFR_RNDN);
    else mpfr_sinh_cosh(t[2], t[3], t[2], MPFR_RNDN);
    if (cosine) {
        mpfr_mul(re, t[1], t[3], MPFR_RNDN);
        mpfr_mul(im, t[0], t[2], MPFR_RNDN);
        mpfr_neg(im, im, MPFR_RNDN);
    } else {
        mpfr_mul(re, t[0], t[3], MPFR_RNDN);
        mpfr_mul(im, t[1], t[2], MPFR_RNDN);
    }
    return false;
}

// z^w = exp(w log z), log z and the product with 64 more bits than the
// result's exponent can need (|w log z| < 2^15 where the result is finite).
bool quad_complex_pow(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    const mpfr_prec_t w = work_prec(re) + 64;
    Work t(w);
    Work u(w);
    quad_log_modulus(t[0], x[0], x[1], w);
    mpfr_atan2(t[1], x[1], x[0], MPFR_RNDN);
    // p = (c + i d)(lr + i li).
    mpfr_mul(u[0], x[2], t[0], MPFR_RNDN);
    mpfr_mul(u[1], x[3], t[1], MPFR_RNDN);
    mpfr_sub(u[0], u[0], u[1], MPFR_RNDN);
    mpfr_mul(u[2], x[2], t[1], MPFR_RNDN);
    mpfr_mul(u[3], x[3], t[0], MPFR_RNDN);
    mpfr_add(u[2], u[2], u[3], MPFR_RNDN);
    mpfr_exp(t[0], u[0], MPFR_RNDN);
    mpfr_sin_cos(t[1], t[2], u[2], MPFR_RNDN);
    mpfr_mul(re, t[0], t[2], MPFR_RNDN);
    mpfr_mul(im, t[0], t[1], MPFR_RNDN);
    return false;
}

// Hard ranges.  Near |z| = 1 (the real part of log z cancels): the unit
// circle drawn at random angles and moved by a few ulps.
void near_unit_circle(Draw& d, const mpfr_ptr* c) {
    mpfr_t a;
    mpfr_init2(a, 256);
    mpfr_const_pi(a, MPFR_RNDN);
    mpfr_mul_d(a, a, 2 * d.unit(), MPFR_RNDN);
    mpfr_sin_cos(c[1], c[0], a, MPFR_RNDN);
    d.round(0, c[0]);
    d.round(1, c[1]);
    d.step(0, c[0], static_cast<long>(d.unit() * 16) - 8);
    mpfr_clear(a);
}
constexpr Range kCQLogHard[] = {
    {"near the unit circle", near_unit_circle},
    {"near 1", uniform(0.99L, 1.01L), uniform(-0x1p-20L, 0x1p-20L)},
    {"tiny and huge", log_uniform(0x1p-16000L, 0x1p16000L, both_signs), log_uniform(0x1p-16000L, 0x1p16000L, both_signs)},
};
constexpr Range kCQExpHard[] = {
    {"near overflow", uniform(11340.0L, 11356.5L), uniform(-4, 4)},
    {"near k pi/2 in y", uniform(-10, 10), near_multiples(-1000, 1000, mpfr_const_pi, 0.5)},
    {"small", log_uniform(0x1p-60L, 1, both_signs), log_uniform(0x1p-60L, 1, both_signs)},
};
constexpr Range kCQTrigHard[] = {
    {"near k pi/2 in x", near_multiples(-1000, 1000, mpfr_const_pi, 0.5), uniform(-4, 4)},
    {"large y", uniform(-4, 4), uniform(-11356.0L, 11356.0L)},
    {"small", log_uniform(0x1p-60L, 1, both_signs), log_uniform(0x1p-60L, 1, both_signs)},
};
constexpr Range kCQTrigQuadrantHard[] = {
    {"near integers in x", near_multiples(-1000, 1000, nullptr, 1), uniform(-2, 2)},
    {"large y", uniform(-4, 4), uniform(-7229.0L, 7229.0L)},
    {"small", log_uniform(0x1p-60L, 1, both_signs), log_uniform(0x1p-60L, 1, both_signs)},
};
constexpr Range kCQSqrtHard[] = {
    {"near the negative axis", uniform(-4, -1), log_uniform(0x1p-100L, 0x1p-10L, both_signs)},
    {"tiny and huge", log_uniform(0x1p-16000L, 0x1p16000L, both_signs), log_uniform(0x1p-16000L, 0x1p16000L, both_signs)},
};
// The power of a base near the unit circle (ln|z| cancels) to exponents
// up to 1000.
void near_unit_circle_power(Draw& d, const mpfr_ptr* c) {
    near_unit_circle(d, c);
    d.axis(2, uniform(-1000, 1000), c[2]);
    d.axis(3, uniform(-1000, 1000), c[3]);
}
constexpr Range kCQPowHard[] = {
    {"base near the unit circle", near_unit_circle_power},
    {"large exponents", uniform(0.5L, 2.0L), uniform(-2, 2), uniform(-1000, 1000), uniform(-100, 100)},
};

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

// ---- complex elementary functions and powers -----------------------------------

// MPFR has no complex type: the references are built from its real
// functions at a working precision far above the result's.  The precision
// of the parts (re, im) is the result's; every intermediate value below
// carries kExtra bits more (and the angle of a power as many more as its
// size needs), so that the final roundings decide.
constexpr mpfr_prec_t kExtra = 128;

struct Scratch {
    mpfr_t v[6];
    explicit Scratch(mpfr_prec_t p) {
        for (mpfr_t& t : v) mpfr_init2(t, p);
    }
    ~Scratch() {
        for (mpfr_t& t : v) mpfr_clear(t);
    }
};

// log|x + iy| = log(x^2 + y^2)/2, and between 1/2 and 2 log1p(x^2 + y^2 -
// 1)/2 with x^2 + y^2 - 1 correctly rounded to p bits by mpfr_sum of the
// exact squares: no cancellation is lost next to |z| = 1.
void log_modulus(mpfr_ptr out, mpfr_srcptr x, mpfr_srcptr y, mpfr_prec_t p) {
    mpfr_t xx, yy, m1, d;
    mpfr_init2(xx, 2 * mpfr_get_prec(x));
    mpfr_init2(yy, 2 * mpfr_get_prec(y));
    mpfr_init2(m1, 2);
    mpfr_init2(d, p);
    mpfr_sqr(xx, x, MPFR_RNDN);  // exact
    mpfr_sqr(yy, y, MPFR_RNDN);
    mpfr_set_si(m1, -1, MPFR_RNDN);
    mpfr_ptr terms[3] = {xx, yy, m1};
    mpfr_add(d, xx, yy, MPFR_RNDN);
    if (mpfr_cmp_d(d, 0.5) >= 0 && mpfr_cmp_ui(d, 2) <= 0) {
        mpfr_sum(d, terms, 3, MPFR_RNDN);
        mpfr_log1p(out, d, MPFR_RNDN);
    } else {
        mpfr_log(out, d, MPFR_RNDN);
    }
    mpfr_div_2ui(out, out, 1, MPFR_RNDN);
    mpfr_clears(xx, yy, m1, d, static_cast<mpfr_ptr>(nullptr));
}

bool complex_exp(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    Scratch s(mpfr_get_prec(re) + kExtra);
    mpfr_exp(s.v[0], x[0], MPFR_RNDN);
    mpfr_sin_cos(s.v[1], s.v[2], x[1], MPFR_RNDN);
    mpfr_mul(re, s.v[0], s.v[2], MPFR_RNDN);
    mpfr_mul(im, s.v[0], s.v[1], MPFR_RNDN);
    return false;
}

bool complex_log(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    Scratch s(mpfr_get_prec(re) + kExtra);
    log_modulus(s.v[0], x[0], x[1], mpfr_get_prec(re) + kExtra);
    mpfr_set(re, s.v[0], MPFR_RNDN);
    mpfr_atan2(im, x[1], x[0], MPFR_RNDN);
    return false;
}

// sqrt z: t = sqrt((|z| + |x|)/2) (no cancellation), the other part
// |y|/2t; x < 0 swaps them, the imaginary part takes the sign of y.
bool complex_sqrt(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    Scratch s(mpfr_get_prec(re) + kExtra);
    mpfr_hypot(s.v[0], x[0], x[1], MPFR_RNDN);
    mpfr_abs(s.v[1], x[0], MPFR_RNDN);
    mpfr_add(s.v[0], s.v[0], s.v[1], MPFR_RNDN);
    mpfr_div_2ui(s.v[0], s.v[0], 1, MPFR_RNDN);
    mpfr_sqrt(s.v[0], s.v[0], MPFR_RNDN);  // t
    mpfr_abs(s.v[1], x[1], MPFR_RNDN);
    mpfr_div(s.v[1], s.v[1], s.v[0], MPFR_RNDN);
    mpfr_div_2ui(s.v[1], s.v[1], 1, MPFR_RNDN);  // |y|/2t
    const bool negative_x = mpfr_sgn(x[0]) < 0;
    mpfr_set(re, negative_x ? s.v[1] : s.v[0], MPFR_RNDN);
    mpfr_set(im, negative_x ? s.v[0] : s.v[1], MPFR_RNDN);
    mpfr_setsign(im, im, mpfr_signbit(x[1]), MPFR_RNDN);
    return false;
}

// z^w = e^(w log z): the angle a theta + b log|z| with as many more bits
// as its integer part has, so that its reduction modulo 2 pi keeps kExtra.
bool complex_pow(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
    const mpfr_prec_t p = mpfr_get_prec(re) + kExtra + 1100;
    Scratch s(p);
    log_modulus(s.v[0], x[0], x[1], p);  // L
    mpfr_atan2(s.v[1], x[1], x[0], MPFR_RNDN);  // theta
    mpfr_mul(s.v[2], x[2], s.v[0], MPFR_RNDN);
    mpfr_mul(s.v[3], x[3], s.v[1], MPFR_RNDN);
    mpfr_sub(s.v[2], s.v[2], s.v[3], MPFR_RNDN);  // a L - b theta
    mpfr_mul(s.v[3], x[2], s.v[1], MPFR_RNDN);
    mpfr_mul(s.v[4], x[3], s.v[0], MPFR_RNDN);
    mpfr_add(s.v[3], s.v[3], s.v[4], MPFR_RNDN);  // a theta + b L
    mpfr_exp(s.v[2], s.v[2], MPFR_RNDN);
    mpfr_sin_cos(s.v[4], s.v[5], s.v[3], MPFR_RNDN);
    mpfr_mul(re, s.v[2], s.v[5], MPFR_RNDN);
    mpfr_mul(im, s.v[2], s.v[4], MPFR_RNDN);
    return false;
}

// Pairs on the unit circle, (cos t, sin t) rounded: |z| within an ulp of 1.
template <bool single>
void on_unit_circle(Draw& d, const mpfr_ptr* c) {
    d.axis(0, uniform(-3.14159L, 3.14159L), c[0]);
    mpfr_t t;
    mpfr_init2(t, 64);
    mpfr_set(t, c[0], MPFR_RNDN);
    mpfr_sin_cos(c[1], c[0], t, MPFR_RNDN);
    mpfr_clear(t);
    d.round(0, c[0]);
    d.round(1, c[1]);
}
// (x, y) with x^2 + y^2 within a few ulps of 1 and one part tiny.
void near_one_tiny_part(Draw& d, const mpfr_ptr* c) {
    d.axis(1, log_uniform(0x1p-40L, 0x1p-10L, both_signs), c[1]);
    mpfr_sqr(c[0], c[1], MPFR_RNDN);
    mpfr_ui_sub(c[0], 1, c[0], MPFR_RNDN);
    mpfr_sqrt(c[0], c[0], MPFR_RNDN);
    d.round(0, c[0]);
    d.step(0, c[0], static_cast<long>(d.unit() * 8) - 4);
    if (d.unit() < 0.5) mpfr_neg(c[0], c[0], MPFR_RNDN);
}

constexpr Axis kAnyPart8 = interval(-kDmax, kDmax);
constexpr Axis kAnyPart4 = interval(-kFmax, kFmax);

template <bool single>
constexpr Range kComplexHard[] = {
    {"|z| next to 1", on_unit_circle<single>},
    {"|z| next to 1, a tiny part", near_one_tiny_part},
    {"huge parts", log_uniform(single ? 0x1p100L : 0x1p1000L, single ? kFmax : kDmax, both_signs),
     log_uniform(1, single ? kFmax : kDmax, both_signs)},
    {"tiny parts", log_uniform(single ? 0x1p-149L : 0x1p-1074L, single ? 0x1p-100L : 0x1p-1000L, both_signs),
     log_uniform(single ? 0x1p-149L : 0x1p-1074L, 1, both_signs)},
    {"the branch cut: x < 0, y tiny", log_uniform(0x1p-3L, 0x1p3L), log_uniform(single ? 0x1p-149L : 0x1p-1074L, 0x1p-30L, both_signs)},
    {"parts of very different size", log_uniform(0x1p-20L, 0x1p20L, both_signs), log_uniform(0x1p-80L, 0x1p-40L, both_signs)},
};
template <bool single>
constexpr Range kComplexExpHard[] = {
    {"near overflow", uniform(single ? 80.0L : 700.0L, single ? 88.7L : 709.7L), uniform(-6.3L, 6.3L)},
    {"subnormal parts", uniform(single ? -103.9L : -745.1L, single ? -87.0L : -707.0L), uniform(-6.3L, 6.3L)},
    {"y next to multiples of pi/2", uniform(-5, 5), near_multiples(1, 2000, mpfr_const_pi, 0.5)},
    {"tiny y", uniform(-5, 5), log_uniform(single ? 0x1p-149L : 0x1p-1074L, 0x1p-20L, both_signs)},
    {"large y", uniform(-5, 5), log_uniform(0x1p20L, single ? 822999.0L : 3.5e15L, both_signs)},
};
// Powers: bases near the unit circle to large exponents, real powers of
// positive reals, bases far from 1 to exponents near overflow.
constexpr Range kComplexPowHard8[] = {
    {"|z| near 1, |w| to 2^10", uniform(-1.5L, 1.5L), uniform(-1.5L, 1.5L), log_uniform(0x1p-4L, 0x1p10L, both_signs),
     log_uniform(0x1p-4L, 0x1p10L, both_signs)},
    {"real z > 0, real w", log_uniform(0x1p-20L, 0x1p20L), bits(0, 0), uniform(-30, 30), bits(0, 0)},
    {"moderate parts", uniform(-4, 4), uniform(-4, 4), uniform(-40, 40), uniform(-40, 40)},
};
constexpr Range kComplexPowHard4[] = {
    {"|z| near 1, |w| to 2^6", uniform(-1.5L, 1.5L), uniform(-1.5L, 1.5L), log_uniform(0x1p-4L, 0x1p6L, both_signs),
     log_uniform(0x1p-4L, 0x1p6L, both_signs)},
    {"real z > 0, real w", log_uniform(0x1p-10L, 0x1p10L), bits(0, 0), uniform(-10, 10), bits(0, 0)},
};

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

// ---- real powers ---------------------------------------------------------------------

// The powers to the base two and ten: both ends of the range (subnormal
// results, rounded once onto their grid) and the integral exponents.
constexpr Range kPow2Hard8[] = {
    {"near overflow", bits(1000.0, 1023.999)},
    {"subnormal results", bits(-1075.0, -1022.0)},
    {"near integers", near_multiples(-1000, 1000, nullptr, 1.0)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
};
constexpr Range kPow10Hard8[] = {
    {"near overflow", bits(300.0, 308.25)},
    {"subnormal results", bits(-323.6, -307.6)},
    {"near integers", near_multiples(-300, 300, nullptr, 1.0)},
    {"tiny", log_uniform(0x1p-60, 0x1p-20, both_signs)},
};
constexpr Range kPow2Hard4[] = {
    {"near overflow", bits(120.0, 127.99)},
    {"subnormal results", bits(-150.0, -126.0)},
    {"tiny", log_uniform(0x1p-30, 0x1p-10, both_signs)},
};
constexpr Range kPow10Hard4[] = {
    {"near overflow", bits(35.0, 38.5)},
    {"subnormal results", bits(-45.2, -37.9)},
    {"tiny", log_uniform(0x1p-30, 0x1p-10, both_signs)},
};

// x**y: pairs whose results spread over the whole range, drawn in double
// and rounded to the argument kind.  `single` selects the REAL(4) limits.
struct PowDraw {
    Draw& d;
    const mpfr_ptr* c;
    bool single;
    double uniform(double lo, double hi) { return lo + (hi - lo) * d.unit(); }
    double sign() { return d.unit() < 0.5 ? -1.0 : 1.0; }
    // Positive, log-uniform in magnitude over [2^lo, 2^hi].
    double magnitude(double lo, double hi) { return std::exp2(uniform(lo, hi)); }
    double limit() const { return single ? 103.0 : 745.0; }
    double emin() const { return single ? -149 : -1074; }
    double emax() const { return single ? 128 : 1024; }
    void set(double x, double y) {
        mpfr_set_d(c[0], x, MPFR_RNDN);
        d.round(0, c[0]);
        mpfr_set_d(c[1], y, MPFR_RNDN);
        d.round(1, c[1]);
    }
};
template <bool Single> PowDraw pow_draw(Draw& d, const mpfr_ptr* c) { return {d, c, Single}; }

// x over every positive value (log-uniform), y such that |y log x| is
// uniform below the limit: results over the whole range.
template <bool S> void pow_random(Draw& d, const mpfr_ptr* c) {
    PowDraw p = pow_draw<S>(d, c);
    const double x = p.magnitude(p.emin(), p.emax()), l = std::log(x);
    p.set(x, l == 0 ? p.uniform(-1e6, 1e6) : p.sign() * p.uniform(0, p.limit()) / std::fabs(l));
}
// x next to 1, y large: log x carries the whole result.
template <bool S> void pow_near_one(Draw& d, const mpfr_ptr* c) {
    PowDraw p = pow_draw<S>(d, c);
    const double x = 1.0 + p.sign() * p.magnitude(S ? -23 : -52, -20);
    p.set(x, p.sign() * p.uniform(0, p.limit()) / std::fabs(std::log(x)));
}
// Results near overflow and in the subnormal range.
template <bool S> void pow_near_overflow(Draw& d, const mpfr_ptr* c) {
    PowDraw p = pow_draw<S>(d, c);
    const double x = p.magnitude(0.01, p.emax() - 1);
    p.set(x, p.uniform(S ? 80 : 700, S ? 88.72 : 709.78) / std::log(x));
}
template <bool S> void pow_subnormal(Draw& d, const mpfr_ptr* c) {
    PowDraw p = pow_draw<S>(d, c);
    const double x = p.magnitude(0.01, p.emax() - 1);
    p.set(x, -p.uniform(S ? 87.3 : 708.4, S ? 103.9 : 745.1) / std::log(x));
}
// Small integral exponents of integral bases, where the result is often exact.
template <bool S> void pow_small_integers(Draw& d, const mpfr_ptr* c) {
    PowDraw p = pow_draw<S>(d, c);
    const double x = std::nearbyint(p.magnitude(0, 20)), l = std::log(std::fabs(x));
    p.set(x, std::trunc(p.uniform(-1, 1) * (l == 0 ? 40 : std::min(40.0, 0.85 * p.limit() / l))));
}
// Tiny exponents (results next to 1) and subnormal bases.
template <bool S> void pow_tiny_exponent(Draw& d, const mpfr_ptr* c) {
    PowDraw p = pow_draw<S>(d, c);
    const double x = p.magnitude(p.emin(), p.emax());
    p.set(x, p.sign() * p.magnitude(-60, -10));
}
template <bool S> void pow_subnormal_base(Draw& d, const mpfr_ptr* c) {
    PowDraw p = pow_draw<S>(d, c);
    const double x = p.magnitude(p.emin(), S ? -126 : -1022);
    p.set(x, p.sign() * p.uniform(0, p.limit()) / std::fabs(std::log(x)));
}

// The random pairs are a hard range too, as many as the random arguments
// (share 50): over the domain alone most pairs overflow or underflow.
// Negative bases report unless the exponent is integral, so the domain
// leaves them out; tests/power checks their signs and values directly.
template <bool S> constexpr Range kPowPairs[] = {
    Range{"results over the whole range", pow_random<S>}.times(50),
    {"x near 1, large y", pow_near_one<S>},
    {"results near overflow", pow_near_overflow<S>},
    {"subnormal results", pow_subnormal<S>},
    {"small integral y", pow_small_integers<S>},
    {"tiny y", pow_tiny_exponent<S>},
    {"subnormal x", pow_subnormal_base<S>},
};

// ---- error function, gamma ---------------------------------------------------------

// erf, erfc: the small-argument polynomial's end, the rows of the scaled
// complement, the tails (erfc down to its subnormal results).
constexpr Range kErfHard8[] = {
    {"tiny", log_uniform(0x1p-1074, 0x1p-20, both_signs)},
    {"near 1/2", bits(0.49, 0.51)},
    {"[1/2, 2]", bits(0.5, 2.0)},
    {"[-6, 6]", bits(-6.0, 6.0)},
    {"tail", bits(5.0, 27.3)},
    {"subnormal results", bits(26.5, 27.3)},
};
constexpr Range kErfHard4[] = {
    {"tiny", log_uniform(0x1p-149, 0x1p-10, both_signs)},
    {"[-6, 6]", bits(-6.0, 6.0)},
    {"tail", bits(5.0, 10.1)},
};

// gamma, log-gamma: around the zeros of log-gamma (1 and 2), the rows'
// ends, tiny arguments, both ends of the range, negative arguments (near
// the poles, and deep enough for subnormal and zero results).
constexpr Range kGammaHard8[] = {
    {"near 1 and 2", bits(0.9, 2.3)},
    {"near 1/2 (the reflected rows' end)", bits(0.49, 0.51)},
    {"tiny", log_uniform(0x1p-1000, 0x1p-20)},
    {"(0, 16)", bits(0x1p-10, 16.0)},
    {"near overflow", bits(160.0, 171.62)},
    {"negative, near poles", near_multiples(-170, -1, nullptr, 1.0, 1)},
    {"negative", bits(-190.0, -0x1p-10)},
};
constexpr Range kLgammaHard8[] = {
    {"near 1 and 2", bits(0.9, 2.3)},
    {"near 1/2 (the reflected rows' end)", bits(0.49, 0.51)},
    {"tiny", log_uniform(0x1p-1074, 0x1p-20)},
    {"(0, 16)", bits(0x1p-10, 16.0)},
    {"large", log_uniform(16.0, 0x1p1000)},
    {"negative, near poles", near_multiples(-170, -1, nullptr, 1.0, 1)},
    // Its zeros near -2.46 and -2.75, where the error is absolute (2^-60):
    // 0.9 ulp at -2.7477 on 10^6 arguments; judged apart.
    Range{"negative (-190, 0)", bits(-190.0, -0x1p-10)}.within(2.0),
    {"negative beyond -190", bits(-0x1p40, -190.0)},
};
constexpr Range kGammaHard4[] = {
    {"near 1 and 2", bits(0.9, 2.3)},
    {"negative", bits(-45.0, -0x1p-10)},
};

// erf, erfc: glibc's extended-precision functions, within a few units of
// a 64-bit significand (2^-58 with margin).
long double fast_erf(long double x) { return erfl(x); }
long double fast_erfc(long double x) { return erfcl(x); }
// gamma, log-gamma: glibc's extended-precision functions, a few units of a
// 64-bit significand from the value (2^-57 with margin); log-gamma not
// near its zeros, where its error is absolute: MPFR decides there (a NaN
// leaves the argument to MPFR).
long double fast_gamma(long double x) { return tgammal(x); }
long double fast_lgamma(long double x) {
    const long double r = lgammal(x);
    return std::fabs(r) < 0.25L ? std::nanl("") : r;
}
int log_abs_gamma(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rnd) {
    int sign;
    return mpfr_lgamma(y, &sign, x, rnd);
}

// ---- REAL(16) elementary functions ------------------------------------------------
//
// Domains are the arguments answered without a report and without a
// subnormal result (the functions return zero below 2^-16382, on purpose:
// the working format rounds once to normal REAL(16) numbers).  Random
// arguments cover the domain (half uniform over the representable numbers,
// half log-uniform); the hard ranges are where the errors concentrate.

constexpr long double kQmax = LDBL_MAX;  // within an ulp of the largest REAL(16)
constexpr long double kQtiny = 0x1p-16382L;

// j 2^e with j odd below 256: short arguments, where the terms of a
// polynomial (1 + x + x^2/2, x^2, x^3) can tie with a rounding boundary.
template <int Elo, int Ehi, bool Signed>
void short_terms(Draw& d, const mpfr_ptr* c) {
    const long j = 2 * static_cast<long>(d.unit() * 128) + 1;
    const long e = Elo + static_cast<long>(d.unit() * (Ehi - Elo + 1));
    mpfr_set_si_2exp(c[0], j, e, MPFR_RNDN);
    if (Signed && d.unit() < 0.5) mpfr_neg(c[0], c[0], MPFR_RNDN);
}
// 1 -+ 2^-t (1 + u), t uniform in [1, 112]: next to 1, below (and above
// with Above), of either sign with Signed.
template <bool Above, bool Signed>
void next_to_one(Draw& d, const mpfr_ptr* c) {
    const long t = 1 + static_cast<long>(d.unit() * 112);
    mpfr_set_d(c[0], 1 + d.unit(), MPFR_RNDN);
    mpfr_mul_2si(c[0], c[0], -t - 1, MPFR_RNDN);
    if (!(Above && d.unit() < 0.5)) mpfr_neg(c[0], c[0], MPFR_RNDN);
    mpfr_add_ui(c[0], c[0], 1, MPFR_RNDN);
    d.round(0, c[0]);
    if (Signed && d.unit() < 0.5) mpfr_neg(c[0], c[0], MPFR_RNDN);
}
// A REAL(16) x = M 2^(E-112) among the closest of its binade to a multiple
// of pi/2: M the largest denominator below 2^113 of a convergent of
// 2^(E-112)/(pi/2) mod 1, brought into [2^112, 2^113) by a small multiple,
// then moved by up to 4 units of its last place.  E uniform in [Elo, Ehi].
template <int Elo, int Ehi>
void closest_to_half_pi(Draw& d, const mpfr_ptr* c) {
    const long E = Elo + static_cast<long>(d.unit() * (Ehi - Elo + 1));
    const mpfr_prec_t prec = (E > 0 ? E : 0) + 700;
    mpfr_t a;
    mpfr_init2(a, prec);
    mpfr_const_pi(a, MPFR_RNDN);
    mpfr_ui_div(a, 2, a, MPFR_RNDN);
    mpfr_mul_2si(a, a, E - 112, MPFR_RNDN);
    mpfr_frac(a, a, MPFR_RNDN);
    mpfr_mul_2ui(a, a, 500, MPFR_RNDN);
    mpz_t num, den, q, r, k0, k1, k2, limit, low;
    mpz_inits(num, den, q, r, k0, k1, k2, limit, low, nullptr);
    mpfr_get_z(num, a, MPFR_RNDN);
    mpz_set_ui(den, 1);
    mpz_mul_2exp(den, den, 500);
    mpz_set_ui(limit, 1);
    mpz_mul_2exp(limit, limit, 113);
    mpz_set_ui(k0, 0);
    mpz_set_ui(k1, 1);
    while (mpz_sgn(num) != 0) {
        mpz_fdiv_qr(q, r, den, num);
        mpz_mul(k2, q, k1);
        mpz_add(k2, k2, k0);
        if (mpz_cmp(k2, limit) >= 0) break;
        mpz_swap(k0, k1);
        mpz_swap(k1, k2);
        mpz_swap(den, num);
        mpz_swap(num, r);
    }
    mpz_set_ui(low, 1);
    mpz_mul_2exp(low, low, 112);
    mpz_cdiv_q(q, low, k1);
    mpz_mul(k2, k1, q);
    while (mpz_cmp(k2, limit) >= 0) mpz_sub(k2, k2, k1);
    mpfr_set_z_2exp(c[0], k2, E - 112, MPFR_RNDN);
    d.round(0, c[0]);
    d.step(0, c[0], static_cast<long>(d.unit() * 9) - 4);
    if (d.unit() < 0.5) mpfr_neg(c[0], c[0], MPFR_RNDN);
    mpz_clears(num, den, q, r, k0, k1, k2, limit, low, nullptr);
    mpfr_clear(a);
}

constexpr Range kQExpHard[] = {
    {"uniform in [-11355, 11356]", uniform(-11355, 11356)},
    {"near overflow [11350, 11356.5]", bits(11350, 11356.5)},
    {"near underflow [-11355.1, -11340]", bits(-11355.1, -11340)},
    {"tiny 2^-116 .. 2^-100", log_uniform(0x1p-116, 0x1p-100, both_signs)},
    {"near k ln2/256", near_multiples(-4194000, 4194000, mpfr_const_log2, 1.0 / 256)},
    {"short j 2^e, e in [-70, -40]", short_terms<-70, -40, true>},
};
constexpr Range kQExp2Hard[] = {
    {"uniform in [-16382, 16384)", uniform(-16382, 16383.999)},
    {"near overflow [16380, 16384)", bits(16380, 16383.999)},
    {"near underflow [-16382, -16370]", bits(-16382, -16370)},
    {"tiny 2^-116 .. 2^-100", log_uniform(0x1p-116, 0x1p-100, both_signs)},
    {"near k/256", near_multiples(-4194000, 4194000, nullptr, 1.0 / 256)},
};
constexpr Range kQExp10Hard[] = {
    {"uniform in [-4931.4, 4932]", uniform(-4931.4, 4932)},
    {"near overflow [4930, 4932.07]", bits(4930, 4932.07)},
    {"near underflow [-4931.4, -4925]", bits(-4931.4, -4925)},
    {"tiny 2^-116 .. 2^-100", log_uniform(0x1p-116, 0x1p-100, both_signs)},
    {"near integers", near_multiples(-4900, 4900, nullptr, 1)},
};
// REAL(16) x**y: pairs drawn in MPFR, so that both operands carry all 113
// bits: x = 2^u (or 1 + s 2^u next to 1) and y = E / ln x for a target
// exponent E, both rounded to REAL(16).
struct QPowDraw {
    Draw& d;
    const mpfr_ptr* c;
    double uniform(double lo, double hi) { return lo + (hi - lo) * d.unit(); }
    double sign() { return d.unit() < 0.5 ? -1.0 : 1.0; }
    void x_power_of_two(double u) {
        mpfr_set_d(c[0], u, MPFR_RNDN);
        mpfr_exp2(c[0], c[0], MPFR_RNDN);
        d.round(0, c[0]);
    }
    void x_next_to_one(double u, double s) {
        x_power_of_two(u);
        if (s < 0) mpfr_neg(c[0], c[0], MPFR_RNDN);
        mpfr_add_ui(c[0], c[0], 1, MPFR_RNDN);
        d.round(0, c[0]);
    }
    void y_for(double e) {
        mpfr_t l;
        mpfr_init2(l, 256);
        mpfr_log(l, c[0], MPFR_RNDN);
        mpfr_set_d(c[1], e, MPFR_RNDN);
        mpfr_div(c[1], c[1], l, MPFR_RNDN);
        d.round(1, c[1]);
        mpfr_clear(l);
    }
};
constexpr double kQLnHuge = 11356.5, kQLnTiny = -11355.1;
// x over every positive value, |y ln x| uniform below the range's end.
void qpow_random(Draw& d, const mpfr_ptr* c) {
    QPowDraw p{d, c};
    p.x_power_of_two(p.uniform(-16382, 16384));
    p.y_for(p.sign() * p.uniform(0, 11355));
}
// x next to 1 (within 2^-9), y large: log x carries the whole result.
void qpow_near_one(Draw& d, const mpfr_ptr* c) {
    QPowDraw p{d, c};
    p.x_next_to_one(p.uniform(-112, -9), p.sign());
    p.y_for(p.sign() * p.uniform(0, 11355));
}
// The logarithm's rows next to 1 (|ln x| from 2^-9 to 1/2), |y ln x|
// large: where the error of ln x weighs most.
void qpow_rows_near_one(Draw& d, const mpfr_ptr* c) {
    QPowDraw p{d, c};
    p.x_next_to_one(p.uniform(-8.6, -1.5), p.sign());
    p.y_for(p.sign() * p.uniform(4000, 11355));
}
void qpow_near_overflow(Draw& d, const mpfr_ptr* c) {
    QPowDraw p{d, c};
    p.x_power_of_two(p.sign() * p.uniform(0.01, 16383));
    p.y_for(p.uniform(11340, kQLnHuge));
}
void qpow_near_underflow(Draw& d, const mpfr_ptr* c) {
    QPowDraw p{d, c};
    p.x_power_of_two(p.sign() * p.uniform(0.01, 16383));
    p.y_for(p.uniform(kQLnTiny, -11340));
}
// Integral x and y, results often exact or halfway (78125**7).
void qpow_small_integers(Draw& d, const mpfr_ptr* c) {
    QPowDraw p{d, c};
    const double x = std::nearbyint(std::exp2(p.uniform(1, 24)));
    mpfr_set_d(c[0], x, MPFR_RNDN);
    mpfr_set_d(c[1], std::trunc(p.uniform(-1, 1) * std::min(120.0, 0.85 * 11355 / std::log(x))), MPFR_RNDN);
}
// Tiny exponents (results next to 1) and subnormal bases.
void qpow_tiny_exponent(Draw& d, const mpfr_ptr* c) {
    QPowDraw p{d, c};
    p.x_power_of_two(p.uniform(-16382, 16384));
    mpfr_set_d(c[1], p.sign() * std::exp2(p.uniform(-120, -10)), MPFR_RNDN);
    mpfr_exp2(c[1], c[1], MPFR_RNDN);  // y = 2^t - 1 for a tiny t: all 113 bits
    mpfr_sub_ui(c[1], c[1], 1, MPFR_RNDN);
    d.round(1, c[1]);
}
void qpow_subnormal_base(Draw& d, const mpfr_ptr* c) {
    QPowDraw p{d, c};
    p.x_power_of_two(p.uniform(-16445, -16382));
    p.y_for(p.sign() * p.uniform(0, 11355));
}
constexpr Range kQPowPairs[] = {
    Range{"results over the whole range", qpow_random}.times(50),
    {"x within 2^-9 of 1, large y", qpow_near_one},
    {"|ln x| in [2^-9, 1/2], |y ln x| > 4000", qpow_rows_near_one},
    {"results near overflow", qpow_near_overflow},
    {"results near 2^-16382", qpow_near_underflow},
    {"integral x and y", qpow_small_integers},
    {"tiny y", qpow_tiny_exponent},
    {"subnormal x", qpow_subnormal_base},
};
constexpr Range kQLogHard[] = {
    {"uniform in (0, 4]", uniform(0, 4)},
    {"near 1: [0.99, 1.01]", bits(0.99, 1.01)},
    {"1 -+ 2^-1 .. 2^-113", next_to_one<true, false>},
    {"subnormals", bits(0x1p-16445L, kQtiny)},
    {"[0.5, 2]", uniform(0.5, 2)},
    {"near overflow", log_uniform(0x1p16300L, kQmax)},
};
constexpr Range kQTrigHard[] = {
    {"[-10, 10]", uniform(-10, 10)},
    {"near k pi/2, |k| <= 8", near_multiples(-8, 8, mpfr_const_pi, 0.5)},
    {"near k pi/2, |k| to 2^20", near_multiples(-1048576, 1048576, mpfr_const_pi, 0.5)},
    {"near k pi/2, |k| to 2^60", near_multiples(-0x1p60L, 0x1p60L, mpfr_const_pi, 0.5)},
    {"closest to k pi/2, binades 2^1 .. 2^200", closest_to_half_pi<1, 200>},
    {"closest to k pi/2, binades 2^1 .. 2^16383", closest_to_half_pi<1, 16383>},
    {"tiny 2^-120 .. 2^-40", log_uniform(0x1p-120, 0x1p-40, both_signs)},
};
constexpr Range kQAtanHard[] = {
    {"[-2, 2]", uniform(-2, 2)},
    {"tiny 2^-120 .. 2^-40", log_uniform(0x1p-120, 0x1p-40, both_signs)},
    {"next to +-1", next_to_one<true, true>},
    {"near the table points j/64", near_multiples(-64, 64, nullptr, 1.0 / 64)},
    {"between the table points (j + 1/2)/64", near_multiples(-128, 128, nullptr, 1.0 / 128)},
};
// atan2: x of either sign in [0.5, 4.5].
constexpr Axis kQAtan2X = bits(0.5, 4.5, both_signs);
constexpr Range kQAtan2Hard[] = {
    {"y in [-10, 10]", uniform(-10, 10), kQAtan2X},
    {"y log-uniform 2^-200 .. 2^200", log_uniform(0x1p-200, 0x1p200, both_signs), kQAtan2X},
    {"|y| near |x|", bits(0.45, 4.6, both_signs), kQAtan2X},
    {"y tiny", log_uniform(0x1p-16000L, 0x1p-100, both_signs), kQAtan2X},
};
constexpr Range kQAsinHard[] = {
    {"[-1, 1]", uniform(-1, 1)},
    {"below +-1: 1 - 2^-1 .. 1 - 2^-113", next_to_one<false, true>},
    {"tiny 2^-120 .. 2^-40", log_uniform(0x1p-120, 0x1p-40, both_signs)},
    {"near 1/2 and 1/sqrt2", bits(0.49, 0.72, both_signs)},
};
constexpr Range kQHypHard[] = {
    {"uniform in [-11355, 11355]", uniform(-11355, 11355)},
    {"near 1/2, where the series ends", bits(0.45, 0.55, both_signs)},
    {"[-3, 3]", uniform(-3, 3)},
    {"tiny 2^-120 .. 2^-40", log_uniform(0x1p-120, 0x1p-40, both_signs)},
    {"near overflow [11350, 11356.5]", bits(11350, 11356.5, both_signs)},
    {"short j 2^e, e in [-70, -40]", short_terms<-70, -40, true>},
};
constexpr Range kQTanhHard[] = {
    {"uniform in [-45, 45]", uniform(-45, 45)},
    {"near 1/2, where the series ends", bits(0.45, 0.55, both_signs)},
    {"tiny 2^-120 .. 2^-40", log_uniform(0x1p-120, 0x1p-40, both_signs)},
    {"where tanh reaches 1: [38, 41]", bits(38, 41, both_signs)},
};
constexpr Range kQSqrtHard[] = {
    {"uniform in [0, 4]", uniform(0, 4)},
    {"next to 1", next_to_one<true, false>},
    {"subnormals", bits(0x1p-16445L, kQtiny)},
    {"short j 2^e (squares and near squares)", short_terms<-200, 200, false>},
};
constexpr Range kQCbrtHard[] = {
    {"uniform in [-8, 8]", uniform(-8, 8)},
    {"next to +-1", next_to_one<true, true>},
    {"subnormals", bits(0x1p-16445L, kQtiny, both_signs)},
    {"short j 2^e (cubes and near cubes)", short_terms<-200, 200, true>},
};
constexpr Range kQGammaHard[] = {
    {"uniform in (0, 40]", uniform(0, 40)},
    {"uniform in [-40, 0)", uniform(-40, 0)},
    {"near 1 and 2", bits(0.98, 2.02)},
    {"next to negative integers to -170", near_multiples(-170, -1, nullptr, 1, 1, 64)},
    {"near overflow [1700, 1755.4]", bits(1700, 1755.4)},
    {"tiny 2^-120 .. 2^-40", log_uniform(0x1p-120, 0x1p-40, both_signs)},
    {"short j 2^e", short_terms<-10, 2, false>},
};
// Next to the zeros of ln|Gamma| on the negative axis the error is
// promised absolutely (the result is tiny beside the terms that cancel).
constexpr Range kQLgammaHard[] = {
    {"uniform in [-40, 40]", uniform(-40, 40)},
    {"near 1: [0.99, 1.01]", bits(0.99, 1.01)},
    {"near 2: [1.99, 2.01]", bits(1.99, 2.01)},
    {"very near 1 and 2", near_multiples(1, 2, nullptr, 1)},
    {"around the minimum 1.46", bits(1.2, 1.7)},
    {"next to negative integers to -170", near_multiples(-170, -1, nullptr, 1, 1, 64)},
    {"tiny 2^-120 .. 2^-40", log_uniform(0x1p-120, 0x1p-40, both_signs)},
    Range{"within 2^-10 of the zero -2.4570247", bits(-2.4580, -2.4560)}.within_absolute(-118),
    Range{"within 2^-10 of the zero -2.7476826", bits(-2.7487, -2.7467)}.within_absolute(-118),
    Range{"within 2^-10 of the zero -3.1435809", bits(-3.1446, -3.1426)}.within_absolute(-118),
    Range{"within 2^-10 of the zero -3.9552943", bits(-3.9563, -3.9543)}.within_absolute(-118),
};
constexpr Range kQErfHard[] = {
    {"[-6, 6]", uniform(-6, 6)},
    {"near the piece ends 1/2 .. 5/2", near_multiples(-5, 5, nullptr, 0.5)},
    {"tiny 2^-16382 .. 2^-40", log_uniform(kQtiny, 0x1p-40, both_signs)},
    {"where erf reaches 1: [8, 9.5]", bits(8, 9.5, both_signs)},
};
constexpr Range kQErfcHard[] = {
    {"[-10, 107]", uniform(-10, 107)},
    {"near the piece ends 1/2 .. 5/2", near_multiples(-5, 5, nullptr, 0.5)},
    {"near underflow [100, 106.53]", bits(100, 106.53)},
    {"[2.4, 12]", uniform(2.4, 12)},
    {"tiny 2^-120 .. 2^-40", log_uniform(0x1p-120, 0x1p-40, both_signs)},
};
// Degrees and quadrants: at and next to the multiples of a right angle
// (exact results there), next to the angles of exact sines, tiny ones.
constexpr Range kQDegHard[] = {
    {"[-720, 720]", uniform(-720, 720)},
    {"multiples of 90 and next to them, |k| to 2^40", near_multiples(-0x1p40L, 0x1p40L, nullptr, 90, 0, 64)},
    {"next to multiples of 30", near_multiples(-1000, 1000, nullptr, 30)},
    {"tiny 2^-16370 .. 2^-40", log_uniform(0x1p-16370L, 0x1p-40, both_signs)},
};
// The tangent and cotangent: the multiples of 90 (of 1 quadrant) and of 180
// (2 quadrants) are poles of one of them and report; only their neighbours.
constexpr Range kQDegPoleHard[] = {
    {"[-720, 720]", uniform(-720, 720)},
    {"next to multiples of 90, |k| to 2^40", near_multiples(-0x1p40L, 0x1p40L, nullptr, 90, 1, 64)},
    {"next to multiples of 45", near_multiples(-1000, 1000, nullptr, 45, 1, 64)},
    {"tiny 2^-16370 .. 2^-40", log_uniform(0x1p-16370L, 0x1p-40, both_signs)},
};
constexpr Range kQQuadHard[] = {
    {"[-8, 8]", uniform(-8, 8)},
    {"integers and next to them, |k| to 2^40", near_multiples(-0x1p40L, 0x1p40L, nullptr, 1, 0, 64)},
    {"next to multiples of 1/3", near_multiples(-1000, 1000, nullptr, 1.0L / 3)},
    {"tiny 2^-16380 .. 2^-40", log_uniform(0x1p-16380L, 0x1p-40, both_signs)},
};
constexpr Range kQQuadPoleHard[] = {
    {"[-8, 8]", uniform(-8, 8)},
    {"next to integers, |k| to 2^40", near_multiples(-0x1p40L, 0x1p40L, nullptr, 1, 1, 64)},
    {"next to multiples of 1/2", near_multiples(-1000, 1000, nullptr, 0.5, 1, 64)},
    {"tiny 2^-16380 .. 2^-40", log_uniform(0x1p-16380L, 0x1p-40, both_signs)},
};

int q_exp10(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) { return mpfr_exp10(y, x, r); }
int q_lgamma(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) {
    int sign;
    return mpfr_lgamma(y, &sign, x, r);
}

// ---- the REAL(16) kernels on the working format ----------------------------------
//
// Errors in units of 2^-128 of the working value's binade (a working ulp is
// 2^-127 relative at worst); the table's comment states each kernel's
// relative bound.  Arguments: normal working values within each kernel's
// domain.
constexpr Axis kWorkWide = magnitudes(0x1p-16000L, 0x1p16000L);
int w_sqrt_abs(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) {
    mpfr_t a;
    mpfr_init2(a, mpfr_get_prec(x));
    mpfr_abs(a, x, MPFR_RNDN);
    const int i = mpfr_sqrt(y, a, r);
    mpfr_clear(a);
    return i;
}
int w_log_abs(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t r) {
    mpfr_t a;
    mpfr_init2(a, mpfr_get_prec(x));
    mpfr_abs(a, x, MPFR_RNDN);
    const int i = mpfr_log(y, a, r);
    mpfr_clear(a);
    return i;
}
constexpr Range kWorkLogHard[] = {{"next to 1", next_to_one<true, false>}};
constexpr Range kWorkTrigHard[] = {
    {"[-10, 10]", uniform(-10, 10)},
    {"closest to k pi/2, binades 2^1 .. 2^200", closest_to_half_pi<1, 200>},
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

    // Inverse circular functions in radians, degrees and quadrants.  The
    // arctangents are FPATAN's extended value (g_datan keeps it) rounded.
    {"g_dasin", mpfr_asin, {interval(-1.0, 1.0)}, kAsinHard8, 0.75},
    {"g_dacos", mpfr_acos, {interval(-1.0, 1.0)}, kAsinHard8, 0.75},
    {"g_datan", mpfr_atan, {interval(-kDmax, kDmax)}, kAtanHard8, 0.5005},
    {"g_datan2", atan2r, {interval(-kDmax, kDmax), interval(-kDmax, kDmax)}, kAtan2Hard, 0.5005},
    {"g_dasind", asind, {interval(-1.0, 1.0)}, kAsinHard8, 0.75},
    {"g_dacosd", acosd, {interval(-1.0, 1.0)}, kAsinHard8, 0.75},
    {"g_datand", atand, {interval(-kDmax, kDmax)}, kAtanHard8, 0.501},
    {"g_dtan2d", atan2d, {interval(-kDmax, kDmax), interval(-kDmax, kDmax)}, kAtan2Hard, 0.501},
    {"g_dasinq", asinq, {interval(-1.0, 1.0)}, kAsinHard8, 0.82},
    {"g_dacosq", acosq, {interval(-1.0, 1.0)}, kAsinHard8, 0.7},
    {"g_datanq", atanq, {interval(-kDmax, kDmax)}, kAtanHard8, 0.501},
    {"g_dtan2q", atan2q, {interval(-kDmax, kDmax), interval(-kDmax, kDmax)}, kAtan2Hard, 0.501},
    {"g_asin", mpfr_asin, {interval(-1.0, 1.0)}, {}, 0.5, kUnbounded, fast_asin, kGlibcBits},
    {"g_acos", mpfr_acos, {interval(-1.0, 1.0)}, {}, 0.501, kUnbounded, fast_acos, kGlibcBits},
    {"g_atan", mpfr_atan, {interval(-kFmax, kFmax)}, {}, 0.5, kUnbounded, fast_atan, kGlibcBits},
    {"g_atan2", atan2r, {interval(-kFmax, kFmax), interval(-kFmax, kFmax)}, kAtan2Hard, 0.5},
    {"g_asind", asind, {interval(-1.0, 1.0)}, {}, 0.5, kUnbounded, fast_scaled<fast_asin, kDegreesPerRadian>, kGlibcBits},
    {"g_acosd", acosd, {interval(-1.0, 1.0)}, {}, 0.5, kUnbounded, fast_scaled<fast_acos, kDegreesPerRadian>, kGlibcBits},
    {"g_atand", atand, {interval(-kFmax, kFmax)}, {}, 0.5, kUnbounded, fast_scaled<fast_atan, kDegreesPerRadian>, kGlibcBits},
    {"g_atan2d", atan2d, {interval(-kFmax, kFmax), interval(-kFmax, kFmax)}, kAtan2Hard, 0.5},
    {"g_asinq", asinq, {interval(-1.0, 1.0)}, {}, 0.501, kUnbounded, fast_scaled<fast_asin, kQuadrantsPerRadian>, kGlibcBits},
    {"g_acosq", acosq, {interval(-1.0, 1.0)}, {}, 0.5, kUnbounded, fast_scaled<fast_acos, kQuadrantsPerRadian>, kGlibcBits},
    {"g_atanq", atanq, {interval(-kFmax, kFmax)}, {}, 0.501, kUnbounded, fast_scaled<fast_atan, kQuadrantsPerRadian>, kGlibcBits},
    {"g_atan2q", atan2q, {interval(-kFmax, kFmax), interval(-kFmax, kFmax)}, kAtan2Hard, 0.5},

    // Circular functions of degrees and quadrants, references exact in the
    // unit.  The degree and quadrant sines and cosines carry the library's
    // fixed series (see the README); the poles of tan and cot report.
    {"g_dsind", sind, {interval(-kDegreeMax, kDegreeMax)}, kDegreeHard8, 1.3},
    {"g_dcosd", cosd, {interval(-kDegreeMax, kDegreeMax)}, kDegreeHard8, 1.4},
    {"g_dtand", tan_unit<360>, {interval(-kDegreeMax, kDegreeMax)}, kDegreeHard8, 0.8},
    {"g_dcotd", cot_unit<360>, {interval(-kDegreeMax, kDegreeMax)}, kDegreeHard8, 0.7},
    {"g_dsinq", sinq, {interval(-kDmax, kDmax)}, kQuadrantHard8, 1.25},
    {"g_dcosq", cosq, {interval(-kDmax, kDmax)}, kQuadrantHard8, 1.25},
    {"g_dtanq", tan_unit<4>, {interval(-kDmax, kDmax)}, kQuadrantHard8, 0.8},
    {"g_dcotq", cot_unit<4>, {interval(-kDmax, kDmax)}, kQuadrantHard8, 0.7},
    {"g_sind", sind, {interval(-kDegreeMax, kDegreeMax)}, kDegreeHard4, 0.51, kUnbounded, fast_sin_unit<90>, 50},
    {"g_cosd", cosd, {interval(-kDegreeMax, kDegreeMax)}, kDegreeHard4, 0.51, kUnbounded, fast_cos_unit<90>, 50},
    {"g_tand", tan_unit<360>, {interval(-kDegreeMax, kDegreeMax)}, kDegreeHard4, 0.51, kUnbounded, fast_tan_unit<90>, 49},
    {"g_cotd", cot_unit<360>, {interval(-kDegreeMax, kDegreeMax)}, kDegreeHard4, 0.51, kUnbounded, fast_cot_unit<90>, 49},
    {"g_sinq", sinq, {interval(-kFmax, kFmax)}, kQuadrantHard4, 0.51, kUnbounded, fast_sin_unit<1>, 50},
    {"g_cosq", cosq, {interval(-kFmax, kFmax)}, kQuadrantHard4, 0.51, kUnbounded, fast_cos_unit<1>, 50},
    {"g_tanq", tan_unit<4>, {interval(-kFmax, kFmax)}, kQuadrantHard4, 0.51, kUnbounded, fast_tan_unit<1>, 49},
    {"g_cotq", cot_unit<4>, {interval(-kFmax, kFmax)}, kQuadrantHard4, 0.51, kUnbounded, fast_cot_unit<1>, 49},

    // Hyperbolic functions: e^|x|/2 alone from 18.4 on, and (0.5 E) E next
    // to the overflow limit, are the library's range plan (see the README).
    {"g_dsinh", mpfr_sinh, {interval(-kCoshMax8, kCoshMax8)}, kSinhHard8, 1.9},
    {"g_dcosh", mpfr_cosh, {interval(-kCoshMax8, kCoshMax8)}, kSinhHard8, 1.9},
    {"g_dtanh", mpfr_tanh, {interval(-kDmax, kDmax)}, kTanhHard8, 2.05},
    {"g_sinh", mpfr_sinh, {interval(-kCoshMax4, kCoshMax4)}, kSinhHard4, 0.51, kUnbounded, fast_sinh, kGlibcBits},
    {"g_cosh", mpfr_cosh, {interval(-kCoshMax4, kCoshMax4)}, kSinhHard4, 0.51, kUnbounded, fast_cosh, kGlibcBits},
    {"g_tanh", mpfr_tanh, {interval(-kFmax, kFmax)}, {}, 0.51, kUnbounded, fast_tanh, kGlibcBits},

    // The pairs (sin x, cos x), (sinh x, cosh x) and their quadrant forms,
    // judged per value and by the norm (the bound; sqrt(1/2) = 0.7071 for
    // two correctly rounded parts).
    {"g_dscn", sin_cos, {interval(-3.5e15, 3.5e15)}, kSinCosPairHard8, 0.85},
    {"g_dscnq", sin_cos_quadrants, {interval(-kDmax, kDmax)}, kQuadrantHard8, 1.2},
    {"g_dsch", sinh_cosh, {interval(-kCoshMax8, kCoshMax8)}, kSinhHard8, 2.3},
    {"g_dschq", sinh_cosh_quadrants, {interval(-452.3, 452.3)}, kSinhQuadrantHard8, 0.95},
    {"g_scns", sin_cos, {interval(-823000.0, 823000.0)}, kTrigHard4, 0.7072},
    {"g_scnsq", sin_cos_quadrants, {interval(-kFmax, kFmax)}, kQuadrantHard4, 0.7072},
    {"g_scnh", sinh_cosh, {interval(-kCoshMax4, kCoshMax4)}, kSinhHard4, 0.7072},
    {"g_scnhq", sinh_cosh_quadrants, {interval(-56.9, 56.9)}, kSinhQuadrantHard4, 0.7072},

    // Complex sine and cosine: one product of the real pairs' kernels per
    // part (bounds on the norm; the parts' figures are in the README).
    {"g_cdsin", complex_sin_cos<false, false>, {interval(-3.5e15, 3.5e15), interval(-kCoshMax8, kCoshMax8)},
     kComplexSinCosHard8, 1.5},
    {"g_cdcos", complex_sin_cos<true, false>, {interval(-3.5e15, 3.5e15), interval(-kCoshMax8, kCoshMax8)},
     kComplexSinCosHard8, 1.5},
    {"g_cdsinq", complex_sin_cos<false, true>, {interval(-kDmax, kDmax), interval(-452.3, 452.3)},
     kComplexSinCosQuadrantHard8, 1.0},
    {"g_cdcosq", complex_sin_cos<true, true>, {interval(-kDmax, kDmax), interval(-452.3, 452.3)},
     kComplexSinCosQuadrantHard8, 1.0},
    {"g_csin", complex_sin_cos<false, false>, {interval(-3.5e15, 3.5e15), interval(-kCoshMax4, kCoshMax4)},
     kComplexSinCosHard4, 0.7072},
    {"g_ccos", complex_sin_cos<true, false>, {interval(-3.5e15, 3.5e15), interval(-kCoshMax4, kCoshMax4)},
     kComplexSinCosHard4, 0.7072},
    {"g_csinq", complex_sin_cos<false, true>, {interval(-kFmax, kFmax), interval(-56.9, 56.9)},
     kComplexSinCosQuadrantHard4, 0.7072},
    {"g_ccosq", complex_sin_cos<true, true>, {interval(-kFmax, kFmax), interval(-56.9, 56.9)},
     kComplexSinCosQuadrantHard4, 0.7072},

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
    // Complex elementary functions and powers (per part; see the file
    // headers in src/complex for the bounds).
    {"g_cdabs", mpfr_hypot, {kAnyPart8, kAnyPart8}, kComplexHard<false>, 0.51},
    {"g_cabs", mpfr_hypot, {kAnyPart4, kAnyPart4}, kComplexHard<true>, 0.51},
    {"g_cdsqrt", complex_sqrt, {kAnyPart8, kAnyPart8}, kComplexHard<false>, 0.72},
    {"g_csqrt", complex_sqrt, {kAnyPart4, kAnyPart4}, kComplexHard<true>, 0.71},
    {"g_cdlog", complex_log, {kAnyPart8, kAnyPart8}, kComplexHard<false>, 0.72},
    {"g_clog", complex_log, {kAnyPart4, kAnyPart4}, kComplexHard<true>, 0.71},
    {"g_cdexp", complex_exp, {interval(-745.1, 709.0), interval(-3.5e15, 3.5e15)}, kComplexExpHard<false>, 1.4},
    {"g_cexp", complex_exp, {interval(-103.9, 88.7), interval(-822999.0, 822999.0)}, kComplexExpHard<true>, 0.71},
    {"g_axxx", complex_pow, {interval(-1e3, 1e3), interval(-1e3, 1e3), interval(-64, 64), interval(-64, 64)},
     kComplexPowHard8, 2.0},
    {"g_acxc", complex_pow, {interval(-1e3, 1e3), interval(-1e3, 1e3), interval(-8, 8), interval(-8, 8)},
     kComplexPowHard4, 0.71},
    // Real powers: one rounding of a double-double power.
    {"g_a2xd", mpfr_exp2, {interval(-1075.0, 1023.999)}, kPow2Hard8, 0.51},
    {"g_atxd", mpfr_exp10, {interval(-323.6, 308.25)}, kPow10Hard8, 0.52},
    {"g_a2xr", mpfr_exp2, {interval(-150.0, 127.99)}, kPow2Hard4, 0.51, kUnbounded, fast_exp2, kGlibcBits},
    {"g_atxr", mpfr_exp10, {interval(-45.2, 38.5)}, kPow10Hard4, 0.51, kUnbounded, fast_exp10, kGlibcBits},
    {"g_adxd", mpfr_pow, {interval(0x1p-1074, kDmax), magnitudes(0x1p-60, 0x1p63)}, kPowPairs<false>, 0.55},
    {"g_arxr", mpfr_pow, {interval(0x1p-149, kFmax), magnitudes(0x1p-60, 0x1p31)}, kPowPairs<true>, 0.51},
    // Error function, gamma, log-gamma.
    {"g_derf", mpfr_erf, {interval(-kDmax, kDmax)}, kErfHard8, 0.85},
    {"g_derfc", mpfr_erfc, {interval(-kDmax, kDmax)}, kErfHard8, 0.8},
    {"g_erf", mpfr_erf, {interval(-kFmax, kFmax)}, kErfHard4, 0.51, kUnbounded, fast_erf, 58},
    {"g_erfc", mpfr_erfc, {interval(-kFmax, kFmax)}, kErfHard4, 0.51, kUnbounded, fast_erfc, 58},
    {"g_dgamma", mpfr_gamma, {interval(-190.0, 171.62)}, kGammaHard8, 0.55},
    {"g_dlgama", log_abs_gamma, {interval(-0x1p52, 0x1p1000)}, kLgammaHard8, 0.6},
    {"g_gamma", mpfr_gamma, {interval(-45.0, 35.04)}, kGammaHard4, 0.51, kUnbounded, fast_gamma, 57},
    {"g_algama", log_abs_gamma, {interval(-0x1p23, 0x1p120)}, kGammaHard4, 0.51, kUnbounded, fast_lgamma, 57},
    {"g_lgamma", log_abs_gamma, {interval(-0x1p23, 0x1p120)}, kGammaHard4, 0.51, kUnbounded, fast_lgamma, 57},

    // COMPLEX(16) functions and the complex power: per part within an ulp,
    // nearly correctly rounded (bounds on the norm error).
    {"g_cqabs", mpfr_hypot, {kQuadHalf, kQuadHalf}, kCQSqrtHard, 0.51},
    {"g_cqsqrt", quad_complex_sqrt, {kQuadHalf, kQuadHalf}, kCQSqrtHard, 0.72},
    {"g_cqexp", quad_complex_exp, {interval(-11355.0L, 11355.0L), magnitudes(0x1p-100L, 0x1p100L)}, kCQExpHard, 0.72},
    {"g_cqlog", quad_complex_log, {kQuadWide, kQuadWide}, kCQLogHard, 0.72},
    {"g_cqsin", quad_complex_sin_cos<false, false>, {magnitudes(0x1p-100L, 0x1p100L), interval(-11355.0L, 11355.0L)}, kCQTrigHard, 0.72},
    {"g_cqcos", quad_complex_sin_cos<true, false>, {magnitudes(0x1p-100L, 0x1p100L), interval(-11355.0L, 11355.0L)}, kCQTrigHard, 0.72},
    {"g_cqsinq", quad_complex_sin_cos<false, true>, {magnitudes(0x1p-100L, 0x1p100L), interval(-7229.0L, 7229.0L)}, kCQTrigQuadrantHard, 0.72},
    {"g_cqcosq", quad_complex_sin_cos<true, true>, {magnitudes(0x1p-100L, 0x1p100L), interval(-7229.0L, 7229.0L)}, kCQTrigQuadrantHard, 0.72},
    {"g_azxz", quad_complex_pow, {magnitudes(0x1p-100L, 0x1p100L), magnitudes(0x1p-100L, 0x1p100L), interval(-20, 20), interval(-20, 20)}, kCQPowHard, 0.72},

    // REAL(16) elementary functions: within 0.51 ulp.  Log-gamma: 0.6,
    // its error is absolute (2^-122.6) where |ln Gamma| < 2^-7.5, next to
    // 1 and 2, and the most seen there is 0.535.  Gamma of
    // the least subnormal arguments overflows and reports; the tool counts
    // those reports.
    {"g_qexp", mpfr_exp, {interval(-11355.13, 11356.52)}, kQExpHard, 0.51},
    {"g_qexp2", mpfr_exp2, {interval(-16382, 16383.999)}, kQExp2Hard, 0.51},
    {"g_qexp10", q_exp10, {interval(-4931.47, 4932.07)}, kQExp10Hard, 0.51},
    {"g_a2xq", mpfr_exp2, {interval(-16382, 16383.999)}, kQExp2Hard, 0.51},
    {"g_atxq", q_exp10, {interval(-4931.47, 4932.07)}, kQExp10Hard, 0.51},
    // x**y: the error of ln x weighs most where |ln x| is small and |y ln x|
    // large (see power/quad_real_powers.cpp).  Results that MPFR finds in
    // the subnormal band are zeros by design (REAL(16) results are never
    // subnormal): up to 2^112 units of the least subnormal.
    {"g_aqxq", mpfr_pow, {interval(0x1p-16445L, kQmax), magnitudes(0x1p-130L, 0x1p130L)}, kQPowPairs, 0.502, 0x1p112},
    {"g_qlog", mpfr_log, {interval(0x1p-16445L, kQmax)}, kQLogHard, 0.51},
    {"g_qlog2", mpfr_log2, {interval(0x1p-16445L, kQmax)}, kQLogHard, 0.51},
    {"g_qlog10", mpfr_log10, {interval(0x1p-16445L, kQmax)}, kQLogHard, 0.51},
    {"g_qsin", mpfr_sin, {magnitudes(kQtiny, kQmax)}, kQTrigHard, 0.51},
    {"g_qcos", mpfr_cos, {interval(-kQmax, kQmax)}, kQTrigHard, 0.51},
    {"g_qtan", mpfr_tan, {magnitudes(kQtiny, kQmax)}, kQTrigHard, 0.51},
    {"g_qcotan", mpfr_cot, {magnitudes(kQtiny, kQmax)}, kQTrigHard, 0.51},  // cot(+-0) reports
    {"g_qasin", mpfr_asin, {magnitudes(kQtiny, 1)}, kQAsinHard, 0.51},
    {"g_qacos", mpfr_acos, {interval(-1, 1)}, kQAsinHard, 0.51},
    {"g_qatan", mpfr_atan, {magnitudes(kQtiny, kQmax)}, kQAtanHard, 0.51},
    {"g_qatan2", mpfr_atan2, {magnitudes(0x1p-8000L, 0x1p8000L), magnitudes(0x1p-8000L, 0x1p8000L)}, kQAtan2Hard, 0.51},
    {"g_qsind", unit<mpfr_sinu, 360>, {magnitudes(0x1p-16370L, kQmax)}, kQDegHard, 0.51},
    {"g_qcosd", unit<mpfr_cosu, 360>, {interval(-kQmax, kQmax)}, kQDegHard, 0.51},
    {"g_qtand", unit<mpfr_tanu, 360>, {magnitudes(0x1p-16370L, 0x1p100L)}, kQDegPoleHard, 0.51},
    {"g_qcotd", cot_unit<360>, {magnitudes(0x1p-16370L, 0x1p100L)}, kQDegPoleHard, 0.51},
    {"g_qasind", unit<mpfr_asinu, 360>, {magnitudes(kQtiny, 1)}, kQAsinHard, 0.51},
    {"g_qacosd", unit<mpfr_acosu, 360>, {interval(-1, 1)}, kQAsinHard, 0.51},
    {"g_qatand", unit<mpfr_atanu, 360>, {magnitudes(kQtiny, kQmax)}, kQAtanHard, 0.51},
    {"g_qatan2d", unit2<mpfr_atan2u, 360>, {magnitudes(0x1p-8000L, 0x1p8000L), magnitudes(0x1p-8000L, 0x1p8000L)},
     kQAtan2Hard, 0.51},
    {"g_qsinq", unit<mpfr_sinu, 4>, {magnitudes(0x1p-16380L, kQmax)}, kQQuadHard, 0.51},
    {"g_qcosq", unit<mpfr_cosu, 4>, {interval(-kQmax, kQmax)}, kQQuadHard, 0.51},
    {"g_qtanq", unit<mpfr_tanu, 4>, {magnitudes(0x1p-16380L, 0x1p100L)}, kQQuadPoleHard, 0.51},
    {"g_qcotq", cot_unit<4>, {magnitudes(0x1p-16380L, 0x1p100L)}, kQQuadPoleHard, 0.51},
    {"g_qasinq", unit<mpfr_asinu, 4>, {magnitudes(0x1p-16380L, 1)}, kQAsinHard, 0.51},
    {"g_qacosq", unit<mpfr_acosu, 4>, {interval(-1, 1)}, kQAsinHard, 0.51},
    {"g_qatanq", unit<mpfr_atanu, 4>, {magnitudes(0x1p-16380L, kQmax)}, kQAtanHard, 0.51},
    {"g_qatan2q", unit2<mpfr_atan2u, 4>, {magnitudes(0x1p-8000L, 0x1p8000L), magnitudes(0x1p-8000L, 0x1p8000L)},
     kQAtan2Hard, 0.51},
    {"g_qsinh", mpfr_sinh, {magnitudes(kQtiny, 11357.2)}, kQHypHard, 0.51},
    {"g_qcosh", mpfr_cosh, {interval(-11357.2, 11357.2)}, kQHypHard, 0.51},
    {"g_qtanh", mpfr_tanh, {magnitudes(kQtiny, kQmax)}, kQTanhHard, 0.51},
    {"g_qsqrt", mpfr_sqrt, {interval(0, kQmax)}, kQSqrtHard, 0.51},
    {"g_qcbrt", mpfr_cbrt, {interval(-kQmax, kQmax)}, kQCbrtHard, 0.51},
    {"g_qgamma", mpfr_gamma, {interval(-170.5, 1755.45)}, kQGammaHard, 0.51},
    {"g_qlgama", q_lgamma, {interval(-1000, 0x1p16370L)}, kQLgammaHard, 0.6},
    {"g_qerf", mpfr_erf, {magnitudes(kQtiny, kQmax)}, kQErfHard, 0.51},
    {"g_qerfc", mpfr_erfc, {interval(-kQmax, 106.53)}, kQErfcHard, 0.51},

    // The kernels beneath them, on the working format: bounds in units of
    // 2^-128 of the result's binade, 2^(128 - b) for the relative bound
    // 2^-b of each kernel's contract (exports.tab).
    {"jwe_guunp", mpfr_set, {interval(-kQmax, kQmax)}, {}, 0},
    {"jwe_gurnd", mpfr_set, {kWorkWide}, {}, 0.5},
    {"jwe_guadd", mpfr_add, {kWorkWide, kWorkWide}, kQuadAddHard, 0.5},
    {"jwe_gumul", mpfr_mul, {kQuadHalf, kQuadHalf}, kQuadMulHard, 0.5},
    {"jwe_gudiv", mpfr_div, {kQuadHalf, kQuadHalf}, kQuadDivHard, 5.66},
    {"jwe_gusqt", w_sqrt_abs, {kWorkWide}, {}, 4},
    {"jwe_guexp", mpfr_exp, {magnitudes(0x1p-16000L, 32000)}, {}, 2.14},
    {"jwe_gulog", w_log_abs, {kWorkWide}, kWorkLogHard, 2.83},
    {"jwe_gusin", mpfr_sin, {magnitudes(0x1p-16000L, kQmax)}, kWorkTrigHard, 13},
    {"jwe_gucos", mpfr_cos, {magnitudes(0x1p-16000L, kQmax)}, kWorkTrigHard, 13},
    {"jwe_gutan", mpfr_tan, {magnitudes(0x1p-16000L, kQmax)}, kWorkTrigHard, 22.6},
    {"jwe_guatn", mpfr_atan2, {kQuadHalf, kQuadHalf}, {}, 9.2},
    {"jwe_guasn", mpfr_asin, {magnitudes(0x1p-16000L, 1)}, {}, 14.9},
    {"jwe_guacs", mpfr_acos, {magnitudes(0x1p-16000L, 1)}, {}, 14.9},
    {"jwe_gusnh", mpfr_sinh, {magnitudes(0x1p-16000L, 16000)}, {}, 7.5},
    {"jwe_gucsh", mpfr_cosh, {magnitudes(0x1p-16000L, 16000)}, {}, 4.9},
    {"jwe_guthn", mpfr_tanh, {magnitudes(0x1p-16000L, 16000)}, {}, 10.6},
    // ln|Gamma|: within 2^-122.6 absolute below 20 (no ulp bound; positive
    // arguments, the negative ones have zeros).
    {"jwe_gulgm", q_lgamma, {interval(0x1p-16000L, 0x1p16000L)}},
    {"jwe_guerf", mpfr_erf, {magnitudes(0x1p-16000L, kQmax)}, {}, 73.5},
    {"jwe_guerc", mpfr_erfc, {magnitudes(0x1p-16000L, 106.5)}, {}, 73.5},
};

}  // namespace

std::span<const Reference> references() { return kReferences; }

const Reference* find_reference(std::string_view name) {
    for (const Reference& r : kReferences)
        if (r.name == name) return &r;
    return nullptr;
}

}  // namespace mivor::accuracy
